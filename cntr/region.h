#ifndef CNTR_REGION_H
#define CNTR_REGION_H

#include <vector>

#include <cntr/contour.h>
#include <cntr/contourdefs.h>
#include <cntr/export.h>
#include <cntr/tolerances.h>  // the tolerances the comments name
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/matrix.h>
#include <foundation/tablet.h>
#include <foundation/vector.h>
#include <foundation/xform.h>

class xcArchive;
class xcRegionSet;
class xcRegion;

namespace xn_regionDetail {

/// Every cached result of a region beyond its contour's: area, centre of mass and inertia per
/// considerHoles flag, and the regularised and outer-hull regions. Copies carry them all (the
/// two regions shared); reset() is the region's part of cleanCacheInfo(). Two slots keep a
/// defined behaviour: the centre with holes (center[1]) is set only by copy or assignment,
/// centerOfMass(true) setting its flag without writing the value (see xcRegion::centerOfMass);
/// the inertia with holes (inertia[1]) is never filled, that inertia being refused.
using RegionCaches = xn_contourDetail::MeasureCaches<xcRegion>;

}  // namespace xn_regionDetail

/// A closed outline with any number of hole regions.
///
/// The outline is the contour base: a region is a contour that can never be open (isClosed()
/// is always true), so its edges are those of a closed contour, edge 0 running from the last
/// vertex to the first. The holes are regions themselves, held by counted handles: they are
/// shared, never deep-copied, so changing a hole region after handing it over changes every
/// region that holds it, without telling their caches. Holes are checked against the outline
/// when they are set (no crossing), but not against each other nor for lying inside it.
///
/// Caches. Area and centre of mass (with and without holes), the outline's inertia and the
/// regularised and outer-hull regions are computed on first demand, also by const members, and
/// kept until cleanCacheInfo(), which every change of the outline or of the hole list calls.
/// Copies and assignments carry every cache along; the regularised and outer-hull regions are
/// then shared.
///
/// The region's own measures need 3 outline vertices and throw xcContourDefs::EmptyContour
/// otherwise; contour queries reached on a region keep the contour's limit of 2.
///
/// Derived classes construct the virtual xcContour base themselves (the rule of virtual
/// inheritance): the region constructors' own choice of contour applies only when the region
/// is the most derived class.
///
/// Not thread-safe: even const queries write the caches.
class CNTR_API xcRegion : public virtual xcContour {
  public:
    /// An empty closed outline, no holes (what the archive's factory creates).
    xcRegion();
    /// The closed outline of `points` (label 0), then `mode` applied: keepOutline takes the
    /// outline as given, useOuterHull replaces the region by its outerHull(), useRegularized by
    /// its regularize(); any other value behaves as keepOutline. The failures of outerHull and
    /// regularize pass through.
    explicit xcRegion(const std::vector<xcVector<2>>& points,
                      xcContourDefs::IntersectionMode mode = xcContourDefs::keepOutline);
    /// The closed outline of all the polygon's vertices in order (a repeated first vertex at the
    /// end stays a vertex, giving a zero-length closing edge), label 0; `mode` as above.
    explicit xcRegion(const xcPolygon& polygon,
                      xcContourDefs::IntersectionMode mode = xcContourDefs::keepOutline);
    /// The outline of a copy of `contour` (its label kept, closed whatever it was); `mode` as
    /// above. The contour's caches are not carried over.
    explicit xcRegion(const xcContour& contour,
                      xcContourDefs::IntersectionMode mode = xcContourDefs::keepOutline);
    /// A copy of `other`: outline, holes (shared) and every cache (see operator=).
    xcRegion(const xcRegion& other);
    /// Assigns the contour base, then the hole handles (shared), then every cache flag and
    /// value, the regularised and outer-hull regions shared, so valid caches stay valid.
    /// Self-assignment does nothing.
    xcRegion& operator=(const xcRegion& other);
    ~xcRegion() override;

    // ---- model ----

    /// Always true.
    bool isClosed() const override;
    /// True is accepted and changes nothing; false throws xcContourDefs::RegionCannotBeSetOpen
    /// (empty message), even on a region without vertices.
    void isClosed(bool c) override;

