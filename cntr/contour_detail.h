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

/// The base part of shapes in version-0 archives: its own version byte (0) followed by the
/// xcPersistent record. Kept only to read those records: each reader keeps one instance, which
/// is visited (and so read) once per archive. A version byte other than 0 throws
/// xcArchive::UnknownVersion(source, line).
class LegacyBaseRecord : public virtual xcPersistent, public virtual xcRepBase {
public:
    LegacyBaseRecord(const char* source, long line) : source_(source), line_(line) {}
    void dispatchSerialize(xcArchive& ar) override;

private:
    const char* source_;
    long line_;
};

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

/// The cell of `p` in a vertex grid of `tolerance`: its coordinates over the tolerance, rounded
/// half away from zero and kept one step inside the range of long (NaN gives 0).
xcPair<long> vertexCellOf(const xcVector<2>& p, double tolerance);

/// Puts every index of `points` into the cell of its point, in ascending order.
void fillVertexGrid(VertexGrid& grid, const std::vector<xcVector<2>>& points);

/// Calls found(group, i) for every vertex i of the grid's `points` closer than the grid's
/// tolerance to `point`: the cells around the point's cell row by row, each map entry once,
/// its vertices in ascending order; `group` counts the entries visited, from 0. This order is
/// vertexIndex's.
template <class Found>
void forEachVertexNear(const VertexGrid& grid, const std::vector<xcVector<2>>& points,
                       const xcVector<2>& point, Found found) {
    const xcPair<long> centre = vertexCellOf(point, grid.tolerance);
    // Beyond 2^53 neighbouring cells compare equal as doubles and are one map entry; visit each
    // entry once so that no vertex is reported twice.
    const void* visited[9];
    int visitedCount = 0;
    for (long dc = -1; dc <= 1; ++dc) {
        for (long dr = -1; dr <= 1; ++dr) {
            const auto cell = grid.cells.find(xcPair<long>(centre.x() + dc, centre.y() + dr));
            if (cell == grid.cells.end()) continue;
            if (std::find(visited, visited + visitedCount, &*cell) != visited + visitedCount) continue;
            visited[visitedCount++] = &*cell;
            for (int i : cell->second)
                if (points[static_cast<std::size_t>(i)].distance(point) < grid.tolerance)
                    found(visitedCount - 1, i);
        }
    }
}

}  // namespace xn_contourDetail

#endif
