// The edge index of an outline: a packed hierarchy of boxes over the edges in edge order, built
// once and immutable afterwards (internal header, not installed).
#ifndef CNTR_CORE_EDGE_INDEX_H
#define CNTR_CORE_EDGE_INDEX_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include <cntr/core/box.h>
#include <cntr/core/outline.h>
#include <cntr/tolerances.h>
#include <cntr/export.h>
#include <foundation/vector.h>

namespace cntr::core {

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

/// Boxes over the edges of an outline, kFanOut consecutive edges per leaf and kFanOut
/// consecutive nodes per parent, so that a depth-first walk visits the edges in edge order. Each
/// node has an axis-aligned box and a box turned along its run of vertices; both hold both end
/// vertices of every edge below it (degenerate edges included), so every vertex of the outline
/// lies in the leaf of an edge that ends or starts at it.
///
/// Immutable once built: every member is const and reads only, so one index may be shared by any
/// number of threads without locking.
///
/// Cost: about 80 / (kFanOut - 1) bytes per edge (under 12 bytes with kFanOut 8: 32 for the
/// axis-aligned box and 48 for the turned box of each node), built in two passes over the
/// vertices. Built only for outlines of at least kMinEdges edges whose coordinates are finite and
/// at most kIndexCoordinateLimit in magnitude: on other outlines the queries keep their plain
/// per-edge loops, whose rounding the index's margins do not cover.
class CNTR_API EdgeIndex {
  public:
    static constexpr std::size_t kFanOut = 8;
    /// Below this many edges the plain loops are as fast as a walk of the index.
    static constexpr std::size_t kMinEdges = 32;

    /// The index of the outline's edges, or null when the outline does not qualify (see above).
    static std::shared_ptr<const EdgeIndex> build(const OutlineView& outline);

    /// Whether every coordinate of `p` is finite and within kIndexCoordinateLimit.
    static bool accepts(const xcVector<2>& p) {
        // Written so that a NaN coordinate fails the test.
        return std::fabs(p.x()) <= kIndexCoordinateLimit &&
               std::fabs(p.y()) <= kIndexCoordinateLimit;
    }

    /// The largest coordinate magnitude of the vertices, at least 1.
    double scale() const { return scale_; }
    std::size_t edgeCount() const { return edges_; }
    /// The memory the index holds, its boxes and itself.
    std::size_t bytes() const;
    EdgeNode root() const { return {levels_.size() - 1, 0}; }
    const Box& box(const EdgeNode& node) const { return levels_[node.level][node.index]; }
    /// The turned box of a node, holding every vertex below it as its box does.
    const TurnedBox& turnedBox(const EdgeNode& node) const {
        return turned_[node.level][node.index];
    }
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
        if (!mayHold(node))
            return;
        if (node.level == 0) {
            for (std::size_t k = firstEdge(node); k < lastEdge(node); ++k)
                edge(k);
            return;
        }
        for (std::size_t c = firstChild(node); c < lastChild(node); ++c)
            walk(EdgeNode{node.level - 1, c}, mayHold, edge);
    }

    void buildBoxes(const OutlineView& outline);
    void buildTurned(const OutlineView& outline);

    std::size_t edges_ = 0;
    double scale_ = 1.0;
    std::vector<std::vector<Box>> levels_;
    std::vector<std::vector<TurnedBox>> turned_;
};

/// `index` where it serves a segment query from a to b (both ends accepted), else null.
inline const EdgeIndex* indexServing(const EdgeIndex* index, const xcVector<2>& a,
                                     const xcVector<2>& b) {
    return index != nullptr && EdgeIndex::accepts(a) && EdgeIndex::accepts(b) ? index : nullptr;
}

}  // namespace cntr::core

#endif
