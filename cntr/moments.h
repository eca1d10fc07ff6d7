#ifndef CNTR_MOMENTS_H
#define CNTR_MOMENTS_H

#include <vector>

#include <cntr/export.h>
#include <cntr/tolerances.h>  // the tolerances the comments name
#include <foundation/geometry.h>
#include <foundation/matrix.h>
#include <foundation/vector.h>

/// Area moments of polygons given as vertex lists, and ellipses and statistics derived from them.
///
/// A vertex list is always read as a closed polygon: the last vertex joins the first. Its edges
/// are visited in the order (p[n-1], p[0]), (p[0], p[1]), ..., (p[n-2], p[n-1]). Nothing here
/// caches anything; every function is a pure computation and may run on any number of threads.

/// Signed area, centre of mass and central inertia matrix of a shape.
///
/// Sign convention: the area is positive for vertices running counter-clockwise with the y axis
/// up, negative otherwise. The inertia matrix holds the second moments about the centre of mass
/// (cx, cy), not divided by the area: element (0,0) is the integral of (x - cx)^2, element (1,1)
/// the integral of (y - cy)^2, and both off-diagonal elements the integral of (x - cx)(y - cy).
/// The record of one triangle always holds the true moments of the triangle (positive diagonal);
/// only its area carries its orientation.
class CNTR_API xc_InertiaData {
  public:
    /// The record holding exactly the given values (by default all zero).
    explicit xc_InertiaData(double area = 0.0, const xcVector<2>& centerOfMass = xcVector<2>(),
                            const xcMatrix<2>& inertiaMatrix = xcMatrix<2>())
        : area_(area), center_(centerOfMass), inertia_(inertiaMatrix) {}

    /// The signed area.
    double area() const { return area_; }
    /// The centre of mass, in the shape's own coordinates.
    const xcVector<2>& centerOfMass() const { return center_; }
    /// The central second moments of area (layout in the class comment).
    const xcMatrix<2>& inertiaMatrix() const { return inertia_; }

    /// The record of the union of the two shapes; neither operand changes.
    ///
    /// A record whose area is exactly 0 (or NaN) is neutral: the other record is returned as it
    /// is. Otherwise the areas add, the centre is the mean of the two centres weighted by the
    /// signed areas ((0, 0) when the summed area is within kNegligibleCombinedArea of 0), and the matrices combine
    /// by the parallel-axis theorem. Two areas of one sign add their moments with weights |area|.
    /// Two areas of opposite sign (or a NaN product) keep signed weights and subtract the matrix
    /// of the member with the smaller signed area, so a negative member (a hole, a clockwise fan
    /// triangle) removes its moments from a positive one. Note that this rule is exact when the
    /// running total is positive; a negative total met by a positive member gives the negated
    /// moments, and the result then depends on the order of combination. That is the intended,
    /// documented behaviour. Deliberately a non-const member.
    xc_InertiaData operator+(const xc_InertiaData& other);

  private:
    double area_;
    xcVector<2> center_;
    xcMatrix<2> inertia_;
};

/// The unsigned area of the polygon: half the absolute sum of cross(previous, current) over all
/// edges, the same for either vertex order. Fewer than 3 points (an empty list too) give 0; a
/// self-overlapping outline gives the net area (the lobes of a figure eight cancel). NaN
/// coordinates give NaN. From 8 to 2^17 points, the cross products are added in four interleaved
/// partial sums, which the processor adds in parallel, when a sample of every 16th term
/// predicts, and a bound on the rounding (from the sum of their absolute values) then shows,
/// the result within kReorderedAreaTolerance relative of the sum in edge order; otherwise, and for non-finite
/// terms, they are added in edge order.
CNTR_API double xf_Area(const std::vector<xcVector<2>>& points);

/// The unsigned area of the polygon of the edgelet positions; 0 for fewer than 3 edgelets.
CNTR_API double xf_Area(const std::vector<xcEdgelet>& edgelets);

