// The edge index and the queries it serves: the segment query, self-intersection, the nearest
// point and the region's containment count. Small exact cases checked by hand, the index's life
// as a cache, and seeded equivalence runs against the edge-by-edge definitions over blobs,
// spiky and self-crossing outlines, integer grids and degenerate shapes (repeated vertices,
// collinear runs, zero-length edges), with queries through vertices, along edges and at the
// 1e-6 boundaries, and non-finite or huge coordinates that the index leaves to the plain loops.
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <cntr/contour_detail.h>
#include <cntr/core/edge_index.h>
#include <cntr/core/segment_hits.h>
#include <cntr/region.h>
#include <foundation/random.h>

#include "contour_access.h"
#include "core_reference.h"
#include "region_access.h"

namespace {

using Points = std::vector<xcVector<2>>;

#ifdef CNTR_TESTS_SANITIZED
// The sanitizers slow the plain loops down tenfold: a tenth of the shapes, same checks.
constexpr int kShapes = 60;
#else
constexpr int kShapes = 600;
#endif
constexpr int kSegmentsPerShape = 60;
constexpr int kPointsPerShape = 60;
constexpr int kInsidePointsPerShape = 30;

// ---- hand-checked shapes ----

// The square [0, 10]^2 with a vertex at every unit of its sides, counter-clockwise from (0, 0):
// (j, 0) is vertex j, (10, j) vertex 10 + j, (10 - j, 10) vertex 20 + j, (0, 10 - j) vertex 30 + j.
Points unitSquare() {
    Points p;
    for (int j = 0; j < 10; ++j) p.emplace_back(j, 0);
    for (int j = 0; j < 10; ++j) p.emplace_back(10, j);
    for (int j = 0; j < 10; ++j) p.emplace_back(10 - j, 10);
    for (int j = 0; j < 10; ++j) p.emplace_back(0, 10 - j);
    return p;
}

// The square [0, 10]^2 with `perSide` vertices per side, counter-clockwise from (0, 0).
Points finerSquare(int perSide) {
    const double step = 10.0 / perSide;
    Points p;
    for (int j = 0; j < perSide; ++j) p.emplace_back(j * step, 0);
    for (int j = 0; j < perSide; ++j) p.emplace_back(10, j * step);
    for (int j = 0; j < perSide; ++j) p.emplace_back(10 - j * step, 10);
    for (int j = 0; j < perSide; ++j) p.emplace_back(0, 10 - j * step);
    return p;
}

// `count` vertices evenly spaced on the circle of radius 100 about the origin.
Points ring(int count) {
    Points p;
    for (int i = 0; i < count; ++i) {
        const double a = 2.0 * xcPi * i / count;
        p.emplace_back(100.0 * std::cos(a), 100.0 * std::sin(a));
    }
    return p;
}

// ---- random shapes ----

enum class Family { blob, spiky, crossing, grid, degenerate };

const Family kFamilies[] = {Family::blob, Family::spiky, Family::crossing, Family::grid,
                            Family::degenerate};

int vertexCount(xcRandomUniform& g) {
    static const int kSizes[] = {3, 5, 10, 31, 32, 33, 64, 100, 257, 600, 1000, 3000};
    const int pick = static_cast<int>(g.next(0.0, 12.0));
    // The largest size is drawn a quarter as often, to keep the plain loops' time in check.
    if (pick == 11 && g.next(0.0, 1.0) < 0.75) return 1000;
    return kSizes[pick];
}

Points star(xcRandomUniform& g, int n, bool smooth) {
    double amplitude[5];
    double phase[5];
    for (int k = 0; k < 5; ++k) {
        amplitude[k] = g.next(0.0, 0.08);
        phase[k] = g.next(0.0, 2.0 * xcPi);
    }
    const xcVector<2> centre(g.next(-50.0, 50.0), g.next(-50.0, 50.0));
    Points p;
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * i / n;
        double r = 100.0;
        if (smooth) {
            for (int k = 0; k < 5; ++k) r += 100.0 * amplitude[k] * std::sin((k + 1) * a + phase[k]);
        } else {
            r = g.next(20.0, 100.0);
        }
        p.push_back(centre + xcVector<2>(r * std::cos(a), r * std::sin(a)));
    }
    return p;
}

