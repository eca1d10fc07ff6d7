#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include <Eigen/Cholesky>
#include <Eigen/Core>
#include <Eigen/Eigenvalues>

#include <foundation/fit.h>

xcFitError::TooFewPoints::TooFewPoints(const std::wstring& message) : xcExceptionT(message) {}
xcFitError::TooFewPoints::~TooFewPoints() = default;
xcFitError::Degenerate::Degenerate(const std::wstring& message) : xcExceptionT(message) {}
xcFitError::Degenerate::~Degenerate() = default;
xcFitError::RmsTooLarge::RmsTooLarge(const std::wstring& message) : xcExceptionT(message) {}
xcFitError::RmsTooLarge::~RmsTooLarge() = default;

// The fit errors can be stored in archives like the foundation's other exceptions.
namespace {
const xc_Instantiator kTooFewPointsClass(typeid(xcFitError::TooFewPoints),
                                         &xcFitError::TooFewPoints::make);
const xc_Instantiator kDegenerateClass(typeid(xcFitError::Degenerate),
                                       &xcFitError::Degenerate::make);
const xc_Instantiator kRmsTooLargeClass(typeid(xcFitError::RmsTooLarge),
                                        &xcFitError::RmsTooLarge::make);
}  // namespace

namespace {

// Points whose rms distance from their best-fit line is below this fraction of their rms
// distance from their centroid count as collinear: they determine no circle and no ellipse.
constexpr double kCollinearRelativeSpread = 1e-12;
// Fitted ellipses more elongated than this (r1 / r2) are rejected as degenerate: they are
// segments in all but name, and the distance computation squares the ratio.
constexpr double kMaxAxisRatio = 1e100;
// Newton's method for the nearest point of an ellipse takes 2 or 3 steps typically and under 50
// for the most elongated ellipses and extreme positions; the bound only turns a logic error into
// an exception instead of a hang.
constexpr int kMaxNewtonSteps = 200;
constexpr std::size_t kEllipseMinPoints = 5;
constexpr std::size_t kCircleMinPoints = 3;

using Points = std::vector<xcVector<2>>;

std::wstring formatNumber(double v) {
    std::wostringstream os;
    os << v;
    return os.str();
}

void checkInputs(const Points& points, double maxRms, const wchar_t* fitName) {
    if (std::isnan(maxRms))
        throw xcMathError::NotFinite(std::wstring(fitName) + L": maxRms is NaN");
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!std::isfinite(points[i].x()) || !std::isfinite(points[i].y()))
            throw xcMathError::NotFinite(std::wstring(fitName) + L": point " + std::to_wstring(i) +
                                         L" has a non-finite coordinate");
    }
}

// The similarity that maps the points to coordinates centred on their centroid with unit rms
// distance from it: the algebraic fits are well conditioned there whatever the input's position
// and size.
struct Frame {
    xcVector<2> origin;
    double scale = 1.0;
    xcVector<2> toLocal(const xcVector<2>& p) const { return (p - origin) / scale; }
    xcVector<2> toWorld(const xcVector<2>& q) const { return origin + q * scale; }
};

// The centroid of the points and their rms distance from it; the largest coordinate difference
// is factored out first so that no square over- or underflows. Throws Degenerate when all points
// coincide.
Frame centredFrame(const Points& points, const wchar_t* fitName) {
    if (std::all_of(points.begin(), points.end(),
                    [&points](const xcVector<2>& p) { return p == points.front(); }))
        throw xcFitError::Degenerate(std::wstring(fitName) + L": all points coincide");
    xcVector<2> sum;
    for (const xcVector<2>& p : points)
        sum += p / static_cast<double>(points.size());
    Frame frame;
    frame.origin = sum;
    double largest = 0.0;  // the largest coordinate difference: no square, no overflow
    for (const xcVector<2>& p : points) {
        const xcVector<2> d = p - frame.origin;
        largest = std::max({largest, std::fabs(d.x()), std::fabs(d.y())});
    }
    if (!std::isfinite(largest))
        throw xcMathError::NotFinite(std::wstring(fitName) + L": coordinates too large to fit");
    double sumSquares = 0.0;
    for (const xcVector<2>& p : points) {
        const xcVector<2> d = (p - frame.origin) / largest;
        sumSquares += d.dot(d);
    }
    frame.scale = largest * std::sqrt(sumSquares / static_cast<double>(points.size()));
    return frame;
}

