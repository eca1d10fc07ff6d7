// The tool run as a whole, in this process: exit statuses, messages, outputs, round trips.
#include "commands.h"

#include <algorithm>
#include <regex>
#include <set>
#include <utility>

#include <gtest/gtest.h>

#include "shapes.h"
#include "tool_testing.h"

using cntrtool_testing::readFile;
using cntrtool_testing::runTool;
using cntrtool_testing::ScratchDir;

namespace {

const std::string kShapes = std::string(CNTRTOOL_DATA_DIR) + "/shapes.json";
const std::string kCoco = std::string(CNTRTOOL_DATA_DIR) + "/coco.json";

// Whether two regions have equal outlines, labels and holes, recursively.
bool sameRegion(const xcRegion& a, const xcRegion& b) {
    if (!(a == b) || a.label() != b.label() || a.holes().size() != b.holes().size())
        return false;
    for (std::size_t k = 0; k < a.holes().size(); ++k)
        if (!sameRegion(*a.holes()[k], *b.holes()[k]))
            return false;
    return true;
}

bool sameShape(const cntrtool::Shape& a, const cntrtool::Shape& b) {
    if (a.kind != b.kind || a.edgelet != b.edgelet)
        return false;
    switch (a.kind) {
        case cntrtool::ShapeKind::contour:
            return a.contour->points() == b.contour->points() &&
                   a.contour->isClosed() == b.contour->isClosed() &&
                   a.contour->label() == b.contour->label();
        case cntrtool::ShapeKind::region:
            return sameRegion(*a.region, *b.region);
        case cntrtool::ShapeKind::regionSet: {
            const auto ra = cntrtool::regionsOf(*a.set), rb = cntrtool::regionsOf(*b.set);
            if (ra.size() != rb.size())
                return false;
            for (std::size_t i = 0; i < ra.size(); ++i)
                if (!sameRegion(*ra[i], *rb[i]))
                    return false;
            return true;
        }
    }
    return false;
}

cntrtool::ShapeFile load(const std::string& path) {
    std::ostringstream warnings;
    return cntrtool::loadShapeFile(path, warnings);
}

}  // namespace

TEST(Commands, HelpAndVersion) {
    const auto help = runTool({});
    EXPECT_EQ(help.status, cntrtool::kExitOk);
    EXPECT_NE(help.out.find("usage: cntrtool COMMAND"), std::string::npos);
    EXPECT_EQ(runTool({"pack", "--help"}).out.rfind("usage: cntrtool pack", 0), 0u);
    EXPECT_TRUE(std::regex_match(runTool({"--version"}).out, std::regex("cntrtool [0-9]+\\.[0-9]+\\.[0-9]+\n")));
}

TEST(Commands, UsageErrorsExitWithTwo) {
    const auto r = runTool({"render", kShapes});
    EXPECT_EQ(r.status, cntrtool::kExitBadInput);
    EXPECT_EQ(r.err, "cntrtool: render needs -o OUT; see cntrtool render --help\n");
    EXPECT_EQ(r.out, "");
}

TEST(Commands, CheckExitsWithOneOnProblems) {
    EXPECT_EQ(runTool({"check", kShapes}).status, cntrtool::kExitProblems);
    ScratchDir dir;
    const std::string clean =
        dir.write("clean.json", R"({"shapes": [{"kind": "region", "points": [[0, 0], [1, 0], [1, 1]]}]})");
    const auto r = runTool({"check", clean});
    EXPECT_EQ(r.status, cntrtool::kExitOk);
    EXPECT_EQ(r.out, "no problems in 1 shapes\n");
}

TEST(Commands, BadInputWritesNoOutput) {
    ScratchDir dir;
    const std::string bad = dir.write("bad.json", R"({"shapes": [{"kind": "region", "points": [[0, 0], [1, NaN]]}]})");
    for (const char* command : {"pack", "repair", "render"}) {
        const auto r = runTool({command, bad, "-o", dir.file("out")});
        EXPECT_EQ(r.status, cntrtool::kExitBadInput) << command;
        EXPECT_EQ(r.err, "cntrtool: " + bad + ": shape 0: vertex 1 has a non-finite coordinate\n");
        EXPECT_EQ(dir.list(), std::vector<std::string>{"bad.json"}) << command;
    }
}

