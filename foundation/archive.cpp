#include <climits>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include <foundation/archive.h>

namespace {

// Wire tags of the pointer record.
constexpr unsigned char kNullTag = 0;
constexpr unsigned char kObjectTag = 1;
constexpr unsigned char kReferenceTag = 2;
// Longest class name accepted when loading.
constexpr std::uint32_t kMaxClassName = 1024;

constexpr bool kLittleEndianHost = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

void putLE(unsigned char* out, std::uint64_t v, int bytes) {
    for (int i = 0; i < bytes; ++i) out[i] = static_cast<unsigned char>(v >> (8 * i));
}

std::uint64_t getLE(const unsigned char* in, int bytes) {
    std::uint64_t v = 0;
    for (int i = 0; i < bytes; ++i) v |= static_cast<std::uint64_t>(in[i]) << (8 * i);
    return v;
}

std::wstring widen(const std::string& s) { return std::wstring(s.begin(), s.end()); }

// Strict UTF-8 decoding: overlong forms, surrogates and values above U+10FFFF are refused.
std::wstring decodeUtf8(const std::string& bytes) {
    std::wstring out;
    std::size_t i = 0;
    const auto bad = [] { return xcArchive::BadData(L"invalid UTF-8 in archive string"); };
    while (i < bytes.size()) {
        const unsigned char b0 = static_cast<unsigned char>(bytes[i]);
        int extra = 0;
        std::uint32_t c = 0;
        std::uint32_t minValue = 0;
        if (b0 < 0x80) {
            c = b0;
        } else if ((b0 & 0xE0) == 0xC0) {
            extra = 1, c = b0 & 0x1F, minValue = 0x80;
        } else if ((b0 & 0xF0) == 0xE0) {
            extra = 2, c = b0 & 0x0F, minValue = 0x800;
        } else if ((b0 & 0xF8) == 0xF0) {
            extra = 3, c = b0 & 0x07, minValue = 0x10000;
        } else {
            throw bad();
        }
        if (extra > 0 && i + extra >= bytes.size()) throw bad();
        for (int k = 1; k <= extra; ++k) {
            const unsigned char b = static_cast<unsigned char>(bytes[i + k]);
            if ((b & 0xC0) != 0x80) throw bad();
            c = (c << 6) | (b & 0x3F);
        }
        if (c < minValue || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) throw bad();
        if (sizeof(wchar_t) == 2 && c >= 0x10000) {
            c -= 0x10000;
            out += static_cast<wchar_t>(0xD800 + (c >> 10));
            out += static_cast<wchar_t>(0xDC00 + (c & 0x3FF));
        } else {
            out += static_cast<wchar_t>(c);
        }
        i += 1 + extra;
    }
    return out;
}

struct PairHash {
    std::size_t operator()(const std::pair<const void*, std::size_t>& k) const {
        return std::hash<const void*>()(k.first) ^ (std::hash<std::size_t>()(k.second) * 0x9E3779B97F4A7C15ull);
    }
};

}  // namespace

struct xcArchive::State {
    std::unordered_set<std::pair<const void*, std::size_t>, PairHash> visited;
    int depth = 0;

    // Storing: id of every object written, keyed by its most-derived address.
    std::unordered_map<const void*, std::uint32_t> storedIds;
    std::vector<const xcRepBase*> heldWhileStoring;

    // Loading: every object created, in id order.
    struct Loaded {
        xcPersistent* object;
        const xcRepBase* counted;  // null for objects without a count
        bool complete;
        bool handedOut;
    };
    std::vector<Loaded> loaded;

    ~State() {
        for (const xcRepBase* r : heldWhileStoring) r->release();
        for (Loaded& l : loaded) {
            if (l.counted)
                l.counted->release();
            else if (!l.handedOut)
                delete l.object;
        }
    }
};

