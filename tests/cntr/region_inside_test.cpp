#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include <cntr/region.h>

#include "region_testing.h"

namespace {

// The L-shape (0,0), (2,0), (2,1), (1,1), (1,2), (0,2): the unit square (1,1)-(2,2) is cut out.
Points lShape() {
    return {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
}

// ---- an independent containment check for the random comparison ----

// Plain even-odd test: a horizontal ray to +x, counting the edges that straddle the point's y
// (half-open, so a vertex on the ray's line is counted once).
bool evenOddInside(const Points& p, const xcVector<2>& q) {
    bool in = false;
    for (std::size_t i = 0, j = p.size() - 1; i < p.size(); j = i++) {
        const xcVector<2>& a = p[i];
        const xcVector<2>& b = p[j];
        if ((a.y() > q.y()) != (b.y() > q.y())) {
            const double x = a.x() + (q.y() - a.y()) * (b.x() - a.x()) / (b.y() - a.y());
            if (q.x() < x)
                in = !in;
        }
    }
    return in;
}

// Distance from q to the segment a-b, by clamped projection.
double segmentDistance(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& q) {
    const double dx = b.x() - a.x();
    const double dy = b.y() - a.y();
    const double len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? ((q.x() - a.x()) * dx + (q.y() - a.y()) * dy) / len2 : 0.0;
    t = std::min(1.0, std::max(0.0, t));
    return std::hypot(q.x() - (a.x() + t * dx), q.y() - (a.y() + t * dy));
}

double boundaryDistance(const Points& p, const xcVector<2>& q) {
    double d = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < p.size(); ++i)
        d = std::min(d, segmentDistance(p[i], p[(i + 1) % p.size()], q));
    return d;
}

// Whether the closed segments a-b and c-d meet (orientation test; touching counts).
bool segmentsMeet(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c,
                  const xcVector<2>& d) {
    const auto orient = [](const xcVector<2>& o, const xcVector<2>& u, const xcVector<2>& v) {
        const double x = (u.x() - o.x()) * (v.y() - o.y()) - (u.y() - o.y()) * (v.x() - o.x());
        return (x > 0) - (x < 0);
    };
    const auto onSegment = [](const xcVector<2>& o, const xcVector<2>& u, const xcVector<2>& v) {
        return std::min(o.x(), u.x()) <= v.x() && v.x() <= std::max(o.x(), u.x()) &&
               std::min(o.y(), u.y()) <= v.y() && v.y() <= std::max(o.y(), u.y());
    };
    const int o1 = orient(a, b, c), o2 = orient(a, b, d), o3 = orient(c, d, a),
              o4 = orient(c, d, b);
    if (o1 != o2 && o3 != o4)
        return true;
    return (o1 == 0 && onSegment(a, b, c)) || (o2 == 0 && onSegment(a, b, d)) ||
           (o3 == 0 && onSegment(c, d, a)) || (o4 == 0 && onSegment(c, d, b));
}

// Whether two non-adjacent edges of the closed polygon meet.
bool selfCrossing(const Points& p) {
    const std::size_t n = p.size();
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = i + 1; j < n; ++j) {
            if (j == i + 1 || (i == 0 && j == n - 1))
                continue;
            if (segmentsMeet(p[i], p[(i + 1) % n], p[j], p[(j + 1) % n]))
                return true;
        }
    return false;
}

// A star-shaped polygon about (50, 50): sorted random angles, radii in [5, 45).
Points randomStarPolygon(std::mt19937& gen, int n) {
    std::uniform_real_distribution<double> angle(0.0, 2.0 * xcPi);
    std::uniform_real_distribution<double> radius(5.0, 45.0);
    std::vector<double> angles(static_cast<std::size_t>(n));
    for (double& a : angles)
        a = angle(gen);
    std::sort(angles.begin(), angles.end());
    Points p;
    for (double a : angles) {
        const double r = radius(gen);
        p.emplace_back(50.0 + r * std::cos(a), 50.0 + r * std::sin(a));
    }
    return p;
}

