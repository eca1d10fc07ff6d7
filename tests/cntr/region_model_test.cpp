#include <cmath>
#include <memory>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <foundation/persistent.h>
#include <foundation/tablet.h>

#include "region_testing.h"

using Defs = xcContourDefs;

namespace {

// The region-level caches that the measures fill on a region with holes: area without and with
// holes, the outline centroid, the with-holes centroid flag and the outline inertia.
void fillRegionCaches(xcRegion& r) {
    r.area(false);
    r.area(true);
    r.centerOfMass(false);
    r.centerOfMass(true);
    r.inertiaMatrix(false);
}

// A 10 x 10 square with a 2 x 2 hole at (4, 4).
RegionProbe squareWithHole() {
    RegionProbe r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{regionOf(square(4, 4, 2))});
    return r;
}

}  // namespace

// ---- construction ----

TEST(RegionModel, DefaultRegionIsEmptyClosedWithoutHoles) {
    const xcRegion r;
    EXPECT_TRUE(r.points().empty());
    EXPECT_TRUE(r.isClosed());
    EXPECT_EQ(r.label(), 0u);
    EXPECT_EQ(r.cachedVectorSize(), 3);
    EXPECT_TRUE(r.holes().empty());
}

TEST(RegionModel, FactoryCreatesDefaultRegion) {
    const xc_Instantiator::MakeFunction make = xc_Instantiator::lookup("xcRegion");
    ASSERT_NE(make, nullptr);
    const std::unique_ptr<xcPersistent> made(make());
    const xcRegion* r = dynamic_cast<const xcRegion*>(made.get());
    ASSERT_NE(r, nullptr);
    EXPECT_TRUE(r->points().empty());
    EXPECT_TRUE(r->isClosed());
    EXPECT_TRUE(r->holes().empty());
    EXPECT_EQ(r->label(), 0u);
}

TEST(RegionModel, FromPointsKeepsVerticesClosedLabelZero) {
    const Points p{{0, 0}, {3, 0}, {0, 4}};
    const xcRegion r(p);
    EXPECT_EQ(r.points(), p);
    EXPECT_TRUE(r.isClosed());
    EXPECT_EQ(r.label(), 0u);
    EXPECT_TRUE(r.holes().empty());
}

TEST(RegionModel, FromPointsModeZeroKeepsSelfIntersectingOutline) {
    // A bow tie: edges (2,0)-(0,2) and (2,2)-(0,0) cross at (1,1). Mode 0 takes it as given.
    const Points bowTie{{0, 0}, {2, 0}, {0, 2}, {2, 2}};
    const xcRegion r(bowTie, Defs::keepOutline);
    EXPECT_EQ(r.points(), bowTie);
    EXPECT_TRUE(r.isSelfIntersecting());
}

TEST(RegionModel, UnknownModeValueBehavesAsKeepOutline) {
    const Points bowTie{{0, 0}, {2, 0}, {0, 2}, {2, 2}};
    const xcRegion r(bowTie, static_cast<Defs::IntersectionMode>(7));
    EXPECT_EQ(r.points(), bowTie);
}

TEST(RegionModel, FromPolygonKeepsRepeatedClosingVertex) {
    const Points p{{0, 0}, {1, 0}, {1, 1}, {0, 0}};
    const xcRegion r{xcPolygon(p)};
    EXPECT_EQ(r.points(), p);
    EXPECT_TRUE(r.isClosed());
    EXPECT_EQ(r.label(), 0u);
}

TEST(RegionModel, FromPolygonThatDoesNotCloseIsClosedRegion) {
    const Points p{{0, 0}, {1, 0}, {1, 1}};
    const xcRegion r{xcPolygon(p)};
    EXPECT_EQ(r.points(), p);
    EXPECT_TRUE(r.isClosed());
}

TEST(RegionModel, FromOpenContourKeepsLabelAndIsClosed) {
    const xcContour c(square(0, 0, 1), false, 42);
    const xcRegion r(c);
    EXPECT_EQ(r.points(), square(0, 0, 1));
    EXPECT_EQ(r.label(), 42u);
    EXPECT_TRUE(r.isClosed());
    // As a closed outline it has 4 edges: the closing edge (0,1)-(0,0) is crossed by y = 0.5.
    xcRegion copy(r);
    EXPECT_EQ(copy.intersections(xcLineSeg({-1, 0.5}, {0.5, 0.5}), true, false).size(), 1u);
}

