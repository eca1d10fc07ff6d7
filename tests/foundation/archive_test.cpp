#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/archive.h>

#include "archive_support.h"

namespace {

using Bytes = std::vector<unsigned char>;
constexpr std::size_t kHeaderSize = 8;  // "XCAR" and a 32-bit format version

// What a storing archive wrote after its header.
Bytes body(const xcMemoryArchive& ar) {
    return Bytes(ar.bytes().begin() + kHeaderSize, ar.bytes().end());
}

template <class T>
Bytes storeOne(T v) {
    xcMemoryArchive ar;
    ar || v;
    return body(ar);
}

template <class T>
T loadOne(const wire::Bytes& bytes) {
    xcMemoryArchive ar(bytes.data());
    T v{};
    ar || v;
    EXPECT_EQ(ar.bytesLeft(), 0u) << "the record was not read completely";
    return v;
}

using support::bitsOf;
using support::fromBits;
using support::roundTrip;

// An archive holding the header and then `tail`.
wire::Bytes withHeader(const wire::Bytes& tail) {
    wire::Bytes b;
    b.header();
    for (unsigned char c : tail.data())
        b.u8(c);
    return b;
}

// ---- header ----

TEST(ArchiveHeader, EmptyStoringArchiveHoldsMagicAndFormatVersion) {
    const xcMemoryArchive ar;
    const Bytes expected{'X', 'C', 'A', 'R', 1, 0, 0, 0};
    EXPECT_EQ(ar.bytes(), expected);
}

TEST(ArchiveHeader, TakeBytesMovesOutWhatWasWrittenAndLeavesTheArchiveEmpty) {
    xcMemoryArchive ar;
    unsigned char first = 0xAB;
    ar || first;
    const Bytes taken = ar.takeBytes();
    EXPECT_EQ(taken, (Bytes{'X', 'C', 'A', 'R', 1, 0, 0, 0, 0xAB}));
    EXPECT_TRUE(ar.bytes().empty());
    unsigned char second = 0xCD;
    ar || second;
    EXPECT_EQ(ar.bytes(), (Bytes{0xCD}));  // no second header
}

// A block far larger than what precedes it, then small fields: every byte lands in order.
TEST(ArchiveHeader, LargeBlockFollowedBySmallFieldsKeepsEveryByte) {
    std::vector<xcVector<2>> points;
    for (int i = 0; i < 100000; ++i)
        points.emplace_back(i * 0.5, -i * 0.25);
    xcMemoryArchive out;
    xfSerializeVector(out, points);
    for (unsigned char tail = 0; tail < 200; ++tail)
        out || tail;
    const Bytes bytes = out.takeBytes();
    EXPECT_EQ(bytes.size(), kHeaderSize + 1 + 4 + points.size() * 16 + 200);
    xcMemoryArchive in(bytes);
    std::vector<xcVector<2>> loaded;
    xfSerializeVector(in, loaded);
    EXPECT_EQ(loaded, points);
    for (unsigned expected = 0; expected < 200; ++expected) {
        unsigned char tail = 0;
        in || tail;
        EXPECT_EQ(tail, expected);
    }
    EXPECT_EQ(in.bytesLeft(), 0u);
}

TEST(ArchiveHeader, MemoryArchiveLendsItsBytesInPlaceAndCountsThemRead) {
    xcMemoryArchive out;
    for (unsigned char c : {1, 2, 3, 4, 5})
        out || c;
    const Bytes bytes = out.takeBytes();
    xcMemoryArchive in(bytes.data(), bytes.size());
    const unsigned char* lent = in.lendBytes(3);
    ASSERT_NE(lent, nullptr);
    EXPECT_EQ(lent, bytes.data() + kHeaderSize);  // in place, not a copy
    EXPECT_EQ(in.bytesLeft(), 2u);
    unsigned char next = 0;
    in || next;
    EXPECT_EQ(next, 4);
    const auto e = support::caught<xcArchive::Truncated>([&] { (void)in.lendBytes(2); });
    ASSERT_TRUE(e);
    EXPECT_EQ(in.bytesLeft(), 1u);  // nothing read by the refused loan
}

TEST(ArchiveHeader, StoringArchiveLendsNothing) {
    xcMemoryArchive out;
    EXPECT_EQ(out.lendBytes(0), nullptr);
    EXPECT_EQ(out.bytes().size(), kHeaderSize);
}

TEST(ArchiveHeader, Directions) {
    xcMemoryArchive out;
    EXPECT_TRUE(out.isStoring());
    EXPECT_FALSE(out.isLoading());
    xcMemoryArchive in(out.bytes());
    EXPECT_TRUE(in.isLoading());
    EXPECT_FALSE(in.isStoring());
    EXPECT_EQ(in.bytesLeft(), 0u);
    EXPECT_EQ(out.bytesLeft(), std::numeric_limits<std::uint64_t>::max());
}

TEST(ArchiveHeader, EmptyDataIsTruncated) {
    EXPECT_THROW(xcMemoryArchive(Bytes{}), xcArchive::Truncated);
    EXPECT_THROW(xcMemoryArchive(nullptr, 100), xcArchive::Truncated);
}

TEST(ArchiveHeader, BadMagicIsBadFormat) {
    const Bytes bytes{'X', 'C', 'A', 'Z', 1, 0, 0, 0};
    const auto e = support::caught<xcArchive::BadFormat>([&] { xcMemoryArchive ar(bytes); });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->errorNumber(), xnErrorNumber::ArchiveBadFormat);
    EXPECT_TRUE(support::says(*e, "magic")) << e->what();
}

