#include "render.h"

#include <exception>

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

}  // namespace

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