// A blob with repeated vertices (zero-length edges), runs of collinear vertices (midpoints and
// thirds of edges) and an occasional spike back onto an earlier vertex.
Points degenerate(xcRandomUniform& g, int n) {
    const Points base = star(g, std::max(3, n / 2), true);
    Points p;
    for (std::size_t i = 0; i < base.size(); ++i) {
        const xcVector<2>& a = base[i];
        const xcVector<2>& b = base[(i + 1) % base.size()];
        p.push_back(a);
        const double u = g.next(0.0, 1.0);
        if (u < 0.2) {
            p.push_back(a);
        } else if (u < 0.5) {
            p.push_back((a + b) / 2.0);
        } else if (u < 0.6) {
            p.push_back(a + (b - a) / 3.0);
            p.push_back(a + (b - a) * (2.0 / 3.0));
        } else if (u < 0.65 && i > 2) {
            p.push_back(base[i - 2]);
        }
    }
    return p;
}

Points shape(Family f, xcRandomUniform& g, int n) {
    switch (f) {
    case Family::blob:
        return star(g, n, true);
    case Family::spiky:
        return star(g, n, false);
    case Family::crossing: {
        Points p(static_cast<std::size_t>(n));
        for (xcVector<2>& v : p) v = xcVector<2>(g.next(0.0, 200.0), g.next(0.0, 200.0));
        return p;
    }
    case Family::grid: {
        // Integer coordinates: exact touches, vertices on edges, parallel and collinear edges.
        Points p = star(g, n, g.next(0.0, 1.0) < 0.5);
        for (xcVector<2>& v : p) v = xcVector<2>(std::round(v.x() / 8.0), std::round(v.y() / 8.0));
        return p;
    }
    case Family::degenerate:
        return degenerate(g, n);
    }
    return {};
}

// ---- queries ----

xcVector<2> randomPointNear(xcRandomUniform& g, const Points& p) {
    double minX = p[0].x(), maxX = p[0].x(), minY = p[0].y(), maxY = p[0].y();
    for (const xcVector<2>& v : p) {
        minX = std::min(minX, v.x());
        maxX = std::max(maxX, v.x());
        minY = std::min(minY, v.y());
        maxY = std::max(maxY, v.y());
    }
    const double mx = 0.1 * (maxX - minX) + 1.0;
    const double my = 0.1 * (maxY - minY) + 1.0;
    return {g.next(minX - mx, maxX + mx), g.next(minY - my, maxY + my)};
}

const xcVector<2>& someVertex(xcRandomUniform& g, const Points& p) {
    return p[static_cast<std::size_t>(g.next(0.0, static_cast<double>(p.size())))];
}

xcVector<2> unitDirection(xcRandomUniform& g) {
    const double a = g.next(0.0, 2.0 * xcPi);
    return {std::cos(a), std::sin(a)};
}

// A point on the contour's edges or vertices, or at the 1e-6 boundaries around a vertex.
xcVector<2> specialPoint(xcRandomUniform& g, const Points& p) {
    const xcVector<2>& v = someVertex(g, p);
    const xcVector<2>& w = someVertex(g, p);
    switch (static_cast<int>(g.next(0.0, 5.0))) {
    case 0:
        return v;
    case 1:
        return (v + w) / 2.0;
    case 2:
        return v + unitDirection(g) * (1e-6 * (1.0 + 1e-9));
    case 3:
        return v + unitDirection(g) * (1e-6 * (1.0 - 1e-9));
    default:
        return v + xcVector<2>(g.next(-1e-6, 1e-6), 0.0);
    }
}

xcLineSeg querySegment(xcRandomUniform& g, const Points& p) {
    const xcVector<2>& v = someVertex(g, p);
    const xcVector<2>& w = someVertex(g, p);
    switch (static_cast<int>(g.next(0.0, 8.0))) {
    case 0:  // vertex to vertex
        return {v, w};
    case 1:  // along the line of two vertices, beyond both
        return {v - (w - v) * 0.5, w + (w - v) * 0.5};
    case 2: {  // through a vertex
        const xcVector<2> d = unitDirection(g) * g.next(1.0, 300.0);
        return {v - d, v + d};
    }
    case 3:  // zero length, on a vertex
        return {v, v};
    case 4:  // an end at the 1e-6 boundary of a vertex
        return {v + unitDirection(g) * (1e-6 * (1.0 + (g.next(0.0, 1.0) < 0.5 ? 1e-9 : -1e-9))),
                randomPointNear(g, p)};
    case 5:  // an end on an edge's line between two vertices
        return {(v + w) / 2.0, randomPointNear(g, p)};
    default:
        return {randomPointNear(g, p), randomPointNear(g, p)};
    }
}

