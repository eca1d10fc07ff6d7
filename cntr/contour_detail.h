// Helpers shared by the contour's sources and by the region set (internal header, not
// installed).
#ifndef CNTR_CONTOUR_DETAIL_H
#define CNTR_CONTOUR_DETAIL_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/numeric.h>
#include <foundation/persistent.h>
#include <foundation/random.h>

#include <cntr/contourmemo.h>
#include <cntr/core/outline.h>

namespace xn_contourDetail {

/// The calling thread's generator for memo replacement: seeded with 1, created on the thread's
/// first use and freed when the thread ends.
xcRandomUniform& threadGenerator();

using cntr::core::edgeEndVertex;
using cntr::core::edgeStartVertex;
using cntr::core::forEachEdge;

/// Where refused contour and region records are reported: the source names and places of
/// xcArchive::UnknownVersion.
constexpr const char* kContourSource = "cntr/contour";
constexpr long kBadContourVersionLine = 900;
constexpr long kBadLegacyBaseVersionLine = 890;
constexpr const char* kRegionSource = "cntr/region";
constexpr long kBadRegionVersionLine = 822;

/// The readers of version-0 records, each with a legacy base object of its own.
enum class LegacyReader { contour, region };

/// Reads the base part of a version-0 record, its own version byte (0) followed by the
/// xcPersistent record, into the legacy base object of `reader`. Each reader's object is visited
/// (and so read) once per archive. A version byte other than 0 throws
/// xcArchive::UnknownVersion: ("cntr/contour", 890) for the contour, ("cntr/region", 822) for
/// the region.
void readLegacyBase(xcArchive& ar, LegacyReader reader);

/// Stores `value` under `key` (absent from the memo, which exists) in an argument-keyed memo
/// bounded by `limit`: while the memo holds no more than `limit` entries the entry is added (so
/// it can reach limit + 1); otherwise the entry at a position r drawn uniformly from the memo's
/// size by the thread's generator, counted in key order, is replaced by the new one.
template <class Memo>
void memoStore(std::unique_ptr<Memo>& memo, const typename Memo::key_type& key,
               const typename Memo::mapped_type& value, long limit) {
    const std::size_t count = memo->size();
    if (static_cast<long long>(count) <= static_cast<long long>(limit)) {
        memo->emplace(key, value);
        return;
    }
    const long victim = xfIFloor(threadGenerator().next(0.0, static_cast<double>(count)));
    std::unique_ptr<Memo> rebuilt(new Memo(memo->key_comp()));
    long position = 0;
    for (const auto& entry : *memo) {
        if (position == victim)
            rebuilt->emplace(key, value);
        else
            rebuilt->emplace(entry);
        ++position;
    }
    memo = std::move(rebuilt);
}

}  // namespace xn_contourDetail

#endif
