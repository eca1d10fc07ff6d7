#include "cli.h"

#include <cmath>

#include <gtest/gtest.h>

#include "errors.h"

using cntrtool::Command;
using cntrtool::Options;
using cntrtool::parseCommandLine;
using cntrtool::UsageError;

namespace {

std::string usageErrorOf(const std::vector<std::string>& args) {
    try {
        parseCommandLine(args);
    } catch (const UsageError& e) {
        return e.what();
    }
    return "";
}

}  // namespace

TEST(CommandLine, NoArgumentsAskForTheOverview) {
    const Options o = parseCommandLine({});
    EXPECT_EQ(o.command, Command::help);
    EXPECT_EQ(o.helpFor, Command::help);
    EXPECT_NE(cntrtool::helpText(Command::help).find("usage: cntrtool COMMAND"), std::string::npos);
}

TEST(CommandLine, HelpNamesOneCommand) {
    EXPECT_EQ(parseCommandLine({"help", "render"}).helpFor, Command::render);
    EXPECT_EQ(parseCommandLine({"--help"}).helpFor, Command::help);
    const Options o = parseCommandLine({"measure", "x.json", "--help"});
    EXPECT_EQ(o.command, Command::help);
    EXPECT_EQ(o.helpFor, Command::measure);
    EXPECT_EQ(cntrtool::helpText(Command::render).rfind("usage: cntrtool render", 0), 0u);
}

TEST(CommandLine, MeasureReadsItsFileAndFlag) {
    const Options o = parseCommandLine({"measure", "in.json", "--json"});
    EXPECT_EQ(o.command, Command::measure);
    EXPECT_EQ(o.input, "in.json");
    EXPECT_TRUE(o.json);
    EXPECT_FALSE(parseCommandLine({"measure", "in.json"}).json);
}

TEST(CommandLine, OutputInEveryForm) {
    EXPECT_EQ(parseCommandLine({"pack", "a.json", "-o", "b.xca"}).output, "b.xca");
    EXPECT_EQ(parseCommandLine({"pack", "--output", "b.xca", "a.json"}).output, "b.xca");
    EXPECT_EQ(parseCommandLine({"pack", "a.json", "--output=b.xca"}).output, "b.xca");
}

TEST(CommandLine, FlagsOfRepairAndRender) {
    EXPECT_TRUE(parseCommandLine({"repair", "a", "-o", "b", "--outer-hull"}).outerHull);
    const Options r = parseCommandLine({"render", "a", "-o", "b.svg", "--hull", "--repaired"});
    EXPECT_TRUE(r.hull);
    EXPECT_TRUE(r.repaired);
}

TEST(CommandLine, DoubleDashEndsTheOptions) {
    EXPECT_EQ(parseCommandLine({"check", "--", "-odd-name.json"}).input, "-odd-name.json");
}

TEST(CommandLine, MissingOutputIsRefused) {
    EXPECT_EQ(usageErrorOf({"repair", "a.json"}),
              "repair needs -o OUT; see cntrtool repair --help");
    EXPECT_EQ(usageErrorOf({"render", "a.json", "-o"}),
              "-o needs a file name; see cntrtool render --help");
}

TEST(CommandLine, OutputWhereNoneIsWrittenIsRefused) {
    EXPECT_EQ(usageErrorOf({"check", "a.json", "-o", "b"}),
              "check writes to standard output; -o is not used; see cntrtool check --help");
}

TEST(CommandLine, UnknownOptionIsRefused) {
    EXPECT_EQ(usageErrorOf({"measure", "a.json", "--hull"}),
              "unknown option --hull for measure; see cntrtool measure --help");
}

TEST(CommandLine, SecondInputIsRefused) {
    EXPECT_EQ(usageErrorOf({"check", "a.json", "b.json"}),
              "unexpected argument b.json; see cntrtool check --help");
}

TEST(CommandLine, MissingInputIsRefused) {
    EXPECT_EQ(usageErrorOf({"check"}), "check needs an input FILE; see cntrtool check --help");
}

TEST(CommandLine, OutputGivenTwiceIsRefused) {
    EXPECT_EQ(usageErrorOf({"pack", "a", "-o", "b", "-o", "c"}),
              "the output is given twice; see cntrtool pack --help");
}

TEST(CommandLine, UnknownCommandIsRefused) {
    EXPECT_EQ(usageErrorOf({"measur", "a"}), "unknown command measur; see cntrtool --help");
    EXPECT_EQ(usageErrorOf({"help", "nothing"}), "unknown command nothing; see cntrtool --help");
}