TEST(Commands, BadInputLeavesAnExistingOutputAlone) {
    ScratchDir dir;
    const std::string out = dir.write("out.svg", "old");
    const auto r = runTool({"render", dir.file("missing.json"), "-o", out});
    EXPECT_EQ(r.status, cntrtool::kExitBadInput);
    EXPECT_EQ(readFile(out), "old");
}

TEST(Commands, PackThenUnpackGivesBackEqualShapes) {
    ScratchDir dir;
    for (const std::string& input : {kShapes, kCoco}) {
        const auto packed = runTool({"pack", input, "-o", dir.file("a.xca")});
        ASSERT_NE(packed.status, cntrtool::kExitBadInput) << packed.err;
        ASSERT_EQ(runTool({"unpack", dir.file("a.xca"), "-o", dir.file("b.json")}).status,
                  cntrtool::kExitOk);
        const cntrtool::ShapeFile original = load(input);
        const cntrtool::ShapeFile archived = load(dir.file("a.xca"));
        const cntrtool::ShapeFile unpacked = load(dir.file("b.json"));
        ASSERT_EQ(original.shapes.size(), unpacked.shapes.size());
        for (std::size_t i = 0; i < original.shapes.size(); ++i) {
            // What an archive holds: the shapes as the library keeps them (refused holes are
            // left out, with exit status 1 and a warning).
            EXPECT_TRUE(sameShape(archived.shapes[i], unpacked.shapes[i])) << input << " " << i;
            if (original.shapes[i].refused.empty()) {
                EXPECT_TRUE(sameShape(original.shapes[i], unpacked.shapes[i])) << input << " " << i;
            }
        }
    }
}

// The shapes named by the lines of `text` that match `pattern` (its group 1 is the index).
std::set<int> shapesNamed(const std::string& text, const std::string& pattern) {
    std::set<int> out;
    const std::regex re(pattern);
    for (auto it = std::sregex_iterator(text.begin(), text.end(), re); it != std::sregex_iterator(); ++it)
        out.insert(std::stoi((*it)[1]));
    return out;
}

TEST(Commands, RepairWritesTheInputFormatAndLeavesOnlyWhatItNames) {
    ScratchDir dir;
    ASSERT_EQ(runTool({"pack", kCoco, "-o", dir.file("coco.xca")}).status, cntrtool::kExitOk);
    const std::pair<std::string, const char*> runs[] = {{kCoco, "r.json"},
                                                        {dir.file("coco.xca"), "r.xca"}};
    for (const auto& [input, output] : runs) {
        const auto r = runTool({"repair", input, "-o", dir.file(output)});
        EXPECT_NE(r.status, cntrtool::kExitBadInput) << r.err;
        const auto check = runTool({"check", dir.file(output)});
        // Whatever still crosses is what repair said it could not mend, and the other way round.
        const std::set<int> refused = shapesNamed(r.err, "shape ([0-9]+): cannot be repaired");
        EXPECT_EQ(shapesNamed(check.out, "shape ([0-9]+) [^\n]*: (self-crossing|regions-cross):"),
                  refused);
        EXPECT_EQ(r.status, refused.empty() ? cntrtool::kExitOk : cntrtool::kExitProblems);
    }
    EXPECT_EQ(load(dir.file("r.json")).format, cntrtool::FileFormat::coco);
    EXPECT_EQ(load(dir.file("r.xca")).format, cntrtool::FileFormat::archive);
    // Annotations that needed nothing are unchanged, with every other field of the file.
    const auto original = cntrtool::parseJson("a", readFile(kCoco));
    const auto repaired = cntrtool::parseJson("b", readFile(dir.file("r.json")));
    EXPECT_EQ(original["images"], repaired["images"]);
    EXPECT_EQ(original["annotations"][0], repaired["annotations"][0]);
    EXPECT_EQ(original["annotations"].size(), repaired["annotations"].size());
}

namespace {

// A file of n copies of one triangle, enough to show progress past 10,000 shapes.
std::string manyTriangles(int n) {
    std::string json = R"({"shapes": [)";
    for (int i = 0; i < n; ++i)
        json += std::string(i ? "," : "") + R"({"kind": "region", "points": [[0, 0], [1, 0], [1, 1]]})";
    return json + "]}";
}

}  // namespace

TEST(Commands, ProgressForLargeFiles) {
    ScratchDir dir;
    const std::string json = manyTriangles(10001);
    const auto r = runTool({"measure", dir.write("big.json", json)});
    EXPECT_EQ(r.status, cntrtool::kExitOk);
    EXPECT_TRUE(std::regex_search(r.err, std::regex("measured 10001 of 10001 shapes in [0-9.]+ s")))
        << r.err;
}

