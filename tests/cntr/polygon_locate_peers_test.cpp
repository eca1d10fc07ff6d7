// The point locator against independent answers: GEOS's prepared containment and Boost.Geometry's
// within (peer libraries, found at configure time; a missing one leaves its comparisons skipped
// with the reason), and the described region's inside. Inputs: the outlines of the peer
// benchmarks (blob and spiky stars of 1k and 16k vertices, 10,000 points in the bounding box
// each) and seeded multipolygons with holes and islands, a few points each.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/polygon.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/angle.h>
#include <foundation/handle.h>
#include <foundation/random.h>

#include "peers_inputs.h"
#include "polygon_testing.h"

#ifdef CNTR_TESTS_HAVE_GEOS
#include <geos_c.h>
#endif
#ifdef CNTR_TESTS_HAVE_BOOST_GEOMETRY
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/multi_polygon.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#endif

namespace {

using cntr::Location;
using cntr::Ring;
using Points = std::vector<xcVector<2>>;

#ifdef CNTR_TESTS_SANITIZED
// The sanitizers slow the library and the peers down tenfold: fewer samples, the same checks.
constexpr int kSeededShapes = 1000;
constexpr std::size_t kBenchPointStride = 10;
#else
constexpr int kSeededShapes = 10000;
constexpr std::size_t kBenchPointStride = 1;
#endif

/// Points closer than this to an outline are left out of the comparison with the described
/// inside, whose answer there is its convention (a point near a vertex counts as inside) or its
/// ray's.
constexpr double kNearOutline = 1e-6;

// ---- shapes in the form the peers take ----

/// One polygon: an exterior and its holes.
struct PeerPolygon {
    Ring exterior;
    std::vector<Ring> holes;
};

/// A shape as the peers see it: polygons with disjoint interiors, an island inside a hole being
/// a polygon of its own.
using PeerShape = std::vector<PeerPolygon>;

std::vector<const Ring*> ringsOf(const PeerShape& shape) {
    std::vector<const Ring*> rings;
    for (const PeerPolygon& p : shape) {
        rings.push_back(&p.exterior);
        for (const Ring& h : p.holes)
            rings.push_back(&h);
    }
    return rings;
}

/// Whether points lie within a distance of the edges of rings: the edges are listed in the cells
/// of a grid that their boxes, widened by the distance, overlap; a point is measured, by clamped
/// projection, against the edges of its cell only.
class NearOutline {
  public:
    NearOutline(const std::vector<const Ring*>& rings, double limit) : limit_(limit) {
        for (const Ring* ring : rings)
            for (std::size_t i = 0; i < ring->size(); ++i)
                edges_.push_back({(*ring)[i], (*ring)[(i + 1) % ring->size()]});
        // About one cell per edge, up to 128 x 128.
        cellsPerSide_ = std::clamp<std::size_t>(
            static_cast<std::size_t>(std::sqrt(static_cast<double>(edges_.size()))), 1, 128);
        for (const Edge& e : edges_) {
            x0_ = std::min({x0_, e.a.x(), e.b.x()}), x1_ = std::max({x1_, e.a.x(), e.b.x()});
            y0_ = std::min({y0_, e.a.y(), e.b.y()}), y1_ = std::max({y1_, e.a.y(), e.b.y()});
        }
        x0_ -= limit, y0_ -= limit, x1_ += limit, y1_ += limit;
        cells_.resize(cellsPerSide_ * cellsPerSide_);
        for (std::size_t k = 0; k < edges_.size(); ++k) {
            const Edge& e = edges_[k];
            const std::size_t cx0 = column(std::min(e.a.x(), e.b.x()) - limit);
            const std::size_t cx1 = column(std::max(e.a.x(), e.b.x()) + limit);
            const std::size_t cy0 = row(std::min(e.a.y(), e.b.y()) - limit);
            const std::size_t cy1 = row(std::max(e.a.y(), e.b.y()) + limit);
            for (std::size_t cy = cy0; cy <= cy1; ++cy)
                for (std::size_t cx = cx0; cx <= cx1; ++cx)
                    cells_[cy * cellsPerSide_ + cx].push_back(k);
        }
    }

