// Nearest-point queries: closest point, closest vertex, distance.
#include <algorithm>
#include <cmath>
#include <functional>
#include <queue>
#include <vector>

#include <cntr/contour.h>
#include <cntr/contour_detail.h>
#include <cntr/contour_edgeindex.h>

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

namespace {

// The distance from `point` to the edge from a to b, as the edge-by-edge search measures it.
double edgeDistance(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& point) {
    return xcLineSeg(a, b).distToPoint(point);
}

// The point of the edge from a to b returned for `point`: the clamped projection. A zero-length
// edge has the parameter 0/0 = NaN, which is "not above 0" and so yields its start vertex.
xcVector<2> pointOnEdge(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& point) {
    const double t = (point - a).dot(b - a) / (b - a).dot(b - a);
    if (!(t > 0.0)) return a;
    if (t >= 1.0) return b;
    return xcLineSeg(a, b).line().proj(point);
}

// A box's distance from the query point is shrunk by this relative amount and by this multiple
// of the coordinate scale before it prunes: an edge's computed distance can fall below the true
// distance of its box by the rounding of the projection, a few units in the last place of the
// coordinates.
constexpr double kBoxDistanceShrink = 1e-12;
constexpr double kBoxDistanceRounding = 1e-13;

struct Pending {
    double bound;
    EdgeNode node;
    bool operator>(const Pending& o) const { return bound > o.bound; }
};

}  // namespace

// The edge is chosen by the segment's own distance, the first in edge order winning ties; the
// point returned is the clamped projection.
xcVector<2> xcContour::nearestPoint(const xcVector<2>& point, bool vertexOnly, bool plain) const {
    if (vertexOnly) return points_[static_cast<std::size_t>(closestVertexIndex(point))];
    checkEmptyContour();
    if (!plain && EdgeIndex::accepts(point))
        if (const EdgeIndex* index = edgeIndex()) return nearestPointIndexed(*index, point);
    xcVector<2> result;
    double best = HUGE_VAL;
    forEachEdge(points_.size(), isClosed(), [&](std::size_t, std::size_t ia, std::size_t ib) {
        const double d = edgeDistance(points_[ia], points_[ib], point);
        if (!(d < best)) return;
        best = d;
        result = pointOnEdge(points_[ia], points_[ib], point);
    });
    return result;
}

// Best first over the index: boxes in ascending order of their (shrunk) distance, until the
// nearest box lies further than the best edge so far. Every edge at the smallest distance is
// visited, and the lowest index among them wins, as in edge order.
xcVector<2> xcContour::nearestPointIndexed(const EdgeIndex& index, const xcVector<2>& point) const {
    const std::size_t n = points_.size();
    const bool closed = isClosed();
    const auto startOf = [&](std::size_t k) { return closed ? (k == 0 ? n - 1 : k - 1) : k; };
    const auto endOf = [&](std::size_t k) { return closed ? k : k + 1; };
    const double slack =
        kBoxDistanceRounding * std::max({index.scale(), std::fabs(point.x()), std::fabs(point.y())});
    const auto bound = [&](const EdgeNode& node) {
        return std::sqrt(squaredDistance(index.box(node), point)) * (1.0 - kBoxDistanceShrink) - slack;
    };

    double best = HUGE_VAL;
    std::size_t bestEdge = 0;
    std::priority_queue<Pending, std::vector<Pending>, std::greater<Pending>> pending;
    pending.push({bound(index.root()), index.root()});
    while (!pending.empty() && pending.top().bound <= best) {
        const EdgeNode node = pending.top().node;
        pending.pop();
        if (node.level > 0) {
            for (std::size_t c = index.firstChild(node); c < index.lastChild(node); ++c) {
                const EdgeNode child{node.level - 1, c};
                const double b = bound(child);
                if (b <= best) pending.push({b, child});
            }
            continue;
        }
        for (std::size_t k = index.firstEdge(node); k < index.lastEdge(node); ++k) {
            const double d = edgeDistance(points_[startOf(k)], points_[endOf(k)], point);
            if (d < best || (d == best && k < bestEdge)) {
                best = d;
                bestEdge = k;
            }
        }
    }
    return pointOnEdge(points_[startOf(bestEdge)], points_[endOf(bestEdge)], point);
}
