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
    makeDataConsistentWithPoints();
    applyMode(mode);
}

xcRegionSet::xcRegionSet(const MutableRegionHandles& regions, xcContourDefs::IntersectionMode mode)
    : xcRegionSet(asConst(regions), mode) {}

xcRegionSet::xcRegionSet(const xcRegionSet& other) : xcPersistent(), xcRepBase() {
    *this = other;
}

xcRegionSet& xcRegionSet::operator=(const xcRegionSet& other) {
    if (&other == this)
        return *this;
    // The caches are copied first, so that a failed allocation leaves this set as it was.
    xn_regionSetDetail::RegionSetCaches caches(other.caches_);
    regions_ = other.regions_;
    cachedVectorSize_ = other.cachedVectorSize_;
    caches_ = std::move(caches);
    return *this;
}

xcRegionSet::~xcRegionSet() = default;

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

void xcRegionSet::cleanCacheInfo() {
    mutating();
    caches_.reset();
}

