// Building the edge index.
#include <algorithm>
#include <cmath>

#include <cntr/contour_detail.h>
#include <cntr/contour_edgeindex.h>

namespace xn_contourDetail {

namespace {

constexpr double kNoCoordinate = HUGE_VAL;

EdgeBox emptyBox() { return {kNoCoordinate, kNoCoordinate, -kNoCoordinate, -kNoCoordinate}; }

void grow(EdgeBox& b, const xcVector<2>& p) {
    b.minX = std::min(b.minX, p.x());
    b.minY = std::min(b.minY, p.y());
    b.maxX = std::max(b.maxX, p.x());
    b.maxY = std::max(b.maxY, p.y());
}

void grow(EdgeBox& b, const EdgeBox& o) {
    b.minX = std::min(b.minX, o.minX);
    b.minY = std::min(b.minY, o.minY);
    b.maxX = std::max(b.maxX, o.maxX);
    b.maxY = std::max(b.maxY, o.maxY);
}

}  // namespace

bool EdgeIndex::accepts(const xcVector<2>& p) {
    // Written so that a NaN coordinate fails the test.
    return std::fabs(p.x()) <= kCoordinateLimit && std::fabs(p.y()) <= kCoordinateLimit;
}

std::unique_ptr<EdgeIndex> EdgeIndex::build(const std::vector<xcVector<2>>& points, bool closed) {
    const std::size_t n = points.size();
    const std::size_t edges = closed ? n : (n == 0 ? 0 : n - 1);
    if (edges < kMinEdges) return nullptr;
    double scale = 1.0;
    for (const xcVector<2>& p : points) {
        if (!accepts(p)) return nullptr;
        scale = std::max({scale, std::fabs(p.x()), std::fabs(p.y())});
    }
    std::unique_ptr<EdgeIndex> index(new EdgeIndex);
    index->edges_ = edges;
    index->scale_ = scale;

    // Closed, edge k joins vertex k - 1 (n - 1 for k = 0) to vertex k; open, vertex k to k + 1.
    std::vector<EdgeBox> leaves((edges + kFanOut - 1) / kFanOut, emptyBox());
    for (std::size_t leaf = 0; leaf < leaves.size(); ++leaf) {
        const std::size_t first = leaf * kFanOut;
        const std::size_t last = std::min(first + kFanOut, edges);
        EdgeBox& b = leaves[leaf];
        if (closed) grow(b, points[first == 0 ? n - 1 : first - 1]);
        for (std::size_t v = first; v < last; ++v) grow(b, points[v]);
        if (!closed) grow(b, points[last]);
    }
    index->levels_.push_back(std::move(leaves));
    while (index->levels_.back().size() > 1) {
        const std::vector<EdgeBox>& below = index->levels_.back();
        std::vector<EdgeBox> above((below.size() + kFanOut - 1) / kFanOut, emptyBox());
        for (std::size_t c = 0; c < below.size(); ++c) grow(above[c / kFanOut], below[c]);
        index->levels_.push_back(std::move(above));
    }
    return index;
}

namespace {

// The turned box of a set of points along the axis from `from` to `to` (the x axis when they
// coincide or the direction is not a number), widened by `margin`.
template <class ForEachPoint>
TurnedBox turnedAround(const xcVector<2>& from, const xcVector<2>& to, double margin,
                       ForEachPoint forEachPoint) {
    const xcVector<2> d = to - from;
    const double len = d.length();
    const double ux = len > 0.0 && std::isfinite(len) ? d.x() / len : 1.0;
    const double uy = len > 0.0 && std::isfinite(len) ? d.y() / len : 0.0;
    double minS = kNoCoordinate, maxS = -kNoCoordinate, minT = kNoCoordinate, maxT = -kNoCoordinate;
    forEachPoint([&](const xcVector<2>& p) {
        const double s = p.x() * ux + p.y() * uy;
        const double t = p.y() * ux - p.x() * uy;
        minS = std::min(minS, s);
        maxS = std::max(maxS, s);
        minT = std::min(minT, t);
        maxT = std::max(maxT, t);
    });
    const double cs = (minS + maxS) / 2.0;
    const double ct = (minT + maxT) / 2.0;
    return {cs * ux - ct * uy, cs * uy + ct * ux, ux, uy, (maxS - minS) / 2.0 + margin,
            (maxT - minT) / 2.0 + margin};
}

}  // namespace

// The leaves' turned boxes follow the run of vertices from the first to the last of the leaf;
// a parent's, the run of its children's centres. The margin covers the rounding of the
// projections and of the centre's return to x and y: a few units in the last place of the
// coordinate scale, taken 100 times over.
void EdgeIndex::buildTurned(const std::vector<xcVector<2>>& points, bool closed) const {
    const std::size_t n = points.size();
    const double margin = 1e-13 * scale_;
    std::vector<std::vector<TurnedBox>> turned(levels_.size());
    turned[0].reserve(levels_[0].size());
    for (std::size_t leaf = 0; leaf < levels_[0].size(); ++leaf) {
        const std::size_t first = leaf * kFanOut;
        const std::size_t last = std::min(first + kFanOut, edges_);
        const xcVector<2>& a = points[edgeStartVertex(first, n, closed)];
        const xcVector<2>& b = points[edgeEndVertex(last - 1, closed)];
        turned[0].push_back(turnedAround(a, b, margin, [&](auto add) {
            add(a);
            for (std::size_t k = first; k < last; ++k) add(points[edgeEndVertex(k, closed)]);
        }));
    }
    for (std::size_t level = 1; level < levels_.size(); ++level) {
        const std::vector<TurnedBox>& below = turned[level - 1];
        for (std::size_t node = 0; node < levels_[level].size(); ++node) {
            const std::size_t first = node * kFanOut;
            const std::size_t last = std::min(first + kFanOut, below.size());
            const xcVector<2> from(below[first].cx, below[first].cy);
            const xcVector<2> to(below[last - 1].cx, below[last - 1].cy);
            turned[level].push_back(turnedAround(from, to, margin, [&](auto add) {
                for (std::size_t c = first; c < last; ++c) {
                    const TurnedBox& t = below[c];
                    const xcVector<2> centre(t.cx, t.cy);
                    const xcVector<2> u(t.ux * t.halfU, t.uy * t.halfU);
                    const xcVector<2> v(-t.uy * t.halfV, t.ux * t.halfV);
                    add(centre + u + v);
                    add(centre + u - v);
                    add(centre - u + v);
                    add(centre - u - v);
                }
            }));
        }
    }
    turned_ = std::move(turned);
}

}  // namespace xn_contourDetail