// A simple polygon through random points in [0, 100)^2: a random order untangled by 2-opt
// moves (reversing the path between two crossing edges shortens the outline, so the moves end).
Points randomUntangledPolygon(std::mt19937& gen, int n) {
    std::uniform_real_distribution<double> coord(0.0, 100.0);
    Points p;
    for (int i = 0; i < n; ++i)
        p.emplace_back(coord(gen), coord(gen));
    const std::size_t m = p.size();
    for (int pass = 0; pass < 10000; ++pass) {
        bool moved = false;
        for (std::size_t i = 0; i + 2 < m && !moved; ++i)
            for (std::size_t j = i + 2; j < m && !moved; ++j) {
                if (i == 0 && j == m - 1)
                    continue;
                if (segmentsMeet(p[i], p[i + 1], p[j], p[(j + 1) % m])) {
                    std::reverse(p.begin() + static_cast<long>(i) + 1,
                                 p.begin() + static_cast<long>(j) + 1);
                    moved = true;
                }
            }
        if (!moved)
            break;
    }
    return p;
}

#ifdef CNTR_TESTS_SANITIZED
// The sanitizers slow the library down by an order of magnitude: fewer samples, same checks.
constexpr int kRandomPolygons = 50;
constexpr int kPointsPerPolygon = 1000;
#else
constexpr int kRandomPolygons = 500;
constexpr int kPointsPerPolygon = 10000;
#endif

}  // namespace

// ---- squares ----

TEST(RegionInside, UnitSquareCentreIsInside) {
    // Vertex directions from (0.5, 0.5): pi/4, 3pi/4, 5pi/4, 7pi/4; the threshold is pi/4 and the
    // first gap (pi/2) exceeds it, so the ray runs straight up and crosses the top edge once.
    const xcRegion r(unitSquare());
    EXPECT_TRUE(r.inside(xcVector<2>(0.5, 0.5), false));
    EXPECT_TRUE(r.inside(xcVector<2>(0.5, 0.5), true));
}

TEST(RegionInside, PointsInsideAndOutsideSquare) {
    const xcRegion r(square(-2, -2, 4));
    EXPECT_TRUE(r.inside(xcVector<2>(1.9, -1.9), false));
    EXPECT_TRUE(r.inside(xcVector<2>(0, 0), false));
    EXPECT_FALSE(r.inside(xcVector<2>(2.1, 0), false));
    EXPECT_FALSE(r.inside(xcVector<2>(0, -3), false));
}

TEST(RegionInside, ClockwiseSquareGivesSameAnswers) {
    const xcRegion r(clockwiseSquare(0, 0, 1));
    EXPECT_TRUE(r.inside(xcVector<2>(0.3, 0.7), false));
    EXPECT_FALSE(r.inside(xcVector<2>(1.3, 0.7), false));
}

TEST(RegionInside, PointOnVertexIsInside) {
    const xcRegion r(unitSquare());
    EXPECT_TRUE(r.inside(xcVector<2>(1, 1), false));
    EXPECT_TRUE(r.inside(xcVector<2>(0, 0), false));
}

TEST(RegionInside, PointWithinToleranceOfVertexOutsideOutlineIsInside) {
    // (2 - 1e-7, 8e-7) lies beyond the hypotenuse x + y = 2 of the triangle, inside its bounding
    // rectangle, at sqrt(1e-14 + 6.4e-13) ~ 8.1e-7 from the vertex (2, 0): counted as on it.
    const xcRegion r(Points{{0, 0}, {2, 0}, {0, 2}});
    EXPECT_TRUE(r.inside(xcVector<2>(2 - 1e-7, 8e-7), false));
    // At 2e-6 from the vertex the point is outside.
    EXPECT_FALSE(r.inside(xcVector<2>(2 - 1e-7, 2e-6), false));
}