// ---- comparison ----

bool sameDouble(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

bool samePoint(const xcVector<2>& a, const xcVector<2>& b) {
    return sameDouble(a.x(), b.x()) && sameDouble(a.y(), b.y());
}

bool samePoints(const Points& a, const Points& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!samePoint(a[i], b[i])) return false;
    return true;
}

std::string describe(const xcLineSeg& s) {
    return "(" + std::to_string(s.p1().x()) + ", " + std::to_string(s.p1().y()) + ") - (" +
           std::to_string(s.p2().x()) + ", " + std::to_string(s.p2().y()) + ")";
}

// Both segment queries (with and without end touches) against the plain loop; counts the cases.
void expectSameHits(const xcContour& c, const xcLineSeg& seg, const std::string& where,
                    long& cases) {
    for (const bool touches : {true, false}) {
        std::vector<int> fastEdges;
        std::vector<int> plainEdges;
        const Points fast = xcContourTestAccess::intersections(c, seg, fastEdges, touches);
        const Points plain = core_reference::intersections(c, seg, plainEdges, touches);
        EXPECT_TRUE(samePoints(fast, plain)) << where << " segment " << describe(seg);
        EXPECT_EQ(fastEdges, plainEdges) << where << " segment " << describe(seg);
        ++cases;
    }
}

// The first hit without end touches, searched nearest box first through the index and by the
// plain loop, is the front of the plain query's ordered hits and its edge.
void expectSameFirstHit(const xcContour& c, const xcLineSeg& seg, const std::string& where,
                        long& cases) {
    std::vector<int> plainEdges;
    const Points plain = core_reference::intersections(c, seg, plainEdges, false);
    for (const bool plainSearch : {false, true}) {
        xcVector<2> point(-1.0, -1.0);
        int edge = -1;
        const bool found = plainSearch ? core_reference::firstHit(c, seg, point, edge)
                                        : xcContourTestAccess::firstHit(c, seg, point, edge);
        ASSERT_EQ(found, !plain.empty()) << where << " segment " << describe(seg);
        if (found) {
            EXPECT_TRUE(samePoint(point, plain.front()))
                << where << " segment " << describe(seg) << (plainSearch ? " plain" : " indexed");
            EXPECT_EQ(edge, plainEdges.front())
                << where << " segment " << describe(seg) << (plainSearch ? " plain" : " indexed");
        }
        ++cases;
    }
}

void expectSameNearest(const xcContour& c, const xcVector<2>& q, const std::string& where,
                       long& cases) {
    const xcVector<2> fast = xcContourTestAccess::closestPoint(c, q);
    const xcVector<2> plain = cntr::core::referenceNearestPoint(core_reference::outline(c), q);
    EXPECT_TRUE(samePoint(fast, plain))
        << where << " point (" << q.x() << ", " << q.y() << ") fast (" << fast.x() << ", "
        << fast.y() << ") plain (" << plain.x() << ", " << plain.y() << ")";
    ++cases;
}

void expectSameInside(const xcRegion& r, const xcVector<2>& q, const std::string& where,
                      long& cases) {
    for (const bool bothWays : {false, true}) {
        EXPECT_EQ(xcRegionTestAccess::insideCount(r, q, bothWays),
                  cntr::core::referenceCrossingCount(core_reference::outline(r), q, bothWays))
            << where << " point (" << q.x() << ", " << q.y() << ") bothWays " << bothWays;
        ++cases;
    }
}

std::string familyName(Family f) {
    switch (f) {
    case Family::blob:
        return "blob";
    case Family::spiky:
        return "spiky";
    case Family::crossing:
        return "crossing";
    case Family::grid:
        return "grid";
    case Family::degenerate:
        return "degenerate";
    }
    return "?";
}

}  // namespace

// ---- the index as a cache ----

TEST(ContourEdgeIndex, NotBuiltBelowTheEdgeThreshold) {
    // 31 vertices, closed: 31 edges, one short of the 32 the index needs.
    xcContour c(ring(31), true);
    c.intersections(xcLineSeg({-200, 0.5}, {200, 0.5}), true);
    EXPECT_EQ(xcContourTestAccess::builtIndex(c), nullptr);
}

