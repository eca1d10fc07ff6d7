// The nearest point of an outline's edges through the edge index (internal header, not
// installed; the edge-by-edge definition is referenceNearestPoint in reference.h).
#ifndef CNTR_CORE_NEAREST_H
#define CNTR_CORE_NEAREST_H

#include <cntr/core/edge_index.h>
#include <cntr/core/outline.h>
#include <cntr/export.h>
#include <foundation/vector.h>

namespace cntr::core {

/// referenceNearestPoint's answer through the index: the edge at the smallest distance from
/// `point` (the lowest index among equal distances) and the clamped projection on it. Boxes
/// further than the best edge so far, by either their axis-aligned or their turned box, are
/// passed over. `point` must be accepted by the index.
CNTR_API xcVector<2> nearestPointIndexed(const OutlineView& outline, const EdgeIndex& index,
                                         const xcVector<2>& point);

}  // namespace cntr::core

#endif
