// The second moments of a polygon and the combination of moment records (internal header, not
// installed).
#ifndef CNTR_CORE_INERTIA_H
#define CNTR_CORE_INERTIA_H

#include <vector>

#include <cntr/export.h>
#include <foundation/matrix.h>
#include <foundation/vector.h>

namespace cntr::core {

/// Signed area, centre of mass and central second moments of a shape. The area is positive for
/// vertices running counter-clockwise with the y axis up. The moments are about the centre and
/// not divided by the area: (0,0) is the integral of (x - cx)^2, (1,1) that of (y - cy)^2, and
/// both off-diagonal elements that of (x - cx)(y - cy). A triangle's record holds its true
/// moments (positive diagonal) whatever its orientation; only the area carries the orientation.
struct InertiaRecord {
    double area = 0.0;
    xcVector<2> centre;
    xcMatrix<2> moments;
};

/// The record of the union of two shapes. A record whose area is exactly 0 (or NaN) is neutral:
/// the other is returned as it is. Otherwise the areas add, the centre is the mean of the centres
/// weighted by the signed areas ((0, 0) when the summed area is within kNegligibleCombinedArea of
/// 0), and the moments combine by the parallel-axis theorem, reading the off-diagonal element
/// (0,1) and giving a symmetric matrix. Areas of one sign weigh by |area| and add their moments;
/// areas of opposite sign (or a NaN product) weigh by the signed areas and subtract the moments
/// of the record with the smaller signed area, so a negative record (a hole) removes its moments
/// from a positive one. A negative running total met by a positive record thus gets negated
/// moments, and the result then depends on the order of combination.
CNTR_API InertiaRecord combinedInertia(const InertiaRecord& first, const InertiaRecord& second);

/// The record of the polygon (the vertices read as closed, see moments.h), from the fan of
/// triangles (centroid, previous, current), one per edge, closing edge first, combined by
/// combinedInertia in three passes so that the large contributions are summed first: triangles
/// above the mean area (for a negative mean: every triangle whose area differs from it), then
/// those beyond kSmallTriangleArea in the sign of the mean, then the rest. The centroid is
/// polygonCentroid's. Each triangle is measured on a side that counts as holding the foot of the
/// opposite altitude: unless the corner is farther from the side than from its line by more than
/// kFootOutsideSlack. The zero record for fewer than 3 vertices; NaN coordinates give NaN values.
/// Throws xcMathError::Singular from polygonCentroid, and when rounding leaves no side of a fan
/// triangle that holds the foot (coordinates of about 1e6 or more).
CNTR_API InertiaRecord polygonInertia(const std::vector<xcVector<2>>& polygon);

}  // namespace cntr::core

#endif
