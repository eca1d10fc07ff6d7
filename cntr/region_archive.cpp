// Persistence of regions: the current record (version 1) and the legacy one (version 0).
#include <cntr/region.h>

#include <cntr/contour_detail.h>
#include <foundation/archive.h>

using namespace xn_contourDetail;

namespace {

constexpr unsigned char kCurrentVersion = 1;

}  // namespace

xcPersistent* xcRegion::make() {
    return new xcRegion();
}
xc_Instantiator xcRegion::sExemplar(typeid(xcRegion), &xcRegion::make);

void xcRegion::dispatchSerialize(xcArchive& ar) {
    // This level's record (not a derived class's override, which comes through here itself).
    dispatchPart(ar, this, kCurrentVersion,
                 [&](unsigned char version) { xcRegion::serialize_(ar, version); });
}

void xcRegion::serialize_(xcArchive& ar, unsigned char version) {
    if (version == 1) {
        xcContour::dispatchSerialize(ar);
        xfSerializeVector(ar, holes_);
    } else if (version == 0 && ar.isLoading()) {
        loadVersion0(ar);
    } else {
        throw xcArchive::UnknownVersion(kRegionSource, kBadRegionVersionLine);
    }
    if (ar.isLoading()) {
        cleanCacheInfo();
        // A valid record holds regions only: a hole stored as another class loads as a null
        // handle, which no setter accepts and every query with holes would dereference.
        for (const xcPtrHandle_const<xcRegion>& hole : holes_)
            if (!hole)
                throw xcArchive::BadData(L"region hole is not a region");
    }
}

// Version 0, in order: the legacy base record, the outline's vertex vector, a flag byte (read
// and dropped) and the memo limit (signed 32-bit), as the legacy contour record orders them.
// Afterwards the contour's closed flag and label are 0; no holes are stored.
void xcRegion::loadVersion0(xcArchive& ar) {
    readLegacyBase(ar, LegacyReader::region);
    std::vector<xcVector<2>> outline;
    xfSerializeVector(ar, outline);
    unsigned char unused = 0;
    long limit = 0;
    ar || unused || limit;
    points(outline);
    cachedVectorSize(limit);
    xcContour::isClosed(false);
    label(0);
    holes_.clear();
}
