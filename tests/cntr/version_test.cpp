#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include <cntr/version.h>

TEST(Version, IsMajorMinorPatch) {
    const std::string v = xf_CntrVersion();
    ASSERT_FALSE(v.empty());
    EXPECT_EQ(std::count(v.begin(), v.end(), '.'), 2) << v;
}
