#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/edge_sweep.h>
#include <cntr/polygon.h>
#include <foundation/random.h>

#include "polygon_testing.h"

namespace {

using cntr::MultiPolygon;
using cntr::Polygon;
using cntr::Ring;
using cntr::Validity;
using Problem = cntr::ValidityProblem;

const Ring kSquare = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
const Ring kBig = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};

// 1/3 rounded down to a double and the next double up: (1, kThirdBelow) lies just below the
// line through (0, 0) and (3, 1), (1, kThirdAbove) just above it (exactly, 3 * kThirdBelow < 1 <
// 3 * kThirdAbove, while both products round to 1).
const double kThirdBelow = 1.0 / 3.0;
const double kThirdAbove = std::nextafter(1.0 / 3.0, 1.0);

void expectPlace(const Validity& v, long member, long ring, long edge, long otherMember,
                 long otherRing, long otherEdge) {
    EXPECT_EQ(v.member, member);
    EXPECT_EQ(v.ring, ring);
    EXPECT_EQ(v.edge, edge);
    EXPECT_EQ(v.otherMember, otherMember);
    EXPECT_EQ(v.otherRing, otherRing);
    EXPECT_EQ(v.otherEdge, otherEdge);
}

TEST(PolygonValidity, SimpleRingsInEitherOrientationAreValid) {
    EXPECT_TRUE(Polygon(kSquare).isValid());
    EXPECT_TRUE(Polygon(Ring(kSquare.rbegin(), kSquare.rend())).isValid());
    const Polygon p(kBig, {{{1, 1}, {3, 1}, {3, 3}, {1, 3}}, {{5, 5}, {5, 7}, {7, 7}}});
    const Validity& v = p.validity();
    EXPECT_TRUE(v.valid);
    EXPECT_EQ(v.problem, Problem::none);
    EXPECT_TRUE(v.message.empty());
    EXPECT_EQ(v.location, (xcVector<2>{0, 0}));
    expectPlace(v, -1, -1, -1, -1, -1, -1);
}

TEST(PolygonValidity, TooFewDistinctVertices) {
    const Validity v = Polygon({{0, 0}, {1, 0}, {1, 0}, {0, 0}}).validity();
    EXPECT_FALSE(v.valid);
    EXPECT_EQ(v.problem, Problem::tooFewVertices);
    EXPECT_EQ(v.message, L"exterior has fewer than 3 distinct vertices");
    expectPlace(v, 0, 0, 0, -1, -1, -1);
    const Validity h = Polygon(kSquare, {{{1, 1}, {2, 2}}}).validity();
    EXPECT_EQ(h.problem, Problem::tooFewVertices);
    EXPECT_EQ(h.message, L"hole 0 has fewer than 3 distinct vertices");
    EXPECT_EQ(h.location, (xcVector<2>{1, 1}));
    expectPlace(h, 0, 1, 0, -1, -1, -1);
}

TEST(PolygonValidity, CollinearRingHasZeroArea) {
    const Validity v = Polygon({{0, 0}, {1, 1}, {3, 3}, {2, 2}}).validity();
    EXPECT_EQ(v.problem, Problem::zeroArea);
    EXPECT_EQ(v.message, L"exterior has all its vertices on one line");
    EXPECT_EQ(v.location, (xcVector<2>{0, 0}));
}

TEST(PolygonValidity, BowTieCrossesItselfAtOneOne) {
    const Validity v = Polygon({{0, 0}, {2, 2}, {2, 0}, {0, 2}}).validity();
    EXPECT_FALSE(v.valid);
    EXPECT_EQ(v.problem, Problem::selfCrossing);
    EXPECT_EQ(v.location, (xcVector<2>{1, 1}));
    EXPECT_EQ(v.message, L"exterior edge 0 and exterior edge 2 cross at (1, 1)");
    expectPlace(v, 0, 0, 0, 0, 0, 2);
}

