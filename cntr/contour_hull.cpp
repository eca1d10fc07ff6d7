// The count operations of the contour's convex hull handle (see contour.h).
//
// They need the complete region class, which converts a region pointer to its counted base.
// Until the region class is part of the library no region object can exist, so the only pointer
// these can receive is null; a non-null one is reported as an internal inconsistency and left
// alone. The region's source replaces these definitions with the real count operations.
#include <cntr/contour.h>

#include <foundation/exception.h>

template <>
void xn_handle_detail::acquire<xcRegion>(const xcRegion* p) {
    if (p) xstd_assert_(__FILE__, __LINE__);
}

template <>
void xn_handle_detail::drop<xcRegion>(const xcRegion* p) {
    if (p) xstd_assert_(__FILE__, __LINE__);
}
