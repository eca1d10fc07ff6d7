#include "measure.h"

#include <cmath>
#include <sstream>

#include <gtest/gtest.h>

#include "json_text.h"
#include "tool_testing.h"

using cntrtool::measureShape;
using cntrtool::Measures;
using cntrtool_testing::shapesOf;

namespace {

Measures measureOf(const std::string& shape) {
    return measureShape(shapesOf("{\"shapes\": [" + shape + "]}").at(0));
}

constexpr double kEps = 1e-9;

}  // namespace

TEST(Measure, SquareRegion) {
    // Square [0,2]x[0,2]: area 4, centroid (1,1), central moments 2^4 / 12 = 4/3 on both axes.
    const Measures m = measureOf(R"({"kind": "region", "label": 3,
        "points": [[0, 0], [2, 0], [2, 2], [0, 2]]})");
    EXPECT_EQ(m.label, 3ul);
    EXPECT_EQ(m.vertices, 4u);
    EXPECT_NEAR(*m.length, 8.0, kEps);
    EXPECT_NEAR(*m.area, 4.0, kEps);
    EXPECT_NEAR(*m.areaWithoutHoles, 4.0, kEps);
    EXPECT_NEAR(m.centroid->x(), 1.0, kEps);
    EXPECT_NEAR(m.inertia->element(0, 0), 4.0 / 3.0, kEps);
    EXPECT_NEAR(m.inertia->element(0, 1), 0.0, kEps);
    EXPECT_NEAR(*m.hullArea, 4.0, kEps);
    EXPECT_NEAR(*m.diameter, std::sqrt(8.0), kEps);
    EXPECT_NEAR(m.fittedEllipse->r1, std::sqrt(2.0), kEps);  // circle through the corners
    EXPECT_FALSE(*m.selfIntersecting);
    // 4 vertices are too few for the ellipse fit: the circle, whose rotation means nothing.
    EXPECT_TRUE(m.fitIsCircle);
    ASSERT_EQ(m.failures.size(), 1u);
    EXPECT_EQ(m.failures[0].field, "fitted_ellipse.rotation_deg");
}

TEST(Measure, HolesRemoveAreaAndTheInertiaIsRefused) {
    // 4x4 square minus the 1x1 hole [1,2]x[1,2]: area 15, centroid (16 (2,2) - 1 (1.5,1.5)) / 15.
    const Measures m = measureOf(R"({"kind": "region", "points": [[0, 0], [4, 0], [4, 4], [0, 4]],
        "holes": [{"points": [[1, 1], [2, 1], [2, 2], [1, 2]]}]})");
    EXPECT_NEAR(*m.area, 15.0, kEps);
    EXPECT_NEAR(*m.areaWithoutHoles, 16.0, kEps);
    EXPECT_NEAR(m.centroid->x(), (32.0 - 1.5) / 15.0, kEps);
    EXPECT_FALSE(m.inertia);
    EXPECT_FALSE(m.momentEllipse);
    ASSERT_EQ(m.failures.size(), 3u);
    EXPECT_EQ(m.failures[0].field, "inertia");
    EXPECT_EQ(m.failures[0].message, "inertiaMatrix(considerHoles) is not implemented");
    EXPECT_EQ(m.failures[1].field, "moment_ellipse");
    EXPECT_EQ(m.failures[1].message, "needs the inertia, which is not available");
    EXPECT_EQ(m.failures[2].field, "fitted_ellipse.rotation_deg");
}

TEST(Measure, CentroidWithHolesIsTheSameEveryTime) {
    // The library fills the with-holes centroid slot only through copies; measuring a fresh
    // copy each time keeps a second measure of the same object right.
    const auto shapes = shapesOf(R"({"shapes": [{"kind": "region",
        "points": [[0, 0], [4, 0], [4, 4], [0, 4]], "holes": [{"points": [[1, 1], [2, 1], [2, 2], [1, 2]]}]}]})");
    const Measures first = measureShape(shapes[0]);
    const Measures second = measureShape(shapes[0]);
    EXPECT_EQ(*first.centroid, *second.centroid);
    EXPECT_NEAR(second.centroid->y(), (32.0 - 1.5) / 15.0, kEps);
}

