// The geometry value types: Circle, Ellipse, and the polygon values Polygon and MultiPolygon with
// their validity report.
#include "bindings.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <cntr/polygon.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/geometry.h>

#include "convert.h"
#include "measures.h"

namespace cntr_python {

namespace {

std::vector<cntr::Ring> toRings(py::iterable rings) {
    std::vector<cntr::Ring> result;
    for (py::handle ring : rings)
        result.push_back(toPoints(ring, "a hole"));
    return result;
}

py::list ringsList(const std::vector<cntr::Ring>& rings) {
    py::list list;
    for (const cntr::Ring& ring : rings)
        list.append(pointsArray(ring));
    return list;
}

std::string polygonRepr(const cntr::Polygon& polygon) {
    std::string text = "cntr.Polygon(" + pointsRepr(polygon.exterior());
    if (!polygon.holes().empty()) {
        text += ", holes=[";
        for (std::size_t h = 0; h < polygon.holes().size(); ++h)
            text += (h ? ", " : "") + pointsRepr(polygon.holes()[h]);
        text += "]";
    }
    return text + ")";
}

std::vector<cntr::Polygon> toPolygons(py::iterable polygons) {
    std::vector<cntr::Polygon> members;
    for (py::handle member : polygons) {
        if (!py::isinstance<cntr::Polygon>(member))
            throw py::type_error(
                "a MultiPolygon's members must be cntr.Polygon objects, not " +
                py::str(py::type::of(member).attr("__name__")).cast<std::string>());
        members.push_back(member.cast<cntr::Polygon>());
    }
    return members;
}

// (shape, refused): the shape a conversion to the described classes made, and the holes its
// regions refused as RefusedHole objects.
template <class Shape>
py::tuple withRefused(const Shape& shape, const std::vector<cntr::RefusedHole>& refused) {
    py::list holes;
    for (const cntr::RefusedHole& hole : refused)
        holes.append(py::cast(hole));
    return py::make_tuple(Counted<Shape>(new Shape(shape)), holes);
}

const char* const kValidityDoc =
    "The first broken validity rule, decided with exact predicates (no tolerance), or the "
    "report that every rule holds. The rules, checked in this order: every ring has at least 3 "
    "distinct vertices not all on one line; no two edges cross at a point interior to both or "
    "share a segment (rings may touch at points); every hole lies inside the exterior; no hole "
    "lies inside another; for a MultiPolygon, no two members' interiors overlap.";

xcRect boundsOf(const cntr::Polygon& p) {
    return polygonBounds(p);
}
xcRect boundsOf(const cntr::MultiPolygon& mp) {
    return multiPolygonBounds(mp);
}

// ---- point location ----

// The location of each of `points` as `Out` (convert maps a cntr::Location to it), a 1-d array
// with one entry per point. The points are converted with the GIL held; the locator (built once,
// immutable, safe for any number of threads) is asked without it.
template <class Out, class Value, class Convert>
py::array_t<Out> locatePoints(const Value& value, py::handle points, double boundaryDistance,
                              Convert convert) {
    const std::vector<xcVector<2>> xy = toPoints(points);
    std::vector<cntr::Location> found;
    {
        py::gil_scoped_release release;
        found = value.locate(xy, boundaryDistance);
    }
    py::array_t<Out> a(static_cast<py::ssize_t>(found.size()));
    Out* out = a.mutable_data();
    for (std::size_t i = 0; i < found.size(); ++i)
        out[i] = convert(found[i]);
    return a;
}

const char* const kLocateDoc =
    "Where each of `points` (an (N, 2) array-like, or OpenCV's (N, 1, 2)) lies: an (N,) int8 "
    "array of cntr.Location values, 0 outside, 1 boundary, 2 inside. Boundary means on an edge "
    "of a ring, decided exactly, or within `boundary_distance` of one when that is positive (a "
    "floating-point distance); else inside when it lies inside an odd number of rings (for a "
    "valid shape: inside an exterior and outside its holes); else outside. The first call prepares a locator of the "
    "edges, kept with the value and shared by its copies; the points are located without the "
    "GIL. BadParamsError for a NaN or infinite coordinate or a boundary_distance that is "
    "negative or not finite (nothing is located then).";

const char* const kContainsDoc =
    "Whether each of `points` (an (N, 2) array-like, or OpenCV's (N, 1, 2)) lies strictly "
    "inside: an (N,) bool array, locate(points) == Location.inside. A point on the boundary is "
    "not contained, as in Shapely's contains. BadParamsError for a NaN or infinite "
    "coordinate.";

constexpr const char* kMomentsDoc =
    "The moments of the filled area up to order 3, a dict with the keys of OpenCV's "
    "cv2.moments (m00 ... m03 raw, mu20 ... mu03 central, nu20 ... nu03 normalised) and 'hu', "
    "the seven Hu invariants as a tuple. They are the true integrals over the area, the same "
    "for either orientation of the rings (as cv2.moments of the outline as a contour): holes "
    "subtracted, members added; coordinates as given, no axis flipped. Each ring is integrated "
    "about the centre of the bounds, so small shapes far from the origin keep their digits. "
    "With an area of 0 the central moments are the raw ones and the normalised moments and "
    "invariants 0, as in OpenCV.";

py::dict momentsDict(const cntr::AreaMoments& m) {
    py::dict d;
    const std::pair<const char*, double> values[] = {
        {"m00", m.m00},   {"m10", m.m10},   {"m01", m.m01},   {"m20", m.m20},   {"m11", m.m11},
        {"m02", m.m02},   {"m30", m.m30},   {"m21", m.m21},   {"m12", m.m12},   {"m03", m.m03},
        {"mu20", m.mu20}, {"mu11", m.mu11}, {"mu02", m.mu02}, {"mu30", m.mu30}, {"mu21", m.mu21},
        {"mu12", m.mu12}, {"mu03", m.mu03}, {"nu20", m.nu20}, {"nu11", m.nu11}, {"nu02", m.nu02},
        {"nu30", m.nu30}, {"nu21", m.nu21}, {"nu12", m.nu12}, {"nu03", m.nu03}};
    for (const auto& [key, value] : values)
        d[key] = value;
    d["hu"] = py::make_tuple(m.hu[0], m.hu[1], m.hu[2], m.hu[3], m.hu[4], m.hu[5], m.hu[6]);
    return d;
}

// moments, the same for Polygon and MultiPolygon.
template <class Value>
void bindMoments(py::class_<Value>& cls) {
    cls.def(
        "moments", [](const Value& v) { return momentsDict(v.moments()); }, kMomentsDoc);
}

// locate and contains, the same for Polygon and MultiPolygon.
template <class Value>
void bindLocate(py::class_<Value>& cls) {
    cls.def(
           "locate",
           [](const Value& v, py::handle points, double boundaryDistance) {
               return locatePoints<std::int8_t>(v, points, boundaryDistance,
                                                [](cntr::Location l) {
                                                    return static_cast<std::int8_t>(l);
                                                });
           },
           py::arg("points"), py::arg("boundary_distance") = 0.0, kLocateDoc)
        .def(
            "contains",
            [](const Value& v, py::handle points) {
                return locatePoints<bool>(v, points, 0.0, [](cntr::Location l) {
                    return l == cntr::Location::inside;
                });
            },
            py::arg("points"), kContainsDoc);
}

// cntr.Location: a Python IntEnum, so that the int8 arrays of locate compare with its members
// as they are (locate(p) == Location.inside) and Location(code) names a code.
void bindLocation(py::module_& m) {
    py::list members;
    members.append(py::make_tuple("outside", static_cast<int>(cntr::Location::outside)));
    members.append(py::make_tuple("boundary", static_cast<int>(cntr::Location::boundary)));
    members.append(py::make_tuple("inside", static_cast<int>(cntr::Location::inside)));
    py::object location =
        py::module_::import("enum").attr("IntEnum")("Location", members, py::arg("module") = "cntr");
    location.attr("__doc__") =
        "Where a point lies relative to a Polygon or MultiPolygon (the codes of locate): "
        "outside (0); boundary (1), on an edge of a ring or within the boundary distance of one; "
        "inside (2), inside the filled area.";
    m.attr("Location") = location;
}

// The members shared by Polygon and MultiPolygon: validity, bounds, vertex count and equality.
template <class Value>
void bindValidityAndExtent(py::class_<Value>& cls) {
    cls.def_property_readonly("is_valid", &Value::isValid,
                              "Whether every validity rule holds (see validity).")
        .def_property_readonly("validity", &Value::validity, kValidityDoc)
        .def_property_readonly(
            "validity_reason", [](const Value& v) { return v.validity().message; },
            "What makes the value invalid, in words (the validity report's message); '' when "
            "it is valid.")
        .def_property_readonly(
            "bounds", [](const Value& v) { return rectTuple(boundsOf(v)); },
            "(minx, miny, maxx, maxy) of every vertex of every ring; (0, 0, 0, 0) without "
            "vertices.")
        .def_property_readonly("vertex_count", &Value::vertexCount,
                               "The number of vertices of all rings.")
        .def(py::self == py::self, "Whether the rings are equal vertex for vertex (exactly).")
        .def(py::self != py::self);
}

void bindCircleAndEllipse(py::module_& m) {
    py::class_<xcCircle>(m, "Circle", "A circle: its centre (x, y) and radius.")
        .def(py::init([](py::handle center, double radius) {
                 return xcCircle(toPoint(center, "center"), radius);
             }),
             py::arg("center"), py::arg("radius"))
        .def_property_readonly(
            "center", [](const xcCircle& c) { return pointTuple(c.center()); }, "(x, y).")
        .def_property_readonly("radius", &xcCircle::radius, "The radius.")
        .def(py::self == py::self)
        .def(py::self != py::self)
        .def("__repr__",
             [](const xcCircle& c) {
                 return "cntr.Circle(center=" +
                        py::repr(pointTuple(c.center())).cast<std::string>() +
                        ", radius=" + py::repr(py::float_(c.radius())).cast<std::string>() + ")";
             })
        .def(py::pickle(
            [](const xcCircle& c) { return py::make_tuple(pointTuple(c.center()), c.radius()); },
            [](const py::tuple& state) {
                return xcCircle(toPoint(state[0], "center"), state[1].cast<double>());
            }));

    py::class_<xcEllipse>(
        m, "Ellipse",
        "An ellipse: its centre (x, y), the radius r1 along the direction `rotation` (radians, "
        "counter-clockwise from +x with the y axis up) and the radius r2 across it. The two "
        "flags are carried for the caller and mean nothing to the library.")
        .def(py::init([](py::handle center, double r1, double r2, double rotation, bool flag1,
                         bool flag2) {
                 return xcEllipse(xcEllipse::xcEllipseGeom(xcPoint(toPoint(center, "center")), r1,
                                                           r2, xcRadian(rotation), flag1, flag2));
             }),
             py::arg("center"), py::arg("r1"), py::arg("r2"), py::arg("rotation") = 0.0,
             py::arg("flag1") = false, py::arg("flag2") = false)
        .def_property_readonly(
            "center", [](const xcEllipse& e) { return pointTuple(e.center()); }, "(x, y).")
        .def_property_readonly("r1", &xcEllipse::r1, "The radius along `rotation`.")
        .def_property_readonly("r2", &xcEllipse::r2, "The radius across `rotation`.")
        .def_property_readonly(
            "rotation", [](const xcEllipse& e) { return e.rotation().toDouble(); },
            "The direction of r1, in radians.")
        .def_property_readonly("flag1", &xcEllipse::flag1,
                               "The first flag, carried for the caller.")
        .def_property_readonly("flag2", &xcEllipse::flag2,
                               "The second flag, carried for the caller.")
        .def(py::self == py::self)
        .def(py::self != py::self)
        .def("__repr__",
             [](const xcEllipse& e) {
                 auto r = [](double v) { return py::repr(py::float_(v)).cast<std::string>(); };
                 return "cntr.Ellipse(center=" +
                        py::repr(pointTuple(e.center())).cast<std::string>() + ", r1=" + r(e.r1()) +
                        ", r2=" + r(e.r2()) + ", rotation=" + r(e.rotation().toDouble()) + ")";
             })
        .def(py::pickle(
            [](const xcEllipse& e) {
                return py::make_tuple(pointTuple(e.center()), e.r1(), e.r2(),
                                      e.rotation().toDouble(), e.flag1(), e.flag2());
            },
            [](const py::tuple& s) {
                return xcEllipse(xcEllipse::xcEllipseGeom(
                    xcPoint(toPoint(s[0], "center")), s[1].cast<double>(), s[2].cast<double>(),
                    xcRadian(s[3].cast<double>()), s[4].cast<bool>(), s[5].cast<bool>()));
            }));
}

void bindValidity(py::module_& m) {
    py::enum_<cntr::ValidityProblem>(m, "ValidityProblem",
                                     "What makes a Polygon or MultiPolygon invalid.")
        .value("none", cntr::ValidityProblem::none, "Every rule holds.")
        .value("too_few_vertices", cntr::ValidityProblem::tooFewVertices,
               "A ring has fewer than 3 distinct vertices.")
        .value("zero_area", cntr::ValidityProblem::zeroArea,
               "A ring's vertices all lie on one line.")
        .value("self_crossing", cntr::ValidityProblem::selfCrossing,
               "Two edges of one ring cross at a point interior to both (or two passes of the "
               "ring cross at a common point).")
        .value("self_overlap", cntr::ValidityProblem::selfOverlap,
               "Two edges of one ring share a segment of positive length.")
        .value("rings_cross", cntr::ValidityProblem::ringsCross,
               "Edges of two different rings cross.")
        .value("rings_overlap", cntr::ValidityProblem::ringsOverlap,
               "Edges of two different rings share a segment of positive length.")
        .value("hole_outside", cntr::ValidityProblem::holeOutside,
               "A hole does not lie inside its exterior.")
        .value("holes_nested", cntr::ValidityProblem::holesNested,
               "A hole lies inside another hole of the same polygon.")
        .value("members_overlap", cntr::ValidityProblem::membersOverlap,
               "The interiors of two members of a MultiPolygon overlap.");

    py::class_<cntr::Validity>(m, "Validity", kValidityDoc)
        .def_readonly("valid", &cntr::Validity::valid, "Whether every rule holds.")
        .def_readonly("problem", &cntr::Validity::problem, "The broken rule (none when valid).")
        .def_readonly("message", &cntr::Validity::message,
                      "What is wrong and where, in words; '' when valid.")
        .def_property_readonly(
            "location", [](const cntr::Validity& v) { return pointTuple(v.location); },
            "A point of the violation (x, y): the crossing point (rounded), the first common "
            "point of an overlap, the first vertex of a degenerate ring or the vertex taken to "
            "locate a hole or member; (0, 0) when valid.")
        .def_readonly("member", &cntr::Validity::member,
                      "The member (0 for a Polygon); -1 where not applicable.")
        .def_readonly("ring", &cntr::Validity::ring,
                      "The ring: 0 the exterior, h + 1 hole h; -1 where not applicable.")
        .def_readonly("edge", &cntr::Validity::edge,
                      "The edge (or vertex) index in that ring; -1 where not applicable.")
        .def_readonly("other_member", &cntr::Validity::otherMember,
                      "For problems between two rings: the second ring's member; else -1.")
        .def_readonly("other_ring", &cntr::Validity::otherRing,
                      "For problems between two rings: the second ring; else -1.")
        .def_readonly("other_edge", &cntr::Validity::otherEdge,
                      "For problems between two rings: the second ring's edge; else -1.")
        .def("__repr__", [](const cntr::Validity& v) {
            return "cntr.Validity(valid=" + std::string(v.valid ? "True" : "False") +
                   ", problem=" + py::str(py::cast(v.problem)).cast<std::string>() +
                   ", message=" + py::repr(py::cast(v.message)).cast<std::string>() + ")";
        });

    py::class_<cntr::RefusedHole>(
        m, "RefusedHole",
        "A hole that a Region refused (its outline crosses or touches the region's outline), "
        "with the member and hole index it came from.")
        .def_readonly("member", &cntr::RefusedHole::member,
                      "The polygon (member) the hole belongs to; 0 for a Polygon.")
        .def_readonly("hole", &cntr::RefusedHole::hole, "The hole's index in that polygon.")
        .def_property_readonly(
            "ring", [](const cntr::RefusedHole& r) { return pointsArray(r.ring); },
            "The hole's vertices, an (N, 2) array.")
        .def("__repr__", [](const cntr::RefusedHole& r) {
            return "cntr.RefusedHole(member=" + std::to_string(r.member) +
                   ", hole=" + std::to_string(r.hole) + ", ring=" + pointsRepr(r.ring) + ")";
        });
}

void bindPolygon(py::module_& m) {
    py::class_<cntr::Polygon> polygon(
        m, "Polygon",
        "A polygon value: an exterior ring and hole rings, each in either orientation, immutable "
        "and safe to share between threads. A ring's last vertex joins its first; a last vertex "
        "equal to the first is dropped. Rings may touch and cross: `is_valid` and `validity` "
        "say whether the validity rules hold. Coordinates must be finite (BadParamsError "
        "otherwise).\n\n"
        "Measures: areas are unsigned and holes are subtracted (each hole's area, whatever "
        "its orientation); the centroid is that of the filled area; the length is that of every "
        "ring, holes included.");
    polygon
        .def(py::init([](py::handle exterior, py::iterable holes) {
                 return cntr::Polygon(toPoints(exterior, "exterior"), toRings(holes));
             }),
             py::arg("exterior"), py::arg("holes") = py::tuple(),
             "The polygon of `exterior` (an (N, 2) array-like, or OpenCV's (N, 1, 2)) and "
             "`holes` (a sequence of such rings).")
        .def_property_readonly(
            "exterior", [](const cntr::Polygon& p) { return pointsArray(p.exterior()); },
            "The exterior ring, a read-only (N, 2) float64 array.")
        .def_property_readonly(
            "holes", [](const cntr::Polygon& p) { return ringsList(p.holes()); },
            "The hole rings, a list of read-only (N, 2) float64 arrays.")
        .def_property_readonly("ring_count", &cntr::Polygon::ringCount, "1 + the number of holes.")
        .def_property_readonly("area", &polygonArea,
                               "The unsigned area of the exterior less that of each hole; 0 for "
                               "rings of fewer than 3 vertices.")
        .def_property_readonly(
            "centroid", [](const cntr::Polygon& p) { return pointTuple(polygonCentroid(p)); },
            "The centroid (x, y) of the filled area (holes subtracted). The library gives "
            "(0, 0) for an exterior that encloses (almost) no area (summed cross products "
            "within 1e-6 of 0): check `area` first.")
        .def_property_readonly("length", &polygonLength,
                               "The length of every ring (each closed), holes included.")
        .def("signed_area", &cntr::Polygon::signedArea, py::arg("ring"),
             "The signed (shoelace) area of ring `ring` (0 the exterior, h + 1 hole h), positive "
             "counter-clockwise with the y axis up.")
        .def_static(
            "from_contour", [](const xcContour& c) { return cntr::Polygon::fromContour(c); },
            py::arg("contour"),
            "The polygon of a Contour's vertices as a closed ring, open or closed.")
        .def(
            "to_region",
            [](const cntr::Polygon& p) {
                const cntr::RegionConversion converted = cntr::toRegion(p);
                return withRefused(converted.region, converted.refused);
            },
            "(region, refused): the Region of the exterior with the holes it accepts, and the "
            "holes it refused (a hole that crosses or touches the outline) as RefusedHole "
            "objects.")
        .def("__repr__", &polygonRepr)
        .def(py::pickle(
            [](const cntr::Polygon& p) {
                return py::make_tuple(pointsArray(p.exterior()), ringsList(p.holes()));
            },
            [](const py::tuple& state) {
                return cntr::Polygon(toPoints(state[0], "exterior"),
                                     toRings(state[1].cast<py::iterable>()));
            }));
    bindValidityAndExtent(polygon);
    bindLocate(polygon);
    bindMoments(polygon);
}

void bindMultiPolygon(py::module_& m) {
    py::class_<cntr::MultiPolygon> multi(
        m, "MultiPolygon",
        "A list of Polygon values, immutable and safe to share between threads. Its area and "
        "length are the sums of its members'; its centroid is the members' centroids weighted "
        "by their areas.");
    multi
        .def(py::init(
                 [](py::iterable polygons) { return cntr::MultiPolygon(toPolygons(polygons)); }),
             py::arg("polygons") = py::tuple(),
             "The multipolygon of a sequence of Polygon objects.")
        .def_property_readonly(
            "polygons",
            [](const cntr::MultiPolygon& mp) {
                py::list list;
                for (const cntr::Polygon& p : mp.members())
                    list.append(py::cast(p));
                return list;
            },
            "The members, a list of Polygon.")
        .def("__len__", &cntr::MultiPolygon::memberCount)
        .def("__getitem__",
             [](const cntr::MultiPolygon& mp, py::ssize_t i) {
                 const auto n = static_cast<py::ssize_t>(mp.memberCount());
                 if (i < 0)
                     i += n;
                 if (i < 0 || i >= n)
                     throw py::index_error("MultiPolygon index out of range");
                 return mp.members()[static_cast<std::size_t>(i)];
             })
        .def_property_readonly("area", &multiPolygonArea, "The sum of the members' areas.")
        .def_property_readonly(
            "centroid",
            [](const cntr::MultiPolygon& mp) { return pointTuple(multiPolygonCentroid(mp)); },
            "The members' centroids weighted by their areas; (0, 0) when the areas sum to "
            "(almost) 0.")
        .def_property_readonly("length", &multiPolygonLength, "The sum of the members' lengths.")
        .def_static("from_region", &cntr::MultiPolygon::fromRegion, py::arg("region"),
                    "The region's outline and holes as the first member, and each hole's own "
                    "holes (islands) as members of their own, depth first.")
        .def_static("from_region_set", &cntr::MultiPolygon::fromRegionSet, py::arg("region_set"),
                    "The members from_region gives for each region of the set, in order.")
        .def(
            "to_region_set",
            [](const cntr::MultiPolygon& mp) {
                const cntr::RegionSetConversion converted = cntr::toRegionSet(mp);
                return withRefused(converted.set, converted.refused);
            },
            "(region_set, refused): one Region per member, as Polygon.to_region, and the holes "
            "the regions refused.")
        .def("__repr__",
             [](const cntr::MultiPolygon& mp) {
                 std::string text = "cntr.MultiPolygon([";
                 for (std::size_t i = 0; i < mp.memberCount(); ++i)
                     text += (i ? ", " : "") + polygonRepr(mp.members()[i]);
                 return text + "])";
             })
        .def(py::pickle(
            [](const cntr::MultiPolygon& mp) {
                py::list members;
                for (const cntr::Polygon& p : mp.members())
                    members.append(py::cast(p));
                return py::make_tuple(members);
            },
            [](const py::tuple& state) {
                return cntr::MultiPolygon(toPolygons(state[0].cast<py::iterable>()));
            }));
    bindValidityAndExtent(multi);
    bindLocate(multi);
    bindMoments(multi);
}

}  // namespace

void bindValues(py::module_& m) {
    bindCircleAndEllipse(m);
    bindValidity(m);
    bindLocation(m);
    bindPolygon(m);
    bindMultiPolygon(m);
}

}  // namespace cntr_python
