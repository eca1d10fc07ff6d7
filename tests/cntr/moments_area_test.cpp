// Area and centre of mass of vertex lists.
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/moments.h>
#include <cntr/moments_internal.h>
#include <foundation/angle.h>
#include <foundation/exception.h>
#include <foundation/geometry.h>
#include <foundation/random.h>

#include "moments_test_support.h"
#include "within_relative.h"

namespace {

using moments_test::Points;
using moments_test::rectangle;
using moments_test::reversed;

// The centroid is found through line intersections, so it carries rounding.
constexpr double kTol = 1e-12;

std::vector<xcEdgelet> edgeletsAt(const Points& points) {
    std::vector<xcEdgelet> out;
    for (const xcVector<2>& p : points)
        out.emplace_back(p, std::uint16_t{7}, xcAngle8(3));
    return out;
}

void expectVectorNear(const xcVector<2>& actual, double x, double y) {
    EXPECT_NEAR(actual.x(), x, kTol);
    EXPECT_NEAR(actual.y(), y, kTol);
}

TEST(MomentsArea, UnitSquareCounterClockwise) {
    EXPECT_EQ(xf_Area(rectangle(0, 0, 1, 1)), 1.0);
}

TEST(MomentsArea, UnitSquareClockwiseIsPositiveToo) {
    EXPECT_EQ(xf_Area(reversed(rectangle(0, 0, 1, 1))), 1.0);
}

TEST(MomentsArea, RightTriangleBothOrientations) {
    const Points t{{0, 0}, {4, 0}, {0, 3}};  // legs 4 and 3: area 4 * 3 / 2 = 6
    EXPECT_EQ(xf_Area(t), 6.0);
    EXPECT_EQ(xf_Area(reversed(t)), 6.0);
}

TEST(MomentsArea, ConcaveLShapeBothOrientations) {
    // A 2 x 1 bar plus a 1 x 1 square on top of its left half: area 2 + 1 = 3.
    const Points l{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    EXPECT_EQ(xf_Area(l), 3.0);
    EXPECT_EQ(xf_Area(reversed(l)), 3.0);
}

TEST(MomentsArea, OffsetRectangle) {
    EXPECT_EQ(xf_Area(rectangle(10, 20, 13, 24)), 12.0);  // 3 * 4
}

TEST(MomentsArea, OnePointAndTwoPointsGiveZero) {
    EXPECT_EQ(xf_Area(Points{{3, 4}}), 0.0);
    EXPECT_EQ(xf_Area(Points{{0, 0}, {1, 0}}), 0.0);
    EXPECT_EQ(xf_Area(Points{{2, 5}, {7, -1}}), 0.0);  // cross terms cancel: -37 + 37
}

TEST(MomentsArea, EmptyListGivesZero) {
    EXPECT_EQ(xf_Area(Points{}), 0.0);
}

TEST(MomentsArea, CollinearPointsGiveZero) {
    // Crosses of (3,2)x(1,0), (1,0)x(2,1), (2,1)x(3,2): -2 + 1 + 1 = 0.
    EXPECT_EQ(xf_Area(Points{{1, 0}, {2, 1}, {3, 2}}), 0.0);
}

TEST(MomentsArea, BowTieLobesCancel) {
    // Crosses: (0,2)x(0,0) = 0, (0,0)x(2,2) = 0, (2,2)x(2,0) = -4, (2,0)x(0,2) = 4.
    EXPECT_EQ(xf_Area(Points{{0, 0}, {2, 2}, {2, 0}, {0, 2}}), 0.0);
}

TEST(MomentsArea, RepeatedVertexChangesNothing) {
    EXPECT_EQ(xf_Area(Points{{0, 0}, {1, 0}, {1, 0}, {1, 1}, {0, 1}}), 1.0);
}

TEST(MomentsArea, EdgeletOverloadUsesPositions) {
    EXPECT_EQ(xf_Area(edgeletsAt(rectangle(10, 20, 13, 24))), 12.0);
    EXPECT_EQ(xf_Area(edgeletsAt(reversed(rectangle(10, 20, 13, 24)))), 12.0);
}

TEST(MomentsArea, EdgeletOverloadBelowThreeIsZero) {
    EXPECT_EQ(xf_Area(std::vector<xcEdgelet>{}), 0.0);
    EXPECT_EQ(xf_Area(edgeletsAt(Points{{0, 0}})), 0.0);
    EXPECT_EQ(xf_Area(edgeletsAt(Points{{0, 0}, {1, 0}})), 0.0);
}

TEST(MomentsArea, NanCoordinateGivesNan) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(xf_Area(Points{{0, 0}, {nan, 0}, {1, 1}})));
}

