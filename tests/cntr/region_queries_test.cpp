#include <cmath>

#include <gtest/gtest.h>

#include <cntr/region.h>

#include "region_testing.h"

namespace {

// A 10 x 10 square at the origin with the hole (4,4)-(6,6) and, when `second`, the hole
// (7,1)-(9,3) after it.
xcRegion squareWithHoles(bool second = false) {
    xcRegion r(square(0, 0, 10));
    std::vector<RegionHandle> holes{regionOf(square(4, 4, 2))};
    if (second)
        holes.push_back(regionOf(square(7, 1, 2)));
    r.holes(holes);
    return r;
}

}  // namespace

// ---- closest vertex ----

TEST(RegionQueries, ClosestVertexWithoutHolesIgnoresNearerHoleVertex) {
    const xcRegion r = squareWithHoles();
    long holeIndex = 7;
    // (3.9, 3.9) is 0.1 sqrt 2 from the hole's (4,4) but the flag is false: the outline's
    // nearest vertex is (0,0), index 0.
    EXPECT_EQ(r.closestVertexIndex(xcVector<2>(3.9, 3.9), false, holeIndex), 0);
    EXPECT_EQ(holeIndex, -1);
}

TEST(RegionQueries, ClosestVertexInHoleNamesHole) {
    const xcRegion r = squareWithHoles(true);
    long holeIndex = 7;
    // (8.9, 3.1) is nearest to (9,3), vertex 2 of the second hole (distance 0.1 sqrt 2); the
    // outline's nearest vertex (10,0) is sqrt(1.21 + 9.61) away.
    EXPECT_EQ(r.closestVertexIndex(xcVector<2>(8.9, 3.1), true, holeIndex), 2);
    EXPECT_EQ(holeIndex, 1);
}

TEST(RegionQueries, ClosestVertexTieKeepsOutline) {
    const xcRegion r = squareWithHoles();
    long holeIndex = 7;
    // (2,2) is sqrt 8 from the outline's (0,0) and from the hole's (4,4).
    EXPECT_EQ(r.closestVertexIndex(xcVector<2>(2, 2), true, holeIndex), 0);
    EXPECT_EQ(holeIndex, -1);
}

TEST(RegionQueries, ClosestVertexTieBetweenHolesKeepsFirstHole) {
    xcRegion r(square(0, 0, 20));
    r.holes(std::vector<RegionHandle>{regionOf(square(4, 4, 2)), regionOf(square(8, 4, 2))});
    long holeIndex = 7;
    // (7, 5) is sqrt 2 from (6,4) and (6,6) of the first hole and from (8,4) and (8,6) of the
    // second: the first hole's (6,4), its vertex 1, wins.
    EXPECT_EQ(r.closestVertexIndex(xcVector<2>(7, 5), true, holeIndex), 1);
    EXPECT_EQ(holeIndex, 0);
}

TEST(RegionQueries, ClosestVertexWithoutHolesPresent) {
    const xcRegion r(square(0, 0, 10));
    long holeIndex = 7;
    EXPECT_EQ(r.closestVertexIndex(xcVector<2>(9, 9), true, holeIndex), 2);
    EXPECT_EQ(holeIndex, -1);
}

// ---- closest point ----

TEST(RegionQueries, ClosestPointOnHoleEdgeEvenWithoutHolesFlag) {
    xcRegion r = squareWithHoles();
    // (5, 3.9): 0.1 below the hole's bottom edge, 3.9 above the outline's.
    EXPECT_EQ(r.closestPoint(xcVector<2>(5, 3.9), false, false), xcVector<2>(5, 4));
    EXPECT_EQ(r.closestPoint(xcVector<2>(5, 3.9), false, true), xcVector<2>(5, 4));
}

TEST(RegionQueries, ClosestPointOnOutlineEdge) {
    xcRegion r = squareWithHoles();
    EXPECT_EQ(r.closestPoint(xcVector<2>(1, 5), false, true), xcVector<2>(0, 5));
}

TEST(RegionQueries, ClosestPointEqualDistanceKeepsOutline) {
    xcRegion r = squareWithHoles();
    // (2, 5) is 2 from the outline's edge x = 0 and 2 from the hole's edge x = 4.
    EXPECT_EQ(r.closestPoint(xcVector<2>(2, 5), false, true), xcVector<2>(0, 5));
}

TEST(RegionQueries, ClosestPointVertexOnlyFollowsHolesFlag) {
    xcRegion r = squareWithHoles();
    EXPECT_EQ(r.closestPoint(xcVector<2>(3.9, 3.9), true, false), xcVector<2>(0, 0));
    EXPECT_EQ(r.closestPoint(xcVector<2>(3.9, 3.9), true, true), xcVector<2>(4, 4));
}

// ---- distance ----

TEST(RegionQueries, DistanceFromPointInHoleIsToNearestEdge) {
    const xcRegion r = squareWithHoles();
    // (5, 4.5) is in the hole, 0.5 above its bottom edge.
    EXPECT_DOUBLE_EQ(r.distToPoint(xcVector<2>(5, 4.5), false, true, true), 0.5);
}

TEST(RegionQueries, DistanceFromPointInRegionIsZero) {
    const xcRegion r = squareWithHoles();
    EXPECT_EQ(r.distToPoint(xcVector<2>(2, 5), false, true, true), 0.0);
}

TEST(RegionQueries, DistanceFromPointInHoleWithoutHolesIsZero) {
    const xcRegion r = squareWithHoles();
    EXPECT_EQ(r.distToPoint(xcVector<2>(5, 4.5), false, false, true), 0.0);
}

