#include "input.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cntrtmpl/contourt.h>
#include <cntrtmpl/regionsett.h>
#include <cntrtmpl/regiont.h>
#include <foundation/archive.h>
#include <foundation/xform.h>
#include <gtest/gtest.h>

#include "tool_testing.h"

using cntrtool::readArchive;
using cntrtool::readCoco;
using cntrtool::Shape;
using cntrtool::ShapeKind;
using cntrtool_testing::inputErrorOf;
using cntrtool_testing::ScratchDir;
using cntrtool_testing::shapesOf;

namespace {

std::vector<unsigned char> archiveOf(const std::vector<xcPtrHandle<xcContour>>& contours) {
    xcMemoryArchive archive;
    for (xcPtrHandle<xcContour> c : contours)
        archive || c;
    return archive.bytes();
}

std::string toolJsonError(const std::string& shape) {
    return inputErrorOf([&] { shapesOf("{\"shapes\": [" + shape + "]}"); });
}

}  // namespace

TEST(ToolJson, ContourDefaultsToOpenWithLabelZero) {
    const auto shapes = shapesOf(R"({"shapes": [{"kind": "contour", "points": [[0, 0], [1, 2]]}]})");
    ASSERT_EQ(shapes.size(), 1u);
    EXPECT_EQ(shapes[0].kind, ShapeKind::contour);
    EXPECT_FALSE(shapes[0].contour->isClosed());
    EXPECT_EQ(shapes[0].contour->label(), 0ul);
    EXPECT_EQ(shapes[0].contour->points(),
              (std::vector<xcVector<2>>{{0, 0}, {1, 2}}));
}

TEST(ToolJson, RegionWithNestedHoles) {
    const auto shapes = shapesOf(R"({"shapes": [{"kind": "region", "label": 4294967295,
        "points": [[0, 0], [10, 0], [10, 10], [0, 10]],
        "holes": [{"label": 3, "points": [[2, 2], [8, 2], [8, 8], [2, 8]],
                   "holes": [{"kind": "region", "points": [[4, 4], [6, 4], [6, 6]]}]}]}]})");
    const xcRegion& r = *shapes[0].region;
    EXPECT_EQ(r.label(), 4294967295ul);
    ASSERT_EQ(r.holes().size(), 1u);
    EXPECT_EQ(r.holes()[0]->label(), 3ul);
    ASSERT_EQ(r.holes()[0]->holes().size(), 1u);
    EXPECT_EQ(r.holes()[0]->holes()[0]->points().size(), 3u);
    EXPECT_TRUE(shapes[0].refused.empty());
}

TEST(ToolJson, SetLabelIsTheDefaultOfItsRegions) {
    const auto shapes = shapesOf(R"({"shapes": [{"kind": "regionset", "label": 5, "regions": [
        {"points": [[0, 0], [1, 0], [1, 1]]}, {"label": 2, "points": [[3, 0], [4, 0], [4, 1]]}]}]})");
    const auto regions = cntrtool::regionsOf(*shapes[0].set);
    ASSERT_EQ(regions.size(), 2u);
    EXPECT_EQ(regions[0]->label(), 5ul);
    EXPECT_EQ(regions[1]->label(), 2ul);
    EXPECT_EQ(cntrtool::labelOf(shapes[0]), 5ul);
}

TEST(ToolJson, EdgeletShapesBuildTheEdgeletClasses) {
    const auto shapes = shapesOf(R"({"shapes": [
        {"kind": "contour", "closed": true, "label": 7,
         "edgelets": [[2, 4, 100, 64], [6, 4, 7, 0]], "xform": [[2, 0, 0], [0, 2, 0]]},
        {"kind": "region", "edgelet": true, "points": [[0, 0], [1, 0], [1, 1]]},
        {"kind": "regionset", "edgelet": true, "regions": [{"points": [[0, 0], [1, 0], [1, 1]]}]}]})");
    const auto* contour = dynamic_cast<const xcContourT<xcEdgelet>*>(shapes[0].contour.rep());
    ASSERT_NE(contour, nullptr);
    EXPECT_TRUE(shapes[0].edgelet);
    EXPECT_TRUE(contour->isClosed());
    EXPECT_EQ(contour->label(), 7ul);
    // Vertices are the positions mapped back through the transform (scale 2): (1,2), (3,2).
    EXPECT_EQ(contour->points(), (std::vector<xcVector<2>>{{1, 2}, {3, 2}}));
    EXPECT_EQ(contour->data()[0].magnitude(), 100);
    EXPECT_EQ(contour->data()[0].angle().raw(), 64);
    EXPECT_NE(dynamic_cast<const xcRegionT<xcEdgelet>*>(shapes[1].region.rep()), nullptr);
    EXPECT_NE(dynamic_cast<const xcRegionSetT<xcEdgelet>*>(shapes[2].set.rep()), nullptr);
}

