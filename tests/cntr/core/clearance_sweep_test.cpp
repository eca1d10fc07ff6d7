// The clearance sweep: small outlines whose contacts and gaps are read off by hand, and seeded
// outlines on which every `clear` verdict is checked against the distances of all pairs of edges
// without a common vertex, and every reported pair against its own distance.
#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/clearance_sweep.h>
#include <cntr/tolerances.h>
#include <foundation/geometry.h>
#include <foundation/predicates.h>
#include <foundation/random.h>

#include "core_shapes.h"

namespace {

using cntr::core::Clearance;
using cntr::core::edgeClearance;
using cntr::core::OutlineView;
using Points = std::vector<xcVector<2>>;
using Verdict = Clearance::Verdict;

constexpr double kReach = cntr::kSegmentReach;

#ifdef CNTR_TESTS_SANITIZED
constexpr int kOutlines = 60;
#else
constexpr int kOutlines = 600;
#endif

Clearance clearance(const Points& p, bool closed) {
    return edgeClearance(OutlineView(p, closed), kReach);
}

bool listed(const Clearance& c, std::size_t a, std::size_t b) {
    return std::find(c.pairs.begin(), c.pairs.end(), std::make_pair(a, b)) != c.pairs.end() ||
           std::find(c.pairs.begin(), c.pairs.end(), std::make_pair(b, a)) != c.pairs.end();
}

// ---- edges as the outline forms them ----

std::size_t edgeCount(const Points& p, bool closed) {
    return closed ? p.size() : p.size() - 1;
}
std::size_t startOf(const Points& p, bool closed, std::size_t k) {
    return cntr::core::edgeStartVertex(k, p.size(), closed);
}
std::size_t endOf(bool closed, std::size_t k) {
    return cntr::core::edgeEndVertex(k, closed);
}

bool shareVertex(const Points& p, bool closed, std::size_t a, std::size_t b) {
    const std::size_t sa = startOf(p, closed, a), ea = endOf(closed, a);
    const std::size_t sb = startOf(p, closed, b), eb = endOf(closed, b);
    return sa == sb || sa == eb || ea == sb || ea == eb;
}

// The distance between two closed segments: 0 when they meet (decided exactly), else the least
// distance from an end of one to the other.
double distance(const Points& p, bool closed, std::size_t a, std::size_t b) {
    const xcVector<2>& a1 = p[startOf(p, closed, a)];
    const xcVector<2>& a2 = p[endOf(closed, a)];
    const xcVector<2>& b1 = p[startOf(p, closed, b)];
    const xcVector<2>& b2 = p[endOf(closed, b)];
    if (xfSegmentContact(a1, a2, b1, b2).kind != xcSegmentContact::disjoint)
        return 0.0;
    const xcLineSeg sa(a1, a2), sb(b1, b2);
    return std::min(
        {sa.distToPoint(b1), sa.distToPoint(b2), sb.distToPoint(a1), sb.distToPoint(a2)});
}

// The least distance between two edges without a common vertex (by index), from every pair.
double closestApart(const Points& p, bool closed) {
    double least = HUGE_VAL;
    const std::size_t m = edgeCount(p, closed);
    for (std::size_t a = 0; a < m; ++a)
        for (std::size_t b = a + 1; b < m; ++b)
            if (!shareVertex(p, closed, a, b))
                least = std::min(least, distance(p, closed, a, b));
    return least;
}

// ---- small outlines ----

TEST(CoreClearance, SquareIsClear) {
    const Points square{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_EQ(clearance(square, true).verdict, Verdict::clear);
    EXPECT_EQ(clearance(square, false).verdict, Verdict::clear);
}

TEST(CoreClearance, BowTieNamesItsCrossingEdges) {
    // Closed, edge 1 runs (0, 0) -> (10, 10) and edge 3 (10, 0) -> (0, 10): they cross at (5, 5).
    const Points bowTie{{0, 0}, {10, 10}, {10, 0}, {0, 10}};
    const Clearance c = clearance(bowTie, true);
    ASSERT_EQ(c.verdict, Verdict::closeEdges);
    EXPECT_TRUE(listed(c, 1, 3));
}

TEST(CoreClearance, VertexOnAnEdgeIsNamedWithThatEdge) {
    // Vertex 3, (5, 0), lies on edge 1, (0, 0) -> (10, 0); its edges are 3 and 4.
    const Points p{{0, 0}, {10, 0}, {10, 10}, {5, 0}, {0, 10}};
    const Clearance c = clearance(p, true);
    ASSERT_EQ(c.verdict, Verdict::closeEdges);
    EXPECT_TRUE(listed(c, 1, 3) || listed(c, 1, 4));
}

TEST(CoreClearance, VertexJustAboveAnEdgeIsCloseUnlessFarEnough) {
    // Vertex 3 at height h over edge 1, (0, 0) -> (10, 0): the vertical gap is h.
    for (const double h : {1e-7, 1e-6, 3.9e-6, 8e-6}) {
        const Points p{{0, 0}, {10, 0}, {10, 10}, {5, h}, {0, 10}};
        const Clearance c = clearance(p, true);
        ASSERT_EQ(c.verdict, Verdict::closeEdges) << h;
        EXPECT_TRUE(listed(c, 1, 3) && listed(c, 1, 4)) << h;
    }
    // Gaps beyond twice the reach (8e-6) and beyond 3 reach from every vertex: clear.
    const Points far{{0, 0}, {10, 0}, {10, 10}, {5, 1e-3}, {0, 10}};
    EXPECT_EQ(clearance(far, true).verdict, Verdict::clear);
}

TEST(CoreClearance, SteepEdgeBesideAVertexIsFoundAcrossTheSweep) {
    // Vertex 0, (0, 0), has both edges to its left; edge 4, (1e-7, -10) -> (2e-7, 10), passes
    // 1.5e-7 to its right and does not reach x = 0, where the nearest edges lie about 10 away. The
    // sweep with x and y exchanged meets it on the line y = 0.
    const Points p{{0, 0}, {-5, -3}, {-5, -20}, {1e-7, -10}, {2e-7, 10}, {-5, 20}, {-5, 3}};
    const Clearance c = clearance(p, true);
    ASSERT_EQ(c.verdict, Verdict::closeEdges);
    EXPECT_TRUE(listed(c, 0, 4) && listed(c, 1, 4));
    // The same with the edge 1e-3 away is clear.
    Points apart = p;
    apart[3] = xcVector<2>(1e-3, -10);
    apart[4] = xcVector<2>(1e-3, 10);
    EXPECT_EQ(clearance(apart, true).verdict, Verdict::clear);
}

TEST(CoreClearance, RepeatedOrCloseVerticesAreNeverClear) {
    // Vertex 4 repeats vertex 1 (a figure of eight): edge 5 from it passes through vertex 1.
    Points p{{0, 0}, {10, 0}, {20, 10}, {20, 0}, {10, 0}, {0, 10}};
    EXPECT_NE(clearance(p, true).verdict, Verdict::clear);
    // Vertex 4 1e-5 above vertex 1 (within 3 reach): edge 5 passes 1e-5 above vertex 1, beyond
    // twice the reach, and the vertices' check gives up.
    p[4] = xcVector<2>(10, 1e-5);
    EXPECT_EQ(clearance(p, true).verdict, Verdict::undecided);
    // A repeat of the previous vertex: a zero-length edge.
    const Points repeat{{0, 0}, {10, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_EQ(clearance(repeat, false).verdict, Verdict::undecided);
}

TEST(CoreClearance, AdjacentEdgesThatOverlapLeaveItUndecided) {
    // Open, edges 0 and 1 both leave (0, 0) towards +x along the same line.
    const Points p{{5, 0}, {0, 0}, {10, 0}, {10, 10}};
    EXPECT_EQ(clearance(p, false).verdict, Verdict::undecided);
}

TEST(CoreClearance, FewerThanThreeEdgesLeaveItUndecided) {
    EXPECT_EQ(clearance(Points{{0, 0}, {1, 0}}, true).verdict, Verdict::undecided);
    EXPECT_EQ(clearance(Points{{0, 0}, {1, 0}, {1, 1}}, false).verdict, Verdict::undecided);
    EXPECT_EQ(clearance(Points{{0, 0}, {1, 0}, {1, 1}}, true).verdict, Verdict::clear);
}

// ---- seeded outlines ----

Points seededOutline(int s, xcRandomUniform& g) {
    const int n = 4 + static_cast<int>(g.next(0.0, 150.0));
    switch (s % 6) {
        case 0:
            return core_shapes::spikyStar(n, 5.0, 45.0, g);
        case 1:
            return core_shapes::wobblyRing(n, 40.0, 3.0, g);
        case 2:
            return core_shapes::randomWalk(n, g.next(0.1, 2.0), g);
        case 3:
            return core_shapes::onGrid(core_shapes::spikyStar(n, 5.0, 45.0, g), 4.0);
        case 4:
            return core_shapes::withDegeneracies(core_shapes::wobblyRing(n, 40.0, 3.0, g), 0.1, g);
        default: {
            static const double kGaps[] = {0.0,    1e-7, 1e-6,   2e-6, 3.9e-6,
                                           4.1e-6, 8e-6, 1.3e-5, 1e-4};
            return core_shapes::vertexNearAnEdge(std::max(n, 12),
                                                 kGaps[static_cast<int>(g.next(0.0, 9.0))], g);
        }
    }
}

TEST(CoreClearance, ClearOnlyWhereEveryPairKeepsTheReach) {
    xcRandomUniform g(20261125);
    int verdicts[3] = {0, 0, 0};
    for (int s = 0; s < kOutlines; ++s) {
        const Points p = seededOutline(s, g);
        const bool closed = s % 5 != 4;
        const Clearance c = clearance(p, closed);
        ++verdicts[static_cast<int>(c.verdict)];
        const std::string where =
            "outline " + std::to_string(s) + " (" + std::to_string(p.size()) + " vertices)";
        const double least = closestApart(p, closed);
        if (c.verdict == Verdict::clear) {
            EXPECT_GE(least, kReach) << where;
            EXPECT_TRUE(c.pairs.empty()) << where;
        }
        if (c.verdict == Verdict::closeEdges) {
            // Some named pair lies within the reported gap: 0 for a contact, at most 2 reach
            // from a vertex to an edge.
            ASSERT_FALSE(c.pairs.empty()) << where;
            double nearest = HUGE_VAL;
            for (const auto& [a, b] : c.pairs) {
                ASSERT_LT(a, edgeCount(p, closed)) << where;
                ASSERT_LT(b, edgeCount(p, closed)) << where;
                nearest = std::min(nearest, distance(p, closed, a, b));
            }
            EXPECT_LE(nearest, 2.0 * kReach * (1.0 + 1e-9)) << where;
        }
        if (HasFailure())
            break;
    }
    // Each verdict is reached often enough for the checks to mean something.
    EXPECT_GT(verdicts[static_cast<int>(Verdict::clear)], kOutlines / 5);
    EXPECT_GT(verdicts[static_cast<int>(Verdict::closeEdges)], kOutlines / 5);
    EXPECT_GT(verdicts[static_cast<int>(Verdict::undecided)], kOutlines / 20);
}

TEST(CoreClearance, EveryGapBelowTheReachIsCaught) {
    // A vertex moved within the reach of an edge across the ring is never certified clear; moved
    // beyond 3 reach, on rings whose vertices lie far apart, the sweep certifies it.
    xcRandomUniform g(4711);
    int clear = 0;
    for (int s = 0; s < kOutlines / 2; ++s) {
        const double gap = s % 2 == 0 ? g.next(0.0, kReach) : g.next(3.0 * kReach, 1e-3);
        const Points p =
            core_shapes::vertexNearAnEdge(12 + static_cast<int>(g.next(0.0, 100.0)), gap, g);
        const Clearance c = clearance(p, s % 3 != 0);
        if (s % 2 == 0)
            EXPECT_NE(c.verdict, Verdict::clear) << "outline " << s << ", gap " << gap;
        else
            clear += c.verdict == Verdict::clear ? 1 : 0;
    }
    EXPECT_GT(clear, kOutlines / 20);
}

}  // namespace
