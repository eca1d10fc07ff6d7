// Batched queries against one outline, ours against the peers': containment of 10,000 points
// (GEOS prepared contains, OpenCV pointPolygonTest, Boost.Geometry within) by the described
// region's inside and by the polygon's prepared locator, distance from 10,000
// points (Boost.Geometry distance through an rtree of the edges, GEOS prepared distance) and the
// crossings of 1,000 segments (Boost.Geometry through an rtree of the edges, Clipper clipping
// the segments as open paths).
//
// Every iteration is a first call: our outline drops its caches first (so an index it builds is
// built inside the timing), and each peer builds its index or prepared geometry inside the
// timing too. Converting the input into a peer's types is done once, before timing.
#include <cmath>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

#include <boost/geometry/index/rtree.hpp>
#include <opencv2/imgproc.hpp>

#include <cntr/contour.h>
#include <cntr/core/point_locator.h>
#include <cntr/polygon.h>
#include <cntr/region.h>

#include "peers_adapters.h"
#include "peers_registry.h"

namespace peers {
namespace {

namespace bgi = bg::index;
using EdgeTree = bgi::rtree<BSegment, bgi::rstar<16>>;

// Distances computed by different formulas from the same doubles.
constexpr double kDistanceAgreement = 1e-9;
// OpenCV tests containment on the single-precision outline: points within its rounding of an
// edge may fall the other way. Allowed: this fraction of the queries.
constexpr double kSinglePrecisionContainmentSlack = 2e-3;
// Clipper clips on a grid of 2^-20 units: crossings within that of a vertex may merge or split.
constexpr double kClipperCrossingSlack = 1e-3;

void dropRegion(const xcRegion& r) {
    const_cast<xcRegion&>(r).holes(std::vector<xcPtrHandle_const<xcRegion>>());
}

void dropContour(const xcContour& c) {
    const_cast<xcContour&>(c).isClosed(true);
}

long long oursInside(const xcRegion& r, const Points& queries) {
    long long count = 0;
    for (const xcVector<2>& q : queries)
        count += r.inside(q, false) ? 1 : 0;
    return count;
}

std::vector<double> oursDistances(const xcContour& c, const Points& queries) {
    std::vector<double> d;
    d.reserve(queries.size());
    for (const xcVector<2>& q : queries)
        d.push_back(c.distToPoint(q, false));
    return d;
}

long long oursCrossings(xcContour& c, const std::vector<xcLineSeg>& segments) {
    long long count = 0;
    for (const xcLineSeg& s : segments)
        count += static_cast<long long>(c.intersections(s, true).size());
    return count;
}

bool agreeDistances(benchmark::State& state, const std::vector<double>& ours,
                    const std::vector<double>& theirs, double scale) {
    for (std::size_t i = 0; i < ours.size(); ++i)
        if (!agree(state, "distance of query " + std::to_string(i), ours[i], theirs[i],
                   kDistanceAgreement, scale))
            return false;
    return true;
}

long long slackOf(double fraction, long long count) {
    return static_cast<long long>(std::ceil(fraction * static_cast<double>(count)));
}

// ---- containment ----

long long geosInside(const GEOSGeometry* polygon, const std::vector<GeosGeometry>& queries) {
    const GEOSPreparedGeometry* prepared = GEOSPrepare_r(geos(), polygon);
    long long count = 0;
    for (const GeosGeometry& q : queries)
        count += GEOSPreparedContains_r(geos(), prepared, q.get()) == 1 ? 1 : 0;
    GEOSPreparedGeom_destroy_r(geos(), prepared);
    return count;
}

long long opencvInside(const std::vector<cv::Point2f>& outline,
                       const std::vector<cv::Point2f>& queries) {
    long long count = 0;
    for (const cv::Point2f& q : queries)
        count += cv::pointPolygonTest(outline, q, false) >= 0.0 ? 1 : 0;
    return count;
}

long long boostInside(const BPolygon& polygon, const std::vector<BPoint>& queries) {
    long long count = 0;
    for (const BPoint& q : queries)
        count += bg::within(q, polygon) ? 1 : 0;
    return count;
}

std::vector<BPoint> boostPoints(const Points& p) {
    std::vector<BPoint> out;
    for (const xcVector<2>& v : p)
        out.push_back(toBoost(v));
    return out;
}

void registerInside() {
    addStars("inside", "ours", [](benchmark::State& state, const Input& in) {
        const xcRegion r(in.points, xcContourDefs::keepOutline);
        for (auto _ : state) {
            dropRegion(r);
            benchmark::DoNotOptimize(oursInside(r, in.queryPoints));
        }
    });
    addStars("inside", "geos_prepared_contains", [](benchmark::State& state, const Input& in) {
        const GeosGeometry polygon = geosPolygon(in.points);
        std::vector<GeosGeometry> queries;
        for (const xcVector<2>& q : in.queryPoints)
            queries.push_back(geosPoint(q));
        const xcRegion r(in.points, xcContourDefs::keepOutline);
        if (!agreeCount(state, "points inside", oursInside(r, in.queryPoints),
                        geosInside(polygon.get(), queries)))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(geosInside(polygon.get(), queries));
    });
    addStars("inside", "opencv_pointPolygonTest", [](benchmark::State& state, const Input& in) {
        const std::vector<cv::Point2f> outline = toCv(in.points);
        const std::vector<cv::Point2f> queries = toCv(in.queryPoints);
        const xcRegion r(in.points, xcContourDefs::keepOutline);
        const long long n = static_cast<long long>(in.queryPoints.size());
        if (!agreeCount(state, "points inside", oursInside(r, in.queryPoints),
                        opencvInside(outline, queries),
                        slackOf(kSinglePrecisionContainmentSlack, n)))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(opencvInside(outline, queries));
    });
    addStars("inside", "boost_within", [](benchmark::State& state, const Input& in) {
        const BPolygon polygon = toBoostPolygon(in.points);
        const std::vector<BPoint> queries = boostPoints(in.queryPoints);
        const xcRegion r(in.points, xcContourDefs::keepOutline);
        if (!agreeCount(state, "points inside", oursInside(r, in.queryPoints),
                        boostInside(polygon, queries)))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(boostInside(polygon, queries));
    });
}

// ---- prepared point location ----

// The points the polygon's locator finds inside, the locator built inside the timing (a new
// polygon each time).
long long oursLocated(const Points& outline, const Points& queries) {
    const cntr::Polygon polygon(outline);
    long long count = 0;
    for (cntr::Location found : polygon.locate(queries))
        count += found == cntr::Location::inside ? 1 : 0;
    return count;
}

void registerLocate() {
    // The locator's construction alone, to set beside the self-intersection test of the same
    // outline (isSelfIntersecting/.../ours).
    addStars("locatorBuild", "ours", [](benchmark::State& state, const Input& in) {
        for (auto _ : state) {
            const cntr::core::PointLocator locator({&in.points});
            benchmark::DoNotOptimize(locator.bandCount());
        }
    });
    addStars("locate", "ours", [](benchmark::State& state, const Input& in) {
        for (auto _ : state)
            benchmark::DoNotOptimize(oursLocated(in.points, in.queryPoints));
    });
    addStars("locate", "geos_prepared_contains", [](benchmark::State& state, const Input& in) {
        const GeosGeometry polygon = geosPolygon(in.points);
        std::vector<GeosGeometry> queries;
        for (const xcVector<2>& q : in.queryPoints)
            queries.push_back(geosPoint(q));
        if (!agreeCount(state, "points inside", oursLocated(in.points, in.queryPoints),
                        geosInside(polygon.get(), queries)))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(geosInside(polygon.get(), queries));
    });
    addStars("locate", "boost_within", [](benchmark::State& state, const Input& in) {
        const BPolygon polygon = toBoostPolygon(in.points);
        const std::vector<BPoint> queries = boostPoints(in.queryPoints);
        if (!agreeCount(state, "points inside", oursLocated(in.points, in.queryPoints),
                        boostInside(polygon, queries)))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(boostInside(polygon, queries));
    });
}

// ---- distance ----

std::vector<double> boostDistances(const std::vector<BSegment>& edges,
                                   const std::vector<BPoint>& queries) {
    const EdgeTree tree(edges.begin(), edges.end());  // bulk loading
    std::vector<double> d;
    d.reserve(queries.size());
    std::vector<BSegment> nearest;
    for (const BPoint& q : queries) {
        nearest.clear();
        tree.query(bgi::nearest(q, 1), std::back_inserter(nearest));
        d.push_back(bg::distance(q, nearest.front()));
    }
    return d;
}

std::vector<double> geosDistances(const GEOSGeometry* ring,
                                  const std::vector<GeosGeometry>& queries) {
    const GEOSPreparedGeometry* prepared = GEOSPrepare_r(geos(), ring);
    std::vector<double> d;
    d.reserve(queries.size());
    for (const GeosGeometry& q : queries) {
        double distance = 0.0;
        GEOSPreparedDistance_r(geos(), prepared, q.get(), &distance);
        d.push_back(distance);
    }
    GEOSPreparedGeom_destroy_r(geos(), prepared);
    return d;
}

void registerDistance() {
    addStars("distToPoint", "ours", [](benchmark::State& state, const Input& in) {
        const xcContour c(in.points, true);
        for (auto _ : state) {
            dropContour(c);
            benchmark::DoNotOptimize(oursDistances(c, in.queryPoints).data());
        }
    });
    addStars("distToPoint", "boost_rtree_distance", [](benchmark::State& state,
                                                       const Input& in) {
        const std::vector<BSegment> edges = boostEdges(in.points);
        const std::vector<BPoint> queries = boostPoints(in.queryPoints);
        const xcContour c(in.points, true);
        if (!agreeDistances(state, oursDistances(c, in.queryPoints),
                            boostDistances(edges, queries), in.box.size().length()))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(boostDistances(edges, queries).data());
    });
    addStars("distToPoint", "geos_prepared_distance", [](benchmark::State& state,
                                                         const Input& in) {
        const GeosGeometry ring = geosRing(in.points);
        std::vector<GeosGeometry> queries;
        for (const xcVector<2>& q : in.queryPoints)
            queries.push_back(geosPoint(q));
        const xcContour c(in.points, true);
        if (!agreeDistances(state, oursDistances(c, in.queryPoints),
                            geosDistances(ring.get(), queries), in.box.size().length()))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(geosDistances(ring.get(), queries).data());
    });
}

// ---- segment crossings ----

long long boostCrossings(const std::vector<BSegment>& edges,
                         const std::vector<BSegment>& segments) {
    const EdgeTree tree(edges.begin(), edges.end());
    long long count = 0;
    std::vector<BSegment> hits;
    std::vector<BPoint> points;
    for (const BSegment& s : segments) {
        hits.clear();
        tree.query(bgi::intersects(s), std::back_inserter(hits));
        for (const BSegment& e : hits) {
            points.clear();
            bg::intersection(e, s, points);
            count += static_cast<long long>(points.size());
        }
    }
    return count;
}

// Clipper clips all segments in one pass, as open paths against the closed outline; every end
// of a clipped piece that is not an end of a query segment is a crossing.
long long clipperCrossings(const ClipperLib::Path& outline, const ClipperLib::Paths& segments,
                           const std::set<std::pair<ClipperLib::cInt, ClipperLib::cInt>>& ends) {
    ClipperLib::Clipper clipper;
    clipper.AddPaths(segments, ClipperLib::ptSubject, false);
    clipper.AddPath(outline, ClipperLib::ptClip, true);
    ClipperLib::PolyTree tree;
    clipper.Execute(ClipperLib::ctIntersection, tree, ClipperLib::pftEvenOdd,
                    ClipperLib::pftEvenOdd);
    ClipperLib::Paths pieces;
    ClipperLib::OpenPathsFromPolyTree(tree, pieces);
    long long count = 0;
    for (const ClipperLib::Path& piece : pieces)
        for (const ClipperLib::IntPoint& p : {piece.front(), piece.back()})
            count += ends.count(std::make_pair(p.X, p.Y)) == 0 ? 1 : 0;
    return count;
}

void registerCrossings() {
    addStars("intersections", "ours", [](benchmark::State& state, const Input& in) {
        xcContour c(in.points, true);
        for (auto _ : state) {
            dropContour(c);
            benchmark::DoNotOptimize(oursCrossings(c, in.querySegments));
        }
    });
    addStars("intersections", "boost_rtree_intersection", [](benchmark::State& state,
                                                             const Input& in) {
        const std::vector<BSegment> edges = boostEdges(in.points);
        std::vector<BSegment> segments;
        for (const xcLineSeg& s : in.querySegments)
            segments.push_back(toBoost(s));
        xcContour c(in.points, true);
        if (!agreeCount(state, "crossings", oursCrossings(c, in.querySegments),
                        boostCrossings(edges, segments)))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(boostCrossings(edges, segments));
    });
    addStars("intersections", "clipper_open_paths", [](benchmark::State& state,
                                                       const Input& in) {
        const ClipperLib::Path outline = toClipper(in.points);
        ClipperLib::Paths segments;
        std::set<std::pair<ClipperLib::cInt, ClipperLib::cInt>> ends;
        for (const xcLineSeg& s : in.querySegments) {
            segments.push_back(toClipper(s));
            for (const ClipperLib::IntPoint& p : segments.back())
                ends.insert(std::make_pair(p.X, p.Y));
        }
        xcContour c(in.points, true);
        const long long ours = oursCrossings(c, in.querySegments);
        if (!agreeCount(state, "crossings", ours, clipperCrossings(outline, segments, ends),
                        slackOf(kClipperCrossingSlack, ours)))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(clipperCrossings(outline, segments, ends));
    });
}

const bool registered =
    (registerInside(), registerLocate(), registerDistance(), registerCrossings(), true);

}  // namespace
}  // namespace peers
