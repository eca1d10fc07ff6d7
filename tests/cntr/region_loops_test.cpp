// The outer hull's reduction of a boundary walk to one outline: the join of loops that share a
// vertex, searched through cells of vertices, against the search over every pair of loops.
// Walks drawn from small pools of points (repeats exact, within the 1e-6 tolerance and at its
// boundary), rings of triangles that touch at their corners, and walks with huge, infinite and
// NaN coordinates. Both searches must leave the same outline bit for bit, or throw the same
// exception, and report the same failed checks.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <cntr/core/loops.h>
#include <foundation/exception.h>
#include <foundation/random.h>

namespace {

using Points = std::vector<xcVector<2>>;

// The two searches of the reduction: through the walk's grid, and the definition's.
enum class LoopSearch { plain, indexed };

#ifdef CNTR_TESTS_SANITIZED
constexpr int kWalks = 300;
#else
constexpr int kWalks = 3000;
#endif

int gAsserts = 0;
void countAssert(const char*, int) { ++gAsserts; }

// What one reduction left: the outline, or the exception's kind and message, and how many
// failed checks it reported.
struct Outcome {
    bool threw = false;
    std::string what;
    Points points;
    int asserts = 0;
};

Outcome reduce(const Points& walk, LoopSearch search) {
    Outcome o;
    gAsserts = 0;
    const xcAssertHandler previous = xfSetAssertHandler(&countAssert);
    try {
        o.points = search == LoopSearch::indexed ? cntr::core::outerLoop(walk)
                                                 : cntr::core::referenceOuterLoop(walk);
    } catch (const xcContourDefs::BadParams& e) {
        o.threw = true;
        o.what = "BadParams " + xfToUtf8(e.message());
    } catch (const xcContourDefs::EmptyContour&) {
        o.threw = true;
        o.what = "EmptyContour";
    }
    xfSetAssertHandler(previous);
    o.asserts = gAsserts;
    return o;
}

bool sameBits(const xcVector<2>& a, const xcVector<2>& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

void expectSameOutcome(const Points& walk, const std::string& where) {
    const Outcome plain = reduce(walk, LoopSearch::plain);
    const Outcome indexed = reduce(walk, LoopSearch::indexed);
    EXPECT_EQ(indexed.threw, plain.threw) << where;
    EXPECT_EQ(indexed.what, plain.what) << where;
    EXPECT_EQ(indexed.asserts, plain.asserts) << where;
    ASSERT_EQ(indexed.points.size(), plain.points.size()) << where;
    for (std::size_t i = 0; i < plain.points.size(); ++i)
        EXPECT_TRUE(sameBits(indexed.points[i], plain.points[i])) << where << " vertex " << i;
}

// A point moved off `p` by exactly, within or just beyond the repeated-vertex tolerance.
xcVector<2> nudged(xcRandomUniform& g, const xcVector<2>& p) {
    const double a = g.next(0.0, 2.0 * xcPi);
    const xcVector<2> u(std::cos(a), std::sin(a));
    switch (static_cast<int>(g.next(0.0, 4.0))) {
    case 0:
        return p + u * (1e-6 * (1.0 - 1e-9));
    case 1:
        return p + u * (1e-6 * (1.0 + 1e-9));
    case 2:
        return p + u * g.next(0.0, 1e-6);
    default:
        return p + u * 2e-6;
    }
}

// A walk of `length` points drawn from a pool of `poolSize` grid points, a quarter of them
// nudged (see nudged).
Points poolWalk(xcRandomUniform& g, int poolSize, int length, double scale) {
    Points pool;
    for (int i = 0; i < poolSize; ++i)
        pool.emplace_back(std::round(g.next(0.0, 12.0)) * scale, std::round(g.next(0.0, 12.0)) * scale);
    Points walk;
    for (int i = 0; i < length; ++i) {
        const xcVector<2>& p = pool[static_cast<std::size_t>(g.next(0.0, poolSize))];
        walk.push_back(g.next(0.0, 1.0) < 0.25 ? nudged(g, p) : p);
    }
    return walk;
}

// Triangles round a circle, each touching the next at a corner, walked in a shuffled order: the
// walk is cut into the triangles and they are joined again at their shared corners.
Points triangleRing(xcRandomUniform& g, int triangles) {
    Points corners;
    for (int j = 0; j < triangles; ++j) {
        const double a = 2.0 * xcPi * j / triangles;
        corners.emplace_back(100.0 * std::cos(a), 100.0 * std::sin(a));
    }
    std::vector<int> order;
    for (int j = 0; j < triangles; ++j) order.push_back(j);
    for (int j = triangles - 1; j > 0; --j)
        std::swap(order[static_cast<std::size_t>(j)], order[static_cast<std::size_t>(g.next(0.0, j + 1.0))]);
    Points walk;
    for (int j : order) {
        const xcVector<2>& c = corners[static_cast<std::size_t>(j)];
        const xcVector<2>& d = corners[static_cast<std::size_t>((j + 1) % triangles)];
        walk.push_back(c);
        walk.push_back((c + d) * 0.6);  // beyond the chord: the triangles do not overlap
        walk.push_back(d);
    }
    return walk;
}

TEST(RegionLoops, PoolWalksJoinAsEveryPairSearchJoinsThem) {
    xcRandomUniform g(424242);
    for (int w = 0; w < kWalks; ++w) {
        const int pool = 3 + static_cast<int>(g.next(0.0, 30.0));
        const int length = 3 + static_cast<int>(g.next(0.0, 200.0));
        const double scale = w % 3 == 0 ? 1.0 : (w % 3 == 1 ? 1e-5 : 1e6);
        expectSameOutcome(poolWalk(g, pool, length, scale), "pool walk " + std::to_string(w));
        if (HasFailure()) break;
    }
}

TEST(RegionLoops, TriangleRingsAreJoinedIntoOneOutline) {
    xcRandomUniform g(31);
    int joined = 0;
    for (int w = 0; w < kWalks / 10; ++w) {
        const int triangles = 3 + static_cast<int>(g.next(0.0, 60.0));
        const Points walk = triangleRing(g, triangles);
        expectSameOutcome(walk, "ring " + std::to_string(w));
        const Outcome o = reduce(walk, LoopSearch::indexed);
        if (!o.threw && o.asserts == 0 && o.points.size() > 3) ++joined;
        if (HasFailure()) break;
    }
    // The comparison is about joins: a good share of the rings must have been joined into one
    // outline of more than one triangle (the others keep the loop that contains the rest).
    EXPECT_GT(joined, kWalks / 10 / 4);
}

TEST(RegionLoops, NonFiniteAndHugeWalksJoinAsEveryPairSearchJoinsThem) {
    xcRandomUniform g(5);
    const double specials[] = {std::numeric_limits<double>::quiet_NaN(), HUGE_VAL, -HUGE_VAL, 1e300,
                               -1e300, 1.7e308};
    for (int w = 0; w < kWalks / 10; ++w) {
        Points walk = poolWalk(g, 4 + static_cast<int>(g.next(0.0, 12.0)), 40, w % 2 == 0 ? 1e150 : 1.0);
        for (int i = 0; i < 4; ++i) {
            const double v = specials[static_cast<std::size_t>(g.next(0.0, 6.0))];
            const std::size_t at = static_cast<std::size_t>(g.next(0.0, static_cast<double>(walk.size())));
            walk[at] = i % 2 == 0 ? xcVector<2>(v, walk[at].y()) : xcVector<2>(walk[at].x(), v);
        }
        expectSameOutcome(walk, "special walk " + std::to_string(w));
        if (HasFailure()) break;
    }
}

// A walk that comes back to three points a hundred times each has 30,000 neighbour pairs for
// 300 points: the neighbour lists are not built (they would grow quadratically) and the plain
// searches give the outline.
TEST(RegionLoops, CrowdedWalkTakesThePlainSearches) {
    xcRandomUniform g(8);
    for (int w = 0; w < 20; ++w) {
        const Points walk = poolWalk(g, 3, 300, 1.0);
        expectSameOutcome(walk, "crowded walk " + std::to_string(w));
    }
}

}  // namespace
