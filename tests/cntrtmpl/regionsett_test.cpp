#include <memory>

#include <gtest/gtest.h>

#include <cntrtmpl/regionsett.h>
#include <foundation/persistent.h>
#include <foundation/tablet.h>

#include "cntr/region_testing.h"
#include "edgelet_testing.h"

using EdgeletRegion = xcRegionT<xcEdgelet>;
using EdgeletRegionSet = xcRegionSetT<xcEdgelet>;
using EdgeletRegionHandle = xcPtrHandle_const<EdgeletRegion>;
using EdgeletRegionHandles = EdgeletRegionSet::RegionTHandles;

namespace {

// Exposes the region part's cache view.
class EdgeletRegionProbe : public EdgeletRegion {
  public:
    using EdgeletRegion::EdgeletRegion;
    using xcRegion::regionCacheState;
};

// Exposes the protected consistency hooks.
class EdgeletRegionSetProbe : public EdgeletRegionSet {
  public:
    using EdgeletRegionSet::EdgeletRegionSet;
    using EdgeletRegionSet::makeDataConsistentWithPoints;
    using EdgeletRegionSet::makePointsConsistentWithData;
};

// An edgelet region on the corners of the axis-aligned square of side `side` at (x, y), with
// edgelets of magnitude 50.
EdgeletRegionHandle edgeletSquare(double x, double y, double side) {
    Edgelets data;
    for (const xcVector<2>& p : square(x, y, side))
        data.push_back(edgelet(p.x(), p.y(), 50, 64));
    return EdgeletRegionHandle(new EdgeletRegion(data, 0));
}

// Whether region handle i of the base set refers to the very object of edgelet region i.
void expectBaseIsRegionsT(EdgeletRegionSet& s) {
    const EdgeletRegionHandles edgeletRegions = s.regionsT();
    const xcRegionSet::RegionHandles base = s.regions();
    ASSERT_EQ(base.size(), edgeletRegions.size());
    for (std::size_t i = 0; i < base.size(); ++i)
        EXPECT_EQ(base[i].rep(), static_cast<const xcRegion*>(edgeletRegions[i].rep())) << i;
}

}  // namespace

// ---- construction ----

TEST(RegionSetT, DefaultIsEmpty) {
    EdgeletRegionSet s;
    EXPECT_TRUE(s.regionsT().empty());
    EXPECT_TRUE(s.regions().empty());
    EXPECT_EQ(s.cachedVectorSize(), 3);
}

TEST(RegionSetT, FactoryIsRegisteredUnderStableNameAndMakesDefault) {
    const std::unique_ptr<EdgeletRegionSet> s =
        madeByFactory<EdgeletRegionSet>("xcRegionSetT<xcEdgelet>");
    ASSERT_NE(s, nullptr);
    EXPECT_TRUE(s->regionsT().empty());
    EXPECT_TRUE(s->regions().empty());
}

TEST(RegionSetT, BuiltFromTwoRegionsHoldsThemAsBaseRegions) {
    const EdgeletRegionHandle a = edgeletSquare(0, 0, 2);
    const EdgeletRegionHandle b = edgeletSquare(5, 5, 3);
    EdgeletRegionSet s(EdgeletRegionHandles{a, b});
    ASSERT_EQ(s.regions().size(), 2u);
    EXPECT_EQ(s.regions()[0].rep(), static_cast<const xcRegion*>(a.rep()));
    EXPECT_EQ(s.regions()[1].rep(), static_cast<const xcRegion*>(b.rep()));
    expectBaseIsRegionsT(s);
}

TEST(RegionSetT, AreaMeasuresThoseSameTwoRegions) {
    const xcPtrHandle<EdgeletRegionProbe> a(
        new EdgeletRegionProbe({edgelet(0, 0), edgelet(2, 0), edgelet(2, 2), edgelet(0, 2)}, 0));
    const xcPtrHandle<EdgeletRegionProbe> b(
        new EdgeletRegionProbe({edgelet(5, 5), edgelet(8, 5), edgelet(8, 8), edgelet(5, 8)}, 0));
    const EdgeletRegionSet s(EdgeletRegionHandles{a, b});
    ASSERT_FALSE(a->regionCacheState().area[0].valid);
    EXPECT_DOUBLE_EQ(s.area(false), 13.0);  // 2 * 2 + 3 * 3
    // The set asked the very objects: their own area caches are filled now.
    EXPECT_TRUE(a->regionCacheState().area[0].valid);
    EXPECT_TRUE(b->regionCacheState().area[0].valid);
}

