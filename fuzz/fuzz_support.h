// Shared pieces of the fuzz targets: reading shapes out of fuzzer bytes, running one operation
// with the library's exceptions allowed, archive round trips, and the checks that turn a broken
// law into a crash the fuzzer can report.
#ifndef CNTR_FUZZ_FUZZ_SUPPORT_H
#define CNTR_FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include <foundation/angle.h>
#include <foundation/archive.h>
#include <foundation/exception.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/vector.h>
#include <foundation/xform.h>

namespace xn_fuzz {

using Bytes = std::vector<unsigned char>;

/// Reports a broken law of the library (`what`) on stderr and aborts, which the fuzzer records
/// as a crash with the input that caused it.
[[noreturn]] void fail(const char* what);

/// Calls fail(what) unless `condition` holds.
inline void check(bool condition, const char* what) {
    if (!condition)
        fail(what);
}

/// Installs the assertion handler of the fuzz targets: the outer hull's documented report of
/// loops that do not join is an expected outcome; any other assertion is a defect and aborts.
/// Safe to call more than once.
void installAssertHandler();

/// Runs `op` and swallows the exceptions of the library's family (xcException): refusing bad
/// input is what the library is meant to do. Any other exception escapes, and the fuzzer reports
/// it. Returns whether `op` completed.
template <class Op>
bool attempt(Op&& op) {
    try {
        op();
        return true;
    } catch (const xcException&) {
        return false;
    }
}

/// Reads the fuzzer's bytes front to back; once they run out every read gives zeros, so a
/// decoder never fails and a short input is a valid (small) shape.
class ByteReader {
  public:
    ByteReader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool empty() const { return pos_ >= size_; }
    std::uint8_t byte();
    std::uint16_t u16();
    /// The raw bits of a double (NaN payloads included).
    double rawDouble();
    /// A coordinate in a compact form that makes the values the library finds hard common:
    /// one tag byte chooses a small integer (repeated vertices, collinear runs, exact
    /// crossings), a value from a table of extremes (NaN, infinities, the largest and smallest
    /// magnitudes, the library's tolerances), a small integer plus a fraction of 1/256ths, or a
    /// raw 8-byte double.
    double coordinate();
    xcVector<2> point();
    /// A count byte (0 to 255) followed by that many points.
    std::vector<xcVector<2>> pointList();
    /// Six coordinates: the matrix (row-major) and the translation.
    xcXform<2> xform();

  private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t pos_ = 0;
};

/// Whether every coordinate is a number (no NaN), so that exact equality can hold.
bool allNumbers(const std::vector<xcVector<2>>& points);

/// The archive of the object that `handle` holds (the header and the handle record).
template <class Handle>
Bytes store(Handle handle) {
    xcMemoryArchive out;
    out || handle;
    return out.bytes();
}

/// Loads `bytes` into a handle of type Handle.
template <class Handle>
Handle load(const Bytes& bytes) {
    xcMemoryArchive in(bytes);
    Handle handle;
    in || handle;
    return handle;
}

/// The round-trip law for an object (nothing for a null handle): its bytes load again, and the
/// loaded object stores to the very same bytes. Storing may refuse the object (a label too wide for
/// the wire, for example), which ends the check.
template <class Handle>
void checkRoundTrip(const Handle& handle, const char* what) {
    if (handle.isNull())
        return;
    Bytes first;
    if (!attempt([&] { first = store(handle); }))
        return;
    Handle loaded;
    check(attempt([&] { loaded = load<Handle>(first); }), what);
    check(!loaded.isNull(), what);
    check(store(loaded) == first, what);
}

}  // namespace xn_fuzz

#endif
