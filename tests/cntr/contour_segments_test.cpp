#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/contour.h>

#include "contour_testing.h"

namespace {

// The square of side 2 at the origin, counter-clockwise. Closed, its edges are:
// 0: (0,2)-(0,0), 1: (0,0)-(2,0), 2: (2,0)-(2,2), 3: (2,2)-(0,2).
Points square2() { return {{0, 0}, {2, 0}, {2, 2}, {0, 2}}; }

xcLineSeg seg(double x1, double y1, double x2, double y2) { return xcLineSeg({x1, y1}, {x2, y2}); }

}  // namespace

// ---- edge cache ----

TEST(ContourEdges, ClosedSquareHasFourEdgesClosingEdgeFirst) {
    const ContourProbe c(square2(), true, 0);
    const std::vector<xcLineSeg>& s = c.lineSegs();
    ASSERT_EQ(s.size(), 4u);
    EXPECT_EQ(s[0], seg(0, 2, 0, 0));
    EXPECT_EQ(s[1], seg(0, 0, 2, 0));
    EXPECT_EQ(s[2], seg(2, 0, 2, 2));
    EXPECT_EQ(s[3], seg(2, 2, 0, 2));
    EXPECT_EQ(c.validLine(), (std::vector<bool>{true, true, true, true}));
}

TEST(ContourEdges, OpenPolylineOfFourVerticesHasThreeEdges) {
    const ContourProbe c(square2(), false, 0);
    const std::vector<xcLineSeg>& s = c.lineSegs();
    ASSERT_EQ(s.size(), 3u);
    EXPECT_EQ(s[0], seg(0, 0, 2, 0));
    EXPECT_EQ(s[1], seg(2, 0, 2, 2));
    EXPECT_EQ(s[2], seg(2, 2, 0, 2));
}

TEST(ContourEdges, RepeatedFirstVertexMakesEdgeZeroDegenerate) {
    const ContourProbe c(Points{{0, 0}, {2, 0}, {2, 2}, {0, 0}}, true, 0);
    ASSERT_EQ(c.lineSegs().size(), 4u);
    EXPECT_EQ(c.lineSegs()[0], xcLineSeg());
    EXPECT_EQ(c.validLine(), (std::vector<bool>{false, true, true, true}));
}

TEST(ContourEdges, NearlyCoincidentVerticesMakeDegenerateEdge) {
    // (1, 1) and (1 + 4.4e-16, 1) are equal within 1e-15.
    const ContourProbe c(Points{{0, 0}, {1, 1}, {1.0 + 2 * 2.220446049250313e-16, 1}}, false, 0);
    EXPECT_EQ(c.validLine(), (std::vector<bool>{true, false}));
    EXPECT_EQ(c.lineSegs()[1], xcLineSeg());
}

TEST(ContourEdges, DegenerateEdgeKeepsItsPlaceInTheMiddle) {
    const ContourProbe c(Points{{0, 0}, {1, 0}, {1, 0}, {1, 1}}, false, 0);
    EXPECT_EQ(c.validLine(), (std::vector<bool>{true, false, true}));
    EXPECT_EQ(c.lineSegs()[2], seg(1, 0, 1, 1));
}

TEST(ContourEdges, SingleVertexClosedHasOneDegenerateEdge) {
    const ContourProbe closed(Points{{3, 3}}, true, 0);
    EXPECT_EQ(closed.validLine(), std::vector<bool>{false});
    const ContourProbe open(Points{{3, 3}}, false, 0);
    EXPECT_TRUE(open.lineSegs().empty());
}

TEST(ContourEdges, BuiltOnceAndRebuiltAfterChange) {
    ContourProbe c(square2(), true, 0);
    c.computeLineSegs();
    EXPECT_TRUE(c.cacheState().edges.valid);
    c.isClosed(false);
    EXPECT_EQ(c.lineSegs().size(), 3u);
}

// ---- segment query ----

TEST(ContourSegmentQuery, CrossesSquareThroughOppositeSidesInOrder) {
    ContourProbe c(square2(), true, 0);
    std::vector<int> edges;
    // Along y = 1: the closing edge (x = 0) first, then edge 2 (x = 2).
    EXPECT_EQ(c.intersections(seg(-1, 1, 3, 1), edges, true), (Points{{0, 1}, {2, 1}}));
    EXPECT_EQ(edges, (std::vector<int>{0, 2}));
    // Reversed query: reversed order.
    EXPECT_EQ(c.intersections(seg(3, 1, -1, 1), edges, true), (Points{{2, 1}, {0, 1}}));
    EXPECT_EQ(edges, (std::vector<int>{2, 0}));
}

