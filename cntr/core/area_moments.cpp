// The true moments of rings by Green's theorem: for an edge from p to q, each moment gains a
// polynomial in p and q times cross(p, q), the closed forms of the integrals over the triangle
// (origin, p, q). The frame's origin is the caller's, near the ring, so the terms stay small.
#include <cntr/core/area_moments.h>

#include <cmath>
#include <cstddef>

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

RawMoments ringMoments(const std::vector<xcVector<2>>& ring, const xcVector<2>& origin) {
    RawMoments sums;
    const std::size_t n = ring.size();
    if (n < 3)
        return sums;
    double x0 = ring[n - 1].x() - origin.x();
    double y0 = ring[n - 1].y() - origin.y();
    for (std::size_t k = 0; k < n; ++k) {
        const double x1 = ring[k].x() - origin.x();
        const double y1 = ring[k].y() - origin.y();
        const double a = x0 * y1 - x1 * y0;
        const double xx0 = x0 * x0, xx1 = x1 * x1, yy0 = y0 * y0, yy1 = y1 * y1;
        const double xSum = x0 + x1, ySum = y0 + y1;
        sums.m00 += a;
        sums.m10 += a * xSum;
        sums.m01 += a * ySum;
        sums.m20 += a * (xx0 + x0 * x1 + xx1);
        sums.m11 += a * (x0 * (y0 + ySum) + x1 * (y1 + ySum));
        sums.m02 += a * (yy0 + y0 * y1 + yy1);
        sums.m30 += a * xSum * (xx0 + xx1);
        sums.m21 += a * (xx0 * (3.0 * y0 + y1) + 2.0 * x0 * x1 * ySum + xx1 * (y0 + 3.0 * y1));
        sums.m12 += a * (yy0 * (3.0 * x0 + x1) + 2.0 * y0 * y1 * xSum + yy1 * (x0 + 3.0 * x1));
        sums.m03 += a * ySum * (yy0 + yy1);
        x0 = x1;
        y0 = y1;
    }
    // The closed forms carry these common denominators.
    sums.m00 /= 2.0;
    sums.m10 /= 6.0;
    sums.m01 /= 6.0;
    sums.m20 /= 12.0;
    sums.m11 /= 24.0;
    sums.m02 /= 12.0;
    sums.m30 /= 20.0;
    sums.m21 /= 60.0;
    sums.m12 /= 60.0;
    sums.m03 /= 20.0;
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
