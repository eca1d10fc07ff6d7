#include "measure.h"

#include <cmath>
#include <exception>
#include <limits>
#include <utility>

#include <cntr/moments.h>
#include <cntr/tolerances.h>
#include <foundation/exception.h>
#include <foundation/fit.h>

#include "output.h"

namespace cntrtool {

std::string centroidConvention(const std::vector<xcVector<2>>& points) {
    if (points.size() <= 2)
        return "2 vertices or fewer enclose no area: the library gives the centroid (0, 0) by "
               "convention";
    // The library's sum, term for term: the fan of triangles (origin, previous, current).
    double sum = 0.0;
    xcVector<2> previous = points.back();
    for (const xcVector<2>& current : points) {
        const double w = previous.cross(current);
        // The library skips the fan triangles whose cross product is negligible.
        if (std::fabs(w) > cntr::kNegligibleTriangleCross)
            sum += w;
        previous = current;
    }
    if (!(std::fabs(sum) <= cntr::kNegligibleTotalCross))
        return "";
    if (sum == 0.0)
        return "the outline encloses no area: the library gives the centroid (0, 0) by convention";
    return "the area (" + formatNumber(std::fabs(sum) / 2, kTableDigits) +
           ") is below the library's centroid threshold (cross products summing to within 1e-6 "
           "of 0): it gives (0, 0) by convention";
}

bool hasFailure(const Measures& m, const std::string& field, Unavailable cause) {
    for (const MeasureFailure& f : m.failures)
        if (f.field == field && f.cause == cause)
            return true;
    return false;
}

namespace {

constexpr double kDegreesPerRadian = 180.0 / 3.14159265358979323846;

// The reason of a refusal: the exception's message, or what its class says when it has none.
std::string reasonOf(const std::exception& e) {
    if (dynamic_cast<const xcContourDefs::EmptyContour*>(&e) != nullptr)
        return "too few vertices";
    if (dynamic_cast<const xcContourDefs::EmptyRegionSet*>(&e) != nullptr)
        return "the set holds no regions";
    if (const auto* x = dynamic_cast<const xcException*>(&e)) {
        const std::string message = xfToUtf8(x->message());
        return message.empty() ? e.what() : message;
    }
    return e.what();
}

// Runs one measure; a refusal of the library empties the field and is recorded.
template <class F>
auto attempt(Measures& m, const char* field, F&& compute) -> std::optional<decltype(compute())> {
    try {
        return compute();
    } catch (const std::exception& e) {
        m.failures.push_back(MeasureFailure{field, reasonOf(e), Unavailable::refused});
    }
    return std::nullopt;
}

void unavailable(Measures& m, const char* field, const std::string& why, Unavailable cause) {
    m.failures.push_back(MeasureFailure{field, why, cause});
}

EllipseValue ellipseValue(const xcEllipse& e) {
    return EllipseValue{e.center(), e.r1(), e.r2(), e.rotation().toDouble() * kDegreesPerRadian};
}

// The area of the convex hull of the contour's vertices; 0 when the hull is a point or a
// segment (the library's hull region is then too small to have an area of its own).
double hullArea(const xcContour& contour) {
    xcRegion hull;
    contour.convexHull(hull);
    return hull.points().size() < 3 ? 0.0 : hull.area(false);
}

// Why the library's fit gave a circle: the failure of the ellipse fit that it runs first (the
// same fit, with all parameters, no ignored points and no rms limit), or "" when that fit works
// (a circle fitted as an ellipse).
std::string ellipseFitFailure(const std::vector<xcVector<2>>& points) {
    try {
        const xcEllipseFitParams params(xcEllipseFitDefs::fitAll, xcRadian(0.0), 0u,
                                        std::numeric_limits<double>::infinity());
        xcEllipseFitResults results;
        xfEllipseFit(params, points, results);
    } catch (const std::exception& e) {
        return reasonOf(e);
    }
    return "";
}

void measureFit(Measures& m, const xcContour& contour) {
    const auto fit = attempt(m, "fitted_ellipse", [&] {
        xcEllipse ellipse;
        double rms = 0.0;
        contour.fitEllipse(ellipse, rms);
        return std::make_pair(ellipse, rms);
    });
    if (!fit)
        return;
    // An rms of -1 says that neither the ellipse nor the circle fit worked.
    if (fit->second < 0.0) {
        unavailable(m, "fitted_ellipse",
                    "neither the ellipse nor the circle fit works on these vertices",
                    Unavailable::notApplicable);
        return;
    }
    m.fittedEllipse = ellipseValue(fit->first);
    m.fitRms = fit->second;
    // The library's circle fall-back gives equal radii; so, rarely, does a true ellipse fit.
    if (fit->first.r1() == fit->first.r2()) {
        m.circleReason = ellipseFitFailure(contour.points());
        m.fitIsCircle = !m.circleReason.empty();
    }
    if (m.fitIsCircle)
        unavailable(m, "fitted_ellipse.rotation_deg", "a circle has no direction",
                    Unavailable::notApplicable);
}

// The spread measures of a point list, through a closed contour of them.
void measureSpread(Measures& m, const xcContour& contour) {
    measureFit(m, contour);
    m.hullArea = attempt(m, "hull_area", [&] { return hullArea(contour); });
    m.diameter = attempt(m, "diameter",
                         [&] { return contour.diameter(xcContourDefs::furthestVertexPair); });
}

void measureMomentEllipse(Measures& m) {
    const char* missing = !m.inertia    ? "inertia"
                          : !m.centroid ? "centroid"
                          : !m.area     ? "area"
                                        : nullptr;
    if (missing != nullptr) {
        unavailable(m, "moment_ellipse",
                    std::string("needs the ") + missing + ", which is not available",
                    Unavailable::dependent);
        return;
    }
    m.momentEllipse = attempt(m, "moment_ellipse", [&] {
        return ellipseValue(
            xf_EllipseFromInertiaData(xc_InertiaData(*m.area, *m.centroid, *m.inertia)));
    });
}

// Central moments are taken about the centroid: a shape whose net area is exactly 0 (an
// out-and-back line, a bow-tie whose lobes cancel) has none, and the library's combination of
// its fan triangles is no value of the shape.
void dropInertiaWithoutArea(Measures& m) {
    if (m.centroid || !m.area || *m.area != 0.0 || !m.inertia)
        return;
    m.inertia.reset();
    unavailable(m, "inertia", "a shape whose net area is 0 has no centroid to take central "
                              "moments about", Unavailable::convention);
}

// The library's centroid, unless it is its convention, and the central moments.
void measurePolygonMoments(Measures& m, const std::vector<xcVector<2>>& points) {
    const std::string convention = centroidConvention(points);
    if (convention.empty())
        m.centroid = attempt(m, "centroid", [&] { return xf_CenterOfMass(points); });
    else
        unavailable(m, "centroid", convention, Unavailable::convention);
    // The central moments do not depend on the point the fan of triangles starts from.
    m.inertia =
        attempt(m, "inertia", [&] { return xf_InertiaDataPolygon(points).inertiaMatrix(); });
    dropInertiaWithoutArea(m);
}

void allNotApplicable(Measures& m, const std::vector<const char*>& fields, const std::string& why) {
    for (const char* field : fields)
        unavailable(m, field, why, Unavailable::notApplicable);
}

void measureContour(Measures& m, xcContour& contour) {
    // The library refuses every measure of a contour with fewer than 2 vertices.
    if (contour.points().size() < 2) {
        allNotApplicable(m,
                         {"length", "area", "area_without_holes", "centroid", "inertia",
                          "moment_ellipse", "fitted_ellipse", "hull_area", "diameter",
                          "self_intersecting"},
                         "too few vertices (a contour needs 2)");
        return;
    }
    m.length = attempt(m, "length", [&] { return contour.length(); });
    if (contour.isClosed()) {
        const std::vector<xcVector<2>>& points = contour.points();
        m.area = attempt(m, "area", [&] { return xf_Area(points); });
        m.areaWithoutHoles = m.area;
        measurePolygonMoments(m, points);
        measureMomentEllipse(m);
    } else {
        // The centre of the polyline taken as a uniform wire.
        m.centroid = attempt(m, "centroid", [&] { return contour.meanPosition(); });
        allNotApplicable(m, {"area", "area_without_holes", "inertia", "moment_ellipse"},
                         "an open contour encloses no area");
    }
    measureSpread(m, contour);
    m.selfIntersecting = attempt(m, "self_intersecting", [&] { return contour.isSelfIntersecting(); });
}

// Why the library's with-holes centroid of `region` is a convention, or "": its outline's
// centroid is one, or a hole's that weighs in (a hole of area 0 weighs nothing), or the holes
// leave no area to divide by.
std::string regionCentroidConvention(const xcRegion& region) {
    if (region.points().size() < 3)
        return "";  // the library refuses the region's measures; its exception says why
    std::string why = centroidConvention(region.points());
    if (!why.empty())
        return why;
    std::size_t k = 0;
    for (const xcPtrHandle_const<xcRegion>& hole : region.holes()) {
        why = centroidConvention(hole->points());
        if (!why.empty() && hole->area(false) != 0.0)
            return "hole " + std::to_string(k) + ": " + why;
        ++k;
    }
    if (!region.holes().empty() && region.area(true) == 0.0)
        return "the holes leave no area: the library would divide by 0";
    return "";
}

void holesRefused(Measures& m, const Shape& shape) {
    const std::string why = "the library refused the holes of " +
                            (shape.refused.front().where.empty() ? std::string("the outline")
                                                                 : shape.refused.front().where) +
                            " (" + shape.refused.front().reason + ")";
    for (const char* field : {"area", "centroid", "inertia"})
        unavailable(m, field, why, Unavailable::refusedHoles);
}

void measureRegion(Measures& m, const Shape& shape) {
    const xcPtrHandle<xcRegion> region = freshRegion(*shape.region);
    m.length = attempt(m, "length", [&] { return region->length(); });
    m.areaWithoutHoles = attempt(m, "area_without_holes", [&] { return region->area(false); });
    if (!shape.refused.empty()) {
        holesRefused(m, shape);
    } else {
        m.area = attempt(m, "area", [&] { return region->area(true); });
        const std::string convention = regionCentroidConvention(*region);
        if (convention.empty())
            m.centroid = attempt(m, "centroid", [&] { return region->centerOfMass(true); });
        else
            unavailable(m, "centroid", convention, Unavailable::convention);
        m.inertia = attempt(m, "inertia", [&] { return region->inertiaMatrix(true); });
        dropInertiaWithoutArea(m);
    }
    measureMomentEllipse(m);
    measureSpread(m, *region);
    m.selfIntersecting = attempt(m, "self_intersecting", [&] { return region->isSelfIntersecting(); });
}

// Why the library's centroid of the set is a convention, or "": the regions' areas sum to
// within the library's exact tolerance of 0, or a region that weighs in has a conventional
// centroid.
std::string setCentroidConvention(const xcRegionSet::MutableRegionHandles& regions, double area) {
    if (regions.empty())
        return "";  // the library refuses it: the set holds no regions
    if (std::fabs(area) <= cntr::kExactTolerance)
        return "the regions' areas sum to 0: the library gives (0, 0) by convention";
    for (std::size_t i = 0; i < regions.size(); ++i) {
        const std::string why = regionCentroidConvention(*regions[i]);
        if (!why.empty() && regions[i]->points().size() >= 3 && regions[i]->area(true) != 0.0)
            return "region " + std::to_string(i) + ": " + why;
    }
    return "";
}

void measureRegionSet(Measures& m, const Shape& shape) {
    xcRegionSet::MutableRegionHandles regions;
    std::vector<xcVector<2>> allPoints;
    double length = 0.0;
    for (const xcPtrHandle_const<xcRegion>& r : regionsOf(*shape.set)) {
        regions.push_back(freshRegion(*r));
        length += r->length();
        allPoints.insert(allPoints.end(), r->points().begin(), r->points().end());
    }
    xcRegionSet set(regions, xcContourDefs::keepOutline);
    m.length = length;
    m.areaWithoutHoles = attempt(m, "area_without_holes", [&] { return set.area(false); });
    if (!shape.refused.empty()) {
        holesRefused(m, shape);
    } else {
        m.area = attempt(m, "area", [&] { return set.area(true); });
        const std::string convention = m.area ? setCentroidConvention(regions, *m.area) : "";
        if (convention.empty())
            m.centroid = attempt(m, "centroid", [&] { return set.centerOfMass(true); });
        else
            unavailable(m, "centroid", convention, Unavailable::convention);
        m.inertia = attempt(m, "inertia", [&] { return set.inertiaMatrix(true); });
        dropInertiaWithoutArea(m);
    }
    measureMomentEllipse(m);
    if (!allPoints.empty())
        measureSpread(m, xcContour(allPoints, true));
    else
        allNotApplicable(m, {"fitted_ellipse", "hull_area", "diameter"},
                         "the set holds no regions");
    m.selfIntersecting = attempt(m, "self_intersecting", [&] { return set.isSelfIntersecting(); });
}

bool finite(double v) { return std::isfinite(v); }
bool finite(const xcVector<2>& p) { return finite(p.x()) && finite(p.y()); }
bool finite(const xcMatrix<2>& a) {
    return finite(a.element(0, 0)) && finite(a.element(0, 1)) && finite(a.element(1, 0)) &&
           finite(a.element(1, 1));
}
bool finite(const EllipseValue& e) {
    return finite(e.center) && finite(e.r1) && finite(e.r2) && finite(e.rotationDegrees);
}
// A flag computed beforehand: whether every part of a compound measure is finite.
bool finite(bool allFinite) { return allFinite; }

// Records a measure whose value is infinite or NaN; the value stays for the table.
template <class T>
void noteNonFinite(Measures& m, const char* field, const std::optional<T>& value) {
    if (value && !finite(*value))
        unavailable(m, field, "the result is not finite (the coordinates are too large for "
                              "this measure in double precision)",
                    Unavailable::nonFinite);
}

void noteNonFiniteResults(Measures& m) {
    noteNonFinite(m, "length", m.length);
    noteNonFinite(m, "area", m.area);
    noteNonFinite(m, "area_without_holes", m.areaWithoutHoles);
    noteNonFinite(m, "centroid", m.centroid);
    noteNonFinite(m, "inertia", m.inertia);
    noteNonFinite(m, "moment_ellipse", m.momentEllipse);
    const bool fitFinite = !m.fittedEllipse || (finite(*m.fittedEllipse) && finite(*m.fitRms));
    noteNonFinite(m, "fitted_ellipse", std::optional<bool>(fitFinite));
    noteNonFinite(m, "hull_area", m.hullArea);
    noteNonFinite(m, "diameter", m.diameter);
}

// ---- reports ----

const char* kNotAvailable = "n/a";

// A table cell: n/a for an empty field; inf, -inf or nan for a non-finite value.
std::string cell(const std::optional<double>& v, int digits) {
    return v ? formatNumber(*v, digits) : kNotAvailable;
}

template <class T, class F>
std::string cellOf(const std::optional<T>& v, int digits, F&& part) {
    return v ? formatNumber(part(*v), digits) : kNotAvailable;
}

std::string fitCell(const Measures& m) {
    if (!m.fittedEllipse)
        return kNotAvailable;
    return m.fitIsCircle ? "circle" : "ellipse";
}

std::vector<std::string> tableRow(const Measures& m, int digits) {
    const auto x = [](const xcVector<2>& v) { return v.x(); };
    const auto y = [](const xcVector<2>& v) { return v.y(); };
    const auto r1 = [](const EllipseValue& e) { return e.r1; };
    const auto r2 = [](const EllipseValue& e) { return e.r2; };
    const auto rot = [](const EllipseValue& e) { return e.rotationDegrees; };
    const auto cx = [](const EllipseValue& e) { return e.center.x(); };
    const auto cy = [](const EllipseValue& e) { return e.center.y(); };
    const auto element = [](int r, int c) {
        return [r, c](const xcMatrix<2>& mat) { return mat.element(r, c); };
    };
    const std::optional<EllipseValue>& fit = m.fittedEllipse;
    std::vector<std::string> row = m.cells();
    row.insert(row.end(), {
            std::to_string(m.vertices),
            std::to_string(m.holes),
            cell(m.length, digits),
            cell(m.area, digits),
            cell(m.areaWithoutHoles, digits),
            cellOf(m.centroid, digits, x),
            cellOf(m.centroid, digits, y),
            cellOf(m.inertia, digits, element(0, 0)),
            cellOf(m.inertia, digits, element(0, 1)),
            cellOf(m.inertia, digits, element(1, 1)),
            cellOf(m.momentEllipse, digits, r1),
            cellOf(m.momentEllipse, digits, r2),
            cellOf(m.momentEllipse, digits, rot),
            fitCell(m),
            cellOf(fit, digits, cx),
            cellOf(fit, digits, cy),
            cellOf(fit, digits, r1),
            cellOf(fit, digits, r2),
            m.fitIsCircle ? kNotAvailable : cellOf(fit, digits, rot),
            cell(m.fitRms, digits),
            cell(m.hullArea, digits),
            cell(m.diameter, digits),
            m.selfIntersecting ? (*m.selfIntersecting ? "yes" : "no") : kNotAvailable});
    return row;
}

const std::vector<std::string> kTableHeader = {
    "index",      "kind",       "label",      "vertices",   "holes",      "length",
    "area",       "area_outline", "centroid_x", "centroid_y", "inertia_xx", "inertia_xy",
    "inertia_yy", "mom_r1",     "mom_r2",     "mom_rot",    "fit",        "fit_cx",
    "fit_cy",     "fit_r1",     "fit_r2",     "fit_rot",    "fit_rms",    "hull_area",
    "diameter",   "self_crossing"};

// Writes one shape's JSON fields: numbers rounded to `digits` (exact when 0), and null for a
// field that is empty or unavailable (a non-finite value).
class ShapeJson {
  public:
    ShapeJson(const Measures& m, int digits) : m_(m), digits_(digits) {}

