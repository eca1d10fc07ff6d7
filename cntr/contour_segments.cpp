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
    if (caches_.edges.valid)
        return;
    fillEdgeTable(OutlineView(points_, isClosed()), caches_.edges.value);
    caches_.edges.valid = true;
}

const std::vector<xcLineSeg>& xcContour::lineSegs() const {
    computeLineSegs();
    return caches_.edges.value.segs;
}

const std::vector<bool>& xcContour::validLine() const {
    computeLineSegs();
    return caches_.edges.value.valid;
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
    return caches_.edgeIndex.get([&] { return EdgeIndex::build(OutlineView(points_, isClosed())); })
        .get();
}

// The index where it serves the query (both ends within its coordinate limit), else null.
const EdgeIndex* xcContour::indexFor(const xcLineSeg& seg) const {
    return indexServing(edgeIndex(), seg.p1(), seg.p2());
}

void xcContour::collectHits(const SegmentQuery& query, std::vector<SegmentHit>& hits) const {
    if (!Box::of(rectOf(xcXform<2>::I)).overlaps(query.box))
        return;
    if (const EdgeIndex* index = indexFor(query.seg)) {
        indexedHits(OutlineView(points_, isClosed()), *index, query, hits);
        return;
    }
    computeLineSegs();
    referenceSegmentHits(caches_.edges.value, query, hits);
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
        found = referenceFirstHit(caches_.edges.value, query, first);
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
    if (caches_.selfIntersecting.valid)
        return caches_.selfIntersecting.value;
    const OutlineView outline(points_, isClosed());
    const std::optional<bool> swept = selfIntersectingSwept(outline);
    if (swept) {
        caches_.selfIntersecting.value = *swept;
    } else {
        computeLineSegs();
        // One vertex has a single edge, which meets nothing.
        caches_.selfIntersecting.value =
            points_.size() >= 2 && referenceSelfIntersecting(caches_.edges.value, rectOf(xcXform<2>::I));
    }
    caches_.selfIntersecting.valid = true;
    return caches_.selfIntersecting.value;
}

double xcContour::medianFeatureSize() const {
    checkEmptyContour();
    return caches_.medianFeatureSize.get([&] {
        computeLineSegs();
        return medianEdgeLength(caches_.edges.value);  // at least one edge: 2 vertices or more
    });
}
