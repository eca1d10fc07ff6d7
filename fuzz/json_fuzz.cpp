// Fuzz target: arbitrary bytes read as cntrtool's JSON input, in both of the formats it accepts
// (its own "shapes" files and COCO annotation files). Parsing and reading must succeed or throw
// the tool's InputError; every shape read is then measured, checked, repaired both ways and
// reported as the tool does. Shapes read from the tool's format are written back, and the text
// written must read back to shapes that write the very same text.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include <check.h>
#include <errors.h>
#include <input.h>
#include <json_text.h>
#include <measure.h>
#include <output_formats.h>
#include <repair.h>
#include <shapes.h>

#include "fuzz_support.h"
#include "targets.h"

namespace xn_fuzz {
namespace {

/// The name the inputs go by in the tool's messages.
constexpr const char* kPath = "input.json";

/// Runs `op`; the tool's refusal of bad input (InputError) is an expected outcome.
template <class Op>
bool toolAttempt(Op&& op) {
    try {
        op();
        return true;
    } catch (const cntrtool::InputError&) {
        return false;
    }
}

/// Everything the tool's commands do with the shapes of a file, save writing files.
void useShapes(const std::vector<cntrtool::Shape>& shapes) {
    std::vector<cntrtool::Measures> rows;
    for (const cntrtool::Shape& shape : shapes) {
        rows.push_back(cntrtool::measureShape(shape));
        (void)cntrtool::checkShape(shape);
        for (bool outerHull : {false, true}) {
            const cntrtool::RepairResult repaired = cntrtool::repairShape(shape, outerHull);
            (void)cntrtool::measureShape(repaired.shape);
        }
    }
    (void)cntrtool::prettyJson(cntrtool::measureReport(kPath, rows));
    std::vector<std::string> lost;
    toolAttempt([&] { (void)cntrtool::archiveContent(kPath, shapes, lost); });
}

/// The tool format's round trip: written shapes read back as shapes that write the same text.
void checkToolRoundTrip(const std::vector<cntrtool::Shape>& shapes) {
    const std::string written = cntrtool::prettyJson(cntrtool::toolDocument(shapes));
    std::vector<cntrtool::Shape> again;
    check(toolAttempt(
              [&] { again = cntrtool::readToolJson(kPath, cntrtool::parseJson(kPath, written)); }),
          "written tool JSON reads back");
    check(cntrtool::prettyJson(cntrtool::toolDocument(again)) == written,
          "tool JSON read back writes the same text");
}

}  // namespace

int jsonOneInput(const std::uint8_t* data, std::size_t size) {
    installAssertHandler();
    const std::string text(reinterpret_cast<const char*>(data), size);
    cntrtool::Json document;
    if (!toolAttempt([&] { document = cntrtool::parseJson(kPath, text); }))
        return 0;

    std::vector<cntrtool::Shape> shapes;
    if (toolAttempt([&] { shapes = cntrtool::readToolJson(kPath, document); })) {
        useShapes(shapes);
        checkToolRoundTrip(shapes);
    }
    std::ostringstream warnings;
    if (toolAttempt([&] { shapes = cntrtool::readCoco(kPath, document, warnings); }))
        useShapes(shapes);
    return 0;
}

}  // namespace xn_fuzz
