#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <cntr/region.h>
#include <foundation/exception.h>

#include "region_testing.h"

namespace {

// The L-shape whose inner corner (1,1) is not on its hull.
Points lShape() {
    return {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
}

// Its hull in the foundation's order: counter-clockwise from the smallest x (then y).
Points lShapeHull() {
    return {{0, 0}, {2, 0}, {2, 1}, {1, 2}, {0, 2}};
}

// 12 points on the ellipse with centre (1, 2), semi-axes 3 along x and 1 along y.
Points ellipsePoints() {
    Points p;
    for (int i = 0; i < 12; ++i) {
        const double t = 2.0 * xcPi * i / 12.0;
        p.emplace_back(1.0 + 3.0 * std::cos(t), 2.0 + std::sin(t));
    }
    return p;
}

}  // namespace

// ---- convex hull ----

TEST(ContourHull, HullOfLShapeIsRegionOfHullVertices) {
    const xcContour c(lShape(), true, 5);
    xcRegion hull;
    c.convexHull(hull);
    EXPECT_EQ(hull.points(), lShapeHull());
    EXPECT_TRUE(hull.holes().empty());
    EXPECT_EQ(hull.label(), 0u);
    EXPECT_TRUE(hull.isClosed());
}

TEST(ContourHull, OpenAndClosedContourGiveSameHull) {
    xcRegion open;
    xcRegion closed;
    xcContour(lShape(), false).convexHull(open);
    xcContour(lShape(), true).convexHull(closed);
    EXPECT_EQ(open, closed);
    EXPECT_EQ(open.points(), lShapeHull());
}

TEST(ContourHull, HullDropsCollinearAndRepeatedVertices) {
    const xcContour c(Points{{0, 0}, {1, 0}, {2, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 1}}, true);
    xcRegion hull;
    c.convexHull(hull);
    EXPECT_EQ(hull.points(), (Points{{0, 0}, {2, 0}, {2, 2}, {0, 2}}));
}

TEST(ContourHull, SecondCallReturnsCachedRegion) {
    const ContourProbe c(lShape(), true);
    xcRegion first;
    c.convexHull(first);
    const xcRegion* cached = c.cacheState().convexHull.value.rep();
    ASSERT_NE(cached, nullptr);
    EXPECT_TRUE(c.cacheState().convexHull.valid);
    xcRegion second;
    c.convexHull(second);
    EXPECT_EQ(c.cacheState().convexHull.value.rep(), cached);
    EXPECT_EQ(second, first);
}

TEST(ContourHull, CopiesShareTheHullRegion) {
    const ContourProbe c(lShape(), true);
    xcRegion hull;
    c.convexHull(hull);
    const ContourProbe copy(c);
    EXPECT_TRUE(copy.cacheState().convexHull.valid);
    EXPECT_EQ(copy.cacheState().convexHull.value.rep(), c.cacheState().convexHull.value.rep());
}

TEST(ContourHull, ChangeInvalidatesHullAndNextCallBuildsNewRegion) {
    ContourProbe c(lShape(), true);
    xcRegion hull;
    c.convexHull(hull);
    const ContourProbe earlier(c);
    const xcRegion* old = c.cacheState().convexHull.value.rep();
    c.points(square(0, 0, 3));
    EXPECT_FALSE(c.cacheState().convexHull.valid);
    EXPECT_EQ(c.cacheState().convexHull.value.rep(), old);  // kept until replaced
    c.convexHull(hull);
    EXPECT_EQ(hull.points(), square(0, 0, 3));
    EXPECT_NE(c.cacheState().convexHull.value.rep(), old);
    // The earlier copy still holds the old hull region.
    EXPECT_EQ(earlier.cacheState().convexHull.value.rep(), old);
    EXPECT_EQ(earlier.cacheState().convexHull.value.rep()->points(), lShapeHull());
}

TEST(ContourHull, HullReplacesHolesOfResult) {
    xcRegion result(square(0, 0, 10));
    result.holes(std::vector<RegionHandle>{regionOf(square(1, 1, 1))});
    xcContour(lShape(), true).convexHull(result);
    EXPECT_TRUE(result.holes().empty());
    EXPECT_EQ(result.points(), lShapeHull());
}

TEST(ContourHull, RegionAsksForItsOwnHull) {
    xcRegion r(lShape());
    r.convexHull(r);
    EXPECT_EQ(r.points(), lShapeHull());
    // 4 - 1 cut corner of 1/2: the hull's area is 3.5.
    EXPECT_DOUBLE_EQ(r.area(false), 3.5);
}

TEST(ContourHull, TwoVerticesGiveTwoVertexRegion) {
    const xcContour c(Points{{3, 1}, {0, 0}}, false);
    xcRegion hull;
    c.convexHull(hull);
    EXPECT_EQ(hull.points(), (Points{{0, 0}, {3, 1}}));
}

TEST(ContourHull, FewerThanTwoVerticesThrowEmptyContour) {
    const ContourProbe c(Points{{1, 1}}, true);
    xcRegion hull;
    expectEmptyContour([&] { c.convexHull(hull); });
    EXPECT_FALSE(c.cacheState().convexHull.valid);
    expectEmptyContour([&] { xcContour().convexHull(hull); });
}

TEST(ContourHull, NaNCoordinateThrowsNotFiniteAndLeavesCacheInvalid) {
    const ContourProbe c(Points{{0, 0}, {std::nan(""), 1}, {1, 1}}, true);
    xcRegion hull(square(0, 0, 1));
    EXPECT_THROW(c.convexHull(hull), xcMathError::NotFinite);
    EXPECT_FALSE(c.cacheState().convexHull.valid);
    EXPECT_EQ(hull.points(), square(0, 0, 1));
}

// ---- fitted ellipse ----

TEST(ContourFitEllipse, PointsOnEllipseGiveThatEllipse) {
    const xcContour c(ellipsePoints(), true);
    xcEllipse e;
    double rms = -5;
    c.fitEllipse(e, rms);
    EXPECT_NEAR(e.center().x(), 1.0, 1e-9);
    EXPECT_NEAR(e.center().y(), 2.0, 1e-9);
    EXPECT_NEAR(e.r1(), 3.0, 1e-9);
    EXPECT_NEAR(e.r2(), 1.0, 1e-9);
    // The rotation of r1 lies in [0, pi): along x it is 0 or just below pi.
    EXPECT_NEAR(std::sin(e.rotation().toDouble()), 0.0, 1e-9);
    EXPECT_NEAR(rms, 0.0, 1e-9);
}

TEST(ContourFitEllipse, OpenAndClosedGiveSameEllipse) {
    xcEllipse open;
    xcEllipse closed;
    double rmsOpen = 0;
    double rmsClosed = 0;
    xcContour(ellipsePoints(), false).fitEllipse(open, rmsOpen);
    xcContour(ellipsePoints(), true).fitEllipse(closed, rmsClosed);
    EXPECT_EQ(open, closed);
    EXPECT_EQ(rmsOpen, rmsClosed);
}

TEST(ContourFitEllipse, TooFewPointsForEllipseFallBackToCircle) {
    // Three points: no ellipse, but the circle through (0,0), (2,0), (0,2) has centre (1, 1)
    // and radius sqrt 2.
    const xcContour c(Points{{0, 0}, {2, 0}, {0, 2}}, true);
    xcEllipse e;
    double rms = -5;
    c.fitEllipse(e, rms);
    EXPECT_NEAR(e.center().x(), 1.0, 1e-9);
    EXPECT_NEAR(e.center().y(), 1.0, 1e-9);
    EXPECT_NEAR(e.r1(), std::sqrt(2.0), 1e-9);
    EXPECT_NEAR(e.r2(), std::sqrt(2.0), 1e-9);
    EXPECT_NEAR(rms, 0.0, 1e-9);
}

TEST(ContourFitEllipse, NoFitGivesDefaultEllipseAndMinusOne) {
    const xcContour c(Points{{0, 0}, {2, 0}}, false);
    xcEllipse e(xcCircle(xcVector<2>(5, 5), 2));
    double rms = 0;
    c.fitEllipse(e, rms);
    EXPECT_EQ(e, xcEllipse());
    EXPECT_EQ(rms, -1.0);
}

TEST(ContourFitEllipse, ResultIsCachedUntilChange) {
    ContourProbe c(ellipsePoints(), true);
    xcEllipse first;
    double rms = 0;
    c.fitEllipse(first, rms);
    EXPECT_TRUE(c.cacheState().fittedEllipse.valid);
    EXPECT_EQ(c.cacheState().fittedEllipse.value.residual, rms);
    xcEllipse second;
    double rms2 = 1;
    c.fitEllipse(second, rms2);
    EXPECT_EQ(second, first);
    EXPECT_EQ(rms2, rms);
    c.points(Points{{0, 0}, {2, 0}});
    EXPECT_FALSE(c.cacheState().fittedEllipse.valid);
    c.fitEllipse(second, rms2);
    EXPECT_EQ(rms2, -1.0);
}

TEST(ContourFitEllipse, CopyCarriesCachedEllipse) {
    ContourProbe c(ellipsePoints(), true);
    xcEllipse e;
    double rms = 0;
    c.fitEllipse(e, rms);
    const ContourProbe copy(c);
    EXPECT_TRUE(copy.cacheState().fittedEllipse.valid);
    xcEllipse fromCopy;
    double rmsCopy = 1;
    copy.fitEllipse(fromCopy, rmsCopy);
    EXPECT_EQ(fromCopy, e);
}

TEST(ContourFitEllipse, FewerThanTwoVerticesThrowEmptyContour) {
    const ContourProbe c(Points{{1, 1}}, true);
    xcEllipse e;
    double rms = 0;
    expectEmptyContour([&] { c.fitEllipse(e, rms); });
    EXPECT_FALSE(c.cacheState().fittedEllipse.valid);
}

TEST(ContourFitEllipse, NaNCoordinateGivesNoFit) {
    const xcContour c(Points{{0, 0}, {std::nan(""), 1}, {1, 1}, {2, 5}, {3, 3}, {4, 0}}, true);
    xcEllipse e;
    double rms = 0;
    c.fitEllipse(e, rms);
    EXPECT_EQ(e, xcEllipse());
    EXPECT_EQ(rms, -1.0);
}