TEST(Measure, RefusedHolesLeaveTheHoleMeasuresEmpty) {
    const Measures m = measureOf(R"({"kind": "region", "points": [[0, 0], [8, 0], [8, 8], [0, 8]],
        "holes": [{"points": [[6, 2], [10, 2], [10, 6], [6, 6]]}]})");
    EXPECT_FALSE(m.area);
    EXPECT_FALSE(m.centroid);
    EXPECT_FALSE(m.inertia);
    EXPECT_NEAR(*m.areaWithoutHoles, 64.0, kEps);
    EXPECT_EQ(m.holes, 1u);
    for (const char* field : {"area", "centroid", "inertia"})
        EXPECT_TRUE(cntrtool::hasFailure(m, field, cntrtool::Unavailable::refusedHoles)) << field;
}

TEST(Measure, OpenContourHasNoAreaAndAWireCentroid) {
    // Edges (0,0)-(4,0) and (4,0)-(4,2): midpoints (2,0) and (4,1) weighted 4 and 2.
    const Measures m = measureOf(R"({"kind": "contour", "points": [[0, 0], [4, 0], [4, 2]]})");
    EXPECT_FALSE(m.area);
    EXPECT_FALSE(m.inertia);
    EXPECT_NEAR(m.centroid->x(), (8.0 + 8.0) / 6.0, kEps);
    EXPECT_NEAR(m.centroid->y(), 2.0 / 6.0, kEps);
    EXPECT_NEAR(*m.length, 6.0, kEps);
}

TEST(Measure, ContourOfOneVertexHasNoMeasures) {
    const Measures m = measureOf(R"({"kind": "contour", "points": [[1, 1]]})");
    EXPECT_FALSE(m.length);
    EXPECT_FALSE(m.diameter);
    EXPECT_FALSE(m.selfIntersecting);
    EXPECT_EQ(m.vertices, 1u);
}

TEST(Measure, EmptySetAndSetLevelMeasures) {
    const Measures empty = measureOf(R"({"kind": "regionset", "regions": []})");
    EXPECT_NEAR(*empty.area, 0.0, kEps);
    EXPECT_FALSE(empty.centroid);
    EXPECT_FALSE(empty.hullArea);
    ASSERT_FALSE(empty.failures.empty());
    EXPECT_EQ(empty.failures[0].message, "the set holds no regions");

    // Unit squares at x 0 and x 3: areas add; the hull of all vertices is 4 x 1.
    const Measures m = measureOf(R"({"kind": "regionset", "regions": [
        {"points": [[0, 0], [1, 0], [1, 1], [0, 1]]}, {"points": [[3, 0], [4, 0], [4, 1], [3, 1]]}]})");
    EXPECT_NEAR(*m.area, 2.0, kEps);
    EXPECT_NEAR(m.centroid->x(), 2.0, kEps);
    EXPECT_NEAR(*m.hullArea, 4.0, kEps);
    EXPECT_NEAR(*m.length, 8.0, kEps);
    EXPECT_NEAR(*m.diameter, std::sqrt(17.0), kEps);
    EXPECT_FALSE(*m.selfIntersecting);
}

TEST(Measure, TableMarksMissingValues) {
    std::ostringstream out;
    cntrtool::printMeasureTable(out, {measureOf(R"({"kind": "contour", "points": [[1, 1]]})")});
    const std::string text = out.str();
    EXPECT_EQ(text.substr(0, text.find('\n')).rfind("index  kind", 0), 0u);
    EXPECT_NE(text.find("n/a"), std::string::npos);
    EXPECT_EQ(text.back(), '\n');
}

TEST(Measure, JsonReportUsesNullForMissingValues) {
    const cntrtool::Json j = cntrtool::measureReport(
        "f.json", {measureOf(R"({"kind": "contour", "label": 2, "points": [[0, 0], [3, 4]]})")});
    EXPECT_EQ(j["file"], "f.json");
    const cntrtool::Json& s = j["shapes"][0];
    EXPECT_EQ(s["label"], 2);
    EXPECT_EQ(s["length"], 5.0);
    EXPECT_TRUE(s["area"].is_null());
    EXPECT_TRUE(s["inertia"].is_null());
    EXPECT_EQ(s["self_intersecting"], false);
}

