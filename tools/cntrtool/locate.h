// Where points lie relative to the shapes of a file, and the two reports of it: an aligned table
// and JSON.
#ifndef CNTRTOOL_LOCATE_H
#define CNTRTOOL_LOCATE_H

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <cntr/polygon.h>
#include <foundation/vector.h>

#include "shapes.h"

namespace cntrtool {

/// "inside", "boundary" or "outside".
const char* locationName(cntr::Location location);

/// The area a shape bounds, as the library's multipolygon: a closed contour's polygon, a
/// region's (MultiPolygon::fromRegion: its holes, islands inside them as members) or a set's
/// (fromRegionSet). Holes the library refused, which the tool keeps, come too, each as the
/// members fromRegion gives for it. Empty for an open contour, which bounds no area.
std::optional<cntr::MultiPolygon> multiPolygonOf(const Shape& shape);

/// The answers for one shape.
struct ShapeLocations : ShapeHeading {
    /// One per point, in order; empty when the shape bounds no area.
    std::optional<std::vector<cntr::Location>> locations;
    /// Why `locations` is empty.
    std::string unavailable;
};

/// Locates every point relative to `shape` with its multipolygon's prepared locator (the batch
/// form of MultiPolygon::locate): boundary on an outline (or within `boundaryDistance` of one
/// when that is positive), otherwise inside or outside by the even-odd rule over every outline
/// of the shape. The points must be finite and the distance finite and not negative (the
/// callers check both).
ShapeLocations locateShape(const Shape& shape, const std::vector<xcVector<2>>& points,
                           double boundaryDistance);

/// The aligned table: a header line, then one line per shape and point (shape by shape, the
/// points in order): shape index, kind, label, point index, x and y (`digits` significant
/// digits) and the location, n/a for a shape that bounds no area.
void printLocationTable(std::ostream& out, const std::vector<xcVector<2>>& points,
                        const std::vector<ShapeLocations>& rows, int digits);

/// The JSON report: {"file", "points_file", "boundary_distance", "points": [[x, y], ...],
/// "shapes": [{"index", "kind", "edgelet", "label", "locations": [...]}, ...]}; a shape that
/// bounds no area has "locations": null and its reason under "unavailable".
Json locationReport(const std::string& path, const std::string& pointsPath, double boundaryDistance,
                    const std::vector<xcVector<2>>& points,
                    const std::vector<ShapeLocations>& rows);

}  // namespace cntrtool

#endif