namespace {
// Bounds the nesting of pointer records so that hostile data cannot exhaust the stack.
class NestingGuard {
public:
    explicit NestingGuard(int& depth) : depth_(depth) {
        if (depth_ >= xcArchive::kMaxNesting) throw xcArchive::BadData(L"archive objects nested too deeply");
        ++depth_;
    }
    ~NestingGuard() { --depth_; }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;

private:
    int& depth_;
};
}  // namespace

// ---- errors ----

xcArchive::UnknownVersion::UnknownVersion() : xcExceptionT(L"unknown record version") {}
xcArchive::UnknownVersion::UnknownVersion(const std::string& source, long line)
    : xcExceptionT(L"unknown record version (" + widen(source) + L", " + std::to_wstring(line) + L")"),
      source_(source),
      line_(line) {}
xcArchive::UnknownVersion::~UnknownVersion() = default;
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

// ---- the archive ----

constexpr char xcArchive::kMagic[4];

xcArchive::xcArchive(bool loading) : loading_(loading), state_(new State) {}
xcArchive::~xcArchive() = default;

void xcArchive::writeHeader() {
    transferBytes(const_cast<char*>(kMagic), sizeof kMagic);
    unsigned long version = kFormatVersion;
    *this || version;
}

void xcArchive::readHeader() {
    char magic[sizeof kMagic];
    transferBytes(magic, sizeof magic);
    if (std::memcmp(magic, kMagic, sizeof kMagic) != 0) throw BadFormat(L"not an archive: bad magic number");
    unsigned long version = 0;
    *this || version;
    if (version != kFormatVersion)
        throw BadFormat(L"unsupported archive format version " + std::to_wstring(version));
}

void xcArchive::transferBytes(void* data, std::size_t n) {
    if (n == 0) return;
    if (loading_)
        readRaw(data, n);
    else
        writeRaw(data, n);
}

void xcArchive::checkCount(std::uint64_t count, std::size_t minElementBytes) const {
    if (!loading_ || minElementBytes == 0) return;
    if (count > bytesLeft() / minElementBytes)
        throw CountTooLarge(L"element count " + std::to_wstring(count) + L" exceeds the " +
                            std::to_wstring(bytesLeft()) + L" bytes left in the archive");
}

namespace {
template <int Bytes>
std::uint64_t transferLE(xcArchive& ar, std::uint64_t v) {
    unsigned char buf[Bytes];
    if (ar.isStoring()) putLE(buf, v, Bytes);
    ar.transferBytes(buf, Bytes);
    return getLE(buf, Bytes);
}
}  // namespace

xcArchive& xcArchive::operator||(unsigned char& v) {
    transferBytes(&v, 1);
    return *this;
}

xcArchive& xcArchive::operator||(bool& v) {
    unsigned char b = v ? 1 : 0;
    transferBytes(&b, 1);
    if (b > 1) throw BadData(L"invalid bool in archive");
    v = b == 1;
    return *this;
}

xcArchive& xcArchive::operator||(unsigned long& v) {
    if (isStoring() && static_cast<unsigned long long>(v) > 0xFFFFFFFFull)
        throw ValueOutOfRange(L"unsigned value " + std::to_wstring(v) + L" does not fit 32 bits");
    v = static_cast<unsigned long>(transferLE<4>(*this, v));
    return *this;
}

xcArchive& xcArchive::operator||(long& v) {
    if (isStoring() && (v < -2147483648L || v > 2147483647L))
        throw ValueOutOfRange(L"signed value " + std::to_wstring(v) + L" does not fit 32 bits");
    const std::uint32_t bits = static_cast<std::uint32_t>(transferLE<4>(*this, static_cast<std::uint32_t>(v)));
    v = static_cast<long>(static_cast<std::int32_t>(bits));
    return *this;
}

xcArchive& xcArchive::operator||(double& v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, 8);
    bits = transferLE<8>(*this, bits);
    std::memcpy(&v, &bits, 8);
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
    if (loading_) e = xcEdgelet(pos, mag, xcAngle8(static_cast<int>(step)));
    return *this;
}

