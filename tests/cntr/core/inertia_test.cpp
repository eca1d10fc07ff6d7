// The core's second moments of polygons and the combination of moment records, on records and
// polygons whose moments are worked out by hand.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/inertia.h>

namespace {

using cntr::core::combinedInertia;
using cntr::core::InertiaRecord;
using cntr::core::polygonInertia;
using Points = std::vector<xcVector<2>>;

constexpr double kTol = 1e-12;

void expectNear(const InertiaRecord& r, double area, double cx, double cy, double xx, double yy,
                double xy) {
    EXPECT_NEAR(r.area, area, kTol);
    EXPECT_NEAR(r.centre.x(), cx, kTol);
    EXPECT_NEAR(r.centre.y(), cy, kTol);
    EXPECT_NEAR(r.moments.element(0, 0), xx, kTol);
    EXPECT_NEAR(r.moments.element(1, 1), yy, kTol);
    EXPECT_NEAR(r.moments.element(0, 1), xy, kTol);
    EXPECT_NEAR(r.moments.element(1, 0), xy, kTol);
}

// The record's seven numbers as their bits, so that NaN and -0 compare exactly.
std::vector<std::uint64_t> bitsOf(const InertiaRecord& r) {
    const double v[7] = {r.area,
                         r.centre.x(),
                         r.centre.y(),
                         r.moments.element(0, 0),
                         r.moments.element(0, 1),
                         r.moments.element(1, 0),
                         r.moments.element(1, 1)};
    std::vector<std::uint64_t> bits(7);
    std::memcpy(bits.data(), v, sizeof v);
    return bits;
}

void expectSameBits(const InertiaRecord& a, const InertiaRecord& b) {
    EXPECT_EQ(bitsOf(a), bitsOf(b));
}

// ---- polygons ----

TEST(CoreInertia, UnitSquare) {
    // A b x h rectangle has central moments b^3 h / 12 and b h^3 / 12 and no product moment.
    const Points square{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    expectNear(polygonInertia(square), 1.0, 0.5, 0.5, 1.0 / 12, 1.0 / 12, 0.0);
    // Clockwise: the area changes sign, the moments do not.
    const Points clockwise{{0, 1}, {1, 1}, {1, 0}, {0, 0}};
    expectNear(polygonInertia(clockwise), -1.0, 0.5, 0.5, 1.0 / 12, 1.0 / 12, 0.0);
}

TEST(CoreInertia, RightTriangle) {
    // The right triangle with legs b = 4 along x and h = 3 along y at the origin: area 6,
    // centroid (4/3, 1), and about it the integral of (x - cx)^2 is b^3 h / 36 = 16/3, that of
    // (y - cy)^2 is b h^3 / 36 = 3, and that of (x - cx)(y - cy) is -b^2 h^2 / 72 = -2.
    const Points t{{0, 0}, {4, 0}, {0, 3}};
    expectNear(polygonInertia(t), 6.0, 4.0 / 3, 1.0, 16.0 / 3, 3.0, -2.0);
}

TEST(CoreInertia, FewerThanThreeVerticesGiveTheZeroRecord) {
    for (const Points& p : {Points{}, Points{{1, 2}}, Points{{1, 2}, {3, 5}}})
        expectSameBits(polygonInertia(p), InertiaRecord{});
}

// ---- the combination ----

TEST(CoreInertia, RecordsOfOneSignAddByTheParallelAxisTheorem) {
    // Areas 2 and 2 at (0, 0) and (2, 0): the centre is (1, 0), each centre lies 1 from it
    // along x, so xx = 1 + 2 * 1^2 + 1 + 2 * 1^2 = 6, yy = 3 + 1 = 4, xy = 0.5 + 0 = 0.5.
    const InertiaRecord a{2.0, {0, 0}, xcMatrix<2>(1, 0.5, 0.5, 3)};
    const InertiaRecord b{2.0, {2, 0}, xcMatrix<2>(1, 0, 0, 1)};
    const InertiaRecord sum = combinedInertia(a, b);
    EXPECT_EQ(sum.area, 4.0);
    EXPECT_EQ(sum.centre, xcVector<2>(1, 0));
    EXPECT_EQ(sum.moments, xcMatrix<2>(6, 0.5, 0.5, 4));
}

TEST(CoreInertia, ANegativeRecordRemovesItsMoments) {
    // Area 4 at (0, 0) and a hole of area -1 at (1.5, 0): area 3, centre -1.5 / 3 = -0.5 along x;
    // the offsets are -0.5 and -2. The hole's moments are subtracted and its offset term weighs
    // -1: xx = 2 + 4 * 0.25 - 0.5 - 1 * 4 = -1.5, yy = 2 - 0.5 = 1.5.
    const InertiaRecord outer{4.0, {0, 0}, xcMatrix<2>(2, 0, 0, 2)};
    const InertiaRecord hole{-1.0, {1.5, 0}, xcMatrix<2>(0.5, 0, 0, 0.5)};
    const InertiaRecord sum = combinedInertia(outer, hole);
    EXPECT_EQ(sum.area, 3.0);
    EXPECT_EQ(sum.centre, xcVector<2>(-0.5, 0));
    EXPECT_EQ(sum.moments, xcMatrix<2>(-1.5, 0, 0, 1.5));
}

TEST(CoreInertia, ZeroAndNotANumberAreasAreNeutral) {
    const InertiaRecord other{3.0, {1, 2}, xcMatrix<2>(1, 2, 3, 4)};  // kept as it is, asymmetric
    for (const double neutral : {0.0, -0.0, std::nan("")}) {
        const InertiaRecord n{neutral, {5, 5}, xcMatrix<2>(7, 7, 7, 7)};
        expectSameBits(combinedInertia(n, other), other);
        expectSameBits(combinedInertia(other, n), other);
    }
}

TEST(CoreInertia, TwoSquaresMakeTheirRectangle) {
    // [0,1]x[0,1] and [1,2]x[0,1] make [0,2]x[0,1]: area 2, centre (1, 0.5), moments
    // 2^3 / 12 = 2/3 and 2 / 12 = 1/6.
    const InertiaRecord left = polygonInertia(Points{{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    const InertiaRecord right = polygonInertia(Points{{1, 0}, {2, 0}, {2, 1}, {1, 1}});
    expectNear(combinedInertia(left, right), 2.0, 1.0, 0.5, 2.0 / 3, 1.0 / 6, 0.0);
}

}  // namespace
