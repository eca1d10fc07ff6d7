#include "points.h"

#include <cctype>
#include <cstdlib>

#include "errors.h"
#include "json_fields.h"
#include "json_text.h"

namespace cntrtool {

namespace {

const std::string kByteOrderMark = "\xEF\xBB\xBF";

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string trimmed(const std::string& text) {
    std::size_t begin = 0, end = text.size();
    while (begin < end && isBlank(text[begin]))
        ++begin;
    while (end > begin && isBlank(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Whether `text` is [sign] digits [. digits] [e [sign] digits], with a digit before or after
// the point: the decimal numbers a CSV writer produces, and nothing else strtod would take
// (hexadecimal, "nan(...)").
bool isDecimalNumber(const std::string& text) {
    std::size_t i = 0;
    const auto digits = [&] {
        const std::size_t start = i;
        while (i < text.size() && isDigit(text[i]))
            ++i;
        return i - start;
    };
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        ++i;
    std::size_t mantissa = digits();
    if (i < text.size() && text[i] == '.') {
        ++i;
        mantissa += digits();
    }
    if (mantissa == 0)
        return false;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        ++i;
        if (i < text.size() && (text[i] == '+' || text[i] == '-'))
            ++i;
        if (digits() == 0)
            return false;
    }
    return i == text.size();
}

// A decimal number, or a spelling of a number no double holds (refused as such, not as text).
bool isNumber(const std::string& field) {
    return isDecimalNumber(field) || isNonFiniteToken(field);
}

// A line as messages quote it: at most 40 characters, control bytes shown as '?'.
std::string quotedLine(const std::string& line) {
    constexpr std::size_t kShown = 40;
    std::string shown = line.substr(0, kShown);
    for (char& c : shown)
        if (std::iscntrl(static_cast<unsigned char>(c)))
            c = '?';
    return "\"" + shown + (line.size() > kShown ? "...\"" : "\"");
}

// The two fields of "x,y", trimmed; false when the line has another number of fields.
bool splitPair(const std::string& line, std::string& x, std::string& y) {
    const std::size_t comma = line.find(',');
    if (comma == std::string::npos || line.find(',', comma + 1) != std::string::npos)
        return false;
    x = trimmed(line.substr(0, comma));
    y = trimmed(line.substr(comma + 1));
    return true;
}

bool isHeader(const std::string& x, const std::string& y) {
    return (x == "x" || x == "X") && (y == "y" || y == "Y");
}

}  // namespace

std::vector<xcVector<2>> readPointsJson(const std::string& path, const Json& document) {
    const JsonPlace top{path, ""};
    const Json* points = &document;
    if (document.is_object()) {
        if (const Json* version = findMember(document, "version"); version && *version != 1)
            top.fail("unknown \"version\" " + version->dump() + " (this tool reads version 1)");
        points = findMember(document, "points");
    }
    if (points == nullptr || !points->is_array())
        top.fail(
            "a JSON points file must be an array of [x, y] pairs or an object with a "
            "\"points\" array");
    return readPointPairs(*points, top, "point");
}

std::vector<xcVector<2>> readPointsCsv(const std::string& path, const std::string& text) {
    std::vector<xcVector<2>> points;
    bool headerAllowed = true;
    std::size_t lineNumber = 0;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        start = end + 1;
        ++lineNumber;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (trimmed(line).empty())
            continue;
        const JsonPlace place{path, "line " + std::to_string(lineNumber)};
        std::string x, y;
        const bool pair = splitPair(line, x, y);
        if (pair && headerAllowed && isHeader(x, y)) {
            headerAllowed = false;
            continue;
        }
        headerAllowed = false;
        if (!pair || !isNumber(x) || !isNumber(y))
            place.fail("expected x,y (two numbers), not " + quotedLine(line));
        if (isNonFiniteToken(x) || isNonFiniteToken(y))
            place.fail("point " + std::to_string(points.size()) + " has a non-finite coordinate");
        points.emplace_back(std::strtod(x.c_str(), nullptr), std::strtod(y.c_str(), nullptr));
    }
    return points;
}

std::vector<xcVector<2>> loadPointsFile(const std::string& path, std::uint64_t maxBytes) {
    const std::vector<unsigned char> bytes = readFileBytes(path, maxBytes);
    std::string text(bytes.begin(), bytes.end());
    if (text.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0)
        text.erase(0, kByteOrderMark.size());
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && (text[first] == '[' || text[first] == '{'))
        return readPointsJson(path, parseJson(path, text));
    return readPointsCsv(path, text);
}

}  // namespace cntrtool
