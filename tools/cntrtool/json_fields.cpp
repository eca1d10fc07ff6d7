#include "json_fields.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "errors.h"
#include "input.h"

namespace cntrtool {

JsonPlace JsonPlace::operator/(const std::string& part) const {
    return JsonPlace{path, where.empty() ? part : where + ", " + part};
}

void JsonPlace::fail(const std::string& message) const {
    throw InputError(path, where.empty() ? message : where + ": " + message);
}

const Json* findMember(const Json& object, const char* key) {
    const auto it = object.find(key);
    return it == object.end() ? nullptr : &*it;
}

void requireKnownKeys(const Json& node, std::initializer_list<const char*> allowed,
                      const JsonPlace& place) {
    if (!node.is_object())
        place.fail(std::string("must be an object, not ") + node.type_name());
    for (auto it = node.begin(); it != node.end(); ++it) {
        const bool known = std::any_of(allowed.begin(), allowed.end(), [&it](const char* key) {
            return it.key() == key;
        });
        if (!known)
            place.fail("unknown key \"" + it.key() + "\"");
    }
}

double readCoordinate(const Json& value, const JsonPlace& place, const std::string& what) {
    if (value.is_string() && value.get_ref<const std::string&>() == kNonFiniteMarker)
        place.fail(what + " has a non-finite coordinate");
    if (!value.is_number())
        place.fail(what + ": a coordinate must be a number, not " + value.type_name());
    const double v = value.get<double>();
    if (!std::isfinite(v))
        place.fail(what + " has a non-finite coordinate");
    return v;
}

unsigned long readLabel(const Json& value, const JsonPlace& place) {
    if (value.is_number_unsigned() && value.get<unsigned long long>() <= kMaxLabel)
        return static_cast<unsigned long>(value.get<unsigned long long>());
    if (value.is_number_integer() && value.get<long long>() == 0)
        return 0;
    place.fail("\"label\" must be an integer from 0 to " + std::to_string(kMaxLabel));
}

bool readBool(const Json& value, const JsonPlace& place, const char* key) {
    if (!value.is_boolean())
        place.fail(std::string("\"") + key + "\" must be true or false, not " + value.type_name());
    return value.get<bool>();
}

std::vector<xcVector<2>> readPointPairs(const Json& value, const JsonPlace& place,
                                        const char* item) {
    if (!value.is_array())
        place.fail(std::string("\"points\" must be an array of [x, y] pairs, not ") +
                   value.type_name());
    std::vector<xcVector<2>> points;
    points.reserve(value.size());
    for (std::size_t k = 0; k < value.size(); ++k) {
        const Json& p = value[k];
        const std::string what = item + (" " + std::to_string(k));
        if (!p.is_array() || p.size() != 2)
            place.fail(what + " must be an [x, y] pair");
        points.emplace_back(readCoordinate(p[0], place, what), readCoordinate(p[1], place, what));
    }
    return points;
}

std::vector<xcVector<2>> readFlatPolygon(const Json& value, const JsonPlace& place) {
    if (!value.is_array())
        place.fail(std::string("a polygon must be an array of coordinates, not ") +
                   value.type_name());
    if (value.size() % 2 != 0)
        place.fail("odd number of coordinates (" + std::to_string(value.size()) + ")");
    std::vector<xcVector<2>> points;
    points.reserve(value.size() / 2);
    for (std::size_t k = 0; k + 1 < value.size(); k += 2) {
        const std::string what = "vertex " + std::to_string(k / 2);
        points.emplace_back(readCoordinate(value[k], place, what),
                            readCoordinate(value[k + 1], place, what));
    }
    return points;
}

}  // namespace cntrtool
