// Printing JSON documents in the tool's layout.
#ifndef CNTRTOOL_JSON_TEXT_H
#define CNTRTOOL_JSON_TEXT_H

#include <string>

#include "shapes.h"

namespace cntrtool {

/// The document indented by two spaces per level, with arrays of numbers (points, polygons,
/// matrices) kept on one line; numbers in the shortest form that reads back exactly. Ends with
/// a newline.
std::string prettyJson(const Json& document);

/// Whether `token` stands for a number that no double holds: NaN or Infinity in the spellings
/// writers use ("nan", "-Infinity", "inf", any case), or a number too large for a double.
bool isNonFiniteToken(const std::string& token);

}  // namespace cntrtool

#endif
