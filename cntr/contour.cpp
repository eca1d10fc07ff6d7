// The contour model: construction, assignment, accessors, equality and the cache reset.
#include <cntr/contour.h>

#include <cntr/contour_detail.h>
#include <cntr/core/edge_index.h>
#include <cntr/core/tolerances.h>
#include <foundation/thread.h>

using namespace xn_contourDetail;
using namespace cntr::core;

namespace {

bool polygonCloses(const std::vector<xcVector<2>>& v) {
    return !v.empty() && xfRealEq(v.front(), v.back(), kExactTolerance);
}

template <class T>
std::unique_ptr<T> deepCopy(const std::unique_ptr<T>& source) {
    return source ? std::unique_ptr<T>(new T(*source)) : std::unique_ptr<T>();
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
    // The owned memos are copied first, so that a failed allocation leaves this object as it was.
    std::unique_ptr<RectMemo> rectMemo = deepCopy(other.rectMemo_);
    std::unique_ptr<ExtremalVertexMemo> extremalMemo = deepCopy(other.extremalVertexMemo_);
    std::unique_ptr<VertexGridCache> vertexGrids = deepCopy(other.vertexGrids_);

    label_ = other.label_;
    closed_ = other.closed_;
    points_ = other.points_;
    cachedVectorSize_ = other.cachedVectorSize_;
    meanPositionValid_ = other.meanPositionValid_;
    meanPosition_ = other.meanPosition_;
    lengthValid_ = other.lengthValid_;
    length_ = other.length_;
    convexHullValid_ = other.convexHullValid_;
    convexHull_ = other.convexHull_;
    rectMemo_ = std::move(rectMemo);
    encloseCircleValid_ = other.encloseCircleValid_;
    encloseCircles_ = other.encloseCircles_;
    extremalVertexMemo_ = std::move(extremalMemo);
    fitEllipseValid_ = other.fitEllipseValid_;
    fittedEllipse_ = other.fittedEllipse_;
    fitResidual_ = other.fitResidual_;
    selfIntersecting_ = other.selfIntersecting_;
    selfIntersectingValid_ = other.selfIntersectingValid_;
    edgesValid_ = other.edgesValid_;
    edges_ = other.edges_;
    medianFeatureSizeValid_ = other.medianFeatureSizeValid_;
    medianFeatureSize_ = other.medianFeatureSize_;
    vertexGrids_ = std::move(vertexGrids);
    edgeIndexTried_ = other.edgeIndexTried_;
    edgeIndex_ = other.edgeIndex_;
    return *this;
}

xcContour::~xcContour() { deletePointers(); }

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

void xcContour::deletePointers() const {
    rectMemo_.reset();
    extremalVertexMemo_.reset();
    vertexGrids_.reset();
    edgeIndex_.reset();
    edgeIndexTried_ = false;
}

void xcContour::cleanCacheInfo() {
    mutating();
    deletePointers();
    meanPositionValid_ = false;
    lengthValid_ = false;
    length_ = 0.0;
    convexHullValid_ = false;
    encloseCircleValid_.resize(0);
    encloseCircleValid_.resize(2, false);
    encloseCircles_.resize(2, xcCircle());
    fitEllipseValid_ = false;
    fitResidual_ = 0.0;
    selfIntersectingValid_ = false;
    edgesValid_ = false;
    medianFeatureSizeValid_ = false;
    medianFeatureSize_ = 0.0;
}

xcContour::CacheState xcContour::cacheState() const {
    CacheState s;
    s.meanPositionValid = meanPositionValid_;
    s.lengthValid = lengthValid_;
    s.length = length_;
    s.convexHullValid = convexHullValid_;
    s.convexHull = convexHull_.rep();
    s.rectMemo = rectMemo_.get();
    s.encloseCircleValid = encloseCircleValid_;
    s.encloseCircleCount = encloseCircles_.size();
    s.extremalVertexMemo = extremalVertexMemo_.get();
    s.fitEllipseValid = fitEllipseValid_;
    s.fitResidual = fitResidual_;
    s.selfIntersectingValid = selfIntersectingValid_;
    s.lineSegsValid = edgesValid_;
    s.linesValid = edgesValid_;
    s.rectsValid = edgesValid_;
    s.edgeVectorSize = edges_.segs.size();
    s.medianFeatureSizeValid = medianFeatureSizeValid_;
    s.medianFeatureSize = medianFeatureSize_;
    s.vertexGrids = vertexGrids_.get();
    s.edgeIndex = edgeIndex_.get();
    return s;
}
