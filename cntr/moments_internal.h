#ifndef CNTR_MOMENTS_INTERNAL_H
#define CNTR_MOMENTS_INTERNAL_H

// Helpers shared by the moment sources; not part of the installed interface.

#include <vector>

#include <cntr/export.h>
#include <foundation/geometry.h>
#include <foundation/vector.h>

namespace moments_detail {

/// The positions of `edgelets`, in order.
std::vector<xcVector<2>> positionsOf(const std::vector<xcEdgelet>& edgelets);

/// The unsigned area by the sum in edge order, which xf_Area may reorder (within 1e-10
/// relative); kept as the reference.
CNTR_API double plainArea(const std::vector<xcVector<2>>& points);

/// The centre of mass by the fan triangles one by one, which xnContour::centerOfMass computes
/// two at a time with the same bits; kept as the reference.
CNTR_API xcVector<2> plainCenterOfMass(const std::vector<xcVector<2>>& points);

}  // namespace moments_detail

#endif
