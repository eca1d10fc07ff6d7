#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/numeric.h>
#include <foundation/random.h>

#include "regionst_testing.h"

using Defs = xcContourDefs;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// [0,2]^2 (area 4, centre (1,1)) and [4,5]x[0,1] (area 1, centre (4.5,0.5)).
RegionHandles bigAndSmallSquare() {
    return {ConstRegionHandle(box(0, 0, 2, 2)), ConstRegionHandle(box(4, 0, 5, 1))};
}

// The outline [0,10]^2 with the hole [2,4]^2.
RegionHandle frameWithHole() {
    return regionWithHole(rectangle(0, 0, 10, 10), rectangle(2, 2, 4, 4));
}

xcXform<2> translation(double x, double y) {
    return xcXform<2>(xcMatrix<2>::I, xcVector<2>(x, y));
}

// Runs `body` on a new thread, whose random generator for cache replacement starts afresh
// from seed 1.
template <class Body>
void onFreshThread(Body body) {
    std::thread worker(body);
    worker.join();
}

// The keys of the set's rectangle cache, as translation x values (the tests use translations).
std::vector<double> cachedTranslations(const RegionSetProbe& s) {
    std::vector<double> keys;
    if (s.cacheState().rectCache.get())
        for (const auto& entry : *s.cacheState().rectCache.get())
            keys.push_back(entry.first.trans().x());
    return keys;
}

// Central second moments of the solid axis-aligned rectangle [x0,x1]x[y0,y1] about its own
// centre: w^3 h / 12 and w h^3 / 12, product 0.
struct Box {
    double x0, y0, x1, y1;
    double area() const { return (x1 - x0) * (y1 - y0); }
    double cx() const { return (x0 + x1) / 2; }
    double cy() const { return (y0 + y1) / 2; }
    double ixx() const { return std::pow(x1 - x0, 3) * (y1 - y0) / 12; }
    double iyy() const { return (x1 - x0) * std::pow(y1 - y0, 3) / 12; }
};

}  // namespace

// ---- area ----

TEST(RegionSetMeasures, AreaOfAnEmptySetIsZero) {
    xcRegionSet s;
    EXPECT_EQ(s.area(true), 0.0);
    EXPECT_EQ(s.area(false), 0.0);
}

TEST(RegionSetMeasures, AreaSumsTheRegionsWithAndWithoutHoles) {
    xcRegionSet s(
        RegionHandles{ConstRegionHandle(frameWithHole()), ConstRegionHandle(box(20, 0, 21, 1))},
        Defs::keepOutline);
    // Without holes 100 + 1; with holes (100 - 4) + 1.
    EXPECT_EQ(s.area(false), 101.0);
    EXPECT_EQ(s.area(true), 97.0);
}

TEST(RegionSetMeasures, AreaIsCachedPerFlagAndEachFillCountsAsAChange) {
    // Asked through a const reference: area is a const member that fills the cache all the
    // same. (The set itself is not a const object; see the class comment.)
    RegionSetProbe set(bigAndSmallSquare(), Defs::keepOutline);
    const RegionSetProbe& s = set;
    const unsigned long changes = s.changeCount();
    EXPECT_EQ(s.area(true), 5.0);
    EXPECT_EQ(s.changeCount(), changes + 1);
    EXPECT_TRUE(s.cacheState().area[1].valid);
    EXPECT_FALSE(s.cacheState().area[0].valid);
    EXPECT_EQ(s.area(true), 5.0);
    EXPECT_EQ(s.changeCount(), changes + 1);  // a hit is no change
    EXPECT_EQ(s.area(false), 5.0);
    EXPECT_EQ(s.changeCount(), changes + 2);
}

TEST(RegionSetMeasures, AreaErrorOfARegionPropagatesAndCachesNothing) {
    // A region of two vertices has no area: EmptyContour.
    RegionSetProbe s(RegionHandles{ConstRegionHandle(box(0, 0, 1, 1)),
                                   ConstRegionHandle(regionOf({{0, 0}, {1, 1}}))},
                     Defs::keepOutline);
    expectEmptyContour([&] { s.area(true); });
    EXPECT_FALSE(s.cacheState().area[1].valid);
}

