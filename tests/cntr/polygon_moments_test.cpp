// The true moments of cntr::Polygon and cntr::MultiPolygon against exact rational integrals
// (exact_moments.h, a quadrature independent of Green's theorem): hand-made shapes with holes,
// touching holes and islands, either orientation, seeded shapes near and far from the origin,
// and the invariance of the Hu invariants.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/area_moments.h>
#include <cntr/polygon.h>
#include <cntr/region.h>
#include <foundation/exception.h>
#include <foundation/random.h>

#include "exact_moments.h"
#include "moments_test_support.h"

namespace {

using cntr::AreaMoments;
using cntr::MultiPolygon;
using cntr::Polygon;
using cntr::Ring;
using moments_test::starPolygon;

Ring reversed(const Ring& r) { return Ring(r.rbegin(), r.rend()); }

std::array<double, 10> rawOf(const AreaMoments& m) {
    return {m.m00, m.m10, m.m01, m.m20, m.m11, m.m02, m.m30, m.m21, m.m12, m.m03};
}

std::array<double, 7> centralOf(const AreaMoments& m) {
    return {m.mu20, m.mu11, m.mu02, m.mu30, m.mu21, m.mu12, m.mu03};
}

// Every raw moment within `bound` relative of the exact one.
void expectRawNear(const AreaMoments& m, const ExactMoments& exact, double bound) {
    const auto raw = rawOf(m);
    for (std::size_t i = 0; i < raw.size(); ++i)
        EXPECT_LE(relativeError(raw[i], exact.m[i]), bound) << "raw moment " << i;
}

// The order p + q of the raw moments in the order of rawOf.
constexpr std::array<int, 10> kOrder = {0, 1, 1, 2, 2, 2, 3, 3, 3, 3};

// Every raw moment within `bound` times its condition scale: the area times the largest
// coordinate magnitude to the moment's order, the size of the integral of |x|^p |y|^q, which a
// moment of mixed signs (an odd moment of a shape around the origin) can fall far below.
void expectRawWithinScale(const AreaMoments& m, const ExactMoments& exact, double extent,
                          double bound) {
    const auto raw = rawOf(m);
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const double scale = std::abs(exact.m[0].get_d()) * std::pow(extent, kOrder[i]);
        EXPECT_LE(std::abs(mpq_class(mpq_class(raw[i]) - exact.m[i]).get_d()), bound * scale)
            << "raw moment " << i;
    }
}

double largestMagnitude(const Polygon& polygon) {
    double largest = 0.0;
    for (std::size_t r = 0; r < polygon.ringCount(); ++r)
        for (const xcVector<2>& p : polygon.ring(r))
            largest = std::max({largest, std::abs(p.x()), std::abs(p.y())});
    return largest;
}

// ---- the oracle itself ----

TEST(ExactMomentsOracle, RightTriangleGivesTheBetaIntegrals) {
    // Over x, y >= 0, x + y <= 1 the integral of x^p y^q is p! q! / (p + q + 2)!.
    const ExactMoments m = exactTriangleMoments({0, 0}, {1, 0}, {0, 1});
    const std::array<mpq_class, 10> expected = {
        mpq_class(1, 2),  mpq_class(1, 6),  mpq_class(1, 6),  mpq_class(1, 12), mpq_class(1, 24),
        mpq_class(1, 12), mpq_class(1, 20), mpq_class(1, 60), mpq_class(1, 60), mpq_class(1, 20)};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(m.m[i], expected[i]) << "moment " << i;
}

TEST(ExactMomentsOracle, SquareGivesTheProductIntegrals) {
    // Over [1, 3] x [0, 2]: the integral of x^3 is (3^4 - 1) / 4 * 2 = 40, of x y^2 is 4 * 8/3.
    const ExactMoments m = exactRingMoments({{1, 0}, {3, 0}, {3, 2}, {1, 2}});
    EXPECT_EQ(m.m[0], 4);
    EXPECT_EQ(m.m[6], 40);
    EXPECT_EQ(m.m[8], mpq_class(32, 3));
}

// ---- hand-made shapes ----

