#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include <foundation/exception.h>
#include <foundation/hull.h>
#include <foundation/predicates_detail.h>
#include <foundation/runsort.h>

namespace {

void checkFinite(const std::vector<xcVector<2>>& points) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!std::isfinite(points[i].x()) || !std::isfinite(points[i].y()))
            throw xcMathError::NotFinite(L"convex hull: point " + std::to_wstring(i) +
                                         L" has a non-finite coordinate");
    }
}

// A function object rather than a function pointer, so that std::sort inlines the comparison.
struct LexicographicLess {
    bool operator()(const xcVector<2>& p, const xcVector<2>& q) const {
        return p.x() < q.x() || (p.x() == q.x() && p.y() < q.y());
    }
};

// Appends `p` to a monotone chain under construction, first removing the chain's last vertices
// while they fail to make a strict left turn (this drops collinear points).
void extendChain(std::vector<xcVector<2>>& chain, std::size_t chainStart, const xcVector<2>& p) {
    while (chain.size() >= chainStart + 2 &&
           xn_predicates::orientation(chain[chain.size() - 2], chain.back(), p) <= 0)
        chain.pop_back();
    chain.push_back(p);
}

/// Below this many points the filter costs more than it saves.
constexpr std::size_t kInteriorFilterMinPoints = 64;
/// The directions of the octagon's corners, counter-clockwise from -x: (dx, dy).
constexpr int kOctagonDirections[8][2] = {{-1, 0}, {-1, -1}, {0, -1}, {1, -1},
                                          {1, 0},  {1, 1},   {0, 1},  {-1, 1}};

// The points extreme in the eight directions of kOctagonDirections (the first one met in each),
// counter-clockwise, with consecutive repeats removed: a convex polygon inscribed in the hull.
std::vector<xcVector<2>> extremeOctagon(const std::vector<xcVector<2>>& points) {
    std::size_t best[8] = {};
    double reach[8];
    for (int k = 0; k < 8; ++k)
        reach[k] =
            kOctagonDirections[k][0] * points[0].x() + kOctagonDirections[k][1] * points[0].y();
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double x = points[i].x();
        const double y = points[i].y();
        for (int k = 0; k < 8; ++k) {
            const double r = kOctagonDirections[k][0] * x + kOctagonDirections[k][1] * y;
            if (r > reach[k]) {
                reach[k] = r;
                best[k] = i;
            }
        }
    }
    std::vector<xcVector<2>> octagon;
    for (std::size_t k : best)
        if (octagon.empty() || !(points[k] == octagon.back()))
            octagon.push_back(points[k]);
    while (octagon.size() > 1 && octagon.front() == octagon.back())
        octagon.pop_back();
    return octagon;
}

// Whether `p` lies strictly inside the convex counter-clockwise polygon `polygon` (exactly):
// strictly left of every side. Side `hint` is tried first and, when another side has `p` on its
// right or on its line, becomes that side: points taken along a contour tend to lie outside the
// same side as the point before.
bool strictlyInside(const std::vector<xcVector<2>>& polygon, const xcVector<2>& p,
                    std::size_t& hint) {
    const auto leftOfSide = [&](std::size_t k) {
        return xn_predicates::orientation(polygon[k], polygon[k + 1 == polygon.size() ? 0 : k + 1], p) > 0;
    };
    if (!leftOfSide(hint))
        return false;
    for (std::size_t k = 0; k < polygon.size(); ++k) {
        if (k != hint && !leftOfSide(k)) {
            hint = k;
            return false;
        }
    }
    return true;
}

