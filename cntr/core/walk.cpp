// The boundary walk of the repair of a self-crossing outline.
#include <cntr/core/walk.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <unordered_set>
#include <utility>

#include <cntr/contourdefs.h>

namespace cntr::core {

namespace {

using Points = std::vector<xcVector<2>>;

// The probe that looks for an outside side of an edge is set off from the edge's midpoint, on
// both sides, by the median edge length divided by this.
constexpr double kProbeOffsetDivisor = 100.0;

// The walk's pass limit is kPassesPerState times its number of states plus kPassSlack (see
// WalkLimit).
constexpr std::size_t kPassesPerState = 2;
constexpr std::size_t kPassSlack = 64;

// The first edge p[i] -> p[i+1] (the closing edge never starts the walk) that lies on the
// outer boundary: a short probe across its midpoint meets this edge alone
// (crossings(a, b) == 1), the edge meets nothing but its two neighbours at its ends
// (crossings == 2), and one end of the probe lies outside. `crossings(a, b)` counts the
// outline's points on the segment a -> b, end touches included. An edge of zero length has no
// sides and is passed over.
template <class Crossings, class Outside>
std::size_t startEdge(const Points& p, double offset, Crossings crossings, Outside outside) {
    for (std::size_t i = 0; i + 1 < p.size(); ++i) {
        const xcVector<2> d = p[i] - p[i + 1];
        if (d == xcVector<2>())
            continue;
        const xcVector<2> u = xcLine(xcVector<2>(), d).direction();
        const xcVector<2> normal(-u.y(), u.x());
        const xcVector<2> m = (p[i] + p[i + 1]) / 2.0;
        const xcVector<2> a = m + offset * normal;
        const xcVector<2> b = m - offset * normal;
        if (crossings(a, b) == 1 && crossings(p[i], p[i + 1]) == 2 && (outside(a) || outside(b)))
            return i;
    }
    throwInvalidContour();
}

// The bound on the walk's passes. After each pass the walk is in a state: its point (a vertex,
// or a crossing where it changed edges), its edge and its direction. An outline of n vertices
// with h crossings, each counted on both edges it lies on, has at most 2 states per vertex and
// 4 per crossing, 2 (n + h) in all. A walk that gets back to its start repeats no state, so the
// limit of kPassesPerState * 2 (n + h) + kPassSlack passes leaves room to spare; a walk beyond
// it would never end. Counting h costs one segment query per edge, so it is counted only when
// a walk outlasts the limit for h = 0.
class WalkLimit {
  public:
    WalkLimit(std::size_t vertexCount, std::function<std::size_t()> countCrossings)
        : vertexCount_(vertexCount),
          countCrossings_(std::move(countCrossings)),
          limit_(limitFor(0)) {}

    // Counts one pass; throws BadParams("invalid contour") when the limit is exceeded.
    void countPass() {
        if (++passes_ <= limit_)
            return;
        if (!crossingsCounted_) {
            crossingsCounted_ = true;
            limit_ = limitFor(countCrossings_());
            if (passes_ <= limit_)
                return;
        }
        throwInvalidContour();
    }

  private:
    std::size_t limitFor(std::size_t crossings) const {
        return kPassesPerState * 2 * (vertexCount_ + crossings) + kPassSlack;
    }

    std::size_t vertexCount_;
    std::function<std::size_t()> countCrossings_;
    std::size_t limit_;
    std::size_t passes_ = 0;
    bool crossingsCounted_ = false;
};

// The states a walk has been in (see WalkLimit), by the bits of their point: the walk's next
// state follows from its state alone, so a walk that comes to a state a second time without
// having stood on its start goes round that cycle for ever.
class WalkStates {
  public:
    // Records a state; false when it was recorded before.
    bool insert(const xcVector<2>& point, long edge, bool forward) {
        const State state{bitsOf(point.x()), bitsOf(point.y()), edge, forward};
        return seen_.insert(state).second;
    }

  private:
    struct State {
        std::uint64_t x;
        std::uint64_t y;
        long edge;
        bool forward;
        bool operator==(const State& o) const {
            return x == o.x && y == o.y && edge == o.edge && forward == o.forward;
        }
    };
    struct Hash {
        std::size_t operator()(const State& s) const {
            std::uint64_t h = s.x * 0x9E3779B97F4A7C15ull;
            h ^= (h >> 29) + s.y * 0xBF58476D1CE4E5B9ull;
            h ^= (h >> 31) + static_cast<std::uint64_t>(s.edge) * 2 + (s.forward ? 1 : 0);
            return static_cast<std::size_t>(h ^ (h >> 32));
        }
    };
    static std::uint64_t bitsOf(double v) {
        std::uint64_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        return bits;
    }

