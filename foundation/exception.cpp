#include <atomic>
#include <cstdio>
#include <sstream>

#include <foundation/archive.h>
#include <foundation/exception.h>

xcException::~xcException() = default;

xcException::xcException(const xcException& other) : xcPersistent(other), std::exception(other) {}

xcException& xcException::operator=(const xcException& other) {
    xcPersistent::operator=(other);
    std::exception::operator=(other);
    return *this;
}

void xcException::message_(std::wostream&) const {}

std::wstring xcException::message() const {
    std::wostringstream os;
    message_(os);
    return os.str();
}

const char* xcException::what() const noexcept {
    try {
        what_ = xfToUtf8(message());
        if (what_.empty()) {
            char buf[40];
            std::snprintf(buf, sizeof buf, "error 0x%lX",
                          static_cast<unsigned long>(errorNumber()));
            what_ = buf;
        }
        return what_.c_str();
    } catch (...) {
        return "xcException";
    }
}

void xcException::dispatchSerialize(xcArchive& ar) {
    dispatchPart(ar, this, 0, [&](unsigned char version) {
        checkVersion(version, 0, "xcException", 0);
        xcPersistent::dispatchSerialize(ar);
    });
}

xcExceptionWithString::xcExceptionWithString(const std::wstring& message)
    : message_text_(message) {}
xcExceptionWithString::xcExceptionWithString(const xcExceptionWithString& other)
    : xcPersistent(other), xcException(other), message_text_(other.message_text_) {}
xcExceptionWithString& xcExceptionWithString::operator=(const xcExceptionWithString& other) {
    xcException::operator=(other);
    message_text_ = other.message_text_;
    return *this;
}
xcExceptionWithString::~xcExceptionWithString() = default;

void xcExceptionWithString::message_(std::wostream& os) const {
    os << message_text_;
}

void xcExceptionWithString::dispatchSerialize(xcArchive& ar) {
    dispatchPart(ar, this, 0, [&](unsigned char version) {
        checkVersion(version, 0, "xcExceptionWithString", 0);
        xcException::dispatchSerialize(ar);
        ar || message_text_;
    });
}

xcMathError::Singular::Singular(const std::wstring& message) : xcExceptionT(message) {}
xcMathError::Singular::~Singular() = default;
xcMathError::NotFinite::NotFinite(const std::wstring& message) : xcExceptionT(message) {}
xcMathError::NotFinite::~NotFinite() = default;
xcPel::BadWindow::BadWindow(const std::wstring& message) : xcExceptionT(message) {}
xcPel::BadWindow::~BadWindow() = default;

namespace {
// The foundation's exceptions can be stored in archives like any persistent object.
const xc_Instantiator kSingularClass(typeid(xcMathError::Singular), &xcMathError::Singular::make);
const xc_Instantiator kNotFiniteClass(typeid(xcMathError::NotFinite),
                                      &xcMathError::NotFinite::make);
const xc_Instantiator kBadWindowClass(typeid(xcPel::BadWindow), &xcPel::BadWindow::make);
}  // namespace

namespace {
void defaultAssertHandler(const char* file, int line) {
    std::fprintf(stderr, "assertion failed: %s:%d\n", file ? file : "?", line);
}
std::atomic<xcAssertHandler> gAssertHandler{&defaultAssertHandler};
}  // namespace

void xstd_assert_(const char* file, int line) {
    gAssertHandler.load()(file, line);
}

xcAssertHandler xfSetAssertHandler(xcAssertHandler handler) {
    return gAssertHandler.exchange(handler ? handler : &defaultAssertHandler);
}

std::string xfToUtf8(const std::wstring& text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned long c = static_cast<unsigned long>(text[i]);
        if (sizeof(wchar_t) == 2 && c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size()) {
            const unsigned long lo = static_cast<unsigned long>(text[i + 1]);
            if (lo >= 0xDC00 && lo <= 0xDFFF) {
                c = 0x10000 + ((c - 0xD800) << 10) + (lo - 0xDC00);
                ++i;
            }
        }
        if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF)
            c = 0xFFFD;
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}
