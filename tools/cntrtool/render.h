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

/// The picture's size in pixels: its width (the height follows the drawing's aspect ratio).
constexpr int kDefaultWidth = 800;
constexpr int kMinWidth = 16;
constexpr int kMaxWidth = 100000;
/// The width of every line on screen, in pixels, whatever the drawing's extent.
constexpr double kStrokePixels = 1.5;

/// How the picture maps the drawing onto the screen.
struct PictureOptions {
    /// The y axis points down (image coordinates) rather than up (the geometry's).
    bool yDown = false;
    int width = kDefaultWidth;
};

/// A standalone SVG document and what it holds.
struct SvgPicture {
    std::string document;
    std::size_t segments = 0;
    /// Segments left out for a non-finite end point (they cannot be placed).
    std::size_t skipped = 0;
};

/// The segments as an SVG document: width and height in pixels, a white background, one <line>
/// per segment with its colour as stroke="#rrggbb" and its layer mask as data-layers. The view
/// box is the bounding box of the end points grown by the SVG tablet's margin fraction of its
/// larger side on each side (a drawing without extent: the tablet's unit square about its point, or about the origin when
/// empty); the stroke width, in drawing units, is kStrokePixels at the picture's scale, so that
/// lines are as wide on screen whatever the extent. Coordinates are written unchanged, in the
/// shortest form that reads back exactly; y up flips them with scale(1,-1) on their group.
/// Throws ToolError when the extent overflows a double.
SvgPicture svgPicture(const std::vector<xcRecordingTablet::Segment>& segments,
                      const PictureOptions& options);

/// Draws every shape on `tablet`: region outlines (red when they cross themselves), holes,
/// contours, then hulls and repaired outlines on top. `progress` is called once per shape and
/// `note` for each shape whose hull or repair the library refused.
void renderShapes(xcUITablet& tablet, const std::vector<Shape>& shapes,
                  const RenderOptions& options, const std::function<void()>& progress,
                  const std::function<void(const std::string&)>& note);

}  // namespace cntrtool

#endif
