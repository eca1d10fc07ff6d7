// The outer hull's reduction of a boundary walk to one outline (internal header, not
// installed).
#ifndef CNTR_CORE_LOOPS_H
#define CNTR_CORE_LOOPS_H

#include <vector>

#include <cntr/export.h>
#include <foundation/vector.h>

namespace cntr::core {

/// The source name and line that the reduction reports to xstd_assert_ when its loops do not
/// join into one outline.
constexpr const char* kLoopsAssertSource = "cntr/region";
constexpr int kLoopsNotJoinedLine = 621;

/// Reduces a boundary walk to one outline: the walk is cut into loops at each point that the
/// loop's vertex lookup (tolerance kWalkVertexTolerance) finds twice (the first repeat found is
/// cut first, the loop after it goes to the end of the list); every loop whose vertices 0 and 1
/// have their midpoint inside another loop is dropped (the last loop taking its place); then
/// pairs of loops sharing a vertex are joined at the first shared vertex found, one whole turn
/// of each. When more than one loop is left, xstd_assert_(kLoopsAssertSource,
/// kLoopsNotJoinedLine) reports it and the first loop is the result. Throws
/// xcContourDefs::EmptyContour when a cut leaves a loop of one vertex, and BadParams("invalid
/// contour") should a phase outrun its bound.
///
/// The repeated and shared vertices are found through one grid of the walk's points and lists
/// of each point's neighbours, with referenceOuterLoop's results; a walk whose points repeat so
/// often that the lists would grow quadratically is reduced as the reference does it.
CNTR_API std::vector<xcVector<2>> outerLoop(const std::vector<xcVector<2>>& walk);

/// outerLoop from its definition: every search through each loop's own vertex lookup, every
/// pair of loops tried for a shared vertex.
CNTR_API std::vector<xcVector<2>> referenceOuterLoop(const std::vector<xcVector<2>>& walk);

}  // namespace cntr::core

#endif