TEST(RegionModel, FromContourDropsContourCaches) {
    xcContour c(square(0, 0, 1), false);
    c.length();
    c.encloseRect(xcXform<2>::I);
    c.isSelfIntersecting();
    xcRegion r(c);
    // The open contour's length is 3; the closed region's is 4 (computed afresh, not copied).
    EXPECT_DOUBLE_EQ(r.length(), 4.0);
}

TEST(RegionModel, FromContourKeepsCachedVectorSize) {
    xcContour c(square(0, 0, 1), true);
    c.cachedVectorSize(9);
    const xcRegion r(c);
    EXPECT_EQ(r.cachedVectorSize(), 9);
}

TEST(RegionModel, ConstructionLeavesEveryCacheInvalid) {
    const RegionProbe r(square(0, 0, 2));
    expectNoMeasureCache(r.regionCacheState());
    EXPECT_FALSE(r.cacheState().edges.valid);
}

TEST(RegionModel, TwoPointRegionIsAcceptedButNotMeasured) {
    const xcRegion r(Points{{0, 0}, {1, 0}});
    EXPECT_EQ(r.points().size(), 2u);
    expectEmptyContour([&] { r.area(false); });
}

// ---- closed flag ----

TEST(RegionModel, IsClosedTrueIsAcceptedSilently) {
    RegionProbe r(square(0, 0, 1));
    r.area(false);
    const int before = r.cleanCalls;
    r.isClosed(true);
    EXPECT_TRUE(r.isClosed());
    EXPECT_EQ(r.cleanCalls, before);
    EXPECT_TRUE(r.regionCacheState().area[0].valid);
}

TEST(RegionModel, IsClosedFalseThrowsRegionCannotBeSetOpen) {
    xcRegion r(square(0, 0, 1));
    expectThrowWith<Defs::RegionCannotBeSetOpen>([&] { r.isClosed(false); }, 0x10004684, L"");
    EXPECT_TRUE(r.isClosed());
}

TEST(RegionModel, IsClosedFalseThrowsOnEmptyRegion) {
    xcRegion r;
    EXPECT_THROW(r.isClosed(false), Defs::RegionCannotBeSetOpen);
}

TEST(RegionModel, IsClosedFalseThroughContourBaseThrows) {
    xcRegion r(square(0, 0, 1));
    xcContour& asContour = r;
    EXPECT_THROW(asContour.isClosed(false), Defs::RegionCannotBeSetOpen);
    EXPECT_TRUE(asContour.isClosed());
}

// ---- copy and assignment ----

TEST(RegionModel, CopyKeepsCachedAreaValid) {
    RegionProbe r(square(0, 0, 3));
    r.area(false);
    const RegionProbe copy(r);
    EXPECT_TRUE(copy.regionCacheState().area[0].valid);
    EXPECT_EQ(copy.regionCacheState().area[0].value, 9.0);
}

TEST(RegionModel, CopySharesHolesAndCopiesOutline) {
    const RegionProbe r = squareWithHole();
    const xcRegion copy(r);
    EXPECT_EQ(copy.points(), r.points());
    ASSERT_EQ(copy.holes().size(), 1u);
    EXPECT_EQ(copy.holes()[0].rep(), r.holes()[0].rep());
}

TEST(RegionModel, AssignmentCopiesEveryCacheFlagAndValue) {
    RegionProbe r = squareWithHole();
    fillRegionCaches(r);
    RegionProbe target(square(5, 5, 1));
    target = r;
    const RegionProbe::RegionCacheState& s = target.regionCacheState();
    const RegionProbe::RegionCacheState& t = r.regionCacheState();
    EXPECT_TRUE(s.area[0].valid);
    EXPECT_TRUE(s.area[1].valid);
    EXPECT_TRUE(s.center[0].valid);
    EXPECT_TRUE(s.center[1].valid);
    EXPECT_TRUE(s.inertia[0].valid);
    EXPECT_EQ(s.area[0].value, t.area[0].value);
    EXPECT_EQ(s.area[1].value, t.area[1].value);
    EXPECT_EQ(s.center[0].value, t.center[0].value);
    EXPECT_EQ(s.center[1].value, t.center[1].value);
    EXPECT_EQ(target.holes(), r.holes());
    EXPECT_EQ(target.points(), r.points());
}

