#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/predicates.h>
#include <foundation/random.h>

namespace {

using Points = std::vector<xcVector<2>>;
using Kind = xcSegmentContact::Kind;

// 1/3 rounded down to a double, and the next double up: (1, kThirdBelow) lies just below the
// line through (0, 0) and (3, 1), (1, kThirdAbove) just above it (3 * 1/3 = 1 exactly, while
// 3 * kThirdBelow < 1 < 3 * kThirdAbove in exact arithmetic; rounded, both products are 1).
const double kThirdBelow = 1.0 / 3.0;
const double kThirdAbove = std::nextafter(1.0 / 3.0, 1.0);

TEST(PredicateOrientation, SignOfTheTurn) {
    EXPECT_EQ(xfOrientation({0, 0}, {1, 0}, {0, 1}), 1);
    EXPECT_EQ(xfOrientation({0, 0}, {0, 1}, {1, 0}), -1);
    EXPECT_EQ(xfOrientation({0, 0}, {1, 1}, {2, 2}), 0);
    EXPECT_EQ(xfOrientation({1, 1}, {1, 1}, {5, -3}), 0);
}

TEST(PredicateOrientation, DecidesWhereRoundedProductsCancel) {
    // (0.5, 0.5 + 2^-53) lies left of the line from (12, 12) to (24, 24) by exact arithmetic;
    // the rounded determinant of these points is 0.
    const xcVector<2> a{0.5, 0.5 + std::ldexp(1.0, -53)};
    EXPECT_EQ(xfOrientation(a, {12, 12}, {24, 24}), 1);
    EXPECT_EQ(xfOrientation({12, 12}, a, {24, 24}), -1);
    EXPECT_EQ(xfOrientation({0, 0}, {3, 1}, {1, kThirdBelow}), -1);
    EXPECT_EQ(xfOrientation({0, 0}, {3, 1}, {1, kThirdAbove}), 1);
}

TEST(PredicateOrientation, TinyAndHugeCoordinates) {
    const double tiny = std::ldexp(1.0, -1000);
    EXPECT_EQ(xfOrientation({0, 0}, {tiny, 0}, {0, tiny}), 1);
    const double huge = std::ldexp(1.0, 1000);
    EXPECT_EQ(xfOrientation({-huge, -huge}, {huge, -huge}, {0, huge}), 1);
    EXPECT_EQ(xfOrientation({-huge, 0}, {huge, 0}, {0, 0}), 0);
}

TEST(PredicateSegmentContact, ProperCrossingAndItsPoint) {
    const xcSegmentContact c = xfSegmentContact({0, 0}, {2, 2}, {2, 0}, {0, 2});
    EXPECT_EQ(c.kind, Kind::crossing);
    EXPECT_EQ(c.point, (xcVector<2>{1, 1}));
}

TEST(PredicateSegmentContact, Disjoint) {
    EXPECT_EQ(xfSegmentContact({0, 0}, {1, 0}, {0, 1}, {1, 1}).kind, Kind::disjoint);
    // On one line, apart.
    EXPECT_EQ(xfSegmentContact({0, 0}, {1, 1}, {2, 2}, {3, 3}).kind, Kind::disjoint);
    // The second segment's line passes through the first, the segment stops short.
    EXPECT_EQ(xfSegmentContact({0, 0}, {2, 0}, {1, 1}, {1, 0.5}).kind, Kind::disjoint);
}

TEST(PredicateSegmentContact, TouchAtAnEndInTheOtherInterior) {
    const xcSegmentContact t = xfSegmentContact({0, 0}, {2, 0}, {1, 0}, {1, 3});
    EXPECT_EQ(t.kind, Kind::touching);
    EXPECT_EQ(t.point, (xcVector<2>{1, 0}));
    const xcSegmentContact u = xfSegmentContact({1, 3}, {1, 0}, {0, 0}, {2, 0});
    EXPECT_EQ(u.kind, Kind::touching);
    EXPECT_EQ(u.point, (xcVector<2>{1, 0}));
}

TEST(PredicateSegmentContact, TouchAtSharedEnds) {
    const xcSegmentContact t = xfSegmentContact({0, 0}, {1, 0}, {1, 0}, {1, 1});
    EXPECT_EQ(t.kind, Kind::touching);
    EXPECT_EQ(t.point, (xcVector<2>{1, 0}));
    // Collinear, end to end.
    const xcSegmentContact c = xfSegmentContact({0, 0}, {1, 1}, {2, 2}, {1, 1});
    EXPECT_EQ(c.kind, Kind::touching);
    EXPECT_EQ(c.point, (xcVector<2>{1, 1}));
}

TEST(PredicateSegmentContact, CollinearOverlapStartsAtSmallestCommonPoint) {
    const xcSegmentContact c = xfSegmentContact({3, 0}, {0, 0}, {1, 0}, {5, 0});
    EXPECT_EQ(c.kind, Kind::overlapping);
    EXPECT_EQ(c.point, (xcVector<2>{1, 0}));
    // Vertical: ordered by y.
    const xcSegmentContact v = xfSegmentContact({0, 4}, {0, 1}, {0, 0}, {0, 2});
    EXPECT_EQ(v.kind, Kind::overlapping);
    EXPECT_EQ(v.point, (xcVector<2>{0, 1}));
    // One inside the other.
    const xcSegmentContact w = xfSegmentContact({0, 0}, {4, 4}, {3, 3}, {1, 1});
    EXPECT_EQ(w.kind, Kind::overlapping);
    EXPECT_EQ(w.point, (xcVector<2>{1, 1}));
}

TEST(PredicateSegmentContact, PointSegments) {
    EXPECT_EQ(xfSegmentContact({1, 0}, {1, 0}, {0, 0}, {2, 0}).kind, Kind::touching);
    EXPECT_EQ(xfSegmentContact({0, 0}, {2, 0}, {1, 1}, {1, 1}).kind, Kind::disjoint);
    EXPECT_EQ(xfSegmentContact({1, 1}, {1, 1}, {1, 1}, {1, 1}).kind, Kind::touching);
    EXPECT_EQ(xfSegmentContact({1, 1}, {1, 1}, {1, 2}, {1, 2}).kind, Kind::disjoint);
}

TEST(PredicateSegmentContact, VertexOneUlpOffTheSegment) {
    // Just below the segment (0,0)-(3,1): the edge from there up to (2, 2) crosses it.
    const xcSegmentContact below = xfSegmentContact({0, 0}, {3, 1}, {1, kThirdBelow}, {2, 2});
    EXPECT_EQ(below.kind, Kind::crossing);
    // Just above: the segments do not meet at all.
    EXPECT_EQ(xfSegmentContact({0, 0}, {3, 1}, {1, kThirdAbove}, {2, 2}).kind, Kind::disjoint);
    // 1/3 exactly on the segment (0,0)-(3,1) needs y = 1/3; (1.5, 0.5) is exact and on it.
    const xcSegmentContact on = xfSegmentContact({0, 0}, {3, 1}, {1.5, 0.5}, {2, 2});
    EXPECT_EQ(on.kind, Kind::touching);
    EXPECT_EQ(on.point, (xcVector<2>{1.5, 0.5}));
}

const Points kSquare = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};

