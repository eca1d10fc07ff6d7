#include "input.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cntrtmpl/contourt.h>
#include <cntrtmpl/regionsett.h>
#include <cntrtmpl/regiont.h>
#include <foundation/archive.h>
#include <foundation/exception.h>
#include <foundation/xform.h>

#include "errors.h"
#include "json_fields.h"

namespace cntrtool {

namespace {

using EdgeletRegion = xcRegionT<xcEdgelet>;
using EdgeletContour = xcContourT<xcEdgelet>;
using EdgeletRegionSet = xcRegionSetT<xcEdgelet>;

bool looksLikeArchive(const std::vector<unsigned char>& bytes) {
    return bytes.size() >= sizeof xcArchive::kMagic &&
           std::memcmp(bytes.data(), xcArchive::kMagic, sizeof xcArchive::kMagic) == 0;
}

// Edgelets at the given points, as the library builds them for new outlines: magnitude 0,
// angle 0.
std::vector<xcEdgelet> edgeletsAt(const std::vector<xcVector<2>>& points) {
    std::vector<xcEdgelet> data;
    data.reserve(points.size());
    for (const xcVector<2>& p : points)
        data.emplace_back(p, 0, xcAngle8());
    return data;
}

// Builds the regions of a tool JSON file, collecting the holes the library refuses.
class RegionBuilder {
  public:
    explicit RegionBuilder(std::vector<RefusedHoles>& refused) : refused_(refused) {}

    // A region from `node` (already known to be an object); `part` is its path inside the
    // shape ("" for the shape's own region), `edgelet` whether to build the edgelet class.
    xcPtrHandle<xcRegion> build(const Json& node, const JsonPlace& place, const std::string& part,
                                bool edgelet, unsigned long defaultLabel, int depth) {
        if (depth > kMaxHoleDepth)
            place.fail("holes nested deeper than " + std::to_string(kMaxHoleDepth) + " levels");
        const Json* pointsNode = findMember(node, "points");
        if (pointsNode == nullptr)
            place.fail("a region needs \"points\"");
        const std::vector<xcVector<2>> points = readPointPairs(*pointsNode, place);
        const Json* labelNode = findMember(node, "label");
        const unsigned long label = labelNode ? readLabel(*labelNode, place) : defaultLabel;

        xcPtrHandle<xcRegion> region;
        if (edgelet)
            region = xcPtrHandle<xcRegion>(new EdgeletRegion(edgeletsAt(points), label));
        else
            region = xcPtrHandle<xcRegion>(new xcRegion(points, xcContourDefs::keepOutline));
        region->label(label);

        if (const Json* holesNode = findMember(node, "holes"))
            setHoles(*region, *holesNode, place, part, depth);
        return region;
    }

  private:
    void setHoles(xcRegion& region, const Json& holesNode, const JsonPlace& place,
                  const std::string& part, int depth) {
        if (!holesNode.is_array())
            place.fail(std::string("\"holes\" must be an array of regions, not ") +
                       holesNode.type_name());
        std::vector<xcPtrHandle<xcRegion>> holes;
        for (std::size_t k = 0; k < holesNode.size(); ++k) {
            const std::string name = "hole " + std::to_string(k);
            const JsonPlace holePlace = place / name;
            checkNestedRegion(holesNode[k], holePlace);
            holes.push_back(build(holesNode[k], holePlace, part.empty() ? name : part + ", " + name,
                                  false, 0, depth + 1));
        }
        if (holes.empty())
            return;
        try {
            region.holes(holes);
        } catch (const xcContourDefs::Errors& e) {
            refused_.push_back(RefusedHoles{part, holes, e.what()});
        }
    }

    std::vector<RefusedHoles>& refused_;

