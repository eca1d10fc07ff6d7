#include <cmath>

#include <gtest/gtest.h>

#include <cntr/contour.h>

#include "contour_testing.h"

using Defs = xcContourDefs;

namespace {
Points square2() { return {{0, 0}, {2, 0}, {2, 2}, {0, 2}}; }
}  // namespace

TEST(ContourEncloseCircle, SquareFurthestPairIsFirstDiagonal) {
    // Pairs in order (0,0),(0,1),(0,2): the diagonal 0-2 of length 2 sqrt(2) is the first
    // maximum; centre (1, 1), radius sqrt(2).
    xcContour c(square2(), true);
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_EQ(k.center(), xcVector<2>(1, 1));
    EXPECT_DOUBLE_EQ(k.radius(), std::sqrt(2.0));
}

TEST(ContourEncloseCircle, SquareFromFirstVertex) {
    // Centre vertex 0, radius the distance to (2, 2): 2 sqrt(2).
    xcContour c(square2(), true);
    const xcCircle k = c.encloseCircle(Defs::fromFirstVertex);
    EXPECT_EQ(k.center(), xcVector<2>(0, 0));
    EXPECT_DOUBLE_EQ(k.radius(), 2.0 * std::sqrt(2.0));
}

TEST(ContourEncloseCircle, SquareDiameters) {
    const xcContour c(square2(), true);
    EXPECT_DOUBLE_EQ(c.diameter(Defs::furthestVertexPair), 2.0 * std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(c.diameter(Defs::fromFirstVertex), 4.0 * std::sqrt(2.0));
}

TEST(ContourEncloseCircle, EquilateralTriangleLeavesThirdVertexOutside) {
    // Side 1, apex (0.5, sqrt(3)/2). Pair (0,1) has distance exactly 1; the other sides equal 1
    // only up to rounding, so the first pair to reach the largest computed distance is found by
    // the same ordered search here, written independently over the three vertices.
    const Points v{{0, 0}, {1, 0}, {0.5, std::sqrt(3.0) / 2.0}};
    double best = 0.0;
    xcVector<2> centre;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const double d = std::hypot(v[i].x() - v[j].x(), v[i].y() - v[j].y());
            if (d > best) {
                best = d;
                centre = (v[i] + v[j]) / 2.0;
            }
        }
    }
    xcContour c(v, true);
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_NEAR(k.radius(), 0.5, 1e-15);
    EXPECT_EQ(k.center(), centre);
    // The vertex outside the pair lies sqrt(3)/2 = 0.866 from the centre, beyond the radius 0.5.
    int outside = 0;
    for (const xcVector<2>& p : v) outside += p.distance(k.center()) > k.radius() + 0.3 ? 1 : 0;
    EXPECT_EQ(outside, 1);
}

TEST(ContourEncloseCircle, TieBetweenPairsKeepsFirstInPairOrder) {
    // Squared distances: 0-1 = 100, 0-2 = 36 + 64 = 100, 1-2 = 36 + 4 = 40. Pairs (0,1) and
    // (0,2) tie at exactly 10 with midpoints (0, 5) and (3, 4); (0,1) comes first.
    xcContour c(Points{{0, 0}, {0, 10}, {6, 8}}, false);
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_EQ(k.center(), xcVector<2>(0, 5));
    EXPECT_EQ(k.radius(), 5.0);
    // Listed the other way round, pair (0,1) is now the one through (6,8).
    xcContour r(Points{{0, 0}, {6, 8}, {0, 10}}, false);
    EXPECT_EQ(r.encloseCircle(Defs::furthestVertexPair).center(), xcVector<2>(3, 4));
}

TEST(ContourEncloseCircle, ClosedFlagPlaysNoPart) {
    xcContour open(square2(), false);
    xcContour closed(square2(), true);
    EXPECT_EQ(open.encloseCircle(Defs::furthestVertexPair), closed.encloseCircle(Defs::furthestVertexPair));
    EXPECT_EQ(open.encloseCircle(Defs::fromFirstVertex), closed.encloseCircle(Defs::fromFirstVertex));
}

TEST(ContourEncloseCircle, ModeTwoThrowsBadParamsWithMessage) {
    ContourProbe c(square2(), true, 0);
    try {
        c.encloseCircle(static_cast<Defs::DiameterMode>(2));
        FAIL() << "no exception";
    } catch (const Defs::BadParams& e) {
        EXPECT_EQ(e.errorNumber(), 0x10004683);
        EXPECT_EQ(e.message(), L"diameterMode is not one of the valid enums");
    }
    EXPECT_EQ(c.cacheState().encloseCircleValid, (std::vector<bool>{false, false}));
    EXPECT_EQ(c.cacheState().encloseCircleCount, 2u);
}

TEST(ContourEncloseCircle, NegativeModeThrowsBadParams) {
    xcContour c(square2(), true);
    EXPECT_THROW(c.encloseCircle(static_cast<Defs::DiameterMode>(-1)), Defs::BadParams);
}

TEST(ContourEncloseCircle, SecondCallUsesCacheAndChangeDiscardsIt) {
    ContourProbe c(square2(), true, 0);
    c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_EQ(c.cacheState().encloseCircleValid, (std::vector<bool>{true, false}));
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair).center(), xcVector<2>(1, 1));
    c.points(Points{{0, 0}, {6, 0}});
    EXPECT_EQ(c.cacheState().encloseCircleValid, (std::vector<bool>{false, false}));
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_EQ(k.center(), xcVector<2>(3, 0));
    EXPECT_EQ(k.radius(), 3.0);
}

TEST(ContourEncloseCircle, CoincidentVerticesGiveDefaultCircleMarkedValid) {
    ContourProbe c(Points{{3, 3}, {3, 3}, {3, 3}}, true, 0);
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair), xcCircle());
    EXPECT_EQ(c.cacheState().encloseCircleValid, (std::vector<bool>{true, false}));
}

TEST(ContourEncloseCircle, CoincidentVerticesAfterChangeStillGiveDefaultCircle) {
    xcContour c(square2(), true);
    c.encloseCircle(Defs::furthestVertexPair);
    c.points(Points{{3, 3}, {3, 3}});
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair), xcCircle());
}

TEST(ContourEncloseCircle, SingleVertex) {
    xcContour c(Points{{4, 5}}, true);
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair), xcCircle());
    EXPECT_EQ(c.encloseCircle(Defs::fromFirstVertex), xcCircle(xcVector<2>(4, 5), 0.0));
}

TEST(ContourEncloseCircle, EmptyContourGivesDefaultCircleInBothModes) {
    xcContour c;
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair), xcCircle());
    EXPECT_EQ(c.encloseCircle(Defs::fromFirstVertex), xcCircle());
}

TEST(ContourEncloseCircle, FromFirstVertexContainsEveryVertex) {
    const Points v{{1, 1}, {4, 5}, {-2, 3}, {0, -6}};
    xcContour c(v, false);
    const xcCircle k = c.encloseCircle(Defs::fromFirstVertex);
    EXPECT_EQ(k.center(), xcVector<2>(1, 1));
    EXPECT_DOUBLE_EQ(k.radius(), std::sqrt(1.0 + 49.0));  // (0,-6): dx -1, dy -7
    for (const xcVector<2>& p : v) EXPECT_LE(p.distance(k.center()), k.radius());
}
