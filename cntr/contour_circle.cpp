// The enclosing circle in its two modes, cached per mode.
#include <cntr/contour.h>

#include <cntr/core/circles.h>

using namespace cntr::core;

xcCircle xcContour::encloseCircle(xcContourDefs::DiameterMode mode) {
    return circleOf(mode);
}

xcCircle xcContour::circleOf(xcContourDefs::DiameterMode mode) const {
    if (mode != xcContourDefs::furthestVertexPair && mode != xcContourDefs::fromFirstVertex)
        throw xcContourDefs::BadParams(L"diameterMode is not one of the valid enums");
    const OutlineView outline(points_, isClosed());
    return caches_.encloseCircle[mode].get([&] {
        return mode == xcContourDefs::furthestVertexPair ? furthestPairCircle(outline)
                                                         : fromFirstVertexCircle(outline);
    });
}
