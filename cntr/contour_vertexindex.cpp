// Vertex lookup through grids of cells, one grid per tolerance.
#include <algorithm>
#include <climits>
#include <cmath>

#include <cntr/contour.h>
#include <cntr/contour_detail.h>

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

// Tolerances are matched exactly; NaN matches NaN, so repeated NaN queries share one grid.
bool sameTolerance(double a, double b) { return a == b || (a != a && b != b); }

}  // namespace

xcPair<long> xn_contourDetail::vertexCellOf(const xcVector<2>& p, double tolerance) {
    return xcPair<long>(roundHalfAway(p.x() / tolerance), roundHalfAway(p.y() / tolerance));
}

void xn_contourDetail::fillVertexGrid(VertexGrid& grid, const std::vector<xcVector<2>>& points) {
    for (std::size_t i = 0; i < points.size(); ++i)
        grid.cells[vertexCellOf(points[i], grid.tolerance)].push_back(static_cast<int>(i));
}

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
        fillVertexGrid(*grid, points_);
    }

    std::vector<int> found;
    forEachVertexNear(*grid, points_, point, [&found](int, int i) { found.push_back(i); });
    return found;
}
