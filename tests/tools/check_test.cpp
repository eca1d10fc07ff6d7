#include "check.h"

#include <sstream>

#include <gtest/gtest.h>

#include "tool_testing.h"

using cntrtool::checkShape;
using cntrtool::Problem;
using cntrtool_testing::shapesOf;

namespace {

// "code: text" of each problem of the single shape in `json`.
std::vector<std::string> problemsOf(const std::string& shape) {
    std::vector<std::string> out;
    for (const Problem& p : checkShape(shapesOf("{\"shapes\": [" + shape + "]}").at(0)))
        out.push_back(p.code + ": " + p.text);
    return out;
}

using Lines = std::vector<std::string>;

}  // namespace

TEST(Check, CleanShapesHaveNoProblems) {
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [4, 0], [4, 4], [0, 4]],
        "holes": [{"points": [[1, 1], [2, 1], [2, 2], [1, 2]]}]})"), Lines{});
    EXPECT_EQ(problemsOf(R"({"kind": "contour", "points": [[0, 0], [4, 0]]})"), Lines{});
}

TEST(Check, TooFewVerticesStopsTheOutlineChecks) {
    EXPECT_EQ(problemsOf(R"({"kind": "contour", "points": [[0, 0]]})"),
              Lines{"too-few-vertices: the outline has 1 vertices (a contour needs 2)"});
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [0, 0]]})"),
              Lines{"too-few-vertices: the outline has 2 vertices (a region needs 3)"});
}

TEST(Check, RepeatedVerticesIncludeTheClosingPair) {
    // A closed outline that repeats its first vertex at the end: vertex 3 -> vertex 0.
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [4, 0], [4, 4], [0, 0]]})"),
              Lines{"repeated-vertex: the outline repeats vertex 3 at vertex 0 (1 repeated in all)"});
    // An open contour has no closing pair.
    EXPECT_EQ(problemsOf(R"({"kind": "contour", "points": [[0, 0], [4, 0], [0, 0]]})"), Lines{});
    EXPECT_EQ(problemsOf(R"({"kind": "contour", "points": [[0, 0], [0, 0], [4, 0], [4, 0]]})"),
              Lines{"repeated-vertex: the outline repeats vertex 0 at vertex 1 (2 repeated in all)"});
}

TEST(Check, CollinearRegionHasZeroArea) {
    const Lines p = problemsOf(R"({"kind": "region", "points": [[0, 0], [1, 1], [3, 3]]})");
    ASSERT_FALSE(p.empty());
    EXPECT_EQ(p[0], "zero-area: the outline encloses no area (its vertices lie on one line)");
}

TEST(Check, SelfCrossingHole) {
    // A bow-tie: its two lobes cancel, so its net area is 0 as well.
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [10, 0], [10, 10], [0, 10]],
        "holes": [{"points": [[2, 2], [4, 4], [4, 2], [2, 4]]}]})"),
              (Lines{"degenerate-area: hole 0 encloses no area (its net area is 0): it has no "
                     "centroid",
                     "self-crossing: hole 0 crosses itself"}));
}

TEST(Check, HoleOutsideAndHolesCrossing) {
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [10, 0], [10, 10], [0, 10]],
        "holes": [{"points": [[20, 2], [24, 2], [24, 4]]},
                  {"points": [[1, 1], [5, 1], [5, 5], [1, 5]]},
                  {"points": [[3, 3], [7, 3], [7, 7], [3, 7]]}]})"),
              (Lines{"hole-outside: hole 0 lies outside the outline",
                     "holes-cross: holes 1 and 2 cross each other"}));
}

TEST(Check, HoleCrossingTheOutlineOfASetMember) {
    EXPECT_EQ(problemsOf(R"({"kind": "regionset", "regions": [
        {"points": [[0, 0], [8, 0], [8, 8], [0, 8]],
         "holes": [{"points": [[6, 2], [10, 2], [10, 6], [6, 6]]}]}]})"),
              Lines{"hole-crosses-outline: region 0, hole 0 crosses the outline of region 0"});
}

TEST(Check, RegionsOfASetCrossing) {
    EXPECT_EQ(problemsOf(R"({"kind": "regionset", "regions": [
        {"points": [[0, 0], [4, 0], [4, 4], [0, 4]]},
        {"points": [[10, 0], [14, 0], [14, 4]]},
        {"points": [[2, 2], [6, 2], [6, 6], [2, 6]]}]})"),
              Lines{"regions-cross: regions 0 and 2 cross each other"});
}

TEST(Check, EmptySet) {
    EXPECT_EQ(problemsOf(R"({"kind": "regionset", "regions": []})"),
              Lines{"empty-set: the set holds no regions"});
}

