// regularize, outerHull and the intersection modes of the region constructors. The expected
// walks are derived by hand in the comments; edge k runs from vertex k-1 to vertex k, edge 0
// being the closing edge, and "edge i -> i+1" names the edge from vertex i to vertex i+1.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <foundation/exception.h>

#include "region_access.h"
#include "region_testing.h"

namespace {

// Crossing points are computed through unit directions and carry rounding errors of a few
// units in the last place; vertices that the walk reaches are copied exactly.
constexpr double kComputedPointTolerance = 1e-12;

void expectOutline(const xcRegion& r, const Points& expected) {
    ASSERT_EQ(r.points().size(), expected.size()) << ::testing::PrintToString(r);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(r.points()[i].x(), expected[i].x(), kComputedPointTolerance) << "vertex " << i;
        EXPECT_NEAR(r.points()[i].y(), expected[i].y(), kComputedPointTolerance) << "vertex " << i;
    }
}

xcRegion regularized(const xcRegion& r) {
    xcRegion out;
    r.regularize(out);
    return out;
}

xcRegion outerHullOf(const xcRegion& r) {
    xcRegion out;
    r.outerHull(out);
    return out;
}

void expectInvalidContour(const Points& p) {
    const xcRegion r(p);
    xcRegion out;
    expectBadParams([&] { r.regularize(out); }, L"invalid contour");
    expectBadParams([&] { r.outerHull(out); }, L"invalid contour");
    expectBadParams([&] { xcRegion(p, xcContourDefs::useRegularized); }, L"invalid contour");
    expectBadParams([&] { xcRegion(p, xcContourDefs::useOuterHull); }, L"invalid contour");
}

// ---- shapes ----

// Edges: e0 (0,2)->(0,0), e1 (0,0)->(2,2), e2 (2,2)->(2,0), e3 (2,0)->(0,2); e1 and e3 cross
// at (1,1). The left lobe runs clockwise, the right one counter-clockwise.
Points bowTie() {
    return {{0, 0}, {2, 2}, {2, 0}, {0, 2}};
}

// The bow-tie walk. Start: edge 0 -> 1 is e1, crossed by e3, so it meets 3 edges, not 2. Edge
// 1 -> 2 is e2, which meets only e1 and e3 at its ends; its probe across (2,1) (half-length
// median/100 = 2 sqrt(2) / 100) crosses e2 alone, and its end right of x = 2 lies outside the
// bounding box, so insideCount there is 0: the walk starts at vertex 1, (2,2), along e2.
//   (2,2) -> (2,0) along e2: nothing crosses                  -> (2,0), next e3
//   (2,0) -> (0,2) along e3: e1 crosses at (1,1)              -> (1,1), onto e1 backwards
//   (1,1) -> (0,0) along e1 (e0 only touches the end)         -> (0,0), next e0 backwards
//   (0,0) -> (0,2) along e0                                   -> (0,2), next e3 backwards
//   (0,2) -> (2,0) along e3: e1 crosses at (1,1)              -> (1,1), onto e1 forwards
//   (1,1) -> (2,2) along e1                                   -> (2,2), the start: done.
Points bowTieWalk() {
    return {{2, 0}, {1, 1}, {0, 0}, {0, 2}, {1, 1}, {2, 2}};
}

// The outer hull of the bow-tie walk: the first repeated point is walk vertex 1, (1,1), found
// again at 4. The loop cut off is vertices 1..3, (1,1) (0,0) (0,2); the rest, 4, 5, 0, goes to
// the end: (1,1) (2,2) (2,0). The midpoint of each loop's first edge, (0.5,0.5) and
// (1.5,1.5), lies outside the other's bounding box, so none is dropped. The loops share (1,1),
// vertex 0 of both: the join is one turn of each from there.
Points bowTieHull() {
    return {{1, 1}, {0, 0}, {0, 2}, {1, 1}, {2, 2}, {2, 0}};
}

// A figure-eight (the bow-tie doubled in size, crossing at (8,8)) whose right lobe carries a
// twisted loop: its side x = 16 goes in to (12,5) and (12,11) and out again, the two strands
// (16,11)->(12,5) and (12,11)->(16,5) crossing at (14,8). Edges: e0 (0,16)->(0,0),
// e1 (0,0)->(16,16), e2 (16,16)->(16,11), e3 (16,11)->(12,5), e4 (12,5)->(12,11),
// e5 (12,11)->(16,5), e6 (16,5)->(16,0), e7 (16,0)->(0,16). Crossings: e1 x e7 at (8,8) and
// e3 x e5 at (14,8).
Points figureEightWithLoop() {
    return {{0, 0}, {16, 16}, {16, 11}, {12, 5}, {12, 11}, {16, 5}, {16, 0}, {0, 16}};
}