TEST(Commands, RepairProgressCountsTheShapesProcessed) {
    // Triangles that need no repair: the progress must not call them repaired.
    ScratchDir dir;
    const std::string json = manyTriangles(10001);
    const auto r = runTool({"repair", dir.write("big.json", json), "-o", dir.file("out.json")});
    EXPECT_EQ(r.status, cntrtool::kExitOk);
    EXPECT_TRUE(std::regex_search(r.err, std::regex("^processed 10001 of 10001 shapes in [0-9.]+ s")))
        << r.err;
    EXPECT_EQ(r.err.find("repaired"), std::string::npos) << r.err;
    EXPECT_EQ(r.out, "repaired 0 of 10001 shapes; wrote " + dir.file("out.json") + "\n");
}

TEST(Commands, OutputIsCheckedBeforeTheInputIsRead) {
    // The input is missing too: the message about the output shows that it was looked at first.
    ScratchDir dir;
    for (const char* command : {"repair", "render", "pack", "unpack"}) {
        const auto r = runTool({command, dir.file("missing.json"), "-o", dir.file("gone/out")});
        EXPECT_EQ(r.status, cntrtool::kExitBadInput);
        EXPECT_EQ(r.err, "cntrtool: " + dir.file("gone/out") + ": cannot write: the directory " +
                             dir.file("gone") + " does not exist\n")
            << command;
    }
}

TEST(Commands, DirectoryAsOutputIsCalledADirectory) {
    ScratchDir dir;
    const auto r = runTool({"repair", kShapes, "-o", dir.file("")});
    EXPECT_EQ(r.status, cntrtool::kExitBadInput);
    EXPECT_EQ(r.err, "cntrtool: " + dir.file("") + ": cannot write: is a directory\n");
}

TEST(Commands, DashWritesTheContentToStandardOutputAndTheSummaryToStandardError) {
    ScratchDir dir;
    const auto toFile = runTool({"repair", kShapes, "-o", dir.file("r.json")});
    const auto toOut = runTool({"repair", kShapes, "-o", "-"});
    EXPECT_EQ(toOut.status, toFile.status);
    EXPECT_EQ(toOut.out, readFile(dir.file("r.json")));
    EXPECT_NE(toOut.err.find("repaired 1 of 12 shapes, 3 could not be repaired; wrote -\n"),
              std::string::npos)
        << toOut.err;
    const auto packed = runTool({"pack", kShapes, "-o", "-"});
    ASSERT_EQ(runTool({"pack", kShapes, "-o", dir.file("a.xca")}).status, packed.status);
    EXPECT_EQ(packed.out, readFile(dir.file("a.xca")));
}

TEST(Commands, UnpackOfANonArchiveSaysSo) {
    ScratchDir dir;
    const std::string text = dir.write("notes.txt", "plain words");
    const auto r = runTool({"unpack", text, "-o", dir.file("out.json")});
    EXPECT_EQ(r.status, cntrtool::kExitBadInput);
    EXPECT_EQ(r.err, "cntrtool: " + text + ": not an archive (unpack reads what pack writes)\n");
}

TEST(Commands, EndlessInputStopsAtTheLimit) {
    const auto r = runTool({"measure", "/dev/zero", "--max-input", "100000"});
    EXPECT_EQ(r.status, cntrtool::kExitBadInput);
    EXPECT_EQ(r.err, "cntrtool: /dev/zero: the input has not ended: stopped after 100000 bytes; "
                     "the input limit is 100000 bytes (see --max-input)\n");
    EXPECT_EQ(r.out, "");
}

