// Writes the seed corpora of the fuzz targets: archives that the library stores itself (one or
// more per persistent class, sharing and nesting included), a few legacy (version 0) records
// built by hand after the documented layout, and geometry inputs for typical and hostile shapes.
//
// Usage: cntr_fuzz_seeds OUTDIR   (writes OUTDIR/archive/*, OUTDIR/geometry/* and, when built
// with the command-line tool, OUTDIR/json/*: files that the tool writes itself)
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <cntr/contour.h>
#include <cntr/contourdefs.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <cntrtmpl/contourt.h>
#include <cntrtmpl/regionsett.h>
#include <cntrtmpl/regiont.h>
#include <foundation/archive.h>
#include <foundation/exception.h>
#include <foundation/fit.h>
#include <foundation/xform.h>

#ifdef CNTR_FUZZ_JSON_SEEDS
#include <json_text.h>
#include <output_formats.h>
#include <shapes.h>
#endif

namespace {

using Bytes = std::vector<unsigned char>;
using Points = std::vector<xcVector<2>>;

void writeFile(const std::string& path, const Bytes& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        std::exit(1);
    }
}

template <class Handle>
Bytes stored(Handle handle) {
    xcMemoryArchive out;
    out || handle;
    return out.bytes();
}

Points square(double x, double y, double side) {
    return {{x, y}, {x + side, y}, {x + side, y + side}, {x, y + side}};
}

const Points kBowTie = {{0, 0}, {4, 4}, {4, 0}, {0, 4}};
const Points kPentagram = {{0, 10}, {6, -8}, {-9, 3}, {9, 3}, {-6, -8}};
const Points kFigureEight = {{0, 0}, {2, 2}, {4, 0}, {6, 2}, {6, 0}, {4, 2}, {2, 0}, {0, 2}};

std::vector<xcEdgelet> edgelets(const Points& points) {
    std::vector<xcEdgelet> data;
    int step = 0;
    for (const xcVector<2>& p : points) {
        step += 37;
        data.emplace_back(p, static_cast<std::uint16_t>(100 + step), xcAngle8(step));
    }
    return data;
}

// ---- archives ----

