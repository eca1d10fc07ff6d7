// Reading typed values out of parsed JSON, with messages that say where the value was.
#ifndef CNTRTOOL_JSON_FIELDS_H
#define CNTRTOOL_JSON_FIELDS_H

#include <initializer_list>
#include <string>
#include <vector>

#include <foundation/vector.h>

#include "shapes.h"

namespace cntrtool {

/// Where in a file a value lies, for messages: the file and a path such as "shape 3, hole 1".
struct JsonPlace {
    const std::string& path;
    std::string where;

    /// The same file, one part deeper ("shape 3" + "hole 1" gives "shape 3, hole 1").
    JsonPlace operator/(const std::string& part) const;
    /// Throws InputError "FILE: WHERE: message".
    [[noreturn]] void fail(const std::string& message) const;
};

/// The member `key` of `object`, or null when it is absent.
const Json* findMember(const Json& object, const char* key);
/// Throws unless `node` is an object whose keys are all in `allowed`.
void requireKnownKeys(const Json& node, std::initializer_list<const char*> allowed,
                      const JsonPlace& place);
/// A finite coordinate; `what` names it in messages ("vertex 2").
double readCoordinate(const Json& value, const JsonPlace& place, const std::string& what);
/// A label: an integer from 0 to kMaxLabel.
unsigned long readLabel(const Json& value, const JsonPlace& place);
/// A bool.
bool readBool(const Json& value, const JsonPlace& place, const char* key);
/// An array of [x, y] pairs; `item` names one in messages ("vertex 2", "point 2").
std::vector<xcVector<2>> readPointPairs(const Json& value, const JsonPlace& place,
                                        const char* item = "vertex");
/// A flat array x0, y0, x1, y1, ... (COCO's polygon form).
std::vector<xcVector<2>> readFlatPolygon(const Json& value, const JsonPlace& place);

}  // namespace cntrtool

#endif
