#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/fit.h>
#include <foundation/random.h>

namespace {

using Points = std::vector<xcVector<2>>;

constexpr double kInf = std::numeric_limits<double>::infinity();
// Exact samples carry only rounding errors (~1e-15 here): the fit must reproduce the circle far
// better than this.
constexpr double kRecoveryTolerance = 1e-9;

xcCircleFitParams plainParams(unsigned ignoreCount = 0, double maxRms = kInf) {
    return xcCircleFitParams(xcCircleFitDefs::fitAll, 1.0, ignoreCount, maxRms);
}

// `count` points at angles first + k * step (radians) on the circle.
Points arcSamples(const xcVector<2>& centre, double radius, int count, double first, double step) {
    Points points;
    for (int k = 0; k < count; ++k)
        points.push_back(centre + xcVector<2>(radius, xcRadian(first + k * step)));
    return points;
}

Points circleSamples(const xcVector<2>& centre, double radius, int count) {
    return arcSamples(centre, radius, count, 0.0, 2.0 * xcPi / count);
}

xcCircleFitResults fit(const Points& points, const xcCircleFitParams& params = plainParams()) {
    xcCircleFitResults results;
    xfCircleFit(params, points, results);
    return results;
}

void expectCircle(const xcCircle& c, const xcVector<2>& centre, double radius, double tolerance) {
    EXPECT_NEAR(c.center().x(), centre.x(), tolerance);
    EXPECT_NEAR(c.center().y(), centre.y(), tolerance);
    EXPECT_NEAR(c.radius(), radius, tolerance);
}

TEST(CircleFit, RecoversCircleFromExactSamples) {
    const auto results = fit(circleSamples({-3.0, 7.5}, 4.25, 20));
    expectCircle(results.circle(), {-3.0, 7.5}, 4.25, kRecoveryTolerance);
    EXPECT_LT(results.error(), 1e-9);
}

TEST(CircleFit, ThreePointsDetermineTheCircle) {
    // (0, 0), (2, 0), (0, 2): the perpendicular bisectors x = 1 and y = 1 meet at (1, 1), and
    // the radius is |(1, 1) - (0, 0)| = sqrt(2).
    const auto results = fit({{0.0, 0.0}, {2.0, 0.0}, {0.0, 2.0}});
    expectCircle(results.circle(), {1.0, 1.0}, std::sqrt(2.0), 1e-12);
    EXPECT_LT(results.error(), 1e-12);
}

TEST(CircleFit, ShortArcIsRecovered) {
    // 15 points over 30 degrees of a circle of radius 50.
    const auto results = fit(arcSamples({100.0, -40.0}, 50.0, 15, 0.2, xcPi / 6 / 14));
    expectCircle(results.circle(), {100.0, -40.0}, 50.0, kRecoveryTolerance);
}

TEST(CircleFit, FarFromOriginIsRecovered) {
    // Near 1e6 the samples themselves are rounded to ~1.2e-10 (the spacing of doubles there).
    const auto results = fit(circleSamples({1e6, 1e6}, 2.0, 30));
    expectCircle(results.circle(), {1e6, 1e6}, 2.0, 1e-7);
}

TEST(CircleFit, HugeAndTinyScalesAreRecovered) {
    // Squares of these coordinates leave the double range; the fit works in relative terms.
    for (const double unit : {1e200, 1e-200}) {
        SCOPED_TRACE(unit);
        const xcVector<2> centre(-unit, 3.0 * unit);
        const auto results = fit(circleSamples(centre, 2.0 * unit, 12));
        expectCircle(results.circle(), centre, 2.0 * unit, kRecoveryTolerance * unit);
        EXPECT_LT(results.error(), 1e-9 * unit);
    }
}

TEST(CircleFit, RmsOfAlternatingCircleIsRadialDistance) {
    // Eight points at 45 degree steps around (2, -1), at radius R + d on the axes and R - d on
    // the diagonals. By symmetry the fit is centred at (2, -1); with D = E = 0 the fit minimises
    // sum (r_k^2 + F)^2, so F = -mean(r_k^2) and rho^2 = mean(r_k^2) = R^2 + d^2. The residuals
    // are |r_k - rho|, so rms^2 = ((R + d - rho)^2 + (R - d - rho)^2) / 2 = (rho - R)^2 + d^2.
    const double R = 10.0, d = 1.0;
    const xcVector<2> centre(2.0, -1.0);
    Points points;
    for (int k = 0; k < 8; ++k)
        points.push_back(centre + xcVector<2>(k % 2 == 0 ? R + d : R - d, xcRadian(k * xcPi / 4)));
    const double rho = std::sqrt(R * R + d * d);  // 10.0498756...
    const auto results = fit(points);
    expectCircle(results.circle(), centre, rho, 1e-12);
    EXPECT_NEAR(results.error(), std::sqrt((rho - R) * (rho - R) + d * d), 1e-12);  // 1.00124...
}

TEST(CircleFit, RmsMatchesDirectComputation) {
    xcRandomUniform random(11);
    Points points = circleSamples({5.0, 5.0}, 3.0, 25);
    for (xcVector<2>& p : points) p += xcVector<2>(random.next(-0.2, 0.2), random.next(-0.2, 0.2));
    const auto results = fit(points);
    double sum = 0.0;
    for (const xcVector<2>& p : points) {
        const double r = p.distance(results.circle().center()) - results.circle().radius();
        sum += r * r;
    }
    EXPECT_NEAR(results.error(), std::sqrt(sum / points.size()), 1e-12);
    EXPECT_GT(results.error(), 0.01);
}

TEST(CircleFit, IgnoreCountDropsOutlier) {
    const Points clean = circleSamples({1.0, 2.0}, 5.0, 16);
    Points withOutlier = clean;
    withOutlier.insert(withOutlier.begin() + 5, xcVector<2>(9.0, 9.0));

    EXPECT_GT(fit(withOutlier).error(), 0.1);
    const auto results = fit(withOutlier, plainParams(1));
    expectCircle(results.circle(), {1.0, 2.0}, 5.0, kRecoveryTolerance);
    EXPECT_LT(results.error(), 1e-9);
    // Dropping the outlier leaves exactly the clean points, in order.
    EXPECT_EQ(results.circle(), fit(clean).circle());
}

template <class Error>
void expectFitThrows(const Points& points, const xcCircleFitParams& params, long number,
                     const std::wstring& messagePart) {
    xcCircleFitResults results;
    results.set(xcCircle({1.0, 2.0}, 3.0), 0.5);
    try {
        xfCircleFit(params, points, results);
        FAIL() << "no exception";
    } catch (const Error& e) {
        EXPECT_EQ(e.errorNumber(), number);
        EXPECT_NE(e.message().find(messagePart), std::wstring::npos) << e.what();
    }
    // A failed fit leaves the results untouched.
    EXPECT_EQ(results.circle(), xcCircle({1.0, 2.0}, 3.0));
    EXPECT_EQ(results.error(), 0.5);
}

TEST(CircleFit, TwoPointsAreTooFew) {
    expectFitThrows<xcFitError::TooFewPoints>({{0.0, 0.0}, {1.0, 1.0}}, plainParams(),
                                              xnErrorNumber::FitTooFewPoints, L"at least 3");
}

TEST(CircleFit, TooFewAfterIgnoring) {
    expectFitThrows<xcFitError::TooFewPoints>(circleSamples({0.0, 0.0}, 1.0, 4), plainParams(2),
                                              xnErrorNumber::FitTooFewPoints, L"2 to ignore");
}

TEST(CircleFit, CollinearPointsAreDegenerate) {
    expectFitThrows<xcFitError::Degenerate>({{0.0, 1.0}, {1.0, 3.0}, {2.0, 5.0}, {3.5, 8.0}},
                                            plainParams(), xnErrorNumber::FitDegenerate,
                                            L"collinear");
}

TEST(CircleFit, CoincidentPointsAreDegenerate) {
    expectFitThrows<xcFitError::Degenerate>(Points(5, xcVector<2>(-1.0, 0.5)), plainParams(),
                                            xnErrorNumber::FitDegenerate, L"coincide");
}

TEST(CircleFit, RmsAboveMaxRmsThrows) {
    // Corners and edge midpoints of a square lie at radii sqrt(2) and 1 from its centre.
    const Points square = {{0.0, 0.0}, {1.0, 0.0}, {2.0, 0.0}, {2.0, 1.0},
                           {2.0, 2.0}, {1.0, 2.0}, {0.0, 2.0}, {0.0, 1.0}};
    expectFitThrows<xcFitError::RmsTooLarge>(square, plainParams(0, 0.1),
                                             xnErrorNumber::FitRmsTooLarge, L"exceeds maxRms");
    EXPECT_GT(fit(square).error(), 0.1);
}

TEST(CircleFit, NaNCoordinateThrowsNotFinite) {
    Points points = circleSamples({0.0, 0.0}, 1.0, 6);
    points[2] = {0.0, std::nan("")};
    expectFitThrows<xcMathError::NotFinite>(points, plainParams(), xnErrorNumber::MathNotFinite,
                                            L"point 2");
}

TEST(CircleFit, NaNMaxRmsThrowsNotFinite) {
    expectFitThrows<xcMathError::NotFinite>(circleSamples({0.0, 0.0}, 1.0, 6),
                                            plainParams(0, std::nan("")),
                                            xnErrorNumber::MathNotFinite, L"maxRms");
}

TEST(CircleFit, UnsupportedModeIsDegenerate) {
    const xcCircleFitParams params(static_cast<xcCircleFitDefs::fit_mode>(1), 1.0, 0, kInf);
    expectFitThrows<xcFitError::Degenerate>(circleSamples({0.0, 0.0}, 1.0, 6), params,
                                            xnErrorNumber::FitDegenerate,
                                            L"unsupported fit mode 1");
}

}  // namespace
