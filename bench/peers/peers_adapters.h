// The peers' forms of the shared inputs. Each benchmark converts its input before timing, so
// that every side is timed on data already in its own native form.
#ifndef CNTR_BENCH_PEERS_ADAPTERS_H
#define CNTR_BENCH_PEERS_ADAPTERS_H

#include <memory>
#include <vector>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <clipper.hpp>
#include <geos_c.h>
#include <opencv2/core.hpp>

#include "peers_inputs.h"

namespace peers {

namespace bg = boost::geometry;
using BPoint = bg::model::d2::point_xy<double>;
/// Counter-clockwise, closed (the first point repeated at the end), as Boost expects.
using BPolygon = bg::model::polygon<BPoint, false, true>;
using BSegment = bg::model::segment<BPoint>;

/// OpenCV's contour functions take single-precision points.
std::vector<cv::Point2f> toCv(const Points& p);
cv::Point2f toCv(const xcVector<2>& p);

BPolygon toBoostPolygon(const Points& p);
BPoint toBoost(const xcVector<2>& p);
BSegment toBoost(const xcLineSeg& s);
/// The edges of the closed outline, closing edge first.
std::vector<BSegment> boostEdges(const Points& p);

/// The process's GEOS context (created on first use).
GEOSContextHandle_t geos();
struct GeosDeleter {
    void operator()(GEOSGeometry* g) const { GEOSGeom_destroy_r(geos(), g); }
};
using GeosGeometry = std::unique_ptr<GEOSGeometry, GeosDeleter>;
GeosGeometry geosPolygon(const Points& p);
/// The closed outline as a line string (its boundary, for distances).
GeosGeometry geosRing(const Points& p);
GeosGeometry geosPoint(const xcVector<2>& p);

/// Clipper works on 64-bit integers: coordinates are scaled by this and rounded.
constexpr double kClipperScale = 1048576.0;
ClipperLib::Path toClipper(const Points& p);
ClipperLib::Path toClipper(const xcLineSeg& s);
xcVector<2> fromClipper(const ClipperLib::IntPoint& p);

}  // namespace peers

#endif
