#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/archive.h>

#include "archive_bytes.h"
#include "regionst_testing.h"

using Defs = xcContourDefs;
using testbytes::Bytes;
using testbytes::expectUnknownVersion;
using SetHandle = xcPtrHandle<xcRegionSet>;

namespace {

// A set probe that exposes its own record, for loading in place.
class StoredSetProbe : public RegionSetProbe {
  public:
    using RegionSetProbe::RegionSetProbe;
    using xcRegionSet::dispatchSerialize;
};

Bytes storeSets(const std::vector<SetHandle>& sets) {
    xcMemoryArchive out;
    for (SetHandle s : sets)
        out || s;
    return out.bytes();
}

std::vector<SetHandle> loadSets(const Bytes& bytes, std::size_t count) {
    xcMemoryArchive in(bytes);
    std::vector<SetHandle> sets(count);
    for (SetHandle& s : sets)
        in || s;
    return sets;
}

// A region written as a new object: the pointer record's head, the region's version 1, the
// contour record (version 1, the xcPersistent byte, label, closed flag, points, limit) and an
// empty holes vector record.
void regionObject(Bytes& b, std::uint32_t label, const Points& p, std::int32_t limit) {
    testbytes::newObject(b, "xcRegion");
    testbytes::u8(b, 1);
    testbytes::contourRecordV1(b, label, true, p, limit);
    testbytes::u8(b, 0);
    testbytes::u32(b, 0);
}

// The head of a set record: the set's version byte, the xcPersistent byte and the head of the
// regions vector record (format 0, the count).
void setHead(Bytes& b, unsigned version, std::uint32_t count) {
    testbytes::u8(b, version);
    testbytes::u8(b, 0);
    testbytes::u8(b, 0);
    testbytes::u32(b, count);
}

}  // namespace

TEST(RegionSetArchive, RecordLayoutOfVersionOne) {
    const Points outline = rectangle(0, 0, 2, 1);
    const RegionHandle r = regionOf(outline);
    r->label(4);
    SetHandle s(new xcRegionSet(RegionHandles{ConstRegionHandle(r)}, Defs::keepOutline));
    s->cachedVectorSize(6);

    Bytes expected = testbytes::header();
    testbytes::newObject(expected, "xcRegionSet");
    setHead(expected, 1, 1);
    regionObject(expected, 4, outline, 3);
    testbytes::u32(expected, 6);
    EXPECT_EQ(storeSets({s}), expected);
}

TEST(RegionSetArchive, StoredAndReloadedSetIsEqualWithItsLimit) {
    SetHandle s(new xcRegionSet(RegionHandles{ConstRegionHandle(box(0, 0, 1, 1)),
                                              ConstRegionHandle(regionWithHole(
                                                  rectangle(5, 5, 9, 9), rectangle(6, 6, 7, 7)))},
                                Defs::keepOutline));
    s->cachedVectorSize(0);
    const SetHandle back = loadSets(storeSets({s}), 1)[0];
    ASSERT_FALSE(back.isNull());
    EXPECT_NE(back.rep(), s.rep());
    EXPECT_EQ(*back, *s);
    EXPECT_EQ(back->cachedVectorSize(), 0);
    ASSERT_EQ(back->regions().size(), 2u);
    EXPECT_EQ(back->regions()[1]->holes().size(), 1u);
    // 1 + (16 - 1)
    EXPECT_EQ(back->area(true), 16.0);
}

TEST(RegionSetArchive, EmptySetRoundTrips) {
    SetHandle s(new xcRegionSet());
    const SetHandle back = loadSets(storeSets({s}), 1)[0];
    ASSERT_FALSE(back.isNull());
    EXPECT_TRUE(back->regions().empty());
    EXPECT_EQ(back->cachedVectorSize(), 3);
}

TEST(RegionSetArchive, RegionsSharedWithAnotherSetStayShared) {
    const RegionHandle a = box(0, 0, 1, 1), shared = box(2, 0, 3, 1), c = box(4, 0, 5, 1);
    SetHandle first(new xcRegionSet(RegionHandles{ConstRegionHandle(a), ConstRegionHandle(shared)},
                                    Defs::keepOutline));
    SetHandle second(new xcRegionSet(RegionHandles{ConstRegionHandle(shared), ConstRegionHandle(c)},
                                     Defs::keepOutline));
    const std::vector<SetHandle> back = loadSets(storeSets({first, second}), 2);
    const RegionHandles r1 = back[0]->regions();
    const RegionHandles r2 = back[1]->regions();
    ASSERT_EQ(r1.size(), 2u);
    ASSERT_EQ(r2.size(), 2u);
    EXPECT_EQ(r1[1].rep(), r2[0].rep());
    EXPECT_NE(r1[0].rep(), r2[1].rep());
    EXPECT_EQ(*r1[1], *shared);
    EXPECT_EQ(*r2[1], *c);
}

