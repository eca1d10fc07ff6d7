#include "render.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <exception>

#include "errors.h"
#include "repair.h"

namespace cntrtool {

namespace {

const xcUITablet::Layers kOutlineLayer(1u << 0);
const xcUITablet::Layers kHoleLayer(1u << 1);
const xcUITablet::Layers kContourLayer(1u << 2);
const xcUITablet::Layers kHullLayer(1u << 3);
const xcUITablet::Layers kRepairedLayer(1u << 4);

// A region draws nothing through its own draw; its outline is drawn as the contour it is.
void drawOutline(xcUITablet& tablet, const xcContour& outline, const xcColor& color,
                 const xcUITablet::Layers& layers) {
    outline.draw(tablet, xcContourDefs::drawNormal, color, layers);
}

void drawShape(xcUITablet& tablet, const Shape& shape, const RenderStyle& style) {
    forEachOutline(shape, [&](const OutlineRef& o) {
        if (o.isHole)
            drawOutline(tablet, o.outline, style.hole, kHoleLayer);
        else if (!o.isRegion)
            drawOutline(tablet, o.outline, style.contour, kContourLayer);
        else
            drawOutline(tablet, o.outline,
                        o.outline.isSelfIntersecting() ? style.crossingOutline : style.regionOutline,
                        kOutlineLayer);
    });
}

void drawHull(xcUITablet& tablet, const Shape& shape, const RenderStyle& style) {
    std::vector<xcVector<2>> points;
    forEachOutline(shape, [&points](const OutlineRef& o) {
        if (!o.isHole)
            points.insert(points.end(), o.outline.points().begin(), o.outline.points().end());
    });
    if (points.empty())
        return;
    xcRegion hull;
    xcContour(points, true).convexHull(hull);
    drawOutline(tablet, hull, style.hull, kHullLayer);
}

void drawRepaired(xcUITablet& tablet, const Shape& shape, const RenderOptions& options,
                  const RenderStyle& style, const std::function<void(const std::string&)>& note) {
    if (!needsRepair(shape))
        return;
    const RepairResult r = repairShape(shape, options.outerHull);
    for (const std::string& n : r.notes)
        note(n);
    if (r.changed)
        forEachOutline(r.shape, [&](const OutlineRef& o) {
            drawOutline(tablet, o.outline, style.repaired, kRepairedLayer);
        });
}

// The shortest decimal form that reads back as the same double, whatever the C locale.
std::string svgNumber(double v) {
    char buffer[32];
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, v).ptr);
}

std::string hexColor(const xcColor& c) {
    char buffer[8];
    std::snprintf(buffer, sizeof buffer, "#%02x%02x%02x", static_cast<unsigned>(c.r()),
                  static_cast<unsigned>(c.g()), static_cast<unsigned>(c.b()));
    return buffer;
}

bool finiteSegment(const xcRecordingTablet::Segment& s) {
    return std::isfinite(s.p1.x()) && std::isfinite(s.p1.y()) && std::isfinite(s.p2.x()) &&
           std::isfinite(s.p2.y());
}

// A rectangle of the drawing: its smallest corner and its size.
struct Box {
    double x = 0.0, y = 0.0, w = 0.0, h = 0.0;
};

// The bounding box of the end points; a drawing without extent gets the unit square about
// its point (the origin when nothing is drawn).
Box boundsOf(const std::vector<const xcRecordingTablet::Segment*>& segments) {
    double minX = 0.0, minY = 0.0, maxX = 0.0, maxY = 0.0;
    bool first = true;
    for (const auto* s : segments)
        for (const xcPair<double>& p : {s->p1, s->p2}) {
            minX = first ? p.x() : std::min(minX, p.x());
            minY = first ? p.y() : std::min(minY, p.y());
            maxX = first ? p.x() : std::max(maxX, p.x());
            maxY = first ? p.y() : std::max(maxY, p.y());
            first = false;
        }
    if (maxX - minX == 0.0 && maxY - minY == 0.0)
        return Box{minX - xcSvgTablet::kUnitSide / 2.0, minY - xcSvgTablet::kUnitSide / 2.0,
                   xcSvgTablet::kUnitSide, xcSvgTablet::kUnitSide};
    return Box{minX, minY, maxX - minX, maxY - minY};
}

