// The outer hull's reduction of a boundary walk to one outline: the walk is cut into loops at
// its repeated vertices, loops lying inside other loops are dropped, and loops that share a
// vertex are joined again.
//
// Each phase is written as "find the first change in list order, make it, search again from
// the start". The searches below resume where the last change was made instead of at the start:
// the change leaves every earlier loop with nothing to find (shown at each search), so the
// first change found is the same, at linear instead of quadratic cost.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include <cntr/region_walk.h>
#include <foundation/exception.h>

namespace {

using Points = std::vector<xcVector<2>>;
using Loops = std::vector<std::unique_ptr<xcRegion>>;

std::unique_ptr<xcRegion> loopOf(const Points& points) {
    return std::unique_ptr<xcRegion>(new xcRegion(points, xcContourDefs::keepOutline));
}

// Appends `count` vertices of `loop` to `out`, from index `first` on, wrapping around.
void appendCyclic(Points& out, const Points& loop, std::size_t first, std::size_t count) {
    for (std::size_t t = 0; t < count; ++t)
        out.push_back(loop[(first + t) % loop.size()]);
}

// Finds, from loop `from` on, the first vertex k of a loop that the loop's vertexIndex also
// finds under another index j (the first such index in the order vertexIndex gives) and cuts
// that loop in two: the vertices k .. j-1 take its place, the vertices j .. k-1 (cyclically)
// go to the end of the list. `from` becomes the loop cut: the loops before it were searched
// without result and are unchanged. A loop of one vertex cannot be searched: vertexIndex
// throws EmptyContour.
bool cutAtRepeatedVertex(Loops& loops, std::size_t& from) {
    for (std::size_t r = from; r < loops.size(); ++r) {
        const Points& v = loops[r]->points();
        const std::size_t c = v.size();
        for (std::size_t k = 0; k < c; ++k) {
            for (int found :
                 loops[r]->vertexIndex(v[k], xn_regionDetail::kRepeatedVertexTolerance)) {
                const std::size_t j = static_cast<std::size_t>(found);
                if (j == k)
                    continue;
                const std::size_t cut = j < k ? j + c : j;
                Points first;
                Points second;
                appendCyclic(first, v, k, cut - k);
                appendCyclic(second, v, cut, k + c - cut);
                loops[r] = loopOf(first);
                loops.push_back(loopOf(second));
                from = r;
                return true;
            }
        }
    }
    return false;
}

// Removes the first loop i, from `from` on, that another loop k contains: loop k's inside(),
// holes considered, at the midpoint of loop i's vertices 0 and 1 (every loop has two vertices
// once the cutting is done). The last loop takes its place. The loops before `from` lay in no
// other loop before, and the change brings no new loop, so they still do.
bool dropInnerLoop(Loops& loops, std::size_t& from) {
    for (std::size_t i = from; i < loops.size(); ++i) {
        const Points& v = loops[i]->points();
        const xcVector<2> mid = (v[0] + v[1]) / 2.0;
        for (std::size_t k = 0; k < loops.size(); ++k) {
            if (k == i || !loops[k]->inside(mid, true))
                continue;
            std::swap(loops[i], loops.back());
            loops.pop_back();
            from = i;
            return true;
        }
    }
    return false;
}

// The bounding box of a loop's vertices; a NaN coordinate takes no part (vertexIndex never
// matches such a vertex either), so a loop of NaN vertices has an empty box.
struct Box {
    double minX = std::numeric_limits<double>::infinity();
    double minY = std::numeric_limits<double>::infinity();
    double maxX = -std::numeric_limits<double>::infinity();
    double maxY = -std::numeric_limits<double>::infinity();

