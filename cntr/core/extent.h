// Extent measures of an outline: the centre of its polyline, its extremal vertex in a direction,
// its enclosing rectangle in a transformed frame and its largest coordinate (internal header, not
// installed).
#ifndef CNTR_CORE_EXTENT_H
#define CNTR_CORE_EXTENT_H

#include <optional>
#include <vector>

#include <cntr/core/outline.h>
#include <cntr/export.h>
#include <foundation/angle.h>
#include <foundation/geometry.h>
#include <foundation/xform.h>

namespace cntr::core {

/// The length-weighted mean of the edge midpoints, edges in edge order: the centre of mass of the
/// polyline taken as a uniform wire. (NaN, NaN) when every edge has length 0.
CNTR_API xcVector<2> wireCentre(const OutlineView& outline);

/// The index of the first vertex with the highest score in direction `angle`: x, -x, y or -y
/// when (cos, sin) of the angle is within kExactTolerance of an axis direction, else the dot
/// product with the direction; -1 when no vertex scores above the lowest double.
CNTR_API long extremalVertex(const OutlineView& outline, const xcRadian& angle);

/// The axis-aligned rectangle of the vertices mapped through `xform` (the raw vertices when
/// `xform` is the identity within kExactTolerance): vertex 0's zero-size rectangle enclosing
/// each further vertex in turn. The outline must have a vertex.
CNTR_API xcRect enclosingRect(const OutlineView& outline, const xcXform<2>& xform);

/// The largest absolute coordinate of `points` (0 without points); empty when a coordinate is
/// not finite.
CNTR_API std::optional<double> largestFiniteCoordinate(const std::vector<xcVector<2>>& points);

}  // namespace cntr::core

#endif
