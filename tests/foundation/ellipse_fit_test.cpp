#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/fit.h>
#include <foundation/random.h>

namespace {

using Points = std::vector<xcVector<2>>;

constexpr double kInf = std::numeric_limits<double>::infinity();
// Exact samples carry only rounding errors (~1e-15 here): the fit must reproduce the ellipse far
// better than this.
constexpr double kRecoveryTolerance = 1e-9;

xcEllipseFitParams plainParams(unsigned ignoreCount = 0, double maxRms = kInf) {
    return xcEllipseFitParams(xcEllipseFitDefs::fitAll, xcRadian(0.0), ignoreCount, maxRms);
}

// `count` points evenly spaced in the parameter t of
// centre + R(rotation) * (a cos t, b sin t).
Points ellipseSamples(const xcVector<2>& centre, double a, double b, double rotation, int count) {
    Points points;
    const double c = std::cos(rotation), s = std::sin(rotation);
    for (int k = 0; k < count; ++k) {
        const double t = 2.0 * xcPi * k / count;
        const double u = a * std::cos(t), v = b * std::sin(t);
        points.push_back(centre + xcVector<2>(c * u - s * v, s * u + c * v));
    }
    return points;
}

xcEllipseFitResults fit(const Points& points, const xcEllipseFitParams& params = plainParams()) {
    xcEllipseFitResults results;
    xfEllipseFit(params, points, results);
    return results;
}

void expectEllipse(const xcEllipse& e, const xcVector<2>& centre, double r1, double r2,
                   double rotation, double lengthTolerance,
                   double angleTolerance = kRecoveryTolerance) {
    EXPECT_NEAR(e.center().x(), centre.x(), lengthTolerance);
    EXPECT_NEAR(e.center().y(), centre.y(), lengthTolerance);
    EXPECT_NEAR(e.r1(), r1, lengthTolerance);
    EXPECT_NEAR(e.r2(), r2, lengthTolerance);
    EXPECT_NEAR(e.rotation().toDouble(), rotation, angleTolerance);
}

// An independent orthogonal distance: the distance along the ellipse's parameter t is sampled
// densely, and every sampled local minimum is refined by golden section search; the smallest
// refined value wins.
double bruteForceDistance(const xcEllipse& e, const xcVector<2>& p) {
    const double c = std::cos(e.rotation().toDouble()), s = std::sin(e.rotation().toDouble());
    const auto distanceAt = [&](double t) {
        const double u = e.r1() * std::cos(t), v = e.r2() * std::sin(t);
        return p.distance(e.center().vector() + xcVector<2>(c * u - s * v, s * u + c * v));
    };
    const int samples = 2000;
    const double step = 2.0 * xcPi / samples;
    std::vector<double> sampled(samples);
    for (int k = 0; k < samples; ++k) sampled[k] = distanceAt(k * step);
    const double golden = (std::sqrt(5.0) - 1.0) / 2.0;
    double best = std::numeric_limits<double>::infinity();
    for (int k = 0; k < samples; ++k) {
        if (sampled[k] > sampled[(k + 1) % samples] ||
            sampled[k] > sampled[(k + samples - 1) % samples])
            continue;
        double lo = (k - 1) * step, hi = (k + 1) * step;
        for (int i = 0; i < 100; ++i) {
            const double m1 = hi - golden * (hi - lo), m2 = lo + golden * (hi - lo);
            if (distanceAt(m1) < distanceAt(m2)) hi = m2; else lo = m1;
        }
        best = std::min(best, distanceAt(0.5 * (lo + hi)));
    }
    return best;
}

// ---- Recovery of exact ellipses -------------------------------------------------------------

TEST(EllipseFit, RecoversRotatedEllipseFromExactSamples) {
    const xcVector<2> centre(3.5, -2.0);
    const auto results = fit(ellipseSamples(centre, 7.0, 3.0, 0.6, 50));
    expectEllipse(results.ellipse(), centre, 7.0, 3.0, 0.6, kRecoveryTolerance);
    EXPECT_LT(results.error(), 1e-9);
}

TEST(EllipseFit, RotationIsNormalisedIntoHalfTurn) {
    // The major axis at 3.9 rad is the same axis as at 3.9 - pi.
    const auto results = fit(ellipseSamples({1.0, 1.0}, 5.0, 2.0, 3.9, 40));
    expectEllipse(results.ellipse(), {1.0, 1.0}, 5.0, 2.0, 3.9 - xcPi, kRecoveryTolerance);
}

TEST(EllipseFit, LargerRadiusComesFirst) {
    // Radius 2 along 0.3 rad and 5 across it: r1 = 5 lies along 0.3 + pi/2.
    const auto results = fit(ellipseSamples({0.0, 0.0}, 2.0, 5.0, 0.3, 40));
    expectEllipse(results.ellipse(), {0.0, 0.0}, 5.0, 2.0, 0.3 + 0.5 * xcPi, kRecoveryTolerance);
}

TEST(EllipseFit, AxisAlignedEllipseHasRotationZero) {
    const auto results = fit(ellipseSamples({-4.0, 6.0}, 9.0, 1.5, 0.0, 36));
    const xcEllipse& e = results.ellipse();
    expectEllipse(e, {-4.0, 6.0}, 9.0, 1.5, 0.0, kRecoveryTolerance);
    EXPECT_GE(e.rotation().toDouble(), 0.0);
}

TEST(EllipseFit, FivePointsDetermineTheEllipse) {
    const auto results = fit(ellipseSamples({2.0, 3.0}, 4.0, 1.0, 1.0, 5));
    expectEllipse(results.ellipse(), {2.0, 3.0}, 4.0, 1.0, 1.0, kRecoveryTolerance);
    EXPECT_LT(results.error(), 1e-9);
}

TEST(EllipseFit, PartialArcIsRecovered) {
    // A third of the ellipse only (t in [0, 2 pi / 3)).
    Points arc = ellipseSamples({10.0, -5.0}, 6.0, 4.0, 2.0, 60);
    arc.resize(20);
    const auto results = fit(arc);
    expectEllipse(results.ellipse(), {10.0, -5.0}, 6.0, 4.0, 2.0, kRecoveryTolerance);
}

TEST(EllipseFit, FarFromOriginIsRecovered) {
    // Near 1e6 the samples themselves are rounded to ~1.2e-10 (the spacing of doubles there),
    // which bounds how well the ellipse can be reproduced.
    const xcVector<2> centre(1e6, -2e6);
    const auto results = fit(ellipseSamples(centre, 3.0, 1.0, 0.25, 50));
    expectEllipse(results.ellipse(), centre, 3.0, 1.0, 0.25, 1e-7);
}

TEST(EllipseFit, HugeAndTinyScalesAreRecovered) {
    // Squares of these coordinates leave the double range; the fit works in relative terms.
    for (const double unit : {1e200, 1e-200}) {
        SCOPED_TRACE(unit);
        const xcVector<2> centre(2.0 * unit, -unit);
        const auto results = fit(ellipseSamples(centre, 7.0 * unit, 3.0 * unit, 0.6, 50));
        expectEllipse(results.ellipse(), centre, 7.0 * unit, 3.0 * unit, 0.6,
                      kRecoveryTolerance * unit);
        EXPECT_LT(results.error(), 1e-9 * unit);
    }
}

TEST(EllipseFit, SameInputGivesIdenticalResult) {
    const Points points = ellipseSamples({0.5, 0.25}, 3.0, 2.0, 0.4, 25);
    const auto first = fit(points);
    const auto second = fit(points);
    EXPECT_EQ(first.ellipse(), second.ellipse());
    EXPECT_EQ(first.error(), second.error());
}

// ---- The residual is the orthogonal distance ------------------------------------------------

TEST(EllipseFit, RmsOfAlternatingCircleIsOrthogonalDistance) {
    // Eight points at 45 degree steps around (2, -1), at radius R + d on the axes and R - d on
    // the diagonals. The set is symmetric under quarter turns and reflections, so the fitted
    // conic is a circle about (2, -1) whose radius rho minimises sum (r_k^2 - rho^2)^2 in the
    // direct fit: rho^2 = mean(r_k^2) = R^2 + d^2. Orthogonal distances are |r_k - rho|, so
    // rms^2 = ((R + d - rho)^2 + (R - d - rho)^2) / 2 = (rho - R)^2 + d^2.
    const double R = 10.0, d = 1.0;
    const xcVector<2> centre(2.0, -1.0);
    Points points;
    for (int k = 0; k < 8; ++k)
        points.push_back(centre + xcVector<2>(k % 2 == 0 ? R + d : R - d, xcRadian(k * xcPi / 4)));
    const double rho = std::sqrt(R * R + d * d);  // 10.0498756...
    const auto results = fit(points);
    EXPECT_NEAR(results.ellipse().center().x(), 2.0, 1e-12);
    EXPECT_NEAR(results.ellipse().center().y(), -1.0, 1e-12);
    EXPECT_NEAR(results.ellipse().r1(), rho, 1e-12);
    EXPECT_NEAR(results.ellipse().r2(), rho, 1e-12);
    EXPECT_NEAR(results.error(), std::sqrt((rho - R) * (rho - R) + d * d), 1e-12);  // 1.00124...
}

TEST(EllipseFit, RmsMatchesBruteForceOrthogonalDistance) {
    // A noisy, elongated, rotated ellipse with points inside (one at the centre, some near the
    // major axis where the nearest point leaves the axis) and outside.
    xcRandomUniform random(7);
    Points points = ellipseSamples({1.0, 2.0}, 6.0, 2.0, 0.8, 40);
    for (xcVector<2>& p : points) p += xcVector<2>(random.next(-0.3, 0.3), random.next(-0.3, 0.3));
    points.push_back({1.0, 2.0});
    points.push_back({1.0 + 2.0 * std::cos(0.8), 2.0 + 2.0 * std::sin(0.8)});
    points.push_back({1.0 - 4.0 * std::cos(0.8), 2.0 - 4.0 * std::sin(0.8)});
    points.push_back({9.0, 9.0});
    const auto results = fit(points);
    double sum = 0.0;
    for (const xcVector<2>& p : points) {
        const double dist = bruteForceDistance(results.ellipse(), p);
        sum += dist * dist;
    }
    EXPECT_NEAR(results.error(), std::sqrt(sum / points.size()), 1e-9);
}

TEST(EllipseFit, RandomSetsRmsMatchesBruteForceOrthogonalDistance) {
    // Noisy samples of ellipses from round to elongated (r2 / r1 down to 0.05), plus points
    // scattered inside and around them.
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        xcRandomUniform random(seed);
        const double r1 = random.next(1.0, 10.0), r2 = r1 * random.next(0.05, 1.0);
        const xcVector<2> centre(random.next(-5.0, 5.0), random.next(-5.0, 5.0));
        const double noise = 0.02 * r2;
        Points points = ellipseSamples(centre, r1, r2, random.next(0.0, xcPi), 30);
        for (xcVector<2>& p : points)
            p += xcVector<2>(random.next(-noise, noise), random.next(-noise, noise));
        for (int k = 0; k < 10; ++k)
            points.push_back(centre + xcVector<2>(random.next(-1.5 * r1, 1.5 * r1),
                                                  random.next(-1.5 * r1, 1.5 * r1)));
        const auto results = fit(points);
        double sum = 0.0;
        for (const xcVector<2>& p : points) {
            const double dist = bruteForceDistance(results.ellipse(), p);
            sum += dist * dist;
        }
        EXPECT_NEAR(results.error(), std::sqrt(sum / points.size()), 1e-9 * r1);
    }
}