// Throws Degenerate when the points (in the centred frame) lie on one line: the rms distance
// from their principal axis, measured point by point, is below kCollinearRelativeSpread.
void checkNotCollinear(const Points& points, const Frame& frame, const wchar_t* fitName) {
    double cuu = 0.0, cuv = 0.0, cvv = 0.0;
    for (const xcVector<2>& p : points) {
        const xcVector<2> q = frame.toLocal(p);
        cuu += q.x() * q.x();
        cuv += q.x() * q.y();
        cvv += q.y() * q.y();
    }
    const double axis = 0.5 * std::atan2(2.0 * cuv, cuu - cvv);
    const xcVector<2> normal(-std::sin(axis), std::cos(axis));
    double across = 0.0;
    for (const xcVector<2>& p : points) {
        const double d = normal.dot(frame.toLocal(p));
        across += d * d;
    }
    if (std::sqrt(across / static_cast<double>(points.size())) < kCollinearRelativeSpread)
        throw xcFitError::Degenerate(std::wstring(fitName) + L": the points are collinear");
}

Frame checkedFrame(const Points& points, const wchar_t* fitName) {
    const Frame frame = centredFrame(points, fitName);
    checkNotCollinear(points, frame, fitName);
    return frame;
}

// ---- Circle ----------------------------------------------------------------------------------

// Names that begin every error message (plain literals: no static initialisation order).
constexpr const wchar_t* kCircleFit = L"circle fit";

// Kasa's algebraic fit: least squares of u^2 + v^2 + D u + E v + F over (D, E, F), in the
// centred frame.
xcCircle fitCircleOnce(const Points& points) {
    const Frame frame = checkedFrame(points, kCircleFit);
    Eigen::Matrix3d normal = Eigen::Matrix3d::Zero();
    Eigen::Vector3d rhs = Eigen::Vector3d::Zero();
    for (const xcVector<2>& p : points) {
        const xcVector<2> q = frame.toLocal(p);
        const Eigen::Vector3d row(q.x(), q.y(), 1.0);
        normal.noalias() += row * row.transpose();
        rhs -= row * q.dot(q);
    }
    const Eigen::LLT<Eigen::Matrix3d> llt(normal);
    if (llt.info() != Eigen::Success)
        throw xcFitError::Degenerate(std::wstring(kCircleFit) +
                                     L": the points are nearly collinear");
    const Eigen::Vector3d def = llt.solve(rhs);
    const xcVector<2> centre(-0.5 * def[0], -0.5 * def[1]);
    const double radiusSquared = centre.dot(centre) - def[2];
    if (!(radiusSquared > 0.0) || !std::isfinite(radiusSquared))
        throw xcFitError::Degenerate(std::wstring(kCircleFit) +
                                     L": the points determine no circle");
    return xcCircle(frame.toWorld(centre), frame.scale * std::sqrt(radiusSquared));
}

double distanceToCircle(const xcCircle& circle, const xcVector<2>& p) {
    const xcVector<2> d = p - circle.center();
    return std::fabs(std::hypot(d.x(), d.y()) - circle.radius());
}

// ---- Ellipse ---------------------------------------------------------------------------------

constexpr const wchar_t* kEllipseFit = L"ellipse fit";

// A x^2 + B xy + C y^2 + D x + E y + F = 0.
struct Conic {
    double a, b, c, d, e, f;
};

