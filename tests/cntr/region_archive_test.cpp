#include <string>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <foundation/archive.h>

#include "archive_bytes.h"
#include "region_testing.h"

using testbytes::Bytes;
using testbytes::expectUnknownVersion;

namespace {

// A probe that the archive can create by name, so that reloaded regions can be inspected, and
// that exposes the record of its region part.
class StoredRegion : public RegionProbe {
  public:
    StoredRegion() = default;
    explicit StoredRegion(const Points& p) : xcContour(p, true, 0), RegionProbe(p) {}
    using xcRegion::dispatchSerialize;
    using xcRegion::serialize_;
    static xcPersistent* make() { return new StoredRegion(); }
};
const xc_Instantiator storedRegionExemplar(typeid(StoredRegion), &StoredRegion::make);

Bytes storeRegions(const std::vector<RegionHandle>& handles) {
    xcMemoryArchive out;
    for (RegionHandle h : handles)
        out || h;
    return out.bytes();
}

std::vector<RegionHandle> loadRegions(const Bytes& bytes, std::size_t count) {
    xcMemoryArchive in(bytes);
    std::vector<RegionHandle> result(count);
    for (RegionHandle& h : result)
        in || h;
    return result;
}

// A version-1 region record: version 1, the contour record (closed, memo limit 3), then the
// hole vector's format byte and count; the caller appends the hole records.
void regionRecordV1(Bytes& b, std::uint32_t label, const Points& p, std::uint32_t holeCount) {
    testbytes::u8(b, 1);
    testbytes::contourRecordV1(b, label, true, p, 3);
    testbytes::u8(b, 0);
    testbytes::u32(b, holeCount);
}

// A version-0 region record: version 0, the legacy base (its version byte and the xcPersistent
// byte) unless already read in this archive, the points, a flag byte and the memo limit.
void regionRecordV0(Bytes& b, const Points& p, std::int32_t cvs, bool withBase = true,
                    unsigned baseVersion = 0) {
    testbytes::u8(b, 0);
    if (withBase) {
        testbytes::u8(b, baseVersion);
        testbytes::u8(b, 0);
    }
    testbytes::pointVector(b, p);
    testbytes::u8(b, 0x5A);
    testbytes::u32(b, static_cast<std::uint32_t>(cvs));
}

}  // namespace

// ---- layout ----

TEST(RegionArchive, RecordLayoutWithoutHoles) {
    const Points p{{0, 0}, {1, 0}, {0, 1}};
    const RegionHandle r = regionOf(p);
    r->label(7);
    Bytes expected = testbytes::header();
    testbytes::newObject(expected, "xcRegion");
    regionRecordV1(expected, 7, p, 0);
    EXPECT_EQ(storeRegions({r}), expected);
}

TEST(RegionArchive, RecordLayoutWithSharedHole) {
    // Two regions sharing one hole: the hole's record is written inside the first region's
    // record; the second region refers back to it (object 1: the first region is object 0).
    const RegionHandle hole = regionOf(square(1, 1, 1));
    const RegionHandle a = regionOf(square(0, 0, 4));
    const RegionHandle b = regionOf(square(0, 0, 5));
    a->holes(std::vector<RegionHandle>{hole});
    b->holes(std::vector<RegionHandle>{hole});

    Bytes expected = testbytes::header();
    testbytes::newObject(expected, "xcRegion");
    regionRecordV1(expected, 0, square(0, 0, 4), 1);
    testbytes::newObject(expected, "xcRegion");
    regionRecordV1(expected, 0, square(1, 1, 1), 0);
    testbytes::newObject(expected, "xcRegion");
    regionRecordV1(expected, 0, square(0, 0, 5), 1);
    testbytes::u8(expected, 2);
    testbytes::u32(expected, 1);
    EXPECT_EQ(storeRegions({a, b}), expected);
}

// ---- round trips ----

TEST(RegionArchive, StoredAndReloadedRegionIsEqualWithLabelAndHoles) {
    const RegionHandle r = regionOf(square(0, 0, 10));
    r->label(99);
    r->cachedVectorSize(5);
    r->holes(std::vector<RegionHandle>{regionOf(square(1, 1, 2)), regionOf(square(5, 5, 3))});
    const RegionHandle back = loadRegions(storeRegions({r}), 1)[0];
    ASSERT_FALSE(back.isNull());
    EXPECT_NE(back.rep(), r.rep());
    EXPECT_EQ(*back, *r);
    EXPECT_EQ(back->label(), 99u);
    EXPECT_EQ(back->cachedVectorSize(), 5);
    ASSERT_EQ(back->holes().size(), 2u);
    EXPECT_EQ(back->holes()[0]->points(), square(1, 1, 2));
    EXPECT_EQ(back->holes()[1]->points(), square(5, 5, 3));
    // 100 - 4 - 9
    EXPECT_DOUBLE_EQ(back->area(true), 87.0);
}

