#include "repair.h"

#include <regex>

#include <gtest/gtest.h>

#include "check.h"
#include "tool_testing.h"

using cntrtool::repairShape;
using cntrtool::RepairResult;
using cntrtool_testing::shapesOf;

namespace {

cntrtool::Shape shapeOf(const std::string& shape) {
    return shapesOf("{\"shapes\": [" + shape + "]}").at(0);
}

}  // namespace

TEST(Repair, ShapesThatNeedNothingAreKept) {
    const cntrtool::Shape square = shapeOf(R"({"kind": "region", "points": [[0, 0], [1, 0], [1, 1]]})");
    EXPECT_FALSE(cntrtool::needsRepair(square));
    const RepairResult r = repairShape(square, false);
    EXPECT_FALSE(r.changed);
    EXPECT_FALSE(r.failed);
    EXPECT_EQ(r.shape.region.rep(), square.region.rep());
    EXPECT_TRUE(r.notes.empty());
}

TEST(Repair, ContoursAreNeverChanged) {
    const cntrtool::Shape zigzag =
        shapeOf(R"({"kind": "contour", "points": [[0, 0], [2, 2], [2, 0], [0, 2]]})");
    const RepairResult r = repairShape(zigzag, false);
    EXPECT_FALSE(r.changed);
    EXPECT_EQ(r.shape.contour.rep(), zigzag.contour.rep());
    EXPECT_EQ(r.notes, std::vector<std::string>{
                           "shape 0: the contour crosses itself; only regions are repaired"});
}

TEST(Repair, BowTieIsRegularisedWithItsLabel) {
    // The edges (0,0)-(2,2) and (2,0)-(0,2) cross at (1,1); the walk goes round both lobes:
    // 2 + 2 triangles of area 1 each.
    const cntrtool::Shape bowTie =
        shapeOf(R"({"kind": "region", "label": 4, "points": [[0, 0], [2, 2], [2, 0], [0, 2]]})");
    ASSERT_TRUE(cntrtool::needsRepair(bowTie));
    for (bool outerHull : {false, true}) {
        const RepairResult r = repairShape(bowTie, outerHull);
        ASSERT_TRUE(r.changed);
        EXPECT_EQ(r.shape.region->label(), 4ul);
        EXPECT_NEAR(r.shape.region->area(false), 2.0, 1e-12);
        EXPECT_EQ(r.shape.region->points().size(), 6u);
    }
}

TEST(Repair, HolesAreGivenBackToTheRepairedOutline) {
    // A bow-tie whose right lobe holds a small hole.
    const cntrtool::Shape s = shapeOf(R"({"kind": "region",
        "points": [[0, 0], [8, 8], [8, 0], [0, 8]],
        "holes": [{"points": [[6, 3], [7, 3], [7, 5], [6, 5]]}]})");
    const RepairResult r = repairShape(s, false);
    ASSERT_TRUE(r.changed);
    ASSERT_EQ(r.shape.region->holes().size(), 1u);
    EXPECT_TRUE(r.shape.refused.empty());
    EXPECT_TRUE(r.notes.empty());
}

TEST(Repair, CrossingRegionsOfASetAreMerged) {
    // Squares [0,4]^2 and [2,6]x[1,5] cross; the triangle far away does not.
    const cntrtool::Shape s = shapeOf(R"({"kind": "regionset", "label": 3, "regions": [
        {"points": [[0, 0], [4, 0], [4, 4], [0, 4]]}, {"points": [[2, 1], [6, 1], [6, 5], [2, 5]]},
        {"points": [[10, 0], [11, 0], [11, 1]]}]})");
    const RepairResult r = repairShape(s, false);
    ASSERT_TRUE(r.changed) << (r.notes.empty() ? "" : r.notes[0]);
    const auto regions = cntrtool::regionsOf(*r.shape.set);
    ASSERT_EQ(regions.size(), 2u);
    EXPECT_EQ(regions[0]->label(), 3ul);
    EXPECT_FALSE(r.shape.set->isSelfIntersecting());
    // The merged outline still reaches every corner of both squares.
    for (const auto& member : cntrtool::regionsOf(*s.set))
        for (const xcVector<2>& p : member->points())
            EXPECT_LE(r.shape.set->distToPoint(p, false, false, true), 1e-6);
}

