#ifndef FOUNDATION_ARCHIVE_H
#define FOUNDATION_ARCHIVE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <foundation/exception.h>
#include <foundation/export.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/persistent.h>
#include <foundation/vector.h>

namespace xn_archive_detail {
struct State;
}

/// A binary archive: one direction (storing or loading) for its whole life.
///
/// Wire format, identical on every platform: the magic bytes "XCAR", the format version as a
/// 32-bit little-endian number (currently 1), then the records that the objects write. Numbers
/// are little-endian: unsigned char and bool take 1 byte (bool 0 or 1), unsigned long and long
/// 4 bytes (storing a value that does not fit throws ValueOutOfRange, it is never truncated),
/// double 8 bytes (IEEE 754 bits, NaN payloads included), xcVector<2> x then y, xcEdgelet its
/// position, its magnitude (2 bytes) and its angle step (1 byte), std::wstring a 32-bit byte
/// count followed by that many bytes of UTF-8, std::string a 32-bit count and its bytes as they
/// are.
///
/// The pointer record (xcPersistent::serializePointer, and through it every counted handle):
/// one tag byte, 0 for a null pointer, 1 for an object written here (a 32-bit name length, the
/// class's registered name, then the object's own record), 2 for a back-reference (the 32-bit
/// number of an earlier counted object: counted objects are numbered from 0 in the order in which
/// their records begin).
///
/// Loading is safe on untrusted bytes: whatever they hold, it either succeeds or throws an
/// xcException (one of the archive errors below, or an error that a class's own record
/// raises). Counts are checked against the bytes left before anything is allocated; no chain
/// of objects referring to one another (through nested records or back-references) may be
/// longer than kMaxObjectDepth, which bounds the stack both while loading and when the loaded
/// graph is destroyed; a back-reference may only name an object whose record is complete, so a
/// loaded graph never has a cycle. Storing refuses what loading would refuse: a cycle of counted
/// objects throws BadReference, a deeper graph throws BadData.
///
/// Ownership:
/// - Storing never takes ownership. A counted object is identified by its address for the whole
///   pass, so the archive keeps every stored object that a counted handle holds alive until the
///   archive is destroyed; a counted object that no handle holds must outlive the archive. An
///   object without a count need only live while it is being stored.
/// - Loading: the archive holds a counted reference to every counted object (xcRepBase) that it
///   creates and drops it when the archive is destroyed. Objects that no handle adopted (a
///   referent of the wrong class, or the objects of a load that failed halfway) are deleted then.
/// - An object without a count (an exception) is handed over to the caller of serializePointer,
///   who owns it from the moment the call returns. If loading fails before serializePointer
///   returns, the archive deletes it. Objects without a count are not shared: each reference is
///   stored in full and loads as an object of its own. The operator for std::unique_ptr applies
///   these rules (prefer it to serializePointer); the handle operators delete such an object,
///   which no handle can hold.
/// - So a pointer that serializePointer returns is the caller's to delete only when the object
///   has no count: a hostile archive can put a counted object where an exception was expected.
/// - After an operation throws, the archive's position is unspecified: destroy it.
class FOUNDATION_API xcArchive {
  public:
    /// A record carried a version (or format byte) that the reader does not know. source()
    /// names the reading code, line() the place in it.
    class FOUNDATION_API UnknownVersion
        : public xcExceptionT<UnknownVersion, xnErrorNumber::ArchiveUnknownVersion> {
      public:
        UnknownVersion();
        UnknownVersion(const std::string& source, long line);
        ~UnknownVersion() override;
        const std::string& source() const { return source_; }
        long line() const { return line_; }
        /// The record: a version byte (0), the xcExceptionWithString record, source and line.
        void dispatchSerialize(xcArchive& ar) override;

      private:
        std::string source_;
        long line_ = 0;
    };
    /// The archive does not begin with the magic bytes, or has an unknown format version.
    class FOUNDATION_API BadFormat
        : public xcExceptionT<BadFormat, xnErrorNumber::ArchiveBadFormat> {
      public:
        explicit BadFormat(const std::wstring& message = L"not an archive");
        ~BadFormat() override;
    };
    /// The data ended before a record was complete.
    class FOUNDATION_API Truncated
        : public xcExceptionT<Truncated, xnErrorNumber::ArchiveTruncated> {
      public:
        explicit Truncated(const std::wstring& message = L"archive data ends early");
        ~Truncated() override;
    };
    /// A stored class name that no class registered.
    class FOUNDATION_API UnknownClass
        : public xcExceptionT<UnknownClass, xnErrorNumber::ArchiveUnknownClass> {
      public:
        explicit UnknownClass(const std::wstring& message = L"unknown class in archive");
        ~UnknownClass() override;
    };
    /// Loading: a back-reference to an object that was not loaded, or whose record is not
    /// complete. Storing: a cycle of counted objects (loading could not resolve it).
    class FOUNDATION_API BadReference
        : public xcExceptionT<BadReference, xnErrorNumber::ArchiveBadReference> {
      public:
        explicit BadReference(const std::wstring& message = L"bad object reference in archive");
        ~BadReference() override;
    };
    /// An element count larger than the bytes left could hold.
    class FOUNDATION_API CountTooLarge
        : public xcExceptionT<CountTooLarge, xnErrorNumber::ArchiveCountTooLarge> {
      public:
        explicit CountTooLarge(const std::wstring& message = L"element count exceeds archive size");
        ~CountTooLarge() override;
    };
    /// A file could not be opened, read or written; the message names the path.
    class FOUNDATION_API FileError
        : public xcExceptionT<FileError, xnErrorNumber::ArchiveFileError> {
      public:
        explicit FileError(const std::wstring& message = L"archive file error");
        ~FileError() override;
    };
    /// A value to store does not fit its wire form (a number too wide, a string with a value
    /// that is not a Unicode scalar value).
    class FOUNDATION_API ValueOutOfRange
        : public xcExceptionT<ValueOutOfRange, xnErrorNumber::ArchiveValueOutOfRange> {
      public:
        explicit ValueOutOfRange(
            const std::wstring& message = L"value does not fit its archive width");
        ~ValueOutOfRange() override;
    };
    /// Bytes that no valid record holds (a bool other than 0 or 1, invalid UTF-8, a bad pointer
    /// tag or class name length, a chain of objects deeper than kMaxObjectDepth).
    class FOUNDATION_API BadData : public xcExceptionT<BadData, xnErrorNumber::ArchiveBadData> {
      public:
        explicit BadData(const std::wstring& message = L"invalid archive data");
        ~BadData() override;
    };
    /// Storing an object whose class has no xc_Instantiator (or whose stable name another class
    /// took).
    class FOUNDATION_API UnregisteredClass
        : public xcExceptionT<UnregisteredClass, xnErrorNumber::ArchiveUnregisteredClass> {
      public:
        explicit UnregisteredClass(const std::wstring& message = L"class is not registered");
        ~UnregisteredClass() override;
    };

