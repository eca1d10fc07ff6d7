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

namespace xn_fuzz {

/// The families of queries that the exercise functions run. `all` runs every one of them, in
/// order on the same objects, so that caches filled by one query are read by the next; the
/// others run one family alone, which lets a fuzzer spend most of its executions on the cheap
/// queries instead of repeating the costly repairs on every input.
enum class QueryGroup : unsigned char {
    all,
    moments,
    roundTrips,
    contourModel,
    extent,
    segments,
    nearest,
    hullAndFit,
    regionModel,
    regionMeasures,
    regionQueries,
    regionRepair,
    setModel,
    setQueries,
    setRepair,
    edgeletOperations,
};
/// The number of QueryGroup values, `all` included.
constexpr unsigned kQueryGroupCount = 16;

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
    /// The queries to run.
    QueryGroup group = QueryGroup::all;
};

/// Whether the queries of `group` run under `args`.
inline bool runs(const QueryArgs& args, QueryGroup group) {
    return args.group == QueryGroup::all || args.group == group;
}

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
