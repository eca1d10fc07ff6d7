// Helpers shared by the region set's sources (internal header, not installed).
#ifndef CNTR_REGIONST_DETAIL_H
#define CNTR_REGIONST_DETAIL_H

#include <vector>

#include <cntr/region.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>

namespace xn_regionSetDetail {

/// The region behind a set's const handle, for the region queries that fill the region's
/// caches and are therefore non-const members (centre of mass, inertia, enclosing rectangle,
/// intersections) although they change no geometry. Every region reaches a set as an object
/// created by new, never as a const object, so the cast is well defined.
inline xcRegion& queried(const xcPtrHandle_const<xcRegion>& region) {
    return const_cast<xcRegion&>(*region);
}

/// Throws xcContourDefs::BadParams("region set cannot hold a null region") when some handle
/// of `regions` is null.
void checkNoNullRegion(const std::vector<xcPtrHandle_const<xcRegion>>& regions);

/// The bounding box of a contour's vertices, when it is known to hold every vertex: not for a
/// contour without vertices nor for one with a NaN coordinate.
struct VertexBox {
    bool known = false;
    xcRect rect;
};
VertexBox vertexBox(const xcContour& contour);

/// False only when outline.xcContour::intersections(other) is certainly empty because the
/// outline's enclosing rectangle and `otherBox`, the vertex box of `other`, do not overlap (the
/// contour query rejects each edge of `other` by that same rectangle test). Asks the outline's
/// encloseRect(identity) exactly when the contour query would, so the outline's memo, the
/// random generator and the EmptyContour failure are as if the query had run.
bool outlinesMayMeet(xcContour& outline, const VertexBox& otherBox);

}  // namespace xn_regionSetDetail

#endif
