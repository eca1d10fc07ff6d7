// The outer hull's reduction of a boundary walk to one outline: the walk is cut into loops at
// its repeated vertices, loops lying inside other loops are dropped, and loops that share a
// vertex are joined again.
//
// Each phase is written as "find the first change in list order, make it, search again from
// the start". The searches below resume where the last change was made instead of at the start:
// the change leaves every earlier loop with nothing to find (shown at each search), so the
// first change found is the same, at linear instead of quadratic cost.
#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include <cntr/core/loops.h>

#include <cntr/contourdefs.h>
#include <cntr/core/box.h>
#include <cntr/core/prepared_outline.h>
#include <cntr/tolerances.h>
#include <cntr/core/vertex_grid.h>
#include <cntr/core/walk.h>
#include <foundation/exception.h>

namespace cntr::core {

namespace {

using Points = std::vector<xcVector<2>>;

// Calls `step` until it returns false (nothing changed). Each true return is one change; more
// than `limit` changes mean the phase is not making the progress its bound assumes, and throw
// BadParams("invalid contour") rather than run on.
template <class Step>
void repeatUntilStable(std::size_t limit, Step step) {
    for (std::size_t changes = 0; step();)
        if (++changes > limit)
            throwInvalidContour();
}

// A loop of the walk: its vertices, prepared for the containment test, and their lookup grid
// of the walk-vertex tolerance, built on first use. Its answers are those of a region of the
// loop's vertices: inside() is the region's inside() without holes, vertexIndex() the contour's
// vertexIndex(point, kWalkVertexTolerance), with the same EmptyContour for fewer than 2
// vertices.
class Loop {
  public:
    explicit Loop(Points points) : outline_(new PreparedOutline(std::move(points), true)) {}

    const Points& points() const { return outline_->points(); }

    std::vector<int> vertexIndex(const xcVector<2>& point) const {
        if (points().size() < 2)
            throw xcContourDefs::EmptyContour(std::wstring());
        if (!grid_) {
            grid_.reset(new VertexGrid{kWalkVertexTolerance, {}});
            fillVertexGrid(*grid_, points());
        }
        return verticesNear(*grid_, points(), point);
    }

    bool inside(const xcVector<2>& point) const {
        return outline_->crossingCount(point, false) % 2 == 1;
    }