// ---- centre of mass ----

TEST(RegionSetMeasures, CenterOfMassOfAnEmptySetThrows) {
    xcRegionSet s;
    expectEmptyRegionSet([&] { s.centerOfMass(true); });
    expectEmptyRegionSet([&] { s.centerOfMass(false); });
}

TEST(RegionSetMeasures, CenterOfMassIsTheAreaWeightedMean) {
    RegionSetProbe s(bigAndSmallSquare(), Defs::keepOutline);
    // (4 (1, 1) + 1 (4.5, 0.5)) / 5 = (8.5, 4.5) / 5 = (1.7, 0.9).
    const xcVector<2> c = s.centerOfMass(false);
    EXPECT_NEAR(c.x(), 1.7, 1e-12);
    EXPECT_NEAR(c.y(), 0.9, 1e-12);
    EXPECT_TRUE(s.cacheState().center[0].valid);
    EXPECT_FALSE(s.cacheState().center[1].valid);
}

TEST(RegionSetMeasures, CenterOfMassWithHolesUsesTheRegionsWithHoles) {
    RegionSetProbe s(RegionHandles{ConstRegionHandle(frameWithHole())}, Defs::keepOutline);
    // (100 (5, 5) - 4 (3, 3)) / 96 = (488, 488) / 96.
    const xcVector<2> c = s.centerOfMass(true);
    EXPECT_NEAR(c.x(), 488.0 / 96.0, 1e-12);
    EXPECT_NEAR(c.y(), 488.0 / 96.0, 1e-12);
}

TEST(RegionSetMeasures, CenterOfMassIsCachedAndEachFillCountsAsAChange) {
    RegionSetProbe s(bigAndSmallSquare(), Defs::keepOutline);
    const unsigned long changes = s.changeCount();
    const xcVector<2> first = s.centerOfMass(true);
    EXPECT_EQ(s.changeCount(), changes + 1);
    EXPECT_EQ(s.centerOfMass(true), first);
    EXPECT_EQ(s.changeCount(), changes + 1);
}

TEST(RegionSetMeasures, AreasCancellingExactlyGiveTheOrigin) {
    // P: [0,2]^2 with a far hole of area 1, area(true) 4 - 1 = 3. N: [50,51]^2 with a far hole
    // of area 4, area(true) 1 - 4 = -3. Their centres are finite and different, so the
    // weighted sum is not zero while the areas sum to exactly 0.
    RegionSetProbe s(RegionHandles{ConstRegionHandle(regionWithHole(rectangle(0, 0, 2, 2),
                                                                    rectangle(100, 100, 101, 101))),
                                   ConstRegionHandle(regionWithHole(rectangle(50, 50, 51, 51),
                                                                    rectangle(200, 0, 202, 2)))},
                     Defs::keepOutline);
    ASSERT_EQ(s.area(true), 0.0);
    EXPECT_EQ(s.centerOfMass(true), xcVector<2>(0, 0));
}

TEST(RegionSetMeasures, AreasSummingWithinTheToleranceOfZeroGiveTheOrigin) {
    // As above plus a sliver triangle of area 2^-53 (about 1.1e-16): the total is 2^-53,
    // within 1e-15 of 0.
    const double sliver = std::ldexp(1.0, -52);
    RegionSetProbe s(
        RegionHandles{
            ConstRegionHandle(regionWithHole(rectangle(0, 0, 2, 2), rectangle(100, 100, 101, 101))),
            ConstRegionHandle(regionWithHole(rectangle(50, 50, 51, 51), rectangle(200, 0, 202, 2))),
            ConstRegionHandle(regionOf({{0, 0}, {1, 0}, {0, sliver}}))},
        Defs::keepOutline);
    ASSERT_EQ(s.area(true), std::ldexp(1.0, -53));
    EXPECT_EQ(s.centerOfMass(true), xcVector<2>(0, 0));
}

// ---- inertia ----

