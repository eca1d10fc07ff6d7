#include <algorithm>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <cntrtmpl/contourt.h>
#include <foundation/archive.h>

#include "edgelet_archive_bytes.h"
#include "edgelet_testing.h"

using EdgeletContour = xcContourT<xcEdgelet>;
using testbytes::Bytes;

namespace {

// Exposes the record of one edgelet contour, to store or load it in place.
class EdgeletContourProbe : public EdgeletContour {
  public:
    using EdgeletContour::dispatchSerialize;
    using EdgeletContour::EdgeletContour;
};

Bytes store(const std::vector<xcPtrHandle<EdgeletContour>>& handles) {
    xcMemoryArchive out;
    for (xcPtrHandle<EdgeletContour> h : handles)
        out || h;
    return out.bytes();
}

std::vector<xcPtrHandle<EdgeletContour>> load(const Bytes& bytes, std::size_t count) {
    xcMemoryArchive in(bytes);
    std::vector<xcPtrHandle<EdgeletContour>> handles(count);
    for (xcPtrHandle<EdgeletContour>& h : handles)
        in || h;
    return handles;
}

// The data vector record: format 0, count, then each edgelet as x, y, 16-bit magnitude and the
// angle step.
void dataPart(Bytes& b, const Edgelets& data) {
    testbytes::u8(b, 0);
    testbytes::u32(b, static_cast<std::uint32_t>(data.size()));
    for (const xcEdgelet& e : data) {
        testbytes::f64(b, e.position().x());
        testbytes::f64(b, e.position().y());
        testbytes::u16(b, e.magnitude());
        testbytes::u8(b, e.angle().raw());
    }
}

// A new xc2XformLinear in a pointer record: version 0, the xcPersistent byte 0, the matrix
// row by row and the translation.
void linearXformObject(Bytes& b, double e00, double e01, double e10, double e11, double tx,
                       double ty) {
    testbytes::newObject(b, "xc2XformLinear");
    testbytes::u8(b, 0);
    testbytes::u8(b, 0);
    for (double v : {e00, e01, e10, e11, tx, ty})
        testbytes::f64(b, v);
}

// Bytes of one edgelet contour record of the given version (without a transform), as a new
// object in a pointer record.
Bytes contourTArchive(unsigned version, const Points& p, const Edgelets& data) {
    Bytes b = testbytes::header();
    testbytes::newObject(b, "xcContourT<xcEdgelet>");
    testbytes::u8(b, version);
    testbytes::contourPart(b, 4, true, p, 3);
    dataPart(b, data);
    return b;
}

std::size_t occurrences(const Bytes& bytes, const std::string& text) {
    std::size_t n = 0;
    for (auto it = bytes.begin();
         (it = std::search(it, bytes.end(), text.begin(), text.end())) != bytes.end(); ++it)
        ++n;
    return n;
}

}  // namespace

TEST(ContourTArchive, RecordLayoutOfVersionOne) {
    xcPtrHandle<EdgeletContour> h(
        new EdgeletContour({edgelet(14, 26, 300, 10), edgelet(10, 20, 7, 64)}, scaleTwoShift()));
    h->label(77);
    Bytes expected = testbytes::header();
    testbytes::newObject(expected, "xcContourT<xcEdgelet>");
    testbytes::u8(expected, 1);
    // Points ((14-10)/2, (26-20)/2) = (2, 3) and (0, 0).
    testbytes::contourPart(expected, 77, true, {{2, 3}, {0, 0}}, 3);
    dataPart(expected, {edgelet(14, 26, 300, 10), edgelet(10, 20, 7, 64)});
    linearXformObject(expected, 2, 0, 0, 2, 10, 20);
    EXPECT_EQ(store({h}), expected);
}

TEST(ContourTArchive, StoredAndReloadedRestoresEverything) {
    xcPtrHandle<EdgeletContour> h(
        new EdgeletContour({edgelet(14, 26, 300, 10), edgelet(12, 30, 1, 255)}, scaleTwoShift()));
    h->label(123456);
    h->isClosed(false);
    h->cachedVectorSize(0);
    const xcPtrHandle<EdgeletContour> back = load(store({h}), 1)[0];
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back->points(), h->points());
    EXPECT_EQ(back->data(), h->data());
    EXPECT_EQ(back->label(), 123456u);
    EXPECT_FALSE(back->isClosed());
    EXPECT_EQ(back->cachedVectorSize(), 0);
    const auto* x = dynamic_cast<const xc2XformLinear*>(back->dataFromPointsXform().rep());
    ASSERT_NE(x, nullptr);
    EXPECT_TRUE(
        xfRealEq(x->xform(), xcXform<2>(xcMatrix<2>(2, 0, 0, 2), xcVector<2>(10, 20)), 0.0));
    // The inverse is computed afresh: (16 - 10) / 2 = 3, (18 - 20) / 2 = -1.
    EXPECT_EQ(back->point(edgelet(16, 18)), xcVector<2>(3, -1));
}

