#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/random.h>
#include <foundation/runsort.h>

namespace {

using xn_runSort::ascendingRuns;
using xn_runSort::mergeInPlace;
using xn_runSort::sortByRuns;

const auto kLess = [](double a, double b) { return a < b; };

std::vector<double> iota(double from, int count, double step) {
    std::vector<double> v;
    for (int i = 0; i < count; ++i)
        v.push_back(from + step * i);
    return v;
}

std::vector<double> concat(std::initializer_list<std::vector<double>> parts) {
    std::vector<double> all;
    for (const auto& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST(RunSort, RunsRiseOrStrictlyFallAndFallingRunsAreTurned) {
    // 0..29 rising, 20 down to 1 falling, fourteen 5s (a plateau rises): 64 items, 3 runs.
    std::vector<double> items =
        concat({iota(0.0, 30, 1.0), iota(20.0, 20, -1.0), std::vector<double>(14, 5.0)});
    ASSERT_EQ(items.size(), 64u);
    const std::vector<std::size_t> ends = ascendingRuns(items, kLess);
    EXPECT_EQ(ends, (std::vector<std::size_t>{30, 50, 64}));
    EXPECT_EQ(std::vector<double>(items.begin() + 30, items.begin() + 50), iota(1.0, 20, 1.0));
    EXPECT_EQ(std::vector<double>(items.begin(), items.begin() + 30), iota(0.0, 30, 1.0));
}

TEST(RunSort, EqualNeighboursEndAFallingRun) {
    // 9 8 | 8 7 | 7 7.5 8 ... 20.5: a falling run stops at an equal neighbour, and so does the
    // next one; the plateau 7 7 rises.
    std::vector<double> items = concat({{9.0, 8.0, 8.0, 7.0}, iota(7.0, 28, 0.5)});
    const std::vector<std::size_t> ends = ascendingRuns(items, kLess);
    EXPECT_EQ(ends, (std::vector<std::size_t>{2, 4, 32}));
    EXPECT_EQ(std::vector<double>(items.begin(), items.begin() + 5),
              (std::vector<double>{8.0, 9.0, 7.0, 8.0, 7.0}));
}

TEST(RunSort, TooManyRunsGiveNoRunsAndAPermutation) {
    std::vector<double> items;
    for (int i = 0; i < 64; ++i)
        items.push_back(i % 2 == 0 ? i : -i);  // a new run every second item
    std::vector<double> before = items;
    EXPECT_TRUE(ascendingRuns(items, kLess).empty());
    std::sort(before.begin(), before.end());
    std::sort(items.begin(), items.end());
    EXPECT_EQ(items, before);
}

TEST(RunSort, MergeTakesTheFirstRangeOnTies) {
    using Tagged = std::pair<int, char>;
    std::vector<Tagged> items{{1, 'a'}, {2, 'a'}, {3, 'a'}, {1, 'b'}, {2, 'b'}};
    std::vector<Tagged> buffer;
    mergeInPlace(items.data(), items.data() + 3, items.data() + 5, buffer,
                 [](const Tagged& x, const Tagged& y) { return x.first < y.first; });
    EXPECT_EQ(items, (std::vector<Tagged>{{1, 'a'}, {1, 'b'}, {2, 'a'}, {2, 'b'}, {3, 'a'}}));
}

TEST(RunSort, EmptyAndSingleItems) {
    std::vector<double> none;
    sortByRuns(none, kLess);
    EXPECT_TRUE(none.empty());
    std::vector<double> one{4.0};
    sortByRuns(one, kLess);
    EXPECT_EQ(one, std::vector<double>{4.0});
}

// A sequence of `runs` runs, each rising or falling from a random start; with `ties`, values
// from a small integer range so that many compare equal.
std::vector<double> runsOf(xcRandomUniform& random, std::size_t count, std::size_t runs,
                           bool ties) {
    std::vector<double> v;
    v.reserve(count);
    for (std::size_t r = 0; r < runs; ++r) {
        const std::size_t length = (count - v.size()) / (runs - r);
        const bool rising = random.next(0.0, 1.0) < 0.5;
        double value = ties ? std::floor(random.next(0.0, 50.0)) : random.next(-1e3, 1e3);
        for (std::size_t i = 0; i < length; ++i) {
            v.push_back(value);
            const double step = ties ? std::floor(random.next(0.0, 2.0)) : random.next(0.0, 3.0);
            value += rising ? step : -step;
        }
    }
    return v;
}

TEST(RunSort, GivesTheOutrightSortOnSeededSequences) {
    xcRandomUniform random(20261122);
    long merged = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::size_t count = 1 + static_cast<std::size_t>(random.next(0.0, 3000.0));
        const std::size_t maxRuns = count / 4 + 1;
        const std::size_t runs = 1 + static_cast<std::size_t>(random.next(0.0, 1.0) *
                                                              random.next(0.0, 1.0) *
                                                              static_cast<double>(maxRuns));
        std::vector<double> items = runsOf(random, count, std::min(runs, count), round % 2 == 0);
        if (round % 7 == 0)
            std::reverse(items.begin(), items.end());
        std::vector<double> expected = items;
        std::sort(expected.begin(), expected.end());
        std::vector<double> probe = items;
        merged += ascendingRuns(probe, kLess).empty() ? 0 : 1;
        sortByRuns(items, kLess);
        ASSERT_EQ(items, expected) << "round " << round << ", " << count << " items";
    }
    // Both ways are taken often.
    EXPECT_GT(merged, 500);
    EXPECT_LT(merged, 2900);
}

}  // namespace
