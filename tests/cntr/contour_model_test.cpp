#include <cmath>
#include <limits>
#include <memory>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <foundation/persistent.h>

#include "contour_testing.h"

using Defs = xcContourDefs;

namespace {

// A contour made by the archive's factory, as the loader would create it.
std::unique_ptr<xcContour> madeByFactory() {
    const xc_Instantiator::MakeFunction make = xc_Instantiator::lookup("xcContour");
    if (!make) return nullptr;
    return std::unique_ptr<xcContour>(dynamic_cast<xcContour*>(make()));
}

// Fills the caches that the model keeps: mean position, length, one rectangle, one extremal
// vertex, one circle, the edge vectors, the median and one vertex grid.
void fillCaches(ContourProbe& c) {
    c.meanPosition();
    c.length();
    c.encloseRect(xcXform<2>::I);
    c.extremalVertexIndex(xcRadian(0.0));
    c.encloseCircle(Defs::fromFirstVertex);
    c.isSelfIntersecting();
    c.medianFeatureSize();
    c.vertexIndex(xcVector<2>(0, 0), 0.5);
}

}  // namespace

// ---- construction ----

TEST(ContourModel, FactoryContourIsEmptyClosedLabelZero) {
    const std::unique_ptr<xcContour> c = madeByFactory();
    ASSERT_NE(c, nullptr);
    EXPECT_TRUE(c->isClosed());
    EXPECT_EQ(c->label(), 0u);
    EXPECT_TRUE(c->points().empty());
    EXPECT_EQ(c->cachedVectorSize(), 3);
}

TEST(ContourModel, FactoryContourMeasurementsThrowEmptyContour) {
    const std::unique_ptr<xcContour> c = madeByFactory();
    ASSERT_NE(c, nullptr);
    expectEmptyContour([&] { c->meanPosition(); });
    expectEmptyContour([&] { c->extremalVertexIndex(xcRadian(0.0)); });
    expectEmptyContour([&] { c->extremalVertexPosition(xcRadian(0.0)); });
    expectEmptyContour([&] { c->encloseRect(xcXform<2>::I); });
    expectEmptyContour([&] { c->intersections(xcLineSeg({0, 0}, {1, 1}), true); });
    expectEmptyContour([&] { c->intersections(xcContour(unitSquare(), true)); });
    expectEmptyContour([&] { c->vertexIndex({0, 0}, 1.0); });
    expectEmptyContour([&] { c->closestPoint({0, 0}, false); });
    expectEmptyContour([&] { c->closestVertexIndex({0, 0}); });
    expectEmptyContour([&] { c->distToPoint({0, 0}, true); });
}

TEST(ContourModel, DefaultConstructorMatchesFactory) {
    const xcContour c;
    EXPECT_TRUE(c.isClosed());
    EXPECT_EQ(c.label(), 0u);
    EXPECT_TRUE(c.points().empty());
    EXPECT_EQ(c.cachedVectorSize(), 3);
}

TEST(ContourModel, ConstructorStoresPointsClosedAndLabel) {
    const xcContour c({{1, 2}, {3, 4}}, false, 42);
    EXPECT_EQ(c.points(), (Points{{1, 2}, {3, 4}}));
    EXPECT_FALSE(c.isClosed());
    EXPECT_EQ(c.label(), 42u);
    EXPECT_EQ(c.cachedVectorSize(), 3);
}

TEST(ContourModel, NewContourHasEmptyCaches) {
    const ContourProbe c(unitSquare(), true, 0);
    const ContourProbe::CacheState& s = c.cacheState();
    EXPECT_FALSE(s.meanPosition.valid);
    EXPECT_FALSE(s.length.valid);
    EXPECT_FALSE(s.convexHull.valid);
    EXPECT_EQ(s.convexHull.value.rep(), nullptr);
    EXPECT_EQ(s.rectMemo.get(), nullptr);
    EXPECT_EQ(s.extremalVertexMemo.get(), nullptr);
    EXPECT_EQ(s.vertexGrids.get(), nullptr);
    EXPECT_FALSE(s.encloseCircle[0].valid);
    EXPECT_FALSE(s.encloseCircle[1].valid);
    EXPECT_FALSE(s.fittedEllipse.valid);
    EXPECT_FALSE(s.selfIntersecting.valid);
    EXPECT_FALSE(s.edges.valid);
    EXPECT_FALSE(s.medianFeatureSize.valid);
}

