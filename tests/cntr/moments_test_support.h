#ifndef TESTS_CNTR_MOMENTS_TEST_SUPPORT_H
#define TESTS_CNTR_MOMENTS_TEST_SUPPORT_H

// Shapes and reference moments shared by the moment tests. The reference moments are the
// classical closed forms (shoelace, polygon centroid, Green's-theorem second moments), written
// here independently of the library's fan-of-triangles construction.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/moments.h>
#include <foundation/exception.h>
#include <foundation/matrix.h>
#include <foundation/random.h>
#include <foundation/vector.h>

namespace moments_test {

using Points = std::vector<xcVector<2>>;

inline Points reversed(Points p) {
    std::reverse(p.begin(), p.end());
    return p;
}

inline Points translated(Points p, const xcVector<2>& by) {
    for (xcVector<2>& v : p)
        v += by;
    return p;
}

/// The list starting at vertex `start` (same polygon, same orientation).
inline Points rotatedStart(const Points& p, std::size_t start) {
    Points out;
    for (std::size_t i = 0; i < p.size(); ++i)
        out.push_back(p[(start + i) % p.size()]);
    return out;
}

/// The axis-aligned rectangle [x0, x1] x [y0, y1], counter-clockwise.
inline Points rectangle(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

/// Signed area, centroid and central second moments from the closed forms.
struct ReferenceMoments {
    double area = 0.0;   ///< signed, positive counter-clockwise
    xcVector<2> center;  ///< area centroid
    double xx = 0.0;     ///< integral of (x - cx)^2, taken over the region (always >= 0)
    double yy = 0.0;     ///< integral of (y - cy)^2
    double xy = 0.0;     ///< integral of (x - cx)(y - cy)
};

/// Shoelace area and the standard polygon centroid
///   A = 1/2 sum c_i, cx = 1/(6A) sum (x_i + x_j) c_i, cy = 1/(6A) sum (y_i + y_j) c_i,
/// with j = i + 1 (cyclic) and c_i = x_i y_j - x_j y_i; then the Green's-theorem second moments
///   Ixx = 1/12 sum (x_i^2 + x_i x_j + x_j^2) c_i, Iyy likewise in y,
///   Ixy = 1/24 sum (x_i y_j + 2 x_i y_i + 2 x_j y_j + x_j y_i) c_i,
/// evaluated on coordinates relative to the centroid (then corrected by the parallel-axis term
/// of the centroid's residual, which is only rounding). The sums are signed (negative for a
/// clockwise list); the region's own moments are the signed sums times the sign of A.
inline ReferenceMoments referenceMoments(const Points& p) {
    ReferenceMoments r;
    const std::size_t n = p.size();
    const xcVector<2> origin = p[0];  // relative coordinates keep the sums well conditioned
    double a2 = 0.0, sx = 0.0, sy = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const xcVector<2> u = p[i] - origin;
        const xcVector<2> v = p[(i + 1) % n] - origin;
        const double c = u.x() * v.y() - v.x() * u.y();
        a2 += c;
        sx += (u.x() + v.x()) * c;
        sy += (u.y() + v.y()) * c;
    }
    r.area = a2 / 2.0;
    r.center = origin + xcVector<2>(sx / (3.0 * a2), sy / (3.0 * a2));

    double ixx = 0.0, iyy = 0.0, ixy = 0.0, b2 = 0.0, bx = 0.0, by = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const xcVector<2> u = p[i] - r.center;
        const xcVector<2> v = p[(i + 1) % n] - r.center;
        const double c = u.x() * v.y() - v.x() * u.y();
        ixx += (u.x() * u.x() + u.x() * v.x() + v.x() * v.x()) * c;
        iyy += (u.y() * u.y() + u.y() * v.y() + v.y() * v.y()) * c;
        ixy += (u.x() * v.y() + 2.0 * u.x() * u.y() + 2.0 * v.x() * v.y() + v.x() * u.y()) * c;
        b2 += c;
        bx += (u.x() + v.x()) * c;
        by += (u.y() + v.y()) * c;
    }
    const double area = b2 / 2.0;
    const double gx = bx / (3.0 * b2);  // residual centroid in the shifted frame, ~0
    const double gy = by / (3.0 * b2);
    const double sign = area < 0.0 ? -1.0 : 1.0;
    r.xx = sign * (ixx / 12.0 - area * gx * gx);
    r.yy = sign * (iyy / 12.0 - area * gy * gy);
    r.xy = sign * (ixy / 24.0 - area * gx * gy);
    return r;
}