TEST(ContourEdgeIndex, BuiltByTheFirstQueryThatNeedsIt) {
    xcContour c(ring(32), true);
    EXPECT_EQ(xcContourTestAccess::builtIndex(c), nullptr);
    c.length();  // a query that needs no index builds none
    EXPECT_EQ(xcContourTestAccess::builtIndex(c), nullptr);
    c.intersections(xcLineSeg({-200, 0.5}, {200, 0.5}), true);
    EXPECT_NE(xcContourTestAccess::builtIndex(c), nullptr);
    xcContour d(ring(32), true);
    d.distToPoint({1.0, 2.0}, false);
    EXPECT_NE(xcContourTestAccess::builtIndex(d), nullptr);
    xcContour vertexOnly(ring(32), true);
    vertexOnly.distToPoint({1.0, 2.0}, true);
    EXPECT_EQ(xcContourTestAccess::builtIndex(vertexOnly), nullptr);
}

TEST(ContourEdgeIndex, OpenContourCountsItsEdges) {
    // 33 open vertices have 32 edges: enough; 32 open vertices have 31: not.
    EXPECT_NE(xcContourTestAccess::edgeIndex(xcContour(ring(33), false)), nullptr);
    EXPECT_EQ(xcContourTestAccess::edgeIndex(xcContour(ring(32), false)), nullptr);
}

TEST(ContourEdgeIndex, NotBuiltForNonFiniteOrHugeCoordinates) {
    Points p = ring(64);
    p[7] = xcVector<2>(std::numeric_limits<double>::quiet_NaN(), 0.0);
    EXPECT_EQ(xcContourTestAccess::edgeIndex(xcContour(p, true)), nullptr);
    p[7] = xcVector<2>(HUGE_VAL, 0.0);
    EXPECT_EQ(xcContourTestAccess::edgeIndex(xcContour(p, true)), nullptr);
    p[7] = xcVector<2>(0.0, 2e7);  // beyond the 1e7 limit of the margins
    EXPECT_EQ(xcContourTestAccess::edgeIndex(xcContour(p, true)), nullptr);
}

TEST(ContourEdgeIndex, CostsAtMost64BytesPerEdge) {
    for (const int n : {32, 33, 100, 1000, 16384}) {
        xcContour c(ring(n), true);
        c.intersections(xcLineSeg({-200, 0.5}, {200, 0.5}), true);
        const cntr::core::EdgeIndex* index = xcContourTestAccess::builtIndex(c);
        ASSERT_NE(index, nullptr);
        EXPECT_EQ(index->edgeCount(), static_cast<std::size_t>(n));
        EXPECT_LE(index->bytes(), 64u * static_cast<std::size_t>(n)) << n << " edges";
    }
}

// Each node holds a 32-byte box and a 48-byte turned box, one node per 8 edges or nodes below:
// 80 / 7 bytes per edge and the fixed part, under 12 bytes per edge on large outlines (1,000
// edges: 144 nodes, 11,520 bytes of boxes).
TEST(ContourEdgeIndex, CostsUnder12BytesPerEdgeOnLargeOutlines) {
    for (const int n : {1000, 16384}) {
        xcContour c(ring(n), true);
        c.distToPoint({1.0, 2.0}, false);
        const cntr::core::EdgeIndex* index = xcContourTestAccess::builtIndex(c);
        ASSERT_NE(index, nullptr);
        EXPECT_LE(index->bytes(), 12u * static_cast<std::size_t>(n)) << n << " edges";
    }
}