TEST(PolygonValidity, ReportNamesEdgesByTheirIndexInTheRing) {
    // The bow-tie started at its second vertex: the crossing edges are now 1 and 3.
    const Validity v = Polygon({{2, 2}, {2, 0}, {0, 2}, {0, 0}}).validity();
    EXPECT_EQ(v.problem, Problem::selfCrossing);
    EXPECT_EQ(v.location, (xcVector<2>{1, 1}));
    expectPlace(v, 0, 0, 1, 0, 0, 3);
}

TEST(PolygonValidity, FirstViolationIsTheEarliestEdgePair) {
    // A crossing of edges 1 and 3 and an overlap of edges 0 and 5 (the exterior runs back along
    // its first edge): the pair (0, 5) comes first.
    const Ring ring = {{0, 0}, {4, 0}, {6, 2}, {6, 0}, {4, 2}, {2, 0}};
    const Validity v = Polygon(ring).validity();
    EXPECT_EQ(v.problem, Problem::selfOverlap);
    EXPECT_EQ(v.location, (xcVector<2>{0, 0}));
    expectPlace(v, 0, 0, 0, 0, 0, 5);
}

TEST(PolygonValidity, SpikeOverlapsItself) {
    // Edges 3 ((2,4) -> (2,6)) and 4 ((2,6) -> (2,4)) run over one another.
    const Validity v = Polygon({{0, 0}, {4, 0}, {4, 4}, {2, 4}, {2, 6}, {2, 4}, {0, 4}}).validity();
    EXPECT_EQ(v.problem, Problem::selfOverlap);
    EXPECT_EQ(v.location, (xcVector<2>{2, 4}));
    EXPECT_EQ(v.message, L"exterior edge 3 and exterior edge 4 overlap from (2, 4)");
    expectPlace(v, 0, 0, 3, 0, 0, 4);
}

TEST(PolygonValidity, RepeatedVerticesAndStraightVerticesAreHarmless) {
    EXPECT_TRUE(Polygon({{0, 0}, {4, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 4}}).isValid());
    EXPECT_TRUE(Polygon({{0, 0}, {2, 0}, {4, 0}, {4, 4}, {0, 4}}).isValid());
}

TEST(PolygonValidity, RingTouchingItselfAtAPointIsValid) {
    // Two triangles meeting at (1, 1), which the ring passes twice without crossing there.
    EXPECT_TRUE(Polygon({{0, 0}, {1, 1}, {2, 0}, {2, 2}, {1, 1}, {0, 2}}).isValid());
}

TEST(PolygonValidity, RingCrossingItselfThroughAVertex) {
    // The ring passes (1, 1) twice, once south-west to north-east, once south-east to north-west:
    // no two edges cross, but the strands do.
    const Validity v = Polygon({{0, 0}, {1, 1}, {2, 2}, {2, 0}, {1, 1}, {0, 2}}).validity();
    EXPECT_EQ(v.problem, Problem::selfCrossing);
    EXPECT_EQ(v.location, (xcVector<2>{1, 1}));
    EXPECT_EQ(v.message, L"exterior edge 0 and exterior edge 3 cross through (1, 1)");
    expectPlace(v, 0, 0, 0, 0, 0, 3);
}

TEST(PolygonValidity, HoleCrossingTheOutlineThroughVerticesOnIt) {
    // The hole leaves the square through (2, 0) and comes back through (3, 0), both its own
    // vertices lying inside the square's first edge.
    const Validity v =
        Polygon(kSquare, {{{2, 1}, {2, 0}, {2, -1}, {3, -1}, {3, 0}, {3, 1}}}).validity();
    EXPECT_EQ(v.problem, Problem::ringsCross);
    EXPECT_EQ(v.location, (xcVector<2>{2, 0}));
    EXPECT_EQ(v.message, L"exterior edge 0 and hole 0 edge 0 cross through (2, 0)");
    expectPlace(v, 0, 0, 0, 0, 1, 0);
}

TEST(PolygonValidity, HoleTouchingTheOutlineAtOnePointIsValid) {
    // At an outline vertex.
    EXPECT_TRUE(Polygon(kSquare, {{{0, 0}, {2, 1}, {1, 2}}}).isValid());
    // A hole vertex inside an outline edge.
    EXPECT_TRUE(Polygon(kSquare, {{{2, 0}, {3, 2}, {1, 2}}}).isValid());
}

