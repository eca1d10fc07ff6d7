#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/exception.h>
#include <foundation/random.h>

#include "test_support.h"

namespace {

// SplitMix64 written out here from its published description, independently of the library:
// the state advances by the golden-ratio increment and each output is the mixed state.
class ReferenceSplitMix64 {
  public:
    explicit ReferenceSplitMix64(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next() {
        state_ += UINT64_C(0x9E3779B97F4A7C15);
        std::uint64_t z = state_;
        z ^= z >> 30;
        z *= UINT64_C(0xBF58476D1CE4E5B9);
        z ^= z >> 27;
        z *= UINT64_C(0x94D049BB133111EB);
        z ^= z >> 31;
        return z;
    }

  private:
    std::uint64_t state_;
};

// The top 53 bits of a draw as a fraction of 2^53, in [0, 1).
double unitFromBits(std::uint64_t bits) {
    return std::ldexp(static_cast<double>(bits >> 11), -53);
}

TEST(ReferenceSplitMix64, MatchesThePublishedFirstOutputsOfSeedZero) {
    // Guards the reference itself: the widely quoted first outputs for seed 0.
    ReferenceSplitMix64 ref(0);
    EXPECT_EQ(ref.next(), UINT64_C(0xE220A8397B1DCDAF));
    EXPECT_EQ(ref.next(), UINT64_C(0x6E789E6AA1B965F4));
    EXPECT_EQ(ref.next(), UINT64_C(0x06C45D188009454F));
}

TEST(RandomUniform, SeedOneBitsArePinned) {
    // Computed outside the library (by the reference above and by a separate script).
    xcRandomUniform gen(1);
    EXPECT_EQ(gen.nextBits(), UINT64_C(0x910A2DEC89025CC1));
    EXPECT_EQ(gen.nextBits(), UINT64_C(0xBEEB8DA1658EEC67));
    EXPECT_EQ(gen.nextBits(), UINT64_C(0xF893A2EEFB32555E));
    EXPECT_EQ(gen.nextBits(), UINT64_C(0x71C18690EE42C90B));
}

TEST(RandomUniform, SeedOneUnitValuesArePinned) {
    // 0x910A2DEC89025CC1 >> 11 = 5103132997656651, and so on; each value is that over 2^53.
    const std::int64_t mantissas[] = {5103132997656651, 6717404888216029, 8746015278458442,
                                      4002432008702041, 4001580682190902};
    xcRandomUniform gen(1);
    for (std::int64_t m : mantissas)
        EXPECT_EQ(gen.next(0.0, 1.0), std::ldexp(double(m), -53));
}

TEST(RandomUniform, FollowsTheReferenceAlgorithmForManySeeds) {
    for (std::uint64_t seed :
         {UINT64_C(0), UINT64_C(1), UINT64_C(42), UINT64_C(0xFFFFFFFFFFFFFFFF)}) {
        xcRandomUniform gen(seed);
        ReferenceSplitMix64 ref(seed);
        for (int i = 0; i < 1000; ++i) {
            if (i % 2 == 0) {
                ASSERT_EQ(gen.nextBits(), ref.next()) << "seed " << seed << " draw " << i;
            } else {
                // next(lo, hi) is lo + (hi - lo) * u for a range where that is exact enough.
                const double u = unitFromBits(ref.next());
                ASSERT_EQ(gen.next(-3.0, 5.0), -3.0 + 8.0 * u) << "seed " << seed << " draw " << i;
            }
        }
    }
}

TEST(RandomUniform, SameSeedGivesSameSequence) {
    xcRandomUniform a(12345), b(12345);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(a.next(-10.0, 10.0), b.next(-10.0, 10.0)) << i;
}

TEST(RandomUniform, DifferentSeedsGiveDifferentSequences) {
    xcRandomUniform a(1), b(2);
    int equal = 0;
    for (int i = 0; i < 100; ++i)
        if (a.nextBits() == b.nextBits())
            ++equal;
    EXPECT_EQ(equal, 0);
}

void expectAllInRange(std::uint64_t seed, double lo, double hi, int draws) {
    xcRandomUniform gen(seed);
    for (int i = 0; i < draws; ++i) {
        const double v = gen.next(lo, hi);
        ASSERT_GE(v, lo) << "draw " << i;
        ASSERT_LT(v, hi) << "draw " << i;
    }
}

TEST(RandomUniform, ValuesStayInHalfOpenRange) {
    expectAllInRange(7, 0.0, 1.0, 10000);
    expectAllInRange(7, -5.0, -2.0, 10000);
    expectAllInRange(7, 0.0, 3.0, 10000);  // the memo replacement draw: [0, count)
    expectAllInRange(7, 1e6, 1e6 + 1.0, 10000);
}

TEST(RandomUniform, RangeWiderThanTheLargestDouble) {
    // hi - lo overflows to infinity here.
    expectAllInRange(3, -DBL_MAX, DBL_MAX, 10000);
    expectAllInRange(3, -DBL_MAX, DBL_MAX / 2.0 + DBL_MAX / 4.0, 10000);
    // The values still spread over the range rather than piling up at one end.
    xcRandomUniform gen(3);
    int negative = 0;
    constexpr int kDraws = 2000;
    for (int i = 0; i < kDraws; ++i)
        if (gen.next(-DBL_MAX, DBL_MAX) < 0.0)
            ++negative;
    EXPECT_GT(negative, kDraws / 2 - 150);
    EXPECT_LT(negative, kDraws / 2 + 150);
}

TEST(RandomUniform, RangeOfOneUlpGivesLo) {
    // [1, next double after 1) holds only 1; rounding of 1 + 2^-52 * u must not reach hi.
    const double hi = std::nextafter(1.0, 2.0);
    xcRandomUniform gen(5);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(gen.next(1.0, hi), 1.0) << i;
}

TEST(RandomUniform, RangeOfTheSmallestSubnormal) {
    const double tiny = std::numeric_limits<double>::denorm_min();
    xcRandomUniform gen(5);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(gen.next(0.0, tiny), 0.0) << i;
}

TEST(RandomUniform, TinyRangesStayInRange) {
    expectAllInRange(11, 1e-300, 2e-300, 5000);
    expectAllInRange(11, -1e-310, 1e-310, 5000);  // subnormal bounds
    expectAllInRange(11, 1e15, std::nextafter(std::nextafter(1e15, 2e15), 2e15), 5000);
}

TEST(RandomUniform, EmptyOrReversedRangeGivesLo) {
    xcRandomUniform gen(9);
    EXPECT_EQ(gen.next(2.0, 2.0), 2.0);
    EXPECT_EQ(gen.next(5.0, -5.0), 5.0);
}

TEST(RandomUniform, EveryCallConsumesOneDraw) {
    // An empty range still advances the sequence, so call patterns stay reproducible.
    xcRandomUniform gen(1);
    ReferenceSplitMix64 ref(1);
    (void)gen.next(3.0, 3.0);
    (void)ref.next();
    EXPECT_EQ(gen.nextBits(), ref.next());
}

TEST(RandomUniform, NonFiniteBoundsThrowNotFinite) {
    xcRandomUniform gen(1);
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(gen.next(0.0, inf), xcMathError::NotFinite);
    EXPECT_THROW(gen.next(-inf, 0.0), xcMathError::NotFinite);
    EXPECT_THROW(gen.next(-inf, inf), xcMathError::NotFinite);
    EXPECT_THROW(gen.next(nan, 1.0), xcMathError::NotFinite);
    EXPECT_THROW(gen.next(0.0, nan), xcMathError::NotFinite);
    EXPECT_TRUE(throwsError([&] { (void)gen.next(0.0, inf); }, xnErrorNumber::MathNotFinite));
}

TEST(RandomUniform, UnitValuesAreEvenlySpread) {
    // A fixed seed makes this exact and repeatable: ten equal bins of 100000 draws each hold
    // about 10000 (one standard deviation is sqrt(100000 * 0.1 * 0.9) ~ 95), and the chi-square
    // statistic with 9 degrees of freedom stays far below 40.
    constexpr int kDraws = 100000;
    constexpr int kBins = 10;
    std::vector<int> bins(kBins, 0);
    xcRandomUniform gen(2024);
    for (int i = 0; i < kDraws; ++i)
        ++bins[static_cast<int>(gen.next(0.0, 1.0) * kBins)];
    const double expected = double(kDraws) / kBins;
    double chi2 = 0.0;
    for (int n : bins)
        chi2 += (n - expected) * (n - expected) / expected;
    EXPECT_LT(chi2, 40.0);
}

TEST(RandomUniform, FloorOfDrawCoversEveryPosition) {
    // The contour memo picks a victim as floor(next(0, s)); every position must be reachable.
    xcRandomUniform gen(1);
    std::vector<int> hits(4, 0);
    for (int i = 0; i < 400; ++i)
        ++hits[static_cast<std::size_t>(std::floor(gen.next(0.0, 4.0)))];
    for (int h : hits)
        EXPECT_GT(h, 0);
}

}  // namespace
