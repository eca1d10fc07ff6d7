// Ellipse fit of point lists with the circle fit and the default ellipse as fall-backs.
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/moments.h>
#include <foundation/angle.h>
#include <foundation/fit.h>
#include <foundation/geometry.h>

#include "moments_test_support.h"

namespace {

using moments_test::Points;

constexpr double kTol = 1e-9;

/// Starts the outputs at values no fit produces, so that every path must overwrite them.
struct Outputs {
    xcEllipse ellipse{xcEllipse::xcEllipseGeom(xcPoint(-9, -9), 9, 9, xcRadian(1), true, true)};
    double rms = 12345.0;
};

std::vector<xcEdgelet> edgeletsAt(const Points& points) {
    std::vector<xcEdgelet> out;
    for (const xcVector<2>& p : points)
        out.emplace_back(p, std::uint16_t{100}, xcAngle8(17));
    return out;
}

void expectDefaultEllipseAndNoRms(const Points& points) {
    Outputs out;
    xf_FitEllipse(points, out.ellipse, out.rms);
    EXPECT_EQ(out.ellipse, xcEllipse());
    EXPECT_EQ(out.rms, -1.0);
}

TEST(FitEllipse, PointsOnAnEllipseGiveThatEllipse) {
    // 12 points on the ellipse with semi-axes 5 and 2, turned by 0.4 rad, centred at (3, -1).
    Points p;
    for (int i = 0; i < 12; ++i) {
        const double t = 2 * xcPi * i / 12;
        const double u = 5 * std::cos(t), v = 2 * std::sin(t);
        p.emplace_back(3 + u * std::cos(0.4) - v * std::sin(0.4),
                       -1 + u * std::sin(0.4) + v * std::cos(0.4));
    }
    Outputs out;
    xf_FitEllipse(p, out.ellipse, out.rms);
    EXPECT_NEAR(out.ellipse.center().x(), 3.0, kTol);
    EXPECT_NEAR(out.ellipse.center().y(), -1.0, kTol);
    EXPECT_NEAR(out.ellipse.r1(), 5.0, kTol);
    EXPECT_NEAR(out.ellipse.r2(), 2.0, kTol);
    EXPECT_NEAR(out.ellipse.rotation().toDouble(), 0.4, kTol);
    EXPECT_NEAR(out.rms, 0.0, kTol);
}

TEST(FitEllipse, ForwardsTheFoundationFitWithoutLimits) {
    // Five points of the unit circle and a sixth pushed out to radius 3: no ellipse passes
    // through all six. The result is the foundation's fit of all points (none ignored) with no
    // rms limit, its ellipse and error passed on unchanged.
    Points p;
    for (int i = 0; i < 6; ++i) {
        const double r = i == 5 ? 3.0 : 1.0;
        p.emplace_back(r * std::cos(2 * xcPi * i / 6), r * std::sin(2 * xcPi * i / 6));
    }
    xcEllipseFitResults direct;
    xfEllipseFit(xcEllipseFitParams(xcEllipseFitDefs::fitAll, xcRadian(0.0), 0u,
                                    std::numeric_limits<double>::infinity()),
                 p, direct);
    ASSERT_GT(direct.error(), 0.0);
    Outputs out;
    xf_FitEllipse(p, out.ellipse, out.rms);
    EXPECT_EQ(out.ellipse, direct.ellipse());
    EXPECT_EQ(out.rms, direct.error());
}

TEST(FitEllipse, FallBackForwardsTheFoundationCircleFit) {
    // Four points (too few for an ellipse), not concyclic: the circle fit's circle and error.
    const Points p{{0, 0}, {4, 0}, {4, 3}, {0, 2}};
    xcCircleFitResults direct;
    xfCircleFit(xcCircleFitParams(xcCircleFitDefs::fitAll, 1.0, 0u,
                                  std::numeric_limits<double>::infinity()),
                p, direct);
    ASSERT_GT(direct.error(), 0.0);
    Outputs out;
    xf_FitEllipse(p, out.ellipse, out.rms);
    EXPECT_EQ(out.ellipse, xcEllipse(direct.circle()));
    EXPECT_EQ(out.rms, direct.error());
}

TEST(FitEllipse, FourPointsFallBackToTheCircle) {
    // Four points (too few for an ellipse) on the circle of radius 5 about (2, 3).
    Outputs out;
    xf_FitEllipse(Points{{7, 3}, {2, 8}, {-3, 3}, {2, -2}}, out.ellipse, out.rms);
    EXPECT_NEAR(out.ellipse.center().x(), 2.0, kTol);
    EXPECT_NEAR(out.ellipse.center().y(), 3.0, kTol);
    EXPECT_NEAR(out.ellipse.r1(), 5.0, kTol);
    EXPECT_NEAR(out.ellipse.r2(), 5.0, kTol);
    EXPECT_EQ(out.ellipse.rotation().toDouble(), 0.0);
    EXPECT_FALSE(out.ellipse.flag1());
    EXPECT_FALSE(out.ellipse.flag2());
    EXPECT_NEAR(out.rms, 0.0, kTol);
}

TEST(FitEllipse, ThreePointsGiveTheirCircumcircle) {
    // Right triangle (0,0), (4,0), (0,3): the circumcentre is the hypotenuse's midpoint
    // (2, 1.5), the radius half the hypotenuse, 5 / 2.
    Outputs out;
    xf_FitEllipse(Points{{0, 0}, {4, 0}, {0, 3}}, out.ellipse, out.rms);
    EXPECT_NEAR(out.ellipse.center().x(), 2.0, kTol);
    EXPECT_NEAR(out.ellipse.center().y(), 1.5, kTol);
    EXPECT_NEAR(out.ellipse.r1(), 2.5, kTol);
    EXPECT_NEAR(out.ellipse.r2(), 2.5, kTol);
    EXPECT_NEAR(out.rms, 0.0, kTol);
}

TEST(FitEllipse, CollinearPointsDefeatBothFits) {
    expectDefaultEllipseAndNoRms(Points{{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}});
}

TEST(FitEllipse, TwoPointsDefeatBothFits) {
    expectDefaultEllipseAndNoRms(Points{{0, 0}, {1, 0}});
}

TEST(FitEllipse, EmptyListDefeatsBothFits) {
    expectDefaultEllipseAndNoRms(Points{});
}

TEST(FitEllipse, NanCoordinateDefeatsBothFits) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    expectDefaultEllipseAndNoRms(Points{{7, 3}, {2, 8}, {-3, 3}, {2, -2}, {nan, 1}, {5, 7}});
}

TEST(FitEllipse, EdgeletOverloadUsesPositions) {
    const Points p{{7, 3}, {2, 8}, {-3, 3}, {2, -2}};
    Outputs fromPoints, fromEdgelets;
    xf_FitEllipse(p, fromPoints.ellipse, fromPoints.rms);
    xf_FitEllipse(edgeletsAt(p), fromEdgelets.ellipse, fromEdgelets.rms);
    EXPECT_EQ(fromEdgelets.ellipse, fromPoints.ellipse);
    EXPECT_EQ(fromEdgelets.rms, fromPoints.rms);
    EXPECT_NEAR(fromEdgelets.ellipse.r1(), 5.0, kTol);

    Outputs none;
    xf_FitEllipse(std::vector<xcEdgelet>{}, none.ellipse, none.rms);
    EXPECT_EQ(none.ellipse, xcEllipse());
    EXPECT_EQ(none.rms, -1.0);
}

}  // namespace
