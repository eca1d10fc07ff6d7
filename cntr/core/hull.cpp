// The convex hull of an outline's vertices.
#include <cntr/core/hull.h>

#include <foundation/hull.h>

namespace cntr::core {

std::vector<xcVector<2>> convexHull(const std::vector<xcVector<2>>& points) {
    std::vector<xcVector<2>> hull;
    xfConvexHull(points, hull);
    return hull;
}

}  // namespace cntr::core