// Every vertex below a node lies in the node's turned box (distance 0 with no slack), at every
// level, for open and closed outlines of the seeded families.
TEST(ContourEdgeIndex, TurnedBoxesHoldTheirVertices) {
    xcRandomUniform g(4711);
    for (int s = 0; s < 50; ++s) {
        const Family family = kFamilies[s % 5];
        const Points p = shape(family, g, 40 + static_cast<int>(g.next(0.0, 600.0)));
        const bool closed = s % 4 != 3;
        const xcContour c(p, closed);
        const cntr::core::EdgeIndex* index = xcContourTestAccess::edgeIndex(c);
        ASSERT_NE(index, nullptr);
        const std::size_t n = p.size();
        const auto check = [&](const cntr::core::EdgeNode& node, auto& self) -> void {
            const cntr::core::TurnedBox& box = index->turnedBox(node);
            if (node.level == 0) {
                for (std::size_t k = index->firstEdge(node); k < index->lastEdge(node); ++k)
                    for (const std::size_t v : {xn_contourDetail::edgeStartVertex(k, n, closed),
                                                xn_contourDetail::edgeEndVertex(k, closed)})
                        EXPECT_EQ(cntr::core::squaredDistance(box, p[v], 0.0), 0.0)
                            << familyName(family) << " shape " << s << " edge " << k;
                return;
            }
            for (std::size_t child = index->firstChild(node); child < index->lastChild(node); ++child) {
                const cntr::core::EdgeNode below{node.level - 1, child};
                self(below, self);
                const cntr::core::TurnedBox& inner = index->turnedBox(below);
                // The child's corners lie in the parent's box.
                for (const double su : {-1.0, 1.0})
                    for (const double sv : {-1.0, 1.0}) {
                        const xcVector<2> corner(
                            inner.cx + su * inner.ux * inner.halfU - sv * inner.uy * inner.halfV,
                            inner.cy + su * inner.uy * inner.halfU + sv * inner.ux * inner.halfV);
                        EXPECT_EQ(cntr::core::squaredDistance(box, corner, 0.0), 0.0)
                            << familyName(family) << " shape " << s << " level " << node.level;
                    }
            }
        };
        check(index->root(), check);
        if (HasFailure()) break;
    }
}

TEST(ContourEdgeIndex, DroppedByAChangeAndCopiedWithTheContour) {
    xcContour c(ring(64), true);
    c.intersections(xcLineSeg({-200, 0.5}, {200, 0.5}), true);
    const xcContour copy(c);
    // The index is immutable: the copy shares it, and a change of the original drops only its
    // own handle.
    ASSERT_NE(xcContourTestAccess::builtIndex(copy), nullptr);
    EXPECT_EQ(xcContourTestAccess::builtIndex(copy), xcContourTestAccess::builtIndex(c));
    EXPECT_EQ(xcContourTestAccess::builtIndex(copy)->edgeCount(), 64u);
    c.isClosed(false);
    EXPECT_EQ(xcContourTestAccess::builtIndex(c), nullptr);
    c.intersections(xcLineSeg({-200, 0.5}, {200, 0.5}), true);
    ASSERT_NE(xcContourTestAccess::builtIndex(c), nullptr);
    EXPECT_EQ(xcContourTestAccess::builtIndex(c)->edgeCount(), 63u);  // open now
    c.points(ring(64));
    EXPECT_EQ(xcContourTestAccess::builtIndex(c), nullptr);
    EXPECT_EQ(xcContourTestAccess::builtIndex(copy)->edgeCount(), 64u);
}

// ---- hand-checked answers through the index ----

TEST(ContourEdgeIndex, SegmentAcrossTheSquare) {
    // y = 2.5 from x = -1 to 11 crosses edge 38 ((0, 3) -> (0, 2)) at (0, 2.5) and edge 13
    // ((10, 2) -> (10, 3)) at (10, 2.5); keys along the query 1 * 12 and 11 * 12.
    xcContour c(unitSquare(), true);
    std::vector<int> edges;
    const Points hits = xcContourTestAccess::intersections(c, xcLineSeg({-1, 2.5}, {11, 2.5}),
                                                           edges, true);
    ASSERT_NE(xcContourTestAccess::builtIndex(c), nullptr);
    EXPECT_EQ(hits, (Points{{0, 2.5}, {10, 2.5}}));
    EXPECT_EQ(edges, (std::vector<int>{38, 13}));
}

TEST(ContourEdgeIndex, SegmentThroughTwoVerticesReportsEachOncePerEdge) {
    // x = 3 from y = -1 to 11 passes vertex 3 = (3, 0) (edges 3 and 4, key 1 * 12) and vertex
    // 27 = (3, 10) (edges 27 and 28, key 11 * 12); equal keys keep edge order.
    xcContour c(unitSquare(), true);
    for (const bool touches : {true, false}) {
        std::vector<int> edges;
        const Points hits = xcContourTestAccess::intersections(c, xcLineSeg({3, -1}, {3, 11}),
                                                               edges, touches);
        EXPECT_EQ(hits, (Points{{3, 0}, {3, 0}, {3, 10}, {3, 10}}));
        EXPECT_EQ(edges, (std::vector<int>{3, 4, 27, 28}));
    }
}