void archiveSeeds(const std::string& dir) {
    auto put = [&](const std::string& name, const Bytes& bytes) {
        writeFile(dir + "/" + name, bytes);
    };

    put("contour_closed", stored(xcPtrHandle<xcContour>(new xcContour(square(0, 0, 1), true, 7))));
    put("contour_open", stored(xcPtrHandle<xcContour>(new xcContour(kPentagram, false, 2))));
    put("contour_empty", stored(xcPtrHandle<xcContour>(new xcContour())));
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double inf = std::numeric_limits<double>::infinity();
        put("contour_nonfinite", stored(xcPtrHandle<xcContour>(new xcContour(
                                     {{nan, 0}, {inf, 1}, {1e308, -inf}, {0, 0}, {0, 0}}, true))));
    }

    xcPtrHandle<xcRegion> hole(new xcRegion(square(1, 1, 1)));
    xcPtrHandle<xcRegion> outer(new xcRegion(square(0, 0, 4)));
    outer->holes(std::vector<xcPtrHandle<xcRegion>>{hole});
    put("region_hole", stored(outer));
    put("region_bowtie", stored(xcPtrHandle<xcRegion>(new xcRegion(kBowTie))));
    {
        xcPtrHandle<xcRegion> island(new xcRegion(square(1.25, 1.25, 0.5)));
        xcPtrHandle<xcRegion> lake(new xcRegion(square(1, 1, 1)));
        lake->holes(std::vector<xcPtrHandle<xcRegion>>{island});
        xcPtrHandle<xcRegion> land(new xcRegion(square(0, 0, 4)));
        land->holes(std::vector<xcPtrHandle<xcRegion>>{lake, lake});
        put("region_nested_shared_holes", stored(land));
    }

    put("regionset_shared", stored(xcPtrHandle<xcRegionSet>(new xcRegionSet(
                                xcRegionSet::MutableRegionHandles{outer, hole, outer}))));
    put("regionset_crossing",
        stored(xcPtrHandle<xcRegionSet>(new xcRegionSet(xcRegionSet::MutableRegionHandles{
            xcPtrHandle<xcRegion>(new xcRegion(square(0, 0, 2))),
            xcPtrHandle<xcRegion>(new xcRegion(square(1, 1, 2))),
            xcPtrHandle<xcRegion>(new xcRegion(kFigureEight))}))));
    put("regionset_empty", stored(xcPtrHandle<xcRegionSet>(new xcRegionSet())));

    const xcPtrHandle_const<xc2XformBase> scale(
        new xc2XformLinear(xcXform<2>(xcMatrix<2>(2, 0, 0, 2), xcVector<2>(1, -1))));
    put("contourt", stored(xcPtrHandle<xcContourT<xcEdgelet>>(
                        new xcContourT<xcEdgelet>(edgelets(kPentagram), scale))));
    xcPtrHandle<xcRegionT<xcEdgelet>> regionT(
        new xcRegionT<xcEdgelet>(edgelets(square(0, 0, 3)), scale, 5));
    put("regiont", stored(regionT));
    xcPtrHandle<xcRegionT<xcEdgelet>> otherT(new xcRegionT<xcEdgelet>(edgelets(kBowTie), 6));
    put("regionsett",
        stored(xcPtrHandle<xcRegionSetT<xcEdgelet>>(new xcRegionSetT<xcEdgelet>(
            xcRegionSetT<xcEdgelet>::MutableRegionTHandles{regionT, otherT, regionT}))));

    put("xform_linear", stored(xcPtrHandle_const<xc2XformBase>(new xc2XformLinear(
                            xcXform<2>(xcMatrix<2>(0, -1, 1, 0), xcVector<2>(3, 4))))));

    auto putError = [&](const std::string& name, xcException* error) {
        std::unique_ptr<xcException> owned(error);
        xcMemoryArchive out;
        out || owned;
        put(name, out.bytes());
    };
    putError("error_emptycontour", new xcContourDefs::EmptyContour(L"empty"));
    putError("error_emptyregionset", new xcContourDefs::EmptyRegionSet());
    putError("error_badparams", new xcContourDefs::BadParams(L"invalid contour"));
    putError("error_cannotsetopen", new xcContourDefs::RegionCannotBeSetOpen());
    putError("error_unknownversion", new xcArchive::UnknownVersion("cntr/region", 822));
    putError("error_singular", new xcMathError::Singular(L"singular"));
    putError("error_badwindow", new xcPel::BadWindow());
    putError("error_notfinite", new xcMathError::NotFinite());
    putError("error_badformat", new xcArchive::BadFormat());
    putError("error_truncated", new xcArchive::Truncated());
    putError("error_unknownclass", new xcArchive::UnknownClass());
    putError("error_badreference", new xcArchive::BadReference());
    putError("error_counttoolarge", new xcArchive::CountTooLarge());
    putError("error_fileerror", new xcArchive::FileError());
    putError("error_valueoutofrange", new xcArchive::ValueOutOfRange());
    putError("error_baddata", new xcArchive::BadData());
    putError("error_unregisteredclass", new xcArchive::UnregisteredClass());
    putError("error_toofewpoints", new xcFitError::TooFewPoints());
    putError("error_degenerate", new xcFitError::Degenerate());
    putError("error_rmstoolarge", new xcFitError::RmsTooLarge(L"r\u00e9sidu \u2260 0"));
}

// Legacy records, which the library reads but never writes, laid out by hand.
void u8(Bytes& b, unsigned v) {
    b.push_back(static_cast<unsigned char>(v));
}
void u32(Bytes& b, std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
        u8(b, (v >> (8 * i)) & 0xFF);
}
void f64(Bytes& b, double v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    for (int i = 0; i < 8; ++i)
        u8(b, static_cast<unsigned>((bits >> (8 * i)) & 0xFF));
}
void pointVector(Bytes& b, const Points& points) {
    u8(b, 0);
    u32(b, static_cast<std::uint32_t>(points.size()));
    for (const xcVector<2>& p : points) {
        f64(b, p.x());
        f64(b, p.y());
    }
}
Bytes newObject(const std::string& name) {
    Bytes b = {'X', 'C', 'A', 'R', 1, 0, 0, 0};
    u8(b, 1);
    u32(b, static_cast<std::uint32_t>(name.size()));
    b.insert(b.end(), name.begin(), name.end());
    return b;
}