TEST(ContourModel, PolygonRepeatingFirstVertexGivesClosedContourKeepingBoth) {
    const xcPolygon p({{0, 0}, {2, 0}, {2, 2}, {0, 0}});
    const xcContour c(p, 5);
    EXPECT_TRUE(c.isClosed());
    EXPECT_EQ(c.points().size(), 4u);
    EXPECT_EQ(c.points().back(), xcVector<2>(0, 0));
    EXPECT_EQ(c.label(), 5u);
}

TEST(ContourModel, PolygonLastVertexWithin1e15OfFirstGivesClosedContour) {
    // 1 + 2^-52 differs from 1 by 2.2e-16, which is within 1e-15.
    const double nearOne = 1.0 + std::numeric_limits<double>::epsilon();
    const xcContour c(xcPolygon({{1, 1}, {3, 1}, {3, 3}, {nearOne, 1}}));
    EXPECT_TRUE(c.isClosed());
}

TEST(ContourModel, PolygonLastVertexDifferingBeyond1e15GivesOpenContour) {
    // 1 + 2e-15 differs from 1 by about 2e-15 > 1e-15.
    const xcContour c(xcPolygon({{1, 1}, {3, 1}, {3, 3}, {1.0 + 2e-15, 1}}));
    EXPECT_FALSE(c.isClosed());
    EXPECT_EQ(c.points().size(), 4u);
}

TEST(ContourModel, EmptyPolygonGivesOpenEmptyContour) {
    const xcContour c{xcPolygon()};
    EXPECT_FALSE(c.isClosed());
    EXPECT_TRUE(c.points().empty());
}

// ---- emptiness check ----

TEST(ContourModel, TwoVerticesPassEmptinessCheck) {
    const ContourProbe c({{0, 0}, {1, 0}}, false, 0);
    EXPECT_NO_THROW(c.checkEmptyContour());
}

TEST(ContourModel, OneVertexFailsEmptinessCheck) {
    const ContourProbe c({{0, 0}}, true, 0);
    expectEmptyContour([&] { c.checkEmptyContour(); });
}

// ---- equality ----

TEST(ContourModel, ContoursDifferingOnlyInLabelAreEqual) {
    EXPECT_EQ(xcContour(unitSquare(), true, 1), xcContour(unitSquare(), true, 2));
}

TEST(ContourModel, ContoursDifferingOnlyInCachedVectorSizeAreUnequal) {
    xcContour a(unitSquare(), true);
    const xcContour b(unitSquare(), true);
    a.cachedVectorSize(4);
    EXPECT_NE(a, b);
    EXPECT_FALSE(a == b);
}

TEST(ContourModel, ContoursDifferingInClosednessAreUnequal) {
    EXPECT_NE(xcContour(unitSquare(), true), xcContour(unitSquare(), false));
}

TEST(ContourModel, ContoursDifferingInOneVertexAreUnequal) {
    Points moved = unitSquare();
    moved[2] = {1, 1.5};
    EXPECT_NE(xcContour(unitSquare(), true), xcContour(moved, true));
    EXPECT_NE(xcContour(unitSquare(), true), xcContour(Points{{0, 0}, {1, 0}, {1, 1}}, true));
}

TEST(ContourModel, EqualityIgnoresCaches) {
    xcContour a(unitSquare(), true);
    const xcContour b(unitSquare(), true);
    a.length();
    a.meanPosition();
    EXPECT_EQ(a, b);
}

TEST(ContourModel, NaNVertexNeverComparesEqual) {
    const Points p{{0, 0}, {std::nan(""), 1}};
    const xcContour a(p, false);
    EXPECT_FALSE(a == a);
}

// ---- polygon ----

TEST(ContourModel, PolygonOfClosedContourRepeatsFirstVertex) {
    xcContour c(unitSquare(), true);
    const xcPolygon p = c.polygon();
    EXPECT_EQ(p.vertices(), (Points{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}));
    EXPECT_EQ(p.fillMode(), 0);
}

TEST(ContourModel, PolygonOfOpenContourHasItsVertices) {
    xcContour c(unitSquare(), false);
    const xcPolygon p = c.polygon();
    EXPECT_EQ(p.vertices(), unitSquare());
    EXPECT_EQ(p.fillMode(), 0);
}

TEST(ContourModel, PolygonOfEmptyClosedContourIsEmpty) {
    xcContour c;
    EXPECT_TRUE(c.polygon().vertices().empty());
}

