#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include <cntr/core/point_crossings.h>
#include <foundation/predicates.h>

namespace cntr::core {
namespace {

bool lexLess(const xcVector<2>& p, const xcVector<2>& q) {
    return p.x() < q.x() || (p.x() == q.x() && p.y() < q.y());
}

bool degenerate(const SweptEdge& e) { return e.start == e.end; }

// Steps along a ring's edges; the edges of each ring are consecutive, edge g's ring starting at
// g - edges[g].edge.
class RingWalk {
  public:
    explicit RingWalk(const std::vector<SweptEdge>& edges) : edges_(edges), sizes_(edges.size()) {
        for (std::size_t first = 0, end = 0; first < edges.size(); first = end) {
            for (end = first; end < edges.size() && edges[end].member == edges[first].member &&
                              edges[end].ring == edges[first].ring;
                 ++end) {
            }
            std::fill(sizes_.begin() + static_cast<std::ptrdiff_t>(first),
                      sizes_.begin() + static_cast<std::ptrdiff_t>(end), end - first);
        }
    }

    // The edge before (after) g in its ring that has a length; g itself when there is none.
    std::size_t previous(std::size_t g) const { return step(g, false); }
    std::size_t next(std::size_t g) const { return step(g, true); }

  private:
    std::size_t step(std::size_t g, bool forward) const {
        const std::size_t first = g - edges_[g].edge;
        const std::size_t size = sizes_[g];
        std::size_t k = edges_[g].edge;
        for (std::size_t i = 1; i < size; ++i) {
            k = forward ? (k + 1 == size ? 0 : k + 1) : (k == 0 ? size - 1 : k - 1);
            if (!degenerate(edges_[first + k]))
                return first + k;
        }
        return g;
    }

    const std::vector<SweptEdge>& edges_;
    std::vector<std::size_t> sizes_;
};

// A ring passing through a point: arriving from `before`, leaving towards `after`.
struct Pass {
    std::size_t key;
    xcVector<2> before;
    xcVector<2> after;
};

Pass passOf(const std::vector<SweptEdge>& edges, const RingWalk& walk, std::size_t g,
            const xcVector<2>& p) {
    const SweptEdge& e = edges[g];
    if (p == e.end)
        return {g, e.start, edges[walk.next(g)].end};
    if (p == e.start) {
        const std::size_t in = walk.previous(g);
        return {in, edges[in].start, e.end};
    }
    return {g, e.start, e.end};
}

// Whether direction p -> d lies strictly inside the counter-clockwise turn from p -> u to p -> w.
bool between(const xcVector<2>& p, const xcVector<2>& u, const xcVector<2>& w,
             const xcVector<2>& d) {
    const int turn = xfOrientation(p, u, w);
    if (turn > 0)
        return xfOrientation(p, u, d) > 0 && xfOrientation(p, d, w) > 0;
    if (turn < 0)
        return !(xfOrientation(p, w, d) >= 0 && xfOrientation(p, d, u) >= 0);
    return xfOrientation(p, u, d) > 0;  // u and w opposite: the half-plane left of u
}

bool cross(const xcVector<2>& p, const Pass& a, const Pass& b) {
    return between(p, a.before, a.after, b.before) != between(p, a.before, a.after, b.after);
}

// The passes through `p` of the edges in `holding`, one per key, by key.
std::vector<Pass> passesAt(const std::vector<SweptEdge>& edges, const RingWalk& walk,
                           std::vector<std::size_t> holding, const xcVector<2>& p) {
    std::vector<Pass> passes;
    for (std::size_t g : holding)
        passes.push_back(passOf(edges, walk, g, p));
    std::sort(passes.begin(), passes.end(),
              [](const Pass& a, const Pass& b) { return a.key < b.key; });
    passes.erase(std::unique(passes.begin(), passes.end(),
                             [](const Pass& a, const Pass& b) { return a.key == b.key; }),
                 passes.end());
    return passes;
}

void consider(const std::vector<Pass>& passes, const xcVector<2>& p,
              std::optional<PointCrossing>& best) {
    for (std::size_t i = 0; i < passes.size(); ++i)
        for (std::size_t j = i + 1; j < passes.size(); ++j) {
            if (best && (passes[i].key > best->first ||
                         (passes[i].key == best->first && passes[j].key >= best->second)))
                break;
            if (cross(p, passes[i], passes[j]))
                best = PointCrossing{passes[i].key, passes[j].key, p};
        }
}

}  // namespace

std::optional<PointCrossing> firstPointCrossing(const std::vector<SweptEdge>& edges,
                                                std::vector<EdgeTouch> touches) {
    std::sort(touches.begin(), touches.end(), [](const EdgeTouch& a, const EdgeTouch& b) {
        return lexLess(a.point, b.point);
    });
    const RingWalk walk(edges);
    std::optional<PointCrossing> best;
    for (std::size_t begin = 0, end = 0; begin < touches.size(); begin = end) {
        std::vector<std::size_t> holding;
        for (end = begin; end < touches.size() && touches[end].point == touches[begin].point; ++end) {
            holding.push_back(touches[end].first);
            holding.push_back(touches[end].second);
        }
        const std::vector<Pass> passes = passesAt(edges, walk, holding, touches[begin].point);
        if (passes.size() >= 2)
            consider(passes, touches[begin].point, best);
    }
    return best;
}

}  // namespace cntr::core
