#include <gtest/gtest.h>

#include <cntrtmpl/regionsett.h>
#include <foundation/archive.h>

#include "cntr/region_testing.h"
#include "edgelet_archive_bytes.h"
#include "edgelet_testing.h"

using EdgeletRegion = xcRegionT<xcEdgelet>;
using EdgeletRegionSet = xcRegionSetT<xcEdgelet>;
using EdgeletRegionHandle = xcPtrHandle_const<EdgeletRegion>;
using EdgeletRegionHandles = EdgeletRegionSet::RegionTHandles;
using SetHandle = xcPtrHandle<EdgeletRegionSet>;
using testbytes::Bytes;

namespace {

Bytes store(const std::vector<SetHandle>& handles) {
    xcMemoryArchive out;
    for (SetHandle h : handles)
        out || h;
    return out.bytes();
}

std::vector<SetHandle> load(const Bytes& bytes, std::size_t count) {
    xcMemoryArchive in(bytes);
    std::vector<SetHandle> handles(count);
    for (SetHandle& h : handles)
        in || h;
    return handles;
}

// The start of an edgelet set record of the given version holding the edgelet regions (label 5,
// the unit square) in its base list: class name, version, the base set's record (version 1,
// xcPersistent 0, the region vector, cachedVectorSize 3).
Bytes setArchiveStart(unsigned version, int regionCount) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegionSetT<xcEdgelet>");
    testbytes::u8(b, version);
    testbytes::u8(b, 1);
    testbytes::u8(b, 0);
    testbytes::u8(b, 0);
    testbytes::u32(b, static_cast<std::uint32_t>(regionCount));
    for (int i = 0; i < regionCount; ++i)
        testbytes::edgeletRegionObject(b, 5, square(0, 0, 1));
    testbytes::u32(b, 3);
    return b;
}

}  // namespace

TEST(RegionSetTArchive, RecordLayout) {
    const EdgeletRegionHandle a(
        new EdgeletRegion({edgelet(0, 0), edgelet(1, 0), edgelet(1, 1)}, 7));
    const EdgeletRegionHandle b(new EdgeletRegion({edgelet(2, 2)}, 8));
    const SetHandle s(new EdgeletRegionSet(EdgeletRegionHandles{a, b}));

    Bytes expected = testbytes::header();
    testbytes::newObject(expected, "xcRegionSetT<xcEdgelet>");
    testbytes::u8(expected, 0);
    testbytes::u8(expected, 1);  // the base set's record
    testbytes::u8(expected, 0);
    testbytes::u8(expected, 0);
    testbytes::u32(expected, 2);
    testbytes::edgeletRegionObject(expected, 7, {{0, 0}, {1, 0}, {1, 1}});
    testbytes::edgeletRegionObject(expected, 8, {{2, 2}});
    testbytes::u32(expected, 3);
    // The edgelet regions: the same objects, numbered 1 and 2 after the set (0).
    testbytes::u8(expected, 0);
    testbytes::u32(expected, 2);
    testbytes::backReference(expected, 1);
    testbytes::backReference(expected, 2);
    EXPECT_EQ(store({s}), expected);
}

TEST(RegionSetTArchive, RoundTripKeepsBothListsOnTheSameObjects) {
    const EdgeletRegionHandle a(
        new EdgeletRegion({edgelet(0, 0, 3, 3), edgelet(2, 0), edgelet(2, 2), edgelet(0, 2)}, 7));
    const EdgeletRegionHandle b(
        new EdgeletRegion({edgelet(5, 5), edgelet(6, 5), edgelet(6, 6)}, 8));
    const SetHandle s(new EdgeletRegionSet(EdgeletRegionHandles{a, b}));

    const SetHandle back = load(store({s}), 1)[0];
    ASSERT_FALSE(back.isNull());
    const EdgeletRegionHandles edgeletRegions = back->regionsT();
    const xcRegionSet::RegionHandles base = back->regions();
    ASSERT_EQ(edgeletRegions.size(), 2u);
    ASSERT_EQ(base.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i)
        EXPECT_EQ(base[i].rep(), static_cast<const xcRegion*>(edgeletRegions[i].rep()));
    EXPECT_EQ(edgeletRegions[0]->points(), square(0, 0, 2));
    EXPECT_EQ(edgeletRegions[0]->label(), 7u);
    EXPECT_TRUE(edgeletRegions[0]->data().empty());  // edgelet regions store no edgelets
    EXPECT_EQ(edgeletRegions[1]->points(), (Points{{5, 5}, {6, 5}, {6, 6}}));
    EXPECT_TRUE(*back == *s);
    EXPECT_DOUBLE_EQ(back->area(false), 4.5);  // 2 * 2 + 1 * 1 / 2
}

