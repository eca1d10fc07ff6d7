// The prepared point locator: band tables over the edges, and the exact crossing count of a
// ray through one band.
#include <cntr/core/point_locator.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace cntr::core {

namespace {

// Whether p lies on the closed segment a-b (a point when a == b).
bool onEdge(const xcVector<2>& p, const xcVector<2>& a, const xcVector<2>& b) {
    if (p.x() < std::min(a.x(), b.x()) || p.x() > std::max(a.x(), b.x()) ||
        p.y() < std::min(a.y(), b.y()) || p.y() > std::max(a.y(), b.y()))
        return false;
    return a == b ? p == a : xfOrientation(a, b, p) == 0;
}

// The squared distance from p to the closed segment a-b, by the clamped projection.
double squaredDistanceToEdge(const xcVector<2>& p, const xcVector<2>& a, const xcVector<2>& b) {
    const double dx = b.x() - a.x();
    const double dy = b.y() - a.y();
    const double lengthSquared = dx * dx + dy * dy;
    double t = 0.0;
    if (lengthSquared > 0.0)
        t = std::clamp(((p.x() - a.x()) * dx + (p.y() - a.y()) * dy) / lengthSquared, 0.0, 1.0);
    const double ex = a.x() + t * dx - p.x();
    const double ey = a.y() + t * dy - p.y();
    return ex * ex + ey * ey;
}

// The band of height y: bands of 1 / scale from minY, the last one (index last) holding every
// height beyond. Monotone in y (a rounded difference, a positive factor and a truncation), so
// an edge listed in the bands of its lowest and highest y is listed in the band of every y
// between them.
inline std::size_t bandIndex(double y, double minY, double scale, std::size_t last) {
    const double scaled = (y - minY) * scale;
    if (!(scaled > 0.0))
        return 0;
    return scaled >= static_cast<double>(last) ? last : static_cast<std::size_t>(scaled);
}

// One band for every four edges, or fewer so that the lists hold at most about two entries per
// edge beyond one per edge (they hold about edges + coveredHeight / bandHeight entries). Where
// the edges cover each height about twice (a blob's outline) the first bound holds: few bands
// keep the tables small, whose first touch costs more than filling them, and a query reads
// about six edges. Where they cover it k times (spiky outlines) there are 2 edges / k bands,
// and a query reads about 1.5 k edges.
std::size_t chooseBandCount(std::size_t edges, double height, double coveredHeight) {
    if (edges == 0 || !(height > 0.0))
        return 1;
    const double quarter = 0.25 * static_cast<double>(edges);
    const double byCover =
        coveredHeight > 0.0 ? 2.0 * static_cast<double>(edges) * height / coveredHeight : quarter;
    const double count = std::min(quarter, byCover);
    return count < 1.0 ? 1 : static_cast<std::size_t>(count);
}

}  // namespace

