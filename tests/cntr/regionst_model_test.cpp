#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/persistent.h>
#include <foundation/tablet.h>

#include "regionst_testing.h"

using Defs = xcContourDefs;

namespace {

// A set made by the archive's factory, as the loader would create it.
std::unique_ptr<xcRegionSet> madeByFactory() {
    const xc_Instantiator::MakeFunction make = xc_Instantiator::lookup("xcRegionSet");
    if (!make)
        return nullptr;
    return std::unique_ptr<xcRegionSet>(dynamic_cast<xcRegionSet*>(make()));
}

// A region that records its draw calls in a shared log, to see how a set asks its regions.
class DrawLoggingRegion : public xcRegion {
  public:
    struct Call {
        const DrawLoggingRegion* region;
        xcUITablet* tablet;
        xcColor color;
        xcUITablet::Layers layers;
    };
    DrawLoggingRegion(const Points& outline, std::vector<Call>& log)
        : xcContour(outline, true, 0), xcRegion(outline, Defs::keepOutline), log_(log) {}
    void draw(xcUITablet& tablet, const xcColor& color,
              const xcUITablet::Layers& layers) const override {
        log_.push_back(Call{this, &tablet, color, layers});
    }

  private:
    std::vector<Call>& log_;
};

// Two disjoint unit squares side by side: [0,1]^2 and [2,3]x[0,1].
RegionHandles twoSquares() {
    return {ConstRegionHandle(box(0, 0, 1, 1)), ConstRegionHandle(box(2, 0, 3, 1))};
}

// Fills every cache of the set that the model copies and resets.
void fillCaches(xcRegionSet& s) {
    s.area(true);
    s.area(false);
    s.centerOfMass(true);
    s.centerOfMass(false);
    s.inertiaMatrix(true);
    s.inertiaMatrix(false);
    s.encloseRect(xcXform<2>::I);
    s.isSelfIntersecting();
}

}  // namespace

// ---- construction ----

TEST(RegionSetModel, FactorySetIsEmptyWithLimitThree) {
    const std::unique_ptr<xcRegionSet> s = madeByFactory();
    ASSERT_NE(s, nullptr);
    EXPECT_TRUE(s->regions().empty());
    EXPECT_EQ(s->cachedVectorSize(), 3);
    EXPECT_TRUE(*s == xcRegionSet());
}

TEST(RegionSetModel, FactorySetDrawsNothing) {
    const std::unique_ptr<xcRegionSet> s = madeByFactory();
    ASSERT_NE(s, nullptr);
    xcRecordingTablet tablet;
    s->draw(tablet, xcColor(1, 2, 3), xcUITablet::Layers());
    EXPECT_TRUE(tablet.segments().empty());
}

TEST(RegionSetModel, SetFromEmptyVectorIsEmptyAndEqualsAnyEmptySet) {
    xcRegionSet fromConst(RegionHandles(), Defs::keepOutline);
    xcRegionSet fromMutable(std::vector<RegionHandle>(), Defs::useRegularized);
    EXPECT_TRUE(fromConst.regions().empty());
    EXPECT_EQ(fromConst.cachedVectorSize(), 3);
    EXPECT_EQ(fromMutable.cachedVectorSize(), 3);
    EXPECT_TRUE(fromConst == fromMutable);
    EXPECT_TRUE(fromConst == xcRegionSet());
}

TEST(RegionSetModel, ConstHandlesAreSharedInOrder) {
    const RegionHandles given = twoSquares();
    xcRegionSet s(given, Defs::keepOutline);
    const RegionHandles held = s.regions();
    ASSERT_EQ(held.size(), 2u);
    EXPECT_EQ(held[0].rep(), given[0].rep());
    EXPECT_EQ(held[1].rep(), given[1].rep());
}