// Start: e1 (edge 0 -> 1) is crossed at (8,8). Edge 1 -> 2 is e2, meeting only e1 and e3 at its
// ends; its probe across (16,13.5) is horizontal (e1 passes at x = 13.5, far from it) and its
// right end lies outside the bounding box: start at (16,16) along e2.
//   (16,16) -> (16,11) along e2                                 -> (16,11), next e3
//   (16,11) -> (12,5) along e3: e5 crosses at (14,8)            -> (14,8), onto e5 backwards
//   (14,8) -> (12,11) along e5 (e4 only touches the end)        -> (12,11), next e4 backwards
//   (12,11) -> (12,5) along e4 (e1, e7 miss x = 12 there)       -> (12,5), next e3 backwards
//   (12,5) -> (16,11) along e3: e5 crosses at (14,8)            -> (14,8), onto e5 forwards
//   (14,8) -> (16,5) along e5                                   -> (16,5), next e6
//   (16,5) -> (16,0) along e6                                   -> (16,0), next e7
//   (16,0) -> (0,16) along e7: e1 crosses at (8,8) (x + y = 16 misses e3, e4, e5) -> (8,8),
//                                                                  onto e1 backwards
//   (8,8) -> (0,0) along e1                                     -> (0,0), next e0 backwards
//   (0,0) -> (0,16) along e0                                    -> (0,16), next e7 backwards
//   (0,16) -> (16,0) along e7: e1 crosses at (8,8)              -> (8,8), onto e1 forwards
//   (8,8) -> (16,16) along e1 (y = x misses e3 and e5)          -> (16,16), the start: done.
Points figureEightWithLoopWalk() {
    return {{16, 11}, {14, 8}, {12, 11}, {12, 5}, {14, 8}, {16, 5},
            {16, 0},  {8, 8},  {0, 0},   {0, 16}, {8, 8},  {16, 16}};
}

// Its outer hull. Cutting: walk vertex 1, (14,8), repeats at 4: the loop T = vertices 1..3,
// (14,8) (12,11) (12,5), stays first; the rest, 4..11 and 0, goes second:
// (14,8) (16,5) (16,0) (8,8) (0,0) (0,16) (8,8) (16,16) (16,11). In it vertex 3, (8,8), repeats
// at 6: L = (8,8) (0,0) (0,16) takes its place, R = (8,8) (16,16) (16,11) (14,8) (16,5) (16,0)
// goes last. List: T, L, R.
// Dropping: T's first edge has its midpoint (13,9.5), outside L's box (x <= 8) and inside R
// (the right lobe, outside its notch x >= 14): T is dropped, R takes its place: R, L. R's
// midpoint (12,12) and L's (4,4) lie outside each other's boxes.
// Joining: R's vertex 0, (8,8), is L's vertex 0: one turn of R, then one turn of L.
Points figureEightWithLoopHull() {
    return {{8, 8}, {16, 16}, {16, 11}, {14, 8}, {16, 5}, {16, 0}, {8, 8}, {0, 0}, {0, 16}};
}

// A pentagram drawn through the corners A (0,0), B (20,0), C (25,15), D (10,25), E (-5,15) of a
// convex pentagon in the order A C E B D: every edge is crossed by the two edges that are not
// its neighbours (A->C by E->B at (10,6) and by B->D, and so on round the star).
Points pentagram() {
    return {{0, 0}, {25, 15}, {-5, 15}, {20, 0}, {10, 25}};
}

// The pentagram with a bend (5,2) inserted in A -> C near A. Edges: e0 D->A (10,25)->(0,0),
// e1 A->(5,2), e2 (5,2)->C, e3 C->E, e4 E->B, e5 B->D.
Points bentPentagram() {
    return {{0, 0}, {5, 2}, {25, 15}, {-5, 15}, {20, 0}, {10, 25}};
}

