// Conversions between the polygon value types and the described contour, region and region set.
#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include <cntr/contourdefs.h>
#include <cntr/polygon.h>
#include <foundation/handle.h>

namespace cntr {
namespace {

// A region's outline and holes as a polygon; the holes' own holes (islands) are pushed on
// `pending` to become members of their own.
Polygon polygonOfRegion(const xcRegion& region, std::vector<const xcRegion*>& pending) {
    std::vector<Ring> holes;
    holes.reserve(region.holes().size());
    for (const xcPtrHandle_const<xcRegion>& hole : region.holes()) {
        holes.push_back(hole->points());
        for (const xcPtrHandle_const<xcRegion>& island : hole->holes())
            pending.push_back(island.rep());
    }
    return Polygon(region.points(), std::move(holes));
}

// The region and its islands, depth first; an explicit stack, so deep nesting cannot exhaust the
// call stack, and a region met again within its own chain is passed over (the region class
// refuses such cycles, so that is only a guard).
void appendRegion(const xcRegion& region, std::vector<Polygon>& members) {
    std::vector<const xcRegion*> pending{&region};
    std::vector<const xcRegion*> visited;
    while (!pending.empty()) {
        const xcRegion* next = pending.back();
        pending.pop_back();
        if (std::find(visited.begin(), visited.end(), next) != visited.end())
            continue;
        visited.push_back(next);
        const std::size_t before = pending.size();
        members.push_back(polygonOfRegion(*next, pending));
        // The stack pops last first: reversed, the islands come out in hole order.
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(before), pending.end());
    }
}

// Whether `region` takes `hole` as its only hole.
bool accepts(const xcRegion& region, const xcPtrHandle<xcRegion>& hole) {
    xcRegion trial(region);
    try {
        trial.holes(std::vector<xcPtrHandle<xcRegion>>{hole});
        return true;
    } catch (const xcContourDefs::BadParams&) {
        return false;
    } catch (const xcContourDefs::EmptyContour&) {
        return false;
    }
}

}  // namespace

MultiPolygon MultiPolygon::fromRegion(const xcRegion& region) {
    std::vector<Polygon> members;
    appendRegion(region, members);
    return MultiPolygon(std::move(members));
}

MultiPolygon MultiPolygon::fromRegionSet(const xcRegionSet& set) {
    xcRegionSet copy(set);  // regions() is not const; the copy shares the regions
    std::vector<Polygon> members;
    for (const xcPtrHandle_const<xcRegion>& region : copy.regions())
        appendRegion(*region, members);
    return MultiPolygon(std::move(members));
}

RegionConversion toRegion(const Polygon& polygon) {
    RegionConversion result{xcRegion(polygon.exterior()), {}};
    // Each hole is tried alone: the region's test looks at one hole against the outline at a
    // time, so the holes accepted alone are accepted together.
    std::vector<xcPtrHandle<xcRegion>> kept;
    for (std::size_t h = 0; h < polygon.holes().size(); ++h) {
        xcPtrHandle<xcRegion> hole(new xcRegion(polygon.holes()[h]));
        if (accepts(result.region, hole))
            kept.push_back(hole);
        else
            result.refused.push_back({0, h, polygon.holes()[h]});
    }
    if (!kept.empty())
        result.region.holes(kept);
    return result;
}

RegionSetConversion toRegionSet(const MultiPolygon& multiPolygon) {
    RegionSetConversion result;
    xcRegionSet::MutableRegionHandles regions;
    for (std::size_t m = 0; m < multiPolygon.memberCount(); ++m) {
        RegionConversion converted = toRegion(multiPolygon.members()[m]);
        regions.push_back(xcPtrHandle<xcRegion>(new xcRegion(converted.region)));
        for (RefusedHole& refused : converted.refused) {
            refused.member = m;
            result.refused.push_back(std::move(refused));
        }
    }
    result.set = xcRegionSet(regions);
    return result;
}

}  // namespace cntr
