#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <foundation/random.h>

#include "core_reference.h"
#include "contour_testing.h"

using Defs = xcContourDefs;

namespace {
Points square2() { return {{0, 0}, {2, 0}, {2, 2}, {0, 2}}; }
}  // namespace

TEST(ContourEncloseCircle, SquareFurthestPairIsFirstDiagonal) {
    // Pairs in order (0,0),(0,1),(0,2): the diagonal 0-2 of length 2 sqrt(2) is the first
    // maximum; centre (1, 1), radius sqrt(2).
    xcContour c(square2(), true);
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_EQ(k.center(), xcVector<2>(1, 1));
    EXPECT_DOUBLE_EQ(k.radius(), std::sqrt(2.0));
}

TEST(ContourEncloseCircle, SquareFromFirstVertex) {
    // Centre vertex 0, radius the distance to (2, 2): 2 sqrt(2).
    xcContour c(square2(), true);
    const xcCircle k = c.encloseCircle(Defs::fromFirstVertex);
    EXPECT_EQ(k.center(), xcVector<2>(0, 0));
    EXPECT_DOUBLE_EQ(k.radius(), 2.0 * std::sqrt(2.0));
}

TEST(ContourEncloseCircle, SquareDiameters) {
    const xcContour c(square2(), true);
    EXPECT_DOUBLE_EQ(c.diameter(Defs::furthestVertexPair), 2.0 * std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(c.diameter(Defs::fromFirstVertex), 4.0 * std::sqrt(2.0));
}

TEST(ContourEncloseCircle, EquilateralTriangleLeavesThirdVertexOutside) {
    // Side 1, apex (0.5, sqrt(3)/2). Pair (0,1) has distance exactly 1; the other sides equal 1
    // only up to rounding, so the first pair to reach the largest computed distance is found by
    // the same ordered search here, written independently over the three vertices.
    const Points v{{0, 0}, {1, 0}, {0.5, std::sqrt(3.0) / 2.0}};
    double best = 0.0;
    xcVector<2> centre;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const double d = std::hypot(v[i].x() - v[j].x(), v[i].y() - v[j].y());
            if (d > best) {
                best = d;
                centre = (v[i] + v[j]) / 2.0;
            }
        }
    }
    xcContour c(v, true);
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_NEAR(k.radius(), 0.5, 1e-15);
    EXPECT_EQ(k.center(), centre);
    // The vertex outside the pair lies sqrt(3)/2 = 0.866 from the centre, beyond the radius 0.5.
    int outside = 0;
    for (const xcVector<2>& p : v) outside += p.distance(k.center()) > k.radius() + 0.3 ? 1 : 0;
    EXPECT_EQ(outside, 1);
}

TEST(ContourEncloseCircle, TieBetweenPairsKeepsFirstInPairOrder) {
    // Squared distances: 0-1 = 100, 0-2 = 36 + 64 = 100, 1-2 = 36 + 4 = 40. Pairs (0,1) and
    // (0,2) tie at exactly 10 with midpoints (0, 5) and (3, 4); (0,1) comes first.
    xcContour c(Points{{0, 0}, {0, 10}, {6, 8}}, false);
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_EQ(k.center(), xcVector<2>(0, 5));
    EXPECT_EQ(k.radius(), 5.0);
    // Listed the other way round, pair (0,1) is now the one through (6,8).
    xcContour r(Points{{0, 0}, {6, 8}, {0, 10}}, false);
    EXPECT_EQ(r.encloseCircle(Defs::furthestVertexPair).center(), xcVector<2>(3, 4));
}

TEST(ContourEncloseCircle, ClosedFlagPlaysNoPart) {
    xcContour open(square2(), false);
    xcContour closed(square2(), true);
    EXPECT_EQ(open.encloseCircle(Defs::furthestVertexPair), closed.encloseCircle(Defs::furthestVertexPair));
    EXPECT_EQ(open.encloseCircle(Defs::fromFirstVertex), closed.encloseCircle(Defs::fromFirstVertex));
}

TEST(ContourEncloseCircle, ModeTwoThrowsBadParamsWithMessage) {
    ContourProbe c(square2(), true, 0);
    try {
        c.encloseCircle(static_cast<Defs::DiameterMode>(2));
        FAIL() << "no exception";
    } catch (const Defs::BadParams& e) {
        EXPECT_EQ(e.errorNumber(), 0x10004683);
        EXPECT_EQ(e.message(), L"diameterMode is not one of the valid enums");
    }
    EXPECT_FALSE(c.cacheState().encloseCircle[0].valid);
    EXPECT_FALSE(c.cacheState().encloseCircle[1].valid);
}

