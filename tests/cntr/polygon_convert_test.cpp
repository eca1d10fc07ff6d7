#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <cntr/polygon.h>
#include <cntr/region.h>
#include <cntr/regionst.h>

#include "polygon_testing.h"

namespace {

using cntr::MultiPolygon;
using cntr::Polygon;
using cntr::Ring;

const Ring kBig = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Ring kFrame = {{1, 1}, {9, 1}, {9, 9}, {1, 9}};
const Ring kIsland = {{2, 2}, {8, 2}, {8, 8}, {2, 8}};
const Ring kLake = {{3, 3}, {7, 3}, {7, 7}, {3, 7}};
const Ring kSmall = {{4, 4}, {5, 4}, {5, 5}};

xcPtrHandle<xcRegion> regionOf(const Ring& outline, const std::vector<xcPtrHandle<xcRegion>>& holes = {}) {
    xcPtrHandle<xcRegion> region(new xcRegion(outline));
    if (!holes.empty())
        region->holes(holes);
    return region;
}

std::vector<Ring> holeRingsOf(const xcRegion& region) {
    std::vector<Ring> rings;
    for (const auto& hole : region.holes())
        rings.push_back(hole->points());
    return rings;
}

TEST(PolygonConvert, FromClosedAndOpenContours) {
    const Ring square = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
    EXPECT_EQ(Polygon::fromContour(xcContour(square, true)).exterior(), square);
    EXPECT_EQ(Polygon::fromContour(xcContour(square, false)).exterior(), square);
    Ring closing = square;
    closing.push_back(square.front());
    EXPECT_EQ(Polygon::fromContour(xcContour(closing, false)).exterior(), square);
    EXPECT_TRUE(Polygon::fromContour(xcContour(square, true)).holes().empty());
}

template <class Shape, class = void>
struct TakenByFromContour : std::false_type {};
template <class Shape>
struct TakenByFromContour<Shape, std::void_t<decltype(Polygon::fromContour(std::declval<const Shape&>()))>>
    : std::true_type {};

TEST(PolygonConvert, RegionsAreNotTakenAsContours) {
    // A region's holes would be lost; MultiPolygon::fromRegion is the conversion for it.
    static_assert(TakenByFromContour<xcContour>::value, "contours convert");
    static_assert(!TakenByFromContour<xcRegion>::value, "regions go through fromRegion");
    SUCCEED();
}

TEST(PolygonConvert, ContourWithNonFiniteVertexIsRefused) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_BAD_PARAMS(Polygon::fromContour(xcContour({{0, 0}, {1, 0}, {nan, 1}}, true)),
                      L"polygon ring 0 vertex 2 has a non-finite coordinate");
}

TEST(PolygonConvert, RegionWithHolesIsOneMember) {
    const auto region = regionOf(kBig, {regionOf(kFrame)});
    const MultiPolygon m = MultiPolygon::fromRegion(*region);
    ASSERT_EQ(m.memberCount(), 1u);
    EXPECT_EQ(m.members()[0], Polygon(kBig, {kFrame}));
    EXPECT_TRUE(m.isValid());
}

TEST(PolygonConvert, IslandsBecomeMembersDepthFirst) {
    // big - frame (hole) - island (the frame's hole) - lake (the island's hole) - small (the
    // lake's hole); and a second hole of big whose own hole comes after the first's chain.
    const auto lake = regionOf(kLake, {regionOf(kSmall)});
    const auto island = regionOf(kIsland, {lake});
    const Ring corner = {{9.5, 9.5}, {9.8, 9.5}, {9.8, 9.8}};
    const Ring cornerIsland = {{9.6, 9.55}, {9.7, 9.55}, {9.7, 9.65}};
    const auto region =
        regionOf(kBig, {regionOf(kFrame, {island}), regionOf(corner, {regionOf(cornerIsland)})});
    const MultiPolygon m = MultiPolygon::fromRegion(*region);
    ASSERT_EQ(m.memberCount(), 4u);
    EXPECT_EQ(m.members()[0], Polygon(kBig, {kFrame, corner}));
    EXPECT_EQ(m.members()[1], Polygon(kIsland, {kLake}));
    EXPECT_EQ(m.members()[2], Polygon(kSmall));
    EXPECT_EQ(m.members()[3], Polygon(cornerIsland));
    EXPECT_TRUE(m.isValid()) << ::testing::PrintToString(m.validity());
}