TEST(ContourEdgeIndex, SegmentEndingOnAnEdgeIsAnEndTouch) {
    // From (3, 5) down to (3, 0): the end (3, 0) is vertex 3, so edges 3 and 4 touch it.
    xcContour c(unitSquare(), true);
    EXPECT_EQ(c.intersections(xcLineSeg({3, 5}, {3, 0}), true), (Points{{3, 0}, {3, 0}}));
    EXPECT_TRUE(c.intersections(xcLineSeg({3, 5}, {3, 0}), false).empty());
}

TEST(ContourEdgeIndex, NearestPointOnTheSquare) {
    // (3.5, 0.2) projects onto edge 4, (3, 0) -> (4, 0), at (3.5, 0): distance 0.2.
    xcContour c(unitSquare(), true);
    EXPECT_EQ(c.closestPoint({3.5, 0.2}, false), xcVector<2>(3.5, 0.0));
    EXPECT_DOUBLE_EQ(c.distToPoint({3.5, 0.2}, false), 0.2);
    // (12, 12) is nearest to the corner (10, 10): distance sqrt(8).
    EXPECT_EQ(c.closestPoint({12, 12}, false), xcVector<2>(10.0, 10.0));
    EXPECT_DOUBLE_EQ(c.distToPoint({12, 12}, false), std::sqrt(8.0));
    ASSERT_NE(xcContourTestAccess::builtIndex(c), nullptr);
}

TEST(ContourEdgeIndex, SelfIntersectionOfTheSquare) {
    EXPECT_FALSE(xcContour(unitSquare(), true).isSelfIntersecting());
    // Vertex 5 moved from (5, 0) to (5, 12): edges 5 and 6 cross the top side.
    Points p = unitSquare();
    p[5] = xcVector<2>(5, 12);
    EXPECT_TRUE(xcContour(p, true).isSelfIntersecting());
    // Vertex 5 moved to (5.5, 10), onto edge 25 ((6, 10) -> (5, 10)): a vertex on a
    // non-adjacent edge.
    p[5] = xcVector<2>(5.5, 10);
    EXPECT_TRUE(xcContour(p, true).isSelfIntersecting());
    // Open, the square without its closing edge still does not meet itself.
    EXPECT_FALSE(xcContour(unitSquare(), false).isSelfIntersecting());
}

TEST(ContourEdgeIndex, InsideTheSquare) {
    // 80 vertices per side (320, enough for the indexed containment), spaced 0.125.
    const xcRegion r(finerSquare(80), xcContourDefs::keepOutline);
    EXPECT_TRUE(r.inside({5, 5}, false));
    EXPECT_TRUE(r.inside({0.5, 9.5}, false));
    EXPECT_FALSE(r.inside({11, 5}, false));     // outside the bounding rectangle
    EXPECT_TRUE(r.inside({3, 1e-7}, false));    // within 1e-6 of vertex 24, (3, 0)
    EXPECT_EQ(xcRegionTestAccess::insideCount(r, {5, 5}, false), 1);
    ASSERT_NE(xcContourTestAccess::builtIndex(r), nullptr);
}

// ---- equivalence with the plain loops ----

TEST(ContourEdgeIndex, SeededShapesGiveThePlainAnswers) {
    xcRandomUniform g(20261122);
    long cases = 0;
    for (int s = 0; s < kShapes; ++s) {
        const Family family = kFamilies[s % 5];
        const int n = vertexCount(g);
        const Points p = shape(family, g, n);
        const bool closed = g.next(0.0, 1.0) < 0.8;
        const std::string where = familyName(family) + " shape " + std::to_string(s) + " (" +
                                  std::to_string(p.size()) + " vertices)";
        const xcContour c(p, closed);
        EXPECT_EQ(c.isSelfIntersecting(), cntr::core::referenceSelfIntersecting(core_reference::outline(c))) << where;
        ++cases;
        for (int i = 0; i < kSegmentsPerShape; ++i) {
            const xcLineSeg seg = querySegment(g, p);
            expectSameHits(c, seg, where, cases);
            expectSameFirstHit(c, seg, where, cases);
        }
        for (int i = 0; i < kPointsPerShape; ++i) {
            const xcVector<2> q = i % 2 == 0 ? randomPointNear(g, p) : specialPoint(g, p);
            expectSameNearest(c, q, where, cases);
        }
        const xcRegion r(p, xcContourDefs::keepOutline);
        for (int i = 0; i < kInsidePointsPerShape; ++i) {
            const xcVector<2> q = i % 2 == 0 ? randomPointNear(g, p) : specialPoint(g, p);
            expectSameInside(r, q, where, cases);
        }
        if (HasFailure()) break;
    }
    // 600 shapes of 1 + 240 + 60 + 60 cases: 216,600 (a tenth under the sanitizers).
    EXPECT_EQ(cases, kShapes * (1 + 4 * kSegmentsPerShape + kPointsPerShape + 2 * kInsidePointsPerShape));
}

