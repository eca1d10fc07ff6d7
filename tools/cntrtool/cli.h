// The command line: subcommands, their options and their help texts.
#ifndef CNTRTOOL_CLI_H
#define CNTRTOOL_CLI_H

#include <cstdint>
#include <string>
#include <vector>

#include "input.h"

namespace cntrtool {

enum class Command { help, version, measure, check, repair, render, pack, unpack, locate };

struct Options {
    Command command = Command::help;
    /// With `command` help: the subcommand whose help is wanted (help itself for the overview).
    Command helpFor = Command::help;
    std::string input;
    /// locate: the file of points (POINTS).
    std::string points;
    std::string output;
    /// The largest input read (--max-input).
    std::uint64_t maxInput = kDefaultMaxInput;
    bool json = false;
    bool outerHull = false;
    bool hull = false;
    bool repaired = false;
    /// measure --digits: significant digits of every number (0: 6 in the table, the shortest
    /// exact form in JSON).
    int digits = 0;
    /// render --y-down: the y axis points down, as in image coordinates.
    bool yDown = false;
    /// render --width: the picture's width in pixels (0: the default).
    int width = 0;
    /// locate --boundary-distance: points this close to an outline are on the boundary.
    double boundaryDistance = 0.0;
};

/// Parses the arguments after the program name. `cntrtool`, `cntrtool --help` and
/// `cntrtool help [COMMAND]` ask for help, `cntrtool COMMAND --help` for one command's.
/// Throws UsageError for anything else that does not fit the commands' synopses.
Options parseCommandLine(const std::vector<std::string>& args);

/// The help text of `command` (the overview for Command::help).
std::string helpText(Command command);

}  // namespace cntrtool

#endif