TEST(ToolJson, HolesCrossingTheOutlineAreKeptAside) {
    const auto shapes = shapesOf(R"({"shapes": [{"kind": "region",
        "points": [[0, 0], [8, 0], [8, 8], [0, 8]],
        "holes": [{"points": [[6, 2], [10, 2], [10, 6], [6, 6]]}]}]})");
    EXPECT_TRUE(shapes[0].region->holes().empty());
    ASSERT_EQ(shapes[0].refused.size(), 1u);
    EXPECT_EQ(shapes[0].refused[0].where, "");
    EXPECT_EQ(shapes[0].refused[0].reason, "holes cannot intersect region");
    EXPECT_EQ(shapes[0].refused[0].holes.size(), 1u);
    EXPECT_EQ(cntrtool::holeCount(shapes[0]), 1u);
    EXPECT_EQ(cntrtool::vertexCount(shapes[0]), 8u);
}

TEST(ToolJson, RefusedHolesOfASetMemberNameTheirPlace) {
    const auto shapes = shapesOf(R"({"shapes": [{"kind": "regionset", "regions": [
        {"points": [[0, 0], [1, 0], [1, 1]]},
        {"points": [[0, 0], [8, 0], [8, 8], [0, 8]],
         "holes": [{"points": [[6, 2], [10, 2], [10, 6], [6, 6]]}]}]}]})");
    ASSERT_EQ(shapes[0].refused.size(), 1u);
    EXPECT_EQ(shapes[0].refused[0].where, "region 1");
}

TEST(ToolJson, Refusals) {
    EXPECT_EQ(toolJsonError(R"({"points": []})"),
              "x.json: shape 0: a shape needs a \"kind\" (\"contour\", \"region\" or \"regionset\")");
    EXPECT_EQ(toolJsonError(R"({"kind": "polygon"})"),
              "x.json: shape 0: unknown kind \"polygon\" (\"contour\", \"region\" or \"regionset\")");
    EXPECT_EQ(toolJsonError(R"({"kind": "region", "points": [], "hole": []})"),
              "x.json: shape 0: unknown key \"hole\"");
    EXPECT_EQ(toolJsonError(R"({"kind": "region", "label": -1, "points": []})"),
              "x.json: shape 0: \"label\" must be an integer from 0 to 4294967295");
    EXPECT_EQ(toolJsonError(R"({"kind": "region", "label": 4294967296, "points": []})"),
              "x.json: shape 0: \"label\" must be an integer from 0 to 4294967295");
    EXPECT_EQ(toolJsonError(R"({"kind": "region", "label": 1.5, "points": []})"),
              "x.json: shape 0: \"label\" must be an integer from 0 to 4294967295");
    EXPECT_EQ(toolJsonError(R"({"kind": "region", "points": [[0, 0], [1]]})"),
              "x.json: shape 0: vertex 1 must be an [x, y] pair");
    EXPECT_EQ(toolJsonError(R"({"kind": "region", "points": [[0, "1"]]})"),
              "x.json: shape 0: vertex 0: a coordinate must be a number, not string");
    EXPECT_EQ(toolJsonError(R"({"kind": "contour", "closed": 1, "points": []})"),
              "x.json: shape 0: \"closed\" must be true or false, not number");
    EXPECT_EQ(toolJsonError(R"({"kind": "region"})"), "x.json: shape 0: a region needs \"points\"");
    EXPECT_EQ(toolJsonError(R"({"kind": "contour", "points": [], "edgelets": []})"),
              "x.json: shape 0: give \"points\" or \"edgelets\", not both");
    EXPECT_EQ(toolJsonError(R"({"kind": "contour", "edgelets": [[0, 0, 70000, 0]]})"),
              "x.json: shape 0: edgelet 0: the magnitude must be an integer from 0 to 65535");
    EXPECT_EQ(toolJsonError(
                  R"({"kind": "contour", "edgelets": [[0, 0, 1, 0]], "xform": [[0, 0, 0], [0, 0, 0]]})"),
              "x.json: shape 0: \"xform\" has no inverse");
    EXPECT_EQ(toolJsonError(R"({"kind": "regionset", "regions": [{"kind": "contour", "points": []}]})"),
              "x.json: shape 0, region 0: \"kind\" must be \"region\" here");
    EXPECT_EQ(toolJsonError(R"({"kind": "regionset", "regions": [{"points": [[0, 0], [1, NaN]]}]})"),
              "x.json: shape 0, region 0: vertex 1 has a non-finite coordinate");
    EXPECT_EQ(toolJsonError("7"), "x.json: shape 0: a shape must be an object, not number");
}