TEST(RegionArchive, SharedHolesStaySharedAfterReload) {
    const RegionHandle hole = regionOf(square(1, 1, 1));
    const RegionHandle a = regionOf(square(0, 0, 4));
    const RegionHandle b = regionOf(square(0, 0, 5));
    a->holes(std::vector<RegionHandle>{hole});
    b->holes(std::vector<RegionHandle>{hole, regionOf(square(3, 3, 1))});
    std::vector<RegionHandle> back = loadRegions(storeRegions({a, b}), 2);
    ASSERT_EQ(back[0]->holes().size(), 1u);
    ASSERT_EQ(back[1]->holes().size(), 2u);
    EXPECT_EQ(back[0]->holes()[0].rep(), back[1]->holes()[0].rep());
    EXPECT_NE(back[1]->holes()[0].rep(), back[1]->holes()[1].rep());
    // Held by the two regions only, once the archive has let go.
    EXPECT_EQ(back[0]->holes()[0]->refCount(), 2);
}

TEST(RegionArchive, SameHoleTwiceInOneRegionStaysOneObject) {
    const RegionHandle hole = regionOf(square(1, 1, 1));
    const RegionHandle r = regionOf(square(0, 0, 4));
    r->holes(std::vector<RegionHandle>{hole, hole});
    const RegionHandle back = loadRegions(storeRegions({r}), 1)[0];
    ASSERT_EQ(back->holes().size(), 2u);
    EXPECT_EQ(back->holes()[0].rep(), back->holes()[1].rep());
}

TEST(RegionArchive, IslandInHoleRoundTrip) {
    const RegionHandle hole = regionOf(square(2, 2, 6));
    hole->holes(std::vector<RegionHandle>{regionOf(square(4, 4, 2))});
    const RegionHandle r = regionOf(square(0, 0, 10));
    r->holes(std::vector<RegionHandle>{hole});
    const RegionHandle back = loadRegions(storeRegions({r}), 1)[0];
    ASSERT_EQ(back->holes().size(), 1u);
    ASSERT_EQ(back->holes()[0]->holes().size(), 1u);
    EXPECT_EQ(back->holes()[0]->holes()[0]->points(), square(4, 4, 2));
    EXPECT_TRUE(back->inside(xcVector<2>(5, 5), true));
    EXPECT_FALSE(back->inside(xcVector<2>(3, 3), true));
}

TEST(RegionArchive, ConstHandleRoundTrip) {
    const ConstRegionHandle h(regionOf(square(0, 0, 2)));
    xcMemoryArchive out;
    ConstRegionHandle stored = h;
    out || stored;
    xcMemoryArchive in(out.bytes());
    ConstRegionHandle back;
    in || back;
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(*back, *h);
}

TEST(RegionArchive, RegionReadThroughContourHandleKeepsItsClass) {
    const RegionHandle r = regionOf(square(0, 0, 2));
    xcMemoryArchive out;
    xcPtrHandle<xcContour> asContour(r);
    out || asContour;
    xcMemoryArchive in(out.bytes());
    xcPtrHandle<xcContour> back;
    in || back;
    EXPECT_NE(dynamic_cast<const xcRegion*>(back.rep()), nullptr);
}

TEST(RegionArchive, ReloadedRegionHasEmptyCaches) {
    const RegionHandle h(new StoredRegion(square(0, 0, 3)));
    h->area(false);
    h->length();
    const RegionHandle back = loadRegions(storeRegions({h}), 1)[0];
    const auto* probe = dynamic_cast<const StoredRegion*>(back.rep());
    ASSERT_NE(probe, nullptr);
    EXPECT_FALSE(probe->regionCacheState().area[0].valid);
    EXPECT_FALSE(probe->cacheState().length.valid);
}

