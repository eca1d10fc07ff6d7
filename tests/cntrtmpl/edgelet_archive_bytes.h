// Builders of the records that the edgelet templates write and read, following the documented
// wire format, so that tests can check stored bytes exactly and feed hand-made records to the
// loader; and a check that a record cut anywhere is refused.
#ifndef CNTR_TESTS_EDGELET_ARCHIVE_BYTES_H
#define CNTR_TESTS_EDGELET_ARCHIVE_BYTES_H

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/exception.h>
#include <foundation/geometry.h>

#include "cntr/archive_bytes.h"

namespace testbytes {

/// A 16-bit little-endian number.
inline void u16(Bytes& b, unsigned v) {
    u8(b, v & 0xFF);
    u8(b, (v >> 8) & 0xFF);
}

/// A version-1 contour record: version 1, the xcPersistent byte 0, label, closed flag, the
/// points' vector record and cachedVectorSize.
inline void contourPart(Bytes& b, std::uint32_t label, bool closed,
                        const std::vector<xcVector<2>>& p, std::uint32_t cvs = 3) {
    u8(b, 1);
    u8(b, 0);
    u32(b, label);
    u8(b, closed ? 1 : 0);
    u8(b, 0);
    u32(b, static_cast<std::uint32_t>(p.size()));
    for (const xcVector<2>& v : p) {
        f64(b, v.x());
        f64(b, v.y());
    }
    u32(b, cvs);
}

/// A version-1 region record of a closed outline without holes: version 1, the contour record
/// (cachedVectorSize 3) and an empty holes vector record.
inline void regionPart(Bytes& b, std::uint32_t label, const std::vector<xcVector<2>>& p) {
    u8(b, 1);
    contourPart(b, label, true, p);
    u8(b, 0);
    u32(b, 0);
}

/// A new edgelet region in a pointer record: its class name, its version byte 0 and the region
/// part.
inline void edgeletRegionObject(Bytes& b, std::uint32_t label, const std::vector<xcVector<2>>& p) {
    newObject(b, "xcRegionT<xcEdgelet>");
    u8(b, 0);
    regionPart(b, label, p);
}

/// A back-reference pointer record to counted object number `object`.
inline void backReference(Bytes& b, std::uint32_t object) {
    u8(b, 2);
    u32(b, object);
}

/// Expects load(prefix) to throw an xcException for every proper prefix of `bytes`.
template <class Load>
void expectEveryTruncationThrows(const Bytes& bytes, Load load) {
    for (std::size_t n = 0; n < bytes.size(); ++n) {
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n));
        EXPECT_THROW(load(cut), xcException) << "cut at " << n;
    }
}

}  // namespace testbytes

#endif
