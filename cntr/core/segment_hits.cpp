// The segment query and the queries built on it.
#include <cntr/core/segment_hits.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <cntr/core/clearance_sweep.h>
#include <cntr/core/extent.h>
#include <cntr/core/reference.h>
#include <cntr/tolerances.h>
#include <foundation/numeric.h>

namespace cntr::core {

namespace {

// Up to this many hits the exchange sort is as fast as anything else.
constexpr std::size_t kExchangeSortLimit = 16;

// Sorts the hits by their keys when the keys are numbers, all distinct: the one ascending order,
// which any correct sort leaves. False, changing nothing, when two keys are equal or one is NaN.
template <class Key>
bool orderByDistinctKeys(std::vector<SegmentHit>& hits, Key key) {
    std::vector<std::pair<double, std::size_t>> keyed;
    keyed.reserve(hits.size());
    for (std::size_t i = 0; i < hits.size(); ++i)
        keyed.emplace_back(key(hits[i]), i);
    for (const auto& k : keyed)
        if (k.first != k.first)
            return false;
    std::sort(keyed.begin(), keyed.end());
    for (std::size_t i = 1; i < keyed.size(); ++i)
        if (!(keyed[i - 1].first < keyed[i].first))
            return false;
    std::vector<SegmentHit> ordered;
    ordered.reserve(hits.size());
    for (const auto& k : keyed)
        ordered.push_back(hits[k.second]);
    hits = std::move(ordered);
    return true;
}

// The segment query's test of one non-degenerate edge whose rectangle overlaps the query's:
// not parallel, not touching an end of the query unless `includeEndTouches`, and a crossing
// point `p` within the coincidence tolerance of both.
bool edgeHit(const xcLineSeg& edge, const xcLine& edgeLine, const xcLineSeg& seg,
             const xcLine& queryLine, bool includeEndTouches, xcVector<2>& p) {
    if (edgeLine.isParallel(queryLine))
        return false;
    if (!includeEndTouches && !(edge.distToPoint(seg.p1()) > kCoincidentTolerance &&
                                edge.distToPoint(seg.p2()) > kCoincidentTolerance))
        return false;
    p = edgeLine.intersect(queryLine);
    return edge.distToPoint(p) < kCoincidentTolerance && seg.distToPoint(p) < kCoincidentTolerance;
}

// Whether a box of the index may hold an edge that hits the query: its box overlaps the query's
// rectangle (exactly the rectangle test of the edge-by-edge loop) and its corners are not all
// beyond the query's line by more than the reach.
class SegmentReach {
  public:
    SegmentReach(const xcLineSeg& seg, const Box& rect, double scale)
        : p1_(seg.p1()),
          d_(seg.delta()),
          rect_(rect),
          reach_(kSegmentReach * d_.length() + kCrossRounding * scale * scale),
          widen_(kSegmentReach + kCrossRounding * scale) {}

    // The same test for a turned box (see EdgeIndex::turnedBox): the query's projections on
    // the box's two axes come within the reach tolerance of the box's extents, and the box's
    // corners are not all beyond the query's line. The projections' rounding, a few units in
    // the last place of the coordinate scale, is covered by kCrossRounding times the scale.
    bool mayHold(const TurnedBox& t) const {
        const double rx = p1_.x() - t.cx;
        const double ry = p1_.y() - t.cy;
        const double s1 = rx * t.ux + ry * t.uy;
        const double s2 = s1 + (d_.x() * t.ux + d_.y() * t.uy);
        const double v1 = ry * t.ux - rx * t.uy;
        const double v2 = v1 + (d_.y() * t.ux - d_.x() * t.uy);
        if (std::min(s1, s2) > t.halfU + widen_ || std::max(s1, s2) < -t.halfU - widen_ ||
            std::min(v1, v2) > t.halfV + widen_ || std::max(v1, v2) < -t.halfV - widen_)
            return false;
        const double base = d_.cross(xcVector<2>(t.cx, t.cy) - p1_);
        const double spread = std::fabs(t.halfU * (d_.x() * t.uy - d_.y() * t.ux)) +
                              std::fabs(t.halfV * (d_.x() * t.ux + d_.y() * t.uy));
        return !(base - spread > reach_) && !(base + spread < -reach_);
    }

