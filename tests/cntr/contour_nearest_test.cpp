#include <cmath>

#include <gtest/gtest.h>

#include <cntr/contour.h>

#include "contour_testing.h"

namespace {
// Closed edges: 0 (0,2)-(0,0), 1 (0,0)-(2,0), 2 (2,0)-(2,2), 3 (2,2)-(0,2).
Points square2() { return {{0, 0}, {2, 0}, {2, 2}, {0, 2}}; }
}  // namespace

TEST(ContourClosestPoint, ProjectsOntoNearestEdge) {
    xcContour c(square2(), true);
    EXPECT_EQ(c.closestPoint({1, -3}, false), xcVector<2>(1, 0));
    EXPECT_EQ(c.closestPoint({5, 1.5}, false), xcVector<2>(2, 1.5));
}

TEST(ContourClosestPoint, EquidistantEdgesTakeClosingEdgeFirst) {
    // The centre (1, 1) is 1 from every edge: the closing edge 0 (x = 0) is visited first and
    // the projection onto it is (0, 1).
    xcContour c(square2(), true);
    EXPECT_EQ(c.closestPoint({1, 1}, false), xcVector<2>(0, 1));
}

TEST(ContourClosestPoint, OpenContourTakesFirstEdgeOnTie) {
    // Open, edge 0 is (0,0)-(2,0): from the centre the first edge at distance 1 wins.
    xcContour c(square2(), false);
    EXPECT_EQ(c.closestPoint({1, 1}, false), xcVector<2>(1, 0));
}

TEST(ContourClosestPoint, BeyondEndOfOpenContourGivesLastVertex) {
    // Past (0, 2) along the last edge (2,2)-(0,2): the parameter exceeds 1.
    xcContour c(square2(), false);
    EXPECT_EQ(c.closestPoint({-3, 2.5}, false), xcVector<2>(0, 2));
}

TEST(ContourClosestPoint, BeforeStartOfOpenContourGivesFirstVertex) {
    xcContour c(square2(), false);
    EXPECT_EQ(c.closestPoint({-1, -1}, false), xcVector<2>(0, 0));
}

TEST(ContourClosestPoint, VertexOnlyGivesVertexEvenWhenEdgePassesCloser) {
    // (1, -0.1) is 0.1 from edge (0,0)-(2,0) but over 1 from any vertex; vertex 0 wins the tie
    // between (0,0) and (2,0).
    xcContour c(square2(), true);
    EXPECT_EQ(c.closestPoint({1, -0.1}, true), xcVector<2>(0, 0));
    EXPECT_EQ(c.closestPoint({1.5, -0.1}, true), xcVector<2>(2, 0));
}

TEST(ContourClosestPoint, ZeroLengthEdgeGivesItsVertex) {
    // The open contour's edge 1 runs from (5,5) to (5,5): closest to (6, 6), it yields (5, 5)
    // through the "not above 0" branch of its NaN parameter.
    xcContour c(Points{{0, 0}, {5, 5}, {5, 5}}, false);
    EXPECT_EQ(c.closestPoint({6, 6}, false), xcVector<2>(5, 5));
}

TEST(ContourClosestPoint, ZeroLengthClosingEdgeGivesItsVertex) {
    xcContour c(Points{{0, 0}, {4, 0}, {0, 0}}, true);
    EXPECT_EQ(c.closestPoint({-1, -1}, false), xcVector<2>(0, 0));
}

TEST(ContourClosestPoint, NothingIsCached) {
    ContourProbe c(square2(), true, 0);
    c.closestPoint({3, 3}, false);
    const ContourProbe::CacheState& s = c.cacheState();
    EXPECT_FALSE(s.edges.valid);
    EXPECT_EQ(s.rectMemo.get(), nullptr);
}

TEST(ContourClosestPoint, NeedsTwoVertices) {
    xcContour c(Points{{0, 0}}, true);
    expectEmptyContour([&] { c.closestPoint({0, 0}, false); });
    expectEmptyContour([&] { c.closestPoint({0, 0}, true); });
}

TEST(ContourClosestVertexIndex, LowestIndexWinsTies) {
    const xcContour c(square2(), true);
    EXPECT_EQ(c.closestVertexIndex({1, 1}), 0);  // all four at sqrt(2)
    EXPECT_EQ(c.closestVertexIndex({1.1, 1}), 1);
    EXPECT_EQ(c.closestVertexIndex({2, 3}), 2);
}

TEST(ContourClosestVertexIndex, AllNaNDistancesGiveZero) {
    const xcContour c(square2(), true);
    EXPECT_EQ(c.closestVertexIndex({std::nan(""), 0}), 0);
}

TEST(ContourClosestVertexIndex, NeedsTwoVertices) {
    const xcContour c(Points{{0, 0}}, true);
    expectEmptyContour([&] { c.closestVertexIndex({0, 0}); });
}

TEST(ContourDistToPoint, PointOnContourIsZero) {
    const xcContour c(square2(), true);
    EXPECT_EQ(c.distToPoint({2, 1.25}, false), 0.0);
    EXPECT_EQ(c.distToPoint({0, 0}, true), 0.0);
}

TEST(ContourDistToPoint, DistanceToEdgeAndToVertex) {
    const xcContour c(square2(), true);
    EXPECT_EQ(c.distToPoint({1, -3}, false), 3.0);
    EXPECT_EQ(c.distToPoint({1, -3}, true), std::sqrt(10.0));  // to (0,0): sqrt(1 + 9)
}

TEST(ContourDistToPoint, NeedsTwoVertices) {
    const xcContour c;
    expectEmptyContour([&] { c.distToPoint({0, 0}, false); });
}
