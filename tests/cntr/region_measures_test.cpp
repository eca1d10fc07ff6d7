#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <foundation/exception.h>

#include "region_testing.h"

namespace {

constexpr double kTight = 1e-12;

// A 10 x 10 square at the origin with the 2 x 2 hole `hole`.
RegionProbe squareWith(const Points& hole) {
    RegionProbe r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{regionOf(hole)});
    return r;
}

// A star-shaped polygon about `centre`: `n` vertices at increasing angles with radii in [1, 3).
Points randomStar(std::mt19937& gen, const xcVector<2>& centre, int n) {
    std::uniform_real_distribution<double> radius(1.0, 3.0);
    Points p;
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * i / n;
        const double r = radius(gen);
        p.emplace_back(centre.x() + r * std::cos(a), centre.y() + r * std::sin(a));
    }
    return p;
}

// The unsigned area by the trapezoid rule, sum of (x[i+1] - x[i]) (y[i+1] + y[i]) / 2: an
// independent formula from the one the library uses.
double trapezoidArea(const Points& p) {
    double sum = 0.0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        const xcVector<2>& a = p[i];
        const xcVector<2>& b = p[(i + 1) % p.size()];
        sum += (b.x() - a.x()) * (b.y() + a.y());
    }
    return std::fabs(sum) / 2.0;
}

}  // namespace

// ---- area ----

TEST(RegionMeasures, AreaOfSquare) {
    EXPECT_DOUBLE_EQ(xcRegion(square(0, 0, 3)).area(false), 9.0);
}

TEST(RegionMeasures, AreaOfClockwiseOutlineIsPositive) {
    EXPECT_DOUBLE_EQ(xcRegion(clockwiseSquare(0, 0, 3)).area(false), 9.0);
}

TEST(RegionMeasures, AreaWithHolesOfRegionWithoutHolesEqualsArea) {
    const xcRegion r(square(1, 1, 4));
    EXPECT_EQ(r.area(true), r.area(false));
    EXPECT_DOUBLE_EQ(r.area(true), 16.0);
}

TEST(RegionMeasures, SquareWithCounterClockwiseHole) {
    // 10 * 10 - 2 * 2 = 96
    EXPECT_DOUBLE_EQ(squareWith(square(4, 4, 2)).area(true), 96.0);
}

TEST(RegionMeasures, SquareWithClockwiseHole) {
    EXPECT_DOUBLE_EQ(squareWith(clockwiseSquare(4, 4, 2)).area(true), 96.0);
}

TEST(RegionMeasures, AreaWithoutHolesIgnoresHoles) {
    EXPECT_DOUBLE_EQ(squareWith(square(4, 4, 2)).area(false), 100.0);
}

TEST(RegionMeasures, IslandInHoleIsNotAddedBack) {
    // Outline 10 x 10, hole 6 x 6 whose own hole is 2 x 2: 100 - 36 = 64.
    const RegionHandle hole = regionOf(square(2, 2, 6));
    hole->holes(std::vector<RegionHandle>{regionOf(square(4, 4, 2))});
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{hole});
    EXPECT_DOUBLE_EQ(r.area(true), 64.0);
}

TEST(RegionMeasures, HoleOutsideOutlineStillSubtracted) {
    // 2 x 2 outline, 10 x 10 hole far away: 4 - 100 = -96.
    xcRegion r(square(0, 0, 2));
    r.holes(std::vector<RegionHandle>{regionOf(square(20, 20, 10))});
    EXPECT_DOUBLE_EQ(r.area(true), -96.0);
}

TEST(RegionMeasures, AreaIsCachedPerFlag) {
    RegionProbe r = squareWith(square(4, 4, 2));
    r.area(false);
    EXPECT_TRUE(r.regionCacheState().area[0].valid);
    EXPECT_FALSE(r.regionCacheState().area[1].valid);
    r.area(true);
    EXPECT_TRUE(r.regionCacheState().area[1].valid);
    EXPECT_EQ(r.regionCacheState().area[1].value, 96.0);
}

TEST(RegionMeasures, CachedAreaWithHolesIsNotToldOfHoleChanges) {
    const RegionHandle hole = regionOf(square(4, 4, 2));
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{hole});
    EXPECT_DOUBLE_EQ(r.area(true), 96.0);
    hole->points(square(4, 4, 1));
    EXPECT_DOUBLE_EQ(r.area(true), 96.0);
    // A new hole list drops the cache: 100 - 1 = 99.
    r.holes(std::vector<RegionHandle>{hole});
    EXPECT_DOUBLE_EQ(r.area(true), 99.0);
}

TEST(RegionMeasures, AreaOfTriangle) {
    // Base 4, height 3: 6.
    EXPECT_DOUBLE_EQ(xcRegion(Points{{0, 0}, {4, 0}, {1, 3}}).area(false), 6.0);
}

