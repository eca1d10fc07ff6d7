#ifndef FOUNDATION_RANDOM_H
#define FOUNDATION_RANDOM_H

#include <cfloat>
#include <cstdint>

#include <foundation/export.h>

/// A deterministic uniform generator whose sequence depends only on the seed: the same on every
/// platform and compiler. The bits are SplitMix64 (state += 0x9E3779B97F4A7C15, then the
/// published two multiply-xorshift rounds); a double in [0, 1) is the top 53 bits times 2^-53.
class FOUNDATION_API xcRandomUniform {
  public:
    explicit xcRandomUniform(std::uint64_t seed) : state_(seed) {}

    /// The next value, uniform in [lo, hi) for finite lo < hi, including ranges wider than the
    /// largest double and ranges only a few ulps wide. When hi <= lo, lo is returned. Every call
    /// consumes exactly one draw. Throws xcMathError::NotFinite when lo or hi is NaN or infinite.
    double next(double lo, double hi) {
        const double u = static_cast<double>(nextBits() >> 11) * 0x1.0p-53;  // in [0, 1)
        const double span = hi - lo;
        // A finite positive span implies finite bounds; everything else takes the slow path.
        if (!(span > 0.0 && span <= DBL_MAX))
            return nextUnusual(lo, hi, u);
        const double v = lo + span * u;
        return v < hi ? v : below(hi, lo);
    }
    /// The next 64 random bits.
    std::uint64_t nextBits() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }

  private:
    /// The largest double below hi (rounding can carry lo + span * u up to hi).
    static double below(double hi, double lo);
    /// next() for non-finite bounds, an empty range, or a span that overflows.
    static double nextUnusual(double lo, double hi, double u);
    std::uint64_t state_;
};

#endif