TEST(RegionSetModel, MutableHandlesAreSharedInOrder) {
    const std::vector<RegionHandle> given{box(0, 0, 1, 1), box(5, 5, 6, 6), box(2, 0, 3, 1)};
    xcRegionSet s(given, Defs::keepOutline);
    const RegionHandles held = s.regions();
    ASSERT_EQ(held.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(held[i].rep(), given[i].rep());
}

TEST(RegionSetModel, ModeZeroKeepsCrossingRegionsAsGiven) {
    // [0,2]^2 and [1,3]^2 cross; mode 0 takes them as they are.
    const RegionHandles given{ConstRegionHandle(box(0, 0, 2, 2)),
                              ConstRegionHandle(box(1, 1, 3, 3))};
    xcRegionSet s(given, Defs::keepOutline);
    const RegionHandles held = s.regions();
    ASSERT_EQ(held.size(), 2u);
    EXPECT_EQ(held[0].rep(), given[0].rep());
    EXPECT_EQ(held[1].rep(), given[1].rep());
}

TEST(RegionSetModel, UnknownModeValueKeepsTheList) {
    const RegionHandles given{ConstRegionHandle(regionOf(bowTie()))};
    xcRegionSet s(given, static_cast<Defs::IntersectionMode>(7));
    ASSERT_EQ(s.regions().size(), 1u);
    EXPECT_EQ(s.regions()[0].rep(), given[0].rep());
}

TEST(RegionSetModel, ConstructionRefusesANullRegion) {
    const RegionHandles given{ConstRegionHandle(box(0, 0, 1, 1)), ConstRegionHandle()};
    expectBadParams([&] { xcRegionSet s(given, Defs::keepOutline); },
                    L"region set cannot hold a null region");
    expectBadParams([&] { xcRegionSet s(std::vector<RegionHandle>(1), Defs::keepOutline); },
                    L"region set cannot hold a null region");
}

// ---- the region list ----

TEST(RegionSetModel, RegionsSetterReplacesTheList) {
    xcRegionSet s(twoSquares(), Defs::keepOutline);
    const RegionHandles replacement{ConstRegionHandle(box(7, 7, 8, 8))};
    s.regions(replacement, Defs::keepOutline);
    ASSERT_EQ(s.regions().size(), 1u);
    EXPECT_EQ(s.regions()[0].rep(), replacement[0].rep());
}

TEST(RegionSetModel, RegionsSetterFromMutableHandles) {
    xcRegionSet s(twoSquares(), Defs::keepOutline);
    const std::vector<RegionHandle> replacement{box(7, 7, 8, 8), box(9, 9, 10, 10)};
    s.regions(replacement, Defs::keepOutline);
    ASSERT_EQ(s.regions().size(), 2u);
    EXPECT_EQ(s.regions()[0].rep(), replacement[0].rep());
    EXPECT_EQ(s.regions()[1].rep(), replacement[1].rep());
}

TEST(RegionSetModel, RegionsSetterResetsTheCachesTwice) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    fillCaches(s);
    s.cleanCalls = 0;
    s.regions(twoSquares(), Defs::keepOutline);
    // Once before the assignment and once through makeDataConsistentWithPoints().
    EXPECT_EQ(s.cleanCalls, 2);
    EXPECT_FALSE(s.cacheState().area[1].valid);
}

TEST(RegionSetModel, RegionsSetterRefusesANullRegionAndKeepsTheList) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    const RegionHandles before = s.regions();
    s.area(true);
    expectBadParams([&] { s.regions(RegionHandles{ConstRegionHandle()}, Defs::keepOutline); },
                    L"region set cannot hold a null region");
    ASSERT_EQ(s.regions().size(), 2u);
    EXPECT_EQ(s.regions()[0].rep(), before[0].rep());
    EXPECT_TRUE(s.cacheState().area[1].valid);
}

TEST(RegionSetModel, AddAppendsAtTheEnd) {
    xcRegionSet s(twoSquares(), Defs::keepOutline);
    const RegionHandle third = box(5, 5, 6, 6);
    s.add(third, Defs::keepOutline);
    const RegionHandles held = s.regions();
    ASSERT_EQ(held.size(), 3u);
    EXPECT_EQ(held[2].rep(), third.rep());
}

TEST(RegionSetModel, AddAfterAQueryClearsAllCaches) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    fillCaches(s);
    // Two unit squares: area 1 + 1 = 2.
    EXPECT_EQ(s.area(true), 2.0);
    s.cleanCalls = 0;
    s.add(box(10, 10, 13, 12), Defs::keepOutline);
    EXPECT_EQ(s.cleanCalls, 2);
    const RegionSetProbe::CacheState& c = s.cacheState();
    expectNoMeasureCache(c);
    EXPECT_EQ(c.rectCache.get(), nullptr);
    EXPECT_FALSE(c.selfIntersecting.valid);
    // Computed afresh: 2 + 3 * 2 = 8.
    EXPECT_EQ(s.area(true), 8.0);
}

TEST(RegionSetModel, AddRefusesANullRegion) {
    xcRegionSet s(twoSquares(), Defs::keepOutline);
    expectBadParams([&] { s.add(ConstRegionHandle(), Defs::keepOutline); },
                    L"region set cannot hold a null region");
    EXPECT_EQ(s.regions().size(), 2u);
}