// The Halir-Flusser formulation of Fitzgibbon's direct ellipse fit, in the centred frame: with
// D1 = [x^2 xy y^2] and D2 = [x y 1] per point, the linear part is eliminated (T = -S3^-1 S2^T)
// and the quadratic part is the eigenvector of C1^-1 (S1 + S2 T) that satisfies the ellipse
// constraint 4 A C - B^2 > 0. The constraint has exactly one positive direction, so at most one
// eigenvector qualifies in exact arithmetic; numerically the one with the largest normalised
// constraint value is taken.
Conic algebraicEllipse(const Points& points, const Frame& frame) {
    Eigen::Matrix3d s1 = Eigen::Matrix3d::Zero(), s2 = Eigen::Matrix3d::Zero(),
                    s3 = Eigen::Matrix3d::Zero();
    for (const xcVector<2>& p : points) {
        const xcVector<2> q = frame.toLocal(p);
        const Eigen::Vector3d quadratic(q.x() * q.x(), q.x() * q.y(), q.y() * q.y());
        const Eigen::Vector3d linear(q.x(), q.y(), 1.0);
        s1.noalias() += quadratic * quadratic.transpose();
        s2.noalias() += quadratic * linear.transpose();
        s3.noalias() += linear * linear.transpose();
    }
    const Eigen::LLT<Eigen::Matrix3d> s3Factor(s3);
    if (s3Factor.info() != Eigen::Success)
        throw xcFitError::Degenerate(std::wstring(kEllipseFit) +
                                     L": the points are nearly collinear");
    const Eigen::Matrix3d t = -s3Factor.solve(s2.transpose());
    const Eigen::Matrix3d reduced = s1 + s2 * t;
    // C1^-1 * reduced with C1 = [[0 0 2] [0 -1 0] [2 0 0]].
    Eigen::Matrix3d system;
    system.row(0) = 0.5 * reduced.row(2);
    system.row(1) = -reduced.row(1);
    system.row(2) = 0.5 * reduced.row(0);

    const Eigen::EigenSolver<Eigen::Matrix3d> solver(system);
    if (solver.info() != Eigen::Success)
        throw xcFitError::Degenerate(std::wstring(kEllipseFit) +
                                     L": the eigenvalue problem did not converge");
    double bestConstraint = 0.0;
    Eigen::Vector3d best = Eigen::Vector3d::Zero();
    for (int k = 0; k < 3; ++k) {
        if (solver.eigenvalues()[k].imag() != 0.0)
            continue;
        const Eigen::Vector3d v = solver.eigenvectors().col(k).real();
        const double constraint = (4.0 * v[0] * v[2] - v[1] * v[1]) / v.squaredNorm();
        if (constraint > bestConstraint) {
            bestConstraint = constraint;
            best = v;
        }
    }
    if (!(bestConstraint > 0.0))
        throw xcFitError::Degenerate(std::wstring(kEllipseFit) +
                                     L": the points determine no ellipse");
    const Eigen::Vector3d linear = t * best;
    return {best[0], best[1], best[2], linear[0], linear[1], linear[2]};
}

// The rotation in [0, pi) of an axis direction given in (-pi, pi].
double halfTurnNormalised(double angle) {
    double r = std::fmod(angle, xcPi);
    if (r < 0.0)
        r += xcPi;
    if (r >= xcPi)
        r = 0.0;
    return r;
}

// The centre, radii and rotation of the conic, mapped from the centred frame back to the
// world. Throws Degenerate when the conic is no real ellipse.
xcEllipse ellipseFromConic(Conic k, const Frame& frame) {
    if (k.a + k.c < 0.0)
        k = {-k.a, -k.b, -k.c, -k.d, -k.e, -k.f};
    const double det = 4.0 * k.a * k.c - k.b * k.b;
    if (!(det > 0.0))
        throw xcFitError::Degenerate(std::wstring(kEllipseFit) +
                                     L": the conic is a hyperbola or parabola");
    const xcVector<2> centre((k.b * k.e - 2.0 * k.c * k.d) / det,
                             (k.b * k.d - 2.0 * k.a * k.e) / det);
    const double valueAtCentre = k.f + 0.5 * (k.d * centre.x() + k.e * centre.y());
    // Eigenvalues of [[A, B/2], [B/2, C]]: the larger without cancellation, the smaller from
    // the determinant.
    const double larger = 0.5 * (k.a + k.c + std::hypot(k.a - k.c, k.b));
    const double smaller = 0.25 * det / larger;
    const double r1 = frame.scale * std::sqrt(-valueAtCentre / smaller);
    const double r2 = frame.scale * std::sqrt(-valueAtCentre / larger);
    if (!(r2 > 0.0) || !std::isfinite(r1) || !(r1 <= kMaxAxisRatio * r2) ||
        !std::isfinite(centre.x()) || !std::isfinite(centre.y()))
        throw xcFitError::Degenerate(std::wstring(kEllipseFit) +
                                     L": the points determine no real ellipse");
    // The larger eigenvalue's axis is at half the angle of (A - C, B); r1 lies across it.
    const double rotation = halfTurnNormalised(0.5 * std::atan2(k.b, k.a - k.c) + 0.5 * xcPi);
    return xcEllipse(
        xcEllipse::xcEllipseGeom(frame.toWorld(centre), r1, r2, xcRadian(rotation), false, false));
}

