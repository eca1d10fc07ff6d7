// The core's reference definitions applied to the tests' shapes: the oracles that the shapes'
// fast paths are held to.
#ifndef CNTR_TESTS_CORE_REFERENCE_H
#define CNTR_TESTS_CORE_REFERENCE_H

#include <vector>

#include <cntr/contour.h>
#include <cntr/core/reference.h>

namespace core_reference {

/// The contour's outline as the core sees it.
inline cntr::core::OutlineView outline(const xcContour& c) {
    return {c.points(), c.isClosed()};
}

/// The segment query's points ordered along `seg`, and their edges.
inline std::vector<xcVector<2>> intersections(const xcContour& c, const xcLineSeg& seg,
                                              std::vector<int>& edges, bool includeEndTouches) {
    std::vector<xcVector<2>> points;
    edges.clear();
    for (const cntr::core::SegmentHit& h :
         cntr::core::referenceSegmentQuery(outline(c), seg, includeEndTouches)) {
        points.push_back(h.point);
        edges.push_back(h.edge);
    }
    return points;
}

/// The first hit along `seg` without end touches.
inline bool firstHit(const xcContour& c, const xcLineSeg& seg, xcVector<2>& point, int& edge) {
    cntr::core::SegmentHit first{};
    if (!cntr::core::referenceFirstHitAlong(outline(c), seg, first))
        return false;
    point = first.point;
    edge = first.edge;
    return true;
}

}  // namespace core_reference

#endif