TEST(ToolJson, HolesNestedTooDeeplyAreRefused) {
    std::string region = R"({"points": [[0, 0], [1, 0], [1, 1]]})";
    for (int depth = 0; depth <= cntrtool::kMaxHoleDepth; ++depth)
        region = R"({"points": [[0, 0], [1, 0], [1, 1]], "holes": [)" + region + "]}";
    const std::string message = toolJsonError(R"({"kind": "region", )" + region.substr(1));
    EXPECT_NE(message.find("holes nested deeper than 64 levels"), std::string::npos) << message;
}

TEST(ToolJson, DocumentRefusals) {
    EXPECT_EQ(inputErrorOf([] { shapesOf(R"({"version": 2, "shapes": []})"); }),
              "x.json: unknown \"version\" 2 (this tool reads version 1)");
    EXPECT_EQ(inputErrorOf([] { shapesOf(R"({"shapes": {}})"); }),
              "x.json: \"shapes\" must be an array");
}

TEST(Coco, PolygonsBecomeRegionsAndSetsAndMasksAreCounted) {
    const cntrtool::Json doc = cntrtool::parseJson("c.json", R"({"annotations": [
        {"category_id": 3, "segmentation": [[0, 0, 4, 0, 4, 3]]},
        {"category_id": 1, "segmentation": {"size": [4, 4], "counts": "abc"}},
        {"category_id": 2, "segmentation": [[0, 0, 1, 0, 1, 1], [5, 5, 6, 5, 6, 6]]},
        {"category_id": 1, "segmentation": []},
        {"segmentation": {"size": [4, 4], "counts": [1, 2]}}]})");
    std::ostringstream warnings;
    const auto shapes = readCoco("c.json", doc, warnings);
    ASSERT_EQ(shapes.size(), 2u);
    EXPECT_EQ(shapes[0].kind, ShapeKind::region);
    EXPECT_EQ(shapes[0].index, 0u);
    EXPECT_EQ(shapes[0].region->label(), 3ul);
    EXPECT_EQ(shapes[1].kind, ShapeKind::regionSet);
    EXPECT_EQ(shapes[1].index, 2u);
    EXPECT_EQ(cntrtool::labelOf(shapes[1]), 2ul);
    EXPECT_EQ(warnings.str(),
              "cntrtool: warning: c.json: 2 RLE masks skipped (only polygons are read)\n"
              "cntrtool: warning: c.json: 1 annotations without polygons skipped\n");
}

TEST(Coco, Refusals) {
    const auto error = [](const std::string& annotation) {
        std::ostringstream warnings;
        return inputErrorOf([&] {
            readCoco("c.json", cntrtool::parseJson("c.json", "{\"annotations\": [" + annotation + "]}"),
                     warnings);
        });
    };
    EXPECT_EQ(error(R"({"segmentation": [[0, 0, 1, 0, 1]]})"),
              "c.json: annotation 0, polygon 0: odd number of coordinates (5)");
    EXPECT_EQ(error(R"({"segmentation": [[0, 0, 1e999, 0]]})"),
              "c.json: annotation 0, polygon 0: vertex 1 has a non-finite coordinate");
    EXPECT_EQ(error(R"({"category_id": "a", "segmentation": [[0, 0, 1, 0]]})"),
              "c.json: annotation 0, category_id: \"label\" must be an integer from 0 to 4294967295");
    EXPECT_EQ(error(R"({"id": 1})"), "c.json: annotation 0: no \"segmentation\"");
    EXPECT_EQ(error(R"({"segmentation": 5})"),
              "c.json: annotation 0: \"segmentation\" must be a list of polygons or an RLE mask, not number");
}

