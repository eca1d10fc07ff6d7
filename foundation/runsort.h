#ifndef FOUNDATION_RUNSORT_H
#define FOUNDATION_RUNSORT_H

#include <algorithm>
#include <cstddef>
#include <vector>

/// Sorting of sequences that come in few long monotone runs, such as values read along a
/// contour (points in lexicographic order, directions seen from a point): merging the runs costs
/// n log(runs) comparisons where an outright sort costs n log n.
namespace xn_runSort {

/// Above one run per this many items, the runs are too short to be worth merging.
constexpr std::size_t kItemsPerRunToMerge = 16;

/// The ends of the runs of `items` in the order `less`, each run turned to ascend: a run ascends
/// (never steps down) or strictly descends. Empty when there are more runs than one per
/// kItemsPerRunToMerge items (`items` is then a permutation of what it was).
template <class T, class Less>
std::vector<std::size_t> ascendingRuns(std::vector<T>& items, Less less) {
    const std::size_t n = items.size();
    const std::size_t maxRuns = n / kItemsPerRunToMerge + 1;
    std::vector<std::size_t> ends;
    for (std::size_t i = 0; i < n;) {
        std::size_t j = i + 1;
        if (j < n && less(items[j], items[i])) {
            while (j < n && less(items[j], items[j - 1])) ++j;
            std::reverse(items.begin() + static_cast<std::ptrdiff_t>(i),
                         items.begin() + static_cast<std::ptrdiff_t>(j));
        } else {
            while (j < n && !less(items[j], items[j - 1])) ++j;
        }
        ends.push_back(j);
        if (ends.size() > maxRuns) return {};
        i = j;
    }
    return ends;
}

/// Merges the ascending ranges [first, middle) and [middle, last) into [first, last), taking
/// from the first range on ties (as std::merge does). Only the first range is copied out, into
/// `buffer`: the output never overtakes the second range's next item.
template <class T, class Less>
void mergeInPlace(T* first, T* middle, T* last, std::vector<T>& buffer, Less less) {
    if (middle == last) return;
    buffer.assign(first, middle);
    const T* a = buffer.data();
    const T* const aEnd = a + buffer.size();
    const T* b = middle;
    T* out = first;
    while (a != aEnd && b != last) *out++ = less(*b, *a) ? *b++ : *a++;
    while (a != aEnd) *out++ = *a++;
}

/// Calls merge(begin, middle, end) for each pair of neighbouring runs, pass after pass, until
/// one run is left; `ends` holds the ends of the runs. A last run without a partner comes as
/// (begin, end, end).
template <class Merge>
void forEachPairwiseMerge(std::vector<std::size_t> ends, Merge merge) {
    while (ends.size() > 1) {
        std::vector<std::size_t> merged;
        std::size_t begin = 0;
        for (std::size_t r = 0; r < ends.size(); r += 2) {
            const std::size_t end = r + 1 < ends.size() ? ends[r + 1] : ends[r];
            merge(begin, ends[r], end);
            merged.push_back(end);
            begin = end;
        }
        ends.swap(merged);
    }
}

/// Sorts `items` ascending by `less` (a strict weak order): by merging the runs when there are
/// at most one per kItemsPerRunToMerge items, else with std::sort. The order of items that
/// compare equal is unspecified, as with std::sort; where equal items are equal in every bit
/// the result is std::sort's. Work memory: the largest first range of a merge.
template <class T, class Less>
void sortByRuns(std::vector<T>& items, Less less) {
    const std::vector<std::size_t> ends = ascendingRuns(items, less);
    if (ends.empty()) {
        std::sort(items.begin(), items.end(), less);
        return;
    }
    // The buffer is sized once, for the largest first range of any merge.
    std::size_t largestFirst = 0;
    forEachPairwiseMerge(ends, [&](std::size_t begin, std::size_t middle, std::size_t end) {
        if (middle < end) largestFirst = std::max(largestFirst, middle - begin);
    });
    std::vector<T> buffer;
    buffer.reserve(largestFirst);
    forEachPairwiseMerge(ends, [&](std::size_t begin, std::size_t middle, std::size_t end) {
        mergeInPlace(items.data() + begin, items.data() + middle, items.data() + end, buffer, less);
    });
}

}  // namespace xn_runSort

#endif