TEST(RegionMeasures, AreaOfCollinearOutlineIsZero) {
    EXPECT_EQ(xcRegion(Points{{0, 0}, {1, 1}, {2, 2}}).area(false), 0.0);
}

// ---- centre of mass ----

TEST(RegionMeasures, CentroidOfSquare) {
    xcRegion r(square(2, 4, 2));
    EXPECT_TRUE(xfRealEq(r.centerOfMass(false), xcVector<2>(3, 5), kTight));
}

TEST(RegionMeasures, CentroidOfTriangleIsMeanOfVertices) {
    // (0 + 6 + 0) / 3 = 2, (0 + 0 + 3) / 3 = 1.
    xcRegion r(Points{{0, 0}, {6, 0}, {0, 3}});
    EXPECT_TRUE(xfRealEq(r.centerOfMass(false), xcVector<2>(2, 1), kTight));
}

TEST(RegionMeasures, CentroidWithHoleIsAreaWeightedDifference) {
    // Outline: area 100, centroid (5, 5). Hole (1,1)-(3,3): area 4, centroid (2, 2).
    // (100 * 5 - 4 * 2) / (100 - 4) = 492 / 96 = 5.125 in both coordinates.
    RegionProbe r = squareWith(square(1, 1, 2));
    EXPECT_TRUE(xfRealEq(r.centerOfMass(true), xcVector<2>(5.125, 5.125), kTight));
}

TEST(RegionMeasures, CentroidWithHolesSecondCallReturnsSlotNotCentroid) {
    RegionProbe r = squareWith(square(1, 1, 2));
    r.centerOfMass(true);
    EXPECT_TRUE(r.regionCacheState().center[1].valid);
    // The slot was never written: it holds the default vector.
    EXPECT_EQ(r.regionCacheState().center[1].value, xcVector<2>(0, 0));
    EXPECT_EQ(r.centerOfMass(true), xcVector<2>(0, 0));
}

TEST(RegionMeasures, CentroidWithHolesAfterResetIsComputedAgain) {
    RegionProbe r = squareWith(square(1, 1, 2));
    r.centerOfMass(true);
    r.resetCaches();
    EXPECT_TRUE(xfRealEq(r.centerOfMass(true), xcVector<2>(5.125, 5.125), kTight));
}

TEST(RegionMeasures, CentroidWithHolesFillsOutlineCaches) {
    RegionProbe r = squareWith(square(1, 1, 2));
    r.centerOfMass(true);
    EXPECT_TRUE(r.regionCacheState().area[0].valid);
    EXPECT_TRUE(r.regionCacheState().center[0].valid);
    EXPECT_TRUE(xfRealEq(r.regionCacheState().center[0].value, xcVector<2>(5, 5), kTight));
}

TEST(RegionMeasures, CentroidWithHolesCopiedFlagReturnsCopiedSlot) {
    RegionProbe r = squareWith(square(1, 1, 2));
    r.centerOfMass(true);
    RegionProbe copy(r);
    EXPECT_EQ(copy.centerOfMass(true), xcVector<2>(0, 0));
}

TEST(RegionMeasures, CentroidWithHolesOfRegionWithoutHolesUsesOutlineCache) {
    RegionProbe r(square(0, 0, 4));
    const xcVector<2> c = r.centerOfMass(true);
    EXPECT_TRUE(xfRealEq(c, xcVector<2>(2, 2), kTight));
    EXPECT_TRUE(r.regionCacheState().center[0].valid);
    EXPECT_FALSE(r.regionCacheState().center[1].valid);
    // Every later call answers from the outline cache, also with the flag true.
    EXPECT_EQ(r.centerOfMass(true), c);
    EXPECT_EQ(r.centerOfMass(false), c);
}

TEST(RegionMeasures, CentroidWhenHolesCancelAreaIsNotReported) {
    // Outline and hole both of area 4: the denominator is 0 and the division gives no number.
    xcRegion r(square(0, 0, 2));
    r.holes(std::vector<RegionHandle>{regionOf(square(10, 10, 2))});
    const xcVector<2> c = r.centerOfMass(true);
    EXPECT_FALSE(std::isfinite(c.x()));
    EXPECT_FALSE(std::isfinite(c.y()));
}

// ---- inertia ----

