// Rings that cross at a common point without any two edges crossing there: two passes through
// one point whose directions interleave (internal header, not installed).
#ifndef CNTR_CORE_POINT_CROSSINGS_H
#define CNTR_CORE_POINT_CROSSINGS_H

#include <cstddef>
#include <optional>
#include <vector>

#include <cntr/core/edge_sweep.h>
#include <cntr/export.h>
#include <foundation/vector.h>

namespace cntr::core {

/// Two passes of rings through one point that cross there. A pass is named by the edge that
/// arrives at the point (the edge holding it, when it lies inside an edge), as an index of the
/// sweep's input; first < second.
struct PointCrossing {
    std::size_t first;
    std::size_t second;
    xcVector<2> point;
};

/// Of the passes through the common points of `touches` (what firstEdgeConflict gives when no
/// edges cross or overlap), the pair of smallest (first, second) whose directions alternate
/// around the point (in, out of one separate the in and out of the other): the rings cross
/// there. `edges` must list each ring's edges consecutively in edge order, as the sweep's input
/// did, and contain no crossing or overlapping pair; exact.
CNTR_API std::optional<PointCrossing> firstPointCrossing(const std::vector<SweptEdge>& edges,
                                                         std::vector<EdgeTouch> touches);

}  // namespace cntr::core

#endif
