// The reference definitions of the queries that have fast paths (internal header, not
// installed): each is the edge-by-edge (or pair-by-pair) computation that defines the result,
// the oracle its fast twin is tested against, and what the fast path itself calls for the
// inputs it does not serve (outlines too small for an index, coordinates that are not finite or
// beyond the index's limit).
#ifndef CNTR_CORE_REFERENCE_H
#define CNTR_CORE_REFERENCE_H

#include <vector>

#include <cntr/core/outline.h>
#include <cntr/core/segment_hits.h>
#include <cntr/export.h>
#include <foundation/geometry.h>

namespace cntr::core {

// ---- the segment query ----

/// Appends the hits of the table's edges on the query, in edge order: every non-degenerate edge
/// whose rectangle overlaps the query's, that is not parallel to it (within 1e-12), that (unless
/// end touches count) passes no nearer than kCoincidentTolerance to either end of the query, and
/// whose line crosses the query's at a point within kCoincidentTolerance of both.
CNTR_API void referenceSegmentHits(const EdgeTable& table, const SegmentQuery& query,
                                   std::vector<SegmentHit>& hits);

/// The hit of smallest key (P - p1) . (p2 - p1) over the table's edges, end touches excluded, the
/// first in edge order among equal keys (what a scan replacing its best by each strictly smaller
/// key leaves, and so the front of orderAlong's order); false when there is none.
CNTR_API bool referenceFirstHit(const EdgeTable& table, const SegmentQuery& query,
                                SegmentHit& first);

/// Whether some non-degenerate edge, taken as a query with end touches excluded, hits the table:
/// a query whose rectangle misses `bounds` (the outline's bounding rectangle) finds nothing.
CNTR_API bool referenceSelfIntersecting(const EdgeTable& table, const xcRect& bounds);

/// The contour's segment query from its definition: nothing when the query's rectangle misses
/// the outline's bounding rectangle, else the table's hits ordered along the query. The outline
/// must have a vertex.
CNTR_API std::vector<SegmentHit> referenceSegmentQuery(const OutlineView& outline,
                                                       const xcLineSeg& seg,
                                                       bool includeEndTouches);

/// The contour's first hit along a segment from its definition (end touches excluded): false when
/// the query's rectangle misses the outline's bounding rectangle, else referenceFirstHit of the
/// outline's edge table. The outline must have a vertex.
CNTR_API bool referenceFirstHitAlong(const OutlineView& outline, const xcLineSeg& seg,
                                     SegmentHit& first);

/// referenceSelfIntersecting of the outline's own edge table and bounding rectangle; false for
/// fewer than 2 vertices.
CNTR_API bool referenceSelfIntersecting(const OutlineView& outline);

// ---- containment ----

/// crossingCount (see containment.h) from its definition: the outline's bounding rectangle, every
/// vertex direction sorted, and the rays' hits from the edge-by-edge segment query. The outline
/// must have a vertex.
CNTR_API long referenceCrossingCount(const OutlineView& outline, const xcVector<2>& point,
                                     bool bothWays);

// ---- length ----

/// The sum of the edge lengths in edge order; 0 without vertices.
CNTR_API double referenceLength(const OutlineView& outline);

// ---- area and centroid ----

/// The unsigned area of the polygon (the vertices read as closed, see moments.h): half the
/// absolute sum of cross(previous, current), added in edge order, closing edge first; 0 without
/// vertices.
CNTR_API double referenceArea(const std::vector<xcVector<2>>& polygon);

/// The area centroid of the polygon from its fan triangles (origin, previous, current) one by
/// one, in edge order (see polygonCentroid for the weights, the skipped triangles, the (0, 0)
/// cases and the throw).
CNTR_API xcVector<2> referenceCentroid(const std::vector<xcVector<2>>& polygon);

// ---- nearest point ----

/// The point of the outline's edges nearest to `point`: the edge at the smallest distance (its
/// segment's own distance; the first in edge order on ties, and never an edge at a NaN distance)
/// and the clamped projection on it; a zero-length edge gives its start vertex. (0, 0) when no
/// edge has a distance below infinity.
CNTR_API xcVector<2> referenceNearestPoint(const OutlineView& outline, const xcVector<2>& point);

// ---- enclosing circles ----

/// The circle through the first ordered pair (i outer, j inner) of vertices at the largest
/// distance, from the loop over every pair; the default circle when no distance exceeds 0.
CNTR_API xcCircle referenceFurthestPairCircle(const OutlineView& outline);

}  // namespace cntr::core

#endif