    bool operator()(const xcVector<2>& q) const {
        if (edges_.empty() || q.x() < x0_ || q.x() > x1_ || q.y() < y0_ || q.y() > y1_)
            return false;
        for (const std::size_t k : cells_[row(q.y()) * cellsPerSide_ + column(q.x())]) {
            const xcVector<2>& a = edges_[k].a;
            const xcVector<2> d = edges_[k].b - a;
            const double length2 = d.dot(d);
            const double t = length2 > 0.0 ? std::clamp((q - a).dot(d) / length2, 0.0, 1.0) : 0.0;
            if ((a + t * d - q).length() <= limit_)
                return true;
        }
        return false;
    }

  private:
    struct Edge {
        xcVector<2> a, b;
    };
    std::size_t cell(double v, double lo, double hi) const {
        const double n = static_cast<double>(cellsPerSide_);
        const double f = hi > lo ? (v - lo) / (hi - lo) : 0.0;
        return std::min(cellsPerSide_ - 1, static_cast<std::size_t>(std::max(0.0, f * n)));
    }
    std::size_t column(double x) const { return cell(x, x0_, x1_); }
    std::size_t row(double y) const { return cell(y, y0_, y1_); }

    double limit_;
    std::size_t cellsPerSide_ = 1;
    std::vector<Edge> edges_;
    double x0_ = HUGE_VAL, y0_ = HUGE_VAL, x1_ = -HUGE_VAL, y1_ = -HUGE_VAL;
    std::vector<std::vector<std::size_t>> cells_;
};

// ---- the peers ----

/// A peer's answers for one shape: whether a point lies in its interior, and whether in its
/// interior or on its boundary.
class Peer {
  public:
    virtual ~Peer() = default;
    virtual bool interior(const xcVector<2>& p) const = 0;
    virtual bool covers(const xcVector<2>& p) const = 0;
    /// The distance from an edge within which the peer may take a point for one on it (0: the
    /// peer decides exactly, as the locator does).
    virtual double onEdgeTolerance() const { return 0.0; }
};

using PeerFactory = std::function<std::unique_ptr<Peer>(const PeerShape&)>;

#ifdef CNTR_TESTS_HAVE_GEOS

// The process's GEOS context, created on first use.
GEOSContextHandle_t geos() {
    struct Context {
        GEOSContextHandle_t handle = GEOS_init_r();
        ~Context() { GEOS_finish_r(handle); }
    };
    static const Context context;
    return context.handle;
}

GEOSGeometry* geosRing(const Ring& ring) {
    GEOSCoordSequence* s = GEOSCoordSeq_create_r(geos(), static_cast<unsigned>(ring.size() + 1), 2);
    for (std::size_t i = 0; i <= ring.size(); ++i) {
        const xcVector<2>& v = ring[i % ring.size()];
        GEOSCoordSeq_setXY_r(geos(), s, static_cast<unsigned>(i), v.x(), v.y());
    }
    return GEOSGeom_createLinearRing_r(geos(), s);
}

GEOSGeometry* geosPolygon(const PeerPolygon& polygon) {
    std::vector<GEOSGeometry*> holes;
    for (const Ring& h : polygon.holes)
        holes.push_back(geosRing(h));
    return GEOSGeom_createPolygon_r(geos(), geosRing(polygon.exterior), holes.data(),
                                    static_cast<unsigned>(holes.size()));
}

/// GEOS's prepared geometry (the reentrant C API): GEOSPreparedContains is true in the
/// interior only, GEOSPreparedCovers on the boundary too.
class GeosPeer : public Peer {
  public:
    explicit GeosPeer(const PeerShape& shape) {
        std::vector<GEOSGeometry*> members;
        for (const PeerPolygon& p : shape)
            members.push_back(geosPolygon(p));
        geometry_ = GEOSGeom_createCollection_r(geos(), GEOS_MULTIPOLYGON, members.data(),
                                                static_cast<unsigned>(members.size()));
        prepared_ = GEOSPrepare_r(geos(), geometry_);
    }
    ~GeosPeer() override {
        GEOSPreparedGeom_destroy_r(geos(), prepared_);
        GEOSGeom_destroy_r(geos(), geometry_);
    }
    GeosPeer(const GeosPeer&) = delete;
    GeosPeer& operator=(const GeosPeer&) = delete;

