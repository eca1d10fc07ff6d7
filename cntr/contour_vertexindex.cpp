// Vertex lookup through grids of cells, one grid per tolerance.
#include <algorithm>
#include <climits>
#include <cmath>

#include <cntr/contour.h>

using namespace xn_contourDetail;

namespace {

// Rounds to the nearest integer with halves away from zero: trunc(v + 0.5) for v >= 0, else
// -trunc(-v + 0.5). The result is kept one step inside the range of long, so that the
// neighbouring cells c - 1 and c + 1 exist; a NaN gives 0. Such extreme cells only merge far
// away vertices into one cell, and the distance test still decides.
long roundHalfAway(double v) {
    constexpr double kLowestCell = static_cast<double>(LONG_MIN + 1L);
    constexpr double kHighestCell = static_cast<double>(LONG_MAX - 1L);
    if (v != v) return 0;
    const double r = v >= 0.0 ? std::trunc(v + 0.5) : -std::trunc(-v + 0.5);
    if (r <= kLowestCell) return LONG_MIN + 1L;
    if (r >= kHighestCell) return LONG_MAX - 1L;
    return static_cast<long>(r);
}

xcPair<long> cellOf(const xcVector<2>& p, double tolerance) {
    return xcPair<long>(roundHalfAway(p.x() / tolerance), roundHalfAway(p.y() / tolerance));
}

// Tolerances are matched exactly; NaN matches NaN, so repeated NaN queries share one grid.
bool sameTolerance(double a, double b) { return a == b || (a != a && b != b); }

}  // namespace

std::vector<int> xcContour::vertexIndex(const xcVector<2>& point, double tolerance) {
    checkEmptyContour();
    if (!vertexGrids_) vertexGrids_.reset(new VertexGridCache);
    VertexGrid* grid = nullptr;
    for (VertexGrid& g : *vertexGrids_) {
        if (sameTolerance(g.tolerance, tolerance)) {
            grid = &g;
            break;
        }
    }
    if (!grid) {
        vertexGrids_->push_back(VertexGrid{tolerance, {}});
        grid = &vertexGrids_->back();
        for (std::size_t i = 0; i < points_.size(); ++i)
            grid->cells[cellOf(points_[i], tolerance)].push_back(static_cast<int>(i));
    }

    std::vector<int> found;
    const xcPair<long> centre = cellOf(point, tolerance);
    // Beyond 2^53 neighbouring cells compare equal as doubles and are one map entry; visit each
    // entry once so that no vertex is reported twice.
    const void* visited[9];
    int visitedCount = 0;
    for (long dc = -1; dc <= 1; ++dc) {
        for (long dr = -1; dr <= 1; ++dr) {
            const auto cell = grid->cells.find(xcPair<long>(centre.x() + dc, centre.y() + dr));
            if (cell == grid->cells.end()) continue;
            if (std::find(visited, visited + visitedCount, &*cell) != visited + visitedCount) continue;
            visited[visitedCount++] = &*cell;
            for (int i : cell->second)
                if (points_[static_cast<std::size_t>(i)].distance(point) < tolerance) found.push_back(i);
        }
    }
    return found;
}
