// Persistence of region sets: the current record (version 1) and the older one (version 0).
#include <cntr/regionst.h>

#include <foundation/archive.h>

namespace {

// The source name and place that a refused region-set record reports.
constexpr const char* kRegionSetSource = "cntr/regionst";
constexpr long kBadRegionSetVersionLine = 480;
constexpr unsigned char kCurrentVersion = 1;

}  // namespace

xcPersistent* xcRegionSet::make() {
    return new xcRegionSet();
}
xc_Instantiator xcRegionSet::sExemplar(typeid(xcRegionSet), &xcRegionSet::make);

void xcRegionSet::dispatchSerialize(xcArchive& ar) {
    // This level's record, not a derived class's override: a derived set's serialize_ passes
    // its base part through here, so a virtual call would never end.
    const xcRegionSet* self = this;
    dispatchPart(ar, self, kCurrentVersion,
                 [&](unsigned char version) { xcRegionSet::serialize_(ar, version); });
}

void xcRegionSet::serialize_(xcArchive& ar, unsigned char version) {
    if (version > 1)
        throw xcArchive::UnknownVersion(kRegionSetSource, kBadRegionSetVersionLine);
    xcPersistent::dispatchSerialize(ar);
    if (ar.isStoring()) {
        ar || regions_;
        if (version == 1)
            ar || cachedVectorSize_;
        return;
    }
    // Read into locals and checked first, so that a refused record leaves the set as it was.
    RegionHandles loaded;
    long limit = cachedVectorSize_;
    ar || loaded;
    if (version == 1)
        ar || limit;
    // A valid record holds regions only: a member stored as another class loads as a null
    // handle, which the set never holds.
    for (const xcPtrHandle_const<xcRegion>& region : loaded)
        if (region.isNull())
            throw xcArchive::BadData(L"region set member is not a region");
    regions_.swap(loaded);
    cachedVectorSize_ = limit;
    cleanCacheInfo();
}