// ---- the interleaved area sum against the sum in edge order ----

namespace {

bool sameBits(double a, double b) { return std::isnan(a) ? std::isnan(b) : a == b; }

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
        const double angle = 2.0 * M_PI * (static_cast<double>(i) + g.next(0.0, 0.9)) /
                             static_cast<double>(n);
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

}  // namespace

TEST(MomentsArea, InterleavedSumAgreesWithTheSumInEdgeOrder) {
    xcRandomUniform g(4242);
    int reordered = 0;
    int kept = 0;
    for (int s = 0; s < 100000; ++s) {
        const std::size_t n = randomShapeSize(g);
        const Points p = randomAreaShape(g, n);
        const double plain = moments_detail::plainArea(p);
        const double area = xf_Area(p);
        ASSERT_TRUE(withinRelative(area, plain))
            << "shape " << s << " n " << p.size() << ": " << area << " vs " << plain;
        (sameBits(area, plain) ? kept : reordered) += 1;
    }
    // Both outcomes occur, so the comparison above is not vacuous.
    EXPECT_GT(reordered, 10000);
    EXPECT_GT(kept, 10000);
}

TEST(MomentsArea, IntegerOctagonSumsExactly) {
    // Every cross product of consecutive vertices is 6: area 8 * 6 / 2.
    const Points octagon{{3, 0}, {2, 2}, {0, 3}, {-2, 2}, {-3, 0}, {-2, -2}, {0, -3}, {2, -2}};
    EXPECT_EQ(xf_Area(octagon), 24.0);
    EXPECT_EQ(xf_Area(reversed(octagon)), 24.0);
}

// A unit square far from the origin: its cross products are about 2e10 each and cancel to 2, far
// beyond what a reordering may disturb; the sum keeps the edge order, bit for bit.
TEST(MomentsArea, CancellingSumKeepsTheEdgeOrder) {
    const xcVector<2> at(1e5 + 0.1, 1e5 + 0.3);
    Points p;
    for (int i = 0; i < 4; ++i) p.push_back(at + xcVector<2>(i * 0.25, 0.0));
    for (int i = 0; i < 4; ++i) p.push_back(at + xcVector<2>(1.0, i * 0.25));
    for (int i = 0; i < 4; ++i) p.push_back(at + xcVector<2>(1.0 - i * 0.25, 1.0));
    for (int i = 0; i < 4; ++i) p.push_back(at + xcVector<2>(0.0, 1.0 - i * 0.25));
    EXPECT_EQ(xf_Area(p), moments_detail::plainArea(p));
    EXPECT_NEAR(xf_Area(p), 1.0, 1e-3);
}

// Terms that overflow, or partial sums that might overflow in one order and not in the other,
// give what the edge order gives.
TEST(MomentsArea, NonFiniteAndHugeTermsGiveWhatTheEdgeOrderGives) {
    const double inf = std::numeric_limits<double>::infinity();
    for (double odd : {std::nan(""), inf, -inf, 1e308, 1e160, -1e155}) {
        for (std::size_t at : {0u, 1u, 6u, 11u}) {
            Points p;
            for (int i = 0; i < 12; ++i)
                p.emplace_back(std::cos(i * 0.5) * 1e153, std::sin(i * 0.5) * 1e153);
            p[at] = xcVector<2>(odd, odd / 3.0);
            EXPECT_TRUE(sameBits(xf_Area(p), moments_detail::plainArea(p))) << odd << " at " << at;
        }
    }
}

