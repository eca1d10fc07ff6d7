#include <algorithm>
#include <random>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <cntr/contour.h>

#include "contour_testing.h"

TEST(ContourVertexIndex, DistanceExactlyToleranceIsExcludedJustBelowIncluded) {
    // Vertex 0 lies at distance exactly 1 from the origin; vertex 1 at the largest double below 1.
    const double justBelow = std::nextafter(1.0, 0.0);
    xcContour c(Points{{1, 0}, {0, justBelow}}, false);
    EXPECT_EQ(c.vertexIndex({0, 0}, 1.0), std::vector<int>{1});
}

TEST(ContourVertexIndex, OrderedByCellColumnThenRowThenIndex) {
    // Tolerance 1, cells by rounding halves away from zero: v0 (0.4, 0.4) -> (0, 0);
    // v1 (-0.6, 0) -> (-1, 0); v2 (0, -0.6) -> (0, -1); v3 (0.1, 0.1) -> (0, 0). All lie within
    // 1 of the origin. Column -1 first (v1), then column 0 row -1 (v2), then row 0 (v0, v3).
    xcContour c(Points{{0.4, 0.4}, {-0.6, 0}, {0, -0.6}, {0.1, 0.1}}, true);
    EXPECT_EQ(c.vertexIndex({0, 0}, 1.0), (std::vector<int>{1, 2, 0, 3}));
}

TEST(ContourVertexIndex, PositiveHalfRoundsUp) {
    // x = 0.5 falls in column 1, x = 0.4 in column 0: column 0 is visited first.
    xcContour c(Points{{0.5, 0}, {0.4, 0}}, false);
    EXPECT_EQ(c.vertexIndex({0, 0}, 1.0), (std::vector<int>{1, 0}));
}

TEST(ContourVertexIndex, NegativeHalfRoundsAwayFromZero) {
    // x = -0.5 falls in column -1 (not 0), x = -0.4 in column 0: column -1 is visited first.
    xcContour c(Points{{-0.4, 0}, {-0.5, 0}}, false);
    EXPECT_EQ(c.vertexIndex({0, 0}, 1.0), (std::vector<int>{1, 0}));
}

TEST(ContourVertexIndex, RepeatedVerticesAreAllReported) {
    xcContour c(Points{{2, 2}, {5, 5}, {2, 2}}, true);
    EXPECT_EQ(c.vertexIndex({2, 2}, 0.1), (std::vector<int>{0, 2}));
}

TEST(ContourVertexIndex, FarPointFindsNothing) {
    xcContour c(Points{{0, 0}, {1, 0}}, false);
    EXPECT_TRUE(c.vertexIndex({10, 10}, 1.0).empty());
}

TEST(ContourVertexIndex, VertexInNeighbourCellButTooFarIsExcluded) {
    // Tolerance 1: (1.4, 0) is in cell (1, 0), a neighbour of the origin's cell, at distance 1.4.
    xcContour c(Points{{1.4, 0}, {0.9, 0}}, false);
    EXPECT_EQ(c.vertexIndex({0, 0}, 1.0), std::vector<int>{1});
}

TEST(ContourVertexIndex, SecondToleranceAddsSecondGrid) {
    ContourProbe c(Points{{0, 0}, {3, 0}}, false, 0);
    EXPECT_EQ(c.vertexIndex({0, 0}, 1.0), std::vector<int>{0});
    ASSERT_NE(c.cacheState().vertexGrids.get(), nullptr);
    EXPECT_EQ(c.cacheState().vertexGrids.get()->size(), 1u);
    EXPECT_EQ(c.vertexIndex({3, 0}, 1.0), std::vector<int>{1});
    EXPECT_EQ(c.cacheState().vertexGrids.get()->size(), 1u);
    EXPECT_EQ(c.vertexIndex({1, 0}, 5.0), (std::vector<int>{0, 1}));
    const auto& grids = *c.cacheState().vertexGrids.get();
    ASSERT_EQ(grids.size(), 2u);
    EXPECT_EQ(grids[0].tolerance, 1.0);
    EXPECT_EQ(grids[1].tolerance, 5.0);
    // Tolerance 5: (0, 0) -> cell (0, 0) and (3, 0) -> R(0.6) = 1, cell (1, 0).
    ASSERT_EQ(grids[1].cells.size(), 2u);
    EXPECT_EQ(grids[1].cells.begin()->first, xcPair<long>(0, 0));
    EXPECT_EQ(grids[1].cells.rbegin()->first, xcPair<long>(1, 0));
}

TEST(ContourVertexIndex, GridsDroppedByChange) {
    ContourProbe c(Points{{0, 0}, {3, 0}}, false, 0);
    c.vertexIndex({0, 0}, 1.0);
    c.points(Points{{3, 0}, {0, 0}});
    EXPECT_EQ(c.cacheState().vertexGrids.get(), nullptr);
    EXPECT_EQ(c.vertexIndex({0, 0}, 1.0), std::vector<int>{1});
}

TEST(ContourVertexIndex, NaNToleranceFindsNothingAndKeepsOneGrid) {
    ContourProbe c(Points{{0, 0}, {1, 0}}, false, 0);
    const double nan = std::nan("");
    EXPECT_TRUE(c.vertexIndex({0, 0}, nan).empty());
    EXPECT_TRUE(c.vertexIndex({0, 0}, nan).empty());
    EXPECT_EQ(c.cacheState().vertexGrids.get()->size(), 1u);
}

TEST(ContourVertexIndex, ZeroAndNegativeTolerancesFindNothing) {
    xcContour c(Points{{0, 0}, {1, 0}}, false);
    EXPECT_TRUE(c.vertexIndex({0, 0}, 0.0).empty());
    EXPECT_TRUE(c.vertexIndex({0, 0}, -1.0).empty());
}

TEST(ContourVertexIndex, CellsBeyondTheRangeOfLongStillFindTheVertex) {
    // 1e300 / 1e-300 overflows to infinity: the cell saturates, and the distance test decides.
    xcContour c(Points{{1e300, 0}, {-1e300, 0}}, false);
    EXPECT_EQ(c.vertexIndex({1e300, 0}, 1e-300), std::vector<int>{0});
    EXPECT_EQ(c.vertexIndex({-1e300, 0}, 1e-300), std::vector<int>{1});
}

TEST(ContourVertexIndex, NeedsTwoVertices) {
    ContourProbe c(Points{{0, 0}}, true, 0);
    expectEmptyContour([&] { c.vertexIndex({0, 0}, 1.0); });
    EXPECT_EQ(c.cacheState().vertexGrids.get(), nullptr);
}

TEST(ContourVertexIndex, AgreesWithBruteForceOnRandomContours) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> coordinate(-20.0, 20.0);
    std::uniform_real_distribution<double> toleranceDist(0.05, 6.0);
    for (int trial = 0; trial < 40; ++trial) {
        Points p(200);
        for (xcVector<2>& v : p) v = xcVector<2>(coordinate(rng), coordinate(rng));
        xcContour c(p, trial % 2 == 0);
        for (int query = 0; query < 10; ++query) {
            const xcVector<2> q(coordinate(rng), coordinate(rng));
            const double t = toleranceDist(rng);
            std::vector<int> expected;
            for (std::size_t i = 0; i < p.size(); ++i)
                if (std::hypot(p[i].x() - q.x(), p[i].y() - q.y()) < t) expected.push_back(static_cast<int>(i));
            std::vector<int> found = c.vertexIndex(q, t);
            std::sort(found.begin(), found.end());
            EXPECT_EQ(found, expected) << "trial " << trial << " query " << query;
        }
    }
}