TEST(Archive, ReadsEveryShapeInOrder) {
    xcMemoryArchive archive;
    xcPtrHandle<xcContour> contour(new xcContour({{0, 0}, {1, 1}}, false, 9));
    xcPtrHandle<xcRegion> region(new xcRegion({{0, 0}, {2, 0}, {2, 2}}));
    xcPtrHandle<xcRegionSet> set(new xcRegionSet(xcRegionSet::MutableRegionHandles{region}));
    archive || contour || region || set;
    const auto shapes = readArchive("a.xca", archive.bytes());
    ASSERT_EQ(shapes.size(), 3u);
    EXPECT_EQ(shapes[0].kind, ShapeKind::contour);
    EXPECT_EQ(shapes[0].contour->label(), 9ul);
    EXPECT_EQ(shapes[1].kind, ShapeKind::region);
    EXPECT_EQ(shapes[2].kind, ShapeKind::regionSet);
    EXPECT_EQ(shapes[2].index, 2u);
    // The region stored twice is one object again.
    EXPECT_EQ(cntrtool::regionsOf(*shapes[2].set)[0].rep(), shapes[1].region.rep());
}

TEST(Archive, NonFiniteCoordinatesAreRefused) {
    const auto bytes = archiveOf({xcPtrHandle<xcContour>(new xcContour({{0, 0}, {1, 1}}, true)),
                                  xcPtrHandle<xcContour>(new xcContour({{0, 0}, {NAN, 1}}, true))});
    EXPECT_EQ(inputErrorOf([&] { readArchive("a.xca", bytes); }),
              "a.xca: object 1: vertex 1 has a non-finite coordinate");
}

TEST(Archive, ObjectsThatAreNotShapesAreRefused) {
    xcMemoryArchive archive;
    xcPtrHandle<xc2XformBase> xform(new xc2XformLinear());
    archive || xform;
    EXPECT_EQ(inputErrorOf([&] { readArchive("a.xca", archive.bytes()); }),
              "a.xca: object 0: not a contour, region or region set");
    xcMemoryArchive nulls;
    xcPtrHandle<xcContour> none;
    nulls || none;
    EXPECT_EQ(inputErrorOf([&] { readArchive("a.xca", nulls.bytes()); }),
              "a.xca: object 0: a null object, not a shape");
}

TEST(Archive, TruncatedArchiveIsRefused) {
    auto bytes = archiveOf({xcPtrHandle<xcContour>(new xcContour({{0, 0}, {1, 1}}, true))});
    bytes.resize(bytes.size() - 3);
    EXPECT_EQ(inputErrorOf([&] { readArchive("a.xca", bytes); }),
              "a.xca: object 0: corrupt archive: archive data ends early: 4 bytes needed, 1 left");
}

TEST(LoadShapeFile, TellsFormatsApartByContent) {
    ScratchDir dir;
    std::ostringstream warnings;
    const auto bytes = archiveOf({xcPtrHandle<xcContour>(new xcContour({{0, 0}, {1, 1}}, true))});
    const std::string archivePath = dir.write("shapes.json", std::string(bytes.begin(), bytes.end()));
    EXPECT_EQ(cntrtool::loadShapeFile(archivePath, warnings).format, cntrtool::FileFormat::archive);
    const std::string coco = dir.write("a.xca", R"({"annotations": []})");
    EXPECT_EQ(cntrtool::loadShapeFile(coco, warnings).format, cntrtool::FileFormat::coco);
    const std::string tool = dir.write("b", R"({"shapes": []})");
    EXPECT_EQ(cntrtool::loadShapeFile(tool, warnings).format, cntrtool::FileFormat::toolJson);
}

TEST(LoadShapeFile, Refusals) {
    ScratchDir dir;
    std::ostringstream warnings;
    const auto load = [&](const std::string& path) {
        return inputErrorOf([&] { cntrtool::loadShapeFile(path, warnings); });
    };
    EXPECT_EQ(load(dir.file("none.json")), dir.file("none.json") + ": cannot open: No such file or directory");
    EXPECT_EQ(load(dir.file("")), dir.file("") + ": cannot open: is a directory");
    const std::string neither = dir.write("n.json", R"({"polygons": []})");
    EXPECT_EQ(load(neither), neither + ": neither a cntrtool file (no \"shapes\" array) nor a COCO "
                                       "file (no \"annotations\" array)");
    const std::string array = dir.write("a.json", "[]");
    EXPECT_EQ(load(array), array + ": the document must be a JSON object with \"shapes\" (cntrtool) "
                                   "or \"annotations\" (COCO)");
}

