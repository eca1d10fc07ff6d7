// Nearest-point queries: closest point, closest vertex, distance.
#include <cmath>

#include <cntr/contour.h>
#include <cntr/contour_detail.h>

using namespace xn_contourDetail;

long xcContour::closestVertexIndex(const xcVector<2>& point) const {
    checkEmptyContour();
    double best = HUGE_VAL;
    long index = 0;
    for (std::size_t i = 0; i < points_.size(); ++i) {
        const double d = point.distance(points_[i]);
        if (d < best) {
            best = d;
            index = static_cast<long>(i);
        }
    }
    return index;
}

xcVector<2> xcContour::closestPoint(const xcVector<2>& point, bool vertexOnly) {
    return nearestPoint(point, vertexOnly);
}

double xcContour::distToPoint(const xcVector<2>& point, bool vertexOnly) const {
    return nearestPoint(point, vertexOnly).distance(point);
}

// The edge is chosen by the segment's own distance; the point returned is the clamped
// projection. A zero-length edge has the parameter 0/0 = NaN, which is "not above 0" and so
// yields its start vertex.
xcVector<2> xcContour::nearestPoint(const xcVector<2>& point, bool vertexOnly) const {
    if (vertexOnly) return points_[static_cast<std::size_t>(closestVertexIndex(point))];
    checkEmptyContour();
    xcVector<2> result;
    double best = HUGE_VAL;
    forEachEdge(points_.size(), isClosed(), [&](std::size_t, std::size_t ia, std::size_t ib) {
        const xcVector<2>& a = points_[ia];
        const xcVector<2>& b = points_[ib];
        const xcLineSeg edge(a, b);
        const double d = edge.distToPoint(point);
        if (!(d < best)) return;
        best = d;
        const double t = (point - a).dot(b - a) / (b - a).dot(b - a);
        if (!(t > 0.0))
            result = a;
        else if (t >= 1.0)
            result = b;
        else
            result = edge.line().proj(point);
    });
    return result;
}