TEST(PolygonValidity, HoleSharingAnEdgeWithTheOutline) {
    const Validity v = Polygon(kSquare, {{{1, 0}, {3, 0}, {2, 2}}}).validity();
    EXPECT_EQ(v.problem, Problem::ringsOverlap);
    EXPECT_EQ(v.location, (xcVector<2>{1, 0}));
    EXPECT_EQ(v.message, L"exterior edge 0 and hole 0 edge 0 overlap from (1, 0)");
    expectPlace(v, 0, 0, 0, 0, 1, 0);
}

TEST(PolygonValidity, HoleCrossingTheOutline) {
    const Validity v = Polygon(kSquare, {{{3, 1}, {5, 1}, {5, 3}, {3, 3}}}).validity();
    EXPECT_EQ(v.problem, Problem::ringsCross);
    EXPECT_EQ(v.location, (xcVector<2>{4, 1}));
    expectPlace(v, 0, 0, 1, 0, 1, 0);
}

TEST(PolygonValidity, HoleOutside) {
    const Validity v = Polygon(kSquare, {{{1, 1}, {2, 1}, {2, 2}}, {{5, 5}, {6, 5}, {6, 6}}}).validity();
    EXPECT_EQ(v.problem, Problem::holeOutside);
    EXPECT_EQ(v.location, (xcVector<2>{5, 5}));
    EXPECT_EQ(v.message, L"hole 1 lies outside the exterior at (5, 5)");
    expectPlace(v, 0, 2, 0, 0, 0, -1);
    // Touching the outline from outside: the first vertex off the outline decides.
    const Validity t = Polygon(kSquare, {{{4, 1}, {6, 1}, {5, 3}}}).validity();
    EXPECT_EQ(t.problem, Problem::holeOutside);
    EXPECT_EQ(t.location, (xcVector<2>{6, 1}));
    expectPlace(t, 0, 1, 1, 0, 0, -1);
    // A hole around the exterior lies outside it too.
    const Validity around = Polygon(kSquare, {{{-1, -1}, {5, -1}, {5, 5}, {-1, 5}}}).validity();
    EXPECT_EQ(around.problem, Problem::holeOutside);
    EXPECT_EQ(around.location, (xcVector<2>{-1, -1}));
}

TEST(PolygonValidity, NestedHoles) {
    const Ring outer = {{1, 1}, {9, 1}, {9, 9}, {1, 9}};
    const Ring inner = {{2, 2}, {3, 2}, {3, 3}};
    const Validity v = Polygon(kBig, {outer, inner}).validity();
    EXPECT_EQ(v.problem, Problem::holesNested);
    EXPECT_EQ(v.location, (xcVector<2>{2, 2}));
    EXPECT_EQ(v.message, L"hole 1 lies inside hole 0 at (2, 2)");
    expectPlace(v, 0, 2, 0, 0, 1, -1);
    const Validity r = Polygon(kBig, {inner, outer}).validity();
    EXPECT_EQ(r.problem, Problem::holesNested);
    expectPlace(r, 0, 1, 0, 0, 2, -1);
}

TEST(PolygonValidity, HolesTouchingAtAPointAreValid) {
    EXPECT_TRUE(
        Polygon(kBig, {{{1, 1}, {3, 1}, {3, 3}, {1, 3}}, {{3, 3}, {5, 3}, {5, 5}, {3, 5}}}).isValid());
}

TEST(PolygonValidity, HolesSharingAnEdge) {
    const Validity v =
        Polygon(kBig, {{{1, 1}, {3, 1}, {3, 3}, {1, 3}}, {{3, 1}, {5, 1}, {5, 3}, {3, 3}}}).validity();
    EXPECT_EQ(v.problem, Problem::ringsOverlap);
    EXPECT_EQ(v.location, (xcVector<2>{3, 1}));
    expectPlace(v, 0, 1, 1, 0, 2, 3);
}

