// Point location on the polygon value types: holes and islands, the boundary distance, the
// batch form, the refused arguments, the shared locator, and agreement with the described
// region's inside away from the outline.
#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/point_locator.h>
#include <cntr/polygon.h>
#include <cntr/region.h>

#include "polygon_testing.h"

namespace {

using cntr::Location;
using cntr::MultiPolygon;
using cntr::Polygon;
using cntr::Ring;

const Ring kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Ring kHole = {{2, 2}, {2, 8}, {8, 8}, {8, 2}};
const Ring kIsland = {{4, 4}, {6, 4}, {6, 6}, {4, 6}};

TEST(PolygonLocate, PolygonWithAHole) {
    const Polygon p(kSquare, {kHole});
    EXPECT_EQ(p.locate({1, 1}), Location::inside);
    EXPECT_EQ(p.locate({5, 5}), Location::outside);  // in the hole
    EXPECT_EQ(p.locate({11, 5}), Location::outside);
    EXPECT_EQ(p.locate({10, 5}), Location::boundary);
    EXPECT_EQ(p.locate({2, 5}), Location::boundary);  // on the hole
    EXPECT_EQ(p.locate({8, 8}), Location::boundary);  // a vertex of the hole
}

TEST(PolygonLocate, MultiPolygonWithAnIslandInTheHole) {
    const MultiPolygon m({Polygon(kSquare, {kHole}), Polygon(kIsland)});
    EXPECT_EQ(m.locate({1, 1}), Location::inside);
    EXPECT_EQ(m.locate({3, 5}), Location::outside);  // in the hole, off the island
    EXPECT_EQ(m.locate({5, 5}), Location::inside);   // on the island
    EXPECT_EQ(m.locate({6, 5}), Location::boundary);
    EXPECT_EQ(MultiPolygon().locate({0, 0}), Location::outside);
}

TEST(PolygonLocate, HoleTouchingTheExterior) {
    // A hole with a vertex on the exterior's bottom edge: legal for the polygon type.
    const Polygon p(kSquare, {{{5, 0}, {7, 3}, {3, 3}}});
    EXPECT_TRUE(p.isValid());
    EXPECT_EQ(p.locate({5, 2}), Location::outside);
    EXPECT_EQ(p.locate({5, 0}), Location::boundary);
    EXPECT_EQ(p.locate({1, 1}), Location::inside);
    EXPECT_EQ(p.locate({5, 5}), Location::inside);
}

TEST(PolygonLocate, BoundaryDistance) {
    const Polygon p(kSquare, {kHole});
    EXPECT_EQ(p.locate({1, 1}, 1.0), Location::boundary);  // 1 from the exterior's edges
    EXPECT_EQ(p.locate({1, 1}, 0.99), Location::inside);
    EXPECT_EQ(p.locate({5, 5}, 2.5), Location::outside);   // 3 from the hole's edges
    EXPECT_EQ(p.locate({5, 5}, 3.0), Location::boundary);
    EXPECT_EQ(p.locate({-0.5, 5}, 0.5), Location::boundary);
    EXPECT_EQ(p.locate({-0.5, 5}, 0.25), Location::outside);
    EXPECT_EQ(p.locate({10, 5}, 0.0), Location::boundary);
}

TEST(PolygonLocate, BatchGivesTheSingleAnswersInOrder) {
    const Polygon p(kSquare, {kHole});
    const std::vector<xcVector<2>> points = {{1, 1}, {5, 5}, {10, 5}, {20, 20}, {1.5, 1.5}};
    const std::vector<Location> expected = {Location::inside, Location::outside,
                                            Location::boundary, Location::outside,
                                            Location::inside};
    EXPECT_EQ(p.locate(points), expected);
    const std::vector<Location> widened = {Location::boundary, Location::outside,
                                           Location::boundary, Location::outside,
                                           Location::boundary};
    EXPECT_EQ(p.locate(points, 1.5), widened);
    EXPECT_TRUE(p.locate(std::vector<xcVector<2>>()).empty());
    const MultiPolygon m({Polygon(kSquare, {kHole}), Polygon(kIsland)});
    EXPECT_EQ(m.locate(points), (std::vector<Location>{Location::inside, Location::inside,
                                                       Location::boundary, Location::outside,
                                                       Location::inside}));
}

TEST(PolygonLocate, RefusesNonFinitePointsAndBadDistances) {
    const Polygon p(kSquare);
    const double nan = std::nan("");
    const double inf = HUGE_VAL;
    EXPECT_BAD_PARAMS(p.locate(xcVector<2>(nan, 1)), L"point has a non-finite coordinate");
    EXPECT_BAD_PARAMS(p.locate(xcVector<2>(1, inf)), L"point has a non-finite coordinate");
    EXPECT_BAD_PARAMS(p.locate(xcVector<2>(1, 1), -1.0),
                      L"boundary distance must be finite and not negative");
    EXPECT_BAD_PARAMS(p.locate(xcVector<2>(1, 1), inf),
                      L"boundary distance must be finite and not negative");
    EXPECT_BAD_PARAMS(p.locate(xcVector<2>(1, 1), nan),
                      L"boundary distance must be finite and not negative");
    EXPECT_BAD_PARAMS(p.locate(std::vector<xcVector<2>>{{1, 1}, {nan, 0}}),
                      L"point has a non-finite coordinate");
    const MultiPolygon m({p});
    EXPECT_BAD_PARAMS(m.locate(xcVector<2>(inf, 0)), L"point has a non-finite coordinate");
    EXPECT_BAD_PARAMS(m.locate(std::vector<xcVector<2>>{{1, 1}}, -0.5),
                      L"boundary distance must be finite and not negative");
}

TEST(PolygonLocate, CopiesShareOneLocatorBuiltOnce) {
    const Polygon p(kSquare, {kHole});
    const Polygon copy = p;
    const cntr::core::PointLocator& locator = p.locator();
    EXPECT_EQ(&copy.locator(), &locator);
    EXPECT_EQ(locator.edgeCount(), 8u);
    // An equal polygon built apart has its own.
    EXPECT_NE(&Polygon(kSquare, {kHole}).locator(), &locator);
}

Ring blob(std::mt19937_64& random, std::size_t n, double cx, double cy) {
    std::uniform_real_distribution<double> jitter(0.8, 1.2);
    Ring ring;
    for (std::size_t i = 0; i < n; ++i) {
        const double a = 2.0 * M_PI * static_cast<double>(i) / static_cast<double>(n);
        const double r = 50.0 * jitter(random);
        ring.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
    }
    return ring;
}

// The distance from p to the nearest edge of a closed ring, edge by edge.
double distanceToRing(const xcVector<2>& p, const Ring& ring) {
    double best = HUGE_VAL;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const xcVector<2>& a = ring[i];
        const xcVector<2>& b = ring[(i + 1) % ring.size()];
        const double dx = b.x() - a.x(), dy = b.y() - a.y();
        const double t = std::clamp(((p.x() - a.x()) * dx + (p.y() - a.y()) * dy) /
                                        (dx * dx + dy * dy), 0.0, 1.0);
        best = std::min(best, std::hypot(a.x() + t * dx - p.x(), a.y() + t * dy - p.y()));
    }
    return best;
}

TEST(PolygonLocate, AgreesWithTheRegionsInsideAwayFromTheOutline) {
    // The described inside casts its own rays; off the outline, every ray gives the true
    // containment, so both must agree on every point farther than 1e-6 from the outline.
#ifdef CNTR_TESTS_SANITIZED
    constexpr int kShapes = 5;
#else
    constexpr int kShapes = 40;
#endif
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> coordinate(-70, 70);
    std::uniform_int_distribution<std::size_t> vertices(3, 400);
    for (int s = 0; s < kShapes; ++s) {
        const Ring ring = blob(random, vertices(random), 0, 0);
        const Polygon polygon(ring);
        const xcRegion region(ring, xcContourDefs::keepOutline);
        for (int k = 0; k < 200; ++k) {
            const xcVector<2> p(coordinate(random), coordinate(random));
            if (distanceToRing(p, ring) <= 1e-6)
                continue;
            const bool inside = region.inside(p, false);
            EXPECT_EQ(polygon.locate(p), inside ? Location::inside : Location::outside)
                << "shape " << s << " point (" << p.x() << ", " << p.y() << ")";
        }
    }
}

}  // namespace
