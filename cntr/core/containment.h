// The crossing count of an adaptive ray: the containment test of a region's outline (internal
// header, not installed).
#ifndef CNTR_CORE_CONTAINMENT_H
#define CNTR_CORE_CONTAINMENT_H

#include <cstddef>

#include <cntr/core/edge_index.h>
#include <cntr/core/outline.h>
#include <cntr/export.h>
#include <foundation/geometry.h>

namespace cntr::core {

/// What the crossing count asks of its outline besides the vertices, each only when it gets that
/// far: a shape class answers from its caches (so a far point builds none of them), a value type
/// from its prepared data.
class CNTR_API RaySource {
  public:
    virtual ~RaySource() = default;
    /// The edge index, or null where the outline has none.
    virtual const EdgeIndex* index() const = 0;
    /// The length of the ray: the outline's diameter from its first vertex.
    virtual double reach() const = 0;
    /// The number of points the outline's segment query gives for `ray`, end touches excluded.
    virtual std::size_t hitCount(const xcLineSeg& ray) const = 0;
};

/// A RaySource answering from three callables: index(), reach() and hitCount(ray).
template <class Index, class Reach, class Hits>
class RaysFrom : public RaySource {
  public:
    RaysFrom(Index index, Reach reach, Hits hits) : index_(index), reach_(reach), hits_(hits) {}
    const EdgeIndex* index() const override { return index_(); }
    double reach() const override { return reach_(); }
    std::size_t hitCount(const xcLineSeg& ray) const override { return hits_(ray); }

  private:
    Index index_;
    Reach reach_;
    Hits hits_;
};

template <class Index, class Reach, class Hits>
RaysFrom<Index, Reach, Hits> raysFrom(Index index, Reach reach, Hits hits) {
    return RaysFrom<Index, Reach, Hits>(index, reach, hits);
}

/// The number of crossings of a closed outline by a ray from `point` whose direction bisects the
/// first gap wider than pi / n between the directions to the n vertices, sorted ascending (or +x
/// when there is none), of length source.reach(); with `bothWays`, the smaller of the counts of
/// that ray and the opposite one (the first on a tie). 0 when `bounds` (the outline's bounding
/// rectangle) does not hold the point, 1 when a vertex lies within kOnVertexTolerance of it (or
/// at a NaN distance). Outlines of at least a few hundred vertices with an edge index find that
/// vertex and the smallest directions through the index (falling back to sorting every
/// direction when no gap shows among the first), with the same result as the sort.
CNTR_API long crossingCount(const OutlineView& outline, const xcRect& bounds,
                            const xcVector<2>& point, bool bothWays, const RaySource& source);

}  // namespace cntr::core

#endif