TEST(PolygonValidity, ManyHoles) {
    // 1600 triangles on a grid of pitch 3, then a small triangle inside the first one.
    std::vector<Ring> holes;
    for (int i = 0; i < 40; ++i)
        for (int j = 0; j < 40; ++j)
            holes.push_back({{3.0 * i + 1, 3.0 * j + 1}, {3.0 * i + 2, 3.0 * j + 1}, {3.0 * i + 1, 3.0 * j + 2}});
    const Ring exterior = {{0, 0}, {120, 0}, {120, 120}, {0, 120}};
    EXPECT_TRUE(Polygon(exterior, holes).isValid());
    holes.push_back({{1.25, 1.25}, {1.5, 1.25}, {1.25, 1.5}});
    const Validity v = Polygon(exterior, holes).validity();
    EXPECT_EQ(v.problem, Problem::holesNested);
    EXPECT_EQ(v.location, (xcVector<2>{1.25, 1.25}));
    expectPlace(v, 0, 1601, 0, 0, 1, -1);
}

// The exterior's first edge runs from (0, 0) to (3, 1); a hole vertex one ulp below or above the
// point (1, 1/3) of that edge. A test that rounded would find the vertex on the edge both times.
const Ring kSlanted = {{0, 0}, {3, 1}, {3, 3}, {0, 3}};

TEST(PolygonValidity, VertexOneUlpBelowAnEdgeCrossesIt) {
    const Validity v = Polygon(kSlanted, {{{1, kThirdBelow}, {2, 2}, {1, 2}}}).validity();
    EXPECT_EQ(v.problem, Problem::ringsCross);
    expectPlace(v, 0, 0, 0, 0, 1, 0);
    EXPECT_NEAR(v.location.x(), 1.0, 1e-15);
    EXPECT_NEAR(v.location.y(), 1.0 / 3.0, 1e-15);
}

TEST(PolygonValidity, VertexOneUlpAboveAnEdgeIsInside) {
    EXPECT_TRUE(Polygon(kSlanted, {{{1, kThirdAbove}, {2, 2}, {1, 2}}}).isValid());
}

TEST(PolygonValidity, VertexExactlyOnAnEdgeTouches) {
    // (1.5, 0.5) lies on the edge (0, 0)-(3, 1) exactly.
    EXPECT_TRUE(Polygon(kSlanted, {{{1.5, 0.5}, {2, 2}, {1, 2}}}).isValid());
}

TEST(PolygonValidity, NearlyCollinearRingIsNotZeroArea) {
    // (0.5, 0.5 + 2^-53) lies off the line through (12, 12) and (24, 24), by exact arithmetic;
    // its rounded orientation is 0.
    const Ring thin = {{0.5, 0.5 + std::ldexp(1.0, -53)}, {12, 12}, {24, 24}};
    EXPECT_TRUE(Polygon(thin).isValid());
    EXPECT_EQ(Polygon({{0.5, 0.5}, {12, 12}, {24, 24}}).validity().problem, Problem::zeroArea);
}

