// Region set regularize and outer hull: one ordered pass merges crossing regions, then every
// region is regularised or hulled on its own.
#include <cntr/regionst.h>

#include <cntr/region_detail.h>
#include <cntr/regionst_detail.h>

using namespace xn_regionDetail;
using namespace xn_regionSetDetail;

namespace {

// A new, empty region (an empty closed outline, no holes) to receive a result.
xcPtrHandle<xcRegion> newEmptyRegion() {
    return xcPtrHandle<xcRegion>(new xcRegion(xcContour(), xcContourDefs::keepOutline));
}

}  // namespace

void xcRegionSet::regularize(xcRegionSet& out) const {
    cachedMerge(out, false, caches_.regularized.valid, caches_.regularized.value);
}

void xcRegionSet::outerHull(xcRegionSet& out) const {
    cachedMerge(out, true, caches_.outerHull.valid, caches_.outerHull.value);
}

void xcRegionSet::cachedMerge(xcRegionSet& out, bool outerHullOnly, bool& valid,
                              xcPtrHandle<xcRegionSet>& cache) const {
    if (!isSelfIntersecting()) {
        out = *this;
        return;
    }
    if (!valid) {
        cache = xcPtrHandle<xcRegionSet>(new xcRegionSet());
        outerHullRegularize(*cache, outerHullOnly);
        valid = true;
    }
    // A handle of our own keeps the result alive when `out` is this set and the assignment
    // replaces the cache handle.
    const xcPtrHandle<xcRegionSet> result(cache);
    out = *result;
}

void xcRegionSet::outerHullRegularize(xcRegionSet& out, bool outerHullOnly) const {
    checkEmptyRegionSet();
    RegionHandles work(regions_);
    mergePass(work);
    for (xcPtrHandle_const<xcRegion>& slot : work) {
        const xcPtrHandle<xcRegion> result = newEmptyRegion();
        if (outerHullOnly)
            slot->outerHull(*result);
        else
            slot->regularize(*result);
        slot = result;
    }
    out = xcRegionSet(work, xcContourDefs::keepOutline);
}

void xcRegionSet::mergePass(RegionHandles& work) {
    // Both bounds are re-read after every merge; j advances in every case, so the region moved
    // into slot j is not compared with the merged region i. The vertex boxes, kept in step with
    // the slots, spare the contour query for pairs far apart.
    std::vector<VertexBox> boxes;
    boxes.reserve(work.size());
    for (const xcPtrHandle_const<xcRegion>& region : work)
        boxes.push_back(vertexBox(*region));
    for (std::size_t i = 0; i + 1 < work.size(); ++i) {
        OutlineFilter filter(cacheFilling(*work[i]));
        for (std::size_t j = i + 1; j < work.size(); ++j) {
            if (!filter.mayMeet(boxes[j]))
                continue;
            const xcContour& outlineJ = *work[j];
            if (cacheFilling(*work[i]).intersections(outlineJ, false).empty())
                continue;
            const xcPtrHandle<xcRegion> merged = newEmptyRegion();
            work[i]->splice(*work[j], *merged);
            work[i] = merged;
            boxes[i] = vertexBox(*merged);
            filter = OutlineFilter(*merged);
            work[j] = work.back();
            boxes[j] = boxes.back();
            work.pop_back();
            boxes.pop_back();
        }
    }
}
