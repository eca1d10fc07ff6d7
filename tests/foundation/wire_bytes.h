#ifndef TESTS_FOUNDATION_WIRE_BYTES_H
#define TESTS_FOUNDATION_WIRE_BYTES_H

// Builds archive bytes by hand, independently of the archive code, so that tests can compare
// what the archive writes with the documented wire format and feed it hostile data.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

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
        if (std::memcmp(&bytes[i], needle.data(), needle.size()) == 0) ++n;
    return n;
}

}  // namespace wire

#endif
