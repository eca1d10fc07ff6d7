// The true moments of rings by Green's theorem: for an edge from p to q, each moment gains a
// polynomial in p and q times cross(p, q), the closed forms of the integrals over the triangle
// (origin, p, q). The frame's origin is the caller's, near the ring, so the terms stay small.
#include <cntr/core/area_moments.h>

#include <cmath>
#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace cntr::core {

RawMoments& RawMoments::operator+=(const RawMoments& other) {
    m00 += other.m00;
    m10 += other.m10;
    m01 += other.m01;
    m20 += other.m20;
    m11 += other.m11;
    m02 += other.m02;
    m30 += other.m30;
    m21 += other.m21;
    m12 += other.m12;
    m03 += other.m03;
    return *this;
}

RawMoments RawMoments::operator-() const {
    RawMoments negated;
    negated.m00 = -m00;
    negated.m10 = -m10;
    negated.m01 = -m01;
    negated.m20 = -m20;
    negated.m11 = -m11;
    negated.m02 = -m02;
    negated.m30 = -m30;
    negated.m21 = -m21;
    negated.m12 = -m12;
    negated.m03 = -m03;
    return negated;
}

namespace {

// Two lanes, (x, y) or (y, x): the sums of the moments m10 and m01, m20 and m02, m30 and m03,
// m21 and m12 follow one formula with x and y exchanged, so each pair is computed by the same
// lane-wise operations: one vector instruction each with SSE2, two scalar ones without, with
// the same roundings either way.
#if defined(__SSE2__)
struct Lanes {
    __m128d value;
    Lanes(double u, double v) : value(_mm_set_pd(v, u)) {}
    explicit Lanes(__m128d w) : value(w) {}
    double u() const { return _mm_cvtsd_f64(value); }
    double v() const { return _mm_cvtsd_f64(_mm_unpackhi_pd(value, value)); }
};
inline Lanes operator+(Lanes a, Lanes b) { return Lanes(_mm_add_pd(a.value, b.value)); }
inline Lanes operator-(Lanes a, Lanes b) { return Lanes(_mm_sub_pd(a.value, b.value)); }
inline Lanes operator*(Lanes a, Lanes b) { return Lanes(_mm_mul_pd(a.value, b.value)); }
inline Lanes operator*(double s, Lanes a) { return Lanes(_mm_mul_pd(_mm_set1_pd(s), a.value)); }
inline Lanes swapped(Lanes a) { return Lanes(_mm_shuffle_pd(a.value, a.value, 1)); }
#else
struct Lanes {
    double first, second;
    Lanes(double u, double v) : first(u), second(v) {}
    double u() const { return first; }
    double v() const { return second; }
};
inline Lanes operator+(Lanes a, Lanes b) { return {a.first + b.first, a.second + b.second}; }
inline Lanes operator-(Lanes a, Lanes b) { return {a.first - b.first, a.second - b.second}; }
inline Lanes operator*(Lanes a, Lanes b) { return {a.first * b.first, a.second * b.second}; }
inline Lanes operator*(double s, Lanes a) { return {s * a.first, s * a.second}; }
inline Lanes swapped(Lanes a) { return {a.second, a.first}; }
#endif

}  // namespace

RawMoments ringMoments(const std::vector<xcVector<2>>& ring, const xcVector<2>& origin) {
    RawMoments sums;
    const std::size_t n = ring.size();
    if (n < 3)
        return sums;
    const Lanes o(origin.x(), origin.y());
    auto local = [&o](const xcVector<2>& p) { return Lanes(p.x(), p.y()) - o; };
    Lanes p0 = local(ring[n - 1]);
    Lanes squares0 = p0 * p0;
    double m00 = 0.0, m11 = 0.0;
    Lanes first(0.0, 0.0), second(0.0, 0.0), third(0.0, 0.0), mixed(0.0, 0.0);
    for (std::size_t k = 0; k < n; ++k) {
        const Lanes p1 = local(ring[k]);
        const Lanes squares1 = p1 * p1;
        const Lanes q0 = swapped(p0), q1 = swapped(p1);
        const double a = p0.u() * p1.v() - p1.u() * p0.v();
        const Lanes sum = p0 + p1;      // (x0 + x1, y0 + y1)
        const Lanes product = p0 * p1;  // (x0 x1, y0 y1)
        const Lanes along = a * sum;
        first = first + along;                                      // m10, m01
        second = second + a * (squares0 + product + squares1);      // m20, m02
        third = third + along * (squares0 + squares1);              // m30, m03
        mixed = mixed + a * (squares0 * (3.0 * q0 + q1) + 2.0 * product * swapped(sum) +
                             squares1 * (q0 + 3.0 * q1));           // m21, m12
        m00 += a;
        m11 += a * (p0.u() * (p0.v() + sum.v()) + p1.u() * (p1.v() + sum.v()));
        p0 = p1;
        squares0 = squares1;
    }
    // The closed forms carry these common denominators.
    sums.m00 = m00 / 2.0;
    sums.m10 = first.u() / 6.0;
    sums.m01 = first.v() / 6.0;
    sums.m20 = second.u() / 12.0;
    sums.m11 = m11 / 24.0;
    sums.m02 = second.v() / 12.0;
    sums.m30 = third.u() / 20.0;
    sums.m21 = mixed.u() / 60.0;
    sums.m12 = mixed.v() / 60.0;
    sums.m03 = third.v() / 20.0;
    return sums;
}