PointLocator::PointLocator(std::vector<const std::vector<xcVector<2>>*> rings) {
    std::uint64_t edges = 0;
    for (const std::vector<xcVector<2>>* ring : rings) {
        if (ring->empty())
            continue;
        rings_.push_back(ring);
        ringFirstEdge_.push_back(static_cast<std::uint32_t>(edges));
        edges += ring->size();
        if (edges >= std::numeric_limits<std::uint32_t>::max())
            throw std::length_error("point locator: too many edges");
    }
    ringFirstEdge_.push_back(static_cast<std::uint32_t>(edges));
    if (rings_.empty())
        return;

    const xcVector<2>& first = rings_.front()->front();
    minX_ = maxX_ = first.x();
    minY_ = maxY_ = first.y();
    double coveredHeight = 0.0;
    for (const std::vector<xcVector<2>>* ring : rings_) {
        double previousY = ring->back().y();
        for (const xcVector<2>& p : *ring) {
            minX_ = std::min(minX_, p.x());
            maxX_ = std::max(maxX_, p.x());
            minY_ = std::min(minY_, p.y());
            maxY_ = std::max(maxY_, p.y());
            coveredHeight += std::fabs(p.y() - previousY);
            previousY = p.y();
        }
    }
    const double height = maxY_ - minY_;
    const std::size_t bands = chooseBandCount(static_cast<std::size_t>(edges), height, coveredHeight);
    bandScale_ = height > 0.0 ? static_cast<double>(bands) / height : 0.0;
    if (!std::isfinite(bandScale_))
        bandScale_ = 0.0;  // a height so small that its inverse overflows: one band

    // Every edge's bands, from the lower to the higher of its ends' bands: counted first (the
    // vertices' bands kept for the second pass), then each count turned into the end of its
    // band's list, then each list filled from the back, which moves that end down to the list's
    // start.
    const std::size_t last = bands - 1;
    std::vector<std::uint32_t> vertexBand(static_cast<std::size_t>(edges));
    bandStart_.assign(bands + 1, 0);
    std::uint64_t entries = 0;
    std::size_t v = 0;
    for (const std::vector<xcVector<2>>* ring : rings_) {
        const std::size_t first = v;
        for (const xcVector<2>& p : *ring)
            vertexBand[v++] = static_cast<std::uint32_t>(bandIndex(p.y(), minY_, bandScale_, last));
        for (std::size_t k = first; k < v; ++k) {
            const std::uint32_t a = vertexBand[k];
            const std::uint32_t b = vertexBand[k + 1 == v ? first : k + 1];
            const std::uint32_t low = std::min(a, b), high = std::max(a, b);
            for (std::uint32_t band = low; band <= high; ++band)
                ++bandStart_[band];
            entries += high - low + 1;
        }
    }
    if (entries > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("point locator: too many band entries");
    for (std::size_t b = 1; b < bands; ++b)
        bandStart_[b] += bandStart_[b - 1];
    bandStart_[bands] = static_cast<std::uint32_t>(entries);
    bandEdges_.resize(static_cast<std::size_t>(entries));
    v = 0;
    for (const std::vector<xcVector<2>>* ring : rings_) {
        const std::size_t first = v;
        v += ring->size();
        for (std::size_t k = first; k < v; ++k) {
            const std::uint32_t a = vertexBand[k];
            const std::uint32_t b = vertexBand[k + 1 == v ? first : k + 1];
            const std::uint32_t low = std::min(a, b), high = std::max(a, b);
            for (std::uint32_t band = low; band <= high; ++band)
                bandEdges_[--bandStart_[band]] = static_cast<std::uint32_t>(k);
        }
    }
}

// The ring of an edge is found by a binary search over the rings' first edges (none for one
// ring).
inline PointLocator::EdgeEnds PointLocator::edgeEnds(std::uint32_t edge) const {
    std::size_t r = 0;
    if (rings_.size() > 1)
        r = static_cast<std::size_t>(std::upper_bound(ringFirstEdge_.begin() + 1,
                                                      ringFirstEdge_.end() - 1, edge) -
                                     (ringFirstEdge_.begin() + 1));
    const std::vector<xcVector<2>>& ring = *rings_[r];
    const std::size_t k = edge - ringFirstEdge_[r];
    return {ring[k], ring[k + 1 == ring.size() ? 0 : k + 1]};
}

xcRingLocation PointLocator::locate(const xcVector<2>& p) const {
    if (rings_.empty() || p.x() < minX_ || p.x() > maxX_ || p.y() < minY_ || p.y() > maxY_)
        return xcRingLocation::outside;
    const std::size_t band = bandIndex(p.y(), minY_, bandScale_, bandCount() - 1);
    bool inside = false;
    for (std::uint32_t k = bandStart_[band], end = bandStart_[band + 1]; k < end; ++k) {
        const EdgeEnds ends = edgeEnds(bandEdges_[k]);
        const xcVector<2>& a = ends.start;
        const xcVector<2>& b = ends.end;
        const bool aAbove = a.y() > p.y();
        if (aAbove == (b.y() > p.y())) {
            // No crossing of p's height (half-open: a vertex at that height counts as below);
            // p may still be an end, or lie on a horizontal edge.
            if ((a.y() == p.y() || b.y() == p.y()) && onEdge(p, a, b))
                return xcRingLocation::boundary;
            continue;
        }
        // The edge crosses p's height: to the left of p (the ray to -x meets it), to its right,
        // or through p. Only an edge whose x range holds p needs the orientation.
        if (a.x() < p.x() && b.x() < p.x()) {
            inside = !inside;
            continue;
        }
        if (a.x() > p.x() && b.x() > p.x())
            continue;
        const int side = xfOrientation(a, b, p);
        if (side == 0)
            return xcRingLocation::boundary;
        // Going up, the crossing is left of p when p lies right of the edge; going down, when
        // p lies left of it.
        if ((side < 0) == !aAbove)
            inside = !inside;
    }
    return inside ? xcRingLocation::inside : xcRingLocation::outside;
}

bool PointLocator::nearEdge(const xcVector<2>& p, double distance) const {
    if (rings_.empty() || p.x() < minX_ - distance || p.x() > maxX_ + distance ||
        p.y() < minY_ - distance || p.y() > maxY_ + distance)
        return false;
    const double limit = distance * distance;
    const std::size_t lastBand = bandCount() - 1;
    for (std::size_t band = bandIndex(p.y() - distance, minY_, bandScale_, lastBand),
                     last = bandIndex(p.y() + distance, minY_, bandScale_, lastBand);
         band <= last; ++band) {
        for (std::uint32_t k = bandStart_[band], end = bandStart_[band + 1]; k < end; ++k) {
            const EdgeEnds ends = edgeEnds(bandEdges_[k]);
            if (squaredDistanceToEdge(p, ends.start, ends.end) <= limit)
                return true;
        }
    }
    return false;
}

std::size_t PointLocator::memoryBytes() const {
    return rings_.capacity() * sizeof(rings_[0]) +
           ringFirstEdge_.capacity() * sizeof(std::uint32_t) +
           bandStart_.capacity() * sizeof(std::uint32_t) +
           bandEdges_.capacity() * sizeof(std::uint32_t);
}

}  // namespace cntr::core
