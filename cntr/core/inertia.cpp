// The second moments of a polygon from its fan of triangles, and the combination of moment
// records by the parallel-axis theorem.
#include <cntr/core/inertia.h>

#include <cmath>
#include <cstddef>

#include <cntr/core/moments.h>
#include <cntr/tolerances.h>
#include <foundation/exception.h>
#include <foundation/geometry.h>

namespace cntr::core {

namespace {

/// A triangle has three sides to try as the base.
constexpr int kTriangleSides = 3;

/// Whether the area counts as zero for combination: exactly 0, or NaN.
bool isNeutralArea(double area) {
    return !(area < 0.0) && !(area > 0.0);
}

/// Moments of the triangle (-a, 0), (b, 0), (0, h) with a, b, h >= 0: the base lies on the x axis
/// with the foot of the altitude at the origin. Inside this helper the matrix holds the moment
/// about the x axis (the integral of y^2) at (0,0) and the integral of x^2 at (1,1), the reverse
/// of InertiaRecord's layout; triangleOnBase() reads it in this layout.
InertiaRecord canonicalTriangleInertia(double a, double b, double h) {
    const double s = a + b;
    const double area = s * h / 2.0;
    const double gx = (b - a) / 3.0;
    const double gy = h / 3.0;
    // Integrals about the foot of the altitude ...
    double jy = s * h * h * h / 12.0;
    double jxy = (b * b - a * a) * h * h / 24.0;
    double jx = (a * a * a + b * b * b) * h / 12.0;
    // ... moved to the centroid (parallel-axis theorem).
    jy -= area * gy * gy;
    jx -= area * gx * gx;
    jxy -= area * gx * gy;
    return {area, xcVector<2>(gx, gy), xcMatrix<2>(jy, jxy, jxy, jx)};
}

/// Moments of triangle (p0, p1, p2) in world coordinates, using p0-p1 (whose line is `base`) as
/// the base; the foot of the altitude from p2 must lie on that side.
InertiaRecord triangleOnBase(const xcVector<2>& p0, const xcVector<2>& p1, const xcVector<2>& p2,
                             const xcLine& base) {
    const xcVector<2> foot = base.proj(p2);
    const InertiaRecord canonical =
        canonicalTriangleInertia((foot - p0).length(), (foot - p1).length(), (foot - p2).length());
    double area = canonical.area;
    xcVector<2> g = canonical.centre;
    const xcMatrix<2>& m = canonical.moments;
    const double jy = m.element(0, 0);
    const double jx = m.element(1, 1);
    double jxy = m.element(0, 1);
    // Clockwise corners (or NaN) put p2 below the base: mirror in the base line. The diagonal
    // stays positive; the area and the product moment change sign.
    if (!((p1 - p0).cross(p2 - p0) >= 0.0)) {
        area = -area;
        g = xcVector<2>(g.x(), -g.y());
        jxy = -jxy;
    }
    const xcRadian theta = (p1 - p0).angle();
    const double c = std::cos(theta.toDouble());
    const double s = std::sin(theta.toDouble());
    const double xx = jx * c * c - 2.0 * jxy * s * c + jy * s * s;
    const double yy = jx * s * s + 2.0 * jxy * s * c + jy * c * c;
    const double xy = jx * s * c + jxy * (c * c - s * s) - jy * s * c;
    const xcVector<2> center = foot + xcMatrix<2>(theta, theta, 1.0, 1.0) * g;
    return {area, center, xcMatrix<2>(xx, xy, xy, yy)};
}

/// Moments of triangle (p0, p1, p2) in world coordinates (sign convention of InertiaRecord).
/// The corners are rotated (keeping the orientation) until the foot of the altitude onto the
/// side p0-p1 lies within that side. A true triangle always has such a side; when rounding
/// rejects all three, trying again would never end, so this throws xcMathError::Singular.
InertiaRecord triangleInertia(xcVector<2> p0, xcVector<2> p1, xcVector<2> p2) {
    for (int side = 0; side < kTriangleSides; ++side) {
        const xcLineSeg seg(p0, p1);
        const xcLine line = seg.line();
        if (!(line.distToPoint(p2) < seg.distToPoint(p2) - kFootOutsideSlack))
            return triangleOnBase(p0, p1, p2, line);
        const xcVector<2> first = p0;
        p0 = p1;
        p1 = p2;
        p2 = first;
    }
    throw xcMathError::Singular(
        L"triangle moments: no side holds the foot of the opposite altitude");
}

/// Adds into `total`, in index order, every unmarked record that `admit` accepts, and marks it.
template <class Admit>
void addPass(InertiaRecord& total, const std::vector<InertiaRecord>& fan, std::vector<bool>& added,
             Admit admit) {
    for (std::size_t i = 0; i < fan.size(); ++i) {
        if (added[i] || !admit(fan[i].area))
            continue;
        total = combinedInertia(total, fan[i]);
        added[i] = true;
    }
}

}  // namespace

InertiaRecord combinedInertia(const InertiaRecord& first, const InertiaRecord& second) {
    if (isNeutralArea(first.area))
        return second;
    if (isNeutralArea(second.area))
        return first;

    const double area = first.area + second.area;
    xcVector<2> center;
    if (std::fabs(area) > kNegligibleCombinedArea)
        center = (second.centre * second.area + first.centre * first.area) / area;
    const xcVector<2> dA = center - first.centre;
    const xcVector<2> dB = center - second.centre;

    // Parallel-axis weights and matrix factors. Same sign: plain sum with |area| weights.
    // Opposite signs (or a NaN product): signed weights, and the member with the smaller signed
    // area has its central moments subtracted.
    double wA = first.area;
    double wB = second.area;
    double fA = 1.0;
    double fB = 1.0;
    const double product = first.area * second.area;
    if (product > 0.0) {
        wA = std::fabs(wA);
        wB = std::fabs(wB);
    } else if (!(product >= 0.0)) {
        if (first.area > second.area)
            fB = -1.0;
        else
            fA = -1.0;
    }

    const xcMatrix<2>& a = first.moments;
    const xcMatrix<2>& b = second.moments;
    const double xx =
        fA * a.element(0, 0) + wA * dA.x() * dA.x() + fB * b.element(0, 0) + wB * dB.x() * dB.x();
    const double yy =
        fA * a.element(1, 1) + wA * dA.y() * dA.y() + fB * b.element(1, 1) + wB * dB.y() * dB.y();
    const double xy =
        fA * a.element(0, 1) + wA * dA.x() * dA.y() + fB * b.element(0, 1) + wB * dB.x() * dB.y();
    return {area, center, xcMatrix<2>(xx, xy, xy, yy)};
}

InertiaRecord polygonInertia(const std::vector<xcVector<2>>& points) {
    InertiaRecord total;
    const std::size_t n = points.size();
    if (n < 3)
        return total;

    // Fan of triangles (centroid, previous, current), one per edge, closing edge first.
    const xcVector<2> c = polygonCentroid(points);
    std::vector<InertiaRecord> fan;
    fan.reserve(n);
    double sum = 0.0;
    xcVector<2> previous = points.back();
    for (const xcVector<2>& current : points) {
        fan.push_back(triangleInertia(c, previous, current));
        sum += fan.back().area;
        previous = current;
    }
    const double mean = sum / static_cast<double>(n);

    // Three passes fix the order of summation, large contributions first. The first test is
    // kept as it stands: for a negative mean it admits every triangle whose area differs from
    // the mean.
    std::vector<bool> added(n, false);
    addPass(total, fan, added,
            [mean](double area) { return area > mean || (mean < 0.0 && area < mean); });
    const double threshold = mean > 0.0 ? kSmallTriangleArea : -kSmallTriangleArea;
    addPass(total, fan, added, [threshold](double area) {
        return area > threshold || (threshold < 0.0 && area < threshold);
    });
    addPass(total, fan, added, [](double) { return true; });
    return total;
}

}  // namespace cntr::core