TEST(MultiPolygonValidity, DisjointAndPointTouchingMembersAreValid) {
    const Polygon a({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    EXPECT_TRUE(MultiPolygon({a, Polygon({{3, 0}, {4, 0}, {4, 1}})}).isValid());
    EXPECT_TRUE(MultiPolygon({a, Polygon({{1, 1}, {2, 1}, {2, 2}, {1, 2}})}).isValid());
}

TEST(MultiPolygonValidity, MembersSharingAnEdge) {
    const Polygon a({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    const Validity v = MultiPolygon({a, Polygon({{1, 0}, {2, 0}, {2, 1}, {1, 1}})}).validity();
    EXPECT_EQ(v.problem, Problem::ringsOverlap);
    EXPECT_EQ(v.location, (xcVector<2>{1, 0}));
    EXPECT_EQ(v.message, L"member 0 exterior edge 1 and member 1 exterior edge 3 overlap from (1, 0)");
    expectPlace(v, 0, 0, 1, 1, 0, 3);
}

TEST(MultiPolygonValidity, CrossingMembers) {
    const Polygon a({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
    const Validity v = MultiPolygon({a, Polygon({{1, 1}, {3, 1}, {3, 3}, {1, 3}})}).validity();
    EXPECT_EQ(v.problem, Problem::ringsCross);
    EXPECT_EQ(v.location, (xcVector<2>{2, 1}));
    expectPlace(v, 0, 0, 1, 1, 0, 0);
}

TEST(MultiPolygonValidity, MembersCrossingThroughVertices) {
    // The second member runs along the diagonal through the square's corners (2, 2) and (2, 0).
    const Polygon a({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
    const Validity v =
        MultiPolygon({a, Polygon({{1, 1}, {2, 2}, {3, 3}, {3, -1}, {2, 0}})}).validity();
    EXPECT_EQ(v.problem, Problem::ringsCross);
    EXPECT_EQ(v.location, (xcVector<2>{2, 0}));
    expectPlace(v, 0, 0, 0, 1, 0, 3);
}

TEST(MultiPolygonValidity, MemberInsideAnother) {
    const Validity v = MultiPolygon({Polygon(kBig), Polygon({{2, 2}, {3, 2}, {3, 3}})}).validity();
    EXPECT_EQ(v.problem, Problem::membersOverlap);
    EXPECT_EQ(v.location, (xcVector<2>{2, 2}));
    EXPECT_EQ(v.message, L"member 1 overlaps the interior of member 0 at (2, 2)");
    expectPlace(v, 1, 0, 0, 0, 0, -1);
    // Inside, touching the other's exterior at a vertex: still overlapping.
    const Validity t = MultiPolygon({Polygon({{0, 0}, {3, 2}, {2, 3}}), Polygon(kBig)}).validity();
    EXPECT_EQ(t.problem, Problem::membersOverlap);
    EXPECT_EQ(t.location, (xcVector<2>{3, 2}));
    expectPlace(t, 0, 0, 1, 1, 0, -1);
}

TEST(MultiPolygonValidity, MemberInAHoleIsValid) {
    const Polygon framed(kBig, {{{1, 1}, {9, 1}, {9, 9}, {1, 9}}});
    EXPECT_TRUE(MultiPolygon({framed, Polygon({{2, 2}, {3, 2}, {3, 3}})}).isValid());
    EXPECT_TRUE(MultiPolygon({Polygon({{2, 2}, {3, 2}, {3, 3}}), framed}).isValid());
    // Filling the hole exactly shares its edges.
    EXPECT_EQ(MultiPolygon({framed, Polygon({{1, 1}, {9, 1}, {9, 9}, {1, 9}})}).validity().problem,
              Problem::ringsOverlap);
}

TEST(MultiPolygonValidity, MemberRulesComeFirstInMemberOrder) {
    const MultiPolygon m({Polygon(kSquare), Polygon({{10, 0}, {12, 2}, {12, 0}, {10, 2}})});
    const Validity v = m.validity();
    EXPECT_EQ(v.problem, Problem::selfCrossing);
    EXPECT_EQ(v.location, (xcVector<2>{11, 1}));
    expectPlace(v, 1, 0, 0, 1, 0, 2);
}

// A star-shaped ring about (cx, cy): n vertices at increasing angles, random radii.
Ring starRing(xcRandomUniform& random, std::size_t n, double cx, double cy, double radius) {
    Ring ring;
    for (std::size_t i = 0; i < n; ++i) {
        const double a = 2.0 * M_PI * (static_cast<double>(i) + random.next(0.0, 0.9)) /
                         static_cast<double>(n);
        const double r = radius * random.next(0.3, 1.0);
        ring.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
    }
    return ring;
}

// A ring of random vertices on a small integer grid: many touches, overlaps and crossings.
Ring gridRing(xcRandomUniform& random, std::size_t n) {
    Ring ring;
    for (std::size_t i = 0; i < n; ++i)
        ring.push_back({std::floor(random.next(0, 5)), std::floor(random.next(0, 5))});
    return ring;
}

Ring rotatedBy(const Ring& ring, std::size_t shift) {
    if (ring.empty())
        return ring;
    Ring out(ring.begin() + static_cast<std::ptrdiff_t>(shift % ring.size()), ring.end());
    out.insert(out.end(), ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(shift % ring.size()));
    return out;
}

Polygon transformed(const Polygon& p, xcRandomUniform& random, bool reverse) {
    std::vector<Ring> rings;
    for (std::size_t r = 0; r < p.ringCount(); ++r) {
        Ring ring = rotatedBy(p.ring(r), static_cast<std::size_t>(random.next(0, 50)));
        if (reverse)
            std::reverse(ring.begin(), ring.end());
        rings.push_back(ring);
    }
    return Polygon(rings[0], std::vector<Ring>(rings.begin() + 1, rings.end()));
}

TEST(PolygonValidity, SeededValidityIgnoresStartVertexAndOrientation) {
    xcRandomUniform random(77);
    int valid = 0, invalid = 0;
    for (int round = 0; round < 400; ++round) {
        const bool grid = round % 2 == 1;
        const Ring exterior =
            grid ? gridRing(random, 3 + static_cast<std::size_t>(random.next(0, 6)))
                 : starRing(random, 3 + static_cast<std::size_t>(random.next(0, 40)), 0, 0, 10);
        std::vector<Ring> holes;
        for (int h = 0, n = static_cast<int>(random.next(0, 3)); h < n; ++h)
            holes.push_back(grid ? gridRing(random, 3 + static_cast<std::size_t>(random.next(0, 4)))
                                 : starRing(random, 3 + static_cast<std::size_t>(random.next(0, 8)),
                                            random.next(-4, 4), random.next(-4, 4), 2.5));
        const Polygon p(exterior, holes);
        const bool isValid = p.isValid();
        (isValid ? valid : invalid)++;
        for (bool reverse : {false, true}) {
            const Polygon q = transformed(p, random, reverse);
            EXPECT_EQ(q.isValid(), isValid) << ::testing::PrintToString(p);
        }
    }
    // Both outcomes occur often enough for the law to say something.
    EXPECT_GT(valid, 50);
    EXPECT_GT(invalid, 50);
}

}  // namespace

namespace {

// Every pair of edges, in (first, second) order: the definition the sweep must match.
std::optional<cntr::core::EdgeConflict> everyPairConflict(const std::vector<cntr::core::SweptEdge>& edges) {
    for (std::size_t i = 0; i < edges.size(); ++i)
        for (std::size_t j = i + 1; j < edges.size(); ++j) {
            if (edges[i].start == edges[i].end || edges[j].start == edges[j].end)
                continue;
            const xcSegmentContact c =
                xfSegmentContact(edges[i].start, edges[i].end, edges[j].start, edges[j].end);
            if (c.kind == xcSegmentContact::crossing || c.kind == xcSegmentContact::overlapping)
                return cntr::core::EdgeConflict{i, j, c};
        }
    return std::nullopt;
}

TEST(PolygonEdgeSweep, SeededSweepFindsTheFirstPairOfEveryPairLoop) {
    xcRandomUniform random(99);
    int found = 0, none = 0;
    for (int round = 0; round < 500; ++round) {
        std::vector<cntr::core::SweptEdge> edges;
        const std::size_t n = 2 + static_cast<std::size_t>(random.next(0, 30));
        const double spread = random.next(0, 1) < 0.5 ? 6.0 : 60.0;
        for (std::size_t k = 0; k < n; ++k) {
            const xcVector<2> a{std::floor(random.next(0, spread)), std::floor(random.next(0, spread))};
            const xcVector<2> b{a.x() + std::floor(random.next(-3, 4)), a.y() + std::floor(random.next(-3, 4))};
            edges.push_back({a, b, 0, 0, k});
        }
        const auto expected = everyPairConflict(edges);
        const auto swept = cntr::core::firstEdgeConflict(edges);
        ASSERT_EQ(swept.has_value(), expected.has_value());
        if (!expected) {
            ++none;
            continue;
        }
        ++found;
        EXPECT_EQ(swept->first, expected->first);
        EXPECT_EQ(swept->second, expected->second);
        EXPECT_EQ(swept->contact.kind, expected->contact.kind);
        EXPECT_EQ(swept->contact.point, expected->contact.point);
    }
    EXPECT_GT(found, 50);
    EXPECT_GT(none, 50);
}

}  // namespace