TEST(Commands, RepairOfCocoRewritesAreaAndBoxOfRepairedAnnotations) {
    // A bow-tie crossing at (1, 1): its two lobes are triangles of base 2 and height 1, area 1
    // each, inside the box from (0, 0) to (2, 2). The square after it needs nothing and keeps
    // its fields, however stale.
    ScratchDir dir;
    const std::string coco = dir.write("c.json", R"({"annotations": [
        {"id": 7, "category_id": 2, "segmentation": [[0, 0, 2, 2, 2, 0, 0, 2]], "area": 99,
         "bbox": [9, 9, 9, 9], "iscrowd": 0},
        {"id": 8, "segmentation": [[0, 0, 1, 0, 1, 1, 0, 1]], "area": 5, "bbox": [1, 2, 3, 4]}]})");
    const auto r = runTool({"repair", coco, "-o", dir.file("r.json")});
    ASSERT_EQ(r.status, cntrtool::kExitOk) << r.err;
    const auto repaired = cntrtool::parseJson("r.json", readFile(dir.file("r.json")));
    const auto& bowTie = repaired["annotations"][0];
    EXPECT_DOUBLE_EQ(bowTie["area"].get<double>(), 2.0);
    EXPECT_EQ(bowTie["bbox"], cntrtool::Json::parse("[0, 0, 2, 2]"));
    EXPECT_EQ(bowTie["id"], 7);
    EXPECT_EQ(bowTie["iscrowd"], 0);
    EXPECT_EQ(repaired["annotations"][1]["area"], 5);
    EXPECT_EQ(repaired["annotations"][1]["bbox"], cntrtool::Json::parse("[1, 2, 3, 4]"));
}

// A region whose holes nest `depth` deep, each a square inside the one before; the deepest
// repeats its first vertex.
std::string nestedHoles(int depth) {
    std::string hole;
    for (int k = depth; k >= 1; --k) {
        const std::string lo = std::to_string(k), hi = std::to_string(200 - k);
        const std::string repeat = k == depth ? "[" + lo + ", " + lo + "], " : "";
        hole = "{\"points\": [[" + lo + ", " + lo + "], " + repeat + "[" + hi + ", " + lo + "], [" +
               hi + ", " + hi + "], [" + lo + ", " + hi + "]]" +
               (hole.empty() ? "" : ", \"holes\": [" + hole + "]") + "}";
    }
    return R"({"shapes": [{"kind": "region", "points": [[0, 0], [200, 0], [200, 200], [0, 200]],
               "holes": [)" + hole + "]}]}";
}

TEST(Commands, DeepHolesAreNamedByTheirDepth) {
    ScratchDir dir;
    const auto r = runTool({"check", dir.write("deep.json", nestedHoles(10))});
    EXPECT_EQ(r.status, cntrtool::kExitProblems);
    EXPECT_EQ(r.out, "shape 0 (region, label 0): repeated-vertex: hole 0 (10 levels deep) repeats "
                     "vertex 0 at vertex 1 (1 repeated in all)\n1 problems in 1 of 1 shapes\n");
    const auto tooDeep = runTool({"measure", dir.write("deeper.json", nestedHoles(65))});
    EXPECT_EQ(tooDeep.status, cntrtool::kExitBadInput);
    EXPECT_EQ(tooDeep.err, "cntrtool: " + dir.file("deeper.json") +
                               ": shape 0, hole 0 (65 levels deep): holes nested deeper than 64 "
                               "levels\n");
}

TEST(Commands, RenderWritesItsPictureToStandardOutputAsToAFile) {
    // The picture drawn to "-" is the one drawn to a file, byte for byte, with its size and
    // background; the closing line goes to stderr.
    ScratchDir dir;
    const auto toFile = runTool({"render", kShapes, "-o", dir.file("s.svg"), "--width", "640"});
    const auto toOut = runTool({"render", kShapes, "-o", "-", "--width", "640", "--y-down"});
    const auto toOutUp = runTool({"render", kShapes, "--width=640", "-o", "-"});
    ASSERT_EQ(toFile.status, cntrtool::kExitOk) << toFile.err;
    ASSERT_EQ(toOutUp.status, cntrtool::kExitOk) << toOutUp.err;
    EXPECT_EQ(toOutUp.out, readFile(dir.file("s.svg")));
    EXPECT_NE(toOutUp.out.find("<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" "
                               "width=\"640\""),
              std::string::npos);
    EXPECT_NE(toOutUp.out.find("fill=\"#ffffff\""), std::string::npos);
    EXPECT_TRUE(std::regex_search(
        toOutUp.err, std::regex("drew 12 shapes \\([0-9]+ segments\\); wrote -\n$")))
        << toOutUp.err;
    // --y-down draws the same segments without the flip of the y axis.
    ASSERT_EQ(toOut.status, cntrtool::kExitOk) << toOut.err;
    EXPECT_NE(toOut.out, toOutUp.out);
    EXPECT_EQ(toOut.out.find("scale(1,-1)"), std::string::npos);
    EXPECT_NE(toOutUp.out.find("scale(1,-1)"), std::string::npos);
}

