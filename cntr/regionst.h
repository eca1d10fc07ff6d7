#ifndef CNTR_REGIONST_H
#define CNTR_REGIONST_H

#include <memory>
#include <vector>

#include <cntr/contourdefs.h>
#include <cntr/contourmemo.h>
#include <cntr/export.h>
#include <cntr/region.h>
#include <cntr/tolerances.h>  // the tolerances the comments name
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/matrix.h>
#include <foundation/persistent.h>
#include <foundation/tablet.h>
#include <foundation/vector.h>
#include <foundation/xform.h>

class xcArchive;

class xcRegionSet;

namespace xn_regionSetDetail {

/// Every cached result of a region set: the measures a region has too (per considerHoles flag,
/// and the regularised and outer-hull sets), the enclosing rectangles by transform and the
/// self-intersection answer. Copies carry them all (the rectangle memo deep-copied, the two
/// sets shared); reset() is the set's cleanCacheInfo().
struct RegionSetCaches : xn_contourDetail::MeasureCaches<xcRegionSet> {
    xn_contourDetail::OwnedCache<xn_contourDetail::RectMemo> rectCache;
    xn_contourDetail::Cached<bool> selfIntersecting;

    /// Deletes the rectangle memo and clears every flag, setting both areas to 0; the other
    /// values and the two sets stay until replaced.
    void reset() {
        MeasureCaches::reset();
        rectCache.reset();
        selfIntersecting.valid = false;
    }
};

}  // namespace xn_regionSetDetail

/// An ordered collection of regions held through const counted handles.
///
/// Sharing. The set never copies a region: copies of a set, and other sets or shapes, may hold
/// the very same region objects. A region changed through another (mutable) handle after it was
/// added is not noticed by the set's caches; assign the list again to reset them.
///
/// Order. The regions keep their insertion order; it decides equality (positional) and which
/// region is visited first by every query and by the merge pass of regularize and outerHull.
///
/// Caches. Area, centre of mass and inertia (one slot per considerHoles flag), the enclosing
/// rectangles by transform, the self-intersection answer and the regularised and outer-hull
/// sets are computed on first demand, also by const members, and kept until the next change of
/// the region list, which ends in cleanCacheInfo(). Unlike a contour, the set counts every fill
/// of the area, centre, inertia and rectangle caches as a change: mutating() is called after
/// each. The rectangle cache holds at most cachedVectorSize() + 1 transforms; beyond that a new
/// one replaces an entry drawn by the library's per-thread random generator (the one the
/// contours' memos use).
///
/// The measures that need a real set (centerOfMass, inertiaMatrix, distToPoint, encloseRect and
/// the merge pass) throw xcContourDefs::EmptyRegionSet (empty message) for a set without
/// regions; area, inside, isSelfIntersecting, regularize and outerHull answer for it. Errors of
/// the region and contour operations propagate unchanged and leave the slot being computed
/// invalid.
///
/// A set never holds a null region handle: the constructors, regions(), add() and setRegions()
/// refuse one with xcContourDefs::BadParams ("region set cannot hold a null region"), loading
/// refuses a member of another class with xcArchive::BadData, before anything is changed.
///
/// Not thread-safe: even const queries write the caches. Separate sets may be used from
/// separate threads, provided they do not share regions.
class CNTR_API xcRegionSet : public virtual xcPersistent, public virtual xcRepBase {
  public:
    using RegionHandles = std::vector<xcPtrHandle_const<xcRegion>>;
    using MutableRegionHandles = std::vector<xcPtrHandle<xcRegion>>;

    /// A set of a copy of the handle vector (the regions themselves are shared), with
    /// cachedVectorSize() 3 and empty caches; then `mode` is applied in place: useOuterHull
    /// makes the set its own outerHull, useRegularized its own regularization, any other value
    /// keeps the list as given (crossing regions are never refused). Without arguments: the
    /// empty set, which is also what the archive's factory creates. Throws BadParams for a null
    /// handle, and whatever outerHull or regularize throws (nothing is kept then).
    explicit xcRegionSet(const RegionHandles& regions = RegionHandles(),
                         xcContourDefs::IntersectionMode mode = xcContourDefs::keepOutline);
    /// The same from mutable handles, each taken as a const handle to the same region.
    explicit xcRegionSet(const MutableRegionHandles& regions,
                         xcContourDefs::IntersectionMode mode = xcContourDefs::keepOutline);
    /// A copy of `other` (see operator=).
    xcRegionSet(const xcRegionSet& other);
    /// Copies the region handles (the regions are shared), cachedVectorSize() and every cache
    /// with its flag: the regularised and outer-hull sets are shared with `other`, the rectangle
    /// cache is copied into a map of this set's own. Self-assignment does nothing; mutating()
    /// is not called.
    xcRegionSet& operator=(const xcRegionSet& other);
    ~xcRegionSet() override;

