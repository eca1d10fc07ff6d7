#include <gtest/gtest.h>

#include <cntrtmpl/regiont.h>
#include <foundation/archive.h>

#include "cntr/region_testing.h"
#include "edgelet_archive_bytes.h"
#include "edgelet_testing.h"

using EdgeletRegion = xcRegionT<xcEdgelet>;
using EdgeletRegionHandle = xcPtrHandle_const<EdgeletRegion>;
using testbytes::Bytes;

namespace {

// Exposes the record of one edgelet region, to store or load it in place.
class EdgeletRegionProbe : public EdgeletRegion {
  public:
    using EdgeletRegion::dispatchSerialize;
    using EdgeletRegion::EdgeletRegion;
};

template <class Handle>
Bytes store(Handle h) {
    xcMemoryArchive out;
    out || h;
    return out.bytes();
}

template <class Handle>
Handle load(const Bytes& bytes) {
    xcMemoryArchive in(bytes);
    Handle h;
    in || h;
    return h;
}

Bytes regionTArchive(unsigned version, std::uint32_t label, const Points& p) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcRegionT<xcEdgelet>");
    testbytes::u8(b, version);
    testbytes::regionPart(b, label, p);
    return b;
}

}  // namespace

TEST(RegionTArchive, RecordIsTheRegionPartOnly) {
    // Data, transform and edgelet holes are not written.
    xcPtrHandle<EdgeletRegion> h(new EdgeletRegion(
        {edgelet(10, 20, 5, 5), edgelet(18, 20), edgelet(18, 28)}, scaleTwoShift(), 8));
    h->holes(
        EdgeletRegion::HoleHandles{EdgeletRegionHandle(new EdgeletRegion({edgelet(1, 1)}, 0))});
    // Outline: ((10-10)/2, (20-20)/2) = (0, 0), ((18-10)/2, 0) = (4, 0), (4, (28-20)/2) = (4, 4).
    EXPECT_EQ(store(h), regionTArchive(0, 8, {{0, 0}, {4, 0}, {4, 4}}));
}

TEST(RegionTArchive, WrittenAndReadBackHasOutlineHolesAndLabelButNoEdgelets) {
    xcPtrHandle<EdgeletRegion> h(new EdgeletRegion(
        {edgelet(0, 0, 9, 9), edgelet(4, 0, 9, 9), edgelet(4, 4, 9, 9), edgelet(0, 4, 9, 9)}, 21));
    static_cast<xcRegion&>(*h).holes(std::vector<RegionHandle>{regionOf(square(1, 1, 1))});
    h->holes(
        EdgeletRegion::HoleHandles{EdgeletRegionHandle(new EdgeletRegion({edgelet(1, 1)}, 0))});

    const xcPtrHandle<EdgeletRegion> back = load<xcPtrHandle<EdgeletRegion>>(store(h));
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back->points(), square(0, 0, 4));
    EXPECT_EQ(back->label(), 21u);
    const xcRegion& backRegion = *back;
    ASSERT_EQ(backRegion.holes().size(), 1u);
    EXPECT_EQ(backRegion.holes()[0]->points(), square(1, 1, 1));
    EXPECT_TRUE(back->data().empty());
    EXPECT_TRUE(back->dataFromPointsXform().isNull());
    EXPECT_TRUE(back->holes().empty());
    EXPECT_DOUBLE_EQ(back->area(true), 15.0);  // 16 - 1
}

TEST(RegionTArchive, StoredThroughARegionHandleLoadsAsAnEdgeletRegion) {
    const RegionHandle h(new EdgeletRegion({edgelet(0, 0), edgelet(1, 0), edgelet(1, 1)}, 2));
    const RegionHandle back = load<RegionHandle>(store(h));
    ASSERT_FALSE(back.isNull());
    EXPECT_NE(dynamic_cast<const EdgeletRegion*>(back.rep()), nullptr);
    EXPECT_EQ(back->points(), (Points{{0, 0}, {1, 0}, {1, 1}}));
}

TEST(RegionTArchive, EdgeletRegionAsAHoleOfAPlainRegionRoundTrips) {
    const RegionHandle outer = regionOf(square(0, 0, 10));
    outer->holes(std::vector<RegionHandle>{
        RegionHandle(new EdgeletRegion({edgelet(2, 2), edgelet(3, 2), edgelet(3, 3)}, 0))});
    const RegionHandle back = load<RegionHandle>(store(outer));
    ASSERT_EQ(back->holes().size(), 1u);
    EXPECT_NE(dynamic_cast<const EdgeletRegion*>(back->holes()[0].rep()), nullptr);
    EXPECT_EQ(back->holes()[0]->points(), (Points{{2, 2}, {3, 2}, {3, 3}}));
}

TEST(RegionTArchive, VersionOneThrowsUnknownVersionAtLine186) {
    try {
        load<xcPtrHandle<EdgeletRegion>>(regionTArchive(1, 0, {}));
        ADD_FAILURE() << "no UnknownVersion";
    } catch (const xcArchive::UnknownVersion& e) {
        EXPECT_EQ(e.source(), "cntrtmpl");
        EXPECT_EQ(e.line(), 186);
    }
}

TEST(RegionTArchive, LoadingInPlaceResetsTheEdgeletPartAndHoles) {
    EdgeletRegionProbe target({edgelet(10, 20, 3, 3), edgelet(12, 20)}, scaleTwoShift(), 1);
    target.holes(EdgeletRegion::HoleHandles{EdgeletRegionHandle(new EdgeletRegion())});
    Bytes bytes = testbytes::header();
    testbytes::u8(bytes, 0);
    testbytes::regionPart(bytes, 6, square(0, 0, 2));
    xcMemoryArchive in(bytes);
    target.dispatchSerialize(in);
    EXPECT_EQ(target.points(), square(0, 0, 2));
    EXPECT_EQ(target.label(), 6u);
    EXPECT_TRUE(target.data().empty());
    EXPECT_TRUE(target.dataFromPointsXform().isNull());
    EXPECT_TRUE(target.holes().empty());
}

TEST(RegionTArchive, ReloadedRegionRebuildsEdgeletsAtItsOutlineWhenAsked) {
    xcPtrHandle<EdgeletRegion> h(
        new EdgeletRegion({edgelet(0, 0), edgelet(2, 0), edgelet(2, 2)}, 0));
    const xcPtrHandle<EdgeletRegion> back = load<xcPtrHandle<EdgeletRegion>>(store(h));
    back->points(back->points());  // no transform: the identity
    EXPECT_EQ(back->data(), (Edgelets{edgelet(0, 0), edgelet(2, 0), edgelet(2, 2)}));
}
