// The shared storage of the polygon value types and the validity computation over it (internal
// header, not installed).
#ifndef CNTR_POLYGON_DETAIL_H
#define CNTR_POLYGON_DETAIL_H

#include <memory>
#include <mutex>
#include <vector>

#include <cntr/core/edge_index.h>
#include <cntr/core/point_locator.h>
#include <cntr/polygon.h>

namespace cntr {

/// The rings, their bounds and the results computed once on demand. The once-flags make the
/// lazy members safe to fill from any thread: whoever comes first computes, the others wait and
/// then read.
struct Polygon::Data {
    Ring exterior;
    std::vector<Ring> holes;
    xcRect bounds;
    std::size_t vertexCount = 0;

    mutable std::once_flag indexOnce;
    mutable std::vector<std::shared_ptr<const core::EdgeIndex>> indexes;
    mutable std::once_flag validityOnce;
    mutable Validity validity;
    mutable std::once_flag locatorOnce;
    mutable std::unique_ptr<const core::PointLocator> locator;
};

struct MultiPolygon::Data {
    std::vector<Polygon> members;
    xcRect bounds;
    std::size_t vertexCount = 0;

    mutable std::once_flag validityOnce;
    mutable Validity validity;
    mutable std::once_flag locatorOnce;
    mutable std::unique_ptr<const core::PointLocator> locator;
};

namespace detail {

/// The validity of a list of polygons taken as the members of one multipolygon (a polygon is a
/// list of one): see MultiPolygon::validity for the rules and their order. With `named`, the
/// messages name the member of each ring.
Validity validityOf(const std::vector<Polygon>& members, bool named);

}  // namespace detail
}  // namespace cntr

#endif
