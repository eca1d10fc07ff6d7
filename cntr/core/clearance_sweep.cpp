// The clearance sweep: a sweep line in x over the vertices, the crossed edges kept in order.
#include <cntr/core/clearance_sweep.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>

#include <foundation/predicates.h>
#include <foundation/vector.h>

namespace cntr::core {
namespace {

using Points = std::vector<xcVector<2>>;

// A vertex is compared with the vertices of at most this many distinct x within 3 reach to its
// left; more give up (a crowd of vertices that close in x is no outline the sweep serves well).
constexpr std::size_t kCrowdedColumns = 32;

// The order of the sweep: by x, then by y (the sweep line is turned by an infinitesimal angle,
// so that no two distinct points lie on it at once).
bool sweepsBefore(const xcVector<2>& a, const xcVector<2>& b) {
    return a.x() < b.x() || (a.x() == b.x() && a.y() < b.y());
}

class Sweep {
  public:
    Sweep(const Points& points, bool closed, double reach)
        : points_(points),
          n_(points.size()),
          closed_(closed),
          edges_(closed ? n_ : n_ - 1),
          reach_(reach),
          status_(Below{this}) {
        runEdge_.resize(edges_);
        for (std::size_t k = 0; k < edges_; ++k)
            runEdge_[k] = k;
        order_.resize(n_);
        for (std::size_t i = 0; i < n_; ++i)
            order_[i] = i;
        std::sort(order_.begin(), order_.end(), [&](std::size_t a, std::size_t b) {
            return sweepsBefore(points_[a], points_[b]) || (points_[a] == points_[b] && a < b);
        });
    }

    // Runs the sweep; `checkVertices` first compares each vertex with those just before it.
    Clearance run(bool checkVertices) {
        if (checkVertices)
            markColumns();
        for (std::size_t at = 0; at < n_; ++at) {
            if (checkVertices && crowded(at))
                return undecided();
            if (!advance(order_[at]))
                return std::move(found_);
        }
        return {};
    }

  private:
    // Marks, for each place in the sweep order, where its run of equal x begins.
    void markColumns() {
        columnStart_.resize(n_);
        for (std::size_t at = 0; at < n_; ++at)
            columnStart_[at] = at > 0 && points_[order_[at - 1]].x() == points_[order_[at]].x()
                                   ? columnStart_[at - 1]
                                   : at;
    }

    // Whether the vertex at place `at` lies within 3 reach in both coordinates of a vertex
    // before it in the sweep order, or too many columns lie within 3 reach to its left. In its
    // own column only the vertex just before it can be nearest; in each earlier column a binary
    // search finds the lowest y not below its y - 3 reach.
    bool crowded(std::size_t at) const {
        const xcVector<2>& v = points_[order_[at]];
        const double near = 3.0 * reach_;
        if (at > columnStart_[at] && v.y() - points_[order_[at - 1]].y() <= near)
            return true;
        std::size_t columns = 0;
        for (std::size_t last = columnStart_[at]; last > 0;) {
            const std::size_t first = columnStart_[last - 1];
            if (v.x() - points_[order_[first]].x() > near)
                return false;
            if (++columns > kCrowdedColumns)
                return true;
            const auto begin = order_.begin() + static_cast<std::ptrdiff_t>(first);
            const auto end = order_.begin() + static_cast<std::ptrdiff_t>(last);
            const auto low =
                std::lower_bound(begin, end, v.y() - near,
                                 [&](std::size_t i, double y) { return points_[i].y() < y; });
            if (low != end && points_[*low].y() - v.y() <= near)
                return true;
            last = first;
        }
        return false;
    }

    std::size_t startVertex(std::size_t k) const { return edgeStartVertex(k, n_, closed_); }
    std::size_t endVertex(std::size_t k) const { return edgeEndVertex(k, closed_); }
    // The end of edge k that the sweep meets first, and the other.
    std::size_t leftVertex(std::size_t k) const {
        return sweepsBefore(points_[endVertex(k)], points_[startVertex(k)]) ? endVertex(k)
                                                                            : startVertex(k);
    }
    std::size_t rightVertex(std::size_t k) const {
        return leftVertex(k) == startVertex(k) ? endVertex(k) : startVertex(k);
    }
    bool shareVertex(std::size_t a, std::size_t b) const {
        return startVertex(a) == startVertex(b) || startVertex(a) == endVertex(b) ||
               endVertex(a) == startVertex(b) || endVertex(a) == endVertex(b);
    }
    // +1 when p lies above edge k (left of its direction in sweep order), -1 below, 0 on its line.
    int side(std::size_t k, const xcVector<2>& p) const {
        return xfOrientation(points_[leftVertex(k)], points_[rightVertex(k)], p);
    }

    // The order along the sweep line at the current vertex, bottom to top, of the runs' current
    // edges. A search is made only for the current vertex itself (kAtVertex) or for an edge
    // starting there, against the edges already in place, which the sweep line crosses beside
    // the vertex: so each comparison is one orientation.
    static constexpr std::size_t kAtVertex = std::numeric_limits<std::size_t>::max();
    struct Below {
        const Sweep* sweep;
        bool operator()(std::size_t a, std::size_t b) const { return sweep->below(a, b); }
    };
    bool below(std::size_t runA, std::size_t runB) const {
        if (runA == runB)
            return false;
        const xcVector<2>& p = points_[vertex_];
        if (runA == kAtVertex)
            return side(runEdge_[runB], p) < 0;
        if (runB == kAtVertex)
            return side(runEdge_[runA], p) > 0;
        const std::size_t a = runEdge_[runA];
        const std::size_t b = runEdge_[runB];
        const bool aStarts = leftVertex(a) == vertex_;
        const bool bStarts = leftVertex(b) == vertex_;
        if (aStarts && bStarts)
            return xfOrientation(p, points_[rightVertex(a)], points_[rightVertex(b)]) > 0;
        if (aStarts)
            return side(b, p) < 0;
        return side(a, p) > 0;
    }

