// Vertex lookup grids: the vertices of a point list by square cells of the lookup tolerance
// (internal header, not installed).
#ifndef CNTR_CORE_VERTEX_GRID_H
#define CNTR_CORE_VERTEX_GRID_H

#include <algorithm>
#include <vector>

#include <cntr/contourmemo.h>
#include <cntr/export.h>
#include <foundation/geometry.h>

namespace cntr::core {

using xn_contourDetail::VertexGrid;

/// The cell of `p` in a vertex grid of `tolerance`: its coordinates over the tolerance, rounded
/// half away from zero and kept one step inside the range of long (NaN gives 0).
CNTR_API xcPair<long> vertexCellOf(const xcVector<2>& p, double tolerance);

/// Puts every index of `points` into the cell of its point, in ascending order.
CNTR_API void fillVertexGrid(VertexGrid& grid, const std::vector<xcVector<2>>& points);

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
            if (cell == grid.cells.end())
                continue;
            if (std::find(visited, visited + visitedCount, &*cell) != visited + visitedCount)
                continue;
            visited[visitedCount++] = &*cell;
            for (int i : cell->second)
                if (points[static_cast<std::size_t>(i)].distance(point) < grid.tolerance)
                    found(visitedCount - 1, i);
        }
    }
}

/// The indices of the grid's `points` closer than the grid's tolerance to `point`, in
/// forEachVertexNear's order: by cell (column, then row), then by index.
inline std::vector<int> verticesNear(const VertexGrid& grid, const std::vector<xcVector<2>>& points,
                                     const xcVector<2>& point) {
    std::vector<int> found;
    forEachVertexNear(grid, points, point, [&found](int, int i) { found.push_back(i); });
    return found;
}

}  // namespace cntr::core

#endif
