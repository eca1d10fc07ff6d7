// Extent measures: length, mean position, extremal vertices, diameter, enclosing rectangle.
#include <cntr/contour.h>
#include <cntr/contour_detail.h>
#include <cntr/core/extent.h>
#include <cntr/core/length.h>
#include <cntr/tolerances.h>

using namespace xn_contourDetail;
using namespace cntr;
using namespace cntr::core;

double xcContour::length() const {
    if (points_.empty())
        return 0.0;
    return caches_.length.get([&] { return outlineLength(OutlineView(points_, isClosed())); });
}

xcVector<2> xcContour::meanPosition() {
    checkEmptyContour();
    return caches_.meanPosition.get([&] { return wireCentre(OutlineView(points_, isClosed())); });
}

long xcContour::extremalVertexIndex(const xcRadian& angle) const {
    checkEmptyContour();
    ExtremalVertexMemo& memo = caches_.extremalVertexMemo.make();
    const auto found = memo.find(angle);
    if (found != memo.end())
        return found->second;

    const long index = extremalVertex(OutlineView(points_, isClosed()), angle);
    memoStore(caches_.extremalVertexMemo.pointer(), angle, index, cachedVectorSize_);
    return index;
}

xcVector<2> xcContour::extremalVertexPosition(const xcRadian& angle) {
    const long index = extremalVertexIndex(angle);
    if (index < 0)
        throw xcContourDefs::BadParams(L"no vertex is extremal in this direction");
    return points_[static_cast<std::size_t>(index)];
}

double xcContour::diameter(xcContourDefs::DiameterMode mode) const {
    return 2.0 * circleOf(mode).radius();
}

xcRect xcContour::encloseRect(const xcXform<2>& xform) {
    return rectOf(xform);
}

xcRect xcContour::rectOf(const xcXform<2>& xform) const {
    checkEmptyContour();
    RectMemo& memo = caches_.rectMemo.make();
    const auto found = memo.find(xform);
    if (found != memo.end())
        return found->second;

    const xcRect box = enclosingRect(OutlineView(points_, isClosed()), xform);
    memoStore(caches_.rectMemo.pointer(), xform, box, cachedVectorSize_);
    return box;
}
