// The crossing count of an adaptive ray.
#include <cntr/core/containment.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <queue>
#include <vector>

#include <cntr/core/circles.h>
#include <cntr/core/reference.h>
#include <cntr/core/segment_hits.h>
#include <cntr/tolerances.h>
#include <foundation/angle.h>
#include <foundation/runsort.h>

namespace cntr::core {

namespace {

// The ray direction: the bisector of the first gap wider than `threshold` between consecutive
// directions of the ascending list (the last gap wrapping to the first), or +x when there is
// none. The first such gap is taken, not the widest.
xcVector<2> rayDirection(const std::vector<xcRadian>& sortedAngles, double threshold) {
    const std::size_t n = sortedAngles.size();
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t j = i + 1 == n ? 0 : i + 1;
        const xcRadian gap = (sortedAngles[j] - sortedAngles[i]).norm();
        if (gap.toDouble() > threshold)
            return xcVector<2>(1.0, sortedAngles[i] + gap / 2.0);
    }
    return xcVector<2>(1.0, 0.0);
}

// The direction from `point` to `vertex` in [0, 2 pi), as the containment test measures it.
xcRadian vertexAngle(const xcVector<2>& vertex, const xcVector<2>& point) {
    return (vertex - point).angle().norm();
}

// Whether a vertex lies within the on-vertex tolerance of the point (a NaN distance counts).
bool onVertex(const xcVector<2>& vertex, const xcVector<2>& point) {
    return !((vertex - point).length() > kOnVertexTolerance);
}

// Below this many vertices sorting every angle costs less than the best-first search's queues.
constexpr std::size_t kIndexedContainmentMinVertices = 256;
// The number of angles the best-first search produces before it gives up on finding a gap
// early (the wrap-around gap needs them all) and sorts every angle instead.
constexpr std::size_t kAngleSearchLimit = 256;

// The smallest distance from the point to any point of the box, shrunk for the rounding of
// distances and of the vertices' differences from the point.
double distanceBound(const Box& b, const xcVector<2>& point, double scale) {
    return std::sqrt(squaredDistance(b, point)) * (1.0 - kDistanceRounding) -
           kCoordinateRounding * scale;
}

// A lower bound of vertexAngle over the vertices in the box: 0 when the box reaches the ray
// from the point towards +x (where the angles start) or comes close to it from below (where a
// normalised angle may round to 0); otherwise the smallest corner angle, as the box then lies
// on one side of that ray and its angles span the interval its corners span.
double angleBound(const Box& b, const xcVector<2>& point, double scale) {
    if (b.minY <= point.y() && b.maxY >= point.y() && b.maxX >= point.x())
        return 0.0;
    const double corners[4] = {vertexAngle({b.minX, b.minY}, point).toDouble(),
                               vertexAngle({b.maxX, b.minY}, point).toDouble(),
                               vertexAngle({b.minX, b.maxY}, point).toDouble(),
                               vertexAngle({b.maxX, b.maxY}, point).toDouble()};
    if (*std::max_element(corners, corners + 4) > 2.0 * xcPi - kAngleWrapMargin)
        return 0.0;
    const double reach = std::max(std::sqrt(squaredDistance(b, point)), kOnVertexTolerance);
    return *std::min_element(corners, corners + 4) - kAngleRounding * scale / reach - kAngleFloor;
}

// Whether some vertex of the closed outline lies on the point, through the index (vertex k
// ends edge k and so lies in its leaf's box).
bool anyVertexOn(const EdgeIndex& index, const OutlineView& p, const xcVector<2>& point,
                 double scale) {
    bool found = false;
    index.forEachCandidate(
        [&](const Box& b) {
            return !found && distanceBound(b, point, scale) <= kOnVertexTolerance;
        },
        [&](std::size_t k) { found = found || onVertex(p[k], point); });
    return found;
}

struct Pending {
    double bound;
    EdgeNode node;
    bool operator>(const Pending& o) const { return bound > o.bound; }
};

// The vertex angles of a closed outline in ascending order, produced one by one: boxes are
// opened in order of their angle bound, and an angle is released once no unopened box can hold
// a smaller one.
class AscendingAngles {
  public:
    AscendingAngles(const EdgeIndex& index, const OutlineView& p, const xcVector<2>& point,
                    double scale)
        : index_(index), p_(p), point_(point), scale_(scale) {
        boxes_.push({angleBound(index.box(index.root()), point, scale), index.root()});
    }

    bool done() const { return boxes_.empty() && angles_.empty(); }

    xcRadian next() {
        while (!boxes_.empty() && (angles_.empty() || boxes_.top().bound < angles_.top()))
            open();
        const double a = angles_.top();
        angles_.pop();
        return xcRadian(a);
    }

  private:
    void open() {
        const EdgeNode node = boxes_.top().node;
        boxes_.pop();
        if (node.level == 0) {
            for (std::size_t k = index_.firstEdge(node); k < index_.lastEdge(node); ++k)
                angles_.push(vertexAngle(p_[k], point_).toDouble());
            return;
        }
        for (std::size_t c = index_.firstChild(node); c < index_.lastChild(node); ++c) {
            const EdgeNode child{node.level - 1, c};
            boxes_.push({angleBound(index_.box(child), point_, scale_), child});
        }
    }

