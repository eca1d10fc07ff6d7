// The prepared point locator: band tables over the edges, and the exact crossing count of a
// ray through one band.
#include <cntr/core/point_locator.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace cntr::core {

namespace {

constexpr std::size_t kMaxVertices = std::numeric_limits<std::uint32_t>::max() - 1;

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

// As many bands as edges, or fewer so that the band lists hold about 2 entries per edge
// beyond one per edge: the lists hold about edges + coveredHeight / bandHeight entries.
std::size_t chooseBandCount(std::size_t edges, double height, double coveredHeight) {
    if (edges == 0 || !(height > 0.0))
        return 1;
    const double byCover = coveredHeight > 0.0 ? 2.0 * static_cast<double>(edges) * height /
                                                     coveredHeight
                                               : static_cast<double>(edges);
    const double count = std::min(static_cast<double>(edges), byCover);
    return count < 1.0 ? 1 : static_cast<std::size_t>(count);
}

}  // namespace

PointLocator::PointLocator(const std::vector<const std::vector<xcVector<2>>*>& rings) {
    std::size_t total = 0;
    for (const std::vector<xcVector<2>>* ring : rings)
        total += ring->empty() ? 0 : ring->size() + 1;
    if (total > kMaxVertices)
        throw std::length_error("point locator: too many vertices");
    vertices_.reserve(total);
    std::vector<std::uint32_t> edgeStarts;
    edgeStarts.reserve(total);
    for (const std::vector<xcVector<2>>* ring : rings) {
        if (ring->empty())
            continue;
        for (std::size_t i = 0; i < ring->size(); ++i)
            edgeStarts.push_back(static_cast<std::uint32_t>(vertices_.size() + i));
        vertices_.insert(vertices_.end(), ring->begin(), ring->end());
        vertices_.push_back(ring->front());
    }
    edgeCount_ = edgeStarts.size();
    if (vertices_.empty())
        return;

    minX_ = maxX_ = vertices_.front().x();
    minY_ = maxY_ = vertices_.front().y();
    double coveredHeight = 0.0;
    for (const xcVector<2>& v : vertices_) {
        minX_ = std::min(minX_, v.x());
        maxX_ = std::max(maxX_, v.x());
        minY_ = std::min(minY_, v.y());
        maxY_ = std::max(maxY_, v.y());
    }
    for (std::uint32_t e : edgeStarts)
        coveredHeight += std::fabs(vertices_[e + 1].y() - vertices_[e].y());
    const double height = maxY_ - minY_;
    const std::size_t bands = chooseBandCount(edgeCount_, height, coveredHeight);
    bandScale_ = height > 0.0 ? static_cast<double>(bands) / height : 0.0;
    if (!std::isfinite(bandScale_))
        bandScale_ = 0.0;  // a height so small that its inverse overflows: one band

    // Counting pass, then the prefix sums, then the filling pass.
    bandStart_.assign(bands + 1, 0);
    for (std::uint32_t e : edgeStarts) {
        const double low = std::min(vertices_[e].y(), vertices_[e + 1].y());
        const double high = std::max(vertices_[e].y(), vertices_[e + 1].y());
        for (std::size_t b = bandOf(low), last = bandOf(high); b <= last; ++b)
            ++bandStart_[b + 1];
    }
    std::uint64_t entries = 0;
    for (std::size_t b = 1; b <= bands; ++b) {
        entries += bandStart_[b];
        if (entries > std::numeric_limits<std::uint32_t>::max())
            throw std::length_error("point locator: too many band entries");
        bandStart_[b] = static_cast<std::uint32_t>(entries);
    }
    bandEdges_.resize(static_cast<std::size_t>(entries));
    std::vector<std::uint32_t> next(bandStart_.begin(), bandStart_.end() - 1);
    for (std::uint32_t e : edgeStarts) {
        const double low = std::min(vertices_[e].y(), vertices_[e + 1].y());
        const double high = std::max(vertices_[e].y(), vertices_[e + 1].y());
        for (std::size_t b = bandOf(low), last = bandOf(high); b <= last; ++b)
            bandEdges_[next[b]++] = e;
    }
}

// Monotone in y (a rounded difference, a positive factor and a truncation), so an edge listed
// in the bands of its lowest and highest y is listed in the band of every y between them.
std::size_t PointLocator::bandOf(double y) const {
    const double scaled = (y - minY_) * bandScale_;
    const std::size_t last = bandStart_.size() - 2;
    if (!(scaled > 0.0))
        return 0;
    return scaled >= static_cast<double>(last) ? last : static_cast<std::size_t>(scaled);
}

xcRingLocation PointLocator::locate(const xcVector<2>& p) const {
    if (vertices_.empty() || p.x() < minX_ || p.x() > maxX_ || p.y() < minY_ || p.y() > maxY_)
        return xcRingLocation::outside;
    const std::size_t band = bandOf(p.y());
    bool inside = false;
    for (std::uint32_t k = bandStart_[band], end = bandStart_[band + 1]; k < end; ++k) {
        const xcVector<2>& a = vertices_[bandEdges_[k]];
        const xcVector<2>& b = vertices_[bandEdges_[k] + 1];
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
    if (vertices_.empty() || p.x() < minX_ - distance || p.x() > maxX_ + distance ||
        p.y() < minY_ - distance || p.y() > maxY_ + distance)
        return false;
    const double limit = distance * distance;
    for (std::size_t band = bandOf(p.y() - distance), last = bandOf(p.y() + distance);
         band <= last; ++band) {
        for (std::uint32_t k = bandStart_[band], end = bandStart_[band + 1]; k < end; ++k) {
            const xcVector<2>& a = vertices_[bandEdges_[k]];
            const xcVector<2>& b = vertices_[bandEdges_[k] + 1];
            if (squaredDistanceToEdge(p, a, b) <= limit)
                return true;
        }
    }
    return false;
}

std::size_t PointLocator::memoryBytes() const {
    return vertices_.capacity() * sizeof(xcVector<2>) +
           bandStart_.capacity() * sizeof(std::uint32_t) +
           bandEdges_.capacity() * sizeof(std::uint32_t);
}

}  // namespace cntr::core
