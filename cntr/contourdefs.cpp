#include <cntr/contourdefs.h>

#include <foundation/archive.h>

namespace {

// The persistence convention of one class level: skip a part already visited in this archive,
// pass the version byte (always 0 for the exceptions) and let the level read or write the rest.
template <class Level, class Body>
void dispatchLevel(xcArchive& ar, const Level* self, Body body) {
    if (xcPersistent::haveVisited(ar, self, sizeof(Level))) return;
    unsigned char version = 0;
    ar || version;
    body(version);
    xcPersistent::setVisited(ar, self, sizeof(Level));
}

void requireVersionZero(unsigned char version, const char* qualifiedName) {
    if (version != 0) throw xcArchive::UnknownVersion(qualifiedName, 0);
}

// Raises a heap-allocated exception as its concrete class and frees it in one step.
template <class Concrete>
[[noreturn]] void rethrowAndFree(Concrete* self) {
    Concrete copy(*self);
    delete self;
    throw copy;
}

}  // namespace

xcContourDefs::Errors::Errors(const std::wstring& message) : xcExceptionWithString(message) {}
xcContourDefs::Errors::Errors(const Errors& other) : xcPersistent(other), xcExceptionWithString(other) {}
xcContourDefs::Errors& xcContourDefs::Errors::operator=(const Errors& other) {
    xcExceptionWithString::operator=(other);
    return *this;
}
xcContourDefs::Errors::~Errors() = default;

void xcContourDefs::Errors::dispatchSerialize(xcArchive& ar) {
    dispatchLevel(ar, this, [&](unsigned char version) { serialize_(ar, version); });
}

void xcContourDefs::Errors::serialize_(xcArchive& ar, unsigned char version) {
    requireVersionZero(version, "xcContourDefs::Errors");
    // The xcExceptionWithString layer is skipped on purpose: the message is not stored.
    xcException::dispatchSerialize(ar);
}

// The four concrete classes differ only in their name and number.
#define CNTR_DEFINE_CONTOUR_ERROR(Name, Number)                                              \
    xcContourDefs::Name::Name(const std::wstring& message) : Errors(message) {}             \
    xcContourDefs::Name::Name(const Name& other) : xcPersistent(other), Errors(other) {}    \
    xcContourDefs::Name& xcContourDefs::Name::operator=(const Name& other) {                \
        Errors::operator=(other);                                                           \
        return *this;                                                                       \
    }                                                                                       \
    xcContourDefs::Name::~Name() = default;                                                 \
    long xcContourDefs::Name::errorNumber() const { return Number; }                        \
    void xcContourDefs::Name::suicideAndRethrow() { rethrowAndFree(this); }                 \
    xcPersistent* xcContourDefs::Name::make() { return new Name(std::wstring()); }          \
    xc_Instantiator xcContourDefs::Name::sExemplar(typeid(xcContourDefs::Name),             \
                                                   &xcContourDefs::Name::make);             \
    void xcContourDefs::Name::dispatchSerialize(xcArchive& ar) {                            \
        dispatchLevel(ar, this, [&](unsigned char version) { serialize_(ar, version); });   \
    }                                                                                       \
    void xcContourDefs::Name::serialize_(xcArchive& ar, unsigned char version) {            \
        requireVersionZero(version, "xcContourDefs::" #Name);                               \
        Errors::dispatchSerialize(ar);                                                      \
    }

CNTR_DEFINE_CONTOUR_ERROR(EmptyContour, xnErrorNumber::ContourEmptyContour)
CNTR_DEFINE_CONTOUR_ERROR(EmptyRegionSet, xnErrorNumber::ContourEmptyRegionSet)
CNTR_DEFINE_CONTOUR_ERROR(BadParams, xnErrorNumber::ContourBadParams)
CNTR_DEFINE_CONTOUR_ERROR(RegionCannotBeSetOpen, xnErrorNumber::ContourRegionCannotBeSetOpen)

#undef CNTR_DEFINE_CONTOUR_ERROR
