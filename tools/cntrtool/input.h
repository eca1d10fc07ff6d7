// Reading shape files: the tool's own JSON, COCO-style annotation files and the library's
// archives, told apart by their content.
#ifndef CNTRTOOL_INPUT_H
#define CNTRTOOL_INPUT_H

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "shapes.h"

namespace cntrtool {

/// The largest input read by default: 4 GiB.
constexpr std::uint64_t kDefaultMaxInput = std::uint64_t(4) << 30;

/// The bytes of `path`. A regular file larger than `maxBytes` is refused before it is read;
/// anything else (a FIFO, a device) is read until it ends or `maxBytes` is passed, which is
/// refused too. Throws InputError naming the file.
std::vector<unsigned char> readFileBytes(const std::string& path, std::uint64_t maxBytes);

/// Reads `path` (at most `maxBytes` of it) and builds its shapes. A file that begins with the archive's magic bytes is an
/// archive; otherwise it must be a JSON object with a "shapes" array (the tool's format) or an
/// "annotations" array (COCO). Warnings (skipped annotations) go to `warnings`. Throws
/// InputError naming the file and, where there is one, the shape's index.
ShapeFile loadShapeFile(const std::string& path, std::ostream& warnings,
                        std::uint64_t maxBytes = kDefaultMaxInput);

/// Reads `path` (at most `maxBytes` of it) as an archive: what `unpack` reads. Anything else,
/// JSON or not, is refused as "not an archive".
ShapeFile loadArchiveFile(const std::string& path, std::uint64_t maxBytes = kDefaultMaxInput);

/// Parses JSON text. Numbers that a double cannot hold (overflowing ones, and the NaN and
/// Infinity literals that some writers emit although JSON has none) do not stop the parse: they
/// become kNonFiniteMarker strings, which the shape readers report with the shape's index.
/// Throws InputError for malformed JSON and for an object that gives a key twice (naming the
/// key and the shape).
Json parseJson(const std::string& path, const std::string& text);
/// The string that stands in a parsed document for a number no double can hold.
extern const char* const kNonFiniteMarker;

/// The shapes of a parsed document in the tool's format ("shapes").
std::vector<Shape> readToolJson(const std::string& path, const Json& document);
/// The shapes of a parsed COCO document: one region per annotation with one polygon, one
/// region set per annotation with several; RLE masks and annotations without polygons are
/// skipped and counted in `warnings`.
std::vector<Shape> readCoco(const std::string& path, const Json& document,
                            std::ostream& warnings);
/// The shapes of an archive's bytes: every top-level pointer record, in order.
std::vector<Shape> readArchive(const std::string& path, const std::vector<unsigned char>& bytes);

/// The deepest nesting of holes (a hole's holes' holes ...) that a JSON file may hold.
constexpr int kMaxHoleDepth = 64;
/// Labels are stored in archives as 32-bit numbers.
constexpr unsigned long kMaxLabel = 4294967295UL;

}  // namespace cntrtool

#endif
