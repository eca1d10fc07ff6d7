// The region set model: construction, the region list, copying, equality, drawing and the cache
// reset.
#include <cntr/regionst.h>

#include <string>

#include <cntr/regionst_detail.h>

using namespace xn_regionSetDetail;

namespace {

std::vector<xcPtrHandle_const<xcRegion>> asConst(const std::vector<xcPtrHandle<xcRegion>>& r) {
    return std::vector<xcPtrHandle_const<xcRegion>>(r.begin(), r.end());
}

}  // namespace

void xn_regionSetDetail::checkNoNullRegion(
    const std::vector<xcPtrHandle_const<xcRegion>>& regions) {
    for (const xcPtrHandle_const<xcRegion>& region : regions)
        if (region.isNull())
            throw xcContourDefs::BadParams(L"region set cannot hold a null region");
}

xcRegionSet::xcRegionSet(const RegionHandles& regions, xcContourDefs::IntersectionMode mode) {
    checkNoNullRegion(regions);
    regions_ = regions;
    initializePointers();
    makeDataConsistentWithPoints();
    applyMode(mode);
}

xcRegionSet::xcRegionSet(const MutableRegionHandles& regions, xcContourDefs::IntersectionMode mode)
    : xcRegionSet(asConst(regions), mode) {}

xcRegionSet::xcRegionSet(const xcRegionSet& other) : xcPersistent(), xcRepBase() {
    initializePointers();
    *this = other;
}

xcRegionSet& xcRegionSet::operator=(const xcRegionSet& other) {
    if (&other == this)
        return *this;
    // The rectangle cache is copied first, so that a failed allocation leaves this set as it was.
    std::unique_ptr<xn_contourDetail::RectMemo> rectCache;
    if (other.rectCache_)
        rectCache.reset(new xn_contourDetail::RectMemo(*other.rectCache_));

    regions_ = other.regions_;
    cachedVectorSize_ = other.cachedVectorSize_;
    centerWithHoles_ = other.centerWithHoles_;
    centerOfOutlines_ = other.centerOfOutlines_;
    areaWithHoles_ = other.areaWithHoles_;
    areaOfOutlines_ = other.areaOfOutlines_;
    rectCache_ = std::move(rectCache);
    inertiaWithHoles_ = other.inertiaWithHoles_;
    inertiaOfOutlines_ = other.inertiaOfOutlines_;
    selfIntersecting_ = other.selfIntersecting_;
    selfIntersectingValid_ = other.selfIntersectingValid_;
    regularizedValid_ = other.regularizedValid_;
    regularized_ = other.regularized_;
    outerHullValid_ = other.outerHullValid_;
    outerHull_ = other.outerHull_;
    return *this;
}

xcRegionSet::~xcRegionSet() {
    deletePointers();
}

xcRegionSet::RegionHandles xcRegionSet::regions() {
    return regions_;
}

void xcRegionSet::regions(const RegionHandles& r, xcContourDefs::IntersectionMode mode) {
    checkNoNullRegion(r);
    cleanCacheInfo();
    regions_ = r;
    makeDataConsistentWithPoints();
    applyMode(mode);
}

void xcRegionSet::regions(const MutableRegionHandles& r, xcContourDefs::IntersectionMode mode) {
    regions(asConst(r), mode);
}

void xcRegionSet::add(const xcPtrHandle_const<xcRegion>& region,
                      xcContourDefs::IntersectionMode mode) {
    checkNoNullRegion(RegionHandles(1, region));
    cleanCacheInfo();
    regions_.push_back(region);
    makeDataConsistentWithPoints();
    applyMode(mode);
}

void xcRegionSet::setRegions(const RegionHandles& r) {
    checkNoNullRegion(r);
    regions_ = r;
}

void xcRegionSet::applyMode(xcContourDefs::IntersectionMode mode) {
    if (mode == xcContourDefs::useOuterHull)
        outerHull(*this);
    else if (mode == xcContourDefs::useRegularized)
        regularize(*this);
}

void xcRegionSet::cachedVectorSize(long n) {
    if (n < 0)
        throw xcContourDefs::BadParams(std::wstring());
    cachedVectorSize_ = n;
    mutating();
}

void xcRegionSet::checkEmptyRegionSet() const {
    if (regions_.empty())
        throw xcContourDefs::EmptyRegionSet(std::wstring());
}

bool xcRegionSet::operator==(const xcRegionSet& other) const {
    if (regions_.size() != other.regions_.size())
        return false;
    for (std::size_t i = 0; i < regions_.size(); ++i)
        if (!(*regions_[i] == *other.regions_[i]))
            return false;
    return true;
}

void xcRegionSet::draw(xcUITablet& tablet, const xcColor& color,
                       const xcUITablet::Layers& layer) const {
    for (const xcPtrHandle_const<xcRegion>& region : regions_)
        region->draw(tablet, color, layer);
}

void xcRegionSet::makeDataConsistentWithPoints() {
    cleanCacheInfo();
}

void xcRegionSet::makePointsConsistentWithData() {
    cleanCacheInfo();
}

void xcRegionSet::initializePointers() {
    rectCache_.reset();
}

void xcRegionSet::deletePointers() {
    rectCache_.reset();
}

void xcRegionSet::cleanCacheInfo() {
    mutating();
    deletePointers();
    centerWithHoles_.valid = false;
    centerOfOutlines_.valid = false;
    areaWithHoles_.valid = false;
    areaWithHoles_.value = 0.0;
    areaOfOutlines_.valid = false;
    areaOfOutlines_.value = 0.0;
    inertiaWithHoles_.valid = false;
    inertiaOfOutlines_.valid = false;
    selfIntersectingValid_ = false;
    regularizedValid_ = false;
    outerHullValid_ = false;
}

xcRegionSet::CacheState xcRegionSet::cacheState() const {
    CacheState s;
    s.centerValid[0] = centerOfOutlines_.valid;
    s.centerValid[1] = centerWithHoles_.valid;
    s.areaValid[0] = areaOfOutlines_.valid;
    s.areaValid[1] = areaWithHoles_.valid;
    s.area[0] = areaOfOutlines_.value;
    s.area[1] = areaWithHoles_.value;
    s.inertiaValid[0] = inertiaOfOutlines_.valid;
    s.inertiaValid[1] = inertiaWithHoles_.valid;
    s.rectCache = rectCache_.get();
    s.selfIntersecting = selfIntersecting_;
    s.selfIntersectingValid = selfIntersectingValid_;
    s.regularizedValid = regularizedValid_;
    s.regularized = regularized_.rep();
    s.outerHullValid = outerHullValid_;
    s.outerHull = outerHull_.rep();
    return s;
}
