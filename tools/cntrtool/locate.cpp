#include "locate.h"

#include <utility>

#include "output.h"

namespace cntrtool {

namespace {

const char* const kNotAvailable = "n/a";
const char* const kOpenContour = "an open contour bounds no area";

// Appends the members of `more` to `members`.
void append(std::vector<cntr::Polygon>& members, const cntr::MultiPolygon& more) {
    members.insert(members.end(), more.members().begin(), more.members().end());
}

}  // namespace

const char* locationName(cntr::Location location) {
    switch (location) {
        case cntr::Location::inside:
            return "inside";
        case cntr::Location::boundary:
            return "boundary";
        case cntr::Location::outside:
            return "outside";
    }
    return "?";
}

std::optional<cntr::MultiPolygon> multiPolygonOf(const Shape& shape) {
    std::vector<cntr::Polygon> members;
    switch (shape.kind) {
        case ShapeKind::contour:
            if (!shape.contour->isClosed())
                return std::nullopt;
            members.push_back(cntr::Polygon::fromContour(*shape.contour));
            break;
        case ShapeKind::region:
            append(members, cntr::MultiPolygon::fromRegion(*shape.region));
            break;
        case ShapeKind::regionSet:
            append(members, cntr::MultiPolygon::fromRegionSet(*shape.set));
            break;
    }
    // The locator reads the rings of all members together under the even-odd rule, so the
    // member that holds a ring does not change an answer: a refused hole's outline counts as a
    // hole's wherever it is listed.
    for (const RefusedHoles& refused : shape.refused)
        for (const xcPtrHandle<xcRegion>& hole : refused.holes)
            append(members, cntr::MultiPolygon::fromRegion(*hole));
    return cntr::MultiPolygon(std::move(members));
}

ShapeLocations locateShape(const Shape& shape, const std::vector<xcVector<2>>& points,
                           double boundaryDistance) {
    ShapeLocations s;
    static_cast<ShapeHeading&>(s) = ShapeHeading::of(shape);
    if (const std::optional<cntr::MultiPolygon> area = multiPolygonOf(shape))
        s.locations = area->locate(points, boundaryDistance);
    else
        s.unavailable = kOpenContour;
    return s;
}

void printLocationTable(std::ostream& out, const std::vector<xcVector<2>>& points,
                        const std::vector<ShapeLocations>& rows, int digits) {
    const std::vector<std::string> header = {"shape", "kind", "label",   "point",
                                             "x",     "y",    "location"};
    constexpr std::size_t kKindColumn = 1, kLocationColumn = 6;
    TableLayout layout(header.size(), {kKindColumn, kLocationColumn});
    layout.fit(header);
    // The cells of shapes and of points are made once each; the table pairs every shape with
    // every point.
    std::vector<std::vector<std::string>> shapeCells, pointCells;
    for (const ShapeLocations& s : rows)
        shapeCells.push_back(s.cells());
    for (std::size_t k = 0; k < points.size(); ++k)
        pointCells.push_back({std::to_string(k), formatNumber(points[k].x(), digits),
                              formatNumber(points[k].y(), digits)});
    for (const auto& cells : shapeCells)
        for (std::size_t c = 0; c < cells.size(); ++c)
            layout.fit(c, cells[c]);
    for (const auto& cells : pointCells)
        for (std::size_t c = 0; c < cells.size(); ++c)
            layout.fit(3 + c, cells[c]);
    for (const char* name : {"inside", "boundary", "outside", kNotAvailable})
        layout.fit(kLocationColumn, name);

    out << layout.line(header) << '\n';
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t k = 0; k < points.size(); ++k) {
            std::vector<std::string> row = shapeCells[i];
            row.insert(row.end(), pointCells[k].begin(), pointCells[k].end());
            row.push_back(rows[i].locations ? locationName((*rows[i].locations)[k])
                                            : kNotAvailable);
            out << layout.line(row) << '\n';
        }
}

Json locationReport(const std::string& path, const std::string& pointsPath, double boundaryDistance,
                    const std::vector<xcVector<2>>& points,
                    const std::vector<ShapeLocations>& rows) {
    Json pointList = Json::array();
    for (const xcVector<2>& p : points)
        pointList.push_back(Json::array({p.x(), p.y()}));
    Json shapes = Json::array();
    for (const ShapeLocations& s : rows) {
        Json j = s.json();
        if (s.locations) {
            Json names = Json::array();
            for (const cntr::Location location : *s.locations)
                names.push_back(locationName(location));
            j["locations"] = names;
        } else {
            j["locations"] = nullptr;
            j["unavailable"] = Json{{"locations", s.unavailable}};
        }
        shapes.push_back(j);
    }
    return Json{{"file", path},
                {"points_file", pointsPath},
                {"boundary_distance", boundaryDistance},
                {"points", pointList},
                {"shapes", shapes}};
}

}  // namespace cntrtool
