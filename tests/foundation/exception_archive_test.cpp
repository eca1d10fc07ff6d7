#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/archive.h>
#include <foundation/fit.h>

#include "archive_support.h"

namespace {

std::vector<unsigned char> storeException(const xcException& e) {
    xcMemoryArchive out;
    xcPersistent* unused = nullptr;
    xcPersistent::serializePointer(out, &e, unused);
    return out.bytes();
}

std::unique_ptr<xcException> loadException(const std::vector<unsigned char>& bytes) {
    xcMemoryArchive in(bytes);
    xcPersistent* p = nullptr;
    xcPersistent::serializePointer(in, nullptr, p);
    std::unique_ptr<xcPersistent> owner(p);
    EXPECT_EQ(in.bytesLeft(), 0u);
    auto* e = dynamic_cast<xcException*>(p);
    if (e)
        owner.release();
    return std::unique_ptr<xcException>(e);
}

TEST(ExceptionArchive, RecordWithStringIsThreeVersionBytesAndTheMessage) {
    const std::vector<unsigned char> bytes = storeException(xcMathError::Singular(L"sing"));
    // xcExceptionWithString, xcException and xcPersistent versions, then the message.
    wire::Bytes expected;
    expected.header().object("xcMathError::Singular").u8(0).u8(0).u8(0).str("sing");
    EXPECT_EQ(bytes, expected.data());
}

TEST(ExceptionArchive, FoundationExceptionsRoundTripWithClassNumberAndMessage) {
    const std::vector<std::shared_ptr<xcException>> samples{
        std::make_shared<xcMathError::Singular>(L"det = 0"),
        std::make_shared<xcMathError::NotFinite>(L"NaN \u00E0 l'entr\u00E9e"),
        std::make_shared<xcPel::BadWindow>(L""),
        std::make_shared<xcArchive::BadFormat>(),
        std::make_shared<xcArchive::Truncated>(L"cut"),
        std::make_shared<xcArchive::UnknownClass>(),
        std::make_shared<xcArchive::BadReference>(),
        std::make_shared<xcArchive::CountTooLarge>(),
        std::make_shared<xcArchive::FileError>(L"cannot open \"/x\""),
        std::make_shared<xcArchive::ValueOutOfRange>(),
        std::make_shared<xcArchive::BadData>(),
        std::make_shared<xcArchive::UnregisteredClass>(),
        std::make_shared<xcFitError::TooFewPoints>(),
        std::make_shared<xcFitError::Degenerate>(L"collinear"),
        std::make_shared<xcFitError::RmsTooLarge>(),
    };
    for (const auto& e : samples) {
        const std::unique_ptr<xcException> back = loadException(storeException(*e));
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(typeid(*back), typeid(*e)) << typeid(*e).name();
        EXPECT_EQ(back->errorNumber(), e->errorNumber());
        EXPECT_EQ(back->message(), e->message());
    }
}

TEST(ExceptionArchive, UnknownVersionKeepsSourceAndLine) {
    const xcArchive::UnknownVersion e("cntr/region", 1234);
    const std::vector<unsigned char> bytes = storeException(e);
    wire::Bytes expected;
    expected.header().object("xcArchive::UnknownVersion").u8(0).u8(0).u8(0).u8(0);
    expected.str("unknown record version (cntr/region, 1234)").str("cntr/region").u32(1234);
    EXPECT_EQ(bytes, expected.data());

    const std::unique_ptr<xcException> back = loadException(bytes);
    const auto* uv = dynamic_cast<const xcArchive::UnknownVersion*>(back.get());
    ASSERT_NE(uv, nullptr);
    EXPECT_EQ(uv->source(), "cntr/region");
    EXPECT_EQ(uv->line(), 1234);
    EXPECT_EQ(uv->message(), e.message());
}

TEST(ExceptionArchive, LoadedExceptionCanBeRethrownAsItsClass) {
    std::unique_ptr<xcException> back =
        loadException(storeException(xcMathError::Singular(L"again")));
    ASSERT_NE(back, nullptr);
    const auto e =
        support::caught<xcMathError::Singular>([&] { back.release()->suicideAndRethrow(); });
    ASSERT_TRUE(e);
    EXPECT_STREQ(e->what(), "again");
}

TEST(ExceptionArchive, UnknownVersionOfEachLevelNamesTheLevel) {
    struct Case {
        unsigned v1, v2, v3;
        const char* source;
    };
    for (const Case& c : {Case{1, 0, 0, "xcExceptionWithString"}, Case{0, 1, 0, "xcException"},
                          Case{0, 0, 1, "xcPersistent"}}) {
        wire::Bytes b;
        b.header().object("xcMathError::Singular").u8(c.v1).u8(c.v2).u8(c.v3).str("");
        xcMemoryArchive in(b.data());
        xcPersistent* p = nullptr;
        try {
            xcPersistent::serializePointer(in, nullptr, p);
            delete p;
            ADD_FAILURE() << "no exception for " << c.source;
        } catch (const xcArchive::UnknownVersion& e) {
            EXPECT_EQ(e.source(), c.source);
            EXPECT_EQ(e.line(), 0);
        }
    }
}

TEST(ExceptionArchive, MessageWithInvalidUtf8IsBadDataAndNothingLeaks) {
    wire::Bytes b;
    b.header().object("xcPel::BadWindow").u8(0).u8(0).u8(0).u32(2).u8(0xC0).u8(0x80);
    xcMemoryArchive in(b.data());
    xcPersistent* p = nullptr;
    EXPECT_THROW(xcPersistent::serializePointer(in, nullptr, p), xcArchive::BadData);
    EXPECT_EQ(p, nullptr);
}

}  // namespace