    bool interior(const xcVector<2>& p) const override { return ask(GEOSPreparedContains_r, p); }
    bool covers(const xcVector<2>& p) const override { return ask(GEOSPreparedCovers_r, p); }

  private:
    using Predicate = char (*)(GEOSContextHandle_t, const GEOSPreparedGeometry*,
                               const GEOSGeometry*);
    bool ask(Predicate predicate, const xcVector<2>& p) const {
        GEOSGeometry* point = GEOSGeom_createPointFromXY_r(geos(), p.x(), p.y());
        const char answer = predicate(geos(), prepared_, point);
        GEOSGeom_destroy_r(geos(), point);
        EXPECT_NE(answer, 2) << "GEOS failed at (" << p.x() << ", " << p.y() << ")";
        return answer == 1;
    }

    GEOSGeometry* geometry_;
    const GEOSPreparedGeometry* prepared_;
};

#endif

#ifdef CNTR_TESTS_HAVE_BOOST_GEOMETRY

namespace bg = boost::geometry;
using BoostPoint = bg::model::d2::point_xy<double>;
using BoostPolygon = bg::model::polygon<BoostPoint>;
using BoostMultiPolygon = bg::model::multi_polygon<BoostPolygon>;

/// Boost.Geometry's within (true in the interior only) and covered_by (the boundary too), on a
/// multipolygon whose rings bg::correct has oriented and closed as its type declares.
class BoostPeer : public Peer {
  public:
    explicit BoostPeer(const PeerShape& shape) {
        for (const PeerPolygon& p : shape) {
            BoostPolygon polygon;
            fill(polygon.outer(), p.exterior);
            for (const Ring& h : p.holes) {
                polygon.inners().emplace_back();
                fill(polygon.inners().back(), h);
            }
            multi_.push_back(polygon);
        }
        bg::correct(multi_);
    }

    bool interior(const xcVector<2>& p) const override {
        return bg::within(BoostPoint(p.x(), p.y()), multi_);
    }
    bool covers(const xcVector<2>& p) const override {
        return bg::covered_by(BoostPoint(p.x(), p.y()), multi_);
    }
    // Its side test (side_by_triangle) takes a cross product within a tolerance scaled by the
    // coordinates' differences for 0, so a point that rounding left a few units in the last
    // place off an edge (an edge's midpoint, say) is on the edge to Boost and strictly inside or
    // outside to the locator and to GEOS (BoostGeometryTakesPointsWithinRoundingOfAnEdgeForOnIt
    // shows one). 1e-9 is far above that rounding and far below the seeded points' distances.
    double onEdgeTolerance() const override { return 1e-9; }

  private:
    template <class BoostRing>
    static void fill(BoostRing& out, const Ring& ring) {
        for (const xcVector<2>& v : ring)
            out.emplace_back(v.x(), v.y());
    }