    void add(const xcVector<2>& p) {
        if (p.x() < minX)
            minX = p.x();
        if (p.x() > maxX)
            maxX = p.x();
        if (p.y() < minY)
            minY = p.y();
        if (p.y() > maxY)
            maxY = p.y();
    }
    void add(const Box& b) {
        minX = std::min(minX, b.minX);
        minY = std::min(minY, b.minY);
        maxX = std::max(maxX, b.maxX);
        maxY = std::max(maxY, b.maxY);
    }
};

Box boxOf(const Points& v) {
    Box b;
    for (const xcVector<2>& p : v)
        b.add(p);
    return b;
}

// Whether no vertex inside one box can lie within the repeated-vertex tolerance of a vertex
// inside the other. The boxes must be four tolerances apart, which absorbs the rounding of the
// sum below and of the distance that vertexIndex computes.
bool apart(const Box& a, const Box& b) {
    constexpr double margin = 4.0 * xn_regionDetail::kRepeatedVertexTolerance;
    return a.maxX + margin < b.minX || b.maxX + margin < a.minX || a.maxY + margin < b.minY ||
           b.maxY + margin < a.minY;
}

// Whether loop i's vertices (some vertex m) are found by loop k's vertexIndex: the first such
// m, the first index q found, or false.
bool firstSharedVertex(const Loops& loops, std::size_t i, std::size_t k, std::size_t& m,
                       std::size_t& q) {
    const Points& vi = loops[i]->points();
    for (m = 0; m < vi.size(); ++m) {
        const std::vector<int> found =
            loops[k]->vertexIndex(vi[m], xn_regionDetail::kRepeatedVertexTolerance);
        if (!found.empty()) {
            q = static_cast<std::size_t>(found.front());
            return true;
        }
    }
    return false;
}

// Loop i becomes its own vertices from m on (one turn) followed by loop k's from q on; the last
// loop takes loop k's place. `boxes` follows the loops.
void joinLoops(Loops& loops, std::vector<Box>& boxes, std::size_t i, std::size_t k,
               std::size_t m, std::size_t q) {
    const Points& vi = loops[i]->points();
    const Points& vk = loops[k]->points();
    Points joined;
    appendCyclic(joined, vi, m, vi.size());
    appendCyclic(joined, vk, q, vk.size());
    loops[i] = loopOf(joined);
    boxes[i].add(boxes[k]);
    std::swap(loops[k], loops.back());
    std::swap(boxes[k], boxes.back());
    loops.pop_back();
    boxes.pop_back();
}

// Joins the first pair of loops i < k, from i = `from` on, that share a vertex: the first
// vertex m of loop i that loop k's vertexIndex finds, at the first index q found (see
// joinLoops). A loop before `from` shared no vertex with either joined loop nor with the moved
// one, so it still shares none. Every pair of loops is searched: the definition, kept as the
// reference of the indexed search below and for coordinates that it does not take.
bool joinTouchingLoopsPlain(Loops& loops, std::vector<Box>& boxes, std::size_t& from) {
    for (std::size_t i = from; i + 1 < loops.size(); ++i) {
        for (std::size_t k = i + 1; k < loops.size(); ++k) {
            std::size_t m = 0;
            std::size_t q = 0;
            if (apart(boxes[i], boxes[k]) || !firstSharedVertex(loops, i, k, m, q))
                continue;
            joinLoops(loops, boxes, i, k, m, q);
            from = i;
            return true;
        }
    }
    return false;
}

// Every vertex of the loops at the start of the join phase in cells of twice the repeated-vertex
// tolerance, each with the loop it started in; a join moves whole loops, so the cells stay and
// only the loops' places are followed. Two vertices that vertexIndex takes for one are less than
// a tolerance apart in each coordinate, so they lie in the same or neighbouring cells: the cells
// give, for loop i, a superset of the loops k that share a vertex with it, and each of those is
// then confirmed by the search of the definition in ascending order. The first confirmed is the
// definition's k, the join the same. Cost: 40 bytes per vertex while the phase runs.
class LoopVertexCells {
  public:
    explicit LoopVertexCells(const Loops& loops) {
        for (std::size_t r = 0; r < loops.size(); ++r) {
            for (const xcVector<2>& p : loops[r]->points())
                if (finite(p))
                    cells_.push_back({cellOf(p.x()), cellOf(p.y()), p, r});
            placeOf_.push_back(r);
            startedAt_.push_back({r});
        }
        std::sort(cells_.begin(), cells_.end(), [](const Entry& a, const Entry& b) {
            return a.cx != b.cx ? a.cx < b.cx : a.cy < b.cy;
        });
    }

    /// The places k > i of the loops with a vertex within twice the tolerance of a vertex of
    /// loop i, ascending.
    std::vector<std::size_t> candidates(const Loops& loops, std::size_t i) const {
        std::vector<std::size_t> found;
        for (const xcVector<2>& p : loops[i]->points()) {
            if (!finite(p))
                continue;
            const long cx = cellOf(p.x());
            const long cy = cellOf(p.y());
            for (long dx = -1; dx <= 1; ++dx) {
                const auto first = std::lower_bound(cells_.begin(), cells_.end(),
                                                    std::make_pair(cx + dx, cy - 1), before);
                for (auto e = first; e != cells_.end() && e->cx == cx + dx && e->cy <= cy + 1;
                     ++e) {
                    const std::size_t k = placeOf_[e->loop];
                    if (k > i && e->point.distance(p) < kReach)
                        found.push_back(k);
                }
            }
        }
        std::sort(found.begin(), found.end());
        found.erase(std::unique(found.begin(), found.end()), found.end());
        return found;
    }