TEST(RegionSetModel, SetRegionsAssignsWithoutResetOrMode) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    EXPECT_EQ(s.area(true), 2.0);
    s.cleanCalls = 0;
    // A crossing pair: a mode step would have merged it; setRegions takes it as it is.
    const RegionHandles crossing{ConstRegionHandle(box(0, 0, 2, 2)),
                                 ConstRegionHandle(box(1, 1, 3, 3))};
    s.setRegions(crossing);
    EXPECT_EQ(s.cleanCalls, 0);
    EXPECT_TRUE(s.cacheState().area[1].valid);
    EXPECT_EQ(s.area(true), 2.0);  // the stale cached sum, as documented
    ASSERT_EQ(s.regions().size(), 2u);
    EXPECT_EQ(s.regions()[1].rep(), crossing[1].rep());
}

TEST(RegionSetModel, SetRegionsRefusesANullRegion) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    expectBadParams([&] { s.setRegions(RegionHandles(2)); },
                    L"region set cannot hold a null region");
    EXPECT_EQ(s.regions().size(), 2u);
}

TEST(RegionSetModel, ConsistencyHooksResetTheCaches) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    s.cleanCalls = 0;
    s.makeDataConsistentWithPoints();
    s.makePointsConsistentWithData();
    EXPECT_EQ(s.cleanCalls, 2);
}

// ---- cachedVectorSize ----

TEST(RegionSetModel, NegativeCachedVectorSizeThrowsAndKeepsTheOldValue) {
    xcRegionSet s(twoSquares(), Defs::keepOutline);
    s.cachedVectorSize(5);
    expectBadParams([&] { s.cachedVectorSize(-1); }, L"");
    EXPECT_EQ(s.cachedVectorSize(), 5);
}

TEST(RegionSetModel, ZeroCachedVectorSizeIsAccepted) {
    xcRegionSet s(twoSquares(), Defs::keepOutline);
    s.cachedVectorSize(0);
    EXPECT_EQ(s.cachedVectorSize(), 0);
}

TEST(RegionSetModel, CachedVectorSizeCountsAsAChangeAndKeepsTheRectangles) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    for (int i = 0; i < 4; ++i)
        s.encloseRect(xcXform<2>(xcMatrix<2>::I, xcVector<2>(i, 0)));
    const unsigned long changes = s.changeCount();
    s.cachedVectorSize(1);
    EXPECT_EQ(s.changeCount(), changes + 1);
    ASSERT_NE(s.cacheState().rectCache.get(), nullptr);
    EXPECT_EQ(s.cacheState().rectCache.get()->size(), 4u);  // not trimmed to the new limit
}

// ---- equality ----

TEST(RegionSetModel, SameRegionsInAnotherOrderAreUnequal) {
    const RegionHandles r = twoSquares();
    xcRegionSet forward(r, Defs::keepOutline);
    xcRegionSet backward(RegionHandles{r[1], r[0]}, Defs::keepOutline);
    EXPECT_FALSE(forward == backward);
    EXPECT_TRUE(forward != backward);
}

TEST(RegionSetModel, EqualOutlinesInOrderAreEqualAcrossObjects) {
    // Different region objects with equal outlines; one carries a hole, which takes no part.
    xcRegionSet a(RegionHandles{ConstRegionHandle(box(0, 0, 4, 4))}, Defs::keepOutline);
    xcRegionSet b(RegionHandles{ConstRegionHandle(
                      regionWithHole(rectangle(0, 0, 4, 4), rectangle(1, 1, 2, 2)))},
                  Defs::keepOutline);
    b.cachedVectorSize(9);
    b.area(true);
    EXPECT_TRUE(a == b);
}

TEST(RegionSetModel, DifferentCountsOrOutlinesAreUnequal) {
    xcRegionSet two(twoSquares(), Defs::keepOutline);
    xcRegionSet one(RegionHandles{two.regions()[0]}, Defs::keepOutline);
    xcRegionSet moved(RegionHandles{two.regions()[0], ConstRegionHandle(box(2, 0, 3, 2))},
                      Defs::keepOutline);
    EXPECT_FALSE(two == one);
    EXPECT_FALSE(one == two);
    EXPECT_FALSE(two == moved);
}

// ---- copying ----

TEST(RegionSetModel, AddingToACopyLeavesTheSourceListAndSharesTheRegions) {
    xcRegionSet first(twoSquares(), Defs::keepOutline);
    xcRegionSet copy(first);
    copy.add(box(5, 5, 6, 6), Defs::keepOutline);
    ASSERT_EQ(first.regions().size(), 2u);
    ASSERT_EQ(copy.regions().size(), 3u);
    EXPECT_EQ(copy.regions()[0].rep(), first.regions()[0].rep());
    EXPECT_EQ(copy.regions()[1].rep(), first.regions()[1].rep());
}