TEST(ContourSegmentQuery, PublicFormGivesSamePoints) {
    xcContour c(square2(), true);
    EXPECT_EQ(c.intersections(seg(1, -1, 1, 3), true), (Points{{1, 0}, {1, 2}}));
}

TEST(ContourSegmentQuery, OutsideBoundingBoxYieldsNothingWithoutBuildingEdges) {
    ContourProbe c(square2(), true, 0);
    std::vector<int> edges{7};
    EXPECT_TRUE(c.intersections(seg(3, 3, 5, 4), edges, true).empty());
    EXPECT_TRUE(edges.empty());
    EXPECT_FALSE(c.cacheState().edges.valid);
    ASSERT_NE(c.cacheState().rectMemo.get(), nullptr);  // the bounding box went through the memo
    EXPECT_EQ(c.cacheState().rectMemo.get()->size(), 1u);
}

TEST(ContourSegmentQuery, TouchingBoundingBoxCountsAsOverlap) {
    ContourProbe c(square2(), true, 0);
    // From (2, 2) outwards: the box is touched at its corner, so the edges are examined.
    EXPECT_EQ(c.intersections(seg(2, 2, 3, 3), true), (Points{{2, 2}, {2, 2}}));
    EXPECT_TRUE(c.cacheState().edges.valid);
}

TEST(ContourSegmentQuery, StartOnEdgeReportedOnlyWithEndTouches) {
    ContourProbe c(square2(), true, 0);
    std::vector<int> edges;
    // Starts on edge 1 at (1, 0), leaves through edge 3 at (1, 2).
    EXPECT_EQ(c.intersections(seg(1, 0, 1, 3), edges, true), (Points{{1, 0}, {1, 2}}));
    EXPECT_EQ(edges, (std::vector<int>{1, 3}));
    EXPECT_EQ(c.intersections(seg(1, 0, 1, 3), edges, false), (Points{{1, 2}}));
    EXPECT_EQ(edges, std::vector<int>{3});
}

TEST(ContourSegmentQuery, EdgeWithinTouchToleranceOfEndIgnoredWithoutEndTouches) {
    xcContour c(square2(), true);
    // The end (1, 2 + 5e-7) lies 5e-7 from edge 3: ignored without end touches.
    EXPECT_TRUE(c.intersections(seg(1, 1, 1, 2 + 5e-7), false).empty());
    // 2e-6 away it is a crossing: P = (1, 2) lies on both.
    EXPECT_EQ(c.intersections(seg(1, 1, 1, 2 + 2e-6), false), (Points{{1, 2}}));
}

TEST(ContourSegmentQuery, CrossingJustBeyondQueryEndWithinToleranceCounts) {
    // One slanted edge from (0,-1) to (2,1) crosses x = 1 at (1, 0). A query down x = 1 that
    // stops 5e-7 above it still reports (1, 0), which lies within 1e-6 of the query.
    xcContour c(Points{{0, -1}, {2, 1}}, false);
    const Points p = c.intersections(seg(1, 1, 1, 5e-7), true);
    ASSERT_EQ(p.size(), 1u);
    EXPECT_NEAR(p[0].x(), 1.0, 1e-12);
    EXPECT_NEAR(p[0].y(), 0.0, 1e-12);
    // Stopping 2e-6 short misses: the crossing lies 2e-6 from the query.
    EXPECT_TRUE(c.intersections(seg(1, 1, 1, 2e-6), true).empty());
}

TEST(ContourSegmentQuery, EdgeBoxMustOverlapQueryBox) {
    // The crossing (1, 0) with the horizontal edge lies 5e-7 beyond the query's end, but the
    // edge's flat box (y = 0) does not reach the query's box (y from 5e-7), so it is skipped.
    xcContour c(square2(), true);
    EXPECT_TRUE(c.intersections(seg(1, 1, 1, 5e-7), true).empty());
}

TEST(ContourSegmentQuery, ParallelEdgesAreNeverReported) {
    xcContour c(square2(), true);
    // Along edge 1 itself: edges 1 and 3 are parallel, edges 0 and 2 are met at the corners.
    EXPECT_EQ(c.intersections(seg(-1, 0, 3, 0), true), (Points{{0, 0}, {2, 0}}));
}

TEST(ContourSegmentQuery, ThroughVertexReportsBothEdges) {
    ContourProbe c(square2(), true, 0);
    std::vector<int> edges;
    // Through the corner (0, 0), shared by edges 0 and 1: the point is reported for each.
    const Points p = c.intersections(seg(-1, -1, 1, 1), edges, true);
    ASSERT_EQ(p.size(), 2u);
    for (const xcVector<2>& q : p) {
        EXPECT_NEAR(q.x(), 0.0, 1e-12);
        EXPECT_NEAR(q.y(), 0.0, 1e-12);
    }
    std::sort(edges.begin(), edges.end());
    EXPECT_EQ(edges, (std::vector<int>{0, 1}));
}

