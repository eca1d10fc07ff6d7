#include "commands.h"

#include <exception>
#include <new>
#include <utility>

#include <cntr/version.h>
#include <foundation/exception.h>
#include <foundation/tablet.h>

#include "check.h"
#include "cli.h"
#include "errors.h"
#include "input.h"
#include "json_text.h"
#include "locate.h"
#include "measure.h"
#include "output.h"
#include "output_formats.h"
#include "points.h"
#include "render.h"
#include "repair.h"

namespace cntrtool {

namespace {

struct Context {
    const Options& options;
    const OutputTarget& output;
    const ShapeFile& file;
    std::ostream& out;
    std::ostream& err;
    bool errIsTerminal;

    void warn(const std::string& text) const {
        err << "cntrtool: warning: " << file.path << ": " << withHoleChainsShortened(text) << '\n';
    }
    void write(const std::string& content) const { writeOutput(output, content, out); }
    // The closing line of a command that writes a file; on stderr when the content went to
    // standard output, so that it does not mix with it.
    void summarise(const std::string& line) const {
        (output.way == OutputTarget::Way::standardOutput ? err : out) << line << '\n';
    }
};

// `report` of every shape, in order, with progress named by `verb`.
template <class Report>
auto reportOfEachShape(const Context& c, const char* verb, Report&& report) {
    Progress progress(c.err, verb, c.file.shapes.size(), c.errIsTerminal);
    std::vector<decltype(report(std::declval<const Shape&>()))> rows;
    rows.reserve(c.file.shapes.size());
    for (const Shape& s : c.file.shapes) {
        rows.push_back(report(s));
        progress.step();
    }
    progress.finish();
    return rows;
}

int measureCommand(const Context& c) {
    const std::vector<Measures> rows = reportOfEachShape(c, "measured", measureShape);
    if (c.options.json)
        c.out << prettyJson(measureReport(c.file.path, rows, c.options.digits));
    else
        printMeasureTable(c.out, rows, c.options.digits > 0 ? c.options.digits : kTableDigits);
    return kExitOk;
}

int checkCommand(const Context& c) {
    Progress progress(c.err, "checked", c.file.shapes.size(), c.errIsTerminal);
    std::vector<Problem> problems;
    for (const Shape& s : c.file.shapes) {
        const std::vector<Problem> p = checkShape(s);
        problems.insert(problems.end(), p.begin(), p.end());
        progress.step();
    }
    progress.finish();
    for (Problem& p : problems)
        p.text = withHoleChainsShortened(p.text);
    printProblems(c.out, problems, c.file.shapes.size());
    return problems.empty() ? kExitOk : kExitProblems;
}

int repairCommand(const Context& c) {
    // "processed": most shapes need no repair, and the closing line counts those repaired.
    Progress progress(c.err, "processed", c.file.shapes.size(), c.errIsTerminal);
    std::vector<Shape> shapes;
    std::vector<bool> changed;
    std::size_t repairedCount = 0, failedCount = 0;
    for (const Shape& s : c.file.shapes) {
        RepairResult r = repairShape(s, c.options.outerHull);
        for (const std::string& note : r.notes)
            c.warn(note);
        shapes.push_back(r.shape);
        changed.push_back(r.changed);
        repairedCount += r.changed ? 1 : 0;
        failedCount += r.failed ? 1 : 0;
        progress.step();
    }
    progress.finish();
    std::vector<std::string> lost;
    c.write(contentInFormat(c.file, shapes, changed, lost));
    for (const std::string& l : lost)
        c.warn(l);
    std::string summary =
        "repaired " + std::to_string(repairedCount) + " of " + std::to_string(shapes.size()) +
        " shapes";
    if (failedCount > 0)
        summary += ", " + std::to_string(failedCount) + " could not be repaired";
    c.summarise(summary + "; wrote " + c.options.output);
    return failedCount > 0 || !lost.empty() ? kExitProblems : kExitOk;
}

int renderCommand(const Context& c) {
    Progress progress(c.err, "drew", c.file.shapes.size(), c.errIsTerminal);
    RenderOptions options;
    options.hull = c.options.hull;
    options.repaired = c.options.repaired;
    xcRecordingTablet tablet;
    renderShapes(tablet, c.file.shapes, options, [&progress] { progress.step(); },
                 [&c](const std::string& note) { c.warn(note); });
    progress.finish();
    PictureOptions picture;
    picture.yDown = c.options.yDown;
    picture.width = c.options.width > 0 ? c.options.width : kDefaultWidth;
    SvgPicture svg;
    try {
        svg = svgPicture(tablet.segments(), picture);
    } catch (const ToolError& e) {
        throw InputError(c.file.path, std::string("cannot draw: ") + e.what());
    }
    if (svg.skipped > 0)
        c.warn(std::to_string(svg.skipped) + " segments with non-finite ends skipped");
    c.write(svg.document);
    c.summarise("drew " + std::to_string(c.file.shapes.size()) + " shapes (" +
                std::to_string(svg.segments) + " segments); wrote " + c.options.output);
    return kExitOk;
}

int packCommand(const Context& c) {
    std::vector<std::string> lost;
    c.write(archiveContent(c.file.path, c.file.shapes, lost));
    for (const std::string& l : lost)
        c.warn(l);
    c.summarise("packed " + std::to_string(c.file.shapes.size()) + " shapes; wrote " +
                c.options.output);
    return lost.empty() ? kExitOk : kExitProblems;
}

int unpackCommand(const Context& c) {
    c.write(prettyJson(toolDocument(c.file.shapes)));
    c.summarise("unpacked " + std::to_string(c.file.shapes.size()) + " shapes; wrote " +
                c.options.output);
    return kExitOk;
}

int locateCommand(const Context& c) {
    const std::vector<xcVector<2>> points = loadPointsFile(c.options.points, c.options.maxInput);
    const std::vector<ShapeLocations> rows = reportOfEachShape(c, "located", [&](const Shape& s) {
        return locateShape(s, points, c.options.boundaryDistance);
    });
    if (c.options.json)
        c.out << prettyJson(locationReport(c.file.path, c.options.points,
                                           c.options.boundaryDistance, points, rows));
    else
        printLocationTable(c.out, points, rows, kTableDigits);
    return kExitOk;
}

int runCommand(const Options& options, std::ostream& out, std::ostream& err,
               bool errIsTerminal) {
    switch (options.command) {
        case Command::help:
            out << helpText(options.helpFor);
            return kExitOk;
        case Command::version:
            out << "cntrtool " << xf_CntrVersion() << '\n';
            return kExitOk;
        default:
            break;
    }
    // An output that cannot be written is found before the work, not after it.
    const OutputTarget output = options.output.empty() ? OutputTarget{} : prepareOutput(options.output);
    const ShapeFile file = options.command == Command::unpack
                               ? loadArchiveFile(options.input, options.maxInput)
                               : loadShapeFile(options.input, err, options.maxInput);
    const Context c{options, output, file, out, err, errIsTerminal};
    switch (options.command) {
        case Command::measure:
            return measureCommand(c);
        case Command::check:
            return checkCommand(c);
        case Command::repair:
            return repairCommand(c);
        case Command::render:
            return renderCommand(c);
        case Command::pack:
            return packCommand(c);
        case Command::unpack:
            return unpackCommand(c);
        case Command::locate:
            return locateCommand(c);
        default:
            return kExitOk;
    }
}

}  // namespace

int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
        bool errIsTerminal) {
    try {
        return runCommand(parseCommandLine(args), out, err, errIsTerminal);
    } catch (const UsageError& e) {
        err << "cntrtool: " << e.what() << '\n';
    } catch (const ToolError& e) {
        err << "cntrtool: " << withHoleChainsShortened(e.what()) << '\n';
    } catch (const std::bad_alloc&) {
        err << "cntrtool: out of memory\n";
    } catch (const std::exception& e) {
        err << "cntrtool: internal error: " << e.what() << '\n';
    }
    return kExitBadInput;
}

}  // namespace cntrtool
