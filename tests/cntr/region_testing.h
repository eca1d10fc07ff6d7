// Shared helpers of the region tests: a probe subclass that exposes the protected members and
// counts the cache resets, readable printing of regions, common shapes and exception checks.
#ifndef CNTR_TESTS_REGION_TESTING_H
#define CNTR_TESTS_REGION_TESTING_H

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>

#include "contour_testing.h"

/// A region that exposes the protected members to the tests and counts calls of the cache
/// reset. It constructs the virtual contour base itself, as every class deriving from a region
/// must.
class RegionProbe : public xcRegion {
  public:
    RegionProbe() = default;
    explicit RegionProbe(const Points& p) : xcContour(p, true, 0), xcRegion(p) {}
    RegionProbe(const RegionProbe& o) : xcPersistent(), xcRepBase(), xcContour(), xcRegion(o) {}
    RegionProbe& operator=(const RegionProbe& o) {
        xcRegion::operator=(o);
        return *this;
    }

    using CacheState = xn_contourDetail::ContourCaches;
    using xcContour::cacheState;
    using xcRegion::checkEmptyContour;
    using RegionCacheState = xn_regionDetail::RegionCaches;
    using xcRegion::regionCacheState;

    /// The virtual cache reset, as the region's mutations call it.
    void resetCaches() { cleanCacheInfo(); }

    int cleanCalls = 0;

  protected:
    void cleanCacheInfo() override {
        ++cleanCalls;
        xcRegion::cleanCacheInfo();
    }
};

using RegionHandle = xcPtrHandle<xcRegion>;
using ConstRegionHandle = xcPtrHandle_const<xcRegion>;

inline void PrintTo(const xcRegion& r, std::ostream* os) {
    PrintTo(static_cast<const xcContour&>(r), os);
    *os << ", " << r.holes().size() << " holes";
}

/// The axis-aligned square of side `side` with lower left corner (x, y), counter-clockwise.
inline Points square(double x, double y, double side) {
    return {{x, y}, {x + side, y}, {x + side, y + side}, {x, y + side}};
}

/// The same square, clockwise.
inline Points clockwiseSquare(double x, double y, double side) {
    return {{x, y}, {x, y + side}, {x + side, y + side}, {x + side, y}};
}

/// A new region of `p` (mode keepOutline) held by a handle.
inline RegionHandle regionOf(const Points& p) {
    return RegionHandle(new xcRegion(p));
}

/// Expects `call` to throw `E` with the given error number and message.
template <class E, class Call>
void expectThrowWith(Call call, long number, const std::wstring& message) {
    try {
        call();
        ADD_FAILURE() << "nothing thrown";
    } catch (const E& e) {
        EXPECT_EQ(e.errorNumber(), number);
        EXPECT_EQ(e.message(), message);
    }
}

/// Expects xcContourDefs::BadParams with `message`.
template <class Call>
void expectBadParams(Call call, const std::wstring& message) {
    expectThrowWith<xcContourDefs::BadParams>(call, 0x10004683, message);
}

/// Expects every flag of the measures that regions and region sets share to be clear, and both
/// areas 0 (what a reset leaves).
template <class Shape>
void expectNoMeasureCache(const xn_contourDetail::MeasureCaches<Shape>& c) {
    for (int holes = 0; holes < 2; ++holes) {
        EXPECT_FALSE(c.center[holes].valid) << holes;
        EXPECT_FALSE(c.area[holes].valid) << holes;
        EXPECT_EQ(c.area[holes].value, 0.0) << holes;
        EXPECT_FALSE(c.inertia[holes].valid) << holes;
    }
    EXPECT_FALSE(c.regularized.valid);
    EXPECT_FALSE(c.outerHull.valid);
}

#endif