TEST(ContourSegmentQuery, DegenerateEdgeIsNeverReported) {
    ContourProbe c(Points{{0, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 0}}, true, 0);
    std::vector<int> edges;
    // Through (0, 0), where the degenerate closing edge 0 lies: only edges 1 and 4 report.
    const Points p = c.intersections(seg(-1, -1, 1, 1), edges, true);
    EXPECT_EQ(p.size(), 2u);
    std::sort(edges.begin(), edges.end());
    EXPECT_EQ(edges, (std::vector<int>{1, 4}));
}

TEST(ContourSegmentQuery, EqualKeysAreLeftInExchangeSortOrder) {
    // Edges of the open contour: 0 (0,2)-(2,2), 1 (2,2)-(0,2), 2 (0,2)-(0,0), 3 (0,0)-(2,0).
    // The query up x = 1 from (1,-1) to (1,3) meets edge 0 and edge 1 at (1, 2), key
    // (0, 3) . (0, 4) = 12, and edge 3 at (1, 0), key 4; edge 2 is parallel. Hits in edge order:
    // [0:12, 1:12, 3:4]. The exchange sort swaps hits 0 and 2 (12 > 4) and never the equal keys:
    // [3, 1, 0]. (A stable sort would give [3, 0, 1].)
    ContourProbe c(Points{{0, 2}, {2, 2}, {0, 2}, {0, 0}, {2, 0}}, false, 0);
    std::vector<int> edges;
    const Points p = c.intersections(seg(1, -1, 1, 3), edges, true);
    EXPECT_EQ(edges, (std::vector<int>{3, 1, 0}));
    EXPECT_EQ(p, (Points{{1, 0}, {1, 2}, {1, 2}}));
}

TEST(ContourSegmentQuery, NeedsTwoVertices) {
    ContourProbe c(Points{{0, 0}}, true, 0);
    std::vector<int> edges;
    expectEmptyContour([&] { c.intersections(seg(0, 0, 1, 1), edges, true); });
    expectEmptyContour([&] { c.intersections(seg(0, 0, 1, 1), false); });
}

// ---- contour query ----

TEST(ContourContourQuery, OpenOtherGivesPointsEdgeByEdge) {
    xcContour c(square2(), true);
    const xcContour other(Points{{-1, 1}, {3, 1}, {3, 3}}, false);
    EXPECT_EQ(c.intersections(other), (Points{{0, 1}, {2, 1}}));
}

TEST(ContourContourQuery, ClosedOtherStartsWithItsClosingEdge) {
    xcContour c(square2(), true);
    // Closing edge (3,3)-(-1,1) runs along y = 1 + (x + 1) / 2: it meets edge 3 (y = 2) at
    // (1, 2) and then edge 0 (x = 0) at (0, 1.5). Then edge (-1,1)-(3,1) gives (0,1), (2,1).
    const xcContour other(Points{{-1, 1}, {3, 1}, {3, 3}}, true);
    const Points p = c.intersections(other);
    ASSERT_EQ(p.size(), 4u);
    EXPECT_NEAR(p[0].x(), 1.0, 1e-12);
    EXPECT_NEAR(p[0].y(), 2.0, 1e-12);
    EXPECT_NEAR(p[1].x(), 0.0, 1e-12);
    EXPECT_NEAR(p[1].y(), 1.5, 1e-12);
    EXPECT_EQ(p[2], xcVector<2>(0, 1));
    EXPECT_EQ(p[3], xcVector<2>(2, 1));
}

TEST(ContourContourQuery, DegenerateEdgesOfOtherAreNotSkipped) {
    xcContour c(square2(), true);
    // The zero-length edge at (0, 1) lies on edge 0: its line (direction (1, 0)) meets it there.
    EXPECT_EQ(c.intersections(xcContour(Points{{0, 1}, {0, 1}}, false)), (Points{{0, 1}}));
}

TEST(ContourContourQuery, EmptyOtherGivesNothing) {
    xcContour c(square2(), true);
    EXPECT_TRUE(c.intersections(xcContour()).empty());
}

TEST(ContourContourQuery, NeedsTwoVerticesHere) {
    xcContour c(Points{{0, 0}}, false);
    expectEmptyContour([&] { c.intersections(xcContour(square2(), true)); });
}

// ---- self-intersection ----

TEST(ContourSelfIntersection, BowTieIsSelfIntersecting) {
    EXPECT_TRUE(xcContour(Points{{0, 0}, {2, 2}, {2, 0}, {0, 2}}, true).isSelfIntersecting());
}

TEST(ContourSelfIntersection, ConvexPolygonIsNot) {
    EXPECT_FALSE(xcContour(Points{{0, 0}, {4, 0}, {5, 3}, {2, 5}, {-1, 3}}, true).isSelfIntersecting());
}