TEST(RegionSetMeasures, InertiaOfAnEmptySetThrows) {
    xcRegionSet s;
    expectEmptyRegionSet([&] { s.inertiaMatrix(false); });
}

TEST(RegionSetMeasures, InertiaOfDisjointSquaresIsThatOfTheirUnion) {
    const Box boxes[] = {{0, 0, 2, 2}, {4, 0, 5, 1}, {-3, 5, 0, 6}};
    RegionHandles regions;
    for (const Box& b : boxes)
        regions.emplace_back(box(b.x0, b.y0, b.x1, b.y1));
    RegionSetProbe s(regions, Defs::keepOutline);

    // Union: area A = sum a_i, centre c = sum a_i c_i / A; by the parallel-axis theorem
    // Ixx = sum (ixx_i + a_i (cx_i - cx)^2), Iyy likewise, Ixy = sum a_i (cx_i - cx)(cy_i - cy).
    // For the three boxes: areas 4, 1, 3; A = 8; c = (4 (1,1) + (4.5,0.5) + 3 (-1.5,5.5)) / 8
    // = (4, 21) / 8 = (0.5, 2.625).
    double a = 0, sx = 0, sy = 0;
    for (const Box& b : boxes) {
        a += b.area();
        sx += b.area() * b.cx();
        sy += b.area() * b.cy();
    }
    const double cx = sx / a, cy = sy / a;
    ASSERT_DOUBLE_EQ(cx, 0.5);
    ASSERT_DOUBLE_EQ(cy, 2.625);
    double ixx = 0, iyy = 0, ixy = 0;
    for (const Box& b : boxes) {
        ixx += b.ixx() + b.area() * (b.cx() - cx) * (b.cx() - cx);
        iyy += b.iyy() + b.area() * (b.cy() - cy) * (b.cy() - cy);
        ixy += b.area() * (b.cx() - cx) * (b.cy() - cy);
    }
    const xcMatrix<2> m = s.inertiaMatrix(false);
    EXPECT_NEAR(m.element(0, 0), ixx, 1e-9);
    EXPECT_NEAR(m.element(1, 1), iyy, 1e-9);
    EXPECT_NEAR(m.element(0, 1), ixy, 1e-9);
    EXPECT_NEAR(m.element(1, 0), ixy, 1e-9);
    // Without holes the flag true asks the same of every region.
    const xcMatrix<2> withFlag = s.inertiaMatrix(true);
    EXPECT_NEAR(withFlag.element(0, 0), ixx, 1e-9);
    EXPECT_NEAR(withFlag.element(0, 1), ixy, 1e-9);
}

TEST(RegionSetMeasures, InertiaOfTwoSquaresByHand) {
    RegionSetProbe s(bigAndSmallSquare(), Defs::keepOutline);
    // Centre (1.7, 0.9). Ixx = 16/12 + 4 (0.7)^2 + 1/12 + (2.8)^2 = 17/12 + 1.96 + 7.84;
    // Iyy = 17/12 + 4 (0.1)^2 + (0.4)^2 = 17/12 + 0.2; Ixy = 4 (-0.7)(0.1) + (2.8)(-0.4) = -1.4.
    const xcMatrix<2> m = s.inertiaMatrix(false);
    EXPECT_NEAR(m.element(0, 0), 17.0 / 12.0 + 9.8, 1e-9);
    EXPECT_NEAR(m.element(1, 1), 17.0 / 12.0 + 0.2, 1e-9);
    EXPECT_NEAR(m.element(0, 1), -1.4, 1e-9);
}

TEST(RegionSetMeasures, InertiaIsCachedAndEachFillCountsAsAChange) {
    RegionSetProbe s(bigAndSmallSquare(), Defs::keepOutline);
    const unsigned long changes = s.changeCount();
    const xcMatrix<2> first = s.inertiaMatrix(false);
    EXPECT_TRUE(s.cacheState().inertia[0].valid);
    EXPECT_EQ(s.changeCount(), changes + 1);
    const xcMatrix<2> second = s.inertiaMatrix(false);
    EXPECT_EQ(s.changeCount(), changes + 1);
    EXPECT_EQ(second.element(0, 0), first.element(0, 0));
}

