// An outline that owns its vertices and prepares, once, what the fast paths need (internal
// header, not installed).
#ifndef CNTR_CORE_PREPARED_OUTLINE_H
#define CNTR_CORE_PREPARED_OUTLINE_H

#include <memory>
#include <mutex>
#include <vector>

#include <cntr/core/edge_index.h>
#include <cntr/core/outline.h>
#include <cntr/core/segment_hits.h>
#include <cntr/export.h>
#include <foundation/geometry.h>

namespace cntr::core {

/// An outline (its own vertices and closed flag) with its bounding rectangle, edge table and
/// edge index, each built on first use and kept. The vertices never change, so each piece is
/// built at most once: concurrent first uses are serialised (std::call_once) and every later
/// use only reads, so one prepared outline may be shared by any number of threads.
///
/// Its queries give the answers of a fresh contour (or region) of the same vertices: the same
/// points in the same order, the same counts, the same exceptions.
class CNTR_API PreparedOutline {
  public:
    PreparedOutline(std::vector<xcVector<2>> points, bool closed);
    PreparedOutline(const PreparedOutline&) = delete;
    PreparedOutline& operator=(const PreparedOutline&) = delete;

    OutlineView view() const { return OutlineView(points_, closed_); }
    const std::vector<xcVector<2>>& points() const { return points_; }

    /// The bounding rectangle as the contour's enclosing rectangle in the identity frame has it.
    /// Throws xcContourDefs::EmptyContour for fewer than 2 vertices.
    const xcRect& bounds() const;
    /// The edge table (see fillEdgeTable).
    const EdgeTable& table() const;
    /// The edge index, or null for outlines that do not get one.
    const EdgeIndex* index() const;

    /// The number of points of the segment query (see the contour's intersections). Throws
    /// EmptyContour for fewer than 2 vertices.
    std::size_t hitCount(const xcLineSeg& seg, bool includeEndTouches) const;
    /// The first hit along `seg`, end touches excluded; false when there is none. Throws
    /// EmptyContour for fewer than 2 vertices.
    bool firstHit(const xcLineSeg& seg, SegmentHit& first) const;
    /// The crossing count of a closed outline (see crossingCount), its ray as long as the
    /// outline's diameter from its first vertex. Throws EmptyContour for fewer than 2 vertices.
    long crossingCount(const xcVector<2>& point, bool bothWays) const;

  private:
    // The index where it serves the query (both ends within its coordinate limit), else null.
    const EdgeIndex* indexFor(const xcLineSeg& seg) const;
    void checkNotEmpty() const;

    std::vector<xcVector<2>> points_;
    bool closed_;
    mutable std::once_flag boundsOnce_;
    mutable xcRect bounds_;
    mutable std::once_flag tableOnce_;
    mutable EdgeTable table_;
    mutable std::once_flag indexOnce_;
    mutable std::shared_ptr<const EdgeIndex> index_;
};

}  // namespace cntr::core

#endif