    /// The magic bytes and the wire format version written at the start of every archive.
    static constexpr char kMagic[4] = {'X', 'C', 'A', 'R'};
    static constexpr std::uint32_t kFormatVersion = 1;
    /// The longest chain of objects, each referring to the next, that an archive may hold
    /// (bounds the recursion of loading and of destroying what was loaded).
    static constexpr int kMaxObjectDepth = 256;
    /// The most elements a loading vector record of anything but points reserves before its
    /// elements arrive.
    static constexpr std::size_t kVectorReserveLimit = 4096;
    /// The longest class name a pointer record may carry.
    static constexpr std::uint32_t kMaxClassNameLength = 1024;

    virtual ~xcArchive();
    xcArchive(const xcArchive&) = delete;
    xcArchive& operator=(const xcArchive&) = delete;

    bool isLoading() const { return loading_; }
    bool isStoring() const { return !loading_; }

    /// Each writes the value when storing and reads into it when loading; they return the
    /// archive for chaining. Loading throws Truncated when the data ends early, BadData for a
    /// bool other than 0 or 1 or a string that is not valid UTF-8, CountTooLarge for a string
    /// longer than the bytes left. Storing throws ValueOutOfRange for an unsigned long above
    /// 2^32 - 1, a long outside [-2^31, 2^31 - 1], a string longer than 2^32 - 1 bytes, or a
    /// wide string holding a surrogate or a value above U+10FFFF.
    xcArchive& operator||(unsigned char& v);
    xcArchive& operator||(bool& v);
    xcArchive& operator||(unsigned long& v);
    xcArchive& operator||(long& v);
    xcArchive& operator||(double& v);
    xcArchive& operator||(xcVector<2>& v);
    xcArchive& operator||(xcEdgelet& v);
    xcArchive& operator||(std::wstring& v);
    xcArchive& operator||(std::string& v);

