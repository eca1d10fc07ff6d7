// Ellipse fit of a point list with the circle fit as fall-back.
#include <limits>

#include <cntr/moments.h>
#include <cntr/moments_internal.h>
#include <foundation/exception.h>
#include <foundation/fit.h>

namespace {

/// No limit on the fit's rms residual.
constexpr double kUnlimitedRms = std::numeric_limits<double>::infinity();
/// The circle fit's radius hint (used by constrained modes only).
constexpr double kCircleRadiusHint = 1.0;
/// Reported in place of an rms when neither fit worked.
constexpr double kNoFitRms = -1.0;

}  // namespace

void xf_FitEllipse(const std::vector<xcVector<2>>& points, xcEllipse& ellipse, double& rms) {
    try {
        const xcEllipseFitParams params(xcEllipseFitDefs::fitAll, xcRadian(0.0), 0u, kUnlimitedRms);
        xcEllipseFitResults results;
        xfEllipseFit(params, points, results);
        ellipse = results.ellipse();
        rms = results.error();
        return;
    } catch (const xcException&) {
        // Not an ellipse (too few points, a degenerate conic, ...): try a circle.
    }
    try {
        const xcCircleFitParams params(xcCircleFitDefs::fitAll, kCircleRadiusHint, 0u,
                                       kUnlimitedRms);
        xcCircleFitResults results;
        xfCircleFit(params, points, results);
        ellipse = xcEllipse(results.circle());
        rms = results.error();
    } catch (const xcException&) {
        ellipse = xcEllipse();
        rms = kNoFitRms;
    }
}

void xf_FitEllipse(const std::vector<xcEdgelet>& edgelets, xcEllipse& ellipse, double& rms) {
    xf_FitEllipse(moments_detail::positionsOf(edgelets), ellipse, rms);
}
