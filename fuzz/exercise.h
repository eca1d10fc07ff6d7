// Runs every public query of the library's shapes on one object, each call on its own so that a
// refused query does not hide the ones after it, and checks the laws that must hold whatever the
// coordinates are. Used by the geometry target on shapes built from fuzzer bytes and by the
// archive target on shapes loaded from them.
#ifndef CNTR_FUZZ_EXERCISE_H
#define CNTR_FUZZ_EXERCISE_H

#include <cntr/contour.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <cntrtmpl/contourt.h>
#include <cntrtmpl/regionsett.h>
#include <cntrtmpl/regiont.h>
#include <foundation/angle.h>
#include <foundation/vector.h>
#include <foundation/xform.h>

#include "fuzz_support.h"

namespace xn_fuzz {

/// Which of the queries that the exercise functions reach are run. Each query reached at the
/// top level takes a turn, numbered from 0 in the order reached (what a running query calls
/// itself takes no turn). By default every query runs; a fuzzer can instead run the one query
/// of a given turn, so that an execution costs one query instead of hundreds of them.
void runEveryQuery();
/// Runs only the query whose turn is `turn`; the others are reached and counted, not run.
void runOnlyTurn(long turn);
/// Runs every query from now on, like runEveryQuery(), but keeps the counts of the turns
/// taken and queries run so far readable.
void backToEveryQuery();
/// The turns taken since the last runEveryQuery() or runOnlyTurn().
long turnsTaken();
/// The top-level queries run since the last runEveryQuery() or runOnlyTurn().
long queriesRun();
/// Whether the query reached now runs; takes its turn.
bool nextTurn();
/// Marks the span of a running query, in which nextTurn() is always true and takes no turn.
class RunningQuery {
  public:
    RunningQuery();
    ~RunningQuery();
    RunningQuery(const RunningQuery&) = delete;
    RunningQuery& operator=(const RunningQuery&) = delete;
};

/// Runs `op` as one query when its turn has come: see attempt() for its exceptions. Whether it
/// ran and returned normally.
template <class Op>
bool query(Op&& op) {
    if (!nextTurn())
        return false;
    const RunningQuery running;
    return attempt(op);
}

/// The arguments the queries are asked with.
struct QueryArgs {
    /// The point of containment, nearest-point and vertex lookups.
    xcVector<2> point;
    /// The far end of the query segment, which starts at `point`.
    xcVector<2> segmentEnd;
    /// The vertex lookup's tolerance.
    double tolerance = 1.0;
    /// The direction of the extremal-vertex queries.
    xcRadian angle{0.0};
    /// The transform of encloseRect and map.
    xcXform<2> xform;
    /// The memo limit set before the memoised queries run.
    long cachedVectorSize = 3;
};

/// Every contour query, on `contour` (also reached through a region, which keeps the contour's
/// rules), with `other` as the second contour of the contour-contour intersections.
void exerciseContour(xcContour& contour, const xcContour& other, const QueryArgs& args);
/// Every region query, then the contour queries on the region's outline.
void exerciseRegion(xcRegion& region, const xcContour& other, const QueryArgs& args);
/// Every region set query, regularize and outer hull included.
void exerciseRegionSet(xcRegionSet& set, const QueryArgs& args);
/// The edgelet contour's own operations, then the contour queries.
void exerciseContourT(xcContourT<xcEdgelet>& contour, const xcContour& other,
                      const QueryArgs& args);
/// The edgelet region's own operations, then the region queries.
void exerciseRegionT(xcRegionT<xcEdgelet>& region, const xcContour& other, const QueryArgs& args);
/// The edgelet region set's own operations, then the region set queries.
void exerciseRegionSetT(xcRegionSetT<xcEdgelet>& set, const QueryArgs& args);

}  // namespace xn_fuzz

#endif
