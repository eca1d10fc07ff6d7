// The outline that splices two outlines through a crossing (internal header, not installed).
#ifndef CNTR_CORE_SPLICE_H
#define CNTR_CORE_SPLICE_H

#include <cstddef>
#include <vector>

#include <cntr/core/segment_hits.h>
#include <cntr/export.h>
#include <foundation/geometry.h>

namespace cntr::core {

/// The outline joining two outlines at a crossing X that lies on edge i of the first and edge
/// crossing.edge of the second: X, the end points of the first's stored segments i, i+1, ...
/// (one turn), X, the end points of the second's stored segments from crossing.edge on, as many
/// as the second has vertices (`otherVertices`). The outlines are given as their stored edge
/// segments, in edge order; a zero-length edge is stored as the default segment, so it
/// contributes (0, 0), not its vertex.
CNTR_API std::vector<xcVector<2>> splicedOutline(const std::vector<xcLineSeg>& mine, std::size_t i,
                                                 const SegmentHit& crossing,
                                                 const std::vector<xcLineSeg>& others,
                                                 std::size_t otherVertices);

}  // namespace cntr::core

#endif
