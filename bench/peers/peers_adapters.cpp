#include "peers_adapters.h"

#include <cmath>

namespace peers {
namespace {

GEOSCoordSequence* geosSequence(const Points& p) {
    GEOSCoordSequence* s = GEOSCoordSeq_create_r(geos(), static_cast<unsigned>(p.size() + 1), 2);
    for (std::size_t i = 0; i <= p.size(); ++i) {
        const xcVector<2>& v = p[i % p.size()];
        GEOSCoordSeq_setXY_r(geos(), s, static_cast<unsigned>(i), v.x(), v.y());
    }
    return s;
}

ClipperLib::IntPoint toClipper(const xcVector<2>& p) {
    return ClipperLib::IntPoint(static_cast<ClipperLib::cInt>(std::llround(p.x() * kClipperScale)),
                                static_cast<ClipperLib::cInt>(std::llround(p.y() * kClipperScale)));
}

}  // namespace

std::vector<cv::Point2f> toCv(const Points& p) {
    std::vector<cv::Point2f> out;
    out.reserve(p.size());
    for (const xcVector<2>& v : p)
        out.push_back(toCv(v));
    return out;
}

cv::Point2f toCv(const xcVector<2>& p) {
    return cv::Point2f(static_cast<float>(p.x()), static_cast<float>(p.y()));
}

BPolygon toBoostPolygon(const Points& p) {
    BPolygon polygon;
    for (const xcVector<2>& v : p)
        polygon.outer().push_back(toBoost(v));
    polygon.outer().push_back(toBoost(p.front()));
    return polygon;
}

BPoint toBoost(const xcVector<2>& p) {
    return BPoint(p.x(), p.y());
}

BSegment toBoost(const xcLineSeg& s) {
    return BSegment(toBoost(s.p1()), toBoost(s.p2()));
}

std::vector<BSegment> boostEdges(const Points& p) {
    std::vector<BSegment> edges;
    edges.reserve(p.size());
    for (std::size_t i = 0; i < p.size(); ++i)
        edges.emplace_back(toBoost(p[(i + p.size() - 1) % p.size()]), toBoost(p[i]));
    return edges;
}

GEOSContextHandle_t geos() {
    static const struct Context {
        GEOSContextHandle_t handle = GEOS_init_r();
        ~Context() { GEOS_finish_r(handle); }
    } context;
    return context.handle;
}

GeosGeometry geosPolygon(const Points& p) {
    GEOSGeometry* shell = GEOSGeom_createLinearRing_r(geos(), geosSequence(p));
    return GeosGeometry(GEOSGeom_createPolygon_r(geos(), shell, nullptr, 0));
}

GeosGeometry geosRing(const Points& p) {
    return GeosGeometry(GEOSGeom_createLineString_r(geos(), geosSequence(p)));
}

GeosGeometry geosPoint(const xcVector<2>& p) {
    return GeosGeometry(GEOSGeom_createPointFromXY_r(geos(), p.x(), p.y()));
}

ClipperLib::Path toClipper(const Points& p) {
    ClipperLib::Path path;
    path.reserve(p.size());
    for (const xcVector<2>& v : p)
        path.push_back(toClipper(v));
    return path;
}

ClipperLib::Path toClipper(const xcLineSeg& s) {
    return ClipperLib::Path{toClipper(s.p1()), toClipper(s.p2())};
}

xcVector<2> fromClipper(const ClipperLib::IntPoint& p) {
    return xcVector<2>(static_cast<double>(p.X) / kClipperScale,
                       static_cast<double>(p.Y) / kClipperScale);
}

}  // namespace peers
