// Repairing self-crossing regions with the library's regularisation or outer hull.
#ifndef CNTRTOOL_REPAIR_H
#define CNTRTOOL_REPAIR_H

#include <string>
#include <vector>

#include "shapes.h"

namespace cntrtool {

/// What repairShape made of a shape.
struct RepairResult {
    /// The repaired shape, or the input itself when nothing needed repair or the repair failed.
    Shape shape;
    /// Whether `shape` differs from the input.
    bool changed = false;
    /// Whether the shape needed repair and the library could not do it.
    bool failed = false;
    /// What the user should know ("shape 3: ..."), one line each.
    std::vector<std::string> notes;
};

/// Whether the shape has a region outline (a hole's or a set member's too) that crosses
/// itself, or, for a set, regions that cross each other. A shape that the library refuses to
/// test (it throws) counts as needing repair, so that repairShape reports why it cannot.
bool needsRepair(const Shape& shape);

/// Repairs a shape that needs it. A region whose outline crosses itself is replaced by the
/// library's regularize (or outerHull, with `outerHull`) of it, with its label; its holes,
/// repaired in turn, are given back to it (holes the library then refuses are kept aside in
/// the result's `refused`). A set that crosses itself is replaced by the library's regularize
/// (or outerHull) of it, which merges crossing regions in one pass; passes are repeated while
/// regions still cross (at most one per region). Merged regions keep the label of the slot
/// they took and lose their holes (a note says how many). Contours are never changed (a
/// note says when one crosses itself). The results are plain (not edgelet) shapes.
///
/// A repair fails, and the shape is kept as it is, when the library refuses (an outline whose
/// every edge is crossed is "invalid contour") or when its result does not reach every vertex
/// of the outlines it replaces (a walk that closed an inner loop and left part of the shape
/// out).
RepairResult repairShape(const Shape& shape, bool outerHull);

}  // namespace cntrtool

#endif