    // ---- model ----

    /// A copy of the handle vector, in order.
    RegionHandles regions();
    /// Replaces the list: drops the caches, stores a copy of `r`, drops them again through
    /// makeDataConsistentWithPoints(), then applies `mode` as the constructor does. Throws
    /// BadParams for a null handle (nothing changed), and whatever the mode step throws (the
    /// new list is then in place, unmerged).
    void regions(const RegionHandles& r, xcContourDefs::IntersectionMode mode);
    /// The same from mutable handles.
    void regions(const MutableRegionHandles& r, xcContourDefs::IntersectionMode mode);
    /// Appends `region` to the list, then proceeds as regions(r, mode).
    void add(const xcPtrHandle_const<xcRegion>& region, xcContourDefs::IntersectionMode mode);

    /// The entry limit of the rectangle cache (3 after construction); the cache holds at most
    /// this many transforms plus one.
    long cachedVectorSize() const { return cachedVectorSize_; }
    /// Sets the limit and calls mutating(); the cache is neither cleared nor trimmed. Throws
    /// xcContourDefs::BadParams (empty message) for a negative `n`, keeping the old limit.
    void cachedVectorSize(long n);

    /// True when both sets hold the same number of regions and region i of one equals region i
    /// of the other (xcRegion::operator==, outlines only) for every i. Positional: the same
    /// regions in another order are unequal. cachedVectorSize() and the caches take no part.
    bool operator==(const xcRegionSet& other) const;
    bool operator!=(const xcRegionSet& other) const { return !(*this == other); }

    /// Asks every region, in order, to draw itself with the region's own (virtual) draw. A plain
    /// xcRegion draws nothing, so only regions of classes that draw (edgelet regions) leave
    /// marks; an empty set draws nothing.
    void draw(xcUITablet& tablet, const xcColor& color, const xcUITablet::Layers& layer) const;

    // ---- measures ----

    /// The sum of the regions' area(considerHoles), in order; 0 for an empty set. Cached per
    /// flag; a fill calls mutating().
    double area(bool considerHoles) const;
    /// The area-weighted mean of the regions' centerOfMass(considerHoles); (0, 0) when the
    /// areas sum to within kExactTolerance of 0. Cached per flag; a fill calls mutating(). Throws
    /// EmptyRegionSet.
    xcVector<2> centerOfMass(bool considerHoles);
    /// The central inertia matrix of the union of the regions: their inertia records (area,
    /// centre, inertiaMatrix(considerHoles)) combined in order with xc_InertiaData::operator+.
    /// Cached per flag; a fill calls mutating(). Throws EmptyRegionSet, and BadParams from a
    /// region with holes when considerHoles is true (the region does not provide that inertia).
    xcMatrix<2> inertiaMatrix(bool considerHoles);
    /// Whether some region contains `point` (xcRegion::inside with the flag passed on); false
    /// for an empty set. Not cached.
    bool inside(const xcVector<2>& point, bool considerHoles) const;
    /// The smallest of the regions' distToPoint(point, vertexOnly, considerHoles, zeroInside);
    /// a NaN distance is never taken. Positive infinity when every region gives NaN. Not cached.
    /// Throws EmptyRegionSet.
    double distToPoint(const xcVector<2>& point, bool vertexOnly, bool considerHoles,
                       bool zeroInside) const;
    /// The union of the enclosing rectangles (xcContour::encloseRect) of the regions' outlines
    /// under `xform`; holes are not visited. Cached by transform, the key ignoring matrix
    /// element (1,1) on purpose, as every transform-keyed cache of the library does: a transform
    /// that differs from a cached one only there returns that one's rectangle. A fill calls
    /// mutating(). Throws EmptyRegionSet.
    xcRect encloseRect(const xcXform<2>& xform);
    /// Whether some region's outline crosses itself (xcContour::isSelfIntersecting) or the
    /// outline of another region (xcContour::intersections not empty). Holes are not examined.
    /// False for an empty set, without caching; cached otherwise. Quadratic in the number of
    /// regions.
    bool isSelfIntersecting() const;