// ---- setters and the cache convention ----

TEST(ContourModel, LabelKeepsCachedMeanPosition) {
    ContourProbe c(unitSquare(), true, 0);
    c.meanPosition();
    const unsigned long changes = c.changeCount();
    c.label(7);
    EXPECT_EQ(c.label(), 7u);
    EXPECT_TRUE(c.cacheState().meanPosition.valid);
    EXPECT_EQ(c.cleanCalls, 0);
    EXPECT_EQ(c.changeCount(), changes + 1);
}

TEST(ContourModel, OpeningClosedContourDropsCachedMeanPosition) {
    ContourProbe c(unitSquare(), true, 0);
    c.meanPosition();
    c.isClosed(false);
    EXPECT_FALSE(c.isClosed());
    EXPECT_FALSE(c.cacheState().meanPosition.valid);
    EXPECT_EQ(c.cleanCalls, 1);
}

TEST(ContourModel, QueryAfterChangeSeesTheChange) {
    xcContour c(unitSquare(), true);
    EXPECT_EQ(c.length(), 4.0);
    c.isClosed(false);
    EXPECT_EQ(c.length(), 3.0);  // the closing edge (0,1)-(0,0) is gone
    c.points(Points{{0, 0}, {3, 4}});
    EXPECT_EQ(c.length(), 5.0);  // sqrt(3^2 + 4^2)
}

TEST(ContourModel, NegativeCachedVectorSizeThrowsAndKeepsLimit) {
    xcContour c(unitSquare(), true);
    c.cachedVectorSize(5);
    try {
        c.cachedVectorSize(-1);
        FAIL() << "accepted -1";
    } catch (const Defs::BadParams& e) {
        EXPECT_EQ(e.errorNumber(), 0x10004683);
        EXPECT_EQ(e.message(), L"");
    }
    EXPECT_EQ(c.cachedVectorSize(), 5);
}

TEST(ContourModel, ZeroCachedVectorSizeIsAccepted) {
    ContourProbe c(unitSquare(), true, 0);
    c.length();
    const unsigned long changes = c.changeCount();
    c.cachedVectorSize(0);
    EXPECT_EQ(c.cachedVectorSize(), 0);
    EXPECT_EQ(c.changeCount(), changes + 1);
    EXPECT_TRUE(c.cacheState().length.valid);
}

TEST(ContourModel, PointsSetterDropsCachesAndCallsDataHook) {
    ContourProbe c(unitSquare(), true, 0);
    c.meanPosition();
    c.points(Points{{0, 0}, {2, 0}});
    EXPECT_EQ(c.points(), (Points{{0, 0}, {2, 0}}));
    EXPECT_FALSE(c.cacheState().meanPosition.valid);
    EXPECT_EQ(c.dataHookCalls, 1);
    EXPECT_EQ(c.cleanCalls, 2);  // once before storing, once through the hook
}

TEST(ContourModel, PointsSetterAcceptsItsOwnVertices) {
    xcContour c(unitSquare(), true);
    c.points(c.points());
    EXPECT_EQ(c.points(), unitSquare());
}

TEST(ContourModel, SetPointsDropsCachesWithoutDataHook) {
    ContourProbe c(unitSquare(), true, 0);
    c.length();
    c.setPoints(Points{{0, 0}, {0, 3}});
    EXPECT_EQ(c.points(), (Points{{0, 0}, {0, 3}}));
    EXPECT_FALSE(c.cacheState().length.valid);
    EXPECT_EQ(c.dataHookCalls, 0);
    EXPECT_EQ(c.cleanCalls, 1);
}

TEST(ContourModel, PointsHookDropsCaches) {
    ContourProbe c(unitSquare(), true, 0);
    c.length();
    c.makePointsConsistentWithData();
    EXPECT_FALSE(c.cacheState().length.valid);
    EXPECT_EQ(c.cleanCalls, 1);
}

