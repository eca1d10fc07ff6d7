// The tool's view of a shape file: the shapes it holds, held as the library's objects, and what
// the library refused while building them.
#ifndef CNTRTOOL_SHAPES_H
#define CNTRTOOL_SHAPES_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <cntr/contour.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/handle.h>

#include <nlohmann/json.hpp>

namespace cntrtool {

using Json = nlohmann::ordered_json;

enum class ShapeKind { contour, region, regionSet };

/// "contour", "region" or "regionset": the spelling of the JSON files and of every report.
const char* kindName(ShapeKind kind);
/// The kind as tables show it: kindName, with "edgelet-" before it for the edgelet classes.
std::string kindCell(ShapeKind kind, bool edgelet);

/// Holes given to a region that the library refused because they cross its outline. The region
/// is kept without them; they are kept here so that nothing of the input is lost from reports
/// and drawings.
struct RefusedHoles {
    /// The part of the shape whose holes were refused: "" for the shape's own outline, else a
    /// path such as "hole 1" or "region 2, hole 0".
    std::string where;
    std::vector<xcPtrHandle<xcRegion>> holes;
    /// The library's reason ("holes cannot intersect region").
    std::string reason;
};

/// One shape of a file: exactly one of the three handles is set, as `kind` says.
struct Shape {
    ShapeKind kind = ShapeKind::contour;
    /// Whether the shape is one of the library's edgelet classes.
    bool edgelet = false;
    xcPtrHandle<xcContour> contour;
    xcPtrHandle<xcRegion> region;
    xcPtrHandle<xcRegionSet> set;
    std::vector<RefusedHoles> refused;
    /// The shape's position in its file: in the "shapes" array, in COCO's "annotations" array
    /// (skipped annotations leave gaps), or among the archive's objects.
    std::size_t index = 0;
};

/// What every per-shape report begins with: the shape's position in its file, its kind and its
/// label.
struct ShapeHeading {
    std::size_t index = 0;
    ShapeKind kind = ShapeKind::contour;
    bool edgelet = false;
    unsigned long label = 0;

    /// The heading of `shape` (its label as labelOf gives it).
    static ShapeHeading of(const Shape& shape);
    /// The first cells of a table row: index, kind (kindCell) and label.
    std::vector<std::string> cells() const;
    /// The first members of a JSON report: "index", "kind", "edgelet" and "label".
    Json json() const;
};

/// The shape's label: the contour's or region's own; a set has none of its own and shows its
/// first region's (0 for an empty set).
unsigned long labelOf(const Shape& shape);

/// The regions of a set, in order (the library's accessor is not const).
std::vector<xcPtrHandle_const<xcRegion>> regionsOf(const xcRegionSet& set);

/// One outline of a shape as `forEachOutline` reports it.
struct OutlineRef {
    const xcContour& outline;
    /// "" for the shape's own outline, else a path such as "hole 1" or "region 2, hole 0".
    std::string where;
    /// Whether the outline bounds a region (needs 3 vertices) rather than an open or closed
    /// contour (needs 2).
    bool isRegion;
    /// Whether it bounds a hole (at any depth, holes refused by the library included).
    bool isHole;
};

/// Calls `visit` for every outline of the shape: the contour; or the region's outline followed
/// by its holes, depth first (a hole's own holes after it), refused holes after the held ones;
/// or, for a set, each region so in turn.
void forEachOutline(const Shape& shape, const std::function<void(const OutlineRef&)>& visit);

/// Chains of nested holes longer than this are shortened in messages.
constexpr std::size_t kSpelledOutHoleDepth = 3;

/// `text` with every chain of more than kSpelledOutHoleDepth nested holes ("hole 0, hole 0,
/// ...", as the paths of `where` spell them) told by its depth: "hole 0 (66 levels deep)"
/// when every step is the same hole, "hole 2, ..., hole 0 (66 levels deep)" (first and last)
/// otherwise.
std::string withHoleChainsShortened(const std::string& text);

/// The number of vertices of every outline of the shape (holes included).
std::size_t vertexCount(const Shape& shape);
/// The number of holes directly held by the shape's regions (a hole's own holes not counted),
/// refused holes included.
std::size_t holeCount(const Shape& shape);

/// A new region with the outline and label of `region` and the same hole objects, whose caches
/// are all empty: the measures then compute afresh whatever earlier queries cached on shared
/// objects.
xcPtrHandle<xcRegion> freshRegion(const xcRegion& region);

/// How a file holds its shapes.
enum class FileFormat {
    /// The tool's own JSON: an object with a "shapes" array.
    toolJson,
    /// A COCO-style annotation file: an object with an "annotations" array.
    coco,
    /// The library's binary archive: the shapes' handle records one after another.
    archive
};

/// A loaded shape file.
struct ShapeFile {
    std::string path;
    FileFormat format = FileFormat::toolJson;
    std::vector<Shape> shapes;
    /// The parsed document of a JSON input (kept so that output in the same format changes only
    /// what was repaired).
    Json document;
};

}  // namespace cntrtool

#endif
