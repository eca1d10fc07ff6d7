// Every function of the geometry core run from 8 threads at once on shared outlines and shared
// edge indexes: each thread's results must be the single-threaded results, bit for bit. Under the
// thread sanitizer (preset tsan) the same runs also prove that no function writes shared state.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/circles.h>
#include <cntr/core/containment.h>
#include <cntr/core/edge_index.h>
#include <cntr/core/ellipse.h>
#include <cntr/core/extent.h>
#include <cntr/core/hull.h>
#include <cntr/core/inertia.h>
#include <cntr/core/length.h>
#include <cntr/core/loops.h>
#include <cntr/core/moments.h>
#include <cntr/core/nearest.h>
#include <cntr/core/prepared_outline.h>
#include <cntr/core/reference.h>
#include <cntr/core/segment_hits.h>
#include <cntr/core/statistics.h>
#include <cntr/core/walk.h>
#include <foundation/random.h>

#include "core_shapes.h"

namespace {

using namespace cntr::core;
using Points = std::vector<xcVector<2>>;

constexpr int kThreads = 8;

// A closed blob of n vertices around (50, 50) with a seeded wobble, and a star whose spikes
// alternate between two radii (its long edges cross the bounding boxes of many others).
Points blob(int n, xcRandomUniform& g) {
    return core_shapes::wobblyRing(n, 40.0, 2.0, g);
}

Points star(int n) {
    Points p;
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * i / n;
        const double r = i % 2 == 0 ? 45.0 : 5.0;
        p.emplace_back(50.0 + r * std::cos(a), 50.0 + r * std::sin(a));
    }
    return p;
}

// A shape shared by every thread: its vertices, closed flag, edge table and edge index.
struct SharedShape {
    Points points;
    bool closed;
    EdgeTable table;
    std::shared_ptr<const EdgeIndex> index;

    SharedShape(Points p, bool c) : points(std::move(p)), closed(c) {
        fillEdgeTable(view(), table);
        index = EdgeIndex::build(view());
    }
    OutlineView view() const { return OutlineView(points, closed); }
};

// Every result as its bits, so that the comparison is exact (NaN included).
void record(std::vector<std::uint64_t>& out, double v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    out.push_back(bits);
}
void record(std::vector<std::uint64_t>& out, const xcVector<2>& v) {
    record(out, v.x());
    record(out, v.y());
}
void record(std::vector<std::uint64_t>& out, const InertiaRecord& r) {
    record(out, r.area);
    record(out, r.centre);
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j)
            record(out, r.moments.element(i, j));
}
void record(std::vector<std::uint64_t>& out, const xcEllipse& e) {
    record(out, e.center().vector());
    record(out, e.r1());
    record(out, e.r2());
    record(out, e.rotation().toDouble());
}
void record(std::vector<std::uint64_t>& out, const std::vector<SegmentHit>& hits) {
    out.push_back(hits.size());
    for (const SegmentHit& h : hits) {
        record(out, h.point);
        out.push_back(static_cast<std::uint64_t>(h.edge));
    }
}

// The queries: segments and points spread over and around the shapes, the same for every run.
struct Queries {
    std::vector<xcLineSeg> segments;
    Points points;
};

Queries makeQueries() {
    xcRandomUniform g(2026);
    Queries q;
    for (int i = 0; i < 40; ++i) {
        const xcVector<2> a(g.next(-10.0, 110.0), g.next(-10.0, 110.0));
        const xcVector<2> b(g.next(-10.0, 110.0), g.next(-10.0, 110.0));
        q.segments.emplace_back(a, b);
        q.points.push_back(a);
    }
    return q;
}

