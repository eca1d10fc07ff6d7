#include <cmath>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/archive.h>
#include <foundation/xform.h>

#include "archive_support.h"

namespace {

using Bytes = std::vector<unsigned char>;
using XformHandle = xcPtrHandle<xc2XformBase>;

XformHandle linear(double a, double b, double c, double d, double tx, double ty) {
    return XformHandle(
        new xc2XformLinear(xcXform<2>(xcMatrix<2>(a, b, c, d), xcVector<2>(tx, ty))));
}

const xc2XformLinear& asLinear(const XformHandle& h) {
    const auto* l = dynamic_cast<const xc2XformLinear*>(h.rep());
    if (!l)
        throw std::runtime_error("not an xc2XformLinear");
    return *l;
}

using support::bitsOf;
using support::roundTrip;

TEST(XformArchive, RecordIsVersionPersistentPartMatrixRowMajorAndTranslation) {
    xcMemoryArchive ar;
    XformHandle h = linear(1, 2, 3, 4, 5, 6);
    ar || h;
    wire::Bytes expected;
    expected.header()
        .object("xc2XformLinear")
        .u8(0)
        .u8(0)
        .f64(1)
        .f64(2)
        .f64(3)
        .f64(4)
        .f64(5)
        .f64(6);
    EXPECT_EQ(ar.bytes(), expected.data());
}

TEST(XformArchive, RoundTripThroughABaseHandleIsExact) {
    const XformHandle h = linear(0.1, -0.2, 1e-300, 3e300, -7.5, 1.0 / 3.0);
    const XformHandle back = roundTrip(h);
    ASSERT_FALSE(back.isNull());
    EXPECT_NE(back, h);
    const xcXform<2>& x = asLinear(back).xform();
    EXPECT_EQ(x.matrix().element(0, 0), 0.1);
    EXPECT_EQ(x.matrix().element(0, 1), -0.2);
    EXPECT_EQ(x.matrix().element(1, 0), 1e-300);
    EXPECT_EQ(x.matrix().element(1, 1), 3e300);
    EXPECT_EQ(x.trans(), xcVector<2>(-7.5, 1.0 / 3.0));
    // (2, 1) maps to (0.1*2 - 0.2*1 - 7.5, 2e-300 + 3e300 + 1/3) in both.
    EXPECT_EQ(back->mapPoint(xcVector<2>(2, 1)), h->mapPoint(xcVector<2>(2, 1)));
}

TEST(XformArchive, DefaultIdentityRoundTrips) {
    const XformHandle back = roundTrip(XformHandle(new xc2XformLinear()));
    EXPECT_EQ(back->mapPoint(xcVector<2>(3, -4)), xcVector<2>(3, -4));
}

TEST(XformArchive, NonFiniteElementsKeepTheirBits) {
    const double nan = std::nan("0x5");
    const XformHandle back = roundTrip(linear(nan, -0.0, INFINITY, -INFINITY, 0, 0));
    const xcMatrix<2>& m = asLinear(back).xform().matrix();
    EXPECT_EQ(bitsOf(m.element(0, 0)), bitsOf(nan));
    EXPECT_EQ(bitsOf(m.element(0, 1)), bitsOf(-0.0));
    EXPECT_EQ(m.element(1, 0), INFINITY);
    EXPECT_EQ(m.element(1, 1), -INFINITY);
}

TEST(XformArchive, SharedTransformLoadsAsOneObject) {
    XformHandle h = linear(2, 0, 0, 2, 1, 1);
    xcPtrHandle_const<xc2XformBase> same(h);
    xcMemoryArchive out;
    out || h || same;
    xcMemoryArchive in(out.bytes());
    XformHandle a;
    xcPtrHandle_const<xc2XformBase> b;
    in || a || b;
    EXPECT_EQ(a, b);
    EXPECT_EQ(wire::countOccurrences(out.bytes(), "xc2XformLinear"), 1);
}

TEST(XformArchive, LoadInPlaceReplacesTheTransformAndCountsAChange) {
    xcMemoryArchive out;
    xc2XformLinear source(xcXform<2>(xcMatrix<2>(0, -1, 1, 0), xcVector<2>(10, 20)));
    source.dispatchSerialize(out);
    EXPECT_EQ(out.bytes().size(), 8u + 2u + 48u);

    xc2XformLinear target;
    xcMemoryArchive in(out.bytes());
    target.loadSimple(in);
    // A quarter turn then (10, 20): (1, 0) -> (0, 1) -> (10, 21).
    EXPECT_EQ(target.mapPoint(xcVector<2>(1, 0)), xcVector<2>(10, 21));
    EXPECT_EQ(target.changeCount(), 1u);
    EXPECT_EQ(source.changeCount(), 0u) << "storing changes nothing";
}

TEST(XformArchive, UnknownVersionNamesTheClass) {
    wire::Bytes b;
    b.header().object("xc2XformLinear").u8(1).u8(0);
    xcMemoryArchive in(b.data());
    XformHandle h;
    const auto e = support::caught<xcArchive::UnknownVersion>([&] { in || h; });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->source(), "xc2XformLinear");
    EXPECT_EQ(e->line(), 0);
}

TEST(XformArchive, CutShortRecordIsTruncated) {
    wire::Bytes b;
    b.header().object("xc2XformLinear").u8(0).u8(0).f64(1).f64(2).f64(3);
    xcMemoryArchive in(b.data());
    XformHandle h;
    EXPECT_THROW(in || h, xcArchive::Truncated);
}

}  // namespace
