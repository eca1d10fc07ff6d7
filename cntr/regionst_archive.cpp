// Persistence of region sets: the current record (version 1) and the older one (version 0).
#include <cntr/regionst.h>

#include <foundation/archive.h>

#include <cntr/regionst_detail.h>

namespace {

// The source name and place that a refused region-set record reports.
constexpr const char* kRegionSetSource = "cntr/regionst";
constexpr long kBadRegionSetVersionLine = 480;
constexpr unsigned char kCurrentVersion = 1;

}  // namespace

xcPersistent* xcRegionSet::make() { return new xcRegionSet(); }
xc_Instantiator xcRegionSet::sExemplar(typeid(xcRegionSet), &xcRegionSet::make);

void xcRegionSet::dispatchSerialize(xcArchive& ar) {
    const xcRegionSet* self = this;
    dispatchPart(ar, self, kCurrentVersion, [&](unsigned char version) { serialize_(ar, version); });
}

void xcRegionSet::serialize_(xcArchive& ar, unsigned char version) {
    if (version > 1) throw xcArchive::UnknownVersion(kRegionSetSource, kBadRegionSetVersionLine);
    xcPersistent::dispatchSerialize(ar);
    if (ar.isStoring()) {
        ar || regions_;
        if (version == 1) ar || cachedVectorSize_;
        return;
    }
    // Read into locals and checked first, so that a refused record leaves the set as it was.
    RegionHandles loaded;
    long limit = cachedVectorSize_;
    ar || loaded;
    if (version == 1) ar || limit;
    xn_regionSetDetail::checkNoNullRegion(loaded);
    regions_.swap(loaded);
    cachedVectorSize_ = limit;
    cleanCacheInfo();
}