xcEllipse fitEllipseOnce(const Points& points) {
    const Frame frame = checkedFrame(points, kEllipseFit);
    return ellipseFromConic(algebraicEllipse(points, frame), frame);
}

// The nearest point of the ellipse x0^2 + x1^2 / e1^2 = 1 to (y0, y1), y0, y1 > 0, is
// x0 = r0 y0 / (s + r0), x1 = y1 / (s + 1) with r0 = 1 / e1^2 and s the root of
// g(s) = (r0 y0 / (s + r0))^2 + (z1 / (s + 1))^2 - 1, z1 = y1 / e1 (Eberly's reduction of the
// quartic). With w = s + 1 (kept as the unknown so that tiny values do not cancel), g is convex
// and decreasing for w > 0, and g <= 1 at w = max(z1, r0 y0 - r0 + 1): Newton's method from there
// climbs to the root from the left without overshooting.
double ellipseRootShifted(double r0, double y0, double z1) {
    const double n0 = r0 * y0;
    const double r0Minus1 = r0 - 1.0;
    double w = std::max(z1, n0 - r0Minus1);
    for (int step = 0; step < kMaxNewtonSteps; ++step) {
        const double a = n0 / (w + r0Minus1);
        const double b = z1 / w;
        const double g = a * a + b * b - 1.0;
        if (!(g > 0.0))
            return w;  // at the root, or a rounding past it
        const double next = w + g / (2.0 * a * a / (w + r0Minus1) + 2.0 * b * b / w);
        if (!(next > w))
            return w;  // no representable progress left
        w = next;
    }
    throw xcFitError::Degenerate(std::wstring(kEllipseFit) +
                                 L": point-to-ellipse distance did not converge");
}

// The distance from (y0, y1), both >= 0, to the ellipse x0^2 + x1^2 / e1^2 = 1, 0 < e1 <= 1.
double distanceToUnitEllipse(double e1, double y0, double y1) {
    if (y1 > 0.0) {
        if (y0 == 0.0)
            return std::fabs(y1 - e1);
        const double r0 = 1.0 / (e1 * e1);
        const double w = ellipseRootShifted(r0, y0, y1 / e1);
        const double x0 = r0 * y0 / (w + (r0 - 1.0));
        const double x1 = y1 / w;
        return std::hypot(x0 - y0, x1 - y1);
    }
    // On the major axis: inside the evolute's cusp the nearest point is off the axis.
    const double denom = (1.0 - e1) * (1.0 + e1);
    if (y0 < denom) {
        const double ratio = y0 / denom;
        return std::hypot(ratio - y0, e1 * std::sqrt(1.0 - ratio * ratio));
    }
    return std::fabs(y0 - 1.0);
}

// Computed in units of r1, which keeps the intermediate squares in range for any ellipse size.
double distanceToEllipse(const xcEllipse& ellipse, const xcVector<2>& p) {
    const double c = std::cos(ellipse.rotation().toDouble());
    const double s = std::sin(ellipse.rotation().toDouble());
    const double unit = ellipse.r1();
    const xcVector<2> d = p - ellipse.center().vector();
    const double along = std::fabs(c * d.x() + s * d.y()) / unit;
    const double across = std::fabs(c * d.y() - s * d.x()) / unit;
    return unit * distanceToUnitEllipse(ellipse.r2() / unit, along, across);
}