// Start: e1, edge 0 -> 1, meets only e0 at A and e2 at (5,2) (E->B has y >= 9 for x <= 5). The
// edge lengths sqrt(725), sqrt(29), sqrt(569), 30, sqrt(850), sqrt(725) have the median
// sqrt(725), so the probe is set off by sqrt(725)/100 along the normal (2,-5)/sqrt(29) of
// A - (5,2): by (0.1,-0.25), giving a = (2.6,0.75) and b = (2.4,1.25) about the midpoint
// (2.5,1). The probe crosses e1 alone. From a, the vertex directions sorted by angle are
// (5,2) 0.48, C 0.57, D 1.27, E 2.06, A 3.42, B 6.24 rad; the first gap wider than pi/6 is
// C..D, so the ray bisects it at 0.92 rad, up and right. The opposite ray runs down and left
// from below e1 and leaves the box at y = 0 near x = 2 without meeting an edge: a is outside.
// The walk starts at A along e2:
//   (5,2) -> C along e2 first meets e4 (E->B): 5 + 20t = -5 + 25s, 2 + 13t = 15 - 15s give
//     t = 0.28, the point (10.6,5.64) (B->D crosses further on, t = 0.56)  -> onto e4 backwards
//   (10.6,5.64) -> E along e4 meets e0 (D->A, x = 0.4 y) at s = 11/31 of E->B:
//     (120/31, 300/31) (C->E only touches the end E)                    -> onto e0 forwards
//   (120/31, 300/31) -> A along e0: A->(5,2) only touches A               -> A, the start.
// The reversal at the crossings turns inwards here: the strands of a star run the same way.
Points bentPentagramWalk() {
    return {{5, 2}, {10.6, 5.64}, {120.0 / 31, 300.0 / 31}, {0, 0}};
}

// A vertex lying on another edge: the spike (3,4) -> (2,0) -> (1,4) touches the bottom edge at
// its middle, pinching the square (0,0)-(4,4) into two halves. Edges: e0 (0,4)->(0,0),
// e1 (0,0)->(4,0), e2 (4,0)->(4,4), e3 (4,4)->(3,4), e4 (3,4)->(2,0), e5 (2,0)->(1,4),
// e6 (1,4)->(0,4).
Points pinched() {
    return {{0, 0}, {4, 0}, {4, 4}, {3, 4}, {2, 0}, {1, 4}, {0, 4}};
}

// Start: e1 meets e0, e2 and, at (2,0), e4 and e5: 4 edges. Edge 1 -> 2 is e2, meeting only e1
// and e3; its probe across (4,2) has its outer end right of the box: start at (4,0) along e2.
//   (4,0) -> (4,4) -> (3,4) along e2, e3                         -> (4,4), (3,4)
//   (3,4) -> (2,0) along e4: e1 and e5 pass through the end       -> (2,0)
//   (2,0) -> (1,4) -> (0,4) -> (0,0) along e5, e6, e0             -> (1,4), (0,4), (0,0)
//   (0,0) -> (4,0) along e1: e4 and e5 both meet it at (2,0); the two points are equal, so
//     they stay in edge order and e4 comes first                   -> (2,0), onto e4 backwards
//   (2,0) -> (3,4) along e4, then (3,4) -> (4,4) along e3 backwards -> (3,4), (4,4)
//   (4,4) -> (4,0) along e2 backwards (e1 only touches the end)   -> (4,0), the start.
// The walk runs up the right side of the spike and back down it.
Points pinchedWalk() {
    return {{4, 4}, {3, 4}, {2, 0}, {1, 4}, {0, 4}, {0, 0}, {2, 0}, {3, 4}, {4, 4}, {4, 0}};
}

// A double loop: (0,0) (4,0) (4,2) (1,2) (1,-1) (3,-1) (3,3) (0,3). Edges: e0 (0,3)->(0,0),
// e1 (0,0)->(4,0), e2 (4,0)->(4,2), e3 (4,2)->(1,2), e4 (1,2)->(1,-1), e5 (1,-1)->(3,-1),
// e6 (3,-1)->(3,3), e7 (3,3)->(0,3). Crossings: e1 x e4 (1,0), e1 x e6 (3,0), e3 x e6 (3,2).
Points doubleLoop() {
    return {{0, 0}, {4, 0}, {4, 2}, {1, 2}, {1, -1}, {3, -1}, {3, 3}, {0, 3}};
}