TEST(ContourTArchive, ReloadedContourHoldsAnotherTransformObject) {
    xcPtrHandle<EdgeletContour> h(new EdgeletContour({edgelet(1, 2)}));
    const xcPtrHandle<EdgeletContour> back = load(store({h}), 1)[0];
    EXPECT_NE(back->dataFromPointsXform().rep(), h->dataFromPointsXform().rep());
    EXPECT_FALSE(*back == *h);  // equality asks for the very same transform object
}

TEST(ContourTArchive, SharedTransformIsStoredOnceAndLoadsAsOneObject) {
    xcPtrHandle<EdgeletContour> a(
        new EdgeletContour({edgelet(0, 0), edgelet(5, 0)}, scaleTwoShift()));
    xcPtrHandle<EdgeletContour> b(new EdgeletContour(*a));
    b->points({{7, 7}});
    xcPtrHandle<EdgeletContour> c(new EdgeletContour(*a));
    ASSERT_EQ(a->dataFromPointsXform().rep(), b->dataFromPointsXform().rep());
    const Bytes bytes = store({a, b, c});
    EXPECT_EQ(occurrences(bytes, "xc2XformLinear"), 1u);

    const auto back = load(bytes, 3);
    ASSERT_FALSE(back[0]->dataFromPointsXform().isNull());
    EXPECT_EQ(back[0]->dataFromPointsXform().rep(), back[1]->dataFromPointsXform().rep());
    EXPECT_EQ(back[0]->dataFromPointsXform().rep(), back[2]->dataFromPointsXform().rep());
    EXPECT_TRUE(*back[0] == *back[2]);
    EXPECT_EQ(back[1]->points(), (Points{{7, 7}}));
}

TEST(ContourTArchive, SecondContourRefersBackToTheSharedTransform) {
    xcPtrHandle<EdgeletContour> a(new EdgeletContour({edgelet(10, 20)}, scaleTwoShift()));
    xcPtrHandle<EdgeletContour> b(new EdgeletContour(*a));
    Bytes expected = testbytes::header();
    for (int i = 0; i < 2; ++i) {
        testbytes::newObject(expected, "xcContourT<xcEdgelet>");
        testbytes::u8(expected, 1);
        testbytes::contourPart(expected, 0, true, {{0, 0}}, 3);  // ((10-10)/2, (20-20)/2)
        dataPart(expected, {edgelet(10, 20)});
    }
    // Objects are numbered as their records begin: a is 0, the transform 1, b 2. So a's record
    // ends with the transform and b's with a back-reference (tag 2) to object 1.
    Bytes transform;
    linearXformObject(transform, 2, 0, 0, 2, 10, 20);
    const std::size_t aEnd = expected.size() / 2 + 4;  // header is 8 bytes, two equal records
    expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(aEnd), transform.begin(),
                    transform.end());
    testbytes::u8(expected, 2);
    testbytes::u32(expected, 1);
    EXPECT_EQ(store({a, b}), expected);
}

TEST(ContourTArchive, ContourStoredTwiceLoadsAsOneObject) {
    xcPtrHandle<EdgeletContour> a(new EdgeletContour({edgelet(1, 1)}));
    const auto back = load(store({a, a}), 2);
    EXPECT_EQ(back[0].rep(), back[1].rep());
}

TEST(ContourTArchive, VersionZeroRecordLoadsWithNullTransform) {
    const Bytes bytes =
        contourTArchive(0, {{1, 2}, {3, 4}}, {edgelet(1, 2, 5, 6), edgelet(3, 4, 7, 8)});
    const xcPtrHandle<EdgeletContour> back = load(bytes, 1)[0];
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back->points(), (Points{{1, 2}, {3, 4}}));
    EXPECT_EQ(back->data(), (Edgelets{edgelet(1, 2, 5, 6), edgelet(3, 4, 7, 8)}));
    EXPECT_EQ(back->label(), 4u);
    EXPECT_TRUE(back->dataFromPointsXform().isNull());
}

TEST(ContourTArchive, VersionZeroContourTreatsMissingTransformAsIdentity) {
    xcPtrHandle<EdgeletContour> back = load(contourTArchive(0, {}, {}), 1)[0];
    back->data({edgelet(8, 9, 1, 1)});
    EXPECT_EQ(back->points(), (Points{{8, 9}}));
    back->points({{-1, 2}});
    EXPECT_EQ(back->data(), (Edgelets{edgelet(-1, 2)}));
}