TEST(RegionQueries, DistanceWithoutZeroInsideIsToNearestEdge) {
    const xcRegion r = squareWithHoles();
    // (1, 5): 1 from the outline's edge x = 0, 3 from the hole.
    EXPECT_DOUBLE_EQ(r.distToPoint(xcVector<2>(1, 5), false, true, false), 1.0);
}

TEST(RegionQueries, DistanceFromOutsidePoint) {
    const xcRegion r = squareWithHoles();
    // (13, 14): 3 right and 4 above the corner (10, 10): 5.
    EXPECT_DOUBLE_EQ(r.distToPoint(xcVector<2>(13, 14), false, true, true), 5.0);
}

TEST(RegionQueries, DistanceToVertices) {
    const xcRegion r = squareWithHoles();
    // (2, 5): the hole's (4,4) is sqrt(4 + 1) away, the outline's nearest corner sqrt(4 + 25).
    EXPECT_DOUBLE_EQ(r.distToPoint(xcVector<2>(2, 5), true, true, false), std::sqrt(5.0));
    EXPECT_DOUBLE_EQ(r.distToPoint(xcVector<2>(2, 5), true, false, false), std::sqrt(29.0));
}

// ---- intersections ----

TEST(RegionQueries, SegmentThroughOutlineAndHole) {
    xcRegion r = squareWithHoles();
    const xcLineSeg seg(xcVector<2>(-1, 5), xcVector<2>(11, 5));
    const Points withoutHoles{{0, 5}, {10, 5}};
    EXPECT_EQ(r.intersections(seg, true, false), withoutHoles);
    // Outline points first (in order along the segment), then the hole's.
    const Points withHoles{{0, 5}, {10, 5}, {4, 5}, {6, 5}};
    EXPECT_EQ(r.intersections(seg, true, true), withHoles);
}

TEST(RegionQueries, SegmentEndTouchesArePassedOn) {
    xcRegion r = squareWithHoles();
    // The segment starts on the outline's edge x = 0.
    const xcLineSeg seg(xcVector<2>(0, 5), xcVector<2>(5, 5));
    EXPECT_EQ(r.intersections(seg, false, true), (Points{{4, 5}}));
    EXPECT_EQ(r.intersections(seg, true, true), (Points{{0, 5}, {4, 5}}));
}

TEST(RegionQueries, SegmentThroughTwoHolesInHoleOrder) {
    xcRegion r(square(0, 0, 10));
    // The second hole lies before the first along the segment; hole order wins.
    r.holes(std::vector<RegionHandle>{regionOf(square(6, 4, 2)), regionOf(square(2, 4, 2))});
    const Points expected{{0, 5}, {10, 5}, {6, 5}, {8, 5}, {2, 5}, {4, 5}};
    EXPECT_EQ(r.intersections(xcLineSeg(xcVector<2>(-1, 5), xcVector<2>(11, 5)), true, true),
              expected);
}

TEST(RegionQueries, ContourThroughOutlineAndHole) {
    xcRegion r = squareWithHoles();
    const xcContour line(Points{{-1, 5}, {11, 5}}, false);
    EXPECT_EQ(r.intersections(line, false), (Points{{0, 5}, {10, 5}}));
    EXPECT_EQ(r.intersections(line, true), (Points{{0, 5}, {10, 5}, {4, 5}, {6, 5}}));
}

TEST(RegionQueries, DuplicatesAreKept) {
    xcRegion r(square(0, 0, 10));
    // A segment through the corner (10, 10) meets both edges there.
    const Points found =
        r.intersections(xcLineSeg(xcVector<2>(5, 15), xcVector<2>(15, 5)), true, false);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_TRUE(xfRealEq(found[0], xcVector<2>(10, 10), 1e-12));
    EXPECT_TRUE(xfRealEq(found[1], xcVector<2>(10, 10), 1e-12));
}

// ---- failures ----

TEST(RegionQueries, EmptyRegionThrowsEmptyContour) {
    xcRegion r;
    long holeIndex = 0;
    expectEmptyContour([&] { r.closestVertexIndex(xcVector<2>(0, 0), true, holeIndex); });
    expectEmptyContour([&] { r.closestPoint(xcVector<2>(0, 0), false, true); });
    expectEmptyContour([&] { r.closestPoint(xcVector<2>(0, 0), true, true); });
    expectEmptyContour([&] { r.distToPoint(xcVector<2>(0, 0), false, true, true); });
    expectEmptyContour(
        [&] { r.intersections(xcLineSeg(xcVector<2>(0, 0), xcVector<2>(1, 1)), true, true); });
    expectEmptyContour([&] { r.intersections(xcContour(unitSquare(), true), true); });
}

TEST(RegionQueries, TwoVertexOutlineIsEnoughForQueries) {
    xcRegion r(Points{{0, 0}, {4, 0}});
    long holeIndex = 0;
    EXPECT_EQ(r.closestVertexIndex(xcVector<2>(3, 1), true, holeIndex), 1);
    EXPECT_EQ(r.closestPoint(xcVector<2>(1, 1), false, true), xcVector<2>(1, 0));
    EXPECT_DOUBLE_EQ(r.distToPoint(xcVector<2>(1, 1), false, true, false), 1.0);
}

TEST(RegionQueries, NaNPointNeitherThrowsNorHangs) {
    xcRegion r = squareWithHoles();
    const xcVector<2> nan(std::nan(""), 0);
    long holeIndex = 0;
    EXPECT_NO_THROW(r.closestVertexIndex(nan, true, holeIndex));
    EXPECT_NO_THROW(r.closestPoint(nan, false, true));
    EXPECT_TRUE(r.intersections(xcLineSeg(nan, xcVector<2>(1, 1)), true, true).empty());
}