    BoostMultiPolygon multi_;
};

#endif

/// A peer found when the tests were configured, or the reason why it is missing.
struct PeerChoice {
    /// Empty when the peer is missing.
    PeerFactory make;
    const char* missing;
};

PeerChoice geosPeer() {
#ifdef CNTR_TESTS_HAVE_GEOS
    return {[](const PeerShape& s) { return std::make_unique<GeosPeer>(s); }, ""};
#else
    return {nullptr,
            "GEOS was not found when the tests were configured (tools/bootstrap tests "
            "installs libgeos-dev)"};
#endif
}

PeerChoice boostPeer() {
#ifdef CNTR_TESTS_HAVE_BOOST_GEOMETRY
    return {[](const PeerShape& s) { return std::make_unique<BoostPeer>(s); }, ""};
#else
    return {nullptr,
            "Boost.Geometry was not found when the tests were configured "
            "(tools/bootstrap tests installs libboost-dev)"};
#endif
}

// ---- comparing ----

/// The tallies of one comparison, so that a test can show it compared something.
struct Tally {
    std::size_t inside = 0, outside = 0, boundary = 0, mismatches = 0;
    /// Points strictly inside or outside to the locator that the peer, within its
    /// onEdgeTolerance of an edge, takes for points on the boundary.
    std::size_t onPeersEdge = 0;
};

// Compares our answers with `peer`'s. The conventions differ on the boundary: GEOS's contains
// and Boost's within are false there (the boundary is not the interior), so our boundary is
// compared as "neither strictly inside nor strictly outside": not in the peer's interior, but
// covered by the shape. Everywhere else the answers must be the same, but for points that a
// peer with a tolerance takes for boundary points within it of an edge (counted apart).
void comparePeer(const Peer& peer, const std::vector<const Ring*>& rings,
                 const std::string& shapeName, const Points& points,
                 const std::vector<Location>& ours, Tally& tally) {
    std::unique_ptr<NearOutline> nearEdge;
    if (peer.onEdgeTolerance() > 0.0)
        nearEdge = std::make_unique<NearOutline>(rings, peer.onEdgeTolerance());
    for (std::size_t k = 0; k < points.size(); ++k) {
        const xcVector<2>& p = points[k];
        bool agree = false;
        switch (ours[k]) {
            case Location::boundary:
                ++tally.boundary;
                agree = !peer.interior(p) && peer.covers(p);
                break;
            case Location::inside:
                ++tally.inside;
                agree = peer.interior(p);
                break;
            case Location::outside:
                ++tally.outside;
                agree = !peer.interior(p);
                break;
        }
        if (!agree && ours[k] != Location::boundary && nearEdge && !peer.interior(p) &&
            peer.covers(p) && (*nearEdge)(p)) {
            ++tally.onPeersEdge;
            continue;
        }
        if (!agree && ++tally.mismatches <= 10) {
            std::ostringstream where;
            where.precision(17);
            where << shapeName << " point " << k << " (" << p.x() << ", " << p.y() << ")";
            ADD_FAILURE() << where.str() << ": ours " << static_cast<int>(ours[k])
                          << ", the peer's interior " << peer.interior(p) << ", covers "
                          << peer.covers(p);
        }
    }
}

/// Expects no mismatch and every kind of answer among the compared points.
void expectAgreement(const Tally& tally, bool expectBoundary) {
    EXPECT_EQ(tally.mismatches, 0u);
    EXPECT_GT(tally.inside, 0u);
    EXPECT_GT(tally.outside, 0u);
    if (expectBoundary) {
        EXPECT_GT(tally.boundary, 0u);
    }
}

// ---- the benchmark outlines ----

struct BenchCase {
    peers::Kind kind;
    std::size_t n;
};

void PrintTo(const BenchCase& c, std::ostream* os) {
    *os << peers::kindName(c.kind) << "/" << peers::sizeName(c.n);
}

std::string caseName(const testing::TestParamInfo<BenchCase>& info) {
    return std::string(peers::kindName(info.param.kind)) + "_" + peers::sizeName(info.param.n);
}

class PolygonLocateBenchPeers : public testing::TestWithParam<BenchCase> {
  protected:
    const peers::Input& input() const { return peers::input(GetParam().kind, GetParam().n); }
    PeerShape shape() const { return {PeerPolygon{input().points, {}}}; }
    Points points() const {
        Points chosen;
        const Points& all = input().queryPoints;
        for (std::size_t k = 0; k < all.size(); k += kBenchPointStride)
            chosen.push_back(all[k]);
        return chosen;
    }

