#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <foundation/random.h>

#include "core_reference.h"
#include "contour_testing.h"
#include "within_relative.h"

namespace {

// Memo replacement draws from the calling thread's generator, which starts at seed 1 in every
// new thread; running a test body in a new thread makes its draws predictable.
template <class Body>
void runInFreshThread(Body body) {
    std::thread t(body);
    t.join();
}

// The victim position of the k-th replacement (k from 1) in a fresh thread among `count`
// entries, from an independent generator with the same seed.
std::vector<long> expectedVictims(const std::vector<double>& counts) {
    xcRandomUniform g(1);
    std::vector<long> victims;
    for (double s : counts)
        victims.push_back(static_cast<long>(std::floor(g.next(0.0, s))));
    return victims;
}

std::vector<double> memoAngles(const ContourProbe& c) {
    std::vector<double> keys;
    for (const auto& e : *c.cacheState().extremalVertexMemo.get())
        keys.push_back(e.first.toDouble());
    return keys;
}

}  // namespace

// ---- length ----

TEST(ContourLength, ClosedUnitSquareIsFour) {
    EXPECT_EQ(xcContour(unitSquare(), true).length(), 4.0);
}

TEST(ContourLength, OpenUnitSquareIsThree) {
    EXPECT_EQ(xcContour(unitSquare(), false).length(), 3.0);
}

TEST(ContourLength, EmptyContourIsZeroWithoutCaching) {
    const ContourProbe c;
    EXPECT_EQ(c.length(), 0.0);
    EXPECT_FALSE(c.cacheState().length.valid);
}

TEST(ContourLength, OneVertexIsZeroClosedOrOpen) {
    EXPECT_EQ(xcContour(Points{{3, 4}}, true).length(), 0.0);
    EXPECT_EQ(xcContour(Points{{3, 4}}, false).length(), 0.0);
}

TEST(ContourLength, TriangleSumsItsEdges) {
    // Edges: closing (0,4)-(0,0) = 4, (0,0)-(3,0) = 3, (3,0)-(0,4) = 5.
    EXPECT_EQ(xcContour(Points{{0, 0}, {3, 0}, {0, 4}}, true).length(), 12.0);
}

TEST(ContourLength, IsCached) {
    const ContourProbe c(unitSquare(), true, 0);
    c.length();
    EXPECT_TRUE(c.cacheState().length.valid);
    EXPECT_EQ(c.cacheState().length.value, 4.0);
}

// ---- mean position ----

TEST(ContourMeanPosition, OpenPolylineIsLengthWeightedMidpointMean) {
    // Edges (0,0)-(2,0), length 2, midpoint (1, 0); (2,0)-(2,1), length 1, midpoint (2, 0.5).
    // (2*(1, 0) + 1*(2, 0.5)) / 3 = (4/3, 1/6); the vertex mean (4/3, 1/3) is not the answer.
    xcContour c(Points{{0, 0}, {2, 0}, {2, 1}}, false);
    const xcVector<2> m = c.meanPosition();
    EXPECT_DOUBLE_EQ(m.x(), 4.0 / 3.0);
    EXPECT_DOUBLE_EQ(m.y(), 1.0 / 6.0);
}

TEST(ContourMeanPosition, ClosedSquareIsItsCentre) {
    xcContour c(Points{{0, 0}, {2, 0}, {2, 2}, {0, 2}}, true);
    EXPECT_EQ(c.meanPosition(), xcVector<2>(1, 1));
}

TEST(ContourMeanPosition, AllZeroLengthEdgesGiveNaN) {
    xcContour c(Points{{1, 1}, {1, 1}}, true);
    const xcVector<2> m = c.meanPosition();  // 0 / 0 in each coordinate
    EXPECT_TRUE(std::isnan(m.x()));
    EXPECT_TRUE(std::isnan(m.y()));
}

TEST(ContourMeanPosition, IsCachedAndDroppedByChange) {
    ContourProbe c(unitSquare(), true, 0);
    c.meanPosition();
    EXPECT_TRUE(c.cacheState().meanPosition.valid);
    c.points(Points{{0, 0}, {4, 0}});
    EXPECT_EQ(c.meanPosition(), xcVector<2>(2, 0));
}

TEST(ContourMeanPosition, NeedsTwoVertices) {
    xcContour c(Points{{1, 1}}, true);
    expectEmptyContour([&] { c.meanPosition(); });
}

// ---- extremal vertex ----

