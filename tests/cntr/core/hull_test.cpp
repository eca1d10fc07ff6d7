// The core's convex hull on point sets whose hulls are read off by hand.
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/hull.h>
#include <foundation/exception.h>

namespace {

using cntr::core::convexHull;
using Points = std::vector<xcVector<2>>;

TEST(CoreHull, LShapeLosesItsInnerCorner) {
    // The inner corner (1, 1) has x + y = 2, inside the hull edge x + y = 3 from (2, 1) to (1, 2).
    const Points l{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    EXPECT_EQ(convexHull(l), (Points{{0, 0}, {2, 0}, {2, 1}, {1, 2}, {0, 2}}));
}

TEST(CoreHull, StartsAtTheSmallestXAndRunsCounterClockwise) {
    // A clockwise square listed from (2, 2): the hull starts at (0, 0), the smallest x then y.
    const Points clockwise{{2, 2}, {2, 0}, {0, 0}, {0, 2}};
    EXPECT_EQ(convexHull(clockwise), (Points{{0, 0}, {2, 0}, {2, 2}, {0, 2}}));
}

TEST(CoreHull, CollinearAndRepeatedPointsAreDropped) {
    const Points p{{0, 0}, {1, 0}, {2, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 1}};
    EXPECT_EQ(convexHull(p), (Points{{0, 0}, {2, 0}, {2, 2}, {0, 2}}));
}

TEST(CoreHull, FewPointsAreTheirOwnHull) {
    EXPECT_EQ(convexHull(Points{}), Points{});
    EXPECT_EQ(convexHull(Points{{3, 4}}), (Points{{3, 4}}));
    EXPECT_EQ(convexHull(Points{{3, 4}, {1, 5}}), (Points{{1, 5}, {3, 4}}));
}

TEST(CoreHull, NotANumberThrowsNotFinite) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(convexHull(Points{{0, 0}, {nan, 1}, {2, 0}}), xcMathError::NotFinite);
}

}  // namespace
