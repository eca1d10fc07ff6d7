#include "locate.h"

#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "json_text.h"
#include "tool_testing.h"

using cntr::Location;
using cntrtool::locateShape;
using cntrtool::ShapeLocations;
using cntrtool_testing::shapesOf;

namespace {

using Points = std::vector<xcVector<2>>;
using Locations = std::vector<Location>;

constexpr Location kIn = Location::inside;
constexpr Location kOn = Location::boundary;
constexpr Location kOut = Location::outside;

ShapeLocations locateIn(const std::string& shape, const Points& points, double distance = 0.0) {
    return locateShape(shapesOf("{\"shapes\": [" + shape + "]}").at(0), points, distance);
}

// A 10 x 10 square with a 6 x 6 hole and a 2 x 2 island in the hole, all centred on (5, 5).
const char* const kSquareWithIsland = R"({"kind": "region", "label": 4,
    "points": [[0, 0], [10, 0], [10, 10], [0, 10]],
    "holes": [{"points": [[2, 2], [8, 2], [8, 8], [2, 8]],
               "holes": [{"points": [[4, 4], [6, 4], [6, 6], [4, 6]]}]}]})";

}  // namespace

TEST(Locate, RegionWithAHoleAndAnIsland) {
    const Points points = {{1, 1},   // between the outline and the hole
                           {3, 3},   // in the hole, off the island
                           {5, 5},   // on the island
                           {10, 5},  // on the outline's right edge
                           {2, 5},   // on the hole's left edge
                           {6, 6},   // a corner of the island
                           {-1, 5}, {12, 12}};
    const ShapeLocations s = locateIn(kSquareWithIsland, points);
    EXPECT_EQ(s.index, 0u);
    EXPECT_EQ(s.kind, cntrtool::ShapeKind::region);
    EXPECT_EQ(s.label, 4ul);
    ASSERT_TRUE(s.locations);
    EXPECT_EQ(*s.locations, (Locations{kIn, kOut, kIn, kOn, kOn, kOn, kOut, kOut}));
    EXPECT_EQ(s.unavailable, "");
}

TEST(Locate, BoundaryDistanceWidensTheOutlines) {
    // (1, 1) is 1 from the outline, (5, 5) 1 from the island's edges, (3, 5) 1 from the hole's
    // left edge and from the island's.
    const Points points = {{1, 1}, {5, 5}, {3, 5}, {-0.5, 5}};
    EXPECT_EQ(*locateIn(kSquareWithIsland, points, 0.5).locations,
              (Locations{kIn, kIn, kOut, kOn}));
    EXPECT_EQ(*locateIn(kSquareWithIsland, points, 1.0).locations, (Locations{kOn, kOn, kOn, kOn}));
    EXPECT_EQ(*locateIn(kSquareWithIsland, points, 0.25).locations,
              (Locations{kIn, kIn, kOut, kOut}));
}

TEST(Locate, ClosedContourBoundsItsPolygonAndAnOpenOneNothing) {
    // The triangle (0, 0), (4, 0), (0, 4): its hypotenuse is x + y = 4.
    const Points points = {{1, 1}, {2, 2}, {3, 3}, {0, 0}};
    const ShapeLocations closed = locateIn(
        R"({"kind": "contour", "closed": true, "points": [[0, 0], [4, 0], [0, 4]]})", points);
    EXPECT_EQ(*closed.locations, (Locations{kIn, kOn, kOut, kOn}));
    // Given with its closing vertex repeated, the same triangle.
    EXPECT_EQ(*locateIn(R"({"kind": "contour", "closed": true,
                            "points": [[0, 0], [4, 0], [0, 4], [0, 0]]})",
                        points)
                   .locations,
              (Locations{kIn, kOn, kOut, kOn}));
    const ShapeLocations open =
        locateIn(R"({"kind": "contour", "label": 2, "points": [[0, 0], [4, 0], [0, 4]]})", points);
    EXPECT_FALSE(open.locations);
    EXPECT_EQ(open.unavailable, "an open contour bounds no area");
    EXPECT_EQ(open.label, 2ul);
    EXPECT_FALSE(cntrtool::multiPolygonOf(shapesOf(R"({"shapes": [{"kind": "contour",
        "points": [[0, 0], [1, 0]]}]})")[0]));
}

TEST(Locate, RegionSetIsTheUnionOfDisjointRegions) {
    const ShapeLocations s = locateIn(R"({"kind": "regionset", "label": 7, "regions": [
        {"points": [[0, 0], [2, 0], [2, 2], [0, 2]]},
        {"label": 1, "points": [[5, 5], [7, 5], [7, 7], [5, 7]],
         "holes": [{"points": [[5.5, 5.5], [6.5, 5.5], [6.5, 6.5], [5.5, 6.5]]}]}]})",
                                      {{1, 1}, {5.25, 6}, {6, 6}, {3, 3}, {2, 1}, {6.5, 6}});
    EXPECT_EQ(s.label, 7ul);
    EXPECT_EQ(*s.locations, (Locations{kIn, kIn, kOut, kOut, kOn, kOn}));
}

