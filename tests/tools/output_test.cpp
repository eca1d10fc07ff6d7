#include "output.h"

#include <cmath>
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

#include "tool_testing.h"

using cntrtool::formatNumber;
using cntrtool::Progress;
using cntrtool::roundToDigits;
using cntrtool::writeFileAtomically;
using cntrtool_testing::inputErrorOf;
using cntrtool_testing::readFile;
using cntrtool_testing::ScratchDir;

TEST(Output, NumberFormats) {
    EXPECT_EQ(formatNumber(-0.0, 6), "0");
    EXPECT_EQ(formatNumber(1.0 / 3.0, 6), "0.333333");
    EXPECT_EQ(formatNumber(2.0 / 3.0, 9), "0.666666667");
    EXPECT_EQ(formatNumber(1e-20, 6), "1e-20");
    EXPECT_EQ(formatNumber(1234567.0, 6), "1.23457e+06");
    EXPECT_EQ(formatNumber(std::nan(""), 6), "nan");
    EXPECT_EQ(formatNumber(-std::nan(""), 6), "nan");  // a NaN has no sign to show
    EXPECT_EQ(formatNumber(-INFINITY, 6), "-inf");
}

TEST(Output, RoundingToDigits) {
    EXPECT_EQ(roundToDigits(1.0 / 3.0, 9), 0.333333333);
    EXPECT_EQ(roundToDigits(-2.5, 9), -2.5);
    EXPECT_TRUE(std::isinf(roundToDigits(INFINITY, 9)));
}

TEST(Output, AtomicWriteCreatesAndReplaces) {
    ScratchDir dir;
    const std::string path = dir.file("out.txt");
    writeFileAtomically(path, "first");
    EXPECT_EQ(readFile(path), "first");
    writeFileAtomically(path, "second, longer");
    EXPECT_EQ(readFile(path), "second, longer");
    EXPECT_EQ(dir.list(), std::vector<std::string>{"out.txt"});  // no temporary left
}

TEST(Output, AtomicWriteFailureNamesThePathAndLeavesNothing) {
    ScratchDir dir;
    const std::string path = dir.file("missing/out.txt");
    EXPECT_EQ(inputErrorOf([&] { writeFileAtomically(path, "x"); }),
              path + ": cannot write: No such file or directory");
    EXPECT_TRUE(dir.list().empty());
}

TEST(Output, ProgressIsSilentForShortRuns) {
    std::ostringstream err;
    Progress p(err, "measured", Progress::kProgressThreshold, false);
    for (std::size_t i = 0; i < Progress::kProgressThreshold; ++i)
        p.step();
    p.finish();
    EXPECT_EQ(err.str(), "");
}

TEST(Output, ProgressOfLongRunsEndsWithACountAndARate) {
    std::ostringstream err;
    const std::size_t n = Progress::kProgressThreshold + 1;
    Progress p(err, "measured", n, false);
    for (std::size_t i = 0; i < n; ++i)
        p.step();
    p.finish();
    p.finish();  // once only
    const std::string text = err.str();
    EXPECT_TRUE(std::regex_search(
        text, std::regex("(^|\n)measured 10001 of 10001 shapes in [0-9.]+ s \\([0-9]+ shapes/s\\)\n$")))
        << text;
    EXPECT_EQ(text.find('\r'), std::string::npos);  // plain lines when not on a terminal
}

TEST(Output, ProgressOnATerminalRefreshesInPlace) {
    std::ostringstream err;
    const std::size_t n = Progress::kProgressThreshold + 1;
    Progress p(err, "drew", n, true);
    for (std::size_t i = 0; i < n; ++i)
        p.step();
    p.finish();
    const std::string text = err.str();
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.front(), '\r');
    EXPECT_EQ(text.back(), '\n');
    EXPECT_NE(text.find("drew 10001 of 10001 shapes"), std::string::npos);
}
