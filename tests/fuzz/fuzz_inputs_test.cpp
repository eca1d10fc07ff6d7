// The fuzz targets run on the committed seed corpora and on every input kept from fuzzing runs
// (fuzz/regressions/TARGET/NAME), in every build of the tests, with any compiler. A target
// aborts the process on a broken law (a copy that differs, a round trip that changes bytes, an
// index out of range, an exception outside the library's family), so a failure here shows as a
// crash of the test with the target's message on stderr; the sanitizer build adds its reports.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "exercise.h"
#include "targets.h"

namespace {

namespace fs = std::filesystem;
using Target = int (*)(const std::uint8_t*, std::size_t);

std::vector<unsigned char> readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                      std::istreambuf_iterator<char>());
}

/// Runs `target` on every file of `dir`, in name order; returns how many there were.
std::size_t runFolder(Target target, const std::string& dir) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(fs::path(CNTR_FUZZ_DIR) / dir))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        const std::vector<unsigned char> bytes = readFile(file);
        EXPECT_EQ(target(bytes.data(), bytes.size()), 0) << file;
    }
    return files.size();
}

/// Runs `target` on the kept input fuzz/regressions/`name`.
void runKept(Target target, const std::string& name) {
    const fs::path file = fs::path(CNTR_FUZZ_DIR) / "regressions" / name;
    ASSERT_TRUE(fs::is_regular_file(file)) << file;
    const std::vector<unsigned char> bytes = readFile(file);
    ASSERT_FALSE(bytes.empty()) << file;
    EXPECT_EQ(target(bytes.data(), bytes.size()), 0);
}

// The seed generator writes 36 archives (the library's own, legacy records and every exception
// class) and 13 geometry inputs; fewer means the corpus was not committed in full.
TEST(FuzzCorpus, ArchiveSeedsLoadOrAreRefused) {
    EXPECT_GE(runFolder(&xn_fuzz::archiveOneInput, "corpus/archive"), 36u);
}

TEST(FuzzCorpus, GeometrySeedsAnswerEveryQuery) {
    EXPECT_GE(runFolder(&xn_fuzz::geometryOneInput, "corpus/geometry"), 13u);
}

#ifdef CNTR_TESTS_SANITIZED
constexpr long kTurnStride = 7;
#else
constexpr long kTurnStride = 1;
#endif

// A geometry seed ends with its shapes and so runs every query; two bytes added to it pick one
// query by its turn, and exactly that one runs. A number beyond the turns reached wraps round.
TEST(FuzzCorpus, GeometrySeedsAnswerEachQueryAlone) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(fs::path(CNTR_FUZZ_DIR) / "corpus/geometry"))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    ASSERT_GE(files.size(), 13u);
    for (const fs::path& file : files) {
        const std::vector<unsigned char> bytes = readFile(file);
        ASSERT_EQ(xn_fuzz::geometryOneInput(bytes.data(), bytes.size()), 0) << file;
        const long turns = xn_fuzz::turnsTaken();
        EXPECT_EQ(xn_fuzz::queriesRun(), turns) << file;
        EXPECT_GE(turns, 100) << file;
        for (long focus = 0; focus < turns + 3; focus += kTurnStride) {
            std::vector<unsigned char> focused = bytes;
            focused.push_back(static_cast<unsigned char>(focus & 0xFF));
            focused.push_back(static_cast<unsigned char>(focus >> 8));
            EXPECT_EQ(xn_fuzz::geometryOneInput(focused.data(), focused.size()), 0)
                << file << " turn " << focus;
            EXPECT_EQ(xn_fuzz::queriesRun(), 1) << file << " turn " << focus;
            EXPECT_EQ(xn_fuzz::turnsTaken(), turns) << file << " turn " << focus;
        }
    }
}

#ifdef CNTR_FUZZ_JSON
// Seven files that the tool writes itself (five single shapes, all of them, a COCO file).
TEST(FuzzCorpus, JsonSeedsAreReadMeasuredAndWrittenBack) {
    EXPECT_GE(runFolder(&xn_fuzz::jsonOneInput, "corpus/json"), 7u);
}

TEST(FuzzTargets, EmptyJsonInputIsAValidCase) {
    EXPECT_EQ(xn_fuzz::jsonOneInput(nullptr, 0), 0);
}
#endif

TEST(FuzzTargets, EmptyInputIsAValidCase) {
    EXPECT_EQ(xn_fuzz::archiveOneInput(nullptr, 0), 0);
    EXPECT_EQ(xn_fuzz::geometryOneInput(nullptr, 0), 0);
}

// Kept inputs, one test each, with what they once showed.

// 44 edgelet vertices mixing small integers with magnitudes up to 1e274, every query, then the
// set's regularize and outer hull: it went over the fuzzer's one second on the loaded shared
// machine in the instrumented build, where it took about 0.25 s alone. Its walks go round
// cycles that miss their start; they ran on to their pass limit before they threw, and now
// throw when a state comes round again (0.04 s).
TEST(FuzzRegression, TangledEdgeletSetOuterHull) {
    runKept(&xn_fuzz::geometryOneInput, "geometry/tangled_edgelet_set_outer_hull");
}

// 85 edgelet vertices whose set outline (172 vertices) crosses itself thousands of times: its
// walks cycle without reaching their start and ran to their limits (1,073 and 4,521 passes, a
// segment query each that found and sorted every crossing ahead), 0.6-0.7 s in the sanitized
// build. The walk now stops at the first repeated state and takes only the nearest crossing
// ahead from a nearest-first search of the edge index: 0.07 s.
TEST(FuzzRegression, CyclingWalkSetRepair) {
    runKept(&xn_fuzz::geometryOneInput, "geometry/cycling_walk_set_repair");
}

// An outer hull whose walk of 750 points is cut into 188 loops that touch at shared vertices:
// the join searched every pair of loops with a vertex lookup per vertex, again after each of
// the joins, 1.2 s in the sanitized build (a hang by the one-second rule). The join now looks
// the vertices up in one set of cells and confirms only the loops found there: 0.36 s, the
// whole input with every query.
TEST(FuzzRegression, TouchingLoopsJoin) {
    runKept(&xn_fuzz::geometryOneInput, "geometry/touching_loops_join");
}

#ifdef CNTR_FUZZ_JSON
// A region set with a member of one vertex: the repair's first question to the set
// (isSelfIntersecting) threw EmptyContour out of repairShape and ended the tool with an
// internal error. Now the set counts as needing repair, the repair fails with the library's
// reason, and the shape is kept.
TEST(FuzzRegression, SetMemberOfOneVertex) {
    runKept(&xn_fuzz::jsonOneInput, "json/set_member_of_one_vertex");
}
#endif

}  // namespace