TEST(ContourEncloseCircle, NegativeModeThrowsBadParams) {
    xcContour c(square2(), true);
    EXPECT_THROW(c.encloseCircle(static_cast<Defs::DiameterMode>(-1)), Defs::BadParams);
}

TEST(ContourEncloseCircle, SecondCallUsesCacheAndChangeDiscardsIt) {
    ContourProbe c(square2(), true, 0);
    c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_TRUE(c.cacheState().encloseCircle[0].valid);
    EXPECT_FALSE(c.cacheState().encloseCircle[1].valid);
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair).center(), xcVector<2>(1, 1));
    c.points(Points{{0, 0}, {6, 0}});
    EXPECT_FALSE(c.cacheState().encloseCircle[0].valid);
    EXPECT_FALSE(c.cacheState().encloseCircle[1].valid);
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_EQ(k.center(), xcVector<2>(3, 0));
    EXPECT_EQ(k.radius(), 3.0);
}

TEST(ContourEncloseCircle, CoincidentVerticesGiveDefaultCircleMarkedValid) {
    ContourProbe c(Points{{3, 3}, {3, 3}, {3, 3}}, true, 0);
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair), xcCircle());
    EXPECT_TRUE(c.cacheState().encloseCircle[0].valid);
    EXPECT_FALSE(c.cacheState().encloseCircle[1].valid);
}

TEST(ContourEncloseCircle, CoincidentVerticesAfterChangeStillGiveDefaultCircle) {
    xcContour c(square2(), true);
    c.encloseCircle(Defs::furthestVertexPair);
    c.points(Points{{3, 3}, {3, 3}});
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair), xcCircle());
}

TEST(ContourEncloseCircle, SingleVertex) {
    xcContour c(Points{{4, 5}}, true);
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair), xcCircle());
    EXPECT_EQ(c.encloseCircle(Defs::fromFirstVertex), xcCircle(xcVector<2>(4, 5), 0.0));
}

TEST(ContourEncloseCircle, EmptyContourGivesDefaultCircleInBothModes) {
    xcContour c;
    EXPECT_EQ(c.encloseCircle(Defs::furthestVertexPair), xcCircle());
    EXPECT_EQ(c.encloseCircle(Defs::fromFirstVertex), xcCircle());
}

TEST(ContourEncloseCircle, FromFirstVertexContainsEveryVertex) {
    const Points v{{1, 1}, {4, 5}, {-2, 3}, {0, -6}};
    xcContour c(v, false);
    const xcCircle k = c.encloseCircle(Defs::fromFirstVertex);
    EXPECT_EQ(k.center(), xcVector<2>(1, 1));
    EXPECT_DOUBLE_EQ(k.radius(), std::sqrt(1.0 + 49.0));  // (0,-6): dx -1, dy -7
    for (const xcVector<2>& p : v) EXPECT_LE(p.distance(k.center()), k.radius());
}

// ---- the filtered furthest pair against the loop over every pair ----

namespace {

#ifdef CNTR_TESTS_SANITIZED
constexpr int kFilterShapes = 40;  // the plain loop is quadratic and ten times slower here
#else
constexpr int kFilterShapes = 400;
#endif

// Vertex counts on both sides of the filter's threshold of 64.
int filterVertexCount(xcRandomUniform& g) {
    static const int kSizes[] = {63, 64, 65, 100, 257, 600, 1000, 2000};
    return kSizes[static_cast<int>(g.next(0.0, 8.0))];
}

// Shapes that make ties and near-ties of the largest distance common: points on a circle
// (every diameter of a regular polygon ties), integer grids, collinear runs, repeated
// vertices, smooth and spiky stars and clouds, at offsets far from the origin.
Points filterShape(int family, xcRandomUniform& g, int n) {
    const xcVector<2> offset(g.next(-1e4, 1e4), g.next(-1e4, 1e4));
    Points p;
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * i / n;
        switch (family) {
        case 0:  // regular polygon: many pairs at the same largest distance
            p.push_back(offset + xcVector<2>(100.0 * std::cos(a), 100.0 * std::sin(a)));
            break;
        case 1:  // smooth star
            p.push_back(offset + xcVector<2>(std::cos(a), std::sin(a)) *
                                     (100.0 + 20.0 * std::sin(3.0 * a + 1.0)));
            break;
        case 2:  // spiky star
            p.push_back(offset + xcVector<2>(std::cos(a), std::sin(a)) * g.next(20.0, 100.0));
            break;
        case 3:  // integer grid points: exact equal distances everywhere
            p.emplace_back(std::floor(g.next(0.0, 12.0)), std::floor(g.next(0.0, 12.0)));
            break;
        case 4:  // collinear run with repeats
            p.push_back(offset + xcVector<2>(3.0, 4.0) * std::floor(g.next(0.0, 40.0)));
            break;
        default:  // cloud with repeated vertices
            if (i > 0 && g.next(0.0, 1.0) < 0.3)
                p.push_back(p[static_cast<std::size_t>(g.next(0.0, i))]);
            else
                p.push_back(offset + xcVector<2>(g.next(-50.0, 50.0), g.next(-50.0, 50.0)));
        }
    }
    return p;
}

