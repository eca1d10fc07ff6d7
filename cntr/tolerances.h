// Every fixed tolerance and rounding margin of the contour library, with what it means and where
// it applies: the one place where these values are defined. Each value has one name; the other
// headers describe a tolerance by its meaning. Applications may read them (cntrtool does, to
// report the library's conventions as such); changing one changes results that the library's
// users and tests depend on.
#ifndef CNTR_TOLERANCES_H
#define CNTR_TOLERANCES_H

#include <cstddef>

namespace cntr {

// ---- equality and coincidence ----

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

/// Two points of the repair walk closer than this are one vertex: the outer hull cuts its walk
/// into loops there, and joins two loops that share such a vertex.
constexpr double kWalkVertexTolerance = 1e-6;

/// Two loops of the repair walk whose boxes are this far apart share no vertex: four walk-vertex
/// tolerances, which absorbs the rounding of the box comparison and of the distance that the
/// vertex lookup computes.
constexpr double kLoopsApartMargin = 4.0 * kWalkVertexTolerance;

// ---- moments ----

/// A fan triangle whose doubled signed area is within this of 0 adds nothing to the centroid
/// and is skipped (its median construction would be ill-conditioned).
constexpr double kNegligibleTriangleCross = 1e-15;

/// A polygon whose summed doubled signed area is within this of 0 has no meaningful centroid;
/// its centre is reported as (0, 0).
constexpr double kNegligibleTotalCross = 1e-6;

/// The largest relative distance allowed between the area's reordered sum and its sum in edge
/// order.
constexpr double kReorderedAreaTolerance = 1e-10;

/// Slack on the inertia's test "the foot of the altitude lies outside the base": the foot counts
/// as outside only when the distance to the base's line is below the distance to the base
/// segment by more than this, so a foot on a base corner is accepted despite rounding.
constexpr double kFootOutsideSlack = 1e-10;

/// A combined inertia record whose area is within this of 0 has no meaningful centre; the centre
/// is then (0, 0).
constexpr double kNegligibleCombinedArea = 1e-16;

/// The inertia's second-pass threshold on the magnitude of a fan triangle's area: triangles
/// beyond it (in the sign of the mean) are summed before the remaining, smaller ones.
constexpr double kSmallTriangleArea = 1e-6;

/// A principal moment within this of 0 determines no ellipse.
constexpr double kZeroPrincipalMoment = 1e-12;

// ---- fast paths: where they serve, and the margins that keep them equal to the definitions ----

/// The edge index (and every fast path resting on it) serves only contours whose coordinates are
/// finite and at most this in magnitude: up to it, the pruning margins below hold.
constexpr double kIndexCoordinateLimit = 1e7;

/// The rounding of a difference of coordinates, or of a projection onto a unit axis, as a
/// multiple of the coordinate scale (a few units in the last place, taken generously): box
/// distances are shrunk by it, and the edge index's turned boxes widened by it.
constexpr double kCoordinateRounding = 1e-13;

/// The relative rounding of a distance computed from differences of coordinates: a box's
/// distance is shrunk by this fraction before it may prune a nearest-point or containment search.
constexpr double kDistanceRounding = 1e-12;

/// The bound on the rounding error of a cross product of two differences of coordinates of
/// magnitude at most M, as a multiple of M * M (about 24 units in the last place, rounded up
/// generously): the segment query's box tests and its nearest-hit search allow for it.
constexpr double kCrossRounding = 1e-13;

/// How far beyond the query's line an edge may lie and still give the segment query a hit: a hit
/// point is within the coincidence tolerance of both, so the edge within twice that of the
/// query's line; doubled again for the rounding of the distances, which stays below 1e-8 at the
/// index coordinate limit.
constexpr double kSegmentReach = 4.0 * kCoincidentTolerance;

/// The containment search's rounding of a vertex direction, as a multiple of the coordinate scale
/// over the distance to the vertex, and its absolute floor: both are taken off a box's smallest
/// corner angle before the box may be passed over.
constexpr double kAngleRounding = 1e-14;
constexpr double kAngleFloor = 1e-12;

/// Boxes whose corner directions come this close to 2 pi may hold a vertex whose normalised
/// direction rounds to 0: the containment search treats them as starting at 0.
constexpr double kAngleWrapMargin = 1e-6;

/// Coordinates beyond this (or not finite) keep the enclosing circle's plain pair loop: the
/// filter's distance sums must neither overflow nor meet infinities.
constexpr double kCircleFilterMaxCoordinate = 1e150;

/// Slack of the enclosing circle filter's threshold, relative to the distances compared: far
/// above the few units in the last place by which a computed distance may differ from the true
/// one.
constexpr double kCircleFilterSlack = 1e-9;

}  // namespace cntr

#endif
