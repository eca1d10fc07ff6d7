#include "measure.h"

#include <cmath>
#include <exception>
#include <utility>

#include <cntr/moments.h>
#include <foundation/exception.h>

#include "output.h"

namespace cntrtool {

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
        m.failures.push_back(MeasureFailure{field, reasonOf(e)});
    }
    return std::nullopt;
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

void measureFit(Measures& m, const xcContour& contour) {
    const auto fit = attempt(m, "fitted_ellipse", [&] {
        xcEllipse ellipse;
        double rms = 0.0;
        contour.fitEllipse(ellipse, rms);
        return std::make_pair(ellipse, rms);
    });
    // An rms of -1 says that neither the ellipse nor the circle fit worked.
    if (fit && fit->second >= 0.0) {
        m.fittedEllipse = ellipseValue(fit->first);
        m.fitRms = fit->second;
    }
}

// The spread measures of a point list, through a closed contour of them.
void measureSpread(Measures& m, const xcContour& contour) {
    measureFit(m, contour);
    m.hullArea = attempt(m, "hull_area", [&] { return hullArea(contour); });
    m.diameter = attempt(m, "diameter",
                         [&] { return contour.diameter(xcContourDefs::furthestVertexPair); });
}

void measureMomentEllipse(Measures& m) {
    if (!m.area || !m.centroid || !m.inertia)
        return;
    m.momentEllipse = attempt(m, "moment_ellipse", [&] {
        return ellipseValue(
            xf_EllipseFromInertiaData(xc_InertiaData(*m.area, *m.centroid, *m.inertia)));
    });
}

void measureContour(Measures& m, xcContour& contour) {
    // The library refuses every measure of a contour with fewer than 2 vertices.
    if (contour.points().size() < 2)
        return;
    m.length = attempt(m, "length", [&] { return contour.length(); });
    if (contour.isClosed()) {
        const std::vector<xcVector<2>>& points = contour.points();
        m.area = attempt(m, "area", [&] { return xf_Area(points); });
        m.areaWithoutHoles = m.area;
        m.centroid = attempt(m, "centroid", [&] { return xf_CenterOfMass(points); });
        m.inertia =
            attempt(m, "inertia", [&] { return xf_InertiaDataPolygon(points).inertiaMatrix(); });
    } else {
        // The centre of the polyline taken as a uniform wire.
        m.centroid = attempt(m, "centroid", [&] { return contour.meanPosition(); });
    }
    measureMomentEllipse(m);
    measureSpread(m, contour);
    m.selfIntersecting = attempt(m, "self_intersecting", [&] { return contour.isSelfIntersecting(); });
}

void measureRegion(Measures& m, const Shape& shape) {
    const xcPtrHandle<xcRegion> region = freshRegion(*shape.region);
    const bool holesRefused = !shape.refused.empty();
    m.length = attempt(m, "length", [&] { return region->length(); });
    m.areaWithoutHoles = attempt(m, "area_without_holes", [&] { return region->area(false); });
    if (!holesRefused) {
        m.area = attempt(m, "area", [&] { return region->area(true); });
        m.centroid = attempt(m, "centroid", [&] { return region->centerOfMass(true); });
        m.inertia = attempt(m, "inertia", [&] { return region->inertiaMatrix(true); });
    }
    measureMomentEllipse(m);
    measureSpread(m, *region);
    m.selfIntersecting = attempt(m, "self_intersecting", [&] { return region->isSelfIntersecting(); });
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
    const bool holesRefused = !shape.refused.empty();
    m.length = length;
    m.areaWithoutHoles = attempt(m, "area_without_holes", [&] { return set.area(false); });
    if (!holesRefused) {
        m.area = attempt(m, "area", [&] { return set.area(true); });
        m.centroid = attempt(m, "centroid", [&] { return set.centerOfMass(true); });
        m.inertia = attempt(m, "inertia", [&] { return set.inertiaMatrix(true); });
    }
    measureMomentEllipse(m);
    if (!allPoints.empty())
        measureSpread(m, xcContour(allPoints, true));
    m.selfIntersecting = attempt(m, "self_intersecting", [&] { return set.isSelfIntersecting(); });
}

// ---- reports ----

const char* kNotAvailable = "n/a";

std::string cell(const std::optional<double>& v) {
    return v ? formatNumber(*v, kTableDigits) : kNotAvailable;
}

template <class T, class F>
std::string cellOf(const std::optional<T>& v, F&& part) {
    return v ? formatNumber(part(*v), kTableDigits) : kNotAvailable;
}

std::string kindCell(const Measures& m) {
    return std::string(m.edgelet ? "edgelet-" : "") + kindName(m.kind);
}

