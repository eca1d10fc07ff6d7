#include <cmath>
#include <memory>

#include <gtest/gtest.h>

#include <cntr/regionst.h>
#include <cntrtmpl/regiont.h>
#include <foundation/persistent.h>
#include <foundation/tablet.h>

#include "cntr/region_testing.h"
#include "edgelet_testing.h"

using EdgeletContour = xcContourT<xcEdgelet>;
using EdgeletRegion = xcRegionT<xcEdgelet>;
using EdgeletRegionHandle = xcPtrHandle_const<EdgeletRegion>;

namespace {

// Exposes the region part's cache view.
class EdgeletRegionProbe : public EdgeletRegion {
  public:
    using EdgeletRegion::EdgeletRegion;
    using xcRegion::regionCacheState;
};

// The corners of the square of side 4 at the origin as edgelets of magnitude 100, angles 0, 64,
// 128 and 192.
Edgelets squareEdgelets() {
    return {edgelet(0, 0, 100, 0), edgelet(4, 0, 100, 64), edgelet(4, 4, 100, 128),
            edgelet(0, 4, 100, 192)};
}

const xcColor kRed(255, 0, 0);
const xcUITablet::Layers kLayers(6);

// The segments recorded when `r` draws itself with kRed on kLayers.
std::vector<xcRecordingTablet::Segment> strokesOf(const xcRegion& r) {
    xcRecordingTablet tablet;
    r.draw(tablet, kRed, kLayers);
    return tablet.segments();
}

void expectSegment(const xcRecordingTablet::Segment& s, double x1, double y1, double x2, double y2,
                   double tolerance) {
    EXPECT_NEAR(s.p1.x(), x1, tolerance);
    EXPECT_NEAR(s.p1.y(), y1, tolerance);
    EXPECT_NEAR(s.p2.x(), x2, tolerance);
    EXPECT_NEAR(s.p2.y(), y2, tolerance);
    EXPECT_EQ(s.color, kRed);
    EXPECT_EQ(s.layers, kLayers);
}

}  // namespace

// ---- construction ----

TEST(RegionT, DefaultIsEmptyClosedWithoutDataTransformOrHoles) {
    const EdgeletRegion r;
    EXPECT_TRUE(r.points().empty());
    EXPECT_TRUE(r.data().empty());
    EXPECT_TRUE(r.dataFromPointsXform().isNull());
    EXPECT_TRUE(r.isClosed());
    EXPECT_EQ(r.label(), 0u);
    EXPECT_TRUE(r.holes().empty());
    EXPECT_TRUE(static_cast<const xcRegion&>(r).holes().empty());
}

TEST(RegionT, FactoryIsRegisteredUnderStableNameAndMakesDefault) {
    const std::unique_ptr<EdgeletRegion> r = madeByFactory<EdgeletRegion>("xcRegionT<xcEdgelet>");
    ASSERT_NE(r, nullptr);
    EXPECT_TRUE(r->points().empty());
    EXPECT_TRUE(r->data().empty());
    EXPECT_TRUE(r->dataFromPointsXform().isNull());
}

TEST(RegionT, FromEdgeletsHasThePositionsAsOutlineAndTheLabel) {
    const EdgeletRegion r(squareEdgelets(), 17);
    EXPECT_EQ(r.points(), square(0, 0, 4));
    EXPECT_EQ(r.data(), squareEdgelets());
    EXPECT_EQ(r.label(), 17u);
    const auto* x = dynamic_cast<const xc2XformLinear*>(r.dataFromPointsXform().rep());
    ASSERT_NE(x, nullptr);
    EXPECT_TRUE(xfRealEq(x->xform(), xcXform<2>::I, 0.0));
}

TEST(RegionT, FromEdgeletsAndTransformHasTheInverseImagesAndAClone) {
    const XformHandle given = scaleTwoShift();
    // Under p -> 2 p + (10, 20): (10, 20) -> (0, 0), (18, 20) -> (4, 0), (18, 28) -> (4, 4).
    const EdgeletRegion r({edgelet(10, 20), edgelet(18, 20), edgelet(18, 28)}, given, 3);
    EXPECT_EQ(r.points(), (Points{{0, 0}, {4, 0}, {4, 4}}));
    EXPECT_EQ(r.label(), 3u);
    EXPECT_NE(r.dataFromPointsXform().rep(), given.rep());
}

TEST(RegionT, FromEdgeletsMeasuresAsARegion) {
    const EdgeletRegion r(squareEdgelets(), 0);
    EXPECT_DOUBLE_EQ(r.area(false), 16.0);  // 4 * 4
}

