// The described classes: Contour, Region and RegionSet. Python holds them through counted
// handles, so a hole or a member reached from Python is the very object its region or set holds.
// Python sees them immutable (nothing is bound that changes a shape's geometry); their methods
// keep the GIL, since even the library's const queries fill caches.
#include "bindings.h"

#include <cstdint>
#include <string>
#include <typeinfo>
#include <vector>

#include <cntr/contour.h>
#include <cntr/contourdefs.h>
#include <cntr/core/extent.h>
#include <cntr/polygon.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/archive.h>
#include <foundation/persistent.h>

#include "convert.h"
#include "measures.h"

namespace cntr_python {

namespace {

using DiameterMode = xcContourDefs::DiameterMode;
using IntersectionMode = xcContourDefs::IntersectionMode;

// ---- archives: the bytes of to_bytes, from_bytes and pickling ----

template <class Shape>
py::bytes archiveBytes(Shape& shape) {
    xcPtrHandle<Shape> handle(&shape);  // one more count beside Python's
    xcMemoryArchive archive;
    archive || handle;
    const std::vector<unsigned char> bytes = archive.takeBytes();
    return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

// The shape of an archive holding one Shape record (exactly that class: an edgelet contour or a
// region is not a contour here), and nothing after it.
template <class Shape>
Counted<Shape> fromArchiveBytes(const py::bytes& data, const char* pythonName) {
    const std::string_view bytes = data;
    xcMemoryArchive archive(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    xcPtrHandle<Shape> handle;
    archive || handle;
    const std::string expected = xc_Instantiator::registeredName(typeid(Shape));
    if (!handle)
        throw py::value_error("the archive holds no " + expected + " (a " + pythonName +
                              ") as its first record");
    if (typeid(*handle) != typeid(Shape))
        throw py::value_error("the archive holds a " +
                              xc_Instantiator::registeredName(typeid(*handle)) + ", not a " +
                              expected + " (a " + pythonName + ")");
    if (archive.bytesLeft() != 0)
        throw py::value_error(std::to_string(archive.bytesLeft()) +
                              " bytes follow the shape's record in the archive");
    return Counted<Shape>(handle);
}

// A new shape of class Shape, filled by the library through fill(shape): the results that the
// library assigns to an out parameter (hulls, repairs, mapped shapes).
template <class Shape, class Fill>
Counted<Shape> filled(Fill fill) {
    Counted<Shape> shape(new Shape());
    fill(*shape.get());
    return shape;
}

// to_bytes, from_bytes and pickling through the archive bytes.
template <class Shape>
void bindArchive(py::class_<Shape, Counted<Shape>>& cls, const char* pythonName,
                 const char* bytesDoc) {
    cls.def(
           "to_bytes", [](Shape& s) { return archiveBytes(s); }, bytesDoc)
        .def_static(
            "from_bytes",
            [pythonName](const py::bytes& b) { return fromArchiveBytes<Shape>(b, pythonName); },
            py::arg("data"), "The shape stored in archive bytes (see to_bytes).")
        .def(py::pickle([](Shape& shape) { return archiveBytes(shape); },
                        [pythonName](const py::bytes& state) {
                            return fromArchiveBytes<Shape>(state, pythonName);
                        }));
}

// ---- arguments ----

// A Contour or a Region, as the contour it is.
const xcContour& asContour(py::handle shape) {
    if (py::isinstance<xcRegion>(shape))
        return shape.cast<const xcRegion&>();
    if (py::isinstance<xcContour>(shape))
        return shape.cast<const xcContour&>();
    throw py::type_error("expected a cntr.Contour or cntr.Region, not " +
                         py::str(py::type::of(shape).attr("__name__")).cast<std::string>());
}

// Regions given as Region objects (shared, not copied) or as vertex arrays (new regions).
std::vector<xcPtrHandle<xcRegion>> toRegions(py::iterable regions, const char* what) {
    std::vector<xcPtrHandle<xcRegion>> result;
    for (py::handle region : regions) {
        if (py::isinstance<xcRegion>(region))
            result.emplace_back(&region.cast<xcRegion&>());
        else
            result.emplace_back(new xcRegion(toPoints(region, what)));
    }
    return result;
}

// The shape behind a const handle, for Python: shapes are created mutable and held through
// handles, so the const is the holder's promise, which Python keeps by binding no mutators.
Counted<xcRegion> counted(const xcPtrHandle_const<xcRegion>& region) {
    return Counted<xcRegion>(const_cast<xcRegion*>(region.rep()));
}

py::list regionsList(const xcRegionSet::RegionHandles& regions) {
    py::list list;
    for (const xcPtrHandle_const<xcRegion>& region : regions)
        list.append(py::cast(counted(region)));
    return list;
}

py::array indexArray(const std::vector<int>& indices) {
    py::array_t<std::int64_t> a(static_cast<py::ssize_t>(indices.size()));
    std::int64_t* out = a.mutable_data();
    for (std::size_t i = 0; i < indices.size(); ++i)
        out[i] = indices[i];
    return std::move(a);
}

// The enclosing rectangle of an outline's vertices mapped through `xform`, straight from the
// geometry core. The shapes' own encloseRect memoises by transform with a key that leaves out
// matrix element (1, 1), which would answer a transform differing only there with another's
// rectangle; the core computes what a memo miss computes. Fewer than 2 vertices are refused with
// EmptyContour, as the shapes refuse them.
xcRect outlineRect(const xcContour& outline, const xcXform<2>& xform) {
    if (outline.points().size() < 2)
        throw xcContourDefs::EmptyContour();
    return cntr::core::enclosingRect(cntr::core::OutlineView(outline.points(), outline.isClosed()),
                                     xform);
}

std::string labelRepr(unsigned long label) {
    return "label=" + std::to_string(label);
}

std::string regionRepr(const xcRegion& region) {
    std::string text = "cntr.Region(" + pointsRepr(region.points());
    if (!region.holes().empty()) {
        text += ", holes=[";
        for (std::size_t h = 0; h < region.holes().size(); ++h)
            text += (h ? ", " : "") + pointsRepr(region.holes()[h]->points());
        text += "]";
    }
    return text + ", " + labelRepr(region.label()) + ")";
}

// The shape of a conversion from the polygon values, when it refused no hole; otherwise a
// ValueError naming the refused holes (and their members, for a set).
template <class Shape>
Counted<Shape> allAccepted(const Shape& shape, const std::vector<cntr::RefusedHole>& refused,
                           bool members) {
    if (refused.empty())
        return Counted<Shape>(new Shape(shape));
    std::string which;
    for (std::size_t i = 0; i < refused.size(); ++i) {
        which += i ? ", " : "";
        if (members)
            which += "member " + std::to_string(refused[i].member) + " ";
        which += "hole " + std::to_string(refused[i].hole);
    }
    throw py::value_error("a region refuses holes that cross or touch its outline (" + which +
                          "): to_region() / to_region_set() return them beside the regions");
}

// ---- the queries that a region has as a contour ----

template <class Shape>
void bindOutlineQueries(py::class_<Shape, Counted<Shape>>& cls) {
    cls.def_property_readonly(
           "points", [](const Shape& s) { return pointsArray(s.points()); },
           "The vertices, a read-only (N, 2) float64 array.")
        .def_property_readonly(
            "label", [](const Shape& s) { return s.label(); },
            "The user label, carried through copies, map and archives; not part of equality.")
        .def(
            "__len__", [](const Shape& s) { return s.points().size(); }, "The vertex count.")
        .def(
            "length", [](const Shape& s) { return s.length(); },
            "The sum of the edge lengths (a region's outline, holes not included); 0 without "
            "vertices.")
        .def(
            "mean_position", [](Shape& s) { return pointTuple(s.meanPosition()); },
            "The length-weighted mean of the edge midpoints: the centre of the outline taken as "
            "a uniform wire (not the mean of the vertices). EmptyContourError for fewer than 2 "
            "vertices.")
        .def(
            "extremal_vertex_index",
            [](const Shape& s, double angle) { return s.extremalVertexIndex(xcRadian(angle)); },
            py::arg("angle"),
            "The index of the first vertex furthest in direction `angle` (radians); -1 when no "
            "vertex scores (all NaN).")
        .def(
            "extremal_vertex",
            [](Shape& s, double angle) {
                return pointTuple(s.extremalVertexPosition(xcRadian(angle)));
            },
            py::arg("angle"), "The vertex at extremal_vertex_index(angle).")
        .def(
            "diameter", [](const Shape& s, DiameterMode mode) { return s.diameter(mode); },
            py::arg("mode") = xcContourDefs::furthestVertexPair,
            "Twice the radius of enclose_circle(mode).")
        .def(
            "enclose_circle", [](Shape& s, DiameterMode mode) { return s.encloseCircle(mode); },
            py::arg("mode") = xcContourDefs::furthestVertexPair,
            "A circle describing the spread of the vertices (not a minimal enclosing circle): "
            "furthest_vertex_pair, the circle through the first pair of vertices at the largest "
            "distance; from_first_vertex, the circle centred on vertex 0 through the vertex "
            "furthest from it. The default Circle without two distinct vertices.")
        .def(
            "enclose_rect",
            [](const Shape& s, py::handle xform) {
                return rectTuple(outlineRect(s, toXform(xform)));
            },
            py::arg("xform") = py::none(),
            "(minx, miny, maxx, maxy) of the vertices mapped through `xform`, a 2x3 affine "
            "matrix [[a, b, tx], [c, d, ty]] (None: the vertices as they are). Holes are not "
            "visited.")
        .def(
            "is_self_intersecting", [](const Shape& s) { return s.isSelfIntersecting(); },
            "Whether two non-adjacent edges of the outline meet (a crossing, or a vertex on a "
            "non-adjacent edge); collinear overlapping edges are not detected.")
        .def(
            "vertex_index",
            [](Shape& s, py::handle point, double tolerance) {
                return indexArray(s.vertexIndex(toPoint(point), tolerance));
            },
            py::arg("point"), py::arg("tolerance"),
            "The indices of the vertices closer than `tolerance` to `point`, ordered by grid "
            "cell (column, then row), then by index.")
        .def(
            "convex_hull",
            [](const Shape& s) {
                return filled<xcRegion>([&](xcRegion& hull) { s.convexHull(hull); });
            },
            "The Region of the convex hull of the vertices, counter-clockwise from the vertex "
            "with the smallest x (then y); collinear and repeated points dropped. "
            "NotFiniteError for a NaN or infinite coordinate.")
        .def(
            "fit_ellipse",
            [](const Shape& s) {
                xcEllipse ellipse;
                double rms = 0.0;
                s.fitEllipse(ellipse, rms);
                return py::make_tuple(ellipse, rms);
            },
            "(ellipse, rms): the direct least-squares ellipse fit to the vertices and its rms "
            "orthogonal distance; where the ellipse fit fails (fewer than 5 points, no ellipse), "
            "the circle fit as an Ellipse; the default Ellipse and rms -1.0 when neither fits.")
        .def(py::self == py::self)
        .def(py::self != py::self);
}

const char* const kShapeBytesDoc =
    "The library's archive bytes of the shape (holes shared within it are stored once and come "
    "back shared).";

// ---- the measures and queries that a region and a region set share ----

xcVector<2> centroidOf(xcRegion& region, bool considerHoles) {
    return regionCentroid(region, considerHoles);
}
xcVector<2> centroidOf(xcRegionSet& set, bool considerHoles) {
    return regionSetCentroid(set, considerHoles);
}

struct AreaDocs {
    const char* area;
    const char* centre;
    const char* inertia;
    const char* inside;
    const char* distance;
    const char* regularize;
    const char* outerHull;
};

const AreaDocs kRegionDocs = {
    "The unsigned area of the outline, less each hole's outline area with `consider_holes` (a "
    "hole's own holes are not added back).",
    "The area centroid (x, y), holes subtracted with `consider_holes`: "
    "(A c - sum a_h c_h) / (A - sum a_h). (0, 0) for an outline that encloses (almost) no area "
    "(summed cross products within 1e-6 of 0), the library's convention.",
    "The central second moments of the outline's area, a 2x2 array [[Ixx, Ixy], [Ixy, Iyy]] "
    "(integrals of (x - cx)^2 and so on, not divided by the area). BadParamsError with "
    "`consider_holes` when the region has holes.",
    "Whether `point` lies inside the outline and, with `consider_holes`, inside none of the "
    "holes (an island inside a hole counts as inside). A point within 1e-6 of an outline vertex "
    "counts as inside.",
    "0 when `zero_inside` and inside(point, consider_holes); otherwise the distance to "
    "closest_point(point, vertex_only, consider_holes).",
    "The region itself (a copy, holes shared) when its outline does not cross itself; otherwise "
    "the region (no holes) of a walk along the outer boundary. BadParamsError ('invalid "
    "contour') when the walk finds no start or does not close.",
    "As regularize, with the walk cut into loops where it passes a point twice, inner loops "
    "dropped and the rest joined into one outline.",
};

const AreaDocs kRegionSetDocs = {
    "The sum of the regions' areas; 0 for an empty set.",
    "The area-weighted mean of the regions' centres of mass; (0, 0) when the areas sum to within "
    "1e-15 of 0.",
    "The central inertia matrix of the union of the regions (2x2 array); BadParamsError with "
    "`consider_holes` when a region has holes.",
    "Whether some region contains `point` (Region.inside).",
    "The smallest of the regions' Region.distance; NaN distances are never taken.",
    "The set itself (a copy) when nothing crosses; otherwise crossing regions merged by one "
    "ordered pass and every region replaced by its regularize().",
    "As regularize, with Region.outer_hull applied to every merged region.",
};

template <class Shape>
void bindAreaQueries(py::class_<Shape, Counted<Shape>>& cls, const AreaDocs& docs) {
    cls.def(
           "area", [](const Shape& s, bool considerHoles) { return s.area(considerHoles); },
           py::arg("consider_holes") = true, docs.area)
        .def(
            "center_of_mass",
            [](Shape& s, bool considerHoles) { return pointTuple(centroidOf(s, considerHoles)); },
            py::arg("consider_holes") = true, docs.centre)
        .def(
            "inertia_matrix",
            [](Shape& s, bool considerHoles) {
                return matrixArray(s.inertiaMatrix(considerHoles));
            },
            py::arg("consider_holes") = true, docs.inertia)
        .def(
            "inside",
            [](const Shape& s, py::handle point, bool considerHoles) {
                return s.inside(toPoint(point), considerHoles);
            },
            py::arg("point"), py::arg("consider_holes") = true, docs.inside)
        .def(
            "distance",
            [](const Shape& s, py::handle point, bool vertexOnly, bool considerHoles,
               bool zeroInside) {
                return s.distToPoint(toPoint(point), vertexOnly, considerHoles, zeroInside);
            },
            py::arg("point"), py::arg("vertex_only") = false, py::arg("consider_holes") = true,
            py::arg("zero_inside") = false, docs.distance)
        .def(
            "regularize",
            [](const Shape& s) { return filled<Shape>([&](Shape& out) { s.regularize(out); }); },
            docs.regularize)
        .def(
            "outer_hull",
            [](const Shape& s) { return filled<Shape>([&](Shape& out) { s.outerHull(out); }); },
            docs.outerHull);
}

void bindEnums(py::module_& m) {
    py::enum_<DiameterMode>(m, "DiameterMode", "How enclose_circle and diameter measure spread.")
        .value("furthest_vertex_pair", xcContourDefs::furthestVertexPair,
               "The circle through the two vertices furthest apart.")
        .value("from_first_vertex", xcContourDefs::fromFirstVertex,
               "The circle centred on the first vertex through the vertex furthest from it.");
    py::enum_<IntersectionMode>(m, "IntersectionMode",
                                "What a Region or RegionSet does with outlines that cross.")
        .value("keep_outline", xcContourDefs::keepOutline, "Take the outline as given.")
        .value("use_outer_hull", xcContourDefs::useOuterHull,
               "Replace the shape by its outer_hull().")
        .value("use_regularized", xcContourDefs::useRegularized,
               "Replace the shape by its regularize().");
}

void bindContour(py::module_& m) {
    py::class_<xcContour, Counted<xcContour>> contour(
        m, "Contour",
        "An ordered list of vertices, open (a polyline) or closed (the last vertex joins the "
        "first), with a label. Measures need at least 2 vertices (EmptyContourError). NaN and "
        "infinite coordinates are accepted; the measures then give what the arithmetic gives.");
    contour
        .def(py::init([](py::handle points, bool closed, py::handle label) {
                 return Counted<xcContour>(new xcContour(toPoints(points), closed, toLabel(label)));
             }),
             py::arg("points"), py::arg("closed") = false, py::arg("label") = 0,
             "A contour of `points` (an (N, 2) array-like, or OpenCV's (N, 1, 2)).")
        .def_property_readonly(
            "closed", [](const xcContour& c) { return c.isClosed(); },
            "Whether the last vertex joins the first.")
        .def(
            "intersections",
            [](xcContour& c, py::handle segment, bool includeEndTouches) {
                return pointsArray(c.intersections(toSegment(segment), includeEndTouches));
            },
            py::arg("segment"), py::arg("include_end_touches") = true,
            "The points, an (N, 2) array, where edges cross `segment` ((2, 2): start, end), "
            "ordered along it; without `include_end_touches`, edges passing within 1e-6 of "
            "either end are ignored.")
        .def(
            "contour_intersections",
            [](xcContour& c, py::handle other) {
                return pointsArray(c.intersections(asContour(other)));
            },
            py::arg("other"),
            "The points where the edges of `other` (a Contour or Region) cross this contour, "
            "edge by edge of `other`; not sorted across edges nor de-duplicated.")
        .def(
            "closest_point",
            [](xcContour& c, py::handle point, bool vertexOnly) {
                return pointTuple(c.closestPoint(toPoint(point), vertexOnly));
            },
            py::arg("point"), py::arg("vertex_only") = false,
            "The point of the contour (its closest vertex with `vertex_only`) closest to "
            "`point`.")
        .def(
            "closest_vertex_index",
            [](const xcContour& c, py::handle point) {
                return c.closestVertexIndex(toPoint(point));
            },
            py::arg("point"), "The index of the vertex closest to `point` (the lowest on ties).")
        .def(
            "distance",
            [](const xcContour& c, py::handle point, bool vertexOnly) {
                return c.distToPoint(toPoint(point), vertexOnly);
            },
            py::arg("point"), py::arg("vertex_only") = false,
            "The distance from `point` to closest_point(point, vertex_only).")
        .def(
            "map",
            [](const xcContour& c, py::handle xform) {
                return filled<xcContour>([&](xcContour& out) { c.map(toXform(xform), out); });
            },
            py::arg("xform"),
            "A new contour of the vertices mapped through `xform` (2x3 affine matrix), with "
            "this contour's closedness and label.")
        .def(
            "to_polygon", [](const xcContour& c) { return cntr::Polygon::fromContour(c); },
            "The Polygon of the vertices as a closed ring (open or closed contour alike).")
        .def("__repr__", [](const xcContour& c) {
            return "cntr.Contour(" + pointsRepr(c.points()) +
                   ", closed=" + (c.isClosed() ? "True" : "False") + ", " + labelRepr(c.label()) +
                   ")";
        });
    bindOutlineQueries(contour);
    bindArchive(contour, "cntr.Contour", kShapeBytesDoc);
}

void bindRegion(py::module_& m) {
    py::class_<xcRegion, Counted<xcRegion>> region(
        m, "Region",
        "A closed outline with hole regions, and a label. Holes are Region objects themselves, "
        "shared, not copied: a hole given as a Region is that very object. Holes are checked "
        "against the outline when given (no crossing: BadParamsError), not against each other. "
        "The region's own measures need 3 outline vertices (EmptyContourError). Equality "
        "compares the outlines only.");
    region
        .def(py::init([](py::handle points, py::iterable holes, py::handle label,
                         IntersectionMode mode) {
                 const unsigned long l = toLabel(label);
                 const std::vector<xcPtrHandle<xcRegion>> holeRegions = toRegions(holes, "a hole");
                 Counted<xcRegion> r(new xcRegion(toPoints(points), mode));
                 r.get()->label(l);
                 if (!holeRegions.empty())
                     r.get()->holes(holeRegions);
                 return r;
             }),
             py::arg("points"), py::arg("holes") = py::tuple(), py::arg("label") = 0,
             py::arg("mode") = xcContourDefs::keepOutline,
             "The region of the outline `points` ((N, 2) array-like, or OpenCV's (N, 1, 2)) with "
             "`holes` (Region objects, shared, or vertex arrays); `mode` may replace a crossing "
             "outline by its outer hull or regularisation first.")
        .def_property_readonly(
            "holes", [](const xcRegion& r) { return regionsList(r.holes()); },
            "The hole regions, a list of Region (the objects the region holds).")
        .def(
            "closest_vertex_index",
            [](const xcRegion& r, py::handle point) {
                return r.closestVertexIndex(toPoint(point));
            },
            py::arg("point"), "The index of the outline vertex closest to `point`.")
        .def(
            "closest_vertex",
            [](const xcRegion& r, py::handle point, bool considerHoles) {
                long hole = -1;
                const long index = r.closestVertexIndex(toPoint(point), considerHoles, hole);
                return py::make_tuple(index, hole);
            },
            py::arg("point"), py::arg("consider_holes") = false,
            "(index, hole): the closest vertex of the outline (hole -1) or, with "
            "`consider_holes`, of a hole (hole its position); the outline wins ties.")
        .def(
            "closest_point",
            [](xcRegion& r, py::handle point, bool vertexOnly, bool considerHoles) {
                return pointTuple(r.closestPoint(toPoint(point), vertexOnly, considerHoles));
            },
            py::arg("point"), py::arg("vertex_only") = false, py::arg("consider_holes") = true,
            "With `vertex_only`, the vertex closest_vertex names; otherwise the nearest point "
            "on the edges of the outline and of every hole (the holes are examined whatever "
            "`consider_holes` says: that flag acts only with `vertex_only`).")
        .def(
            "intersections",
            [](xcRegion& r, py::handle segment, bool includeEndTouches, bool considerHoles) {
                return pointsArray(
                    r.intersections(toSegment(segment), includeEndTouches, considerHoles));
            },
            py::arg("segment"), py::arg("include_end_touches") = true,
            py::arg("consider_holes") = true,
            "The outline's crossings with `segment` ((2, 2): start, end), ordered along it, "
            "followed with `consider_holes` by each hole's; not sorted across outlines.")
        .def(
            "contour_intersections",
            [](xcRegion& r, py::handle other, bool considerHoles) {
                return pointsArray(r.intersections(asContour(other), considerHoles));
            },
            py::arg("other"), py::arg("consider_holes") = true,
            "The crossings of `other`'s edges (a Contour or Region) with the outline, followed "
            "with `consider_holes` by the holes'.")
        .def(
            "map",
            [](const xcRegion& r, py::handle xform) {
                return filled<xcRegion>([&](xcRegion& out) { r.map(toXform(xform), out); });
            },
            py::arg("xform"),
            "A new region of the outline mapped through `xform` (2x3 affine matrix) with this "
            "region's label and no holes: the library does not map holes.")
        .def("to_multipolygon", &cntr::MultiPolygon::fromRegion,
             "The MultiPolygon of the outline and holes (first member) and of the holes' islands "
             "(members of their own).")
        .def(
            "to_polygon",
            [](const xcRegion& r) {
                const cntr::MultiPolygon mp = cntr::MultiPolygon::fromRegion(r);
                if (mp.memberCount() != 1)
                    throw py::value_error(
                        "the region has islands inside its holes, which a "
                        "Polygon cannot hold: to_multipolygon() keeps them");
                return mp.members().front();
            },
            "The Polygon of the outline and holes; ValueError when a hole has holes of its own.")
        .def_static(
            "from_polygon",
            [](const cntr::Polygon& p) {
                const cntr::RegionConversion converted = cntr::toRegion(p);
                return allAccepted(converted.region, converted.refused, false);
            },
            py::arg("polygon"),
            "The Region of a Polygon (label 0); ValueError when it refuses a hole (one that "
            "crosses or touches the outline): Polygon.to_region() returns those beside it.")
        .def("__repr__", &regionRepr);
    bindOutlineQueries(region);
    bindAreaQueries(region, kRegionDocs);
    bindArchive(region, "cntr.Region", kShapeBytesDoc);
}

void bindRegionSet(py::module_& m) {
    py::class_<xcRegionSet, Counted<xcRegionSet>> set(
        m, "RegionSet",
        "An ordered collection of Region objects, shared, not copied. Order decides equality "
        "and which region comes first in every query. Measures that need a region raise "
        "EmptyRegionSetError for an empty set.");
    set.def(py::init([](py::iterable regions, IntersectionMode mode) {
                return Counted<xcRegionSet>(new xcRegionSet(toRegions(regions, "a region"), mode));
            }),
            py::arg("regions") = py::tuple(), py::arg("mode") = xcContourDefs::keepOutline,
            "The set of `regions` (Region objects, shared, or vertex arrays); `mode` may merge "
            "and repair crossing regions first (outer_hull or regularize).")
        .def_property_readonly(
            "regions", [](xcRegionSet& s) { return regionsList(s.regions()); },
            "The regions, a list of Region (the objects the set holds).")
        .def("__len__", [](xcRegionSet& s) { return s.regions().size(); })
        .def(
            "enclose_rect",
            [](xcRegionSet& s, py::handle xform) {
                const xcRegionSet::RegionHandles regions = s.regions();
                if (regions.empty())
                    throw xcContourDefs::EmptyRegionSet();
                const xcXform<2> x = toXform(xform);
                xcRect box = outlineRect(*regions[0], x);
                for (std::size_t i = 1; i < regions.size(); ++i)
                    box = box.enclose(outlineRect(*regions[i], x));
                return rectTuple(box);
            },
            py::arg("xform") = py::none(),
            "(minx, miny, maxx, maxy) of the regions' outlines mapped through `xform` (2x3 "
            "affine matrix, None for none); holes are not visited.")
        .def(
            "is_self_intersecting", [](const xcRegionSet& s) { return s.isSelfIntersecting(); },
            "Whether some region's outline crosses itself or another region's outline (holes "
            "are not examined); False for an empty set.")
        .def("to_multipolygon", &cntr::MultiPolygon::fromRegionSet,
             "The members MultiPolygon.from_region gives for each region, in order.")
        .def_static(
            "from_multipolygon",
            [](const cntr::MultiPolygon& mp) {
                const cntr::RegionSetConversion converted = cntr::toRegionSet(mp);
                return allAccepted(converted.set, converted.refused, true);
            },
            py::arg("multipolygon"),
            "One Region per member; ValueError when a region refuses a hole: "
            "MultiPolygon.to_region_set() returns those beside the set.")
        .def(py::self == py::self, "Region by region, outlines only, in order.")
        .def(py::self != py::self)
        .def("__repr__", [](xcRegionSet& s) {
            const xcRegionSet::RegionHandles regions = s.regions();
            if (regions.size() > 3)
                return "cntr.RegionSet(<" + std::to_string(regions.size()) + " regions>)";
            std::string text = "cntr.RegionSet([";
            for (std::size_t i = 0; i < regions.size(); ++i)
                text += (i ? ", " : "") + regionRepr(*regions[i]);
            return text + "])";
        });
    bindAreaQueries(set, kRegionSetDocs);
    bindArchive(set, "cntr.RegionSet",
                "The library's archive bytes of the set; a region or hole held twice is stored "
                "once and comes back shared.");
}

}  // namespace

void bindShapes(py::module_& m) {
    bindEnums(m);
    bindContour(m);
    bindRegion(m);
    bindRegionSet(m);
}

}  // namespace cntr_python