TEST(Check, ReportLinesAndSummary) {
    std::vector<Problem> problems = {{3, cntrtool::ShapeKind::region, 7, "self-crossing", "x"},
                                     {3, cntrtool::ShapeKind::region, 7, "zero-area", "y"},
                                     {5, cntrtool::ShapeKind::contour, 0, "repeated-vertex", "z"}};
    std::ostringstream out;
    cntrtool::printProblems(out, problems, 9);
    EXPECT_EQ(out.str(),
              "shape 3 (region, label 7): self-crossing: x\n"
              "shape 3 (region, label 7): zero-area: y\n"
              "shape 5 (contour, label 0): repeated-vertex: z\n"
              "3 problems in 2 of 9 shapes\n");
    std::ostringstream none;
    cntrtool::printProblems(none, {}, 4);
    EXPECT_EQ(none.str(), "no problems in 4 shapes\n");
}

TEST(Check, DegenerateAreaOfOutAndBackAndTinyOutlines) {
    EXPECT_EQ(problemsOf(R"({"kind": "contour", "closed": true,
        "points": [[0, 0], [5, 0], [10, 0], [5, 1e-9]]})"),
              Lines{"degenerate-area: the outline encloses an area of 5e-09, below the library's "
                    "centroid threshold (cross products summing to within 1e-6 of 0): it has no "
                    "centroid"});
    EXPECT_EQ(problemsOf(R"({"kind": "contour", "closed": true,
        "points": [[0, 0], [5, 0], [10, 0], [5, 0]]})"),
              Lines{"degenerate-area: the outline encloses no area (its net area is 0): it has no "
                    "centroid"});
    // 0.0007 square: area 4.9e-7, under the threshold; a 0.001 square (1e-6) is not, though
    // its principal moments (1e-12 / 12) are too small for the library's moment ellipse.
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0.49965, 0.49965],
        [0.50035, 0.49965], [0.50035, 0.50035], [0.49965, 0.50035]]})"),
              Lines{"degenerate-area: the outline encloses an area of 4.9e-07, below the "
                    "library's centroid threshold (cross products summing to within 1e-6 of 0): "
                    "it has no centroid"});
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0.4995, 0.4995], [0.5005, 0.4995],
        [0.5005, 0.5005], [0.4995, 0.5005]]})"),
              Lines{"measure-failed: moment_ellipse: inertia data with a zero principal moment has "
                    "no ellipse"});
    // Collinear vertices are zero-area already; an open contour encloses nothing by design.
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [1, 1], [3, 3]]})").size(), 1u);
    EXPECT_EQ(problemsOf(R"({"kind": "contour", "points": [[0, 0], [5, 0], [0, 0]]})"), Lines{});
}

TEST(Check, TouchingHoleIsNotACrossing) {
    // A diamond hole whose left and right corners touch the square's sides.
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [10, 0], [10, 10], [0, 10]],
        "holes": [{"points": [[0, 5], [5, 2], [10, 5], [5, 8]]}]})"),
              Lines{"touching-hole: hole 0 touches the outline at single points (the library "
                    "refuses such a hole; many toolkits accept it)"});
    // Poking out through the left side, or running along it: crossings.
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [10, 0], [10, 10], [0, 10]],
        "holes": [{"points": [[-1, 5], [5, 2], [5, 8]]}]})"),
              Lines{"hole-crosses-outline: hole 0 crosses the outline"});
    EXPECT_EQ(problemsOf(R"({"kind": "region", "points": [[0, 0], [10, 0], [10, 10], [0, 10]],
        "holes": [{"points": [[0, 2], [5, 5], [0, 8]]}]})"),
              Lines{"hole-crosses-outline: hole 0 crosses the outline"});
    // A set member's hole touching at a vertex of the outline.
    EXPECT_EQ(problemsOf(R"({"kind": "regionset", "regions": [
        {"points": [[0, 0], [10, 0], [10, 10], [0, 10]],
         "holes": [{"points": [[0, 0], [4, 2], [2, 4]]}]}]})"),
              Lines{"touching-hole: region 0, hole 0 touches the outline of region 0 at single "
                    "points (the library refuses such a hole; many toolkits accept it)"});
}

TEST(Check, NonFiniteResultNamesTheMeasures) {
    // A square of side 1e200: its area, 1e400, exceeds the largest double.
    const Lines p = problemsOf(R"({"kind": "region", "points": [[0, 0], [1e200, 0],
        [1e200, 1e200], [0, 1e200]]})");
    ASSERT_EQ(p.size(), 1u);
    EXPECT_EQ(p[0].rfind("non-finite-result: not finite: ", 0), 0u);
    EXPECT_NE(p[0].find(" area,"), std::string::npos);
    EXPECT_NE(p[0].find("(the coordinates are too large for double precision)"), std::string::npos);
}