TEST(Commands, LocateAnswersEveryShapeForEveryPoint) {
    // A square [0, 4] x [0, 4] with the hole [1, 3] x [1, 3]: (0.5, 0.5) between them, (2, 2)
    // in the hole, (4, 2) on the right edge.
    ScratchDir dir;
    const std::string shapes = dir.write("s.json", R"({"shapes": [{"kind": "region", "label": 9,
        "points": [[0, 0], [4, 0], [4, 4], [0, 4]],
        "holes": [{"points": [[1, 1], [3, 1], [3, 3], [1, 3]]}]}]})");
    const std::string points = dir.write("p.csv", "0.5,0.5\n2,2\n4,2\n");
    const auto r = runTool({"locate", shapes, points});
    EXPECT_EQ(r.status, cntrtool::kExitOk) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out,
              "shape  kind    label  point    x    y  location\n"
              "    0  region      9      0  0.5  0.5  inside\n"
              "    0  region      9      1    2    2  outside\n"
              "    0  region      9      2    4    2  boundary\n");
    // Within 0.5 of an outline: (0.5, 0.5) too.
    const auto widened = runTool({"locate", shapes, points, "--json", "--boundary-distance=0.5"});
    EXPECT_EQ(widened.status, cntrtool::kExitOk) << widened.err;
    EXPECT_NE(widened.out.find("\"locations\": [\"boundary\", \"outside\", \"boundary\"]"),
              std::string::npos)
        << widened.out;
}

TEST(Commands, LocateOfBadInputWritesOneMessageAndNothingElse) {
    ScratchDir dir;
    const std::string shapes = dir.write("s.json", R"({"shapes": [{"kind": "region",
        "points": [[0, 0], [4, 0], [4, 4]]}]})");
    const std::string badShapes =
        dir.write("bad.json", R"({"shapes": [{"kind": "region", "points": [[0, 0], [1, NaN]]}]})");
    const std::string points = dir.write("p.csv", "1,1\n");
    const std::string nanPoint = dir.write("nan.json", "[[1, 1], [2, -Infinity]]");
    const std::string textPoint = dir.write("t.csv", "1,1\n2,two\n");
    // The limit lets the shape file through and stops the points file, which is read after it.
    const std::size_t limit = readFile(shapes).size();
    std::string manyLines;
    while (manyLines.size() <= limit)
        manyLines += "1,1\n";
    const std::string bigPoints = dir.write("big.csv", manyLines);
    const std::pair<std::vector<std::string>, std::string> runs[] = {
        {{"locate", shapes, nanPoint}, nanPoint + ": point 1 has a non-finite coordinate"},
        {{"locate", shapes, textPoint},
         textPoint + ": line 2: expected x,y (two numbers), not \"2,two\""},
        {{"locate", badShapes, points}, badShapes + ": shape 0: vertex 1 has a non-finite coordinate"},
        {{"locate", shapes, dir.file("none.csv")},
         dir.file("none.csv") + ": cannot open: No such file or directory"},
        {{"locate", shapes, points, "--boundary-distance", "-0.5"},
         "--boundary-distance needs a finite number from 0 up, not \"-0.5\"; see cntrtool locate "
         "--help"},
        {{"locate", shapes, bigPoints, "--max-input", std::to_string(limit)},
         bigPoints + ": too large: " + std::to_string(manyLines.size()) +
             " bytes; the input limit is " + std::to_string(limit) + " bytes (see --max-input)"}};
    for (const auto& [args, message] : runs) {
        const auto r = runTool(args);
        EXPECT_EQ(r.status, cntrtool::kExitBadInput) << message;
        EXPECT_EQ(r.out, "") << message;
        EXPECT_EQ(r.err, "cntrtool: " + message + "\n");
    }
}

TEST(Commands, LocateProgressCountsTheShapes) {
    ScratchDir dir;
    const auto r = runTool({"locate", dir.write("big.json", manyTriangles(10001)),
                            dir.write("p.csv", "0.5,0.25\n")});
    EXPECT_EQ(r.status, cntrtool::kExitOk);
    EXPECT_TRUE(std::regex_search(r.err, std::regex("located 10001 of 10001 shapes in [0-9.]+ s")))
        << r.err;
    // The triangle (0, 0), (1, 0), (1, 1) holds (0.5, 0.25): every line but the header says so.
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 10002);
    EXPECT_EQ(r.out.find("outside"), std::string::npos);
}
