// Non-finite coordinates, repeated vertices and zero-length edges: every query returns (or
// throws its documented exception) without crashing or hanging, with the values that the
// documented arithmetic gives where they are predictable.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <foundation/tablet.h>

#include "contour_testing.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// Runs every query of the contour once.
void exerciseEverything(ContourProbe& c) {
    c.length();
    c.isSelfIntersecting();
    c.encloseCircle(xcContourDefs::furthestVertexPair);
    c.encloseCircle(xcContourDefs::fromFirstVertex);
    c.diameter(xcContourDefs::fromFirstVertex);
    xcRecordingTablet tablet;
    c.draw(tablet, xcContourDefs::drawNormal, xcColor(), xcUITablet::Layers());
    if (c.points().size() < 2) return;
    c.meanPosition();
    c.extremalVertexIndex(xcRadian(0.3));
    c.encloseRect(xcXform<2>::I);
    c.encloseRect(xcXform<2>(xcMatrix<2>(kNaN, 0, 0, 1), xcVector<2>(kInf, 0)));
    c.intersections(xcLineSeg({-1e9, -1e9}, {1e9, 1e9}), true);
    c.intersections(xcLineSeg({kNaN, 0}, {1, kInf}), false);
    c.intersections(c);
    c.medianFeatureSize();
    c.vertexIndex({0, 0}, 1.0);
    c.vertexIndex({kNaN, kInf}, 1e-300);
    c.closestPoint({0.5, 0.5}, false);
    c.closestPoint({kNaN, 0.5}, true);
    c.closestVertexIndex({kInf, 0});
    c.distToPoint({1, 1}, false);
    c.polygon();
    xcContour mapped;
    c.map(xcXform<2>(xcMatrix<2>(kInf, 0, 0, kNaN), xcVector<2>()), mapped);
}

}  // namespace

TEST(ContourBadInput, NaNVerticesNeverCrash) {
    ContourProbe c(Points{{0, 0}, {kNaN, 1}, {2, kNaN}, {kNaN, kNaN}, {3, 3}}, true, 0);
    EXPECT_NO_THROW(exerciseEverything(c));
    EXPECT_TRUE(std::isnan(c.length()));
}

TEST(ContourBadInput, InfiniteVerticesNeverCrash) {
    ContourProbe c(Points{{0, 0}, {kInf, 1}, {-kInf, kInf}, {3, -kInf}}, false, 0);
    EXPECT_NO_THROW(exerciseEverything(c));
}

TEST(ContourBadInput, RepeatedVerticesNeverCrash) {
    ContourProbe c(Points(500, xcVector<2>(7, -2)), true, 0);
    EXPECT_NO_THROW(exerciseEverything(c));
    EXPECT_FALSE(c.isSelfIntersecting());  // every edge is degenerate
    EXPECT_EQ(c.medianFeatureSize(), 0.0);
    EXPECT_EQ(c.length(), 0.0);
    EXPECT_EQ(c.encloseCircle(xcContourDefs::furthestVertexPair), xcCircle());
    EXPECT_EQ(c.closestPoint({0, 0}, false), xcVector<2>(7, -2));
    EXPECT_EQ(c.vertexIndex({7, -2}, 0.5).size(), 500u);
}

TEST(ContourBadInput, SingleVertexQueriesWithoutCheckAnswer) {
    ContourProbe c(Points{{kNaN, 1}}, true, 0);
    EXPECT_NO_THROW(exerciseEverything(c));
}

TEST(ContourBadInput, EmptyContourQueriesWithoutCheckAnswer) {
    ContourProbe c;
    EXPECT_NO_THROW(exerciseEverything(c));
}

TEST(ContourBadInput, FurthestPairSkipsNaNDistances) {
    // Every distance involving the NaN vertex is NaN and never "greater"; the pair (1, 2) at
    // distance 5 gives centre (1.5, 2) and radius 2.5.
    xcContour c(Points{{kNaN, 0}, {0, 0}, {3, 4}}, false);
    const xcCircle k = c.encloseCircle(xcContourDefs::furthestVertexPair);
    EXPECT_EQ(k.center(), xcVector<2>(1.5, 2));
    EXPECT_EQ(k.radius(), 2.5);
}

TEST(ContourBadInput, ExtremalVertexSkipsNaNScores) {
    const xcContour c(Points{{kNaN, 0}, {1, 0}, {-1, 0}}, false);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(0.0)), 1);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(xcPi)), 2);
}

TEST(ContourBadInput, NaNQueryPointGivesDefaultClosestPoint) {
    // No edge distance is "less" than +infinity when it is NaN: the result stays (0, 0).
    xcContour c(Points{{5, 5}, {6, 5}}, false);
    EXPECT_EQ(c.closestPoint({kNaN, 0}, false), xcVector<2>(0, 0));
    EXPECT_EQ(c.closestVertexIndex({kNaN, 0}), 0);
}

TEST(ContourBadInput, NaNSegmentFindsNothing) {
    xcContour c(unitSquare(), true);
    EXPECT_TRUE(c.intersections(xcLineSeg({kNaN, 0.5}, {2, 0.5}), true).empty());
}

TEST(ContourBadInput, ZeroLengthQuerySegmentOnAnEdge) {
    // A zero-length query at (0.5, 0) has the line direction (1, 0): edges 1 and 3 of the unit
    // square are parallel to it; edge 0 (x = 0) and edge 2 (x = 1) do not reach its box.
    xcContour c(unitSquare(), true);
    EXPECT_TRUE(c.intersections(xcLineSeg({0.5, 0}, {0.5, 0}), true).empty());
}

TEST(ContourBadInput, NaNTransformKeyIsOneMemoEntry) {
    ContourProbe c(unitSquare(), true, 0);
    const xcXform<2> x(xcMatrix<2>(kNaN, 0, 0, 1), xcVector<2>());
    c.encloseRect(x);
    c.encloseRect(x);
    EXPECT_EQ(c.cacheState().rectMemo.get()->size(), 1u);
}

TEST(ContourBadInput, SingleNaNVertexIsNotSelfIntersecting) {
    // NaN is not equal to itself, so the closing edge of (NaN, 1) is not degenerate; the single
    // vertex still meets nothing.
    EXPECT_FALSE(xcContour(Points{{kNaN, 1}}, true).isSelfIntersecting());
}
