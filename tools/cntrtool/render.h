// Drawing shapes as an SVG picture through the foundation's SVG tablet.
#ifndef CNTRTOOL_RENDER_H
#define CNTRTOOL_RENDER_H

#include <functional>
#include <string>
#include <vector>

#include <foundation/tablet.h>

#include "shapes.h"

namespace cntrtool {

/// The colours and layers of the picture (layer k is bit k of data-layers).
struct RenderStyle {
    xcColor regionOutline{0x1f, 0x4e, 0x9c};    ///< blue, layer 0
    xcColor crossingOutline{0xd6, 0x27, 0x28};  ///< red: an outline that crosses itself
    xcColor hole{0xe0, 0x7b, 0x00};             ///< orange, layer 1
    xcColor contour{0x2a, 0x9d, 0x3a};          ///< green, layer 2
    xcColor hull{0x8c, 0x8c, 0x8c};             ///< grey, layer 3
    xcColor repaired{0x9b, 0x30, 0xd9};         ///< purple, layer 4
};

struct RenderOptions {
    /// Draw each shape's convex hull (of all its outline vertices).
    bool hull = false;
    /// Draw the repaired outlines of the shapes that need repair (see repairShape).
    bool repaired = false;
    /// Repair with the outer hull rather than the regularisation.
    bool outerHull = false;
};

/// Draws every shape on `tablet`: region outlines (red when they cross themselves), holes,
/// contours, then hulls and repaired outlines on top. `progress` is called once per shape and
/// `note` for each shape whose hull or repair the library refused.
void renderShapes(xcUITablet& tablet, const std::vector<Shape>& shapes,
                  const RenderOptions& options, const std::function<void()>& progress,
                  const std::function<void(const std::string&)>& note);

}  // namespace cntrtool

#endif