    bool operator()(const Box& b) const {
        if (!b.overlaps(rect_))
            return false;
        const double c[4] = {side(b.minX, b.minY), side(b.maxX, b.minY), side(b.minX, b.maxY),
                             side(b.maxX, b.maxY)};
        const bool allLeft = c[0] > reach_ && c[1] > reach_ && c[2] > reach_ && c[3] > reach_;
        const bool allRight = c[0] < -reach_ && c[1] < -reach_ && c[2] < -reach_ && c[3] < -reach_;
        return !allLeft && !allRight;
    }

    // Whether the edge from a to b may hit: its ends are not both beyond the query's line on
    // the same side (the edge lies between them).
    bool mayReach(const xcVector<2>& a, const xcVector<2>& b) const {
        const double ca = side(a.x(), a.y());
        const double cb = side(b.x(), b.y());
        return !((ca > reach_ && cb > reach_) || (ca < -reach_ && cb < -reach_));
    }

  private:
    double side(double x, double y) const { return d_.cross(xcVector<2>(x, y) - p1_); }

    xcVector<2> p1_;
    xcVector<2> d_;
    Box rect_;
    double reach_;
    double widen_;
};

// SegmentReach over a node of the index: its box and its turned box.
class NodeReach {
  public:
    NodeReach(const SegmentReach& reach, const EdgeIndex& index) : reach_(reach), index_(index) {}

    bool operator()(const EdgeNode& node) const {
        return reach_(index_.box(node)) && reach_.mayHold(index_.turnedBox(node));
    }

  private:
    const SegmentReach& reach_;
    const EdgeIndex& index_;
};

// A non-degenerate edge's extent and index.
struct EdgeSpan {
    Box box;
    std::size_t edge;
};

// Edges per block of a chain: the walk of two chains skips pairs of blocks whose boxes do not
// meet.
constexpr std::size_t kChainBlock = 16;

// The chain walk's budget before the clearance sweep takes over: this many units of work (see
// selfIntersectingSwept) per edge, and at least the floor (small outlines are always walked).
constexpr std::size_t kWalkWorkPerEdge = 16;
constexpr std::size_t kWalkWorkFloor = 65536;

// A run of `count` consecutive edges from edge `first` along which x strictly increases
// (direction 1) or strictly decreases (-1); a vertical edge is a chain of its own (0). Its
// blocks of kChainBlock edges, in chain order, start at blocks[firstBlock]. A part of a chain
// (a block) is described the same way.
struct Chain {
    std::size_t first;
    std::size_t count;
    int direction;
    Box box;
    std::size_t firstBlock;