TEST(ContourTArchive, LoadingTakesPointsAndDataAsStored) {
    // Points and edgelets that no transform relates: no consistency hook runs on loading.
    const Bytes bytes = contourTArchive(0, {{1, 2}}, {edgelet(50, 60, 1, 2), edgelet(0, 0)});
    const xcPtrHandle<EdgeletContour> back = load(bytes, 1)[0];
    EXPECT_EQ(back->points(), (Points{{1, 2}}));
    EXPECT_EQ(back->data(), (Edgelets{edgelet(50, 60, 1, 2), edgelet(0, 0)}));
}

TEST(ContourTArchive, VersionTwoThrowsUnknownVersionAtLine98) {
    try {
        load(contourTArchive(2, {}, {}), 1);
        ADD_FAILURE() << "no UnknownVersion";
    } catch (const xcArchive::UnknownVersion& e) {
        EXPECT_EQ(e.source(), "cntrtmpl");
        EXPECT_EQ(e.line(), 98);
    }
}

TEST(ContourTArchive, LoadingForgetsTheCachedInverse) {
    EdgeletContourProbe target({edgelet(4, 6)},
                               linearXform(xcXform<2>(xcMatrix<2>(2, 0, 0, 2), xcVector<2>())));
    ASSERT_EQ(target.point(edgelet(4, 6)), xcVector<2>(2, 3));  // the halving inverse is cached

    EdgeletContourProbe source({edgelet(100, 0)},
                               linearXform(xcXform<2>(xcMatrix<2>::I, xcVector<2>(100, 0))));
    xcMemoryArchive out;
    source.dispatchSerialize(out);
    xcMemoryArchive in(out.bytes());
    target.dispatchSerialize(in);
    // The stored shift's inverse: (100, 0) - (100, 0) = (0, 0); the stale halving would give (50,
    // 0).
    EXPECT_EQ(target.point(edgelet(100, 0)), xcVector<2>(0, 0));
    EXPECT_EQ(target.points(), (Points{{0, 0}}));
}

TEST(ContourTArchive, VersionZeroLoadedInPlaceKeepsTheTransform) {
    EdgeletContourProbe target({edgelet(4, 6)}, scaleTwoShift());
    const xc2XformBase* before = target.dataFromPointsXform().rep();
    Bytes bytes = testbytes::header();
    testbytes::u8(bytes, 0);
    testbytes::contourPart(bytes, 1, true, {{5, 5}}, 3);
    dataPart(bytes, {edgelet(20, 30)});
    xcMemoryArchive in(bytes);
    target.dispatchSerialize(in);
    EXPECT_EQ(target.dataFromPointsXform().rep(), before);
    EXPECT_EQ(target.points(), (Points{{5, 5}}));
    // The inverse is recomputed for the kept transform: ((20-10)/2, (30-20)/2) = (5, 5).
    EXPECT_EQ(target.point(edgelet(20, 30)), xcVector<2>(5, 5));
}

TEST(ContourTArchive, EveryTruncationThrowsAnArchiveError) {
    xcPtrHandle<EdgeletContour> h(
        new EdgeletContour({edgelet(1, 2, 3, 4), edgelet(5, 6)}, scaleTwoShift()));
    testbytes::expectEveryTruncationThrows(store({h}), [](const Bytes& cut) { load(cut, 1); });
}

TEST(ContourTArchive, RandomContoursRoundTripExactly) {
    std::mt19937 gen(77);
    std::uniform_real_distribution<double> coord(-1e6, 1e6);
    std::uniform_int_distribution<int> small(0, 65535);
    for (int trial = 0; trial < 40; ++trial) {
        Edgelets data;
        const int n = trial % 7;
        for (int i = 0; i < n; ++i)
            data.push_back(edgelet(coord(gen), coord(gen), small(gen), small(gen) & 0xFF));
        xcPtrHandle<EdgeletContour> h(
            new EdgeletContour(data, linearXform(xcXform<2>(xcMatrix<2>(1, 0.5, 0, 2),
                                                            xcVector<2>(coord(gen), coord(gen))))));
        h->label(static_cast<unsigned long>(small(gen)));
        const xcPtrHandle<EdgeletContour> back = load(store({h}), 1)[0];
        EXPECT_EQ(back->points(), h->points());
        EXPECT_EQ(back->data(), h->data());
        EXPECT_EQ(back->label(), h->label());
    }
}