  private:
    std::unique_ptr<PreparedOutline> outline_;
    mutable std::unique_ptr<VertexGrid> grid_;
};

using Loops = std::vector<Loop>;

// Appends `count` vertices of `loop` to `out`, from index `first` on, wrapping around.
template <class T>
void appendCyclic(std::vector<T>& out, const std::vector<T>& loop, std::size_t first,
                  std::size_t count) {
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
        const Points& v = loops[r].points();
        const std::size_t c = v.size();
        for (std::size_t k = 0; k < c; ++k) {
            for (int found : loops[r].vertexIndex(v[k])) {
                const std::size_t j = static_cast<std::size_t>(found);
                if (j == k)
                    continue;
                const std::size_t cut = j < k ? j + c : j;
                Points first;
                Points second;
                appendCyclic(first, v, k, cut - k);
                appendCyclic(second, v, cut, k + c - cut);
                loops[r] = Loop(first);
                loops.emplace_back(second);
                from = r;
                return true;
            }
        }
    }
    return false;
}

// Removes the first loop i, from `from` on, that another loop k contains: loop k's inside(),
// holes considered, at the midpoint of loop i's vertices 0 and 1 (every loop has two vertices
// once the cutting is done). The last loop takes its place; dropped(i) is told. The loops
// before `from` lay in no other loop before, and the change brings no new loop, so they still
// do.
template <class Dropped>
bool dropInnerLoop(Loops& loops, std::size_t& from, Dropped dropped) {
    for (std::size_t i = from; i < loops.size(); ++i) {
        const Points& v = loops[i].points();
        const xcVector<2> mid = (v[0] + v[1]) / 2.0;
        for (std::size_t k = 0; k < loops.size(); ++k) {
            if (k == i || !loops[k].inside(mid))
                continue;
            std::swap(loops[i], loops.back());
            loops.pop_back();
            dropped(i);
            from = i;
            return true;
        }
    }
    return false;
}

// The bounding box of each loop's vertices; a NaN coordinate takes no part (vertexIndex never
// matches such a vertex either), so a loop of NaN vertices has an empty box.
Box boxOf(const Points& v) {
    return Box::around(v.begin(), v.end());
}

std::vector<Box> boxesOf(const Loops& loops) {
    std::vector<Box> boxes;
    for (const Loop& loop : loops)
        boxes.push_back(boxOf(loop.points()));
    return boxes;
}

// Whether no vertex inside one box can lie within the walk-vertex tolerance of a vertex inside
// the other.
bool apart(const Box& a, const Box& b) {
    return a.apart(b, kLoopsApartMargin);
}

// Whether loop i's vertices (some vertex m) are found by loop k's vertexIndex: the first such
// m, the first index q found, or false.
bool firstSharedVertex(const Loops& loops, std::size_t i, std::size_t k, std::size_t& m,
                       std::size_t& q) {
    const Points& vi = loops[i].points();
    for (m = 0; m < vi.size(); ++m) {
        const std::vector<int> found = loops[k].vertexIndex(vi[m]);
        if (!found.empty()) {
            q = static_cast<std::size_t>(found.front());
            return true;
        }
    }
    return false;
}

// Loop i becomes its own vertices from m on (one turn) followed by loop k's from q on; the last
// loop takes loop k's place. `boxes` follows the loops.
void joinLoops(Loops& loops, std::vector<Box>& boxes, std::size_t i, std::size_t k, std::size_t m,
               std::size_t q) {
    const Points& vi = loops[i].points();
    const Points& vk = loops[k].points();
    Points joined;
    appendCyclic(joined, vi, m, vi.size());
    appendCyclic(joined, vk, q, vk.size());
    loops[i] = Loop(joined);
    boxes[i].merge(boxes[k]);
    std::swap(loops[k], loops.back());
    std::swap(boxes[k], boxes.back());
    loops.pop_back();
    boxes.pop_back();
}

// Joins the first pair of loops i < k, from i = `from` on, that share a vertex: the first
// vertex m of loop i that loop k's vertexIndex finds, at the first index q found (see
// joinLoops). A loop before `from` shared no vertex with either joined loop nor with the moved
// one, so it still shares none. Every pair of loops is searched: the definition, kept as the
// reference of WalkLoops's search and for the walks whose neighbour lists it would not build.
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

// The cut and join searches on loops held as lists of walk indices, with the same results as
// the searches through each loop's own vertexIndex. A loop's vertexIndex at a point finds its
// vertices in the cells around the point's cell, cell by cell, each cell's vertices in loop
// order: the walk's points go into one grid of the same cells once, each point's neighbours
// (its `partners`: the walk points that the walk's vertexIndex finds at it, with the number of
// the cell they lie in) are listed once, and a loop's search keeps the partners that lie in the
// loop, ordered by cell and then by their place in the loop. Every loop's points are walk
// points, so the loop's grid holds the same cells as the walk's.
//
// Cost while the reduction runs: about 48 bytes per walk point (its own entry in the neighbour
// lists included) and 16 per further neighbour, and the walk's grid while the lists are made.
class WalkLoops {
  public:
    explicit WalkLoops(const Points& walk)
        : walk_(walk), placeOf_(walk.size(), 0), posOf_(walk.size()) {
        VertexGrid grid;
        grid.tolerance = kWalkVertexTolerance;
        fillVertexGrid(grid, walk);
        firstPartner_.reserve(walk.size() + 1);
        const std::size_t limit = kPartnersPerPoint * walk.size() + kPartnerSlack;
        for (const xcVector<2>& p : walk) {
            firstPartner_.push_back(partners_.size());
            forEachVertexNear(grid, walk, p, [this](int cell, int id) {
                partners_.push_back({cell, static_cast<std::size_t>(id)});
            });
            if (partners_.size() > limit) {
                crowded_ = true;
                return;
            }
        }
        firstPartner_.push_back(partners_.size());
        loops_.emplace_back();
        for (std::size_t id = 0; id < walk.size(); ++id)
            loops_[0].push_back(id);
        renumber(0);
    }