std::vector<std::string> tableRow(const Measures& m) {
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
    return {std::to_string(m.index),
            kindCell(m),
            std::to_string(m.label),
            std::to_string(m.vertices),
            std::to_string(m.holes),
            cell(m.length),
            cell(m.area),
            cell(m.areaWithoutHoles),
            cellOf(m.centroid, x),
            cellOf(m.centroid, y),
            cellOf(m.inertia, element(0, 0)),
            cellOf(m.inertia, element(0, 1)),
            cellOf(m.inertia, element(1, 1)),
            cellOf(m.momentEllipse, r1),
            cellOf(m.momentEllipse, r2),
            cellOf(m.momentEllipse, rot),
            cellOf(m.fittedEllipse, cx),
            cellOf(m.fittedEllipse, cy),
            cellOf(m.fittedEllipse, r1),
            cellOf(m.fittedEllipse, r2),
            cellOf(m.fittedEllipse, rot),
            cell(m.fitRms),
            cell(m.hullArea),
            cell(m.diameter),
            m.selfIntersecting ? (*m.selfIntersecting ? "yes" : "no") : kNotAvailable};
}

const std::vector<std::string> kTableHeader = {
    "index",  "kind",      "label",     "vertices", "holes",  "length",    "area",
    "area_outline", "centroid_x", "centroid_y", "inertia_xx", "inertia_xy", "inertia_yy",
    "mom_r1", "mom_r2",    "mom_rot",   "fit_cx",   "fit_cy", "fit_r1",    "fit_r2",
    "fit_rot", "fit_rms",  "hull_area", "diameter", "self_crossing"};

Json number(const std::optional<double>& v) {
    if (!v || !std::isfinite(*v))
        return nullptr;
    return roundToDigits(*v, kJsonDigits);
}

Json point(const xcVector<2>& p) { return Json::array({number(p.x()), number(p.y())}); }

Json ellipseJson(const std::optional<EllipseValue>& e, const std::optional<double>& rms) {
    if (!e)
        return nullptr;
    Json j = {{"center", point(e->center)},
              {"r1", number(e->r1)},
              {"r2", number(e->r2)},
              {"rotation_deg", number(e->rotationDegrees)}};
    if (rms)
        j["rms"] = number(rms);
    return j;
}

Json shapeReport(const Measures& m) {
    Json j = {{"index", m.index},       {"kind", kindName(m.kind)}, {"edgelet", m.edgelet},
              {"label", m.label},       {"vertices", m.vertices},   {"holes", m.holes},
              {"length", number(m.length)}, {"area", number(m.area)},
              {"area_without_holes", number(m.areaWithoutHoles)}};
    j["centroid"] = m.centroid ? point(*m.centroid) : Json(nullptr);
    if (m.inertia) {
        const xcMatrix<2>& i = *m.inertia;
        j["inertia"] = Json::array({Json::array({number(i.element(0, 0)), number(i.element(0, 1))}),
                                    Json::array({number(i.element(1, 0)), number(i.element(1, 1))})});
    } else {
        j["inertia"] = nullptr;
    }
    j["moment_ellipse"] = ellipseJson(m.momentEllipse, std::nullopt);
    j["fitted_ellipse"] = ellipseJson(m.fittedEllipse, m.fitRms);
    j["hull_area"] = number(m.hullArea);
    j["diameter"] = number(m.diameter);
    j["self_intersecting"] = m.selfIntersecting ? Json(*m.selfIntersecting) : Json(nullptr);
    if (!m.failures.empty()) {
        Json failures = Json::object();
        for (const MeasureFailure& f : m.failures)
            failures[f.field] = f.message;
        j["unavailable"] = failures;
    }
    return j;
}

}  // namespace

Measures measureShape(const Shape& shape) {
    Measures m;
    m.index = shape.index;
    m.kind = shape.kind;
    m.edgelet = shape.edgelet;
    m.label = labelOf(shape);
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
    return m;
}

void printMeasureTable(std::ostream& out, const std::vector<Measures>& rows) {
    std::vector<std::vector<std::string>> cells;
    cells.reserve(rows.size() + 1);
    cells.push_back(kTableHeader);
    for (const Measures& m : rows)
        cells.push_back(tableRow(m));
    std::vector<std::size_t> width(kTableHeader.size(), 0);
    for (const auto& row : cells)
        for (std::size_t c = 0; c < row.size(); ++c)
            width[c] = std::max(width[c], row[c].size());
    constexpr std::size_t kKindColumn = 1;  // text, aligned left; numbers align right
    for (const auto& row : cells) {
        std::string line;
        for (std::size_t c = 0; c < row.size(); ++c) {
            const std::string fill(width[c] - row[c].size(), ' ');
            if (c > 0)
                line += "  ";
            line += c == kKindColumn ? row[c] + fill : fill + row[c];
        }
        while (!line.empty() && line.back() == ' ')
            line.pop_back();
        out << line << '\n';
    }
}

Json measureReport(const std::string& path, const std::vector<Measures>& rows) {
    Json shapes = Json::array();
    for (const Measures& m : rows)
        shapes.push_back(shapeReport(m));
    return Json{{"file", path}, {"shapes", shapes}};
}

}  // namespace cntrtool