TEST(EllipseFit, PointsOnTheAxesMatchBruteForceOrthogonalDistance) {
    // Every point comes with its mirror images in both axes, listed so that the odd moments
    // cancel exactly: the fit is then centred exactly at the origin with rotation exactly 0, and
    // the points put on the axes lie exactly on the fitted ellipse's axes. (+-1, 0) is inside
    // the evolute's cusp, where the nearest point is off the axis; (+-4, 0), (0, +-0.5) and
    // (0, +-2) are nearest to an axis end.
    Points points;
    for (int k = 1; k < 4; ++k) {
        const double x = 4.0 * std::cos(k * xcPi / 8), y = std::sin(k * xcPi / 8);
        points.insert(points.end(), {{x, y}, {-x, y}, {x, -y}, {-x, -y}});
    }
    points.insert(points.end(), {{1.0, 0.0}, {-1.0, 0.0}, {4.0, 0.0}, {-4.0, 0.0}});
    points.insert(points.end(), {{0.0, 0.5}, {0.0, -0.5}, {0.0, 2.0}, {0.0, -2.0}});
    const auto results = fit(points);
    ASSERT_EQ(results.ellipse().center(), xcPoint(0.0, 0.0));
    ASSERT_EQ(results.ellipse().rotation().toDouble(), 0.0);
    double sum = 0.0;
    for (const xcVector<2>& p : points) {
        const double dist = bruteForceDistance(results.ellipse(), p);
        sum += dist * dist;
    }
    EXPECT_NEAR(results.error(), std::sqrt(sum / points.size()), 1e-9);
}

