#include "repair.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

namespace cntrtool {

namespace {

std::string joinPath(const std::string& parent, const std::string& part) {
    return parent.empty() ? part : parent + ", " + part;
}

// The holes of the region at `where`: those it holds, then those the library refused.
std::vector<xcPtrHandle_const<xcRegion>> allHoles(const xcRegion& region, const std::string& where,
                                                  const std::vector<RefusedHoles>& refused) {
    std::vector<xcPtrHandle_const<xcRegion>> holes = region.holes();
    for (const RefusedHoles& r : refused)
        if (r.where == where)
            holes.insert(holes.end(), r.holes.begin(), r.holes.end());
    return holes;
}

// A repaired outline must still reach every vertex of the outline it replaces: a vertex farther
// than this from the result (outside it) means that the library's walk closed an inner loop
// and left part of the shape out.
constexpr double kCoverTolerance = 1e-6;

// Throws when `distance` puts some of `points`, the vertices of the outline that `part` names,
// outside the result.
template <class Distance>
void requireCovered(const std::vector<xcVector<2>>& points, const std::string& part,
                    Distance&& distance) {
    std::size_t left = 0;
    for (const xcVector<2>& p : points)
        if (!(distance(p) <= kCoverTolerance))
            ++left;
    if (left > 0)
        throw std::runtime_error("the library's result leaves out " + std::to_string(left) +
                                 " of the " + std::to_string(points.size()) + " vertices of " +
                                 part + " (its walk closed an inner loop)");
}

std::string partName(const std::string& where) { return where.empty() ? "the outline" : where; }

class Repairer {
  public:
    Repairer(const Shape& shape, bool outerHull, RepairResult& result)
        : shape_(shape), outerHull_(outerHull), result_(result) {}

    bool regionNeedsRepair(const xcRegion& region, const std::string& where) const {
        if (region.isSelfIntersecting())
            return true;
        const auto holes = allHoles(region, where, shape_.refused);
        for (std::size_t k = 0; k < holes.size(); ++k)
            if (regionNeedsRepair(*holes[k], joinPath(where, "hole " + std::to_string(k))))
                return true;
        return false;
    }

    // The repaired region at `where` (the region itself when it needs nothing).
    xcPtrHandle_const<xcRegion> region(const xcPtrHandle_const<xcRegion>& original,
                                       const std::string& where) {
        if (!regionNeedsRepair(*original, where))
            return original;
        const auto holes = allHoles(*original, where, shape_.refused);
        std::vector<xcPtrHandle_const<xcRegion>> repairedHoles;
        for (std::size_t k = 0; k < holes.size(); ++k)
            repairedHoles.push_back(region(holes[k], joinPath(where, "hole " + std::to_string(k))));

        xcPtrHandle<xcRegion> repaired(new xcRegion());
        if (original->isSelfIntersecting()) {
            if (outerHull_)
                original->outerHull(*repaired);
            else
                original->regularize(*repaired);
            requireCovered(original->points(), partName(where), [&repaired](const xcVector<2>& p) {
                return repaired->distToPoint(p, false, false, true);
            });
        } else {
            *repaired = xcRegion(static_cast<const xcContour&>(*original),
                                 xcContourDefs::keepOutline);
        }
        repaired->label(original->label());
        giveHoles(*repaired, repairedHoles, where);
        return repaired;
    }