TEST(RegionArchive, LoadingIntoFilledRegionDropsItsCachesAndHoles) {
    StoredRegion source(square(0, 0, 3));
    source.label(4);
    xcMemoryArchive out;
    source.dispatchSerialize(out);

    StoredRegion target(square(0, 0, 10));
    target.holes(std::vector<RegionHandle>{regionOf(square(1, 1, 1))});
    target.area(true);
    target.centerOfMass(false);
    const int before = target.cleanCalls;
    xcMemoryArchive in(out.bytes());
    target.loadSimple(in);
    EXPECT_EQ(target, source);
    EXPECT_EQ(target.label(), 4u);
    EXPECT_TRUE(target.holes().empty());
    EXPECT_GT(target.cleanCalls, before);
    EXPECT_FALSE(target.regionCacheState().area[1].valid);
    EXPECT_FALSE(target.regionCacheState().center[0].valid);
    EXPECT_DOUBLE_EQ(target.area(true), 9.0);
}

// ---- versions ----

TEST(RegionArchive, UnknownVersionNamesSourceAndLine) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    testbytes::u8(b, 2);
    expectUnknownVersion([&] { loadRegions(b, 1); }, "cntr/region", 822);
}

TEST(RegionArchive, StoringVersionZeroIsRefused) {
    StoredRegion r(square(0, 0, 1));
    xcMemoryArchive out;
    expectUnknownVersion([&] { r.serialize_(out, 0); }, "cntr/region", 822);
}

TEST(RegionArchive, VersionZeroRecordLoadsOutlineWithoutHoles) {
    const Points p{{1, 1}, {4, 1}, {2, 5}};
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    regionRecordV0(b, p, 6);
    const RegionHandle r = loadRegions(b, 1)[0];
    ASSERT_FALSE(r.isNull());
    EXPECT_EQ(r->points(), p);
    EXPECT_EQ(r->cachedVectorSize(), 6);
    EXPECT_EQ(r->label(), 0u);
    EXPECT_TRUE(r->isClosed());
    EXPECT_TRUE(r->holes().empty());
    // Base 3, height 4: 6.
    EXPECT_DOUBLE_EQ(r->area(false), 6.0);
}

TEST(RegionArchive, VersionZeroLegacyBaseIsReadOncePerArchive) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    regionRecordV0(b, square(0, 0, 1), 3);
    testbytes::newObject(b, "xcRegion");
    regionRecordV0(b, square(0, 0, 2), 4, false);
    const std::vector<RegionHandle> r = loadRegions(b, 2);
    EXPECT_EQ(r[0]->points(), square(0, 0, 1));
    EXPECT_EQ(r[1]->points(), square(0, 0, 2));
    EXPECT_EQ(r[1]->cachedVectorSize(), 4);
}

TEST(RegionArchive, VersionZeroLegacyBaseWithUnknownVersionIsRefused) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    regionRecordV0(b, square(0, 0, 1), 3, true, 1);
    expectUnknownVersion([&] { loadRegions(b, 1); }, "cntr/region", 822);
}

TEST(RegionArchive, VersionZeroWithNegativeMemoLimitIsRefused) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    regionRecordV0(b, square(0, 0, 1), -1);
    expectBadParams([&] { loadRegions(b, 1); }, L"");
}

// ---- corrupt records ----

TEST(RegionArchive, HoleOfAnotherClassIsRefused) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    regionRecordV1(b, 0, square(0, 0, 4), 1);
    testbytes::newObject(b, "xcContour");
    testbytes::contourRecordV1(b, 0, true, square(1, 1, 1), 3);
    EXPECT_THROW(loadRegions(b, 1), xcArchive::BadData);
}

TEST(RegionArchive, NullHoleIsRefused) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    regionRecordV1(b, 0, square(0, 0, 4), 1);
    testbytes::u8(b, 0);
    EXPECT_THROW(loadRegions(b, 1), xcArchive::BadData);
}

TEST(RegionArchive, TruncatedRecordThrowsArchiveError) {
    Bytes b = storeRegions({regionOf(square(0, 0, 4))});
    b.resize(b.size() - 3);
    EXPECT_THROW(loadRegions(b, 1), xcArchive::Truncated);
}

TEST(RegionArchive, HugeHoleCountIsRefusedBeforeAllocating) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    regionRecordV1(b, 0, square(0, 0, 4), 0xFFFFFFFFu);
    EXPECT_THROW(loadRegions(b, 1), xcArchive::CountTooLarge);
}

TEST(RegionArchive, RegionAsItsOwnHoleIsRefused) {
    // The hole refers back to the region whose record is not complete yet.
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegion");
    regionRecordV1(b, 0, square(0, 0, 4), 1);
    testbytes::u8(b, 2);
    testbytes::u32(b, 0);
    EXPECT_THROW(loadRegions(b, 1), xcArchive::BadReference);
}
