// The segment query and the queries built on it: hits of a segment on an outline, in edge order
// or through the edge index, the first hit along the segment, their order along it,
// self-intersection and the median edge length (internal header, not installed).
#ifndef CNTR_CORE_SEGMENT_HITS_H
#define CNTR_CORE_SEGMENT_HITS_H

#include <cstddef>
#include <optional>
#include <vector>

#include <cntr/contourmemo.h>
#include <cntr/core/box.h>
#include <cntr/core/edge_index.h>
#include <cntr/core/outline.h>
#include <cntr/export.h>
#include <foundation/geometry.h>

namespace cntr::core {

using xn_contourDetail::EdgeTable;

/// A point found by the segment query and the index of the edge that gave it.
struct SegmentHit {
    xcVector<2> point;
    int edge;
};

/// A query segment with what every edge test needs of it.
struct SegmentQuery {
    SegmentQuery(const xcLineSeg& s, bool touches)
        : seg(s), line(s.line()), box(Box::spanning(s.p1(), s.p2())), includeEndTouches(touches) {}

    xcLineSeg seg;
    xcLine line;
    Box box;
    /// Whether an edge passing within the coincidence tolerance of an end of the query counts.
    bool includeEndTouches;
};

/// Fills `table` with one entry per edge of the outline, in edge order: an edge whose ends are
/// equal within kExactTolerance is degenerate and gets a default segment, line and rectangle and
/// a false validity flag; any other its segment, the segment's line and the rectangle of its two
/// ends. The vectors are cleared first (their storage kept).
CNTR_API void fillEdgeTable(const OutlineView& outline, EdgeTable& table);

/// The bounding rectangle of the vertices: enclosingRect (see extent.h) in the identity frame.
/// The outline must have a vertex.
CNTR_API xcRect boundingRect(const OutlineView& outline);

/// The hits of referenceSegmentHits (see reference.h) through the index, in the order its walk
/// finds them. Both ends of the query must be accepted by the index (EdgeIndex::accepts); the
/// edges are formed from the vertices as fillEdgeTable forms them, so every double is the same.
CNTR_API void indexedHits(const OutlineView& outline, const EdgeIndex& index,
                          const SegmentQuery& query, std::vector<SegmentHit>& hits);

/// The hit of referenceFirstHit (see reference.h) through the index: boxes are taken nearest first
/// and passed over when none of their hits could come before the best one found. With the index
/// every key is a number, so that is the hit of smallest (key, edge). Both ends of the query must
/// be accepted by the index.
CNTR_API bool firstIndexedHit(const OutlineView& outline, const EdgeIndex& index,
                              const SegmentQuery& query, SegmentHit& first);

/// Orders hits along the query by (P - p1) . (p2 - p1) with the plain exchange sort: for each i,
/// every later hit with a strictly smaller key is swapped into place i. The sort is not stable;
/// the order it leaves among equal keys is part of the result.
CNTR_API void orderAlong(std::vector<SegmentHit>& hits, const xcLineSeg& seg);

/// referenceSelfIntersecting (see reference.h) of the outline's edge table and bounding
/// rectangle, decided by a walk over the runs of edges along which x strictly rises or falls, with
/// the same pairs tested as the queries would, and past a budget of work proportional to the edge
/// count by the clearance sweep (see clearance_sweep.h) and the pairs it names; empty when a
/// coordinate is not finite (the caller then runs the queries). An outline of fewer than 2
/// vertices does not intersect itself.
CNTR_API std::optional<bool> selfIntersectingSwept(const OutlineView& outline);

/// selfIntersectingSwept with the walk's budget given: `walkBudget` units of work (a unit per
/// pair of chains, and one per block of either when they are walked together) before the
/// clearance sweep takes over (0: at once). The answer does not depend on it.
CNTR_API std::optional<bool> selfIntersectingSwept(const OutlineView& outline,
                                                   std::size_t walkBudget);

/// The median edge length of a table of at least one edge: the element at index count / 2 of
/// the ascending segment lengths (the upper middle one for an even count), degenerate edges
/// counting 0; NaN lengths sort after every number.
CNTR_API double medianEdgeLength(const EdgeTable& table);

}  // namespace cntr::core

#endif