namespace {

// The report of one shape, as `measure --json` writes it and reads back.
cntrtool::Json reportOf(const Measures& m, int digits = 0) {
    return cntrtool::parseJson("r.json", cntrtool::prettyJson(cntrtool::measureReport("f", {m}, digits)))
        ["shapes"][0];
}

const char* const kMeasureFields[] = {"length",         "area",           "area_without_holes",
                                      "centroid",       "inertia",        "moment_ellipse",
                                      "fitted_ellipse", "hull_area",      "diameter",
                                      "self_intersecting"};

}  // namespace

TEST(Measure, CentroidBelowTheLibrarysThresholdIsNotAvailable) {
    // A 0.0007 square about (0.5, 0.5): area 4.9e-7, so its cross products sum to 9.8e-7, within
    // the library's 1e-6 of 0: the library's centroid would be (0, 0), not (0.5, 0.5).
    const Measures tiny = measureOf(R"({"kind": "region", "points": [[0.49965, 0.49965],
        [0.50035, 0.49965], [0.50035, 0.50035], [0.49965, 0.50035]]})");
    EXPECT_NEAR(*tiny.area, 4.9e-7, 1e-15);
    EXPECT_FALSE(tiny.centroid);
    EXPECT_TRUE(cntrtool::hasFailure(tiny, "centroid", cntrtool::Unavailable::convention));
    EXPECT_FALSE(tiny.momentEllipse);
    // The central moments do not depend on the centroid's convention: 0.0007^4 / 12 (to the
    // rounding of the sides, whose ends are 1e-17 apart from the decimal input).
    EXPECT_NEAR(tiny.inertia->element(0, 0), 2.401e-13 / 12, 1e-5 * 2.401e-13 / 12);
    const cntrtool::Json j = reportOf(tiny);
    EXPECT_TRUE(j["centroid"].is_null());
    EXPECT_NE(j["unavailable"]["centroid"].get<std::string>().find("(0, 0) by convention"),
              std::string::npos);

    // A 0.001 square: area 1e-6, cross products 2e-6, beyond the threshold: a true centroid.
    const Measures small = measureOf(R"({"kind": "region", "points": [[0.4995, 0.4995],
        [0.5005, 0.4995], [0.5005, 0.5005], [0.4995, 0.5005]]})");
    ASSERT_TRUE(small.centroid);
    EXPECT_NEAR(small.centroid->x(), 0.5, 1e-9);

    // An out-and-back closed contour encloses nothing; the bow-tie's lobes cancel.
    for (const char* shape :
         {R"({"kind": "contour", "closed": true, "points": [[0, 0], [5, 0], [10, 0], [5, 0]]})",
          R"({"kind": "region", "points": [[0, 0], [4, 4], [4, 0], [0, 4]]})"}) {
        const Measures m = measureOf(shape);
        EXPECT_EQ(*m.area, 0.0) << shape;
        EXPECT_FALSE(m.centroid) << shape;
    }
}

TEST(Measure, CentroidOfASetWithATinyMemberIsNotAvailable) {
    // The second region's centroid is the library's (0, 0), weighted by its area 4.9e-7.
    const Measures m = measureOf(R"({"kind": "regionset", "regions": [
        {"points": [[10, 10], [12, 10], [12, 12], [10, 12]]},
        {"points": [[0.49965, 0.49965], [0.50035, 0.49965], [0.50035, 0.50035], [0.49965, 0.50035]]}]})");
    EXPECT_FALSE(m.centroid);
    ASSERT_TRUE(cntrtool::hasFailure(m, "centroid", cntrtool::Unavailable::convention));
    EXPECT_EQ(reportOf(m)["unavailable"]["centroid"].get<std::string>().rfind("region 1: ", 0), 0u);
}

TEST(Measure, HugeCoordinatesGiveNonFiniteResultsReportedAsSuch) {
    // A square of side 1e200: its area 1e400 exceeds the largest double.
    const Measures m = measureOf(R"({"kind": "region", "points": [[0, 0], [1e200, 0],
        [1e200, 1e200], [0, 1e200]]})");
    ASSERT_TRUE(m.area);
    EXPECT_TRUE(std::isinf(*m.area));
    EXPECT_TRUE(cntrtool::hasFailure(m, "area", cntrtool::Unavailable::nonFinite));
    const cntrtool::Json j = reportOf(m);
    EXPECT_TRUE(j["area"].is_null());
    EXPECT_NE(j["unavailable"]["area"].get<std::string>().find("not finite"), std::string::npos);
    std::ostringstream table;
    cntrtool::printMeasureTable(table, {m});
    EXPECT_NE(table.str().find(" inf "), std::string::npos);
}