    // The edge index of the i-th edge from the left.
    std::size_t fromLeft(std::size_t i) const {
        return direction < 0 ? first + count - 1 - i : first + i;
    }
    std::size_t blockCount() const { return (count + kChainBlock - 1) / kChainBlock; }
    // The t-th block from the left, as a chain of its own, with its box.
    Chain blockFromLeft(const std::vector<Box>& blocks, std::size_t t) const {
        const std::size_t b = direction < 0 ? blockCount() - 1 - t : t;
        const std::size_t start = first + b * kChainBlock;
        const std::size_t size = std::min(kChainBlock, count - b * kChainBlock);
        return {start, size, direction, blocks[firstBlock + b], 0};
    }
};

// The extent of the `count` edges from edge `first` of one chain. Along the chain x is monotone,
// so its x-range is that of its two end vertices; its y-range takes every vertex.
Box chainPartBox(const std::vector<xcVector<2>>& points, bool closed, std::size_t first,
                 std::size_t count) {
    const std::size_t n = points.size();
    const xcVector<2>& start = points[edgeStartVertex(first, n, closed)];
    const double endX = points[edgeEndVertex(first + count - 1, closed)].x();
    double minY = start.y();
    double maxY = start.y();
    for (std::size_t k = first; k < first + count; ++k) {
        const double y = points[edgeEndVertex(k, closed)].y();
        minY = std::min(minY, y);
        maxY = std::max(maxY, y);
    }
    return Box{std::min(start.x(), endX), minY, std::max(start.x(), endX), maxY};
}

// Cuts the non-degenerate edges (ends apart by more than kExactTolerance in x or y) into chains,
// in edge order; then gives each chain its blocks of kChainBlock edges and their extents.
void cutIntoChains(const std::vector<xcVector<2>>& points, bool closed, std::vector<Chain>& chains,
                   std::vector<Box>& blocks) {
    const std::size_t n = points.size();
    const std::size_t edges = closed ? n : n - 1;
    std::size_t runFirst = 0;  // the chain being cut: edges [runFirst, runEnd)
    std::size_t runEnd = 0;
    int runDirection = 0;
    for (std::size_t k = 0; k < edges; ++k) {
        const xcVector<2>& a = points[edgeStartVertex(k, n, closed)];
        const xcVector<2>& b = points[edgeEndVertex(k, closed)];
        if (xfRealEq(a, b, kExactTolerance))
            continue;
        const int direction = b.x() > a.x() ? 1 : (b.x() < a.x() ? -1 : 0);
        if (direction != 0 && direction == runDirection && runEnd == k) {
            runEnd = k + 1;
            continue;
        }
        if (runEnd > runFirst)
            chains.push_back({runFirst, runEnd - runFirst, runDirection, {}, 0});
        runFirst = k;
        runEnd = k + 1;
        runDirection = direction;
    }
    if (runEnd > runFirst)
        chains.push_back({runFirst, runEnd - runFirst, runDirection, {}, 0});
    for (Chain& chain : chains) {
        chain.firstBlock = blocks.size();
        for (std::size_t done = 0; done < chain.count; done += kChainBlock) {
            const std::size_t size = std::min(kChainBlock, chain.count - done);
            blocks.push_back(chainPartBox(points, closed, chain.first + done, size));
            if (done == 0)
                chain.box = blocks.back();
            else
                chain.box.merge(blocks.back());
        }
    }
}

// Calls visit(a, b) for every a from the left of A and b of B whose x-ranges overlap (touching
// counts), given by xRange(chain, i), until one returns true. The x-ranges along a chain from
// the left follow one another, each starting where the previous ends; so the walk advances the
// one that ends first, and where both end at the same x also pairs each with the other's next,
// which starts there.
template <class XRange, class Visit>
bool mergeInX(std::size_t countA, std::size_t countB, XRange xRange, Visit visit) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < countA && j < countB) {
        const std::pair<double, double> a = xRange(0, i);
        const std::pair<double, double> b = xRange(1, j);
        if (a.second < b.first) {
            ++i;
            continue;
        }
        if (b.second < a.first) {
            ++j;
            continue;
        }
        if (visit(i, j))
            return true;
        if (a.second < b.second) {
            ++i;
        } else if (b.second < a.second) {
            ++j;
        } else {
            if (i + 1 < countA && visit(i + 1, j))
                return true;
            if (j + 1 < countB && visit(i, j + 1))
                return true;
            ++i;
            ++j;
        }
    }
    return false;
}

