// The prepared point locator: hand-drawn cases (vertices and horizontal edges at the point's
// height, rays through vertices, holes, overlapping rings, degenerate rings), the size of its
// tables, and agreement with the foundation's ring-by-ring location on seeded shapes.
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/point_locator.h>
#include <foundation/predicates.h>

namespace {

using cntr::core::PointLocator;
using Ring = std::vector<xcVector<2>>;
using Loc = xcRingLocation;

std::vector<const Ring*> pointersTo(const std::vector<Ring>& rings) {
    std::vector<const Ring*> pointers;
    for (const Ring& ring : rings)
        pointers.push_back(&ring);
    return pointers;
}

// Rings and the locator that refers to them, kept together.
struct Located {
    explicit Located(std::vector<Ring> r) : rings(std::move(r)), locator(pointersTo(rings)) {}
    Located(const Located&) = delete;
    Located& operator=(const Located&) = delete;

    const std::vector<Ring> rings;
    const PointLocator locator;
};

// The even-odd location over several rings by the foundation's O(n) ring test, ring by ring:
// boundary on any ring, else inside when inside an odd number of them.
Loc referenceLocation(const std::vector<Ring>& rings, const xcVector<2>& p) {
    bool inside = false;
    for (const Ring& ring : rings) {
        const Loc found = xfLocateInRing(p, ring);
        if (found == Loc::boundary)
            return Loc::boundary;
        inside ^= found == Loc::inside;
    }
    return inside ? Loc::inside : Loc::outside;
}

const Ring kSquare = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};

TEST(PointLocator, SquareInsideOutsideAndBoundary) {
    const Located locatorRings({kSquare});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.locate({2, 2}), Loc::inside);
    EXPECT_EQ(locator.locate({5, 2}), Loc::outside);
    EXPECT_EQ(locator.locate({-1, 2}), Loc::outside);
    EXPECT_EQ(locator.locate({2, 5}), Loc::outside);
    EXPECT_EQ(locator.locate({4, 2}), Loc::boundary);  // on the right edge
    EXPECT_EQ(locator.locate({0, 3}), Loc::boundary);  // on the left edge
    EXPECT_EQ(locator.locate({0, 0}), Loc::boundary);  // a vertex
    EXPECT_EQ(locator.locate({4, 4}), Loc::boundary);  // the top vertex of the right edge
    EXPECT_EQ(locator.locate({2, 4}), Loc::boundary);  // on the top (horizontal) edge
    EXPECT_EQ(locator.locate({2, 0}), Loc::boundary);  // on the bottom edge
}

TEST(PointLocator, PointsAtTheHeightOfHorizontalEdges) {
    // The rays of these points run along the top and bottom edges.
    const Located locatorRings({kSquare});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.locate({-1, 4}), Loc::outside);
    EXPECT_EQ(locator.locate({5, 4}), Loc::outside);
    EXPECT_EQ(locator.locate({-1, 0}), Loc::outside);
    EXPECT_EQ(locator.locate({5, 0}), Loc::outside);
}

TEST(PointLocator, RaysThroughVertices) {
    // A diamond: the rays of points at height 2 pass through the vertices (0, 2) and (4, 2).
    const Located locatorRings({{{2, 0}, {4, 2}, {2, 4}, {0, 2}}});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.locate({1, 2}), Loc::inside);
    EXPECT_EQ(locator.locate({3, 2}), Loc::inside);
    EXPECT_EQ(locator.locate({-1, 2}), Loc::outside);
    EXPECT_EQ(locator.locate({5, 2}), Loc::outside);
    // Past the top and bottom vertices, at their heights.
    EXPECT_EQ(locator.locate({1, 4}), Loc::outside);
    EXPECT_EQ(locator.locate({3, 0}), Loc::outside);
    // On the slanted edges: (3, 1) lies on (2, 0)-(4, 2), (1, 3) on (2, 4)-(0, 2).
    EXPECT_EQ(locator.locate({3, 1}), Loc::boundary);
    EXPECT_EQ(locator.locate({1, 3}), Loc::boundary);
}

TEST(PointLocator, AVertexThatTouchesTheRayFromAbove) {
    // A "W" shaped top: the vertex (2, 2) is a local minimum of the upper boundary, at the
    // height of the probes; a ray from (3, 2) to the left only touches it.
    const Located locatorRings({{{0, 0}, {4, 0}, {4, 4}, {2, 2}, {0, 4}}});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.locate({3, 2}), Loc::inside);
    EXPECT_EQ(locator.locate({1, 2}), Loc::inside);
    EXPECT_EQ(locator.locate({2, 2}), Loc::boundary);
    EXPECT_EQ(locator.locate({2, 3}), Loc::outside);
    EXPECT_EQ(locator.locate({5, 2}), Loc::outside);
}

