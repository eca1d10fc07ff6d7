// JSON text: parsing with the non-finite numbers marked, and printing in a compact layout.
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "errors.h"
#include "input.h"
#include "json_text.h"

namespace cntrtool {

const char* const kNonFiniteMarker = "\x01non-finite";

namespace {

// The JSON spelling of the marker string.
const char* const kMarkerLiteral = "\"\\u0001non-finite\"";

bool isTokenChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '+' || c == '-' || c == '.';
}

}  // namespace

bool isNonFiniteToken(const std::string& token) {
    std::string t = token;
    if (!t.empty() && (t[0] == '-' || t[0] == '+'))
        t.erase(0, 1);
    for (char& c : t)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (t == "nan" || t == "inf" || t == "infinity")
        return true;
    if (t.empty() || !(std::isdigit(static_cast<unsigned char>(t[0])) || t[0] == '.'))
        return false;
    char* end = nullptr;
    const double value = std::strtod(token.c_str(), &end);
    return end == token.c_str() + token.size() && std::isinf(value);
}

namespace {

// The text with every non-finite number outside strings replaced by the marker.
std::string markNonFiniteNumbers(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '"') {  // copy the string, escapes included
            const std::size_t start = i++;
            while (i < text.size() && text[i] != '"')
                i += text[i] == '\\' ? 2 : 1;
            i = std::min(i + 1, text.size());
            out.append(text, start, i - start);
        } else if (isTokenChar(c)) {
            const std::size_t start = i;
            while (i < text.size() && isTokenChar(text[i]))
                ++i;
            const std::string token = text.substr(start, i - start);
            out += isNonFiniteToken(token) ? kMarkerLiteral : token;
        } else {
            out += c;
            ++i;
        }
    }
    return out;
}

// nlohmann's messages begin with "[json.exception.parse_error.101] "; the rest is the reader's.
std::string withoutExceptionTag(const std::string& message) {
    if (message.rfind("[json.exception.", 0) == 0) {
        const std::size_t end = message.find("] ");
        if (end != std::string::npos)
            return message.substr(end + 2);
    }
    return message;
}

// Follows a parse to refuse an object that repeats a key: the parser would keep the last value
// and silently drop the others. Messages name the place as the shape readers do.
class RepeatedKeyGuard {
  public:
    explicit RepeatedKeyGuard(const std::string& path) : path_(path) {}

    bool operator()(Json::parse_event_t event, const Json& parsed) {
        switch (event) {
            case Json::parse_event_t::object_start:
            case Json::parse_event_t::array_start:
                countElement();
                frames_.push_back(Frame{event == Json::parse_event_t::object_start});
                break;
            case Json::parse_event_t::object_end:
            case Json::parse_event_t::array_end:
                frames_.pop_back();
                break;
            case Json::parse_event_t::key:
                takeKey(parsed.get_ref<const std::string&>());
                break;
            case Json::parse_event_t::value:
                countElement();
                break;
        }
        return true;
    }

  private:
    struct Frame {
        explicit Frame(bool isObject) : object(isObject) {}
        bool object;
        std::set<std::string> keys = {};
        std::string lastKey = {};
        std::size_t elements = 0;
    };

    void countElement() {
        if (!frames_.empty() && !frames_.back().object)
            ++frames_.back().elements;
    }

    void takeKey(const std::string& key) {
        Frame& frame = frames_.back();
        if (!frame.keys.insert(key).second) {
            const std::string where = place();
            throw InputError(path_, (where.empty() ? "" : where + ": ") + "the key \"" + key +
                                        "\" is given twice");
        }
        frame.lastKey = key;
    }

    // "shape 3, hole 1": the elements of the arrays that the readers name, down to the object
    // being read.
    std::string place() const {
        std::string where;
        for (std::size_t d = 1; d < frames_.size(); ++d) {
            const Frame& parent = frames_[d - 1];
            const char* name = parent.object ? elementName(parent.lastKey) : nullptr;
            if (name == nullptr || frames_[d].object || frames_[d].elements == 0)
                continue;
            where += (where.empty() ? "" : ", ") + std::string(name) + " " +
                     std::to_string(frames_[d].elements - 1);
        }
        return where;
    }

    static const char* elementName(const std::string& arrayKey) {
        static const std::pair<const char*, const char*> names[] = {
            {"shapes", "shape"},   {"annotations", "annotation"}, {"holes", "hole"},
            {"regions", "region"}, {"segmentation", "polygon"}};
        for (const auto& [key, name] : names)
            if (arrayKey == key)
                return name;
        return nullptr;
    }

    const std::string& path_;
    std::vector<Frame> frames_;
};

bool isScalar(const Json& j) { return !j.is_object() && !j.is_array(); }

// Arrays of scalars and arrays of such arrays (points, polygons, matrices) go on one line.
bool printsInline(const Json& j) {
    if (!j.is_array())
        return isScalar(j);
    for (const Json& e : j)
        if (!(isScalar(e) || (e.is_array() && std::all_of(e.begin(), e.end(), isScalar))))
            return false;
    return true;
}

// A double in the shortest form that reads back as the same double (std::to_chars guarantees
// both); an integral value keeps a ".0" so that it still reads as a floating-point number.
// Non-finite values have no JSON spelling: null, as nlohmann writes them.
std::string floatText(double value) {
    if (!std::isfinite(value))
        return "null";
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    std::string text(buffer, end);
    if (text.find_first_not_of("-0123456789") == std::string::npos)
        text += ".0";
    return text;
}

// One line: arrays with ", " between their elements, scalars in their shortest exact form.
void printInline(const Json& j, std::string& out) {
    if (j.is_number_float()) {
        out += floatText(j.get<double>());
        return;
    }
    if (!j.is_array()) {
        out += j.dump(-1, ' ', false, nlohmann::detail::error_handler_t::replace);
        return;
    }
    out += '[';
    for (std::size_t k = 0; k < j.size(); ++k) {
        if (k > 0)
            out += ", ";
        printInline(j[k], out);
    }
    out += ']';
}

void printJson(const Json& j, int indent, std::string& out) {
    const std::string pad(static_cast<std::size_t>(indent + 2), ' ');
    if (printsInline(j) || j.empty()) {
        if (j.is_object())
            out += "{}";
        else
            printInline(j, out);
        return;
    }
    const bool object = j.is_object();
    out += object ? "{\n" : "[\n";
    std::size_t k = 0;
    for (auto it = j.begin(); it != j.end(); ++it, ++k) {
        out += pad;
        if (object)
            out += Json(it.key()).dump() + ": ";
        printJson(*it, indent + 2, out);
        out += k + 1 < j.size() ? ",\n" : "\n";
    }
    out += std::string(static_cast<std::size_t>(indent), ' ') + (object ? "}" : "]");
}

}  // namespace

Json parseJson(const std::string& path, const std::string& text) {
    try {
        RepeatedKeyGuard guard(path);
        return Json::parse(markNonFiniteNumbers(text),
                           [&guard](int, Json::parse_event_t event, Json& parsed) {
                               return guard(event, parsed);
                           });
    } catch (const nlohmann::json::exception& e) {
        throw InputError(path, "malformed JSON: " + withoutExceptionTag(e.what()));
    }
}

std::string prettyJson(const Json& document) {
    std::string out;
    printJson(document, 0, out);
    out += '\n';
    return out;
}

}  // namespace cntrtool
