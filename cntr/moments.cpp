// Polygon area and area centroid of vertex lists.
#include <cmath>

#include <cntr/moments.h>
#include <cntr/moments_internal.h>
#include <foundation/geometry.h>
#include <foundation/numeric.h>

namespace {

/// A fan triangle whose doubled signed area is within this of 0 adds nothing to the centroid
/// and is skipped (its median construction would be ill-conditioned).
constexpr double kNegligibleCross = 1e-15;
/// A polygon whose summed doubled signed area is within this of 0 has no meaningful centroid;
/// its centre is reported as (0, 0).
constexpr double kNegligibleTotalCross = 1e-6;

/// Half the absolute sum of cross(previous, current) over the closed polygon of the positions
/// of `items`, edges in the library's order (closing edge first).
template <class T, class PositionOf>
double unsignedArea(const std::vector<T>& items, PositionOf positionOf) {
    if (items.empty())
        return 0.0;
    double sum = 0.0;
    xcVector<2> previous = positionOf(items.back());
    for (const T& item : items) {
        const xcVector<2> current = positionOf(item);
        sum += previous.cross(current);
        previous = current;
    }
    return std::fabs(sum / 2.0);
}

/// The centroid of triangle (a, b, c) as the crossing of the medians from a and from b. The
/// construction (rather than the mean of the corners) is deliberate and fixes the rounding of
/// the result. Throws xcMathError::Singular when the medians are parallel within the line
/// tolerance, which a triangle of non-negligible area only reaches when extremely thin.
xcVector<2> triangleCentroid(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c) {
    const xcLine medianA = xcLineSeg(a, (b + c) / 2.0).line();
    const xcLine medianB = xcLineSeg(b, (a + c) / 2.0).line();
    return medianA.intersect(medianB);
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
    return unsignedArea(points, [](const xcVector<2>& p) { return p; });
}

double xf_Area(const std::vector<xcEdgelet>& edgelets) {
    if (edgelets.size() < 3)
        return 0.0;
    return unsignedArea(edgelets, [](const xcEdgelet& e) { return e.position(); });
}

xcVector<2> xnContour::centerOfMass(const std::vector<xcVector<2>>& points) {
    if (points.size() <= 2)
        return xcVector<2>();
    // Fan of triangles (origin, previous, current), each centroid weighted by the signed
    // doubled area; the common sign makes the result independent of the orientation.
    const xcVector<2> origin;
    double sumX = 0.0;
    double sumY = 0.0;
    double sumWeights = 0.0;
    xcVector<2> previous = points.back();
    for (const xcVector<2>& current : points) {
        const double w = previous.cross(current);
        if (!xfRealEq(w, 0.0, kNegligibleCross)) {
            const xcVector<2> g = triangleCentroid(origin, previous, current);
            sumX += w * g.x();
            sumY += w * g.y();
            sumWeights += w;
        }
        previous = current;
    }
    if (xfRealEq(sumWeights, 0.0, kNegligibleTotalCross))
        return xcVector<2>();
    return xcVector<2>(sumX / sumWeights, sumY / sumWeights);
}

xcVector<2> xf_CenterOfMass(const std::vector<xcVector<2>>& points) {
    return xnContour::centerOfMass(points);
}

xcVector<2> xf_CenterOfMass(const std::vector<xcEdgelet>& edgelets) {
    return xnContour::centerOfMass(moments_detail::positionsOf(edgelets));
}
