// The nearest point of an outline's edges: through the edge index, and edge by edge.
#include <cntr/core/nearest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include <cntr/core/reference.h>
#include <cntr/tolerances.h>

namespace cntr::core {

namespace {

// The distance from `point` to the edge from a to b, as the edge-by-edge search measures it.
double edgeDistance(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& point) {
    return xcLineSeg(a, b).distToPoint(point);
}

// The point of the edge from a to b returned for `point`: the clamped projection. A zero-length
// edge has the parameter 0/0 = NaN, which is "not above 0" and so yields its start vertex.
xcVector<2> pointOnEdge(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& point) {
    const double t = (point - a).dot(b - a) / (b - a).dot(b - a);
    if (!(t > 0.0))
        return a;
    if (t >= 1.0)
        return b;
    return xcLineSeg(a, b).line().proj(point);
}

// A child box and its squared distance from the query point.
struct Pending {
    double bound;
    EdgeNode node;
};

}  // namespace

// The edge is chosen by the segment's own distance, the first in edge order winning ties; the
// point returned is the clamped projection.
xcVector<2> referenceNearestPoint(const OutlineView& outline, const xcVector<2>& point) {
    xcVector<2> result;
    double best = HUGE_VAL;
    forEachEdge(outline.size(), outline.closed(), [&](std::size_t, std::size_t ia, std::size_t ib) {
        const double d = edgeDistance(outline[ia], outline[ib], point);
        if (!(d < best))
            return;
        best = d;
        result = pointOnEdge(outline[ia], outline[ib], point);
    });
    return result;
}

// Depth first over the index, nearer boxes first, skipping boxes (and edges) further than the
// best edge so far. A box's distance is the larger of its axis-aligned box's and its turned
// box's (see EdgeIndex::turnedBox), both lower bounds of its edges' distances. Every edge at the
// smallest distance is measured, and the lowest index among them wins, as in edge order.
xcVector<2> nearestPointIndexed(const OutlineView& outline, const EdgeIndex& index,
                                const xcVector<2>& point) {
    // An edge's computed distance can fall below its box's true distance by the rounding of the
    // projection: boxes prune only beyond the best distance so grown.
    const double slack =
        kCoordinateRounding * std::max({index.scale(), std::fabs(point.x()), std::fabs(point.y())});
    double best = HUGE_VAL;
    std::size_t bestEdge = 0;
    // Boxes whose squared distance exceeds this cannot hold an edge at most `best` away.
    double reachSq = HUGE_VAL;
    const auto update = [&](std::size_t k) {
        const double d = edgeDistance(outline.edgeStart(k), outline.edgeEnd(k), point);
        if (d < best || (d == best && k < bestEdge)) {
            best = d;
            bestEdge = k;
            const double r = (best + slack) * (1.0 + kDistanceRounding);
            reachSq = r * r;
        }
    };
    const auto visit = [&](const EdgeNode& node, auto& self) -> void {
        if (node.level == 0) {
            for (std::size_t k = index.firstEdge(node); k < index.lastEdge(node); ++k) {
                const xcVector<2>& a = outline.edgeStart(k);
                const xcVector<2>& b = outline.edgeEnd(k);
                const Box box{std::min(a.x(), b.x()), std::min(a.y(), b.y()),
                              std::max(a.x(), b.x()), std::max(a.y(), b.y())};
                if (squaredDistance(box, point) <= reachSq)
                    update(k);
            }
            return;
        }
        Pending children[EdgeIndex::kFanOut];
        std::size_t count = 0;
        for (std::size_t c = index.firstChild(node); c < index.lastChild(node); ++c) {
            const EdgeNode child{node.level - 1, c};
            const double bound = std::max(squaredDistance(index.box(child), point),
                                          squaredDistance(index.turnedBox(child), point, slack));
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
    return pointOnEdge(outline.edgeStart(bestEdge), outline.edgeEnd(bestEdge), point);
}

}  // namespace cntr::core