    /// Whether the walk repeats its points so often that the neighbour lists would grow
    /// quadratically (more than kPartnersPerPoint per point on average): nothing else may be
    /// called then, and the plain searches run instead.
    bool crowded() const { return crowded_; }

    std::size_t size() const { return loops_.size(); }

    /// cutAtRepeatedVertex on these loops.
    bool cutAtRepeatedVertex(std::size_t& from) {
        for (std::size_t r = from; r < loops_.size(); ++r) {
            const std::size_t c = loops_[r].size();
            if (c < 2)
                throw xcContourDefs::EmptyContour(std::wstring());
            for (std::size_t k = 0; k < c; ++k) {
                std::size_t j = 0;
                if (!firstFoundIn(r, loops_[r][k], k, j))
                    continue;
                const std::size_t cut = j < k ? j + c : j;
                std::vector<std::size_t> first;
                std::vector<std::size_t> second;
                appendCyclic(first, loops_[r], k, cut - k);
                appendCyclic(second, loops_[r], cut, k + c - cut);
                loops_[r] = std::move(first);
                loops_.push_back(std::move(second));
                renumber(r);
                renumber(loops_.size() - 1);
                from = r;
                return true;
            }
        }
        return false;
    }

    /// The loops with their own vertices.
    Loops toLoops() const {
        Loops loops;
        for (std::size_t r = 0; r < loops_.size(); ++r)
            loops.emplace_back(pointsOf(r));
        return loops;
    }

    /// Follows dropInnerLoop: the last loop takes the place of loop i.
    void dropped(std::size_t i) {
        for (std::size_t id : loops_[i])
            placeOf_[id] = kNoLoop;
        std::swap(loops_[i], loops_.back());
        loops_.pop_back();
        if (i < loops_.size())
            renumber(i);
    }

    /// joinTouchingLoopsPlain on these loops: for loop i, the first vertex m in loop order with a
    /// partner in each later loop k gives that loop's join, at the first partner q in k's search
    /// order; the first k, in list order, whose box is not apart from loop i's is joined.
    bool joinTouchingLoops(std::vector<Box>& boxes, std::size_t& from) {
        for (std::size_t i = from; i + 1 < loops_.size(); ++i) {
            std::size_t best = kNoLoop;
            std::size_t bestM = 0;
            std::size_t bestQ = 0;
            const std::vector<std::size_t>& vi = loops_[i];
            for (std::size_t m = 0; m < vi.size(); ++m) {
                for (std::size_t t = firstPartner_[vi[m]]; t < firstPartner_[vi[m] + 1]; ++t) {
                    const std::size_t k = placeOf_[partners_[t].id];
                    if (k == kNoLoop || k <= i || k >= best || apart(boxes[i], boxes[k]))
                        continue;
                    std::size_t q = 0;
                    firstFoundIn(k, vi[m], kNoLoop, q);
                    best = k;
                    bestM = m;
                    bestQ = q;
                }
            }
            if (best == kNoLoop)
                continue;
            join(i, best, bestM, bestQ);
            boxes[i].merge(boxes[best]);
            std::swap(boxes[best], boxes.back());
            boxes.pop_back();
            from = i;
            return true;
        }
        return false;
    }

    Points pointsOf(std::size_t r) const {
        Points points;
        points.reserve(loops_[r].size());
        for (std::size_t id : loops_[r])
            points.push_back(walk_[id]);
        return points;
    }

  private:
    static constexpr std::size_t kNoLoop = static_cast<std::size_t>(-1);
    static constexpr std::size_t kPartnersPerPoint = 16;
    static constexpr std::size_t kPartnerSlack = 1024;

