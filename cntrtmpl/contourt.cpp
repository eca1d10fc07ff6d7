// The edgelet contour: construction, the two consistency hooks, equality and its archive record.
#include <cntrtmpl/contourt.h>

#include <cntrtmpl/cntrtmpl_detail.h>
#include <foundation/archive.h>

namespace {

constexpr unsigned char kCurrentVersion = 1;
// The place that a refused edgelet contour record reports.
constexpr long kBadVersionLine = 98;

xcPtrHandle_const<xc2XformBase> cloneOrIdentity(const xcPtrHandle_const<xc2XformBase>& xform) {
    if (xform)
        return xform->clone();
    return xcPtrHandle_const<xc2XformBase>(new xc2XformLinear());
}

}  // namespace

template <class T>
xcContourT<T>::xcContourT() = default;

template <class T>
xcContourT<T>::xcContourT(const std::vector<T>& data)
    : xcContourT(data, xcPtrHandle_const<xc2XformBase>()) {}

template <class T>
xcContourT<T>::xcContourT(const std::vector<T>& data, const xcPtrHandle_const<xc2XformBase>& xform)
    : xform_(cloneOrIdentity(xform)), data_(data) {
    makePointsConsistentWithData();
}

template <class T>
xcContourT<T>::xcContourT(const xcContourT& other)
    : xcPersistent(),
      xcRepBase(),
      xcContour(other),
      xform_(other.xform_),
      data_(other.data_),
      inverse_(other.inverse_) {}

template <class T>
xcContourT<T>& xcContourT<T>::operator=(const xcContourT& other) {
    if (&other == this)
        return *this;
    xcContour::operator=(other);
    assignEdgeletPart(other);
    return *this;
}

template <class T>
xcContourT<T>::~xcContourT() = default;

template <class T>
void xcContourT<T>::assignEdgeletPart(const xcContourT& other) {
    xform_ = other.xform_;
    data_ = other.data_;
    inverse_ = other.inverse_;
}

template <class T>
void xcContourT<T>::data(const std::vector<T>& d) {
    if (!d.empty())
        pointsFromDataXform();  // a singular transform throws before any change
    data_ = d;
    makePointsConsistentWithData();
}

template <class T>
T xcContourT<T>::datum(const xcVector<2>& point) const {
    const xcVector<2> position = xform_ ? xform_->mapPoint(point) : point;
    return T(position, 0, xcAngle8(0));
}

template <class T>
xcVector<2> xcContourT<T>::point(const T& e) const {
    const xcPtrHandle<xc2XformBase>& inverse = pointsFromDataXform();
    return inverse ? inverse->mapPoint(e.position()) : e.position();
}

template <class T>
const xcPtrHandle<xc2XformBase>& xcContourT<T>::pointsFromDataXform() const {
    return inverse_.get(
        [&] { return xform_ ? xform_->inverseBase() : xcPtrHandle<xc2XformBase>(); });
}

template <class T>
void xcContourT<T>::mapT(const xcXform<2>&, xcContourT&) const {
    xn_cntrtmplDetail::throwNotProvided();
}

template <class T>
void xcContourT<T>::convexHullT(xcRegionT<T>&) const {
    xn_cntrtmplDetail::throwNotProvided();
}

template <class T>
bool xcContourT<T>::operator==(const xcContourT& other) const {
    return points() == other.points() && xform_ == other.xform_;
}

template <class T>
void xcContourT<T>::makeDataConsistentWithPoints() {
    cleanCacheInfo();
    data_.clear();
    data_.reserve(points().size());
    for (const xcVector<2>& p : points())
        data_.push_back(datum(p));
}

template <class T>
void xcContourT<T>::makePointsConsistentWithData() {
    cleanCacheInfo();
    std::vector<xcVector<2>> rebuilt;
    rebuilt.reserve(data_.size());
    for (const T& e : data_)
        rebuilt.push_back(point(e));
    setPoints(rebuilt);
}

XN_CNTRTMPL_DEFINE_PERSISTENCE(xcContourT)

template <class T>
void xcContourT<T>::serialize_(xcArchive& ar, unsigned char version) {
    checkVersion(version, kCurrentVersion, xn_cntrtmplDetail::kArchiveSource, kBadVersionLine);
    xcContour::dispatchSerialize(ar);
    xfSerializeVector(ar, data_);
    if (version >= 1)
        ar || xform_;
    if (ar.isLoading()) {
        inverse_.reset();
    }
}

template class xcContourT<xcEdgelet>;