TEST(RegionMeasures, InertiaOfCentredRectangle) {
    // 4 x 2 rectangle centred at the origin: integral of x^2 = w^3 h / 12 = 64 * 2 / 12 = 32/3,
    // of y^2 = w h^3 / 12 = 4 * 8 / 12 = 8/3, of xy = 0.
    xcRegion r(Points{{-2, -1}, {2, -1}, {2, 1}, {-2, 1}});
    const xcMatrix<2> m = r.inertiaMatrix(false);
    EXPECT_NEAR(m.element(0, 0), 32.0 / 3.0, kTight);
    EXPECT_NEAR(m.element(1, 1), 8.0 / 3.0, kTight);
    EXPECT_NEAR(m.element(0, 1), 0.0, kTight);
    EXPECT_NEAR(m.element(1, 0), 0.0, kTight);
}

TEST(RegionMeasures, InertiaIsCentral) {
    // The same rectangle moved to (100, 50) has the same central moments.
    xcRegion r(Points{{98, 49}, {102, 49}, {102, 51}, {98, 51}});
    const xcMatrix<2> m = r.inertiaMatrix(false);
    EXPECT_NEAR(m.element(0, 0), 32.0 / 3.0, 1e-9);
    EXPECT_NEAR(m.element(1, 1), 8.0 / 3.0, 1e-9);
}

TEST(RegionMeasures, InertiaWithHolesFlagWithoutHolesEqualsOutline) {
    RegionProbe r(Points{{-2, -1}, {2, -1}, {2, 1}, {-2, 1}});
    EXPECT_EQ(r.inertiaMatrix(true), r.inertiaMatrix(false));
    EXPECT_TRUE(r.regionCacheState().inertia[0].valid);
    EXPECT_FALSE(r.regionCacheState().inertia[1].valid);
}

TEST(RegionMeasures, InertiaWithHoleIsRefused) {
    RegionProbe r = squareWith(square(1, 1, 2));
    expectBadParams([&] { r.inertiaMatrix(true); },
                    L"inertiaMatrix(considerHoles) is not implemented");
    EXPECT_FALSE(r.regionCacheState().inertia[1].valid);
    // Without holes considered the outline's matrix is given.
    EXPECT_NEAR(r.inertiaMatrix(false).element(0, 0), 1000.0 * 10.0 / 12.0, 1e-9);
}

TEST(RegionMeasures, InertiaIsCachedAndReturnedAsCopy) {
    RegionProbe r(square(0, 0, 2));
    xcMatrix<2> m = r.inertiaMatrix(false);
    EXPECT_TRUE(r.regionCacheState().inertia[0].valid);
    m = xcMatrix<2>::I;
    EXPECT_NE(r.inertiaMatrix(false), xcMatrix<2>::I);
}

// ---- emptiness ----

TEST(RegionMeasures, TwoVertexOutlineThrowsEmptyContourInEveryMeasure) {
    xcRegion r(Points{{0, 0}, {1, 0}});
    expectEmptyContour([&] { r.area(false); });
    expectEmptyContour([&] { r.area(true); });
    expectEmptyContour([&] { r.centerOfMass(false); });
    expectEmptyContour([&] { r.centerOfMass(true); });
    expectEmptyContour([&] { r.inertiaMatrix(false); });
    expectEmptyContour([&] { r.inertiaMatrix(true); });
}

TEST(RegionMeasures, EmptinessIsCheckedBeforeTheHoleRefusal) {
    xcRegion r(Points{{0, 0}, {1, 0}});
    r.holes(std::vector<RegionHandle>{regionOf(square(5, 5, 1))});
    expectEmptyContour([&] { r.inertiaMatrix(true); });
}

TEST(RegionMeasures, HoleWithTwoVerticesThrowsEmptyContour) {
    xcRegion r(square(0, 0, 10));
    r.holes(std::vector<RegionHandle>{regionOf(Points{{20, 20}, {21, 20}})});
    expectEmptyContour([&] { r.area(true); });
    EXPECT_DOUBLE_EQ(r.area(false), 100.0);
}

TEST(RegionMeasures, EmptyRegionThrowsEmptyContour) {
    xcRegion r;
    expectEmptyContour([&] { r.area(false); });
}

// ---- bad input ----

TEST(RegionMeasures, NaNVertexGivesNaNArea) {
    xcRegion r(Points{{0, 0}, {std::nan(""), 0}, {1, 1}});
    EXPECT_TRUE(std::isnan(r.area(false)));
}

TEST(RegionMeasures, NaNVertexNeitherCrashesNorHangsInCentroidAndInertia) {
    xcRegion r(Points{{0, 0}, {std::nan(""), 0}, {1, 1}, {0, 2}});
    EXPECT_TRUE(std::isnan(r.centerOfMass(false).x()));
    // The inertia is NaN, or refused as singular by the moment code; never a crash.
    try {
        EXPECT_TRUE(std::isnan(r.inertiaMatrix(false).element(0, 0)));
    } catch (const xcMathError::Singular&) {
    }
}

