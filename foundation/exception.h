#ifndef FOUNDATION_EXCEPTION_H
#define FOUNDATION_EXCEPTION_H

#include <exception>
#include <ostream>
#include <string>

#include <foundation/export.h>
#include <foundation/persistent.h>

/// The base of every exception of this project's libraries. Each concrete class has an error
/// number of its own; the message is optional and is written by message_().
class FOUNDATION_API xcException : public virtual xcPersistent, public std::exception {
  public:
    ~xcException() override;

    /// The error number that identifies the kind of error.
    virtual long errorNumber() const = 0;
    /// Throws a copy of this object as its concrete class after deleting this object, which must
    /// therefore have been created with new (archives and make() functions do so).
    virtual void suicideAndRethrow() = 0;
    /// Writes the message. xcException has none and writes nothing.
    virtual void message_(std::wostream& os) const;
    /// The message as a wide string (what message_ writes).
    std::wstring message() const;
    /// The message in UTF-8, or the error number in hexadecimal when there is no message.
    const char* what() const noexcept override;

    /// The record: one version byte (0) and the xcPersistent record.
    void dispatchSerialize(xcArchive& ar) override;

  protected:
    xcException() = default;
    xcException(const xcException& other);
    xcException& operator=(const xcException& other);

  private:
    mutable std::string what_;
};

/// An exception carrying a message string.
class FOUNDATION_API xcExceptionWithString : public xcException {
  public:
    ~xcExceptionWithString() override;
    /// Writes the stored message.
    void message_(std::wostream& os) const override;
    /// The record: one version byte (0), the xcException record, then the message.
    void dispatchSerialize(xcArchive& ar) override;

  protected:
    explicit xcExceptionWithString(const std::wstring& message = std::wstring());
    xcExceptionWithString(const xcExceptionWithString& other);
    xcExceptionWithString& operator=(const xcExceptionWithString& other);
    const std::wstring& text() const { return message_text_; }

  private:
    std::wstring message_text_;
};

/// Error numbers of the foundation's own exceptions. The contour library uses
/// 0x10004680-0x10004684; the foundation stays clear of that block.
namespace xnErrorNumber {
constexpr long MathSingular = 0x10001001;
constexpr long MathNotFinite = 0x10001002;
constexpr long PelBadWindow = 0x10001101;
constexpr long FitTooFewPoints = 0x10001201;
constexpr long FitDegenerate = 0x10001202;
constexpr long FitRmsTooLarge = 0x10001203;
constexpr long ArchiveUnknownVersion = 0x10001301;
constexpr long ArchiveBadFormat = 0x10001302;
constexpr long ArchiveTruncated = 0x10001303;
constexpr long ArchiveUnknownClass = 0x10001304;
constexpr long ArchiveBadReference = 0x10001305;
constexpr long ArchiveCountTooLarge = 0x10001306;
constexpr long ArchiveFileError = 0x10001307;
constexpr long ArchiveValueOutOfRange = 0x10001308;
constexpr long ArchiveBadData = 0x10001309;
constexpr long ArchiveUnregisteredClass = 0x1000130A;
}  // namespace xnErrorNumber

/// Implements errorNumber(), suicideAndRethrow() and a factory of a concrete exception class Self.
template <class Self, long Number, class Base = xcExceptionWithString>
class xcExceptionT : public Base {
  public:
    /// A new Self in its default state, for registering the class with xc_Instantiator.
    static xcPersistent* make() { return new Self(); }
    long errorNumber() const override { return Number; }
    void suicideAndRethrow() override {
        Self copy(static_cast<Self&>(*this));
        delete this;
        throw copy;
    }

  protected:
    using Base::Base;
};

/// Errors of the numeric layer.
class FOUNDATION_API xcMathError {
  public:
    /// A singular matrix, parallel lines, or a transform without an inverse.
    class FOUNDATION_API Singular : public xcExceptionT<Singular, xnErrorNumber::MathSingular> {
      public:
        explicit Singular(const std::wstring& message = L"singular matrix");
        ~Singular() override;
    };
    /// A NaN or infinite value where a finite one is needed.
    class FOUNDATION_API NotFinite : public xcExceptionT<NotFinite, xnErrorNumber::MathNotFinite> {
      public:
        explicit NotFinite(const std::wstring& message = L"non-finite coordinate");
        ~NotFinite() override;
    };
};

/// Errors of image-window operations; BadWindow is also raised by operations a class does not
/// provide.
class FOUNDATION_API xcPel {
  public:
    class FOUNDATION_API BadWindow : public xcExceptionT<BadWindow, xnErrorNumber::PelBadWindow> {
      public:
        explicit BadWindow(const std::wstring& message = std::wstring());
        ~BadWindow() override;
    };
};

/// The handler that xstd_assert_ calls: the source file and line of the failed assertion.
using xcAssertHandler = void (*)(const char* file, int line);

/// Reports a failed internal consistency check by calling the installed handler, then returns.
/// The default handler writes one line to stderr.
FOUNDATION_API void xstd_assert_(const char* file, int line);
/// Installs `handler` (null restores the default) and returns the previous one.
FOUNDATION_API xcAssertHandler xfSetAssertHandler(xcAssertHandler handler);

/// Converts a wide string to UTF-8 (invalid code points become U+FFFD).
FOUNDATION_API std::string xfToUtf8(const std::wstring& text);

#endif
