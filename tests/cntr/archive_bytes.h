// Builds archive bytes by hand, following the documented wire format, so that tests can check
// stored records byte by byte and feed hand-made (legacy or corrupt) records to the loader; and
// the check of a refused record version.
#ifndef CNTR_TESTS_ARCHIVE_BYTES_H
#define CNTR_TESTS_ARCHIVE_BYTES_H

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/archive.h>
#include <foundation/vector.h>

namespace testbytes {

using Bytes = std::vector<unsigned char>;

inline void u8(Bytes& b, unsigned v) { b.push_back(static_cast<unsigned char>(v)); }

/// A 32-bit little-endian number.
inline void u32(Bytes& b, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) b.push_back(static_cast<unsigned char>(v >> (8 * i)));
}

/// A double as its 8 IEEE 754 bytes, little-endian.
inline void f64(Bytes& b, double v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, 8);
    for (int i = 0; i < 8; ++i) b.push_back(static_cast<unsigned char>(bits >> (8 * i)));
}

/// The archive header: "XCAR" and format version 1.
inline Bytes header() {
    Bytes b{'X', 'C', 'A', 'R'};
    u32(b, 1);
    return b;
}

/// The start of a pointer record for a new object: tag 1, the class name's length and bytes.
inline void newObject(Bytes& b, const std::string& className) {
    u8(b, 1);
    u32(b, static_cast<std::uint32_t>(className.size()));
    b.insert(b.end(), className.begin(), className.end());
}

/// The vector record of points: format byte 0, the count, then x and y of each point.
inline void pointVector(Bytes& b, const std::vector<xcVector<2>>& p) {
    u8(b, 0);
    u32(b, static_cast<std::uint32_t>(p.size()));
    for (const xcVector<2>& v : p) {
        f64(b, v.x());
        f64(b, v.y());
    }
}

/// The body of a version-1 contour record: version 1, the xcPersistent version byte 0, the
/// label, the closed flag, the vector record of the points and cachedVectorSize.
inline void contourRecordV1(Bytes& b, std::uint32_t label, bool closed,
                            const std::vector<xcVector<2>>& p, std::int32_t cvs) {
    u8(b, 1);
    u8(b, 0);
    u32(b, label);
    u8(b, closed ? 1 : 0);
    pointVector(b, p);
    u32(b, static_cast<std::uint32_t>(cvs));
}

/// Expects `load` to throw xcArchive::UnknownVersion naming `source` and `line`.
template <class Load>
void expectUnknownVersion(Load load, const std::string& source, long line) {
    try {
        load();
        ADD_FAILURE() << "no UnknownVersion";
    } catch (const xcArchive::UnknownVersion& e) {
        EXPECT_EQ(e.source(), source);
        EXPECT_EQ(e.line(), line);
    }
}

}  // namespace testbytes

#endif