// Every core function on one shared shape; the results in call order.
std::vector<std::uint64_t> workload(const SharedShape& s, const Queries& q) {
    std::vector<std::uint64_t> out;
    const OutlineView outline = s.view();
    const xcRect bounds = boundingRect(outline);
    record(out, bounds.ul());
    record(out, bounds.lr());
    record(out, outlineLength(outline));
    record(out, wireCentre(outline));
    out.push_back(static_cast<std::uint64_t>(extremalVertex(outline, xcRadian(0.3))));
    record(out,
           enclosingRect(outline, xcXform<2>(xcMatrix<2>(0.5, 1, -1, 2), xcVector<2>(3, 4))).lr());
    record(out, referenceLength(outline));
    record(out, polygonArea(s.points));
    record(out, referenceArea(s.points));
    record(out, polygonCentroid(s.points));
    record(out, referenceCentroid(s.points));
    const InertiaRecord inertia = polygonInertia(s.points);
    record(out, inertia);
    record(out, ellipseOfMoments(inertia.centre, inertia.moments));
    const EllipseFit fit = fitEllipse(s.points);
    record(out, fit.ellipse);
    record(out, fit.rms);
    std::vector<double> xs;
    for (const xcVector<2>& p : s.points)
        xs.push_back(p.x());
    record(out, standardDeviation(xs));
    for (const xcVector<2>& v : convexHull(s.points))
        record(out, v);
    record(out, combinedInertia(inertia, InertiaRecord{-1.0, xcVector<2>(40, 60),
                                                       xcMatrix<2>(0.5, 0.1, 0.1, 0.25)}));
    record(out, furthestPairCircle(outline).center());
    record(out, fromFirstVertexCircle(outline).radius());
    record(out, medianEdgeLength(s.table));
    out.push_back(selfIntersectingSwept(outline).value_or(false));
    out.push_back(referenceSelfIntersecting(outline));
    for (const xcLineSeg& seg : q.segments) {
        for (const bool touches : {false, true}) {
            const SegmentQuery query(seg, touches);
            std::vector<SegmentHit> hits;
            if (s.index)
                indexedHits(outline, *s.index, query, hits);
            orderAlong(hits, seg);
            record(out, hits);
            record(out, referenceSegmentQuery(outline, seg, touches));
        }
        SegmentHit first{};
        if (s.index && firstIndexedHit(outline, *s.index, SegmentQuery(seg, false), first))
            record(out, first.point);
        if (referenceFirstHitAlong(outline, seg, first))
            record(out, first.point);
    }
    const auto rays =
        raysFrom([&] { return s.index.get(); },
                 [&] { return 2.0 * fromFirstVertexCircle(outline).radius(); },
                 [&](const xcLineSeg& ray) {
                     std::vector<SegmentHit> hits;
                     const SegmentQuery query(ray, false);
                     if (s.index && EdgeIndex::accepts(ray.p1()) && EdgeIndex::accepts(ray.p2()))
                         indexedHits(outline, *s.index, query, hits);
                     else
                         referenceSegmentHits(s.table, query, hits);
                     return hits.size();
                 });
    for (const xcVector<2>& p : q.points) {
        if (s.index)
            record(out, nearestPointIndexed(outline, *s.index, p));
        record(out, referenceNearestPoint(outline, p));
        if (outline.closed()) {
            out.push_back(
                static_cast<std::uint64_t>(crossingCount(outline, bounds, p, true, rays)));
            out.push_back(static_cast<std::uint64_t>(referenceCrossingCount(outline, p, false)));
        }
    }
    return out;
}

// Runs the workload of every shape in kThreads threads at once and compares with `expected`.
void expectSameFromEveryThread(const std::vector<SharedShape>& shapes, const Queries& q) {
    std::vector<std::vector<std::uint64_t>> expected;
    for (const SharedShape& s : shapes)
        expected.push_back(workload(s, q));
    std::vector<std::vector<std::vector<std::uint64_t>>> got(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            // Each thread starts at a different shape, so that different functions overlap.
            got[t].resize(shapes.size());
            for (std::size_t i = 0; i < shapes.size(); ++i) {
                const std::size_t k = (i + static_cast<std::size_t>(t)) % shapes.size();
                got[t][k] = workload(shapes[k], q);
            }
        });
    for (std::thread& th : threads)
        th.join();
    for (int t = 0; t < kThreads; ++t)
        for (std::size_t k = 0; k < shapes.size(); ++k)
            EXPECT_EQ(got[t][k], expected[k]) << "thread " << t << ", shape " << k;
}

