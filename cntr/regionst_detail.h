// Helpers shared by the region set's sources (internal header, not installed).
#ifndef CNTR_REGIONST_DETAIL_H
#define CNTR_REGIONST_DETAIL_H

#include <optional>
#include <vector>

#include <cntr/core/box.h>

#include <cntr/region.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>

namespace xn_regionSetDetail {

/// Throws xcContourDefs::BadParams("region set cannot hold a null region") when some handle
/// of `regions` is null.
void checkNoNullRegion(const std::vector<xcPtrHandle_const<xcRegion>>& regions);

/// The bounding box of a contour's vertices, when it is known to hold every vertex: not for a
/// contour without vertices nor for one with a NaN coordinate.
using VertexBox = std::optional<cntr::core::Box>;
VertexBox vertexBox(const xcContour& contour);

/// Decides, pair by pair, whether outline.xcContour::intersections(other) can be skipped: it is
/// certainly empty when the outline's enclosing rectangle and the vertex box of `other` do not
/// overlap, since the contour query rejects each edge of `other` by that same rectangle test.
/// The outline's encloseRect(identity) is asked on the first pair that needs it, as the
/// contour query would ask it, and reused afterwards (later asks would only hit its memo), so
/// the outline's memo, the random generator and the EmptyContour failure are as if the
/// queries had run.
class OutlineFilter {
  public:
    explicit OutlineFilter(xcContour& outline) : outline_(&outline) {}
    /// False only when the contour query of the outline with a contour of box `other` is empty.
    bool mayMeet(const VertexBox& other);

  private:
    xcContour* outline_;
    bool asked_ = false;
    bool usable_ = false;
    cntr::core::Box rect_;
};

}  // namespace xn_regionSetDetail

#endif