TEST(PolygonMoments, SquareWithAHoleSubtractsTheHole) {
    // [0, 10]^2 minus [2, 4] x [3, 7]: area 100 - 8 = 92, m10 = 500 - 8 * 3 = 476,
    // m01 = 500 - 8 * 5 = 460, m20 = 1000/3 * 10 - (64 - 8)/3 * 4 = (10000 - 224)/3.
    const Ring outer{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const Ring hole{{2, 3}, {4, 3}, {4, 7}, {2, 7}};
    for (const Ring& h : {hole, reversed(hole)}) {
        for (const Ring& o : {outer, reversed(outer)}) {
            const AreaMoments m = Polygon(o, {h}).moments();
            EXPECT_NEAR(m.m00, 92, 1e-12);
            EXPECT_NEAR(m.m10, 476, 1e-12);
            EXPECT_NEAR(m.m01, 460, 1e-12);
            EXPECT_NEAR(m.m20, (10000.0 - 224.0) / 3, 1e-10);
            EXPECT_NEAR(m.area(), 92, 1e-12);
            EXPECT_NEAR(m.centroid().x(), 476.0 / 92, 1e-14);
            EXPECT_NEAR(m.centroid().y(), 460.0 / 92, 1e-14);
        }
    }
}

TEST(PolygonMoments, HoleTouchingTheExteriorIsNoSpecialCase) {
    // The hole's corner (0, 0) is the exterior's: 16 - 1 = 15, as exact.
    const Ring outer{{0, 0}, {4, 0}, {4, 4}, {0, 4}};
    const Ring hole{{0, 0}, {0, 1}, {1, 1}, {1, 0}};
    const Polygon polygon(outer, {hole});
    EXPECT_NEAR(polygon.moments().m00, 15, 1e-13);
    expectRawNear(polygon.moments(), exactPolygonMoments(outer, {hole}), 1e-15);
}

TEST(PolygonMoments, MatchExactCentralMomentsOfAnAsymmetricShape) {
    const Ring outer{{0, 0}, {7, 1}, {6, 5}, {3, 4}, {1, 6}};
    const Ring hole{{2, 2}, {3, 2}, {2.5, 3}};
    const AreaMoments m = Polygon(outer, {hole}).moments();
    const ExactMoments exact = exactPolygonMoments(outer, {hole});
    expectRawNear(m, exact, 1e-15);
    const auto central = exactCentralMoments(exact);
    const auto ours = centralOf(m);
    for (std::size_t i = 0; i < central.size(); ++i)
        EXPECT_LE(relativeError(ours[i], central[i]), 1e-13) << "central moment " << i;
}

TEST(PolygonMoments, EmptyPolygonHasZeroMomentsAndNoCentroid) {
    const AreaMoments m = Polygon().moments();
    EXPECT_EQ(m.m00, 0.0);
    EXPECT_EQ(m.m10, 0.0);
    EXPECT_EQ(m.nu20, 0.0);
    EXPECT_THROW(m.centroid(), xcMathError::Singular);
}

TEST(PolygonMoments, MultiPolygonAddsItsMembers) {
    // A frame (a square with a square hole) and an island in the hole: 36 - 16 + 4 = 24.
    const Ring outer{{0, 0}, {6, 0}, {6, 6}, {0, 6}};
    const Ring hole{{1, 1}, {5, 1}, {5, 5}, {1, 5}};
    const Ring island{{2, 2}, {4, 2}, {4, 4}, {2, 4}};
    const MultiPolygon shape({Polygon(outer, {hole}), Polygon(island)});
    ExactMoments exact = exactPolygonMoments(outer, {hole});
    exact += exactPolygonMoments(island, {});
    expectRawNear(shape.moments(), exact, 1e-15);
    EXPECT_EQ(shape.moments().centroid().x(), 3.0);
    EXPECT_EQ(MultiPolygon().moments().m00, 0.0);
}

TEST(PolygonMoments, RegionsReachThemThroughTheirConversion) {
    // A 6 x 6 square with a 4 x 4 hole: 36 - 16 = 20.
    xcRegion region(Ring{{0, 0}, {6, 0}, {6, 6}, {0, 6}});
    const std::vector<xcPtrHandle<xcRegion>> holes{
        xcPtrHandle<xcRegion>(new xcRegion(Ring{{1, 1}, {5, 1}, {5, 5}, {1, 5}}))};
    region.holes(holes);
    EXPECT_NEAR(MultiPolygon::fromRegion(region).moments().m00, 20, 1e-13);
}

// ---- seeded shapes against exact ----

#ifdef CNTR_TESTS_SANITIZED
constexpr int kSeededShapes = 1000;
#else
constexpr int kSeededShapes = 10000;
#endif

// A star-shaped outline about `centre` with a star-shaped hole around it. The outline has at
// least 12 vertices at radii of at least radius / 2, consecutive ones less than 57 degrees apart,
// so its edges keep a distance of at least 0.44 radius from the centre: the hole, within
// 0.3 radius, lies inside.
Polygon starWithHole(xcRandomUniform& random, const xcVector<2>& centre, double radius) {
    const auto outerCount = static_cast<std::size_t>(random.next(12, 40));
    const auto holeCount = static_cast<std::size_t>(random.next(3, 12));
    return Polygon(starPolygon(random, outerCount, centre, radius, 0.5),
                   {reversed(starPolygon(random, holeCount, centre, 0.3 * radius, 0.3))});
}

TEST(PolygonMoments, FarFromTheOriginAreaAndCentroidKeepThirteenDigits) {
    // Shapes whose extent is 1e-4 of their distance from the origin, where summing about (0, 0)
    // would cancel about 8 of the area's digits. Bound: 1e-13 relative for the area and for
    // each centroid coordinate (relative to that coordinate, which lies near the distance).
    xcRandomUniform random(2311);
    double worstArea = 0.0, worstCentroid = 0.0;
    for (int s = 0; s < kSeededShapes; ++s) {
        const double distance = std::pow(10.0, random.next(-3.0, 8.0));
        const double angle = random.next(0.0, 2.0 * xcPi);
        const xcVector<2> centre(distance * std::cos(angle), distance * std::sin(angle));
        const Polygon polygon = starWithHole(random, centre, 1e-4 * distance);
        const AreaMoments m = polygon.moments();
        const auto exact = exactPolygonFirstMoments(polygon.exterior(), polygon.holes());
        worstArea = std::max(worstArea, relativeError(m.m00, exact[0]));
        worstCentroid =
            std::max(worstCentroid, relativeError(m.centroid().x(), exact[1] / exact[0]));
        worstCentroid =
            std::max(worstCentroid, relativeError(m.centroid().y(), exact[2] / exact[0]));
    }
    EXPECT_LE(worstArea, 1e-13);
    EXPECT_LE(worstCentroid, 1e-13);
    std::ostringstream worst;
    worst << "area " << worstArea << ", centroid " << worstCentroid;
    RecordProperty("worstRelativeErrors", worst.str());
}

TEST(PolygonMoments, SeededShapesMatchExactRawAndCentralMoments) {
    // Star-shaped outlines and holes near the origin. Each raw moment is a sum of per-edge terms
    // each bounded by its condition scale (the area times the largest coordinate to the order);
    // a few dozen roundings per edge over at most 50 edges bound its error by about 1e-13 of
    // that scale. The central moments, computed about the bounds' centre, lose at most the
    // digits the shift to the centroid cancels; the shapes hold their centroid well inside, so
    // 1e-12 of the second-order scale (and of its power 3/2 over sqrt(m00) for order 3) holds.
    xcRandomUniform random(977);
    for (int s = 0; s < kSeededShapes / 10; ++s) {
        const xcVector<2> centre(random.next(-5, 5), random.next(-5, 5));
        const Polygon polygon = starWithHole(random, centre, random.next(0.5, 20));
        ASSERT_TRUE(polygon.isValid()) << "shape " << s;
        const AreaMoments m = polygon.moments();
        const ExactMoments exact = exactPolygonMoments(polygon.exterior(), polygon.holes());
        expectRawWithinScale(m, exact, largestMagnitude(polygon), 1e-13);
        const auto central = exactCentralMoments(exact);
        const auto ours = centralOf(m);
        // Second-order central moments relative to themselves; the third-order ones, which
        // vanish for symmetric shapes, relative to the scale mu20^(3/2) / sqrt(m00).
        const double scale3 = std::pow(m.mu20 + m.mu02, 1.5) / std::sqrt(m.m00);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_LE(relativeError(ours[i], central[i]) * std::abs(central[i].get_d()),
                      1e-12 * (m.mu20 + m.mu02))
                << "central moment " << i << " shape " << s;
        for (std::size_t i = 3; i < 7; ++i)
            EXPECT_LE(std::abs(ours[i] - central[i].get_d()), 1e-12 * scale3)
                << "central moment " << i << " shape " << s;
        if (HasFailure())
            return;
    }
}

// ---- invariants ----

TEST(PolygonMoments, HuInvariantsSurviveRotationScalingAndTranslation) {
    // A quarter turn (x, y) -> (-y, x), a scaling by 4 and a shift by (1024, -512) are exact
    // in floating point, so the invariants may differ only by the sums' roundings.
    xcRandomUniform random(5);
    for (int s = 0; s < 50; ++s) {
        const Polygon polygon = starWithHole(random, {random.next(-3, 3), 0}, 2.0);
        auto mapped = [](const Ring& r) {
            Ring out;
            for (const xcVector<2>& p : r)
                out.push_back({-4.0 * p.y() + 1024.0, 4.0 * p.x() - 512.0});
            return out;
        };
        std::vector<Ring> holes;
        for (const Ring& h : polygon.holes())
            holes.push_back(mapped(h));
        const AreaMoments a = polygon.moments();
        const AreaMoments b = Polygon(mapped(polygon.exterior()), holes).moments();
        const double scale = a.hu[0] * a.hu[0] * a.hu[0];
        for (std::size_t i = 0; i < 7; ++i)
            EXPECT_NEAR(b.hu[i], a.hu[i], 1e-10 * (i == 0 ? a.hu[0] : scale)) << "hu " << i;
    }
}

TEST(PolygonMoments, ReflectionFlipsTheSeventhInvariantAndKeepsTheOthers) {
    // An L of unequal arms has no mirror symmetry: hu[6] is about -0.0079.
    const Ring outer{{0, 0}, {10, 0}, {10, 1}, {1, 1}, {1, 6}, {0, 6}};
    Ring mirrored;
    for (const xcVector<2>& p : outer)
        mirrored.push_back({-p.x(), p.y()});
    const AreaMoments a = Polygon(outer).moments();
    const AreaMoments b = Polygon(mirrored).moments();
    ASSERT_GT(std::abs(a.hu[6]), 1e-3);
    EXPECT_NEAR(b.hu[6], -a.hu[6], 1e-12 * std::abs(a.hu[6]));
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(b.hu[i], a.hu[i], 1e-12 * std::abs(a.hu[i]) + 1e-300) << "hu " << i;
}

}  // namespace
