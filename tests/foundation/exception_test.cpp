#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/archive.h>
#include <foundation/exception.h>

namespace {

// A concrete exception of the test's own that counts its live instances, so that the freeing
// done by suicideAndRethrow can be observed directly.
class CountedError : public xcExceptionT<CountedError, 0x7E570001> {
  public:
    explicit CountedError(const std::wstring& message) : xcExceptionT(message) { ++live; }
    CountedError(const CountedError& other) : xcPersistent(other), xcExceptionT(other) { ++live; }
    ~CountedError() override { --live; }
    static int live;
};
int CountedError::live = 0;

TEST(Exception, WhatIsTheMessageInUtf8) {
    // e acute U+00E9 -> C3 A9; U+4E2D -> E4 B8 AD; U+1F600 -> F0 9F 98 80.
    const xcMathError::Singular e(L"caf\u00e9 \u4e2d \U0001F600");
    EXPECT_EQ(std::string(e.what()), "caf\xC3\xA9 \xE4\xB8\xAD \xF0\x9F\x98\x80");
    EXPECT_EQ(e.message(), L"caf\u00e9 \u4e2d \U0001F600");
}

TEST(Exception, WhatOfAnAsciiMessage) {
    EXPECT_STREQ(xcPel::BadWindow(L"window out of image").what(), "window out of image");
    EXPECT_STREQ(xcMathError::Singular().what(), "singular matrix");
    EXPECT_STREQ(xcMathError::NotFinite().what(), "non-finite coordinate");
}

TEST(Exception, WhatWithoutMessageNamesTheErrorNumber) {
    // BadWindow has no default message; 0x10001101 is its number.
    const xcPel::BadWindow e;
    EXPECT_EQ(e.message(), L"");
    EXPECT_STREQ(e.what(), "error 0x10001101");
}

TEST(Exception, MessageWritesTheStoredText) {
    const xcMathError::Singular e(L"rank 1");
    std::wostringstream os;
    e.message_(os);
    EXPECT_EQ(os.str(), L"rank 1");
}

TEST(Exception, CopyKeepsMessageAndNumber) {
    const xcMathError::Singular original(L"copied \u00fc");
    const xcMathError::Singular copy(
        original);  // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ(copy.message(), original.message());
    EXPECT_EQ(copy.errorNumber(), original.errorNumber());
    EXPECT_STREQ(copy.what(), "copied \xC3\xBC");
}

TEST(Exception, ErrorNumbersMatchTheirClasses) {
    EXPECT_EQ(xcMathError::Singular().errorNumber(), xnErrorNumber::MathSingular);
    EXPECT_EQ(xcMathError::NotFinite().errorNumber(), xnErrorNumber::MathNotFinite);
    EXPECT_EQ(xcPel::BadWindow().errorNumber(), xnErrorNumber::PelBadWindow);
    EXPECT_EQ(xcArchive::UnknownVersion().errorNumber(), xnErrorNumber::ArchiveUnknownVersion);
    EXPECT_EQ(xcArchive::BadFormat().errorNumber(), xnErrorNumber::ArchiveBadFormat);
    EXPECT_EQ(xcArchive::Truncated().errorNumber(), xnErrorNumber::ArchiveTruncated);
    EXPECT_EQ(xcArchive::UnknownClass().errorNumber(), xnErrorNumber::ArchiveUnknownClass);
    EXPECT_EQ(xcArchive::BadReference().errorNumber(), xnErrorNumber::ArchiveBadReference);
    EXPECT_EQ(xcArchive::CountTooLarge().errorNumber(), xnErrorNumber::ArchiveCountTooLarge);
    EXPECT_EQ(xcArchive::FileError().errorNumber(), xnErrorNumber::ArchiveFileError);
    EXPECT_EQ(xcArchive::ValueOutOfRange().errorNumber(), xnErrorNumber::ArchiveValueOutOfRange);
    EXPECT_EQ(xcArchive::BadData().errorNumber(), xnErrorNumber::ArchiveBadData);
    EXPECT_EQ(xcArchive::UnregisteredClass().errorNumber(),
              xnErrorNumber::ArchiveUnregisteredClass);
}

TEST(Exception, ErrorNumbersAreDistinctAndOutsideTheContourBlock) {
    const std::vector<long> numbers = {
        xnErrorNumber::MathSingular,          xnErrorNumber::MathNotFinite,
        xnErrorNumber::PelBadWindow,          xnErrorNumber::FitTooFewPoints,
        xnErrorNumber::FitDegenerate,         xnErrorNumber::FitRmsTooLarge,
        xnErrorNumber::ArchiveUnknownVersion, xnErrorNumber::ArchiveBadFormat,
        xnErrorNumber::ArchiveTruncated,      xnErrorNumber::ArchiveUnknownClass,
        xnErrorNumber::ArchiveBadReference,   xnErrorNumber::ArchiveCountTooLarge,
        xnErrorNumber::ArchiveFileError,      xnErrorNumber::ArchiveValueOutOfRange,
        xnErrorNumber::ArchiveBadData,        xnErrorNumber::ArchiveUnregisteredClass};
    const std::set<long> unique(numbers.begin(), numbers.end());
    EXPECT_EQ(unique.size(), numbers.size());
    for (long n : numbers) {
        EXPECT_FALSE(n >= 0x10004680 && n <= 0x10004684) << std::hex << n;
        EXPECT_NE(n, 0) << "0 is no error number";
    }
}

TEST(Exception, UnknownVersionNamesSourceAndLine) {
    const xcArchive::UnknownVersion e("cntr/contour", 42);
    EXPECT_EQ(e.source(), "cntr/contour");
    EXPECT_EQ(e.line(), 42);
    const xcArchive::UnknownVersion plain;
    EXPECT_EQ(plain.source(), "");
    EXPECT_EQ(plain.line(), 0);
}

TEST(Exception, CatchableAsEveryBase) {
    auto raise = [] { throw xcMathError::Singular(L"x"); };
    EXPECT_THROW(raise(), xcMathError::Singular);
    EXPECT_THROW(raise(), xcExceptionWithString);
    EXPECT_THROW(raise(), xcException);
    EXPECT_THROW(raise(), xcPersistent);
    EXPECT_THROW(raise(), std::exception);
}

TEST(Exception, IsPersistent) {
    xcMathError::Singular e;
    const unsigned long before = e.changeCount();
    e.mutating();
    EXPECT_EQ(e.changeCount(), before + 1);
}

TEST(SuicideAndRethrow, ThrowsTheConcreteType) {
    xcException* heap = new xcMathError::Singular(L"from the heap");
    try {
        heap->suicideAndRethrow();
        FAIL() << "no exception";
    } catch (const xcException& caught) {
        EXPECT_EQ(typeid(caught), typeid(xcMathError::Singular));
        EXPECT_EQ(caught.errorNumber(), xnErrorNumber::MathSingular);
        EXPECT_STREQ(caught.what(), "from the heap");
    }
    // ASan's leak check fails the run if the heap object was not freed.
}

TEST(SuicideAndRethrow, ThrowsTheConcreteTypeOfEachFoundationError) {
    std::vector<xcException*> heap = {new xcMathError::NotFinite, new xcPel::BadWindow(L"w"),
                                      new xcArchive::UnknownVersion("src", 7),
                                      new xcArchive::Truncated};
    std::vector<const std::type_info*> types = {
        &typeid(xcMathError::NotFinite), &typeid(xcPel::BadWindow),
        &typeid(xcArchive::UnknownVersion), &typeid(xcArchive::Truncated)};
    for (std::size_t i = 0; i < heap.size(); ++i) {
        const long number = heap[i]->errorNumber();
        try {
            heap[i]->suicideAndRethrow();
            ADD_FAILURE() << "no exception from " << types[i]->name();
        } catch (const xcException& caught) {
            EXPECT_EQ(typeid(caught), *types[i]);
            EXPECT_EQ(caught.errorNumber(), number);
        }
    }
}

TEST(SuicideAndRethrow, KeepsDerivedData) {
    xcException* heap = new xcArchive::UnknownVersion("cntr/region", 1234);
    try {
        heap->suicideAndRethrow();
        FAIL() << "no exception";
    } catch (const xcArchive::UnknownVersion& caught) {
        EXPECT_EQ(caught.source(), "cntr/region");
        EXPECT_EQ(caught.line(), 1234);
    }
}

TEST(SuicideAndRethrow, FreesTheObject) {
    CountedError::live = 0;
    xcException* heap = new CountedError(L"counted");
    EXPECT_EQ(CountedError::live, 1);
    try {
        heap->suicideAndRethrow();
        FAIL() << "no exception";
    } catch (const CountedError& caught) {
        // Only the thrown object is alive: the heap original is gone.
        EXPECT_EQ(CountedError::live, 1);
        EXPECT_EQ(caught.errorNumber(), 0x7E570001);
        EXPECT_STREQ(caught.what(), "counted");
    }
    EXPECT_EQ(CountedError::live, 0);
}

TEST(Utf8, AsciiIsUnchanged) {
    EXPECT_EQ(xfToUtf8(L"abc 123 ~"), "abc 123 ~");
}

TEST(Utf8, EncodesEachSequenceLength) {
    EXPECT_EQ(xfToUtf8(std::wstring(1, L'\x7F')), "\x7F");
    // U+0080: 110 00010, 10 000000.
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0x80))), "\xC2\x80");
    // U+07FF: 110 11111, 10 111111.
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0x7FF))), "\xDF\xBF");
    // U+0800: 1110 0000, 10 100000, 10 000000.
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0x800))), "\xE0\xA0\x80");
    // U+FFFF: EF BF BF.
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0xFFFF))), "\xEF\xBF\xBF");
    // U+10000: 11110 000, 10 010000, 10 000000, 10 000000.
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0x10000))), "\xF0\x90\x80\x80");
    // U+10FFFF: F4 8F BF BF.
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0x10FFFF))), "\xF4\x8F\xBF\xBF");
}