// The view box in the document's coordinates: the bounds grown by the margin, flipped in y
// when y points up (the group's scale(1,-1) maps y to -y).
Box viewBoxOf(const Box& b, bool yDown) {
    const double margin = std::max(b.w, b.h) * xcSvgTablet::kMarginFraction;
    const double top = yDown ? b.y : -(b.y + b.h);
    return Box{b.x - margin, top - margin, b.w + 2.0 * margin, b.h + 2.0 * margin};
}

std::string lineElement(const xcRecordingTablet::Segment& s) {
    return "<line x1=\"" + svgNumber(s.p1.x()) + "\" y1=\"" + svgNumber(s.p1.y()) +
           "\" x2=\"" + svgNumber(s.p2.x()) + "\" y2=\"" + svgNumber(s.p2.y()) +
           "\" stroke=\"" + hexColor(s.color) + "\" data-layers=\"" +
           std::to_string(s.layers.mask()) + "\"/>\n";
}

}  // namespace

SvgPicture svgPicture(const std::vector<xcRecordingTablet::Segment>& segments,
                      const PictureOptions& options) {
    SvgPicture picture;
    std::vector<const xcRecordingTablet::Segment*> drawn;
    for (const auto& s : segments)
        if (finiteSegment(s))
            drawn.push_back(&s);
    picture.segments = drawn.size();
    picture.skipped = segments.size() - drawn.size();

    const Box view = viewBoxOf(boundsOf(drawn), options.yDown);
    const double unitsPerPixel = view.w / options.width;
    const double height = std::max(1.0, std::round(view.h / unitsPerPixel));
    const double stroke = kStrokePixels * unitsPerPixel;
    if (!std::isfinite(view.x) || !std::isfinite(view.y) || !std::isfinite(view.w) ||
        !std::isfinite(view.h) || !std::isfinite(height) || !(stroke > 0.0))
        throw ToolError("the drawing's extent is too large for an SVG picture");

    const std::string viewBox = svgNumber(view.x) + " " + svgNumber(view.y) + " " +
                                svgNumber(view.w) + " " + svgNumber(view.h);
    std::string& doc = picture.document;
    doc = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
    doc += "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"" +
           std::to_string(options.width) + "\" height=\"" + svgNumber(height) +
           "\" viewBox=\"" + viewBox + "\">\n";
    doc += "<rect x=\"" + svgNumber(view.x) + "\" y=\"" + svgNumber(view.y) + "\" width=\"" +
           svgNumber(view.w) + "\" height=\"" + svgNumber(view.h) + "\" fill=\"#ffffff\"/>\n";
    doc += std::string("<g") + (options.yDown ? "" : " transform=\"scale(1,-1)\"") +
           " fill=\"none\" stroke-linecap=\"round\" stroke-width=\"" + svgNumber(stroke) +
           "\">\n";
    for (const auto* s : drawn)
        doc += lineElement(*s);
    doc += "</g>\n</svg>\n";
    return picture;
}

void renderShapes(xcUITablet& tablet, const std::vector<Shape>& shapes,
                  const RenderOptions& options, const std::function<void()>& progress,
                  const std::function<void(const std::string&)>& note) {
    const RenderStyle style;
    for (const Shape& shape : shapes) {
        drawShape(tablet, shape, style);
        if (options.hull) {
            try {
                drawHull(tablet, shape, style);
            } catch (const std::exception& e) {
                note("shape " + std::to_string(shape.index) + ": no hull: " + e.what());
            }
        }
        if (options.repaired)
            drawRepaired(tablet, shape, options, style, note);
        progress();
    }
}

}  // namespace cntrtool