RawMoments unsignedRingMoments(const std::vector<xcVector<2>>& ring, const xcVector<2>& origin) {
    const RawMoments sums = ringMoments(ring, origin);
    return sums.m00 < 0.0 ? -sums : sums;
}

namespace {

// The raw moments about (0, 0) of moments taken about `o`: each power of x = x' + o.x (and of
// y) expanded binomially.
void moveToZero(const RawMoments& local, const xcVector<2>& o, AreaMoments& out) {
    const double ox = o.x(), oy = o.y();
    out.m00 = local.m00;
    out.m10 = local.m10 + ox * local.m00;
    out.m01 = local.m01 + oy * local.m00;
    out.m20 = local.m20 + ox * (2.0 * local.m10 + ox * local.m00);
    out.m11 = local.m11 + ox * local.m01 + oy * local.m10 + ox * oy * local.m00;
    out.m02 = local.m02 + oy * (2.0 * local.m01 + oy * local.m00);
    out.m30 = local.m30 + ox * (3.0 * local.m20 + ox * (3.0 * local.m10 + ox * local.m00));
    out.m21 = local.m21 + ox * (2.0 * local.m11 + ox * local.m01) + oy * local.m20 +
              ox * oy * (2.0 * local.m10 + ox * local.m00);
    out.m12 = local.m12 + oy * (2.0 * local.m11 + oy * local.m10) + ox * local.m02 +
              ox * oy * (2.0 * local.m01 + oy * local.m00);
    out.m03 = local.m03 + oy * (3.0 * local.m02 + oy * (3.0 * local.m01 + oy * local.m00));
}

// The central moments of raw moments `r` about a centre (cx, cy) with cx * m00 = m10 and
// cy * m00 = m01.
void centralFrom(const RawMoments& r, double cx, double cy, AreaMoments& out) {
    out.mu20 = r.m20 - cx * r.m10;
    out.mu11 = r.m11 - cx * r.m01;
    out.mu02 = r.m02 - cy * r.m01;
    out.mu30 = r.m30 - cx * (3.0 * out.mu20 + cx * r.m10);
    out.mu21 = r.m21 - cx * (2.0 * out.mu11 + cx * r.m01) - cy * out.mu20;
    out.mu12 = r.m12 - cy * (2.0 * out.mu11 + cy * r.m10) - cx * out.mu02;
    out.mu03 = r.m03 - cy * (3.0 * out.mu02 + cy * r.m01);
}

void normalise(AreaMoments& m) {
    const double inverseArea = 1.0 / m.m00;
    const double second = inverseArea * inverseArea;
    const double third = second * std::sqrt(std::abs(inverseArea));
    m.nu20 = m.mu20 * second;
    m.nu11 = m.mu11 * second;
    m.nu02 = m.mu02 * second;
    m.nu30 = m.mu30 * third;
    m.nu21 = m.mu21 * third;
    m.nu12 = m.mu12 * third;
    m.nu03 = m.mu03 * third;
}

void huInvariants(AreaMoments& m) {
    const double t0 = m.nu30 + m.nu12;
    const double t1 = m.nu21 + m.nu03;
    const double q0 = m.nu20 - m.nu02;
    const double q1 = m.nu30 - 3.0 * m.nu12;
    const double q2 = 3.0 * m.nu21 - m.nu03;
    const double t0Squared = t0 * t0, t1Squared = t1 * t1;
    m.hu[0] = m.nu20 + m.nu02;
    m.hu[1] = q0 * q0 + 4.0 * m.nu11 * m.nu11;
    m.hu[2] = q1 * q1 + q2 * q2;
    m.hu[3] = t0Squared + t1Squared;
    m.hu[4] = q1 * t0 * (t0Squared - 3.0 * t1Squared) + q2 * t1 * (3.0 * t0Squared - t1Squared);
    m.hu[5] = q0 * (t0Squared - t1Squared) + 4.0 * m.nu11 * t0 * t1;
    m.hu[6] = q2 * t0 * (t0Squared - 3.0 * t1Squared) - q1 * t1 * (3.0 * t0Squared - t1Squared);
}

}  // namespace

AreaMoments completeMoments(const RawMoments& aboutOrigin, const xcVector<2>& origin) {
    AreaMoments m;
    moveToZero(aboutOrigin, origin, m);
    if (aboutOrigin.m00 == 0.0) {
        // No centroid: the central moments are the raw ones, nothing is normalised.
        m.mu20 = m.m20;
        m.mu11 = m.m11;
        m.mu02 = m.m02;
        m.mu30 = m.m30;
        m.mu21 = m.m21;
        m.mu12 = m.m12;
        m.mu03 = m.m03;
        return m;
    }
    centralFrom(aboutOrigin, aboutOrigin.m10 / aboutOrigin.m00, aboutOrigin.m01 / aboutOrigin.m00,
                m);
    normalise(m);
    huInvariants(m);
    return m;
}

}  // namespace cntr::core