    void compareWith(const PeerFactory& make) const {
        const Points p = points();
        const std::vector<Location> ours = cntr::Polygon(input().points).locate(p);
        Tally tally;
        comparePeer(*make(shape()), {&input().points}, input().label, p, ours, tally);
        expectAgreement(tally, false);
        EXPECT_EQ(tally.onPeersEdge, 0u);  // none of the uniform points is within 1e-9 of an edge
    }
};

TEST_P(PolygonLocateBenchPeers, AgreesWithGeosPreparedContains) {
    const PeerChoice peer = geosPeer();
    if (!peer.make)
        GTEST_SKIP() << peer.missing;
    compareWith(peer.make);
}

TEST_P(PolygonLocateBenchPeers, AgreesWithBoostGeometryWithin) {
    const PeerChoice peer = boostPeer();
    if (!peer.make)
        GTEST_SKIP() << peer.missing;
    compareWith(peer.make);
}

TEST_P(PolygonLocateBenchPeers, AgreesWithTheDescribedInsideAwayFromTheOutline) {
    const Points p = points();
    const std::vector<Location> ours = cntr::Polygon(input().points).locate(p);
    const xcRegion region(input().points, xcContourDefs::keepOutline);
    const NearOutline nearOutline({&input().points}, kNearOutline);
    std::size_t compared = 0, mismatches = 0;
    for (std::size_t k = 0; k < p.size(); ++k) {
        if (nearOutline(p[k]))
            continue;
        ++compared;
        const Location described = region.inside(p[k], true) ? Location::inside : Location::outside;
        if (ours[k] != described && ++mismatches <= 10)
            ADD_FAILURE() << input().label << " point " << k << ": ours "
                          << static_cast<int>(ours[k]) << ", the described inside "
                          << static_cast<int>(described);
    }
    EXPECT_EQ(mismatches, 0u);
    EXPECT_GT(compared, p.size() * 9 / 10);
}

INSTANTIATE_TEST_SUITE_P(Outlines, PolygonLocateBenchPeers,
                         testing::Values(BenchCase{peers::Kind::blob, 1024},
                                         BenchCase{peers::Kind::blob, 16384},
                                         BenchCase{peers::Kind::spiky, 1024},
                                         BenchCase{peers::Kind::spiky, 16384}),
                         caseName);

// ---- seeded multipolygons with holes and islands ----

/// A region of the generator: an outline and its holes, each hole with its islands.
struct Nest {
    Ring outline;
    std::vector<Nest> holes;
};

/// One seeded shape: its members (disjoint), the points to locate, and the same shape as the
/// peers take it.
struct SeededShape {
    std::vector<Nest> members;
    PeerShape peerShape;
    Points points;
};

// The generator draws every number from one seeded sequence, so the shapes are the same on every
// machine.
class ShapeGenerator {
  public:
    explicit ShapeGenerator(std::uint64_t seed) : random_(seed) {}

    SeededShape next() {
        SeededShape shape;
        const int memberCount = integer(1, 3);
        std::vector<std::pair<xcVector<2>, double>> discs;
        for (int m = 0; m < memberCount; ++m) {
            // Members lie in disjoint discs; a draw that meets an earlier disc is dropped.
            const double radius = random_.next(20.0, 100.0);
            const xcVector<2> centre(random_.next(0.0, 400.0), random_.next(0.0, 400.0));
            if (std::any_of(discs.begin(), discs.end(), [&](const auto& d) {
                    return (d.first - centre).length() <= d.second + radius;
                }))
                continue;
            discs.emplace_back(centre, radius);
            shape.members.push_back(region(centre, radius, 0));
        }
        for (const Nest& member : shape.members)
            addPeerPolygons(member, shape.peerShape);
        shape.points = pointsFor(shape.peerShape);
        return shape;
    }

  private:
    int integer(int lo, int hi) {
        return std::min(hi, lo + static_cast<int>(random_.next(0.0, hi - lo + 1.0)));
    }

    // An outline in the disc of `radius` round `centre`, with holes (depth 0) or islands (depth
    // 1) in the disc that its edges keep clear of.
    Nest region(const xcVector<2>& centre, double radius, int depth) {
        Nest nest;
        nest.outline = integer(0, 3) == 0 ? rectangle(centre, radius) : star(centre, radius);
        if (depth == 2)
            return nest;
        const double clear = clearRadius(nest.outline, centre);
        const int inner = depth == 0 ? integer(0, 3) : integer(0, 1);
        std::vector<std::pair<xcVector<2>, double>> discs;
        for (int h = 0; h < inner; ++h) {
            // Holes: discs within half the clear radius, of up to 0.3 of it, apart from each
            // other. An island: one disc round the hole's centre.
            const double r = depth == 0 ? random_.next(0.1, 0.3) * clear : 0.6 * clear;
            const double angle = random_.next(0.0, 2.0 * xcPi);
            const double offset = depth == 0 ? random_.next(0.0, 0.5) * clear : 0.0;
            const xcVector<2> c =
                centre + xcVector<2>(offset * std::cos(angle), offset * std::sin(angle));
            if (std::any_of(discs.begin(), discs.end(),
                            [&](const auto& d) { return (d.first - c).length() <= d.second + r; }))
                continue;
            discs.emplace_back(c, r);
            nest.holes.push_back(region(c, r, depth + 1));
        }
        return nest;
    }