TEST(PointLocator, HolesAndIslandsByTheEvenOddRule) {
    const Ring hole = {{1, 1}, {1, 3}, {3, 3}, {3, 1}};  // clockwise, as holes usually are
    const Ring island = {{1.5, 1.5}, {2.5, 1.5}, {2.5, 2.5}, {1.5, 2.5}};
    const Located locatorRings({kSquare, hole, island});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.locate({0.5, 0.5}), Loc::inside);  // between exterior and hole
    EXPECT_EQ(locator.locate({1.25, 2}), Loc::outside);  // in the hole
    EXPECT_EQ(locator.locate({2, 2}), Loc::inside);      // on the island
    EXPECT_EQ(locator.locate({1, 2}), Loc::boundary);    // on the hole's edge
    EXPECT_EQ(locator.locate({2.5, 2}), Loc::boundary);  // on the island's edge
}

TEST(PointLocator, OverlappingRingsCancelWhereTheyOverlap) {
    // Two squares overlapping in [2, 4] x [0, 4]: covered twice there, so outside under the
    // even-odd rule.
    const Located locatorRings({kSquare, {{2, 0}, {6, 0}, {6, 4}, {2, 4}}});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.locate({1, 1}), Loc::inside);
    EXPECT_EQ(locator.locate({3, 1}), Loc::outside);
    EXPECT_EQ(locator.locate({5, 1}), Loc::inside);
    EXPECT_EQ(locator.locate({2, 1}), Loc::boundary);
}

TEST(PointLocator, SelfCrossingRingByTheEvenOddRule) {
    // A bow-tie: two triangles meeting at (2, 2).
    const Located locatorRings({{{0, 0}, {4, 4}, {4, 0}, {0, 4}}});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.locate({1, 2}), Loc::inside);
    EXPECT_EQ(locator.locate({3, 2}), Loc::inside);
    EXPECT_EQ(locator.locate({2, 1}), Loc::outside);
    EXPECT_EQ(locator.locate({2, 3}), Loc::outside);
    EXPECT_EQ(locator.locate({2, 2}), Loc::boundary);
}

TEST(PointLocator, NoRingsLocateEverythingOutside) {
    const Located locatorRings(std::vector<Ring>{});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.edgeCount(), 0u);
    EXPECT_EQ(locator.bandCount(), 0u);
    EXPECT_EQ(locator.locate({0, 0}), Loc::outside);
    EXPECT_FALSE(locator.nearEdge({0, 0}, 1.0));
    const Located emptyRingRings({Ring()});
    const PointLocator& emptyRing = emptyRingRings.locator;
    EXPECT_EQ(emptyRing.locate({0, 0}), Loc::outside);
}

TEST(PointLocator, DegenerateRingsAreTheirPointsAndSegments) {
    const Located pointRings({{{1, 1}}});
    const PointLocator& point = pointRings.locator;
    EXPECT_EQ(point.locate({1, 1}), Loc::boundary);
    EXPECT_EQ(point.locate({1, 2}), Loc::outside);
    const Located segmentRings({{{0, 0}, {2, 2}}});
    const PointLocator& segment = segmentRings.locator;
    EXPECT_EQ(segment.locate({1, 1}), Loc::boundary);
    EXPECT_EQ(segment.locate({1, 0.5}), Loc::outside);
    // All vertices on one horizontal line: one band.
    const Located flatRings({{{0, 1}, {2, 1}, {5, 1}}});
    const PointLocator& flat = flatRings.locator;
    EXPECT_EQ(flat.bandCount(), 1u);
    EXPECT_EQ(flat.locate({4, 1}), Loc::boundary);
    EXPECT_EQ(flat.locate({6, 1}), Loc::outside);
}

TEST(PointLocator, RepeatedVerticesAreZeroLengthEdges) {
    const Located locatorRings({{{0, 0}, {4, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 4}}});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_EQ(locator.edgeCount(), 6u);
    EXPECT_EQ(locator.locate({2, 2}), Loc::inside);
    EXPECT_EQ(locator.locate({4, 0}), Loc::boundary);
}

TEST(PointLocator, ExactOnEdgesThatFloatingPointCannotDecide) {
    // An edge from (0, 0) to (3, 1e-16 * 3): the point (1, 1e-16) lies on it only if the
    // products are exact; 1e-16 * 3 is rounded, so the exact orientation decides which side.
    const double y = 1e-16;
    const Ring ring = {{0, 0}, {3, 3 * y}, {3, 1}, {0, 1}};
    const Located locatorRings({ring});
    const PointLocator& locator = locatorRings.locator;
    for (const xcVector<2>& p : {xcVector<2>(1, y), xcVector<2>(2, 2 * y), xcVector<2>(1.5, y)})
        EXPECT_EQ(locator.locate(p), referenceLocation({ring}, p)) << p.x() << " " << p.y();
}

