#ifndef TESTS_FOUNDATION_ARCHIVE_SUPPORT_H
#define TESTS_FOUNDATION_ARCHIVE_SUPPORT_H

// Shared by the archive tests: archive bytes built by hand, independently of the archive code
// (to compare what the archive writes with the documented wire format, and to feed it hostile
// data), and small helpers.

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/archive.h>

namespace wire {

class Bytes {
  public:
    /// The magic "XCAR" and format version 1.
    Bytes& header() { return raw("XCAR").u32(1); }
    Bytes& u8(unsigned v) {
        b_.push_back(static_cast<unsigned char>(v));
        return *this;
    }
    Bytes& u16(unsigned v) { return u8(v & 0xFF).u8((v >> 8) & 0xFF); }
    Bytes& u32(std::uint32_t v) { return u16(v & 0xFFFF).u16(v >> 16); }
    Bytes& f64(double v) {
        std::uint64_t bits;
        std::memcpy(&bits, &v, 8);
        return u32(static_cast<std::uint32_t>(bits)).u32(static_cast<std::uint32_t>(bits >> 32));
    }
    Bytes& raw(const std::string& s) {
        b_.insert(b_.end(), s.begin(), s.end());
        return *this;
    }
    /// A 32-bit length and the bytes.
    Bytes& str(const std::string& s) { return u32(static_cast<std::uint32_t>(s.size())).raw(s); }
    /// A vector record's format byte 0 and count.
    Bytes& vec(std::uint32_t count) { return u8(0).u32(count); }
    /// Pointer records.
    Bytes& null() { return u8(0); }
    Bytes& object(const std::string& className) { return u8(1).str(className); }
    Bytes& ref(std::uint32_t id) { return u8(2).u32(id); }

    const std::vector<unsigned char>& data() const { return b_; }
    std::size_t size() const { return b_.size(); }

  private:
    std::vector<unsigned char> b_;
};

/// How many times `needle` occurs in `bytes`.
inline int countOccurrences(const std::vector<unsigned char>& bytes, const std::string& needle) {
    int n = 0;
    for (std::size_t i = 0; i + needle.size() <= bytes.size(); ++i)
        if (std::memcmp(&bytes[i], needle.data(), needle.size()) == 0)
            ++n;
    return n;
}

}  // namespace wire

namespace support {

/// Stores `v` in a memory archive and loads it back into a value-initialised T; expects the
/// record to be read completely.
template <class T>
T roundTrip(T v) {
    xcMemoryArchive out;
    out || v;
    xcMemoryArchive in(out.bytes());
    T back{};
    in || back;
    EXPECT_EQ(in.bytesLeft(), 0u);
    return back;
}

inline std::uint64_t bitsOf(double d) {
    std::uint64_t b;
    std::memcpy(&b, &d, 8);
    return b;
}

inline double fromBits(std::uint64_t b) {
    double d;
    std::memcpy(&d, &b, 8);
    return d;
}

/// Runs `action`, which must throw an E: returns a copy of it, or nothing (with a test failure)
/// when `action` returns.
template <class E, class F>
std::optional<E> caught(F&& action) {
    try {
        action();
    } catch (const E& e) {
        return e;
    }
    ADD_FAILURE() << "no exception";
    return std::nullopt;
}

/// Whether the message of `e` contains `part`.
template <class E>
bool says(const E& e, const std::string& part) {
    return std::string(e.what()).find(part) != std::string::npos;
}

}  // namespace support

#endif