// ---- ignoreCount ----------------------------------------------------------------------------

TEST(EllipseFit, IgnoreCountDropsOutlier) {
    const xcVector<2> centre(-1.0, 4.0);
    const Points clean = ellipseSamples(centre, 5.0, 3.0, 1.2, 30);
    Points withOutlier = clean;
    withOutlier.insert(withOutlier.begin() + 12, xcVector<2>(-7.5, -2.5));

    const auto spoiled = fit(withOutlier);
    EXPECT_GT(spoiled.error(), 0.1);

    const auto results = fit(withOutlier, plainParams(1));
    expectEllipse(results.ellipse(), centre, 5.0, 3.0, 1.2, kRecoveryTolerance);
    EXPECT_LT(results.error(), 1e-9);
    // Dropping the outlier leaves exactly the clean points, in order.
    const auto direct = fit(clean);
    EXPECT_EQ(results.ellipse(), direct.ellipse());
    EXPECT_EQ(results.error(), direct.error());
}

TEST(EllipseFit, IgnoreCountDropsSeveralOutliers) {
    const Points clean = ellipseSamples({0.0, 0.0}, 4.0, 2.0, 0.5, 24);
    Points points = clean;
    points.push_back({12.0, 0.0});
    points.insert(points.begin(), xcVector<2>(0.0, -9.0));
    points.insert(points.begin() + 10, xcVector<2>(-10.0, 7.0));
    const auto results = fit(points, plainParams(3));
    EXPECT_EQ(results.ellipse(), fit(clean).ellipse());
}