TEST(ContourModel, CleanCacheInfoDropsEveryCache) {
    ContourProbe c(unitSquare(), true, 0);
    fillCaches(c);
    ContourProbe::CacheState s = c.cacheState();
    ASSERT_TRUE(s.meanPosition.valid && s.length.valid && s.edges.valid && s.medianFeatureSize.valid);
    ASSERT_NE(s.rectMemo.get(), nullptr);
    const unsigned long changes = c.changeCount();

    c.isClosed(true);  // a geometric change, even to the same value, ends in cleanCacheInfo
    s = c.cacheState();
    EXPECT_EQ(c.changeCount(), changes + 1);
    EXPECT_EQ(s.rectMemo.get(), nullptr);
    EXPECT_EQ(s.extremalVertexMemo.get(), nullptr);
    EXPECT_EQ(s.vertexGrids.get(), nullptr);
    EXPECT_FALSE(s.meanPosition.valid);
    EXPECT_FALSE(s.length.valid);
    EXPECT_EQ(s.length.value, 0.0);
    EXPECT_FALSE(s.convexHull.valid);
    EXPECT_FALSE(s.encloseCircle[0].valid);
    EXPECT_FALSE(s.encloseCircle[1].valid);
    EXPECT_FALSE(s.fittedEllipse.valid);
    EXPECT_EQ(s.fittedEllipse.value.residual, 0.0);
    EXPECT_FALSE(s.selfIntersecting.valid);
    EXPECT_FALSE(s.edges.valid);
    EXPECT_EQ(s.edges.value.segs.size(), 4u);  // the edge vectors are kept until rebuilt
    EXPECT_FALSE(s.medianFeatureSize.valid);
    EXPECT_EQ(s.medianFeatureSize.value, 0.0);
}

TEST(ContourModel, CacheFillDoesNotCountAsChange) {
    ContourProbe c(unitSquare(), true, 0);
    const unsigned long changes = c.changeCount();
    fillCaches(c);
    EXPECT_EQ(c.changeCount(), changes);
}

// ---- copy and assignment ----

TEST(ContourModel, AssignmentCopiesValidCaches) {
    ContourProbe b(unitSquare(), true, 9);
    fillCaches(b);
    ContourProbe a(Points{{5, 5}, {6, 6}}, false, 0);
    a = b;
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.label(), 9u);
    const ContourProbe::CacheState& s = a.cacheState();
    EXPECT_TRUE(s.meanPosition.valid);
    EXPECT_TRUE(s.length.valid);
    EXPECT_EQ(s.length.value, 4.0);
    EXPECT_TRUE(s.edges.valid);
    EXPECT_TRUE(s.medianFeatureSize.valid);
    EXPECT_FALSE(s.encloseCircle[0].valid);
    EXPECT_TRUE(s.encloseCircle[1].valid);
    ASSERT_NE(s.rectMemo.get(), nullptr);
    EXPECT_EQ(s.rectMemo.get()->size(), 1u);
    ASSERT_NE(s.extremalVertexMemo.get(), nullptr);
    EXPECT_EQ(s.extremalVertexMemo.get()->size(), 1u);
    ASSERT_NE(s.vertexGrids.get(), nullptr);
    EXPECT_EQ(s.vertexGrids.get()->size(), 1u);
}

TEST(ContourModel, AssignedContourAnswersFromCopiedCache) {
    // A test subclass cannot write the cache, so this shows the copy through a memo entry that a
    // recomputation would not give: the rectangle memo ignores matrix element (1,1).
    xcContour b(unitSquare(), true);
    const xcXform<2> stretch(xcMatrix<2>(1, 0, 0, 2), xcVector<2>());
    const xcXform<2> other11(xcMatrix<2>(1, 0, 0, 5), xcVector<2>());
    b.encloseRect(stretch);  // memo: key of stretch -> box (0,0)-(1,2)
    xcContour a;
    a = b;
    const xcRect r = a.encloseRect(other11);  // found under the shared key
    EXPECT_EQ(r.lr(), xcVector<2>(1, 2));
}

TEST(ContourModel, AssignmentDeepCopiesMemos) {
    ContourProbe b(unitSquare(), true, 0);
    fillCaches(b);
    ContourProbe a;
    a = b;
    EXPECT_NE(a.cacheState().rectMemo.get(), b.cacheState().rectMemo.get());
    EXPECT_NE(a.cacheState().extremalVertexMemo.get(), b.cacheState().extremalVertexMemo.get());
    EXPECT_NE(a.cacheState().vertexGrids.get(), b.cacheState().vertexGrids.get());

    a.points(Points{{0, 0}, {9, 9}});
    a.encloseRect(xcXform<2>::I);
    const ContourProbe::CacheState& s = b.cacheState();
    ASSERT_NE(s.rectMemo.get(), nullptr);
    EXPECT_EQ(s.rectMemo.get()->begin()->second.lr(), xcVector<2>(1, 1));
    ASSERT_NE(s.extremalVertexMemo.get(), nullptr);
    EXPECT_EQ(s.extremalVertexMemo.get()->size(), 1u);
    ASSERT_NE(s.vertexGrids.get(), nullptr);
    EXPECT_EQ(s.vertexGrids.get()->size(), 1u);
    EXPECT_TRUE(s.meanPosition.valid);
}

