// Building the edge index.
#include <algorithm>
#include <cmath>

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

}  // namespace xn_contourDetail
