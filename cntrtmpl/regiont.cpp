// The edgelet region: construction, edgelet holes, equality, stroke drawing and its archive
// record.
#include <cntrtmpl/regiont.h>

#include <cntrtmpl/cntrtmpl_detail.h>
#include <foundation/archive.h>

namespace {

constexpr unsigned char kCurrentVersion = 0;
// The place that a refused edgelet region record reports.
constexpr long kBadVersionLine = 186;

// Half the length of the stroke drawn for each edgelet: the stroke is one unit long, centred on
// the edgelet.
constexpr double kStrokeHalfLength = 0.5;

xcPair<double> asPair(const xcVector<2>& p) {
    return xcPair<double>(p.x(), p.y());
}

}  // namespace

template <class T>
xcRegionT<T>::xcRegionT() = default;

template <class T>
xcRegionT<T>::xcRegionT(const std::vector<T>& data, unsigned long label)
    : xcContourT<T>(data), xcRegion() {
    this->label(label);
}

template <class T>
xcRegionT<T>::xcRegionT(const std::vector<T>& data, const xcPtrHandle_const<xc2XformBase>& xform,
                        unsigned long label)
    : xcContourT<T>(data, xform), xcRegion() {
    this->label(label);
}

// The edgelet part's copy constructor does not build the shared contour base (this class does,
// empty): so the contour's vertices are not copied, only its data and transform.
template <class T>
xcRegionT<T>::xcRegionT(const xcContourT<T>& contour, unsigned long label)
    : xcContour(), xcContourT<T>(contour), xcRegion() {
    this->label(label);
}

template <class T>
xcRegionT<T>::xcRegionT(const xcRegionT& other)
    : xcPersistent(),
      xcRepBase(),
      xcContour(other),
      xcContourT<T>(other),
      xcRegion(other),
      holesT_(other.holesT_) {}

template <class T>
xcRegionT<T>& xcRegionT<T>::operator=(const xcRegionT& other) {
    if (&other == this)
        return *this;
    xcRegion::operator=(other);  // the contour part and the region part
    this->assignEdgeletPart(other);
    holesT_ = other.holesT_;
    return *this;
}

template <class T>
xcRegionT<T>::~xcRegionT() = default;

template <class T>
void xcRegionT<T>::holes(const HoleHandles& h) {
    holesT_ = h;
    cleanCacheInfo();
}

template <class T>
void xcRegionT<T>::isClosed(bool closed) {
    xcRegion::isClosed(closed);
}

template <class T>
void xcRegionT<T>::mapT(const xcXform<2>&, xcRegionT&) const {
    xn_cntrtmplDetail::throwNotProvided();
}

template <class T>
void xcRegionT<T>::regularizeT(xcRegionT&) const {
    xn_cntrtmplDetail::throwNotProvided();
}

template <class T>
bool xcRegionT<T>::operator==(const xcRegionT& other) const {
    return xcContourT<T>::operator==(other);
}

template <class T>
void xcRegionT<T>::draw(xcUITablet& tablet, const xcColor& color,
                        const xcUITablet::Layers& layers) const {
    const xcAngle8 quarterTurn(xcDegree(90.0));
    const xcDegree halfTurn(180.0);
    for (const T& e : this->data()) {
        // Along the edge: the gradient direction turned back by a quarter turn, modulo a turn.
        const xcDegree along = e.angle() - quarterTurn;
        const xcVector<2> forward(kStrokeHalfLength, xcRadian(along));
        const xcVector<2> backward(kStrokeHalfLength, xcRadian(along + halfTurn));
        const xcVector<2> start = xcXform<2>::I * (e.position() + forward);
        const xcVector<2> end = xcXform<2>::I * (e.position() + backward);
        tablet.drawLineSeg(asPair(start), asPair(end), color, layers);
    }
}

template <class T>
void xcRegionT<T>::makeDataConsistentWithPoints() {
    xcContourT<T>::makeDataConsistentWithPoints();
}

template <class T>
void xcRegionT<T>::makePointsConsistentWithData() {
    xcContourT<T>::makePointsConsistentWithData();
}

template <class T>
void xcRegionT<T>::cleanCacheInfo() {
    xcRegion::cleanCacheInfo();
}

XN_CNTRTMPL_DEFINE_PERSISTENCE(xcRegionT)

template <class T>
void xcRegionT<T>::serialize_(xcArchive& ar, unsigned char version) {
    checkVersion(version, kCurrentVersion, xn_cntrtmplDetail::kArchiveSource, kBadVersionLine);
    xcRegion::dispatchSerialize(ar);
    if (ar.isLoading()) {
        // Not stored: whatever the region part's loading rebuilt or this object held before is
        // replaced by what a new edgelet region has.
        this->assignEdgeletPart(xcContourT<T>());
        holesT_.clear();
    }
}

template class xcRegionT<xcEdgelet>;
