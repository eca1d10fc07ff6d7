// The area and the area centroid of a polygon: the area's cross products summed in edge order, or
// in four interleaved partial sums where that provably stays within 1e-10 of the edge-order sum;
// the centroid's fan triangles one by one, or two at a time with the same bits.
#include <cntr/core/moments.h>

#include <cmath>
#include <cstddef>
#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cntr/core/reference.h>
#include <cntr/tolerances.h>
#include <foundation/geometry.h>
#include <foundation/numeric.h>

namespace cntr::core {

namespace {

/// Above this many vertices the sum stays in edge order: the vertices no longer fit the
/// processor's caches, so reading them costs more than the additions and a second pass (after a
/// failed bound) would cost more than the parallel sums save.
constexpr std::size_t kReorderedAreaMaxVertices = std::size_t{1} << 17;
/// One term in this many is looked at first to predict whether the bound can hold.
constexpr std::size_t kAreaSampleStride = 16;

#if defined(__SSE2__)
/// The cross products of (a, b) and (b, c) in the two lanes: a.x * b.y - a.y * b.x and the same for
/// (b, c), the very operations of xcVector::cross.
__m128d twoCrosses(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c) {
    const __m128d va = _mm_set_pd(a.y(), a.x());
    const __m128d vb = _mm_set_pd(b.y(), b.x());
    const __m128d vc = _mm_set_pd(c.y(), c.x());
    const __m128d xs = _mm_unpacklo_pd(va, vb);      // a.x, b.x
    const __m128d ysNext = _mm_unpackhi_pd(vb, vc);  // b.y, c.y
    const __m128d ys = _mm_unpackhi_pd(va, vb);      // a.y, b.y
    const __m128d xsNext = _mm_unpacklo_pd(vb, vc);  // b.x, c.x
    return _mm_sub_pd(_mm_mul_pd(xs, ysNext), _mm_mul_pd(ys, xsNext));
}
#endif

/// The terms of the edge-order sum, cross(p[i - 1], p[i]) for i >= 1, in four interleaved partial
/// sums (term i to partial sum (i - 1) mod 4) added pairwise, then the closing term. `magnitude`
/// receives the sum of the terms' absolute values.
double interleavedCrossSum(const std::vector<xcVector<2>>& p, double& magnitude) {
    const std::size_t n = p.size();
    double lane[4] = {0.0, 0.0, 0.0, 0.0};
    double absLane[4] = {0.0, 0.0, 0.0, 0.0};
    std::size_t i = 1;
#if defined(__SSE2__)
    const __m128d signBit = _mm_set1_pd(-0.0);
    __m128d low = _mm_setzero_pd();
    __m128d high = _mm_setzero_pd();
    __m128d absLow = _mm_setzero_pd();
    __m128d absHigh = _mm_setzero_pd();
    for (; i + 3 < n; i += 4) {
        const __m128d first = twoCrosses(p[i - 1], p[i], p[i + 1]);
        const __m128d second = twoCrosses(p[i + 1], p[i + 2], p[i + 3]);
        low = _mm_add_pd(low, first);
        high = _mm_add_pd(high, second);
        absLow = _mm_add_pd(absLow, _mm_andnot_pd(signBit, first));
        absHigh = _mm_add_pd(absHigh, _mm_andnot_pd(signBit, second));
    }
    _mm_storeu_pd(lane, low);
    _mm_storeu_pd(lane + 2, high);
    _mm_storeu_pd(absLane, absLow);
    _mm_storeu_pd(absLane + 2, absHigh);
#endif
    for (std::size_t k = 0; i < n; ++i, k = (k + 1) % 4) {
        const double t = p[i - 1].cross(p[i]);
        lane[k] += t;
        absLane[k] += std::fabs(t);
    }
    const double closing = p[n - 1].cross(p[0]);
    magnitude = std::fabs(closing) + ((absLane[0] + absLane[1]) + (absLane[2] + absLane[3]));
    return closing + ((lane[0] + lane[1]) + (lane[2] + lane[3]));
}

/// Whether the bound below is likely to hold, judged from every kAreaSampleStride-th term: their
/// absolute sum against their sum, with a factor 2 to spare. Only chooses the path tried first;
/// the bound itself decides.
bool reorderingLikelyAdmissible(const std::vector<xcVector<2>>& p) {
    double sum = 0.0;
    double magnitude = 0.0;
    for (std::size_t i = 1; i < p.size(); i += kAreaSampleStride) {
        const double t = p[i - 1].cross(p[i]);
        sum += t;
        magnitude += std::fabs(t);
    }
    const double n = static_cast<double>(p.size());
    return 2.01 * n * xcUnitRoundoff * magnitude <= 0.5 * kReorderedAreaTolerance * std::fabs(sum);
}

/// The centroid of triangle (a, b, c) as the crossing of the medians from a and from b. The
/// construction (rather than the mean of the corners) is deliberate and fixes the rounding of
/// the result. Throws xcMathError::Singular when the medians are parallel within the line
/// tolerance, which a triangle of non-negligible area only reaches when extremely thin.
xcVector<2> triangleCentroid(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c) {
    const xcLine medianA = xcLineSeg(a, (b + c) / 2.0).line();
    const xcLine medianB = xcLineSeg(b, (a + c) / 2.0).line();
    return medianA.intersect(medianB);
}

/// The weighted sums of the fan triangles' centroids, added in edge order.
struct CentroidSums {
    double x = 0.0;
    double y = 0.0;
    double weight = 0.0;

