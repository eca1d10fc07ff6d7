#include <memory>
#include <random>

#include <gtest/gtest.h>

#include <cntrtmpl/contourt.h>
#include <cntrtmpl/regiont.h>
#include <foundation/persistent.h>

#include "edgelet_testing.h"

using EdgeletContour = xcContourT<xcEdgelet>;

namespace {

// Exposes the protected consistency hooks.
class EdgeletContourProbe : public EdgeletContour {
  public:
    using EdgeletContour::EdgeletContour;
    using EdgeletContour::makeDataConsistentWithPoints;
    using EdgeletContour::makePointsConsistentWithData;
};

// The three edgelets at (14, 26), (10, 20) and (12, 30), with magnitudes and angles. Under
// scaleTwoShift() their points are ((14-10)/2, (26-20)/2) = (2, 3), (0, 0) and (1, 5).
Edgelets threeEdgelets() {
    return {edgelet(14, 26, 300, 10), edgelet(10, 20, 7, 64), edgelet(12, 30, 1, 255)};
}

const xc2XformLinear* asLinear(const XformHandle& h) {
    return dynamic_cast<const xc2XformLinear*>(h.rep());
}

}  // namespace

// ---- construction ----

TEST(ContourT, DefaultIsEmptyClosedLabelZeroWithoutTransform) {
    const EdgeletContour c;
    EXPECT_TRUE(c.points().empty());
    EXPECT_TRUE(c.data().empty());
    EXPECT_TRUE(c.isClosed());
    EXPECT_EQ(c.label(), 0u);
    EXPECT_EQ(c.cachedVectorSize(), 3);
    EXPECT_TRUE(c.dataFromPointsXform().isNull());
}

TEST(ContourT, FactoryIsRegisteredUnderStableNameAndMakesDefault) {
    const std::unique_ptr<EdgeletContour> c =
        madeByFactory<EdgeletContour>("xcContourT<xcEdgelet>");
    ASSERT_NE(c, nullptr);
    EXPECT_TRUE(c->points().empty());
    EXPECT_TRUE(c->isClosed());
    EXPECT_TRUE(c->dataFromPointsXform().isNull());
}

TEST(ContourT, FromEdgeletsWithoutTransformPointsAreThePositions) {
    const EdgeletContour c(threeEdgelets());
    EXPECT_EQ(c.points(), (Points{{14, 26}, {10, 20}, {12, 30}}));
    EXPECT_EQ(c.data(), threeEdgelets());
    const xc2XformLinear* x = asLinear(c.dataFromPointsXform());
    ASSERT_NE(x, nullptr);
    EXPECT_TRUE(xfRealEq(x->xform(), xcXform<2>::I, 0.0));
}

TEST(ContourT, FromEdgeletsIsClosedWithLabelZero) {
    const EdgeletContour c(threeEdgelets(), scaleTwoShift());
    EXPECT_TRUE(c.isClosed());
    EXPECT_EQ(c.label(), 0u);
}

TEST(ContourT, FromEdgeletsAndTransformPointsAreInverseImages) {
    const EdgeletContour c(threeEdgelets(), scaleTwoShift());
    EXPECT_EQ(c.points(), (Points{{2, 3}, {0, 0}, {1, 5}}));
    EXPECT_EQ(c.data(), threeEdgelets());  // magnitudes and angles are kept as given
}

TEST(ContourT, ConstructorClonesTheTransform) {
    const XformHandle given = scaleTwoShift();
    const EdgeletContour c(threeEdgelets(), given);
    EXPECT_NE(c.dataFromPointsXform().rep(), given.rep());
    const xc2XformLinear* x = asLinear(c.dataFromPointsXform());
    ASSERT_NE(x, nullptr);
    EXPECT_TRUE(xfRealEq(x->xform(), asLinear(given)->xform(), 0.0));
}

TEST(ContourT, NullTransformHandleGivesIdentity) {
    const EdgeletContour c(threeEdgelets(), XformHandle());
    ASSERT_FALSE(c.dataFromPointsXform().isNull());
    EXPECT_EQ(c.points(), (Points{{14, 26}, {10, 20}, {12, 30}}));
}

TEST(ContourT, SingularTransformWithEdgeletsThrowsSingular) {
    EXPECT_THROW(EdgeletContour(threeEdgelets(), singularXform()), xcMathError::Singular);
}

TEST(ContourT, SingularTransformWithoutEdgeletsIsAccepted) {
    // No point is asked of an empty list, so the inverse is never needed.
    const EdgeletContour c(Edgelets(), singularXform());
    EXPECT_TRUE(c.points().empty());
}

// ---- datum and point ----

TEST(ContourT, DatumMapsThePointWithZeroMagnitudeAndAngle) {
    const EdgeletContour c(threeEdgelets(), scaleTwoShift());
    // 2 * (3, -1) + (10, 20) = (16, 18).
    EXPECT_EQ(c.datum({3, -1}), edgelet(16, 18, 0, 0));
}