    // The y of edge k on the vertical line through p (the edge crosses it).
    double heightAt(std::size_t k, const xcVector<2>& p) const {
        const xcVector<2>& l = points_[leftVertex(k)];
        const xcVector<2>& r = points_[rightVertex(k)];
        if (l.x() == r.x())
            return p.y();
        return l.y() + (r.y() - l.y()) * ((p.x() - l.x()) / (r.x() - l.x()));
    }

    Clearance undecided() const {
        Clearance c;
        c.verdict = Clearance::Verdict::undecided;
        return c;
    }
    bool giveUp() {
        found_ = undecided();
        return false;
    }
    // Stops the sweep at the pairs of `edge` with the vertex's edges.
    bool closeToVertex(std::size_t edge) {
        found_.verdict = Clearance::Verdict::closeEdges;
        for (std::size_t k : incident_)
            found_.pairs.emplace_back(k, edge);
        return false;
    }
    // Whether two edges that are neighbours along the line keep apart: edges without a common
    // vertex have no common point, edges with one have no other.
    bool apart(std::size_t a, std::size_t b) {
        const xcSegmentContact contact =
            xfSegmentContact(points_[startVertex(a)], points_[endVertex(a)],
                             points_[startVertex(b)], points_[endVertex(b)]);
        if (shareVertex(a, b) ? contact.kind != xcSegmentContact::touching
                              : contact.kind != xcSegmentContact::disjoint) {
            found_.verdict = Clearance::Verdict::closeEdges;
            found_.pairs.emplace_back(a, b);
            return false;
        }
        return true;
    }
    template <class Iterator>
    bool apartFromNeighbours(Iterator low, Iterator high) {
        if (low != status_.begin() && !apart(runEdge_[*std::prev(low)], runEdge_[*low]))
            return false;
        const auto next = std::next(high);
        return next == status_.end() || apart(runEdge_[*high], runEdge_[*next]);
    }

    // Passes vertex i: measures the nearest edges above and below it, ends the runs that end
    // there, continues the run that passes through and starts the runs that start there. False
    // when the sweep stops.
    bool advance(std::size_t i) {
        vertex_ = i;
        const xcVector<2>& p = points_[i];
        incident_.clear();
        if (closed_ || i > 0)
            incident_.push_back(closed_ ? i : i - 1);
        if (closed_ || i + 1 < n_)
            incident_.push_back(closed_ ? (i + 1) % n_ : i);
        std::size_t ending = 0;
        std::size_t starting[2];
        std::size_t startCount = 0;
        for (std::size_t k : incident_) {
            if (rightVertex(k) == i)
                ++ending;
            else
                starting[startCount++] = k;
        }

        // The edges through the vertex must be those that end there; every other edge in place
        // lies above or below it.
        auto [low, high] = status_.equal_range(kAtVertex);
        std::size_t through = 0;
        for (auto it = low; it != high; ++it, ++through)
            if (rightVertex(runEdge_[*it]) != i)
                return closeToVertex(runEdge_[*it]);
        if (through != ending)
            return giveUp();
        const double gap = 2.0 * reach_;
        if (low != status_.begin()) {
            const std::size_t k = runEdge_[*std::prev(low)];
            if (p.y() - heightAt(k, p) <= gap)
                return closeToVertex(k);
        }
        if (high != status_.end()) {
            const std::size_t k = runEdge_[*high];
            if (heightAt(k, p) - p.y() <= gap)
                return closeToVertex(k);
        }

        if (ending == 1 && startCount == 1) {
            runEdge_[*low] = starting[0];
            return apartFromNeighbours(low, low);
        }
        const auto after = status_.erase(low, high);
        if (startCount == 0)
            return after == status_.begin() || after == status_.end() ||
                   apart(runEdge_[*std::prev(after)], runEdge_[*after]);
        if (startCount == 2 && xfOrientation(p, points_[rightVertex(starting[0])],
                                             points_[rightVertex(starting[1])]) == 0)
            return giveUp();
        auto first = status_.insert(after, starting[0]);
        auto last = first;
        if (startCount == 2) {
            last = status_.insert(starting[1]).first;
            if (below(starting[1], starting[0]))
                std::swap(first, last);
        }
        return apartFromNeighbours(first, last);
    }

    const Points& points_;
    std::size_t n_;
    bool closed_;
    std::size_t edges_;
    double reach_;
    // Each run is named by the edge it started with; runEdge_ holds its current edge.
    std::vector<std::size_t> runEdge_;
    std::vector<std::size_t> order_;
    std::vector<std::size_t> columnStart_;
    std::set<std::size_t, Below> status_;
    std::size_t vertex_ = 0;
    std::vector<std::size_t> incident_;
    Clearance found_;
};

}  // namespace

Clearance edgeClearance(const OutlineView& outline, double reach) {
    if (outline.edgeCount() < 3) {
        Clearance c;
        c.verdict = Clearance::Verdict::undecided;
        return c;
    }
    Clearance along = Sweep(outline.points(), outline.closed(), reach).run(true);
    if (along.verdict != Clearance::Verdict::clear)
        return along;
    Points turned;
    turned.reserve(outline.size());
    for (const xcVector<2>& p : outline.points())
        turned.emplace_back(p.y(), p.x());
    return Sweep(turned, outline.closed(), reach).run(false);
}

}  // namespace cntr::core
