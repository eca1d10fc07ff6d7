// Nearest vertices and points, distances and intersections of a region and its holes.
#include <cntr/region.h>
#include <cntr/region_detail.h>

using namespace xn_regionDetail;

namespace {

// Appends `part` to `all`.
void append(std::vector<xcVector<2>>& all, const std::vector<xcVector<2>>& part) {
    all.insert(all.end(), part.begin(), part.end());
}

}  // namespace

long xcRegion::closestVertexIndex(const xcVector<2>& point, bool considerHoles,
                                  long& holeIndex) const {
    holeIndex = -1;
    long best = xcContour::closestVertexIndex(point);
    if (!considerHoles || holes_.empty())
        return best;
    double bestDistance = point.distance(points()[static_cast<std::size_t>(best)]);
    for (std::size_t h = 0; h < holes_.size(); ++h) {
        const xcRegion& hole = *holes_[h];
        const long k = hole.closestVertexIndex(point);
        const double d = point.distance(hole.points()[static_cast<std::size_t>(k)]);
        if (d < bestDistance) {
            holeIndex = static_cast<long>(h);
            bestDistance = d;
            best = k;
        }
    }
    return best;
}

xcVector<2> xcRegion::closestPoint(const xcVector<2>& point, bool vertexOnly, bool considerHoles) {
    if (vertexOnly) {
        long holeIndex = -1;
        const long k = closestVertexIndex(point, considerHoles, holeIndex);
        const xcRegion& owner =
            holeIndex < 0 ? *this : *holes_[static_cast<std::size_t>(holeIndex)];
        return owner.points()[static_cast<std::size_t>(k)];
    }
    // The holes take part whatever considerHoles says: the flag acts only with vertexOnly.
    xcVector<2> best = xcContour::closestPoint(point, false);
    double bestDistance = best.distance(point);
    for (const xcPtrHandle_const<xcRegion>& hole : holes_) {
        const xcVector<2> candidate = outlineOf(*hole).closestPoint(point, false);
        const double d = candidate.distance(point);
        if (d < bestDistance) {
            best = candidate;
            bestDistance = d;
        }
    }
    return best;
}

double xcRegion::distToPoint(const xcVector<2>& point, bool vertexOnly, bool considerHoles,
                             bool zeroInside) const {
    if (zeroInside && inside(point, considerHoles))
        return 0.0;
    return point.distance(cacheFilling(*this).closestPoint(point, vertexOnly, considerHoles));
}

std::vector<xcVector<2>> xcRegion::intersections(const xcLineSeg& segment, bool includeEndTouches,
                                                 bool considerHoles) {
    std::vector<xcVector<2>> result = xcContour::intersections(segment, includeEndTouches);
    if (considerHoles)
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            append(result, outlineOf(*hole).intersections(segment, includeEndTouches));
    return result;
}

std::vector<xcVector<2>> xcRegion::intersections(const xcContour& contour, bool considerHoles) {
    std::vector<xcVector<2>> result = xcContour::intersections(contour);
    if (considerHoles)
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            append(result, outlineOf(*hole).intersections(contour));
    return result;
}
