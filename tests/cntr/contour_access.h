// The tests' access to the contour's private query paths (a friend of xcContour): the queries as
// the contour answers them, through its edge index where it serves, and the index itself. Their
// definitions are the core's reference functions (see core_reference.h).
#ifndef CNTR_TESTS_CONTOUR_ACCESS_H
#define CNTR_TESTS_CONTOUR_ACCESS_H

#include <vector>

#include <cntr/contour.h>
#include <cntr/core/edge_index.h>

struct xcContourTestAccess {
    static std::vector<xcVector<2>> intersections(const xcContour& c, const xcLineSeg& seg,
                                                  std::vector<int>& edges, bool includeEndTouches) {
        return c.hitsAlong(seg, edges, includeEndTouches);
    }
    /// The first hit without end touches: through the index (or the plain loop where the index
    /// does not serve).
    static bool firstHit(const xcContour& c, const xcLineSeg& seg, xcVector<2>& point, int& edge) {
        return c.firstHitAlong(seg, point, edge);
    }
    static xcVector<2> closestPoint(const xcContour& c, const xcVector<2>& p) {
        return c.nearestPoint(p, false);
    }
    /// The edge index, built first when the contour qualifies.
    static const cntr::core::EdgeIndex* edgeIndex(const xcContour& c) { return c.edgeIndex(); }
    /// The edge index as the caches hold it, null unless a query built it.
    static const cntr::core::EdgeIndex* builtIndex(const xcContour& c) {
        return c.caches_.edgeIndex.value.get();
    }
};

#endif