TEST(Measure, FitNamesTheCircleFallBackAndWhy) {
    // Five of the six vertices lie on one line: no ellipse passes near them all, and the
    // library gives its circle fit instead.
    const Measures m = measureOf(R"({"kind": "contour", "closed": true,
        "points": [[0, 0], [1, 0], [2, 0], [3, 0], [4, 0], [2, 1]]})");
    ASSERT_TRUE(m.fittedEllipse);
    EXPECT_TRUE(m.fitIsCircle);
    EXPECT_EQ(m.fittedEllipse->r1, m.fittedEllipse->r2);
    const cntrtool::Json fit = reportOf(m)["fitted_ellipse"];
    EXPECT_EQ(fit["fit"], "circle");
    EXPECT_TRUE(fit["rotation_deg"].is_null());
    EXPECT_EQ(fit["fallback_reason"], "the ellipse fit failed: ellipse fit: the points determine no ellipse");

    // Five points of the ellipse x^2/4 + y^2 = 1: the ellipse fit itself.
    const Measures e = measureOf(R"({"kind": "contour", "closed": true,
        "points": [[2, 0], [0, 1], [-2, 0], [0, -1], [1.2, 0.8]]})");
    EXPECT_FALSE(e.fitIsCircle);
    EXPECT_NEAR(e.fittedEllipse->r1, 2.0, 1e-9);
    EXPECT_NEAR(e.fittedEllipse->r2, 1.0, 1e-9);
    EXPECT_EQ(reportOf(e)["fitted_ellipse"]["fit"], "ellipse");
}

TEST(Measure, EveryFieldNotReportedHasItsReason) {
    const std::vector<std::string> shapes = {
        R"({"kind": "contour", "points": [[1, 1]]})",
        R"({"kind": "contour", "points": [[0, 0], [3, 4]]})",
        R"({"kind": "contour", "closed": true, "points": [[0, 0], [3, 4]]})",
        R"({"kind": "region", "points": [[0, 0], [2, 2]]})",
        R"({"kind": "region", "points": [[0, 0], [4, 4], [4, 0], [0, 4]]})",
        R"({"kind": "region", "points": [[0, 0], [1e200, 0], [1e200, 1e200], [0, 1e200]]})",
        R"({"kind": "region", "points": [[0, 0], [8, 0], [8, 8], [0, 8]],
            "holes": [{"points": [[6, 2], [10, 2], [10, 6], [6, 6]]}]})",
        R"({"kind": "region", "points": [[0, 0], [4, 0], [4, 4], [0, 4]],
            "holes": [{"points": [[0, 0], [4, 0], [4, 4], [0, 4]]}]})",
        R"({"kind": "regionset", "regions": []})",
    };
    for (const std::string& shape : shapes) {
        const cntrtool::Json j = reportOf(measureOf(shape));
        for (const char* field : kMeasureFields) {
            if (j[field].is_null()) {
                EXPECT_TRUE(j.contains("unavailable") && j["unavailable"].contains(field))
                    << field << " of " << shape;
            }
        }
    }
}

TEST(Measure, JsonNumbersReadBackExactlyOrToTheDigitsAsked) {
    // A right triangle with legs 1 and 1/3 (rounded): no field is a short decimal.
    const Measures m = measureOf(R"({"kind": "region",
        "points": [[0, 0], [1, 0], [0, 0.333333333333333314829616256247390992939472198486328125]]})");
    const cntrtool::Json exact = reportOf(m);
    EXPECT_EQ(exact["length"].get<double>(), *m.length);
    EXPECT_EQ(exact["area"].get<double>(), *m.area);
    EXPECT_EQ(exact["centroid"][1].get<double>(), m.centroid->y());
    EXPECT_EQ(exact["inertia"][0][1].get<double>(), m.inertia->element(0, 1));
    const cntrtool::Json rounded = reportOf(m, 3);
    EXPECT_EQ(rounded["area"].get<double>(), 0.167);  // 1/6
    EXPECT_EQ(rounded["centroid"][1].get<double>(), 0.111);  // 1/9
    std::ostringstream table;
    cntrtool::printMeasureTable(table, {m}, 3);
    EXPECT_NE(table.str().find(" 0.167 "), std::string::npos);
}
