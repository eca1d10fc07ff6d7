// The fixed, absolute tolerances of the contour library (internal header, not installed).
#ifndef CNTR_TOLERANCES_H
#define CNTR_TOLERANCES_H

namespace xn_contourDetail {

/// Two coordinates (or transform elements) within this of each other count as equal: it decides
/// whether an edge is degenerate, whether a polygon closes on itself, whether a direction is an
/// axis direction and whether a transform is the identity.
constexpr double kExactTolerance = 1e-15;

/// Points closer than this count as coincident in the segment query: a crossing point must lie
/// this close to both the edge and the query segment, and an edge passing this close to an end
/// of the query counts as touching that end.
constexpr double kCoincidentTolerance = 1e-6;

/// A point closer than this to an outline vertex lies on the vertex: the region's crossing
/// count reports it as inside without casting a ray.
constexpr double kOnVertexTolerance = 1e-6;

}  // namespace xn_contourDetail

#endif