xcArchive& xcArchive::operator||(std::wstring& s) {
    std::string bytes;
    if (isStoring()) bytes = xfToUtf8(s);
    if (bytes.size() > 0xFFFFFFFFull) throw ValueOutOfRange(L"string too long for an archive");
    unsigned long n = static_cast<unsigned long>(bytes.size());
    *this || n;
    if (loading_) {
        checkCount(n, 1);
        bytes.resize(n);
    }
    transferBytes(bytes.empty() ? nullptr : &bytes[0], bytes.size());
    if (loading_) s = decodeUtf8(bytes);
    return *this;
}

void xfSerializeVectorBody(xcArchive& ar, std::vector<xcVector<2>>& v) {
    if (v.empty()) return;
    if (kLittleEndianHost && sizeof(xcVector<2>) == 16) {
        ar.transferBytes(v.data(), v.size() * sizeof(xcVector<2>));
    } else {
        for (auto& p : v) ar || p;
    }
}

// ---- visit marks and pointer records ----

bool xcPersistent::haveVisited(xcArchive& ar, const void* address, std::size_t size) {
    return ar.state_->visited.count({address, size}) != 0;
}

void xcPersistent::setVisited(xcArchive& ar, const void* address, std::size_t size) {
    ar.state_->visited.insert({address, size});
}

void xcPersistent::serializePointer(xcArchive& ar, const xcPersistent* object, xcPersistent*& pointer) {
    xcArchive::State& st = *ar.state_;
    if (ar.isStoring()) {
        unsigned char tag = kNullTag;
        if (!object) {
            ar || tag;
            return;
        }
        const void* key = dynamic_cast<const void*>(object);
        const auto found = st.storedIds.find(key);
        if (found != st.storedIds.end()) {
            tag = kReferenceTag;
            unsigned long id = found->second;
            ar || tag || id;
            return;
        }
        const std::string name = xc_Instantiator::registeredName(typeid(*object));
        if (name.empty())
            throw xcArchive::UnregisteredClass(L"class " + widen(xc_Instantiator::stableName(typeid(*object))) +
                                               L" is not registered for archives");
        NestingGuard guard(st.depth);
        tag = kObjectTag;
        unsigned long length = static_cast<unsigned long>(name.size());
        ar || tag || length;
        ar.transferBytes(const_cast<char*>(name.data()), name.size());
        st.storedIds.emplace(key, static_cast<std::uint32_t>(st.storedIds.size()));
        // Keep shared objects alive while the archive may still refer to their address.
        if (const xcRepBase* counted = dynamic_cast<const xcRepBase*>(object)) {
            if (counted->refCount() > 0) {
                counted->addRef();
                st.heldWhileStoring.push_back(counted);
            }
        }
        const_cast<xcPersistent*>(object)->dispatchSerialize(ar);
        return;
    }

    pointer = nullptr;
    unsigned char tag = 0;
    ar || tag;
    if (tag == kNullTag) return;
    if (tag == kReferenceTag) {
        unsigned long id = 0;
        ar || id;
        if (id >= st.loaded.size())
            throw xcArchive::BadReference(L"reference to object " + std::to_wstring(id) + L" of " +
                                          std::to_wstring(st.loaded.size()) + L" loaded");
        const xcArchive::State::Loaded& l = st.loaded[id];
        if (!l.complete) throw xcArchive::BadReference(L"reference to an object still being loaded");
        if (!l.counted) throw xcArchive::BadReference(L"second reference to an object without a count");
        pointer = l.object;
        return;
    }
    if (tag != kObjectTag) throw xcArchive::BadData(L"invalid pointer tag " + std::to_wstring(tag));

    NestingGuard guard(st.depth);
    unsigned long length = 0;
    ar || length;
    if (length == 0 || length > kMaxClassName) throw xcArchive::BadData(L"invalid class name length");
    ar.checkCount(length, 1);
    std::string name(length, '\0');
    ar.transferBytes(&name[0], length);
    const xc_Instantiator::MakeFunction make = xc_Instantiator::lookup(name);
    if (!make) throw xcArchive::UnknownClass(L"unknown class \"" + widen(name) + L"\" in archive");

    xcPersistent* created = make();
    const xcRepBase* counted = dynamic_cast<const xcRepBase*>(created);
    if (counted) counted->addRef();
    st.loaded.push_back({created, counted, false, false});
    const std::size_t index = st.loaded.size() - 1;
    created->dispatchSerialize(ar);
    created->reInit();
    st.loaded[index].complete = true;
    st.loaded[index].handedOut = counted == nullptr;
    pointer = created;
}

