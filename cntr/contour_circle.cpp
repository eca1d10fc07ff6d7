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
    const std::size_t slot = static_cast<std::size_t>(mode);
    if (caches_.encloseCircleValid.size() < slot + 1)
        caches_.encloseCircleValid.resize(slot + 1, false);
    if (caches_.encloseCircles.size() < slot + 1)
        caches_.encloseCircles.resize(slot + 1, xcCircle());
    if (!caches_.encloseCircleValid[slot]) {
        caches_.encloseCircles[slot] = mode == xcContourDefs::furthestVertexPair
                                    ? furthestPairCircle(OutlineView(points_, isClosed()))
                                    : fromFirstVertexCircle(OutlineView(points_, isClosed()));
        caches_.encloseCircleValid[slot] = true;
    }
    return caches_.encloseCircles[slot];
}