// Calls pairHits(a, b) for every edge a of chain A and b of chain B whose x-ranges overlap,
// until one returns true: first over their blocks, then over the edges of each pair of blocks
// whose x-ranges overlap and whose boxes meet (pairHits is false for edges whose y-ranges are
// apart, so the other block pairs hold nothing to find). spanOf(k) is edge k's extent.
template <class SpanOf, class PairTest>
bool walkTogether(const std::vector<Box>& blocks, const Chain& A, const Chain& B, SpanOf spanOf,
                  PairTest pairHits) {
    const auto edgesMeet = [&](const Chain& a, const Chain& b) {
        const Chain* pair[2] = {&a, &b};
        return mergeInX(
            a.count, b.count,
            [&](int c, std::size_t i) {
                const Box s = spanOf(pair[c]->fromLeft(i)).box;
                return std::make_pair(s.minX, s.maxX);
            },
            [&](std::size_t i, std::size_t j) {
                return pairHits(spanOf(a.fromLeft(i)), spanOf(b.fromLeft(j)));
            });
    };
    if (A.count <= kChainBlock && B.count <= kChainBlock)
        return edgesMeet(A, B);
    const Chain* pair[2] = {&A, &B};
    return mergeInX(
        A.blockCount(), B.blockCount(),
        [&](int c, std::size_t t) {
            const Box& box = blocks[pair[c]->firstBlock +
                                    (pair[c]->direction < 0 ? pair[c]->blockCount() - 1 - t : t)];
            return std::make_pair(box.minX, box.maxX);
        },
        [&](std::size_t s, std::size_t t) {
            const Chain a = A.blockFromLeft(blocks, s);
            const Chain b = B.blockFromLeft(blocks, t);
            return a.box.overlaps(b.box) && edgesMeet(a, b);
        });
}

// The largest coordinate magnitude of the segment's ends.
double maxAbs(const xcLineSeg& seg) {
    return std::max({std::fabs(seg.p1().x()), std::fabs(seg.p1().y()), std::fabs(seg.p2().x()),
                     std::fabs(seg.p2().y())});
}

// Ascending order of edge lengths, NaN after every number so that the sort stays well defined.
bool lengthBefore(double a, double b) {
    return a < b || (a == a && b != b);
}

// The segment query's two ways to test the edges: `plainEdges` calls hit(p, k) for every
// edge k of the table in ascending order that gives a point p; `indexedEdges` does the same for
// the edges below the index's nodes that the walk `visit(test)` lets through (see NodeReach), in
// the order it takes them (test(k) tests edge k, first with `reach`). The indexed edges are
// formed from the vertices as fillEdgeTable forms them, so both see the same doubles.
template <class HitFound>
void plainEdges(const EdgeTable& table, const SegmentQuery& q, HitFound hit) {
    xcVector<2> p;
    for (std::size_t k = 0; k < table.segs.size(); ++k)
        if (table.valid[k] && Box::of(table.rects[k]).overlaps(q.box) &&
            edgeHit(table.segs[k], table.lines[k], q.seg, q.line, q.includeEndTouches, p))
            hit(p, static_cast<int>(k));
}

template <class Visit, class HitFound>
void indexedEdges(const OutlineView& outline, const SegmentReach& reach, const SegmentQuery& q,
                  Visit visit, HitFound hit) {
    visit([&](std::size_t k) {
        const xcVector<2>& start = outline.edgeStart(k);
        const xcVector<2>& end = outline.edgeEnd(k);
        if (!reach.mayReach(start, end) || xfRealEq(start, end, kExactTolerance) ||
            !Box::spanning(start, end).overlaps(q.box))
            return;
        const xcLineSeg edge(start, end);
        xcVector<2> p;
        if (edgeHit(edge, edge.line(), q.seg, q.line, q.includeEndTouches, p))
            hit(p, static_cast<int>(k));
    });
}

// The nearest-first search of firstIndexedHit over the index. A hit lies within the coincidence
// tolerance of its edge, so within kSegmentReach of its box; its key (P - p1) . d is at least
// the box's smallest key so widened, less the rounding of the keys (`slack`, about 1e-13 of the
// squared coordinate scale). A box whose bound exceeds the best key found is passed over: none
// of its hits could come first. Boxes are taken in the order of their bounds and ties between
// keys go to the lower edge, as the linear scan over ascending edges has them.
class NearestHitSearch {
  public:
    NearestHitSearch(const EdgeIndex& index, const xcLineSeg& seg, double scale)
        : index_(index), p1_(seg.p1()), d_(seg.delta()), slack_(kCrossRounding * scale * scale) {}