TEST(ContourExtremalVertex, EqualScoresGiveLowerIndex) {
    const xcContour c(Points{{0, 0}, {5, 1}, {5, 2}, {1, 1}}, true);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(0.0)), 1);
}

TEST(ContourExtremalVertex, DiagonalDirectionUsesDotProduct) {
    // At 45 degrees the scores are 0.707.., 0.707.. and 0.8 * 1.414.. = 1.131..
    xcContour c(Points{{1, 0}, {0, 1}, {0.8, 0.8}}, true);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(xcPi / 4)), 2);
    EXPECT_EQ(c.extremalVertexPosition(xcRadian(xcPi / 4)), xcVector<2>(0.8, 0.8));
}

TEST(ContourExtremalVertex, NearZeroAngleUsesPlainX) {
    // (cos, sin)(1e-16) = (1, 1e-16), within 1e-15 of (1, 0): the score is x, a tie, index 0.
    // The dot product would give vertex 1: 5 + 1e-16 * 1e20 = 10005.
    const xcContour c(Points{{5, 0}, {5, 1e20}}, false);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(1e-16)), 0);
}

TEST(ContourExtremalVertex, HalfPiUsesPlainY) {
    // cos(pi/2) = 6.1e-17: plain y ties at 5 (index 0); the dot product would favour vertex 1.
    const xcContour c(Points{{0, 5}, {1e20, 5}}, false);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(xcPi / 2)), 0);
}

TEST(ContourExtremalVertex, PiUsesPlainMinusX) {
    // sin(pi) = 1.2e-16: plain -x ties at 5 (index 0).
    const xcContour c(Points{{-5, 0}, {-5, 1e20}}, false);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(xcPi)), 0);
}

TEST(ContourExtremalVertex, MinusHalfPiUsesPlainMinusY) {
    const xcContour c(Points{{0, -5}, {1e20, -5}}, false);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(-xcPi / 2)), 0);
}

TEST(ContourExtremalVertex, AxisDirectionsPickExtremes) {
    const xcContour c(Points{{0, 0}, {3, 1}, {1, 4}, {-2, 2}, {1, -3}}, true);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(0.0)), 1);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(xcPi / 2)), 2);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(xcPi)), 3);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(-xcPi / 2)), 4);
}

TEST(ContourExtremalVertex, AllScoresNaNGiveMinusOneMemoised) {
    const ContourProbe c(Points{{0, 0}, {1, 1}}, false, 0);
    const xcRadian nanAngle(std::nan(""));
    EXPECT_EQ(c.extremalVertexIndex(nanAngle), -1);
    ASSERT_NE(c.cacheState().extremalVertexMemo.get(), nullptr);
    EXPECT_EQ(c.cacheState().extremalVertexMemo.get()->size(), 1u);
    EXPECT_EQ(c.cacheState().extremalVertexMemo.get()->begin()->second, -1);
    EXPECT_EQ(c.extremalVertexIndex(nanAngle), -1);  // found again: NaN keys match each other
    EXPECT_EQ(c.cacheState().extremalVertexMemo.get()->size(), 1u);
}

TEST(ContourExtremalVertex, NaNVerticesGiveMinusOne) {
    const double nan = std::nan("");
    const xcContour c(Points{{nan, 0}, {nan, 1}}, false);
    EXPECT_EQ(c.extremalVertexIndex(xcRadian(0.0)), -1);
}

TEST(ContourExtremalVertex, PositionWithoutExtremalVertexThrowsBadParams) {
    xcContour c(Points{{0, 0}, {1, 1}}, false);
    try {
        c.extremalVertexPosition(xcRadian(std::nan("")));
        FAIL() << "no exception";
    } catch (const xcContourDefs::BadParams& e) {
        EXPECT_EQ(e.errorNumber(), 0x10004683);
        EXPECT_EQ(e.message(), L"no vertex is extremal in this direction");
    }
}

TEST(ContourExtremalVertex, NeedsTwoVertices) {
    const ContourProbe c(Points{{0, 0}}, true, 0);
    expectEmptyContour([&] { c.extremalVertexIndex(xcRadian(0.0)); });
    EXPECT_EQ(c.cacheState().extremalVertexMemo.get(), nullptr);  // nothing changed
}

