// The contour's edge cache and its segment queries: segment and contour intersections,
// self-intersection and the median edge length, answered by the core's segment query.
#include <cntr/contour.h>

#include <cntr/contour_detail.h>
#include <cntr/core/edge_index.h>
#include <cntr/core/reference.h>
#include <cntr/core/segment_hits.h>

using namespace xn_contourDetail;
using namespace cntr::core;

void xcContour::computeLineSegs() const {
    if (edgesValid_)
        return;
    fillEdgeTable(OutlineView(points_, isClosed()), edges_);
    edgesValid_ = true;
}

const std::vector<xcLineSeg>& xcContour::lineSegs() const {
    computeLineSegs();
    return edges_.segs;
}

const std::vector<bool>& xcContour::validLine() const {
    computeLineSegs();
    return edges_.valid;
}

std::vector<xcVector<2>> xcContour::intersections(const xcLineSeg& seg,
                                                  std::vector<int>& edgeIndices,
                                                  bool includeEndTouches) {
    return hitsAlong(seg, edgeIndices, includeEndTouches);
}

std::vector<xcVector<2>> xcContour::intersections(const xcLineSeg& seg, bool includeEndTouches) {
    std::vector<int> edgeIndices;
    return hitsAlong(seg, edgeIndices, includeEndTouches);
}

const EdgeIndex* xcContour::edgeIndex() const {
    if (!edgeIndexTried_) {
        edgeIndex_ = EdgeIndex::build(OutlineView(points_, isClosed()));
        edgeIndexTried_ = true;
    }
    return edgeIndex_.get();
}

// The index where it serves the query (both ends within its coordinate limit), else null.
const EdgeIndex* xcContour::indexFor(const xcLineSeg& seg) const {
    const EdgeIndex* index = edgeIndex();
    return index != nullptr && EdgeIndex::accepts(seg.p1()) && EdgeIndex::accepts(seg.p2())
               ? index
               : nullptr;
}

void xcContour::collectHits(const SegmentQuery& query, std::vector<SegmentHit>& hits) const {
    if (!Box::of(rectOf(xcXform<2>::I)).overlaps(query.box))
        return;
    if (const EdgeIndex* index = indexFor(query.seg)) {
        indexedHits(OutlineView(points_, isClosed()), *index, query, hits);
        return;
    }
    computeLineSegs();
    referenceSegmentHits(edges_, query, hits);
}

bool xcContour::firstHitAlong(const xcLineSeg& seg, xcVector<2>& point, int& edge) const {
    checkEmptyContour();
    const SegmentQuery query(seg, false);
    if (!Box::of(rectOf(xcXform<2>::I)).overlaps(query.box))
        return false;
    SegmentHit first{};
    bool found;
    if (const EdgeIndex* index = indexFor(seg)) {
        found = firstIndexedHit(OutlineView(points_, isClosed()), *index, query, first);
    } else {
        computeLineSegs();
        found = referenceFirstHit(edges_, query, first);
    }
    if (found) {
        point = first.point;
        edge = first.edge;
    }
    return found;
}

std::vector<xcVector<2>> xcContour::hitsAlong(const xcLineSeg& seg, std::vector<int>& edgeIndices,
                                              bool includeEndTouches) const {
    checkEmptyContour();
    edgeIndices.clear();
    std::vector<SegmentHit> hits;
    collectHits(SegmentQuery(seg, includeEndTouches), hits);
    orderAlong(hits, seg);

    std::vector<xcVector<2>> points;
    points.reserve(hits.size());
    edgeIndices.reserve(hits.size());
    for (const SegmentHit& h : hits) {
        points.push_back(h.point);
        edgeIndices.push_back(h.edge);
    }
    return points;
}

std::size_t xcContour::hitCount(const xcLineSeg& seg, bool includeEndTouches) const {
    checkEmptyContour();
    std::vector<SegmentHit> hits;
    collectHits(SegmentQuery(seg, includeEndTouches), hits);
    return hits.size();
}

std::vector<xcVector<2>> xcContour::intersections(const xcContour& other) {
    checkEmptyContour();
    std::vector<xcVector<2>> result;
    std::vector<int> unusedIndices;
    const std::vector<xcVector<2>>& v = other.points();
    forEachEdge(v.size(), other.isClosed(), [&](std::size_t, std::size_t a, std::size_t b) {
        const std::vector<xcVector<2>> found =
            hitsAlong(xcLineSeg(v[a], v[b]), unusedIndices, true);
        result.insert(result.end(), found.begin(), found.end());
    });
    return result;
}

// Coordinates that are not finite leave the sweep to the definition, one segment query per edge.
bool xcContour::isSelfIntersecting() const {
    if (points_.empty())
        return false;
    if (selfIntersectingValid_)
        return selfIntersecting_;
    const OutlineView outline(points_, isClosed());
    const std::optional<bool> swept = selfIntersectingSwept(outline);
    if (swept) {
        selfIntersecting_ = *swept;
    } else {
        computeLineSegs();
        // One vertex has a single edge, which meets nothing.
        selfIntersecting_ =
            points_.size() >= 2 && referenceSelfIntersecting(edges_, rectOf(xcXform<2>::I));
    }
    selfIntersectingValid_ = true;
    return selfIntersecting_;
}

double xcContour::medianFeatureSize() const {
    checkEmptyContour();
    if (medianFeatureSizeValid_)
        return medianFeatureSize_;
    computeLineSegs();
    medianFeatureSize_ = medianEdgeLength(edges_);  // at least one edge: 2 vertices or more
    medianFeatureSizeValid_ = true;
    return medianFeatureSize_;
}