    xcPtrHandle<xcRegionSet> regionSet() {
        const xcRegionSet& original = *shape_.set;
        const auto members = regionsOf(original);
        // One merge pass can leave a region crossing a part that another region brought into
        // a merge; passes are repeated while regions cross, at most once per region.
        xcRegionSet merged = original;
        for (std::size_t pass = 0; pass < std::max<std::size_t>(members.size(), 1) &&
                                   merged.isSelfIntersecting();
             ++pass) {
            xcRegionSet next;
            if (outerHull_)
                merged.outerHull(next);
            else
                merged.regularize(next);
            merged = next;
        }
        for (std::size_t i = 0; i < members.size(); ++i)
            requireCovered(members[i]->points(), "region " + std::to_string(i),
                           [&merged](const xcVector<2>& p) {
                               return merged.distToPoint(p, false, false, true);
                           });
        std::vector<xcPtrHandle_const<xcRegion>> regions;
        std::size_t holesBefore = 0, holesAfter = 0;
        for (const auto& m : members)
            holesBefore += m->holes().size();
        const auto mergedRegions = regionsOf(merged);
        for (std::size_t i = 0; i < mergedRegions.size(); ++i) {
            xcPtrHandle_const<xcRegion> r = mergedRegions[i];
            const std::string where = "region " + std::to_string(i);
            const bool kept = i < members.size() && r == members[i];
            if (kept) {
                r = region(r, where);
            } else {
                // A region the merge made: the label of the slot it took, and no holes.
                xcPtrHandle<xcRegion> labelled(new xcRegion(*r));
                if (i < members.size())
                    labelled->label(members[i]->label());
                r = labelled;
            }
            holesAfter += r->holes().size();
            regions.push_back(r);
        }
        if (holesAfter < holesBefore)
            note(std::to_string(holesBefore - holesAfter) +
                 " holes of merged or regularised regions were dropped");
        return xcPtrHandle<xcRegionSet>(new xcRegionSet(regions, xcContourDefs::keepOutline));
    }

    void note(const std::string& text) {
        result_.notes.push_back("shape " + std::to_string(shape_.index) + ": " + text);
    }

  private:
    void giveHoles(xcRegion& region, const std::vector<xcPtrHandle_const<xcRegion>>& holes,
                   const std::string& where) {
        if (holes.empty())
            return;
        try {
            region.holes(holes);
        } catch (const xcContourDefs::Errors& e) {
            std::vector<xcPtrHandle<xcRegion>> kept;
            for (const auto& h : holes)
                kept.emplace_back(new xcRegion(*h));
            result_.shape.refused.push_back(RefusedHoles{where, kept, e.what()});
            note(std::to_string(holes.size()) + " holes of " + partName(where) +
                 " cross the repaired outline and are kept aside");
        }
    }

    const Shape& shape_;
    bool outerHull_;
    RepairResult& result_;
};

bool needsRepairOrThrow(const Shape& shape) {
    RepairResult scratch;
    const Repairer repairer(shape, false, scratch);
    switch (shape.kind) {
        case ShapeKind::contour:
            return false;
        case ShapeKind::region:
            return repairer.regionNeedsRepair(*shape.region, "");
        case ShapeKind::regionSet: {
            if (shape.set->isSelfIntersecting())
                return true;
            const auto regions = regionsOf(*shape.set);
            for (std::size_t i = 0; i < regions.size(); ++i)
                if (repairer.regionNeedsRepair(*regions[i], "region " + std::to_string(i)))
                    return true;
            return false;
        }
    }
    return false;
}

}  // namespace

bool needsRepair(const Shape& shape) {
    try {
        return needsRepairOrThrow(shape);
    } catch (const std::exception&) {
        // The library refuses even to test the shape (a set member of fewer than three
        // vertices, say): repairShape then fails with the library's reason and keeps it.
        return true;
    }
}

RepairResult repairShape(const Shape& shape, bool outerHull) {
    RepairResult result;
    result.shape = shape;
    if (shape.kind == ShapeKind::contour) {
        if (shape.contour->isSelfIntersecting())
            result.notes.push_back("shape " + std::to_string(shape.index) +
                                   ": the contour crosses itself; only regions are repaired");
        return result;
    }
    if (!needsRepair(shape))
        return result;

    Shape repaired;
    repaired.kind = shape.kind;
    repaired.index = shape.index;
    result.shape = repaired;
    Repairer repairer(shape, outerHull, result);
    try {
        if (shape.kind == ShapeKind::region) {
            const xcPtrHandle_const<xcRegion> r = repairer.region(shape.region, "");
            result.shape.region = xcPtrHandle<xcRegion>(const_cast<xcRegion*>(r.rep()));
        } else {
            result.shape.set = repairer.regionSet();
        }
        result.changed = true;
    } catch (const std::exception& e) {
        result = RepairResult();
        result.shape = shape;
        result.failed = true;
        result.notes.push_back("shape " + std::to_string(shape.index) +
                               ": cannot be repaired: " + e.what());
    }
    return result;
}

}  // namespace cntrtool