TEST(RegionT, FromEdgeletContourTakesItsEdgeletPartButNoPoints) {
    auto inversions = std::make_shared<int>(0);
    const EdgeletContour c({edgelet(1, 1, 5, 6), edgelet(5, 1), edgelet(5, 5)},
                           XformHandle(new CountingXform({1, 1}, inversions)));
    ASSERT_EQ(*inversions, 1);
    EdgeletRegion r(c, 9);
    EXPECT_TRUE(r.points().empty());
    EXPECT_EQ(r.data(), c.data());
    EXPECT_EQ(r.dataFromPointsXform().rep(), c.dataFromPointsXform().rep());
    EXPECT_EQ(r.label(), 9u);
    EXPECT_TRUE(r.isClosed());
    // Setting the data rebuilds the outline with the shared cached inverse: (x, y) - (1, 1).
    r.data(c.data());
    EXPECT_EQ(r.points(), (Points{{0, 0}, {4, 0}, {4, 4}}));
    EXPECT_EQ(*inversions, 1);
}

TEST(RegionT, CopyCopiesEveryPartAndSharesHandles) {
    EdgeletRegionProbe source(squareEdgelets(), 4);
    const RegionHandle plainHole = regionOf(square(1, 1, 1));
    static_cast<xcRegion&>(source).holes(std::vector<RegionHandle>{plainHole});
    const EdgeletRegionHandle edgeletHole(new EdgeletRegion({edgelet(2, 2)}, 0));
    source.holes(EdgeletRegion::HoleHandles{edgeletHole});
    source.area(true);

    const EdgeletRegionProbe copy(source);
    EXPECT_EQ(copy.points(), source.points());
    EXPECT_EQ(copy.data(), source.data());
    EXPECT_EQ(copy.label(), 4u);
    EXPECT_EQ(copy.dataFromPointsXform().rep(), source.dataFromPointsXform().rep());
    ASSERT_EQ(copy.holes().size(), 1u);
    EXPECT_EQ(copy.holes()[0].rep(), edgeletHole.rep());
    ASSERT_EQ(static_cast<const xcRegion&>(copy).holes().size(), 1u);
    EXPECT_EQ(static_cast<const xcRegion&>(copy).holes()[0].rep(), plainHole.rep());
    EXPECT_TRUE(copy.regionCacheState().area[1].valid);  // region caches come along
    EXPECT_TRUE(copy == source);
}

TEST(RegionT, AssignmentCopiesEveryPart) {
    const EdgeletRegion source(squareEdgelets(), 4);
    EdgeletRegion target({edgelet(7, 7)}, 1);
    target.holes(EdgeletRegion::HoleHandles{EdgeletRegionHandle(new EdgeletRegion())});
    target = source;
    EXPECT_EQ(target.points(), source.points());
    EXPECT_EQ(target.data(), source.data());
    EXPECT_EQ(target.label(), 4u);
    EXPECT_TRUE(target.holes().empty());
    EXPECT_TRUE(target == source);
}

TEST(RegionT, SelfAssignmentChangesNothing) {
    EdgeletRegion r(squareEdgelets(), 4);
    EdgeletRegion& same = r;
    r = same;
    EXPECT_EQ(r.data(), squareEdgelets());
    EXPECT_EQ(r.points(), square(0, 0, 4));
}

// ---- holes ----

TEST(RegionT, EdgeletHolesAreKeptApartFromTheRegionHoles) {
    EdgeletRegion r(squareEdgelets(), 0);
    const EdgeletRegionHandle hole(
        new EdgeletRegion({edgelet(1, 1), edgelet(2, 1), edgelet(2, 2)}, 0));
    r.holes(EdgeletRegion::HoleHandles{hole});
    ASSERT_EQ(r.holes().size(), 1u);
    EXPECT_EQ(r.holes()[0].rep(), hole.rep());
    EXPECT_TRUE(static_cast<const xcRegion&>(r).holes().empty());
    // The region measures do not see them: 16 with or without holes.
    EXPECT_DOUBLE_EQ(r.area(true), 16.0);
}

TEST(RegionT, EdgeletHolesAreNotCheckedAgainstTheOutline) {
    EdgeletRegion r(squareEdgelets(), 0);
    // A square crossing the outline, which the region part's setter would refuse.
    const EdgeletRegionHandle crossing(
        new EdgeletRegion({edgelet(3, 3), edgelet(6, 3), edgelet(6, 6), edgelet(3, 6)}, 0));
    r.holes(EdgeletRegion::HoleHandles{crossing});
    EXPECT_EQ(r.holes().size(), 1u);
}

TEST(RegionT, SettingEdgeletHolesDropsTheCaches) {
    EdgeletRegionProbe r(squareEdgelets(), 0);
    r.area(false);
    ASSERT_TRUE(r.regionCacheState().area[0].valid);
    r.holes(EdgeletRegion::HoleHandles());
    EXPECT_FALSE(r.regionCacheState().area[0].valid);
}

