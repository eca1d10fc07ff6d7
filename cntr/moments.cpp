// Polygon area and area centroid of vertex and edgelet lists: the core's, for the public
// interface.
#include <cntr/moments.h>

#include <cntr/core/moments.h>
#include <cntr/core/reference.h>
#include <cntr/moments_internal.h>

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
