#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include <cntr/contourdefs.h>
#include <foundation/archive.h>

#include "archive_bytes.h"

using Defs = xcContourDefs;

// ---- enumerations ----

TEST(ContourDefsEnums, DiameterModeValues) {
    EXPECT_EQ(static_cast<int>(Defs::furthestVertexPair), 0);
    EXPECT_EQ(static_cast<int>(Defs::fromFirstVertex), 1);
}

TEST(ContourDefsEnums, IntersectionModeValues) {
    EXPECT_EQ(static_cast<int>(Defs::keepOutline), 0);
    EXPECT_EQ(static_cast<int>(Defs::useOuterHull), 1);
    EXPECT_EQ(static_cast<int>(Defs::useRegularized), 2);
}

TEST(ContourDefsEnums, DrawModeValues) {
    EXPECT_EQ(static_cast<int>(Defs::drawNormal), 0);
    EXPECT_EQ(static_cast<int>(Defs::drawHighlighted), 1);
}

TEST(ContourDefsEnums, HolderIsCopyAssignable) {
    EXPECT_TRUE(std::is_copy_assignable<Defs>::value);
    EXPECT_TRUE(std::is_empty<Defs>::value);
}

// ---- error numbers ----

TEST(ContourDefsErrors, EmptyContourNumber) {
    EXPECT_EQ(Defs::EmptyContour().errorNumber(), 0x10004680);
    EXPECT_EQ(Defs::EmptyContour().errorNumber(), 268453504);
}

TEST(ContourDefsErrors, EmptyRegionSetNumber) {
    EXPECT_EQ(Defs::EmptyRegionSet().errorNumber(), 0x10004682);
    EXPECT_EQ(Defs::EmptyRegionSet().errorNumber(), 268453506);
}

TEST(ContourDefsErrors, BadParamsNumber) {
    EXPECT_EQ(Defs::BadParams().errorNumber(), 0x10004683);
    EXPECT_EQ(Defs::BadParams().errorNumber(), 268453507);
}

TEST(ContourDefsErrors, RegionCannotBeSetOpenNumber) {
    EXPECT_EQ(Defs::RegionCannotBeSetOpen().errorNumber(), 0x10004684);
    EXPECT_EQ(Defs::RegionCannotBeSetOpen().errorNumber(), 268453508);
}

TEST(ContourDefsErrors, NoClassUsesTheGapNumber) {
    const long gap = 0x10004681;
    EXPECT_NE(Defs::EmptyContour().errorNumber(), gap);
    EXPECT_NE(Defs::EmptyRegionSet().errorNumber(), gap);
    EXPECT_NE(Defs::BadParams().errorNumber(), gap);
    EXPECT_NE(Defs::RegionCannotBeSetOpen().errorNumber(), gap);
}

TEST(ContourDefsErrors, ErrorsIsAbstract) { EXPECT_TRUE(std::is_abstract<Defs::Errors>::value); }

TEST(ContourDefsErrors, MessageIsKept) {
    const Defs::BadParams e(L"diameterMode is not one of the valid enums");
    EXPECT_EQ(e.message(), L"diameterMode is not one of the valid enums");
    EXPECT_STREQ(e.what(), "diameterMode is not one of the valid enums");
}

TEST(ContourDefsErrors, DefaultMessageIsEmpty) {
    EXPECT_EQ(Defs::EmptyContour().message(), L"");
}

TEST(ContourDefsErrors, CopyKeepsMessageAndNumber) {
    const Defs::BadParams a(L"first");
    Defs::BadParams b(a);
    EXPECT_EQ(b.message(), L"first");
    Defs::BadParams c(L"second");
    c = a;
    EXPECT_EQ(c.message(), L"first");
    EXPECT_EQ(c.errorNumber(), 0x10004683);
}

// ---- catchability through every base ----

template <class E, class Base>
long catchAs(const std::wstring& text) {
    try {
        throw E(text);
    } catch (const Base& b) {
        return b.errorNumber();
    }
}

