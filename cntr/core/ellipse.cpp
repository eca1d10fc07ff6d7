// The ellipse with a shape's second moments, and the ellipse fit of its vertices with the circle
// fit as fall-back.
#include <cntr/core/ellipse.h>

#include <cmath>
#include <limits>

#include <cntr/tolerances.h>
#include <foundation/exception.h>
#include <foundation/fit.h>
#include <foundation/numeric.h>

namespace cntr::core {

namespace {

/// pi squared, as used by the semi-axis formulas.
constexpr double kPiSquared = 9.869604401089358;

/// The eighth root of a non-negative value, taken as three successive square roots.
double eighthRoot(double v) {
    return std::sqrt(std::sqrt(std::sqrt(v)));
}

/// No limit on the fit's rms residual.
constexpr double kUnlimitedRms = std::numeric_limits<double>::infinity();
/// The circle fit's radius hint (used by constrained modes only).
constexpr double kCircleRadiusHint = 1.0;
/// Reported in place of an rms when neither fit worked.
constexpr double kNoFitRms = -1.0;

}  // namespace

xcEllipse ellipseOfMoments(const xcVector<2>& centre, const xcMatrix<2>& moments) {
    const xcRadian theta(
        std::atan2(2.0 * moments.element(0, 1), moments.element(0, 0) - moments.element(1, 1)) /
        2.0);
    const xcMatrix<2> rotate(theta, theta, 1.0, 1.0);
    const xcMatrix<2> rotateBack(-theta, -theta, 1.0, 1.0);
    // The principal moments: along theta (a) and across it (b).
    const xcMatrix<2> principal = rotateBack * moments * rotate;
    const double a = std::fabs(principal.element(0, 0));
    const double b = std::fabs(principal.element(1, 1));
    if (xfRealEq(a, 0.0, kZeroPrincipalMoment) || xfRealEq(b, 0.0, kZeroPrincipalMoment))
        throw xcMathError::Singular(L"inertia data with a zero principal moment has no ellipse");
    // A solid ellipse with semi-axes A, B has moments a = pi A^3 B / 4 and b = pi A B^3 / 4.
    const double r1 = eighthRoot(16.0 * a * a * a / (kPiSquared * b));
    const double r2 = eighthRoot(16.0 * b * b * b / (kPiSquared * a));
    return xcEllipse(xcEllipse::xcEllipseGeom(xcPoint(centre), r1, r2, theta, false, false));
}

EllipseFit fitEllipse(const std::vector<xcVector<2>>& points) {
    try {
        const xcEllipseFitParams params(xcEllipseFitDefs::fitAll, xcRadian(0.0), 0u, kUnlimitedRms);
        xcEllipseFitResults results;
        xfEllipseFit(params, points, results);
        return {results.ellipse(), results.error()};
    } catch (const xcException&) {
        // Not an ellipse (too few points, a degenerate conic, ...): try a circle.
    }
    try {
        const xcCircleFitParams params(xcCircleFitDefs::fitAll, kCircleRadiusHint, 0u,
                                       kUnlimitedRms);
        xcCircleFitResults results;
        xfCircleFit(params, points, results);
        return {xcEllipse(results.circle()), results.error()};
    } catch (const xcException&) {
        return {xcEllipse(), kNoFitRms};
    }
}

}  // namespace cntr::core
