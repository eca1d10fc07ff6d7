#include <cmath>

#include <gtest/gtest.h>

#include <foundation/angle.h>
#include <foundation/vector.h>

#include "test_support.h"

namespace {

using V = xcVector<2>;

TEST(Pair, HoldsTwoValues) {
    const xcPair<long> cell(3, -4);  // column 3, row -4
    EXPECT_EQ(cell.x(), 3L);
    EXPECT_EQ(cell.y(), -4L);
    EXPECT_EQ(xcPair<double>().x(), 0.0);
    EXPECT_EQ(xcPair<double>().y(), 0.0);
    EXPECT_TRUE(xcPair<long>(1, 2) == xcPair<long>(1, 2));
    EXPECT_TRUE(xcPair<long>(1, 2) != xcPair<long>(2, 1));
}

TEST(Vector, DefaultIsOrigin) {
    const V v;
    EXPECT_EQ(v.x(), 0.0);
    EXPECT_EQ(v.y(), 0.0);
}

TEST(Vector, ComponentsAndIndexing) {
    V v(1.5, -2.0);
    EXPECT_EQ(v.x(), 1.5);
    EXPECT_EQ(v.y(), -2.0);
    EXPECT_EQ(v[0], 1.5);
    EXPECT_EQ(v[1], -2.0);
    v[0] = 7.0;
    v[1] = 8.0;
    EXPECT_EQ(v, V(7.0, 8.0));
}

TEST(Vector, FromGridCell) {
    const V v(xcPair<long>(5, -7));
    EXPECT_EQ(v, V(5.0, -7.0));
}

TEST(Vector, PolarAlongTheAxes) {
    // cos(pi/2) is 6.1e-17 rather than 0, hence the tolerance.
    EXPECT_TRUE(xfRealEq(V(2.0, xcRadian(0.0)), V(2.0, 0.0), 0.0));
    EXPECT_TRUE(xfRealEq(V(2.0, xcRadian(xcPi / 2.0)), V(0.0, 2.0), 1e-15));
    EXPECT_TRUE(xfRealEq(V(2.0, xcRadian(xcPi)), V(-2.0, 0.0), 1e-15));
    EXPECT_TRUE(xfRealEq(V(2.0, xcRadian(-xcPi / 2.0)), V(0.0, -2.0), 1e-15));
}

TEST(Vector, PolarAtThirtyDegrees) {
    // (cos 30, sin 30) = (sqrt(3)/2, 1/2); length 4 gives (2 sqrt 3, 2).
    const V v(4.0, xcRadian(xcDegree(30.0)));
    EXPECT_NEAR(v.x(), 2.0 * std::sqrt(3.0), 1e-14);
    EXPECT_NEAR(v.y(), 2.0, 1e-14);
}

TEST(Vector, PolarWithZeroAndNegativeLength) {
    EXPECT_EQ(V(0.0, xcRadian(1.0)), V(0.0, 0.0));
    // A negative length points the other way: -1 at 0 is (-1, 0).
    EXPECT_EQ(V(-1.0, xcRadian(0.0)), V(-1.0, 0.0));
}

TEST(Vector, PolarRoundTripsThroughLengthAndAngle) {
    const V v(3.0, xcRadian(2.0));
    EXPECT_NEAR(v.length(), 3.0, 1e-15);
    EXPECT_NEAR(v.angle().toDouble(), 2.0, 1e-15);
}

TEST(Vector, Arithmetic) {
    const V a(1.0, 2.0), b(3.0, -5.0);
    EXPECT_EQ(a + b, V(4.0, -3.0));
    EXPECT_EQ(a - b, V(-2.0, 7.0));
    EXPECT_EQ(-a, V(-1.0, -2.0));
    EXPECT_EQ(a * 3.0, V(3.0, 6.0));
    EXPECT_EQ(3.0 * a, V(3.0, 6.0));
    EXPECT_EQ(b / 2.0, V(1.5, -2.5));
}

TEST(Vector, CompoundAssignment) {
    V v(1.0, 1.0);
    v += V(2.0, 3.0);
    EXPECT_EQ(v, V(3.0, 4.0));
    v -= V(1.0, 1.0);
    EXPECT_EQ(v, V(2.0, 3.0));
    v *= 2.0;
    EXPECT_EQ(v, V(4.0, 6.0));
    v /= 4.0;
    EXPECT_EQ(v, V(1.0, 1.5));
}

TEST(Vector, Dot) {
    EXPECT_EQ(V(1.0, 2.0).dot(V(3.0, 4.0)), 11.0);  // 3 + 8
    EXPECT_EQ(V(1.0, 0.0).dot(V(0.0, 1.0)), 0.0);
    EXPECT_EQ(V(2.0, -1.0).dot(V(-2.0, 1.0)), -5.0);
}

TEST(Vector, CrossIsPositiveForCounterClockwiseTurn) {
    // x-axis then y-axis is a left (counter-clockwise, y up) turn.
    EXPECT_EQ(V(1.0, 0.0).cross(V(0.0, 1.0)), 1.0);
    EXPECT_EQ(V(0.0, 1.0).cross(V(1.0, 0.0)), -1.0);
    // a.x * b.y - a.y * b.x = 2 * 5 - 3 * 4 = -2
    EXPECT_EQ(V(2.0, 3.0).cross(V(4.0, 5.0)), -2.0);
    EXPECT_EQ(V(4.0, 5.0).cross(V(2.0, 3.0)), 2.0);
}

TEST(Vector, CrossOfParallelVectorsIsZero) {
    EXPECT_EQ(V(1.0, 2.0).cross(V(2.0, 4.0)), 0.0);
    EXPECT_EQ(V(1.0, 2.0).cross(V(-3.0, -6.0)), 0.0);
    EXPECT_EQ(V(1.0, 2.0).cross(V()), 0.0);
}

TEST(Vector, LengthAndDistance) {
    EXPECT_EQ(V(3.0, 4.0).length(), 5.0);
    EXPECT_EQ(V().length(), 0.0);
    EXPECT_EQ(V(1.0, 1.0).distance(V(4.0, 5.0)), 5.0);
    EXPECT_EQ(V(4.0, 5.0).distance(V(1.0, 1.0)), 5.0);
}

TEST(Vector, AngleIsAtan2InMinusPiToPi) {
    EXPECT_EQ(V(1.0, 0.0).angle().toDouble(), 0.0);
    EXPECT_DOUBLE_EQ(V(0.0, 2.0).angle().toDouble(), xcPi / 2.0);
    EXPECT_DOUBLE_EQ(V(-1.0, 0.0).angle().toDouble(), xcPi);  // pi itself, not -pi
    EXPECT_DOUBLE_EQ(V(0.0, -3.0).angle().toDouble(), -xcPi / 2.0);
    EXPECT_DOUBLE_EQ(V(-1.0, -1.0).angle().toDouble(), -0.75 * xcPi);
    EXPECT_EQ(V().angle().toDouble(), 0.0);
}

TEST(Vector, EqualityIsExact) {
    EXPECT_TRUE(V(0.1, 0.2) == V(0.1, 0.2));
    EXPECT_FALSE(V(1.0, 1.0) == V(1.0, std::nextafter(1.0, 2.0)));
    EXPECT_TRUE(V(1.0, 1.0) != V(1.0 + 1e-15, 1.0));
    EXPECT_TRUE(V(0.0, 0.0) == V(-0.0, -0.0));
}

TEST(Vector, RealEqComparesEachComponent) {
    EXPECT_TRUE(xfRealEq(V(1.0, 2.0), V(1.5, 1.5), 0.5));  // both differences are exactly 0.5
    EXPECT_FALSE(xfRealEq(V(1.0, 2.0), V(1.0, 2.75), 0.5));
    EXPECT_FALSE(xfRealEq(V(1.0, 2.0), V(1.75, 2.0), 0.5));
    // Per component, not by distance: (0.4, 0.4) is 0.566 away but each part is within 0.5.
    EXPECT_TRUE(xfRealEq(V(), V(0.4, 0.4), 0.5));
    EXPECT_FALSE(xfRealEq(V(std::nan(""), 0.0), V(std::nan(""), 0.0), 1.0));
}

}  // namespace