// Start: e1 is crossed twice; e2 meets only e1 and e3, its probe across (4,1) reaches right of
// the box: start at (4,0) along e2.
//   (4,0) -> (4,2) along e2                                      -> (4,2), next e3
//   (4,2) -> (1,2) along e3: e6 crosses at (3,2) (e4 only touches the end) -> onto e6 backwards
//   (3,2) -> (3,-1) along e6: e1 crosses at (3,0) (e5 only touches the end) -> onto e1 forwards
//   (3,0) -> (4,0) along e1                                      -> (4,0), the start.
// The walk closes the small rectangle on the right, not the outer boundary.
Points doubleLoopWalk() {
    return {{4, 2}, {3, 2}, {3, 0}, {4, 0}};
}

// ---- regions whose outline does not cross itself ----

TEST(RegionRegularize, ConvexSquareIsReturnedAsItIsWithItsHoles) {
    RegionProbe r(square(0, 0, 10));
    const RegionHandle hole = regionOf(square(4, 4, 2));
    r.holes(std::vector<RegionHandle>{hole});
    for (const bool hull : {false, true}) {
        xcRegion out(bowTie());
        hull ? r.outerHull(out) : r.regularize(out);
        EXPECT_EQ(out.points(), square(0, 0, 10));
        ASSERT_EQ(out.holes().size(), 1u);
        EXPECT_EQ(out.holes()[0].rep(), hole.rep());
    }
    // Nothing was walked, so nothing was cached.
    EXPECT_FALSE(r.regionCacheState().regularized.valid);
    EXPECT_FALSE(r.regionCacheState().outerHull.valid);
}

TEST(RegionRegularize, OutlineTouchingItselfAtARepeatedVertexIsReturnedAsItIs) {
    // Two squares sharing the corner (2,2), drawn as one outline through it twice. The edges at
    // the two copies of (2,2) touch each other's ends only, which is no self-intersection.
    const Points p{{0, 0}, {2, 0}, {2, 2}, {4, 2}, {4, 4}, {2, 4}, {2, 2}, {0, 2}};
    const xcRegion r(p);
    ASSERT_FALSE(r.isSelfIntersecting());
    EXPECT_EQ(regularized(r).points(), p);
    EXPECT_EQ(outerHullOf(r).points(), p);
}

TEST(RegionRegularize, ModesLeaveAnOutlineThatDoesNotCrossItselfAsGiven) {
    EXPECT_EQ(xcRegion(square(0, 0, 3), xcContourDefs::useRegularized).points(), square(0, 0, 3));
    EXPECT_EQ(xcRegion(square(0, 0, 3), xcContourDefs::useOuterHull).points(), square(0, 0, 3));
}

// ---- the hand-made walks ----

TEST(RegionRegularize, BowTieWalk) {
    RegionProbe r(bowTie());
    // A hole inside the right lobe: the result of a crossing outline has none.
    r.holes(std::vector<RegionHandle>{regionOf(square(1.6, 0.9, 0.2))});
    const xcRegion out = regularized(r);
    expectOutline(out, bowTieWalk());
    EXPECT_TRUE(out.holes().empty());
    EXPECT_EQ(r.holes().size(), 1u);
}

TEST(RegionRegularize, BowTieOuterHull) {
    const xcRegion out = outerHullOf(xcRegion(bowTie()));
    expectOutline(out, bowTieHull());
    EXPECT_TRUE(out.holes().empty());
    EXPECT_FALSE(out.isSelfIntersecting());
}

TEST(RegionRegularize, FigureEightWithLoopWalk) {
    const xcRegion out = regularized(xcRegion(figureEightWithLoop()));
    expectOutline(out, figureEightWithLoopWalk());
    EXPECT_FALSE(out.isSelfIntersecting());
}

TEST(RegionRegularize, FigureEightWithLoopOuterHullDropsTheInnerLoopAndJoinsTheLobes) {
    const xcRegion out = outerHullOf(xcRegion(figureEightWithLoop()));
    expectOutline(out, figureEightWithLoopHull());
    EXPECT_FALSE(out.isSelfIntersecting());
}

TEST(RegionRegularize, PentagramWhoseEveryEdgeIsCrossedIsInvalid) {
    expectInvalidContour(pentagram());
}

