// The tests' access to the region's private operations (a friend of xcRegion).
#ifndef CNTR_TESTS_REGION_ACCESS_H
#define CNTR_TESTS_REGION_ACCESS_H

#include <cntr/region.h>

struct xcRegionTestAccess {
    static void splice(const xcRegion& region, const xcRegion& other, xcRegion& result) {
        region.splice(other, result);
    }
    static long insideCount(const xcRegion& region, const xcVector<2>& point, bool bothWays) {
        return region.insideCount(point, bothWays);
    }
    static std::size_t hitCount(const xcRegion& region, const xcLineSeg& seg, bool touches) {
        return region.hitCount(seg, touches);
    }
    static bool firstHit(const xcRegion& region, const xcLineSeg& seg, xcVector<2>& point,
                         int& edge) {
        return region.firstHitAlong(seg, point, edge);
    }
    static void outerHullRegularize(const xcRegion& region, xcRegion& result, bool full) {
        region.outerHullRegularize(result, full);
    }
};

#endif
