// The archive's errors, its header and the transfer of plain values.
#include <cstddef>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <type_traits>

#include <foundation/archive.h>
#include <foundation/archive_state.h>

using xn_archive_detail::widen;

namespace {

constexpr bool kLittleEndianHost = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
// The widest count a 32-bit field holds.
constexpr std::uint64_t kMaxWireCount = 0xFFFFFFFFull;
// The largest Unicode scalar value, and the surrogate block that holds no scalar values.
constexpr std::uint32_t kMaxCodePoint = 0x10FFFF;
constexpr std::uint32_t kFirstSurrogate = 0xD800;
constexpr std::uint32_t kFirstLowSurrogate = 0xDC00;
constexpr std::uint32_t kLastSurrogate = 0xDFFF;

void putLE(unsigned char* out, std::uint64_t v, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out[i] = static_cast<unsigned char>(v >> (8 * i));
}

std::uint64_t getLE(const unsigned char* in, int bytes) {
    std::uint64_t v = 0;
    for (int i = 0; i < bytes; ++i)
        v |= static_cast<std::uint64_t>(in[i]) << (8 * i);
    return v;
}

// Writes `v` (storing) or reads a value (loading) as `Bytes` little-endian bytes.
template <int Bytes>
std::uint64_t transferLE(xcArchive& ar, std::uint64_t v) {
    unsigned char buf[Bytes];
    if (ar.isStoring())
        putLE(buf, v, Bytes);
    ar.transferBytes(buf, Bytes);
    return getLE(buf, Bytes);
}

bool isSurrogate(std::uint32_t c) {
    return c >= kFirstSurrogate && c <= kLastSurrogate;
}

void appendCodePoint(std::wstring& out, std::uint32_t c) {
    if (sizeof(wchar_t) == 2 && c > 0xFFFF) {
        c -= 0x10000;
        out += static_cast<wchar_t>(kFirstSurrogate + (c >> 10));
        out += static_cast<wchar_t>(kFirstLowSurrogate + (c & 0x3FF));
    } else {
        out += static_cast<wchar_t>(c);
    }
}

// Strict UTF-8 decoding: overlong forms, surrogates and values above U+10FFFF are refused.
std::wstring decodeUtf8(const std::string& bytes) {
    const auto bad = [](std::size_t at) {
        return xcArchive::BadData(L"invalid UTF-8 in archive string at byte " +
                                  std::to_wstring(at));
    };
    std::wstring out;
    std::size_t i = 0;
    while (i < bytes.size()) {
        const unsigned char b0 = static_cast<unsigned char>(bytes[i]);
        int extra = 0;
        std::uint32_t c = b0;
        std::uint32_t minValue = 0;
        if (b0 >= 0x80) {
            if ((b0 & 0xE0) == 0xC0) {
                extra = 1, c = b0 & 0x1F, minValue = 0x80;
            } else if ((b0 & 0xF0) == 0xE0) {
                extra = 2, c = b0 & 0x0F, minValue = 0x800;
            } else if ((b0 & 0xF8) == 0xF0) {
                extra = 3, c = b0 & 0x07, minValue = 0x10000;
            } else {
                throw bad(i);
            }
        }
        if (static_cast<std::size_t>(extra) >= bytes.size() - i)
            throw bad(i);
        for (int k = 1; k <= extra; ++k) {
            const unsigned char b = static_cast<unsigned char>(bytes[i + k]);
            if ((b & 0xC0) != 0x80)
                throw bad(i);
            c = (c << 6) | (b & 0x3F);
        }
        if (c < minValue || c > kMaxCodePoint || isSurrogate(c))
            throw bad(i);
        appendCodePoint(out, c);
        i += 1 + extra;
    }
    return out;
}

// Refuses a wide string that UTF-8 cannot carry unchanged: a value above U+10FFFF or a
// surrogate (with 16-bit wchar_t, a surrogate that is not part of a pair).
void checkScalarValues(const std::wstring& s) {
    for (std::size_t i = 0; i < s.size(); ++i) {
        const auto c =
            static_cast<std::uint32_t>(static_cast<std::make_unsigned<wchar_t>::type>(s[i]));
        bool ok = c <= kMaxCodePoint && !isSurrogate(c);
        if (sizeof(wchar_t) == 2 && c >= kFirstSurrogate && c < kFirstLowSurrogate &&
            i + 1 < s.size()) {
            const auto lo = static_cast<std::uint32_t>(
                static_cast<std::make_unsigned<wchar_t>::type>(s[i + 1]));
            if (lo >= kFirstLowSurrogate && lo <= kLastSurrogate) {
                ok = true;
                ++i;
            }
        }
        if (!ok)
            throw xcArchive::ValueOutOfRange(
                L"wide string holds a value that is not a Unicode scalar value at index " +
                std::to_wstring(i));
    }
}

}  // namespace

// ---- errors ----