std::vector<SharedShape> sharedShapes() {
    xcRandomUniform g(7);
    std::vector<SharedShape> shapes;
    shapes.emplace_back(blob(2000, g), true);
    shapes.emplace_back(star(600), true);
    shapes.emplace_back(blob(300, g), false);
    shapes.emplace_back(blob(12, g), true);  // too small for an index: the plain loops
    return shapes;
}

TEST(CoreConcurrency, SharedOutlinesGiveEveryThreadTheSameBits) {
    const std::vector<SharedShape> shapes = sharedShapes();
    ASSERT_NE(shapes[0].index, nullptr);
    ASSERT_NE(shapes[1].index, nullptr);
    ASSERT_EQ(shapes[3].index, nullptr);
    expectSameFromEveryThread(shapes, makeQueries());
}

// The indexed answers are the reference answers: the workload records both, so a thread that
// saw a half-built index would differ from its own reference as well as from the others.
TEST(CoreConcurrency, IndexedAndReferenceAnswersAgreeOnTheSharedShapes) {
    const std::vector<SharedShape> shapes = sharedShapes();
    const Queries q = makeQueries();
    for (const SharedShape& s : shapes) {
        if (!s.index)
            continue;
        const OutlineView outline = s.view();
        for (const xcLineSeg& seg : q.segments) {
            std::vector<SegmentHit> hits;
            indexedHits(outline, *s.index, SegmentQuery(seg, true), hits);
            orderAlong(hits, seg);
            const std::vector<SegmentHit> reference = referenceSegmentQuery(outline, seg, true);
            ASSERT_EQ(hits.size(), reference.size());
            for (std::size_t i = 0; i < hits.size(); ++i)
                EXPECT_EQ(hits[i].edge, reference[i].edge);
        }
        for (const xcVector<2>& p : q.points)
            EXPECT_EQ(nearestPointIndexed(outline, *s.index, p), referenceNearestPoint(outline, p));
    }
}

// A prepared outline shared by every thread from its construction on: the threads race to
// build its bounds, table and index on first use, then repair and query it.
TEST(CoreConcurrency, PreparedOutlineBuiltAndUsedByEveryThreadAtOnce) {
    xcRandomUniform g(5);
    Points p = blob(400, g);
    std::swap(p[10], p[200]);  // two long edges across the blob: it crosses itself
    const Queries q = makeQueries();
    const auto use = [&](const PreparedOutline& o) {
        std::vector<std::uint64_t> out;
        for (const xcLineSeg& seg : q.segments) {
            out.push_back(o.hitCount(seg, true));
            SegmentHit first{};
            if (o.firstHit(seg, first))
                record(out, first.point);
        }
        for (const xcVector<2>& pt : q.points)
            out.push_back(static_cast<std::uint64_t>(o.crossingCount(pt, true)));
        const Points walk = boundaryWalk(o);
        for (const xcVector<2>& v : walk)
            record(out, v);
        for (const xcVector<2>& v : outerLoop(walk))
            record(out, v);
        for (const xcVector<2>& v : referenceOuterLoop(walk))
            record(out, v);
        return out;
    };
    const std::vector<std::uint64_t> expected = use(PreparedOutline(p, true));
    const PreparedOutline shared(p, true);
    std::vector<std::vector<std::uint64_t>> got(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] { got[t] = use(shared); });
    for (std::thread& th : threads)
        th.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(got[t], expected) << "thread " << t;
}

// Indexes built concurrently from one outline are the same index.
TEST(CoreConcurrency, IndexesBuiltAtOnceAreEqual) {
    xcRandomUniform g(11);
    const Points p = blob(5000, g);
    std::vector<std::shared_ptr<const EdgeIndex>> built(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] { built[t] = EdgeIndex::build(OutlineView(p, true)); });
    for (std::thread& th : threads)
        th.join();
    for (int t = 1; t < kThreads; ++t) {
        ASSERT_NE(built[t], nullptr);
        EXPECT_EQ(built[t]->bytes(), built[0]->bytes());
        const EdgeNode root = built[t]->root();
        EXPECT_EQ(std::memcmp(&built[t]->box(root), &built[0]->box(root), sizeof(Box)), 0);
        EXPECT_EQ(
            std::memcmp(&built[t]->turnedBox(root), &built[0]->turnedBox(root), sizeof(TurnedBox)),
            0);
    }
}

}  // namespace