    double key(const xcVector<2>& p) const { return (p - p1_).dot(d_); }

    // Visits the nodes below `node` that `reach` passes, children by ascending bound, calling
    // test(k) for the edges of the leaves; `best` is the best key so far (infinity for none).
    template <class Reach, class Test>
    void walk(const EdgeNode& node, const Reach& reach, Test& test, const double& best) const {
        if (node.level == 0) {
            for (std::size_t k = index_.firstEdge(node); k < index_.lastEdge(node); ++k)
                test(k);
            return;
        }
        std::pair<double, std::size_t> order[EdgeIndex::kFanOut];
        std::size_t count = 0;
        for (std::size_t c = index_.firstChild(node); c < index_.lastChild(node); ++c) {
            const EdgeNode child{node.level - 1, c};
            if (!reach(child))
                continue;
            const Box& b = index_.box(child);
            // Insertion into the ascending order (at most kFanOut children).
            std::size_t at = count++;
            const std::pair<double, std::size_t> entry(bound(b), c);
            for (; at > 0 && entry < order[at - 1]; --at)
                order[at] = order[at - 1];
            order[at] = entry;
        }
        for (std::size_t i = 0; i < count; ++i) {
            if (order[i].first > best)
                return;
            walk(EdgeNode{node.level - 1, order[i].second}, reach, test, best);
        }
    }

  private:
    // The smallest key over the box widened by the reach, less the slack.
    double bound(const Box& b) const {
        const double x = std::min(d_.x() * (b.minX - kSegmentReach - p1_.x()),
                                  d_.x() * (b.maxX + kSegmentReach - p1_.x()));
        const double y = std::min(d_.y() * (b.minY - kSegmentReach - p1_.y()),
                                  d_.y() * (b.maxY + kSegmentReach - p1_.y()));
        return x + y - slack_;
    }

    const EdgeIndex& index_;
    xcVector<2> p1_;
    xcVector<2> d_;
    double slack_;
};

// The walk of selfIntersectingSwept over an outline with finite coordinates: its chains sorted
// by their smallest x, with their blocks, and the pair test. The edges are formed from the
// vertices as fillEdgeTable forms them.
class ChainWalk {
  public:
    ChainWalk(const OutlineView& outline, double largestCoordinate)
        : points_(outline.points()),
          n_(points_.size()),
          closed_(outline.closed()),
          edges_(outline.edgeCount()),
          scale_(std::max(largestCoordinate, 1.0)),
          prefilter_(scale_ <= kIndexCoordinateLimit) {
        cutIntoChains(points_, closed_, chains_, blocks_);
        std::sort(chains_.begin(), chains_.end(),
                  [](const Chain& a, const Chain& b) { return a.box.minX < b.box.minX; });
    }

    // Whether the coordinates are within the index's limit, where the rounding margins hold.
    bool withinIndexLimit() const { return prefilter_; }

    // The walk: true at the first pair that hits, false when none does; empty once more than
    // `budget` is spent. Each pair of chains costs one unit, and one more per block of either
    // when they are walked together: at most that many pairs of blocks are taken, each with at
    // most 2 kChainBlock pairs of edges.
    std::optional<bool> run(std::size_t budget) const {
        const auto pairHits = [this](const EdgeSpan& a, const EdgeSpan& b) {
            return this->pairHits(a, b);
        };
        const auto spanOf = [this](std::size_t k) { return this->spanOf(k); };
        std::size_t work = 0;
        for (std::size_t i = 0; i < chains_.size(); ++i)
            for (std::size_t j = i + 1;
                 j < chains_.size() && chains_[j].box.minX <= chains_[i].box.maxX; ++j) {
                if (++work > budget)
                    return std::nullopt;
                if (!chains_[i].box.overlaps(chains_[j].box))
                    continue;
                work += chains_[i].blockCount() + chains_[j].blockCount();
                if (work > budget)
                    return std::nullopt;
                if (walkTogether(blocks_, chains_[i], chains_[j], spanOf, pairHits))
                    return true;
            }
        return false;
    }