TEST(ContourT, PointMapsThePositionBack) {
    const EdgeletContour c(threeEdgelets(), scaleTwoShift());
    // ((16 - 10) / 2, (18 - 20) / 2) = (3, -1); magnitude and angle play no part.
    EXPECT_EQ(c.point(edgelet(16, 18, 99, 77)), xcVector<2>(3, -1));
}

TEST(ContourT, NullTransformActsAsIdentityForDatumAndPoint) {
    const EdgeletContour c;
    EXPECT_EQ(c.datum({1.5, -2}), edgelet(1.5, -2));
    EXPECT_EQ(c.point(edgelet(4, 5, 9, 9)), xcVector<2>(4, 5));
}

TEST(ContourT, PointComputesTheInverseOnceAndCopiesShareIt) {
    auto inversions = std::make_shared<int>(0);
    const XformHandle shift(new CountingXform({1, 2}, inversions));
    const EdgeletContour c({edgelet(1, 2), edgelet(3, 4)}, shift);
    EXPECT_EQ(*inversions, 1);  // once for both points of the constructor
    EXPECT_EQ(c.point(edgelet(5, 5)), xcVector<2>(4, 3));
    EXPECT_EQ(*inversions, 1);
    const EdgeletContour copy(c);
    EXPECT_EQ(copy.point(edgelet(1, 1)), xcVector<2>(0, -1));
    EXPECT_EQ(*inversions, 1);
}

TEST(ContourT, DatumDoesNotNeedTheInverse) {
    auto inversions = std::make_shared<int>(0);
    const EdgeletContour c(Edgelets(), XformHandle(new CountingXform({1, 2}, inversions)));
    EXPECT_EQ(c.datum({0, 0}), edgelet(1, 2));
    EXPECT_EQ(*inversions, 0);
}

// ---- consistency ----

TEST(ContourT, SettingPointsRebuildsEdgeletsAtMappedPositionsWithZeroMagnitudeAndAngle) {
    EdgeletContour c(threeEdgelets(), scaleTwoShift());
    xcContour& asContour = c;
    asContour.points({{1, 1}, {0, -1}});
    // 2 (1, 1) + (10, 20) = (12, 22); 2 (0, -1) + (10, 20) = (10, 18).
    EXPECT_EQ(c.data(), (Edgelets{edgelet(12, 22), edgelet(10, 18)}));
    EXPECT_EQ(c.points(), (Points{{1, 1}, {0, -1}}));
}

TEST(ContourT, SettingPointsDiscardsOldMagnitudesAtTheSamePositions) {
    EdgeletContour c(threeEdgelets());
    c.points(c.points());
    EXPECT_EQ(c.data(), (Edgelets{edgelet(14, 26), edgelet(10, 20), edgelet(12, 30)}));
}

TEST(ContourT, SettingThreeEdgeletsOnFivePointsLeavesThreePoints) {
    EdgeletContour c(Edgelets(), scaleTwoShift());
    c.points({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}});
    ASSERT_EQ(c.data().size(), 5u);
    c.data(threeEdgelets());
    EXPECT_EQ(c.points(), (Points{{2, 3}, {0, 0}, {1, 5}}));
    EXPECT_EQ(c.data(), threeEdgelets());
}

TEST(ContourT, SettingEdgeletsDropsTheContourCaches) {
    EdgeletContour c({edgelet(0, 0), edgelet(3, 0), edgelet(3, 4)});
    EXPECT_DOUBLE_EQ(c.length(), 12.0);  // 3 + 4 + 5
    c.data({edgelet(0, 0), edgelet(6, 0), edgelet(6, 8)});
    EXPECT_DOUBLE_EQ(c.length(), 24.0);  // 6 + 8 + 10
}

TEST(ContourT, SettingEmptyEdgeletsEmptiesThePoints) {
    EdgeletContour c(threeEdgelets());
    c.data(Edgelets());
    EXPECT_TRUE(c.points().empty());
}

TEST(ContourT, HooksRebuildEachSideFromTheOther) {
    EdgeletContourProbe c(threeEdgelets(), scaleTwoShift());
    c.makeDataConsistentWithPoints();
    // Points (2, 3), (0, 0), (1, 5) map to (14, 26), (10, 20), (12, 30), now without magnitudes.
    EXPECT_EQ(c.data(), (Edgelets{edgelet(14, 26), edgelet(10, 20), edgelet(12, 30)}));
    c.makePointsConsistentWithData();
    EXPECT_EQ(c.points(), (Points{{2, 3}, {0, 0}, {1, 5}}));
}

TEST(ContourT, DataWithSingularTransformThrowsAndChangesNothing) {
    EdgeletContour c(Edgelets(), singularXform());
    c.points({{5, 5}, {6, 7}});
    ASSERT_EQ(c.data(), (Edgelets{edgelet(1, 1), edgelet(1, 1)}));
    EXPECT_THROW(c.data({edgelet(2, 2)}), xcMathError::Singular);
    EXPECT_EQ(c.data(), (Edgelets{edgelet(1, 1), edgelet(1, 1)}));
    EXPECT_EQ(c.points(), (Points{{5, 5}, {6, 7}}));
}

