// The prepared outline answers as a fresh region of the same vertices does: bounds, segment
// hits, first hits and crossing counts, with and without an edge index.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/prepared_outline.h>
#include <cntr/region.h>
#include <foundation/random.h>

#include "../region_access.h"
#include "core_shapes.h"

namespace {

using Points = std::vector<xcVector<2>>;
using cntr::core::PreparedOutline;

TEST(CorePreparedOutline, SquareByHand) {
    const PreparedOutline square({{0, 0}, {4, 0}, {4, 4}, {0, 4}}, true);
    EXPECT_EQ(square.bounds(), xcRect(xcVector<2>(0, 0), xcVector<2>(4, 4)));
    EXPECT_EQ(square.index(), nullptr);  // 4 edges: the plain loops serve
    // y = 2 from x = -1 to 5 crosses edges 2 ((4,0)-(4,4)) and 0 ((0,4)-(0,0)).
    EXPECT_EQ(square.hitCount(xcLineSeg({-1, 2}, {5, 2}), false), 2u);
    cntr::core::SegmentHit first{};
    ASSERT_TRUE(square.firstHit(xcLineSeg({5, 2}, {-1, 2}), first));
    EXPECT_EQ(first.point, xcVector<2>(4, 2));
    EXPECT_EQ(first.edge, 2);
    EXPECT_EQ(square.crossingCount({2, 1}, false), 1);
    EXPECT_EQ(square.crossingCount({5, 5}, false), 0);  // outside the bounds
    EXPECT_EQ(square.crossingCount({4, 4}, false), 1);  // on a vertex
}

TEST(CorePreparedOutline, FewerThanTwoVerticesAreEmpty) {
    const PreparedOutline one({{1, 1}}, true);
    EXPECT_THROW(one.bounds(), xcContourDefs::EmptyContour);
    EXPECT_THROW(one.hitCount(xcLineSeg({0, 0}, {2, 2}), true), xcContourDefs::EmptyContour);
    EXPECT_THROW(one.crossingCount({1, 1}, false), xcContourDefs::EmptyContour);
}

TEST(CorePreparedOutline, AnswersAsTheRegionDoes) {
    xcRandomUniform g(99);
    for (const int n : {12, 40, 300, 2000}) {
        const Points p = core_shapes::wobblyRing(n, 30.0, 10.0, g);
        const PreparedOutline prepared(p, true);
        const xcRegion region(p);
        EXPECT_EQ(prepared.index() != nullptr, n >= 32) << n;
        EXPECT_EQ(prepared.bounds(), xcRegion(p).encloseRect(xcXform<2>::I)) << n;
        for (int q = 0; q < 300; ++q) {
            const xcVector<2> a(g.next(0.0, 100.0), g.next(0.0, 100.0));
            const xcVector<2> b(g.next(0.0, 100.0), g.next(0.0, 100.0));
            const xcLineSeg seg(a, b);
            EXPECT_EQ(prepared.hitCount(seg, true), xcRegionTestAccess::hitCount(region, seg, true))
                << n;
            EXPECT_EQ(prepared.hitCount(seg, false),
                      xcRegionTestAccess::hitCount(region, seg, false))
                << n;
            cntr::core::SegmentHit first{};
            xcVector<2> point;
            int edge = -1;
            const bool found = xcRegionTestAccess::firstHit(region, seg, point, edge);
            ASSERT_EQ(prepared.firstHit(seg, first), found) << n;
            if (found) {
                EXPECT_EQ(first.point, point) << n;
                EXPECT_EQ(first.edge, edge) << n;
            }
            for (const bool bothWays : {false, true})
                EXPECT_EQ(prepared.crossingCount(a, bothWays),
                          xcRegionTestAccess::insideCount(region, a, bothWays))
                    << n;
        }
    }
}

}  // namespace
