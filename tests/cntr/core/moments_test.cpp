// The core's polygon area and area centroid: hand-computed values, and the fast paths (the
// interleaved area sum, the paired fan triangles) against the edge-order definitions.
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/moments.h>
#include <cntr/core/reference.h>
#include <foundation/exception.h>
#include <foundation/random.h>

#include "../within_relative.h"

namespace {

using cntr::core::polygonArea;
using cntr::core::polygonCentroid;
using cntr::core::referenceArea;
using cntr::core::referenceCentroid;
using Points = std::vector<xcVector<2>>;

Points reversed(Points p) {
    return Points(p.rbegin(), p.rend());
}

// ---- hand-computed values ----

TEST(CoreMoments, UnitSquareHasAreaOneAndCentroidAtItsMiddle) {
    const Points square{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    // Cross products of the edges, closing edge first: 0, 0, 1, 1; half their sum is 1.
    EXPECT_EQ(polygonArea(square), 1.0);
    EXPECT_EQ(polygonArea(reversed(square)), 1.0);
    EXPECT_EQ(referenceArea(square), 1.0);
    // The two fan triangles of weight 1 have centroids (2/3, 1/3) and (1/3, 2/3).
    for (const Points& p : {square, reversed(square)}) {
        const xcVector<2> c = polygonCentroid(p);
        EXPECT_NEAR(c.x(), 0.5, 1e-14);
        EXPECT_NEAR(c.y(), 0.5, 1e-14);
    }
}

TEST(CoreMoments, RightTriangle) {
    // Legs 4 and 3: area 4 * 3 / 2 = 6, centroid the mean of the corners (4/3, 1).
    const Points t{{0, 0}, {4, 0}, {0, 3}};
    EXPECT_EQ(polygonArea(t), 6.0);
    EXPECT_EQ(polygonArea(reversed(t)), 6.0);
    const xcVector<2> c = polygonCentroid(t);
    EXPECT_NEAR(c.x(), 4.0 / 3.0, 1e-14);
    EXPECT_NEAR(c.y(), 1.0, 1e-14);
}

TEST(CoreMoments, RectangleAwayFromTheOrigin) {
    // [10, 13] x [20, 24]: cross products -40, -60, 52 and 72, half their sum 3 * 4 = 12.
    const Points r{{10, 20}, {13, 20}, {13, 24}, {10, 24}};
    EXPECT_EQ(polygonArea(r), 12.0);
    const xcVector<2> c = polygonCentroid(r);
    EXPECT_NEAR(c.x(), 11.5, 1e-12);
    EXPECT_NEAR(c.y(), 22.0, 1e-12);
}

TEST(CoreMoments, FewerThanThreeVertices) {
    EXPECT_EQ(polygonArea(Points{}), 0.0);
    EXPECT_EQ(polygonArea(Points{{3, 4}}), 0.0);
    EXPECT_EQ(polygonArea(Points{{2, 5}, {7, -1}}), 0.0);  // -37 + 37
    EXPECT_EQ(referenceArea(Points{}), 0.0);
    EXPECT_EQ(polygonCentroid(Points{}), xcVector<2>());
    EXPECT_EQ(polygonCentroid(Points{{2, 5}, {7, -1}}), xcVector<2>());
    EXPECT_EQ(referenceCentroid(Points{{2, 5}, {7, -1}}), xcVector<2>());
}

TEST(CoreMoments, CollinearVerticesHaveNoAreaAndTheZeroCentroid) {
    // Cross products -2, 1, 1: they cancel, and so do the centroid's weights.
    const Points line{{1, 0}, {2, 1}, {3, 2}};
    EXPECT_EQ(polygonArea(line), 0.0);
    EXPECT_EQ(polygonCentroid(line), xcVector<2>());
}

// A rectangle [1000, 1100] x [1000, 1050] with a vertex at every integer point of its sides
// (300 vertices): every cross product is an integer below 2^53, so every order of summation is
// exact, the interleaved one included, and the area is 100 * 50.
TEST(CoreMoments, IntegerTermsSumExactlyInEveryOrder) {
    Points p;
    for (int x = 1000; x < 1100; ++x)
        p.emplace_back(x, 1000);
    for (int y = 1000; y < 1050; ++y)
        p.emplace_back(1100, y);
    for (int x = 1100; x > 1000; --x)
        p.emplace_back(x, 1050);
    for (int y = 1050; y > 1000; --y)
        p.emplace_back(1000, y);
    ASSERT_EQ(p.size(), 300u);
    EXPECT_EQ(polygonArea(p), 5000.0);
    EXPECT_EQ(polygonArea(reversed(p)), 5000.0);
    EXPECT_EQ(referenceArea(p), 5000.0);
}

TEST(CoreMoments, NotANumberSpreads) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Points p{{0, 0}, {nan, 0}, {1, 1}, {0, 1}};
    EXPECT_TRUE(std::isnan(polygonArea(p)));
    const xcVector<2> c = polygonCentroid(p);
    EXPECT_TRUE(std::isnan(c.x()) && std::isnan(c.y()));
}

// ---- the interleaved area sum against the sum in edge order ----

bool sameBits(double a, double b) {
    return std::isnan(a) ? std::isnan(b) : a == b;
}

// Mostly small polygons, some up to 1,000 vertices and one in a hundred up to 20,000.
std::size_t randomShapeSize(xcRandomUniform& g) {
    const double pick = g.next(0.0, 1.0);
    return static_cast<std::size_t>(pick < 0.7    ? g.next(1.0, 64.0)
                                    : pick < 0.99 ? g.next(64.0, 1000.0)
                                                  : g.next(1000.0, 20000.0));
}

// A random polygon of one of several families: stars around their centre (every fan term of one
// sign when the centre is the origin), stars far from the origin, free point clouds (crossing
// edges, cancelling terms), integer grids (exact ties) and collinear runs; with repeated vertices.
Points randomAreaShape(xcRandomUniform& g, std::size_t n) {
    const int family = static_cast<int>(g.next(0.0, 5.0));
    const double scale = std::pow(10.0, g.next(-6.0, 8.0));
    const double offsetFactor = family == 1 ? std::pow(10.0, g.next(-1.0, 4.0)) : 0.0;
    const xcVector<2> centre(g.next(-1.0, 1.0) * offsetFactor * scale,
                             g.next(-1.0, 1.0) * offsetFactor * scale);
    Points p;
    for (std::size_t i = 0; i < n; ++i) {
        if (i > 0 && g.next(0.0, 1.0) < 0.05) {
            p.push_back(p.back());
            continue;
        }
        const double angle =
            2.0 * M_PI * (static_cast<double>(i) + g.next(0.0, 0.9)) / static_cast<double>(n);
        switch (family) {
            case 0:
            case 1: {
                const double r = scale * g.next(0.2, 1.0);
                p.push_back(centre + xcVector<2>(std::cos(angle), std::sin(angle)) * r);
                break;
            }
            case 2:
                p.emplace_back(g.next(-1.0, 1.0) * scale, g.next(-1.0, 1.0) * scale);
                break;
            case 3:
                p.emplace_back(std::round(g.next(-20.0, 20.0)), std::round(g.next(-20.0, 20.0)));
                break;
            default: {  // a star whose vertices come in collinear runs of three
                const double r = scale * g.next(0.5, 1.0);
                const xcVector<2> corner(std::cos(angle) * r, std::sin(angle) * r);
                p.push_back(corner);
                if (i + 2 < n) {
                    const xcVector<2> step(-corner.y() * 0.01, corner.x() * 0.01);
                    p.push_back(corner + step);
                    p.push_back(corner + step * 2.0);
                    i += 2;
                }
            }
        }
    }
    return p;
}

TEST(CoreMoments, InterleavedSumAgreesWithTheSumInEdgeOrder) {
    xcRandomUniform g(4242);
    int reordered = 0;
    int kept = 0;
    for (int s = 0; s < 100000; ++s) {
        const std::size_t n = randomShapeSize(g);
        const Points p = randomAreaShape(g, n);
        const double plain = referenceArea(p);
        const double area = polygonArea(p);
        ASSERT_TRUE(withinRelative(area, plain))
            << "shape " << s << " n " << p.size() << ": " << area << " vs " << plain;
        (sameBits(area, plain) ? kept : reordered) += 1;
    }
    // Both outcomes occur, so the comparison above is not vacuous.
    EXPECT_GT(reordered, 10000);
    EXPECT_GT(kept, 10000);
}

// A unit square far from the origin: its cross products are about 2e10 each and cancel to 2, far
// beyond what a reordering may disturb; the sum keeps the edge order, bit for bit.
TEST(CoreMoments, CancellingSumKeepsTheEdgeOrder) {
    const xcVector<2> at(1e5 + 0.1, 1e5 + 0.3);
    Points p;
    for (int i = 0; i < 4; ++i)
        p.push_back(at + xcVector<2>(i * 0.25, 0.0));
    for (int i = 0; i < 4; ++i)
        p.push_back(at + xcVector<2>(1.0, i * 0.25));
    for (int i = 0; i < 4; ++i)
        p.push_back(at + xcVector<2>(1.0 - i * 0.25, 1.0));
    for (int i = 0; i < 4; ++i)
        p.push_back(at + xcVector<2>(0.0, 1.0 - i * 0.25));
    EXPECT_EQ(polygonArea(p), referenceArea(p));
    EXPECT_NEAR(polygonArea(p), 1.0, 1e-3);
}

// Terms that overflow, or partial sums that might overflow in one order and not in the other,
// give what the edge order gives.
TEST(CoreMoments, NonFiniteAndHugeTermsGiveWhatTheEdgeOrderGives) {
    const double inf = std::numeric_limits<double>::infinity();
    for (double odd : {std::nan(""), inf, -inf, 1e308, 1e160, -1e155}) {
        for (std::size_t at : {0u, 1u, 6u, 11u}) {
            Points p;
            for (int i = 0; i < 12; ++i)
                p.emplace_back(std::cos(i * 0.5) * 1e153, std::sin(i * 0.5) * 1e153);
            p[at] = xcVector<2>(odd, odd / 3.0);
            EXPECT_TRUE(sameBits(polygonArea(p), referenceArea(p))) << odd << " at " << at;
        }
    }
}

// ---- the paired fan triangles against the definition one by one ----

enum class Outcome { value, singular, other };

// The centre of mass by `f`, or how it failed.
template <class F>
Outcome centreBy(F f, const Points& p, xcVector<2>& out) {
    try {
        out = f(p);
        return Outcome::value;
    } catch (const xcMathError::Singular&) {
        return Outcome::singular;
    } catch (...) {
        return Outcome::other;
    }
}

// A polygon from the area families, or one with the cases the paired lanes leave to the
// definition: a vertex at the origin (skipped triangles), a far thin sliver whose medians are
// parallel, coordinates whose squares overflow or underflow, NaN and infinities.
Points randomCentroidShape(xcRandomUniform& g, std::size_t n) {
    Points p = randomAreaShape(g, n);
    if (p.empty() || g.next(0.0, 1.0) < 0.7)
        return p;
    const auto at = static_cast<std::size_t>(g.next(0.0, static_cast<double>(p.size())));
    switch (static_cast<int>(g.next(0.0, 6.0))) {
        case 0:
            p[at] = xcVector<2>();
            break;
        case 1:
            p[at] = xcVector<2>(1e8, 0.0);
            p.insert(p.begin() + static_cast<std::ptrdiff_t>(at) + 1, xcVector<2>(1e8, 1e-7));
            break;
        case 2:
            p[at] = xcVector<2>(3e160, -2e160);
            break;
        case 3:
            for (xcVector<2>& v : p)
                v = v * 1e-170;
            break;
        case 4:
            p[at] = xcVector<2>(std::nan(""), 1.0);
            break;
        default:
            p[at] = xcVector<2>(std::numeric_limits<double>::infinity(), 2.0);
    }
    return p;
}

TEST(CoreMoments, PairedTrianglesGiveTheBitsOfTheDefinitionOneByOne) {
    xcRandomUniform g(777);
    int singular = 0;
    for (int s = 0; s < 100000; ++s) {
        const std::size_t n = randomShapeSize(g);
        const Points p = randomCentroidShape(g, n);
        xcVector<2> paired, plain;
        const Outcome fast =
            centreBy([](const Points& q) { return polygonCentroid(q); }, p, paired);
        const Outcome reference = centreBy(referenceCentroid, p, plain);
        ASSERT_EQ(fast, reference) << "shape " << s << " n " << p.size();
        singular += reference == Outcome::singular ? 1 : 0;
        if (reference == Outcome::value) {
            ASSERT_TRUE(sameBits(paired.x(), plain.x()) && sameBits(paired.y(), plain.y()))
                << "shape " << s << " n " << p.size() << ": (" << paired.x() << ", " << paired.y()
                << ") vs (" << plain.x() << ", " << plain.y() << ")";
        }
    }
    // The thin slivers do reach the parallel-median case.
    EXPECT_GT(singular, 1000);
}

// Odd and even vertex counts from 3 up: the last edge of an odd count is taken on its own.
TEST(CoreMoments, PairedTrianglesCoverOddAndEvenCounts) {
    for (int n = 3; n <= 12; ++n) {
        Points p;
        for (int i = 0; i < n; ++i)
            p.emplace_back(5.0 + 2.0 * std::cos(2.0 * M_PI * i / n),
                           -1.0 + std::sin(2.0 * M_PI * i / n));
        const xcVector<2> c = polygonCentroid(p);
        const xcVector<2> reference = referenceCentroid(p);
        EXPECT_EQ(c.x(), reference.x()) << n;
        EXPECT_EQ(c.y(), reference.y()) << n;
        // A regular polygon's centroid is its centre.
        EXPECT_NEAR(c.x(), 5.0, 1e-12) << n;
        EXPECT_NEAR(c.y(), -1.0, 1e-12) << n;
    }
}

}  // namespace
