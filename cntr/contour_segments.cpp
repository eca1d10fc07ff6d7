// The edge cache and the queries built on it: segment and contour intersections,
// self-intersection and the median edge length.
#include <algorithm>

#include <cntr/contour.h>
#include <cntr/contour_detail.h>
#include <cntr/tolerances.h>

using namespace xn_contourDetail;

namespace {

struct Hit {
    xcVector<2> point;
    int edge;
};

// Orders hits along the query by (P - p1) . (p2 - p1) with the plain exchange sort: for each i,
// every later hit with a strictly smaller key is swapped into place i. The sort is not stable;
// the order it leaves among equal keys is part of the result.
void orderAlong(std::vector<Hit>& hits, const xcLineSeg& seg) {
    const xcVector<2> d = seg.p2() - seg.p1();
    const auto key = [&](const Hit& h) { return (h.point - seg.p1()).dot(d); };
    for (std::size_t i = 0; i + 1 < hits.size(); ++i)
        for (std::size_t j = i + 1; j < hits.size(); ++j)
            if (key(hits[i]) > key(hits[j])) std::swap(hits[i], hits[j]);
}

// Ascending order of edge lengths, NaN after every number so that the sort stays well defined.
bool lengthBefore(double a, double b) { return a < b || (a == a && b != b); }

}  // namespace

void xcContour::computeLineSegs() const {
    if (lineSegsValid_ && linesValid_ && rectsValid_) return;
    lineSegs_.clear();
    lines_.clear();
    rects_.clear();
    validLine_.resize(0);
    const std::size_t edges = isClosed() ? points_.size() : (points_.empty() ? 0 : points_.size() - 1);
    lineSegs_.reserve(edges);
    lines_.reserve(edges);
    rects_.reserve(edges);
    validLine_.reserve(edges);
    forEachEdge(points_.size(), isClosed(), [&](std::size_t, std::size_t a, std::size_t b) {
        const xcVector<2>& start = points_[a];
        const xcVector<2>& end = points_[b];
        if (xfRealEq(start, end, kExactTolerance)) {
            lineSegs_.emplace_back();
            lines_.emplace_back();
            rects_.emplace_back();
            validLine_.push_back(false);
        } else {
            lineSegs_.emplace_back(start, end);
            lines_.push_back(lineSegs_.back().line());
            rects_.push_back(spanRect(start, end));
            validLine_.push_back(true);
        }
    });
    rectsValid_ = true;
    linesValid_ = true;
    lineSegsValid_ = true;
}

const std::vector<xcLineSeg>& xcContour::lineSegs() const {
    if (!lineSegsValid_) computeLineSegs();
    return lineSegs_;
}

const std::vector<bool>& xcContour::validLine() const {
    if (!lineSegsValid_) computeLineSegs();
    return validLine_;
}

std::vector<xcVector<2>> xcContour::intersections(const xcLineSeg& seg, std::vector<int>& edgeIndices,
                                                  bool includeEndTouches) {
    return hitsAlong(seg, edgeIndices, includeEndTouches);
}

std::vector<xcVector<2>> xcContour::intersections(const xcLineSeg& seg, bool includeEndTouches) {
    std::vector<int> edgeIndices;
    return hitsAlong(seg, edgeIndices, includeEndTouches);
}

std::vector<xcVector<2>> xcContour::hitsAlong(const xcLineSeg& seg, std::vector<int>& edgeIndices,
                                              bool includeEndTouches) const {
    checkEmptyContour();
    edgeIndices.clear();
    std::vector<xcVector<2>> points;
    const xcLine queryLine = seg.line();
    const xcRect queryRect = spanRect(seg.p1(), seg.p2());
    if (!rectsOverlap(rectOf(xcXform<2>::I), queryRect)) return points;
    computeLineSegs();

    std::vector<Hit> hits;
    for (std::size_t k = 0; k < lineSegs_.size(); ++k) {
        if (!validLine_[k] || !rectsOverlap(rects_[k], queryRect) || lines_[k].isParallel(queryLine))
            continue;
        if (!includeEndTouches && !(lineSegs_[k].distToPoint(seg.p1()) > kCoincidentTolerance &&
                                    lineSegs_[k].distToPoint(seg.p2()) > kCoincidentTolerance))
            continue;
        const xcVector<2> p = lines_[k].intersect(queryLine);
        if (lineSegs_[k].distToPoint(p) < kCoincidentTolerance && seg.distToPoint(p) < kCoincidentTolerance)
            hits.push_back({p, static_cast<int>(k)});
    }
    orderAlong(hits, seg);

    points.reserve(hits.size());
    edgeIndices.reserve(hits.size());
    for (const Hit& h : hits) {
        points.push_back(h.point);
        edgeIndices.push_back(h.edge);
    }
    return points;
}

std::vector<xcVector<2>> xcContour::intersections(const xcContour& other) {
    checkEmptyContour();
    std::vector<xcVector<2>> result;
    std::vector<int> unusedIndices;
    const std::vector<xcVector<2>>& v = other.points();
    forEachEdge(v.size(), other.isClosed(), [&](std::size_t, std::size_t a, std::size_t b) {
        const std::vector<xcVector<2>> found = hitsAlong(xcLineSeg(v[a], v[b]), unusedIndices, true);
        result.insert(result.end(), found.begin(), found.end());
    });
    return result;
}

bool xcContour::isSelfIntersecting() const {
    if (points_.empty()) return false;
    if (selfIntersectingValid_) return selfIntersecting_;
    computeLineSegs();
    selfIntersecting_ = false;
    std::vector<int> unusedIndices;
    // One vertex has a single edge, which meets nothing. (A NaN vertex would make that edge look
    // non-degenerate and the query would refuse the contour as empty.)
    const std::size_t edges = points_.size() < 2 ? 0 : lineSegs_.size();
    for (std::size_t k = 0; k < edges; ++k) {
        if (!validLine_[k]) continue;
        if (!hitsAlong(lineSegs_[k], unusedIndices, false).empty()) {
            selfIntersecting_ = true;
            break;
        }
    }
    selfIntersectingValid_ = true;
    return selfIntersecting_;
}

double xcContour::medianFeatureSize() const {
    checkEmptyContour();
    if (medianFeatureSizeValid_) return medianFeatureSize_;
    const std::vector<xcLineSeg>& segs = lineSegs();
    std::vector<double> lengths;
    lengths.reserve(segs.size());
    for (const xcLineSeg& s : segs) lengths.push_back(s.length());
    std::sort(lengths.begin(), lengths.end(), lengthBefore);
    medianFeatureSize_ = lengths[lengths.size() / 2];  // at least one edge: 2 vertices or more
    medianFeatureSizeValid_ = true;
    return medianFeatureSize_;
}
