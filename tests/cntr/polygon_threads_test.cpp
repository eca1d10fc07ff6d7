// Eight threads ask one shared polygon (and multipolygon) for its prepared data, validity and
// point locations at the same moment; every thread must see what a single thread computes, bit for bit.
#include <atomic>
#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/edge_index.h>
#include <cntr/core/point_locator.h>
#include <cntr/polygon.h>

namespace {

using cntr::MultiPolygon;
using cntr::Polygon;
using cntr::Ring;
using cntr::Validity;

constexpr int kThreads = 8;

Ring circleRing(std::size_t n, double radius, double cx, double cy) {
    Ring ring;
    for (std::size_t i = 0; i < n; ++i) {
        const double a = 2.0 * M_PI * static_cast<double>(i) / static_cast<double>(n);
        ring.push_back({cx + radius * std::cos(a), cy + radius * std::sin(a)});
    }
    return ring;
}

bool sameBits(const Validity& a, const Validity& b) {
    return a.valid == b.valid && a.problem == b.problem && a.message == b.message &&
           std::memcmp(&a.location, &b.location, sizeof a.location) == 0 && a.member == b.member &&
           a.ring == b.ring && a.edge == b.edge && a.otherMember == b.otherMember &&
           a.otherRing == b.otherRing && a.otherEdge == b.otherEdge;
}

// Whether two indices hold the same boxes, node for node, bit for bit.
bool sameIndex(const cntr::core::EdgeIndex& a, const cntr::core::EdgeIndex& b,
               const cntr::core::EdgeNode& node) {
    if (std::memcmp(&a.box(node), &b.box(node), sizeof(cntr::core::Box)) != 0 ||
        std::memcmp(&a.turnedBox(node), &b.turnedBox(node), sizeof(cntr::core::TurnedBox)) != 0)
        return false;
    if (node.level == 0)
        return a.firstEdge(node) == b.firstEdge(node) && a.lastEdge(node) == b.lastEdge(node);
    if (a.firstChild(node) != b.firstChild(node) || a.lastChild(node) != b.lastChild(node))
        return false;
    for (std::size_t c = a.firstChild(node); c < a.lastChild(node); ++c)
        if (!sameIndex(a, b, {node.level - 1, c}))
            return false;
    return true;
}

struct Seen {
    std::vector<const cntr::core::EdgeIndex*> indexes;
    Validity validity;
    Validity multiValidity;
    const cntr::core::PointLocator* locator = nullptr;
    std::vector<cntr::Location> locations;
    std::vector<cntr::Location> multiLocations;
};

// Points on a grid over the polygon's bounds and beyond, some on its vertices.
std::vector<xcVector<2>> probePoints(const Ring& exterior) {
    std::vector<xcVector<2>> points(exterior.begin(), exterior.begin() + 10);
    for (int i = -40; i <= 40; ++i)
        for (int j = -40; j <= 40; ++j)
            points.push_back({3.0 * i + 0.25, 3.0 * j});
    return points;
}

// Runs `work` on kThreads threads released together.
template <class Work>
std::vector<Seen> runTogether(Work work) {
    std::vector<Seen> seen(kThreads);
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            ready.fetch_add(1);
            while (ready.load() < kThreads)
                std::this_thread::yield();
            seen[static_cast<std::size_t>(t)] = work();
        });
    for (std::thread& thread : threads)
        thread.join();
    return seen;
}

void checkAgainstSingleThread(const std::vector<Ring>& rings, const Ring& otherMember) {
    const std::vector<Ring> holes(rings.begin() + 1, rings.end());
    const Polygon shared(rings[0], holes);
    const MultiPolygon sharedMulti({shared, Polygon(otherMember)});
    const std::vector<Seen> seen = runTogether([&] {
        Seen s;
        for (std::size_t r = 0; r < shared.ringCount(); ++r)
            s.indexes.push_back(shared.edgeIndex(r));
        s.validity = shared.validity();
        s.multiValidity = sharedMulti.validity();
        s.locator = &shared.locator();
        s.locations = shared.locate(probePoints(rings[0]));
        s.multiLocations = sharedMulti.locate(probePoints(rings[0]), 0.5);
        return s;
    });

    // Computed apart, on one thread, from polygons that share nothing with the ones above.
    const Polygon alone(rings[0], holes);
    const MultiPolygon aloneMulti({Polygon(rings[0], holes), Polygon(otherMember)});
    const std::vector<cntr::Location> locations = alone.locate(probePoints(rings[0]));
    const std::vector<cntr::Location> multiLocations =
        aloneMulti.locate(probePoints(rings[0]), 0.5);
    for (const Seen& s : seen) {
        EXPECT_EQ(s.locator, seen[0].locator);  // one locator, built once
        EXPECT_EQ(s.locations, locations);
        EXPECT_EQ(s.multiLocations, multiLocations);
        EXPECT_TRUE(sameBits(s.validity, alone.validity()));
        EXPECT_TRUE(sameBits(s.multiValidity, aloneMulti.validity()));
        ASSERT_EQ(s.indexes.size(), alone.ringCount());
        for (std::size_t r = 0; r < s.indexes.size(); ++r) {
            // One index per ring, built once: every thread got the same object.
            EXPECT_EQ(s.indexes[r], seen[0].indexes[r]);
            ASSERT_EQ(s.indexes[r] == nullptr, alone.edgeIndex(r) == nullptr);
            if (s.indexes[r]) {
                EXPECT_TRUE(sameIndex(*s.indexes[r], *alone.edgeIndex(r), s.indexes[r]->root()));
            }
        }
    }
}

TEST(PolygonThreads, ValidPolygonPreparedOnceForEightThreads) {
    const std::vector<Ring> rings = {circleRing(400, 100, 0, 0), circleRing(64, 10, 30, 0),
                                     circleRing(5, 5, -30, 0)};
    checkAgainstSingleThread(rings, circleRing(50, 10, 300, 0));
    EXPECT_TRUE(Polygon(rings[0], {rings[1], rings[2]}).isValid());
}

TEST(PolygonThreads, InvalidPolygonReportsTheSameViolationOnEveryThread) {
    // The second hole crosses the exterior; the second member overlaps the first.
    const std::vector<Ring> rings = {circleRing(400, 100, 0, 0), circleRing(64, 10, 30, 0),
                                     circleRing(40, 10, 95, 0)};
    checkAgainstSingleThread(rings, circleRing(50, 10, 0, 0));
    EXPECT_EQ(Polygon(rings[0], {rings[1], rings[2]}).validity().problem,
              cntr::ValidityProblem::ringsCross);
}

}  // namespace
