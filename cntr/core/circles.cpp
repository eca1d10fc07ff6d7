// The contour's two enclosing circles.
#include <cntr/core/circles.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <cntr/core/reference.h>
#include <cntr/tolerances.h>

namespace cntr::core {

namespace {

/// Below this many vertices the plain pair loop is as fast as the filter.
constexpr std::size_t kFilterMinVertices = 64;

// The first ordered pair (i outer, j inner, both taken from `indices` in their order) at the
// largest distance, as the circle through it; the default circle when no distance exceeds 0.
template <class Indices>
xcCircle furthestPairAmong(const std::vector<xcVector<2>>& v, const Indices& indices) {
    xcCircle circle;
    double best = 0.0;
    for (std::size_t i : indices) {
        for (std::size_t j : indices) {
            const double d = v[i].distance(v[j]);
            if (d > best) {
                best = d;
                circle = xcCircle((v[i] + v[j]) / 2.0, d / 2.0);
            }
        }
    }
    return circle;
}

/// 0, 1, ..., n - 1 as a range, for the plain loop over every vertex.
struct AllIndices {
    struct Iterator {
        std::size_t i;
        std::size_t operator*() const { return i; }
        Iterator& operator++() {
            ++i;
            return *this;
        }
        bool operator!=(const Iterator& o) const { return i != o.i; }
    };
    std::size_t n;
    Iterator begin() const { return {0}; }
    Iterator end() const { return {n}; }
};

bool filterApplies(const std::vector<xcVector<2>>& v) {
    if (v.size() < kFilterMinVertices)
        return false;
    for (const xcVector<2>& p : v)
        if (!(std::fabs(p.x()) <= kCircleFilterMaxCoordinate &&
              std::fabs(p.y()) <= kCircleFilterMaxCoordinate))
            return false;
    return true;
}

// The vertices that can belong to a pair at the largest distance, in index order. With c the
// centre of the bounding box, r_p = |p - c| and R the largest r_p, every pair has
// |p - q| <= r_p + R. A pair (a, b) found at distance D bounds the largest distance from below,
// so only vertices with r_p >= D - R (less a slack that covers rounding) can be an end of a
// pair at the largest distance.
std::vector<std::size_t> furthestPairCandidates(const std::vector<xcVector<2>>& v) {
    xcVector<2> low = v.front();
    xcVector<2> high = v.front();
    for (const xcVector<2>& p : v) {
        low = xcVector<2>(std::min(low.x(), p.x()), std::min(low.y(), p.y()));
        high = xcVector<2>(std::max(high.x(), p.x()), std::max(high.y(), p.y()));
    }
    const xcVector<2> centre = (low + high) / 2.0;
    std::vector<double> reach(v.size());
    std::size_t far = 0;
    for (std::size_t i = 0; i < v.size(); ++i) {
        reach[i] = v[i].distance(centre);
        if (reach[i] > reach[far])
            far = i;
    }
    const double radius = reach[far];
    double known = 0.0;
    for (const xcVector<2>& p : v)
        known = std::max(known, v[far].distance(p));
    const double threshold = known - radius - kCircleFilterSlack * (known + radius);
    std::vector<std::size_t> candidates;
    for (std::size_t i = 0; i < v.size(); ++i)
        if (reach[i] >= threshold)
            candidates.push_back(i);
    return candidates;
}

}  // namespace

xcCircle furthestPairCircle(const OutlineView& outline) {
    const std::vector<xcVector<2>>& v = outline.points();
    if (!filterApplies(v))
        return referenceFurthestPairCircle(outline);
    return furthestPairAmong(v, furthestPairCandidates(v));
}

xcCircle referenceFurthestPairCircle(const OutlineView& outline) {
    const std::vector<xcVector<2>>& v = outline.points();
    return furthestPairAmong(v, AllIndices{v.size()});
}

xcCircle fromFirstVertexCircle(const OutlineView& outline) {
    const std::vector<xcVector<2>>& v = outline.points();
    if (v.empty())
        return xcCircle();
    double radius = 0.0;
    for (std::size_t i = 1; i < v.size(); ++i) {
        const double d = v[0].distance(v[i]);
        if (d > radius)
            radius = d;
    }
    return xcCircle(v[0], radius);
}

}  // namespace cntr::core