namespace xnContour {

/// The area centroid of the polygon, the same for either vertex order.
///
/// The polygon is cut into triangles (origin, previous, current), one per edge; edges whose
/// cross product is within kNegligibleTriangleCross of 0 are skipped, and each triangle's centroid (found as the
/// crossing of two medians) is weighted by the signed cross product. Returns (0, 0) for 2 points
/// or fewer, and when the summed weights are within kNegligibleTotalCross of 0 (collinear points, for example):
/// not the mean of the points. Throws xcMathError::Singular when the two medians of a fan
/// triangle are parallel within the foundation's line tolerance (only for extremely thin
/// triangles). NaN coordinates give a NaN result.
/// With SSE2 the triangles are taken two at a time, with the same operations in the same order
/// and the sums in edge order, so the result has the same bits; a polygon with a triangle whose
/// medians are parallel, or whose median lengths are 0 or not finite, is taken one by one.
CNTR_API xcVector<2> centerOfMass(const std::vector<xcVector<2>>& points);

}  // namespace xnContour

/// The same as xnContour::centerOfMass(points).
CNTR_API xcVector<2> xf_CenterOfMass(const std::vector<xcVector<2>>& points);

/// xnContour::centerOfMass of the edgelet positions, in order.
CNTR_API xcVector<2> xf_CenterOfMass(const std::vector<xcEdgelet>& edgelets);

/// The inertia record of the polygon (sign convention in xc_InertiaData).
///
/// The polygon is cut into a fan of triangles (centroid, previous, current), one per edge, and
/// the triangle records are combined with xc_InertiaData::operator+ in three passes so that the
/// large contributions are summed first: triangles above the mean area (for a negative mean:
/// every triangle whose area differs from it), then those beyond kSmallTriangleArea in the sign of the mean,
/// then the rest. For a polygon star-shaped about its centroid (every convex polygon) and for
/// any counter-clockwise polygon the result is the true record; a clockwise polygon whose fan
/// mixes orientations (a flat triangle whose area rounds positive counts) gets what the
/// combination rule gives. A polygon of zero area (collinear points) gives area 0 with the
/// centre of the last flat fan triangle added, zero-area records being neutral.
///
/// Each triangle is measured on a side that holds the foot of the opposite altitude. A side
/// counts as holding it unless the corner is farther from the side than from its line by more
/// than kFootOutsideSlack; a foot just outside a side (by up to about sqrt(2 kFootOutsideSlack h),
/// h the height) is thus
/// measured as inside, on a base too long by twice that distance. This is deliberate
/// behaviour, kept for compatibility; xf_Area and xnContour::centerOfMass are not affected.
///
/// Fewer than 3 points give the zero record. Throws xcMathError::Singular from the centroid
/// (see xnContour::centerOfMass), and when rounding leaves no side of a fan triangle that holds
/// the foot, where the search for such a side would otherwise never end: this needs
/// coordinates of about 1e6 or more (distances are then rounded by more than that slack).
/// NaN coordinates give NaN values.
CNTR_API xc_InertiaData xf_InertiaDataPolygon(const std::vector<xcVector<2>>& points);

/// The ellipse whose central second moments are those of `data`.
///
/// The rotation is atan2(2 M(0,1), M(0,0) - M(1,1)) / 2; the principal moments a (along the
/// rotation) and b (across it) give the semi-axes r1 = (16 a^3 / (pi^2 b))^(1/8) and
/// r2 = (16 b^3 / (pi^2 a))^(1/8), which invert the moments of a solid ellipse. The centre is
/// data's centre of mass; the area member is not used; both ellipse flags are false. Throws
/// xcMathError::Singular when a principal moment is within kZeroPrincipalMoment of 0 (the zero record too).
CNTR_API xcEllipse xf_EllipseFromInertiaData(const xc_InertiaData& data);

/// Fits an ellipse to `points` with the foundation's direct least-squares fit (all parameters,
/// no ignored points, no rms limit) and sets `ellipse` and `rms` (the fit's rms orthogonal
/// distance). When that fit throws a foundation exception, falls back to the foundation's circle
/// fit (the circle as an ellipse, its rms); when that throws too, sets the default ellipse and
/// rms -1.0. No exception of the foundation's family leaves this function.
CNTR_API void xf_FitEllipse(const std::vector<xcVector<2>>& points, xcEllipse& ellipse,
                            double& rms);

/// xf_FitEllipse on the edgelet positions, in order.
CNTR_API void xf_FitEllipse(const std::vector<xcEdgelet>& edgelets, xcEllipse& ellipse,
                            double& rms);

/// The population standard deviation (divisor n) of `values`; NaN for an empty list.
CNTR_API double xf_StdDev(const std::vector<double>& values);

#endif
