// The tests' access to the contour's private reference paths (a friend of xcContour): the
// edge-by-edge definitions that the indexed queries must reproduce.
#ifndef CNTR_TESTS_CONTOUR_ACCESS_H
#define CNTR_TESTS_CONTOUR_ACCESS_H

#include <optional>
#include <vector>

#include <cntr/contour.h>

struct xcContourTestAccess {
    static std::vector<xcVector<2>> plainIntersections(const xcContour& c, const xcLineSeg& seg,
                                                       std::vector<int>& edges,
                                                       bool includeEndTouches) {
        return c.hitsAlong(seg, edges, includeEndTouches, true);
    }
    static std::vector<xcVector<2>> intersections(const xcContour& c, const xcLineSeg& seg,
                                                  std::vector<int>& edges, bool includeEndTouches) {
        return c.hitsAlong(seg, edges, includeEndTouches, false);
    }
    /// The first hit without end touches: through the index (or the plain loop where the index
    /// does not serve) or, with `plain`, from every edge.
    static bool firstHit(const xcContour& c, const xcLineSeg& seg, xcVector<2>& point, int& edge,
                         bool plain) {
        return c.firstHitAlong(seg, point, edge, plain);
    }
    static bool plainSelfIntersecting(const xcContour& c) { return c.selfIntersectingPlain(); }
    static double plainLength(const xcContour& c) { return c.lengthPlain(); }
    static xcCircle plainFurthestPairCircle(const xcContour& c) {
        return c.furthestPairCirclePlain();
    }
    static std::optional<bool> sweptSelfIntersecting(const xcContour& c) {
        return c.selfIntersectingSwept();
    }
    static xcVector<2> plainClosestPoint(const xcContour& c, const xcVector<2>& p) {
        return c.nearestPoint(p, false, true);
    }
    static xcVector<2> closestPoint(const xcContour& c, const xcVector<2>& p) {
        return c.nearestPoint(p, false, false);
    }
    /// The edge index, built first when the contour qualifies.
    static const xn_contourDetail::EdgeIndex* edgeIndex(const xcContour& c) { return c.edgeIndex(); }
    /// The edge index as the caches hold it, null unless a query built it.
    static const xn_contourDetail::EdgeIndex* builtIndex(const xcContour& c) {
        return c.edgeIndex_.get();
    }
};

#endif
