// Persistence of contours: the current record (version 1) and the legacy one (version 0).
#include <cntr/contour.h>

#include <cntr/contour_detail.h>
#include <foundation/archive.h>

using namespace xn_contourDetail;

namespace {

constexpr unsigned char kCurrentVersion = 1;

// The base part of shapes in version-0 archives, kept only to read those records.
class LegacyBaseRecord : public virtual xcPersistent, public virtual xcRepBase {
public:
    LegacyBaseRecord(const char* source, long line) : source_(source), line_(line) {}

    void dispatchSerialize(xcArchive& ar) override {
        dispatchPart(ar, this, 0, [&](unsigned char version) {
            if (version != 0) throw xcArchive::UnknownVersion(source_, line_);
            xcPersistent::dispatchSerialize(ar);
        });
    }

private:
    const char* source_;
    long line_;
};

}  // namespace

void xn_contourDetail::readLegacyBase(xcArchive& ar, LegacyReader reader) {
    static LegacyBaseRecord contourBase(kContourSource, kBadLegacyBaseVersionLine);
    static LegacyBaseRecord regionBase(kRegionSource, kBadRegionVersionLine);
    (reader == LegacyReader::contour ? contourBase : regionBase).dispatchSerialize(ar);
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
    readLegacyBase(ar, LegacyReader::contour);
    xfSerializeVector(ar, points_);
    unsigned char unused = 0;
    ar || unused || cachedVectorSize_ || closed_;
    label_ = 0;
}
