// Exact moments of polygons in rational arithmetic (GMP), the oracle of the floating-point
// moments: every double is a rational, so the integrals of a polygon with double vertices are
// rationals, computed here without rounding and without Green's theorem, by a quadrature rule
// that is exact for polynomials of degree 3 on a triangle.
#ifndef CNTR_TESTS_EXACT_MOMENTS_H
#define CNTR_TESTS_EXACT_MOMENTS_H

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include <gmpxx.h>

#include <foundation/vector.h>

/// The raw moments in the order m00, m10, m01, m20, m11, m02, m30, m21, m12, m03.
struct ExactMoments {
    std::array<mpq_class, 10> m;

    ExactMoments& operator+=(const ExactMoments& other) {
        for (std::size_t i = 0; i < m.size(); ++i)
            m[i] += other.m[i];
        return *this;
    }
};

namespace exact_moments_detail {

struct Point {
    mpq_class x, y;
};

inline Point exactPoint(const xcVector<2>& p) { return {mpq_class(p.x()), mpq_class(p.y())}; }

// Adds weight * (1, x, y, x^2, xy, y^2, x^3, x^2 y, x y^2, y^3) at (x, y).
inline void addMonomials(ExactMoments& sums, const mpq_class& weight, const Point& p) {
    const mpq_class xx = p.x * p.x, yy = p.y * p.y;
    const std::array<mpq_class, 10> monomials = {
        mpq_class(1), p.x, p.y, xx, p.x * p.y, yy, xx * p.x, xx * p.y, p.x * yy, yy * p.y};
    for (std::size_t i = 0; i < monomials.size(); ++i)
        sums.m[i] += weight * monomials[i];
}

}  // namespace exact_moments_detail

/// The integrals over triangle (a, b, c), signed: negative when it turns clockwise with the y
/// axis up. The rule: -27/48 of the value at the centroid plus 25/48 of the values at the three
/// points with barycentric coordinates (3/5, 1/5, 1/5) and their permutations, times the signed
/// area; exact for every polynomial of degree at most 3.
inline ExactMoments exactTriangleMoments(const xcVector<2>& a, const xcVector<2>& b,
                                         const xcVector<2>& c) {
    using namespace exact_moments_detail;
    const Point pa = exactPoint(a), pb = exactPoint(b), pc = exactPoint(c);
    const mpq_class area = ((pb.x - pa.x) * (pc.y - pa.y) - (pc.x - pa.x) * (pb.y - pa.y)) / 2;
    ExactMoments sums;
    const mpq_class third(1, 3), major(3, 5), minor(1, 5);
    addMonomials(sums, area * mpq_class(-27, 48),
                 {(pa.x + pb.x + pc.x) * third, (pa.y + pb.y + pc.y) * third});
    const std::array<std::array<const Point*, 3>, 3> orders = {
        {{&pa, &pb, &pc}, {&pb, &pc, &pa}, {&pc, &pa, &pb}}};
    for (const auto& o : orders)
        addMonomials(sums, area * mpq_class(25, 48),
                     {major * o[0]->x + minor * (o[1]->x + o[2]->x),
                      major * o[0]->y + minor * (o[1]->y + o[2]->y)});
    return sums;
}

/// The area and first moments (m00, m10, m01) of triangle (a, b, c), signed: the area times
/// the centroid, for the rule above costs ten times as much where only these are needed.
inline std::array<mpq_class, 3> exactTriangleFirstMoments(const xcVector<2>& a,
                                                         const xcVector<2>& b,
                                                         const xcVector<2>& c) {
    using namespace exact_moments_detail;
    const Point pa = exactPoint(a), pb = exactPoint(b), pc = exactPoint(c);
    const mpq_class area = ((pb.x - pa.x) * (pc.y - pa.y) - (pc.x - pa.x) * (pb.y - pa.y)) / 2;
    return {area, area * (pa.x + pb.x + pc.x) / 3, area * (pa.y + pb.y + pc.y) / 3};
}

