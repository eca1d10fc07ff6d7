// Vertex lookup grids.
#include <cntr/core/vertex_grid.h>

#include <climits>
#include <cmath>

namespace cntr::core {

namespace {

// Rounds to the nearest integer with halves away from zero: trunc(v + 0.5) for v >= 0, else
// -trunc(-v + 0.5). The result is kept one step inside the range of long, so that the
// neighbouring cells c - 1 and c + 1 exist; a NaN gives 0. Such extreme cells only merge far
// away vertices into one cell, and the distance test still decides.
long roundHalfAway(double v) {
    constexpr double kLowestCell = static_cast<double>(LONG_MIN + 1L);
    constexpr double kHighestCell = static_cast<double>(LONG_MAX - 1L);
    if (v != v)
        return 0;
    const double r = v >= 0.0 ? std::trunc(v + 0.5) : -std::trunc(-v + 0.5);
    if (r <= kLowestCell)
        return LONG_MIN + 1L;
    if (r >= kHighestCell)
        return LONG_MAX - 1L;
    return static_cast<long>(r);
}

}  // namespace

xcPair<long> vertexCellOf(const xcVector<2>& p, double tolerance) {
    return xcPair<long>(roundHalfAway(p.x() / tolerance), roundHalfAway(p.y() / tolerance));
}

void fillVertexGrid(VertexGrid& grid, const std::vector<xcVector<2>>& points) {
    for (std::size_t i = 0; i < points.size(); ++i)
        grid.cells[vertexCellOf(points[i], grid.tolerance)].push_back(static_cast<int>(i));
}

}  // namespace cntr::core
