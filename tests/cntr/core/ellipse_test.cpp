// The core's ellipses: the one with given second moments, on the moments of solid ellipses worked
// out by hand, and the fitted one with its circle fall-back.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/ellipse.h>
#include <foundation/angle.h>
#include <foundation/exception.h>

namespace {

using cntr::core::EllipseFit;
using cntr::core::ellipseOfMoments;
using cntr::core::fitEllipse;
using Points = std::vector<xcVector<2>>;

constexpr double kTol = 1e-12;

void expectEllipse(const xcEllipse& e, double cx, double cy, double r1, double r2,
                   double rotation) {
    EXPECT_NEAR(e.center().x(), cx, kTol);
    EXPECT_NEAR(e.center().y(), cy, kTol);
    EXPECT_NEAR(e.r1(), r1, kTol);
    EXPECT_NEAR(e.r2(), r2, kTol);
    EXPECT_NEAR(e.rotation().toDouble(), rotation, kTol);
    EXPECT_FALSE(e.flag1());
    EXPECT_FALSE(e.flag2());
}

// ---- the ellipse of given moments ----

// A solid ellipse with semi-axes A along x and B along y has central moments pi A^3 B / 4 (the
// integral of x^2) and pi A B^3 / 4 (that of y^2); for A = 2, B = 1: 2 pi and pi / 2.
TEST(CoreEllipse, MomentsOfASolidEllipseGiveItsAxes) {
    const xcEllipse e = ellipseOfMoments(xcVector<2>(5, -7), xcMatrix<2>(2 * xcPi, 0, 0, xcPi / 2));
    expectEllipse(e, 5.0, -7.0, 2.0, 1.0, 0.0);
}

TEST(CoreEllipse, LargerMomentAcrossGivesAQuarterTurn) {
    // The same ellipse with its long axis along y: atan2(0, pi/2 - 2 pi) / 2 = pi / 2.
    const xcEllipse e = ellipseOfMoments(xcVector<2>(), xcMatrix<2>(xcPi / 2, 0, 0, 2 * xcPi));
    expectEllipse(e, 0.0, 0.0, 2.0, 1.0, xcPi / 2);
}

TEST(CoreEllipse, TurnedMomentsGiveTheTurn) {
    // The moments turned by t = pi / 6: M = R diag(2 pi, pi / 2) R^T, whose elements are
    // 2 pi c^2 + pi/2 s^2, 2 pi s^2 + pi/2 c^2 and (2 pi - pi/2) s c with c = cos t, s = sin t.
    const double c = std::sqrt(3.0) / 2, s = 0.5;
    const double xx = 2 * xcPi * c * c + xcPi / 2 * s * s;
    const double yy = 2 * xcPi * s * s + xcPi / 2 * c * c;
    const double xy = (2 * xcPi - xcPi / 2) * s * c;
    const xcEllipse e = ellipseOfMoments(xcVector<2>(1, 2), xcMatrix<2>(xx, xy, xy, yy));
    expectEllipse(e, 1.0, 2.0, 2.0, 1.0, xcPi / 6);
}

TEST(CoreEllipse, AZeroPrincipalMomentThrowsSingular) {
    EXPECT_THROW(ellipseOfMoments(xcVector<2>(), xcMatrix<2>()), xcMathError::Singular);
    // A segment along x: no moment across it.
    EXPECT_THROW(ellipseOfMoments(xcVector<2>(), xcMatrix<2>(3, 0, 0, 0)), xcMathError::Singular);
}

// ---- the fit ----

// Expects a fit through every point: the given centre and semi-axes, rms 0.
void expectExactFit(const EllipseFit& fit, double cx, double cy, double r1, double r2) {
    EXPECT_NEAR(fit.ellipse.center().x(), cx, kTol);
    EXPECT_NEAR(fit.ellipse.center().y(), cy, kTol);
    EXPECT_NEAR(fit.ellipse.r1(), r1, kTol);
    EXPECT_NEAR(fit.ellipse.r2(), r2, kTol);
    EXPECT_NEAR(fit.rms, 0.0, kTol);
}

TEST(CoreEllipse, PointsOnAnEllipseGiveThatEllipse) {
    // 12 points on the ellipse with centre (1, 2), semi-axes 3 along x and 1 along y.
    Points p;
    for (int i = 0; i < 12; ++i) {
        const double t = 2.0 * xcPi * i / 12.0;
        p.emplace_back(1.0 + 3.0 * std::cos(t), 2.0 + std::sin(t));
    }
    expectExactFit(fitEllipse(p), 1.0, 2.0, 3.0, 1.0);
}

TEST(CoreEllipse, ThreePointsFallBackToTheirCircumcircle) {
    // Too few for an ellipse. The right triangle (0,0), (4,0), (0,3) has its circumcentre at the
    // hypotenuse's midpoint (2, 1.5) and radius half the hypotenuse, 5 / 2.
    expectExactFit(fitEllipse(Points{{0, 0}, {4, 0}, {0, 3}}), 2.0, 1.5, 2.5, 2.5);
}

TEST(CoreEllipse, NoFitGivesTheDefaultEllipseAndRmsMinusOne) {
    for (const Points& p :
         {Points{}, Points{{0, 0}, {1, 0}}, Points{{0, 0}, {1, 1}, {2, 2}, {3, 3}}}) {
        const EllipseFit fit = fitEllipse(p);
        EXPECT_EQ(fit.ellipse, xcEllipse());
        EXPECT_EQ(fit.rms, -1.0);
    }
}

}  // namespace