  public:
    static void checkNestedRegion(const Json& node, const JsonPlace& place) {
        requireKnownKeys(node, {"kind", "label", "points", "holes"}, place);
        const Json* kind = findMember(node, "kind");
        if (kind != nullptr && *kind != "region")
            place.fail("\"kind\" must be \"region\" here");
    }
};

bool readEdgeletFlag(const Json& node, const JsonPlace& place) {
    const Json* flag = findMember(node, "edgelet");
    return flag != nullptr && readBool(*flag, place, "edgelet");
}

std::vector<xcEdgelet> readEdgelets(const Json& value, const JsonPlace& place) {
    if (!value.is_array())
        place.fail("\"edgelets\" must be an array of [x, y, magnitude, angle] entries");
    std::vector<xcEdgelet> data;
    data.reserve(value.size());
    for (std::size_t k = 0; k < value.size(); ++k) {
        const Json& e = value[k];
        const std::string what = "edgelet " + std::to_string(k);
        if (!e.is_array() || e.size() != 4)
            place.fail(what + " must be an [x, y, magnitude, angle] entry");
        if (!e[2].is_number_unsigned() || e[2].get<unsigned long long>() > 65535)
            place.fail(what + ": the magnitude must be an integer from 0 to 65535");
        if (!e[3].is_number_unsigned() || e[3].get<unsigned long long>() > 255)
            place.fail(what + ": the angle must be an integer step from 0 to 255");
        data.emplace_back(
            xcVector<2>(readCoordinate(e[0], place, what), readCoordinate(e[1], place, what)),
            static_cast<std::uint16_t>(e[2].get<unsigned>()),
            xcAngle8(static_cast<int>(e[3].get<unsigned>())));
    }
    return data;
}

// [[a, b, tx], [c, d, ty]]: the affine transform x' = a x + b y + tx, y' = c x + d y + ty.
xcXform<2> readXform(const Json& value, const JsonPlace& place) {
    const auto row = [&](std::size_t r) {
        if (!value.is_array() || value.size() != 2 || !value[r].is_array() || value[r].size() != 3)
            place.fail("\"xform\" must be [[a, b, tx], [c, d, ty]]");
        return value[r];
    };
    const Json r0 = row(0), r1 = row(1);
    const auto at = [&](const Json& r, std::size_t c) {
        return readCoordinate(r[c], place, "\"xform\"");
    };
    return xcXform<2>(xcMatrix<2>(at(r0, 0), at(r0, 1), at(r1, 0), at(r1, 1)),
                      xcVector<2>(at(r0, 2), at(r1, 2)));
}

Shape readContour(const Json& node, const JsonPlace& place) {
    requireKnownKeys(node, {"kind", "label", "closed", "points", "edgelets", "xform"}, place);
    const Json* labelNode = findMember(node, "label");
    const unsigned long label = labelNode ? readLabel(*labelNode, place) : 0;
    const Json* closedNode = findMember(node, "closed");
    const bool closed = closedNode != nullptr && readBool(*closedNode, place, "closed");
    const Json* pointsNode = findMember(node, "points");
    const Json* edgeletsNode = findMember(node, "edgelets");

    Shape shape;
    shape.kind = ShapeKind::contour;
    if (edgeletsNode != nullptr) {
        if (pointsNode != nullptr)
            place.fail("give \"points\" or \"edgelets\", not both");
        const Json* xformNode = findMember(node, "xform");
        const xcXform<2> xform = xformNode ? readXform(*xformNode, place) : xcXform<2>::I;
        try {
            shape.contour = xcPtrHandle<xcContour>(new EdgeletContour(
                readEdgelets(*edgeletsNode, place),
                xcPtrHandle_const<xc2XformBase>(new xc2XformLinear(xform))));
        } catch (const xcMathError::Singular&) {
            place.fail("\"xform\" has no inverse");
        }
        shape.contour->isClosed(closed);
        shape.contour->label(label);
        shape.edgelet = true;
        return shape;
    }
    if (findMember(node, "xform") != nullptr)
        place.fail("\"xform\" belongs to contours given by \"edgelets\"");
    if (pointsNode == nullptr)
        place.fail("a contour needs \"points\" or \"edgelets\"");
    shape.contour =
        xcPtrHandle<xcContour>(new xcContour(readPointPairs(*pointsNode, place), closed, label));
    return shape;
}

Shape readRegion(const Json& node, const JsonPlace& place) {
    requireKnownKeys(node, {"kind", "label", "points", "holes", "edgelet"}, place);
    Shape shape;
    shape.kind = ShapeKind::region;
    shape.edgelet = readEdgeletFlag(node, place);
    shape.region = RegionBuilder(shape.refused).build(node, place, "", shape.edgelet, 0, 0);
    return shape;
}

Shape readRegionSet(const Json& node, const JsonPlace& place) {
    requireKnownKeys(node, {"kind", "label", "regions", "edgelet"}, place);
    Shape shape;
    shape.kind = ShapeKind::regionSet;
    shape.edgelet = readEdgeletFlag(node, place);
    const Json* labelNode = findMember(node, "label");
    const unsigned long label = labelNode ? readLabel(*labelNode, place) : 0;
    const Json* regionsNode = findMember(node, "regions");
    if (regionsNode == nullptr || !regionsNode->is_array())
        place.fail("a region set needs a \"regions\" array");

    RegionBuilder builder(shape.refused);
    std::vector<xcPtrHandle<xcRegion>> regions;
    for (std::size_t i = 0; i < regionsNode->size(); ++i) {
        const std::string part = "region " + std::to_string(i);
        const JsonPlace regionPlace = place / part;
        RegionBuilder::checkNestedRegion((*regionsNode)[i], regionPlace);
        regions.push_back(
            builder.build((*regionsNode)[i], regionPlace, part, shape.edgelet, label, 0));
    }
    if (shape.edgelet) {
        EdgeletRegionSet::MutableRegionTHandles members;
        for (const xcPtrHandle<xcRegion>& r : regions)
            members.emplace_back(dynamic_cast<EdgeletRegion*>(r.rep()));
        shape.set = xcPtrHandle<xcRegionSet>(new EdgeletRegionSet(members));
    } else {
        shape.set = xcPtrHandle<xcRegionSet>(new xcRegionSet(regions, xcContourDefs::keepOutline));
    }
    return shape;
}

Shape readToolShape(const Json& node, const JsonPlace& place) {
    if (!node.is_object())
        place.fail(std::string("a shape must be an object, not ") + node.type_name());
    const Json* kind = findMember(node, "kind");
    if (kind == nullptr)
        place.fail("a shape needs a \"kind\" (\"contour\", \"region\" or \"regionset\")");
    if (*kind == "contour")
        return readContour(node, place);
    if (*kind == "region")
        return readRegion(node, place);
    if (*kind == "regionset")
        return readRegionSet(node, place);
    place.fail("unknown kind " + kind->dump() + " (\"contour\", \"region\" or \"regionset\")");
}

// The shape of one COCO annotation, or false when it holds no polygon.
bool readCocoAnnotation(const Json& node, const JsonPlace& place, Shape& shape,
                        std::size_t& rleMasks, std::size_t& withoutPolygons) {
    if (!node.is_object())
        place.fail(std::string("an annotation must be an object, not ") + node.type_name());
    const Json* segmentation = findMember(node, "segmentation");
    if (segmentation == nullptr)
        place.fail("no \"segmentation\"");
    if (segmentation->is_object()) {
        ++rleMasks;
        return false;
    }
    if (!segmentation->is_array())
        place.fail(std::string("\"segmentation\" must be a list of polygons or an RLE mask, not ") +
                   segmentation->type_name());
    if (segmentation->empty()) {
        ++withoutPolygons;
        return false;
    }
    const Json* category = findMember(node, "category_id");
    const unsigned long label = category ? readLabel(*category, place / "category_id") : 0;

    std::vector<xcPtrHandle<xcRegion>> regions;
    for (std::size_t k = 0; k < segmentation->size(); ++k) {
        const JsonPlace polygonPlace = place / ("polygon " + std::to_string(k));
        regions.emplace_back(new xcRegion(readFlatPolygon((*segmentation)[k], polygonPlace),
                                          xcContourDefs::keepOutline));
        regions.back()->label(label);
    }
    if (regions.size() == 1) {
        shape.kind = ShapeKind::region;
        shape.region = regions.front();
    } else {
        shape.kind = ShapeKind::regionSet;
        shape.set = xcPtrHandle<xcRegionSet>(new xcRegionSet(regions, xcContourDefs::keepOutline));
    }
    return true;
}

void warnSkipped(std::ostream& warnings, const std::string& path, std::size_t count,
                 const char* what) {
    if (count > 0)
        warnings << "cntrtool: warning: " << path << ": " << count << ' ' << what << '\n';
}

// The shape that the archive object `object` is, or throws naming what it is instead.
Shape shapeOfObject(xcPersistent* object, const JsonPlace& place) {
    Shape shape;
    if (auto* set = dynamic_cast<xcRegionSet*>(object)) {
        shape.kind = ShapeKind::regionSet;
        shape.edgelet = dynamic_cast<EdgeletRegionSet*>(set) != nullptr;
        shape.set = xcPtrHandle<xcRegionSet>(set);
    } else if (auto* region = dynamic_cast<xcRegion*>(object)) {
        shape.kind = ShapeKind::region;
        shape.edgelet = dynamic_cast<EdgeletRegion*>(region) != nullptr;
        shape.region = xcPtrHandle<xcRegion>(region);
    } else if (auto* contour = dynamic_cast<xcContour*>(object)) {
        shape.kind = ShapeKind::contour;
        shape.edgelet = dynamic_cast<EdgeletContour*>(contour) != nullptr;
        shape.contour = xcPtrHandle<xcContour>(contour);
    } else if (object == nullptr) {
        place.fail("a null object, not a shape");
    } else {
        place.fail("not a contour, region or region set");
    }
    return shape;
}

void requireFiniteCoordinates(const Shape& shape, const JsonPlace& place) {
    forEachOutline(shape, [&place](const OutlineRef& o) {
        const std::vector<xcVector<2>>& points = o.outline.points();
        for (std::size_t k = 0; k < points.size(); ++k)
            if (!std::isfinite(points[k].x()) || !std::isfinite(points[k].y()))
                (o.where.empty() ? place : place / o.where)
                    .fail("vertex " + std::to_string(k) + " has a non-finite coordinate");
    });
}

// Closes the descriptor on every way out.
class OpenFile {
  public:
    explicit OpenFile(int fd) : fd_(fd) {}
    ~OpenFile() { ::close(fd_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

  private:
    int fd_;
};

std::string limitAdvice(std::uint64_t maxBytes) {
    return "the input limit is " + std::to_string(maxBytes) + " bytes (see --max-input)";
}

// Reads until the end, or until more than `maxBytes` have come (which is refused).
std::vector<unsigned char> readUpTo(int fd, const std::string& path, std::uint64_t maxBytes,
                                    bool regular, std::size_t expectedSize) {
    constexpr std::size_t kChunk = std::size_t(1) << 20;
    std::vector<unsigned char> bytes;
    bytes.reserve(expectedSize + 1);
    for (;;) {
        // Never more than one byte past the limit: enough to know that it was passed.
        const std::uint64_t room = maxBytes - bytes.size();
        const std::size_t want = room >= kChunk ? kChunk : static_cast<std::size_t>(room) + 1;
        const std::size_t before = bytes.size();
        bytes.resize(before + want);
        const ssize_t n = ::read(fd, bytes.data() + before, want);
        if (n < 0 && errno == EINTR) {
            bytes.resize(before);
            continue;
        }
        if (n < 0)
            throw InputError(path, std::string("cannot read: ") + std::strerror(errno));
        bytes.resize(before + static_cast<std::size_t>(n));
        if (n == 0)
            return bytes;
        if (bytes.size() > maxBytes)
            throw InputError(path, std::string(regular ? "the file grew while it was read"
                                                       : "the input has not ended") +
                                       ": stopped after " + std::to_string(maxBytes) +
                                       " bytes; " + limitAdvice(maxBytes));
    }
}

}  // namespace

std::vector<unsigned char> readFileBytes(const std::string& path, std::uint64_t maxBytes) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throw InputError(path, std::string("cannot open: ") + std::strerror(errno));
    const OpenFile file(fd);
    struct stat info {};
    if (::fstat(fd, &info) != 0)
        throw InputError(path, std::string("cannot open: ") + std::strerror(errno));
    if (S_ISDIR(info.st_mode))
        throw InputError(path, "cannot open: is a directory");
    const bool regular = S_ISREG(info.st_mode);
    if (regular && static_cast<std::uint64_t>(info.st_size) > maxBytes)
        throw InputError(path, "too large: " + std::to_string(info.st_size) + " bytes; " +
                                   limitAdvice(maxBytes));
    return readUpTo(fd, path, maxBytes, regular,
                    regular ? static_cast<std::size_t>(info.st_size) : 0);
}

std::vector<Shape> readToolJson(const std::string& path, const Json& document) {
    const JsonPlace top{path, ""};
    if (const Json* version = findMember(document, "version"); version && *version != 1)
        top.fail("unknown \"version\" " + version->dump() + " (this tool reads version 1)");
    const Json* shapesNode = findMember(document, "shapes");
    if (shapesNode == nullptr || !shapesNode->is_array())
        top.fail("\"shapes\" must be an array");
    std::vector<Shape> shapes;
    shapes.reserve(shapesNode->size());
    for (std::size_t i = 0; i < shapesNode->size(); ++i) {
        shapes.push_back(readToolShape((*shapesNode)[i], top / ("shape " + std::to_string(i))));
        shapes.back().index = i;
    }
    return shapes;
}

std::vector<Shape> readCoco(const std::string& path, const Json& document,
                            std::ostream& warnings) {
    const JsonPlace top{path, ""};
    const Json* annotations = findMember(document, "annotations");
    if (annotations == nullptr || !annotations->is_array())
        top.fail("\"annotations\" must be an array");
    std::vector<Shape> shapes;
    std::size_t rleMasks = 0, withoutPolygons = 0;
    for (std::size_t i = 0; i < annotations->size(); ++i) {
        Shape shape;
        if (!readCocoAnnotation((*annotations)[i], top / ("annotation " + std::to_string(i)),
                                shape, rleMasks, withoutPolygons))
            continue;
        shape.index = i;
        shapes.push_back(shape);
    }
    warnSkipped(warnings, path, rleMasks, "RLE masks skipped (only polygons are read)");
    warnSkipped(warnings, path, withoutPolygons, "annotations without polygons skipped");
    return shapes;
}

std::vector<Shape> readArchive(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::vector<Shape> shapes;
    std::size_t i = 0;
    try {
        xcMemoryArchive archive(bytes);
        for (; archive.bytesLeft() > 0; ++i) {
            xcPersistent* object = nullptr;
            xcPersistent::serializePointer(archive, nullptr, object);
            // An object without a count (an exception) is ours to delete; counted ones belong
            // to the archive until a handle adopts them.
            std::unique_ptr<xcPersistent> owned;
            if (object != nullptr && dynamic_cast<xcRepBase*>(object) == nullptr)
                owned.reset(object);
            const JsonPlace place{path, "object " + std::to_string(i)};
            shapes.push_back(shapeOfObject(object, place));
            shapes.back().index = i;
            requireFiniteCoordinates(shapes.back(), place);
        }
    } catch (const xcException& e) {
        throw InputError(path, "object " + std::to_string(i) + ": corrupt archive: " + e.what());
    }
    return shapes;
}

ShapeFile loadShapeFile(const std::string& path, std::ostream& warnings, std::uint64_t maxBytes) {
    ShapeFile file;
    file.path = path;
    const std::vector<unsigned char> bytes = readFileBytes(path, maxBytes);
    if (looksLikeArchive(bytes)) {
        file.format = FileFormat::archive;
        file.shapes = readArchive(path, bytes);
        return file;
    }
    file.document = parseJson(path, std::string(bytes.begin(), bytes.end()));
    if (!file.document.is_object())
        throw InputError(path, "the document must be a JSON object with \"shapes\" (cntrtool) "
                               "or \"annotations\" (COCO)");
    if (file.document.contains("shapes")) {
        file.format = FileFormat::toolJson;
        file.shapes = readToolJson(path, file.document);
    } else if (file.document.contains("annotations")) {
        file.format = FileFormat::coco;
        file.shapes = readCoco(path, file.document, warnings);
    } else {
        throw InputError(path, "neither a cntrtool file (no \"shapes\" array) nor a COCO file "
                               "(no \"annotations\" array)");
    }
    return file;
}

ShapeFile loadArchiveFile(const std::string& path, std::uint64_t maxBytes) {
    const std::vector<unsigned char> bytes = readFileBytes(path, maxBytes);
    if (!looksLikeArchive(bytes))
        throw InputError(path, "not an archive (unpack reads what pack writes)");
    ShapeFile file;
    file.path = path;
    file.format = FileFormat::archive;
    file.shapes = readArchive(path, bytes);
    return file;
}

}  // namespace cntrtool
