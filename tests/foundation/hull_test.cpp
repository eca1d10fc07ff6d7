#include <algorithm>
#include <cmath>
#include <cstring>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/exception.h>
#include <foundation/hull.h>
#include <foundation/random.h>

namespace {

using Points = std::vector<xcVector<2>>;

Points hullOf(const Points& points) {
    Points hull;
    xfConvexHull(points, hull);
    return hull;
}

TEST(ConvexHull, EmptyInputGivesEmptyHull) {
    EXPECT_TRUE(hullOf({}).empty());
}

TEST(ConvexHull, OnePointGivesThatPoint) {
    EXPECT_EQ(hullOf({{2.5, -1.0}}), (Points{{2.5, -1.0}}));
}

TEST(ConvexHull, RepeatedPointGivesOnePoint) {
    EXPECT_EQ(hullOf({{1.0, 1.0}, {1.0, 1.0}, {1.0, 1.0}}), (Points{{1.0, 1.0}}));
}

TEST(ConvexHull, TwoPointsComeInStartOrder) {
    EXPECT_EQ(hullOf({{3.0, 1.0}, {1.0, 5.0}}), (Points{{1.0, 5.0}, {3.0, 1.0}}));
    // Equal x: the smaller y first.
    EXPECT_EQ(hullOf({{2.0, 5.0}, {2.0, 1.0}}), (Points{{2.0, 1.0}, {2.0, 5.0}}));
}

TEST(ConvexHull, TwoDistinctPointsAmongRepeats) {
    EXPECT_EQ(hullOf({{4.0, 4.0}, {0.0, 0.0}, {4.0, 4.0}, {0.0, 0.0}}),
              (Points{{0.0, 0.0}, {4.0, 4.0}}));
}

TEST(ConvexHull, CollinearPointsGiveTheirEndPoints) {
    EXPECT_EQ(hullOf({{2.0, 1.0}, {4.0, 2.0}, {0.0, 0.0}, {6.0, 3.0}, {2.0, 1.0}}),
              (Points{{0.0, 0.0}, {6.0, 3.0}}));
}

TEST(ConvexHull, SquareIsCounterClockwiseFromLowerLeft) {
    // Corners shuffled, with interior points, edge midpoints (collinear) and repeats.
    const Points points = {{4.0, 4.0}, {2.0, 2.0}, {0.0, 4.0}, {2.0, 0.0}, {4.0, 0.0}, {0.0, 0.0},
                           {4.0, 2.0}, {1.0, 3.0}, {0.0, 2.0}, {2.0, 4.0}, {4.0, 4.0}, {0.0, 0.0}};
    EXPECT_EQ(hullOf(points), (Points{{0.0, 0.0}, {4.0, 0.0}, {4.0, 4.0}, {0.0, 4.0}}));
}

TEST(ConvexHull, StartsAtSmallestXThenSmallestY) {
    // Two vertices share the smallest x; the lower one starts.
    const Points points = {{3.0, 2.0}, {0.0, 3.0}, {2.0, 0.0}, {0.0, 1.0}, {1.0, 1.5}};
    EXPECT_EQ(hullOf(points), (Points{{0.0, 1.0}, {2.0, 0.0}, {3.0, 2.0}, {0.0, 3.0}}));
}

TEST(ConvexHull, ReplacesPreviousContentOfOutput) {
    Points hull = {{9.0, 9.0}, {8.0, 8.0}};
    xfConvexHull({{1.0, 0.0}, {0.0, 0.0}, {0.0, 1.0}}, hull);
    EXPECT_EQ(hull, (Points{{0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}}));
}

TEST(ConvexHull, PointOneUlpOffALineIsAVertex) {
    // x = 1 + i * 2^-40 and y = 3x + 7 are exact in doubles, so these points are exactly
    // collinear; the extra points sit one unit in the last place of y (2^-49 near 10..13)
    // above or below the middle of the line.
    Points line;
    for (int i = 0; i <= 20; ++i) {
        const double x = 1.0 + (i * 1234567.0) * 0x1.0p-40;
        line.push_back({x, 3.0 * x + 7.0});
    }
    const xcVector<2> first = line.front(), last = line.back(), middle = line[10];
    EXPECT_EQ(hullOf(line), (Points{first, last}));

    Points above = line;
    const xcVector<2> up(middle.x(), std::nextafter(middle.y(), 100.0));
    above.push_back(up);
    EXPECT_EQ(hullOf(above), (Points{first, last, up}));

    Points below = line;
    const xcVector<2> down(middle.x(), std::nextafter(middle.y(), 0.0));
    below.push_back(down);
    EXPECT_EQ(hullOf(below), (Points{first, down, last}));
}

TEST(ConvexHull, TinyGridNearADiagonalIsExact) {
    // A 16 x 16 grid of points one ulp (2^-53) apart at (0.5, 0.5), and two far points on the
    // diagonal y = x. The diagonal runs through the grid corners (a, a) and (b, b), so the hull
    // is the quadrilateral (a, a), (b, a), (24, 24), (a, b): (b, b) and (12, 12) lie on its
    // diagonal from (a, a) to (24, 24).
    const double ulp = 0x1.0p-53;
    const double a = 0.5, b = 0.5 + 15.0 * ulp;
    Points points = {{24.0, 24.0}, {12.0, 12.0}};
    for (int i = 0; i < 16; ++i)
        for (int j = 0; j < 16; ++j)
            points.push_back({0.5 + i * ulp, 0.5 + j * ulp});
    EXPECT_EQ(hullOf(points), (Points{{a, a}, {b, a}, {24.0, 24.0}, {a, b}}));
}

TEST(ConvexHull, HugeCoordinatesDoNotOverflow) {
    // Products of these differences exceed the double range.
    const double h = 1e300;
    const Points points = {{h, h}, {0.0, -h}, {-h, -h}, {0.0, 0.0}, {-h, h}, {h, -h}, {h, 0.0}};
    EXPECT_EQ(hullOf(points), (Points{{-h, -h}, {h, -h}, {h, h}, {-h, h}}));
}

TEST(ConvexHull, TinyCoordinatesDoNotUnderflow) {
    // Products of these differences are below the smallest double.
    const double t = 1e-300;
    const Points points = {{t, t}, {0.0, -t}, {-t, -t}, {0.0, 0.0}, {-t, t}, {t, -t}, {t, 0.0}};
    EXPECT_EQ(hullOf(points), (Points{{-t, -t}, {t, -t}, {t, t}, {-t, t}}));
}

TEST(ConvexHull, NaNCoordinateThrowsNotFinite) {
    Points hull;
    const Points points = {{0.0, 0.0}, {1.0, std::nan("")}, {2.0, 1.0}};
    try {
        xfConvexHull(points, hull);
        FAIL() << "no exception";
    } catch (const xcMathError::NotFinite& e) {
        EXPECT_EQ(e.errorNumber(), xnErrorNumber::MathNotFinite);
        EXPECT_NE(e.message().find(L"point 1"), std::wstring::npos);
    }
}

TEST(ConvexHull, InfiniteCoordinateThrowsNotFinite) {
    Points hull;
    const Points points = {{std::numeric_limits<double>::infinity(), 0.0}, {1.0, 1.0}};
    EXPECT_THROW(xfConvexHull(points, hull), xcMathError::NotFinite);
}

// ---- Randomised property test with an independent exact predicate ---------------------------

#ifdef __SIZEOF_INT128__
__extension__ typedef __int128 Int128;

// Every coordinate the generators below produce is an integer multiple of 2^-52 below 8, so
// scaling by 2^52 gives an exact 64-bit integer; differences stay below 2^56 in magnitude and
// their products below 2^112, so the orientation is exact in 128-bit integers.
std::int64_t exactUnits(double v) {
    return static_cast<std::int64_t>(std::ldexp(v, 52));
}

int exactOrientation(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c) {
    const Int128 bax = exactUnits(b.x()) - exactUnits(a.x());
    const Int128 bay = exactUnits(b.y()) - exactUnits(a.y());
    const Int128 cax = exactUnits(c.x()) - exactUnits(a.x());
    const Int128 cay = exactUnits(c.y()) - exactUnits(a.y());
    const Int128 det = bax * cay - bay * cax;
    return det > 0 ? 1 : (det < 0 ? -1 : 0);
}

bool lexLess(const xcVector<2>& p, const xcVector<2>& q) {
    return p.x() < q.x() || (p.x() == q.x() && p.y() < q.y());
}

// Checks that `hull` is the convex hull of `points` as documented.
void expectIsHull(const Points& points, const Points& hull) {
    if (points.empty()) {
        EXPECT_TRUE(hull.empty());
        return;
    }
    ASSERT_FALSE(hull.empty());
    for (const xcVector<2>& v : hull)
        EXPECT_NE(std::find(points.begin(), points.end(), v), points.end()) << "invented vertex";
    EXPECT_EQ(hull.front(), *std::min_element(points.begin(), points.end(), lexLess));
    if (hull.size() == 1) {
        for (const xcVector<2>& p : points)
            EXPECT_EQ(p, hull[0]);
        return;
    }
    if (hull.size() == 2) {
        EXPECT_EQ(hull[1], *std::max_element(points.begin(), points.end(), lexLess));
        for (const xcVector<2>& p : points)
            EXPECT_EQ(exactOrientation(hull[0], hull[1], p), 0);
        return;
    }
    const std::size_t m = hull.size();
    for (std::size_t i = 0; i < m; ++i) {
        const xcVector<2>& from = hull[i];
        const xcVector<2>& to = hull[(i + 1) % m];
        // Strictly convex and counter-clockwise: every other vertex strictly left of each edge.
        for (std::size_t k = 0; k < m; ++k) {
            if (k == i || k == (i + 1) % m)
                continue;
            EXPECT_EQ(exactOrientation(from, to, hull[k]), 1) << "edge " << i << " vertex " << k;
        }
        // Every point inside or on the hull.
        for (const xcVector<2>& p : points)
            EXPECT_GE(exactOrientation(from, to, p), 0);
    }
}

// Small integer grid: many repeats and exactly collinear triples.
Points integerGridPoints(xcRandomUniform& random, int count) {
    Points points;
    for (int i = 0; i < count; ++i)
        points.push_back({std::floor(random.next(0.0, 8.0)), std::floor(random.next(0.0, 8.0))});
    return points;
}

// Uniform in [1, 2)^2: full 52-bit fractions.
Points unitSquarePoints(xcRandomUniform& random, int count) {
    Points points;
    for (int i = 0; i < count; ++i)
        points.push_back({random.next(1.0, 2.0), random.next(1.0, 2.0)});
    return points;
}

// Points within a few ulps of the line from (1, 1) to (1.9, 1.7): orientation signs here are
// beyond a plain floating-point evaluation.
Points nearLinePoints(xcRandomUniform& random, int count) {
    Points points;
    for (int i = 0; i < count; ++i) {
        const double t = random.next(0.0, 1.0);
        double y = 1.0 + 0.7 * t;
        for (int k = static_cast<int>(std::floor(random.next(-3.0, 4.0))); k != 0;
             k += k > 0 ? -1 : 1)
            y = std::nextafter(y, k > 0 ? 2.0 : 1.0);
        points.push_back({1.0 + 0.9 * t, y});
    }
    return points;
}

// `count` points of the generator the seed picks: the three above in turn.
Points lawPoints(std::uint64_t seed, xcRandomUniform& random, int count) {
    switch (seed % 3) {
        case 0:
            return integerGridPoints(random, count);
        case 1:
            return unitSquarePoints(random, count);
        default:
            return nearLinePoints(random, count);
    }
}

TEST(ConvexHull, RandomSetsSatisfyHullLaws) {
    for (std::uint64_t seed = 0; seed < 1000; ++seed) {
        xcRandomUniform random(seed);
        const int count = static_cast<int>(std::floor(random.next(0.0, 41.0)));
        const Points points = lawPoints(seed, random, count);
        SCOPED_TRACE(::testing::Message() << "seed " << seed << ", " << count << " points");
        expectIsHull(points, hullOf(points));
        if (::testing::Test::HasFailure())
            return;
    }
}

// Large enough for the interior filter: the laws, checked in exact integers, and the very
// vertices of the hull computed from every point.
TEST(ConvexHull, LargeRandomSetsSatisfyHullLawsAndMatchTheHullOfEveryPoint) {
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        xcRandomUniform random(seed);
        const int count = 60 + static_cast<int>(std::floor(random.next(0.0, 1500.0)));
        const Points points = lawPoints(seed, random, count);
        SCOPED_TRACE(::testing::Message() << "seed " << seed << ", " << count << " points");
        const Points hull = hullOf(points);
        expectIsHull(points, hull);
        Points reference;
        xn_hullDetail::convexHullOfEveryPoint(points, reference);
        EXPECT_EQ(hull, reference);
        if (::testing::Test::HasFailure())
            return;
    }
}
#else
TEST(ConvexHull, RandomSetsSatisfyHullLaws) {
    GTEST_SKIP() << "needs 128-bit integers";
}
#endif