template <class E>
void expectCatchableThroughEveryBase(long number) {
    EXPECT_EQ((catchAs<E, E>(L"")), number);
    EXPECT_EQ((catchAs<E, Defs::Errors>(L"")), number);
    EXPECT_EQ((catchAs<E, xcExceptionWithString>(L"")), number);
    EXPECT_EQ((catchAs<E, xcException>(L"")), number);
    try {
        throw E(L"");
    } catch (const xcPersistent& p) {
        EXPECT_EQ(dynamic_cast<const xcException&>(p).errorNumber(), number);
    }
    try {
        throw E(L"x");
    } catch (const std::exception& s) {
        EXPECT_STREQ(s.what(), "x");
    }
}

TEST(ContourDefsErrors, EmptyContourCatchableThroughEveryBase) {
    expectCatchableThroughEveryBase<Defs::EmptyContour>(0x10004680);
}
TEST(ContourDefsErrors, EmptyRegionSetCatchableThroughEveryBase) {
    expectCatchableThroughEveryBase<Defs::EmptyRegionSet>(0x10004682);
}
TEST(ContourDefsErrors, BadParamsCatchableThroughEveryBase) {
    expectCatchableThroughEveryBase<Defs::BadParams>(0x10004683);
}
TEST(ContourDefsErrors, RegionCannotBeSetOpenCatchableThroughEveryBase) {
    expectCatchableThroughEveryBase<Defs::RegionCannotBeSetOpen>(0x10004684);
}

// ---- suicideAndRethrow ----

// Records its own destruction, so a test can see that the heap object was freed.
template <class E>
class DeathWatch : public E {
public:
    explicit DeathWatch(bool* died) : E(L"watched"), died_(died) {}
    ~DeathWatch() override { *died_ = true; }

private:
    bool* died_;
};

template <class E>
void expectSuicideAndRethrow(long number) {
    bool died = false;
    Defs::Errors* heap = new DeathWatch<E>(&died);
    bool caughtConcrete = false;
    try {
        heap->suicideAndRethrow();
    } catch (const E& e) {
        caughtConcrete = true;
        EXPECT_EQ(e.errorNumber(), number);
        EXPECT_EQ(e.message(), L"watched");
        EXPECT_TRUE((std::is_same<decltype(e), const E&>::value));
    }
    EXPECT_TRUE(caughtConcrete);
    EXPECT_TRUE(died);
}

TEST(ContourDefsErrors, EmptyContourSuicideAndRethrow) {
    expectSuicideAndRethrow<Defs::EmptyContour>(0x10004680);
}
TEST(ContourDefsErrors, EmptyRegionSetSuicideAndRethrow) {
    expectSuicideAndRethrow<Defs::EmptyRegionSet>(0x10004682);
}
TEST(ContourDefsErrors, BadParamsSuicideAndRethrow) {
    expectSuicideAndRethrow<Defs::BadParams>(0x10004683);
}
TEST(ContourDefsErrors, RegionCannotBeSetOpenSuicideAndRethrow) {
    expectSuicideAndRethrow<Defs::RegionCannotBeSetOpen>(0x10004684);
}

TEST(ContourDefsErrors, SuicideAndRethrowCaughtThroughBase) {
    Defs::Errors* heap = new Defs::EmptyContour(L"");
    try {
        heap->suicideAndRethrow();
        FAIL() << "nothing thrown";
    } catch (const xcException& e) {
        EXPECT_EQ(e.errorNumber(), 0x10004680);
        EXPECT_NE(dynamic_cast<const Defs::EmptyContour*>(&e), nullptr);
    }
}

// ---- persistence ----

namespace {

std::vector<unsigned char> storeException(const xcPersistent& e) {
    xcMemoryArchive out;
    xcPersistent* unused = nullptr;
    xcPersistent::serializePointer(out, &e, unused);
    return out.bytes();
}

// Loads one pointer record; the caller owns the object.
std::unique_ptr<xcPersistent> loadObject(const std::vector<unsigned char>& bytes) {
    xcMemoryArchive in(bytes);
    xcPersistent* p = nullptr;
    xcPersistent::serializePointer(in, nullptr, p);
    return std::unique_ptr<xcPersistent>(p);
}

// The stored record of a concrete exception: its version byte, the one of Errors, then the
// xcException record (a version byte and the xcPersistent version byte), all 0.
testbytes::Bytes exceptionRecord(const std::string& name, unsigned concreteVersion,
                                 unsigned errorsVersion) {
    testbytes::Bytes b = testbytes::header();
    testbytes::newObject(b, name);
    testbytes::u8(b, concreteVersion);
    testbytes::u8(b, errorsVersion);
    testbytes::u8(b, 0);
    testbytes::u8(b, 0);
    return b;
}

template <class E>
void expectStoreAndReload(const std::string& name, long number) {
    const E original(L"this message is not stored");
    const std::vector<unsigned char> bytes = storeException(original);
    EXPECT_EQ(bytes, exceptionRecord(name, 0, 0));
    const std::unique_ptr<xcPersistent> loaded = loadObject(bytes);
    const E* back = dynamic_cast<const E*>(loaded.get());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->errorNumber(), number);
    EXPECT_EQ(back->message(), L"");
}