// ---- the input limit ----

TEST(InputLimit, DefaultIsFourGibibytes) {
    EXPECT_EQ(cntrtool::kDefaultMaxInput, 4294967296u);  // 4 * 1024 * 1024 * 1024
}

TEST(InputLimit, RegularFileUpToTheLimitIsRead) {
    ScratchDir dir;
    const std::string path = dir.write("ten.txt", "0123456789");
    const std::vector<unsigned char> bytes = cntrtool::readFileBytes(path, 10);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "0123456789");
    EXPECT_EQ(inputErrorOf([&] { cntrtool::readFileBytes(path, 9); }),
              path + ": too large: 10 bytes; the input limit is 9 bytes (see --max-input)");
}

TEST(InputLimit, LargerRegularFileIsRefusedBeforeReading) {
    // A sparse file one byte over the default limit: refused from its size, so the test takes
    // neither the disk space nor the time that reading it would.
    ScratchDir dir;
    const std::string path = dir.file("huge.json");
    const int fd = ::open(path.c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(fd, 0);
    const bool grown = ::ftruncate(fd, static_cast<off_t>(cntrtool::kDefaultMaxInput + 1)) == 0;
    ::close(fd);
    if (!grown)
        GTEST_SKIP() << "the file system holds no file of 4 GiB: " << std::strerror(errno);
    std::ostringstream warnings;
    EXPECT_EQ(inputErrorOf([&] { cntrtool::loadShapeFile(path, warnings); }),
              path + ": too large: 4294967297 bytes; the input limit is 4294967296 bytes (see "
                     "--max-input)");
}

TEST(InputLimit, EndlessDeviceStopsAtTheLimit) {
    EXPECT_EQ(inputErrorOf([] { cntrtool::readFileBytes("/dev/zero", 3000000); }),
              "/dev/zero: the input has not ended: stopped after 3000000 bytes; the input limit "
              "is 3000000 bytes (see --max-input)");
}

TEST(InputLimit, EmptyDeviceIsReadAsEmpty) {
    EXPECT_TRUE(cntrtool::readFileBytes("/dev/null", 10).empty());
}

// What a FIFO fed `content` gives when read with the limit `maxBytes` (the error message when
// refused). The content fits in the pipe's buffer, so the writer never waits for the reader.
std::string readThroughFifo(const std::string& content, std::uint64_t maxBytes) {
    ScratchDir dir;
    const std::string fifo = dir.file("pipe");
    if (::mkfifo(fifo.c_str(), 0600) != 0)
        return "mkfifo failed";
    std::thread writer([&] {
        const int fd = ::open(fifo.c_str(), O_WRONLY);
        if (fd >= 0) {
            EXPECT_EQ(::write(fd, content.data(), content.size()),
                      static_cast<ssize_t>(content.size()));
            ::close(fd);
        }
    });
    std::string result;
    const std::string error = inputErrorOf([&] {
        const std::vector<unsigned char> bytes = cntrtool::readFileBytes(fifo, maxBytes);
        result.assign(bytes.begin(), bytes.end());
    });
    writer.join();
    return error.empty() ? result : error.substr(fifo.size());
}

TEST(InputLimit, FifoIsReadToItsEndWithinTheLimit) {
    const std::string content(3000, 'x');
    EXPECT_EQ(readThroughFifo(content, 3000), content);
    EXPECT_EQ(readThroughFifo(content, 2999),
              ": the input has not ended: stopped after 2999 bytes; the input limit is 2999 "
              "bytes (see --max-input)");
}

TEST(LoadArchiveFile, AnythingElseIsNotAnArchive) {
    ScratchDir dir;
    const std::string text = dir.write("notes.txt", "hello, not JSON");
    EXPECT_EQ(inputErrorOf([&] { cntrtool::loadArchiveFile(text); }),
              text + ": not an archive (unpack reads what pack writes)");
    const std::string json = dir.write("shapes.json", R"({"shapes": []})");
    EXPECT_EQ(inputErrorOf([&] { cntrtool::loadArchiveFile(json); }),
              json + ": not an archive (unpack reads what pack writes)");
    const auto bytes = archiveOf({xcPtrHandle<xcContour>(new xcContour({{0, 0}, {1, 1}}, true))});
    const std::string archive = dir.write("a.xca", std::string(bytes.begin(), bytes.end()));
    EXPECT_EQ(cntrtool::loadArchiveFile(archive).shapes.size(), 1u);
}