// ---- Failures -------------------------------------------------------------------------------

template <class Error>
void expectFitThrows(const Points& points, const xcEllipseFitParams& params, long number,
                     const std::wstring& messagePart) {
    xcEllipseFitResults results;
    results.set(xcEllipse(xcCircle({1.0, 2.0}, 3.0)), 0.5);
    try {
        xfEllipseFit(params, points, results);
        FAIL() << "no exception";
    } catch (const Error& e) {
        EXPECT_EQ(e.errorNumber(), number);
        EXPECT_NE(e.message().find(messagePart), std::wstring::npos) << e.what();
    }
    // A failed fit leaves the results untouched.
    EXPECT_EQ(results.ellipse(), xcEllipse(xcCircle({1.0, 2.0}, 3.0)));
    EXPECT_EQ(results.error(), 0.5);
}

TEST(EllipseFit, FourPointsAreTooFew) {
    expectFitThrows<xcFitError::TooFewPoints>(ellipseSamples({0.0, 0.0}, 2.0, 1.0, 0.0, 4),
                                              plainParams(), xnErrorNumber::FitTooFewPoints,
                                              L"at least 5");
}

TEST(EllipseFit, TooFewAfterIgnoring) {
    expectFitThrows<xcFitError::TooFewPoints>(ellipseSamples({0.0, 0.0}, 2.0, 1.0, 0.0, 6),
                                              plainParams(2), xnErrorNumber::FitTooFewPoints,
                                              L"2 to ignore");
}

TEST(EllipseFit, IgnoreCountAboveSizeIsTooFew) {
    expectFitThrows<xcFitError::TooFewPoints>(ellipseSamples({0.0, 0.0}, 2.0, 1.0, 0.0, 10),
                                              plainParams(4000000000u),
                                              xnErrorNumber::FitTooFewPoints, L"at least 5");
}

TEST(EllipseFit, EmptyInputIsTooFew) {
    expectFitThrows<xcFitError::TooFewPoints>({}, plainParams(), xnErrorNumber::FitTooFewPoints,
                                              L"0 points");
}

