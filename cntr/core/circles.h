// The contour's two enclosing circles: through its furthest vertex pair, and around its first
// vertex (internal header, not installed).
#ifndef CNTR_CORE_CIRCLES_H
#define CNTR_CORE_CIRCLES_H

#include <cntr/core/outline.h>
#include <cntr/export.h>
#include <foundation/geometry.h>

namespace cntr::core {

/// The circle through the first ordered pair (i outer, j inner, i == j included) of vertices at
/// the largest distance; the default circle when no distance exceeds 0 (all vertices coincide, or
/// fewer than two). Large outlines with finite, moderate coordinates loop over the vertices that
/// a bound on the distances leaves as candidates only: every pair at the largest distance is
/// among them, in the same order, so the result is referenceFurthestPairCircle's.
CNTR_API xcCircle furthestPairCircle(const OutlineView& outline);

/// The circle centred on vertex 0 through the vertex furthest from it; the default circle
/// without vertices.
CNTR_API xcCircle fromFirstVertexCircle(const OutlineView& outline);

}  // namespace cntr::core

#endif
