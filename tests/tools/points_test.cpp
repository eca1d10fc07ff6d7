#include "points.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tool_testing.h"

using cntrtool::loadPointsFile;
using cntrtool::readPointsCsv;
using cntrtool_testing::inputErrorOf;
using cntrtool_testing::ScratchDir;

namespace {

using Points = std::vector<xcVector<2>>;

Points csv(const std::string& text) {
    return readPointsCsv("p.csv", text);
}

std::string csvError(const std::string& text) {
    return inputErrorOf([&] { csv(text); });
}

Points json(const std::string& text) {
    return cntrtool::readPointsJson("p.json", cntrtool::parseJson("p.json", text));
}

std::string jsonError(const std::string& text) {
    return inputErrorOf([&] { json(text); });
}

}  // namespace

TEST(PointsCsv, OnePointPerLineInOrder) {
    EXPECT_EQ(csv("1,2\n3.5,-4\n"), (Points{{1, 2}, {3.5, -4}}));
    // The last line needs no newline; spaces and tabs around the numbers do not count.
    EXPECT_EQ(csv("  1 ,\t2\n-0.25e1,+.5"), (Points{{1, 2}, {-2.5, 0.5}}));
    // 0.1 is read as the double nearest to it, as a JSON reader would.
    EXPECT_EQ(csv("0.1,1e-320\n"), (Points{{0.1, 1e-320}}));
}

TEST(PointsCsv, HeaderBlankLinesAndWindowsLineEnds) {
    EXPECT_EQ(csv("x,y\n1,2\n"), (Points{{1, 2}}));
    EXPECT_EQ(csv("X, Y\r\n1,2\r\n\r\n3,4\r\n"), (Points{{1, 2}, {3, 4}}));
    EXPECT_EQ(csv("\n\n x,y\n\n5,6\n\n"), (Points{{5, 6}}));
    EXPECT_EQ(csv("x,y\n"), Points{});
    EXPECT_EQ(csv(""), Points{});
    // Only the first line that is not blank may be the header.
    EXPECT_EQ(csvError("1,2\nx,y\n"), "p.csv: line 2: expected x,y (two numbers), not \"x,y\"");
}

TEST(PointsCsv, MalformedLinesAreNamed) {
    EXPECT_EQ(csvError("1,2\n3\n"), "p.csv: line 2: expected x,y (two numbers), not \"3\"");
    EXPECT_EQ(csvError("1,2,3\n"), "p.csv: line 1: expected x,y (two numbers), not \"1,2,3\"");
    EXPECT_EQ(csvError("1;2\n"), "p.csv: line 1: expected x,y (two numbers), not \"1;2\"");
    EXPECT_EQ(csvError("1,\n"), "p.csv: line 1: expected x,y (two numbers), not \"1,\"");
    EXPECT_EQ(csvError("1,2x\n"), "p.csv: line 1: expected x,y (two numbers), not \"1,2x\"");
    EXPECT_EQ(csvError("1,0x10\n"), "p.csv: line 1: expected x,y (two numbers), not \"1,0x10\"");
    EXPECT_EQ(csvError("1,1e\n"), "p.csv: line 1: expected x,y (two numbers), not \"1,1e\"");
    EXPECT_EQ(csvError("1,.\n"), "p.csv: line 1: expected x,y (two numbers), not \"1,.\"");
    EXPECT_EQ(csvError("x,z\n"), "p.csv: line 1: expected x,y (two numbers), not \"x,z\"");
    // Long lines are cut, control bytes shown as '?'.
    EXPECT_EQ(
        csvError(std::string("a\x01") + std::string(50, 'b') + "\n"),
        "p.csv: line 1: expected x,y (two numbers), not \"a?" + std::string(38, 'b') + "...\"");
}

TEST(PointsCsv, NonFiniteCoordinatesAreRefusedByPoint) {
    EXPECT_EQ(csvError("x,y\n1,2\nnan,2\n"), "p.csv: line 3: point 1 has a non-finite coordinate");
    EXPECT_EQ(csvError("1,-inf\n"), "p.csv: line 1: point 0 has a non-finite coordinate");
    EXPECT_EQ(csvError("Infinity,0\n"), "p.csv: line 1: point 0 has a non-finite coordinate");
    // Beyond the range of a double.
    EXPECT_EQ(csvError("0,1e999\n"), "p.csv: line 1: point 0 has a non-finite coordinate");
}

TEST(PointsJson, AnArrayOfPairsOrAnObjectWithPoints) {
    EXPECT_EQ(json("[[1, 2], [3.5, -4]]"), (Points{{1, 2}, {3.5, -4}}));
    EXPECT_EQ(json("[]"), Points{});
    EXPECT_EQ(json(R"({"version": 1, "points": [[0, 0.5]], "note": "ignored"})"),
              (Points{{0, 0.5}}));
}

TEST(PointsJson, Refusals) {
    const std::string shape =
        "p.json: a JSON points file must be an array of [x, y] pairs or an object with a "
        "\"points\" array";
    EXPECT_EQ(jsonError(R"({"shapes": []})"), shape);
    EXPECT_EQ(jsonError(R"({"points": {"x": 1}})"), shape);
    EXPECT_EQ(jsonError(R"({"version": 2, "points": []})"),
              "p.json: unknown \"version\" 2 (this tool reads version 1)");
    EXPECT_EQ(jsonError("[[1, 2], [3]]"), "p.json: point 1 must be an [x, y] pair");
    EXPECT_EQ(jsonError("[[1, 2], [3, \"4\"]]"),
              "p.json: point 1: a coordinate must be a number, not string");
    EXPECT_EQ(jsonError("[[1, 2], [NaN, 0]]"), "p.json: point 1 has a non-finite coordinate");
    EXPECT_EQ(jsonError("[[1e999, 0]]"), "p.json: point 0 has a non-finite coordinate");
    EXPECT_EQ(jsonError(R"({"points": [], "points": []})"),
              "p.json: the key \"points\" is given twice");
}

TEST(LoadPointsFile, TellsJsonAndCsvApartByContent) {
    ScratchDir dir;
    EXPECT_EQ(loadPointsFile(dir.write("a.txt", " \n[[1, 2]]")), (Points{{1, 2}}));
    EXPECT_EQ(loadPointsFile(dir.write("b.csv", "\xEF\xBB\xBF{\"points\": [[3, 4]]}")),
              (Points{{3, 4}}));
    // The extension does not decide: a .json file of x,y lines is CSV.
    EXPECT_EQ(loadPointsFile(dir.write("c.json", "\xEF\xBB\xBFx,y\n5,6\n")), (Points{{5, 6}}));
    EXPECT_EQ(loadPointsFile(dir.write("empty", "")), Points{});
}

TEST(LoadPointsFile, Refusals) {
    ScratchDir dir;
    const std::string missing = dir.file("missing.csv");
    EXPECT_EQ(inputErrorOf([&] { loadPointsFile(missing); }),
              missing + ": cannot open: No such file or directory");
    const std::string malformed = dir.write("m.json", "[[1, 2],");
    EXPECT_EQ(
        inputErrorOf([&] { loadPointsFile(malformed); }).rfind(malformed + ": malformed JSON: ", 0),
        0u);
    const std::string big = dir.write("big.csv", "1,2\n3,4\n");
    EXPECT_EQ(inputErrorOf([&] { loadPointsFile(big, 4); }),
              big + ": too large: 8 bytes; the input limit is 4 bytes (see --max-input)");
}