TEST(RegionRegularize, BentPentagramWalksAnInnerLoop) {
    const xcRegion r(bentPentagram());
    expectOutline(regularized(r), bentPentagramWalk());
    // The walk repeats no point: the outer hull keeps it as it is.
    expectOutline(outerHullOf(r), bentPentagramWalk());
}

TEST(RegionRegularize, PinchVertexOnAnotherEdgeWalk) {
    // The assumption of the hand derivation: e4 and e5 meet the bottom edge at the same point.
    xcContour bottom(pinched(), true);
    const std::vector<xcVector<2>> touch = bottom.intersections(xcLineSeg({0, 0}, {4, 0}), false);
    ASSERT_EQ(touch.size(), 2u);
    ASSERT_EQ(touch[0], touch[1]);

    const xcRegion out = regularized(xcRegion(pinched()));
    expectOutline(out, pinchedWalk());
    EXPECT_FALSE(out.isSelfIntersecting());
}

TEST(RegionRegularize, PinchVertexOnAnotherEdgeOuterHullRejoinsItsLoops) {
    // Cutting the walk: vertex 0, (4,4), repeats at 8: loop (4,4) (3,4) (2,0) (1,4) (0,4) (0,0)
    // (2,0) (3,4), and (4,4) (4,0) last. In the first, (3,4) at 1 repeats at 7: (3,4) (2,0)
    // (1,4) (0,4) (0,0) (2,0), and (3,4) (4,4) last. In that, (2,0) at 1 repeats at 5:
    // L = (2,0) (1,4) (0,4) (0,0), and D = (2,0) (3,4) last. List: L, (4,4) (4,0),
    // (3,4) (4,4), D. No first-edge midpoint ((1.5,2), (4,2), (3.5,4), (2.5,2)) lies inside
    // another loop: each is outside the others' boxes. Joining: L's (2,0) is D's vertex 0:
    // L + D = (2,0) (1,4) (0,4) (0,0) (2,0) (3,4); its (3,4), vertex 5, is vertex 0 of
    // (3,4) (4,4): (3,4) (2,0) (1,4) (0,4) (0,0) (2,0) (3,4) (4,4); its (4,4), vertex 7, is
    // vertex 0 of (4,4) (4,0): the walk again.
    const xcRegion out = outerHullOf(xcRegion(pinched()));
    expectOutline(out, pinchedWalk());
}

TEST(RegionRegularize, DoubleLoopWalkClosesTheInnerRectangle) {
    const xcRegion r(doubleLoop());
    expectOutline(regularized(r), doubleLoopWalk());
    expectOutline(outerHullOf(r), doubleLoopWalk());
}

// ---- refusals ----

TEST(RegionRegularize, UncrossedEdgeWithoutOutsideSideIsNoStart) {
    // The pentagram A C E B D with B -> D replaced by B -> (11,9) -> (9,9) -> D. Every edge but
    // (11,9) -> (9,9) is crossed: A->C by E->B at (10,6), C->E by (9,9)->D at (9.375,15) and by
    // D->A, E->B by A->C, B->(11,9) (x + y = 20) by A->C at (12.5,7.5), (9,9)->D by C->E.
    // (11,9) -> (9,9) meets only its neighbours, but both ends of its probe, (10, 9 +- d) with
    // d = sqrt(725)/100, lie in the triangle that A->C, C->E and D->A enclose, (0,0) (25,15)
    // (6,15): every ray from there crosses one of those edges before leaving the box, and the
    // rays (2 |C - A| = 58.3 long) are longer than the box's diagonal (39.1). No start edge.
    expectInvalidContour({{0, 0}, {25, 15}, {-5, 15}, {20, 0}, {11, 9}, {9, 9}, {10, 25}});
}

