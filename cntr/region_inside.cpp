// Point containment: the crossing count of an adaptive ray, and inside with holes.
#include <algorithm>

#include <cntr/region.h>
#include <cntr/region_detail.h>
#include <cntr/tolerances.h>

using namespace xn_contourDetail;
using namespace xn_regionDetail;

namespace {

// The ray direction: the bisector of the first gap wider than `threshold` between consecutive
// directions of the ascending list (the last gap wrapping to the first), or +x when there is
// none. The first such gap is taken, not the widest.
xcVector<2> rayDirection(const std::vector<xcRadian>& sortedAngles, double threshold) {
    const std::size_t n = sortedAngles.size();
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t j = i + 1 == n ? 0 : i + 1;
        const xcRadian gap = (sortedAngles[j] - sortedAngles[i]).norm();
        if (gap.toDouble() > threshold)
            return xcVector<2>(1.0, sortedAngles[i] + gap / 2.0);
    }
    return xcVector<2>(1.0, 0.0);
}

}  // namespace

long xcRegion::insideCount(const xcVector<2>& point, bool bothWays) const {
    if (!outlineOf(*this).encloseRect(xcXform<2>::I).within(point))
        return 0;
    const std::vector<xcVector<2>>& p = points();
    // A NaN distance also counts as "on the vertex", so no NaN angle reaches the sort.
    std::vector<xcRadian> angles;
    angles.reserve(p.size());
    for (const xcVector<2>& vertex : p) {
        const xcVector<2> d = vertex - point;
        if (!(d.length() > kOnVertexTolerance))
            return 1;
        angles.push_back(d.angle().norm());
    }
    std::sort(angles.begin(), angles.end());
    const xcVector<2> direction = rayDirection(angles, xcPi / static_cast<double>(p.size()));

    const double reach = diameter(xcContourDefs::fromFirstVertex);
    xcRegion& self = cacheFilling(*this);
    const auto crossings = [&](const xcVector<2>& end) {
        return static_cast<long>(self.intersections(xcLineSeg(point, end), false, false).size());
    };
    const long forward = crossings(point + reach * direction);
    if (!bothWays)
        return forward;
    return std::min(forward, crossings(point - reach * direction));
}

bool xcRegion::inside(const xcVector<2>& point, bool considerHoles) const {
    const bool inOutline = insideCount(point, false) % 2 == 1;
    if (inOutline && considerHoles)
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            if (hole->inside(point, true))
                return false;
    return inOutline;
}