TEST(RegionInside, PointNearVertexButOutsideRectangleIsOutside) {
    // The rectangle test comes first: (1 + 5e-7, 1) is within 1e-6 of (1, 1) but outside.
    const xcRegion r(unitSquare());
    EXPECT_FALSE(r.inside(xcVector<2>(1 + 5e-7, 1), false));
}

TEST(RegionInside, PointJustInsideEdgeIsInside) {
    // From (0.5, 1e-7) the ray runs up (the first gap wider than pi/4 lies between the
    // directions to (1,1) and (0,1)); the bottom edge passes within 1e-6 of the ray's start and
    // is ignored; the top edge is crossed once.
    const xcRegion r(unitSquare());
    EXPECT_TRUE(r.inside(xcVector<2>(0.5, 1e-7), false));
}

TEST(RegionInside, PointJustOutsideEdgeButInsideRectangleFollowsOtherEdges) {
    // (0.5, -1e-7) is not inside the rectangle [0,1]^2: answered 0 at once.
    const xcRegion r(unitSquare());
    EXPECT_FALSE(r.inside(xcVector<2>(0.5, -1e-7), false));
    // In a triangle, (1, 1 + 1e-7) lies outside the hypotenuse from (2,0) to (0,2) by
    // 1e-7 / sqrt 2, inside the rectangle [0,2]^2 and 1e-7 from no vertex. Directions from it:
    // to (0,0) about 5pi/4, to (2,0) about 7pi/4, to (0,2) about 3pi/4; sorted 3pi/4, 5pi/4,
    // 7pi/4, threshold pi/3. The first gap (pi/2) exceeds it: the ray runs along pi, to the
    // left, and crosses the edge x = 0 once. The hypotenuse is ignored (near the start), so the
    // count is 1: inside.
    const xcRegion t(Points{{0, 0}, {2, 0}, {0, 2}});
    EXPECT_TRUE(t.inside(xcVector<2>(1, 1 + 1e-7), false));
}

TEST(RegionInside, FarPointCostsNoRayWork) {
    RegionProbe r(square(0, 0, 1));
    EXPECT_FALSE(r.inside(xcVector<2>(5, 5), false));
    // No edge cache and no diameter were computed.
    EXPECT_FALSE(r.cacheState().edges.valid);
    EXPECT_FALSE(r.cacheState().encloseCircle[1].valid);
    EXPECT_TRUE(r.inside(xcVector<2>(0.5, 0.5), false));
    EXPECT_TRUE(r.cacheState().edges.valid);
    EXPECT_TRUE(r.cacheState().encloseCircle[1].valid);
}

// ---- concave outlines ----

TEST(RegionInside, LShape) {
    const xcRegion r(lShape());
    EXPECT_TRUE(r.inside(xcVector<2>(0.5, 0.5), false));
    EXPECT_TRUE(r.inside(xcVector<2>(1.5, 0.5), false));
    EXPECT_TRUE(r.inside(xcVector<2>(0.5, 1.5), false));
    EXPECT_FALSE(r.inside(xcVector<2>(1.5, 1.5), false));  // the notch, inside the rectangle
    EXPECT_FALSE(r.inside(xcVector<2>(1.9, 1.1), false));
    EXPECT_FALSE(r.inside(xcVector<2>(3, 0.5), false));
}

TEST(RegionInside, RayThatWouldGrazeVerticesIsTurnedAway) {
    // A sawtooth floor (0,0), (1,1), (2,0), (3,1), (4,0) under a roof at y = 3. A ray to +x from
    // (0.5, 1) would run through the tooth tips (1,1) and (3,1).
    const xcRegion r(Points{{0, 0}, {1, 1}, {2, 0}, {3, 1}, {4, 0}, {4, 3}, {0, 3}});
    EXPECT_TRUE(r.inside(xcVector<2>(0.5, 1), false));   // the floor is at y = 0.5 there
    EXPECT_TRUE(r.inside(xcVector<2>(2, 0.5), false));   // the floor is at y = 0 there
    EXPECT_FALSE(r.inside(xcVector<2>(1, 0.5), false));  // the floor is at y = 1 there
    EXPECT_FALSE(r.inside(xcVector<2>(3, 0.9), false));
}