void expectSameCircle(const xcCircle& plain, const xcCircle& fast, const std::string& what) {
    EXPECT_EQ(plain.center().x(), fast.center().x()) << what;
    EXPECT_EQ(plain.center().y(), fast.center().y()) << what;
    EXPECT_EQ(plain.radius(), fast.radius()) << what;
}

}  // namespace

TEST(ContourEncloseCircle, FilteredFurthestPairIsThePlainPairBitForBit) {
    xcRandomUniform g(2026);
    int nonDefault = 0;
    for (int s = 0; s < kFilterShapes; ++s) {
        const int family = s % 6;
        const int n = filterVertexCount(g);
        const xcContour c(filterShape(family, g, n), true);
        const xcCircle plain = cntr::core::referenceFurthestPairCircle(core_reference::outline(c));
        expectSameCircle(plain, xcContour(c).encloseCircle(Defs::furthestVertexPair),
                         "shape " + std::to_string(s) + " family " + std::to_string(family) +
                             " n " + std::to_string(n));
        nonDefault += plain.radius() > 0.0 ? 1 : 0;
    }
    EXPECT_EQ(nonDefault, kFilterShapes);
}

// A regular polygon's first diameter in pair order: vertices 0 and n / 2.
TEST(ContourEncloseCircle, FilteredFurthestPairOfARegularPolygonIsTheFirstDiameter) {
    Points p;
    for (int i = 0; i < 128; ++i) {
        const double a = 2.0 * xcPi * i / 128;
        p.emplace_back(std::cos(a), std::sin(a));
    }
    xcContour c(p, true);
    expectSameCircle(cntr::core::referenceFurthestPairCircle(core_reference::outline(c)),
                     c.encloseCircle(Defs::furthestVertexPair), "128-gon");
}

// Two far vertices among a hundred near the origin: only they can make the largest distance.
TEST(ContourEncloseCircle, FilteredFurthestPairOfTwoOutliers) {
    Points p;
    for (int i = 0; i < 100; ++i) p.emplace_back(i % 10, i / 10);
    p[17] = xcVector<2>(-1000, 0);
    p[83] = xcVector<2>(1000, 0);
    xcContour c(p, true);
    const xcCircle k = c.encloseCircle(Defs::furthestVertexPair);
    EXPECT_EQ(k.center(), xcVector<2>(0, 0));
    EXPECT_EQ(k.radius(), 1000.0);
}

// Non-finite and huge coordinates keep the plain loop, and give its answer.
TEST(ContourEncloseCircle, NonFiniteAndHugeCoordinatesGiveThePlainPair) {
    const double inf = std::numeric_limits<double>::infinity();
    for (double odd : {std::nan(""), inf, -inf, 1e200, 1e-320}) {
        Points p;
        for (int i = 0; i < 80; ++i) p.emplace_back(std::cos(i * 0.1) * 5.0, i * 0.5);
        p[40] = xcVector<2>(odd, 1.0);
        xcContour c(p, true);
        const xcCircle plain = cntr::core::referenceFurthestPairCircle(core_reference::outline(c));
        const xcCircle fast = c.encloseCircle(Defs::furthestVertexPair);
        const auto same = [](double a, double b) { return a == b || (a != a && b != b); };
        EXPECT_TRUE(same(plain.center().x(), fast.center().x())) << odd;
        EXPECT_TRUE(same(plain.center().y(), fast.center().y())) << odd;
        EXPECT_TRUE(same(plain.radius(), fast.radius())) << odd;
    }
}