TEST(Locate, OverlapsAndRefusedHolesCountByTheEvenOddRule) {
    // Two squares of a set overlapping in [2, 4] x [2, 4]: a point there lies inside two
    // outlines, an even number.
    const ShapeLocations overlap = locateIn(R"({"kind": "regionset", "regions": [
        {"points": [[0, 0], [4, 0], [4, 4], [0, 4]]},
        {"points": [[2, 2], [6, 2], [6, 6], [2, 6]]}]})",
                                            {{1, 1}, {3, 3}, {5, 5}, {3, 2}});
    EXPECT_EQ(*overlap.locations, (Locations{kIn, kOut, kIn, kOn}));
    // A hole crossing the outline's right edge, which the library refuses and the tool keeps:
    // (7, 4) lies in the outline and the hole, (9, 4) in the hole alone.
    const auto shapes = shapesOf(R"({"shapes": [{"kind": "region",
        "points": [[0, 0], [8, 0], [8, 8], [0, 8]],
        "holes": [{"points": [[6, 2], [10, 2], [10, 6], [6, 6]]}]}]})");
    ASSERT_EQ(shapes[0].refused.size(), 1u);
    const ShapeLocations crossing = locateShape(shapes[0], {{1, 1}, {7, 4}, {9, 4}, {8, 4}}, 0);
    EXPECT_EQ(*crossing.locations, (Locations{kIn, kOut, kIn, kOn}));
    EXPECT_EQ(cntrtool::multiPolygonOf(shapes[0])->memberCount(), 2u);
}

TEST(Locate, EdgeletRegionAndEmptyPointList) {
    const ShapeLocations s = locateIn(
        R"({"kind": "region", "edgelet": true, "points": [[0, 0], [4, 0], [4, 4], [0, 4]]})",
        {{2, 2}, {4, 4}, {5, 2}});
    EXPECT_TRUE(s.edgelet);
    EXPECT_EQ(*s.locations, (Locations{kIn, kOn, kOut}));
    EXPECT_TRUE(locateIn(kSquareWithIsland, {}).locations->empty());
}

TEST(Locate, TableHasOneLinePerShapeAndPoint) {
    const auto shapes = shapesOf(R"({"shapes": [
        {"kind": "region", "label": 3, "points": [[0, 0], [4, 0], [0, 4]]},
        {"kind": "contour", "points": [[0, 0], [4, 0]]}]})");
    const Points points = {{1, 0.5}, {12.25, -3}};
    const std::vector<ShapeLocations> rows = {locateShape(shapes[0], points, 0),
                                              locateShape(shapes[1], points, 0)};
    std::ostringstream out;
    cntrtool::printLocationTable(out, points, rows, 6);
    EXPECT_EQ(out.str(),
              "shape  kind     label  point      x    y  location\n"
              "    0  region       3      0      1  0.5  inside\n"
              "    0  region       3      1  12.25   -3  outside\n"
              "    1  contour      0      0      1  0.5  n/a\n"
              "    1  contour      0      1  12.25   -3  n/a\n");
    std::ostringstream none;
    cntrtool::printLocationTable(none, {}, rows, 6);
    EXPECT_EQ(none.str(), "shape  kind     label  point  x  y  location\n");
}

TEST(Locate, JsonReportListsThePointsOnceAndTheAnswersPerShape) {
    const auto shapes = shapesOf(R"({"shapes": [
        {"kind": "region", "label": 3, "points": [[0, 0], [4, 0], [0, 4]]},
        {"kind": "contour", "points": [[0, 0], [4, 0]]}]})");
    const Points points = {{1, 0.5}, {0.1, 0}};
    const std::vector<ShapeLocations> rows = {locateShape(shapes[0], points, 0.25),
                                              locateShape(shapes[1], points, 0.25)};
    const cntrtool::Json report = cntrtool::locationReport("s.json", "p.csv", 0.25, points, rows);
    EXPECT_EQ(cntrtool::prettyJson(report),
              "{\n"
              "  \"file\": \"s.json\",\n"
              "  \"points_file\": \"p.csv\",\n"
              "  \"boundary_distance\": 0.25,\n"
              "  \"points\": [[1.0, 0.5], [0.1, 0.0]],\n"
              "  \"shapes\": [\n"
              "    {\n"
              "      \"index\": 0,\n"
              "      \"kind\": \"region\",\n"
              "      \"edgelet\": false,\n"
              "      \"label\": 3,\n"
              "      \"locations\": [\"inside\", \"boundary\"]\n"
              "    },\n"
              "    {\n"
              "      \"index\": 1,\n"
              "      \"kind\": \"contour\",\n"
              "      \"edgelet\": false,\n"
              "      \"label\": 0,\n"
              "      \"locations\": null,\n"
              "      \"unavailable\": {\n"
              "        \"locations\": \"an open contour bounds no area\"\n"
              "      }\n"
              "    }\n"
              "  ]\n"
              "}\n");
}

TEST(Locate, LocationNames) {
    EXPECT_STREQ(cntrtool::locationName(kIn), "inside");
    EXPECT_STREQ(cntrtool::locationName(kOn), "boundary");
    EXPECT_STREQ(cntrtool::locationName(kOut), "outside");
}
