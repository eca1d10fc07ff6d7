// The one axis-aligned box of the geometry core (internal header, not installed).
#ifndef CNTR_CORE_BOX_H
#define CNTR_CORE_BOX_H

#include <algorithm>
#include <cmath>

#include <foundation/geometry.h>
#include <foundation/vector.h>

namespace cntr::core {

/// An axis-aligned box held as its extreme coordinates, borders included. The default box is
/// empty (min > max); growing it by a point with a NaN coordinate leaves that coordinate's range
/// as it was, so NaN vertices take no part in a box.
struct Box {
    double minX = HUGE_VAL;
    double minY = HUGE_VAL;
    double maxX = -HUGE_VAL;
    double maxY = -HUGE_VAL;

    /// The zero-size box at `p`.
    static Box at(const xcVector<2>& p) { return {p.x(), p.y(), p.x(), p.y()}; }
    /// The box of the two points (the box of an edge).
    static Box spanning(const xcVector<2>& a, const xcVector<2>& b) {
        Box box = at(b);
        box.grow(a);
        return box;
    }
    /// The box of a rectangle's corners.
    static Box of(const xcRect& r) { return {r.ul().x(), r.ul().y(), r.lr().x(), r.lr().y()}; }
    /// The box of the points [first, last).
    template <class Iterator>
    static Box around(Iterator first, Iterator last) {
        Box box;
        for (; first != last; ++first)
            box.grow(*first);
        return box;
    }

    /// Whether the box holds no point.
    bool isEmpty() const { return !(minX <= maxX && minY <= maxY); }

    /// Grows the box to hold `p` (a NaN coordinate changes nothing).
    void grow(const xcVector<2>& p) {
        minX = std::min(minX, p.x());
        minY = std::min(minY, p.y());
        maxX = std::max(maxX, p.x());
        maxY = std::max(maxY, p.y());
    }
    /// Grows the box to hold `o`.
    void merge(const Box& o) {
        minX = std::min(minX, o.minX);
        minY = std::min(minY, o.minY);
        maxX = std::max(maxX, o.maxX);
        maxY = std::max(maxY, o.maxY);
    }

    /// Whether the two boxes share a point; touching counts.
    bool overlaps(const Box& o) const {
        return maxX >= o.minX && minX <= o.maxX && maxY >= o.minY && minY <= o.maxY;
    }
    /// Whether the x-ranges (or y-ranges) share a point; touching counts.
    bool overlapsInX(const Box& o) const { return maxX >= o.minX && minX <= o.maxX; }
    bool overlapsInY(const Box& o) const { return maxY >= o.minY && minY <= o.maxY; }
    /// Whether the boxes are more than `margin` apart along x or along y.
    bool apart(const Box& o, double margin) const {
        return maxX + margin < o.minX || o.maxX + margin < minX || maxY + margin < o.minY ||
               o.maxY + margin < minY;
    }
    /// Whether `p` lies inside or on the border.
    bool contains(const xcVector<2>& p) const {
        return p.x() >= minX && p.x() <= maxX && p.y() >= minY && p.y() <= maxY;
    }
};

/// The squared distance from `p` to the nearest point of `b` (0 inside). Inline: the nearest
/// point and containment searches call it for every box they consider.
inline double squaredDistance(const Box& b, const xcVector<2>& p) {
    const double dx = std::max({b.minX - p.x(), 0.0, p.x() - b.maxX});
    const double dy = std::max({b.minY - p.y(), 0.0, p.y() - b.maxY});
    return dx * dx + dy * dy;
}

}  // namespace cntr::core

#endif
