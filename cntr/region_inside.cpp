// Point containment: the crossing count of an adaptive ray, and inside with holes.
#include <algorithm>
#include <cmath>
#include <functional>
#include <queue>
#include <vector>

#include <cntr/contour_edgeindex.h>
#include <cntr/region.h>
#include <cntr/region_detail.h>
#include <cntr/tolerances.h>
#include <foundation/runsort.h>

using namespace xn_contourDetail;
using namespace xn_regionDetail;

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

// The pruning margins of the index walks. Distances: a box's distance is shrunk by this
// relative amount and this multiple of the coordinate scale (the rounding of a vertex's
// difference from the point, a few units in the last place). Angles: the rounding of a
// difference moves its angle by up to a few units in the last place of the coordinate scale
// over the length of the difference; this multiple of that ratio (plus an absolute floor) is
// taken off a box's smallest corner angle.
constexpr double kBoxShrink = 1e-12;
constexpr double kScaleRounding = 1e-13;
constexpr double kAngleRounding = 1e-14;
constexpr double kAngleFloor = 1e-12;
// Below this many vertices sorting every angle costs less than the best-first search's queues.
constexpr std::size_t kIndexedContainmentMinVertices = 256;
// The number of angles the best-first search produces before it gives up on finding a gap
// early (the wrap-around gap needs them all) and sorts every angle instead.
constexpr std::size_t kAngleSearchLimit = 256;

// The smallest distance from the point to any point of the box, shrunk for rounding.
double distanceBound(const EdgeBox& b, const xcVector<2>& point, double scale) {
    return std::sqrt(squaredDistance(b, point)) * (1.0 - kBoxShrink) - kScaleRounding * scale;
}

// Boxes whose corner angles come this close to 2 pi may hold a vertex whose angle the
// normalisation rounds to 0.
constexpr double kWrapMargin = 1e-6;

// A lower bound of vertexAngle over the vertices in the box: 0 when the box reaches the ray
// from the point towards +x (where the angles start) or comes close to it from below (where a
// normalised angle may round to 0); otherwise the smallest corner angle, as the box then lies
// on one side of that ray and its angles span the interval its corners span.
double angleBound(const EdgeBox& b, const xcVector<2>& point, double scale) {
    if (b.minY <= point.y() && b.maxY >= point.y() && b.maxX >= point.x()) return 0.0;
    const double corners[4] = {vertexAngle({b.minX, b.minY}, point).toDouble(),
                               vertexAngle({b.maxX, b.minY}, point).toDouble(),
                               vertexAngle({b.minX, b.maxY}, point).toDouble(),
                               vertexAngle({b.maxX, b.maxY}, point).toDouble()};
    if (*std::max_element(corners, corners + 4) > 2.0 * xcPi - kWrapMargin) return 0.0;
    const double reach = std::max(std::sqrt(squaredDistance(b, point)), kOnVertexTolerance);
    return *std::min_element(corners, corners + 4) - kAngleRounding * scale / reach - kAngleFloor;
}

// Whether some vertex of the closed outline lies on the point, through the index (vertex k
// ends edge k and so lies in its leaf's box).
bool anyVertexOn(const EdgeIndex& index, const std::vector<xcVector<2>>& p,
                 const xcVector<2>& point, double scale) {
    bool found = false;
    index.forEachCandidate(
        [&](const EdgeBox& b) { return !found && distanceBound(b, point, scale) <= kOnVertexTolerance; },
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
    AscendingAngles(const EdgeIndex& index, const std::vector<xcVector<2>>& p,
                    const xcVector<2>& point, double scale)
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
    const std::vector<xcVector<2>>& p_;
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

}  // namespace

long xcRegion::insideCount(const xcVector<2>& point, bool bothWays, bool plain) const {
    if (!outlineOf(*this).encloseRect(xcXform<2>::I).within(point))
        return 0;
    const std::vector<xcVector<2>>& p = points();
    const double threshold = xcPi / static_cast<double>(p.size());
    const EdgeIndex* index = plain || !isClosed() || p.size() < kIndexedContainmentMinVertices ||
                                     !EdgeIndex::accepts(point)
                                 ? nullptr
                                 : edgeIndex();
    xcVector<2> direction;
    bool found = false;
    if (index != nullptr) {
        const double scale = std::max({index->scale(), std::fabs(point.x()), std::fabs(point.y())});
        if (anyVertexOn(*index, p, point, scale))
            return 1;
        AscendingAngles angles(*index, p, point, scale);
        found = rayDirectionIndexed(angles, threshold, direction);
    }
    if (!found) {
        // A NaN distance also counts as "on the vertex", so no NaN angle reaches the sort.
        std::vector<xcRadian> angles;
        angles.reserve(p.size());
        for (const xcVector<2>& vertex : p) {
            if (onVertex(vertex, point))
                return 1;
            angles.push_back(vertexAngle(vertex, point));
        }
        // Seen from a point, the vertices of a smooth outline come in a few runs of rising or
        // falling direction, which merge faster than they sort. Equal angles are equal in every
        // bit but for the sign of a zero, which neither a gap nor a bisector sees, so the ray is
        // the one of the outright sort.
        if (plain)
            std::sort(angles.begin(), angles.end());
        else
            xn_runSort::sortByRuns(angles, std::less<xcRadian>());
        direction = rayDirection(angles, threshold);
    }

    const double reach = diameter(xcContourDefs::fromFirstVertex);
    const auto crossings = [&](const xcVector<2>& end) {
        return static_cast<long>(hitCount(xcLineSeg(point, end), false, plain));
    };
    const long forward = crossings(point + reach * direction);
    if (!bothWays)
        return forward;
    return std::min(forward, crossings(point - reach * direction));
}

bool xcRegion::inside(const xcVector<2>& point, bool considerHoles) const {
    const bool inOutline = insideCount(point, false) % 2 == 1;
    if (inOutline && considerHoles)
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            if (hole->inside(point, true))
                return false;
    return inOutline;
}