// Shapes whose hull vertices are many or whose octagon is degenerate: points on a circle (all
// on the hull), stars, a segment with repeats, a thin sliver, huge and tiny magnitudes.
Points filterShape(xcRandomUniform& random, int family, int count) {
    Points points;
    const double scale = family == 5 ? 1e200 : (family == 6 ? 1e-200 : 100.0);
    for (int i = 0; i < count; ++i) {
        const double a = 2.0 * 3.141592653589793 * i / count;
        double r = 1.0;
        switch (family) {
            case 0:
                break;
            case 1:
                r = 1.0 + 0.3 * std::sin(3.0 * a) + 0.1 * std::cos(11.0 * a);
                break;
            case 2:
                r = random.next(0.2, 1.0);
                break;
            case 3:
                points.push_back(xcVector<2>(3.0, 4.0) * std::floor(random.next(0.0, 30.0)));
                continue;
            case 4:
                points.push_back({random.next(0.0, 1000.0), random.next(0.0, 1e-9)});
                continue;
            default:
                r = random.next(0.0, 1.0);
        }
        points.push_back({scale * r * std::cos(a), scale * r * std::sin(a)});
    }
    return points;
}

TEST(ConvexHull, FilteredHullIsTheHullOfEveryPoint) {
    for (std::uint64_t seed = 0; seed < 700; ++seed) {
        xcRandomUniform random(seed + 5000);
        const int count = 30 + static_cast<int>(std::floor(random.next(0.0, 3000.0)));
        const int family = static_cast<int>(seed % 7);
        const Points points = filterShape(random, family, count);
        Points reference;
        xn_hullDetail::convexHullOfEveryPoint(points, reference);
        EXPECT_EQ(hullOf(points), reference) << "seed " << seed << " family " << family;
    }
}

