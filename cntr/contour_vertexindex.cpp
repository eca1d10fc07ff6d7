// Vertex lookup through grids of cells, one grid per tolerance, kept until the next change.
#include <cntr/contour.h>

#include <cntr/core/vertex_grid.h>

using namespace cntr::core;
using xn_contourDetail::VertexGridCache;

namespace {

// Tolerances are matched exactly; NaN matches NaN, so repeated NaN queries share one grid.
bool sameTolerance(double a, double b) {
    return a == b || (a != a && b != b);
}

}  // namespace

std::vector<int> xcContour::vertexIndex(const xcVector<2>& point, double tolerance) {
    checkEmptyContour();
    VertexGridCache& grids = caches_.vertexGrids.make();
    VertexGrid* grid = nullptr;
    for (VertexGrid& g : grids) {
        if (sameTolerance(g.tolerance, tolerance)) {
            grid = &g;
            break;
        }
    }
    if (!grid) {
        grids.push_back(VertexGrid{tolerance, {}});
        grid = &grids.back();
        fillVertexGrid(*grid, points_);
    }

    return verticesNear(*grid, points_, point);
}
