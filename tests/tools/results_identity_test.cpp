// Bit-identical results on the bundled data across builds: every measure the tool reports for
// the shapes of examples/data (and for their repairs, both ways), hashed by the bits of every
// double, must give one committed value in every build of the tests. The tool's table rounds
// numbers for print (and --digits any report), so the hash is taken from the computed values,
// not from the text; it also counts which measures are present and how many are unavailable.
//
// The committed value is a fingerprint recorded from the default build and met unchanged by the
// sanitizer build; it is not a correctness oracle (the tool's other tests check the values). A
// deliberate change to a measure's arithmetic changes it: record the new value from the default
// build and check that the asan build agrees before committing it.
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include <input.h>
#include <measure.h>
#include <repair.h>

#include "cntr/bit_hash.h"

namespace {

using cntr_test::BitHash;

void hashOptional(BitHash& hash, const std::optional<double>& value) {
    hash.integer(value.has_value());
    if (value)
        hash.number(*value);
}

void hashEllipse(BitHash& hash, const std::optional<cntrtool::EllipseValue>& ellipse) {
    hash.integer(ellipse.has_value());
    if (!ellipse)
        return;
    hash.point(ellipse->center);
    hash.number(ellipse->r1);
    hash.number(ellipse->r2);
    hash.number(ellipse->rotationDegrees);
}

void hashMeasures(BitHash& hash, const cntrtool::Measures& m) {
    hash.integer(static_cast<long long>(m.vertices));
    hash.integer(static_cast<long long>(m.holes));
    hashOptional(hash, m.length);
    hashOptional(hash, m.area);
    hashOptional(hash, m.areaWithoutHoles);
    hash.integer(m.centroid.has_value());
    if (m.centroid)
        hash.point(*m.centroid);
    hash.integer(m.inertia.has_value());
    if (m.inertia)
        hash.matrix(*m.inertia);
    hashEllipse(hash, m.momentEllipse);
    hashEllipse(hash, m.fittedEllipse);
    hashOptional(hash, m.fitRms);
    hashOptional(hash, m.hullArea);
    hashOptional(hash, m.diameter);
    hash.integer(m.selfIntersecting.value_or(false));
    hash.integer(static_cast<long long>(m.failures.size()));
}

/// The hash of the measures of every shape of the bundled files and of its two repairs.
std::uint64_t bundledDataHash() {
    BitHash hash;
    for (const char* name : {"shapes.json", "coco.json"}) {
        std::ostringstream warnings;
        const cntrtool::ShapeFile file =
            cntrtool::loadShapeFile(std::string(CNTRTOOL_DATA_DIR) + "/" + name, warnings);
        for (const cntrtool::Shape& shape : file.shapes) {
            hashMeasures(hash, cntrtool::measureShape(shape));
            for (bool outerHull : {false, true})
                hashMeasures(hash,
                             cntrtool::measureShape(cntrtool::repairShape(shape, outerHull).shape));
        }
    }
    return hash.value();
}

/// Recorded from the default build; the sanitizer build must give the very same bits.
constexpr std::uint64_t kBundledDataHash = 0x7dec2c58b785a55full;

TEST(ResultsIdentity, MeasuresOfTheBundledDataMatchTheRecordedBits) {
    const std::uint64_t actual = bundledDataHash();
    EXPECT_EQ(actual, kBundledDataHash) << std::hex << "got 0x" << actual;
}

}  // namespace