TEST(ContourSelfIntersection, VertexOnNonAdjacentEdgeCounts) {
    // Vertex 4 at (2, 0) touches edge 1, (0,0)-(4,0), from above.
    const xcContour c(Points{{0, 0}, {4, 0}, {4, 4}, {3, 4}, {2, 0}, {1, 4}, {0, 4}}, true);
    EXPECT_TRUE(c.isSelfIntersecting());
}

TEST(ContourSelfIntersection, CollinearOverlapIsNotDetected) {
    // Edges 0 and 3 both run between (0,0) and (2,0); every other contact is an end touch.
    EXPECT_FALSE(xcContour(Points{{0, 0}, {2, 0}, {2, 1}, {2, 0}, {0, 0}}, false).isSelfIntersecting());
}

TEST(ContourSelfIntersection, OpenZigzagCrossingItself) {
    EXPECT_TRUE(xcContour(Points{{0, 0}, {2, 0}, {2, 1}, {1, -1}}, false).isSelfIntersecting());
    EXPECT_FALSE(xcContour(Points{{0, 0}, {2, 0}, {2, 1}, {1, 1}}, false).isSelfIntersecting());
}

TEST(ContourSelfIntersection, ClosingEdgeCanCross) {
    // A Z: open, its only non-adjacent pair (the two horizontal edges) never meets; closed, the
    // closing edge (2,0)-(0,2) crosses the diagonal (2,2)-(0,0) at (1, 1).
    const Points v{{0, 2}, {2, 2}, {0, 0}, {2, 0}};
    EXPECT_FALSE(xcContour(v, false).isSelfIntersecting());
    EXPECT_TRUE(xcContour(v, true).isSelfIntersecting());
}

TEST(ContourSelfIntersection, EmptyAndSingleVertexAreNot) {
    EXPECT_FALSE(xcContour().isSelfIntersecting());
    EXPECT_FALSE(xcContour(Points{{1, 1}}, true).isSelfIntersecting());
    EXPECT_FALSE(xcContour(Points{{1, 1}}, false).isSelfIntersecting());
    EXPECT_FALSE(xcContour(Points{{1, 1}, {1, 1}}, true).isSelfIntersecting());
}

TEST(ContourSelfIntersection, IsCachedUntilChange) {
    ContourProbe c(Points{{0, 0}, {2, 2}, {2, 0}, {0, 2}}, true, 0);
    EXPECT_TRUE(c.isSelfIntersecting());
    EXPECT_TRUE(c.cacheState().selfIntersecting.valid);
    c.points(square2());
    EXPECT_FALSE(c.cacheState().selfIntersecting.valid);
    EXPECT_FALSE(c.isSelfIntersecting());
}

// ---- median feature size ----

TEST(ContourMedianFeatureSize, ClosedEdgesOneToFourGiveThree) {
    // Edges in order: (1,0)-(0,0) = 1, (0,0)-(2,0) = 2, (2,0)-(5,0) = 3, (5,0)-(1,0) = 4.
    const ContourProbe c(Points{{0, 0}, {2, 0}, {5, 0}, {1, 0}}, true, 0);
    EXPECT_EQ(c.medianFeatureSize(), 3.0);
}

TEST(ContourMedianFeatureSize, OpenOddCountGivesMiddle) {
    // Edge lengths 1, 2, 3: index 3 / 2 = 1.
    const ContourProbe c(Points{{0, 0}, {1, 0}, {3, 0}, {6, 0}}, false, 0);
    EXPECT_EQ(c.medianFeatureSize(), 2.0);
}

TEST(ContourMedianFeatureSize, DegenerateEdgesCountZero) {
    // Edge lengths 0, 0, 4: the middle one is 0.
    const ContourProbe c(Points{{0, 0}, {0, 0}, {0, 0}, {4, 0}}, false, 0);
    EXPECT_EQ(c.medianFeatureSize(), 0.0);
}

TEST(ContourMedianFeatureSize, IsCachedUntilChange) {
    ContourProbe c(Points{{0, 0}, {1, 0}, {3, 0}, {6, 0}}, false, 0);
    c.medianFeatureSize();
    EXPECT_TRUE(c.cacheState().medianFeatureSize.valid);
    EXPECT_EQ(c.cacheState().medianFeatureSize.value, 2.0);
    c.points(Points{{0, 0}, {7, 0}});
    EXPECT_EQ(c.medianFeatureSize(), 7.0);
}

TEST(ContourMedianFeatureSize, NeedsTwoVertices) {
    const ContourProbe c(Points{{0, 0}}, true, 0);
    expectEmptyContour([&] { c.medianFeatureSize(); });
}