// ---- holes and islands ----

TEST(RegionInside, PointInHoleDependsOnFlag) {
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{regionOf(square(4, 4, 2))});
    EXPECT_FALSE(r.inside(xcVector<2>(5, 5), true));
    EXPECT_TRUE(r.inside(xcVector<2>(5, 5), false));
    EXPECT_TRUE(r.inside(xcVector<2>(2, 2), true));
    EXPECT_FALSE(r.inside(xcVector<2>(12, 5), true));
}

TEST(RegionInside, SecondHoleIsAskedToo) {
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{regionOf(square(1, 1, 2)), regionOf(square(6, 6, 2))});
    EXPECT_FALSE(r.inside(xcVector<2>(7, 7), true));
    EXPECT_FALSE(r.inside(xcVector<2>(2, 2), true));
    EXPECT_TRUE(r.inside(xcVector<2>(5, 5), true));
}

TEST(RegionInside, IslandInsideHoleIsInside) {
    // Outline 10 x 10; hole (2,2)-(8,8) with its own hole, the island (4,4)-(6,6).
    const RegionHandle hole = regionOf(square(2, 2, 6));
    hole->holes(std::vector<RegionHandle>{regionOf(square(4, 4, 2))});
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{hole});
    EXPECT_TRUE(r.inside(xcVector<2>(5, 5), true));   // on the island
    EXPECT_FALSE(r.inside(xcVector<2>(3, 3), true));  // in the hole, off the island
    EXPECT_TRUE(r.inside(xcVector<2>(1, 1), true));   // between outline and hole
    EXPECT_TRUE(r.inside(xcVector<2>(3, 3), false));
}

TEST(RegionInside, HoleInIslandInHole) {
    // Three levels below the outline: hole, island, and a hole in the island at
    // (4.5,4.5)-(5.5,5.5).
    const RegionHandle island = regionOf(square(4, 4, 2));
    island->holes(std::vector<RegionHandle>{regionOf(square(4.5, 4.5, 1))});
    const RegionHandle hole = regionOf(square(2, 2, 6));
    hole->holes(std::vector<RegionHandle>{island});
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{hole});
    EXPECT_FALSE(r.inside(xcVector<2>(5, 5), true));
    EXPECT_TRUE(r.inside(xcVector<2>(4.25, 4.25), true));
}

TEST(RegionInside, HoleOutsideOutlineChangesNothingOutside) {
    xcRegion r(square(0, 0, 2));
    r.holes(std::vector<RegionHandle>{regionOf(square(5, 5, 2))});
    EXPECT_FALSE(r.inside(xcVector<2>(6, 6), true));
    EXPECT_TRUE(r.inside(xcVector<2>(1, 1), true));
}

// ---- degenerate outlines ----

TEST(RegionInside, TwoVertexOutline) {
    // From (1, 0) the ray runs up (gap 0 -> pi); both edges lie on the ray's start: count 0.
    const xcRegion r(Points{{0, 0}, {2, 0}});
    EXPECT_FALSE(r.inside(xcVector<2>(1, 0), false));
    EXPECT_TRUE(r.inside(xcVector<2>(2, 0), false));  // on a vertex
}

TEST(RegionInside, FewerThanTwoVerticesThrowEmptyContour) {
    const xcRegion empty;
    expectEmptyContour([&] { empty.inside(xcVector<2>(0, 0), false); });
    const xcRegion one(Points{{0, 0}});
    expectEmptyContour([&] { one.inside(xcVector<2>(0, 0), true); });
}