TEST(ContourModel, AssignmentFromContourWithoutMemosDeletesMemos) {
    ContourProbe a(unitSquare(), true, 0);
    fillCaches(a);
    const ContourProbe b(unitSquare(), true, 0);
    a = b;
    EXPECT_EQ(a.cacheState().rectMemo.get(), nullptr);
    EXPECT_EQ(a.cacheState().extremalVertexMemo.get(), nullptr);
    EXPECT_EQ(a.cacheState().vertexGrids.get(), nullptr);
}

TEST(ContourModel, AssignmentDoesNotCountAsChange) {
    ContourProbe a;
    const unsigned long changes = a.changeCount();
    a = ContourProbe(unitSquare(), true, 0);
    EXPECT_EQ(a.changeCount(), changes);
    EXPECT_EQ(a.cleanCalls, 0);
}

TEST(ContourModel, SelfAssignmentKeepsEverything) {
    ContourProbe a(unitSquare(), true, 3);
    fillCaches(a);
    const auto* memo = a.cacheState().rectMemo.get();
    ContourProbe& same = a;
    a = same;
    EXPECT_EQ(a.cacheState().rectMemo.get(), memo);
    EXPECT_EQ(a.points(), unitSquare());
    EXPECT_EQ(a.label(), 3u);
}

TEST(ContourModel, CopyConstructorCopiesCachesIntoOwnMemos) {
    ContourProbe b(unitSquare(), false, 4);
    fillCaches(b);
    const ContourProbe a(b);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.label(), 4u);
    EXPECT_TRUE(a.cacheState().length.valid);
    EXPECT_EQ(a.cacheState().length.value, 3.0);
    ASSERT_NE(a.cacheState().rectMemo.get(), nullptr);
    EXPECT_NE(a.cacheState().rectMemo.get(), b.cacheState().rectMemo.get());
}

TEST(ContourModel, CopyStartsWithFreshCount) {
    const xcPtrHandle<xcContour> h(new xcContour(unitSquare(), true));
    const xcContour copy(*h);
    EXPECT_EQ(h->refCount(), 1);
    EXPECT_EQ(copy.refCount(), 0);
}

// ---- map ----

TEST(ContourModel, MapTransformsVerticesKeepingClosednessAndLabel) {
    const xcContour c(Points{{1, 0}, {2, 0}, {2, 1}}, false, 11);
    // Quarter turn (exact matrix) then shift by (10, 0): (x, y) -> (10 - y, x).
    const xcXform<2> x(xcMatrix<2>(0, -1, 1, 0), xcVector<2>(10, 0));
    xcContour out(unitSquare(), true, 0);
    out.cachedVectorSize(7);
    c.map(x, out);
    EXPECT_EQ(out.points(), (Points{{10, 1}, {10, 2}, {9, 2}}));
    EXPECT_FALSE(out.isClosed());
    EXPECT_EQ(out.label(), 11u);
    EXPECT_EQ(out.cachedVectorSize(), 3);  // a new contour was assigned
}

TEST(ContourModel, MapOntoItselfLeavesEmptyCaches) {
    ContourProbe c(unitSquare(), true, 2);
    fillCaches(c);
    // Scale by 2 and shift by (1, 1): (x, y) -> (2x + 1, 2y + 1).
    c.map(xcXform<2>(xcMatrix<2>(2, 0, 0, 2), xcVector<2>(1, 1)), c);
    EXPECT_EQ(c.points(), (Points{{1, 1}, {3, 1}, {3, 3}, {1, 3}}));
    EXPECT_TRUE(c.isClosed());
    EXPECT_EQ(c.label(), 2u);
    const ContourProbe::CacheState& s = c.cacheState();
    EXPECT_FALSE(s.meanPosition.valid);
    EXPECT_FALSE(s.length.valid);
    EXPECT_FALSE(s.edges.valid);
    EXPECT_EQ(s.rectMemo.get(), nullptr);
    EXPECT_EQ(c.length(), 8.0);  // side 2, four sides
}