TEST(ArchiveHeader, UnknownFormatVersionIsBadFormat) {
    const Bytes bytes{'X', 'C', 'A', 'R', 2, 0, 0, 0};
    const auto e = support::caught<xcArchive::BadFormat>([&] { xcMemoryArchive ar(bytes); });
    ASSERT_TRUE(e);
    EXPECT_TRUE(support::says(*e, "version 2")) << e->what();
}

TEST(ArchiveHeader, HeaderCutShortIsTruncated) {
    const Bytes bytes{'X', 'C', 'A', 'R', 1, 0, 0};
    EXPECT_THROW(xcMemoryArchive ar(bytes), xcArchive::Truncated);
}

// ---- primitives: wire bytes ----

TEST(ArchivePrimitives, UnsignedCharIsOneByte) {
    EXPECT_EQ(storeOne<unsigned char>(0xA5), (Bytes{0xA5}));
    EXPECT_EQ(roundTrip<unsigned char>(0), 0);
    EXPECT_EQ(roundTrip<unsigned char>(255), 255);
}

TEST(ArchivePrimitives, BoolIsZeroOrOne) {
    EXPECT_EQ(storeOne(true), (Bytes{1}));
    EXPECT_EQ(storeOne(false), (Bytes{0}));
    EXPECT_TRUE(roundTrip(true));
    EXPECT_FALSE(roundTrip(false));
}

TEST(ArchivePrimitives, BoolOtherThanZeroOrOneIsBadData) {
    wire::Bytes b;
    b.header().u8(2);
    xcMemoryArchive ar(b.data());
    bool v = false;
    EXPECT_THROW(ar || v, xcArchive::BadData);
}