TEST(RegionSetArchive, ARegionHeldTwiceIsStoredOnce) {
    const Points outline = rectangle(0, 0, 1, 1);
    const RegionHandle r = regionOf(outline);
    SetHandle s(new xcRegionSet(RegionHandles{ConstRegionHandle(r), ConstRegionHandle(r)},
                                Defs::keepOutline));

    // The second element is a back-reference (tag 2) to counted object 1 (the set is 0).
    Bytes expected = testbytes::header();
    testbytes::newObject(expected, "xcRegionSet");
    setHead(expected, 1, 2);
    regionObject(expected, 0, outline, 3);
    testbytes::u8(expected, 2);
    testbytes::u32(expected, 1);
    testbytes::u32(expected, 3);
    EXPECT_EQ(storeSets({s}), expected);

    const SetHandle back = loadSets(expected, 1)[0];
    ASSERT_EQ(back->regions().size(), 2u);
    EXPECT_EQ(back->regions()[0].rep(), back->regions()[1].rep());
}

TEST(RegionSetArchive, ASetReachedTwiceIsStoredOnce) {
    SetHandle s(
        new xcRegionSet(RegionHandles{ConstRegionHandle(box(0, 0, 1, 1))}, Defs::keepOutline));
    const std::vector<SetHandle> back = loadSets(storeSets({s, s}), 2);
    EXPECT_EQ(back[0].rep(), back[1].rep());
}

TEST(RegionSetArchive, VersionZeroRecordLoadsWithLimitThree) {
    const Points outline{{0, 0}, {3, 0}, {0, 4}};
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegionSet");
    setHead(b, 0, 1);
    regionObject(b, 5, outline, 8);
    // No limit follows in version 0.
    const SetHandle back = loadSets(b, 1)[0];
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back->cachedVectorSize(), 3);
    ASSERT_EQ(back->regions().size(), 1u);
    EXPECT_EQ(back->regions()[0]->points(), outline);
    EXPECT_EQ(back->regions()[0]->label(), 5u);
    EXPECT_EQ(back->regions()[0]->cachedVectorSize(), 8);
    EXPECT_EQ(back->area(false), 6.0);  // 3 * 4 / 2
}

TEST(RegionSetArchive, VersionTwoRecordFails) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegionSet");
    setHead(b, 2, 0);
    testbytes::u32(b, 3);
    expectUnknownVersion([&] { loadSets(b, 1); }, "cntr/regionst", 480);
}

TEST(RegionSetArchive, VectorFormatOtherThanZeroFails) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegionSet");
    testbytes::u8(b, 1);
    testbytes::u8(b, 0);
    testbytes::u8(b, 1);  // vector format 1
    testbytes::u32(b, 0);
    testbytes::u32(b, 3);
    expectUnknownVersion([&] { loadSets(b, 1); }, "", 0);
}

TEST(RegionSetArchive, MemberOfAnotherClassIsRefused) {
    // A contour where a region belongs: the handle would be null.
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegionSet");
    setHead(b, 1, 1);
    testbytes::newObject(b, "xcContour");
    testbytes::contourRecordV1(b, 0, true, rectangle(0, 0, 1, 1), 3);
    testbytes::u32(b, 3);
    try {
        loadSets(b, 1);
        ADD_FAILURE() << "no BadData";
    } catch (const xcArchive::BadData& e) {
        EXPECT_EQ(e.message(), L"region set member is not a region");
    }
}

TEST(RegionSetArchive, TruncatedRecordFails) {
    SetHandle s(
        new xcRegionSet(RegionHandles{ConstRegionHandle(box(0, 0, 1, 1))}, Defs::keepOutline));
    Bytes b = storeSets({s});
    b.resize(b.size() - 2);
    EXPECT_THROW(loadSets(b, 1), xcArchive::Truncated);
}

TEST(RegionSetArchive, LoadingInPlaceReplacesTheListAndDropsTheCaches) {
    StoredSetProbe source(RegionHandles{ConstRegionHandle(box(0, 0, 2, 2))}, Defs::keepOutline);
    source.cachedVectorSize(5);
    xcMemoryArchive out;
    source.dispatchSerialize(out);

    StoredSetProbe target(
        RegionHandles{ConstRegionHandle(box(10, 10, 11, 11)), ConstRegionHandle(box(20, 0, 21, 1))},
        Defs::keepOutline);
    target.area(true);
    target.encloseRect(xcXform<2>::I);
    target.isSelfIntersecting();
    target.cleanCalls = 0;
    xcMemoryArchive in(out.bytes());
    target.loadSimple(in);
    EXPECT_EQ(target, source);
    EXPECT_EQ(target.cachedVectorSize(), 5);
    EXPECT_GE(target.cleanCalls, 1);
    const RegionSetProbe::CacheState& c = target.cacheState();
    EXPECT_FALSE(c.area[1].valid);
    EXPECT_EQ(c.rectCache.get(), nullptr);
    EXPECT_FALSE(c.selfIntersecting.valid);
    EXPECT_EQ(target.area(true), 4.0);
}

TEST(RegionSetArchive, RefusedRecordLeavesTheSetAsItWas) {
    Bytes b = testbytes::header();
    setHead(b, 1, 1);
    testbytes::u8(b, 0);  // a null region
    testbytes::u32(b, 9);
    StoredSetProbe target(RegionHandles{ConstRegionHandle(box(0, 0, 1, 1))}, Defs::keepOutline);
    xcMemoryArchive in(b);
    EXPECT_THROW(target.loadSimple(in), xcArchive::BadData);
    EXPECT_EQ(target.regions().size(), 1u);
    EXPECT_EQ(target.cachedVectorSize(), 3);
}
