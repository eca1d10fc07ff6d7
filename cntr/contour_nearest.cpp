// Nearest-point queries: closest point, closest vertex, distance.
#include <algorithm>
#include <utility>
#include <cmath>
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

// A box prunes only when its squared distance exceeds the square of the best distance grown by
// this multiple of the coordinate scale and then by this relative amount: an edge's computed
// distance can fall below the true distance of its box by the rounding of the projection, a few
// units in the last place of the coordinates.
constexpr double kRelativeRounding = 1e-12;
constexpr double kScaleRounding = 1e-13;

// A child box and its squared distance from the query point.
struct Pending {
    double bound;
    EdgeNode node;
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

// Depth first over the index, nearer boxes first, skipping boxes (and edges) further than the
// best edge so far. A box's distance is the larger of its axis-aligned box's and its turned
// box's (see EdgeIndex::turnedBox), both lower bounds of its edges' distances. Every edge at the smallest distance is measured, and the lowest index among
// them wins, as in edge order.
xcVector<2> xcContour::nearestPointIndexed(const EdgeIndex& index, const xcVector<2>& point) const {
    const std::size_t n = points_.size();
    const bool closed = isClosed();
    const double slack =
        kScaleRounding * std::max({index.scale(), std::fabs(point.x()), std::fabs(point.y())});
    double best = HUGE_VAL;
    std::size_t bestEdge = 0;
    // Boxes whose squared distance exceeds this cannot hold an edge at most `best` away.
    double reachSq = HUGE_VAL;
    const auto update = [&](std::size_t k) {
        const double d =
            edgeDistance(points_[edgeStartVertex(k, n, closed)], points_[edgeEndVertex(k, closed)], point);
        if (d < best || (d == best && k < bestEdge)) {
            best = d;
            bestEdge = k;
            const double r = (best + slack) * (1.0 + kRelativeRounding);
            reachSq = r * r;
        }
    };
    const auto visit = [&](const EdgeNode& node, auto& self) -> void {
        if (node.level == 0) {
            for (std::size_t k = index.firstEdge(node); k < index.lastEdge(node); ++k) {
                const xcVector<2>& a = points_[edgeStartVertex(k, n, closed)];
                const xcVector<2>& b = points_[edgeEndVertex(k, closed)];
                const EdgeBox box{std::min(a.x(), b.x()), std::min(a.y(), b.y()),
                                  std::max(a.x(), b.x()), std::max(a.y(), b.y())};
                if (squaredDistance(box, point) <= reachSq) update(k);
            }
            return;
        }
        Pending children[EdgeIndex::kFanOut];
        std::size_t count = 0;
        for (std::size_t c = index.firstChild(node); c < index.lastChild(node); ++c) {
            const EdgeNode child{node.level - 1, c};
            const double bound = std::max(squaredDistance(index.box(child), point),
                                          squaredDistance(index.turnedBox(child, points_, closed), point, slack));
            children[count++] = {bound, child};
        }
        // Insertion sort: at most kFanOut children.
        for (std::size_t i = 1; i < count; ++i)
            for (std::size_t j = i; j > 0 && children[j].bound < children[j - 1].bound; --j)
                std::swap(children[j], children[j - 1]);
        for (std::size_t i = 0; i < count && children[i].bound <= reachSq; ++i)
            self(children[i].node, self);
    };
    visit(index.root(), visit);
    return pointOnEdge(points_[edgeStartVertex(bestEdge, n, closed)],
                       points_[edgeEndVertex(bestEdge, closed)], point);
}