TEST(RegionModel, AssignmentReplacesHolesOfTarget) {
    RegionProbe target = squareWithHole();
    const xcRegion plain(square(0, 0, 1));
    static_cast<xcRegion&>(target) = plain;
    EXPECT_TRUE(target.holes().empty());
}

TEST(RegionModel, SelfAssignmentChangesNothing) {
    RegionProbe r = squareWithHole();
    r.area(true);
    const ConstRegionHandle hole = r.holes()[0];
    RegionProbe& alias = r;
    r = alias;
    EXPECT_TRUE(r.regionCacheState().area[1].valid);
    ASSERT_EQ(r.holes().size(), 1u);
    EXPECT_EQ(r.holes()[0], hole);
}

// ---- holes ----

TEST(RegionModel, HolesFromMutableHandlesKeepOrderAsConstHandles) {
    xcRegion r(square(0, 0, 10));
    const RegionHandle a = regionOf(square(1, 1, 1));
    const RegionHandle b = regionOf(square(5, 5, 1));
    r.holes(std::vector<RegionHandle>{a, b});
    ASSERT_EQ(r.holes().size(), 2u);
    EXPECT_EQ(r.holes()[0].rep(), a.rep());
    EXPECT_EQ(r.holes()[1].rep(), b.rep());
}

TEST(RegionModel, HolesFromConstHandlesAreAssignedAsGiven) {
    xcRegion r(square(0, 0, 10));
    const std::vector<ConstRegionHandle> holes{ConstRegionHandle(regionOf(square(1, 1, 1))),
                                               ConstRegionHandle(regionOf(square(5, 5, 1)))};
    r.holes(holes);
    EXPECT_EQ(r.holes(), holes);
}

TEST(RegionModel, HolesAreSharedNotCopied) {
    xcRegion r(square(0, 0, 10));
    const RegionHandle hole = regionOf(square(1, 1, 2));
    r.holes(std::vector<RegionHandle>{hole});
    EXPECT_EQ(hole->refCount(), 2);
    // Changing the hole afterwards changes what the region sees (100 - 1 instead of 100 - 4).
    hole->points(square(1, 1, 1));
    EXPECT_DOUBLE_EQ(r.area(true), 99.0);
}

TEST(RegionModel, EmptyHoleListClearsHoles) {
    RegionProbe r = squareWithHole();
    r.holes(std::vector<RegionHandle>{});
    EXPECT_TRUE(r.holes().empty());
}

TEST(RegionModel, HoleSetterDropsCachesFirst) {
    RegionProbe r(square(0, 0, 10));
    r.area(false);
    r.length();
    r.holes(std::vector<RegionHandle>{regionOf(square(1, 1, 1))});
    EXPECT_FALSE(r.regionCacheState().area[0].valid);
    EXPECT_FALSE(r.cacheState().length.valid);
}

TEST(RegionModel, SecondHoleCrossingOutlineThrowsAndKeepsOldHoles) {
    RegionProbe r = squareWithHole();
    const ConstRegionHandle old = r.holes()[0];
    r.area(false);
    // The second hole (8,8)-(12,12) crosses the outline's edges x = 10 and y = 10.
    const std::vector<RegionHandle> holes{regionOf(square(1, 1, 1)), regionOf(square(8, 8, 4))};
    expectBadParams([&] { r.holes(holes); }, L"holes cannot intersect region");
    ASSERT_EQ(r.holes().size(), 1u);
    EXPECT_EQ(r.holes()[0], old);
    // The caches were dropped before the check.
    EXPECT_FALSE(r.regionCacheState().area[0].valid);
}

TEST(RegionModel, ConstHoleCrossingOutlineThrows) {
    xcRegion r(square(0, 0, 10));
    const std::vector<ConstRegionHandle> holes{ConstRegionHandle(regionOf(square(-1, 4, 2)))};
    expectBadParams([&] { r.holes(holes); }, L"holes cannot intersect region");
    EXPECT_TRUE(r.holes().empty());
}

TEST(RegionModel, HoleTouchingOutlineAtVertexIsRefused) {
    // The hole's corner (0,0) is the outline's corner: the touch is reported as a crossing.
    xcRegion r(square(0, 0, 10));
    expectBadParams([&] { r.holes(std::vector<RegionHandle>{regionOf(square(0, 0, 2))}); },
                    L"holes cannot intersect region");
}

TEST(RegionModel, HoleOutsideOutlineIsAccepted) {
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{regionOf(square(20, 20, 2))});
    EXPECT_EQ(r.holes().size(), 1u);
}

