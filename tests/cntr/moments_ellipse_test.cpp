// Ellipses from inertia records, and the standard deviation.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/moments.h>
#include <foundation/exception.h>
#include <foundation/geometry.h>

#include "moments_test_support.h"

namespace {

using moments_test::Points;

constexpr double kTol = 1e-12;
constexpr double kPi = 3.141592653589793;

xc_InertiaData centralRecord(double xx, double yy, double xy, const xcVector<2>& center = {}) {
    return xc_InertiaData(1.0, center, xcMatrix<2>(xx, xy, xy, yy));
}

/// Semi-axis A of the solid ellipse whose moment along A is `along` and across it `across`:
/// along = pi A^3 B / 4, across = pi A B^3 / 4, so A^8 = 16 along^3 / (pi^2 across).
double semiAxis(double along, double across) {
    return std::pow(16.0 * along * along * along / (kPi * kPi * across), 0.125);
}

// ---- xf_EllipseFromInertiaData -----------------------------------------------------------

TEST(EllipseFromInertia, RectangleFourByTwo) {
    // a = 32/3, b = 8/3: r1 = (65536 / (9 pi^2))^(1/8) ~ 2.2829, r2 = (256 / (9 pi^2))^(1/8)
    // ~ 1.1415 (16 (32/3)^3 / (8/3) = 65536/9 and 16 (8/3)^3 / (32/3) = 256/9).
    const xcEllipse e = xf_EllipseFromInertiaData(centralRecord(32.0 / 3, 8.0 / 3, 0.0));
    EXPECT_EQ(e.rotation().toDouble(), 0.0);
    EXPECT_NEAR(e.r1(), std::pow(65536.0 / (9 * kPi * kPi), 0.125), kTol);
    EXPECT_NEAR(e.r2(), std::pow(256.0 / (9 * kPi * kPi), 0.125), kTol);
    EXPECT_NEAR(e.r1(), 2.2829, 5e-5);
    EXPECT_NEAR(e.r2(), 1.1415, 5e-5);
    EXPECT_EQ(e.center(), xcPoint(0, 0));
    EXPECT_FALSE(e.flag1());
    EXPECT_FALSE(e.flag2());
}

TEST(EllipseFromInertia, RectanglePolygonRecord) {
    const xcEllipse e =
        xf_EllipseFromInertiaData(xf_InertiaDataPolygon(moments_test::rectangle(-2, -1, 2, 1)));
    EXPECT_NEAR(e.rotation().toDouble(), 0.0, kTol);
    EXPECT_NEAR(e.r1(), semiAxis(32.0 / 3, 8.0 / 3), kTol);
    EXPECT_NEAR(e.r2(), semiAxis(8.0 / 3, 32.0 / 3), kTol);
    EXPECT_NEAR(e.center().x(), 0.0, kTol);
    EXPECT_NEAR(e.center().y(), 0.0, kTol);
}

TEST(EllipseFromInertia, EqualDiagonalGivesCircle) {
    // A disc of radius R has both moments pi R^4 / 4; with 4 pi that is R = 2.
    const xcEllipse e = xf_EllipseFromInertiaData(centralRecord(4 * kPi, 4 * kPi, 0.0));
    EXPECT_EQ(e.rotation().toDouble(), 0.0);
    EXPECT_NEAR(e.r1(), 2.0, kTol);
    EXPECT_NEAR(e.r2(), 2.0, kTol);
    EXPECT_EQ(e.r1(), e.r2());
}

TEST(EllipseFromInertia, TallerThanWideTurnsAQuarter) {
    // M(0,0) < M(1,1), off-diagonal +0: atan2(0, -8) / 2 = pi / 2, and r1 is along y.
    const xcEllipse e = xf_EllipseFromInertiaData(centralRecord(8.0 / 3, 32.0 / 3, 0.0));
    EXPECT_EQ(e.rotation().toDouble(), kPi / 2);
    EXPECT_NEAR(e.r1(), semiAxis(32.0 / 3, 8.0 / 3), kTol);
    EXPECT_NEAR(e.r2(), semiAxis(8.0 / 3, 32.0 / 3), kTol);
}

TEST(EllipseFromInertia, RotatedRecordGivesItsAngle) {
    // Principal moments a = 32/3 along 30 degrees, b = 8/3 across: with c^2 = 3/4, s^2 = 1/4,
    // s c = sqrt(3)/4: M(0,0) = a c^2 + b s^2 = 26/3, M(1,1) = a s^2 + b c^2 = 14/3,
    // M(0,1) = (a - b) s c = 2 sqrt(3). atan2(4 sqrt(3), 4) / 2 = pi/3 / 2 = pi/6.
    const xcEllipse e =
        xf_EllipseFromInertiaData(centralRecord(26.0 / 3, 14.0 / 3, 2 * std::sqrt(3.0), {5, -7}));
    EXPECT_NEAR(e.rotation().toDouble(), kPi / 6, kTol);
    EXPECT_NEAR(e.r1(), semiAxis(32.0 / 3, 8.0 / 3), 1e-11);
    EXPECT_NEAR(e.r2(), semiAxis(8.0 / 3, 32.0 / 3), 1e-11);
    EXPECT_EQ(e.center(), xcPoint(5, -7));
}

TEST(EllipseFromInertia, NegativeProductMomentGivesNegativeAngle) {
    // The 30-degree record mirrored in the x axis: M(0,1) = -2 sqrt(3), angle -pi/6.
    const xcEllipse e =
        xf_EllipseFromInertiaData(centralRecord(26.0 / 3, 14.0 / 3, -2 * std::sqrt(3.0)));
    EXPECT_NEAR(e.rotation().toDouble(), -kPi / 6, kTol);
}

TEST(EllipseFromInertia, AreaIsNotUsed) {
    const xcMatrix<2> m(3, 1, 1, 2);
    const xcEllipse a = xf_EllipseFromInertiaData(xc_InertiaData(1.0, {1, 2}, m));
    const xcEllipse b = xf_EllipseFromInertiaData(xc_InertiaData(-40.0, {1, 2}, m));
    EXPECT_EQ(a, b);
}

TEST(EllipseFromInertia, PolygonApproximatingAnEllipseRecoversIt) {
    // 4000 vertices on the ellipse with semi-axes 5 and 2, turned by 0.4 rad, centred at
    // (3, -1). The inscribed polygon's moments differ from the solid ellipse's by O(1/n^2).
    const double a = 5, b = 2, phi = 0.4;
    Points p;
    for (int i = 0; i < 4000; ++i) {
        const double t = 2 * kPi * i / 4000;
        const double u = a * std::cos(t), v = b * std::sin(t);
        p.emplace_back(3 + u * std::cos(phi) - v * std::sin(phi),
                       -1 + u * std::sin(phi) + v * std::cos(phi));
    }
    const xcEllipse e = xf_EllipseFromInertiaData(xf_InertiaDataPolygon(p));
    EXPECT_NEAR(e.r1(), a, 1e-5);
    EXPECT_NEAR(e.r2(), b, 1e-5);
    EXPECT_NEAR(e.rotation().toDouble(), phi, 1e-6);
    EXPECT_NEAR(e.center().x(), 3, 1e-9);
    EXPECT_NEAR(e.center().y(), -1, 1e-9);
}

void expectSingular(const xc_InertiaData& data) {
    moments_test::expectSingular([&data] { xf_EllipseFromInertiaData(data); },
                                 L"inertia data with a zero principal moment has no ellipse");
}

TEST(EllipseFromInertia, ZeroRecordIsSingular) {
    expectSingular(xc_InertiaData());
}

TEST(EllipseFromInertia, RecordOfTooFewPointsIsSingular) {
    expectSingular(xf_InertiaDataPolygon(Points{{0, 0}, {1, 0}}));
}

TEST(EllipseFromInertia, OneZeroPrincipalMomentIsSingular) {
    expectSingular(centralRecord(1.0, 0.0, 0.0));
    expectSingular(centralRecord(0.0, 1.0, 0.0));
    expectSingular(centralRecord(5.0, 5e-13, 0.0));  // within 1e-12 of 0
    // Rank one: principal moments 2 (along 45 degrees) and 0.
    expectSingular(centralRecord(1.0, 1.0, 1.0));
}

TEST(EllipseFromInertia, PrincipalMomentJustAboveToleranceIsAccepted) {
    EXPECT_NO_THROW(xf_EllipseFromInertiaData(centralRecord(5.0, 2e-12, 0.0)));
}

TEST(EllipseFromInertia, NanRecordGivesNanWithoutThrowing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    xcEllipse e;
    ASSERT_NO_THROW(e = xf_EllipseFromInertiaData(centralRecord(nan, 1.0, 0.0)));
    EXPECT_TRUE(std::isnan(e.r1()));
}

// ---- xf_StdDev ---------------------------------------------------------------------------

TEST(StdDev, OneToFour) {
    // Mean 2.5; squared deviations 2.25 + 0.25 + 0.25 + 2.25 = 5; 5 / 4 = 1.25.
    EXPECT_NEAR(xf_StdDev({1, 2, 3, 4}), std::sqrt(1.25), 1e-15);
}

TEST(StdDev, DividesByCountNotCountMinusOne) {
    // Mean 5; squared deviations 9 + 1 + 1 + 1 + 0 + 0 + 4 + 16 = 32; 32 / 8 = 4.
    EXPECT_EQ(xf_StdDev({2, 4, 4, 4, 5, 5, 7, 9}), 2.0);
}

TEST(StdDev, SingleValueIsZero) {
    EXPECT_EQ(xf_StdDev({42.5}), 0.0);
}

TEST(StdDev, EmptyListIsNan) {
    EXPECT_TRUE(std::isnan(xf_StdDev({})));
}

}  // namespace