TEST(RegionMeasures, CollinearOutlineHasZeroCentroidAndZeroInertia) {
    // The fan weights of collinear points sum to 0: the centroid is documented as (0, 0), not
    // the mean of the points. A shape without area has no second moments of area (up to
    // rounding).
    xcRegion r(Points{{1, 1}, {2, 2}, {3, 3}});
    EXPECT_EQ(r.centerOfMass(false), xcVector<2>(0, 0));
    EXPECT_TRUE(xfRealEq(r.inertiaMatrix(false), xcMatrix<2>(), 1e-12));
}

TEST(RegionMeasures, RepeatedVerticesDoNotChangeArea) {
    xcRegion r(Points{{0, 0}, {0, 0}, {3, 0}, {3, 3}, {3, 3}, {0, 3}});
    EXPECT_DOUBLE_EQ(r.area(false), 9.0);
    EXPECT_TRUE(xfRealEq(r.centerOfMass(false), xcVector<2>(1.5, 1.5), kTight));
}

// ---- laws on random polygons ----

TEST(RegionMeasures, AreaAgreesWithTrapezoidRuleOnRandomPolygons) {
    std::mt19937 gen(11);
    for (int trial = 0; trial < 200; ++trial) {
        const Points p = randomStar(gen, xcVector<2>(trial, -trial), 3 + trial % 40);
        EXPECT_NEAR(xcRegion(p).area(false), trapezoidArea(p), 1e-9) << "trial " << trial;
    }
}

TEST(RegionMeasures, MappedAreaScalesByDeterminant) {
    std::mt19937 gen(12);
    std::uniform_real_distribution<double> element(-2.0, 2.0);
    for (int trial = 0; trial < 200; ++trial) {
        const xcRegion r(randomStar(gen, xcVector<2>(1, 2), 5 + trial % 30));
        const xcMatrix<2> m(element(gen), element(gen), element(gen), element(gen));
        const xcXform<2> xf(m, xcVector<2>(element(gen), element(gen)));
        xcRegion mapped;
        r.map(xf, mapped);
        EXPECT_NEAR(mapped.area(false), r.area(false) * std::fabs(m.determinant()), 1e-9)
            << "trial " << trial;
    }
}

TEST(RegionMeasures, MappedCentroidIsMappedCentroid) {
    std::mt19937 gen(13);
    std::uniform_real_distribution<double> element(-2.0, 2.0);
    for (int trial = 0; trial < 200; ++trial) {
        xcRegion r(randomStar(gen, xcVector<2>(-3, 4), 5 + trial % 30));
        // Keep the transform well conditioned so that the centroid is well defined.
        const double angle = element(gen);
        const double scale = 1.0 + std::fabs(element(gen));
        const xcMatrix<2> m{xcRadian(angle), xcRadian(angle), scale, scale};
        const xcXform<2> xf(m, xcVector<2>(element(gen), element(gen)));
        xcRegion mapped;
        r.map(xf, mapped);
        EXPECT_TRUE(xfRealEq(mapped.centerOfMass(false), xf * r.centerOfMass(false), 1e-9))
            << "trial " << trial;
    }
}

TEST(RegionMeasures, RotatedInertiaIsConjugatedByRotation) {
    std::mt19937 gen(14);
    std::uniform_real_distribution<double> angle(-3.0, 3.0);
    for (int trial = 0; trial < 200; ++trial) {
        xcRegion r(randomStar(gen, xcVector<2>(0, 0), 5 + trial % 30));
        const xcRadian a(angle(gen));
        const xcMatrix<2> rotation(a, a, 1.0, 1.0);
        xcRegion mapped;
        r.map(xcXform<2>(rotation, xcVector<2>(5, -5)), mapped);
        const xcMatrix<2> expected = rotation * r.inertiaMatrix(false) * rotation.transpose();
        EXPECT_TRUE(xfRealEq(mapped.inertiaMatrix(false), expected, 1e-9)) << "trial " << trial;
    }
}

TEST(RegionMeasures, AreaWithHolesIsDifferenceOfParts) {
    std::mt19937 gen(15);
    for (int trial = 0; trial < 100; ++trial) {
        // An outline of radii in [1, 3) about (0, 0) scaled by 10 holds a hole of radii below 3
        // about (0, 0) without crossing: the hole's radius is at most 3, the outline's at least
        // 10.
        Points outer = randomStar(gen, xcVector<2>(0, 0), 8 + trial % 20);
        for (xcVector<2>& v : outer)
            v = 10.0 * v;
        const Points inner = randomStar(gen, xcVector<2>(0, 0), 3 + trial % 10);
        xcRegion r(outer);
        r.holes(std::vector<RegionHandle>{regionOf(inner)});
        EXPECT_NEAR(r.area(true), trapezoidArea(outer) - trapezoidArea(inner), 1e-9)
            << "trial " << trial;
    }
}