// ---- memory archive ----

xcMemoryArchive::xcMemoryArchive() : xcArchive(false) { writeHeader(); }

xcMemoryArchive::xcMemoryArchive(const std::vector<unsigned char>& bytes)
    : xcArchive(true), copy_(bytes), in_(copy_.data()), size_(copy_.size()) {
    readHeader();
}

xcMemoryArchive::xcMemoryArchive(const unsigned char* data, std::size_t size)
    : xcArchive(true), in_(data), size_(data ? size : 0) {
    readHeader();
}

xcMemoryArchive::~xcMemoryArchive() = default;

std::uint64_t xcMemoryArchive::bytesLeft() const {
    return isLoading() ? size_ - pos_ : std::numeric_limits<std::uint64_t>::max();
}

void xcMemoryArchive::writeRaw(const void* data, std::size_t n) {
    const unsigned char* p = static_cast<const unsigned char*>(data);
    out_.insert(out_.end(), p, p + n);
}

void xcMemoryArchive::readRaw(void* data, std::size_t n) {
    if (n > size_ - pos_) throw Truncated();
    std::memcpy(data, in_ + pos_, n);
    pos_ += n;
}

// ---- file archive ----

struct xcFileArchive::File {
    std::FILE* f = nullptr;
    std::uint64_t size = 0;
    std::uint64_t pos = 0;
    ~File() {
        if (f) std::fclose(f);
    }
};

namespace {
std::wstring pathMessage(const char* what, const std::string& path) {
    return widen(what) + L" \"" + widen(path) + L"\"";
}
}  // namespace

xcFileArchive::xcFileArchive(const std::string& path, Direction direction)
    : xcArchive(direction == load), path_(path), file_(new File) {
    file_->f = std::fopen(path.c_str(), direction == load ? "rb" : "wb");
    if (!file_->f) throw FileError(pathMessage(direction == load ? "cannot open" : "cannot create", path));
    if (direction == load) {
        if (std::fseek(file_->f, 0, SEEK_END) != 0) throw FileError(pathMessage("cannot read", path));
        const long end = std::ftell(file_->f);
        if (end < 0 || std::fseek(file_->f, 0, SEEK_SET) != 0) throw FileError(pathMessage("cannot read", path));
        file_->size = static_cast<std::uint64_t>(end);
        readHeader();
    } else {
        writeHeader();
    }
}

xcFileArchive::~xcFileArchive() = default;

void xcFileArchive::close() {
    if (!file_->f) return;
    const bool failed = (isStoring() && std::fflush(file_->f) != 0) || std::ferror(file_->f);
    const bool closeFailed = std::fclose(file_->f) != 0;
    file_->f = nullptr;
    if (failed || closeFailed) throw FileError(pathMessage("cannot write", path_));
}

std::uint64_t xcFileArchive::bytesLeft() const {
    return isLoading() ? file_->size - file_->pos : std::numeric_limits<std::uint64_t>::max();
}

void xcFileArchive::writeRaw(const void* data, std::size_t n) {
    if (!file_->f || std::fwrite(data, 1, n, file_->f) != n) throw FileError(pathMessage("cannot write", path_));
    file_->pos += n;
}

void xcFileArchive::readRaw(void* data, std::size_t n) {
    if (!file_->f) throw FileError(pathMessage("cannot read closed file", path_));
    if (n > file_->size - file_->pos) throw Truncated(pathMessage("archive data ends early in", path_));
    if (std::fread(data, 1, n, file_->f) != n) throw FileError(pathMessage("cannot read", path_));
    file_->pos += n;
}
