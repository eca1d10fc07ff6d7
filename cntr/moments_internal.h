#ifndef CNTR_MOMENTS_INTERNAL_H
#define CNTR_MOMENTS_INTERNAL_H

// Helpers shared by the moment sources; not part of the installed interface.

#include <vector>

#include <foundation/geometry.h>
#include <foundation/vector.h>

namespace moments_detail {

/// The positions of `edgelets`, in order.
std::vector<xcVector<2>> positionsOf(const std::vector<xcEdgelet>& edgelets);

}  // namespace moments_detail

#endif
