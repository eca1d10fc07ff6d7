// The moments of vertex and edgelet lists, the combination of inertia records, and the ellipses
// and statistics derived from them: the core's, for the public interface.
#include <cntr/moments.h>

#include <cntr/core/ellipse.h>
#include <cntr/core/inertia.h>
#include <cntr/core/moments.h>
#include <cntr/core/reference.h>
#include <cntr/core/statistics.h>

namespace {

/// The core's record of the same numbers, and back: both hold the full matrix, so a record
/// passed through unchanged (a neutral operand of operator+) keeps every bit.
cntr::core::InertiaRecord recordOf(const xc_InertiaData& data) {
    return {data.area(), data.centerOfMass(), data.inertiaMatrix()};
}

xc_InertiaData dataOf(const cntr::core::InertiaRecord& record) {
    return xc_InertiaData(record.area, record.centre, record.moments);
}

/// The positions of `edgelets`, in order.
std::vector<xcVector<2>> positionsOf(const std::vector<xcEdgelet>& edgelets) {
    std::vector<xcVector<2>> points;
    points.reserve(edgelets.size());
    for (const xcEdgelet& e : edgelets)
        points.push_back(e.position());
    return points;
}

}  // namespace

double xf_Area(const std::vector<xcVector<2>>& points) {
    return cntr::core::polygonArea(points);
}

double xf_Area(const std::vector<xcEdgelet>& edgelets) {
    // An edgelet list's area is the sum in edge order: the reordered sum is the vertex lists'.
    if (edgelets.size() < 3)
        return 0.0;
    return cntr::core::referenceArea(positionsOf(edgelets));
}

xcVector<2> xnContour::centerOfMass(const std::vector<xcVector<2>>& points) {
    return cntr::core::polygonCentroid(points);
}

xcVector<2> xf_CenterOfMass(const std::vector<xcVector<2>>& points) {
    return cntr::core::polygonCentroid(points);
}

xcVector<2> xf_CenterOfMass(const std::vector<xcEdgelet>& edgelets) {
    return cntr::core::polygonCentroid(positionsOf(edgelets));
}

xc_InertiaData xc_InertiaData::operator+(const xc_InertiaData& other) {
    return dataOf(cntr::core::combinedInertia(recordOf(*this), recordOf(other)));
}

xc_InertiaData xf_InertiaDataPolygon(const std::vector<xcVector<2>>& points) {
    return dataOf(cntr::core::polygonInertia(points));
}

xcEllipse xf_EllipseFromInertiaData(const xc_InertiaData& data) {
    return cntr::core::ellipseOfMoments(data.centerOfMass(), data.inertiaMatrix());
}

void xf_FitEllipse(const std::vector<xcVector<2>>& points, xcEllipse& ellipse, double& rms) {
    const cntr::core::EllipseFit fit = cntr::core::fitEllipse(points);
    ellipse = fit.ellipse;
    rms = fit.rms;
}

void xf_FitEllipse(const std::vector<xcEdgelet>& edgelets, xcEllipse& ellipse, double& rms) {
    xf_FitEllipse(positionsOf(edgelets), ellipse, rms);
}

double xf_StdDev(const std::vector<double>& values) {
    return cntr::core::standardDeviation(values);
}
