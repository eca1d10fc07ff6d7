// The prepared point locator: where points lie relative to a set of rings under the even-odd
// rule, answered through horizontal bands over the edges (internal header, not installed).
#ifndef CNTR_CORE_POINT_LOCATOR_H
#define CNTR_CORE_POINT_LOCATOR_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include <cntr/export.h>
#include <foundation/predicates.h>
#include <foundation/vector.h>

namespace cntr::core {

/// Locates points relative to closed rings (each in any orientation; the last vertex joins the
/// first) read together under the even-odd rule. Built once, immutable afterwards, so any
/// number of threads may query one locator at once.
///
/// Layout. Edge e numbers the edges of the rings one ring after the other, in edge order (edge
/// k of a ring of n vertices runs from vertex k to vertex (k + 1) mod n). The y extent is cut
/// into bands of equal height; each band lists the edges whose y range meets it. There is one
/// band for every four edges where the edges cover each height about twice (outlines of
/// blobs), fewer where they cover it more often (spiky outlines), so that the lists hold at
/// most about four entries per edge. Memory beyond the rings, which it refers to: 4 bytes per
/// list entry and per band, at most about 17 bytes per edge.
class CNTR_API PointLocator {
  public:
    /// Prepares `rings`, which must outlive the locator and must not change while it is used:
    /// it refers to their vertices. Coordinates must be finite (the caller checks). A ring
    /// without vertices adds nothing; a ring of one vertex is a single point, which the locator
    /// counts as boundary. Throws std::length_error when the rings hold 2^32 - 1 edges or more,
    /// or the band lists would.
    explicit PointLocator(std::vector<const std::vector<xcVector<2>>*> rings);

    /// Where `p` lies: boundary when it lies on an edge (exactly; a zero-length edge is its
    /// point), else inside when a ray from it crosses the edges an odd number of times, else
    /// outside. Exact: only comparisons and xfOrientation decide, so the answer agrees with
    /// xfLocateInRing ring by ring. `p` must be finite.
    xcRingLocation locate(const xcVector<2>& p) const;

    /// Whether some edge passes within `distance` of `p` (distance > 0, finite; computed in
    /// floating point, each edge's distance by its clamped projection).
    bool nearEdge(const xcVector<2>& p, double distance) const;

    /// The number of edges, of bands, and the bytes held by the tables.
    std::size_t edgeCount() const { return ringFirstEdge_.empty() ? 0 : ringFirstEdge_.back(); }
    std::size_t bandCount() const { return bandStart_.empty() ? 0 : bandStart_.size() - 1; }
    std::size_t memoryBytes() const;

  private:
    struct EdgeEnds {
        const xcVector<2>& start;
        const xcVector<2>& end;
    };
    EdgeEnds edgeEnds(std::uint32_t edge) const;

    /// The rings with vertices, and the number of each one's first edge (then the edge count).
    std::vector<const std::vector<xcVector<2>>*> rings_;
    std::vector<std::uint32_t> ringFirstEdge_;
    /// The edges of band b: bandEdges_[bandStart_[b]] up to bandEdges_[bandStart_[b + 1]].
    std::vector<std::uint32_t> bandStart_;
    std::vector<std::uint32_t> bandEdges_;
    double minX_ = 0.0, minY_ = 0.0, maxX_ = 0.0, maxY_ = 0.0;
    /// Bands per unit of height.
    double bandScale_ = 0.0;
};

}  // namespace cntr::core

#endif
