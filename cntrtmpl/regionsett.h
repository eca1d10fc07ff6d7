#ifndef CNTRTMPL_REGIONSETT_H
#define CNTRTMPL_REGIONSETT_H

#include <vector>

#include <cntr/export.h>
#include <cntr/regionst.h>
#include <cntrtmpl/regiont.h>
#include <foundation/handle.h>
#include <foundation/xform.h>

class xcArchive;

/// A region set whose members are edgelet regions (xcRegionT). The library instantiates it for
/// xcEdgelet only.
///
/// Two lists. The set keeps its members twice: as edgelet regions (regionsT()) and, in the base
/// set, as xcRegion handles that every measure of xcRegionSet uses. After construction (and
/// after makePointsConsistentWithData()) the base set's regions are the very objects of
/// regionsT(), in the same order. Replacing the base set's list (xcRegionSet::regions(...) or
/// add(...)) rebuilds regionsT() as new edgelet regions with the outlines of the new members
/// (their data at the outline points under the identity, magnitude 0 and angle 0; holes are not
/// carried over), while the base set keeps the regions it was given.
///
/// The geometric operations of the template (mapT, regularizeT) are not provided.
///
/// Not thread-safe, like xcRegionSet.
template <class T>
class xcRegionSetT : public xcRegionSet {
  public:
    using RegionTHandles = std::vector<xcPtrHandle_const<xcRegionT<T>>>;
    using MutableRegionTHandles = std::vector<xcPtrHandle<xcRegionT<T>>>;

    /// An empty set (what the archive's factory creates).
    xcRegionSetT();
    /// A set of the edgelet regions `r` (shared, in order); the base set holds the same objects.
    /// Throws xcContourDefs::BadParams("region set cannot hold a null region") for a null
    /// handle.
    explicit xcRegionSetT(const RegionTHandles& r);
    /// The same from mutable handles.
    explicit xcRegionSetT(const MutableRegionTHandles& r);
    /// A copy: the base set (see xcRegionSet's copy) and the edgelet regions (shared).
    xcRegionSetT(const xcRegionSetT& other);
    /// Assigns as the copy constructor copies; self-assignment does nothing.
    xcRegionSetT& operator=(const xcRegionSetT& other);
    ~xcRegionSetT() override;

    /// A copy of the edgelet region handles, in order.
    RegionTHandles regionsT() const { return regionsT_; }

    /// Not provided for the edgelet shapes: always throws xcPel::BadWindow (empty message).
    void mapT(const xcXform<2>& xform, xcRegionSetT& out) const;
    /// Not provided for the edgelet shapes: always throws xcPel::BadWindow (empty message).
    void regularizeT(xcRegionSetT& out) const;

    /// The base sets' equality (xcRegionSet::operator==: positional, outlines only).
    bool operator==(const xcRegionSetT& other) const;
    bool operator!=(const xcRegionSetT& other) const { return !(*this == other); }

  protected:
    /// Record: the version byte (0), the base set's complete record, then the edgelet regions
    /// as a vector record of handles. A region held by both lists is stored once, so after
    /// loading both lists hold the same objects again. Each set is stored once per archive pass.
    void dispatchSerialize(xcArchive& ar) override;
    /// Reads or writes this level's record for `version`. Throws
    /// xcArchive::UnknownVersion("cntrtmpl", 286) for a version other than 0, and
    /// xcContourDefs::BadParams("region set cannot hold a null region") when a loaded edgelet
    /// region handle is null (a referent of another class), leaving the edgelet list as it was.
    void serialize_(xcArchive& ar, unsigned char version) override;
    /// Drops the caches and rebuilds the edgelet regions from the base set: for each base region
    /// in order a new edgelet region (no transform) given that region's outline points; holes
    /// are not carried over.
    void makeDataConsistentWithPoints() override;
    /// Drops the caches and makes the base set's regions the edgelet regions themselves, in
    /// order (setRegions: no further cache reset, no mode step). Throws
    /// xcContourDefs::BadParams for a null edgelet region handle.
    void makePointsConsistentWithData() override;
    /// The region set's cache reset.
    void cleanCacheInfo() override;

  private:
    static xcPersistent* make();
    static xc_Instantiator sExemplar;

    RegionTHandles regionsT_;
};

// The instantiation lives in the cntr library (see contourt.h for the place of the export mark).
extern template class CNTR_API xcRegionSetT<xcEdgelet>;

#endif