    Json report() const {
        Json j = m_.json();
        j["vertices"] = m_.vertices;
        j["holes"] = m_.holes;
        j["length"] = field("length", m_.length);
        j["area"] = field("area", m_.area);
        j["area_without_holes"] = field("area_without_holes", m_.areaWithoutHoles);
        j["centroid"] = reported("centroid", m_.centroid) ? point(*m_.centroid) : Json(nullptr);
        j["inertia"] = reported("inertia", m_.inertia) ? matrix(*m_.inertia) : Json(nullptr);
        j["moment_ellipse"] = reported("moment_ellipse", m_.momentEllipse)
                                  ? ellipse(*m_.momentEllipse) : Json(nullptr);
        j["fitted_ellipse"] = reported("fitted_ellipse", m_.fittedEllipse) ? fit() : Json(nullptr);
        j["hull_area"] = field("hull_area", m_.hullArea);
        j["diameter"] = field("diameter", m_.diameter);
        j["self_intersecting"] = m_.selfIntersecting ? Json(*m_.selfIntersecting) : Json(nullptr);
        if (!m_.failures.empty()) {
            Json reasons = Json::object();
            for (const MeasureFailure& f : m_.failures)
                if (!reasons.contains(f.field))
                    reasons[f.field] = f.message;
            j["unavailable"] = reasons;
        }
        return j;
    }

