// Area and centre of mass of vertex lists.
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/moments.h>
#include <foundation/angle.h>
#include <foundation/exception.h>
#include <foundation/geometry.h>

#include "moments_test_support.h"

namespace {

using moments_test::Points;
using moments_test::rectangle;
using moments_test::reversed;

// The centroid is found through line intersections, so it carries rounding.
constexpr double kTol = 1e-12;

std::vector<xcEdgelet> edgeletsAt(const Points& points) {
    std::vector<xcEdgelet> out;
    for (const xcVector<2>& p : points)
        out.emplace_back(p, std::uint16_t{7}, xcAngle8(3));
    return out;
}

void expectVectorNear(const xcVector<2>& actual, double x, double y) {
    EXPECT_NEAR(actual.x(), x, kTol);
    EXPECT_NEAR(actual.y(), y, kTol);
}

TEST(MomentsArea, UnitSquareCounterClockwise) {
    EXPECT_EQ(xf_Area(rectangle(0, 0, 1, 1)), 1.0);
}

TEST(MomentsArea, UnitSquareClockwiseIsPositiveToo) {
    EXPECT_EQ(xf_Area(reversed(rectangle(0, 0, 1, 1))), 1.0);
}

TEST(MomentsArea, RightTriangleBothOrientations) {
    const Points t{{0, 0}, {4, 0}, {0, 3}};  // legs 4 and 3: area 4 * 3 / 2 = 6
    EXPECT_EQ(xf_Area(t), 6.0);
    EXPECT_EQ(xf_Area(reversed(t)), 6.0);
}

TEST(MomentsArea, ConcaveLShapeBothOrientations) {
    // A 2 x 1 bar plus a 1 x 1 square on top of its left half: area 2 + 1 = 3.
    const Points l{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    EXPECT_EQ(xf_Area(l), 3.0);
    EXPECT_EQ(xf_Area(reversed(l)), 3.0);
}

TEST(MomentsArea, OffsetRectangle) {
    EXPECT_EQ(xf_Area(rectangle(10, 20, 13, 24)), 12.0);  // 3 * 4
}

TEST(MomentsArea, OnePointAndTwoPointsGiveZero) {
    EXPECT_EQ(xf_Area(Points{{3, 4}}), 0.0);
    EXPECT_EQ(xf_Area(Points{{0, 0}, {1, 0}}), 0.0);
    EXPECT_EQ(xf_Area(Points{{2, 5}, {7, -1}}), 0.0);  // cross terms cancel: -37 + 37
}

TEST(MomentsArea, EmptyListGivesZero) {
    EXPECT_EQ(xf_Area(Points{}), 0.0);
}

TEST(MomentsArea, CollinearPointsGiveZero) {
    // Crosses of (3,2)x(1,0), (1,0)x(2,1), (2,1)x(3,2): -2 + 1 + 1 = 0.
    EXPECT_EQ(xf_Area(Points{{1, 0}, {2, 1}, {3, 2}}), 0.0);
}

TEST(MomentsArea, BowTieLobesCancel) {
    // Crosses: (0,2)x(0,0) = 0, (0,0)x(2,2) = 0, (2,2)x(2,0) = -4, (2,0)x(0,2) = 4.
    EXPECT_EQ(xf_Area(Points{{0, 0}, {2, 2}, {2, 0}, {0, 2}}), 0.0);
}

TEST(MomentsArea, RepeatedVertexChangesNothing) {
    EXPECT_EQ(xf_Area(Points{{0, 0}, {1, 0}, {1, 0}, {1, 1}, {0, 1}}), 1.0);
}

TEST(MomentsArea, EdgeletOverloadUsesPositions) {
    EXPECT_EQ(xf_Area(edgeletsAt(rectangle(10, 20, 13, 24))), 12.0);
    EXPECT_EQ(xf_Area(edgeletsAt(reversed(rectangle(10, 20, 13, 24)))), 12.0);
}

TEST(MomentsArea, EdgeletOverloadBelowThreeIsZero) {
    EXPECT_EQ(xf_Area(std::vector<xcEdgelet>{}), 0.0);
    EXPECT_EQ(xf_Area(edgeletsAt(Points{{0, 0}})), 0.0);
    EXPECT_EQ(xf_Area(edgeletsAt(Points{{0, 0}, {1, 0}})), 0.0);
}

TEST(MomentsArea, NanCoordinateGivesNan) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(xf_Area(Points{{0, 0}, {nan, 0}, {1, 1}})));
}

TEST(MomentsArea, IntegerOctagonSumsExactly) {
    // Every cross product of consecutive vertices is 6: area 8 * 6 / 2.
    const Points octagon{{3, 0}, {2, 2}, {0, 3}, {-2, 2}, {-3, 0}, {-2, -2}, {0, -3}, {2, -2}};
    EXPECT_EQ(xf_Area(octagon), 24.0);
    EXPECT_EQ(xf_Area(reversed(octagon)), 24.0);
}

TEST(MomentsCenterOfMass, UnitSquareBothOrientations) {
    expectVectorNear(xnContour::centerOfMass(rectangle(0, 0, 1, 1)), 0.5, 0.5);
    expectVectorNear(xnContour::centerOfMass(reversed(rectangle(0, 0, 1, 1))), 0.5, 0.5);
}

TEST(MomentsCenterOfMass, RightTriangleBothOrientations) {
    const Points t{{0, 0}, {4, 0}, {0, 3}};  // mean of the corners: (4/3, 1)
    expectVectorNear(xnContour::centerOfMass(t), 4.0 / 3.0, 1.0);
    expectVectorNear(xnContour::centerOfMass(reversed(t)), 4.0 / 3.0, 1.0);
}

