// Seeded randomized checks of the polygon moments against the classical closed forms.
#include <cmath>
#include <cstddef>
#include <cstdint>

#include <gtest/gtest.h>

#include <cntr/moments.h>
#include <foundation/random.h>

#include "moments_test_support.h"

namespace {

using moments_test::hasFootJustOutsideASide;
using moments_test::isStarShapedAbout;
using moments_test::Points;
using moments_test::ReferenceMoments;
using moments_test::referenceMoments;
using moments_test::reversed;

constexpr int kPolygons = 1000;
constexpr double kRelTol = 1e-9;
// A generous bound on redraws; star-shaped polygons are accepted far more often than this.
constexpr int kMaxDraws = 100 * kPolygons;
// Polygons whose fan has a foot this close to a side's end are left out of the exact
// comparisons (100 times the library's own slack of 1e-10, so the small difference between the
// reference centroid and the library's cannot hide one).
constexpr double kFootWindow = 1e-8;
// At most this fraction of the drawn polygons may be left out for that reason.
constexpr double kMaxSkippedFraction = 0.05;

struct Sample {
    Points points;  // counter-clockwise
    double size;    // the radius used to draw it: the scale of coordinates relative to its centre
};

/// A random polygon of 3 to 200 vertices and radius 0.1 to 1000, star-shaped about a random
/// point within ten radii of the origin (the library sums cross products of absolute
/// coordinates, so a tiny polygon far from the origin loses digits in any such sum).
Sample drawPolygon(xcRandomUniform& rng, double minFraction) {
    const std::size_t n = 3 + static_cast<std::size_t>(rng.next(0.0, 198.0));
    const double radius = std::pow(10.0, rng.next(-1.0, 3.0));
    const xcVector<2> center(rng.next(-10.0, 10.0) * radius, rng.next(-10.0, 10.0) * radius);
    return {moments_test::starPolygon(rng, n, center, radius, minFraction), radius};
}

/// Checks area, centroid and inertia of `p` against the closed forms. Tolerances are relative:
/// the area to |A|, the centroid to the polygon's size, the matrix elements to its trace.
void expectMatchesClosedForms(const Points& p, double size, bool checkMatrix) {
    const ReferenceMoments ref = referenceMoments(p);
    EXPECT_NEAR(xf_Area(p), std::fabs(ref.area), kRelTol * std::fabs(ref.area));

    const xcVector<2> c = xnContour::centerOfMass(p);
    EXPECT_NEAR(c.x(), ref.center.x(), kRelTol * size);
    EXPECT_NEAR(c.y(), ref.center.y(), kRelTol * size);

    const xc_InertiaData d = xf_InertiaDataPolygon(p);
    EXPECT_NEAR(d.area(), ref.area, kRelTol * std::fabs(ref.area));
    EXPECT_NEAR(d.centerOfMass().x(), ref.center.x(), kRelTol * size);
    EXPECT_NEAR(d.centerOfMass().y(), ref.center.y(), kRelTol * size);
    if (!checkMatrix)
        return;
    const double scale = ref.xx + ref.yy;
    const xcMatrix<2>& m = d.inertiaMatrix();
    EXPECT_NEAR(m.element(0, 0), ref.xx, kRelTol * scale);
    EXPECT_NEAR(m.element(1, 1), ref.yy, kRelTol * scale);
    EXPECT_NEAR(m.element(0, 1), ref.xy, kRelTol * scale);
    EXPECT_NEAR(m.element(1, 0), ref.xy, kRelTol * scale);
}

/// Expects two records to agree: area relative to |area|, centre relative to `size`, matrix
/// elements relative to the trace.
void expectRecordsNear(const xc_InertiaData& actual, const xc_InertiaData& expected, double size) {
    EXPECT_NEAR(actual.area(), expected.area(), kRelTol * std::fabs(expected.area()));
    EXPECT_NEAR(actual.centerOfMass().x(), expected.centerOfMass().x(), kRelTol * size);
    EXPECT_NEAR(actual.centerOfMass().y(), expected.centerOfMass().y(), kRelTol * size);
    const xcMatrix<2>& m = actual.inertiaMatrix();
    const xcMatrix<2>& e = expected.inertiaMatrix();
    const double scale = e.element(0, 0) + e.element(1, 1);
    for (int r = 0; r < 2; ++r)
        for (int c = 0; c < 2; ++c)
            EXPECT_NEAR(m.element(r, c), e.element(r, c), kRelTol * scale) << r << "," << c;
}

/// Draws polygons until kPolygons of them are star-shaped about their centroid (or, with
/// `starAboutCentroid` false, are not) and have no foot just outside a side, and runs `check`
/// on each. Expects the count reached and few polygons left out for the foot window.
template <class Check>
void checkRandomPolygons(std::uint64_t seed, double minFraction, bool starAboutCentroid,
                         Check check) {
    xcRandomUniform rng(seed);
    int checked = 0;
    int skipped = 0;
    for (int draw = 0; draw < kMaxDraws && checked < kPolygons; ++draw) {
        const Sample s = drawPolygon(rng, minFraction);
        const xcVector<2> c = referenceMoments(s.points).center;
        if (isStarShapedAbout(s.points, c, s.size) != starAboutCentroid)
            continue;
        if (hasFootJustOutsideASide(s.points, c, kFootWindow)) {
            ++skipped;
            continue;
        }
        ++checked;
        SCOPED_TRACE(testing::Message()
                     << "polygon " << checked << ", " << s.points.size() << " vertices");
        check(s);
        if (testing::Test::HasFailure())
            return;
    }
    EXPECT_EQ(checked, kPolygons);
    testing::Test::RecordProperty("skipped", skipped);
    EXPECT_LE(skipped, kMaxSkippedFraction * (checked + skipped));
}

TEST(MomentsProperty, StarShapedAboutCentroidMatchesClosedFormsBothOrientations) {
    checkRandomPolygons(20240611, 0.3, true, [](const Sample& s) {
        expectMatchesClosedForms(s.points, s.size, true);
        expectMatchesClosedForms(reversed(s.points), s.size, true);
    });
}

TEST(MomentsProperty, FanWithMixedTriangles) {
    // Deep random radii: the polygon is star-shaped about the point it was drawn around but
    // usually not about its centroid. Counter-clockwise lists still give the true moments; the
    // clockwise ones keep area and centroid (their matrix follows the combination rule).
    checkRandomPolygons(7, 0.02, false, [](const Sample& s) {
        expectMatchesClosedForms(s.points, s.size, true);
        expectMatchesClosedForms(reversed(s.points), s.size, false);
    });
}

TEST(MomentsProperty, UnionOfTwoPartsIsTheSumOfTheirRecords) {
    // A convex polygon (vertices on a circle at sorted random angles) cut along the chord from
    // vertex 0 to vertex k into two convex parts. Same orientation on both sides, so the parts'
    // records add to the whole's by the parallel-axis theorem.
    constexpr int kTrials = 200;
    xcRandomUniform rng(99);
    int skipped = 0;
    for (int trial = 0; trial < kTrials; ++trial) {
        const std::size_t n = 4 + static_cast<std::size_t>(rng.next(0.0, 60.0));
        const xcVector<2> center(rng.next(-50.0, 50.0), rng.next(-50.0, 50.0));
        const double radius = rng.next(0.5, 20.0);
        Points whole;
        for (std::size_t i = 0; i < n; ++i) {
            const double a =
                2.0 * xcPi * (static_cast<double>(i) + rng.next(0.1, 0.9)) / static_cast<double>(n);
            whole.push_back(center + xcVector<2>(radius * std::cos(a), radius * std::sin(a)));
        }
        const std::size_t k =
            2 + static_cast<std::size_t>(rng.next(0.0, static_cast<double>(n - 3)));
        const Points first(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(k) + 1);
        Points second(whole.begin() + static_cast<std::ptrdiff_t>(k), whole.end());
        second.push_back(whole[0]);
        if (hasFootJustOutsideASide(first, referenceMoments(first).center, kFootWindow) ||
            hasFootJustOutsideASide(second, referenceMoments(second).center, kFootWindow) ||
            hasFootJustOutsideASide(whole, referenceMoments(whole).center, kFootWindow)) {
            ++skipped;
            continue;
        }

        for (bool clockwise : {false, true}) {
            SCOPED_TRACE(testing::Message() << "trial " << trial << (clockwise ? " cw" : " ccw"));
            const auto orient = [clockwise](const Points& p) {
                return clockwise ? reversed(p) : p;
            };
            xc_InertiaData a = xf_InertiaDataPolygon(orient(first));
            const xc_InertiaData sum = a + xf_InertiaDataPolygon(orient(second));
            const xc_InertiaData ref = xf_InertiaDataPolygon(orient(whole));
            expectRecordsNear(sum, ref, radius);
        }
        if (HasFailure())
            return;
    }
    RecordProperty("skipped", skipped);
    EXPECT_LE(skipped, kMaxSkippedFraction * kTrials);
}

}  // namespace
