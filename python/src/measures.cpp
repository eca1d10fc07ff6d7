#include "measures.h"

#include <optional>

#include <cntr/contourdefs.h>
#include <cntr/core/extent.h>
#include <cntr/core/length.h>
#include <cntr/moments.h>
#include <cntr/tolerances.h>
#include <foundation/numeric.h>

namespace cntr_python {

namespace {

// An outline's centroid with holes subtracted, in the order of xcRegion::centerOfMass(true):
// s = A c, then s - a_h c_h and A - a_h per hole, then s / A; without holes c itself.
class CentroidLessHoles {
  public:
    CentroidLessHoles(double area, const xcVector<2>& centre)
        : area_(area), centre_(centre), sum_(area * centre) {}
    void subtract(double holeArea, const xcVector<2>& holeCentre) {
        sum_ = sum_ - holeArea * holeCentre;
        area_ = area_ - holeArea;
        holes_ = true;
    }
    xcVector<2> centroid() const { return holes_ ? sum_ / area_ : centre_; }

  private:
    double area_;
    xcVector<2> centre_;
    xcVector<2> sum_;
    bool holes_ = false;
};

// Centroids weighted by their areas, in the order of xcRegionSet::centerOfMass.
class WeightedCentroid {
  public:
    void add(double area, const xcVector<2>& centre) {
        weighted_ += area * centre;
        total_ += area;
    }
    xcVector<2> centroid() const {
        return xfRealEq(total_, 0.0, cntr::kExactTolerance) ? xcVector<2>() : weighted_ / total_;
    }

  private:
    xcVector<2> weighted_;
    double total_ = 0.0;
};

}  // namespace

double polygonArea(const cntr::Polygon& polygon) {
    double area = xf_Area(polygon.exterior());
    for (const cntr::Ring& hole : polygon.holes())
        area -= xf_Area(hole);
    return area;
}

xcVector<2> polygonCentroid(const cntr::Polygon& polygon) {
    CentroidLessHoles centroid(xf_Area(polygon.exterior()), xf_CenterOfMass(polygon.exterior()));
    for (const cntr::Ring& hole : polygon.holes())
        centroid.subtract(xf_Area(hole), xf_CenterOfMass(hole));
    return centroid.centroid();
}

double polygonLength(const cntr::Polygon& polygon) {
    double length = 0.0;
    for (std::size_t r = 0; r < polygon.ringCount(); ++r)
        length += cntr::core::outlineLength(cntr::core::OutlineView(polygon.ring(r), true));
    return length;
}

namespace {

// The rectangle enclosing `box` (when it holds a vertex) and the vertices of `ring`.
void encloseRing(std::optional<xcRect>& box, const cntr::Ring& ring) {
    if (ring.empty())
        return;
    const xcRect r = cntr::core::enclosingRect(cntr::core::OutlineView(ring, true), xcXform<2>());
    box = box ? box->enclose(r) : r;
}

}  // namespace

xcRect polygonBounds(const cntr::Polygon& polygon) {
    std::optional<xcRect> box;
    for (std::size_t r = 0; r < polygon.ringCount(); ++r)
        encloseRing(box, polygon.ring(r));
    return box.value_or(xcRect());
}

xcRect multiPolygonBounds(const cntr::MultiPolygon& multiPolygon) {
    std::optional<xcRect> box;
    for (const cntr::Polygon& member : multiPolygon.members())
        for (std::size_t r = 0; r < member.ringCount(); ++r)
            encloseRing(box, member.ring(r));
    return box.value_or(xcRect());
}

double multiPolygonArea(const cntr::MultiPolygon& multiPolygon) {
    double area = 0.0;
    for (const cntr::Polygon& member : multiPolygon.members())
        area += polygonArea(member);
    return area;
}

xcVector<2> multiPolygonCentroid(const cntr::MultiPolygon& multiPolygon) {
    WeightedCentroid centroid;
    for (const cntr::Polygon& member : multiPolygon.members())
        centroid.add(polygonArea(member), polygonCentroid(member));
    return centroid.centroid();
}

double multiPolygonLength(const cntr::MultiPolygon& multiPolygon) {
    double length = 0.0;
    for (const cntr::Polygon& member : multiPolygon.members())
        length += polygonLength(member);
    return length;
}

xcVector<2> regionCentroid(xcRegion& region, bool considerHoles) {
    if (!considerHoles || region.holes().empty())
        return region.centerOfMass(considerHoles);
    const double area = region.area(false);
    CentroidLessHoles centroid(area, region.centerOfMass(false));
    for (const xcPtrHandle_const<xcRegion>& hole : region.holes()) {
        const double holeArea = hole->area(false);
        // The holes are regions created through handles, never const objects: asking one for
        // its centre fills its cache as the library's own measure does.
        centroid.subtract(holeArea, const_cast<xcRegion&>(*hole).centerOfMass(false));
    }
    return centroid.centroid();
}

xcVector<2> regionSetCentroid(xcRegionSet& set, bool considerHoles) {
    if (!considerHoles)
        return set.centerOfMass(false);
    const xcRegionSet::RegionHandles regions = set.regions();
    if (regions.empty())
        throw xcContourDefs::EmptyRegionSet();
    WeightedCentroid centroid;
    for (const xcPtrHandle_const<xcRegion>& handle : regions) {
        xcRegion& region = const_cast<xcRegion&>(*handle);
        const xcVector<2> centre = regionCentroid(region, true);
        centroid.add(region.area(true), centre);
    }
    return centroid.centroid();
}

}  // namespace cntr_python
