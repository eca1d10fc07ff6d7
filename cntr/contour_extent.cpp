// Extent measures: length, mean position, extremal vertices, diameter, enclosing rectangle.
#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cntr/contour.h>
#include <cntr/contour_detail.h>
#include <cntr/tolerances.h>

using namespace xn_contourDetail;

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
__m128d lanes(const xcVector<2>& v) { return _mm_set_pd(v.y(), v.x()); }

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
    for (std::size_t k = 0; i < n; ++i, ++k) lane[k] += p[i - 1].distance(p[i]);
    const double open = (lane[0] + lane[1]) + (lane[2] + lane[3]);
    return closed ? p[n - 1].distance(p[0]) + open : open;
}

// The start score of the extremal-vertex search: a vertex must score strictly above it.
constexpr double kLowestScore = std::numeric_limits<double>::lowest();

// The score of a vertex in a direction. The four axis directions use the plain coordinate, so
// that the inexact cos and sin of their angles do not disturb ties and large coordinates.
class DirectionScore {
  public:
    explicit DirectionScore(const xcRadian& angle) : d_(cos(angle), sin(angle)) {
        if (xfRealEq(d_, xcVector<2>(1.0, 0.0), kExactTolerance))
            axis_ = Axis::plusX;
        else if (xfRealEq(d_, xcVector<2>(-1.0, 0.0), kExactTolerance))
            axis_ = Axis::minusX;
        else if (xfRealEq(d_, xcVector<2>(0.0, 1.0), kExactTolerance))
            axis_ = Axis::plusY;
        else if (xfRealEq(d_, xcVector<2>(0.0, -1.0), kExactTolerance))
            axis_ = Axis::minusY;
    }
    double operator()(const xcVector<2>& p) const {
        switch (axis_) {
            case Axis::plusX:
                return p.x();
            case Axis::minusX:
                return -p.x();
            case Axis::plusY:
                return p.y();
            case Axis::minusY:
                return -p.y();
            case Axis::none:
                break;
        }
        return d_.dot(p);
    }

  private:
    enum class Axis { none, plusX, minusX, plusY, minusY };
    xcVector<2> d_;
    Axis axis_ = Axis::none;
};

}  // namespace

double xcContour::length() const {
    if (points_.empty())
        return 0.0;
    if (lengthValid_)
        return length_;
    length_ = points_.size() - 1 <= kInterleavedSumMaxEdges
                  ? interleavedEdgeLengthSum(points_, isClosed())
                  : sequentialEdgeLengthSum(points_, isClosed());
    lengthValid_ = true;
    return length_;
}

xcVector<2> xcContour::meanPosition() {
    checkEmptyContour();
    if (meanPositionValid_)
        return meanPosition_;
    xcVector<2> sum;
    double total = 0.0;
    forEachEdge(points_.size(), isClosed(), [&](std::size_t, std::size_t a, std::size_t b) {
        const double d = points_[a].distance(points_[b]);
        total += d;
        sum += d * (points_[a] + points_[b]) / 2.0;
    });
    meanPosition_ = sum / total;
    meanPositionValid_ = true;
    return meanPosition_;
}

long xcContour::extremalVertexIndex(const xcRadian& angle) const {
    checkEmptyContour();
    if (!extremalVertexMemo_)
        extremalVertexMemo_.reset(new ExtremalVertexMemo);
    const auto found = extremalVertexMemo_->find(angle);
    if (found != extremalVertexMemo_->end())
        return found->second;

    const DirectionScore score(angle);
    double best = kLowestScore;
    long index = -1;
    for (std::size_t i = 0; i < points_.size(); ++i) {
        const double s = score(points_[i]);
        if (s > best) {
            best = s;
            index = static_cast<long>(i);
        }
    }
    memoStore(extremalVertexMemo_, angle, index, cachedVectorSize_);
    return index;
}

xcVector<2> xcContour::extremalVertexPosition(const xcRadian& angle) {
    const long index = extremalVertexIndex(angle);
    if (index < 0)
        throw xcContourDefs::BadParams(L"no vertex is extremal in this direction");
    return points_[static_cast<std::size_t>(index)];
}

double xcContour::diameter(xcContourDefs::DiameterMode mode) const {
    return 2.0 * circleOf(mode).radius();
}

xcRect xcContour::encloseRect(const xcXform<2>& xform) {
    return rectOf(xform);
}

xcRect xcContour::rectOf(const xcXform<2>& xform) const {
    checkEmptyContour();
    if (!rectMemo_)
        rectMemo_.reset(new RectMemo);
    const auto found = rectMemo_->find(xform);
    if (found != rectMemo_->end())
        return found->second;

    const bool identity = xfRealEq(xform, xcXform<2>::I, kExactTolerance);
    const auto mapped = [&](const xcVector<2>& p) { return identity ? p : xform * p; };
    xcRect box(mapped(points_[0]), xcVector<2>());
    for (std::size_t i = 1; i < points_.size(); ++i)
        box = box.enclose(xcRect::at(mapped(points_[i])));
    memoStore(rectMemo_, xform, box, cachedVectorSize_);
    return box;
}

double xcContour::lengthPlain() const {
    return points_.empty() ? 0.0 : sequentialEdgeLengthSum(points_, isClosed());
}
