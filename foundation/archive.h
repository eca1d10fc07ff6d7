#ifndef FOUNDATION_ARCHIVE_H
#define FOUNDATION_ARCHIVE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <foundation/exception.h>
#include <foundation/export.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/persistent.h>
#include <foundation/vector.h>

/// A binary archive: one direction (storing or loading) for its whole life.
///
/// Wire format, identical on every platform: the magic bytes "XCAR", the format version as a
/// 32-bit little-endian number (currently 1), then the records that the objects write. Numbers
/// are little-endian: unsigned char and bool take 1 byte (bool 0 or 1), unsigned long and long
/// 4 bytes (storing a value that does not fit throws ValueOutOfRange, it is never truncated),
/// double 8 bytes (IEEE 754), xcVector<2> two doubles, xcEdgelet its position, its magnitude
/// (2 bytes) and its angle step (1 byte), std::wstring a 32-bit byte count followed by UTF-8.
///
/// Loading is safe on untrusted bytes: whatever they hold, it either succeeds or throws one of
/// the archive errors below (all xcExceptions); counts are checked against the bytes left before
/// anything is allocated, and objects may nest at most kMaxNesting deep.
///
/// Ownership of loaded objects: the archive keeps a counted reference to every counted object
/// (xcRepBase) that it creates, and drops it when the archive is destroyed; objects that no
/// handle adopted (a referent of the wrong class, or a load that failed halfway) are deleted
/// then. An object without a count (an exception) belongs to the caller once serializePointer
/// has returned it; if loading fails before that, the archive deletes it.
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

    private:
        std::string source_;
        long line_ = 0;
    };
    /// The archive does not begin with the magic bytes, or has an unknown format version.
    class FOUNDATION_API BadFormat : public xcExceptionT<BadFormat, xnErrorNumber::ArchiveBadFormat> {
    public:
        explicit BadFormat(const std::wstring& message = L"not an archive");
        ~BadFormat() override;
    };
    /// The data ended before a record was complete.
    class FOUNDATION_API Truncated : public xcExceptionT<Truncated, xnErrorNumber::ArchiveTruncated> {
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
    /// A back-reference to an object that was not loaded (or is still being loaded).
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
    class FOUNDATION_API FileError : public xcExceptionT<FileError, xnErrorNumber::ArchiveFileError> {
    public:
        explicit FileError(const std::wstring& message = L"archive file error");
        ~FileError() override;
    };
    /// A value to store does not fit its wire width.
    class FOUNDATION_API ValueOutOfRange
        : public xcExceptionT<ValueOutOfRange, xnErrorNumber::ArchiveValueOutOfRange> {
    public:
        explicit ValueOutOfRange(const std::wstring& message = L"value does not fit its archive width");
        ~ValueOutOfRange() override;
    };
    /// Bytes that no valid record holds (a bool other than 0 or 1, invalid UTF-8, a bad pointer
    /// tag, objects nested too deeply).
    class FOUNDATION_API BadData : public xcExceptionT<BadData, xnErrorNumber::ArchiveBadData> {
    public:
        explicit BadData(const std::wstring& message = L"invalid archive data");
        ~BadData() override;
    };
    /// Storing an object whose class has no xc_Instantiator.
    class FOUNDATION_API UnregisteredClass
        : public xcExceptionT<UnregisteredClass, xnErrorNumber::ArchiveUnregisteredClass> {
    public:
        explicit UnregisteredClass(const std::wstring& message = L"class is not registered");
        ~UnregisteredClass() override;
    };

    /// The magic bytes and the wire format version written at the start of every archive.
    static constexpr char kMagic[4] = {'X', 'C', 'A', 'R'};
    static constexpr std::uint32_t kFormatVersion = 1;
    /// How deeply objects may nest inside objects (pointer records inside records).
    static constexpr int kMaxNesting = 256;

    virtual ~xcArchive();
    xcArchive(const xcArchive&) = delete;
    xcArchive& operator=(const xcArchive&) = delete;

    bool isLoading() const { return loading_; }
    bool isStoring() const { return !loading_; }

    /// Each writes the value when storing and reads into it when loading; they return the
    /// archive for chaining.
    xcArchive& operator||(unsigned char& v);
    xcArchive& operator||(bool& v);
    xcArchive& operator||(unsigned long& v);
    xcArchive& operator||(long& v);
    xcArchive& operator||(double& v);
    xcArchive& operator||(xcVector<2>& v);
    xcArchive& operator||(xcEdgelet& v);
    xcArchive& operator||(std::wstring& v);

    /// Writes or reads `n` raw bytes.
    void transferBytes(void* data, std::size_t n);
    /// Loading: the number of bytes not yet read. Storing: the largest possible value.
    virtual std::uint64_t bytesLeft() const = 0;
    /// Loading: throws CountTooLarge unless `count` elements of at least `minElementBytes` bytes
    /// each fit in the bytes left. Storing: does nothing.
    void checkCount(std::uint64_t count, std::size_t minElementBytes) const;

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
    struct State;
    bool loading_;
    std::unique_ptr<State> state_;
};