  private:
    template <class T>
    bool reported(const char* name, const std::optional<T>& v) const {
        return v && !hasFailure(m_, name, Unavailable::nonFinite);
    }
    Json field(const char* name, const std::optional<double>& v) const {
        return reported(name, v) ? number(*v) : Json(nullptr);
    }
    Json number(double v) const { return digits_ > 0 ? roundToDigits(v, digits_) : v; }
    Json point(const xcVector<2>& p) const { return Json::array({number(p.x()), number(p.y())}); }
    Json matrix(const xcMatrix<2>& a) const {
        return Json::array({Json::array({number(a.element(0, 0)), number(a.element(0, 1))}),
                            Json::array({number(a.element(1, 0)), number(a.element(1, 1))})});
    }
    Json ellipse(const EllipseValue& e) const {
        return Json{{"center", point(e.center)},
                    {"r1", number(e.r1)},
                    {"r2", number(e.r2)},
                    {"rotation_deg", number(e.rotationDegrees)}};
    }
    // The fitted ellipse names the fit that gave it; a circle says why the ellipse fit failed.
    Json fit() const {
        Json j = {{"fit", m_.fitIsCircle ? "circle" : "ellipse"}};
        j.update(ellipse(*m_.fittedEllipse));
        if (m_.fitIsCircle) {
            j["rotation_deg"] = nullptr;
            j["fallback_reason"] = "the ellipse fit failed: " + m_.circleReason;
        }
        j["rms"] = number(*m_.fitRms);
        return j;
    }