TEST(RegionModel, HoleInsideOutlineIsAccepted) {
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{regionOf(clockwiseSquare(2, 2, 3))});
    EXPECT_EQ(r.holes().size(), 1u);
}

TEST(RegionModel, NullHoleIsRefused) {
    xcRegion r(square(0, 0, 10));
    expectBadParams([&] { r.holes(std::vector<RegionHandle>{RegionHandle()}); },
                    L"holes cannot be null");
    expectBadParams([&] { r.holes(std::vector<ConstRegionHandle>{ConstRegionHandle()}); },
                    L"holes cannot be null");
    EXPECT_TRUE(r.holes().empty());
}

TEST(RegionModel, HoleHoldingTheRegionIsRefused) {
    // a holds b as a hole; making a a hole of b would close a cycle.
    const RegionHandle a = regionOf(square(0, 0, 10));
    const RegionHandle b = regionOf(square(2, 2, 2));
    a->holes(std::vector<RegionHandle>{b});
    expectBadParams([&] { b->holes(std::vector<RegionHandle>{a}); },
                    L"holes cannot contain region");
    EXPECT_TRUE(b->holes().empty());
}

TEST(RegionModel, HoleCheckNeedsTwoOutlineVertices) {
    xcRegion r(Points{{0, 0}});
    expectEmptyContour([&] { r.holes(std::vector<RegionHandle>{regionOf(square(5, 5, 1))}); });
}

TEST(RegionModel, EmptyHoleListOnEmptyRegionIsAccepted) {
    xcRegion r;
    r.holes(std::vector<RegionHandle>{});
    EXPECT_TRUE(r.holes().empty());
}

// ---- map ----

TEST(RegionModel, MapTransformsOutlineKeepsLabelDropsHoles) {
    RegionProbe r = squareWithHole();
    r.label(5);
    // Rotation by 90 degrees, then translation (1, 2): (x, y) -> (-y + 1, x + 2).
    const xcXform<2> xf(xcMatrix<2>(0, -1, 1, 0), xcVector<2>(1, 2));
    xcRegion out;
    r.map(xf, out);
    const Points expected{{1, 2}, {1, 12}, {-9, 12}, {-9, 2}};
    EXPECT_EQ(out.points(), expected);
    EXPECT_EQ(out.label(), 5u);
    EXPECT_TRUE(out.holes().empty());
}

TEST(RegionModel, MapClearsHolesOfResult) {
    const xcRegion r(square(0, 0, 1));
    RegionProbe out = squareWithHole();
    r.map(xcXform<2>::I, out);
    EXPECT_TRUE(out.holes().empty());
    EXPECT_EQ(out.points(), square(0, 0, 1));
}

TEST(RegionModel, MapOntoItself) {
    RegionProbe r = squareWithHole();
    r.label(3);
    r.area(false);
    const xcXform<2> shift(xcMatrix<2>::I, xcVector<2>(1, 1));
    r.map(shift, r);
    EXPECT_EQ(r.points(), square(1, 1, 10));
    EXPECT_EQ(r.label(), 3u);
    EXPECT_TRUE(r.holes().empty());
    EXPECT_FALSE(r.regionCacheState().area[0].valid);
}

// ---- equality ----

TEST(RegionModel, EqualOutlinesWithDifferentHolesCompareEqual) {
    const RegionProbe withHole = squareWithHole();
    const xcRegion without(square(0, 0, 10));
    EXPECT_TRUE(withHole == without);
    EXPECT_FALSE(withHole != without);
}

TEST(RegionModel, LabelTakesNoPartInEquality) {
    xcRegion a(square(0, 0, 1));
    const xcRegion b(square(0, 0, 1));
    a.label(9);
    EXPECT_EQ(a, b);
}

TEST(RegionModel, DifferentVerticesCompareUnequal) {
    const xcRegion a(square(0, 0, 1));
    const xcRegion b(square(0, 0, 2));
    EXPECT_NE(a, b);
}

TEST(RegionModel, RegionFromOpenContourEqualsRegionFromPoints) {
    const xcRegion a{xcContour(square(0, 0, 1), false)};
    const xcRegion b(square(0, 0, 1));
    EXPECT_EQ(a, b);
}

// ---- drawing ----