TEST(RegionSetMeasures, InertiaWithHolesOfAHoledRegionPropagatesAndCachesNothing) {
    RegionSetProbe s(
        RegionHandles{ConstRegionHandle(box(20, 0, 21, 1)), ConstRegionHandle(frameWithHole())},
        Defs::keepOutline);
    expectBadParams([&] { s.inertiaMatrix(true); },
                    L"inertiaMatrix(considerHoles) is not implemented");
    EXPECT_FALSE(s.cacheState().inertia[1].valid);
    EXPECT_NO_THROW(s.inertiaMatrix(false));
}

// ---- containment ----

TEST(RegionSetMeasures, InsideOfAnEmptySetIsFalse) {
    const xcRegionSet s;
    EXPECT_FALSE(s.inside(xcVector<2>(0, 0), true));
    EXPECT_FALSE(s.inside(xcVector<2>(0, 0), false));
}

TEST(RegionSetMeasures, InsideAnyRegionPassingTheFlagOn) {
    const xcRegionSet s(
        RegionHandles{ConstRegionHandle(box(-5, -5, -3, -3)), ConstRegionHandle(frameWithHole())},
        Defs::keepOutline);
    EXPECT_TRUE(s.inside(xcVector<2>(-4, -4), true));    // first region
    EXPECT_TRUE(s.inside(xcVector<2>(7, 7), true));      // second region, outside its hole
    EXPECT_FALSE(s.inside(xcVector<2>(3, 3), true));     // in the hole, holes considered
    EXPECT_TRUE(s.inside(xcVector<2>(3, 3), false));     // in the hole, holes ignored
    EXPECT_FALSE(s.inside(xcVector<2>(20, 20), false));  // in no region
}

// ---- distance ----

TEST(RegionSetMeasures, DistToPointOfAnEmptySetThrows) {
    const xcRegionSet s;
    expectEmptyRegionSet([&] { s.distToPoint(xcVector<2>(0, 0), false, false, false); });
}

TEST(RegionSetMeasures, DistToPointIsTheSmallestRegionDistance) {
    const xcRegionSet s(bigAndSmallSquare(), Defs::keepOutline);
    // (3.5, 0.5): 1.5 from the edge x = 2 of the big square, 0.5 from the edge x = 4 of the
    // small one.
    EXPECT_DOUBLE_EQ(s.distToPoint(xcVector<2>(3.5, 0.5), false, false, false), 0.5);
    // Vertices only: the nearest vertex is (4, 0) or (4, 1), sqrt(0.25 + 0.25) away.
    EXPECT_DOUBLE_EQ(s.distToPoint(xcVector<2>(3.5, 0.5), true, false, false), std::sqrt(0.5));
}

TEST(RegionSetMeasures, DistToPointPassesTheFlagsOn) {
    const xcRegionSet s(RegionHandles{ConstRegionHandle(frameWithHole())}, Defs::keepOutline);
    // (7, 5) lies inside the frame, 3 from its edge x = 10 and 3 from the hole's edge x = 4.
    EXPECT_EQ(s.distToPoint(xcVector<2>(7, 5), false, true, true), 0.0);
    EXPECT_DOUBLE_EQ(s.distToPoint(xcVector<2>(7, 5), false, true, false), 3.0);
    // (3, 2.5) lies in the hole: not inside with holes considered, 0.5 from the hole's edge.
    EXPECT_DOUBLE_EQ(s.distToPoint(xcVector<2>(3, 2.5), false, true, true), 0.5);
    EXPECT_EQ(s.distToPoint(xcVector<2>(3, 2.5), false, false, true), 0.0);
}