namespace {

bool sameBits(const Points& a, const Points& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(xcVector<2>)) == 0);
}

// Points along a closed contour, in contour order: rising and falling runs of the lexicographic
// order, some of them long (smooth stars), some short (jagged stars), with exact repeats, equal x
// (vertical steps) and integer corners where runs meet in ties.
Points contourOrderedPoints(xcRandomUniform& random, int count) {
    Points points;
    const int harmonic = 1 + static_cast<int>(random.next(0.0, 9.0));
    const double jag = random.next(0.0, 1.0) < 0.3 ? random.next(0.0, 0.5) : 0.0;
    const bool integers = random.next(0.0, 1.0) < 0.25;
    for (int i = 0; i < count; ++i) {
        const double a = 2.0 * 3.141592653589793 * i / count;
        const double r = 100.0 * (1.0 + 0.3 * std::sin(harmonic * a)) * (1.0 - random.next(0.0, jag));
        xcVector<2> p(r * std::cos(a), r * std::sin(a));
        if (integers) p = xcVector<2>(std::round(p.x()), std::round(p.y()));
        points.push_back(p);
        const double pick = random.next(0.0, 1.0);
        if (pick < 0.05) points.push_back(p);
        else if (pick < 0.08) points.push_back({p.x(), p.y() + 0.5});
    }
    return points;
}

}  // namespace