// ---- the paired fan triangles against the definition one by one ----

namespace {

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
            for (xcVector<2>& v : p) v = v * 1e-170;
            break;
        case 4:
            p[at] = xcVector<2>(std::nan(""), 1.0);
            break;
        default:
            p[at] = xcVector<2>(std::numeric_limits<double>::infinity(), 2.0);
    }
    return p;
}

}  // namespace

TEST(MomentsCenterOfMass, PairedTrianglesGiveTheBitsOfTheDefinitionOneByOne) {
    xcRandomUniform g(777);
    int singular = 0;
    for (int s = 0; s < 100000; ++s) {
        const std::size_t n = randomShapeSize(g);
        const Points p = randomCentroidShape(g, n);
        xcVector<2> paired, plain;
        const Outcome fast = centreBy([](const Points& q) { return xnContour::centerOfMass(q); },
                                      p, paired);
        const Outcome reference = centreBy(moments_detail::plainCenterOfMass, p, plain);
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
TEST(MomentsCenterOfMass, PairedTrianglesCoverOddAndEvenCounts) {
    for (int n = 3; n <= 12; ++n) {
        Points p;
        for (int i = 0; i < n; ++i)
            p.emplace_back(5.0 + 2.0 * std::cos(2.0 * M_PI * i / n),
                           -1.0 + std::sin(2.0 * M_PI * i / n));
        const xcVector<2> c = xnContour::centerOfMass(p);
        const xcVector<2> reference = moments_detail::plainCenterOfMass(p);
        EXPECT_EQ(c.x(), reference.x()) << n;
        EXPECT_EQ(c.y(), reference.y()) << n;
        // A regular polygon's centroid is its centre.
        EXPECT_NEAR(c.x(), 5.0, 1e-12) << n;
        EXPECT_NEAR(c.y(), -1.0, 1e-12) << n;
    }
}

TEST(MomentsCenterOfMass, UnitSquareBothOrientations) {
    expectVectorNear(xnContour::centerOfMass(rectangle(0, 0, 1, 1)), 0.5, 0.5);
    expectVectorNear(xnContour::centerOfMass(reversed(rectangle(0, 0, 1, 1))), 0.5, 0.5);
}

TEST(MomentsCenterOfMass, RightTriangleBothOrientations) {
    const Points t{{0, 0}, {4, 0}, {0, 3}};  // mean of the corners: (4/3, 1)
    expectVectorNear(xnContour::centerOfMass(t), 4.0 / 3.0, 1.0);
    expectVectorNear(xnContour::centerOfMass(reversed(t)), 4.0 / 3.0, 1.0);
}

TEST(MomentsCenterOfMass, ConcaveLShapeBothOrientations) {
    // Bar [0,2]x[0,1]: area 2 at (1, 0.5); square [0,1]x[1,2]: area 1 at (0.5, 1.5).
    // cx = (2 * 1 + 1 * 0.5) / 3 = 5/6, cy = (2 * 0.5 + 1 * 1.5) / 3 = 5/6.
    const Points l{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    expectVectorNear(xnContour::centerOfMass(l), 5.0 / 6.0, 5.0 / 6.0);
    expectVectorNear(xnContour::centerOfMass(reversed(l)), 5.0 / 6.0, 5.0 / 6.0);
}

TEST(MomentsCenterOfMass, OffsetRectangleBothOrientations) {
    expectVectorNear(xnContour::centerOfMass(rectangle(10, 20, 13, 24)), 11.5, 22.0);
    expectVectorNear(xnContour::centerOfMass(reversed(rectangle(10, 20, 13, 24))), 11.5, 22.0);
}

TEST(MomentsCenterOfMass, PolygonThroughOriginSkipsZeroCrossEdges) {
    // The edges at the origin have cross product 0 and are skipped; the rest still give the
    // centroid (1, 1) of the square [0,2]^2.
    expectVectorNear(xnContour::centerOfMass(rectangle(0, 0, 2, 2)), 1.0, 1.0);
}

TEST(MomentsCenterOfMass, TwoPointsOrFewerGiveZeroVector) {
    EXPECT_EQ(xnContour::centerOfMass(Points{}), xcVector<2>());
    EXPECT_EQ(xnContour::centerOfMass(Points{{3, 4}}), xcVector<2>());
    EXPECT_EQ(xnContour::centerOfMass(Points{{0, 0}, {1, 0}}), xcVector<2>());
    EXPECT_EQ(xnContour::centerOfMass(Points{{5, 6}, {7, 9}}), xcVector<2>());
}

TEST(MomentsCenterOfMass, CollinearPointsGiveZeroNotTheMean) {
    // The mean is (2, 1); the summed crosses are -2 + 1 + 1 = 0.
    EXPECT_EQ(xnContour::centerOfMass(Points{{1, 0}, {2, 1}, {3, 2}}), xcVector<2>());
    // Points on a line through the origin: every cross is 0, every edge skipped.
    EXPECT_EQ(xnContour::centerOfMass(Points{{1, 1}, {2, 2}, {5, 5}}), xcVector<2>());
}

TEST(MomentsCenterOfMass, SummedWeightBelowToleranceGivesZeroVector) {
    // Triangle of doubled area 4e-7 (< 1e-6): base 2e-4 along x, height 2e-3, at (1, 1).
    const Points tiny{{1, 1}, {1.0002, 1}, {1, 1.002}};
    EXPECT_EQ(xnContour::centerOfMass(tiny), xcVector<2>());
}

TEST(MomentsCenterOfMass, BowTieGivesZeroVector) {
    EXPECT_EQ(xnContour::centerOfMass(Points{{0, 0}, {2, 2}, {2, 0}, {0, 2}}), xcVector<2>());
}

TEST(MomentsCenterOfMass, FreeFunctionForwards) {
    const Points l{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    EXPECT_EQ(xf_CenterOfMass(l), xnContour::centerOfMass(l));
    EXPECT_EQ(xf_CenterOfMass(Points{{0, 0}, {1, 0}}), xcVector<2>());
}

TEST(MomentsCenterOfMass, EdgeletOverloadUsesPositions) {
    expectVectorNear(xf_CenterOfMass(edgeletsAt(rectangle(10, 20, 13, 24))), 11.5, 22.0);
    EXPECT_EQ(xf_CenterOfMass(edgeletsAt(Points{{0, 0}, {1, 0}})), xcVector<2>());
    EXPECT_EQ(xf_CenterOfMass(std::vector<xcEdgelet>{}), xcVector<2>());
}

TEST(MomentsCenterOfMass, NanCoordinateGivesNanWithoutThrowing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    xcVector<2> c;
    ASSERT_NO_THROW(c = xnContour::centerOfMass(Points{{0, 0}, {nan, 0}, {1, 1}, {0, 1}}));
    EXPECT_TRUE(std::isnan(c.x()));
    EXPECT_TRUE(std::isnan(c.y()));
}

TEST(MomentsCenterOfMass, InfiniteCoordinateDoesNotThrow) {
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_NO_THROW(xnContour::centerOfMass(Points{{0, 0}, {inf, 0}, {1, 1}}));
}

TEST(MomentsCenterOfMass, ParallelMediansOfAThinFanTriangleThrowSingular) {
    // Fan triangle (origin, (1e8, 0), (1e8, 1e-7)): doubled area 10, but the medians from the
    // origin and from (1e8, 0) differ in direction by about 1.5e-15 rad, below the foundation's
    // 1e-12 parallel tolerance, so their crossing cannot be taken.
    const xcVector<2> a(1e8, 0), b(1e8, 1e-7);
    const xcLine m1 = xcLineSeg(xcVector<2>(), (a + b) / 2.0).line();
    const xcLine m2 = xcLineSeg(a, b / 2.0).line();
    ASSERT_TRUE(m1.isParallel(m2));
    moments_test::expectSingular(
        [&a, &b] {
            xnContour::centerOfMass(Points{{0, 0}, a, b});
        },
        L"parallel lines do not intersect");
}

}  // namespace
