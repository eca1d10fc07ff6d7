#include <climits>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <foundation/numeric.h>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(RealEq, DifferenceEqualToToleranceCounts) {
    // 1.5 - 1.0 = 0.5 exactly, so the bound itself is included.
    EXPECT_TRUE(xfRealEq(1.0, 1.5, 0.5));
    EXPECT_TRUE(xfRealEq(1.5, 1.0, 0.5));
    EXPECT_FALSE(xfRealEq(1.0, 1.5, 0.4375));  // 0.4375 = 7/16, just below 0.5 and exact
}

TEST(RealEq, ZeroToleranceIsExactEquality) {
    EXPECT_TRUE(xfRealEq(0.1, 0.1, 0.0));
    EXPECT_TRUE(xfRealEq(0.0, -0.0, 0.0));
    EXPECT_FALSE(xfRealEq(1.0, std::nextafter(1.0, 2.0), 0.0));
}

TEST(RealEq, ToleranceIsAbsoluteNotRelative) {
    // 1e20 and 1e20 + 16384 differ by far less than one part in 1e15, but by more than 1e-6.
    EXPECT_FALSE(xfRealEq(1e20, 1e20 + 16384.0, 1e-6));
    // Tiny values within an absolute tolerance count as equal even though they differ wildly
    // relative to their size.
    EXPECT_TRUE(xfRealEq(1e-20, -1e-20, 1e-15));
}

TEST(RealEq, TypicalLibraryTolerances) {
    EXPECT_TRUE(xfRealEq(1.0, 1.0 + 1e-16, 1e-15));
    EXPECT_FALSE(xfRealEq(1.0, 1.0 + 4e-15, 1e-15));
    EXPECT_TRUE(xfRealEq(2.0, 2.0 + 5e-7, 1e-6));
    EXPECT_FALSE(xfRealEq(2.0, 2.0 + 2e-6, 1e-6));
}

TEST(RealEq, NaNNeverEqual) {
    EXPECT_FALSE(xfRealEq(kNaN, kNaN, 1.0));
    EXPECT_FALSE(xfRealEq(kNaN, 0.0, kInf));
    EXPECT_FALSE(xfRealEq(0.0, 1.0, kNaN));
}

TEST(RealEq, Infinities) {
    EXPECT_FALSE(xfRealEq(kInf, kInf, 1.0));  // inf - inf is NaN
    EXPECT_FALSE(xfRealEq(kInf, 1e308, 1e300));
    EXPECT_TRUE(xfRealEq(1.0, 2.0, kInf));
}

TEST(IFloor, PositiveAndNegativeFractions) {
    EXPECT_EQ(xfIFloor(2.5), 2L);
    EXPECT_EQ(xfIFloor(2.0), 2L);
    EXPECT_EQ(xfIFloor(0.999999), 0L);
    EXPECT_EQ(xfIFloor(-0.5), -1L);
    EXPECT_EQ(xfIFloor(-2.5), -3L);
    EXPECT_EQ(xfIFloor(-3.0), -3L);
    EXPECT_EQ(xfIFloor(-0.0), 0L);
    EXPECT_EQ(xfIFloor(-1e-300), -1L);
}

TEST(IFloor, LargeExactValues) {
    // 2^53 + 2 and -(2^62) are representable and fit in a long.
    EXPECT_EQ(xfIFloor(9007199254740994.0), 9007199254740994L);
    EXPECT_EQ(xfIFloor(-4611686018427387904.0), -4611686018427387904L);
    // The largest double below 2^63 is 2^63 - 1024.
    EXPECT_EQ(xfIFloor(std::nextafter(9223372036854775808.0, 0.0)), 9223372036854774784L);
}

TEST(IFloor, HugeValuesSaturate) {
    EXPECT_EQ(xfIFloor(9223372036854775808.0), LONG_MAX);  // 2^63 does not fit
    EXPECT_EQ(xfIFloor(1e300), LONG_MAX);
    EXPECT_EQ(xfIFloor(kInf), LONG_MAX);
    EXPECT_EQ(xfIFloor(-9223372036854775808.0), LONG_MIN);  // -2^63 is LONG_MIN itself
    EXPECT_EQ(xfIFloor(-1e300), LONG_MIN);
    EXPECT_EQ(xfIFloor(-kInf), LONG_MIN);
}

TEST(IFloor, NaNGivesZero) {
    EXPECT_EQ(xfIFloor(kNaN), 0L);
    EXPECT_EQ(xfIFloor(-kNaN), 0L);
}

}  // namespace