TEST(RegionSetMeasures, DistToPointIgnoresANaNDistance) {
    // Vertices only: the nearest vertex of an all-NaN outline is its first, at a NaN distance.
    const RegionHandle nanRegion = regionOf({{kNaN, kNaN}, {kNaN, kNaN}, {kNaN, kNaN}});
    const xcVector<2> p(3.5, 0.5);
    ASSERT_TRUE(std::isnan(nanRegion->distToPoint(p, true, false, false)));
    const xcRegionSet mixed(
        RegionHandles{ConstRegionHandle(nanRegion), ConstRegionHandle(box(4, 0, 5, 1))},
        Defs::keepOutline);
    // The nearest vertex (4, 0) lies sqrt(0.5^2 + 0.5^2) away.
    EXPECT_DOUBLE_EQ(mixed.distToPoint(p, true, false, false), std::sqrt(0.5));
    const xcRegionSet onlyNaN(RegionHandles{ConstRegionHandle(nanRegion)}, Defs::keepOutline);
    EXPECT_EQ(onlyNaN.distToPoint(p, true, false, false), kInf);
}

// ---- enclosing rectangle ----

TEST(RegionSetMeasures, EncloseRectOfAnEmptySetThrows) {
    xcRegionSet s;
    expectEmptyRegionSet([&] { s.encloseRect(xcXform<2>::I); });
}

TEST(RegionSetMeasures, EncloseRectJoinsTheOutlinesAndSkipsTheHoles) {
    // The second region's hole lies far outside its outline; it takes no part.
    xcRegionSet s(RegionHandles{ConstRegionHandle(box(0, 0, 2, 2)),
                                ConstRegionHandle(regionWithHole(rectangle(10, 5, 20, 6),
                                                                 rectangle(30, 30, 40, 40)))},
                  Defs::keepOutline);
    EXPECT_EQ(s.encloseRect(xcXform<2>::I), xcRect(xcVector<2>(0, 0), xcVector<2>(20, 6)));
    // x -> 2x + 1, y -> 2y + 1: [0,2]^2 -> [1,5]^2, [10,20]x[5,6] -> [21,41]x[11,13].
    const xcXform<2> scaled(xcMatrix<2>(2, 0, 0, 2), xcVector<2>(1, 1));
    EXPECT_EQ(s.encloseRect(scaled), xcRect(xcVector<2>(1, 1), xcVector<2>(40, 12)));
}

TEST(RegionSetMeasures, EncloseRectIsCachedAndEachFillCountsAsAChange) {
    RegionSetProbe s(bigAndSmallSquare(), Defs::keepOutline);
    const unsigned long changes = s.changeCount();
    const xcRect first = s.encloseRect(translation(1, 0));
    EXPECT_EQ(s.changeCount(), changes + 1);
    EXPECT_EQ(s.encloseRect(translation(1, 0)), first);
    EXPECT_EQ(s.changeCount(), changes + 1);
    ASSERT_NE(s.cacheState().rectCache.get(), nullptr);
    EXPECT_EQ(s.cacheState().rectCache.get()->size(), 1u);
}

TEST(RegionSetMeasures, TransformsDifferingOnlyInElementOneOneShareAnEntry) {
    RegionSetProbe s(RegionHandles{ConstRegionHandle(box(0, 0, 2, 2))}, Defs::keepOutline);
    const xcRect identityRect = s.encloseRect(xcXform<2>::I);
    // y -> 5y would give [0,2]x[0,10]; the cache returns the identity's [0,2]^2.
    const xcXform<2> stretched(xcMatrix<2>(1, 0, 0, 5), xcVector<2>(0, 0));
    EXPECT_EQ(s.encloseRect(stretched), identityRect);
    EXPECT_EQ(s.cacheState().rectCache.get()->size(), 1u);
}