TEST(PredicateLocateInRing, InsideOutsideBoundary) {
    EXPECT_EQ(xfLocateInRing({2, 2}, kSquare), xcRingLocation::inside);
    EXPECT_EQ(xfLocateInRing({5, 2}, kSquare), xcRingLocation::outside);
    EXPECT_EQ(xfLocateInRing({-1, 0}, kSquare), xcRingLocation::outside);
    EXPECT_EQ(xfLocateInRing({4, 1}, kSquare), xcRingLocation::boundary);
    EXPECT_EQ(xfLocateInRing({0, 0}, kSquare), xcRingLocation::boundary);
    // Clockwise gives the same answers.
    const Points clockwise(kSquare.rbegin(), kSquare.rend());
    EXPECT_EQ(xfLocateInRing({2, 2}, clockwise), xcRingLocation::inside);
    EXPECT_EQ(xfLocateInRing({2, 4}, clockwise), xcRingLocation::boundary);
}

TEST(PredicateLocateInRing, RayThroughVerticesCountsOnce) {
    // A diamond: the ray from (0, 0) along +x passes through vertex (2, 0).
    const Points diamond = {{2, 0}, {0, 2}, {-2, 0}, {0, -2}};
    EXPECT_EQ(xfLocateInRing({0, 0}, diamond), xcRingLocation::inside);
    EXPECT_EQ(xfLocateInRing({-3, 0}, diamond), xcRingLocation::outside);
    // A notch whose bottom vertex (2, 2) lies on the ray from (1, 2): the ray touches it and
    // goes on inside, leaving through the right side.
    const Points notch = {{0, 0}, {4, 0}, {4, 4}, {3, 4}, {2, 2}, {1, 4}, {0, 4}};
    EXPECT_EQ(xfLocateInRing({1, 2}, notch), xcRingLocation::inside);
    EXPECT_EQ(xfLocateInRing({2, 3}, notch), xcRingLocation::outside);
}