    // A star of 5 to 24 vertices round `centre`: angles in order, each jittered by up to 0.3
    // of a step, radii from 0.6 to 1 of `radius`. Every angular gap is below a half turn, so
    // the star holds its centre and does not cross itself.
    Ring star(const xcVector<2>& centre, double radius) {
        const int n = integer(5, 24);
        const double start = random_.next(0.0, 2.0 * xcPi);
        Ring ring;
        for (int i = 0; i < n; ++i) {
            const double angle = start + 2.0 * xcPi * (i + random_.next(-0.3, 0.3)) / n;
            const double r = radius * random_.next(0.6, 1.0);
            ring.push_back(centre + xcVector<2>(r * std::cos(angle), r * std::sin(angle)));
        }
        return ring;
    }

    // An axis-parallel rectangle inside the disc, its corners on a grid of 1/256 so that edge
    // midpoints are exact and many points share a height with a vertex.
    Ring rectangle(const xcVector<2>& centre, double radius) {
        const double a = 0.9 * radius * random_.next(0.3, 0.7);
        const double b = std::sqrt(0.81 * radius * radius - a * a) * random_.next(0.5, 1.0);
        const auto grid = [](double v) { return std::round(v * 256.0) / 256.0; };
        const double x0 = grid(centre.x() - a), x1 = grid(centre.x() + a);
        const double y0 = grid(centre.y() - b), y1 = grid(centre.y() + b);
        return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    }

    // The radius of the largest disc round `centre` that the ring's edges keep clear of.
    static double clearRadius(const Ring& ring, const xcVector<2>& centre) {
        double clear = HUGE_VAL;
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const xcVector<2>& a = ring[i];
            const xcVector<2>& b = ring[(i + 1) % ring.size()];
            const xcVector<2> d = b - a;
            const double t = std::clamp((centre - a).dot(d) / d.dot(d), 0.0, 1.0);
            clear = std::min(clear, (a + t * d - centre).length());
        }
        return clear;
    }

    // The member and its holes as a peer polygon; each hole's islands as polygons of their own.
    static void addPeerPolygons(const Nest& member, PeerShape& out) {
        PeerPolygon polygon{member.outline, {}};
        for (const Nest& hole : member.holes)
            polygon.holes.push_back(hole.outline);
        out.push_back(polygon);
        for (const Nest& hole : member.holes)
            for (const Nest& island : hole.holes)
                addPeerPolygons(island, out);
    }

    // Eight points: three anywhere in the widened bounding box; a vertex (on the boundary); an
    // edge midpoint (on the boundary for axis-parallel edges, within rounding of it otherwise);
    // a point at a vertex's height and one at a vertex's abscissa (where a ray along an axis
    // passes through vertices); a point 1e-7 from a vertex.
    Points pointsFor(const PeerShape& shape) {
        const std::vector<const Ring*> rings = ringsOf(shape);
        double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;
        for (const Ring* ring : rings)
            for (const xcVector<2>& v : *ring) {
                x0 = std::min(x0, v.x()), x1 = std::max(x1, v.x());
                y0 = std::min(y0, v.y()), y1 = std::max(y1, v.y());
            }
        const double mx = 0.1 * (x1 - x0), my = 0.1 * (y1 - y0);
        const auto x = [&] { return random_.next(x0 - mx, x1 + mx); };
        const auto y = [&] { return random_.next(y0 - my, y1 + my); };
        const auto vertex = [&]() -> const xcVector<2>& {
            const Ring& ring =
                *rings[static_cast<std::size_t>(integer(0, static_cast<int>(rings.size()) - 1))];
            return ring[static_cast<std::size_t>(integer(0, static_cast<int>(ring.size()) - 1))];
        };
        Points points;
        for (int k = 0; k < 3; ++k)
            points.emplace_back(x(), y());
        points.push_back(vertex());
        const Ring& ring =
            *rings[static_cast<std::size_t>(integer(0, static_cast<int>(rings.size()) - 1))];
        const std::size_t e =
            static_cast<std::size_t>(integer(0, static_cast<int>(ring.size()) - 1));
        points.push_back(0.5 * (ring[e] + ring[(e + 1) % ring.size()]));
        points.emplace_back(x(), vertex().y());
        points.emplace_back(vertex().x(), y());
        const double angle = random_.next(0.0, 2.0 * xcPi);
        points.push_back(vertex() + xcVector<2>(1e-7 * std::cos(angle), 1e-7 * std::sin(angle)));
        return points;
    }

