#ifndef FOUNDATION_RANDOM_H
#define FOUNDATION_RANDOM_H

#include <cstdint>

#include <foundation/export.h>

/// A deterministic uniform generator whose sequence depends only on the seed: the same on every
/// platform and compiler (SplitMix64 followed by a 53-bit mantissa draw).
class FOUNDATION_API xcRandomUniform {
public:
    explicit xcRandomUniform(std::uint64_t seed) : state_(seed) {}

    /// The next value, uniform in [lo, hi) for finite lo < hi. When hi <= lo, lo is returned.
    double next(double lo, double hi) {
        const double u = static_cast<double>(nextBits() >> 11) * 0x1.0p-53;  // in [0, 1)
        if (!(hi > lo)) return lo;
        const double v = lo + (hi - lo) * u;
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
    static double below(double hi, double lo);
    std::uint64_t state_;
};

#endif
