// Bit-identical results across builds: the measures of a fixed, seeded family of shapes are hashed
// bit for bit (every double's IEEE 754 pattern, every index and error number, in a fixed order)
// and compared with one committed value. The same value is expected from every build of the
// tests (default, asan, any compiler that honours -ffp-contract=off and no fast-math), so a
// build whose arithmetic differs in a single bit fails here.
//
// The committed value is a fingerprint, not a correctness oracle: it was recorded from the
// default build and must then be met unchanged by the sanitizer build. A deliberate change to a
// measure's arithmetic changes it; record the new value from the default build and check that
// the asan build agrees before committing it.
#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <cntr/contourdefs.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/exception.h>
#include <foundation/random.h>

#include "cntr/bit_hash.h"

namespace {

using Points = std::vector<xcVector<2>>;
using cntr_test::BitHash;

/// Hashes what `op` feeds the hash, or the error number of the library exception it throws.
template <class Op>
void measure(BitHash& hash, Op&& op) {
    try {
        op();
    } catch (const xcException& error) {
        hash.integer(error.errorNumber());
    }
}

/// A star-shaped outline of n vertices around (cx, cy): radii and angular jitter drawn from `rng`.
Points starOutline(xcRandomUniform& rng, int n, double cx, double cy) {
    Points points;
    for (int i = 0; i < n; ++i) {
        const double angle = (i + rng.next(0.0, 0.8)) * 6.283185307179586 / n;
        const double radius = rng.next(2.0, 10.0);
        points.emplace_back(cx + radius * std::cos(angle), cy + radius * std::sin(angle));
    }
    return points;
}

/// n vertices drawn uniformly from a box: an outline that crosses itself many times.
Points tangledOutline(xcRandomUniform& rng, int n) {
    Points points;
    for (int i = 0; i < n; ++i)
        points.emplace_back(rng.next(-20.0, 20.0), rng.next(-20.0, 20.0));
    return points;
}

void contourMeasures(BitHash& hash, xcContour& contour) {
    measure(hash, [&] { hash.number(contour.length()); });
    measure(hash, [&] { hash.point(contour.meanPosition()); });
    measure(hash, [&] { hash.number(contour.diameter(xcContourDefs::furthestVertexPair)); });
    measure(hash, [&] {
        const xcCircle circle = contour.encloseCircle(xcContourDefs::furthestVertexPair);
        hash.point(circle.center());
        hash.number(circle.radius());
    });
    measure(hash, [&] {
        const xcRect rect = contour.encloseRect(
            xcXform<2>(xcMatrix<2>(0.8, -0.6, 0.6, 0.8), xcVector<2>(1.5, -2.5)));
        hash.point(rect.ul());
        hash.point(rect.lr());
    });
    measure(hash, [&] {
        xcEllipse ellipse;
        double rms = 0.0;
        contour.fitEllipse(ellipse, rms);
        hash.point(ellipse.center());
        hash.number(ellipse.r1());
        hash.number(ellipse.r2());
        hash.number(ellipse.rotation().toDouble());
        hash.number(rms);
    });
    measure(hash, [&] { hash.number(contour.distToPoint(xcVector<2>(0.3, 0.7), false)); });
    measure(hash, [&] { hash.point(contour.closestPoint(xcVector<2>(-4.1, 2.9), false)); });
    measure(hash, [&] {
        for (const xcVector<2>& p : contour.intersections(
                 xcLineSeg(xcVector<2>(-30.0, -1.25), xcVector<2>(30.0, 2.5)), true))
            hash.point(p);
    });
}

void regionMeasures(BitHash& hash, xcRegion& region) {
    measure(hash, [&] { hash.number(region.area(true)); });
    measure(hash, [&] { hash.point(region.centerOfMass(true)); });
    measure(hash, [&] { hash.matrix(region.inertiaMatrix(false)); });
    measure(hash, [&] {
        xcRegion hull;
        region.convexHull(hull);
        hash.number(hull.area(false));
    });
    measure(hash, [&] {
        xcRegion result;
        region.regularize(result);
        hash.number(result.area(true));
        hash.integer(static_cast<long long>(result.points().size()));
    });
    measure(hash, [&] {
        xcRegion result;
        region.outerHull(result);
        hash.number(result.area(true));
    });
    contourMeasures(hash, region);
}

/// The hash of every measure of the fixed family of shapes.
std::uint64_t familyHash() {
    BitHash hash;
    xcRandomUniform rng(20261122);
    xcRegionSet::MutableRegionHandles members;
    for (int i = 0; i < 24; ++i) {
        xcPtrHandle<xcRegion> star(new xcRegion(starOutline(rng, 8 + 7 * i, i * 3.0, -i * 1.5)));
        regionMeasures(hash, *star);
        members.push_back(star);
    }
    for (int i = 0; i < 12; ++i) {
        xcRegion tangled(tangledOutline(rng, 5 + 3 * i));
        regionMeasures(hash, tangled);
        xcContour open(tangledOutline(rng, 4 + i), false);
        contourMeasures(hash, open);
    }
    xcRegionSet set(members);
    measure(hash, [&] { hash.number(set.area(true)); });
    measure(hash, [&] { hash.point(set.centerOfMass(true)); });
    measure(hash, [&] { hash.matrix(set.inertiaMatrix(true)); });
    measure(hash, [&] {
        xcRegionSet merged;
        set.regularize(merged);
        hash.number(merged.area(true));
        hash.integer(static_cast<long long>(merged.regions().size()));
    });
    return hash.value();
}

/// Recorded from the default build; the sanitizer build must give the very same bits.
constexpr std::uint64_t kFamilyHash = 0x45a0214331cde94bull;

TEST(ResultsIdentity, MeasuresOfSeededShapesMatchTheRecordedBits) {
    EXPECT_EQ(familyHash(), kFamilyHash) << std::hex << "got 0x" << familyHash();
}

// The published FNV-1a 64-bit test vector: "a" hashes to 0xaf63dc4c8601ec8c.
TEST(ResultsIdentity, BitHashIsFnv1a) {
    BitHash hash;
    hash.bytes("a", 1);
    EXPECT_EQ(hash.value(), 0xaf63dc4c8601ec8cull);
}

TEST(ResultsIdentity, RepeatedRunsGiveTheSameBits) {
    EXPECT_EQ(familyHash(), familyHash());
}

}  // namespace