xcArchive::UnknownVersion::UnknownVersion() : xcExceptionT(L"unknown record version") {}
xcArchive::UnknownVersion::UnknownVersion(const std::string& source, long line)
    : xcExceptionT(L"unknown record version (" + widen(source) + L", " + std::to_wstring(line) +
                   L")"),
      source_(source),
      line_(line) {}
xcArchive::UnknownVersion::~UnknownVersion() = default;

void xcArchive::UnknownVersion::dispatchSerialize(xcArchive& ar) {
    dispatchPart(ar, this, 0, [&](unsigned char version) {
        checkVersion(version, 0, "xcArchive::UnknownVersion", 0);
        xcExceptionWithString::dispatchSerialize(ar);
        ar || source_ || line_;
    });
}

xcArchive::BadFormat::BadFormat(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::BadFormat::~BadFormat() = default;
xcArchive::Truncated::Truncated(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::Truncated::~Truncated() = default;
xcArchive::UnknownClass::UnknownClass(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::UnknownClass::~UnknownClass() = default;
xcArchive::BadReference::BadReference(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::BadReference::~BadReference() = default;
xcArchive::CountTooLarge::CountTooLarge(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::CountTooLarge::~CountTooLarge() = default;
xcArchive::FileError::FileError(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::FileError::~FileError() = default;
xcArchive::ValueOutOfRange::ValueOutOfRange(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::ValueOutOfRange::~ValueOutOfRange() = default;
xcArchive::BadData::BadData(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::BadData::~BadData() = default;
xcArchive::UnregisteredClass::UnregisteredClass(const std::wstring& m) : xcExceptionT(m) {}
xcArchive::UnregisteredClass::~UnregisteredClass() = default;

namespace {
// The archive errors can themselves be stored (an application may pass them on).
const xc_Instantiator kUnknownVersionClass(typeid(xcArchive::UnknownVersion),
                                           &xcArchive::UnknownVersion::make);
const xc_Instantiator kBadFormatClass(typeid(xcArchive::BadFormat), &xcArchive::BadFormat::make);
const xc_Instantiator kTruncatedClass(typeid(xcArchive::Truncated), &xcArchive::Truncated::make);
const xc_Instantiator kUnknownClassClass(typeid(xcArchive::UnknownClass),
                                         &xcArchive::UnknownClass::make);
const xc_Instantiator kBadReferenceClass(typeid(xcArchive::BadReference),
                                         &xcArchive::BadReference::make);
const xc_Instantiator kCountTooLargeClass(typeid(xcArchive::CountTooLarge),
                                          &xcArchive::CountTooLarge::make);
const xc_Instantiator kFileErrorClass(typeid(xcArchive::FileError), &xcArchive::FileError::make);
const xc_Instantiator kValueOutOfRangeClass(typeid(xcArchive::ValueOutOfRange),
                                            &xcArchive::ValueOutOfRange::make);
const xc_Instantiator kBadDataClass(typeid(xcArchive::BadData), &xcArchive::BadData::make);
const xc_Instantiator kUnregisteredClassClass(typeid(xcArchive::UnregisteredClass),
                                              &xcArchive::UnregisteredClass::make);
}  // namespace

// ---- the archive ----

constexpr char xcArchive::kMagic[4];

xcArchive::xcArchive(bool loading) : loading_(loading), state_(new xn_archive_detail::State) {}
xcArchive::~xcArchive() = default;

void xcArchive::writeHeader() {
    transferBytes(const_cast<char*>(kMagic), sizeof kMagic);
    unsigned long version = kFormatVersion;
    *this || version;
}

void xcArchive::readHeader() {
    char magic[sizeof kMagic];
    transferBytes(magic, sizeof magic);
    if (std::memcmp(magic, kMagic, sizeof kMagic) != 0)
        throw BadFormat(L"not an archive: bad magic number");
    unsigned long version = 0;
    *this || version;
    if (version != kFormatVersion)
        throw BadFormat(L"unsupported archive format version " + std::to_wstring(version));
}

void xcArchive::transferBytes(void* data, std::size_t n) {
    if (n == 0)
        return;
    if (loading_)
        readRaw(data, n);
    else
        writeRaw(data, n);
}

const unsigned char* xcArchive::lendBytes(std::size_t) {
    return nullptr;
}

void xcArchive::checkCount(std::uint64_t count, std::size_t minElementBytes) const {
    if (!loading_ || minElementBytes == 0)
        return;
    if (count > bytesLeft() / minElementBytes)
        throw CountTooLarge(L"element count " + std::to_wstring(count) + L" exceeds the " +
                            std::to_wstring(bytesLeft()) + L" bytes left in the archive");
}

xcArchive& xcArchive::operator||(unsigned char& v) {
    transferBytes(&v, 1);
    return *this;
}

xcArchive& xcArchive::operator||(bool& v) {
    unsigned char b = v ? 1 : 0;
    transferBytes(&b, 1);
    if (b > 1)
        throw BadData(L"invalid bool " + std::to_wstring(b) + L" in archive");
    v = b == 1;
    return *this;
}

xcArchive& xcArchive::operator||(unsigned long& v) {
    if (isStoring() && static_cast<std::uint64_t>(v) > kMaxWireCount)
        throw ValueOutOfRange(L"unsigned value " + std::to_wstring(v) + L" does not fit 32 bits");
    v = static_cast<unsigned long>(transferLE<4>(*this, v));
    return *this;
}

xcArchive& xcArchive::operator||(long& v) {
    constexpr long kMin = std::numeric_limits<std::int32_t>::min();
    constexpr long kMax = std::numeric_limits<std::int32_t>::max();
    if (isStoring() && (v < kMin || v > kMax))
        throw ValueOutOfRange(L"signed value " + std::to_wstring(v) + L" does not fit 32 bits");
    const auto bits =
        static_cast<std::uint32_t>(transferLE<4>(*this, static_cast<std::uint32_t>(v)));
    v = static_cast<long>(static_cast<std::int32_t>(bits));
    return *this;
}

xcArchive& xcArchive::operator||(double& v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    bits = transferLE<8>(*this, bits);
    std::memcpy(&v, &bits, sizeof bits);
    return *this;
}

xcArchive& xcArchive::operator||(xcVector<2>& v) {
    return *this || v[0] || v[1];
}

xcArchive& xcArchive::operator||(xcEdgelet& e) {
    xcVector<2> pos = e.position();
    *this || pos;
    const auto mag = static_cast<std::uint16_t>(transferLE<2>(*this, e.magnitude()));
    unsigned char step = e.angle().raw();
    *this || step;
    if (loading_)
        e = xcEdgelet(pos, mag, xcAngle8(static_cast<int>(step)));
    return *this;
}

xcArchive& xcArchive::operator||(std::string& s) {
    const std::size_t n = xn_archive_detail::transferCount(*this, s.size(), 1);
    if (loading_)
        s.assign(n, '\0');
    transferBytes(s.empty() ? nullptr : &s[0], s.size());
    return *this;
}

xcArchive& xcArchive::operator||(std::wstring& s) {
    std::string bytes;
    if (isStoring()) {
        checkScalarValues(s);
        bytes = xfToUtf8(s);
    }
    *this || bytes;
    if (loading_)
        s = decodeUtf8(bytes);
    return *this;
}

// ---- the vector record ----

std::size_t xn_archive_detail::transferCount(xcArchive& ar, std::size_t count,
                                             std::size_t minElementBytes) {
    if (ar.isStoring() && count > kMaxWireCount)
        throw xcArchive::ValueOutOfRange(L"count " + std::to_wstring(count) +
                                         L" does not fit 32 bits");
    unsigned long wire = static_cast<unsigned long>(count);
    ar || wire;
    ar.checkCount(wire, minElementBytes);
    return wire;
}

std::size_t xn_archive_detail::transferVectorHeader(xcArchive& ar, std::size_t count,
                                                    std::size_t minElementBytes) {
    unsigned char format = 0;
    ar || format;
    if (format != 0)
        throw xcArchive::UnknownVersion(std::string(), 0);
    return transferCount(ar, count, minElementBytes);
}

namespace {

/// Reads the points of a block in place, one 16-byte point per step, so that a vector can be
/// built from the block in a single copy.
class LentPoints {
  public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = xcVector<2>;
    using difference_type = std::ptrdiff_t;
    using pointer = const xcVector<2>*;
    using reference = xcVector<2>;

    explicit LentPoints(const unsigned char* at) : at_(at) {}
    xcVector<2> operator*() const {
        double xy[2];
        std::memcpy(xy, at_, sizeof xy);
        return xcVector<2>(xy[0], xy[1]);
    }
    LentPoints& operator++() {
        at_ += 2 * sizeof(double);
        return *this;
    }
    LentPoints operator++(int) {
        LentPoints before = *this;
        ++*this;
        return before;
    }
    bool operator==(const LentPoints& o) const { return at_ == o.at_; }
    bool operator!=(const LentPoints& o) const { return at_ != o.at_; }

  private:
    const unsigned char* at_;
};

}  // namespace

void xn_archive_detail::transferPoints(xcArchive& ar, std::vector<xcVector<2>>& v,
                                       std::size_t count) {
    static_assert(std::is_trivially_copyable<xcVector<2>>::value, "points are copied as bytes");
    const bool block = kLittleEndianHost && sizeof(xcVector<2>) == 2 * sizeof(double);
    if (ar.isLoading()) {
        const std::size_t bytes = count * sizeof(xcVector<2>);  // checked against the bytes left
        const unsigned char* lent = block ? ar.lendBytes(bytes) : nullptr;
        if (lent != nullptr) {
            v.assign(LentPoints(lent), LentPoints(lent + bytes));
            return;
        }
        v.clear();
        v.resize(count);
    }
    if (block) {
        ar.transferBytes(v.data(), v.size() * sizeof(xcVector<2>));
    } else {
        for (auto& p : v)
            ar || p;
    }
}