/// A polygon star-shaped about `center`: n vertices at increasing, jittered angles with radii
/// in [minFraction * radius, radius], listed counter-clockwise. Consecutive angles are strictly
/// increasing, so the polygon is simple.
inline Points starPolygon(xcRandomUniform& rng, std::size_t n, const xcVector<2>& center,
                          double radius, double minFraction) {
    const double twoPi = 2.0 * xcPi;
    const double phase = rng.next(0.0, twoPi);
    Points p;
    for (std::size_t i = 0; i < n; ++i) {
        const double angle =
            phase + twoPi * (static_cast<double>(i) + rng.next(0.0, 0.9)) / static_cast<double>(n);
        const double r = radius * rng.next(minFraction, 1.0);
        p.push_back(center + xcVector<2>(r * std::cos(angle), r * std::sin(angle)));
    }
    return p;
}

/// Whether every fan triangle (c, p[i], p[i+1]) turns the same way, with a margin relative to
/// the polygon's size: the polygon is then star-shaped about c.
inline bool isStarShapedAbout(const Points& p, const xcVector<2>& c, double size) {
    int positive = 0, negative = 0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        const double cr = (p[i] - c).cross(p[(i + 1) % p.size()] - c);
        if (cr > 1e-9 * size * size)
            ++positive;
        else if (cr < -1e-9 * size * size)
            ++negative;
        else
            return false;
    }
    return positive == 0 || negative == 0;
}

/// Whether some fan triangle (c, p[i-1], p[i]) has a corner whose foot on the line of the
/// opposite side falls outside that side while its distances to the line and to the side differ
/// by less than `window`. The library takes such a side as holding the foot (see
/// xf_InertiaDataPolygon) and then measures the triangle on a base that is too long, so the
/// closed forms are not expected to match there to rounding accuracy.
inline bool hasFootJustOutsideASide(const Points& p, const xcVector<2>& c, double window) {
    for (std::size_t i = 0; i < p.size(); ++i) {
        const xcVector<2> tri[3] = {c, p[(i + p.size() - 1) % p.size()], p[i]};
        for (int k = 0; k < 3; ++k) {
            const xcVector<2>& u = tri[k];
            const xcVector<2>& v = tri[(k + 1) % 3];
            const xcVector<2>& w = tri[(k + 2) % 3];
            const xcVector<2> d = v - u;
            const double dd = d.dot(d);
            if (dd == 0.0)
                continue;
            const double t = (w - u).dot(d) / dd;
            if (t >= 0.0 && t <= 1.0)
                continue;
            const double lineDist = std::fabs(d.cross(w - u)) / std::sqrt(dd);
            const double sideDist = t < 0.0 ? (w - u).length() : (w - v).length();
            if (sideDist - lineDist < window)
                return true;
        }
    }
    return false;
}

/// Expects `actual` to match the reference within `tol` per coordinate and matrix element.
inline void expectRecordNear(const xc_InertiaData& actual, double area, const xcVector<2>& center,
                             double xx, double yy, double xy, double tol) {
    EXPECT_NEAR(actual.area(), area, tol);
    EXPECT_NEAR(actual.centerOfMass().x(), center.x(), tol);
    EXPECT_NEAR(actual.centerOfMass().y(), center.y(), tol);
    const xcMatrix<2>& m = actual.inertiaMatrix();
    EXPECT_NEAR(m.element(0, 0), xx, tol);
    EXPECT_NEAR(m.element(1, 1), yy, tol);
    EXPECT_NEAR(m.element(0, 1), xy, tol);
    EXPECT_NEAR(m.element(1, 0), xy, tol);
}

/// Expects `call` to throw xcMathError::Singular with the foundation's error number and the
/// given message.
template <class Call>
void expectSingular(Call call, const std::wstring& message) {
    try {
        call();
        ADD_FAILURE() << "expected xcMathError::Singular";
    } catch (const xcMathError::Singular& e) {
        EXPECT_EQ(e.errorNumber(), xnErrorNumber::MathSingular);
        EXPECT_EQ(e.message(), message);
    }
}

}  // namespace moments_test

#endif
