// Shared helpers of the region set tests: a probe that exposes the protected members and counts
// the cache resets, region builders, readable printing and exception checks.
#ifndef CNTR_TESTS_REGIONST_TESTING_H
#define CNTR_TESTS_REGIONST_TESTING_H

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <cntr/regionst.h>

#include "region_testing.h"

/// A region set that exposes the protected members to the tests and counts calls of the cache
/// reset.
class RegionSetProbe : public xcRegionSet {
  public:
    using xcRegionSet::xcRegionSet;
    RegionSetProbe(const RegionSetProbe&) = default;
    RegionSetProbe& operator=(const RegionSetProbe&) = default;

    using CacheState = xn_regionSetDetail::RegionSetCaches;
    using xcRegionSet::cacheState;
    using xcRegionSet::checkEmptyRegionSet;
    using xcRegionSet::makeDataConsistentWithPoints;
    using xcRegionSet::makePointsConsistentWithData;
    using xcRegionSet::setRegions;

    void resetCaches() { cleanCacheInfo(); }

    int cleanCalls = 0;

  protected:
    void cleanCacheInfo() override {
        ++cleanCalls;
        xcRegionSet::cleanCacheInfo();
    }
};

using RegionHandles = std::vector<ConstRegionHandle>;

/// The axis-aligned rectangle [x0, x1] x [y0, y1] as a counter-clockwise outline starting at
/// (x0, y0).
inline Points rectangle(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

/// A new region (mode keepOutline) of the rectangle [x0, x1] x [y0, y1].
inline RegionHandle box(double x0, double y0, double x1, double y1) {
    return regionOf(rectangle(x0, y0, x1, y1));
}

/// A new region of `outline` with one hole of outline `hole`.
inline RegionHandle regionWithHole(const Points& outline, const Points& hole) {
    RegionHandle r = regionOf(outline);
    r->holes(RegionHandles{ConstRegionHandle(regionOf(hole))});
    return r;
}

/// The outline (0,0), (2,2), (2,0), (0,2): two triangles meeting where the edges cross at (1,1).
inline Points bowTie() {
    return {{0, 0}, {2, 2}, {2, 0}, {0, 2}};
}

inline void PrintTo(const xcRegionSet& s, std::ostream* os) {
    xcRegionSet copy(s);
    const RegionHandles regions = copy.regions();
    *os << "region set of " << regions.size() << " regions {";
    for (std::size_t i = 0; i < regions.size(); ++i) {
        *os << (i ? "; " : "");
        PrintTo(static_cast<const xcContour&>(*regions[i]), os);
    }
    *os << "}";
}

/// Expects EmptyRegionSet (number 0x10004682, empty message) from `call`.
template <class Call>
void expectEmptyRegionSet(Call call) {
    expectThrowWith<xcContourDefs::EmptyRegionSet>(call, 0x10004682, L"");
}

#endif
