// The contour's edge index: a packed hierarchy of boxes over the edges in edge order (internal
// header, not installed).
#ifndef CNTR_CONTOUR_EDGEINDEX_H
#define CNTR_CONTOUR_EDGEINDEX_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include <cntr/export.h>
#include <foundation/vector.h>

namespace xn_contourDetail {

/// A point found by the segment query and the index of the edge that gave it.
struct SegmentHit {
    xcVector<2> point;
    int edge;
};

/// An axis-aligned box held as its extreme coordinates; a box of no edge has min > max.
struct EdgeBox {
    double minX;
    double minY;
    double maxX;
    double maxY;
};

/// A box turned to the axis `u` (a unit vector; v is u turned a quarter left): the points c +
/// s u + t v with |s| <= halfU and |t| <= halfV. Around a run of long parallel edges (the spikes
/// of a star, a stretch of a diagonal outline) it is far tighter than the axis-aligned box.
struct TurnedBox {
    double cx;
    double cy;
    double ux;
    double uy;
    double halfU;
    double halfV;
};

/// The squared distance from `p` to the nearest point of `b` (0 inside), with `slack` taken
/// off each of the two offsets for rounding.
inline double squaredDistance(const TurnedBox& b, const xcVector<2>& p, double slack) {
    const double rx = p.x() - b.cx;
    const double ry = p.y() - b.cy;
    const double s = std::max(std::fabs(rx * b.ux + ry * b.uy) - b.halfU - slack, 0.0);
    const double t = std::max(std::fabs(ry * b.ux - rx * b.uy) - b.halfV - slack, 0.0);
    return s * s + t * t;
}

/// A node of the index: `level` 0 holds the leaves, each of up to kFanOut consecutive edges;
/// a node at level l > 0 groups up to kFanOut consecutive nodes of level l - 1.
struct EdgeNode {
    std::size_t level;
    std::size_t index;
};

/// Boxes over the edges of a contour, kFanOut consecutive edges per leaf and kFanOut
/// consecutive nodes per parent, so that a depth-first walk visits the edges in edge order. Each
/// box holds both end vertices of every edge below it (degenerate edges included), so every
/// vertex of the contour lies in the leaf of an edge that ends or starts at it.
///
/// Cost: about 32 / (kFanOut - 1) bytes per edge (under 5 bytes with kFanOut 8), built in one
/// pass over the vertices; the turned boxes, which the nearest-point search builds on its first
/// call, add about 48 / (kFanOut - 1) (7 bytes). Built only for contours of at least kMinEdges edges whose
/// coordinates are finite and at most kCoordinateLimit in magnitude: on other contours the
/// queries keep their plain per-edge loops, whose rounding the index's margins do not cover.
class EdgeIndex {
public:
    static constexpr std::size_t kFanOut = 8;
    /// Below this many edges the plain loops are as fast as a walk of the index.
    static constexpr std::size_t kMinEdges = 32;
    /// The largest coordinate magnitude for which the pruning margins hold.
    static constexpr double kCoordinateLimit = 1e7;

    /// The index of the contour's edges, or null when the contour does not qualify (see above).
    static std::unique_ptr<EdgeIndex> build(const std::vector<xcVector<2>>& points, bool closed);

    /// Whether every coordinate of `p` is finite and within kCoordinateLimit.
    static bool accepts(const xcVector<2>& p);

    /// The largest coordinate magnitude of the vertices, at least 1.
    double scale() const { return scale_; }
    std::size_t edgeCount() const { return edges_; }
    /// The memory the index holds, its boxes and itself.
    std::size_t bytes() const {
        std::size_t total = sizeof(*this) + levels_.capacity() * sizeof(levels_[0]) +
                            turned_.capacity() * sizeof(turned_[0]);
        for (const std::vector<EdgeBox>& level : levels_) total += level.capacity() * sizeof(EdgeBox);
        for (const std::vector<TurnedBox>& level : turned_)
            total += level.capacity() * sizeof(TurnedBox);
        return total;
    }
    EdgeNode root() const { return {levels_.size() - 1, 0}; }
    const EdgeBox& box(const EdgeNode& node) const { return levels_[node.level][node.index]; }
    /// The children of a node above the leaves: [first, last) at level node.level - 1.
    std::size_t firstChild(const EdgeNode& node) const { return node.index * kFanOut; }
    std::size_t lastChild(const EdgeNode& node) const {
        return std::min(firstChild(node) + kFanOut, levels_[node.level - 1].size());
    }
    /// The edges of a leaf: [firstEdge, lastEdge).
    std::size_t firstEdge(const EdgeNode& leaf) const { return leaf.index * kFanOut; }
    std::size_t lastEdge(const EdgeNode& leaf) const {
        return std::min(firstEdge(leaf) + kFanOut, edges_);
    }

    /// The turned box of a node, holding every vertex below it as its box does. The turned
    /// boxes are built for the whole index on the first call, from `points` (the vertices the
    /// index was built from) and kept: about 48 / (kFanOut - 1) bytes per edge more.
    const TurnedBox& turnedBox(const EdgeNode& node, const std::vector<xcVector<2>>& points,
                               bool closed) const {
        if (turned_.empty()) buildTurned(points, closed);
        return turned_[node.level][node.index];
    }

    /// Calls edge(k) for every edge k below a node whose box passes `mayHold`, in ascending
    /// edge order.
    template <class BoxTest, class EdgeVisit>
    void forEachCandidate(BoxTest mayHold, EdgeVisit edge) const {
        const auto nodeTest = [&](const EdgeNode& node) { return mayHold(box(node)); };
        walk(root(), nodeTest, edge);
    }

    /// forEachCandidate with a test of the node itself (its box, its turned box).
    template <class NodeTest, class EdgeVisit>
    void forEachCandidateNode(const NodeTest& mayHold, EdgeVisit edge) const {
        walk(root(), mayHold, edge);
    }

private:
    EdgeIndex() = default;

    template <class NodeTest, class EdgeVisit>
    void walk(const EdgeNode& node, const NodeTest& mayHold, EdgeVisit& edge) const {
        if (!mayHold(node)) return;
        if (node.level == 0) {
            for (std::size_t k = firstEdge(node); k < lastEdge(node); ++k) edge(k);
            return;
        }
        for (std::size_t c = firstChild(node); c < lastChild(node); ++c)
            walk(EdgeNode{node.level - 1, c}, mayHold, edge);
    }

    // Exported because turnedBox(), inline, calls it from the tests as well.
    CNTR_API void buildTurned(const std::vector<xcVector<2>>& points, bool closed) const;

    std::size_t edges_ = 0;
    double scale_ = 1.0;
    std::vector<std::vector<EdgeBox>> levels_;
    mutable std::vector<std::vector<TurnedBox>> turned_;  // empty until turnedBox() is asked
};

/// The squared distance from `p` to the nearest point of `b` (0 inside). Inline: the nearest
/// point and containment searches call it for every box and edge they consider.
inline double squaredDistance(const EdgeBox& b, const xcVector<2>& p) {
    const double dx = std::max({b.minX - p.x(), 0.0, p.x() - b.maxX});
    const double dy = std::max({b.minY - p.y(), 0.0, p.y() - b.maxY});
    return dx * dx + dy * dy;
}

}  // namespace xn_contourDetail

#endif