TEST(RegionRegularize, WalkThatNeverReturnsIsCutOffByItsBound) {
    // (0,0) (3,0) (1,3) (1,0) (1,1): vertex (1,0) lies on the bottom edge. Edges: e0
    // (1,1)->(0,0), e1 (0,0)->(3,0), e2 (3,0)->(1,3), e3 (1,3)->(1,0), e4 (1,0)->(1,1).
    // Start: e1 meets e0, e2, e3 and e4: no. e2 meets only e1 and e3; its probe end right of it
    // is outside (its ray pointing away from the triangle meets nothing): start at (3,0).
    //   (3,0) -> (1,3) along e2                                    -> (1,3), next e3
    //   (1,3) -> (1,0) along e3: e0 passes (1,1) inside the way     -> (1,1), onto e0 backwards
    //   towards e0's start (1,1) itself: nothing                    -> (1,1), next e4 backwards
    //   (1,1) -> (1,0) along e4                                    -> (1,0), next e3 backwards
    //   (1,0) -> (1,3) along e3: e0 at (1,1)                        -> (1,1), onto e0 forwards
    //   (1,1) -> (0,0) along e0                                    -> (0,0), next e1
    //   (0,0) -> (3,0) along e1: e3 (and e4) at (1,0), e3 first    -> (1,0), onto e3 backwards
    //   (1,0) -> (1,3) along e3: e0 at (1,1)                        -> (1,1), onto e0 forwards
    // and from there the last three passes repeat for ever, never reaching (3,0) again.
    expectInvalidContour({{0, 0}, {3, 0}, {1, 3}, {1, 0}, {1, 1}});
}

TEST(RegionRegularize, EngineRefusesFewerThanThreeVertices) {
    // A two-vertex outline never crosses itself, so only the engine itself can be asked.
    const xcRegion r(Points{{0, 0}, {1, 1}});
    xcRegion out;
    expectEmptyContour([&] { xcRegionTestAccess::outerHullRegularize(r, out, false); });
    expectEmptyContour([&] { xcRegionTestAccess::outerHullRegularize(r, out, true); });
}

TEST(RegionRegularize, RepeatedVertexOnTheWalkCutsOffALoopOfOneVertex) {
    // The bow-tie with (2,0) doubled: the walk goes (2,2) -> (2,0), then along the zero-length
    // edge to the copy of (2,0) (a query of zero length meets nothing), and on as in the
    // bow-tie. The outer hull cuts at walk vertex 0, (2,0), found again at 1: the loop of
    // vertices 0..0 has one vertex, and searching it throws EmptyContour.
    const Points p{{0, 0}, {2, 2}, {2, 0}, {2, 0}, {0, 2}};
    const xcRegion r(p);
    expectOutline(regularized(r), {{2, 0}, {2, 0}, {1, 1}, {0, 0}, {0, 2}, {1, 1}, {2, 2}});
    xcRegion out;
    expectEmptyContour([&] { r.outerHull(out); });
    expectEmptyContour([&] { xcRegion(p, xcContourDefs::useOuterHull); });
}

// ---- caches ----

TEST(RegionRegularize, ResultIsCachedAndASecondCallDoesNotWalkAgain) {
    RegionProbe r(bowTie());
    const xcRegion first = regularized(r);
    // Copies: the cache handles are compared after later calls.
    const RegionProbe::RegionCacheState s1 = r.regionCacheState();
    ASSERT_TRUE(s1.regularized.valid);
    EXPECT_FALSE(s1.outerHull.valid);
    expectOutline(*s1.regularized.value.rep(), bowTieWalk());

    // A new walk would put a newly allocated region into the cache.
    const xcRegion second = regularized(r);
    EXPECT_EQ(r.regionCacheState().regularized.value.rep(), s1.regularized.value.rep());
    EXPECT_EQ(second.points(), first.points());

    const xcRegion hull = outerHullOf(r);
    const RegionProbe::RegionCacheState s2 = r.regionCacheState();
    ASSERT_TRUE(s2.outerHull.valid);
    EXPECT_EQ(s2.regularized.value.rep(), s1.regularized.value.rep());
    outerHullOf(r);
    EXPECT_EQ(r.regionCacheState().outerHull.value.rep(), s2.outerHull.value.rep());
    EXPECT_EQ(hull.points(), s2.outerHull.value.rep()->points());
}

TEST(RegionRegularize, CopiesShareTheCachedResultUntilTheOutlineChanges) {
    RegionProbe r(bowTie());
    regularized(r);
    const RegionProbe copy(r);
    const xcRegion* cached = r.regionCacheState().regularized.value.rep();
    EXPECT_EQ(copy.regionCacheState().regularized.value.rep(), cached);
    EXPECT_TRUE(copy.regionCacheState().regularized.valid);

    // A change drops the flag; the next call walks into a new region while the copy keeps
    // the old one.
    r.points(figureEightWithLoop());
    EXPECT_FALSE(r.regionCacheState().regularized.valid);
    expectOutline(regularized(r), figureEightWithLoopWalk());
    EXPECT_NE(r.regionCacheState().regularized.value.rep(), cached);
    EXPECT_EQ(copy.regionCacheState().regularized.value.rep(), cached);
    expectOutline(*copy.regionCacheState().regularized.value.rep(), bowTieWalk());
}