TEST(ContourExtremalVertex, FiveAnglesWithDefaultLimitLeaveFourEntries) {
    runInFreshThread([] {
        const ContourProbe c(unitSquare(), true, 0);
        for (int k = 0; k < 4; ++k)
            c.extremalVertexIndex(xcRadian(0.1 * (k + 1)));
        EXPECT_EQ(c.cacheState().extremalVertexMemo.get()->size(), 4u);  // limit 3, plus one
        c.extremalVertexIndex(xcRadian(0.05));
        EXPECT_EQ(c.cacheState().extremalVertexMemo.get()->size(), 4u);
    });
}

TEST(ContourExtremalVertex, ReplacementFollowsThreadGeneratorInKeyOrder) {
    runInFreshThread([] {
        const ContourProbe c(unitSquare(), true, 0);
        const std::vector<double> angles{0.4, 0.1, 0.3, 0.2};
        for (double a : angles)
            c.extremalVertexIndex(xcRadian(a));
        c.extremalVertexIndex(xcRadian(0.25));  // the first draw of this thread, over 4 entries
        c.extremalVertexIndex(xcRadian(0.35));  // the second draw, over 4 entries

        std::vector<double> keys{0.1, 0.2, 0.3, 0.4};  // key order
        const std::vector<long> victims = expectedVictims({4.0, 4.0});
        keys[static_cast<std::size_t>(victims[0])] = 0.25;
        std::sort(keys.begin(), keys.end());
        keys[static_cast<std::size_t>(victims[1])] = 0.35;
        std::sort(keys.begin(), keys.end());
        EXPECT_EQ(memoAngles(c), keys);
    });
}

TEST(ContourExtremalVertex, EveryThreadStartsItsOwnGeneratorAtSeedOne) {
    std::vector<double> first, second;
    const auto fill = [](std::vector<double>* out) {
        const ContourProbe c(unitSquare(), true, 0);
        for (double a : {0.1, 0.2, 0.3, 0.4, 0.5})
            c.extremalVertexIndex(xcRadian(a));
        *out = memoAngles(c);
    };
    runInFreshThread([&] { fill(&first); });
    runInFreshThread([&] { fill(&second); });
    EXPECT_EQ(first, second);
    std::vector<double> expected{0.1, 0.2, 0.3, 0.4};
    expected[static_cast<std::size_t>(expectedVictims({4.0})[0])] = 0.5;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(first, expected);
}

TEST(ContourExtremalVertex, LimitZeroKeepsOneEntry) {
    runInFreshThread([] {
        ContourProbe c(unitSquare(), true, 0);
        c.cachedVectorSize(0);
        c.extremalVertexIndex(xcRadian(0.1));
        EXPECT_EQ(memoAngles(c), std::vector<double>{0.1});
        c.extremalVertexIndex(xcRadian(0.2));  // a draw over 1 entry always picks position 0
        EXPECT_EQ(memoAngles(c), std::vector<double>{0.2});
    });
}

TEST(ContourExtremalVertex, RaisingTheLimitLetsTheMemoGrow) {
    runInFreshThread([] {
        ContourProbe c(unitSquare(), true, 0);
        c.cachedVectorSize(0);
        c.extremalVertexIndex(xcRadian(0.1));
        c.cachedVectorSize(2);
        c.extremalVertexIndex(xcRadian(0.2));
        c.extremalVertexIndex(xcRadian(0.3));
        EXPECT_EQ(memoAngles(c), (std::vector<double>{0.1, 0.2, 0.3}));
        c.cachedVectorSize(0);  // not trimmed
        EXPECT_EQ(c.cacheState().extremalVertexMemo.get()->size(), 3u);
    });
}

// ---- diameter ----