// The boundary walk's queries: from a crossing point along an edge, to either end of that edge,
// and from a vertex along its edges; ties (hits at the same distance through a vertex where
// several edges meet, overlapping grid edges) are frequent on integer grids.
TEST(ContourEdgeIndex, FirstHitFromCrossingsGivesThePlainFront) {
    xcRandomUniform g(1122);
    long cases = 0;
    const int shapes = kShapes / 6;
    for (int s = 0; s < shapes; ++s) {
        const Family family = s % 3 == 0 ? Family::crossing : (s % 3 == 1 ? Family::grid : Family::spiky);
        const int n = 32 + static_cast<int>(g.next(0.0, 120.0));
        const Points p = shape(family, g, n);
        const xcContour c(p, true);
        const std::string where = familyName(family) + " shape " + std::to_string(s);
        for (std::size_t k = 0; k < p.size(); k += 3) {
            const xcVector<2>& a = p[k];
            const xcVector<2>& b = p[(k + 1) % p.size()];
            expectSameFirstHit(c, xcLineSeg(a, b), where, cases);
            expectSameFirstHit(c, xcLineSeg(b, a), where, cases);
            std::vector<int> edges;
            const Points hits = core_reference::intersections(c, xcLineSeg(a, b), edges, false);
            for (std::size_t h = 0; h < hits.size(); h += 2) {
                expectSameFirstHit(c, xcLineSeg(hits[h], b), where, cases);
                expectSameFirstHit(c, xcLineSeg(hits[h], a), where, cases);
            }
        }
        if (HasFailure()) break;
    }
    EXPECT_GT(cases, shapes * 40L);
}

TEST(ContourEdgeIndex, SweepAgreesWithThePlainDefinitionOnSingleTouches) {
    // Outlines that meet themselves at most once: a vertex moved onto another edge (its
    // midpoint), or next to it at the 1e-6 boundary, or pushed through the outline, or left
    // alone. Blobs and integer grids (vertical edges, equal x everywhere) alike.
    xcRandomUniform g(7);
    int met = 0;
    for (int s = 0; s < kShapes; ++s) {
        const int n = 40 + static_cast<int>(g.next(0.0, 200.0));
        Points p = s % 3 == 2 ? shape(Family::grid, g, n) : star(g, n, s % 3 == 0);
        const std::size_t v = static_cast<std::size_t>(g.next(0.0, static_cast<double>(p.size())));
        const std::size_t e = (v + p.size() / 2) % p.size();
        const xcVector<2> onEdge = (p[e] + p[(e + 1) % p.size()]) / 2.0;
        const xcVector<2> normal = unitDirection(g) * 1e-6;
        switch (s % 5) {
        case 0:
            p[v] = onEdge;
            break;
        case 1:
            p[v] = onEdge + normal * (1.0 + 1e-9);
            break;
        case 2:
            p[v] = onEdge + normal * (1.0 - 1e-9);
            break;
        case 3:
            p[v] = onEdge * 2.0 - p[v];
            break;
        default:
            break;
        }
        const xcContour c(p, s % 7 != 6);
        const bool plain = cntr::core::referenceSelfIntersecting(core_reference::outline(c));
        met += plain ? 1 : 0;
        const std::optional<bool> swept = cntr::core::selfIntersectingSwept(core_reference::outline(c));
        ASSERT_TRUE(swept.has_value()) << "shape " << s;
        EXPECT_EQ(*swept, plain) << "shape " << s;
    }
    // Both answers occur often enough for the comparison to mean something.
    EXPECT_GT(met, kShapes / 5);
    EXPECT_LT(met, kShapes - kShapes / 10);
}

