// The enclosing circle in its two modes, cached per mode.
#include <cntr/contour.h>

#include <cntr/core/circles.h>

#include <cstring>
#include <type_traits>

using namespace cntr::core;

xcCircle xcContour::encloseCircle(xcContourDefs::DiameterMode mode) {
    return circleOf(mode);
}

xcCircle xcContour::circleOf(const xcContourDefs::DiameterMode& mode) const {
    std::underlying_type_t<xcContourDefs::DiameterMode> raw;
    std::memcpy(&raw, &mode, sizeof raw);
    if (raw != xcContourDefs::furthestVertexPair && raw != xcContourDefs::fromFirstVertex)
        throw xcContourDefs::BadParams(L"diameterMode is not one of the valid enums");
    const OutlineView outline(points_, isClosed());
    return caches_.encloseCircle[static_cast<std::size_t>(raw)].get([&] {
        return raw == xcContourDefs::furthestVertexPair ? furthestPairCircle(outline)
                                                        : fromFirstVertexCircle(outline);
    });
}
