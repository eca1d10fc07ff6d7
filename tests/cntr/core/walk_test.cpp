// The core's boundary walk and loop reduction on prepared outlines, against the region's
// regularize and outerHull (which answer the walk's questions from their own caches): the same
// outline bit for bit, or the same exception, on hand-made and seeded self-crossing outlines.
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/loops.h>
#include <cntr/core/walk.h>
#include <cntr/region.h>
#include <foundation/exception.h>
#include <foundation/random.h>

namespace {

using Points = std::vector<xcVector<2>>;
using cntr::core::PreparedOutline;

// What a repair gave: the outline, or the exception's kind and message.
struct Outcome {
    std::string failure;
    Points points;
};

template <class Repair>
Outcome outcomeOf(Repair repair) {
    Outcome o;
    try {
        o.points = repair();
    } catch (const xcContourDefs::BadParams& e) {
        o.failure = "BadParams " + xfToUtf8(e.message());
    } catch (const xcContourDefs::EmptyContour&) {
        o.failure = "EmptyContour";
    }
    return o;
}

Outcome coreRepair(const Points& p, bool full) {
    return outcomeOf([&] {
        const Points walk = cntr::core::boundaryWalk(PreparedOutline(p, true));
        return full ? cntr::core::outerLoop(walk) : walk;
    });
}

Outcome regionRepair(const Points& p, bool full) {
    return outcomeOf([&] {
        const xcRegion region(p);
        xcRegion result;
        if (full)
            region.outerHull(result);
        else
            region.regularize(result);
        return result.points();
    });
}

void expectSame(const Outcome& a, const Outcome& b, const std::string& where) {
    EXPECT_EQ(a.failure, b.failure) << where;
    ASSERT_EQ(a.points.size(), b.points.size()) << where;
    for (std::size_t i = 0; i < a.points.size(); ++i)
        EXPECT_EQ(std::memcmp(&a.points[i], &b.points[i], sizeof(xcVector<2>)), 0)
            << where << " vertex " << i;
}

TEST(CoreWalk, BowTieWalksItsOuterBoundary) {
    // The edges (0,0)-(2,2) and (2,0)-(0,2) cross at (1,1). Edge 0 -> 1 is crossed, so the walk
    // starts at vertex 1, (2,2), goes down to (2,0), turns at the crossing onto the other
    // diagonal, walks back to (0,0), up to (0,2), through the crossing again and home.
    const Points bowTie{{0, 0}, {2, 2}, {2, 0}, {0, 2}};
    const Points walk = cntr::core::boundaryWalk(PreparedOutline(bowTie, true));
    EXPECT_EQ(walk, (Points{{2, 0}, {1, 1}, {0, 0}, {0, 2}, {1, 1}, {2, 2}}));
    EXPECT_EQ(cntr::core::outerLoop(walk),
              (Points{{1, 1}, {0, 0}, {0, 2}, {1, 1}, {2, 2}, {2, 0}}));
}

TEST(CoreWalk, PentagramHasNoStartEdge) {
    Points star;
    for (int k = 0; k < 5; ++k)
        star.emplace_back(10.0, xcRadian(k * 4.0 * xcPi / 5.0));
    const Outcome o = coreRepair(star, false);
    EXPECT_EQ(o.failure, "BadParams invalid contour");
}

TEST(CoreWalk, FewerThanThreeVerticesAreEmpty) {
    EXPECT_THROW(cntr::core::boundaryWalk(PreparedOutline({{0, 0}, {1, 1}}, true)),
                 xcContourDefs::EmptyContour);
}

// Outlines of 4 to 40 vertices: uniform in a box (most cross themselves), and on a small
// integer grid so that vertices and crossings repeat.
TEST(CoreWalk, SeededOutlinesRepairAsTheRegionRepairsThem) {
    xcRandomUniform g(20261125);
    int crossing = 0;
    for (int s = 0; s < 1500; ++s) {
        Points p(static_cast<std::size_t>(4 + g.next(0.0, 37.0)));
        for (xcVector<2>& v : p)
            v = s % 3 == 0 ? xcVector<2>(std::floor(g.next(0.0, 7.0)), std::floor(g.next(0.0, 7.0)))
                           : xcVector<2>(g.next(0.0, 100.0), g.next(0.0, 100.0));
        if (!xcRegion(p).isSelfIntersecting())
            continue;
        ++crossing;
        for (const bool full : {false, true})
            expectSame(coreRepair(p, full), regionRepair(p, full),
                       "outline " + std::to_string(s) + (full ? " outer hull" : " regularize"));
        if (HasFailure())
            break;
    }
    EXPECT_GT(crossing, 1000);
}

}  // namespace