TEST(PredicateLocateInRing, OneUlpFromAnEdge) {
    const Points triangle = {{0, 0}, {3, 1}, {0, 3}};
    EXPECT_EQ(xfLocateInRing({1, kThirdBelow}, triangle), xcRingLocation::outside);
    EXPECT_EQ(xfLocateInRing({1, kThirdAbove}, triangle), xcRingLocation::inside);
    EXPECT_EQ(xfLocateInRing({1.5, 0.5}, triangle), xcRingLocation::boundary);
}

TEST(PredicateLocateInRing, DegenerateRingsHaveNoInside) {
    EXPECT_EQ(xfLocateInRing({0, 0}, {}), xcRingLocation::outside);
    EXPECT_EQ(xfLocateInRing({1, 1}, {{1, 1}}), xcRingLocation::boundary);
    EXPECT_EQ(xfLocateInRing({1, 0}, {{0, 0}, {2, 0}}), xcRingLocation::boundary);
    EXPECT_EQ(xfLocateInRing({1, 1}, {{0, 0}, {2, 0}}), xcRingLocation::outside);
}

}  // namespace

namespace {

// Coordinates on a coarse grid, with an occasional nudge by one ulp (by 2^-30 at 0, keeping
// within the range where xfOrientation is exact): many touches, collinear overlaps and near
// misses.
double gridCoordinate(xcRandomUniform& random) {
    const double v = std::floor(random.next(0, 4));
    if (random.next(0, 1) >= 0.1)
        return v;
    const double direction = random.next(0, 1) < 0.5 ? -1.0 : 1.0;
    return v == 0.0 ? direction * std::ldexp(1.0, -30) : std::nextafter(v, 10.0 * direction);
}

TEST(PredicateSegmentContact, SeededSymmetricUnderSwapAndReversal) {
    xcRandomUniform random(4242);
    int kinds[4] = {};
    for (int round = 0; round < 20000; ++round) {
        const xcVector<2> a1{gridCoordinate(random), gridCoordinate(random)};
        const xcVector<2> a2{gridCoordinate(random), gridCoordinate(random)};
        const xcVector<2> b1{gridCoordinate(random), gridCoordinate(random)};
        const xcVector<2> b2{gridCoordinate(random), gridCoordinate(random)};
        const xcSegmentContact c = xfSegmentContact(a1, a2, b1, b2);
        ++kinds[c.kind];
        const xcSegmentContact swapped = xfSegmentContact(b2, b1, a1, a2);
        EXPECT_EQ(swapped.kind, c.kind);
        if (c.kind == Kind::touching || c.kind == Kind::overlapping) {
            // The common point is exact, so it is the same whichever way the segments are given.
            EXPECT_EQ(swapped.point, c.point);
            EXPECT_EQ(xfOrientation(a1, a2, c.point), 0);
            EXPECT_EQ(xfOrientation(b1, b2, c.point), 0);
        }
    }
    for (int count : kinds)
        EXPECT_GT(count, 100);
}

}  // namespace
