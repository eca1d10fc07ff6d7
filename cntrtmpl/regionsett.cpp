// The edgelet region set: construction, the two consistency hooks, equality and its archive
// record.
#include <cntrtmpl/regionsett.h>

#include <cntr/regionst_detail.h>
#include <cntrtmpl/cntrtmpl_detail.h>
#include <foundation/archive.h>

namespace {

constexpr unsigned char kCurrentVersion = 0;
// The place that a refused edgelet region set record reports.
constexpr long kBadVersionLine = 286;

// The same regions, held as plain region handles.
template <class Handles>
std::vector<xcPtrHandle_const<xcRegion>> asRegionHandles(const Handles& r) {
    return std::vector<xcPtrHandle_const<xcRegion>>(r.begin(), r.end());
}

}  // namespace

template <class T>
xcRegionSetT<T>::xcRegionSetT() = default;

template <class T>
xcRegionSetT<T>::xcRegionSetT(const RegionTHandles& r)
    : xcRegionSet(RegionHandles(), xcContourDefs::keepOutline), regionsT_(r) {
    makePointsConsistentWithData();
}

template <class T>
xcRegionSetT<T>::xcRegionSetT(const MutableRegionTHandles& r)
    : xcRegionSetT(RegionTHandles(r.begin(), r.end())) {}

template <class T>
xcRegionSetT<T>::xcRegionSetT(const xcRegionSetT& other)
    : xcPersistent(), xcRepBase(), xcRegionSet(other), regionsT_(other.regionsT_) {}

template <class T>
xcRegionSetT<T>& xcRegionSetT<T>::operator=(const xcRegionSetT& other) {
    if (&other == this)
        return *this;
    xcRegionSet::operator=(other);
    regionsT_ = other.regionsT_;
    return *this;
}

template <class T>
xcRegionSetT<T>::~xcRegionSetT() = default;

template <class T>
void xcRegionSetT<T>::mapT(const xcXform<2>&, xcRegionSetT&) const {
    xn_cntrtmplDetail::throwNotProvided();
}

template <class T>
void xcRegionSetT<T>::regularizeT(xcRegionSetT&) const {
    xn_cntrtmplDetail::throwNotProvided();
}

template <class T>
bool xcRegionSetT<T>::operator==(const xcRegionSetT& other) const {
    return xcRegionSet::operator==(other);
}

template <class T>
void xcRegionSetT<T>::makeDataConsistentWithPoints() {
    cleanCacheInfo();
    const RegionHandles base = regions();
    regionsT_.resize(base.size());
    for (std::size_t i = 0; i < base.size(); ++i) {
        xcPtrHandle<xcRegionT<T>> rebuilt(new xcRegionT<T>());
        rebuilt->points(base[i]->points());
        regionsT_[i] = rebuilt;
    }
}

template <class T>
void xcRegionSetT<T>::makePointsConsistentWithData() {
    cleanCacheInfo();
    setRegions(asRegionHandles(regionsT_));
}

template <class T>
void xcRegionSetT<T>::cleanCacheInfo() {
    xcRegionSet::cleanCacheInfo();
}

XN_CNTRTMPL_DEFINE_PERSISTENCE(xcRegionSetT)

template <class T>
void xcRegionSetT<T>::serialize_(xcArchive& ar, unsigned char version) {
    checkVersion(version, kCurrentVersion, xn_cntrtmplDetail::kArchiveSource, kBadVersionLine);
    xcRegionSet::dispatchSerialize(ar);
    if (ar.isStoring()) {
        xfSerializeVector(ar, regionsT_);
        return;
    }
    // Read into a local and checked first, so that a refused record leaves the list as it was.
    RegionTHandles loaded;
    xfSerializeVector(ar, loaded);
    xn_regionSetDetail::checkNoNullRegion(asRegionHandles(loaded));
    regionsT_.swap(loaded);
}

template class xcRegionSetT<xcEdgelet>;