TEST(ArchivePrimitives, UnsignedLongIsFourBytesLittleEndian) {
    EXPECT_EQ(storeOne<unsigned long>(0x12345678ul), (Bytes{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(roundTrip<unsigned long>(0), 0ul);
    EXPECT_EQ(roundTrip<unsigned long>(4294967295ul), 4294967295ul);  // 2^32 - 1
}

TEST(ArchivePrimitives, UnsignedLongAbove32BitsThrowsAndWritesNothing) {
    if (sizeof(unsigned long) <= 4)
        GTEST_SKIP() << "unsigned long has 32 bits here";
    xcMemoryArchive ar;
    unsigned long v = 4294967296ul;  // 2^32
    const auto e = support::caught<xcArchive::ValueOutOfRange>([&] { ar || v; });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->errorNumber(), xnErrorNumber::ArchiveValueOutOfRange);
    EXPECT_EQ(ar.bytes().size(), kHeaderSize);
}

TEST(ArchivePrimitives, LongIsFourBytesTwosComplement) {
    EXPECT_EQ(storeOne<long>(-2), (Bytes{0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(storeOne<long>(-2147483647L - 1), (Bytes{0x00, 0x00, 0x00, 0x80}));
    EXPECT_EQ(storeOne<long>(2147483647L), (Bytes{0xFF, 0xFF, 0xFF, 0x7F}));
    EXPECT_EQ(roundTrip<long>(-2147483647L - 1), -2147483647L - 1);
    EXPECT_EQ(roundTrip<long>(2147483647L), 2147483647L);
    EXPECT_EQ(roundTrip<long>(-1), -1);
    EXPECT_EQ(roundTrip<long>(0), 0);
}

TEST(ArchivePrimitives, LongOutside32BitsThrows) {
    if (sizeof(long) <= 4)
        GTEST_SKIP() << "long has 32 bits here";
    for (long v : {2147483648L, -2147483649L, std::numeric_limits<long>::max(),
                   std::numeric_limits<long>::min()}) {
        xcMemoryArchive ar;
        EXPECT_THROW(ar || v, xcArchive::ValueOutOfRange) << v;
        EXPECT_EQ(ar.bytes().size(), kHeaderSize);
    }
}

TEST(ArchivePrimitives, DoubleIsEightBytesLittleEndian) {
    // 1.0 is 0x3FF0000000000000; -2.5 is 0xC004000000000000.
    EXPECT_EQ(storeOne(1.0), (Bytes{0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
    EXPECT_EQ(storeOne(-2.5), (Bytes{0, 0, 0, 0, 0, 0, 0x04, 0xC0}));
}

TEST(ArchivePrimitives, ExtremeDoublesRoundTripBitExact) {
    const std::uint64_t patterns[] = {
        0x0000000000000000ull,  // +0
        0x8000000000000000ull,  // -0
        0x0000000000000001ull,  // smallest subnormal
        0x000FFFFFFFFFFFFFull,  // largest subnormal
        0x0010000000000000ull,  // smallest normal
        0x7FEFFFFFFFFFFFFFull,  // largest finite
        0xFFEFFFFFFFFFFFFFull,  // lowest finite
        0x7FF0000000000000ull,  // +inf
        0xFFF0000000000000ull,  // -inf
        0x7FF8000000000000ull,  // quiet NaN
        0xFFF8000000000000ull,  // negative quiet NaN
        0x7FF8000000000123ull,  // quiet NaN with a payload
        0x7FF0000000000001ull,  // signalling NaN
        0x7FFFFFFFFFFFFFFFull,  // NaN with every payload bit
    };
    for (std::uint64_t p : patterns) {
        xcMemoryArchive out;
        double v = fromBits(p);
        out || v;
        const Bytes wire = body(out);
        ASSERT_EQ(wire.size(), 8u);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(wire[i], static_cast<unsigned char>(p >> (8 * i))) << std::hex << p;
        xcMemoryArchive in(out.bytes());
        double back = 0.0;
        in || back;
        EXPECT_EQ(bitsOf(back), p) << std::hex << p;
    }
}

TEST(ArchivePrimitives, RandomDoubleBitPatternsRoundTrip) {
    std::mt19937_64 gen(20240531);  // the sequence of mt19937_64 is fixed by the standard
    xcMemoryArchive out;
    std::vector<std::uint64_t> stored;
    for (int i = 0; i < 1000; ++i) {
        stored.push_back(gen());
        double v = fromBits(stored.back());
        out || v;
    }
    xcMemoryArchive in(out.bytes());
    for (std::uint64_t p : stored) {
        double v = 0.0;
        in || v;
        ASSERT_EQ(bitsOf(v), p);
    }
}

TEST(ArchivePrimitives, VectorIsXThenY) {
    EXPECT_EQ(storeOne(xcVector<2>(1.5, -2.25)), wire::Bytes().f64(1.5).f64(-2.25).data());
    const xcVector<2> back = roundTrip(xcVector<2>(-0.0, 1e308));
    EXPECT_EQ(bitsOf(back.x()), bitsOf(-0.0));
    EXPECT_EQ(back.y(), 1e308);
}

TEST(ArchivePrimitives, EdgeletIsPositionMagnitudeAndAngleStep) {
    const xcEdgelet e(xcVector<2>(3.0, 4.0), 0xBEEF, xcAngle8(200));
    EXPECT_EQ(storeOne(e), wire::Bytes().f64(3.0).f64(4.0).u16(0xBEEF).u8(200).data());
    EXPECT_EQ(roundTrip(e), e);
    const xcEdgelet extreme(xcVector<2>(-1e-300, 1e300), 0xFFFF, xcAngle8(255));
    EXPECT_EQ(roundTrip(extreme), extreme);
}

TEST(ArchivePrimitives, WideStringIsUtf8WithByteCount) {
    EXPECT_EQ(storeOne(std::wstring()), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(storeOne(std::wstring(L"abc")), (Bytes{3, 0, 0, 0, 'a', 'b', 'c'}));
    // U+00E9 is C3 A9, U+20AC is E2 82 AC, U+1F600 is F0 9F 98 80: 9 bytes.
    const std::wstring s = L"\u00E9\u20AC\U0001F600";
    EXPECT_EQ(storeOne(s),
              (Bytes{9, 0, 0, 0, 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF0, 0x9F, 0x98, 0x80}));
}

TEST(ArchivePrimitives, NonAsciiWideStringsRoundTrip) {
    const std::wstring samples[] = {
        L"",
        L"plain",
        std::wstring(L"nul\0inside", 10),
        L"\u00E9t\u00E9 \u2260 hiver",
        L"\u65E5\u672C\u8A9E",
        L"\U0001F600\U0010FFFF",
        L"\u007F\u0080\u07FF\u0800\uFFFF\U00010000",  // each UTF-8 length boundary
    };
    for (const std::wstring& s : samples)
        EXPECT_EQ(roundTrip(s), s);
}

TEST(ArchivePrimitives, WideStringThatUtf8CannotCarryThrowsOnStore) {
    std::vector<std::wstring> bad{std::wstring(1, static_cast<wchar_t>(0xD800)),
                                  std::wstring(1, static_cast<wchar_t>(0xDFFF))};
    if (sizeof(wchar_t) == 4) {
        bad.push_back(std::wstring(1, static_cast<wchar_t>(0x110000)));
        bad.push_back(std::wstring(L"ok") + static_cast<wchar_t>(-1));
    }
    for (std::wstring& s : bad) {
        xcMemoryArchive ar;
        EXPECT_THROW(ar || s, xcArchive::ValueOutOfRange);
        EXPECT_EQ(ar.bytes().size(), kHeaderSize);
    }
}

TEST(ArchivePrimitives, InvalidUtf8IsBadData) {
    const std::vector<std::vector<unsigned>> bad{
        {0xC0, 0x80},              // overlong NUL
        {0xE0, 0x80, 0x80},        // overlong
        {0xED, 0xA0, 0x80},        // surrogate U+D800
        {0xF4, 0x90, 0x80, 0x80},  // above U+10FFFF
        {0xE2, 0x82},              // sequence cut short
        {0x80},                    // stray continuation byte
        {0xFF},                    // never valid
        {0x61, 0xC3, 0x28},        // bad continuation
    };
    for (const auto& seq : bad) {
        wire::Bytes b;
        b.header().u32(static_cast<std::uint32_t>(seq.size()));
        for (unsigned c : seq)
            b.u8(c);
        xcMemoryArchive ar(b.data());
        std::wstring s;
        EXPECT_THROW(ar || s, xcArchive::BadData) << std::hex << seq[0];
    }
}

TEST(ArchivePrimitives, ByteStringIsCountAndBytesAsTheyAre) {
    std::string s("a\xFF\0b", 4);
    EXPECT_EQ(storeOne(s), (Bytes{4, 0, 0, 0, 'a', 0xFF, 0, 'b'}));
    EXPECT_EQ(roundTrip(s), s);
}

TEST(ArchivePrimitives, ChainedValuesRoundTripInOrder) {
    unsigned char c = 7;
    bool flag = true;
    unsigned long u = 4000000000ul;
    long l = -123456;
    double d = 0.1;
    xcVector<2> v(1, 2);
    std::wstring w = L"\u03C0";
    xcMemoryArchive out;
    out || c || flag || u || l || d || v || w;
    // 1 + 1 + 4 + 4 + 8 + 16 + (4 + 2) bytes after the header.
    EXPECT_EQ(out.bytes().size(), kHeaderSize + 40);

    unsigned char c2 = 0;
    bool flag2 = false;
    unsigned long u2 = 0;
    long l2 = 0;
    double d2 = 0;
    xcVector<2> v2;
    std::wstring w2;
    xcMemoryArchive in(out.bytes());
    in || c2 || flag2 || u2 || l2 || d2 || v2 || w2;
    EXPECT_EQ(c2, c);
    EXPECT_EQ(flag2, flag);
    EXPECT_EQ(u2, u);
    EXPECT_EQ(l2, l);
    EXPECT_EQ(d2, d);
    EXPECT_EQ(v2, v);
    EXPECT_EQ(w2, w);
}

TEST(ArchivePrimitives, EveryPrimitiveCutShortIsTruncated) {
    wire::Bytes three;
    three.header().u8(1).u8(2).u8(3);
    {
        xcMemoryArchive ar(three.data());
        unsigned long v = 0;
        EXPECT_THROW(ar || v, xcArchive::Truncated);
    }
    {
        xcMemoryArchive ar(three.data());
        long v = 0;
        EXPECT_THROW(ar || v, xcArchive::Truncated);
    }
    {
        xcMemoryArchive ar(three.data());
        double v = 0;
        EXPECT_THROW(ar || v, xcArchive::Truncated);
    }
    {
        xcMemoryArchive ar(withHeader(wire::Bytes().f64(1.0)).data());
        xcVector<2> v;
        EXPECT_THROW(ar || v, xcArchive::Truncated);
    }
    {
        xcMemoryArchive ar(withHeader(wire::Bytes().f64(1.0).f64(2.0).u16(5)).data());
        xcEdgelet e;
        EXPECT_THROW(ar || e, xcArchive::Truncated);
    }
    {
        wire::Bytes empty;
        empty.header();
        xcMemoryArchive ar(empty.data());
        unsigned char c = 0;
        bool b = false;
        EXPECT_THROW(ar || c, xcArchive::Truncated);
        EXPECT_THROW(ar || b, xcArchive::Truncated);
    }
}

TEST(ArchivePrimitives, TruncatedMessageSaysHowManyBytesWereMissing) {
    wire::Bytes b;
    b.header().u8(1);
    xcMemoryArchive ar(b.data());
    double d = 0;
    const auto e = support::caught<xcArchive::Truncated>([&] { ar || d; });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->errorNumber(), xnErrorNumber::ArchiveTruncated);
    EXPECT_TRUE(support::says(*e, "8 bytes needed, 1 left")) << e->what();
}

// ---- strings and counts against the bytes left ----

TEST(ArchiveCounts, HugeStringLengthThrowsBeforeAllocating) {
    wire::Bytes b;
    b.header().u32(4294967295u).raw("0123456789");
    xcMemoryArchive ar(b.data());
    std::wstring s;
    EXPECT_THROW(ar || s, xcArchive::CountTooLarge);
    EXPECT_EQ(s.capacity(), std::wstring().capacity());
    xcMemoryArchive ar2(b.data());
    std::string bytes;
    EXPECT_THROW(ar2 || bytes, xcArchive::CountTooLarge);
    EXPECT_EQ(bytes.capacity(), std::string().capacity());
}

TEST(ArchiveCounts, StringLengthOneMoreThanTheBytesLeftThrows) {
    wire::Bytes b;
    b.header().u32(4).raw("abc");
    xcMemoryArchive ar(b.data());
    std::wstring s;
    EXPECT_THROW(ar || s, xcArchive::CountTooLarge);
}

TEST(ArchiveCounts, CheckCountComparesWithTheBytesLeft) {
    wire::Bytes b;
    b.header().raw("0123456789");  // 10 bytes left
    xcMemoryArchive ar(b.data());
    EXPECT_NO_THROW(ar.checkCount(5, 2));
    EXPECT_THROW(ar.checkCount(6, 2), xcArchive::CountTooLarge);
    EXPECT_THROW(ar.checkCount(4294967295u, 1), xcArchive::CountTooLarge);
    EXPECT_NO_THROW(ar.checkCount(1u << 30, 0));
    xcMemoryArchive out;
    EXPECT_NO_THROW(out.checkCount(std::numeric_limits<std::uint64_t>::max(), 16));
}

// ---- the vector record ----

TEST(ArchiveVectorRecord, PointsAreFormatByteCountAndElements) {
    std::vector<xcVector<2>> points{{1.0, 2.0}, {-3.5, 0.25}};
    xcMemoryArchive ar;
    ar || points;
    wire::Bytes expected;
    expected.vec(2).f64(1.0).f64(2.0).f64(-3.5).f64(0.25);
    EXPECT_EQ(body(ar), expected.data());
}

TEST(ArchiveVectorRecord, EmptyVectorIsFiveBytes) {
    std::vector<xcVector<2>> none;
    EXPECT_EQ(storeOne(none), (Bytes{0, 0, 0, 0, 0}));
    std::vector<long> longs;
    EXPECT_EQ(storeOne(longs), (Bytes{0, 0, 0, 0, 0}));
}

TEST(ArchiveVectorRecord, OtherElementTypesGoThroughTheirOperators) {
    std::vector<long> longs{-1, 2};
    EXPECT_EQ(storeOne(longs), wire::Bytes().vec(2).u32(0xFFFFFFFFu).u32(2).data());
    std::vector<std::wstring> strings{L"a", L""};
    EXPECT_EQ(storeOne(strings), wire::Bytes().vec(2).str("a").str("").data());
    std::vector<xcEdgelet> edgelets{xcEdgelet(xcVector<2>(1, 2), 3, xcAngle8(4))};
    EXPECT_EQ(storeOne(edgelets), wire::Bytes().vec(1).f64(1).f64(2).u16(3).u8(4).data());
}

TEST(ArchiveVectorRecord, RandomPointsRoundTripExactly) {
    std::mt19937_64 gen(7);
    std::vector<xcVector<2>> points;
    for (int i = 0; i < 1000; ++i)
        points.emplace_back(fromBits(gen()), fromBits(gen()));
    const std::vector<xcVector<2>> back = roundTrip(points);
    ASSERT_EQ(back.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        ASSERT_EQ(bitsOf(back[i].x()), bitsOf(points[i].x())) << i;
        ASSERT_EQ(bitsOf(back[i].y()), bitsOf(points[i].y())) << i;
    }
}

TEST(ArchiveVectorRecord, VectorsOfOtherTypesRoundTrip) {
    const std::vector<unsigned long> counts{0, 1, 4294967295ul};
    EXPECT_EQ(roundTrip(counts), counts);
    const std::vector<std::wstring> names{L"\u00E9", L"", L"x"};
    EXPECT_EQ(roundTrip(names), names);
    const std::vector<xcEdgelet> edgelets{xcEdgelet(xcVector<2>(1, 2), 3, xcAngle8(4)),
                                          xcEdgelet()};
    EXPECT_EQ(roundTrip(edgelets), edgelets);
    const std::vector<double> doubles{0.5, -0.0, 1e-310};
    EXPECT_EQ(roundTrip(doubles), doubles);
}

TEST(ArchiveVectorRecord, LoadingReplacesTheContents) {
    wire::Bytes b;
    b.header().vec(1).f64(9).f64(8);
    xcMemoryArchive ar(b.data());
    std::vector<xcVector<2>> v(5, xcVector<2>(1, 1));
    ar || v;
    EXPECT_EQ(v, (std::vector<xcVector<2>>{{9, 8}}));
}

TEST(ArchiveVectorRecord, FormatByteOtherThanZeroIsUnknownVersion) {
    wire::Bytes b;
    b.header().u8(1).u32(0);
    xcMemoryArchive ar(b.data());
    std::vector<xcVector<2>> v;
    const auto e = support::caught<xcArchive::UnknownVersion>([&] { ar || v; });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->source(), "");
    EXPECT_EQ(e->line(), 0);
    EXPECT_EQ(e->errorNumber(), xnErrorNumber::ArchiveUnknownVersion);
}

TEST(ArchiveVectorRecord, MaximalCountWithTenBytesLeftThrowsBeforeAllocating) {
    wire::Bytes b;
    b.header().vec(4294967295u).raw("0123456789");
    {
        xcMemoryArchive ar(b.data());
        std::vector<xcVector<2>> points;
        EXPECT_THROW(ar || points, xcArchive::CountTooLarge);
        EXPECT_EQ(points.capacity(), 0u);
    }
    {
        xcMemoryArchive ar(b.data());
        std::vector<unsigned char> bytes;
        EXPECT_THROW(ar || bytes, xcArchive::CountTooLarge);
        EXPECT_EQ(bytes.capacity(), 0u);
    }
    {
        xcMemoryArchive ar(b.data());
        std::vector<std::wstring> strings;
        EXPECT_THROW(ar || strings, xcArchive::CountTooLarge);
        EXPECT_EQ(strings.capacity(), 0u);
    }
}

TEST(ArchiveVectorRecord, CountIsCheckedWithTheElementWireSize) {
    // Two points need 32 bytes; 31 are left.
    wire::Bytes b;
    b.header().vec(2).raw(std::string(31, '\0'));
    xcMemoryArchive ar(b.data());
    std::vector<xcVector<2>> points;
    EXPECT_THROW(ar || points, xcArchive::CountTooLarge);
    wire::Bytes enough;
    enough.header().vec(2).raw(std::string(32, '\0'));
    EXPECT_EQ(loadOne<std::vector<xcVector<2>>>(enough).size(), 2u);
}

TEST(ArchiveVectorRecord, ElementsCutShortAreTruncated) {
    // Two strings of at least 4 bytes each fit the count check, but the second is missing.
    wire::Bytes b;
    b.header().vec(2).str("abcd");
    xcMemoryArchive ar(b.data());
    std::vector<std::wstring> strings;
    EXPECT_THROW(ar || strings, xcArchive::Truncated);
}

// ---- memory archive ----

TEST(MemoryArchive, LoadsFromBorrowedBytesWithoutCopying) {
    xcMemoryArchive out;
    double d = 6.5;
    out || d;
    std::vector<unsigned char> bytes = out.bytes();
    xcMemoryArchive in(bytes.data(), bytes.size());
    EXPECT_EQ(in.bytesLeft(), 8u);
    double back = 0;
    in || back;
    EXPECT_EQ(back, 6.5);
    EXPECT_EQ(in.bytesLeft(), 0u);
}

TEST(MemoryArchive, LoadingFromACopyIsIndependentOfTheSource) {
    xcMemoryArchive out;
    long v = 42;
    out || v;
    std::vector<unsigned char> bytes = out.bytes();
    xcMemoryArchive in(bytes);
    bytes.assign(bytes.size(), 0xEE);
    long back = 0;
    in || back;
    EXPECT_EQ(back, 42);
}

// ---- file archive ----

std::string tempPath(const std::string& name) {
    return ::testing::TempDir() + "archive_test_" + name;
}

TEST(FileArchive, RoundTrip) {
    const std::string path = tempPath("round_trip.xca");
    std::vector<xcVector<2>> points{{1, 2}, {3, 4}, {5, 6}};
    std::wstring label = L"\u00E9tiquette";
    long n = -7;
    {
        xcFileArchive out(path, xcFileArchive::store);
        EXPECT_TRUE(out.isStoring());
        EXPECT_EQ(out.path(), path);
        out || points || label || n;
        out.close();
    }
    std::vector<xcVector<2>> points2;
    std::wstring label2;
    long n2 = 0;
    xcFileArchive in(path, xcFileArchive::load);
    EXPECT_TRUE(in.isLoading());
    EXPECT_EQ(in.bytesLeft(),
              5u + 48u + 4u + 10u + 4u);  // vector, points, string count, UTF-8, long
    in || points2 || label2 || n2;
    EXPECT_EQ(points2, points);
    EXPECT_EQ(label2, label);
    EXPECT_EQ(n2, n);
    EXPECT_EQ(in.bytesLeft(), 0u);
    std::remove(path.c_str());
}

TEST(FileArchive, FileBytesEqualMemoryBytes) {
    const std::string path = tempPath("same_bytes.xca");
    double d = 3.25;
    xcMemoryArchive mem;
    mem || d;
    {
        xcFileArchive file(path, xcFileArchive::store);
        file || d;
    }  // the destructor closes the file
    std::FILE* f = std::fopen(path.c_str(), "rb");
    ASSERT_NE(f, nullptr);
    std::vector<unsigned char> bytes(64);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), f));
    std::fclose(f);
    EXPECT_EQ(bytes, mem.bytes());
    std::remove(path.c_str());
}

TEST(FileArchive, MissingFileThrowsNamingThePath) {
    const std::string path = tempPath("does_not_exist.xca");
    std::remove(path.c_str());
    const auto e =
        support::caught<xcArchive::FileError>([&] { xcFileArchive in(path, xcFileArchive::load); });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->errorNumber(), xnErrorNumber::ArchiveFileError);
    EXPECT_TRUE(support::says(*e, path)) << e->what();
}

TEST(FileArchive, UncreatableFileThrowsNamingThePath) {
    const std::string path = tempPath("no_such_dir/sub/x.xca");
    const auto e = support::caught<xcArchive::FileError>(
        [&] { xcFileArchive out(path, xcFileArchive::store); });
    ASSERT_TRUE(e);
    EXPECT_TRUE(support::says(*e, path)) << e->what();
}

TEST(FileArchive, TruncatedFileThrowsNamingThePath) {
    const std::string path = tempPath("short.xca");
    {
        xcFileArchive out(path, xcFileArchive::store);
        unsigned long v = 1;
        out || v;
    }
    xcFileArchive in(path, xcFileArchive::load);
    double d = 0;
    const auto e = support::caught<xcArchive::Truncated>([&] { in || d; });
    ASSERT_TRUE(e);
    EXPECT_TRUE(support::says(*e, path)) << e->what();
    std::remove(path.c_str());
}

TEST(FileArchive, NotAnArchiveIsBadFormat) {
    const std::string path = tempPath("not_an_archive.txt");
    std::FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fputs("hello, world", f);
    std::fclose(f);
    EXPECT_THROW(xcFileArchive(path, xcFileArchive::load), xcArchive::BadFormat);
    std::remove(path.c_str());
}

TEST(FileArchive, HugeCountInAFileThrowsBeforeAllocating) {
    const std::string path = tempPath("huge_count.xca");
    wire::Bytes b;
    b.header().vec(4294967295u).raw("0123456789");
    std::FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fwrite(b.data().data(), 1, b.size(), f);
    std::fclose(f);
    xcFileArchive in(path, xcFileArchive::load);
    std::vector<xcVector<2>> points;
    EXPECT_THROW(in || points, xcArchive::CountTooLarge);
    EXPECT_EQ(points.capacity(), 0u);
    std::remove(path.c_str());
}

TEST(FileArchive, TransferAfterCloseThrows) {
    const std::string path = tempPath("closed.xca");
    xcFileArchive out(path, xcFileArchive::store);
    out.close();
    EXPECT_NO_THROW(out.close());
    double d = 1;
    EXPECT_THROW(out || d, xcArchive::FileError);
    std::remove(path.c_str());
}

// A file cannot lend its bytes: nothing is read, and the points arrive through the copy.
TEST(FileArchive, LendsNothingAndStillLoadsPointBlocks) {
    const std::string path = tempPath("lend.xca");
    std::vector<xcVector<2>> points{{1.5, -2}, {3, 4.25}};
    {
        xcFileArchive out(path, xcFileArchive::store);
        xfSerializeVector(out, points);
        out.close();
    }
    xcFileArchive in(path, xcFileArchive::load);
    const std::uint64_t left = in.bytesLeft();
    EXPECT_EQ(in.lendBytes(4), nullptr);
    EXPECT_EQ(in.bytesLeft(), left);
    std::vector<xcVector<2>> back;
    xfSerializeVector(in, back);
    EXPECT_EQ(back, points);
    std::remove(path.c_str());
}

}  // namespace
