// Point location for the polygon value types: the locator built once per storage, and the
// checks of the arguments.
#include <cmath>
#include <memory>
#include <mutex>
#include <vector>

#include <cntr/contourdefs.h>
#include <cntr/core/point_locator.h>
#include <cntr/polygon.h>
#include <cntr/polygon_detail.h>

namespace cntr {

namespace {

void checkBoundaryDistance(double boundaryDistance) {
    if (!std::isfinite(boundaryDistance) || boundaryDistance < 0.0)
        throw xcContourDefs::BadParams(L"boundary distance must be finite and not negative");
}

void checkPoint(const xcVector<2>& point) {
    if (!std::isfinite(point.x()) || !std::isfinite(point.y()))
        throw xcContourDefs::BadParams(L"point has a non-finite coordinate");
}

// The locator of the rings that rings() lists, built on the first call: whoever comes first
// builds, the others wait.
template <class RingList>
const core::PointLocator& preparedLocator(std::once_flag& once,
                                          std::unique_ptr<const core::PointLocator>& slot,
                                          RingList rings) {
    std::call_once(once, [&] { slot = std::make_unique<const core::PointLocator>(rings()); });
    return *slot;
}

Location locateWith(const core::PointLocator& locator, const xcVector<2>& point,
                    double boundaryDistance) {
    const xcRingLocation found = locator.locate(point);
    if (found == xcRingLocation::boundary ||
        (boundaryDistance > 0.0 && locator.nearEdge(point, boundaryDistance)))
        return Location::boundary;
    return found == xcRingLocation::inside ? Location::inside : Location::outside;
}

// locate for a polygon or a multipolygon: the arguments checked, then the shape's locator asked.
template <class Shape>
Location locateOne(const Shape& shape, const xcVector<2>& point, double boundaryDistance) {
    checkPoint(point);
    checkBoundaryDistance(boundaryDistance);
    return locateWith(shape.locator(), point, boundaryDistance);
}

// The batch form: every argument checked before any point is located.
template <class Shape>
std::vector<Location> locateMany(const Shape& shape, const std::vector<xcVector<2>>& points,
                                 double boundaryDistance) {
    checkBoundaryDistance(boundaryDistance);
    for (const xcVector<2>& point : points)
        checkPoint(point);
    const core::PointLocator& locator = shape.locator();
    std::vector<Location> found;
    found.reserve(points.size());
    for (const xcVector<2>& point : points)
        found.push_back(locateWith(locator, point, boundaryDistance));
    return found;
}

std::vector<const Ring*> ringsOf(const Polygon& polygon) {
    std::vector<const Ring*> rings{&polygon.exterior()};
    for (const Ring& hole : polygon.holes())
        rings.push_back(&hole);
    return rings;
}

std::vector<const Ring*> ringsOf(const std::vector<Polygon>& members) {
    std::vector<const Ring*> rings;
    for (const Polygon& member : members) {
        const std::vector<const Ring*> own = ringsOf(member);
        rings.insert(rings.end(), own.begin(), own.end());
    }
    return rings;
}

}  // namespace

const core::PointLocator& Polygon::locator() const {
    return preparedLocator(data_->locatorOnce, data_->locator, [this] { return ringsOf(*this); });
}

Location Polygon::locate(const xcVector<2>& point, double boundaryDistance) const {
    return locateOne(*this, point, boundaryDistance);
}

std::vector<Location> Polygon::locate(const std::vector<xcVector<2>>& points,
                                      double boundaryDistance) const {
    return locateMany(*this, points, boundaryDistance);
}

const core::PointLocator& MultiPolygon::locator() const {
    return preparedLocator(data_->locatorOnce, data_->locator,
                           [this] { return ringsOf(data_->members); });
}

Location MultiPolygon::locate(const xcVector<2>& point, double boundaryDistance) const {
    return locateOne(*this, point, boundaryDistance);
}

std::vector<Location> MultiPolygon::locate(const std::vector<xcVector<2>>& points,
                                           double boundaryDistance) const {
    return locateMany(*this, points, boundaryDistance);
}

}  // namespace cntr