    const EdgeIndex& index_;
    const OutlineView& p_;
    xcVector<2> point_;
    double scale_;
    std::priority_queue<Pending, std::vector<Pending>, std::greater<Pending>> boxes_;
    std::priority_queue<double, std::vector<double>, std::greater<double>> angles_;
};

// rayDirection over the angles as the index produces them, stopping at the first gap wider
// than `threshold`. False when none shows among the first kAngleSearchLimit angles (or before
// the last, whose gap wraps around): the caller then sorts them all.
bool rayDirectionIndexed(AscendingAngles& angles, double threshold, xcVector<2>& direction) {
    xcRadian previous = angles.next();
    for (std::size_t produced = 1; produced < kAngleSearchLimit && !angles.done(); ++produced) {
        const xcRadian current = angles.next();
        const xcRadian gap = (current - previous).norm();
        if (gap.toDouble() > threshold) {
            direction = xcVector<2>(1.0, previous + gap / 2.0);
            return true;
        }
        previous = current;
    }
    return false;
}

// The ray's direction from every vertex direction, sorted by `sort`; false when a vertex lies on
// the point (a NaN distance also counts as "on the vertex", so no NaN angle reaches the sort).
template <class Sort>
bool directionFromAllAngles(const OutlineView& p, const xcVector<2>& point, double threshold,
                            Sort sort, xcVector<2>& direction) {
    std::vector<xcRadian> angles;
    angles.reserve(p.size());
    for (const xcVector<2>& vertex : p.points()) {
        if (onVertex(vertex, point))
            return false;
        angles.push_back(vertexAngle(vertex, point));
    }
    sort(angles);
    direction = rayDirection(angles, threshold);
    return true;
}

// The count along the ray of length source.reach() in `direction` and, with `bothWays`, the
// smaller of it and the opposite ray's.
long countAlong(const xcVector<2>& point, const xcVector<2>& direction, bool bothWays,
                const RaySource& source) {
    const double reach = source.reach();
    const auto crossings = [&](const xcVector<2>& end) {
        return static_cast<long>(source.hitCount(xcLineSeg(point, end)));
    };
    const long forward = crossings(point + reach * direction);
    if (!bothWays)
        return forward;
    return std::min(forward, crossings(point - reach * direction));
}

}  // namespace

long crossingCount(const OutlineView& outline, const xcRect& bounds, const xcVector<2>& point,
                   bool bothWays, const RaySource& source) {
    if (!bounds.within(point))
        return 0;
    const double threshold = xcPi / static_cast<double>(outline.size());
    const EdgeIndex* index = !outline.closed() || outline.size() < kIndexedContainmentMinVertices ||
                                     !EdgeIndex::accepts(point)
                                 ? nullptr
                                 : source.index();
    xcVector<2> direction;
    bool found = false;
    if (index != nullptr) {
        const double scale = std::max({index->scale(), std::fabs(point.x()), std::fabs(point.y())});
        if (anyVertexOn(*index, outline, point, scale))
            return 1;
        AscendingAngles angles(*index, outline, point, scale);
        found = rayDirectionIndexed(angles, threshold, direction);
    }
    // Seen from a point, the vertices of a smooth outline come in a few runs of rising or falling
    // direction, which merge faster than they sort. Equal angles are equal in every bit but for
    // the sign of a zero, which neither a gap nor a bisector sees, so the ray is the one of the
    // outright sort.
    const auto sortByRuns = [](std::vector<xcRadian>& angles) {
        xn_runSort::sortByRuns(angles, std::less<xcRadian>());
    };
    if (!found && !directionFromAllAngles(outline, point, threshold, sortByRuns, direction))
        return 1;
    return countAlong(point, direction, bothWays, source);
}

namespace {

// The rays of the definition: no index, the diameter from the first vertex, and the hits of the
// edge-by-edge segment query.
class ReferenceRays : public RaySource {
  public:
    explicit ReferenceRays(const OutlineView& outline) : outline_(outline) {}
    const EdgeIndex* index() const override { return nullptr; }
    double reach() const override { return 2.0 * fromFirstVertexCircle(outline_).radius(); }
    std::size_t hitCount(const xcLineSeg& ray) const override {
        return referenceSegmentQuery(outline_, ray, false).size();
    }

  private:
    OutlineView outline_;
};

}  // namespace

long referenceCrossingCount(const OutlineView& outline, const xcVector<2>& point, bool bothWays) {
    if (!boundingRect(outline).within(point))
        return 0;
    const auto sort = [](std::vector<xcRadian>& angles) {
        std::sort(angles.begin(), angles.end());
    };
    xcVector<2> direction;
    if (!directionFromAllAngles(outline, point, xcPi / static_cast<double>(outline.size()), sort,
                                direction))
        return 1;
    return countAlong(point, direction, bothWays, ReferenceRays(outline));
}

}  // namespace cntr::core