TEST(MomentsCenterOfMass, ConcaveLShapeBothOrientations) {
    // Bar [0,2]x[0,1]: area 2 at (1, 0.5); square [0,1]x[1,2]: area 1 at (0.5, 1.5).
    // cx = (2 * 1 + 1 * 0.5) / 3 = 5/6, cy = (2 * 0.5 + 1 * 1.5) / 3 = 5/6.
    const Points l{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    expectVectorNear(xnContour::centerOfMass(l), 5.0 / 6.0, 5.0 / 6.0);
    expectVectorNear(xnContour::centerOfMass(reversed(l)), 5.0 / 6.0, 5.0 / 6.0);
}

TEST(MomentsCenterOfMass, OffsetRectangleBothOrientations) {
    expectVectorNear(xnContour::centerOfMass(rectangle(10, 20, 13, 24)), 11.5, 22.0);
    expectVectorNear(xnContour::centerOfMass(reversed(rectangle(10, 20, 13, 24))), 11.5, 22.0);
}

TEST(MomentsCenterOfMass, PolygonThroughOriginSkipsZeroCrossEdges) {
    // The edges at the origin have cross product 0 and are skipped; the rest still give the
    // centroid (1, 1) of the square [0,2]^2.
    expectVectorNear(xnContour::centerOfMass(rectangle(0, 0, 2, 2)), 1.0, 1.0);
}

TEST(MomentsCenterOfMass, TwoPointsOrFewerGiveZeroVector) {
    EXPECT_EQ(xnContour::centerOfMass(Points{}), xcVector<2>());
    EXPECT_EQ(xnContour::centerOfMass(Points{{3, 4}}), xcVector<2>());
    EXPECT_EQ(xnContour::centerOfMass(Points{{0, 0}, {1, 0}}), xcVector<2>());
    EXPECT_EQ(xnContour::centerOfMass(Points{{5, 6}, {7, 9}}), xcVector<2>());
}

TEST(MomentsCenterOfMass, CollinearPointsGiveZeroNotTheMean) {
    // The mean is (2, 1); the summed crosses are -2 + 1 + 1 = 0.
    EXPECT_EQ(xnContour::centerOfMass(Points{{1, 0}, {2, 1}, {3, 2}}), xcVector<2>());
    // Points on a line through the origin: every cross is 0, every edge skipped.
    EXPECT_EQ(xnContour::centerOfMass(Points{{1, 1}, {2, 2}, {5, 5}}), xcVector<2>());
}

TEST(MomentsCenterOfMass, SummedWeightBelowToleranceGivesZeroVector) {
    // Triangle of doubled area 4e-7 (< 1e-6): base 2e-4 along x, height 2e-3, at (1, 1).
    const Points tiny{{1, 1}, {1.0002, 1}, {1, 1.002}};
    EXPECT_EQ(xnContour::centerOfMass(tiny), xcVector<2>());
}

TEST(MomentsCenterOfMass, BowTieGivesZeroVector) {
    EXPECT_EQ(xnContour::centerOfMass(Points{{0, 0}, {2, 2}, {2, 0}, {0, 2}}), xcVector<2>());
}

TEST(MomentsCenterOfMass, FreeFunctionForwards) {
    const Points l{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    EXPECT_EQ(xf_CenterOfMass(l), xnContour::centerOfMass(l));
    EXPECT_EQ(xf_CenterOfMass(Points{{0, 0}, {1, 0}}), xcVector<2>());
}

TEST(MomentsCenterOfMass, EdgeletOverloadUsesPositions) {
    expectVectorNear(xf_CenterOfMass(edgeletsAt(rectangle(10, 20, 13, 24))), 11.5, 22.0);
    EXPECT_EQ(xf_CenterOfMass(edgeletsAt(Points{{0, 0}, {1, 0}})), xcVector<2>());
    EXPECT_EQ(xf_CenterOfMass(std::vector<xcEdgelet>{}), xcVector<2>());
}

TEST(MomentsCenterOfMass, NanCoordinateGivesNanWithoutThrowing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    xcVector<2> c;
    ASSERT_NO_THROW(c = xnContour::centerOfMass(Points{{0, 0}, {nan, 0}, {1, 1}, {0, 1}}));
    EXPECT_TRUE(std::isnan(c.x()));
    EXPECT_TRUE(std::isnan(c.y()));
}

TEST(MomentsCenterOfMass, InfiniteCoordinateDoesNotThrow) {
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_NO_THROW(xnContour::centerOfMass(Points{{0, 0}, {inf, 0}, {1, 1}}));
}

TEST(MomentsCenterOfMass, ParallelMediansOfAThinFanTriangleThrowSingular) {
    // Fan triangle (origin, (1e8, 0), (1e8, 1e-7)): doubled area 10, but the medians from the
    // origin and from (1e8, 0) differ in direction by about 1.5e-15 rad, below the foundation's
    // 1e-12 parallel tolerance, so their crossing cannot be taken.
    const xcVector<2> a(1e8, 0), b(1e8, 1e-7);
    const xcLine m1 = xcLineSeg(xcVector<2>(), (a + b) / 2.0).line();
    const xcLine m2 = xcLineSeg(a, b / 2.0).line();
    ASSERT_TRUE(m1.isParallel(m2));
    moments_test::expectSingular(
        [&a, &b] {
            xnContour::centerOfMass(Points{{0, 0}, a, b});
        },
        L"parallel lines do not intersect");
}

}  // namespace
