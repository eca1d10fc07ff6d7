// splice: two crossing outlines joined into one through their first crossing. Segment k of an
// outline is edge k, from vertex k-1 to vertex k (segment 0 is the closing edge).
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>

#include "region_access.h"
#include "region_testing.h"

namespace {

xcRegion spliced(const xcRegion& a, const xcRegion& b) {
    xcRegion out;
    xcRegionTestAccess::splice(a, b, out);
    return out;
}

TEST(RegionSplice, OverlappingSquaresPassThroughTheirFirstCrossingTwice) {
    // a = (0,0) (2,0) (2,2) (0,2), b = (1,1) (3,1) (3,3) (1,3). a's segment 0 (x = 0) and
    // segment 1 (y = 0) miss b; segment 2, (2,0) -> (2,2), meets b's segment 1, (1,1) -> (3,1),
    // at X = (2,1) (b's segment 3 runs at y = 3). The outline: X, the ends of a's segments 2, 3,
    // 0, 1, X again, the ends of b's segments 1, 2, 3, 0. Holes are not carried over.
    RegionProbe a(square(0, 0, 2));
    a.holes(std::vector<RegionHandle>{regionOf(square(0.2, 0.2, 0.5))});
    RegionProbe b(square(1, 1, 2));
    b.holes(std::vector<RegionHandle>{regionOf(square(2.5, 2.5, 0.2))});
    const xcRegion out = spliced(a, b);
    EXPECT_EQ(
        out.points(),
        (Points{{2, 1}, {2, 2}, {0, 2}, {0, 0}, {2, 0}, {2, 1}, {3, 1}, {3, 3}, {1, 3}, {1, 1}}));
    EXPECT_TRUE(out.holes().empty());
}

TEST(RegionSplice, DisjointSquaresAreRefused) {
    const xcRegion a(square(0, 0, 1));
    const xcRegion b(square(5, 5, 1));
    xcRegion out(square(0, 0, 3));
    expectBadParams([&] { xcRegionTestAccess::splice(a, b, out); },
                    L"spliced regions do not intersect");
    EXPECT_EQ(out.points(), square(0, 0, 3));
}

TEST(RegionSplice, SquaresThatOnlyTouchAreJoinedAtTheTouch) {
    // a = (0,0) (2,0) (2,2) (0,2) and b = (2,0) (4,0) (4,2) (2,2) share the side x = 2. End
    // touches count: a's segment 1, (0,0) -> (2,0), meets b's segment 0, (2,2) -> (2,0), at its
    // end (2,0) (b's segment 1 lies on the same line and is never reported).
    const xcRegion out = spliced(xcRegion(square(0, 0, 2)), xcRegion(square(2, 0, 2)));
    EXPECT_EQ(
        out.points(),
        (Points{{2, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 0}, {2, 0}, {2, 0}, {4, 0}, {4, 2}, {2, 2}}));
}

TEST(RegionSplice, ZeroLengthEdgeIsSkippedAndContributesTheOrigin) {
    // a = (4,4) (6,4) (6,6) (4,6) (4,4): segment 0 joins (4,4) to itself, so it is stored as the
    // default segment (0,0) -> (0,0) and marked invalid. It is skipped, although b's side
    // x = 0 passes through (0,0). Segment 1, (4,4) -> (6,4), meets b's segment 2,
    // (5,-2) -> (5,5), at (5,4). The stored end of segment 0 is (0,0), and so is the vertex it
    // contributes to the outline.
    const xcRegion a(Points{{4, 4}, {6, 4}, {6, 6}, {4, 6}, {4, 4}});
    const xcRegion b(Points{{0, -2}, {5, -2}, {5, 5}, {0, 5}});
    const xcRegion out = spliced(a, b);
    EXPECT_EQ(out.points(), (Points{{5, 4},
                                    {6, 4},
                                    {6, 6},
                                    {4, 6},
                                    {4, 4},
                                    {0, 0},
                                    {5, 4},
                                    {5, 5},
                                    {0, 5},
                                    {0, -2},
                                    {5, -2}}));
}

TEST(RegionSplice, ResultMayBeOneOfTheRegions) {
    xcRegion a(square(0, 0, 2));
    const xcRegion b(square(1, 1, 2));
    xcRegionTestAccess::splice(a, b, a);
    EXPECT_EQ(a.points().size(), 10u);
    EXPECT_EQ(a.points().front(), xcVector<2>(2, 1));
}

TEST(RegionSplice, OtherOutlineOfOneVertexIsEmpty) {
    const xcRegion a(square(0, 0, 2));
    const xcRegion b(Points{{1, 1}});
    xcRegion out;
    expectEmptyContour([&] { xcRegionTestAccess::splice(a, b, out); });
}

}  // namespace