template <class E>
void expectVersionOneRefused(const std::string& name) {
    try {
        loadObject(exceptionRecord(name, 1, 0));
        FAIL() << "version 1 accepted";
    } catch (const xcArchive::UnknownVersion& e) {
        EXPECT_EQ(e.source(), name);
        EXPECT_EQ(e.line(), 0);
    }
}

}  // namespace

TEST(ContourDefsArchive, EmptyContourStoresAndReloadsWithEmptyMessage) {
    expectStoreAndReload<Defs::EmptyContour>("xcContourDefs::EmptyContour", 0x10004680);
}
TEST(ContourDefsArchive, EmptyRegionSetStoresAndReloadsWithEmptyMessage) {
    expectStoreAndReload<Defs::EmptyRegionSet>("xcContourDefs::EmptyRegionSet", 0x10004682);
}
TEST(ContourDefsArchive, BadParamsStoresAndReloadsWithEmptyMessage) {
    expectStoreAndReload<Defs::BadParams>("xcContourDefs::BadParams", 0x10004683);
}
TEST(ContourDefsArchive, RegionCannotBeSetOpenStoresAndReloadsWithEmptyMessage) {
    expectStoreAndReload<Defs::RegionCannotBeSetOpen>("xcContourDefs::RegionCannotBeSetOpen",
                                                       0x10004684);
}

TEST(ContourDefsArchive, EmptyContourVersionOneNamesClass) {
    expectVersionOneRefused<Defs::EmptyContour>("xcContourDefs::EmptyContour");
}
TEST(ContourDefsArchive, EmptyRegionSetVersionOneNamesClass) {
    expectVersionOneRefused<Defs::EmptyRegionSet>("xcContourDefs::EmptyRegionSet");
}
TEST(ContourDefsArchive, BadParamsVersionOneNamesClass) {
    expectVersionOneRefused<Defs::BadParams>("xcContourDefs::BadParams");
}
TEST(ContourDefsArchive, RegionCannotBeSetOpenVersionOneNamesClass) {
    expectVersionOneRefused<Defs::RegionCannotBeSetOpen>("xcContourDefs::RegionCannotBeSetOpen");
}

TEST(ContourDefsArchive, ErrorsLevelVersionOneNamesErrors) {
    try {
        loadObject(exceptionRecord("xcContourDefs::BadParams", 0, 1));
        FAIL() << "Errors version 1 accepted";
    } catch (const xcArchive::UnknownVersion& e) {
        EXPECT_EQ(e.source(), "xcContourDefs::Errors");
        EXPECT_EQ(e.line(), 0);
    }
}

TEST(ContourDefsArchive, ReloadedExceptionCanBeRaisedAndFreed) {
    const std::vector<unsigned char> bytes = storeException(Defs::EmptyContour(L""));
    std::unique_ptr<xcPersistent> loaded = loadObject(bytes);
    auto* error = dynamic_cast<xcException*>(loaded.release());
    ASSERT_NE(error, nullptr);
    EXPECT_THROW(error->suicideAndRethrow(), Defs::EmptyContour);
}

TEST(ContourDefsArchive, EveryTruncationFails) {
    const std::vector<unsigned char> bytes = storeException(Defs::BadParams(L""));
    for (std::size_t n = 0; n < bytes.size(); ++n) {
        const std::vector<unsigned char> prefix(bytes.begin(), bytes.begin() + n);
        EXPECT_THROW(loadObject(prefix), xcException) << "prefix of " << n << " bytes";
    }
}