TEST(RegionSetT, BuiltFromMutableHandlesHoldsTheSameObjects) {
    const xcPtrHandle<EdgeletRegion> a(
        new EdgeletRegion({edgelet(0, 0), edgelet(1, 0), edgelet(0, 1)}, 1));
    EdgeletRegionSet s(std::vector<xcPtrHandle<EdgeletRegion>>{a});
    ASSERT_EQ(s.regionsT().size(), 1u);
    EXPECT_EQ(s.regionsT()[0].rep(), a.rep());
    expectBaseIsRegionsT(s);
}

TEST(RegionSetT, NullRegionIsRefused) {
    expectThrowWith<xcContourDefs::BadParams>(
        [] {
            EdgeletRegionSet(EdgeletRegionHandles{edgeletSquare(0, 0, 1), EdgeletRegionHandle()});
        },
        xnErrorNumber::ContourBadParams, L"region set cannot hold a null region");
}

TEST(RegionSetT, RegionsTIsACopyOfTheHandles) {
    const EdgeletRegionHandle a = edgeletSquare(0, 0, 1);
    const EdgeletRegionSet s(EdgeletRegionHandles{a});
    EdgeletRegionHandles copy = s.regionsT();
    copy.clear();
    ASSERT_EQ(s.regionsT().size(), 1u);
    EXPECT_EQ(s.regionsT()[0].rep(), a.rep());
}

// ---- copying and equality ----

TEST(RegionSetT, CopySharesBothLists) {
    const EdgeletRegionHandle a = edgeletSquare(0, 0, 1);
    EdgeletRegionSet source(EdgeletRegionHandles{a});
    EdgeletRegionSet copy(source);
    EXPECT_EQ(copy.regionsT()[0].rep(), a.rep());
    EXPECT_EQ(copy.regions()[0].rep(), source.regions()[0].rep());
    EXPECT_TRUE(copy == source);
    expectBaseIsRegionsT(copy);
}

TEST(RegionSetT, AssignmentSharesBothLists) {
    const EdgeletRegionHandle a = edgeletSquare(0, 0, 1);
    const EdgeletRegionSet source(EdgeletRegionHandles{a});
    EdgeletRegionSet target(EdgeletRegionHandles{edgeletSquare(3, 3, 1), edgeletSquare(6, 6, 1)});
    target = source;
    ASSERT_EQ(target.regionsT().size(), 1u);
    EXPECT_EQ(target.regionsT()[0].rep(), a.rep());
    expectBaseIsRegionsT(target);
}

TEST(RegionSetT, SelfAssignmentChangesNothing) {
    const EdgeletRegionHandle a = edgeletSquare(0, 0, 1);
    EdgeletRegionSet s(EdgeletRegionHandles{a});
    EdgeletRegionSet& same = s;
    s = same;
    ASSERT_EQ(s.regionsT().size(), 1u);
    expectBaseIsRegionsT(s);
}

TEST(RegionSetT, EqualityComparesTheBaseRegionsByOutline) {
    // Separately built edgelet regions differ as edgelet regions (each cloned its transform)
    // but their outlines are equal, and the set compares outlines.
    const EdgeletRegionHandle a1 = edgeletSquare(0, 0, 1), a2 = edgeletSquare(0, 0, 1);
    const EdgeletRegionHandle b1 = edgeletSquare(4, 0, 2), b2 = edgeletSquare(4, 0, 2);
    ASSERT_FALSE(*a1 == *a2);
    const EdgeletRegionSet s1(EdgeletRegionHandles{a1, b1});
    const EdgeletRegionSet s2(EdgeletRegionHandles{a2, b2});
    EXPECT_TRUE(s1 == s2);
    EXPECT_FALSE(s1 != s2);
}

TEST(RegionSetT, EqualityIsPositional) {
    const EdgeletRegionHandle a = edgeletSquare(0, 0, 1);
    const EdgeletRegionHandle b = edgeletSquare(4, 0, 2);
    EXPECT_FALSE(EdgeletRegionSet(EdgeletRegionHandles{a, b}) ==
                 EdgeletRegionSet(EdgeletRegionHandles{b, a}));
}

// ---- consistency ----

