// The core's true moments: hand-computed integrals of squares, rectangles and triangles, the
// orientation and the frame's origin, the completion into central and normalised moments and Hu
// invariants, and the convention for an area of 0.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/area_moments.h>
#include <foundation/exception.h>

namespace {

using cntr::AreaMoments;
using cntr::core::completeMoments;
using cntr::core::RawMoments;
using cntr::core::ringMoments;
using cntr::core::unsignedRingMoments;
using Points = std::vector<xcVector<2>>;

constexpr double kTight = 1e-15;

Points reversed(const Points& p) { return Points(p.rbegin(), p.rend()); }

void expectRaw(const RawMoments& m, const std::vector<double>& expected, double tolerance) {
    const std::vector<double> actual{m.m00, m.m10, m.m01, m.m20, m.m11,
                                     m.m02, m.m30, m.m21, m.m12, m.m03};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "moment " << i;
}

// ---- raw moments of a ring ----

TEST(CoreAreaMoments, UnitSquareIntegratesEveryMonomial) {
    // Over [0, 1]^2 the integral of x^p y^q is 1 / ((p + 1)(q + 1)).
    const Points square{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    expectRaw(ringMoments(square, {0, 0}),
              {1, 1.0 / 2, 1.0 / 2, 1.0 / 3, 1.0 / 4, 1.0 / 3, 1.0 / 4, 1.0 / 6, 1.0 / 6, 1.0 / 4},
              kTight);
}

TEST(CoreAreaMoments, RightTriangleIntegratesEveryMonomial) {
    // Over x, y >= 0, x + y <= 1 the integral of x^p y^q is p! q! / (p + q + 2)!.
    const Points triangle{{0, 0}, {1, 0}, {0, 1}};
    expectRaw(ringMoments(triangle, {0, 0}),
              {1.0 / 2, 1.0 / 6, 1.0 / 6, 1.0 / 12, 1.0 / 24, 1.0 / 12, 1.0 / 20, 1.0 / 60,
               1.0 / 60, 1.0 / 20},
              kTight);
}

TEST(CoreAreaMoments, MomentsAreTakenInTheFrameOfTheOrigin) {
    // The square [2, 4] x [1, 3] about (3, 2) is the square [-1, 1]^2: area 4, odd moments 0,
    // the integral of x^2 (and of y^2) 4/3.
    const Points square{{2, 1}, {4, 1}, {4, 3}, {2, 3}};
    expectRaw(ringMoments(square, {3, 2}), {4, 0, 0, 4.0 / 3, 0, 4.0 / 3, 0, 0, 0, 0}, kTight);
}

TEST(CoreAreaMoments, ClockwiseRingGivesNegatedMomentsAndUnsignedUndoesIt) {
    const Points triangle{{0, 0}, {1, 0}, {0, 1}};
    const RawMoments forward = ringMoments(triangle, {0, 0});
    const RawMoments backward = ringMoments(reversed(triangle), {0, 0});
    EXPECT_NEAR(backward.m00, -forward.m00, kTight);
    EXPECT_NEAR(backward.m21, -forward.m21, kTight);
    const RawMoments unsignedBackward = unsignedRingMoments(reversed(triangle), {0, 0});
    EXPECT_NEAR(unsignedBackward.m00, 0.5, kTight);
    EXPECT_NEAR(unsignedBackward.m30, 1.0 / 20, kTight);
}

TEST(CoreAreaMoments, FewerThanThreeVerticesHaveNoMoments) {
    for (const Points& p : {Points{}, Points{{1, 2}}, Points{{1, 2}, {3, 5}}}) {
        const RawMoments m = ringMoments(p, {0, 0});
        EXPECT_EQ(m.m00, 0.0);
        EXPECT_EQ(m.m10, 0.0);
        EXPECT_EQ(m.m03, 0.0);
    }
}

TEST(CoreAreaMoments, FigureEightWeighsItsLobesByTheirWindingNumbers) {
    // (0,0) (2,2) (2,0) (0,2) crosses itself at (1, 1): the right lobe (1,1) (2,2) (2,0) runs
    // clockwise (area -1, centroid (5/3, 1)), the left lobe (1,1) (0,2) (0,0) counter-clockwise
    // (area 1, centroid (1/3, 1)). Signed: m00 = 0, m10 = -5/3 + 1/3 = -4/3, m01 = -1 + 1 = 0.
    const Points eight{{0, 0}, {2, 2}, {2, 0}, {0, 2}};
    const RawMoments m = ringMoments(eight, {0, 0});
    EXPECT_NEAR(m.m00, 0.0, kTight);
    EXPECT_NEAR(m.m10, -4.0 / 3, kTight);
    EXPECT_NEAR(m.m01, 0.0, kTight);
}

// ---- completion ----

TEST(CoreAreaMoments, RectangleHasTheTextbookCentralMomentsAndInvariants) {
    // [0, 4] x [0, 2]: mu20 = a^3 b / 12 = 32/3, mu02 = a b^3 / 12 = 8/3, mu11 = 0 and odd
    // central moments 0 by symmetry; nu20 = mu20 / m00^2 = 1/6, nu02 = 1/24; hu1 = 5/24,
    // hu2 = (1/6 - 1/24)^2 = 1/64, the others 0.
    const Points rectangle{{0, 0}, {4, 0}, {4, 2}, {0, 2}};
    const AreaMoments m = completeMoments(ringMoments(rectangle, {0, 0}), {0, 0});
    EXPECT_NEAR(m.m00, 8, kTight);
    EXPECT_NEAR(m.mu20, 32.0 / 3, 1e-14);
    EXPECT_NEAR(m.mu02, 8.0 / 3, 1e-14);
    EXPECT_NEAR(m.mu11, 0, 1e-14);
    for (double odd : {m.mu30, m.mu21, m.mu12, m.mu03})
        EXPECT_NEAR(odd, 0, 1e-13);
    EXPECT_NEAR(m.nu20, 1.0 / 6, kTight);
    EXPECT_NEAR(m.nu02, 1.0 / 24, kTight);
    EXPECT_NEAR(m.hu[0], 5.0 / 24, kTight);
    EXPECT_NEAR(m.hu[1], 1.0 / 64, kTight);
    for (std::size_t i = 2; i < 7; ++i)
        EXPECT_NEAR(m.hu[i], 0, kTight) << "hu " << i;
}

TEST(CoreAreaMoments, TriangleCentralMomentsOfOrderThree) {
    // The right triangle of legs 1, centroid (1/3, 1/3): mu20 = 1/12 - 1/18 = 1/36,
    // mu11 = 1/24 - 1/18 = -1/72, mu30 = m30 - 3 cx m20 + 2 cx^2 m10 = 1/270,
    // mu21 = m21 - 2 cx m11 - cy m20 + 2 cx^2 m01 = -1/540; by the symmetry x <-> y,
    // mu02 = mu20, mu03 = mu30 and mu12 = mu21. nu30 = mu30 / m00^(5/2) = 4 sqrt(2) / 270.
    const Points triangle{{0, 0}, {1, 0}, {0, 1}};
    const AreaMoments m = completeMoments(ringMoments(triangle, {0, 0}), {0, 0});
    EXPECT_NEAR(m.mu20, 1.0 / 36, kTight);
    EXPECT_NEAR(m.mu02, 1.0 / 36, kTight);
    EXPECT_NEAR(m.mu11, -1.0 / 72, kTight);
    EXPECT_NEAR(m.mu30, 1.0 / 270, kTight);
    EXPECT_NEAR(m.mu03, 1.0 / 270, kTight);
    EXPECT_NEAR(m.mu21, -1.0 / 540, kTight);
    EXPECT_NEAR(m.mu12, -1.0 / 540, kTight);
    EXPECT_NEAR(m.nu30, 4.0 * std::sqrt(2.0) / 270, 1e-14);
}

TEST(CoreAreaMoments, RawMomentsMoveToTheOriginBinomially) {
    // The unit square [10, 11] x [20, 21] taken about (10.5, 20.5): the moments about (0, 0)
    // are those of the square itself, e.g. m21 = (11^3 - 10^3)/3 * (21^2 - 20^2)/2 = 331 * 41/6.
    const Points square{{10, 20}, {11, 20}, {11, 21}, {10, 21}};
    const AreaMoments m = completeMoments(ringMoments(square, {10.5, 20.5}), {10.5, 20.5});
    EXPECT_NEAR(m.m00, 1, kTight);
    EXPECT_NEAR(m.m10, 10.5, 1e-13);
    EXPECT_NEAR(m.m01, 20.5, 1e-13);
    EXPECT_NEAR(m.m20, 331.0 / 3, 1e-12);
    EXPECT_NEAR(m.m11, 10.5 * 20.5, 1e-12);
    EXPECT_NEAR(m.m02, 1261.0 / 3, 1e-12);
    EXPECT_NEAR(m.m30, (std::pow(11, 4) - std::pow(10, 4)) / 4, 1e-11);
    EXPECT_NEAR(m.m21, 331.0 * 41 / 6, 1e-11);
    EXPECT_NEAR(m.m12, 21.0 / 2 * 1261 / 3, 1e-11);
    EXPECT_NEAR(m.m03, (std::pow(21, 4) - std::pow(20, 4)) / 4, 1e-10);
    // The central moments are the unit square's: 1/12 and 0.
    EXPECT_NEAR(m.mu20, 1.0 / 12, kTight);
    EXPECT_NEAR(m.mu02, 1.0 / 12, kTight);
    EXPECT_NEAR(m.mu11, 0, kTight);
    EXPECT_EQ(m.centroid().x(), 10.5);
    EXPECT_EQ(m.centroid().y(), 20.5);
}

TEST(CoreAreaMoments, AreaZeroKeepsRawMomentsAsCentralAndNormalisesNothing) {
    const Points eight{{0, 0}, {2, 2}, {2, 0}, {0, 2}};
    const AreaMoments m = completeMoments(ringMoments(eight, {0, 0}), {0, 0});
    EXPECT_EQ(m.m00, 0.0);
    EXPECT_EQ(m.mu20, m.m20);
    EXPECT_EQ(m.mu11, m.m11);
    EXPECT_EQ(m.mu02, m.m02);
    EXPECT_EQ(m.mu30, m.m30);
    EXPECT_EQ(m.mu21, m.m21);
    EXPECT_EQ(m.mu12, m.m12);
    EXPECT_EQ(m.mu03, m.m03);
    EXPECT_EQ(m.nu20, 0.0);
    EXPECT_EQ(m.nu03, 0.0);
    for (double h : m.hu)
        EXPECT_EQ(h, 0.0);
}

TEST(CoreAreaMoments, CentroidOfAreaZeroThrowsSingularWithMessage) {
    const AreaMoments m;
    try {
        m.centroid();
        FAIL() << "no exception";
    } catch (const xcMathError::Singular& e) {
        EXPECT_EQ(e.message(), L"a shape of area 0 has no centroid");
    }
}

}  // namespace