TEST(PointLocator, NearEdgeWithinTheDistance) {
    const Located locatorRings({kSquare});
    const PointLocator& locator = locatorRings.locator;
    EXPECT_TRUE(locator.nearEdge({2, 3.5}, 0.5));    // 0.5 below the top edge
    EXPECT_FALSE(locator.nearEdge({2, 3.5}, 0.49));
    EXPECT_TRUE(locator.nearEdge({5, 5}, 1.5));      // sqrt(2) from the corner (4, 4)
    EXPECT_FALSE(locator.nearEdge({5, 5}, 1.4));
    EXPECT_FALSE(locator.nearEdge({2, 2}, 1.9));
    EXPECT_TRUE(locator.nearEdge({-3, 2}, 3.0));     // left of the bounds, reached
}

// A closed star of `spikes` spikes about (cx, cy), radii alternating between inner and outer
// with a seeded jitter.
Ring star(std::mt19937_64& random, std::size_t spikes, double inner, double outer, double cx,
          double cy) {
    std::uniform_real_distribution<double> jitter(0.9, 1.1);
    Ring ring;
    for (std::size_t i = 0; i < 2 * spikes; ++i) {
        const double angle = M_PI * static_cast<double>(i) / static_cast<double>(spikes);
        const double r = (i % 2 == 0 ? outer : inner) * jitter(random);
        ring.push_back({cx + r * std::cos(angle), cy + r * std::sin(angle)});
    }
    return ring;
}

TEST(PointLocator, TablesHoldAtMost17BytesPerEdge) {
    std::mt19937_64 random(7);
    const std::vector<std::vector<Ring>> shapes = {
        {star(random, 2000, 99, 100, 0, 0)},                             // a blob
        {star(random, 2000, 10, 100, 0, 0)},                             // a spiky star
        {star(random, 500, 50, 60, 0, 0), star(random, 50, 5, 20, 0, 0)}  // with a hole
    };
    for (const std::vector<Ring>& rings : shapes) {
        const Located locatorRings(rings);
        const PointLocator& locator = locatorRings.locator;
        const std::size_t edges = locator.edgeCount();
        EXPECT_LE(locator.memoryBytes(), 36 * edges + 64 * rings.size()) << edges;
        EXPECT_GE(locator.bandCount(), 1u);
        EXPECT_LE(locator.bandCount(), edges / 4);
    }
}

// Probes: random points over the bounds and a margin, every vertex, and points on axis-aligned
// lines through vertices (rays through vertices).
std::vector<xcVector<2>> probes(std::mt19937_64& random, const std::vector<Ring>& rings,
                                std::size_t count) {
    std::uniform_real_distribution<double> coordinate(-120, 120);
    std::vector<xcVector<2>> points;
    for (std::size_t i = 0; i < count; ++i)
        points.push_back({coordinate(random), coordinate(random)});
    for (const Ring& ring : rings)
        for (const xcVector<2>& v : ring) {
            points.push_back(v);
            points.push_back({v.x() + 0.5, v.y()});
            points.push_back({v.x() - 0.5, v.y()});
        }
    return points;
}

TEST(PointLocator, AgreesWithTheRingByRingLocationOnSeededShapes) {
#ifdef CNTR_TESTS_SANITIZED
    constexpr int kShapes = 20;
#else
    constexpr int kShapes = 200;
#endif
    std::mt19937_64 random(2026);
    std::uniform_int_distribution<std::size_t> spikes(3, 300);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int s = 0; s < kShapes; ++s) {
        std::vector<Ring> rings = {star(random, spikes(random), 20 + 70 * unit(random), 100, 0, 0)};
        // Holes and islands, some crossing the others: the even-odd rule reads them all.
        const int extra = static_cast<int>(unit(random) * 4);
        for (int h = 0; h < extra; ++h)
            rings.push_back(star(random, spikes(random) / 4 + 3, 3 + 5 * unit(random), 15,
                                 -40 + 80 * unit(random), -40 + 80 * unit(random)));
        // Integer coordinates on some shapes, so that vertices, edges and probes share heights.
        if (s % 3 == 0)
            for (Ring& ring : rings)
                for (xcVector<2>& v : ring)
                    v = {std::round(v.x()), std::round(v.y())};
        const Located locatorRings(rings);
        const PointLocator& locator = locatorRings.locator;
        for (const xcVector<2>& p : probes(random, rings, 200)) {
            const xcVector<2> q = s % 3 == 0 ? xcVector<2>(std::round(p.x()), std::round(p.y())) : p;
            ASSERT_EQ(locator.locate(q), referenceLocation(rings, q))
                << "shape " << s << " point (" << q.x() << ", " << q.y() << ")";
        }
    }
}

}  // namespace