TEST(CommandLine, Version) { EXPECT_EQ(parseCommandLine({"--version"}).command, Command::version); }

TEST(CommandLine, DigitsOfMeasure) {
    EXPECT_EQ(parseCommandLine({"measure", "a.json"}).digits, 0);
    EXPECT_EQ(parseCommandLine({"measure", "a.json", "--digits", "4"}).digits, 4);
    EXPECT_EQ(parseCommandLine({"measure", "--digits=17", "a.json", "--json"}).digits, 17);
    EXPECT_EQ(usageErrorOf({"measure", "a.json", "--digits", "0"}),
              "--digits needs a whole number from 1 to 17, not \"0\"; see cntrtool measure --help");
    EXPECT_EQ(usageErrorOf({"measure", "a.json", "--digits", "3x"}),
              "--digits needs a whole number from 1 to 17, not \"3x\"; see cntrtool measure --help");
    EXPECT_EQ(usageErrorOf({"measure", "a.json", "--digits"}),
              "--digits needs a value; see cntrtool measure --help");
    EXPECT_EQ(usageErrorOf({"check", "a.json", "--digits", "3"}),
              "unknown option --digits for check; see cntrtool check --help");
}

TEST(CommandLine, WidthAndYDownOfRender) {
    const Options r = parseCommandLine({"render", "a", "-o", "b.svg", "--y-down", "--width", "640"});
    EXPECT_TRUE(r.yDown);
    EXPECT_EQ(r.width, 640);
    EXPECT_EQ(parseCommandLine({"render", "a", "-o", "b.svg", "--width=16"}).width, 16);
    EXPECT_EQ(parseCommandLine({"render", "a", "-o", "b.svg"}).width, 0);
    EXPECT_EQ(usageErrorOf({"render", "a", "-o", "b.svg", "--width", "100001"}),
              "--width needs a whole number from 16 to 100000, not \"100001\"; see cntrtool render "
              "--help");
    EXPECT_EQ(usageErrorOf({"render", "a", "-o", "b.svg", "--width", "-5"}),
              "--width needs a whole number from 16 to 100000, not \"-5\"; see cntrtool render "
              "--help");
}

TEST(CommandLine, MaxInputTakesAWholeNumberOfBytes) {
    EXPECT_EQ(parseCommandLine({"measure", "x.json"}).maxInput, 4294967296u);
    EXPECT_EQ(parseCommandLine({"measure", "x.json", "--max-input", "1000"}).maxInput, 1000u);
    EXPECT_EQ(parseCommandLine({"pack", "x.json", "--max-input=7", "-o", "y"}).maxInput, 7u);
    EXPECT_EQ(parseCommandLine({"check", "--max-input", "18446744073709551615", "x.json"}).maxInput,
              18446744073709551615u);
    const std::string see = "; see cntrtool measure --help";
    for (const char* bad : {"0", "-1", "1e9", "12kB", "", "18446744073709551616"})
        EXPECT_EQ(usageErrorOf({"measure", "x.json", "--max-input", bad}),
                  std::string("--max-input needs a whole number of bytes from 1 up, not \"") +
                      bad + "\"" + see)
            << bad;
    EXPECT_EQ(usageErrorOf({"measure", "x.json", "--max-input"}), "--max-input needs a value" + see);
}

TEST(CommandLine, HelpDescribesTheInputLimitAndStandardOutput) {
    EXPECT_NE(cntrtool::helpText(Command::measure).find("--max-input BYTES"), std::string::npos);
    EXPECT_NE(cntrtool::helpText(Command::repair).find("- writes to standard output"),
              std::string::npos);
    EXPECT_EQ(cntrtool::helpText(Command::check).find("standard output"), std::string::npos);
}