TEST(RegionSetT, ReplacingTheBaseRegionsRebuildsNewEdgeletRegionsFromTheirOutlines) {
    const EdgeletRegionHandle original = edgeletSquare(0, 0, 1);
    EdgeletRegionSet s(EdgeletRegionHandles{original});
    const RegionHandle plain = regionOf(square(2, 2, 4));
    plain->holes(std::vector<RegionHandle>{regionOf(square(3, 3, 1))});
    s.regions(std::vector<RegionHandle>{plain}, xcContourDefs::keepOutline);

    const EdgeletRegionHandles rebuilt = s.regionsT();
    ASSERT_EQ(rebuilt.size(), 1u);
    EXPECT_NE(rebuilt[0].rep(), original.rep());
    EXPECT_EQ(rebuilt[0]->points(), square(2, 2, 4));
    // Edgelets at the outline points (no transform: the identity), magnitude 0, angle 0.
    EXPECT_EQ(rebuilt[0]->data(),
              (Edgelets{edgelet(2, 2), edgelet(6, 2), edgelet(6, 6), edgelet(2, 6)}));
    EXPECT_TRUE(rebuilt[0]->dataFromPointsXform().isNull());
    EXPECT_TRUE(static_cast<const xcRegion&>(*rebuilt[0]).holes().empty());  // not carried over
    EXPECT_TRUE(rebuilt[0]->holes().empty());
    // The base set keeps the region it was given.
    EXPECT_EQ(s.regions()[0].rep(), plain.rep());
}

TEST(RegionSetT, AddRebuildsEveryEdgeletRegion) {
    const EdgeletRegionHandle first = edgeletSquare(0, 0, 1);
    EdgeletRegionSet s(EdgeletRegionHandles{first});
    s.add(RegionHandle(regionOf(square(5, 0, 2))), xcContourDefs::keepOutline);
    const EdgeletRegionHandles rebuilt = s.regionsT();
    ASSERT_EQ(rebuilt.size(), 2u);
    EXPECT_NE(rebuilt[0].rep(), first.rep());
    EXPECT_EQ(rebuilt[0]->points(), square(0, 0, 1));
    EXPECT_EQ(rebuilt[0]->data()[0], edgelet(0, 0));  // magnitude 50, angle 64 are not kept
    EXPECT_EQ(rebuilt[1]->points(), square(5, 0, 2));
}

TEST(RegionSetT, HooksBringTheBaseSetToTheEdgeletRegions) {
    EdgeletRegionSetProbe s(EdgeletRegionHandles{edgeletSquare(0, 0, 1)});
    s.regions(std::vector<RegionHandle>{regionOf(square(2, 2, 1)), regionOf(square(5, 5, 1))},
              xcContourDefs::keepOutline);
    s.makePointsConsistentWithData();
    expectBaseIsRegionsT(s);
    EXPECT_EQ(s.regions()[1]->points(), square(5, 5, 1));
    s.makeDataConsistentWithPoints();
    ASSERT_EQ(s.regionsT().size(), 2u);
    EXPECT_EQ(s.regionsT()[0]->points(), square(2, 2, 1));
}

TEST(RegionSetT, ReplacingTheRegionsDropsTheCaches) {
    EdgeletRegionSet s(EdgeletRegionHandles{edgeletSquare(0, 0, 2)});
    EXPECT_DOUBLE_EQ(s.area(false), 4.0);
    s.regions(std::vector<RegionHandle>{regionOf(square(0, 0, 3))}, xcContourDefs::keepOutline);
    EXPECT_DOUBLE_EQ(s.area(false), 9.0);
}

// ---- operations not provided and drawing ----

TEST(RegionSetT, MapTThrowsBadWindow) {
    const EdgeletRegionSet s(EdgeletRegionHandles{edgeletSquare(0, 0, 1)});
    EdgeletRegionSet out;
    expectBadWindow([&] { s.mapT(xcXform<2>::I, out); });
}

TEST(RegionSetT, RegularizeTThrowsBadWindow) {
    const EdgeletRegionSet s(EdgeletRegionHandles{edgeletSquare(0, 0, 1)});
    EdgeletRegionSet out;
    expectBadWindow([&] { s.regularizeT(out); });
}

TEST(RegionSetT, DrawsTheStrokesOfEachRegionInOrder) {
    const EdgeletRegionSet s(EdgeletRegionHandles{
        EdgeletRegionHandle(new EdgeletRegion({edgelet(10, 10, 1, 64)}, 0)),
        EdgeletRegionHandle(new EdgeletRegion({edgelet(0, 0, 1, 64), edgelet(2, 0, 1, 64)}, 0))});
    xcRecordingTablet tablet;
    s.draw(tablet, xcColor(), xcUITablet::Layers());
    ASSERT_EQ(tablet.segments().size(), 3u);
    // Angle 64: strokes from position + (0.5, 0) to position - (0.5, 0).
    EXPECT_EQ(tablet.segments()[0].p1.x(), 10.5);
    EXPECT_EQ(tablet.segments()[1].p1.x(), 0.5);
    EXPECT_EQ(tablet.segments()[2].p2.x(), 1.5);
}