TEST(RegionT, SettingRegionHolesRebuildsTheEdgelets) {
    // The region's hole setter asks for the data to follow the outline, like any outline change.
    EdgeletRegion r(squareEdgelets(), 0);
    static_cast<xcRegion&>(r).holes(std::vector<RegionHandle>{regionOf(square(1, 1, 1))});
    EXPECT_EQ(r.data(), (Edgelets{edgelet(0, 0), edgelet(4, 0), edgelet(4, 4), edgelet(0, 4)}));
    EXPECT_EQ(static_cast<const xcRegion&>(r).holes().size(), 1u);
    EXPECT_DOUBLE_EQ(r.area(true), 15.0);  // 16 - 1
}

// ---- closed flag ----

TEST(RegionT, CloseIsANoOp) {
    EdgeletRegion r(squareEdgelets(), 0);
    r.isClosed(true);
    EXPECT_TRUE(r.isClosed());
    EXPECT_EQ(r.points(), square(0, 0, 4));
    EXPECT_EQ(r.data(), squareEdgelets());
}

TEST(RegionT, OpenThrowsAndLeavesTheRegionClosed) {
    EdgeletRegion r(squareEdgelets(), 0);
    expectThrowWith<xcContourDefs::RegionCannotBeSetOpen>(
        [&] { r.isClosed(false); }, xnErrorNumber::ContourRegionCannotBeSetOpen, L"");
    EXPECT_TRUE(r.isClosed());
}

TEST(RegionT, OpenThroughTheContourInterfaceThrows) {
    EdgeletRegion r;
    xcContour& asContour = r;
    EXPECT_THROW(asContour.isClosed(false), xcContourDefs::RegionCannotBeSetOpen);
    EXPECT_TRUE(asContour.isClosed());
}

// ---- consistency ----

TEST(RegionT, SettingPointsRebuildsTheEdgelets) {
    EdgeletRegion r(squareEdgelets(), 0);
    r.points(square(0, 0, 2));
    EXPECT_EQ(r.data(), (Edgelets{edgelet(0, 0), edgelet(2, 0), edgelet(2, 2), edgelet(0, 2)}));
    EXPECT_DOUBLE_EQ(r.area(false), 4.0);
}

TEST(RegionT, SettingEdgeletsRebuildsTheOutlineAndDropsTheRegionCaches) {
    EdgeletRegion r(squareEdgelets(), 0);
    EXPECT_DOUBLE_EQ(r.area(false), 16.0);
    r.data({edgelet(0, 0), edgelet(3, 0), edgelet(3, 3), edgelet(0, 3)});
    EXPECT_EQ(r.points(), square(0, 0, 3));
    EXPECT_DOUBLE_EQ(r.area(false), 9.0);
}

// ---- equality ----

TEST(RegionT, SharedTransformAndEqualOutlinesCompareEqualDespiteHoles) {
    const EdgeletRegion a(squareEdgelets(), 1);
    EdgeletRegion b(a);
    b.label(2);
    b.holes(EdgeletRegion::HoleHandles{EdgeletRegionHandle(new EdgeletRegion())});
    static_cast<xcRegion&>(b).holes(std::vector<RegionHandle>{regionOf(square(1, 1, 1))});
    ASSERT_EQ(a.dataFromPointsXform().rep(), b.dataFromPointsXform().rep());
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
}

TEST(RegionT, SeparatelyBuiltFromSameEdgeletsAreUnequal) {
    const XformHandle x = scaleTwoShift();
    const EdgeletRegion a(squareEdgelets(), x, 0);
    const EdgeletRegion b(squareEdgelets(), x, 0);
    EXPECT_FALSE(a == b);
    // As plain regions (outlines only) they are equal.
    EXPECT_TRUE(static_cast<const xcRegion&>(a) == static_cast<const xcRegion&>(b));
}

TEST(RegionT, DifferentOutlinesAreUnequal) {
    const EdgeletRegion a(squareEdgelets(), 0);
    EdgeletRegion b(a);
    b.points(square(0, 0, 2));
    EXPECT_FALSE(a == b);
}

// ---- operations not provided ----

TEST(RegionT, MapTThrowsBadWindow) {
    const EdgeletRegion r(squareEdgelets(), 0);
    EdgeletRegion out;
    expectBadWindow([&] { r.mapT(xcXform<2>::I, out); });
}

TEST(RegionT, RegularizeTThrowsBadWindow) {
    const EdgeletRegion r(squareEdgelets(), 0);
    EdgeletRegion out;
    expectBadWindow([&] { r.regularizeT(out); });
}

// ---- drawing ----

