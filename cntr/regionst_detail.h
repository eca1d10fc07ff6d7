// Helpers shared by the region set's sources (internal header, not installed).
#ifndef CNTR_REGIONST_DETAIL_H
#define CNTR_REGIONST_DETAIL_H

#include <cntr/region.h>
#include <foundation/handle.h>

namespace xn_regionSetDetail {

/// The region behind a set's const handle, for the region queries that fill the region's
/// caches and are therefore non-const members (centre of mass, inertia, enclosing rectangle,
/// intersections) although they change no geometry. Every region reaches a set as an object
/// created by new, never as a const object, so the cast is well defined.
inline xcRegion& queried(const xcPtrHandle_const<xcRegion>& region) {
    return const_cast<xcRegion&>(*region);
}

/// Throws xcContourDefs::BadParams("region set cannot hold a null region") when some handle
/// of `regions` is null.
void checkNoNullRegion(const std::vector<xcPtrHandle_const<xcRegion>>& regions);

}  // namespace xn_regionSetDetail

#endif
