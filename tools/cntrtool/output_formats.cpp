#include "output_formats.h"

#include <algorithm>

#include <cntrtmpl/contourt.h>
#include <foundation/archive.h>
#include <foundation/xform.h>

#include "errors.h"
#include "json_text.h"

namespace cntrtool {

namespace {

using EdgeletContour = xcContourT<xcEdgelet>;

Json pointsJson(const std::vector<xcVector<2>>& points) {
    Json j = Json::array();
    for (const xcVector<2>& p : points)
        j.push_back(Json::array({p.x(), p.y()}));
    return j;
}

Json flatPolygon(const std::vector<xcVector<2>>& points) {
    Json j = Json::array();
    for (const xcVector<2>& p : points) {
        j.push_back(p.x());
        j.push_back(p.y());
    }
    return j;
}

std::string joinPath(const std::string& parent, const std::string& part) {
    return parent.empty() ? part : parent + ", " + part;
}

Json regionJson(const xcRegion& region, const std::string& where,
                const std::vector<RefusedHoles>& refused) {
    Json j = {{"label", region.label()}, {"points", pointsJson(region.points())}};
    std::vector<const xcRegion*> holes;
    for (const auto& h : region.holes())
        holes.push_back(h.rep());
    for (const RefusedHoles& r : refused)
        if (r.where == where)
            for (const auto& h : r.holes)
                holes.push_back(h.rep());
    if (!holes.empty()) {
        Json holesJson = Json::array();
        for (std::size_t k = 0; k < holes.size(); ++k)
            holesJson.push_back(
                regionJson(*holes[k], joinPath(where, "hole " + std::to_string(k)), refused));
        j["holes"] = holesJson;
    }
    return j;
}

// The edgelets and transform of an edgelet contour, when they give back its vertices (one
// edgelet per vertex and an affine transform, or none); false otherwise.
bool edgeletJson(const xcContour& contour, Json& j) {
    const auto* e = dynamic_cast<const EdgeletContour*>(&contour);
    if (e == nullptr || e->data().size() != contour.points().size())
        return false;
    const xcPtrHandle_const<xc2XformBase> xform = e->dataFromPointsXform();
    const auto* linear = dynamic_cast<const xc2XformLinear*>(xform.rep());
    if (xform && linear == nullptr)
        return false;
    Json edgelets = Json::array();
    for (const xcEdgelet& d : e->data())
        edgelets.push_back(Json::array({d.position().x(), d.position().y(), d.magnitude(),
                                        d.angle().raw()}));
    j["edgelets"] = edgelets;
    if (linear != nullptr) {
        const xcMatrix<2>& m = linear->xform().matrix();
        const xcVector<2>& t = linear->xform().trans();
        j["xform"] = Json::array({Json::array({m.element(0, 0), m.element(0, 1), t.x()}),
                                  Json::array({m.element(1, 0), m.element(1, 1), t.y()})});
    }
    return true;
}

Json contourJson(const xcContour& contour) {
    Json j = {{"kind", "contour"}, {"label", contour.label()}, {"closed", contour.isClosed()}};
    if (!edgeletJson(contour, j))
        j["points"] = pointsJson(contour.points());
    return j;
}

// The regions that a COCO annotation's polygons stand for.
std::vector<xcPtrHandle_const<xcRegion>> cocoRegions(const Shape& shape) {
    if (shape.kind == ShapeKind::region)
        return {shape.region};
    return regionsOf(*shape.set);
}

// COCO's "bbox": [x, y, width, height] round every point.
Json boundingBox(const std::vector<xcVector<2>>& points) {
    if (points.empty())
        return Json::array({0, 0, 0, 0});
    const auto byX = [](const xcVector<2>& a, const xcVector<2>& b) { return a.x() < b.x(); };
    const auto byY = [](const xcVector<2>& a, const xcVector<2>& b) { return a.y() < b.y(); };
    const auto [left, right] = std::minmax_element(points.begin(), points.end(), byX);
    const auto [bottom, top] = std::minmax_element(points.begin(), points.end(), byY);
    return Json::array(
        {left->x(), bottom->y(), right->x() - left->x(), top->y() - bottom->y()});
}

// A repaired annotation: its polygons, and the "area" (the sum of the polygons' areas) and
// "bbox" that describe them, so that neither keeps describing the shape before its repair.
void setCocoAnnotation(Json& annotation, const Shape& shape) {
    Json polygons = Json::array();
    double area = 0.0;
    std::vector<xcVector<2>> allPoints;
    for (const auto& r : cocoRegions(shape)) {
        polygons.push_back(flatPolygon(r->points()));
        area += r->area(false);
        allPoints.insert(allPoints.end(), r->points().begin(), r->points().end());
    }
    annotation["segmentation"] = polygons;
    annotation["area"] = area;
    annotation["bbox"] = boundingBox(allPoints);
}

}  // namespace

Json shapeToJson(const Shape& shape) {
    switch (shape.kind) {
        case ShapeKind::contour:
            return contourJson(*shape.contour);
        case ShapeKind::region: {
            Json j = {{"kind", "region"}};
            if (shape.edgelet)
                j["edgelet"] = true;
            j.update(regionJson(*shape.region, "", shape.refused));
            return j;
        }
        case ShapeKind::regionSet: {
            Json j = {{"kind", "regionset"}};
            if (shape.edgelet)
                j["edgelet"] = true;
            Json regions = Json::array();
            const auto members = regionsOf(*shape.set);
            for (std::size_t i = 0; i < members.size(); ++i)
                regions.push_back(
                    regionJson(*members[i], "region " + std::to_string(i), shape.refused));
            j["regions"] = regions;
            return j;
        }
    }
    return nullptr;
}

Json toolDocument(const std::vector<Shape>& shapes) {
    Json list = Json::array();
    for (const Shape& s : shapes)
        list.push_back(shapeToJson(s));
    return Json{{"version", 1}, {"shapes", list}};
}

std::string archiveContent(const std::string& path, const std::vector<Shape>& shapes,
                           std::vector<std::string>& lost) {
    xcMemoryArchive archive;
    for (const Shape& s : shapes) {
        const std::string where = "shape " + std::to_string(s.index);
        if (!s.refused.empty())
            lost.push_back(where + ": holes the library refused (" + s.refused.front().reason +
                           ") are left out of the archive");
        try {
            xcPtrHandle<xcContour> contour = s.contour;
            xcPtrHandle<xcRegion> region = s.region;
            xcPtrHandle<xcRegionSet> set = s.set;
            switch (s.kind) {
                case ShapeKind::contour:
                    archive || contour;
                    break;
                case ShapeKind::region:
                    archive || region;
                    break;
                case ShapeKind::regionSet:
                    archive || set;
                    break;
            }
        } catch (const xcException& e) {
            throw InputError(path, where + ": cannot be stored: " + e.what());
        }
    }
    const std::vector<unsigned char>& bytes = archive.bytes();
    return std::string(bytes.begin(), bytes.end());
}

std::string contentInFormat(const ShapeFile& input, const std::vector<Shape>& shapes,
                            const std::vector<bool>& changed, std::vector<std::string>& lost) {
    if (input.format == FileFormat::archive)
        return archiveContent(input.path, shapes, lost);
    Json document = input.document;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        if (!changed[i])
            continue;
        if (input.format == FileFormat::toolJson)
            document["shapes"][shapes[i].index] = shapeToJson(shapes[i]);
        else
            setCocoAnnotation(document["annotations"][shapes[i].index], shapes[i]);
    }
    return prettyJson(document);
}

}  // namespace cntrtool
