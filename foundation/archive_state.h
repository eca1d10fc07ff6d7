#ifndef FOUNDATION_ARCHIVE_STATE_H
#define FOUNDATION_ARCHIVE_STATE_H

// The bookkeeping of one archive pass: visit marks and the objects stored or loaded. Internal to
// the foundation library (not installed).

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <foundation/archive.h>
#include <foundation/handle.h>
#include <foundation/persistent.h>

namespace xn_archive_detail {

using VisitKey = std::pair<const void*, std::size_t>;

struct VisitKeyHash {
    std::size_t operator()(const VisitKey& k) const {
        return std::hash<const void*>()(k.first) ^
               (std::hash<std::size_t>()(k.second) * 0x9E3779B97F4A7C15ull);
    }
};

/// One pointer record being transferred.
struct Frame {
    std::size_t firstMark;  // index in State::markLog of the first mark set inside this record
    int childDepth;         // the deepest object this record's object refers to (0: none)
};

struct StoredObject {
    std::uint32_t id;
    bool complete;
    int depth;
};

struct LoadedObject {
    const xcRepBase* counted;  // the archive's reference
    xcPersistent* object;
    bool complete;
    int depth;
};

struct State {
    std::unordered_set<VisitKey, VisitKeyHash> visited;
    // Marks set while a pointer record is open, so that an object without a count, which leaves
    // the archive's care, can take its marks along (its address may be reused afterwards).
    std::vector<VisitKey> markLog;
    std::vector<Frame> frames;  // the open pointer records, innermost last

    // Storing: the counted objects written, keyed by their most-derived address.
    std::unordered_map<const void*, StoredObject> stored;
    std::vector<const xcRepBase*> held;

    // Loading: the counted objects created, in id order.
    std::vector<LoadedObject> loaded;

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State();

    /// Reports an object of `depth` that the innermost open record refers to.
    void noteReferent(int depth) {
        if (!frames.empty() && depth > frames.back().childDepth)
            frames.back().childDepth = depth;
    }
};

/// The bytes of `s` as wide characters, one each (for messages naming paths and classes).
inline std::wstring widen(const std::string& s) {
    return std::wstring(s.begin(), s.end());
}

/// A 32-bit element count. Storing: throws ValueOutOfRange above 2^32 - 1. Loading: throws
/// CountTooLarge unless `count` elements of `minElementBytes` fit in the bytes left.
std::size_t transferCount(xcArchive& ar, std::size_t count, std::size_t minElementBytes);

}  // namespace xn_archive_detail

#endif