    /// The hole regions, in order.
    const std::vector<xcPtrHandle_const<xcRegion>>& holes() const { return holes_; }
    /// Replaces the hole list by `newHoles` (converted to const handles, in order). The caches are
    /// dropped first, whatever follows. Then every hole's outline is tested against this
    /// outline; the first that crosses it (intersections(hole outline, false) not empty) throws
    /// xcContourDefs::BadParams("holes cannot intersect region") and the old hole list stays.
    /// A hole touching the outline where no crossing is reported, or lying wholly outside it,
    /// is accepted. A null handle throws BadParams("holes cannot be null") and a hole that
    /// holds this region, directly or through its own holes, BadParams("holes cannot contain
    /// region"): either would make later queries crash or recurse without end. Throws
    /// EmptyContour when the outline has fewer than 2 vertices and a hole is given.
    void holes(const std::vector<xcPtrHandle<xcRegion>>& newHoles);
    /// As above, for const handles.
    void holes(const std::vector<xcPtrHandle_const<xcRegion>>& newHoles);

    /// Sets `out` to the region of the transformed outline with this region's label and no
    /// holes: the holes are deliberately not mapped, whatever `out` held before. `out` may be
    /// this region.
    void map(const xcXform<2>& xform, xcRegion& out) const;

    /// Equality of the contour bases (see xcContour::operator==); holes and caches take no part.
    bool operator==(const xcRegion& other) const;
    bool operator!=(const xcRegion& other) const { return !(*this == other); }

    /// A region draws nothing by itself: this does nothing at all. Reached as an xcContour (the
    /// four-argument draw) it draws its outline.
    virtual void draw(xcUITablet& tablet, const xcColor& color,
                      const xcUITablet::Layers& layer) const;
    using xcContour::draw;

    // ---- area, centre of mass, inertia ----

    /// The enclosed area. Without holes: the unsigned polygon area of the outline. With holes:
    /// that minus each hole's area(false) (a hole's own holes are not added back; nothing checks
    /// that holes lie inside, so the result can be 0 or negative). Cached per flag. Throws
    /// EmptyContour for fewer than 3 outline vertices.
    double area(bool considerHoles) const;
    /// The area centroid. Without holes (or with none present): the outline's polygon centroid,
    /// cached. With holes present: (A c - sum of a_h c_h) / (A - sum of a_h) over the outline and
    /// the holes' area(false) and centerOfMass(false), carried out as it stands even when the
    /// denominator is 0. Note the with-holes cache: the first call returns the centroid and sets
    /// only the flag, not the cached value; later calls until cleanCacheInfo() return the slot
    /// as it stands ((0, 0) after construction, or what a copy brought). Throws EmptyContour
    /// for fewer than 3 outline vertices.
    xcVector<2> centerOfMass(bool considerHoles);
    /// The central inertia matrix of the outline polygon (layout of xc_InertiaData), cached.
    /// Throws EmptyContour for fewer than 3 outline vertices, and
    /// xcContourDefs::BadParams("inertiaMatrix(considerHoles) is not implemented") when
    /// `considerHoles` is true and the region has a hole.
    xcMatrix<2> inertiaMatrix(bool considerHoles);

    // ---- containment ----

    /// Whether `point` lies inside the outline (an odd crossing count of an adaptive ray) and,
    /// with `considerHoles`, inside none of the holes, each asked with its own holes considered
    /// (so a point on an island inside a hole is inside). A point within kOnVertexTolerance of an outline
    /// vertex counts as inside. Points near an edge but not a vertex get what the ray gives.
    /// Only the outline's edge index is cached (built by the first call on an outline of a few
    /// dozen edges or more; see xcContour::intersections). Throws EmptyContour for fewer than 2
    /// outline vertices.
    ///
    /// Cost: linear in the outline's vertices for every point inside its bounding rectangle,
    /// because the ray's direction depends on the directions to all of them. Measured on 10,000
    /// points over the bounding box, this is 5 to 451 times GEOS's prepared containment (spiky
    /// stars of 16k vertices to blobs of 256k). Many points on one shape are located far faster
    /// by cntr::Polygon::locate, which answers the true containment (inside, boundary or
    /// outside) through a prepared locator.
    bool inside(const xcVector<2>& point, bool considerHoles) const;