    // The test of two edges as the walk would make it, for any two edges: false when one is
    // degenerate or their x-ranges do not overlap.
    bool edgesHit(std::size_t a, std::size_t b) const {
        const EdgeSpan sa = spanOf(a);
        const EdgeSpan sb = spanOf(b);
        return !degenerate(a) && !degenerate(b) && sa.box.overlapsInX(sb.box) && pairHits(sa, sb);
    }

  private:
    const xcVector<2>& start(std::size_t k) const {
        return points_[edgeStartVertex(k, n_, closed_)];
    }
    const xcVector<2>& end(std::size_t k) const { return points_[edgeEndVertex(k, closed_)]; }
    bool degenerate(std::size_t k) const { return xfRealEq(start(k), end(k), kExactTolerance); }

    EdgeSpan spanOf(std::size_t k) const {
        const xcVector<2>& a = start(k);
        const xcVector<2>& b = end(k);
        return EdgeSpan{Box{std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::max(a.x(), b.x()),
                            std::max(a.y(), b.y())},
                        k};
    }

    // Within the index's coordinate limit, an edge wholly beyond the query's line is passed over
    // before the exact test, as in the indexed segment query. (The query's own check that its
    // rectangle meets the contour's always passes here: both ends are vertices.)
    bool queryHits(std::size_t q, std::size_t e) const {
        const xcLineSeg query(start(q), end(q));
        const xcLineSeg edge(start(e), end(e));
        if (prefilter_ && !SegmentReach(query, Box::spanning(query.p1(), query.p2()), scale_)
                               .mayReach(edge.p1(), edge.p2()))
            return false;
        xcVector<2> p;
        return edgeHit(edge, edge.line(), query, query.line(), false, p);
    }

    // The test of two non-degenerate edges whose x-ranges overlap: their y-ranges overlap too,
    // they share no vertex and one's query reports the other.
    bool pairHits(const EdgeSpan& a, const EdgeSpan& b) const {
        if (!a.box.overlapsInY(b.box))
            return false;
        const std::size_t d = a.edge > b.edge ? a.edge - b.edge : b.edge - a.edge;
        if (d == 1 || (closed_ && d == edges_ - 1))
            return false;
        return queryHits(a.edge, b.edge) || queryHits(b.edge, a.edge);
    }

    const std::vector<xcVector<2>>& points_;
    std::size_t n_;
    bool closed_;
    std::size_t edges_;
    double scale_;
    bool prefilter_;
    std::vector<Chain> chains_;
    std::vector<Box> blocks_;
};

}  // namespace

void fillEdgeTable(const OutlineView& outline, EdgeTable& table) {
    table.segs.clear();
    table.lines.clear();
    table.rects.clear();
    table.valid.resize(0);
    const std::size_t edges = outline.edgeCount();
    table.segs.reserve(edges);
    table.lines.reserve(edges);
    table.rects.reserve(edges);
    table.valid.reserve(edges);
    forEachEdge(outline.size(), outline.closed(), [&](std::size_t, std::size_t a, std::size_t b) {
        const xcVector<2>& start = outline[a];
        const xcVector<2>& end = outline[b];
        if (xfRealEq(start, end, kExactTolerance)) {
            table.segs.emplace_back();
            table.lines.emplace_back();
            table.rects.emplace_back();
            table.valid.push_back(false);
        } else {
            table.segs.emplace_back(start, end);
            table.lines.push_back(table.segs.back().line());
            table.rects.push_back(xcRect::at(end).enclose(xcRect::at(start)));
            table.valid.push_back(true);
        }
    });
}

xcRect boundingRect(const OutlineView& outline) {
    return enclosingRect(outline, xcXform<2>::I);
}

