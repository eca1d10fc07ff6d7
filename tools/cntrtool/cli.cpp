#include "cli.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "errors.h"
#include "output.h"
#include "render.h"

namespace cntrtool {

namespace {

struct CommandInfo {
    const char* name;
    Command command;
    /// The flags it accepts besides -o and --help.
    std::vector<const char*> flags;
    /// The options it accepts that take a value ("--digits 3" or "--digits=3") besides
    /// --max-input, which every command accepts.
    std::vector<const char*> valueOptions;
    bool needsOutput;
    /// The name of a second input file that the command reads after FILE ("POINTS"), or null.
    const char* secondInput;
    const char* help;
};

const std::vector<CommandInfo>& commands() {
    static const std::vector<CommandInfo> list = {
        {"measure", Command::measure, {"--json"}, {"--digits"}, false, nullptr,
         "usage: cntrtool measure FILE [--json] [--digits N]\n"
         "\n"
         "Measures every shape of FILE: kind, label, vertex and hole counts, length, area with\n"
         "and without holes, centroid, inertia matrix, the ellipse of its moments, the fitted\n"
         "ellipse and its rms, convex hull area, diameter, and whether it crosses itself.\n"
         "Prints an aligned table, or with --json a JSON report. A measure that cannot be given\n"
         "as a value is n/a in the table and null in JSON, with its reason under \"unavailable\":\n"
         "one that does not apply, that the library refused, that would only be the library's\n"
         "convention (the centroid (0, 0) of an outline of almost no area) or that is not finite\n"
         "(the table shows inf or nan). A fitted ellipse replaced by the circle fit says so:\n"
         "fit \"circle\" and its reason. Numbers: 6 significant digits in the table; in JSON the\n"
         "shortest form that reads back as the same double. --digits N (1 to 17) rounds both to\n"
         "N significant digits.\n"},
        {"check", Command::check, {}, {}, false, nullptr,
         "usage: cntrtool check FILE\n"
         "\n"
         "Lists the problems of every shape, one line each, with the shape's index and label:\n"
         "too-few-vertices, repeated-vertex, zero-area, degenerate-area, self-crossing,\n"
         "hole-crosses-outline, touching-hole, hole-outside, holes-cross, holes-refused,\n"
         "regions-cross, empty-set, measure-failed, non-finite-result.\n"
         "Exit status 1 when there is any problem, 0 when there is none.\n"},
        {"repair", Command::repair, {"--outer-hull"}, {}, true, nullptr,
         "usage: cntrtool repair FILE -o OUT [--outer-hull]\n"
         "\n"
         "Regularises every region whose outline crosses itself (with --outer-hull: replaces it\n"
         "by its outer hull) and merges crossing regions of a set, then writes all shapes to OUT\n"
         "in FILE's format; shapes that need nothing are written unchanged. Exit status 1 when a\n"
         "shape could not be repaired (it is written unchanged).\n"},
        {"render", Command::render, {"--hull", "--repaired", "--y-down"}, {"--width"}, true,
         nullptr,
         "usage: cntrtool render FILE -o OUT.svg [--hull] [--repaired] [--y-down]\n"
         "                       [--width PIXELS]\n"
         "\n"
         "Draws every shape into an SVG picture on white: region outlines blue (red when they\n"
         "cross themselves), holes orange, contours green; --hull adds convex hulls in grey,\n"
         "--repaired the repaired outlines of self-crossing regions in purple. The y axis points\n"
         "up, or down with --y-down (image coordinates). The picture is 800 pixels wide (or\n"
         "--width PIXELS, 16 to 100000) with the drawing's aspect ratio; lines are 1.5 pixels\n"
         "wide whatever the drawing's extent.\n"},
        {"pack", Command::pack, {}, {}, true, nullptr,
         "usage: cntrtool pack FILE -o OUT.xca\n"
         "\n"
         "Stores every shape of FILE in the library's binary archive format. Holes the library\n"
         "refused (they cross their outline) cannot be stored: they are left out with a\n"
         "warning and the exit status is 1.\n"},
        {"unpack", Command::unpack, {}, {}, true, nullptr,
         "usage: cntrtool unpack FILE.xca -o OUT.json\n"
         "\n"
         "Writes the shapes of an archive as the tool's JSON. Any other file is refused as not an\n"
         "archive.\n"},
        {"locate", Command::locate, {"--json"}, {"--boundary-distance"}, false, "POINTS",
         "usage: cntrtool locate FILE POINTS [--json] [--boundary-distance D]\n"
         "\n"
         "Says where every point of POINTS lies relative to every shape of FILE: inside,\n"
         "boundary or outside; one line per shape and point, or with --json a JSON report.\n"
         "A point on an outline is on the boundary, and with --boundary-distance D (a number\n"
         "from 0 up) so is one within D of an outline. Otherwise the outlines of a shape are\n"
         "read together by the even-odd rule: a point is inside when it lies inside an odd\n"
         "number of them. For a shape without problems (see check) that is the area it covers:\n"
         "a region minus its holes, plus the islands inside them; a region set, the union of\n"
         "its regions; a closed contour, the polygon it bounds. Where regions of a set overlap,\n"
         "or a hole crosses its outline, a point covered twice is outside. An open contour\n"
         "bounds no area: n/a (null in JSON).\n"
         "\n"
         "POINTS is JSON when it begins with [ or {: an array of [x, y] pairs, or an object\n"
         "with a \"points\" array of them. Anything else is CSV: one x,y line per point, an\n"
         "optional header line x,y first; blank lines are skipped. A malformed point or a\n"
         "non-finite coordinate is refused, naming the point (JSON) or the line (CSV).\n"},
    };
    return list;
}

const char* const kOverview =
    "usage: cntrtool COMMAND FILE [options]\n"
    "\n"
    "Measures, checks, repairs and renders the polygons of a shape file, and locates points\n"
    "relative to them.\n"
    "\n"
    "commands:\n"
    "  measure FILE [--json] [--digits N]     measures of every shape\n"
    "  check FILE                             lists problems; exit status 1 if any\n"
    "  repair FILE -o OUT [--outer-hull]      repairs self-crossing regions\n"
    "  render FILE -o OUT.svg [--hull] [--repaired] [--y-down] [--width PIXELS]\n"
    "                                         draws the shapes as SVG\n"
    "  pack FILE -o OUT.xca                   writes the shapes as a binary archive\n"
    "  unpack FILE.xca -o OUT.json            writes an archive's shapes as JSON\n"
    "  locate FILE POINTS [--json] [--boundary-distance D]\n"
    "                                         where points lie: inside, boundary, outside\n"
    "\n"
    "FILE is the tool's JSON (\"shapes\"), a COCO annotation file (\"annotations\") or an\n"
    "archive, told apart by content. `cntrtool COMMAND --help` describes one command.\n"
    "\n"
    "OUT may be - for standard output. Every command takes --max-input BYTES (default\n"
    "4294967296, 4 GiB): larger inputs are refused.\n"
    "\n"
    "exit status: 0 ok, 1 problems found, 2 bad usage or bad input\n";

const char* const kOutputHelp =
    "\n"
    "OUT is checked before the work starts. A regular file is replaced only once the whole\n"
    "content is written; a symbolic link is written through (its final target is replaced); a\n"
    "device or FIFO is written to as it is; - writes to standard output.\n";

const char* const kInputLimitHelp =
    "\n"
    "--max-input BYTES  refuse an input larger than BYTES (default 4294967296, 4 GiB) before\n"
    "                   reading it; a FIFO or device that has not ended by then is refused too.\n";

const CommandInfo* findCommand(const std::string& name) {
    for (const CommandInfo& c : commands())
        if (name == c.name)
            return &c;
    return nullptr;
}

const CommandInfo* findCommand(Command command) {
    for (const CommandInfo& c : commands())
        if (command == c.command)
            return &c;
    return nullptr;
}

bool isHelpFlag(const std::string& a) { return a == "--help" || a == "-h"; }

// --max-input's value: a whole number of bytes, at least 1.
std::uint64_t parseByteCount(const std::string& text, const std::string& seeHelp) {
    const std::string refusal =
        "--max-input needs a whole number of bytes from 1 up, not \"" + text + "\"" + seeHelp;
    if (text.empty() || text.size() > 20)
        throw UsageError(refusal);
    std::uint64_t value = 0;
    for (const char c : text) {
        if (!std::isdigit(static_cast<unsigned char>(c)))
            throw UsageError(refusal);
        const std::uint64_t digit = static_cast<std::uint64_t>(c - '0');
        if (value > (std::numeric_limits<std::uint64_t>::max() - digit) / 10)
            throw UsageError(refusal);
        value = value * 10 + digit;
    }
    if (value == 0)
        throw UsageError(refusal);
    return value;
}

void setFlag(Options& o, const std::string& flag) {
    if (flag == "--json")
        o.json = true;
    else if (flag == "--outer-hull")
        o.outerHull = true;
    else if (flag == "--hull")
        o.hull = true;
    else if (flag == "--repaired")
        o.repaired = true;
    else if (flag == "--y-down")
        o.yDown = true;
}

// The whole decimal integer `text` when it lies in [low, high]; throws UsageError otherwise.
int integerValue(const std::string& option, const std::string& text, int low, int high,
                 const std::string& seeHelp) {
    const std::string range = " needs a whole number from " + std::to_string(low) + " to " +
                              std::to_string(high);
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(text.c_str(), &end, 10);
    const bool whole = !text.empty() && text[0] != ' ' && *end == '\0' && errno == 0;
    if (!whole || value < low || value > high)
        throw UsageError(option + range + ", not \"" + text + "\"" + seeHelp);
    return static_cast<int>(value);
}

// A finite decimal number from 0 up (as strtod reads it, the whole of `text`); throws UsageError
// otherwise.
double distanceValue(const std::string& option, const std::string& text,
                     const std::string& seeHelp) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    const bool whole = !text.empty() && !std::isspace(static_cast<unsigned char>(text[0])) &&
                       *end == '\0';
    if (!whole || !std::isfinite(value) || value < 0.0)
        throw UsageError(option + " needs a finite number from 0 up, not \"" + text + "\"" +
                         seeHelp);
    return value == 0.0 ? 0.0 : value;  // -0 is 0
}

void setValue(Options& o, const std::string& option, const std::string& value,
              const std::string& seeHelp) {
    if (option == "--max-input")
        o.maxInput = parseByteCount(value, seeHelp);
    else if (option == "--digits")
        o.digits = integerValue(option, value, kMinDigits, kMaxDigits, seeHelp);
    else if (option == "--width")
        o.width = integerValue(option, value, kMinWidth, kMaxWidth, seeHelp);
    else if (option == "--boundary-distance")
        o.boundaryDistance = distanceValue(option, value, seeHelp);
}

// The options every command accepts that take a value.
const std::vector<const char*> kCommonValueOptions = {"--max-input"};

// The option of `info` (or common to every command) that `arg` names, as "--name" or
// "--name=value"; null when none does.
const char* valueOptionOf(const CommandInfo& info, const std::string& arg) {
    for (const std::vector<const char*>* names : {&kCommonValueOptions, &info.valueOptions})
        for (const char* name : *names) {
            const std::string n = name;
            if (arg == n || arg.rfind(n + "=", 0) == 0)
                return name;
        }
    return nullptr;
}

Options parseCommandArgs(const CommandInfo& info, const std::vector<std::string>& args) {
    Options o;
    o.command = info.command;
    const std::string seeHelp = "; see cntrtool " + std::string(info.name) + " --help";
    bool outputGiven = false;
    bool secondGiven = false;
    bool optionsEnded = false;
    for (std::size_t i = 1; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (!optionsEnded && isHelpFlag(a)) {
            o.command = Command::help;
            o.helpFor = info.command;
            return o;
        }
        if (!optionsEnded && a == "--") {
            optionsEnded = true;
        } else if (!optionsEnded && (a == "-o" || a == "--output" || a.rfind("--output=", 0) == 0)) {
            if (outputGiven)
                throw UsageError("the output is given twice" + seeHelp);
            if (a.rfind("--output=", 0) == 0) {
                o.output = a.substr(9);
            } else {
                if (i + 1 >= args.size())
                    throw UsageError(a + " needs a file name" + seeHelp);
                o.output = args[++i];
            }
            if (o.output.empty())
                throw UsageError("the output file name is empty" + seeHelp);
            outputGiven = true;
        } else if (const char* name = optionsEnded ? nullptr : valueOptionOf(info, a)) {
            const std::string option = name;
            if (a.size() > option.size()) {
                setValue(o, option, a.substr(option.size() + 1), seeHelp);
            } else {
                if (i + 1 >= args.size())
                    throw UsageError(option + " needs a value" + seeHelp);
                setValue(o, option, args[++i], seeHelp);
            }
        } else if (!optionsEnded && a.size() > 1 && a[0] == '-') {
            const bool known = std::any_of(info.flags.begin(), info.flags.end(),
                                           [&a](const char* f) { return a == f; });
            if (!known)
                throw UsageError("unknown option " + a + " for " + info.name + seeHelp);
            setFlag(o, a);
        } else if (o.input.empty()) {
            o.input = a;
            if (o.input.empty())
                throw UsageError("the input file name is empty" + seeHelp);
        } else if (info.secondInput != nullptr && !secondGiven) {
            o.points = a;
            secondGiven = true;
            if (o.points.empty())
                throw UsageError(std::string("the ") + info.secondInput + " file name is empty" +
                                 seeHelp);
        } else {
            throw UsageError("unexpected argument " + a + seeHelp);
        }
    }
    if (o.input.empty())
        throw UsageError(std::string(info.name) + " needs an input FILE" + seeHelp);
    if (info.secondInput != nullptr && !secondGiven)
        throw UsageError(std::string(info.name) + " needs a " + info.secondInput + " file" +
                         seeHelp);
    if (info.needsOutput && !outputGiven)
        throw UsageError(std::string(info.name) + " needs -o OUT" + seeHelp);
    if (!info.needsOutput && outputGiven)
        throw UsageError(std::string(info.name) + " writes to standard output; -o is not used" +
                         seeHelp);
    return o;
}

}  // namespace

Options parseCommandLine(const std::vector<std::string>& args) {
    Options o;
    if (args.empty() || isHelpFlag(args[0]))
        return o;
    if (args[0] == "--version") {
        o.command = Command::version;
        return o;
    }
    if (args[0] == "help") {
        if (args.size() > 2)
            throw UsageError("help takes at most one command name");
        if (args.size() == 2) {
            const CommandInfo* info = findCommand(args[1]);
            if (info == nullptr)
                throw UsageError("unknown command " + args[1] + "; see cntrtool --help");
            o.helpFor = info->command;
        }
        return o;
    }
    const CommandInfo* info = findCommand(args[0]);
    if (info == nullptr)
        throw UsageError("unknown command " + args[0] + "; see cntrtool --help");
    return parseCommandArgs(*info, args);
}

std::string helpText(Command command) {
    const CommandInfo* info = findCommand(command);
    if (info == nullptr)
        return kOverview;
    return std::string(info->help) + (info->needsOutput ? kOutputHelp : "") + kInputLimitHelp;
}

}  // namespace cntrtool
