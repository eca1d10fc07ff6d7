// Regularisation and outer hull of a region whose outline crosses itself: the cached entry
// points; the core walks the boundary and reduces the walk to one outline.
#include <cntr/region.h>

#include <cntr/core/loops.h>
#include <cntr/core/walk.h>

namespace {

// Sets `result` to `region` itself when its outline does not cross itself; otherwise to the
// region that `cache` holds, computing it into a new region first with `compute` when `valid`
// is clear. The local handle keeps the cached region alive while `result` is assigned, since
// `result` may be `region`, which owns `cache`.
template <class Compute>
void assignSelfOrCached(const xcRegion& region, bool& valid, xcPtrHandle<xcRegion>& cache,
                        xcRegion& result, Compute compute) {
    if (!region.isSelfIntersecting()) {
        result = region;
        return;
    }
    if (!valid) {
        cache = xcPtrHandle<xcRegion>(new xcRegion);
        compute(*cache);
        valid = true;
    }
    const xcPtrHandle<xcRegion> keep = cache;
    result = *keep;
}

}  // namespace

void xcRegion::regularize(xcRegion& result) const {
    assignSelfOrCached(*this, caches_.regularized.valid, caches_.regularized.value, result,
                       [this](xcRegion& walked) { outerHullRegularize(walked, false); });
}

void xcRegion::outerHull(xcRegion& result) const {
    assignSelfOrCached(*this, caches_.outerHull.valid, caches_.outerHull.value, result,
                       [this](xcRegion& hull) { outerHullRegularize(hull, true); });
}

void xcRegion::outerHullRegularize(xcRegion& result, bool full) const {
    checkEmptyContour();

    // The walk's questions, answered from this region's caches (a local class has the member
    // function's access).
    class Source : public cntr::core::WalkSource {
      public:
        explicit Source(const xcRegion& r) : r_(r) {}
        std::size_t crossings(const xcVector<2>& a, const xcVector<2>& b) const override {
            return r_.hitCount(xcLineSeg(a, b), true);
        }
        bool outside(const xcVector<2>& q) const override { return r_.insideCount(q, true) == 0; }
        bool firstHit(const xcLineSeg& seg, cntr::core::SegmentHit& first) const override {
            return r_.firstHitAlong(seg, first.point, first.edge);
        }
        double medianFeatureSize() const override { return r_.medianFeatureSize(); }
        std::size_t selfCrossings() const override {
            std::size_t total = 0;
            for (std::size_t k = 0; k < r_.lineSegs().size(); ++k)
                if (r_.validLine()[k])
                    total += r_.hitCount(r_.lineSegs()[k], false);
            return total;
        }

      private:
        const xcRegion& r_;
    };

    const std::vector<xcVector<2>> walk =
        cntr::core::boundaryWalk(cntr::core::OutlineView(points(), true), Source(*this));
    result = xcRegion(full ? cntr::core::outerLoop(walk) : walk, xcContourDefs::keepOutline);
}
