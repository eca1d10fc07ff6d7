// The contour's convex hull (as a region) and fitted ellipse, both cached.
#include <cntr/contour.h>
#include <cntr/core/ellipse.h>
#include <cntr/core/hull.h>
#include <cntr/region.h>

void xcContour::convexHull(xcRegion& hull) const {
    checkEmptyContour();
    if (!caches_.convexHull.valid) {
        caches_.convexHull.value = xcPtrHandle_const<xcRegion>(
            new xcRegion(cntr::core::convexHull(points_), xcContourDefs::keepOutline));
        caches_.convexHull.valid = true;
    }
    // Held during the assignment: when `hull` is this contour (a region asked for its own hull),
    // the assignment replaces the handle that keeps the hull region alive.
    const xcPtrHandle_const<xcRegion> cached = caches_.convexHull.value;
    hull = *cached;
}

void xcContour::fitEllipse(xcEllipse& ellipse, double& rms) const {
    checkEmptyContour();
    const xn_contourDetail::EllipseFit& fit = caches_.fittedEllipse.get([&] {
        const cntr::core::EllipseFit computed = cntr::core::fitEllipse(points_);
        return xn_contourDetail::EllipseFit{computed.ellipse, computed.rms};
    });
    ellipse = fit.ellipse;
    rms = fit.residual;
}
