// Nearest-point queries: closest point, closest vertex, distance.
#include <algorithm>
#include <utility>
#include <cmath>
#include <vector>

#include <cntr/contour.h>
#include <cntr/contour_detail.h>
#include <cntr/core/edge_index.h>
#include <cntr/core/nearest.h>
#include <cntr/core/reference.h>
#include <cntr/tolerances.h>

using namespace xn_contourDetail;
using namespace cntr;
using namespace cntr::core;

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

// Where the index serves the point the search goes through it, else edge by edge.
xcVector<2> xcContour::nearestPoint(const xcVector<2>& point, bool vertexOnly) const {
    if (vertexOnly) return points_[static_cast<std::size_t>(closestVertexIndex(point))];
    checkEmptyContour();
    const OutlineView outline(points_, isClosed());
    if (EdgeIndex::accepts(point))
        if (const EdgeIndex* index = edgeIndex())
            return nearestPointIndexed(outline, *index, point);
    return referenceNearestPoint(outline, point);
}