namespace {

// A set of one unit square whose rectangle cache holds translations by 0, 1, 2 and 3 in x; the
// region's own memo is large enough never to replace, so it never draws.
RegionSetProbe fourTranslationsCached() {
    const RegionHandle only = box(0, 0, 1, 1);
    only->cachedVectorSize(10);
    RegionSetProbe s(RegionHandles{ConstRegionHandle(only)}, Defs::keepOutline);
    for (int i = 0; i < 4; ++i)
        s.encloseRect(translation(i, 0));
    return s;
}

// The cache keys expected after a translation by 10 replaced the entry at the position that
// the `drawIndex`-th draw (from 0) of a generator seeded with 1 gives among four.
std::vector<double> afterReplacement(int drawIndex) {
    xcRandomUniform reference(1);
    for (int k = 0; k < drawIndex; ++k)
        reference.next(0.0, 1.0);
    const long victim = xfIFloor(reference.next(0.0, 4.0));
    std::vector<double> keys{0, 1, 2, 3};
    keys.erase(keys.begin() + victim);
    keys.push_back(10);
    return keys;
}

}  // namespace

TEST(RegionSetMeasures, FourTransformsFillFourEntriesAndAFifthReplacesARandomOne) {
    onFreshThread([] {
        RegionSetProbe s = fourTranslationsCached();
        EXPECT_EQ(cachedTranslations(s), (std::vector<double>{0, 1, 2, 3}));
        s.encloseRect(translation(10, 0));
        EXPECT_EQ(cachedTranslations(s), afterReplacement(0));
    });
}

TEST(RegionSetMeasures, RectangleReplacementDrawsFromTheContoursGenerator) {
    onFreshThread([] {
        // A contour with limit 0 replaces its memo entry on its second and third transforms:
        // the thread's first two draws.
        xcContour contour(unitSquare(), true);
        contour.cachedVectorSize(0);
        for (int i = 0; i < 3; ++i)
            contour.encloseRect(translation(i, 0));

        RegionSetProbe s = fourTranslationsCached();
        s.encloseRect(translation(10, 0));  // the set's replacement: the thread's third draw
        // With seed 1 the first three draws scaled to 4 fall in positions 2, 2 and 3, so the
        // replaced entry tells which draw the set took.
        EXPECT_EQ(cachedTranslations(s), afterReplacement(2));
        EXPECT_NE(afterReplacement(2), afterReplacement(0));
    });
}

TEST(RegionSetMeasures, ZeroLimitKeepsOneRectangleAfterTheFirstReplacement) {
    RegionSetProbe s(RegionHandles{ConstRegionHandle(box(0, 0, 1, 1))}, Defs::keepOutline);
    s.cachedVectorSize(0);
    s.encloseRect(translation(0, 0));
    s.encloseRect(translation(1, 0));
    s.encloseRect(translation(2, 0));
    EXPECT_EQ(cachedTranslations(s), (std::vector<double>{2}));
}

// ---- self-intersection ----

TEST(RegionSetMeasures, EmptySetIsNotSelfIntersectingAndCachesNothing) {
    const RegionSetProbe s;
    EXPECT_FALSE(s.isSelfIntersecting());
    EXPECT_FALSE(s.cacheState().selfIntersecting.valid);
}

TEST(RegionSetMeasures, DisjointRegionsDoNotIntersectAndTheSecondCallUsesTheCache) {
    const RegionHandle moving = box(4, 0, 5, 1);
    const RegionSetProbe s(
        RegionHandles{ConstRegionHandle(box(0, 0, 2, 2)), ConstRegionHandle(moving)},
        Defs::keepOutline);
    EXPECT_FALSE(s.isSelfIntersecting());
    EXPECT_TRUE(s.cacheState().selfIntersecting.valid);
    // Moved through its own handle so that it now crosses the first square: the set is not
    // told, and answers from its cache.
    moving->points(rectangle(1, 1, 3, 3));
    EXPECT_FALSE(s.isSelfIntersecting());
}

TEST(RegionSetMeasures, AnOutlineCrossingItselfMakesTheSetSelfIntersecting) {
    const RegionSetProbe s(RegionHandles{ConstRegionHandle(box(10, 10, 11, 11)),
                                         ConstRegionHandle(regionOf(bowTie()))},
                           Defs::keepOutline);
    EXPECT_TRUE(s.isSelfIntersecting());
    EXPECT_TRUE(s.cacheState().selfIntersecting.valid);
    EXPECT_TRUE(s.cacheState().selfIntersecting.value);
}