TEST(ContourT, EmptyDataWithSingularTransformIsAccepted) {
    EdgeletContour c(Edgelets(), singularXform());
    c.points({{5, 5}});
    c.data(Edgelets());
    EXPECT_TRUE(c.points().empty());
    EXPECT_TRUE(c.data().empty());
}

TEST(ContourT, ContourMapIntoAnEdgeletContourLeavesTheDataUntilPointsAreSet) {
    EdgeletContour c({edgelet(1, 2, 9, 9)});
    const xcXform<2> shift(xcMatrix<2>::I, xcVector<2>(10, 0));
    c.map(shift, c);
    EXPECT_EQ(c.points(), (Points{{11, 2}}));
    EXPECT_EQ(c.data(), (Edgelets{edgelet(1, 2, 9, 9)}));
    c.points(c.points());
    EXPECT_EQ(c.data(), (Edgelets{edgelet(11, 2)}));
}

TEST(ContourT, RandomEdgeletsRoundTripThroughTheirPoints) {
    // Law: for an invertible transform, datum(point(e)) has e's position up to rounding.
    std::mt19937 gen(20240611);
    std::uniform_real_distribution<double> coord(-1000.0, 1000.0);
    const XformHandle x =
        linearXform(xcXform<2>(xcMatrix<2>(0.8, -0.6, 0.6, 0.8), xcVector<2>(3, -7)));
    for (int trial = 0; trial < 50; ++trial) {
        Edgelets data;
        for (int i = 0; i < 10; ++i)
            data.push_back(edgelet(coord(gen), coord(gen), i, i));
        const EdgeletContour c(data, x);
        ASSERT_EQ(c.points().size(), data.size());
        for (std::size_t i = 0; i < data.size(); ++i)
            EXPECT_TRUE(xfRealEq(c.datum(c.points()[i]).position(), data[i].position(), 1e-9));
    }
}

// ---- copying and equality ----

TEST(ContourT, CopyEqualsSourceAndSharesTheTransform) {
    EdgeletContour source(threeEdgelets(), scaleTwoShift());
    source.label(5);
    const EdgeletContour copy(source);
    EXPECT_TRUE(copy == source);
    EXPECT_EQ(copy.dataFromPointsXform().rep(), source.dataFromPointsXform().rep());
    EXPECT_EQ(copy.data(), source.data());
    EXPECT_EQ(copy.points(), source.points());
    EXPECT_EQ(copy.label(), 5u);
}

TEST(ContourT, SeparatelyBuiltFromSameEdgeletsAndHandleAreUnequal) {
    const XformHandle x = scaleTwoShift();
    const EdgeletContour a(threeEdgelets(), x);
    const EdgeletContour b(threeEdgelets(), x);
    EXPECT_EQ(a.points(), b.points());
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
}

TEST(ContourT, AssignmentCopiesEverythingAndSharesTheTransform) {
    const EdgeletContour source(threeEdgelets(), scaleTwoShift());
    EdgeletContour target({edgelet(1, 1)});
    target = source;
    EXPECT_TRUE(target == source);
    EXPECT_EQ(target.data(), source.data());
    EXPECT_EQ(target.dataFromPointsXform().rep(), source.dataFromPointsXform().rep());
}

TEST(ContourT, SelfAssignmentChangesNothing) {
    EdgeletContour c(threeEdgelets(), scaleTwoShift());
    const xc2XformBase* x = c.dataFromPointsXform().rep();
    EdgeletContour& same = c;
    c = same;
    EXPECT_EQ(c.data(), threeEdgelets());
    EXPECT_EQ(c.dataFromPointsXform().rep(), x);
}

TEST(ContourT, EqualityIgnoresDataLabelClosedFlagAndCacheLimit) {
    const EdgeletContour source(threeEdgelets(), scaleTwoShift());
    EdgeletContour other(source);
    other.label(9);
    other.isClosed(false);
    other.cachedVectorSize(0);
    // Same positions, other magnitudes and angles: the same points.
    other.data({edgelet(14, 26), edgelet(10, 20), edgelet(12, 30)});
    EXPECT_TRUE(other == source);
}

TEST(ContourT, EqualityComparesThePoints) {
    const EdgeletContour source(threeEdgelets(), scaleTwoShift());
    EdgeletContour other(source);
    other.points({{2, 3}, {0, 0}});
    EXPECT_FALSE(other == source);
}

TEST(ContourT, DefaultContoursCompareEqual) {
    EXPECT_TRUE(EdgeletContour() == EdgeletContour());
}

// ---- operations not provided ----

TEST(ContourT, MapTThrowsBadWindow) {
    const EdgeletContour c(threeEdgelets());
    EdgeletContour out;
    expectBadWindow([&] { c.mapT(xcXform<2>::I, out); });
    EXPECT_TRUE(out.points().empty());
}

TEST(ContourT, ConvexHullTThrowsBadWindow) {
    const EdgeletContour c({edgelet(0, 0), edgelet(4, 0), edgelet(0, 3)});
    xcRegionT<xcEdgelet> out;
    expectBadWindow([&] { c.convexHullT(out); });
    EXPECT_TRUE(out.points().empty());
}
