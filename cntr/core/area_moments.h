// The true moments of the area rings enclose, up to order 3, by Green's theorem over the edges
// (internal header, not installed).
#ifndef CNTR_CORE_AREA_MOMENTS_H
#define CNTR_CORE_AREA_MOMENTS_H

#include <vector>

#include <cntr/area_moments.h>
#include <cntr/export.h>
#include <foundation/vector.h>

namespace cntr::core {

/// The raw moments of order 0 to 3 (mPQ the integral of x^P y^Q), in a frame of its own.
struct RawMoments {
    double m00 = 0.0, m10 = 0.0, m01 = 0.0;
    double m20 = 0.0, m11 = 0.0, m02 = 0.0;
    double m30 = 0.0, m21 = 0.0, m12 = 0.0, m03 = 0.0;

    RawMoments& operator+=(const RawMoments& other);
    RawMoments operator-() const;
};

/// The moments of a ring (the vertices read as closed: the last joins the first) about
/// `origin`, that is in coordinates x - origin.x, y - origin.y, each point weighted by the ring's
/// winding number about it: positive for a counter-clockwise ring with the y axis up. Summed edge
/// by edge; taking an origin near the ring keeps the terms small, so no digits cancel between
/// them when the ring lies far from (0, 0). 0 for fewer than 3 vertices.
CNTR_API RawMoments ringMoments(const std::vector<xcVector<2>>& ring, const xcVector<2>& origin);

/// ringMoments with the sign that makes the ring's area (m00) not negative.
CNTR_API RawMoments unsignedRingMoments(const std::vector<xcVector<2>>& ring,
                                        const xcVector<2>& origin);

/// The full set of moments of a shape from its raw moments about `origin`: the raw moments moved
/// to (0, 0), the central moments (from the moments about origin, where they lose fewest digits),
/// the normalised ones and the Hu invariants, with the conventions of cntr::AreaMoments for an
/// area of 0.
CNTR_API AreaMoments completeMoments(const RawMoments& aboutOrigin, const xcVector<2>& origin);

}  // namespace cntr::core

#endif