// ---- Shared driver ---------------------------------------------------------------------------

// The points without the `ignore` ones farthest from `shape` (ties: the later index is kept),
// in their original order.
template <class Shape, class Distance>
Points withoutFarthest(const Points& points, const Shape& shape, std::size_t ignore,
                       Distance distance) {
    std::vector<double> dist(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        dist[i] = distance(shape, points[i]);
    std::vector<std::size_t> order(points.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto fartherFirst = [&dist](std::size_t i, std::size_t j) {
        return dist[i] > dist[j] || (dist[i] == dist[j] && i < j);
    };
    std::nth_element(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(ignore),
                     order.end(), fartherFirst);
    std::vector<bool> dropped(points.size(), false);
    for (std::size_t k = 0; k < ignore; ++k)
        dropped[order[k]] = true;
    Points kept;
    kept.reserve(points.size() - ignore);
    for (std::size_t i = 0; i < points.size(); ++i)
        if (!dropped[i])
            kept.push_back(points[i]);
    return kept;
}

// The largest distance is factored out so that no square over- or underflows.
template <class Shape, class Distance>
double rmsDistance(const Points& points, const Shape& shape, Distance distance) {
    std::vector<double> dist(points.size());
    double largest = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        dist[i] = distance(shape, points[i]);
        largest = std::max(largest, dist[i]);
    }
    if (largest == 0.0 || !std::isfinite(largest))
        return largest;
    double sum = 0.0;
    for (const double d : dist)
        sum += (d / largest) * (d / largest);
    return largest * std::sqrt(sum / static_cast<double>(points.size()));
}

// Validates the mode and the inputs, fits, drops the `ignoreCount` farthest points and fits
// again, then checks the rms distance of the used points against maxRms. Both parameter classes
// number their one supported mode (all parameters free) 0.
template <class Shape, class Params, class Fit, class Distance>
Shape fitRobustly(const Params& params, const Points& points, std::size_t minPoints,
                  const wchar_t* fitName, Fit fit, Distance distance, double& rms) {
    const int mode = static_cast<int>(params.mode());
    if (mode != 0)
        throw xcFitError::Degenerate(std::wstring(fitName) + L": unsupported fit mode " +
                                     std::to_wstring(mode));
    const double maxRms = params.maxRms();
    checkInputs(points, maxRms, fitName);
    const std::size_t ignore = params.ignoreCount();
    if (ignore > points.size() || points.size() - ignore < minPoints)
        throw xcFitError::TooFewPoints(std::wstring(fitName) + L": " +
                                       std::to_wstring(points.size()) + L" points, " +
                                       std::to_wstring(ignore) + L" to ignore, at least " +
                                       std::to_wstring(minPoints) + L" needed");
    Shape shape = fit(points);
    Points kept;
    if (ignore > 0) {
        kept = withoutFarthest(points, shape, ignore, distance);
        shape = fit(kept);
    }
    rms = rmsDistance(ignore > 0 ? kept : points, shape, distance);
    if (!std::isfinite(rms))
        throw xcMathError::NotFinite(std::wstring(fitName) + L": the residual is not finite");
    if (rms > maxRms)
        throw xcFitError::RmsTooLarge(std::wstring(fitName) + L": rms " + formatNumber(rms) +
                                      L" exceeds maxRms " + formatNumber(maxRms));
    return shape;
}

}  // namespace

void xfEllipseFit(const xcEllipseFitParams& params, const std::vector<xcVector<2>>& points,
                  xcEllipseFitResults& results) {
    double rms = 0.0;
    const xcEllipse ellipse = fitRobustly<xcEllipse>(params, points, kEllipseMinPoints, kEllipseFit,
                                                     fitEllipseOnce, distanceToEllipse, rms);
    results.set(ellipse, rms);
}

void xfCircleFit(const xcCircleFitParams& params, const std::vector<xcVector<2>>& points,
                 xcCircleFitResults& results) {
    double rms = 0.0;
    const xcCircle circle = fitRobustly<xcCircle>(params, points, kCircleMinPoints, kCircleFit,
                                                  fitCircleOnce, distanceToCircle, rms);
    results.set(circle, rms);
}