TEST(PolygonConvert, RegionSetMembersInOrder) {
    const auto a = regionOf(kBig, {regionOf(kFrame, {regionOf(kIsland)})});
    const auto b = regionOf({{20, 0}, {22, 0}, {21, 2}});
    const xcRegionSet set(xcRegionSet::MutableRegionHandles{a, b});
    const MultiPolygon m = MultiPolygon::fromRegionSet(set);
    ASSERT_EQ(m.memberCount(), 3u);
    EXPECT_EQ(m.members()[0], Polygon(kBig, {kFrame}));
    EXPECT_EQ(m.members()[1], Polygon(kIsland));
    EXPECT_EQ(m.members()[2], Polygon({{20, 0}, {22, 0}, {21, 2}}));
    EXPECT_EQ(MultiPolygon::fromRegionSet(xcRegionSet()).memberCount(), 0u);
}

TEST(PolygonConvert, RegionWithNonFiniteHoleIsRefused) {
    const double inf = std::numeric_limits<double>::infinity();
    const auto region = regionOf(kBig, {regionOf({{1, 1}, {2, 1}, {2, inf}})});
    EXPECT_BAD_PARAMS(MultiPolygon::fromRegion(*region),
                      L"polygon ring 1 vertex 2 has a non-finite coordinate");
}

TEST(PolygonConvert, ToRegionKeepsOutlineAndHoles) {
    const cntr::RegionConversion c = cntr::toRegion(Polygon(kBig, {kFrame}));
    EXPECT_EQ(c.region.points(), kBig);
    EXPECT_EQ(holeRingsOf(c.region), (std::vector<Ring>{kFrame}));
    EXPECT_TRUE(c.refused.empty());
    EXPECT_EQ(c.region.label(), 0u);
}

TEST(PolygonConvert, HolesTheRegionRefusesComeAlong) {
    // Hole 0 crosses the outline; hole 1 touches it at (0, 5) (the region's crossing test
    // counts touches); hole 2 lies inside.
    const Ring crossing = {{8, 8}, {12, 8}, {12, 9}};
    const Ring touching = {{0, 5}, {2, 4}, {2, 6}};
    const Ring inside = {{4, 4}, {6, 4}, {5, 6}};
    const cntr::RegionConversion c = cntr::toRegion(Polygon(kBig, {crossing, touching, inside}));
    EXPECT_EQ(holeRingsOf(c.region), (std::vector<Ring>{inside}));
    ASSERT_EQ(c.refused.size(), 2u);
    EXPECT_EQ(c.refused[0].member, 0u);
    EXPECT_EQ(c.refused[0].hole, 0u);
    EXPECT_EQ(c.refused[0].ring, crossing);
    EXPECT_EQ(c.refused[1].hole, 1u);
    EXPECT_EQ(c.refused[1].ring, touching);
}

TEST(PolygonConvert, DegenerateExteriorRefusesEveryHole) {
    const cntr::RegionConversion c = cntr::toRegion(Polygon({{1, 1}}, {kSmall}));
    EXPECT_TRUE(c.region.holes().empty());
    ASSERT_EQ(c.refused.size(), 1u);
    EXPECT_EQ(c.refused[0].ring, kSmall);
}

TEST(PolygonConvert, ToRegionSetOneRegionPerMember) {
    const Ring crossing = {{21, 1}, {25, 1}, {25, 2}};
    const MultiPolygon m({Polygon(kBig, {kFrame}), Polygon({{20, 0}, {22, 0}, {21, 2}}, {crossing})});
    cntr::RegionSetConversion c = cntr::toRegionSet(m);
    const xcRegionSet::RegionHandles regions = c.set.regions();
    ASSERT_EQ(regions.size(), 2u);
    EXPECT_EQ(regions[0]->points(), kBig);
    EXPECT_EQ(holeRingsOf(*regions[0]), (std::vector<Ring>{kFrame}));
    EXPECT_EQ(regions[1]->points(), (Ring{{20, 0}, {22, 0}, {21, 2}}));
    EXPECT_TRUE(regions[1]->holes().empty());
    ASSERT_EQ(c.refused.size(), 1u);
    EXPECT_EQ(c.refused[0].member, 1u);
    EXPECT_EQ(c.refused[0].hole, 0u);
    EXPECT_EQ(c.refused[0].ring, crossing);
}

TEST(PolygonConvert, RegionSetRoundTrip) {
    const auto a = regionOf(kBig, {regionOf(kFrame)});
    const auto b = regionOf({{20, 0}, {22, 0}, {21, 2}});
    const xcRegionSet set(xcRegionSet::MutableRegionHandles{a, b});
    const MultiPolygon m = MultiPolygon::fromRegionSet(set);
    cntr::RegionSetConversion back = cntr::toRegionSet(m);
    EXPECT_TRUE(back.refused.empty());
    EXPECT_TRUE(back.set == set);
    EXPECT_EQ(MultiPolygon::fromRegionSet(back.set), m);
}

}  // namespace