    // ---- merging ----

    /// Sets `out` to the regularized set. A set that is not self-intersecting is copied as it
    /// is (same regions, caches included). Otherwise crossing regions are merged first by one
    /// ordered pass (see below) and every region of the result is replaced by its own
    /// xcRegion::regularize; the result is computed once, cached (shared by later calls) and
    /// assigned to `out`, which may be this set. The regions of this set are never modified.
    ///
    /// The merge pass visits slots i = 0, 1, ... and, for each, slots j = i + 1, i + 2, ...
    /// (both bounds re-read as the list shrinks). When region i's outline meets region j's
    /// (xcRegion::intersections without holes not empty), the two outlines are spliced into one
    /// new region without holes in slot i (xcRegion's splice), the last region moves
    /// into slot j, and j advances all the same: the moved region is not compared with the
    /// merged one in this pass, and the pass is never repeated. A region crossing only a part
    /// that another region contributed to a merge may therefore stay separate; that is the
    /// defined result.
    ///
    /// Throws what the region operations throw (for example BadParams "invalid contour");
    /// `out` is then unchanged.
    void regularize(xcRegionSet& out) const;
    /// As regularize, with xcRegion::outerHull applied to every region of the merged list.
    void outerHull(xcRegionSet& out) const;

  protected:
    /// Assigns the handle vector only: no cache reset and no mode step (for derived classes
    /// that keep the list in step with their own). Throws BadParams for a null handle.
    void setRegions(const RegionHandles& r);
    /// Throws xcContourDefs::EmptyRegionSet (empty message) when the set has no regions.
    void checkEmptyRegionSet() const;

    /// Record, version 1: the version byte, the xcPersistent record, the vector record of the
    /// region handles (each region stored once per archive however many handles reach it) and
    /// cachedVectorSize (signed 32-bit). Version 0, read, lacks cachedVectorSize. Each set is
    /// stored once per archive pass.
    void dispatchSerialize(xcArchive& ar) override;
    /// Transfers this level's fields for `version` and, when loading, drops the caches. Throws
    /// xcArchive::UnknownVersion("cntr/regionst", 480) for a version other than 0 and 1, and
    /// xcArchive::BadData ("region set member is not a region") when a member was stored as
    /// another class; the set is then left as it was.
    virtual void serialize_(xcArchive& ar, unsigned char version);
    /// Called after the region list was replaced; drops the caches.
    virtual void makeDataConsistentWithPoints();
    /// Called after derived per-region data changed; drops the caches.
    virtual void makePointsConsistentWithData();
    /// Drops every cached result: mutating(); deletes the rectangle cache; clears the flags of
    /// both centre, area (values set to 0) and inertia slots, of the self-intersection answer
    /// and of the regularised and outer-hull sets (their handles are kept until replaced).
    virtual void cleanCacheInfo();

    /// The caches themselves, read-only, for derived classes and tests.
    const xn_regionSetDetail::RegionSetCaches& cacheState() const { return caches_; }

  private:
    static xcPersistent* make();
    static xc_Instantiator sExemplar;

    void applyMode(xcContourDefs::IntersectionMode mode);
    bool anyOutlineCrossesItself() const;
    bool anyOutlinesCross() const;
    void replaceRegions(const RegionHandles& r, xcContourDefs::IntersectionMode mode);
    void cachedMerge(xcRegionSet& out, bool outerHullOnly, bool& valid,
                     xcPtrHandle<xcRegionSet>& cache) const;
    void outerHullRegularize(xcRegionSet& out, bool outerHullOnly) const;
    /// The single ordered merge pass over `work` (see regularize).
    static void mergePass(RegionHandles& work);

    RegionHandles regions_;
    long cachedVectorSize_ = 3;
    mutable xn_regionSetDetail::RegionSetCaches caches_;
};

#endif