    void add(double w, const xcVector<2>& g) {
        x += w * g.x();
        y += w * g.y();
        weight += w;
    }
    /// (0, 0) when the weights cancel, else the weighted mean.
    xcVector<2> centroid() const {
        if (xfRealEq(weight, 0.0, kNegligibleTotalCross))
            return xcVector<2>();
        return xcVector<2>(x / weight, y / weight);
    }
};

#if defined(__SSE2__)
/// Two lanes of doubles as (x, y) components of two vectors.
struct PairOfVectors {
    __m128d x;
    __m128d y;
};

/// xcLine's unit direction of `d` in both lanes: d / |d| with |d| = sqrt(x * x + y * y), the
/// very operations of xcVector::length and operator/. `regular` keeps, per lane, whether the
/// length is finite and not 0 (xcLine takes another path otherwise).
PairOfVectors unitDirections(const PairOfVectors& d, __m128d& regular) {
    const __m128d len = _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(d.x, d.x), _mm_mul_pd(d.y, d.y)));
    const __m128d finite = _mm_cmplt_pd(len, _mm_set1_pd(std::numeric_limits<double>::infinity()));
    regular = _mm_and_pd(regular, _mm_and_pd(finite, _mm_cmpneq_pd(len, _mm_setzero_pd())));
    return {_mm_div_pd(d.x, len), _mm_div_pd(d.y, len)};
}

/// cross(a, b) = a.x * b.y - a.y * b.x in both lanes.
__m128d crossOf(const PairOfVectors& a, const PairOfVectors& b) {
    return _mm_sub_pd(_mm_mul_pd(a.x, b.y), _mm_mul_pd(a.y, b.x));
}

/// The fan triangles (origin, a, b) of two edges at once: their weights w = cross(a, b) and,
/// through triangleCentroid's very operations (the median lines from the origin towards
/// (a + b) / 2 and from a towards (origin + b) / 2, normalised, and their crossing), their
/// centroids. `usable` keeps, per lane, whether the triangle is skipped (|w| <= 1e-15) or
/// computed without any of the cases xcLine and its crossing treat apart (a zero or non-finite
/// median length, parallel medians); the others are left to the one-by-one definition.
struct FanPair {
    __m128d w;
    __m128d skipped;
    __m128d usable;
    PairOfVectors g;
};

FanPair fanPair(const PairOfVectors& a, const PairOfVectors& b) {
    const __m128d zero = _mm_setzero_pd();
    const __m128d two = _mm_set1_pd(2.0);
    const __m128d signBit = _mm_set1_pd(-0.0);
    FanPair f;
    f.w = crossOf(a, b);
    f.skipped = _mm_cmple_pd(_mm_andnot_pd(signBit, _mm_sub_pd(f.w, zero)),
                             _mm_set1_pd(kNegligibleTriangleCross));
    // Median A: from the origin towards (a + b) / 2; its direction is that point minus the origin.
    const PairOfVectors towardsA{_mm_sub_pd(_mm_div_pd(_mm_add_pd(a.x, b.x), two), zero),
                                 _mm_sub_pd(_mm_div_pd(_mm_add_pd(a.y, b.y), two), zero)};
    // Median B: from a towards (origin + b) / 2.
    const PairOfVectors towardsB{_mm_sub_pd(_mm_div_pd(_mm_add_pd(zero, b.x), two), a.x),
                                 _mm_sub_pd(_mm_div_pd(_mm_add_pd(zero, b.y), two), a.y)};
    __m128d regular = _mm_castsi128_pd(_mm_set1_epi32(-1));
    const PairOfVectors dirA = unitDirections(towardsA, regular);
    const PairOfVectors dirB = unitDirections(towardsB, regular);
    // xcLine::intersect: s = cross(a - origin, dirB) / cross(dirA, dirB); origin + dirA * s.
    const __m128d denominator = crossOf(dirA, dirB);
    const __m128d crossing =
        _mm_cmpgt_pd(_mm_andnot_pd(signBit, denominator), _mm_set1_pd(xcLine::kParallelTolerance));
    const PairOfVectors fromOrigin{_mm_sub_pd(a.x, zero), _mm_sub_pd(a.y, zero)};
    const __m128d s = _mm_div_pd(crossOf(fromOrigin, dirB), denominator);
    f.g = {_mm_add_pd(zero, _mm_mul_pd(dirA.x, s)), _mm_add_pd(zero, _mm_mul_pd(dirA.y, s))};
    f.usable = _mm_or_pd(f.skipped, _mm_and_pd(regular, crossing));
    return f;
}