// The merge of runs gives the very vertices of the outright sort, bit for bit; shuffled copies
// (too many runs to merge) and -0 coordinates take the outright sort. With a -0 among the points
// the vertices are equal but the sign of a zero may differ: std::sort leaves 0 and -0 in no fixed
// order, and the filtered sort sees fewer points than the reference.
TEST(ConvexHull, MergedRunsGiveTheHullOfTheOutrightSort) {
    int bitwise = 0;
    for (std::uint64_t seed = 0; seed < 2000; ++seed) {
        xcRandomUniform random(seed + 9000);
        const int count = 64 + static_cast<int>(std::floor(random.next(0.0, 4000.0)));
        Points points = contourOrderedPoints(random, count);
        if (seed % 5 == 4) {
            for (std::size_t i = points.size(); i > 1; --i)
                std::swap(points[i - 1], points[static_cast<std::size_t>(random.next(0.0, i))]);
        }
        if (seed % 7 == 6) points[points.size() / 2] = {-0.0, points[points.size() / 2].y()};
        Points reference;
        xn_hullDetail::convexHullOfEveryPoint(points, reference);
        const Points hull = hullOf(points);
        const bool negativeZero = std::any_of(points.begin(), points.end(), [](const xcVector<2>& p) {
            return (p.x() == 0.0 && std::signbit(p.x())) || (p.y() == 0.0 && std::signbit(p.y()));
        });
        if (negativeZero)
            EXPECT_EQ(hull, reference) << "seed " << seed;
        else
            EXPECT_TRUE(sameBits(hull, reference)) << "seed " << seed;
        bitwise += negativeZero ? 0 : 1;
        if (::testing::Test::HasFailure()) return;
    }
    EXPECT_GT(bitwise, 1000);
}

TEST(ConvexHull, EveryPointButTheCornersInsideTheOctagonIsSetAside) {
    // 100 points strictly inside the square [0, 10]^2 and its four corners: the hull is the
    // square, from the lower left corner counter-clockwise.
    Points points;
    for (int i = 0; i < 100; ++i)
        points.push_back({1.0 + (i % 10) * 0.8, 1.0 + (i / 10) * 0.8});
    points.push_back({10, 10});
    points.push_back({0, 10});
    points.push_back({10, 0});
    points.push_back({0, 0});
    EXPECT_EQ(hullOf(points), (Points{{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
}

TEST(ConvexHull, NonFinitePointAmongManyThrowsLikeTheHullOfEveryPoint) {
    Points points;
    for (int i = 0; i < 100; ++i)
        points.push_back({std::cos(i * 0.1), std::sin(i * 0.1)});
    points[70] = {std::nan(""), 0.0};
    Points hull{{5, 5}};
    EXPECT_THROW(xfConvexHull(points, hull), xcMathError::NotFinite);
    EXPECT_EQ(hull, (Points{{5, 5}}));
    EXPECT_THROW(xn_hullDetail::convexHullOfEveryPoint(points, hull), xcMathError::NotFinite);
}

}  // namespace