    /// Writes or reads `n` raw bytes (Truncated when fewer are left).
    void transferBytes(void* data, std::size_t n);
    /// Loading: the number of bytes not yet read. Storing: the largest possible value.
    virtual std::uint64_t bytesLeft() const = 0;
    /// Loading: throws CountTooLarge unless `count` elements of at least `minElementBytes` bytes
    /// each fit in the bytes left. Storing: does nothing.
    void checkCount(std::uint64_t count, std::size_t minElementBytes) const;
    /// Loading from a medium that holds its bytes in memory: the next `n` bytes in place, which
    /// count as read (Truncated when fewer are left); they stay valid while the archive's source
    /// does. Null, with nothing read, where the medium cannot lend its bytes (files) and when
    /// storing. Lets a large block be copied once, straight to where it goes.
    virtual const unsigned char* lendBytes(std::size_t n);

  protected:
    /// Storing archives write the header at once; loading archives read and check it with
    /// readHeader() once their source is ready.
    explicit xcArchive(bool loading);
    void writeHeader();
    void readHeader();
    virtual void writeRaw(const void* data, std::size_t n) = 0;
    /// Reads exactly n bytes or throws Truncated.
    virtual void readRaw(void* data, std::size_t n) = 0;

  private:
    friend class xcPersistent;
    bool loading_;
    std::unique_ptr<xn_archive_detail::State> state_;
};

/// An archive in memory: stores into a byte vector, or loads from one.
class FOUNDATION_API xcMemoryArchive : public xcArchive {
  public:
    /// A storing archive (the header is written at once).
    xcMemoryArchive();
    /// A loading archive over a copy of `bytes`. Throws BadFormat or Truncated for a bad header.
    explicit xcMemoryArchive(const std::vector<unsigned char>& bytes);
    /// A loading archive over `size` bytes at `data` (not copied: they must outlive the
    /// archive). Throws BadFormat or Truncated for a bad header.
    xcMemoryArchive(const unsigned char* data, std::size_t size);
    ~xcMemoryArchive() override;

    /// Storing: everything written so far, header included.
    const std::vector<unsigned char>& bytes() const { return out_; }
    /// Storing: moves out everything written so far, header included, without copying it. The
    /// archive is left empty: what it stores afterwards starts a new byte vector, without a
    /// header, which is only useful appended to the bytes taken.
    std::vector<unsigned char> takeBytes();
    std::uint64_t bytesLeft() const override;
    const unsigned char* lendBytes(std::size_t n) override;

  protected:
    void writeRaw(const void* data, std::size_t n) override;
    void readRaw(void* data, std::size_t n) override;

  private:
    std::vector<unsigned char> out_;
    std::vector<unsigned char> copy_;
    const unsigned char* in_ = nullptr;
    std::size_t size_ = 0;
    std::size_t pos_ = 0;
};

/// An archive on a file.
class FOUNDATION_API xcFileArchive : public xcArchive {
  public:
    enum Direction { store = 0, load = 1 };
    /// Opens `path` for storing (created or truncated) or loading. Throws FileError naming the
    /// path when it cannot be opened, and BadFormat or Truncated for a bad header.
    xcFileArchive(const std::string& path, Direction direction);
    /// Closes the file; errors at this point are not reported (call close() to see them).
    ~xcFileArchive() override;
    /// Flushes and closes the file; throws FileError naming the path when a write failed. Any
    /// later transfer throws FileError.
    void close();
    const std::string& path() const { return path_; }
    std::uint64_t bytesLeft() const override;

  protected:
    void writeRaw(const void* data, std::size_t n) override;
    void readRaw(void* data, std::size_t n) override;

  private:
    struct File;
    std::string path_;
    std::unique_ptr<File> file_;
};

/// The smallest number of bytes one element of T takes in an archive; used to refuse counts
/// that the remaining bytes cannot hold. Types without a specialisation take at least 1 byte
/// (a handle's null tag, for example).
template <class T>
struct xcArchiveWireSize {
    static constexpr std::size_t value = 1;
};
template <>
struct xcArchiveWireSize<unsigned long> {
    static constexpr std::size_t value = 4;
};
template <>
struct xcArchiveWireSize<long> {
    static constexpr std::size_t value = 4;
};
template <>
struct xcArchiveWireSize<double> {
    static constexpr std::size_t value = 8;
};
template <>
struct xcArchiveWireSize<xcVector<2>> {
    static constexpr std::size_t value = 16;
};
template <>
struct xcArchiveWireSize<xcEdgelet> {
    static constexpr std::size_t value = 19;
};
template <>
struct xcArchiveWireSize<std::wstring> {
    static constexpr std::size_t value = 4;
};
template <>
struct xcArchiveWireSize<std::string> {
    static constexpr std::size_t value = 4;
};