/// An archive in memory: stores into a byte vector, or loads from one.
class FOUNDATION_API xcMemoryArchive : public xcArchive {
public:
    /// A storing archive (the header is written at once).
    xcMemoryArchive();
    /// A loading archive over a copy of `bytes`. Throws BadFormat or Truncated for a bad header.
    explicit xcMemoryArchive(const std::vector<unsigned char>& bytes);
    /// A loading archive over `size` bytes at `data`, which must outlive the archive.
    xcMemoryArchive(const unsigned char* data, std::size_t size);
    ~xcMemoryArchive() override;

    /// Storing: everything written so far, header included.
    const std::vector<unsigned char>& bytes() const { return out_; }
    std::uint64_t bytesLeft() const override;

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
    /// Flushes and closes the file; throws FileError naming the path on a write failure.
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
/// that the remaining bytes cannot hold.
template <class T>
struct xcArchiveWireSize {
    static constexpr std::size_t value = 1;
};
template <> struct xcArchiveWireSize<unsigned long> { static constexpr std::size_t value = 4; };
template <> struct xcArchiveWireSize<long> { static constexpr std::size_t value = 4; };
template <> struct xcArchiveWireSize<double> { static constexpr std::size_t value = 8; };
template <> struct xcArchiveWireSize<xcVector<2>> { static constexpr std::size_t value = 16; };
template <> struct xcArchiveWireSize<xcEdgelet> { static constexpr std::size_t value = 19; };
template <> struct xcArchiveWireSize<std::wstring> { static constexpr std::size_t value = 4; };

/// The bulk transfer of the vector record for points (a plain copy on little-endian hosts).
FOUNDATION_API void xfSerializeVectorBody(xcArchive& ar, std::vector<xcVector<2>>& v);

/// The vector record: a format byte (0), the element count as unsigned long, then each element
/// through its archive operator. Loading resizes `v` to the count first; a format byte other than
/// 0 throws xcArchive::UnknownVersion with an empty source and line 0.
template <class T>
void xfSerializeVector(xcArchive& ar, std::vector<T>& v) {
    unsigned char format = 0;
    ar || format;
    if (format != 0) throw xcArchive::UnknownVersion(std::string(), 0);
    unsigned long count = static_cast<unsigned long>(v.size());
    if (ar.isStoring() && v.size() > 0xFFFFFFFFull) throw xcArchive::ValueOutOfRange();
    ar || count;
    if (ar.isLoading()) {
        ar.checkCount(count, xcArchiveWireSize<T>::value);
        v.clear();
        v.resize(count);
    }
    if constexpr (std::is_same<T, xcVector<2>>::value) {
        xfSerializeVectorBody(ar, v);
    } else {
        for (auto& e : v) ar || e;
    }
}

template <class T>
xcArchive& operator||(xcArchive& ar, std::vector<T>& v) {
    xfSerializeVector(ar, v);
    return ar;
}

/// The handle record. Storing passes the referent (null allowed) to
/// xcPersistent::serializePointer; loading clears the handle, loads the pointer record and keeps
/// the object only when it is a T (a referent of another class gives a null handle).
template <class T>
xcArchive& operator||(xcArchive& ar, xcPtrHandle<T>& h) {
    xcPersistent* p = nullptr;
    if (ar.isStoring()) {
        xcPersistent::serializePointer(ar, h.rep(), p);
    } else {
        h = xcPtrHandle<T>();
        xcPersistent::serializePointer(ar, nullptr, p);
        h = xcPtrHandle<T>(dynamic_cast<T*>(p));
    }
    return ar;
}

template <class T>
xcArchive& operator||(xcArchive& ar, xcPtrHandle_const<T>& h) {
    xcPersistent* p = nullptr;
    if (ar.isStoring()) {
        xcPersistent::serializePointer(ar, h.rep(), p);
    } else {
        h = xcPtrHandle_const<T>();
        xcPersistent::serializePointer(ar, nullptr, p);
        h = xcPtrHandle_const<T>(dynamic_cast<const T*>(p));
    }
    return ar;
}

#endif