void legacySeeds(const std::string& dir) {
    // Contour version 0: version, legacy base (version 0, xcPersistent 0), points, an unused
    // byte, the memo limit and the closed flag.
    Bytes contour = newObject("xcContour");
    u8(contour, 0);
    u8(contour, 0);
    u8(contour, 0);
    pointVector(contour, kBowTie);
    u8(contour, 0);
    u32(contour, 3);
    u8(contour, 1);
    writeFile(dir + "/legacy_contour_v0", contour);

    // Region version 0: version, legacy base, points, an unused byte and the memo limit.
    Bytes region = newObject("xcRegion");
    u8(region, 0);
    u8(region, 0);
    u8(region, 0);
    pointVector(region, square(0, 0, 2));
    u8(region, 0);
    u32(region, 3);
    writeFile(dir + "/legacy_region_v0", region);
}

// ---- geometry inputs (the layout that geometry_fuzz.cpp decodes) ----

class GeometryWriter {
  public:
    void byte(unsigned v) { u8(bytes_, v); }
    void coordinate(double v) {
        if (std::isnan(v)) {
            byte(0x80);
        } else if (v == std::floor(v) && v >= -64 && v <= 63) {
            byte(static_cast<unsigned>(static_cast<int>(v) + 64));
        } else {
            byte(0xC0);
            f64(bytes_, v);
        }
    }
    void point(const xcVector<2>& p) {
        coordinate(p.x());
        coordinate(p.y());
    }
    void list(const Points& points) {
        byte(static_cast<unsigned>(points.size()));
        for (const xcVector<2>& p : points)
            point(p);
    }
    const Bytes& bytes() const { return bytes_; }

  private:
    Bytes bytes_;
};

struct GeometrySeed {
    const char* name;
    unsigned flags;
    Points first;
    Points second;
};

void geometrySeeds(const std::string& dir) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const GeometrySeed seeds[] = {
        {"squares_crossing", 0x01, square(0, 0, 4), square(2, 2, 4)},
        {"square_with_hole", 0x09, square(0, 0, 8), square(2, 2, 2)},
        {"bowtie_regularized", 0x05, kBowTie, square(10, 10, 1)},
        {"bowtie_outer_hull", 0x03, kBowTie, {}},
        {"pentagram_regularized", 0x25, kPentagram, kBowTie},
        {"figure_eight_outer_hull", 0x43, kFigureEight, square(1, 1, 4)},
        {"double_loop",
         0x05,
         {{0, 0}, {4, 0}, {4, 2}, {1, 2}, {1, -1}, {3, -1}, {3, 3}, {0, 3}},
         {}},
        {"repeated_vertices", 0x05, {{0, 0}, {0, 0}, {2, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 2}}, {}},
        {"open_polyline", 0x00, {{0, 0}, {3, 1}, {-2, 5}, {7, -3}}, {{1, -5}, {1, 5}}},
        {"nonfinite", 0x05, {{nan, 0}, {1, inf}, {-inf, 2}, {3, 3}}, {{0, 0}, {nan, nan}}},
        {"huge_and_tiny",
         0x03,
         {{1e300, 1e300}, {-1e300, 1e300}, {1e-300, -1e300}, {5e-324, 0}},
         {{1e154, 0}, {0, 1e154}, {-1e154, 0}}},
        {"edgelets", 0x11, square(0, 0, 3), kBowTie},
        {"edgelets_pentagram", 0x15, kPentagram, square(-1, -1, 2)},
    };
    for (const GeometrySeed& seed : seeds) {
        GeometryWriter w;
        w.byte(seed.flags);
        w.point({1, 1});     // query point
        w.point({5, 3});     // segment end
        w.coordinate(0.5);   // tolerance
        w.coordinate(0.25);  // angle
        for (double e : {2.0, 0.5, -0.5, 1.0, 3.0, -2.0})
            w.coordinate(e);  // transform
        w.list(seed.first);
        w.list(seed.second);
        if ((seed.flags & 0x10u) != 0)
            for (std::size_t i = 0; i < seed.first.size(); ++i) {
                w.byte(static_cast<unsigned>(i * 17));  // magnitude, low byte
                w.byte(1);
                w.byte(static_cast<unsigned>(i * 41));  // angle step
            }
        // No focus byte: every query group runs on the seeds.
        writeFile(dir + "/" + seed.name, w.bytes());
    }
}

