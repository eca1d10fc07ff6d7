// The contour model: construction, assignment, accessors, equality and the cache reset.
#include <cntr/contour.h>

#include <cntr/contour_detail.h>
#include <cntr/core/edge_index.h>
#include <cntr/tolerances.h>
#include <foundation/thread.h>

using namespace xn_contourDetail;
using namespace cntr;
using namespace cntr::core;

namespace {

bool polygonCloses(const std::vector<xcVector<2>>& v) {
    return !v.empty() && xfRealEq(v.front(), v.back(), kExactTolerance);
}

void deleteGenerator(void* generator) { delete static_cast<xcRandomUniform*>(generator); }

}  // namespace

xcRandomUniform& xn_contourDetail::threadGenerator() {
    static xc_ThreadLocal slot;
    void* value = slot.OSValue();
    if (!value) {
        value = new xcRandomUniform(1);
        slot.OSValue(value);
        xcThreadID::atexit(xfGetCurrentThreadID(), &deleteGenerator, value);
    }
    return *static_cast<xcRandomUniform*>(value);
}

xcContour::xcContour() : xcContour(std::vector<xcVector<2>>(), true, 0) {}

xcContour::xcContour(const std::vector<xcVector<2>>& points, bool closed, unsigned long label)
    : label_(label), closed_(closed), points_(points) {
    makeDataConsistentWithPoints();
}

xcContour::xcContour(const xcPolygon& polygon, unsigned long label)
    : xcContour(polygon.vertices(), polygonCloses(polygon.vertices()), label) {}

xcContour::xcContour(const xcContour& other) : xcPersistent(), xcRepBase() { *this = other; }

xcContour& xcContour::operator=(const xcContour& other) {
    if (&other == this) return *this;
    // The caches are copied first, so that a failed allocation leaves this object as it was.
    ContourCaches caches(other.caches_);
    label_ = other.label_;
    closed_ = other.closed_;
    points_ = other.points_;
    cachedVectorSize_ = other.cachedVectorSize_;
    caches_ = std::move(caches);
    return *this;
}

xcContour::~xcContour() = default;

void xcContour::points(const std::vector<xcVector<2>>& v) {
    cleanCacheInfo();
    points_ = v;
    makeDataConsistentWithPoints();
}

bool xcContour::isClosed() const { return closed_; }

void xcContour::isClosed(bool c) {
    closed_ = c;
    cleanCacheInfo();
}

void xcContour::label(unsigned long l) {
    label_ = l;
    mutating();
}

void xcContour::cachedVectorSize(long n) {
    if (n < 0) throw xcContourDefs::BadParams(std::wstring());
    cachedVectorSize_ = n;
    mutating();
}

xcPolygon xcContour::polygon() {
    if (!isClosed() || points_.empty()) return xcPolygon(points_, 0);
    std::vector<xcVector<2>> closedOutline(points_);
    closedOutline.push_back(points_.front());
    return xcPolygon(closedOutline, 0);
}

void xcContour::map(const xcXform<2>& xform, xcContour& out) const {
    std::vector<xcVector<2>> mapped;
    mapped.reserve(points_.size());
    for (const xcVector<2>& p : points_) mapped.push_back(xform * p);
    out = xcContour(mapped, isClosed(), label_);
}

bool xcContour::operator==(const xcContour& other) const {
    return isClosed() == other.isClosed() && points_ == other.points_ &&
           cachedVectorSize_ == other.cachedVectorSize_;
}

void xcContour::setPoints(const std::vector<xcVector<2>>& v) {
    cleanCacheInfo();
    points_ = v;
}

void xcContour::checkEmptyContour() const {
    if (points_.size() < 2) throw xcContourDefs::EmptyContour(std::wstring());
}

void xcContour::makeDataConsistentWithPoints() { cleanCacheInfo(); }

void xcContour::makePointsConsistentWithData() { cleanCacheInfo(); }

void ContourCaches::reset() {
    meanPosition.valid = false;
    length.reset(0.0);
    convexHull.valid = false;
    rectMemo.reset();
    for (Cached<xcCircle>& circle : encloseCircle)
        circle.valid = false;
    extremalVertexMemo.reset();
    fittedEllipse.valid = false;
    fittedEllipse.value.residual = 0.0;
    selfIntersecting.valid = false;
    edges.valid = false;
    medianFeatureSize.reset(0.0);
    vertexGrids.reset();
    edgeIndex.reset();
}

void xcContour::cleanCacheInfo() {
    mutating();
    caches_.reset();
}

