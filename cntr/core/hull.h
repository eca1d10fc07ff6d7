// The convex hull of an outline's vertices (internal header, not installed).
#ifndef CNTR_CORE_HULL_H
#define CNTR_CORE_HULL_H

#include <vector>

#include <cntr/export.h>
#include <foundation/vector.h>

namespace cntr::core {

/// The vertices of the convex hull of `points`, by the foundation's hull: counter-clockwise
/// (y up) from the vertex with the smallest x (then the smallest y), collinear and repeated
/// points dropped; 0, 1 or 2 distinct points give those points. The order of `points` and
/// whether they form a closed outline play no part. Throws xcMathError::NotFinite when a
/// coordinate is NaN or infinite.
CNTR_API std::vector<xcVector<2>> convexHull(const std::vector<xcVector<2>>& points);

}  // namespace cntr::core

#endif