TEST(RegionRegularize, RefusalLeavesCacheInvalidAndResultUnchanged) {
    RegionProbe r(pentagram());
    xcRegion out(square(0, 0, 1));
    expectBadParams([&] { r.regularize(out); }, L"invalid contour");
    expectBadParams([&] { r.outerHull(out); }, L"invalid contour");
    EXPECT_FALSE(r.regionCacheState().regularized.valid);
    EXPECT_FALSE(r.regionCacheState().outerHull.valid);
    EXPECT_EQ(out.points(), square(0, 0, 1));
}

TEST(RegionRegularize, RegionCanBeItsOwnResult) {
    xcRegion r(bowTie());
    r.regularize(r);
    expectOutline(r, bowTieWalk());
    xcRegion h(bowTie());
    h.outerHull(h);
    expectOutline(h, bowTieHull());
}

// ---- the constructors' intersection modes ----

TEST(RegionRegularize, ModeTwoRegularizesASelfCrossingListAndLeavesNoHoles) {
    const xcRegion r(figureEightWithLoop(), xcContourDefs::useRegularized);
    expectOutline(r, figureEightWithLoopWalk());
    EXPECT_TRUE(r.holes().empty());
    EXPECT_FALSE(r.isSelfIntersecting());
}

TEST(RegionRegularize, ModeOneMakesTheRegionItsOuterHull) {
    const xcRegion r(figureEightWithLoop(), xcContourDefs::useOuterHull);
    expectOutline(r, figureEightWithLoopHull());
    EXPECT_TRUE(r.holes().empty());
}

TEST(RegionRegularize, ModesApplyToPolygonAndContourConstructorsToo) {
    expectOutline(xcRegion(xcPolygon(bowTie()), xcContourDefs::useRegularized), bowTieWalk());
    // An open contour is closed by the region. The region is then replaced by its outer hull as
    // a whole, label included: the walked region is built with label 0.
    const xcContour open(bowTie(), false, 7);
    const xcRegion r(open, xcContourDefs::useOuterHull);
    expectOutline(r, bowTieHull());
    EXPECT_EQ(r.label(), 0u);
    EXPECT_EQ(xcRegion(xcContour(square(0, 0, 1), false, 7), xcContourDefs::useOuterHull).label(),
              7u);
}

TEST(RegionRegularize, ModeKeepOutlineTakesACrossingOutlineAsGiven) {
    const xcRegion r(bowTie(), xcContourDefs::keepOutline);
    EXPECT_EQ(r.points(), bowTie());
    EXPECT_TRUE(r.isSelfIntersecting());
}

// ---- loops that do not join ----

struct AssertRecord {
    static int calls;
    static std::string file;
    static int line;
    static void handler(const char* f, int l) {
        ++calls;
        file = f;
        line = l;
    }
};
int AssertRecord::calls = 0;
std::string AssertRecord::file;
int AssertRecord::line = 0;

// Vertices (4,4) (2,3) (0,5) (5,2) (3,0) (5,4) (6,0). Edges and their lines: e0 (6,0)->(4,4)
// 2x + y = 12, e1 (4,4)->(2,3) x - 2y = -4, e2 (2,3)->(0,5) x + y = 5, e3 (0,5)->(5,2)
// 3x + 5y = 25, e4 (5,2)->(3,0) x - y = 3, e5 (3,0)->(5,4) 2x - y = 6, e6 (5,4)->(6,0)
// 4x + y = 24. Crossings: e1 x e3 at X = (30/11, 37/11), e0 x e5 at Y = (9/2, 3), e3 x e5 at
// V = (55/13, 32/13); the vertex Z = (5,2), where e3 ends and e4 starts, lies on e0.
Points unjoinedLoops() {
    return {{4, 4}, {2, 3}, {0, 5}, {5, 2}, {3, 0}, {5, 4}, {6, 0}};
}