TEST(CommandLine, MaxInputGoesWithEveryCommandAndItsOwnValueOptions) {
    for (const char* command : {"measure", "check"})
        EXPECT_EQ(parseCommandLine({command, "x", "--max-input", "5"}).maxInput, 5u) << command;
    for (const char* command : {"repair", "render", "pack", "unpack"})
        EXPECT_EQ(parseCommandLine({command, "x", "--max-input=6", "-o", "y"}).maxInput, 6u)
            << command;
    const Options m = parseCommandLine({"measure", "a.json", "--digits", "4", "--max-input=10"});
    EXPECT_EQ(m.digits, 4);
    EXPECT_EQ(m.maxInput, 10u);
    const Options r =
        parseCommandLine({"render", "a", "--max-input", "20", "-o", "b.svg", "--width=640"});
    EXPECT_EQ(r.width, 640);
    EXPECT_EQ(r.maxInput, 20u);
    EXPECT_EQ(usageErrorOf({"render", "a", "-o", "b.svg", "--max-input", "0"}),
              "--max-input needs a whole number of bytes from 1 up, not \"0\"; see cntrtool render "
              "--help");
    // After "--" it is a file name.
    EXPECT_EQ(parseCommandLine({"check", "--", "--max-input"}).input, "--max-input");
    EXPECT_NE(cntrtool::helpText(Command::render).find("--max-input BYTES"), std::string::npos);
}

TEST(CommandLine, LocateReadsAShapeFileAndAPointsFile) {
    const Options o = parseCommandLine({"locate", "shapes.json", "points.csv"});
    EXPECT_EQ(o.command, Command::locate);
    EXPECT_EQ(o.input, "shapes.json");
    EXPECT_EQ(o.points, "points.csv");
    EXPECT_FALSE(o.json);
    EXPECT_EQ(o.boundaryDistance, 0.0);
    const Options j = parseCommandLine({"locate", "--json", "a", "--max-input=9", "b"});
    EXPECT_TRUE(j.json);
    EXPECT_EQ(j.input, "a");
    EXPECT_EQ(j.points, "b");
    EXPECT_EQ(j.maxInput, 9u);
    EXPECT_EQ(parseCommandLine({"locate", "a", "--", "-b.csv"}).points, "-b.csv");
}

TEST(CommandLine, LocateNeedsBothFilesAndNoMore) {
    const std::string see = "; see cntrtool locate --help";
    EXPECT_EQ(usageErrorOf({"locate", "a.json"}), "locate needs a POINTS file" + see);
    EXPECT_EQ(usageErrorOf({"locate"}), "locate needs an input FILE" + see);
    EXPECT_EQ(usageErrorOf({"locate", "a", "b", "c"}), "unexpected argument c" + see);
    EXPECT_EQ(usageErrorOf({"locate", "a", ""}), "the POINTS file name is empty" + see);
    EXPECT_EQ(usageErrorOf({"locate", "a", "b", "-o", "c"}),
              "locate writes to standard output; -o is not used" + see);
    EXPECT_EQ(usageErrorOf({"locate", "a", "b", "--hull"}), "unknown option --hull for locate" + see);
}

TEST(CommandLine, BoundaryDistanceOfLocate) {
    EXPECT_EQ(parseCommandLine({"locate", "a", "b", "--boundary-distance", "0.25"}).boundaryDistance,
              0.25);
    EXPECT_EQ(parseCommandLine({"locate", "a", "b", "--boundary-distance=1e-3"}).boundaryDistance,
              1e-3);
    EXPECT_EQ(parseCommandLine({"locate", "a", "b", "--boundary-distance", "0"}).boundaryDistance,
              0.0);
    EXPECT_FALSE(std::signbit(
        parseCommandLine({"locate", "a", "b", "--boundary-distance", "-0"}).boundaryDistance));
    const std::string see = "; see cntrtool locate --help";
    for (const char* bad : {"-1", "-1e-300", "nan", "inf", "1e999", "", " 1", "1x", "one"})
        EXPECT_EQ(usageErrorOf({"locate", "a", "b", "--boundary-distance", bad}),
                  std::string("--boundary-distance needs a finite number from 0 up, not \"") + bad +
                      "\"" + see)
            << bad;
    EXPECT_EQ(usageErrorOf({"locate", "a", "b", "--boundary-distance"}),
              "--boundary-distance needs a value" + see);
    EXPECT_EQ(usageErrorOf({"measure", "a", "--boundary-distance", "1"}),
              "unknown option --boundary-distance for measure; see cntrtool measure --help");
}

TEST(CommandLine, HelpDescribesLocate) {
    EXPECT_EQ(cntrtool::helpText(Command::locate)
                  .rfind("usage: cntrtool locate FILE POINTS [--json] [--boundary-distance D]\n", 0),
              0u);
    EXPECT_NE(cntrtool::helpText(Command::help).find("  locate FILE POINTS"), std::string::npos);
    EXPECT_EQ(parseCommandLine({"help", "locate"}).helpFor, Command::locate);
}