// The points that can be hull vertices, as indices into `points` in their order: all but those
// strictly inside the octagon of extreme points, which lie strictly inside the hull. The exact
// test never drops a point on the hull's boundary, so the hull of what remains is the hull of all
// points, vertex for vertex. Indices rather than copies: a quarter of the memory to fill.
std::vector<std::uint32_t> possibleHullVertices(const std::vector<xcVector<2>>& points) {
    std::vector<std::uint32_t> kept;
    kept.reserve(points.size());
    const std::vector<xcVector<2>> octagon = extremeOctagon(points);
    std::size_t hint = 0;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (octagon.size() < 3 || !strictlyInside(octagon, points[i], hint))
            kept.push_back(static_cast<std::uint32_t>(i));
    return kept;
}

bool hasNegativeZero(const std::vector<xcVector<2>>& points) {
    for (const xcVector<2>& p : points)
        if ((p.x() == 0.0 && std::signbit(p.x())) || (p.y() == 0.0 && std::signbit(p.y())))
            return true;
    return false;
}

// Andrew's monotone chain over the `count` distinct points pointAt(0), ..., pointAt(count - 1),
// given in lexicographic order: the lower chain left to right, then the upper chain right to
// left.
template <class PointAt>
void chainHull(std::size_t count, PointAt pointAt, std::vector<xcVector<2>>& hull) {
    std::vector<xcVector<2>> result;
    if (count <= 2) {
        for (std::size_t i = 0; i < count; ++i) result.push_back(pointAt(i));
        hull = std::move(result);
        return;
    }
    result.reserve(count + 1);
    for (std::size_t i = 0; i < count; ++i)
        extendChain(result, 0, pointAt(i));
    const std::size_t upperStart = result.size() - 1;
    for (std::size_t i = count - 1; i-- > 0;)
        extendChain(result, upperStart, pointAt(i));
    result.pop_back();  // the upper chain ends where the lower one began
    hull = std::move(result);
}

// The hull of every point: std::sort of the points themselves, then the chain.
void hullBySort(std::vector<xcVector<2>> sorted, std::vector<xcVector<2>>& hull) {
    std::sort(sorted.begin(), sorted.end(), LexicographicLess());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    chainHull(sorted.size(), [&](std::size_t i) { return sorted[i]; }, hull);
}

// The hull through the indices of the points the octagon leaves, sorted by merging their runs.
// Points that compare equal in the lexicographic order are equal in every bit unless a
// coordinate is -0 (equal to 0), so, without -0, any way of sorting gives std::sort's sequence of
// points and the hull of every point, bit for bit.
void hullByIndices(const std::vector<xcVector<2>>& points, std::vector<xcVector<2>>& hull) {
    std::vector<std::uint32_t> order = possibleHullVertices(points);
    const auto less = [&points](std::uint32_t a, std::uint32_t b) {
        return LexicographicLess()(points[a], points[b]);
    };
    xn_runSort::sortByRuns(order, less);
    order.erase(std::unique(order.begin(), order.end(),
                            [&points](std::uint32_t a, std::uint32_t b) { return points[a] == points[b]; }),
                order.end());
    chainHull(order.size(), [&](std::size_t i) { return points[order[i]]; }, hull);
}

}  // namespace

void xfConvexHull(const std::vector<xcVector<2>>& points, std::vector<xcVector<2>>& hull) {
    checkFinite(points);
    // Small inputs (where the filter costs more than it saves) and inputs beyond 32-bit indices
    // are sorted outright; with a -0 the points the filter keeps are.
    if (points.size() < kInteriorFilterMinPoints ||
        points.size() > std::numeric_limits<std::uint32_t>::max()) {
        hullBySort(points, hull);
        return;
    }
    if (hasNegativeZero(points)) {
        std::vector<xcVector<2>> kept;
        for (std::uint32_t i : possibleHullVertices(points)) kept.push_back(points[i]);
        hullBySort(std::move(kept), hull);
        return;
    }
    hullByIndices(points, hull);
}

void xn_hullDetail::convexHullOfEveryPoint(const std::vector<xcVector<2>>& points,
                                           std::vector<xcVector<2>>& hull) {
    checkFinite(points);
    hullBySort(points, hull);
}