namespace xn_archive_detail {
/// The elements of a vector record of points, transferred as one block on little-endian hosts.
/// Loading replaces `v` with the `count` points read; storing writes `v` (`count` unused).
FOUNDATION_API void transferPoints(xcArchive& ar, std::vector<xcVector<2>>& v, std::size_t count);
/// The format byte and the count of a vector record. Loading: checks the format (UnknownVersion
/// with an empty source and line 0 unless 0) and that `count` elements of `minElementBytes`
/// fit in the bytes left (CountTooLarge), and returns the count. Storing: throws
/// ValueOutOfRange for more than 2^32 - 1 elements.
FOUNDATION_API std::size_t transferVectorHeader(xcArchive& ar, std::size_t count,
                                                std::size_t minElementBytes);
/// Reads a pointer record for a handle of class T: returns the object when `isT` accepts it,
/// otherwise null (deleting an object without a count, which nobody else owns).
FOUNDATION_API xcPersistent* loadReferent(xcArchive& ar, bool (*isT)(xcPersistent*));
/// Reads a pointer record for a sole owner of class T: returns the object when `isT` accepts it
/// and it has no count (the caller owns it), otherwise null (deleting an object without a count;
/// a counted object stays with the archive).
FOUNDATION_API xcPersistent* loadOwned(xcArchive& ar, bool (*isT)(xcPersistent*));

template <class T>
bool isA(xcPersistent* p) {
    return dynamic_cast<T*>(p) != nullptr;
}

template <class T, class Handle>
void transferHandle(xcArchive& ar, Handle& h) {
    xcPersistent* p = nullptr;
    if (ar.isStoring()) {
        xcPersistent::serializePointer(ar, h.rep(), p);
        return;
    }
    h = Handle();
    p = loadReferent(ar, &isA<T>);
    h = Handle(dynamic_cast<T*>(p));
}
}  // namespace xn_archive_detail

/// The vector record: a format byte (0), the element count as unsigned long, then each element
/// through its archive operator. Loading replaces the contents of `v` with `count` elements
/// read in order, after checking the count against the bytes left (CountTooLarge). A format
/// byte other than 0 throws xcArchive::UnknownVersion with an empty source and line 0. A load
/// that throws leaves `v` holding the elements read so far.
///
/// Memory: points are plain data, read at once into a vector of the checked count. Other
/// elements may hold objects whose records nest further vectors, so the vector grows as its
/// elements arrive (after reserving at most kVectorReserveLimit): no level claims memory for
/// bytes that a deeper level goes on to consume.
template <class T>
void xfSerializeVector(xcArchive& ar, std::vector<T>& v) {
    const std::size_t count =
        xn_archive_detail::transferVectorHeader(ar, v.size(), xcArchiveWireSize<T>::value);
    if constexpr (std::is_same<T, xcVector<2>>::value) {
        xn_archive_detail::transferPoints(ar, v, count);
    } else if (ar.isStoring()) {
        for (auto& e : v)
            ar || e;
    } else {
        v.clear();
        v.reserve(count < xcArchive::kVectorReserveLimit ? count : xcArchive::kVectorReserveLimit);
        for (std::size_t i = 0; i < count; ++i) {
            v.emplace_back();
            ar || v.back();
        }
    }
}

template <class T>
xcArchive& operator||(xcArchive& ar, std::vector<T>& v) {
    xfSerializeVector(ar, v);
    return ar;
}

/// The handle record. Storing passes the referent (null allowed) to
/// xcPersistent::serializePointer. Loading clears the handle, reads the pointer record and keeps
/// the object only when it is a T: a referent of another class gives a null handle (and is
/// deleted with the archive, or at once when it has no count).
template <class T>
xcArchive& operator||(xcArchive& ar, xcPtrHandle<T>& h) {
    xn_archive_detail::transferHandle<T>(ar, h);
    return ar;
}

template <class T>
xcArchive& operator||(xcArchive& ar, xcPtrHandle_const<T>& h) {
    xn_archive_detail::transferHandle<const T>(ar, h);
    return ar;
}

/// The pointer record of an object with a sole owner (an object without a count, such as an
/// exception). Storing writes `owned` (null allowed). Loading resets `owned`, then takes the
/// loaded object when it is a T without a count; anything else gives null (an object without a
/// count is deleted at once, a counted one stays with the archive: counted objects belong in
/// handles).
template <class T>
xcArchive& operator||(xcArchive& ar, std::unique_ptr<T>& owned) {
    xcPersistent* p = nullptr;
    if (ar.isStoring()) {
        xcPersistent::serializePointer(ar, owned.get(), p);
        return ar;
    }
    owned.reset();
    owned.reset(dynamic_cast<T*>(xn_archive_detail::loadOwned(ar, &xn_archive_detail::isA<T>)));
    return ar;
}

#endif