TEST(RegionModel, DrawingRegionDrawsNothing) {
    const RegionProbe r = squareWithHole();
    xcRecordingTablet tablet;
    r.draw(tablet, xcColor(255, 0, 0), xcUITablet::Layers());
    EXPECT_TRUE(tablet.segments().empty());
}

TEST(RegionModel, DrawingAsContourDrawsOutline) {
    const RegionProbe r = squareWithHole();
    xcRecordingTablet tablet;
    const xcContour& asContour = r;
    asContour.draw(tablet, Defs::drawNormal, xcColor(0, 0, 0), xcUITablet::Layers());
    // Four edges of the outline, none of the hole; the first is the closing edge (0,10)-(0,0).
    ASSERT_EQ(tablet.segments().size(), 4u);
    EXPECT_EQ(tablet.segments()[0].p1.x(), 0.0);
    EXPECT_EQ(tablet.segments()[0].p1.y(), 10.0);
}

// ---- emptiness and caches ----

TEST(RegionModel, CheckEmptyContourNeedsThreeVertices) {
    expectEmptyContour([] { RegionProbe(Points{{0, 0}, {1, 1}}).checkEmptyContour(); });
    RegionProbe(Points{{0, 0}, {1, 1}, {2, 0}}).checkEmptyContour();
}

TEST(RegionModel, ContourQueriesKeepLimitTwo) {
    xcRegion r(Points{{0, 0}, {4, 0}});
    EXPECT_EQ(r.closestVertexIndex(xcVector<2>(3, 1)), 1);
    EXPECT_EQ(r.encloseRect(xcXform<2>::I), xcRect(xcVector<2>(0, 0), xcVector<2>(4, 0)));
    EXPECT_EQ(r.vertexIndex(xcVector<2>(0, 0), 0.5), std::vector<int>{0});
    expectEmptyContour([&] { r.centerOfMass(false); });
}

TEST(RegionModel, CleanCacheInfoClearsFlagsAndAreasKeepsOtherValues) {
    RegionProbe r = squareWithHole();
    fillRegionCaches(r);
    const xcVector<2> centroid = r.regionCacheState().center[0].value;
    r.resetCaches();
    const RegionProbe::RegionCacheState& s = r.regionCacheState();
    expectNoMeasureCache(s);
    // The outline centroid of the 10 x 10 square, (5, 5), stays in its slot.
    EXPECT_EQ(s.center[0].value, centroid);
    EXPECT_TRUE(xfRealEq(s.center[0].value, xcVector<2>(5, 5), 1e-12));
    EXPECT_FALSE(r.cacheState().length.valid);
}

TEST(RegionModel, ReplacingPointsDropsRegionCaches) {
    RegionProbe r(square(0, 0, 2));
    r.area(false);
    r.points(square(0, 0, 3));
    EXPECT_FALSE(r.regionCacheState().area[0].valid);
    EXPECT_DOUBLE_EQ(r.area(false), 9.0);
}

TEST(RegionModel, LabelKeepsRegionCaches) {
    RegionProbe r(square(0, 0, 2));
    r.area(false);
    r.label(4);
    EXPECT_TRUE(r.regionCacheState().area[0].valid);
}

TEST(RegionModel, ClosestVertexIndexOfOutline) {
    const RegionProbe r = squareWithHole();
    // (4.5, 4.5) is nearest to the hole's corner (4,4) but the one-argument form ignores holes;
    // of the outline's corners (0,0) is nearest (distance 4.5 * sqrt 2).
    EXPECT_EQ(r.closestVertexIndex(xcVector<2>(4.5, 4.5)), 0);
}

// ---- counted handles ----

TEST(RegionModel, LastHandleDeletesRegion) {
    RegionHandle h = regionOf(square(0, 0, 1));
    EXPECT_EQ(h->refCount(), 1);
    {
        const ConstRegionHandle second(h);
        EXPECT_EQ(h->refCount(), 2);
    }
    EXPECT_EQ(h->refCount(), 1);
    h = RegionHandle();  // deleted here; the sanitizer build reports a leak otherwise
    EXPECT_TRUE(h.isNull());
}

// ---- bad input ----

TEST(RegionModel, NaNCoordinatesAreKeptAndNeverEqual) {
    const double nan = std::nan("");
    const Points p{{0, 0}, {nan, 1}, {1, 1}};
    const xcRegion a(p);
    const xcRegion b(p);
    EXPECT_EQ(a.points().size(), 3u);
    EXPECT_NE(a, b);
}
