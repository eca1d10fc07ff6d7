#include <cmath>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <cntr/regionst.h>

#include "regionst_testing.h"

using Defs = xcContourDefs;

namespace {

// The operation under test, so that each case runs for both.
enum class Op { regularize, outerHull };

void PrintTo(Op op, std::ostream* os) {
    *os << (op == Op::regularize ? "regularize" : "outerHull");
}

void apply(Op op, const xcRegionSet& s, xcRegionSet& out) {
    if (op == Op::regularize)
        s.regularize(out);
    else
        s.outerHull(out);
}

// What the region operation of the same name makes of `outline`: the reference for each merged
// or single region of a result.
xcRegion regionResult(Op op, const Points& outline) {
    return xcRegion(outline, op == Op::regularize ? Defs::useRegularized : Defs::useOuterHull);
}

// A five-pointed star drawn as one outline (every second vertex of a pentagon): each edge is
// crossed by two others, so no edge can start the boundary walk and the region operations
// refuse it with "invalid contour".
Points pentagram() {
    Points p;
    for (int k = 0; k < 5; ++k) {
        const double a = xcPi / 2 + 2 * (2 * xcPi / 5) * k;
        p.emplace_back(10 * std::cos(a), 10 * std::sin(a));
    }
    return p;
}

class RegionSetMerge : public ::testing::TestWithParam<Op> {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(BothOperations, RegionSetMerge,
                         ::testing::Values(Op::regularize, Op::outerHull),
                         [](const ::testing::TestParamInfo<Op>& info) {
                             return info.param == Op::regularize ? "Regularize" : "OuterHull";
                         });

// ---- sets that need no merging ----

TEST_P(RegionSetMerge, NonCrossingSetIsReturnedWithTheSameRegions) {
    const RegionHandles given{
        ConstRegionHandle(box(0, 0, 1, 1)),
        ConstRegionHandle(regionWithHole(rectangle(3, 0, 9, 6), rectangle(4, 1, 5, 2)))};
    RegionSetProbe s(given, Defs::keepOutline);
    s.cachedVectorSize(7);
    s.area(true);
    RegionSetProbe out(RegionHandles{ConstRegionHandle(box(50, 50, 51, 51))}, Defs::keepOutline);
    apply(GetParam(), s, out);
    const RegionHandles result = out.regions();
    ASSERT_EQ(result.size(), 2u);
    EXPECT_EQ(result[0].rep(), given[0].rep());
    EXPECT_EQ(result[1].rep(), given[1].rep());
    EXPECT_EQ(result[1]->holes().size(), 1u);
    // A copy of the set, its caches included.
    EXPECT_EQ(out.cachedVectorSize(), 7);
    EXPECT_TRUE(out.cacheState().area[1].valid);
    EXPECT_FALSE(s.cacheState().regularized.valid);
    EXPECT_FALSE(s.cacheState().outerHull.valid);
}

TEST_P(RegionSetMerge, EmptySetGivesAnEmptySet) {
    const xcRegionSet s;
    xcRegionSet out(RegionHandles{ConstRegionHandle(box(0, 0, 1, 1))}, Defs::keepOutline);
    apply(GetParam(), s, out);
    EXPECT_TRUE(out.regions().empty());
}

// ---- the merge pass ----
//
// The expected regions are the region operation applied to the splice outline worked out by
// hand: the splice starts at the first point X where an edge of the first outline, in edge
// order (edge 0 runs from the last vertex to the first), meets the second outline, nearest
// along that edge; then come the end points of the first outline's edges from that edge on, X
// again, and the end points of the second outline's edges from the edge met on.

namespace {

// The regions of op(set of `regions`).
RegionHandles mergeOf(Op op, const RegionHandles& regions, xcRegionSet* resultSet = nullptr) {
    const xcRegionSet s(regions, Defs::keepOutline);
    xcRegionSet out;
    apply(op, s, out);
    if (resultSet)
        *resultSet = out;
    return out.regions();
}

}  // namespace

TEST_P(RegionSetMerge, MiddleRegionCrossingBothNeighboursMergesOnlyWithTheFirst) {
    // A = [0,2]^2, B = [1,5]x[0.5,1.5], C = [4,6]x[0,2]: B crosses A and C, A does not cross C.
    // Pass: (0,1) crosses, A and B are spliced into slot 0 and C moves into slot 1; j = 2 ends
    // the pass. C is hulled or regularised by itself.
    const RegionHandle a = box(0, 0, 2, 2), b = box(1, 0.5, 5, 1.5), c = box(4, 0, 6, 2);
    const RegionHandles result =
        mergeOf(GetParam(), {ConstRegionHandle(a), ConstRegionHandle(b), ConstRegionHandle(c)});
    ASSERT_EQ(result.size(), 2u);
    // A's edge 2, (2,0)->(2,2), first meets B at X = (2,0.5) on B's edge 1.
    const Points splice{{2, 0.5}, {2, 2},   {0, 2},   {0, 0},   {2, 0},
                        {2, 0.5}, {5, 0.5}, {5, 1.5}, {1, 1.5}, {1, 0.5}};
    EXPECT_EQ(*result[0], regionResult(GetParam(), splice));
    EXPECT_TRUE(result[0]->holes().empty());
    // C does not cross itself: a new region with C's outline.
    EXPECT_NE(result[1].rep(), c.rep());
    EXPECT_EQ(*result[1], *c);
}

TEST(RegionSetMergeWalk, SplicedPairIsWalkedAsTheRegionWalksIt) {
    // The same A and B, regularised. The walk over the splice outline p0..p9 above starts on
    // edge p1->p2 (the first with one crossing of its normal probe, two end touches and an
    // outside side) and runs (0,2), (0,0), (2,0), (2,0.5), (5,0.5), (5,1.5), meets edge 1 at
    // (2,1.5) and turns back: (2,0.5), (1,0.5), (1,1.5), meets edge 1 again at (2,1.5), turns
    // forward and ends at p1 = (2,2). It keeps the loop around the overlap [1,2]x[0.5,1.5].
    const RegionHandles result = mergeOf(Op::regularize, {ConstRegionHandle(box(0, 0, 2, 2)),
                                                          ConstRegionHandle(box(1, 0.5, 5, 1.5))});
    ASSERT_EQ(result.size(), 1u);
    const Points walk{{0, 2},   {0, 0},   {2, 0},   {2, 0.5}, {5, 0.5}, {5, 1.5},
                      {2, 1.5}, {2, 0.5}, {1, 0.5}, {1, 1.5}, {2, 1.5}, {2, 2}};
    EXPECT_EQ(result[0]->points(), walk);
}

TEST_P(RegionSetMerge, RegionMovedIntoTheComparedSlotIsNotComparedWithTheMergedRegion) {
    // A = [0,4]x[0,2] crosses B = [1,2]x[1,3] and C = [3,5]x[1,3]. A and B are spliced into
    // slot 0, C moves into slot 1 and the pass ends: C stays separate although it crosses the
    // merged region.
    const RegionHandle a = box(0, 0, 4, 2), b = box(1, 1, 2, 3), c = box(3, 1, 5, 3);
    xcRegionSet out;
    const RegionHandles result = mergeOf(
        GetParam(), {ConstRegionHandle(a), ConstRegionHandle(b), ConstRegionHandle(c)}, &out);
    ASSERT_EQ(result.size(), 2u);
    // A's edge 3, (4,2)->(0,2), first meets B at X = (2,2) on B's edge 2.
    const Points splice{{2, 2}, {0, 2}, {0, 0}, {4, 0}, {4, 2},
                        {2, 2}, {2, 3}, {1, 3}, {1, 1}, {2, 1}};
    EXPECT_EQ(*result[0], regionResult(GetParam(), splice));
    EXPECT_EQ(*result[1], *c);
    // One pass only: the result still crosses.
    EXPECT_TRUE(out.isSelfIntersecting());
}

TEST_P(RegionSetMerge, MergedRegionIsNotComparedAgainWithEarlierSlots) {
    // A = [0,2]^2, B = [3.5,4.5]x[0,1], C = [1,4]x[0.2,0.8]: C crosses A and B, A does not
    // cross B. (0,1) does not cross; (0,2) does: A and C merge in slot 0 and C, the last, is
    // dropped. The merged region, which crosses B, is not compared with slot 1 again.
    const RegionHandle a = box(0, 0, 2, 2), b = box(3.5, 0, 4.5, 1), c = box(1, 0.2, 4, 0.8);
    xcRegionSet out;
    const RegionHandles result = mergeOf(
        GetParam(), {ConstRegionHandle(a), ConstRegionHandle(b), ConstRegionHandle(c)}, &out);
    ASSERT_EQ(result.size(), 2u);
    // A's edge 2, (2,0)->(2,2), first meets C at X = (2,0.2) on C's edge 1.
    const Points splice{{2, 0.2}, {2, 2},   {0, 2},   {0, 0},   {2, 0},
                        {2, 0.2}, {4, 0.2}, {4, 0.8}, {1, 0.8}, {1, 0.2}};
    EXPECT_EQ(*result[0], regionResult(GetParam(), splice));
    EXPECT_EQ(*result[1], *b);
    EXPECT_TRUE(out.isSelfIntersecting());
}

TEST_P(RegionSetMerge, MergedRegionGoesOnComparingWithLaterSlots) {
    // A = [0,2]^2, B = [1,3]^2, X = [2.5,4]x[1.5,2.5], D = [10,11]^2. (0,1) crosses: A and B
    // merge in slot 0 and D moves into slot 1, giving [AB, D, X]. (0,2): the merged outline,
    // not yet regularised, meets X through B's edge x = 3: merged again, giving [ABX, D].
    const RegionHandle d = box(10, 10, 11, 11);
    const RegionHandles result =
        mergeOf(GetParam(), {ConstRegionHandle(box(0, 0, 2, 2)), ConstRegionHandle(box(1, 1, 3, 3)),
                             ConstRegionHandle(box(2.5, 1.5, 4, 2.5)), ConstRegionHandle(d)});
    ASSERT_EQ(result.size(), 2u);
    // A with B: A's edge 2 first meets B at (2,1) on B's edge 1:
    //   AB = (2,1), (2,2), (0,2), (0,0), (2,0), (2,1), (3,1), (3,3), (1,3), (1,1).
    // AB with X: AB's edges 0 to 6 miss X's box; edge 7, (3,1)->(3,3), first meets X at
    // (3,1.5) on X's edge 1. The ends of AB's edges 7, 8, 9, 0, ..., 6 follow, (3,1.5) again,
    // and the ends of X's edges 1, 2, 3, 0.
    const Points splice{{3, 1.5}, {3, 3},   {1, 3},     {1, 1},    {2, 1}, {2, 2},
                        {0, 2},   {0, 0},   {2, 0},     {2, 1},    {3, 1}, {3, 1.5},
                        {4, 1.5}, {4, 2.5}, {2.5, 2.5}, {2.5, 1.5}};
    EXPECT_EQ(*result[0], regionResult(GetParam(), splice));
    EXPECT_EQ(*result[1], *d);
}

TEST_P(RegionSetMerge, OneSelfCrossingRegionGivesTheRegionsOwnResult) {
    const RegionHandle tie = regionOf(bowTie());
    const xcRegionSet s(RegionHandles{ConstRegionHandle(tie)}, Defs::keepOutline);
    xcRegionSet out;
    apply(GetParam(), s, out);
    ASSERT_EQ(out.regions().size(), 1u);
    xcRegion expected;
    if (GetParam() == Op::regularize)
        tie->regularize(expected);
    else
        tie->outerHull(expected);
    EXPECT_EQ(*out.regions()[0], expected);
    EXPECT_EQ(*out.regions()[0], regionResult(GetParam(), bowTie()));
}

TEST_P(RegionSetMerge, NonCrossingRegionsOfACrossingSetAreNewRegionsWithTheirHoles) {
    // The frame does not cross itself nor the others; in a set that crosses elsewhere it is
    // replaced by the region operation's result: a new region, holes kept.
    const RegionHandle frame = regionWithHole(rectangle(10, 0, 20, 10), rectangle(12, 2, 14, 4));
    const xcRegionSet s(
        RegionHandles{ConstRegionHandle(frame), ConstRegionHandle(regionOf(bowTie()))},
        Defs::keepOutline);
    xcRegionSet out;
    apply(GetParam(), s, out);
    const RegionHandles result = out.regions();
    ASSERT_EQ(result.size(), 2u);
    EXPECT_NE(result[0].rep(), frame.rep());
    EXPECT_EQ(*result[0], *frame);
    EXPECT_EQ(result[0]->holes().size(), 1u);
}

TEST_P(RegionSetMerge, InputRegionsAndListAreNotModified) {
    const RegionHandle a = box(0, 0, 2, 2), b = box(1, 1, 3, 3);
    const xcRegionSet s(RegionHandles{ConstRegionHandle(a), ConstRegionHandle(b)},
                        Defs::keepOutline);
    xcRegionSet copyOfList(s);
    xcRegionSet out;
    apply(GetParam(), s, out);
    EXPECT_EQ(out.regions().size(), 1u);
    EXPECT_EQ(a->points(), rectangle(0, 0, 2, 2));
    EXPECT_EQ(b->points(), rectangle(1, 1, 3, 3));
    ASSERT_EQ(copyOfList.regions().size(), 2u);
    xcRegionSet again(s);
    EXPECT_EQ(again.regions()[0].rep(), a.rep());
    EXPECT_EQ(again.regions()[1].rep(), b.rep());
}

// ---- caching ----

TEST_P(RegionSetMerge, ResultIsComputedOnceAndShared) {
    RegionSetProbe s(
        RegionHandles{ConstRegionHandle(box(0, 0, 2, 2)), ConstRegionHandle(box(1, 1, 3, 3))},
        Defs::keepOutline);
    xcRegionSet first, second;
    apply(GetParam(), s, first);
    const RegionSetProbe::CacheState& c = s.cacheState();
    EXPECT_EQ(GetParam() == Op::regularize ? c.regularized.valid : c.outerHull.valid, true);
    EXPECT_EQ(GetParam() == Op::regularize ? c.outerHull.valid : c.regularized.valid, false);
    apply(GetParam(), s, second);
    ASSERT_EQ(first.regions().size(), 1u);
    ASSERT_EQ(second.regions().size(), 1u);
    EXPECT_EQ(first.regions()[0].rep(), second.regions()[0].rep());
}

TEST_P(RegionSetMerge, ChangingTheListComputesANewResult) {
    const RegionHandles crossing{ConstRegionHandle(box(0, 0, 2, 2)),
                                 ConstRegionHandle(box(1, 1, 3, 3))};
    xcRegionSet s(crossing, Defs::keepOutline);
    xcRegionSet first, second;
    apply(GetParam(), s, first);
    s.regions(crossing, Defs::keepOutline);
    apply(GetParam(), s, second);
    EXPECT_NE(first.regions()[0].rep(), second.regions()[0].rep());
    EXPECT_EQ(*first.regions()[0], *second.regions()[0]);
}

TEST_P(RegionSetMerge, OutputMayBeTheSetItself) {
    xcRegionSet s(
        RegionHandles{ConstRegionHandle(box(0, 0, 2, 2)), ConstRegionHandle(box(1, 1, 3, 3))},
        Defs::keepOutline);
    xcRegionSet expected;
    apply(GetParam(), xcRegionSet(s), expected);
    apply(GetParam(), s, s);
    EXPECT_EQ(s, expected);
    EXPECT_EQ(s.regions().size(), 1u);
}

// ---- the construction modes ----

TEST(RegionSetMergeModes, ConstructionWithModesAppliesTheOperations) {
    const RegionHandles crossing{ConstRegionHandle(box(0, 0, 2, 2)),
                                 ConstRegionHandle(box(1, 1, 3, 3)),
                                 ConstRegionHandle(box(10, 10, 11, 11))};
    xcRegionSet regularized, hulled;
    xcRegionSet(crossing, Defs::keepOutline).regularize(regularized);
    xcRegionSet(crossing, Defs::keepOutline).outerHull(hulled);
    EXPECT_EQ(xcRegionSet(crossing, Defs::useRegularized), regularized);
    EXPECT_EQ(xcRegionSet(crossing, Defs::useOuterHull), hulled);
    EXPECT_EQ(regularized.regions().size(), 2u);
}

TEST(RegionSetMergeModes, RegionsSetterAndAddApplyTheModes) {
    xcRegionSet s;
    s.regions(RegionHandles{ConstRegionHandle(box(0, 0, 2, 2))}, Defs::useRegularized);
    EXPECT_EQ(s.regions().size(), 1u);
    s.add(box(1, 1, 3, 3), Defs::useOuterHull);
    ASSERT_EQ(s.regions().size(), 1u);
    // [0,2]^2 spliced with [1,3]^2 (worked out above), then hulled.
    const Points splice{{2, 1}, {2, 2}, {0, 2}, {0, 0}, {2, 0},
                        {2, 1}, {3, 1}, {3, 3}, {1, 3}, {1, 1}};
    EXPECT_EQ(*s.regions()[0], xcRegion(splice, Defs::useOuterHull));
    const std::vector<RegionHandle> mutableHandles{box(0, 0, 2, 2), box(1, 1, 3, 3)};
    s.regions(mutableHandles, Defs::useRegularized);
    EXPECT_EQ(s.regions().size(), 1u);
}

// ---- failures ----

TEST(RegionSetMergeFailures, RegionFailurePropagatesAndLeavesOutAndCache) {
    RegionSetProbe s(RegionHandles{ConstRegionHandle(regionOf(pentagram()))}, Defs::keepOutline);
    ASSERT_TRUE(s.isSelfIntersecting());
    const RegionHandle kept = box(0, 0, 1, 1);
    xcRegionSet out(RegionHandles{ConstRegionHandle(kept)}, Defs::keepOutline);
    expectBadParams([&] { s.regularize(out); }, L"invalid contour");
    expectBadParams([&] { s.outerHull(out); }, L"invalid contour");
    ASSERT_EQ(out.regions().size(), 1u);
    EXPECT_EQ(out.regions()[0].rep(), kept.rep());
    EXPECT_FALSE(s.cacheState().regularized.valid);
    EXPECT_FALSE(s.cacheState().outerHull.valid);
}

TEST(RegionSetMergeFailures, ConstructionModeFailurePropagates) {
    const RegionHandles given{ConstRegionHandle(regionOf(pentagram()))};
    expectBadParams([&] { xcRegionSet s(given, Defs::useRegularized); }, L"invalid contour");
    expectBadParams([&] { xcRegionSet s(given, Defs::useOuterHull); }, L"invalid contour");
}