TEST(RegionSetTArchive, RegionSharedByTwoSetsIsStoredOnceAndLoadsAsOneObject) {
    const EdgeletRegionHandle shared(
        new EdgeletRegion({edgelet(0, 0), edgelet(1, 0), edgelet(1, 1)}, 1));
    const EdgeletRegionHandle other(
        new EdgeletRegion({edgelet(4, 4), edgelet(5, 4), edgelet(5, 5)}, 2));
    const SetHandle s1(new EdgeletRegionSet(EdgeletRegionHandles{shared}));
    const SetHandle s2(new EdgeletRegionSet(EdgeletRegionHandles{other, shared}));
    const auto back = load(store({s1, s2}), 2);
    ASSERT_EQ(back[1]->regionsT().size(), 2u);
    EXPECT_EQ(back[0]->regionsT()[0].rep(), back[1]->regionsT()[1].rep());
    EXPECT_EQ(back[0]->regions()[0].rep(), back[1]->regions()[1].rep());
}

TEST(RegionSetTArchive, VersionOneThrowsUnknownVersionAtLine286) {
    Bytes bytes = setArchiveStart(1, 0);
    testbytes::u8(bytes, 0);
    testbytes::u32(bytes, 0);
    try {
        load(bytes, 1);
        ADD_FAILURE() << "no UnknownVersion";
    } catch (const xcArchive::UnknownVersion& e) {
        EXPECT_EQ(e.source(), "cntrtmpl");
        EXPECT_EQ(e.line(), 286);
    }
}

TEST(RegionSetTArchive, HandBuiltRecordLoads) {
    Bytes bytes = setArchiveStart(0, 1);
    testbytes::u8(bytes, 0);
    testbytes::u32(bytes, 1);
    testbytes::backReference(bytes, 1);
    const SetHandle back = load(bytes, 1)[0];
    ASSERT_EQ(back->regionsT().size(), 1u);
    EXPECT_EQ(back->regionsT()[0]->points(), square(0, 0, 1));
    EXPECT_EQ(back->regionsT()[0]->label(), 5u);
    EXPECT_EQ(back->regions()[0].rep(), static_cast<const xcRegion*>(back->regionsT()[0].rep()));
}

TEST(RegionSetTArchive, NullEdgeletRegionIsRefused) {
    Bytes bytes = setArchiveStart(0, 1);
    testbytes::u8(bytes, 0);
    testbytes::u32(bytes, 1);
    testbytes::u8(bytes, 0);  // a null pointer record
    expectThrowWith<xcContourDefs::BadParams>([&] { load(bytes, 1); },
                                              xnErrorNumber::ContourBadParams,
                                              L"region set cannot hold a null region");
}

TEST(RegionSetTArchive, PlainRegionInTheEdgeletListIsRefused) {
    // A referent of another class loads as a null handle, which the set refuses.
    Bytes bytes = setArchiveStart(0, 0);
    testbytes::u8(bytes, 0);
    testbytes::u32(bytes, 1);
    testbytes::newObject(bytes, "xcRegion");
    testbytes::regionPart(bytes, 0, {});
    EXPECT_THROW(load(bytes, 1), xcContourDefs::BadParams);
}

TEST(RegionSetTArchive, EveryTruncationThrowsAnArchiveError) {
    const SetHandle s(new EdgeletRegionSet(EdgeletRegionHandles{
        EdgeletRegionHandle(new EdgeletRegion({edgelet(0, 0), edgelet(1, 0), edgelet(1, 1)}, 1))}));
    testbytes::expectEveryTruncationThrows(store({s}), [](const Bytes& cut) { load(cut, 1); });
}