TEST(ContourDiameter, IsTwiceTheCircleRadius) {
    // Square of side 2: furthest pair radius sqrt(2), from vertex 0 radius 2 sqrt(2).
    const xcContour c(Points{{0, 0}, {2, 0}, {2, 2}, {0, 2}}, true);
    EXPECT_DOUBLE_EQ(c.diameter(xcContourDefs::furthestVertexPair), 2.0 * std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(c.diameter(xcContourDefs::fromFirstVertex), 4.0 * std::sqrt(2.0));
}

TEST(ContourDiameter, InvalidModeThrowsWithMessage) {
    const xcContour c(unitSquare(), true);
    try {
        c.diameter(static_cast<xcContourDefs::DiameterMode>(2));
        FAIL() << "no exception";
    } catch (const xcContourDefs::BadParams& e) {
        EXPECT_EQ(e.message(), L"diameterMode is not one of the valid enums");
    }
}

TEST(ContourDiameter, EmptyContourHasNoCheck) {
    const xcContour c;
    EXPECT_EQ(c.diameter(xcContourDefs::furthestVertexPair), 0.0);
}

// ---- enclosing rectangle ----

TEST(ContourEncloseRect, IdentityGivesBoxOfRawVertices) {
    xcContour c(Points{{1, 2}, {-3, 5}, {4, -1}}, true);
    const xcRect r = c.encloseRect(xcXform<2>::I);
    EXPECT_EQ(r.ul(), xcVector<2>(-3, -1));
    EXPECT_EQ(r.lr(), xcVector<2>(4, 5));
}

TEST(ContourEncloseRect, QuarterTurnGivesBoxOfRotatedVertices) {
    // A quarter turn maps (x, y) to (-y, x): (1,2)->(-2,1), (-3,5)->(-5,-3), (4,-1)->(1,4).
    xcContour c(Points{{1, 2}, {-3, 5}, {4, -1}}, true);
    const xcXform<2> turn(xcMatrix<2>(0, -1, 1, 0), xcVector<2>());
    const xcRect r = c.encloseRect(turn);
    EXPECT_EQ(r.ul(), xcVector<2>(-5, -3));
    EXPECT_EQ(r.lr(), xcVector<2>(1, 4));
}

TEST(ContourEncloseRect, RotationMatrixFromAnglesGivesRotatedBox) {
    xcContour c(Points{{0, 0}, {2, 0}, {2, 1}}, false);
    const xcXform<2> turn(xcMatrix<2>(xcRadian(xcPi / 2), xcRadian(xcPi / 2), 1, 1), xcVector<2>());
    const xcRect r = c.encloseRect(turn);  // rotated: (0,0), (0,2), (-1,2) up to rounding
    EXPECT_NEAR(r.ul().x(), -1.0, 1e-15);
    EXPECT_NEAR(r.ul().y(), 0.0, 1e-15);
    EXPECT_NEAR(r.lr().x(), 0.0, 1e-15);
    EXPECT_NEAR(r.lr().y(), 2.0, 1e-15);
}

TEST(ContourEncloseRect, TranslationShiftsTheBox) {
    xcContour c(unitSquare(), true);
    const xcRect r = c.encloseRect(xcXform<2>(xcMatrix<2>::I, xcVector<2>(10, -1)));
    EXPECT_EQ(r.ul(), xcVector<2>(10, -1));
    EXPECT_EQ(r.lr(), xcVector<2>(11, 0));
}

TEST(ContourEncloseRect, KeyIgnoresElementOneOne) {
    xcContour c(unitSquare(), true);
    const xcRect first = c.encloseRect(xcXform<2>(xcMatrix<2>(1, 0, 0, 3), xcVector<2>()));
    EXPECT_EQ(first.lr(), xcVector<2>(1, 3));
    // Differs only in (1,1): the memoised rectangle comes back, not the box of height 7.
    const xcRect second = c.encloseRect(xcXform<2>(xcMatrix<2>(1, 0, 0, 7), xcVector<2>()));
    EXPECT_EQ(second.lr(), xcVector<2>(1, 3));
}

TEST(ContourEncloseRect, IdentityKeyServesTransformDifferingOnlyInElementOneOne) {
    xcContour c(unitSquare(), true);
    c.encloseRect(xcXform<2>::I);
    const xcRect r = c.encloseRect(xcXform<2>(xcMatrix<2>(1, 0, 0, -4), xcVector<2>()));
    EXPECT_EQ(r.ul(), xcVector<2>(0, 0));
    EXPECT_EQ(r.lr(), xcVector<2>(1, 1));
}

TEST(ContourEncloseRect, OtherElementsAreKeyed) {
    xcContour c(unitSquare(), true);
    c.encloseRect(xcXform<2>::I);
    EXPECT_EQ(c.encloseRect(xcXform<2>(xcMatrix<2>(2, 0, 0, 1), xcVector<2>())).lr(),
              xcVector<2>(2, 1));
    EXPECT_EQ(c.encloseRect(xcXform<2>(xcMatrix<2>(1, 1, 0, 1), xcVector<2>())).lr(),
              xcVector<2>(2, 1));
    EXPECT_EQ(c.encloseRect(xcXform<2>(xcMatrix<2>(1, 0, 1, 1), xcVector<2>())).lr(),
              xcVector<2>(1, 2));
    EXPECT_EQ(c.encloseRect(xcXform<2>(xcMatrix<2>::I, xcVector<2>(0, 1))).lr(), xcVector<2>(1, 2));
}

TEST(ContourEncloseRect, FifthTransformKeepsFourEntries) {
    runInFreshThread([] {
        ContourProbe c(unitSquare(), true, 0);
        for (int k = 1; k <= 5; ++k)
            c.encloseRect(xcXform<2>(xcMatrix<2>::I, xcVector<2>(k, 0)));
        EXPECT_EQ(c.cacheState().rectMemo.get()->size(), 4u);
    });
}

TEST(ContourEncloseRect, LimitZeroKeepsNewestEntry) {
    runInFreshThread([] {
        ContourProbe c(unitSquare(), true, 0);
        c.cachedVectorSize(0);
        c.encloseRect(xcXform<2>::I);
        c.encloseRect(xcXform<2>(xcMatrix<2>::I, xcVector<2>(5, 0)));
        const auto* memo = c.cacheState().rectMemo.get();
        ASSERT_EQ(memo->size(), 1u);
        EXPECT_EQ(memo->begin()->first.trans(), xcVector<2>(5, 0));
    });
}

TEST(ContourEncloseRect, OpenAndClosedGiveSameBox) {
    xcContour open(Points{{0, 0}, {3, 1}, {1, 2}}, false);
    xcContour closed(Points{{0, 0}, {3, 1}, {1, 2}}, true);
    EXPECT_EQ(open.encloseRect(xcXform<2>::I), closed.encloseRect(xcXform<2>::I));
}

TEST(ContourEncloseRect, NeedsTwoVertices) {
    ContourProbe c(Points{{0, 0}}, false, 0);
    expectEmptyContour([&] { c.encloseRect(xcXform<2>::I); });
    EXPECT_EQ(c.cacheState().rectMemo.get(), nullptr);
}

// ---- the interleaved length sum against the sum in edge order ----

TEST(ContourLength, InterleavedSumAgreesWithTheSumInEdgeOrder) {
    xcRandomUniform g(77);
    int checked = 0;
    for (int s = 0; s < 2000; ++s) {
        const int n =
            static_cast<int>(g.next(0.0, 1.0) < 0.5 ? g.next(1.0, 12.0) : g.next(1.0, 5000.0));
        const double scale = std::pow(10.0, g.next(-6.0, 8.0));
        const xcVector<2> offset(g.next(-1e6, 1e6), g.next(-1e6, 1e6));
        Points p;
        for (int i = 0; i < n; ++i) {
            if (i > 0 && g.next(0.0, 1.0) < 0.1) {
                p.push_back(p.back());  // zero-length edge
                continue;
            }
            p.push_back(offset + xcVector<2>(g.next(-1.0, 1.0), g.next(-1.0, 1.0)) * scale);
        }
        for (bool closed : {true, false}) {
            const xcContour c(p, closed);
            const double plain = cntr::core::referenceLength(core_reference::outline(c));
            EXPECT_TRUE(withinRelative(c.length(), plain))
                << "shape " << s << " n " << n << " closed " << closed << ": " << c.length()
                << " vs " << plain;
            ++checked;
        }
    }
    EXPECT_EQ(checked, 4000);
}

TEST(ContourLength, NonFiniteVerticesGiveWhatTheSumInEdgeOrderGives) {
    const double inf = std::numeric_limits<double>::infinity();
    for (double odd : {std::nan(""), inf, -inf, 1e308}) {
        for (int at : {0, 1, 5, 9}) {
            Points p;
            for (int i = 0; i < 10; ++i)
                p.emplace_back(i, i % 3);
            p[static_cast<std::size_t>(at)] = xcVector<2>(odd, 0.0);
            for (bool closed : {true, false}) {
                const xcContour c(p, closed);
                EXPECT_TRUE(withinRelative(c.length(), cntr::core::referenceLength(core_reference::outline(c))))
                    << odd << " at " << at << " closed " << closed;
            }
        }
    }
}

// Seven unit edges and the closing edge of length 7, summed exactly either way.
TEST(ContourLength, InterleavedSumOfASegmentWalkIsExact) {
    Points p;
    for (int i = 0; i < 8; ++i)
        p.emplace_back(i, 0);
    EXPECT_EQ(xcContour(p, false).length(), 7.0);
    EXPECT_EQ(xcContour(p, true).length(), 14.0);
}
