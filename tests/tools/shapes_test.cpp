#include "shapes.h"

#include <gtest/gtest.h>

using cntrtool::withHoleChainsShortened;

TEST(HoleChains, ShortChainsAreSpelledOut) {
    EXPECT_EQ(withHoleChainsShortened("hole 0, hole 1, hole 0 crosses itself"),
              "hole 0, hole 1, hole 0 crosses itself");
    EXPECT_EQ(withHoleChainsShortened("region 2, hole 3: x"), "region 2, hole 3: x");
    EXPECT_EQ(withHoleChainsShortened(""), "");
}

TEST(HoleChains, ChainsOfOneHoleGiveTheDepth) {
    std::string chain = "hole 0";
    for (int k = 1; k < 66; ++k)
        chain += ", hole 0";
    EXPECT_EQ(withHoleChainsShortened("shape 4, " + chain + ": vertex 2 has a non-finite coordinate"),
              "shape 4, hole 0 (66 levels deep): vertex 2 has a non-finite coordinate");
    EXPECT_EQ(withHoleChainsShortened("hole 7, hole 7, hole 7, hole 7"), "hole 7 (4 levels deep)");
}

TEST(HoleChains, MixedChainsKeepTheirFirstAndLastStep) {
    EXPECT_EQ(withHoleChainsShortened("region 1, hole 2, hole 0, hole 0, hole 5 crosses the outline "
                                      "of region 1, hole 2, hole 0, hole 0"),
              "region 1, hole 2, ..., hole 5 (4 levels deep) crosses the outline of region 1, "
              "hole 2, hole 0, hole 0");
}

TEST(HoleChains, OtherWordsAreLeftAlone) {
    const std::string text = "holes 0 and 1 cross; whole 1, whole 2, whole 3, whole 4; hole x";
    EXPECT_EQ(withHoleChainsShortened(text), text);
}