TEST(EllipseFit, CollinearPointsAreDegenerate) {
    Points points;
    for (int k = 0; k < 12; ++k) points.push_back({0.1 * k - 3.0, 0.7 * (0.1 * k) + 2.0});
    expectFitThrows<xcFitError::Degenerate>(points, plainParams(), xnErrorNumber::FitDegenerate,
                                            L"collinear");
}

TEST(EllipseFit, CoincidentPointsAreDegenerate) {
    expectFitThrows<xcFitError::Degenerate>(Points(7, xcVector<2>(2.0, 3.0)), plainParams(),
                                            xnErrorNumber::FitDegenerate, L"coincide");
}

TEST(EllipseFit, RmsAboveMaxRmsThrows) {
    // Corners and edge midpoints of a square: no ellipse passes through all eight.
    const Points square = {{0.0, 0.0}, {1.0, 0.0}, {2.0, 0.0}, {2.0, 1.0},
                           {2.0, 2.0}, {1.0, 2.0}, {0.0, 2.0}, {0.0, 1.0}};
    expectFitThrows<xcFitError::RmsTooLarge>(square, plainParams(0, 1e-3),
                                             xnErrorNumber::FitRmsTooLarge, L"exceeds maxRms");
    EXPECT_GT(fit(square).error(), 1e-3);
}

TEST(EllipseFit, NegativeMaxRmsAlwaysFails) {
    expectFitThrows<xcFitError::RmsTooLarge>(ellipseSamples({0.0, 0.0}, 2.0, 1.0, 0.0, 10),
                                             plainParams(0, -1.0), xnErrorNumber::FitRmsTooLarge,
                                             L"maxRms");
}

TEST(EllipseFit, NaNCoordinateThrowsNotFinite) {
    Points points = ellipseSamples({0.0, 0.0}, 2.0, 1.0, 0.0, 10);
    points[3] = {std::nan(""), 1.0};
    expectFitThrows<xcMathError::NotFinite>(points, plainParams(), xnErrorNumber::MathNotFinite,
                                            L"point 3");
}

TEST(EllipseFit, InfiniteCoordinateThrowsNotFinite) {
    Points points = ellipseSamples({0.0, 0.0}, 2.0, 1.0, 0.0, 10);
    points[9] = {1.0, -kInf};
    expectFitThrows<xcMathError::NotFinite>(points, plainParams(), xnErrorNumber::MathNotFinite,
                                            L"point 9");
}

TEST(EllipseFit, NaNMaxRmsThrowsNotFinite) {
    expectFitThrows<xcMathError::NotFinite>(ellipseSamples({0.0, 0.0}, 2.0, 1.0, 0.0, 10),
                                            plainParams(0, std::nan("")),
                                            xnErrorNumber::MathNotFinite, L"maxRms");
}

TEST(EllipseFit, UnsupportedModeIsDegenerate) {
    const xcEllipseFitParams params(static_cast<xcEllipseFitDefs::fit_mode>(3), xcRadian(0.0), 0,
                                    kInf);
    expectFitThrows<xcFitError::Degenerate>(ellipseSamples({0.0, 0.0}, 2.0, 1.0, 0.0, 10), params,
                                            xnErrorNumber::FitDegenerate,
                                            L"unsupported fit mode 3");
}

// ---- The exception classes ------------------------------------------------------------------

TEST(FitError, DefaultMessagesAndNumbers) {
    EXPECT_EQ(xcFitError::TooFewPoints().message(), L"too few points to fit");
    EXPECT_EQ(xcFitError::Degenerate().message(), L"degenerate point configuration");
    EXPECT_EQ(xcFitError::RmsTooLarge().message(), L"fit residual exceeds maxRms");
    EXPECT_EQ(xcFitError::TooFewPoints().errorNumber(), 0x10001201);
    EXPECT_EQ(xcFitError::Degenerate().errorNumber(), 0x10001202);
    EXPECT_EQ(xcFitError::RmsTooLarge().errorNumber(), 0x10001203);
}

TEST(FitError, SuicideAndRethrowThrowsTheConcreteClass) {
    xcException* heap = new xcFitError::RmsTooLarge(L"rms 2 exceeds maxRms 1");
    try {
        heap->suicideAndRethrow();
        FAIL() << "no exception";
    } catch (const xcFitError::RmsTooLarge& e) {
        EXPECT_STREQ(e.what(), "rms 2 exceeds maxRms 1");
    }
}

}  // namespace