    // ---- nearest points and intersections ----

    /// The index of the outline vertex closest to `point` (the holes take no part).
    long closestVertexIndex(const xcVector<2>& point) const;
    /// The closest vertex of the outline or, with `considerHoles`, of a hole outline: returns
    /// its index in that outline and sets `holeIndex` to -1 for the region's own outline or to
    /// the hole's position. On equal distances the earlier candidate wins, the outline first.
    /// Throws EmptyContour when an outline asked has fewer than 2 vertices.
    long closestVertexIndex(const xcVector<2>& point, bool considerHoles, long& holeIndex) const;
    /// With `vertexOnly`: the vertex that closestVertexIndex(point, considerHoles, ...) names.
    /// Without: the nearest point on the edges of the outline and of every hole outline (the
    /// holes are examined whatever `considerHoles` says: that flag acts only with
    /// `vertexOnly`); a hole wins only when strictly nearer. Throws EmptyContour as above.
    xcVector<2> closestPoint(const xcVector<2>& point, bool vertexOnly, bool considerHoles);
    /// 0 when `zeroInside` and inside(point, considerHoles); otherwise the distance to
    /// closestPoint(point, vertexOnly, considerHoles).
    double distToPoint(const xcVector<2>& point, bool vertexOnly, bool considerHoles,
                       bool zeroInside) const;
    /// The outline's intersections(segment, includeEndTouches) followed, with `considerHoles`,
    /// by each hole outline's, in hole order; neither sorted across outlines nor de-duplicated.
    /// Throws EmptyContour when an outline asked has fewer than 2 vertices.
    std::vector<xcVector<2>> intersections(const xcLineSeg& segment, bool includeEndTouches,
                                           bool considerHoles);
    /// The same with the outlines' intersections(contour).
    std::vector<xcVector<2>> intersections(const xcContour& contour, bool considerHoles);

    // ---- regularisation ----

    /// Sets `result` to this region when its outline does not cross itself (isSelfIntersecting()
    /// false; holes kept). Otherwise sets it to the region (mode keepOutline, no holes) of the
    /// points reached by a walk along the outline, computed once and cached until the next
    /// change (copies share the cached region). `result` may be this region.
    ///
    /// The walk starts at vertex s, where edge s -> s+1 is the first edge (the closing edge never
    /// is) that a short probe across its midpoint, medianFeatureSize() / 100 to each side, meets
    /// alone, that meets nothing but its two neighbours, and that has an end of the probe outside
    /// (insideCount of the probe end, both ways, is 0); a zero-length edge has no sides and is
    /// passed over. It goes along the edges; where another edge crosses its way it stops at the
    /// nearest crossing, turns onto that edge and reverses its direction of travel; it ends when
    /// it stands on vertex s again, exactly. The rule follows the outer boundary of figure-eight
    /// shapes; where the crossing strands run the same way round (a star drawn with crossing
    /// edges) it closes an inner loop instead, and that loop is the result.
    ///
    /// The walk is bounded: with n vertices it may take 4 n + 64 passes, and once it outlasts
    /// that, 4 (n + h) + 64 passes, h being the number of crossings reported when each edge is
    /// queried against the outline (end touches excluded), at most n (n - 1). A walk that comes
    /// back to its start needs at most 2 (n + h) (one pass per state: point, edge, direction); a
    /// longer one would never end, for example when a vertex lies on another edge and the walk
    /// circles there.
    ///
    /// Throws xcContourDefs::BadParams("invalid contour") when no edge qualifies as start or the
    /// walk exceeds its bound; the cache then stays invalid and `result` unchanged.
    void regularize(xcRegion& result) const;
    /// As regularize, with its own cache, but the walk is reduced to one outline: it is cut at
    /// each point that vertexIndex (tolerance kWalkVertexTolerance) finds twice, into loops (the first repeat
    /// found is cut first, the loop after it goes to the end of the list); every loop whose
    /// vertices 0 and 1 have their midpoint inside() another loop is dropped (the last loop
    /// taking its place); then pairs of loops sharing a vertex are joined at the first shared
    /// vertex found, one whole turn of each. When more than one loop is left,
    /// xstd_assert_("cntr/region", 621) reports it and the first loop is the result.
    /// Throws BadParams("invalid contour") as regularize, and EmptyContour when a cut leaves a
    /// loop of one vertex, as when the walk reaches the same point twice in a row (a repeated
    /// vertex on the walked boundary).
    void outerHull(xcRegion& result) const;

