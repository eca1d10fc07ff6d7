// An outline with its lazily prepared data.
#include <cntr/core/prepared_outline.h>

#include <cntr/contourdefs.h>
#include <cntr/core/circles.h>
#include <cntr/core/containment.h>
#include <cntr/core/reference.h>

namespace cntr::core {

PreparedOutline::PreparedOutline(std::vector<xcVector<2>> points, bool closed)
    : points_(std::move(points)), closed_(closed) {}

void PreparedOutline::checkNotEmpty() const {
    if (points_.size() < 2)
        throw xcContourDefs::EmptyContour(std::wstring());
}

const xcRect& PreparedOutline::bounds() const {
    checkNotEmpty();
    std::call_once(boundsOnce_, [this] { bounds_ = boundingRect(view()); });
    return bounds_;
}

const EdgeTable& PreparedOutline::table() const {
    std::call_once(tableOnce_, [this] { fillEdgeTable(view(), table_); });
    return table_;
}

const EdgeIndex* PreparedOutline::index() const {
    std::call_once(indexOnce_, [this] { index_ = EdgeIndex::build(view()); });
    return index_.get();
}

const EdgeIndex* PreparedOutline::indexFor(const xcLineSeg& seg) const {
    return indexServing(index(), seg.p1(), seg.p2());
}

std::size_t PreparedOutline::hitCount(const xcLineSeg& seg, bool includeEndTouches) const {
    const SegmentQuery query(seg, includeEndTouches);
    if (!Box::of(bounds()).overlaps(query.box))
        return 0;
    std::vector<SegmentHit> hits;
    if (const EdgeIndex* built = indexFor(seg))
        indexedHits(view(), *built, query, hits);
    else
        referenceSegmentHits(table(), query, hits);
    return hits.size();
}

bool PreparedOutline::firstHit(const xcLineSeg& seg, SegmentHit& first) const {
    const SegmentQuery query(seg, false);
    if (!Box::of(bounds()).overlaps(query.box))
        return false;
    if (const EdgeIndex* built = indexFor(seg))
        return firstIndexedHit(view(), *built, query, first);
    return referenceFirstHit(table(), query, first);
}

long PreparedOutline::crossingCount(const xcVector<2>& point, bool bothWays) const {
    const auto rays = raysFrom([this] { return index(); },
                               [this] { return 2.0 * fromFirstVertexCircle(view()).radius(); },
                               [this](const xcLineSeg& ray) { return hitCount(ray, false); });
    return cntr::core::crossingCount(view(), bounds(), point, bothWays, rays);
}

}  // namespace cntr::core
