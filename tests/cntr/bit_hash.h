// A bit-for-bit fingerprint of computed results, for the tests that compare builds: every
// double enters by its IEEE 754 pattern, so two results hash alike only when they are the same
// to the last bit.
#ifndef CNTR_TESTS_BIT_HASH_H
#define CNTR_TESTS_BIT_HASH_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <foundation/matrix.h>
#include <foundation/vector.h>

namespace cntr_test {

/// 64-bit FNV-1a over the bytes fed to it.
class BitHash {
  public:
    void bytes(const void* data, std::size_t size) {
        const auto* p = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < size; ++i) {
            state_ ^= p[i];
            state_ *= kPrime;
        }
    }
    void number(double v) {
        std::uint64_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        bytes(&bits, sizeof bits);
    }
    void integer(long long v) { bytes(&v, sizeof v); }
    void point(const xcVector<2>& p) {
        number(p.x());
        number(p.y());
    }
    void matrix(const xcMatrix<2>& m) {
        for (int r = 0; r < 2; ++r)
            for (int c = 0; c < 2; ++c)
                number(m.element(r, c));
    }
    std::uint64_t value() const { return state_; }

  private:
    static constexpr std::uint64_t kPrime = 0x100000001B3ull;
    std::uint64_t state_ = 0xCBF29CE484222325ull;
};

}  // namespace cntr_test

#endif