TEST(RegionSetMeasures, TwoCrossingOutlinesMakeTheSetSelfIntersecting) {
    const RegionSetProbe s(
        RegionHandles{ConstRegionHandle(box(10, 10, 11, 11)), ConstRegionHandle(box(0, 0, 2, 2)),
                      ConstRegionHandle(box(1, 1, 3, 3))},
        Defs::keepOutline);
    EXPECT_TRUE(s.isSelfIntersecting());
}

TEST(RegionSetMeasures, AVertexOnAnotherOutlineCounts) {
    // The triangle's vertex (2, 1) lies on the square's edge x = 2.
    const RegionSetProbe s(RegionHandles{ConstRegionHandle(box(0, 0, 2, 2)),
                                         ConstRegionHandle(regionOf({{2, 1}, {4, 0}, {4, 2}}))},
                           Defs::keepOutline);
    EXPECT_TRUE(s.isSelfIntersecting());
}

TEST(RegionSetMeasures, HolesAreNotExamined) {
    // [3,5]^2 lies inside the frame [0,10]^2 and crosses only the frame's hole [2,4]^2.
    const RegionSetProbe s(
        RegionHandles{ConstRegionHandle(frameWithHole()), ConstRegionHandle(box(3, 3, 5, 5))},
        Defs::keepOutline);
    EXPECT_FALSE(s.isSelfIntersecting());
}

TEST(RegionSetMeasures, SelfIntersectionErrorPropagatesAndCachesNothing) {
    // A one-vertex outline has no edges for the contour's crossing query (EmptyContour).
    const RegionSetProbe s(
        RegionHandles{ConstRegionHandle(regionOf({{0, 0}})), ConstRegionHandle(box(0, 0, 1, 1))},
        Defs::keepOutline);
    expectEmptyContour([&] { s.isSelfIntersecting(); });
    EXPECT_FALSE(s.cacheState().selfIntersecting.valid);
}

namespace {

// The literal definition, pair by pair with the contour queries and nothing else.
bool crossingByDefinition(const RegionHandles& regions) {
    bool crossing = false;
    for (const ConstRegionHandle& r : regions)
        if (r->xcContour::isSelfIntersecting())
            crossing = true;
    for (std::size_t i = 0; i < regions.size(); ++i) {
        xcContour outline(static_cast<const xcContour&>(*regions[i]));
        for (std::size_t j = i + 1; j < regions.size(); ++j)
            if (!outline.intersections(static_cast<const xcContour&>(*regions[j])).empty())
                return true;
    }
    return crossing;
}

}  // namespace

TEST(RegionSetMeasures, SelfIntersectionAgreesWithThePairwiseDefinitionOnRandomSets) {
    // Small triangles on a coarse lattice of coordinates, so that many boxes touch exactly,
    // overlap by an edge or a corner, or lie just apart; now and then a NaN vertex.
    xcRandomUniform random(20240917);
    const auto coordinate = [&] { return 0.5 * xfIFloor(random.next(0.0, 16.0)); };
    int crossingSets = 0;
    for (int trial = 0; trial < 300; ++trial) {
        RegionHandles regions;
        const int count = 2 + static_cast<int>(xfIFloor(random.next(0.0, 5.0)));
        for (int k = 0; k < count; ++k) {
            const double x = coordinate(), y = coordinate();
            Points p{{x, y}, {x + 1 + coordinate() / 4, y}, {x, y + 1 + coordinate() / 4}};
            if (random.next(0.0, 1.0) < 0.05)
                p[1] = xcVector<2>(kNaN, y);
            regions.emplace_back(regionOf(p));
        }
        const bool expected = crossingByDefinition(regions);
        crossingSets += expected ? 1 : 0;
        const xcRegionSet s(regions, Defs::keepOutline);
        EXPECT_EQ(s.isSelfIntersecting(), expected) << "trial " << trial;
    }
    // Both answers occur often enough for the comparison to mean something.
    EXPECT_GT(crossingSets, 30);
    EXPECT_LT(crossingSets, 270);
}
