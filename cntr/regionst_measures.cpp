// Region set measures: area, centre of mass, inertia, containment, distance, enclosing
// rectangle and self-intersection, each computed from the regions in list order.
#include <cntr/regionst.h>

#include <cmath>
#include <limits>

#include <cntr/contour_detail.h>
#include <cntr/moments.h>
#include <cntr/region_detail.h>
#include <cntr/regionst_detail.h>
#include <cntr/tolerances.h>
#include <foundation/numeric.h>

using namespace xn_regionDetail;
using namespace xn_regionSetDetail;

double xcRegionSet::area(bool considerHoles) const {
    xn_contourDetail::Cached<double>& slot = caches_.area[considerHoles];
    if (slot.valid)
        return slot.value;
    double sum = 0.0;
    for (const xcPtrHandle_const<xcRegion>& region : regions_)
        sum += region->area(considerHoles);
    slot.value = sum;
    slot.valid = true;
    // A cache fill counts as a change of the set.
    mutating();
    return sum;
}

xcVector<2> xcRegionSet::centerOfMass(bool considerHoles) {
    checkEmptyRegionSet();
    xn_contourDetail::Cached<xcVector<2>>& slot = caches_.center[considerHoles];
    if (slot.valid)
        return slot.value;
    xcVector<2> weighted;
    double total = 0.0;
    for (const xcPtrHandle_const<xcRegion>& handle : regions_) {
        xcRegion& region = cacheFilling(*handle);
        const xcVector<2> center = region.centerOfMass(considerHoles);
        weighted += region.area(considerHoles) * center;
        total += region.area(considerHoles);
    }
    const bool noArea = xfRealEq(total, 0.0, cntr::kExactTolerance);
    slot.value = noArea ? xcVector<2>() : weighted / total;
    slot.valid = true;
    mutating();
    return slot.value;
}

xcMatrix<2> xcRegionSet::inertiaMatrix(bool considerHoles) {
    checkEmptyRegionSet();
    xn_contourDetail::Cached<xcMatrix<2>>& slot = caches_.inertia[considerHoles];
    if (slot.valid)
        return slot.value;
    xc_InertiaData total(0.0, xcVector<2>(), xcMatrix<2>());
    for (const xcPtrHandle_const<xcRegion>& handle : regions_) {
        xcRegion& region = cacheFilling(*handle);
        const xcMatrix<2> inertia = region.inertiaMatrix(considerHoles);
        const xcVector<2> center = region.centerOfMass(considerHoles);
        const double area = region.area(considerHoles);
        total = total + xc_InertiaData(area, center, inertia);
    }
    slot.value = total.inertiaMatrix();
    slot.valid = true;
    mutating();
    return slot.value;
}

bool xcRegionSet::inside(const xcVector<2>& point, bool considerHoles) const {
    for (const xcPtrHandle_const<xcRegion>& region : regions_)
        if (region->inside(point, considerHoles))
            return true;
    return false;
}

double xcRegionSet::distToPoint(const xcVector<2>& point, bool vertexOnly, bool considerHoles,
                                bool zeroInside) const {
    checkEmptyRegionSet();
    double nearest = std::numeric_limits<double>::infinity();
    for (const xcPtrHandle_const<xcRegion>& region : regions_) {
        const double d = region->distToPoint(point, vertexOnly, considerHoles, zeroInside);
        if (d < nearest)
            nearest = d;
    }
    return nearest;
}

xcRect xcRegionSet::encloseRect(const xcXform<2>& xform) {
    checkEmptyRegionSet();
    xn_contourDetail::RectMemo& memo = caches_.rectCache.make();
    const auto found = memo.find(xform);
    if (found != memo.end())
        return found->second;

    xcRect box = outlineOf(*regions_[0]).encloseRect(xform);
    for (std::size_t i = 1; i < regions_.size(); ++i)
        box = box.enclose(outlineOf(*regions_[i]).encloseRect(xform));
    xn_contourDetail::memoStore(caches_.rectCache.pointer(), xform, box, cachedVectorSize_);
    mutating();
    return box;
}

bool xcRegionSet::isSelfIntersecting() const {
    if (regions_.empty())
        return false;
    if (caches_.selfIntersecting.valid)
        return caches_.selfIntersecting.value;
    // The answer is cached only once it is complete, so that an error of a region leaves the
    // cache invalid.
    // The pairs are tested even when an outline already crosses itself (the result is the
    // same; the pair queries fill the regions' segment caches all the same).
    const bool selfCrossing = anyOutlineCrossesItself();
    const bool crossing = anyOutlinesCross() || selfCrossing;
    caches_.selfIntersecting.value = crossing;
    caches_.selfIntersecting.valid = true;
    return crossing;
}

bool xcRegionSet::anyOutlineCrossesItself() const {
    // Every outline is asked, also after a hit, so that each region caches its own answer.
    bool crossing = false;
    for (const xcPtrHandle_const<xcRegion>& region : regions_)
        if (region->xcContour::isSelfIntersecting())
            crossing = true;
    return crossing;
}

bool xcRegionSet::anyOutlinesCross() const {
    // The vertex boxes let most pairs be decided by one rectangle test instead of one contour
    // query per edge; the answers are those of the contour queries.
    std::vector<VertexBox> boxes;
    boxes.reserve(regions_.size());
    for (const xcPtrHandle_const<xcRegion>& region : regions_)
        boxes.push_back(vertexBox(*region));
    for (std::size_t i = 0; i < regions_.size(); ++i) {
        xcContour& outline = outlineOf(*regions_[i]);
        OutlineFilter filter(outline);
        for (std::size_t j = i + 1; j < regions_.size(); ++j) {
            if (!filter.mayMeet(boxes[j]))
                continue;
            const xcContour& other = *regions_[j];
            if (!outline.intersections(other).empty())
                return true;
        }
    }
    return false;
}

xn_regionSetDetail::VertexBox xn_regionSetDetail::vertexBox(const xcContour& contour) {
    const std::vector<xcVector<2>>& p = contour.points();
    for (const xcVector<2>& v : p)
        if (std::isnan(v.x()) || std::isnan(v.y()))
            return std::nullopt;
    if (p.empty())
        return std::nullopt;
    return cntr::core::Box::around(p.begin(), p.end());
}

bool xn_regionSetDetail::OutlineFilter::mayMeet(const VertexBox& other) {
    if (!other)
        return true;
    if (!asked_) {
        rect_ = cntr::core::Box::of(outline_->encloseRect(xcXform<2>::I));
        usable_ = std::isfinite(rect_.minX) && std::isfinite(rect_.minY) &&
                  std::isfinite(rect_.maxX) && std::isfinite(rect_.maxY);
        asked_ = true;
    }
    return !usable_ || rect_.overlaps(*other);
}
