// The core's statistics of lists of numbers, on lists worked out by hand.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <cntr/core/statistics.h>

namespace {

using cntr::core::standardDeviation;

TEST(CoreStatistics, PopulationStandardDeviation) {
    // Mean 5; squared differences 9, 1, 1, 1, 0, 0, 4, 16 sum to 32; 32 / 8 = 4; root 2.
    EXPECT_EQ(standardDeviation({2, 4, 4, 4, 5, 5, 7, 9}), 2.0);
    // Mean 2.5; squared differences 2.25, 0.25, 0.25, 2.25 sum to 5; 5 / 4 = 1.25.
    EXPECT_EQ(standardDeviation({1, 2, 3, 4}), std::sqrt(1.25));
}

TEST(CoreStatistics, OneValueHasNoSpread) {
    EXPECT_EQ(standardDeviation({-3.5}), 0.0);
}

TEST(CoreStatistics, EmptyListIsNotANumber) {
    EXPECT_TRUE(std::isnan(standardDeviation({})));
}

}  // namespace
