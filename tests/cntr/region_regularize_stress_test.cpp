// regularize and outerHull over seeded random self-crossing outlines: every call returns a
// region whose outline does not cross itself, or refuses the outline with "invalid contour";
// none crashes or hangs (the walk's own bound turns a would-be hang into "invalid contour";
// speed is the benchmark's business, not a wall-clock check that a loaded machine can trip).
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <foundation/exception.h>
#include <foundation/random.h>

#include "region_testing.h"

namespace {

// The sanitizers slow the walk down about tenfold; their build runs 3,000 outlines instead of
// 10,000 to stay within half a minute.
#ifdef CNTR_TESTS_SANITIZED
constexpr int kOutlinesPerFamily = 1000;
#else
constexpr int kOutlinesPerFamily = 3334;
#endif
constexpr int kMinVertices = 4;
constexpr int kMaxVertices = 60;

int vertexCount(xcRandomUniform& g) {
    return kMinVertices + static_cast<int>(g.next(0.0, kMaxVertices - kMinVertices + 1));
}

// Points uniform in the box [0, 100)^2.
Points boxOutline(xcRandomUniform& g) {
    Points p(static_cast<std::size_t>(vertexCount(g)));
    for (xcVector<2>& v : p)
        v = xcVector<2>(g.next(0.0, 100.0), g.next(0.0, 100.0));
    return p;
}

// A star whose spikes alternate between an inner radius in [10, 30) and an outer one in
// [60, 100), each vertex's angle jittered by up to 1.5 steps either way so that edges cross.
Points spikyStar(xcRandomUniform& g) {
    const int n = vertexCount(g);
    const double step = 2.0 * xcPi / n;
    Points p;
    for (int i = 0; i < n; ++i) {
        const double r = i % 2 == 0 ? g.next(60.0, 100.0) : g.next(10.0, 30.0);
        p.emplace_back(r, xcRadian(i * step + g.next(-1.5, 1.5) * step));
    }
    return p;
}

// Points on the integer grid 0..6, so that vertices repeat, with every fifth vertex (on
// average) a copy of an earlier one.
Points repeatingOutline(xcRandomUniform& g) {
    Points p;
    for (int i = vertexCount(g); i > 0; --i) {
        if (!p.empty() && g.next(0.0, 1.0) < 0.2)
            p.push_back(p[static_cast<std::size_t>(g.next(0.0, static_cast<double>(p.size())))]);
        else
            p.emplace_back(std::floor(g.next(0.0, 7.0)), std::floor(g.next(0.0, 7.0)));
    }
    return p;
}

// Whether the walk (the regularised outline) reaches a point twice in a row, within the 1e-6
// at which the outer hull takes two points for one.
bool walkRepeatsAPointAtOnce(const xcRegion& r) {
    xcRegion walk;
    r.regularize(walk);
    const Points& q = walk.points();
    for (std::size_t i = 0; i < q.size(); ++i)
        if (q[i].distance(q[(i + 1) % q.size()]) < 1e-6)
            return true;
    return false;
}

// Counts the loops left unjoined (assertion 621), which is a defined outcome, and checks that
// nothing else is reported.
struct AssertCounter {
    static int unjoined;
    static void handler(const char* file, int line) {
        EXPECT_EQ(std::string(file), "cntr/region");
        EXPECT_EQ(line, 621);
        ++unjoined;
    }
};
int AssertCounter::unjoined = 0;

// Installs the counter for its lifetime.
class CountingAsserts {
  public:
    CountingAsserts() : previous_(xfSetAssertHandler(&AssertCounter::handler)) {}
    ~CountingAsserts() { xfSetAssertHandler(previous_); }
    CountingAsserts(const CountingAsserts&) = delete;
    CountingAsserts& operator=(const CountingAsserts&) = delete;

  private:
    xcAssertHandler previous_;
};

struct Tally {
    int simple = 0;   // the outline did not cross itself
    int walked = 0;   // a crossing outline gave a result
    int refused = 0;  // "invalid contour"
    int oneVertexLoop = 0;
};

std::string describe(const Points& p) {
    return ::testing::PrintToString(xcRegion(p));
}

// Runs one operation and checks its outcome.
template <class Operation>
void check(const Points& p, bool hull, Operation op, Tally& tally) {
    const xcRegion r(p);
    xcRegion out;
    try {
        op(r, out);
        if (!r.isSelfIntersecting())
            ++tally.simple;
        else
            ++tally.walked;
        EXPECT_FALSE(out.isSelfIntersecting())
            << (hull ? "outerHull of " : "regularize of ") << describe(p);
    } catch (const xcContourDefs::BadParams& e) {
        EXPECT_EQ(e.message(), L"invalid contour") << describe(p);
        ++tally.refused;
    } catch (const xcContourDefs::EmptyContour&) {
        // A repeated point on the walk cuts off a loop of one vertex in the outer hull (see
        // RegionRegularize.RepeatedVertexOnTheWalkCutsOffALoopOfOneVertex); nothing else may
        // throw it.
        EXPECT_TRUE(hull) << describe(p);
        EXPECT_TRUE(walkRepeatsAPointAtOnce(r)) << describe(p);
        ++tally.oneVertexLoop;
    }
}

template <class Generator>
Tally runFamily(std::uint64_t seed, Generator generate) {
    const CountingAsserts counting;
    xcRandomUniform g(seed);
    Tally tally;
    for (int i = 0; i < kOutlinesPerFamily; ++i) {
        const Points p = generate(g);
        check(
            p, false, [](const xcRegion& r, xcRegion& out) { r.regularize(out); }, tally);
        check(
            p, true, [](const xcRegion& r, xcRegion& out) { r.outerHull(out); }, tally);
    }
    return tally;
}

TEST(RegionRegularizeStress, PointsInABox) {
    const Tally t = runFamily(101, boxOutline);
    EXPECT_GT(t.walked, kOutlinesPerFamily / 10);
    EXPECT_EQ(t.oneVertexLoop, 0);
}

TEST(RegionRegularizeStress, SpikyStars) {
    const Tally t = runFamily(202, spikyStar);
    EXPECT_GT(t.walked, kOutlinesPerFamily);
    EXPECT_EQ(t.oneVertexLoop, 0);
}

TEST(RegionRegularizeStress, OutlinesWithRepeatedVertices) {
    const Tally t = runFamily(303, repeatingOutline);
    EXPECT_GT(t.walked, kOutlinesPerFamily / 10);
}

}  // namespace
