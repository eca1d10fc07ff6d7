#include <cfloat>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/angle.h>
#include <foundation/exception.h>
#include <foundation/geometry.h>

#include "test_support.h"

namespace {

using V = xcVector<2>;

TEST(Point, DefaultAndCoordinates) {
    EXPECT_EQ(xcPoint().x(), 0.0);
    EXPECT_EQ(xcPoint().y(), 0.0);
    const xcPoint p(2.0, -3.0);
    EXPECT_EQ(p.x(), 2.0);
    EXPECT_EQ(p.y(), -3.0);
}

TEST(Point, ConvertsToAndFromVector) {
    const xcPoint p = V(1.5, 2.5);
    const V v = p;
    EXPECT_EQ(v, V(1.5, 2.5));
    EXPECT_EQ(p.vector(), V(1.5, 2.5));
    EXPECT_EQ(p, xcPoint(1.5, 2.5));
    EXPECT_NE(p, xcPoint(1.5, 2.0));
}

TEST(Line, DefaultIsTheXAxis) {
    const xcLine l;
    EXPECT_EQ(l.point(), V(0, 0));
    EXPECT_EQ(l.direction(), V(1, 0));
}

TEST(Line, DirectionIsNormalised) {
    const xcLine l(V(1, 1), V(3, 4));
    EXPECT_EQ(l.point(), V(1, 1));
    EXPECT_TRUE(xfRealEq(l.direction(), V(0.6, 0.8), 1e-16));
    EXPECT_EQ(xcLine(V(), V(0, -7)).direction(), V(0, -1));
}

TEST(Line, ZeroDirectionGivesXDirection) {
    EXPECT_EQ(xcLine(V(2, 3), V(0, 0)).direction(), V(1, 0));
}

TEST(Line, HugeDirectionIsNormalised) {
    // 1e200^2 overflows; the direction must still be the diagonal, not (0, 0).
    const xcLine l(V(), V(1e200, 1e200));
    const double h = std::sqrt(0.5);
    EXPECT_TRUE(xfRealEq(l.direction(), V(h, h), 1e-15)) << testing::PrintToString(l.direction());
    EXPECT_TRUE(xfRealEq(xcLine(V(), V(-DBL_MAX, 0.0)).direction(), V(-1, 0), 0.0));
}

TEST(Line, TinyDirectionIsNormalised) {
    // 1e-170^2 underflows to 0; (3e-170, 4e-170) is still the direction (0.6, 0.8).
    const xcLine l(V(), V(3e-170, 4e-170));
    EXPECT_TRUE(xfRealEq(l.direction(), V(0.6, 0.8), 1e-15))
        << testing::PrintToString(l.direction());
    const double tiny = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(xcLine(V(), V(0.0, tiny)).direction(), V(0, 1));
}

TEST(Line, NonFiniteDirectionGivesNaNDirection) {
    const xcLine l(V(), V(std::numeric_limits<double>::infinity(), 1.0));
    EXPECT_TRUE(std::isnan(l.direction().x()));
    EXPECT_TRUE(std::isnan(l.direction().y()));
    EXPECT_TRUE(std::isnan(xcLine(V(), V(std::nan(""), 1.0)).direction().x()));
}

TEST(Line, ParallelWithinTolerance) {
    const xcLine xAxis;
    // The unit direction of (1, t) has a cross product with (1, 0) of t / sqrt(1 + t^2), which
    // is t to within 1e-36 for t near 1e-12.
    EXPECT_TRUE(xAxis.isParallel(xcLine(V(0, 5), V(1, 0.9e-12))));
    EXPECT_TRUE(xAxis.isParallel(xcLine(V(0, 5), V(1, -0.9e-12))));
    EXPECT_FALSE(xAxis.isParallel(xcLine(V(0, 5), V(1, 1.1e-12))));
    EXPECT_FALSE(xAxis.isParallel(xcLine(V(0, 5), V(1, -1.1e-12))));
    EXPECT_EQ(xcLine::kParallelTolerance, 1e-12);
}

TEST(Line, ParallelIgnoresDirectionSignAndPosition) {
    const xcLine a(V(0, 0), V(1, 1));
    EXPECT_TRUE(a.isParallel(a));
    EXPECT_TRUE(a.isParallel(xcLine(V(5, -2), V(-2, -2))));  // opposite direction
    EXPECT_TRUE(a.isParallel(xcLine(V(7, 7), V(3, 3))));     // the same line
    EXPECT_FALSE(a.isParallel(xcLine(V(0, 0), V(1, -1))));
}

TEST(Line, ParallelToleranceIsOnUnitDirections) {
    // Long direction vectors: the raw cross product 1e6 * 0.9e-6 = 0.9 is far above the bound,
    // but the unit directions' cross product is 0.9e-6 / 1e6 = 0.9e-12, below it.
    const xcLine a(V(), V(1e6, 0));
    EXPECT_TRUE(a.isParallel(xcLine(V(), V(1e6, 0.9e-6))));
    EXPECT_FALSE(a.isParallel(xcLine(V(), V(1e6, 1.1e-6))));
}

TEST(Line, IntersectCrossingLines) {
    // y = x meets x = 4 at (4, 4).
    EXPECT_TRUE(
        xfRealEq(xcLine(V(0, 0), V(1, 1)).intersect(xcLine(V(4, 0), V(0, 1))), V(4, 4), 1e-14));
    // The x axis meets the line through (2, 3) along (1, -1) where 3 - t = 0: (5, 0).
    EXPECT_TRUE(xfRealEq(xcLine().intersect(xcLine(V(2, 3), V(1, -1))), V(5, 0), 1e-14));
    // Order does not matter.
    EXPECT_TRUE(xfRealEq(xcLine(V(2, 3), V(1, -1)).intersect(xcLine()), V(5, 0), 1e-14));
}

TEST(Line, IntersectOfMediansIsTheCentroid) {
    // Triangle (0,0), (6,0), (0,3): centroid (2, 1). Median from (0,0) to (3, 1.5), from (6,0) to
    // (0, 1.5).
    const xcLine m1 = xcLineSeg(V(0, 0), V(3, 1.5)).line();
    const xcLine m2 = xcLineSeg(V(6, 0), V(0, 1.5)).line();
    EXPECT_TRUE(xfRealEq(m1.intersect(m2), V(2, 1), 1e-14));
}

TEST(Line, IntersectOfParallelLinesThrowsSingular) {
    const xcLine a(V(0, 0), V(1, 2));
    EXPECT_THROW(a.intersect(xcLine(V(5, 0), V(-1, -2))), xcMathError::Singular);
    EXPECT_THROW(a.intersect(a), xcMathError::Singular);  // coincident lines too
    EXPECT_THROW(a.intersect(xcLine(V(1, 0), V(1, 2 + 1e-13))), xcMathError::Singular);
    EXPECT_TRUE(throwsError([&] { (void)a.intersect(a); }, xnErrorNumber::MathSingular,
                            "parallel lines do not intersect"));
}

TEST(Line, ProjIsTheFootOfThePerpendicular) {
    EXPECT_EQ(xcLine().proj(V(3, 7)), V(3, 0));
    EXPECT_EQ(xcLine(V(0, 2), V(-1, 0)).proj(V(-5, 9)), V(-5, 2));
    // Onto y = x: (2, 0) projects to (1, 1).
    EXPECT_TRUE(xfRealEq(xcLine(V(0, 0), V(1, 1)).proj(V(2, 0)), V(1, 1), 1e-15));
    // A point on the line is its own projection.
    EXPECT_TRUE(xfRealEq(xcLine(V(1, 1), V(3, 4)).proj(V(4, 5)), V(4, 5), 1e-15));
}

TEST(Line, DistToPointIsPerpendicular) {
    EXPECT_EQ(xcLine().distToPoint(V(100, -3)), 3.0);
    EXPECT_NEAR(xcLine(V(0, 0), V(1, 1)).distToPoint(V(2, 0)), std::sqrt(2.0), 1e-15);
    // Line through (1, 1) along (3, 4): the point (1, 1) + 5 * (-0.8, 0.6) = (-3, 4) is 5 away.
    EXPECT_NEAR(xcLine(V(1, 1), V(3, 4)).distToPoint(V(-3, 4)), 5.0, 1e-14);
    EXPECT_EQ(xcLine(V(1, 1), V(3, 4)).distToPoint(V(1, 1)), 0.0);
}

TEST(LineSeg, DefaultRunsFromOriginToOrigin) {
    const xcLineSeg s;
    EXPECT_EQ(s.p1(), V(0, 0));
    EXPECT_EQ(s.p2(), V(0, 0));
    EXPECT_EQ(s.length(), 0.0);
}

TEST(LineSeg, EndsDeltaAndLength) {
    const xcLineSeg s(V(1, 1), V(4, 5));
    EXPECT_EQ(s.p1(), V(1, 1));
    EXPECT_EQ(s.p2(), V(4, 5));
    EXPECT_EQ(s.delta(), V(3, 4));
    EXPECT_EQ(s.length(), 5.0);
    EXPECT_EQ(s, xcLineSeg(V(1, 1), V(4, 5)));
    EXPECT_NE(s, xcLineSeg(V(4, 5), V(1, 1)));
}

TEST(LineSeg, LineRunsFromP1TowardsP2) {
    const xcLine l = xcLineSeg(V(1, 1), V(4, 5)).line();
    EXPECT_EQ(l.point(), V(1, 1));
    EXPECT_TRUE(xfRealEq(l.direction(), V(0.6, 0.8), 1e-16));
    const xcLine back = xcLineSeg(V(4, 5), V(1, 1)).line();
    EXPECT_EQ(back.point(), V(4, 5));
    EXPECT_TRUE(xfRealEq(back.direction(), V(-0.6, -0.8), 1e-16));
}

TEST(LineSeg, LineOfZeroLengthSegmentHasXDirectionAndNeverThrows) {
    xcLine l;
    EXPECT_NO_THROW(l = xcLineSeg(V(2, 3), V(2, 3)).line());
    EXPECT_EQ(l.point(), V(2, 3));
    EXPECT_EQ(l.direction(), V(1, 0));
    EXPECT_NO_THROW(l = xcLineSeg().line());
    EXPECT_EQ(l.point(), V(0, 0));
    EXPECT_EQ(l.direction(), V(1, 0));
}

TEST(LineSeg, DistanceToPointBesideTheInterior) {
    const xcLineSeg s(V(0, 0), V(4, 0));
    EXPECT_EQ(s.distToPoint(V(2, 3)), 3.0);
    EXPECT_EQ(s.distToPoint(V(2, -3)), 3.0);
    EXPECT_EQ(s.distToPoint(V(1, 0)), 0.0);  // on the segment
    // Slanted: segment (0,0)-(4,4), point (0, 4): foot (2, 2), distance sqrt(8).
    EXPECT_NEAR(xcLineSeg(V(0, 0), V(4, 4)).distToPoint(V(0, 4)), std::sqrt(8.0), 1e-15);
}

TEST(LineSeg, DistanceToPointBeyondTheFirstEnd) {
    // (-3, 4) is 5 from (0, 0), farther than from the line (4).
    const xcLineSeg s(V(0, 0), V(4, 0));
    EXPECT_EQ(s.distToPoint(V(-3, 4)), 5.0);
    EXPECT_EQ(s.distToPoint(V(-2, 0)), 2.0);  // on the line, outside the segment
}

TEST(LineSeg, DistanceToPointBeyondTheSecondEnd) {
    // (7, 4) is 5 from (4, 0).
    const xcLineSeg s(V(0, 0), V(4, 0));
    EXPECT_EQ(s.distToPoint(V(7, 4)), 5.0);
    EXPECT_EQ(s.distToPoint(V(10, 0)), 6.0);
}

TEST(LineSeg, DistanceAtTheEndsIsZero) {
    const xcLineSeg s(V(1, 2), V(-3, 7));
    EXPECT_EQ(s.distToPoint(V(1, 2)), 0.0);
    EXPECT_EQ(s.distToPoint(V(-3, 7)), 0.0);
}

TEST(LineSeg, DistanceToZeroLengthSegmentIsDistanceToItsPoint) {
    const xcLineSeg s(V(1, 1), V(1, 1));
    EXPECT_EQ(s.distToPoint(V(4, 5)), 5.0);
    EXPECT_EQ(s.distToPoint(V(1, 1)), 0.0);
    EXPECT_EQ(xcLineSeg().distToPoint(V(-3, 4)), 5.0);
}

TEST(LineSeg, RandomDistanceAgreesWithBruteForce) {
    // An independent method: the minimum over many points spread along the segment, which can
    // only overestimate, by at most half the sampling step.
    unsigned state = 12345;
    auto next = [&state] {
        state = state * 1103515245u + 12345u;
        return static_cast<double>((state >> 8) % 2001) / 100.0 - 10.0;  // [-10, 10]
    };
    for (int i = 0; i < 100; ++i) {
        const xcLineSeg s(V(next(), next()), V(next(), next()));
        const V p(next(), next());
        constexpr int kSteps = 20000;
        double best = p.distance(s.p1());
        for (int k = 1; k <= kSteps; ++k)
            best = std::min(best, p.distance(s.p1() + s.delta() * (double(k) / kSteps)));
        const double step = s.length() / kSteps;
        EXPECT_LE(s.distToPoint(p), best + 1e-12) << i;
        EXPECT_GE(s.distToPoint(p), best - step / 2.0 - 1e-12) << i;
    }
}

TEST(Rect, DefaultIsEmptyAtOrigin) {
    const xcRect r;
    EXPECT_EQ(r.ul(), V(0, 0));
    EXPECT_EQ(r.lr(), V(0, 0));
    EXPECT_EQ(r.size(), V(0, 0));
}

TEST(Rect, CornerAndSize) {
    const xcRect r(V(1, 2), V(3, 4));
    EXPECT_EQ(r.ul(), V(1, 2));
    EXPECT_EQ(r.lr(), V(4, 6));
    EXPECT_EQ(r.size(), V(3, 4));
    EXPECT_EQ(r.width(), 3.0);
    EXPECT_EQ(r.height(), 4.0);
    EXPECT_EQ(r.lr(), r.ul() + r.size());
}

TEST(Rect, NegativeSizesAreNormalised) {
    // Corner (5, 5) with size (-2, -3) spans x 3..5 and y 2..5.
    const xcRect r(V(5, 5), V(-2, -3));
    EXPECT_EQ(r.ul(), V(3, 2));
    EXPECT_EQ(r.lr(), V(5, 5));
    EXPECT_EQ(r.size(), V(2, 3));
    // One negative component only: x 1..4, y 0..2.
    const xcRect mixed(V(4, 0), V(-3, 2));
    EXPECT_EQ(mixed.ul(), V(1, 0));
    EXPECT_EQ(mixed.lr(), V(4, 2));
    EXPECT_EQ(r, xcRect(V(3, 2), V(2, 3)));
}

TEST(Rect, ZeroSizeRectangleAtPoint) {
    const xcRect r = xcRect::at(V(2, -1));
    EXPECT_EQ(r.ul(), V(2, -1));
    EXPECT_EQ(r.lr(), V(2, -1));
    EXPECT_TRUE(r.within(V(2, -1)));
    EXPECT_FALSE(r.within(V(2, -0.999)));
}

TEST(Rect, EncloseIsTheUnion) {
    const xcRect a(V(0, 0), V(2, 2));
    const xcRect b(V(1, -3), V(4, 1));  // x 1..5, y -3..-2
    const xcRect u = a.enclose(b);
    EXPECT_EQ(u.ul(), V(0, -3));
    EXPECT_EQ(u.lr(), V(5, 2));
    EXPECT_EQ(b.enclose(a), u);
    EXPECT_EQ(a.enclose(a), a);
    EXPECT_EQ(a.enclose(xcRect(V(0.5, 0.5), V(1, 1))), a);  // contained
}

TEST(Rect, EncloseOfTwoPointsIsTheirBoundingBox) {
    // How an edge's box is built: the union of the zero-size boxes at both ends.
    const xcRect box = xcRect::at(V(4, -1)).enclose(xcRect::at(V(1, 3)));
    EXPECT_EQ(box.ul(), V(1, -1));
    EXPECT_EQ(box.lr(), V(4, 3));
}

TEST(Rect, WithinIncludesTheBorder) {
    const xcRect r(V(0, 0), V(4, 2));
    EXPECT_TRUE(r.within(V(2, 1)));
    for (const V& p : {V(0, 0), V(4, 2), V(0, 2), V(4, 0), V(2, 0), V(4, 1), V(0, 1), V(3, 2)})
        EXPECT_TRUE(r.within(p)) << testing::PrintToString(p);
}

TEST(Rect, WithinExcludesPointsJustOutside) {
    const xcRect r(V(0, 0), V(4, 2));
    EXPECT_FALSE(r.within(V(-1e-300, 1)));
    EXPECT_FALSE(r.within(V(std::nextafter(4.0, 5.0), 1)));
    EXPECT_FALSE(r.within(V(2, -1e-300)));
    EXPECT_FALSE(r.within(V(2, std::nextafter(2.0, 3.0))));
    EXPECT_FALSE(r.within(V(std::nan(""), 1)));
}

TEST(Circle, DefaultAndAccessors) {
    EXPECT_EQ(xcCircle().center(), V(0, 0));
    EXPECT_EQ(xcCircle().radius(), 0.0);
    const xcCircle c(V(1, -2), 3.5);
    EXPECT_EQ(c.center(), V(1, -2));
    EXPECT_EQ(c.radius(), 3.5);
    EXPECT_EQ(c, xcCircle(V(1, -2), 3.5));
    EXPECT_NE(c, xcCircle(V(1, -2), 3.0));
}

TEST(Ellipse, DefaultIsZero) {
    const xcEllipse e;
    EXPECT_EQ(e.center(), xcPoint(0, 0));
    EXPECT_EQ(e.r1(), 0.0);
    EXPECT_EQ(e.r2(), 0.0);
    EXPECT_EQ(e.rotation(), xcRadian(0.0));
    EXPECT_FALSE(e.flag1());
    EXPECT_FALSE(e.flag2());
}

TEST(Ellipse, FromGeometryRecord) {
    const xcEllipse e(
        xcEllipse::xcEllipseGeom(xcPoint(3, 4), 5.0, 2.0, xcRadian(0.25), true, false));
    EXPECT_EQ(e.center(), xcPoint(3, 4));
    EXPECT_EQ(e.r1(), 5.0);
    EXPECT_EQ(e.r2(), 2.0);
    EXPECT_EQ(e.rotation(), xcRadian(0.25));
    EXPECT_TRUE(e.flag1());
    EXPECT_FALSE(e.flag2());
    EXPECT_EQ(e.geom().r1, 5.0);
    const xcEllipse other(
        xcEllipse::xcEllipseGeom(xcPoint(3, 4), 5.0, 2.0, xcRadian(0.25), true, true));
    EXPECT_NE(e, other);  // the flags take part in equality
}

TEST(Ellipse, FromCircle) {
    const xcEllipse e(xcCircle(V(-1, 2), 3.0));
    EXPECT_EQ(e.center(), xcPoint(-1, 2));
    EXPECT_EQ(e.r1(), 3.0);
    EXPECT_EQ(e.r2(), 3.0);
    EXPECT_EQ(e.rotation(), xcRadian(0.0));
}

TEST(Polygon, VerticesAndFillMode) {
    const std::vector<V> square{V(0, 0), V(1, 0), V(1, 1), V(0, 1)};
    const xcPolygon p(square);
    EXPECT_EQ(p.vertices(), square);
    EXPECT_EQ(p.fillMode(), 0);
    EXPECT_EQ(xcPolygon(square, 2).fillMode(), 2);
    EXPECT_NE(p, xcPolygon(square, 1));
    EXPECT_TRUE(xcPolygon().vertices().empty());
}

TEST(Edgelet, DefaultAndAccessors) {
    const xcEdgelet d;
    EXPECT_EQ(d.position(), V(0, 0));
    EXPECT_EQ(d.magnitude(), 0u);
    EXPECT_EQ(d.angle(), xcAngle8(0));
    const xcEdgelet e(V(1.5, 2.5), 65535, xcAngle8(200));
    EXPECT_EQ(e.position(), V(1.5, 2.5));
    EXPECT_EQ(e.magnitude(), 65535u);  // the full unsigned 16-bit range
    EXPECT_EQ(e.angle().raw(), 200);
}

TEST(Edgelet, EqualityComparesAllFields) {
    const xcEdgelet e(V(1, 2), 10, xcAngle8(3));
    EXPECT_EQ(e, xcEdgelet(V(1, 2), 10, xcAngle8(3)));
    EXPECT_NE(e, xcEdgelet(V(1, 2.5), 10, xcAngle8(3)));
    EXPECT_NE(e, xcEdgelet(V(1, 2), 11, xcAngle8(3)));
    EXPECT_NE(e, xcEdgelet(V(1, 2), 10, xcAngle8(4)));
}

}  // namespace