TEST(RegionT, QuarterTurnEdgeletAtTenTenDrawsFromTenHalfToNineHalf) {
    // Angle 64 is a quarter turn; minus a quarter turn gives 0 degrees: (10, 10) + 0.5 (1, 0)
    // and (10, 10) + 0.5 (cos 180, sin 180) = (9.5, 10 + 6e-17), which rounds to (9.5, 10).
    const EdgeletRegion r({edgelet(10, 10, 3, 64)}, 0);
    const auto strokes = strokesOf(r);
    ASSERT_EQ(strokes.size(), 1u);
    expectSegment(strokes[0], 10.5, 10, 9.5, 10, 0.0);
}

TEST(RegionT, ZeroAngleEdgeletDrawsAVerticalStroke) {
    // 0 - 64 = 192 steps (wrapped) = 270 degrees: (0, 0) + 0.5 (0, -1), then + 0.5 (0, 1).
    const EdgeletRegion r({edgelet(0, 0)}, 0);
    const auto strokes = strokesOf(r);
    ASSERT_EQ(strokes.size(), 1u);
    expectSegment(strokes[0], 0, -0.5, 0, 0.5, 1e-15);
}

TEST(RegionT, DiagonalEdgeletDrawsAPerpendicularStroke) {
    // Angle 32 = 45 degrees; 32 - 64 = 224 steps = 315 degrees; sqrt(0.125) = 0.35355339...
    const double h = std::sqrt(0.125);
    const EdgeletRegion r({edgelet(1, 2, 0, 32)}, 0);
    const auto strokes = strokesOf(r);
    ASSERT_EQ(strokes.size(), 1u);
    expectSegment(strokes[0], 1 + h, 2 - h, 1 - h, 2 + h, 1e-15);
}

TEST(RegionT, EveryAngleDrawsAUnitStrokeCentredAndPerpendicularToTheGradient) {
    // Independent construction: for a gradient g = (cos a, sin a) the stroke starts at
    // c + 0.5 (g.y, -g.x) (g turned back a quarter turn) and ends at c - 0.5 (g.y, -g.x).
    for (int step = 0; step < 256; ++step) {
        const double a = step * 2.0 * 3.141592653589793 / 256.0;
        const double gx = std::cos(a), gy = std::sin(a);
        const EdgeletRegion r({edgelet(-3, 7, 1, step)}, 0);
        const auto strokes = strokesOf(r);
        ASSERT_EQ(strokes.size(), 1u);
        SCOPED_TRACE(step);
        expectSegment(strokes[0], -3 + 0.5 * gy, 7 - 0.5 * gx, -3 - 0.5 * gy, 7 + 0.5 * gx, 1e-12);
    }
}

TEST(RegionT, DrawsOneStrokePerEdgeletInOrderAndNotTheOutline) {
    // The square's edgelets at angles 0, 64, 128, 192: the strokes turn with them.
    const EdgeletRegion r(squareEdgelets(), 0);
    const auto strokes = strokesOf(r);
    ASSERT_EQ(strokes.size(), 4u);
    expectSegment(strokes[0], 0, -0.5, 0, 0.5, 1e-15);
    expectSegment(strokes[1], 4.5, 0, 3.5, 0, 1e-15);
    expectSegment(strokes[2], 4, 4.5, 4, 3.5, 1e-15);
    expectSegment(strokes[3], -0.5, 4, 0.5, 4, 1e-15);
}

TEST(RegionT, DrawsNothingWithoutEdgeletsAndIgnoresHoles) {
    EdgeletRegion r;
    r.holes(EdgeletRegion::HoleHandles{EdgeletRegionHandle(new EdgeletRegion({edgelet(1, 1)}, 0))});
    EXPECT_TRUE(strokesOf(r).empty());
}

TEST(RegionT, ContourDrawOfAnEdgeletRegionDrawsTheOutline) {
    const EdgeletRegion r(squareEdgelets(), 0);
    xcRecordingTablet tablet;
    r.draw(tablet, xcContourDefs::drawNormal, kRed, kLayers);
    EXPECT_EQ(tablet.segments().size(), 4u);  // the four edges of the square
}

TEST(RegionT, RegionSetDrawsTheStrokesOfItsEdgeletRegions) {
    const RegionHandle a(new EdgeletRegion({edgelet(10, 10, 0, 64)}, 0));
    const RegionHandle plain = regionOf(square(0, 0, 1));
    const xcRegionSet set(std::vector<RegionHandle>{plain, a});
    xcRecordingTablet tablet;
    set.draw(tablet, kRed, kLayers);
    ASSERT_EQ(tablet.segments().size(), 1u);  // the plain region draws nothing
    expectSegment(tablet.segments()[0], 10.5, 10, 9.5, 10, 0.0);
}
