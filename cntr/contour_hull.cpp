// The contour's convex hull (as a region) and fitted ellipse, both cached.
#include <cntr/contour.h>
#include <cntr/moments.h>
#include <cntr/region.h>
#include <foundation/hull.h>

void xcContour::convexHull(xcRegion& hull) const {
    checkEmptyContour();
    if (!convexHullValid_) {
        std::vector<xcVector<2>> hullPoints;
        xfConvexHull(points_, hullPoints);
        convexHull_ =
            xcPtrHandle_const<xcRegion>(new xcRegion(hullPoints, xcContourDefs::keepOutline));
        convexHullValid_ = true;
    }
    // Held during the assignment: when `hull` is this contour (a region asked for its own hull),
    // the assignment replaces the handle that keeps the hull region alive.
    const xcPtrHandle_const<xcRegion> cached = convexHull_;
    hull = *cached;
}

void xcContour::fitEllipse(xcEllipse& ellipse, double& rms) const {
    checkEmptyContour();
    if (!fitEllipseValid_) {
        xcEllipse fitted;
        double residual = 0.0;
        xf_FitEllipse(points_, fitted, residual);
        fittedEllipse_ = fitted;
        fitResidual_ = residual;
        fitEllipseValid_ = true;
    }
    ellipse = fittedEllipse_;
    rms = fitResidual_;
}
