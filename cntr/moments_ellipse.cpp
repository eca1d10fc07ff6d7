// Ellipses from inertia records, and the standard deviation of a list of numbers.
#include <cmath>

#include <cntr/moments.h>
#include <foundation/exception.h>
#include <foundation/numeric.h>
#include <cntr/tolerances.h>

using namespace cntr;

namespace {

/// pi squared, as used by the semi-axis formulas.
constexpr double kPiSquared = 9.869604401089358;

/// The eighth root of a non-negative value, taken as three successive square roots.
double eighthRoot(double v) {
    return std::sqrt(std::sqrt(std::sqrt(v)));
}

}  // namespace

xcEllipse xf_EllipseFromInertiaData(const xc_InertiaData& data) {
    const xcMatrix<2>& m = data.inertiaMatrix();
    const xcRadian theta(std::atan2(2.0 * m.element(0, 1), m.element(0, 0) - m.element(1, 1)) /
                         2.0);
    const xcMatrix<2> rotate(theta, theta, 1.0, 1.0);
    const xcMatrix<2> rotateBack(-theta, -theta, 1.0, 1.0);
    // The principal moments: along theta (a) and across it (b).
    const xcMatrix<2> principal = rotateBack * m * rotate;
    const double a = std::fabs(principal.element(0, 0));
    const double b = std::fabs(principal.element(1, 1));
    if (xfRealEq(a, 0.0, kZeroPrincipalMoment) || xfRealEq(b, 0.0, kZeroPrincipalMoment))
        throw xcMathError::Singular(L"inertia data with a zero principal moment has no ellipse");
    // A solid ellipse with semi-axes A, B has moments a = pi A^3 B / 4 and b = pi A B^3 / 4.
    const double r1 = eighthRoot(16.0 * a * a * a / (kPiSquared * b));
    const double r2 = eighthRoot(16.0 * b * b * b / (kPiSquared * a));
    return xcEllipse(
        xcEllipse::xcEllipseGeom(xcPoint(data.centerOfMass()), r1, r2, theta, false, false));
}

double xf_StdDev(const std::vector<double>& values) {
    const double n = static_cast<double>(values.size());
    double sum = 0.0;
    for (double v : values)
        sum += v;
    const double mean = sum / n;
    double squares = 0.0;
    for (double v : values)
        squares += (v - mean) * (v - mean);
    return std::sqrt(squares / n);
}
