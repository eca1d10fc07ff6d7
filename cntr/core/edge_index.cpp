// Building the edge index.
#include <cntr/core/edge_index.h>

#include <optional>

#include <cntr/core/extent.h>

namespace cntr::core {

std::shared_ptr<const EdgeIndex> EdgeIndex::build(const OutlineView& outline) {
    const std::size_t edges = outline.edgeCount();
    if (edges < kMinEdges)
        return nullptr;
    // Every coordinate finite and within the limit (what accepts() asks of each point).
    const std::optional<double> largest = largestFiniteCoordinate(outline.points());
    if (!largest || *largest > kIndexCoordinateLimit)
        return nullptr;
    std::shared_ptr<EdgeIndex> index(new EdgeIndex);
    index->edges_ = edges;
    index->scale_ = std::max(*largest, 1.0);
    index->buildBoxes(outline);
    index->buildTurned(outline);
    return index;
}

std::size_t EdgeIndex::bytes() const {
    std::size_t total = sizeof(*this) + levels_.capacity() * sizeof(levels_[0]) +
                        turned_.capacity() * sizeof(turned_[0]);
    for (const std::vector<Box>& level : levels_)
        total += level.capacity() * sizeof(Box);
    for (const std::vector<TurnedBox>& level : turned_)
        total += level.capacity() * sizeof(TurnedBox);
    return total;
}

void EdgeIndex::buildBoxes(const OutlineView& outline) {
    const std::size_t n = outline.size();
    const bool closed = outline.closed();
    // Closed, edge k joins vertex k - 1 (n - 1 for k = 0) to vertex k; open, vertex k to k + 1.
    std::vector<Box> leaves((edges_ + kFanOut - 1) / kFanOut, Box());
    for (std::size_t leaf = 0; leaf < leaves.size(); ++leaf) {
        const std::size_t first = leaf * kFanOut;
        const std::size_t last = std::min(first + kFanOut, edges_);
        Box& b = leaves[leaf];
        if (closed)
            b.grow(outline[first == 0 ? n - 1 : first - 1]);
        for (std::size_t v = first; v < last; ++v)
            b.grow(outline[v]);
        if (!closed)
            b.grow(outline[last]);
    }
    levels_.push_back(std::move(leaves));
    while (levels_.back().size() > 1) {
        const std::vector<Box>& below = levels_.back();
        std::vector<Box> above((below.size() + kFanOut - 1) / kFanOut, Box());
        for (std::size_t c = 0; c < below.size(); ++c)
            above[c / kFanOut].merge(below[c]);
        levels_.push_back(std::move(above));
    }
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
    Box st;  // the extent along the axis (x) and across it (y)
    forEachPoint([&](const xcVector<2>& p) {
        st.grow(xcVector<2>(p.x() * ux + p.y() * uy, p.y() * ux - p.x() * uy));
    });
    const double cs = (st.minX + st.maxX) / 2.0;
    const double ct = (st.minY + st.maxY) / 2.0;
    return {cs * ux - ct * uy,
            cs * uy + ct * ux,
            ux,
            uy,
            (st.maxX - st.minX) / 2.0 + margin,
            (st.maxY - st.minY) / 2.0 + margin};
}

}  // namespace

// The leaves' turned boxes follow the run of vertices from the first to the last of the leaf;
// a parent's, the run of its children's centres. The margin covers the rounding of the
// projections and of the centre's return to x and y.
void EdgeIndex::buildTurned(const OutlineView& outline) {
    const double margin = kCoordinateRounding * scale_;
    std::vector<std::vector<TurnedBox>> turned(levels_.size());
    turned[0].reserve(levels_[0].size());
    for (std::size_t leaf = 0; leaf < levels_[0].size(); ++leaf) {
        const std::size_t first = leaf * kFanOut;
        const std::size_t last = std::min(first + kFanOut, edges_);
        const xcVector<2>& a = outline.edgeStart(first);
        const xcVector<2>& b = outline.edgeEnd(last - 1);
        turned[0].push_back(turnedAround(a, b, margin, [&](auto add) {
            add(a);
            for (std::size_t k = first; k < last; ++k)
                add(outline.edgeEnd(k));
        }));
    }
    for (std::size_t level = 1; level < levels_.size(); ++level) {
        const std::vector<TurnedBox>& below = turned[level - 1];
        turned[level].reserve(levels_[level].size());
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

}  // namespace cntr::core