TEST(RegionSetModel, CopyKeepsTheValidCaches) {
    RegionSetProbe source(twoSquares(), Defs::keepOutline);
    source.cachedVectorSize(6);
    fillCaches(source);
    RegionSetProbe copy(source);
    const RegionSetProbe::CacheState& c = copy.cacheState();
    EXPECT_EQ(copy.cachedVectorSize(), 6);
    EXPECT_TRUE(c.area[0].valid && c.area[1].valid);
    EXPECT_EQ(c.area[1].value, 2.0);
    EXPECT_TRUE(c.center[0].valid && c.center[1].valid);
    EXPECT_TRUE(c.inertia[0].valid && c.inertia[1].valid);
    EXPECT_TRUE(c.selfIntersecting.valid);
    EXPECT_FALSE(c.selfIntersecting.value);
    // The rectangle cache is a map of the copy's own with the same contents.
    ASSERT_NE(c.rectCache.get(), nullptr);
    EXPECT_NE(c.rectCache.get(), source.cacheState().rectCache.get());
    EXPECT_EQ(*c.rectCache.get(), *source.cacheState().rectCache.get());
}

TEST(RegionSetModel, AssignmentCopiesOrDropsTheRectangleCache) {
    RegionSetProbe withRects(twoSquares(), Defs::keepOutline);
    withRects.encloseRect(xcXform<2>::I);
    RegionSetProbe target(RegionHandles(), Defs::keepOutline);
    target = withRects;
    ASSERT_NE(target.cacheState().rectCache.get(), nullptr);
    EXPECT_EQ(target.cacheState().rectCache.get()->size(), 1u);

    RegionSetProbe withoutRects(twoSquares(), Defs::keepOutline);
    target = withoutRects;
    EXPECT_EQ(target.cacheState().rectCache.get(), nullptr);
}

TEST(RegionSetModel, SelfAssignmentChangesNothing) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    s.area(true);
    const unsigned long changes = s.changeCount();
    RegionSetProbe& alias = s;
    s = alias;
    EXPECT_EQ(s.regions().size(), 2u);
    EXPECT_TRUE(s.cacheState().area[1].valid);
    EXPECT_EQ(s.changeCount(), changes);
}

// ---- cache reset ----

TEST(RegionSetModel, CleanCacheInfoClearsEveryFlagAndZeroesTheAreas) {
    RegionSetProbe s(twoSquares(), Defs::keepOutline);
    fillCaches(s);
    const unsigned long changes = s.changeCount();
    s.resetCaches();
    EXPECT_EQ(s.changeCount(), changes + 1);
    const RegionSetProbe::CacheState& c = s.cacheState();
    expectNoMeasureCache(c);
    EXPECT_EQ(c.rectCache.get(), nullptr);
    EXPECT_FALSE(c.selfIntersecting.valid);
}

// ---- emptiness ----

TEST(RegionSetModel, CheckEmptyRegionSetThrowsOnlyWithoutRegions) {
    RegionSetProbe empty(RegionHandles(), Defs::keepOutline);
    expectEmptyRegionSet([&] { empty.checkEmptyRegionSet(); });
    RegionSetProbe one(RegionHandles{ConstRegionHandle(box(0, 0, 1, 1))}, Defs::keepOutline);
    EXPECT_NO_THROW(one.checkEmptyRegionSet());
}

// ---- drawing ----

TEST(RegionSetModel, DrawAsksEachRegionInOrderWithTheSameArguments) {
    std::vector<DrawLoggingRegion::Call> log;
    const xcPtrHandle<DrawLoggingRegion> a(new DrawLoggingRegion(rectangle(0, 0, 1, 1), log));
    const xcPtrHandle<DrawLoggingRegion> b(new DrawLoggingRegion(rectangle(2, 0, 3, 1), log));
    xcRegionSet s(RegionHandles{ConstRegionHandle(b), ConstRegionHandle(a)}, Defs::keepOutline);
    xcRecordingTablet tablet;
    const xcColor color(10, 20, 30);
    const xcUITablet::Layers layers(6);
    s.draw(tablet, color, layers);
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].region, b.rep());
    EXPECT_EQ(log[1].region, a.rep());
    for (const DrawLoggingRegion::Call& call : log) {
        EXPECT_EQ(call.tablet, &tablet);
        EXPECT_EQ(call.color, color);
        EXPECT_EQ(call.layers, layers);
    }
}

TEST(RegionSetModel, PlainRegionsDrawNothing) {
    xcRegionSet s(twoSquares(), Defs::keepOutline);
    xcRecordingTablet tablet;
    s.draw(tablet, xcColor(), xcUITablet::Layers());
    EXPECT_TRUE(tablet.segments().empty());
}