TEST(Repair, ResultsThatLeaveVerticesOutAreRefused) {
    // The library's merge of this cross of two rectangles walks an inner loop round part of
    // their overlap, leaving corners of both outside: the tool keeps the set as it was.
    const cntrtool::Shape s = shapeOf(R"({"kind": "regionset", "regions": [
        {"points": [[21, -27], [27, -27], [27, -25], [21, -25]]},
        {"points": [[23, -29], [25, -29], [25, -23], [23, -23]]}]})");
    const RepairResult r = repairShape(s, false);
    EXPECT_TRUE(r.failed);
    EXPECT_FALSE(r.changed);
    EXPECT_EQ(r.shape.set.rep(), s.set.rep());
    ASSERT_EQ(r.notes.size(), 1u);
    EXPECT_EQ(r.notes[0].rfind("shape 0: cannot be repaired: the library's result leaves out ", 0), 0u)
        << r.notes[0];
}

TEST(Repair, RefusalNamesTheRegionOfTheSetThatLosesVertices) {
    // The same cross after a square that crosses nothing: the merge leaves corners of both
    // arms out, and the first arm is now region 1 of the set.
    const cntrtool::Shape s = shapeOf(R"({"kind": "regionset", "regions": [
        {"points": [[0, 0], [1, 0], [1, 1], [0, 1]]},
        {"points": [[21, -27], [27, -27], [27, -25], [21, -25]]},
        {"points": [[23, -29], [25, -29], [25, -23], [23, -23]]}]})");
    const RepairResult r = repairShape(s, false);
    EXPECT_TRUE(r.failed);
    ASSERT_EQ(r.notes.size(), 1u);
    EXPECT_EQ(r.notes[0], "shape 0: cannot be repaired: the library's result leaves out 2 of the "
                          "4 vertices of region 1 (its walk closed an inner loop)");
}

TEST(Repair, RefusalOfARegionNamesItsOutline) {
    // A traced outline (annotation 229 of examples/data/coco.json) whose regularisation walks
    // an inner loop: the message says whose vertices are left out.
    const cntrtool::Shape s = shapeOf(R"({"kind": "region", "points": [[421.11, 103.61],
        [399.83, 109.09], [397.37, 118.8], [375.1, 134.44], [362.65, 126.46], [336.79, 82.09],
        [352.03, 103.58], [353.82, 120.07], [346.35, 71.0], [361.88, 70.08], [375.51, 50.58],
        [396.75, 64.81], [407.24, 57.26], [413.84, 87.9]]})");
    const RepairResult r = repairShape(s, false);
    EXPECT_TRUE(r.failed);
    ASSERT_EQ(r.notes.size(), 1u);
    EXPECT_TRUE(std::regex_match(r.notes[0],
                                 std::regex("shape 0: cannot be repaired: the library's result "
                                            "leaves out [1-9][0-9]* of the 14 vertices of the "
                                            "outline \\(its walk closed an inner loop\\)")))
        << r.notes[0];
}

TEST(Repair, RefusalsOfTheLibraryKeepTheShape) {
    // A pentagram: every edge is crossed by two others, so no walk can start.
    const cntrtool::Shape s = shapeOf(R"({"kind": "region", "points":
        [[0, 0], [25, 15], [-5, 15], [20, 0], [10, 25]]})");
    const RepairResult r = repairShape(s, true);
    EXPECT_TRUE(r.failed);
    EXPECT_EQ(r.shape.region.rep(), s.region.rep());
    EXPECT_EQ(r.notes, std::vector<std::string>{"shape 0: cannot be repaired: invalid contour"});
}

TEST(Repair, SetWithAMemberTooShortToMeasureIsKept) {
    // The library refuses to test a set whose member has one vertex (EmptyContour, error
    // 0x10004680, no message): the set counts as needing repair, and the repair fails with
    // the library's reason instead of ending the run.
    const cntrtool::Shape s = shapeOf(R"({"kind": "regionset", "regions": [
        {"points": [[4, -13], [10, -13], [10, -7], [4, -7]]},
        {"points": [[241121, -25]]},
        {"points": [[23, -29], [25, -29], [25, -23], [23, -23]]}]})");
    EXPECT_TRUE(cntrtool::needsRepair(s));
    for (bool outerHull : {false, true}) {
        const RepairResult r = repairShape(s, outerHull);
        EXPECT_TRUE(r.failed);
        EXPECT_FALSE(r.changed);
        EXPECT_EQ(r.shape.set.rep(), s.set.rep());
        EXPECT_EQ(r.notes,
                  std::vector<std::string>{"shape 0: cannot be repaired: error 0x10004680"});
    }
}
