// The pieces of the regularisation engine shared by its sources (internal header, not
// installed): the boundary walk's result is cut into loops and reassembled in region_loops.cpp.
#ifndef CNTR_REGION_WALK_H
#define CNTR_REGION_WALK_H

#include <cstddef>
#include <vector>

#include <cntr/region.h>
#include <foundation/vector.h>

namespace xn_regionDetail {

/// The source name and line that the outer hull reports to xstd_assert_ when its loops do not
/// join into one outline.
constexpr const char* kAssertSource = "cntr/region";
constexpr int kLoopsNotJoinedLine = 621;

/// Throws xcContourDefs::BadParams("invalid contour").
[[noreturn]] void throwInvalidContour();

/// Calls `step` until it returns false (nothing changed). Each true return is one change; more
/// than `limit` changes mean the phase is not making the progress its bound assumes, and throw
/// BadParams("invalid contour") rather than run on.
template <class Step>
void repeatUntilStable(std::size_t limit, Step step) {
    for (std::size_t changes = 0; step();)
        if (++changes > limit)
            throwInvalidContour();
}

/// How assignOuterLoop searches for repeated and shared vertices: `plain` through each loop's
/// own vertexIndex (the definition); `indexed` through one grid of the walk's points and lists
/// of each point's neighbours, with the same results.
enum class LoopSearch { plain, indexed };

/// Reduces the boundary walk to one outline and assigns it to `result`: the walk is cut into
/// loops at repeated vertices, every loop lying inside another is dropped, and loops that share
/// a vertex are joined. When more than one loop is left, xstd_assert_(kAssertSource,
/// kLoopsNotJoinedLine) reports it and the first loop is taken. Throws EmptyContour when a cut
/// leaves a loop of one vertex. `result` is a new region of the outline, without caches.
/// Exported for the tests, which hold the two searches to each other.
CNTR_API void assignOuterLoop(const std::vector<xcVector<2>>& walk, xcRegion& result,
                              LoopSearch search = LoopSearch::indexed);

}  // namespace xn_regionDetail

#endif