/// Adds the two fan triangles' terms in lane order, skipping those of skipped triangles.
void addPair(const FanPair& f, CentroidSums& sums) {
    double w[2], gx[2], gy[2];
    _mm_storeu_pd(w, f.w);
    _mm_storeu_pd(gx, f.g.x);
    _mm_storeu_pd(gy, f.g.y);
    const int skipped = _mm_movemask_pd(f.skipped);
    for (int lane = 0; lane < 2; ++lane)
        if ((skipped & (1 << lane)) == 0)
            sums.add(w[lane], xcVector<2>(gx[lane], gy[lane]));
}

/// The sums of polygonCentroid, two fan triangles at a time, bit for bit those of the
/// one-by-one loop: the same operations in the same order, two lanes at once. False, with
/// `sums` unusable, when a triangle needs one of the cases the lanes leave out (the caller then
/// runs the definition, which also throws where it must).
bool pairedCentroidSums(const std::vector<xcVector<2>>& p, CentroidSums& sums) {
    const std::size_t n = p.size();
    std::size_t k = 0;
    for (; k + 1 < n; k += 2) {
        const xcVector<2>& a0 = k == 0 ? p[n - 1] : p[k - 1];
        const PairOfVectors a{_mm_set_pd(p[k].x(), a0.x()), _mm_set_pd(p[k].y(), a0.y())};
        const PairOfVectors b{_mm_set_pd(p[k + 1].x(), p[k].x()),
                              _mm_set_pd(p[k + 1].y(), p[k].y())};
        const FanPair f = fanPair(a, b);
        if (_mm_movemask_pd(f.usable) != 3)
            return false;
        addPair(f, sums);
    }
    if (k < n) {  // the last edge of an odd count, one by one
        const double w = p[k - 1].cross(p[k]);
        if (!xfRealEq(w, 0.0, kNegligibleTriangleCross))
            sums.add(w, triangleCentroid(xcVector<2>(), p[k - 1], p[k]));
    }
    return true;
}
#endif

}  // namespace

double referenceArea(const std::vector<xcVector<2>>& polygon) {
    if (polygon.empty())
        return 0.0;
    double sum = 0.0;
    xcVector<2> previous = polygon.back();
    for (const xcVector<2>& current : polygon) {
        sum += previous.cross(current);
        previous = current;
    }
    return std::fabs(sum / 2.0);
}

// The unsigned area from the reordered sum when it provably lies within 1e-10 relative of the
// edge-order sum; otherwise from the edge-order sum. Both sums add the same n computed terms
// with n - 1 roundings each, so they lie within 2 gamma(n - 1) sum |t| of the exact sum and of
// each other (gamma(m) = m u / (1 - m u), u = 2^-53); the bound below is that, with room for the
// rounding of `magnitude` itself. A term or partial sum that is not finite, or a sum that
// cancels too much, keeps the edge order.
double polygonArea(const std::vector<xcVector<2>>& points) {
    const std::size_t n = points.size();
    if (n < 8 || n > kReorderedAreaMaxVertices || !reorderingLikelyAdmissible(points))
        return referenceArea(points);
    double magnitude = 0.0;
    const double sum = interleavedCrossSum(points, magnitude);
    const double bound = 2.01 * static_cast<double>(n) * xcUnitRoundoff * magnitude;
    const bool provablyClose = magnitude < 1e300 && std::isfinite(sum) &&
                               bound <= 0.99 * kReorderedAreaTolerance * (std::fabs(sum) - bound);
    if (!provablyClose)
        return referenceArea(points);
    return std::fabs(sum / 2.0);
}

xcVector<2> referenceCentroid(const std::vector<xcVector<2>>& polygon) {
    if (polygon.size() <= 2)
        return xcVector<2>();
    // Fan of triangles (origin, previous, current), each centroid weighted by the signed
    // doubled area; the common sign makes the result independent of the orientation.
    const xcVector<2> origin;
    CentroidSums sums;
    xcVector<2> previous = polygon.back();
    for (const xcVector<2>& current : polygon) {
        const double w = previous.cross(current);
        if (!xfRealEq(w, 0.0, kNegligibleTriangleCross))
            sums.add(w, triangleCentroid(origin, previous, current));
        previous = current;
    }
    return sums.centroid();
}

xcVector<2> polygonCentroid(const std::vector<xcVector<2>>& polygon) {
#if defined(__SSE2__)
    CentroidSums sums;
    if (polygon.size() > 2 && pairedCentroidSums(polygon, sums))
        return sums.centroid();
#endif
    return referenceCentroid(polygon);
}

}  // namespace cntr::core