    const Measures& m_;
    int digits_;
};

}  // namespace

Measures measureShape(const Shape& shape) {
    Measures m;
    static_cast<ShapeHeading&>(m) = ShapeHeading::of(shape);
    m.vertices = vertexCount(shape);
    m.holes = holeCount(shape);
    switch (shape.kind) {
        case ShapeKind::contour:
            measureContour(m, *shape.contour);
            break;
        case ShapeKind::region:
            measureRegion(m, shape);
            break;
        case ShapeKind::regionSet:
            measureRegionSet(m, shape);
            break;
    }
    noteNonFiniteResults(m);
    return m;
}

void printMeasureTable(std::ostream& out, const std::vector<Measures>& rows, int digits) {
    std::vector<std::vector<std::string>> cells;
    cells.reserve(rows.size() + 1);
    cells.push_back(kTableHeader);
    for (const Measures& m : rows)
        cells.push_back(tableRow(m, digits));
    constexpr std::size_t kKindColumn = 1;  // text, aligned left; numbers align right
    TableLayout layout(kTableHeader.size(), {kKindColumn});
    for (const auto& row : cells)
        layout.fit(row);
    for (const auto& row : cells)
        out << layout.line(row) << '\n';
}

Json measureReport(const std::string& path, const std::vector<Measures>& rows, int digits) {
    Json shapes = Json::array();
    for (const Measures& m : rows)
        shapes.push_back(ShapeJson(m, digits).report());
    return Json{{"file", path}, {"shapes", shapes}};
}

}  // namespace cntrtool
