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
    if (encloseCircleValid_.size() < slot + 1)
        encloseCircleValid_.resize(slot + 1, false);
    if (encloseCircles_.size() < slot + 1)
        encloseCircles_.resize(slot + 1, xcCircle());
    if (!encloseCircleValid_[slot]) {
        encloseCircles_[slot] = mode == xcContourDefs::furthestVertexPair
                                    ? furthestPairCircle(OutlineView(points_, isClosed()))
                                    : fromFirstVertexCircle(OutlineView(points_, isClosed()));
        encloseCircleValid_[slot] = true;
    }
    return encloseCircles_[slot];
}
