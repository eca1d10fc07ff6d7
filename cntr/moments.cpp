// The moments of vertex and edgelet lists and the combination of inertia records: the core's,
// for the public interface.
#include <cntr/moments.h>

#include <cntr/core/inertia.h>
#include <cntr/core/moments.h>
#include <cntr/core/reference.h>
#include <cntr/moments_internal.h>

namespace {

cntr::core::InertiaRecord recordOf(const xc_InertiaData& data) {
    return {data.area(), data.centerOfMass(), data.inertiaMatrix()};
}

xc_InertiaData dataOf(const cntr::core::InertiaRecord& record) {
    return xc_InertiaData(record.area, record.centre, record.moments);
}

}  // namespace

std::vector<xcVector<2>> moments_detail::positionsOf(const std::vector<xcEdgelet>& edgelets) {
    std::vector<xcVector<2>> points;
    points.reserve(edgelets.size());
    for (const xcEdgelet& e : edgelets)
        points.push_back(e.position());
    return points;
}

double xf_Area(const std::vector<xcVector<2>>& points) {
    return cntr::core::polygonArea(points);
}

double xf_Area(const std::vector<xcEdgelet>& edgelets) {
    // An edgelet list's area is the sum in edge order: the reordered sum is the vertex lists'.
    if (edgelets.size() < 3)
        return 0.0;
    return cntr::core::referenceArea(moments_detail::positionsOf(edgelets));
}

xcVector<2> xnContour::centerOfMass(const std::vector<xcVector<2>>& points) {
    return cntr::core::polygonCentroid(points);
}

xcVector<2> xf_CenterOfMass(const std::vector<xcVector<2>>& points) {
    return cntr::core::polygonCentroid(points);
}

xcVector<2> xf_CenterOfMass(const std::vector<xcEdgelet>& edgelets) {
    return cntr::core::polygonCentroid(moments_detail::positionsOf(edgelets));
}

xc_InertiaData xc_InertiaData::operator+(const xc_InertiaData& other) {
    return dataOf(cntr::core::combinedInertia(recordOf(*this), recordOf(other)));
}

xc_InertiaData xf_InertiaDataPolygon(const std::vector<xcVector<2>>& points) {
    return dataOf(cntr::core::polygonInertia(points));
}
