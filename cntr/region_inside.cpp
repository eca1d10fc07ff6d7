// Point containment: the outline's crossing count, answered by the core from the region's
// caches, and inside with holes.
#include <cntr/region.h>

#include <cntr/core/containment.h>
#include <cntr/region_detail.h>

using namespace xn_regionDetail;

// The crossing count asks the region's edge index, its cached diameter from the first vertex and
// its segment query, each only when it needs them: a point outside the bounding rectangle costs
// nothing more.
long xcRegion::insideCount(const xcVector<2>& point, bool bothWays) const {
    const xcRect bounds = outlineOf(*this).encloseRect(xcXform<2>::I);
    const auto rays = cntr::core::raysFrom(
        [this] { return edgeIndex(); }, [this] { return diameter(xcContourDefs::fromFirstVertex); },
        [this](const xcLineSeg& ray) { return hitCount(ray, false); });
    return cntr::core::crossingCount(cntr::core::OutlineView(points(), isClosed()), bounds, point,
                                     bothWays, rays);
}

bool xcRegion::inside(const xcVector<2>& point, bool considerHoles) const {
    const bool inOutline = insideCount(point, false) % 2 == 1;
    if (inOutline && considerHoles)
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            if (hole->inside(point, true))
                return false;
    return inOutline;
}
