// The area and the area centroid of a polygon (internal header, not installed; the edge-order
// definitions are referenceArea and referenceCentroid in reference.h).
#ifndef CNTR_CORE_MOMENTS_H
#define CNTR_CORE_MOMENTS_H

#include <vector>

#include <cntr/export.h>
#include <foundation/vector.h>

namespace cntr::core {

// A polygon here is a vertex list read as closed, whatever the outline's flag: the last vertex
// joins the first, and the edges run (p[n-1], p[0]), (p[0], p[1]), ..., (p[n-2], p[n-1]).

/// The unsigned area: half the absolute sum of cross(previous, current) over the edges, the same
/// for either vertex order; 0 for fewer than 3 vertices, the net area of a self-overlapping
/// polygon, NaN for NaN coordinates. From 8 to 2^17 vertices the cross products are added in
/// four interleaved partial sums when a sample of every 16th term predicts, and a bound on the
/// rounding then shows, the result within kReorderedAreaTolerance relative of referenceArea;
/// otherwise, and for non-finite terms, the result is referenceArea's.
CNTR_API double polygonArea(const std::vector<xcVector<2>>& polygon);

/// The area centroid, the same for either vertex order: the centroids of the fan triangles
/// (origin, previous, current) weighted by their cross products, the triangles whose cross
/// product is within kNegligibleTriangleCross of 0 left out. (0, 0) for 2 vertices or fewer and
/// when the weights sum to within kNegligibleTotalCross of 0; NaN for NaN coordinates. Throws
/// xcMathError::Singular when the medians of a fan triangle are parallel within the foundation's
/// line tolerance. With SSE2 the triangles are taken two at a time by the same operations in the
/// same order, so the result is referenceCentroid's, bit for bit.
CNTR_API xcVector<2> polygonCentroid(const std::vector<xcVector<2>>& polygon);

}  // namespace cntr::core

#endif
