// Helpers shared by the region's sources (internal header, not installed).
#ifndef CNTR_REGION_DETAIL_H
#define CNTR_REGION_DETAIL_H

#include <cntr/region.h>

namespace xn_regionDetail {

/// The region as a mutable object, for the queries (of itself or of a hole reached through a
/// const handle) that are non-const only because they fill caches. Every cache field of
/// contours and regions is mutable, so these calls change nothing else.
inline xcRegion& cacheFilling(const xcRegion& region) {
    return const_cast<xcRegion&>(region);
}

/// The outline (contour base) of a region, for the contour's own queries on it.
inline xcContour& outlineOf(const xcRegion& region) {
    return cacheFilling(region);
}

}  // namespace xn_regionDetail

#endif