TEST(Utf8, InvalidCodePointsBecomeReplacementCharacter) {
    if (sizeof(wchar_t) < 4)
        GTEST_SKIP() << "needs 32-bit wchar_t";
    // A lone surrogate and a value past U+10FFFF are no characters: U+FFFD is EF BF BD.
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0xD800))), "\xEF\xBF\xBD");
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0xDFFF))), "\xEF\xBF\xBD");
    EXPECT_EQ(xfToUtf8(std::wstring(1, wchar_t(0x110000))), "\xEF\xBF\xBD");
    EXPECT_EQ(xfToUtf8(std::wstring{L'a', wchar_t(0xDC00), L'b'}),
              "a\xEF\xBF\xBD"
              "b");
}

TEST(Utf8, EmbeddedNulIsKept) {
    const std::string out = xfToUtf8(std::wstring{L'a', L'\0', L'b'});
    EXPECT_EQ(out, std::string("a\0b", 3));
}

// What the test handler saw.
struct AssertRecord {
    int calls = 0;
    std::string file;
    int line = 0;
};
AssertRecord gAssertRecord;

void recordingHandler(const char* file, int line) {
    ++gAssertRecord.calls;
    gAssertRecord.file = file;
    gAssertRecord.line = line;
}

void otherHandler(const char*, int) {}

