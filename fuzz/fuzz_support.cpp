#include "fuzz_support.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace xn_fuzz {
namespace {

/// The outer hull's report of loops that do not join into one outline: documented behaviour.
constexpr const char* kLoopsNotJoinedSource = "cntr/region";
constexpr int kLoopsNotJoinedLine = 621;

void fuzzAssertHandler(const char* file, int line) {
    if (file != nullptr && std::strcmp(file, kLoopsNotJoinedSource) == 0 &&
        line == kLoopsNotJoinedLine)
        return;
    std::fprintf(stderr, "unexpected assertion: %s:%d\n", file ? file : "(null)", line);
    std::abort();
}

using Limits = std::numeric_limits<double>;

/// The values that coordinate() draws from its table: non-numbers, the ends of the double
/// range, the library's own tolerances and their neighbours, and values where integers stop
/// being exact.
const double kExtremes[] = {
    Limits::quiet_NaN(),
    -Limits::quiet_NaN(),
    Limits::infinity(),
    -Limits::infinity(),
    0.0,
    -0.0,
    Limits::max(),
    -Limits::max(),
    Limits::min(),
    -Limits::min(),
    Limits::denorm_min(),
    -Limits::denorm_min(),
    Limits::epsilon(),
    1e300,
    -1e300,
    1e-300,
    1e154,  // its square still fits a double, the square of twice it does not
    -1e154,
    1e-15,
    1e-12,
    1e-10,
    1e-6,
    1.0000001e-6,
    0.99999999e-6,
    0.5,
    1e15,
    9007199254740992.0,  // 2^53
    9007199254740993.0,  // rounds to 2^53
    2147483648.0,        // 2^31
    -2147483649.0,
    9.3e18,  // just above the largest 64-bit integer
    -9.3e18,
};
constexpr std::size_t kExtremeCount = sizeof(kExtremes) / sizeof(kExtremes[0]);

/// The tag ranges of coordinate().
constexpr std::uint8_t kFirstExtremeTag = 0x80;
constexpr std::uint8_t kFirstFractionTag = 0xA0;
constexpr std::uint8_t kFirstRawTag = 0xC0;
/// Small integers run from -kIntegerBias to 127 - kIntegerBias.
constexpr int kIntegerBias = 64;
constexpr int kFractionBias = 16;

}  // namespace

void fail(const char* what) {
    std::fprintf(stderr, "broken law: %s\n", what);
    std::abort();
}

void installAssertHandler() {
    xfSetAssertHandler(&fuzzAssertHandler);
}

std::uint8_t ByteReader::byte() {
    return pos_ < size_ ? data_[pos_++] : 0;
}

std::uint16_t ByteReader::u16() {
    const unsigned lo = byte();
    return static_cast<std::uint16_t>(lo | (static_cast<unsigned>(byte()) << 8));
}

double ByteReader::rawDouble() {
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i)
        bits |= static_cast<std::uint64_t>(byte()) << (8 * i);
    double v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

double ByteReader::coordinate() {
    const std::uint8_t tag = byte();
    if (tag < kFirstExtremeTag)
        return static_cast<double>(static_cast<int>(tag) - kIntegerBias);
    if (tag < kFirstFractionTag)
        return kExtremes[(tag - kFirstExtremeTag) % kExtremeCount];
    if (tag < kFirstRawTag)
        return static_cast<double>(static_cast<int>(tag - kFirstFractionTag) - kFractionBias) +
               byte() / 256.0;
    return rawDouble();
}

xcVector<2> ByteReader::point() {
    const double x = coordinate();
    return xcVector<2>(x, coordinate());
}

std::vector<xcVector<2>> ByteReader::pointList() {
    const std::size_t count = byte();
    std::vector<xcVector<2>> points;
    points.reserve(count);
    for (std::size_t i = 0; i < count && !empty(); ++i)
        points.push_back(point());
    return points;
}

xcXform<2> ByteReader::xform() {
    double m[6];
    for (double& e : m)
        e = coordinate();
    return xcXform<2>(xcMatrix<2>(m[0], m[1], m[2], m[3]), xcVector<2>(m[4], m[5]));
}

bool allNumbers(const std::vector<xcVector<2>>& points) {
    for (const xcVector<2>& p : points)
        if (std::isnan(p.x()) || std::isnan(p.y()))
            return false;
    return true;
}

}  // namespace xn_fuzz