    /// Follows joinLoops(i, k): loop k's vertices now belong to loop i, and the last loop,
    /// `last`, moves to place k.
    void joined(std::size_t i, std::size_t k, std::size_t last) {
        moveTo(k, i);
        if (last != k)
            moveTo(last, k);
        startedAt_.pop_back();
    }

  private:
    static constexpr double kCell = 2.0 * xn_regionDetail::kRepeatedVertexTolerance;
    static constexpr double kReach = 2.0 * xn_regionDetail::kRepeatedVertexTolerance;

    struct Entry {
        long cx;
        long cy;
        xcVector<2> point;
        std::size_t loop;  // the loop it started in
    };

    // A vertex with an infinite or NaN coordinate is at an infinite or NaN distance from every
    // vertex, so vertexIndex never takes it for another: it needs no cell.
    static bool finite(const xcVector<2>& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

    // Cell numbers are clamped to +-2^62: clamping moves no two numbers further apart, so
    // neighbours stay neighbours, and it only crowds vertices of huge magnitude into one cell.
    static long cellOf(double v) {
        constexpr double kLimit = 4611686018427387904.0;  // 2^62
        return static_cast<long>(std::max(-kLimit, std::min(kLimit, std::floor(v / kCell))));
    }
    static bool before(const Entry& e, const std::pair<long, long>& c) {
        return e.cx != c.first ? e.cx < c.first : e.cy < c.second;
    }

    // Every loop that started in place `from`'s current loop now lies in place `to`.
    void moveTo(std::size_t from, std::size_t to) {
        for (std::size_t r : startedAt_[from])
            placeOf_[r] = to;
        if (to == from)
            return;
        std::vector<std::size_t> moving;
        moving.swap(startedAt_[from]);
        startedAt_[to].insert(startedAt_[to].end(), moving.begin(), moving.end());
    }

    std::vector<Entry> cells_;
    std::vector<std::size_t> placeOf_;                 // by starting loop: its current place
    std::vector<std::vector<std::size_t>> startedAt_;  // by place: the starting loops in it
};

// joinTouchingLoopsPlain, with the loops k searched only among the candidates of `cells`.
bool joinTouchingLoopsIndexed(Loops& loops, std::vector<Box>& boxes, LoopVertexCells& cells,
                              std::size_t& from) {
    for (std::size_t i = from; i + 1 < loops.size(); ++i) {
        for (std::size_t k : cells.candidates(loops, i)) {
            std::size_t m = 0;
            std::size_t q = 0;
            if (apart(boxes[i], boxes[k]) || !firstSharedVertex(loops, i, k, m, q))
                continue;
            const std::size_t last = loops.size() - 1;
            joinLoops(loops, boxes, i, k, m, q);
            cells.joined(i, k, last);
            from = i;
            return true;
        }
    }
    return false;
}

}  // namespace

// Every change adds a loop (cut, each loop keeping a vertex at least) or removes one (drop,
// join), so no phase can make more changes than the limits given to repeatUntilStable.
void xn_regionDetail::assignOuterLoop(const Points& walk, xcRegion& result, LoopJoin join) {
    Loops loops;
    loops.push_back(loopOf(walk));
    std::size_t from = 0;
    repeatUntilStable(walk.size(), [&] { return cutAtRepeatedVertex(loops, from); });

    from = 0;
    repeatUntilStable(loops.size(), [&] { return dropInnerLoop(loops, from); });

    std::vector<Box> boxes;
    for (const std::unique_ptr<xcRegion>& loop : loops)
        boxes.push_back(boxOf(loop->points()));
    from = 0;
    if (join == LoopJoin::indexed) {
        LoopVertexCells cells(loops);
        repeatUntilStable(loops.size(),
                          [&] { return joinTouchingLoopsIndexed(loops, boxes, cells, from); });
    } else {
        repeatUntilStable(loops.size(), [&] { return joinTouchingLoopsPlain(loops, boxes, from); });
    }

    if (loops.size() != 1)
        xstd_assert_(kAssertSource, kLoopsNotJoinedLine);
    result = *loops.front();
}
