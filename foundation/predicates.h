#ifndef FOUNDATION_PREDICATES_H
#define FOUNDATION_PREDICATES_H

#include <cstddef>
#include <vector>

#include <foundation/export.h>
#include <foundation/vector.h>

/// The exact sign of the orientation of (a, b, c), that is of (b - a) x (c - a): +1 when c lies
/// left of the directed line a -> b (counter-clockwise with the y axis up), -1 right of it, 0 on
/// it. A floating-point evaluation decides when its error bound allows; otherwise an exact
/// expansion does. Exact for any finite input in which no three points mix nonzero coordinates
/// more than a factor 2^450 apart; not defined for non-finite coordinates. Never throws.
FOUNDATION_API int xfOrientation(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c);

/// How two closed segments meet, decided with xfOrientation (so exactly).
struct xcSegmentContact {
    enum Kind {
        /// No common point.
        disjoint = 0,
        /// The interiors cross at a single point that is an end of neither segment.
        crossing = 1,
        /// One common point, an end of at least one segment.
        touching = 2,
        /// Collinear with a common part of positive length.
        overlapping = 3
    };
    Kind kind = disjoint;
    /// touching: the common point (a segment end, exact); overlapping: the smallest common
    /// point in (x, then y) order (a segment end, exact); crossing: the crossing point, rounded
    /// from the segments' parameters; disjoint: (0, 0).
    xcVector<2> point;
};

/// The contact of segments a1-a2 and b1-b2. A segment whose ends are equal is a point: it
/// touches the other where it lies on it. Coordinates must be finite. Never throws.
FOUNDATION_API xcSegmentContact xfSegmentContact(const xcVector<2>& a1, const xcVector<2>& a2,
                                                 const xcVector<2>& b1, const xcVector<2>& b2);

/// Where a point lies relative to a ring.
enum class xcRingLocation { outside = 0, boundary = 1, inside = 2 };

/// The location of `p` relative to the closed ring of `ring`'s vertices (the last joins the
/// first; any orientation): boundary when it lies on an edge, else inside when a ray from it
/// crosses the edges an odd number of times (the even-odd rule), else outside. Exact: only
/// comparisons and xfOrientation decide. Fewer than 3 vertices have no inside. Coordinates must
/// be finite. O(n); never throws.
FOUNDATION_API xcRingLocation xfLocateInRing(const xcVector<2>& p,
                                             const std::vector<xcVector<2>>& ring);

#endif