    std::unordered_set<State, Hash> seen_;
};

// Walks the outline from p[s] along edge s + 1 (from p[s] to p[s+1]), edge k running from
// p[k-1] to p[k]. Each pass goes towards the end of the current edge in the walk's direction;
// when another edge crosses the way first, the walk stops at the nearest crossing, turns onto
// that edge and reverses its direction. The walk ends when it stands on p[s] again, exactly.
// `firstHit(seg, point, edge)` gives the first point of the outline's edge-reporting segment
// query without end touches (so the edges through the walk's own point are never reported) and
// its edge, or false. Returns the points reached, p[s] last. A walk that comes back to a state
// (see WalkStates) before it stands on p[s] never will, and throws BadParams("invalid
// contour") there, as it would at the pass limit.
template <class FirstHit>
Points walkBoundary(const Points& p, std::size_t s, FirstHit firstHit, WalkLimit& limit) {
    const long n = static_cast<long>(p.size());
    const auto wrap = [n](long k) { return k < 0 ? k + n : (k >= n ? k - n : k); };
    const auto vertex = [&p](long k) { return p[static_cast<std::size_t>(k)]; };
    const xcVector<2> start = p[s];
    xcVector<2> current = start;
    long edge = static_cast<long>(s) + 1;
    bool forward = true;
    Points walk;
    xcVector<2> hit;
    int hitEdge = 0;
    WalkStates states;
    do {
        limit.countPass();
        if (!states.insert(current, edge, forward))
            throwInvalidContour();
        const xcVector<2> target = forward ? vertex(edge) : vertex(wrap(edge - 1));
        if (!firstHit(xcLineSeg(current, target), hit, hitEdge)) {
            current = target;
            edge = wrap(forward ? edge + 1 : edge - 1);
        } else {
            current = hit;
            edge = hitEdge;
            forward = !forward;
        }
        walk.push_back(current);
    } while (current != start);
    return walk;
}

}  // namespace

void throwInvalidContour() {
    throw xcContourDefs::BadParams(L"invalid contour");
}

std::vector<xcVector<2>> boundaryWalk(const OutlineView& outline, const WalkSource& source) {
    const Points& p = outline.points();
    const auto crossings = [&source](const xcVector<2>& a, const xcVector<2>& b) {
        return source.crossings(a, b);
    };
    const auto outside = [&source](const xcVector<2>& q) { return source.outside(q); };
    const std::size_t s =
        startEdge(p, source.medianFeatureSize() / kProbeOffsetDivisor, crossings, outside);
    const auto firstHit = [&source](const xcLineSeg& seg, xcVector<2>& point, int& edge) {
        SegmentHit first{};
        if (!source.firstHit(seg, first))
            return false;
        point = first.point;
        edge = first.edge;
        return true;
    };
    WalkLimit limit(p.size(), [&source] { return source.selfCrossings(); });
    return walkBoundary(p, s, firstHit, limit);
}

namespace {

// A prepared outline's answers to the walk's questions.
class PreparedSource : public WalkSource {
public:
    explicit PreparedSource(const PreparedOutline& o) : o_(o) {}
    std::size_t crossings(const xcVector<2>& a, const xcVector<2>& b) const override {
        return o_.hitCount(xcLineSeg(a, b), true);
    }
    bool outside(const xcVector<2>& q) const override { return o_.crossingCount(q, true) == 0; }
    bool firstHit(const xcLineSeg& seg, SegmentHit& first) const override {
        return o_.firstHit(seg, first);
    }
    double medianFeatureSize() const override { return medianEdgeLength(o_.table()); }
    std::size_t selfCrossings() const override {
        const EdgeTable& table = o_.table();
        std::size_t total = 0;
        for (std::size_t k = 0; k < table.segs.size(); ++k)
            if (table.valid[k]) total += o_.hitCount(table.segs[k], false);
        return total;
    }

private:
    const PreparedOutline& o_;
};

}  // namespace

std::vector<xcVector<2>> boundaryWalk(const PreparedOutline& outline) {
    if (outline.points().size() < 3) throw xcContourDefs::EmptyContour(std::wstring());
    return boundaryWalk(outline.view(), PreparedSource(outline));
}

}  // namespace cntr::core