    xcRandomUniform random_;
};

/// The described region of a nest: its outline, its holes with their islands as their holes.
xcPtrHandle<xcRegion> describedRegion(const Nest& nest) {
    xcPtrHandle<xcRegion> region(new xcRegion(nest.outline, xcContourDefs::keepOutline));
    std::vector<xcPtrHandle<xcRegion>> holes;
    for (const Nest& hole : nest.holes)
        holes.push_back(describedRegion(hole));
    if (!holes.empty())
        region->holes(holes);
    return region;
}

/// The seeded shapes, generated once for every test that uses them.
const std::vector<SeededShape>& seededShapes() {
    static const std::vector<SeededShape> shapes = [] {
        ShapeGenerator generator(20261123);
        std::vector<SeededShape> all;
        all.reserve(kSeededShapes);
        for (int s = 0; s < kSeededShapes; ++s)
            all.push_back(generator.next());
        return all;
    }();
    return shapes;
}

/// The described region set of a seeded shape, and the multipolygon the library converts it to
/// (the conversion cntrtool's locate uses).
struct LibraryShape {
    xcRegionSet set;
    cntr::MultiPolygon multiPolygon;
};

LibraryShape libraryShape(const SeededShape& shape) {
    xcRegionSet::MutableRegionHandles regions;
    for (const Nest& member : shape.members)
        regions.push_back(describedRegion(member));
    xcRegionSet set(regions, xcContourDefs::keepOutline);
    cntr::MultiPolygon multiPolygon = cntr::MultiPolygon::fromRegionSet(set);
    return {set, multiPolygon};
}

Tally compareSeededWith(const PeerFactory& make) {
    Tally tally;
    for (std::size_t s = 0; s < seededShapes().size(); ++s) {
        const SeededShape& shape = seededShapes()[s];
        const std::vector<Location> ours = libraryShape(shape).multiPolygon.locate(shape.points);
        comparePeer(*make(shape.peerShape), ringsOf(shape.peerShape), "shape " + std::to_string(s),
                    shape.points, ours, tally);
    }
    expectAgreement(tally, true);
    return tally;
}

TEST(PolygonLocateSeededPeers, GeneratorKeepsHolesInsideAndIslandsInsideHoles) {
    // The library's exact validity rules: holes strictly inside their exteriors, islands (members
    // of their own) inside holes, nothing crossing. Some shapes have several members, holes and
    // islands.
    std::size_t withHoles = 0, withIslands = 0, multi = 0;
    for (std::size_t s = 0; s < seededShapes().size(); ++s) {
        const SeededShape& shape = seededShapes()[s];
        const LibraryShape library = libraryShape(shape);
        const cntr::Validity& validity = library.multiPolygon.validity();
        ASSERT_TRUE(validity.valid) << "shape " << s << ": " << testing::PrintToString(validity);
        EXPECT_EQ(library.multiPolygon.memberCount(), shape.peerShape.size());
        withHoles += std::any_of(shape.peerShape.begin(), shape.peerShape.end(),
                                 [](const PeerPolygon& p) { return !p.holes.empty(); });
        withIslands += shape.peerShape.size() > shape.members.size();
        multi += shape.members.size() > 1;
    }
    EXPECT_GT(withHoles, seededShapes().size() / 2);
    EXPECT_GT(withIslands, seededShapes().size() / 10);
    EXPECT_GT(multi, seededShapes().size() / 4);
}

TEST(PolygonLocateSeededPeers, AgreesWithGeosPreparedContains) {
    const PeerChoice peer = geosPeer();
    if (!peer.make)
        GTEST_SKIP() << peer.missing;
    // GEOS decides sides exactly, as the locator does: even the edge midpoints that rounding
    // moved off their edges get the same answer.
    EXPECT_EQ(compareSeededWith(peer.make).onPeersEdge, 0u);
}