#ifdef CNTR_FUZZ_JSON_SEEDS
// ---- the command-line tool's JSON input ----

void writeText(const std::string& path, const std::string& text) {
    writeFile(path, Bytes(text.begin(), text.end()));
}

cntrtool::Shape shapeOf(xcPtrHandle<xcRegion> region) {
    cntrtool::Shape shape;
    shape.kind = cntrtool::ShapeKind::region;
    shape.region = region;
    return shape;
}

/// Tool-format files that the tool writes itself, one shape kind each and all together, and
/// COCO files in the layout the tool reads (a polygon, several polygons, an RLE mask it skips).
void jsonSeeds(const std::string& dir) {
    std::vector<cntrtool::Shape> shapes;
    cntrtool::Shape contour;
    contour.kind = cntrtool::ShapeKind::contour;
    contour.contour = xcPtrHandle<xcContour>(new xcContour(kPentagram, false, 3));
    shapes.push_back(contour);

    xcPtrHandle<xcRegion> outer(new xcRegion(square(0, 0, 4)));
    outer->holes(
        std::vector<xcPtrHandle<xcRegion>>{xcPtrHandle<xcRegion>(new xcRegion(square(1, 1, 1)))});
    outer->label(5);
    shapes.push_back(shapeOf(outer));
    shapes.push_back(shapeOf(xcPtrHandle<xcRegion>(new xcRegion(kBowTie))));

    cntrtool::Shape set;
    set.kind = cntrtool::ShapeKind::regionSet;
    set.set = xcPtrHandle<xcRegionSet>(new xcRegionSet(
        xcRegionSet::MutableRegionHandles{xcPtrHandle<xcRegion>(new xcRegion(square(0, 0, 2))),
                                          xcPtrHandle<xcRegion>(new xcRegion(square(1, 1, 2)))}));
    shapes.push_back(set);

    cntrtool::Shape edgelet;
    edgelet.kind = cntrtool::ShapeKind::contour;
    edgelet.edgelet = true;
    edgelet.contour = xcPtrHandle<xcContour>(new xcContourT<xcEdgelet>(
        edgelets(kPentagram), xcPtrHandle_const<xc2XformBase>(new xc2XformLinear(
                                  xcXform<2>(xcMatrix<2>(2, 0, 0, 2), xcVector<2>(1, -1))))));
    shapes.push_back(edgelet);

    const char* names[] = {"tool_contour", "tool_region_hole", "tool_bowtie", "tool_regionset",
                           "tool_edgelet_contour"};
    for (std::size_t i = 0; i < shapes.size(); ++i)
        writeText(dir + "/" + names[i], cntrtool::prettyJson(cntrtool::toolDocument({shapes[i]})));
    writeText(dir + "/tool_all", cntrtool::prettyJson(cntrtool::toolDocument(shapes)));

    cntrtool::Json coco = {
        {"images", {{{"id", 1}, {"width", 64}, {"height", 64}}}},
        {"annotations",
         {{{"id", 1},
           {"image_id", 1},
           {"category_id", 2},
           {"segmentation", {{0, 0, 4, 4, 4, 0, 0, 4}}}},
          {{"id", 2},
           {"image_id", 1},
           {"category_id", 3},
           {"segmentation", {{10, 10, 20, 10, 20, 20, 10, 20}, {30, 30, 35, 30, 35, 35}}}},
          {{"id", 3},
           {"image_id", 1},
           {"category_id", 1},
           {"segmentation", {{"counts", {0, 4, 60}}, {"size", {8, 8}}}}}}}};
    writeText(dir + "/coco", cntrtool::prettyJson(coco));
}
#endif

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUTDIR\n", argv[0]);
        return 2;
    }
    const std::string out = argv[1];
    for (const char* target : {"archive", "geometry", "json"})
        std::filesystem::create_directories(out + "/" + target);
    archiveSeeds(out + "/archive");
    legacySeeds(out + "/archive");
    geometrySeeds(out + "/geometry");
#ifdef CNTR_FUZZ_JSON_SEEDS
    jsonSeeds(out + "/json");
#endif
    return 0;
}