// Chains broken by repeated vertices (exact, and within 1e-15), by vertical edges and by ends
// that come back onto the outline, open and closed, across many blocks.
TEST(ContourEdgeIndex, SweepAgreesWithThePlainDefinitionAcrossRepeatsAndVerticalRuns) {
    xcRandomUniform g(31);
    int met = 0;
    const int shapes = kShapes * 2;
    for (int s = 0; s < shapes; ++s) {
        const int n = 20 + static_cast<int>(g.next(0.0, 300.0));
        const Points base = star(g, n, s % 2 == 0);
        Points p;
        for (const xcVector<2>& v : base) {
            p.push_back(v);
            const double pick = g.next(0.0, 1.0);
            if (pick < 0.05) p.push_back(v);                                  // exact repeat
            else if (pick < 0.08) p.push_back(v + xcVector<2>(1e-15, -1e-15));  // within 1e-15
            else if (pick < 0.12) p.push_back(v + xcVector<2>(0.0, 0.5));       // vertical edge
        }
        if (s % 4 == 3) p.push_back(p[p.size() / 3]);  // back onto a vertex of the outline
        const xcContour c(p, s % 3 != 2);
        const bool plain = cntr::core::referenceSelfIntersecting(core_reference::outline(c));
        met += plain ? 1 : 0;
        const std::optional<bool> swept = cntr::core::selfIntersectingSwept(core_reference::outline(c));
        ASSERT_TRUE(swept.has_value()) << "shape " << s;
        EXPECT_EQ(*swept, plain) << "shape " << s;
    }
    EXPECT_GT(met, shapes / 10);
    EXPECT_LT(met, shapes - shapes / 10);
}

TEST(ContourEdgeIndex, NonFiniteAndHugeCoordinatesKeepThePlainAnswers) {
    xcRandomUniform g(99);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (int s = 0; s < 40; ++s) {
        Points p = star(g, 64, s % 2 == 0);
        if (s % 4 == 0) p[static_cast<std::size_t>(g.next(0.0, 64.0))] = xcVector<2>(nan, 1.0);
        if (s % 4 == 1) p[static_cast<std::size_t>(g.next(0.0, 64.0))] = xcVector<2>(HUGE_VAL, 1.0);
        if (s % 4 == 2)
            for (xcVector<2>& v : p) v = v * 1e9;
        const xcContour c(p, true);
        const std::string where = "shape " + std::to_string(s);
        long cases = 0;
        EXPECT_EQ(c.isSelfIntersecting(), cntr::core::referenceSelfIntersecting(core_reference::outline(c))) << where;
        // The chain sweep declines a contour with a coordinate that is not finite.
        const std::optional<bool> swept = cntr::core::selfIntersectingSwept(core_reference::outline(c));
        EXPECT_EQ(swept.has_value(), s % 4 > 1) << where;
        if (swept) {
            EXPECT_EQ(*swept, cntr::core::referenceSelfIntersecting(core_reference::outline(c))) << where;
        }
        for (int i = 0; i < 20; ++i) {
            const xcVector<2> a = p[static_cast<std::size_t>(g.next(0.0, 64.0))];
            const xcVector<2> b(g.next(-150.0, 150.0), g.next(-150.0, 150.0));
            expectSameHits(c, xcLineSeg(a, b), where, cases);
            expectSameFirstHit(c, xcLineSeg(a, b), where, cases);
            expectSameNearest(c, b, where, cases);
        }
        // Queries that are themselves not finite or huge, on an indexed contour.
        const xcContour plainShape(star(g, 64, true), true);
        expectSameHits(plainShape, xcLineSeg({nan, 0.0}, {1.0, 1.0}), where, cases);
        expectSameHits(plainShape, xcLineSeg({-1e12, 3.0}, {1e12, 3.5}), where, cases);
        expectSameFirstHit(plainShape, xcLineSeg({nan, 0.0}, {1.0, 1.0}), where, cases);
        expectSameFirstHit(plainShape, xcLineSeg({-1e12, 3.0}, {1e12, 3.5}), where, cases);
        expectSameNearest(plainShape, {HUGE_VAL, 0.0}, where, cases);
        expectSameNearest(plainShape, {1e12, -1e12}, where, cases);
    }
}
