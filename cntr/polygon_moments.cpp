// The true moments of the polygon value types: every ring integrated about the centre of the
// shape's bounds, holes subtracted, members added.
#include <cntr/area_moments.h>
#include <cntr/core/area_moments.h>
#include <cntr/polygon.h>
#include <foundation/exception.h>

namespace cntr {

namespace {

// The centre of the bounds, halved before adding so that it stays finite for any finite bounds.
xcVector<2> centreOf(const xcRect& bounds) {
    return {0.5 * bounds.ul().x() + 0.5 * bounds.lr().x(),
            0.5 * bounds.ul().y() + 0.5 * bounds.lr().y()};
}

core::RawMoments polygonMoments(const Polygon& polygon, const xcVector<2>& origin) {
    core::RawMoments sums = core::unsignedRingMoments(polygon.exterior(), origin);
    for (const Ring& hole : polygon.holes())
        sums += -core::unsignedRingMoments(hole, origin);
    return sums;
}

}  // namespace

xcVector<2> AreaMoments::centroid() const {
    if (m00 == 0.0)
        throw xcMathError::Singular(L"a shape of area 0 has no centroid");
    return {m10 / m00, m01 / m00};
}

AreaMoments Polygon::moments() const {
    const xcVector<2> origin = centreOf(bounds());
    return core::completeMoments(polygonMoments(*this, origin), origin);
}

AreaMoments MultiPolygon::moments() const {
    const xcVector<2> origin = centreOf(bounds());
    core::RawMoments sums;
    for (const Polygon& member : members())
        sums += polygonMoments(member, origin);
    return core::completeMoments(sums, origin);
}

}  // namespace cntr