// Start: e1 is crossed at X; e2 meets only its neighbours. The median edge length is
// sqrt(17) (of sqrt(20), sqrt(5), sqrt(8), sqrt(34), sqrt(8), sqrt(20), sqrt(17)); the probe
// across (1,4) ends at b = (0.971,3.971) below e2. From b the vertex directions sorted by angle
// are (5,4) 0.007, (4,4) 0.010, (0,5) 2.33, (3,0) 5.18, (2,3) 5.53, (6,0) 5.61, (5,2) 5.83 rad;
// the first gap wider than pi/7 follows 0.010, so the ray bisects it at 1.17 rad, up through
// e2; the opposite ray runs down and left to x = 0 at y = 1.69 and meets nothing: b is outside.
// The walk starts at (2,3) along e2:
//    1 (2,3) -> (0,5) along e2                                        -> (0,5)
//    2 along e3 towards Z (e0, e4 pass through Z and are ignored): X   -> X, e1 backwards
//    3 X -> (4,4) along e1                                            -> (4,4), e0 backwards
//    4 (4,4) -> (6,0) along e0: Y (t = 1/4) before Z (t = 1/2)         -> Y, e5 forwards
//    5, 6 along e5, e6                                                -> (5,4), (6,0)
//    7 (6,0) -> (4,4) along e0: e3 and e4 at Z (t = 1/2), Y at t = 3/4; e3's computed point
//      comes first (checked below)                                    -> Z, e3 backwards
//    8 Z -> (0,5) along e3: V before X                                -> V, e5 forwards
//    9 V -> (5,4) along e5: Y                                         -> Y, e0 backwards
//   10 Y -> (6,0) along e0: e4 and e3 at Z, e4's first (checked below) -> Z, e4 forwards
//   11 Z -> (3,0) along e4                                            -> (3,0), e5
//   12 (3,0) -> (5,4) along e5: V before Y                            -> V, e3 backwards
//   13 V -> (0,5) along e3: X                                         -> X, e1 forwards
//   14 X -> (2,3) along e1                                            -> (2,3), the start.
Points unjoinedLoopsWalk() {
    const xcVector<2> x(30.0 / 11, 37.0 / 11);
    const xcVector<2> y(4.5, 3);
    const xcVector<2> v(55.0 / 13, 32.0 / 13);
    const xcVector<2> z(5, 2);
    return {{0, 5}, x, {4, 4}, y, {5, 4}, {6, 0}, z, v, y, z, {3, 0}, v, x, {2, 3}};
}

TEST(RegionRegularize, LoopsLeftUnjoinedAreReportedAndTheFirstIsTaken) {
    // The ties at Z of passes 7 and 10, in the order the edge-reporting query gives them.
    ContourProbe c(unjoinedLoops(), true);
    std::vector<int> edges;
    c.intersections(xcLineSeg({6, 0}, {4, 4}), edges, false);
    ASSERT_EQ(edges, (std::vector<int>{3, 4, 5}));
    const xcRegion walk = regularized(xcRegion(unjoinedLoops()));
    expectOutline(walk, unjoinedLoopsWalk());
    c.intersections(xcLineSeg(walk.points()[8], {6, 0}), edges, false);
    ASSERT_EQ(edges, (std::vector<int>{4, 3}));

    // Cutting (walk indices w0..w13): X at w1 repeats at w12, cutting off w1..w11 (T = w12 w13
    // w0 goes last); in that, Y at w3 repeats at w8: A = w3..w7 = Y (5,4) (6,0) Z V stays
    // first, B = w8..w11 w1 w2 = Y Z (3,0) V X (4,4) goes last. List: A, T, B.
    // Dropping: A's midpoint (4.75,3.5) is right of B (B spans x 3.0 .. 4.25 at y = 3.5) and
    // outside T's box; T's (2.364,3.182) is left of the boxes of A and B; B's (4.75,2.5) lies in
    // A (A spans x 4.25 .. 5.375 at y = 2.5): B is dropped. A and T share no vertex: two loops
    // stay, the assertion is reported, and A is the result.
    AssertRecord::calls = 0;
    const xcAssertHandler previous = xfSetAssertHandler(&AssertRecord::handler);
    xcRegion hull;
    xcRegion(unjoinedLoops()).outerHull(hull);
    xfSetAssertHandler(previous);
    EXPECT_EQ(AssertRecord::calls, 1);
    EXPECT_EQ(AssertRecord::file, "cntr/region");
    EXPECT_EQ(AssertRecord::line, 621);
    const Points w = unjoinedLoopsWalk();
    expectOutline(hull, Points(w.begin() + 3, w.begin() + 8));
}

}  // namespace