  protected:
    /// Throws xcContourDefs::EmptyContour (empty message) when the outline has fewer than 3
    /// vertices. Hides the contour's check (limit 2) for the region's own measures; it is not
    /// virtual, so contour queries reached on a region keep the limit 2.
    void checkEmptyContour() const;
    /// Drops the contour's caches, then clears every region cache flag (the six measures, the
    /// regularised and outer-hull regions) and sets both cached areas to 0. Other cached values
    /// and the two region handles stay until replaced.
    void cleanCacheInfo() override;

    /// Record, version 1: the version byte, the contour's record, then the holes as a vector
    /// record of handles (a hole shared by several regions is stored once). Versions 0 and 1
    /// are read; the caches are dropped after loading. Each object is stored once per pass.
    void dispatchSerialize(xcArchive& ar) override;
    /// Reads or writes this level's fields for `version`. Throws
    /// xcArchive::UnknownVersion("cntr/region", 822) for a version other than 0 and 1 (and for
    /// writing version 0, which is read only). A version-0 record reads its legacy base part
    /// into one shared object (visited once per archive) and no holes; loading version-0
    /// records is therefore not safe from two threads at once.
    void serialize_(xcArchive& ar, unsigned char version) override;

    /// The region's own caches, read-only, for derived classes and tests.
    const xn_regionDetail::RegionCaches& regionCacheState() const { return caches_; }

  private:
    friend class xcRegionSet;
    // Gives the unit tests access to the private splice and walk engine.
    friend struct xcRegionTestAccess;

    static xcPersistent* make();
    static xc_Instantiator sExemplar;

    /// The number of crossings of the outline by a ray from `point` whose direction bisects
    /// the first gap wider than pi / n between the directions to the vertices (or +x), of the
    /// length of the outline's diameter; with `bothWays`, the smaller of the counts of that ray
    /// and the opposite one (the first on a tie). 0 outside the bounding rectangle, 1 within
    /// kOnVertexTolerance of a vertex. Holes take no part. Computed by the core's crossing count from this
    /// region's caches (its enclosing rectangle, edge index, diameter and segment query).
    long insideCount(const xcVector<2>& point, bool bothWays) const;
    /// The walk engine of regularize (`full` false) and outerHull (`full` true), uncached: it
    /// assigns the walk's (or the outer loop's) region to `result`. Throws EmptyContour for
    /// fewer than 3 vertices, and what regularize and outerHull describe.
    void outerHullRegularize(xcRegion& result, bool full) const;
    /// Joins this outline and `other`'s at their first crossing X into one outline, assigned to
    /// `result` (mode keepOutline, no holes): the first non-degenerate edge i of this outline
    /// (edge order) that meets `other`'s outline, end touches included, gives X and the first
    /// edge e of `other` it lies on; the outline is X, vertices i, i+1, ... of this outline (one
    /// turn), X, vertices e, e+1, ... of the other (one turn). The vertices are the end points
    /// of the stored edge segments, so a zero-length edge contributes (0, 0). Throws
    /// BadParams("spliced regions do not intersect") when no edge meets `other`, and
    /// EmptyContour when `other` has fewer than 2 vertices.
    void splice(const xcRegion& other, xcRegion& result) const;

    void applyIntersectionMode(xcContourDefs::IntersectionMode mode);
    void checkHoles(const std::vector<const xcRegion*>& holes);
    void loadVersion0(xcArchive& ar);

    std::vector<xcPtrHandle_const<xcRegion>> holes_;
    mutable xn_regionDetail::RegionCaches caches_;
};

#endif
