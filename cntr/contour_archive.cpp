// Persistence of contours: the current record (version 1) and the legacy one (version 0).
#include <cntr/contour.h>

#include <cntr/contour_detail.h>
#include <foundation/archive.h>

namespace {

// The source name and places that a refused contour record reports.
constexpr const char* kContourSource = "cntr/contour";
constexpr long kBadContourVersionLine = 900;
constexpr long kBadLegacyBaseVersionLine = 890;
constexpr unsigned char kCurrentVersion = 1;

// The one scratch object that every version-0 record's base part is read into.
xn_contourDetail::LegacyBaseRecord& legacyBase() {
    static xn_contourDetail::LegacyBaseRecord base(kContourSource, kBadLegacyBaseVersionLine);
    return base;
}

}  // namespace

void xn_contourDetail::LegacyBaseRecord::dispatchSerialize(xcArchive& ar) {
    dispatchPart(ar, this, 0, [&](unsigned char version) {
        if (version != 0) throw xcArchive::UnknownVersion(source_, line_);
        xcPersistent::dispatchSerialize(ar);
    });
}

xcPersistent* xcContour::make() { return new xcContour(); }
xc_Instantiator xcContour::sExemplar(typeid(xcContour), &xcContour::make);

void xcContour::dispatchSerialize(xcArchive& ar) {
    const xcContour* self = this;
    if (haveVisited(ar, self, sizeof(xcContour))) return;
    unsigned char version = kCurrentVersion;
    ar || version;
    // This level's record: a derived class's serialize_ override writes its own level and
    // passes its contour part through here, so a virtual call would never end.
    xcContour::serialize_(ar, version);
    setVisited(ar, self, sizeof(xcContour));
}

void xcContour::serialize_(xcArchive& ar, unsigned char version) {
    if (version == 1)
        serializeVersion1(ar);
    else if (version == 0 && ar.isLoading())
        loadVersion0(ar);
    else
        throw xcArchive::UnknownVersion(kContourSource, kBadContourVersionLine);
    if (ar.isLoading()) cleanCacheInfo();
}

void xcContour::serializeVersion1(xcArchive& ar) {
    xcPersistent::dispatchSerialize(ar);
    ar || label_ || closed_;
    xfSerializeVector(ar, points_);
    ar || cachedVectorSize_;
}

void xcContour::loadVersion0(xcArchive& ar) {
    legacyBase().dispatchSerialize(ar);
    xfSerializeVector(ar, points_);
    unsigned char unused = 0;
    ar || unused || cachedVectorSize_ || closed_;
    label_ = 0;
}
