// Reading the point files of `locate`: JSON ([x, y] pairs) or CSV (x,y lines), told apart by
// their content.
#ifndef CNTRTOOL_POINTS_H
#define CNTRTOOL_POINTS_H

#include <cstdint>
#include <string>
#include <vector>

#include <foundation/vector.h>

#include "input.h"
#include "shapes.h"

namespace cntrtool {

/// The points of `path` (at most `maxBytes` of it), in file order. A file whose first character
/// after white space (and a UTF-8 byte order mark) is '[' or '{' is JSON (readPointsJson);
/// anything else is CSV (readPointsCsv). An empty file holds no points. Throws InputError naming
/// the file and the point (JSON) or line (CSV).
std::vector<xcVector<2>> loadPointsFile(const std::string& path,
                                        std::uint64_t maxBytes = kDefaultMaxInput);

/// The points of a parsed JSON document: an array of [x, y] pairs, or an object whose "points"
/// member is one (an optional "version" must be 1; other keys are ignored, as in shape files).
std::vector<xcVector<2>> readPointsJson(const std::string& path, const Json& document);

/// The points of CSV text: one "x,y" line per point, each coordinate a decimal number
/// ([sign] digits [. digits] [e [sign] digits]) with spaces or tabs around it; lines may end in
/// "\r\n"; blank lines are skipped; the first line that is not blank may be the header "x,y"
/// (either case). NaN and infinite spellings, and numbers beyond the range of a double, are
/// refused as non-finite coordinates.
std::vector<xcVector<2>> readPointsCsv(const std::string& path, const std::string& text);

}  // namespace cntrtool

#endif