void indexedHits(const OutlineView& outline, const EdgeIndex& index, const SegmentQuery& query,
                 std::vector<SegmentHit>& hits) {
    const SegmentReach reach(query.seg, query.box, std::max(index.scale(), maxAbs(query.seg)));
    const NodeReach nodeReach(reach, index);
    indexedEdges(
        outline, reach, query, [&](auto test) { index.forEachCandidateNode(nodeReach, test); },
        [&hits](const xcVector<2>& p, int k) {
            hits.push_back({p, k});
        });
}

bool firstIndexedHit(const OutlineView& outline, const EdgeIndex& index, const SegmentQuery& query,
                     SegmentHit& first) {
    const double scale = std::max(index.scale(), maxAbs(query.seg));
    const SegmentReach reach(query.seg, query.box, scale);
    const NodeReach nodeReach(reach, index);
    const NearestHitSearch search(index, query.seg, scale);
    bool found = false;
    double best = 0.0;
    double bound = std::numeric_limits<double>::infinity();
    const auto visit = [&](auto test) {
        if (nodeReach(index.root()))
            search.walk(index.root(), nodeReach, test, bound);
    };
    indexedEdges(outline, reach, query, visit, [&](const xcVector<2>& p, int k) {
        const double key = search.key(p);
        if (!found || key < best || (key == best && k < first.edge)) {
            found = true;
            best = key;
            bound = key;
            first = {p, k};
        }
    });
    return found;
}

// Orders hits along the query by (P - p1) . (p2 - p1) with the plain exchange sort: for each i,
// every later hit with a strictly smaller key is swapped into place i. The sort is not stable;
// the order it leaves among equal keys is part of the result. With distinct keys that order is
// the ascending one, so many hits are sorted in n log n when their keys are distinct.
void orderAlong(std::vector<SegmentHit>& hits, const xcLineSeg& seg) {
    const xcVector<2> d = seg.p2() - seg.p1();
    const auto key = [&](const SegmentHit& h) { return (h.point - seg.p1()).dot(d); };
    if (hits.size() > kExchangeSortLimit && orderByDistinctKeys(hits, key))
        return;
    for (std::size_t i = 0; i + 1 < hits.size(); ++i)
        for (std::size_t j = i + 1; j < hits.size(); ++j)
            if (key(hits[i]) > key(hits[j]))
                std::swap(hits[i], hits[j]);
}

// The same pairs tested, found through x-monotone chains: edge q's query reports edge e exactly
// when their rectangles overlap (and q's overlaps the contour's rectangle, which the query
// checks first) and edgeHit holds, so every pair of non-degenerate edges with overlapping
// rectangles is tested both ways. Edges that share a vertex never report each other (each
// passes through an end of the other's query) and are skipped. Within a chain of consecutive
// edges whose x strictly increases (or strictly decreases) the x-ranges of non-adjacent edges are
// disjoint, so only pairs from two chains can meet; chains are swept by their left ends and two
// chains whose rectangles overlap are walked together in x, block by block, the edges of two
// blocks only where the blocks' rectangles overlap. The edges are formed from the vertices as
// fillEdgeTable forms them.
//
// That walk tests every pair of chains whose x-ranges overlap, which on outlines whose chains
// all span most of the x-range (spiky stars) is quadratic. So it runs within a budget of work
// proportional to the edge count; once that is spent, the clearance sweep decides in
// O(n log n): a pair that the queries report lies within kSegmentReach (its hit point within the
// coincidence tolerance of both, with room for the rounding of the distances), so an outline
// whose edges keep that far apart has no such pair; where the sweep finds edges closer, it
// names them and they are tested. When those tests find nothing, or the sweep cannot decide,
// the walk runs to its end.
std::optional<bool> selfIntersectingSwept(const OutlineView& outline) {
    const std::size_t edges = outline.edgeCount();
    return selfIntersectingSwept(outline, kWalkWorkPerEdge * edges + kWalkWorkFloor);
}

