#ifndef CNTRTMPL_REGIONT_H
#define CNTRTMPL_REGIONT_H

#include <vector>

#include <cntr/export.h>
#include <cntr/region.h>
#include <cntrtmpl/contourt.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/tablet.h>
#include <foundation/xform.h>

class xcArchive;

/// A region whose outline carries one datum of type T per vertex: an edgelet contour
/// (xcContourT) and a region (xcRegion) sharing one outline, the virtual xcContour base. The
/// library instantiates it for xcEdgelet only.
///
/// Parts. The outline, its label and the contour caches belong to the shared contour base; the
/// data and their transform to the edgelet part, kept in step with the outline as xcContourT
/// describes; the region's holes and measure caches to the region part. The edgelet region keeps
/// its own hole list, holesT, of edgelet regions, which is separate from the region part's
/// holes: region measures that consider holes see only the latter.
///
/// Setting the region part's holes (through xcRegion::holes) rebuilds the data from the outline
/// like any change of the outline, so magnitudes and angles are lost then.
///
/// The geometric operations of the template (mapT, regularizeT) are not provided.
///
/// Not thread-safe, like its parts.
template <class T>
class xcRegionT : public xcContourT<T>, public xcRegion {
  public:
    using HoleHandles = std::vector<xcPtrHandle_const<xcRegionT<T>>>;

    /// An empty closed outline with label 0, no data, a null transform and no holes (what the
    /// archive's factory creates).
    xcRegionT();
    /// The outline of the data under a new identity transform (the vertices are the data's
    /// positions), with `label`.
    xcRegionT(const std::vector<T>& data, unsigned long label);
    /// The outline of the data under a clone of `xform` (the identity when null), with `label`.
    /// Throws xcMathError::Singular when there are data and the transform has no inverse.
    xcRegionT(const std::vector<T>& data, const xcPtrHandle_const<xc2XformBase>& xform,
              unsigned long label);
    /// The edgelet part of `contour` (data, shared transform and cached inverse) with `label`.
    /// The contour's vertices are deliberately not copied: the outline stays empty, with data
    /// but no points, until it is set again (through points(...) or data(...)).
    xcRegionT(const xcContourT<T>& contour, unsigned long label);
    /// A copy: outline, region part (holes shared, caches kept), edgelet part (transform shared)
    /// and holesT (shared).
    xcRegionT(const xcRegionT& other);
    /// Assigns as the copy constructor copies; self-assignment does nothing.
    xcRegionT& operator=(const xcRegionT& other);
    ~xcRegionT() override;

    /// The edgelet holes (not the region part's holes).
    const HoleHandles& holes() const { return holesT_; }
    /// Replaces the edgelet holes (shared, not checked against the outline) and drops the
    /// caches. The region part's hole list is left as it is.
    void holes(const HoleHandles& h);

    using xcRegion::isClosed;
    /// True is accepted and changes nothing; false throws xcContourDefs::RegionCannotBeSetOpen
    /// (empty message) and leaves the region closed.
    void isClosed(bool closed) override;

    /// Not provided for the edgelet shapes: always throws xcPel::BadWindow (empty message).
    void mapT(const xcXform<2>& xform, xcRegionT& out) const;
    /// Not provided for the edgelet shapes: always throws xcPel::BadWindow (empty message).
    void regularizeT(xcRegionT& out) const;

    /// The edgelet contours' equality (same vertices, same transform object); holes, holesT and
    /// the region part take no part.
    bool operator==(const xcRegionT& other) const;
    bool operator!=(const xcRegionT& other) const { return !(*this == other); }

    using xcRegion::draw;
    /// Draws one stroke per datum, in order: the segment of length 1 centred on the datum's
    /// position and perpendicular to its gradient direction, from position + 0.5 (cos a, sin a)
    /// to position - 0.5 (cos a, sin a), with a the datum's angle minus a quarter turn (taken
    /// modulo a turn in 256ths). So an edgelet of angle 64 (a quarter turn) at (10, 10) draws
    /// from (10.5, 10) to (9.5, 10). The outline and the holes are not drawn.
    void draw(xcUITablet& tablet, const xcColor& color,
              const xcUITablet::Layers& layers) const override;

  protected:
    /// Record: the version byte (0) and the region part's complete record, nothing else: the
    /// data, the transform and holesT are not stored. Each object is stored once per archive
    /// pass.
    void dispatchSerialize(xcArchive& ar) override;
    /// Reads or writes this level's record for `version`. Loading leaves the data, the transform
    /// and holesT as a new edgelet region has them (empty, null, empty), so a loaded edgelet
    /// region has its outline, region holes and label but no data. Throws
    /// xcArchive::UnknownVersion("cntrtmpl", 186) for a version other than 0.
    void serialize_(xcArchive& ar, unsigned char version) override;
    /// The edgelet contour's: rebuilds the data from the outline.
    void makeDataConsistentWithPoints() override;
    /// The edgelet contour's: rebuilds the outline from the data.
    void makePointsConsistentWithData() override;
    /// The region's: drops the contour and region caches.
    void cleanCacheInfo() override;

  private:
    static xcPersistent* make();
    static xc_Instantiator sExemplar;

    HoleHandles holesT_;
};

// The instantiation lives in the cntr library (see contourt.h for the place of the export mark).
extern template class CNTR_API xcRegionT<xcEdgelet>;

#endif