TEST(PolygonLocateSeededPeers, AgreesWithBoostGeometryWithin) {
    const PeerChoice peer = boostPeer();
    if (!peer.make)
        GTEST_SKIP() << peer.missing;
    // The only differences allowed are Boost's tolerance of points within rounding of an edge:
    // some of the slanted edges' midpoints, one point in eight of a shape at most.
    const Tally tally = compareSeededWith(peer.make);
    RecordProperty("points_on_boosts_edges", std::to_string(tally.onPeersEdge));
    EXPECT_LT(tally.onPeersEdge, seededShapes().size() / 10);
}

// No point disagrees: away from the outline the described ray's parity is the true containment,
// also at the points level with a vertex or in line with one, where a ray along an axis would
// pass through vertices (the described ray turns away from the directions to the vertices).
TEST(PolygonLocateSeededPeers, AgreesWithTheDescribedInsideAwayFromTheOutline) {
    std::size_t compared = 0, inside = 0, mismatches = 0, total = 0;
    for (std::size_t s = 0; s < seededShapes().size(); ++s) {
        const SeededShape& shape = seededShapes()[s];
        const LibraryShape library = libraryShape(shape);
        const std::vector<Location> ours = library.multiPolygon.locate(shape.points);
        const NearOutline nearOutline(ringsOf(shape.peerShape), kNearOutline);
        total += shape.points.size();
        for (std::size_t k = 0; k < shape.points.size(); ++k) {
            const xcVector<2>& p = shape.points[k];
            if (nearOutline(p))
                continue;
            ++compared;
            const bool described = library.set.inside(p, true);
            inside += described;
            if (ours[k] != (described ? Location::inside : Location::outside) && ++mismatches <= 10)
                ADD_FAILURE() << "shape " << s << " point " << k << " (" << p.x() << ", " << p.y()
                              << "): ours " << static_cast<int>(ours[k])
                              << ", the described inside " << described;
        }
    }
    EXPECT_EQ(mismatches, 0u);
    // The vertices, the axis-parallel midpoints and the points 1e-7 from a vertex are left out.
    EXPECT_GT(compared, total / 2);
    EXPECT_GT(inside, compared / 10);
}

// ---- the peers' conventions, shown on one hand-made case ----

TEST(PolygonLocatePeerConventions, BoostGeometryTakesPointsWithinRoundingOfAnEdgeForOnIt) {
    // The triangle (0, 0), (3, 0.1), (0, 1) is counter-clockwise: its interior lies left of the
    // edge (0, 0) -> (3, 0.1). The doubles nearest to that edge's points at x = 1 and x = 1.5 are
    // off it. In exact rational arithmetic the cross product 3 y - 0.1 x (0.1 being the double
    // 0.1000000000000000055511151231257827...) is -6.9e-18 for (1, 0.03333333333333333), right
    // of the edge, outside, and +2.1e-17 for (1.5, 0.05000000000000001), left of it, inside.
    const Ring triangle = {{0, 0}, {3, 0.1}, {0, 1}};
    const xcVector<2> below(1.0, 0.1 / 3.0), above(1.5, 0.1 * 1.5 / 3.0);
    ASSERT_EQ(below.y(), 0.03333333333333333);
    ASSERT_EQ(above.y(), 0.05000000000000001);
    const cntr::Polygon polygon(triangle);
    EXPECT_EQ(polygon.locate(below), Location::outside);
    EXPECT_EQ(polygon.locate(above), Location::inside);
    const PeerShape shape = {PeerPolygon{triangle, {}}};
    if (const PeerChoice geosChoice = geosPeer(); geosChoice.make) {
        // GEOS decides the side exactly too.
        const std::unique_ptr<Peer> peer = geosChoice.make(shape);
        EXPECT_FALSE(peer->covers(below));
        EXPECT_TRUE(peer->interior(above));
    }
    const PeerChoice boostChoice = boostPeer();
    if (!boostChoice.make)
        GTEST_SKIP() << boostChoice.missing;
    // Boost takes both for points on the edge: covered, not within.
    const std::unique_ptr<Peer> peer = boostChoice.make(shape);
    for (const xcVector<2>& p : {below, above}) {
        EXPECT_FALSE(peer->interior(p)) << p.x();
        EXPECT_TRUE(peer->covers(p)) << p.x();
    }
}

}  // namespace