TEST(AssertHandler, InstalledHandlerReceivesFileAndLine) {
    gAssertRecord = AssertRecord();
    const xcAssertHandler previous = xfSetAssertHandler(&recordingHandler);
    const int line = __LINE__;
    xstd_assert_(__FILE__, line);
    xfSetAssertHandler(previous);
    EXPECT_EQ(gAssertRecord.calls, 1);
    EXPECT_EQ(gAssertRecord.file, __FILE__);
    EXPECT_EQ(gAssertRecord.line, line);
}

TEST(AssertHandler, EachCallReachesTheHandlerAndReturns) {
    gAssertRecord = AssertRecord();
    const xcAssertHandler previous = xfSetAssertHandler(&recordingHandler);
    EXPECT_NO_THROW(xstd_assert_("regionst.cpp", 100));
    EXPECT_NO_THROW(xstd_assert_("somewhere.cpp", 621));
    xfSetAssertHandler(previous);
    EXPECT_EQ(gAssertRecord.calls, 2);
    EXPECT_EQ(gAssertRecord.file, "somewhere.cpp");
    EXPECT_EQ(gAssertRecord.line, 621);
}

TEST(AssertHandler, SetReturnsThePreviousHandler) {
    const xcAssertHandler original = xfSetAssertHandler(&recordingHandler);
    EXPECT_NE(original, nullptr);
    EXPECT_EQ(xfSetAssertHandler(&otherHandler), &recordingHandler);
    EXPECT_EQ(xfSetAssertHandler(original), &otherHandler);
    EXPECT_EQ(xfSetAssertHandler(original), original);  // restored
}

TEST(AssertHandler, NullRestoresTheDefault) {
    const xcAssertHandler original = xfSetAssertHandler(&recordingHandler);
    EXPECT_EQ(xfSetAssertHandler(nullptr), &recordingHandler);
    EXPECT_EQ(xfSetAssertHandler(original), original);  // null installed the default itself
}

TEST(AssertHandler, DefaultWritesOneLineToStderr) {
    const xcAssertHandler original = xfSetAssertHandler(nullptr);
    testing::internal::CaptureStderr();
    xstd_assert_("region.cpp", 621);
    const std::string text = testing::internal::GetCapturedStderr();
    xfSetAssertHandler(original);
    EXPECT_NE(text.find("region.cpp"), std::string::npos) << text;
    EXPECT_NE(text.find("621"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_EQ(text.back(), '\n');
}

TEST(AssertHandler, DefaultToleratesNullFile) {
    const xcAssertHandler original = xfSetAssertHandler(nullptr);
    testing::internal::CaptureStderr();
    xstd_assert_(nullptr, 5);
    const std::string text = testing::internal::GetCapturedStderr();
    xfSetAssertHandler(original);
    EXPECT_NE(text.find('5'), std::string::npos) << text;
}

}  // namespace
