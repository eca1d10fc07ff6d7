// The length of an outline: its edge lengths summed in edge order, or in four interleaved
// partial sums where that stays within 1e-10 of the edge-order sum.
#include <cntr/core/length.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cntr/core/reference.h>

namespace cntr::core {

namespace {

// Up to this many edges (besides the closing one) the length is summed in four interleaved
// partial sums, which the processor adds in parallel. Summing m non-negative terms in another
// order moves the result by at most about (5/4) m units in the last place relative, under 1e-10
// for this many terms; longer contours keep the order of the definition.
constexpr std::size_t kInterleavedSumMaxEdges = std::size_t{1} << 19;

// The definition: the edge lengths summed in edge order (see forEachEdge).
double sequentialEdgeLengthSum(const std::vector<xcVector<2>>& p, bool closed) {
    double sum = 0.0;  // a local: a member would be reloaded on every edge
    forEachEdge(p.size(), closed,
                [&](std::size_t, std::size_t a, std::size_t b) { sum += p[a].distance(p[b]); });
    return sum;
}

#if defined(__SSE2__)
// A vertex as the two lanes (x, y) of a register.
__m128d lanes(const xcVector<2>& v) {
    return _mm_set_pd(v.y(), v.x());
}

// The lengths of the edges a to b and b to c, two at once: each is sqrt(dx * dx + dy * dy), the
// very operations (and roundings) of xcVector::distance.
__m128d twoEdgeLengths(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c) {
    const __m128d ab = _mm_sub_pd(lanes(b), lanes(a));
    const __m128d bc = _mm_sub_pd(lanes(c), lanes(b));
    const __m128d ab2 = _mm_mul_pd(ab, ab);
    const __m128d bc2 = _mm_mul_pd(bc, bc);
    return _mm_sqrt_pd(_mm_add_pd(_mm_unpacklo_pd(ab2, bc2), _mm_unpackhi_pd(ab2, bc2)));
}
#endif

// The same edge lengths in four partial sums (edge i-1 to i, for i from 1, goes to partial sum
// (i - 1) mod 4), added pairwise, then the closing edge. Non-finite lengths give what the
// definition gives: a NaN spreads to the total, and so does an infinity unless a NaN is there.
double interleavedEdgeLengthSum(const std::vector<xcVector<2>>& p, bool closed) {
    const std::size_t n = p.size();
    double lane[4] = {0.0, 0.0, 0.0, 0.0};
    std::size_t i = 1;
#if defined(__SSE2__)
    __m128d low = _mm_setzero_pd();   // partial sums 0 and 1
    __m128d high = _mm_setzero_pd();  // partial sums 2 and 3
    for (; i + 3 < n; i += 4) {
        low = _mm_add_pd(low, twoEdgeLengths(p[i - 1], p[i], p[i + 1]));
        high = _mm_add_pd(high, twoEdgeLengths(p[i + 1], p[i + 2], p[i + 3]));
    }
    _mm_storeu_pd(lane, low);
    _mm_storeu_pd(lane + 2, high);
#else
    for (; i + 3 < n; i += 4) {
        lane[0] += p[i - 1].distance(p[i]);
        lane[1] += p[i].distance(p[i + 1]);
        lane[2] += p[i + 1].distance(p[i + 2]);
        lane[3] += p[i + 2].distance(p[i + 3]);
    }
#endif
    for (std::size_t k = 0; i < n; ++i, ++k)
        lane[k] += p[i - 1].distance(p[i]);
    const double open = (lane[0] + lane[1]) + (lane[2] + lane[3]);
    return closed ? p[n - 1].distance(p[0]) + open : open;
}

}  // namespace

double outlineLength(const OutlineView& outline) {
    if (outline.empty())
        return 0.0;
    return outline.size() - 1 <= kInterleavedSumMaxEdges
               ? interleavedEdgeLengthSum(outline.points(), outline.closed())
               : sequentialEdgeLengthSum(outline.points(), outline.closed());
}

double referenceLength(const OutlineView& outline) {
    return sequentialEdgeLengthSum(outline.points(), outline.closed());
}

}  // namespace cntr::core