/// The sums of `triangle` (a function of three vertices returning N rationals, the area first)
/// over the fan of triangles (ring[0], ring[k], ring[k + 1]) of a ring read as closed: its
/// signed integrals, each point weighted by the winding number.
template <std::size_t N, class Triangle>
std::array<mpq_class, N> exactFanSums(const std::vector<xcVector<2>>& ring, Triangle triangle) {
    std::array<mpq_class, N> sums;
    for (std::size_t k = 1; k + 1 < ring.size(); ++k) {
        const std::array<mpq_class, N> t = triangle(ring[0], ring[k], ring[k + 1]);
        for (std::size_t i = 0; i < N; ++i)
            sums[i] += t[i];
    }
    return sums;
}

/// The exterior's fan sums minus the holes', each ring's taken with the sign that makes its
/// area (the first sum) not negative.
template <std::size_t N, class Triangle>
std::array<mpq_class, N> exactPolygonSums(const std::vector<xcVector<2>>& exterior,
                                          const std::vector<std::vector<xcVector<2>>>& holes,
                                          Triangle triangle) {
    std::array<mpq_class, N> total;
    auto add = [&](const std::vector<xcVector<2>>& ring, int sign) {
        const std::array<mpq_class, N> sums = exactFanSums<N>(ring, triangle);
        if (sums[0] < 0)
            sign = -sign;
        for (std::size_t i = 0; i < N; ++i)
            total[i] += sign * sums[i];
    };
    add(exterior, 1);
    for (const auto& hole : holes)
        add(hole, -1);
    return total;
}

/// The signed integrals over a ring (read as closed), each point weighted by the winding number.
inline ExactMoments exactRingMoments(const std::vector<xcVector<2>>& ring) {
    return {exactFanSums<10>(ring, [](const auto& a, const auto& b, const auto& c) {
        return exactTriangleMoments(a, b, c).m;
    })};
}

/// The exterior's moments minus the holes', each ring's with the sign that makes its area not
/// negative.
inline ExactMoments exactPolygonMoments(const std::vector<xcVector<2>>& exterior,
                                        const std::vector<std::vector<xcVector<2>>>& holes) {
    return {exactPolygonSums<10>(exterior, holes, [](const auto& a, const auto& b, const auto& c) {
        return exactTriangleMoments(a, b, c).m;
    })};
}

/// m00, m10 and m01 of the exterior minus the holes, as exactPolygonMoments.
inline std::array<mpq_class, 3> exactPolygonFirstMoments(
    const std::vector<xcVector<2>>& exterior, const std::vector<std::vector<xcVector<2>>>& holes) {
    return exactPolygonSums<3>(exterior, holes, exactTriangleFirstMoments);
}

/// The central moments mu20, mu11, mu02, mu30, mu21, mu12, mu03 of raw moments with m00 != 0:
/// the integrals of the expanded powers of (x - cx) and (y - cy).
inline std::array<mpq_class, 7> exactCentralMoments(const ExactMoments& raw) {
    const auto& m = raw.m;
    const mpq_class cx = m[1] / m[0], cy = m[2] / m[0];
    return {m[3] - 2 * cx * m[1] + cx * cx * m[0],
            m[4] - cx * m[2] - cy * m[1] + cx * cy * m[0],
            m[5] - 2 * cy * m[2] + cy * cy * m[0],
            m[6] - 3 * cx * m[3] + 3 * cx * cx * m[1] - cx * cx * cx * m[0],
            m[7] - 2 * cx * m[4] + cx * cx * m[2] - cy * m[3] + 2 * cx * cy * m[1] -
                cx * cx * cy * m[0],
            m[8] - 2 * cy * m[4] + cy * cy * m[1] - cx * m[5] + 2 * cx * cy * m[2] -
                cx * cy * cy * m[0],
            m[9] - 3 * cy * m[5] + 3 * cy * cy * m[2] - cy * cy * cy * m[0]};
}

/// |value - exact| / |exact|, exactly up to the final rounding (|value| when exact is 0).
inline double relativeError(double value, const mpq_class& exact) {
    const mpq_class difference = abs(mpq_class(value) - exact);
    if (exact == 0)
        return difference.get_d();
    return mpq_class(difference / abs(exact)).get_d();
}

#endif