TEST(RegionInside, CollinearOutline) {
    // (1, 0) is a vertex: inside. (0.5, 0): the ray runs up, every edge lies on its start: 0.
    const xcRegion r(Points{{0, 0}, {1, 0}, {2, 0}});
    EXPECT_TRUE(r.inside(xcVector<2>(1, 0), false));
    EXPECT_FALSE(r.inside(xcVector<2>(0.5, 0), false));
    EXPECT_FALSE(r.inside(xcVector<2>(0.5, 1), false));
}

TEST(RegionInside, RepeatedAndCollinearVerticesOfSquare) {
    const xcRegion r(Points{
        {0, 0}, {0, 0}, {0.5, 0}, {1, 0}, {1, 0.5}, {1, 1}, {1, 1}, {0.5, 1}, {0, 1}, {0, 0.5}});
    EXPECT_TRUE(r.inside(xcVector<2>(0.25, 0.5), false));
    EXPECT_TRUE(r.inside(xcVector<2>(0.5, 0.5), false));
    EXPECT_TRUE(r.inside(xcVector<2>(0.75, 0.2), false));
    EXPECT_FALSE(r.inside(xcVector<2>(1.5, 0.5), false));
}

TEST(RegionInside, NaNPointIsOutside) {
    const xcRegion r(unitSquare());
    EXPECT_FALSE(r.inside(xcVector<2>(std::nan(""), 0.5), false));
    EXPECT_FALSE(r.inside(xcVector<2>(0.5, std::nan("")), true));
}

TEST(RegionInside, NaNVertexNeitherThrowsNorHangs) {
    const xcRegion r(Points{{0, 0}, {std::nan(""), 0}, {1, 1}, {0, 1}});
    EXPECT_NO_THROW(r.inside(xcVector<2>(0.5, 0.5), false));
    EXPECT_NO_THROW(r.inside(xcVector<2>(5, 5), true));
}

TEST(RegionInside, InfiniteCoordinatesNeitherThrowNorHang) {
    const double inf = std::numeric_limits<double>::infinity();
    const xcRegion r(Points{{0, 0}, {inf, 0}, {1, 1}});
    EXPECT_NO_THROW(r.inside(xcVector<2>(0.5, 0.25), false));
    const xcRegion square1(unitSquare());
    EXPECT_FALSE(square1.inside(xcVector<2>(inf, 0.5), false));
}

// ---- the independent random check ----

TEST(RegionInside, AgreesWithEvenOddTestOnRandomSimplePolygons) {
    std::mt19937 gen(2024);
    std::uniform_int_distribution<int> vertexCount(3, 24);
    // Points are drawn from a square a little larger than the polygons' extent, so some fall
    // outside the bounding rectangles too.
    std::uniform_real_distribution<double> coord(-5.0, 105.0);
    long compared = 0;
    long disagreements = 0;
    for (int trial = 0; trial < kRandomPolygons; ++trial) {
        // Star polygons whose angles leave a gap above pi can cross themselves: drawn again.
        Points p;
        for (int attempt = 0; attempt < 100 && (p.empty() || selfCrossing(p)); ++attempt) {
            const int n = vertexCount(gen);
            p = trial % 2 == 0 ? randomStarPolygon(gen, n) : randomUntangledPolygon(gen, n);
        }
        ASSERT_FALSE(selfCrossing(p)) << "trial " << trial << " is not simple";
        const xcRegion region(p);
        for (int k = 0; k < kPointsPerPolygon; ++k) {
            const xcVector<2> q(coord(gen), coord(gen));
            if (boundaryDistance(p, q) <= 1e-6)
                continue;
            ++compared;
            if (region.inside(q, true) != evenOddInside(p, q)) {
                ++disagreements;
                ADD_FAILURE() << "trial " << trial << ", point (" << q.x() << ", " << q.y() << ")";
                if (disagreements > 10)
                    return;
            }
        }
    }
    EXPECT_GT(compared, static_cast<long>(kRandomPolygons) * kPointsPerPolygon * 9 / 10);
}
