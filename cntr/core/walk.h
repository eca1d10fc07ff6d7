// The boundary walk of the repair of a self-crossing outline (internal header, not installed).
#ifndef CNTR_CORE_WALK_H
#define CNTR_CORE_WALK_H

#include <cstddef>
#include <vector>

#include <cntr/core/outline.h>
#include <cntr/core/prepared_outline.h>
#include <cntr/core/segment_hits.h>
#include <cntr/export.h>
#include <foundation/geometry.h>

namespace cntr::core {

/// What the walk asks of its outline besides the vertices: a shape class answers from its
/// caches, a prepared outline from its prepared data.
class CNTR_API WalkSource {
  public:
    virtual ~WalkSource() = default;
    /// The number of points the segment query gives for a -> b, end touches included.
    virtual std::size_t crossings(const xcVector<2>& a, const xcVector<2>& b) const = 0;
    /// Whether `q` lies outside: the crossing count of both rays is 0.
    virtual bool outside(const xcVector<2>& q) const = 0;
    /// The first hit along `seg`, end touches excluded (so the edges through the walk's own
    /// point are never reported), or false.
    virtual bool firstHit(const xcLineSeg& seg, SegmentHit& first) const = 0;
    /// The median edge length.
    virtual double medianFeatureSize() const = 0;
    /// The number of hits when each non-degenerate edge is queried, end touches excluded.
    virtual std::size_t selfCrossings() const = 0;
};

/// Throws xcContourDefs::BadParams("invalid contour").
[[noreturn]] CNTR_API void throwInvalidContour();

/// The walk along the outer boundary of a closed outline that crosses itself: the points
/// reached, the start vertex last.
///
/// The walk starts at vertex s, where edge s -> s+1 is the first edge (the closing edge never
/// is) that a short probe across its midpoint, medianFeatureSize() / 100 to each side, meets
/// alone, that meets nothing but its two neighbours, and that has an end of the probe outside;
/// a zero-length edge has no sides and is passed over. It goes along the edges; where another
/// edge crosses its way it stops at the nearest crossing, turns onto that edge and reverses its
/// direction of travel; it ends when it stands on vertex s again, exactly.
///
/// The walk is bounded: with n vertices it may take 4 n + 64 passes, and once it outlasts that,
/// 4 (n + h) + 64 passes, h being source.selfCrossings(). A walk that comes back to a state
/// (point, edge, direction) before it stands on its start never will. Throws
/// BadParams("invalid contour") when no edge qualifies as start, when the walk exceeds its
/// bound and when it repeats a state.
CNTR_API std::vector<xcVector<2>> boundaryWalk(const OutlineView& outline,
                                               const WalkSource& source);

/// boundaryWalk of a prepared closed outline, its questions answered from its prepared data:
/// the walk of a fresh region of the same vertices, with the same exceptions (EmptyContour for
/// fewer than 3 vertices).
CNTR_API std::vector<xcVector<2>> boundaryWalk(const PreparedOutline& outline);

}  // namespace cntr::core

#endif
