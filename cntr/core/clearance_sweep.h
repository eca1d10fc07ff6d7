// Whether the edges of an outline keep a distance from one another: a sweep over the vertices in
// (x, y) order that either certifies that no two edges without a common vertex come close, or
// names the edges it found close (internal header, not installed).
#ifndef CNTR_CORE_CLEARANCE_SWEEP_H
#define CNTR_CORE_CLEARANCE_SWEEP_H

#include <cstddef>
#include <utility>
#include <vector>

#include <cntr/core/outline.h>
#include <cntr/export.h>

namespace cntr::core {

/// What edgeClearance found.
struct Clearance {
    enum class Verdict {
        /// No two edges that share no vertex (by index) have points within `reach` of each other.
        clear,
        /// The sweep stopped at the pairs of edges in `pairs`, which touch, cross, overlap or come
        /// close; nothing is known of the others.
        closeEdges,
        /// The sweep decided nothing: two vertices lie close together (or too many share a narrow
        /// range of x), or two edges with a common vertex overlap.
        undecided
    };
    Verdict verdict = Verdict::clear;
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
};

/// Sweeps the outline's vertices in (x, y) order, keeping the edges that the sweep line crosses
/// ordered along it: one entry per x-monotone run of edges, whose current edge advances at the
/// run's inner vertices. Neighbours along the line are tested for contact with exact predicates
/// (xfSegmentContact) whenever they become neighbours; at each vertex the nearest edges above and
/// below it on the line are measured. The same sweep then runs with x and y exchanged. O(n log n)
/// up to the first finding.
///
/// `clear` is given only when no two edges that share no vertex come within `reach`: two such
/// edges nearer than that either meet (found as neighbours, the classical sweep argument), or an
/// end of one lies within `reach` of the other; then either an end of the other lies within
/// 3 `reach` of it in both coordinates (the vertices are checked for that first: `undecided`),
/// or the other crosses the vertical or horizontal line through that end within sqrt(2) `reach`
/// of it, which one of the two sweeps measures (gaps up to 2 `reach` are reported).
///
/// Coordinates must be finite and at most kIndexCoordinateLimit in magnitude, where the rounding
/// of a measured gap (below 1e-8) stays far under `reach` / 2; the outline must have at least 3
/// edges (fewer give `undecided`).
CNTR_API Clearance edgeClearance(const OutlineView& outline, double reach);

}  // namespace cntr::core

#endif
