#include "cli.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "errors.h"

namespace cntrtool {

namespace {

struct CommandInfo {
    const char* name;
    Command command;
    /// The flags it accepts besides -o and --help.
    std::vector<const char*> flags;
    bool needsOutput;
    const char* help;
};

const std::vector<CommandInfo>& commands() {
    static const std::vector<CommandInfo> list = {
        {"measure", Command::measure, {"--json"}, false,
         "usage: cntrtool measure FILE [--json]\n"
         "\n"
         "Measures every shape of FILE: kind, label, vertex and hole counts, length, area with\n"
         "and without holes, centroid, inertia matrix, the ellipse of its moments, the fitted\n"
         "ellipse and its rms, convex hull area, diameter, and whether it crosses itself.\n"
         "Prints an aligned table (n/a where a measure is not available), or with --json a JSON\n"
         "report (null there).\n"},
        {"check", Command::check, {}, false,
         "usage: cntrtool check FILE\n"
         "\n"
         "Lists the problems of every shape, one line each, with the shape's index and label:\n"
         "too-few-vertices, repeated-vertex, zero-area, self-crossing, hole-crosses-outline,\n"
         "hole-outside, holes-cross, holes-refused, regions-cross, empty-set, measure-failed.\n"
         "Exit status 1 when there is any problem, 0 when there is none.\n"},
        {"repair", Command::repair, {"--outer-hull"}, true,
         "usage: cntrtool repair FILE -o OUT [--outer-hull]\n"
         "\n"
         "Regularises every region whose outline crosses itself (with --outer-hull: replaces it\n"
         "by its outer hull) and merges crossing regions of a set, then writes all shapes to OUT\n"
         "in FILE's format; shapes that need nothing are written unchanged. Exit status 1 when a\n"
         "shape could not be repaired (it is written unchanged).\n"},
        {"render", Command::render, {"--hull", "--repaired"}, true,
         "usage: cntrtool render FILE -o OUT.svg [--hull] [--repaired]\n"
         "\n"
         "Draws every shape into an SVG picture (y axis up): region outlines blue (red when they\n"
         "cross themselves), holes orange, contours green; --hull adds convex hulls in grey,\n"
         "--repaired the repaired outlines of self-crossing regions in purple.\n"},
        {"pack", Command::pack, {}, true,
         "usage: cntrtool pack FILE -o OUT.xca\n"
         "\n"
         "Stores every shape of FILE in the library's binary archive format. Holes the library\n"
         "refused (they cross their outline) cannot be stored: they are left out with a\n"
         "warning and the exit status is 1.\n"},
        {"unpack", Command::unpack, {}, true,
         "usage: cntrtool unpack FILE.xca -o OUT.json\n"
         "\n"
         "Writes the shapes of an archive as the tool's JSON. Any other file is refused as not an\n"
         "archive.\n"},
    };
    return list;
}

const char* const kOverview =
    "usage: cntrtool COMMAND FILE [options]\n"
    "\n"
    "Measures, checks, repairs and renders the polygons of a shape file.\n"
    "\n"
    "commands:\n"
    "  measure FILE [--json]                  measures of every shape\n"
    "  check FILE                             lists problems; exit status 1 if any\n"
    "  repair FILE -o OUT [--outer-hull]      repairs self-crossing regions\n"
    "  render FILE -o OUT.svg [--hull] [--repaired]   draws the shapes as SVG\n"
    "  pack FILE -o OUT.xca                   writes the shapes as a binary archive\n"
    "  unpack FILE.xca -o OUT.json            writes an archive's shapes as JSON\n"
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

// The value of an option given as "NAME VALUE" or "NAME=VALUE"; `i` moves past it.
std::string optionValue(const std::vector<std::string>& args, std::size_t& i,
                        const std::string& name, const std::string& seeHelp) {
    const std::string& a = args[i];
    if (a.size() > name.size() && a.compare(0, name.size() + 1, name + "=") == 0)
        return a.substr(name.size() + 1);
    if (i + 1 >= args.size())
        throw UsageError(name + " needs a value" + seeHelp);
    return args[++i];
}

bool isOption(const std::string& a, const std::string& name) {
    return a == name || a.rfind(name + "=", 0) == 0;
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
}

Options parseCommandArgs(const CommandInfo& info, const std::vector<std::string>& args) {
    Options o;
    o.command = info.command;
    const std::string seeHelp = "; see cntrtool " + std::string(info.name) + " --help";
    bool outputGiven = false;
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
        } else if (!optionsEnded && isOption(a, "--max-input")) {
            o.maxInput = parseByteCount(optionValue(args, i, "--max-input", seeHelp), seeHelp);
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
        } else {
            throw UsageError("unexpected argument " + a + seeHelp);
        }
    }
    if (o.input.empty())
        throw UsageError(std::string(info.name) + " needs an input FILE" + seeHelp);
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
