// The first pair of edges, among the edges of several rings, that cross or overlap: a sweep over
// the edges' boxes (internal header, not installed).
#ifndef CNTR_CORE_EDGE_SWEEP_H
#define CNTR_CORE_EDGE_SWEEP_H

#include <cstddef>
#include <optional>
#include <vector>

#include <cntr/export.h>
#include <foundation/predicates.h>
#include <foundation/vector.h>

namespace cntr::core {

/// An edge as the sweep sees it: its ends and where it comes from.
struct SweptEdge {
    xcVector<2> start;
    xcVector<2> end;
    std::size_t member;
    std::size_t ring;
    std::size_t edge;
};

/// A pair of edges that cross or overlap: `first` and `second` index the sweep's input, first
/// < second; contact is xfSegmentContact(first's ends, second's ends).
struct EdgeConflict {
    std::size_t first;
    std::size_t second;
    xcSegmentContact contact;
};

/// A pair of edges with one common point: `first` < `second` index the sweep's input.
struct EdgeTouch {
    std::size_t first;
    std::size_t second;
    xcVector<2> point;
};

/// Of all pairs of `edges` that cross at a point interior to both or share a segment of positive
/// length, the one of smallest (first, second) index; empty when there is none. Touching pairs
/// are not conflicts. Zero-length edges take no part. Candidates come from a sort of the boxes by
/// their smallest x and a sweep that keeps the boxes still reaching the current x: O(n log n)
/// plus the pairs whose x-ranges overlap. Coordinates must be finite. When `touches` is given
/// and there is no conflict, it receives every touching pair, in no particular order.
CNTR_API std::optional<EdgeConflict> firstEdgeConflict(const std::vector<SweptEdge>& edges,
                                                       std::vector<EdgeTouch>* touches = nullptr);

}  // namespace cntr::core

#endif