    struct Partner {
        int cell;
        std::size_t id;
    };

    // The first vertex that loop r's vertexIndex finds at walk point `id`, other than the one at
    // place `skip`: its place in loop r, in `found`.
    bool firstFoundIn(std::size_t r, std::size_t id, std::size_t skip, std::size_t& found) const {
        bool any = false;
        int bestCell = 0;
        for (std::size_t t = firstPartner_[id]; t < firstPartner_[id + 1]; ++t) {
            const Partner& p = partners_[t];
            if (placeOf_[p.id] != r || posOf_[p.id] == skip)
                continue;
            if (any && (p.cell > bestCell || (p.cell == bestCell && posOf_[p.id] >= found)))
                continue;
            any = true;
            bestCell = p.cell;
            found = posOf_[p.id];
        }
        return any;
    }

    // Loop i becomes its own vertices from m on followed by loop k's from q on; the last loop
    // takes loop k's place (joinLoops).
    void join(std::size_t i, std::size_t k, std::size_t m, std::size_t q) {
        std::vector<std::size_t> joined;
        joined.reserve(loops_[i].size() + loops_[k].size());
        appendCyclic(joined, loops_[i], m, loops_[i].size());
        appendCyclic(joined, loops_[k], q, loops_[k].size());
        loops_[i] = std::move(joined);
        renumber(i);
        std::swap(loops_[k], loops_.back());
        loops_.pop_back();
        if (k < loops_.size())
            renumber(k);
    }

    void renumber(std::size_t r) {
        for (std::size_t pos = 0; pos < loops_[r].size(); ++pos) {
            placeOf_[loops_[r][pos]] = r;
            posOf_[loops_[r][pos]] = pos;
        }
    }

    const Points& walk_;
    bool crowded_ = false;
    std::vector<std::size_t> firstPartner_;  // by walk point: its partners' start in partners_
    std::vector<Partner> partners_;
    std::vector<std::vector<std::size_t>> loops_;  // walk indices, in loop order
    std::vector<std::size_t> placeOf_;             // by walk point: its loop, or kNoLoop
    std::vector<std::size_t> posOf_;               // by walk point: its place in its loop
};

}  // namespace

// Every change adds a loop (cut, each loop keeping a vertex at least) or removes one (drop,
// join), so no phase can make more changes than the limits given to repeatUntilStable.
std::vector<xcVector<2>> referenceOuterLoop(const Points& walk) {
    Loops loops;
    loops.emplace_back(walk);
    std::size_t from = 0;
    repeatUntilStable(walk.size(), [&] { return cutAtRepeatedVertex(loops, from); });
    from = 0;
    repeatUntilStable(loops.size(), [&] { return dropInnerLoop(loops, from, [](std::size_t) {}); });
    std::vector<Box> boxes = boxesOf(loops);
    from = 0;
    repeatUntilStable(loops.size(), [&] { return joinTouchingLoopsPlain(loops, boxes, from); });
    if (loops.size() != 1)
        xstd_assert_(kLoopsAssertSource, kLoopsNotJoinedLine);
    return loops.front().points();
}

std::vector<xcVector<2>> outerLoop(const Points& walk) {
    WalkLoops w(walk);
    if (w.crowded())
        return referenceOuterLoop(walk);
    std::size_t from = 0;
    repeatUntilStable(walk.size(), [&] { return w.cutAtRepeatedVertex(from); });
    Loops loops = w.toLoops();
    from = 0;
    repeatUntilStable(loops.size(), [&] {
        return dropInnerLoop(loops, from, [&w](std::size_t i) { w.dropped(i); });
    });
    std::vector<Box> boxes = boxesOf(loops);
    from = 0;
    repeatUntilStable(w.size(), [&] { return w.joinTouchingLoops(boxes, from); });
    if (w.size() != 1)
        xstd_assert_(kLoopsAssertSource, kLoopsNotJoinedLine);
    return w.pointsOf(0);
}

}  // namespace cntr::core
