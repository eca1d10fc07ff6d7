// The core's extent measures and the splice outline, on hand-checked outlines.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/extent.h>
#include <cntr/core/segment_hits.h>
#include <cntr/core/splice.h>

namespace {

using Points = std::vector<xcVector<2>>;
using cntr::core::OutlineView;

TEST(CoreExtent, WireCentreWeighsEachEdgeByItsLength) {
    // Open: edges (0,0)-(2,0) and (2,0)-(2,4), lengths 2 and 4, midpoints (1,0) and (2,2):
    // (2 (1,0) + 4 (2,2)) / 6 = (10/6, 8/6).
    const Points p{{0, 0}, {2, 0}, {2, 4}};
    const xcVector<2> c = cntr::core::wireCentre(OutlineView(p, false));
    EXPECT_DOUBLE_EQ(c.x(), 10.0 / 6.0);
    EXPECT_DOUBLE_EQ(c.y(), 8.0 / 6.0);
    // Closed, the edge (2,4)-(0,0) of length sqrt(20) and midpoint (1,2) joins in.
    const double d = std::sqrt(20.0);
    const xcVector<2> closed = cntr::core::wireCentre(OutlineView(p, true));
    EXPECT_DOUBLE_EQ(closed.x(), (2.0 * 1 + 4.0 * 2 + d * 1) / (6.0 + d));
    EXPECT_DOUBLE_EQ(closed.y(), (4.0 * 2 + d * 2) / (6.0 + d));
}

TEST(CoreExtent, WireCentreOfZeroLengthEdgesIsNotANumber) {
    const Points p{{1, 1}, {1, 1}};
    const xcVector<2> c = cntr::core::wireCentre(OutlineView(p, true));
    EXPECT_TRUE(std::isnan(c.x()) && std::isnan(c.y()));
}

TEST(CoreExtent, ExtremalVertexTakesTheFirstOfEqualScores) {
    const Points square{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    const OutlineView o(square, true);
    EXPECT_EQ(cntr::core::extremalVertex(o, xcRadian(0.0)), 1);         // x = 1 at 1 and 2
    EXPECT_EQ(cntr::core::extremalVertex(o, xcRadian(xcPi / 2.0)), 2);  // y = 1 at 2 and 3
    EXPECT_EQ(cntr::core::extremalVertex(o, xcRadian(xcPi)), 0);        // -x = 0 at 0 and 3
    EXPECT_EQ(cntr::core::extremalVertex(o, xcRadian(xcPi / 4.0)), 2);  // x + y = 2 at 2
    const Points nan{{std::nan(""), 0.0}};
    EXPECT_EQ(cntr::core::extremalVertex(OutlineView(nan, true), xcRadian(0.0)), -1);
}

TEST(CoreExtent, EnclosingRectInATransformedFrame) {
    const Points p{{0, 0}, {2, 1}, {1, 3}};
    EXPECT_EQ(cntr::core::enclosingRect(OutlineView(p, true), xcXform<2>::I),
              xcRect(xcVector<2>(0, 0), xcVector<2>(2, 3)));
    // x' = 2 x + 1, y' = -y: (1, 0), (5, -1), (3, -3).
    const xcXform<2> f(xcMatrix<2>(2, 0, 0, -1), xcVector<2>(1, 0));
    EXPECT_EQ(cntr::core::enclosingRect(OutlineView(p, true), f),
              xcRect(xcVector<2>(1, -3), xcVector<2>(4, 3)));
}

TEST(CoreExtent, LargestFiniteCoordinateIsTheLargestMagnitude) {
    EXPECT_EQ(cntr::core::largestFiniteCoordinate(Points{{1, -7}, {3, 2}, {-5, 4}}), 7.0);
    EXPECT_EQ(cntr::core::largestFiniteCoordinate(Points{{-9, 0}, {3, 8.5}}), 9.0);
    EXPECT_EQ(cntr::core::largestFiniteCoordinate(Points{}), 0.0);
}

TEST(CoreExtent, LargestFiniteCoordinateRefusesNaNAndInfinity) {
    const double nan = std::nan("");
    const double inf = HUGE_VAL;
    for (const Points& p : {Points{{1, 2}, {nan, 0}}, Points{{1, 2}, {0, nan}},
                            Points{{inf, 2}}, Points{{0, -inf}, {1, 1}}})
        EXPECT_FALSE(cntr::core::largestFiniteCoordinate(p).has_value());
}

TEST(CoreSplice, OutlinesJoinedAtTheirCrossing) {
    // Stored segments of two closed squares, edge 0 the closing edge: [0,2]^2 and [1,3]^2.
    // They cross at (2, 1): edge 2 ((2,0)-(2,2)) of the first, edge 1 ((1,1)-(3,1)) of the
    // second.
    const std::vector<xcLineSeg> first{
        {{0, 2}, {0, 0}}, {{0, 0}, {2, 0}}, {{2, 0}, {2, 2}}, {{2, 2}, {0, 2}}};
    const std::vector<xcLineSeg> second{
        {{1, 3}, {1, 1}}, {{1, 1}, {3, 1}}, {{3, 1}, {3, 3}}, {{3, 3}, {1, 3}}};
    const Points outline = cntr::core::splicedOutline(first, 2, {{2, 1}, 1}, second, 4);
    EXPECT_EQ(
        outline,
        (Points{{2, 1}, {2, 2}, {0, 2}, {0, 0}, {2, 0}, {2, 1}, {3, 1}, {3, 3}, {1, 3}, {1, 1}}));
}

TEST(CoreSplice, ZeroLengthEdgeContributesTheDefaultSegmentsEnd) {
    // A stored degenerate edge is the default segment (0,0)-(0,0).
    const std::vector<xcLineSeg> first{{{5, 5}, {6, 5}}, xcLineSeg(), {{6, 5}, {5, 5}}};
    const std::vector<xcLineSeg> second{{{5, 4}, {5, 6}}};
    const Points outline = cntr::core::splicedOutline(first, 0, {{5.5, 5}, 0}, second, 1);
    EXPECT_EQ(outline, (Points{{5.5, 5}, {6, 5}, {0, 0}, {5, 5}, {5.5, 5}, {5, 6}}));
}

}  // namespace