std::optional<bool> selfIntersectingSwept(const OutlineView& outline, std::size_t walkBudget) {
    if (outline.size() < 2)
        return false;
    // Measured in the extent module, out of line: inlined here, its running maximum was kept in
    // memory, a store and a load per vertex that cost a third of the walk on blobs.
    const std::optional<double> largestCoordinate = largestFiniteCoordinate(outline.points());
    if (!largestCoordinate)
        return std::nullopt;
    const ChainWalk walk(outline, *largestCoordinate);
    if (const std::optional<bool> walked = walk.run(walkBudget))
        return walked;
    if (walk.withinIndexLimit()) {
        const Clearance clearance = edgeClearance(outline, kSegmentReach);
        if (clearance.verdict == Clearance::Verdict::clear)
            return false;
        for (const auto& [a, b] : clearance.pairs)
            if (walk.edgesHit(a, b))
                return true;
    }
    return walk.run(std::numeric_limits<std::size_t>::max());
}

double medianEdgeLength(const EdgeTable& table) {
    std::vector<double> lengths;
    lengths.reserve(table.segs.size());
    for (const xcLineSeg& s : table.segs)
        lengths.push_back(s.length());
    std::sort(lengths.begin(), lengths.end(), lengthBefore);
    return lengths[lengths.size() / 2];
}

// ---- the reference definitions ----

void referenceSegmentHits(const EdgeTable& table, const SegmentQuery& query,
                          std::vector<SegmentHit>& hits) {
    plainEdges(table, query, [&hits](const xcVector<2>& p, int k) { hits.push_back({p, k}); });
}

bool referenceFirstHit(const EdgeTable& table, const SegmentQuery& query, SegmentHit& first) {
    const xcVector<2> d = query.seg.p2() - query.seg.p1();
    bool found = false;
    double best = 0.0;
    plainEdges(table, query, [&](const xcVector<2>& p, int k) {
        const double key = (p - query.seg.p1()).dot(d);
        if (!found || best > key) {
            found = true;
            best = key;
            first = {p, k};
        }
    });
    return found;
}

bool referenceSelfIntersecting(const EdgeTable& table, const xcRect& bounds) {
    const Box outlineBox = Box::of(bounds);
    std::vector<SegmentHit> hits;
    for (std::size_t k = 0; k < table.segs.size(); ++k) {
        if (!table.valid[k])
            continue;
        const SegmentQuery query(table.segs[k], false);
        if (!outlineBox.overlaps(query.box))
            continue;
        referenceSegmentHits(table, query, hits);
        if (!hits.empty())
            return true;
    }
    return false;
}

std::vector<SegmentHit> referenceSegmentQuery(const OutlineView& outline, const xcLineSeg& seg,
                                              bool includeEndTouches) {
    const SegmentQuery query(seg, includeEndTouches);
    std::vector<SegmentHit> hits;
    if (!Box::of(boundingRect(outline)).overlaps(query.box))
        return hits;
    EdgeTable table;
    fillEdgeTable(outline, table);
    referenceSegmentHits(table, query, hits);
    orderAlong(hits, seg);
    return hits;
}

bool referenceFirstHitAlong(const OutlineView& outline, const xcLineSeg& seg, SegmentHit& first) {
    const SegmentQuery query(seg, false);
    if (!Box::of(boundingRect(outline)).overlaps(query.box))
        return false;
    EdgeTable table;
    fillEdgeTable(outline, table);
    return referenceFirstHit(table, query, first);
}

bool referenceSelfIntersecting(const OutlineView& outline) {
    // One vertex has a single edge, which meets nothing. (A NaN vertex would make that edge look
    // non-degenerate.)
    if (outline.size() < 2)
        return false;
    EdgeTable table;
    fillEdgeTable(outline, table);
    return referenceSelfIntersecting(table, boundingRect(outline));
}

}  // namespace cntr::core
