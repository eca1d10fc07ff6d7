#ifndef CNTR_CONTOUR_H
#define CNTR_CONTOUR_H

#include <memory>
#include <optional>
#include <vector>

#include <cntr/contourdefs.h>
#include <cntr/contourmemo.h>
#include <cntr/export.h>
#include <cntr/tolerances.h>  // the tolerances the comments name
#include <foundation/angle.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/matrix.h>
#include <foundation/persistent.h>
#include <foundation/tablet.h>
#include <foundation/vector.h>

class xcArchive;
class xcRegion;
struct xcContourTestAccess;

namespace cntr::core {
class EdgeIndex;
struct SegmentHit;
struct SegmentQuery;
}

// The contour holds its convex hull by a counted handle to a region, a class that derives from
// the contour. The handle's count operations need the complete region class, so they are
// specialised here and defined with the region.
namespace xn_handle_detail {
template <>
CNTR_API void acquire<xcRegion>(const xcRegion* p);
template <>
CNTR_API void drop<xcRegion>(const xcRegion* p);
}  // namespace xn_handle_detail

namespace xn_contourDetail {

/// The ellipse fitted to a contour's vertices and the fit's residual.
struct EllipseFit {
    xcEllipse ellipse;
    double residual = 0.0;
};

/// Every cached result of a contour. Copies carry them all (the memos deep-copied, the hull
/// region and the immutable edge index shared); reset() is the contour's cleanCacheInfo().
struct ContourCaches {
    Cached<xcVector<2>> meanPosition;
    Cached<double> length;
    Cached<xcPtrHandle_const<xcRegion>> convexHull;
    OwnedCache<RectMemo> rectMemo;
    /// One slot per DiameterMode.
    Cached<xcCircle> encloseCircle[2];
    OwnedCache<ExtremalVertexMemo> extremalVertexMemo;
    Cached<EllipseFit> fittedEllipse;
    Cached<bool> selfIntersecting;
    /// The edge cache: segments, lines, rectangles and validity flags, built together.
    Cached<EdgeTable> edges;
    Cached<double> medianFeatureSize;
    OwnedCache<VertexGridCache> vertexGrids;
    /// The edge index (under 12 bytes per edge), valid once building it was tried (it stays
    /// null for contours that do not get one).
    Cached<std::shared_ptr<const cntr::core::EdgeIndex>> edgeIndex;

    /// Drops every cached result: the memos, the vertex grids and the edge index are deleted;
    /// every flag is cleared; the length, the median and the fit residual are set to 0; the
    /// mean position, the hull handle, the circles, the fitted ellipse, the self-intersection
    /// value and the edge vectors stay until replaced.
    void reset();
};

}  // namespace xn_contourDetail

/// An ordered list of 2-D vertices, open (a polyline from the first to the last vertex) or
/// closed (the last vertex joins the first), with a user label.
///
/// Edges. A closed contour of n vertices has n edges: edge 0 is the closing edge from vertex n-1
/// to vertex 0 and edge k joins vertex k-1 to vertex k. An open contour has n-1 edges, edge k
/// joining vertex k to vertex k+1. Lengths, drawing and the segment queries walk edges in this
/// order.
///
/// Caches. Every derived result is computed on first demand, also by const members, and kept
/// until the geometry changes: any change of the vertices or of the closed flag ends in
/// cleanCacheInfo(), which drops them all. Changing the label or the cache limit keeps them.
/// Results keyed by an argument (enclosing rectangles by transform, extremal vertices by
/// direction) are kept in memos of at most cachedVectorSize() + 1 entries; beyond that a new
/// result replaces an entry drawn by a per-thread random generator seeded with 1.
///
/// Measurements need at least 2 vertices and throw xcContourDefs::EmptyContour otherwise
/// (each member says whether it checks). Non-finite coordinates, repeated vertices and
/// zero-length edges never crash or hang; the results are what the documented arithmetic gives.
///
/// Not thread-safe: even const queries write the caches. Separate contours may be used from
/// separate threads.
class CNTR_API xcContour : public virtual xcPersistent, public virtual xcRepBase {
public:
    /// An empty closed contour with label 0 (what the archive's factory creates).
    xcContour();
    /// A contour of a copy of `points`, closed or open, with `label`; cachedVectorSize() is 3.
    xcContour(const std::vector<xcVector<2>>& points, bool closed, unsigned long label = 0);
    /// A contour of all the polygon's vertices in order (a repeated first vertex at the end is
    /// kept as a vertex). It is closed exactly when the first and the last vertex are equal
    /// within kExactTolerance in each coordinate (an empty polygon gives an open contour).
    explicit xcContour(const xcPolygon& polygon, unsigned long label = 0);
    /// A copy of `other`, its valid caches included (see operator=).
    xcContour(const xcContour& other);
    /// Copies label, closed flag, vertices, cachedVectorSize and every cache: the argument-keyed
    /// memos and vertex grids are deep-copied, the convex hull region is shared. Does not count
    /// as a change (mutating() is not called); self-assignment does nothing.
    xcContour& operator=(const xcContour& other);
    ~xcContour() override;

    // ---- model ----

    /// The vertices.
    const std::vector<xcVector<2>>& points() const { return points_; }
    /// Replaces the vertices with a copy of `v`: drops the caches, stores the vertices, then
    /// calls makeDataConsistentWithPoints().
    virtual void points(const std::vector<xcVector<2>>& v);
    /// Whether the contour has the closing edge from its last vertex to its first.
    virtual bool isClosed() const;
    /// Opens or closes the contour and drops the caches.
    virtual void isClosed(bool c);

    /// Draws every edge, in edge order, as one tablet.drawLineSeg(start, end, color, layer)
    /// call. `mode` is accepted and ignored. Degenerate edges are drawn as zero-length segments;
    /// there is no emptiness check and no cache is read or filled. So a closed contour of n
    /// vertices draws n segments (one zero-length segment for a single vertex), an open one n-1.
    virtual void draw(xcUITablet& tablet, xcContourDefs::DrawMode mode, const xcColor& color,
                      const xcUITablet::Layers& layer) const;

    /// The user label; carried through copies, map and archives, not part of equality. Labels
    /// above 2^32 - 1 cannot be stored in an archive (storing throws, it never truncates).
    unsigned long label() const { return label_; }
    /// Sets the label; the caches stay valid.
    void label(unsigned long l);

    /// The entry limit of the argument-keyed memos (3 after construction); a memo holds at most
    /// this many entries plus one.
    long cachedVectorSize() const { return cachedVectorSize_; }
    /// Sets the memo limit; the memos are neither cleared nor trimmed. Throws
    /// xcContourDefs::BadParams (empty message) for a negative `n`, keeping the old limit.
    void cachedVectorSize(long n);

    /// The vertices as a polygon with fill mode 0; a closed contour repeats its first vertex at
    /// the end (n + 1 vertices), an open one gives its n vertices.
    xcPolygon polygon();

    /// Sets `out` to a new contour of the transformed vertices with this contour's closedness and
    /// label; `out`'s caches are empty. `out` may be this contour.
    void map(const xcXform<2>& xform, xcContour& out) const;

    /// True when both are closed or both open (isClosed()), the vertices are equal one by one
    /// (exactly; a NaN vertex never compares equal) and the cachedVectorSize values are equal.
    /// Labels and caches take no part.
    bool operator==(const xcContour& other) const;
    bool operator!=(const xcContour& other) const { return !(*this == other); }

    // ---- extent ----

    /// The sum of the edge lengths; 0 for a contour without vertices (no check, not cached then).
    /// Cached. Up to 2^19 edges the lengths are added in four interleaved partial sums, which
    /// agrees with the sum in edge order to within kReorderedAreaTolerance relative (usually to the last bit or
    /// two); longer contours add them in edge order.
    double length() const;
    /// The length-weighted mean of the edge midpoints: the centre of mass of the polyline taken
    /// as a uniform wire (not the mean of the vertices). When every edge has length 0 the result
    /// is the division by zero's (NaN, NaN). Cached. Throws EmptyContour.
    xcVector<2> meanPosition();
    /// The index of the vertex furthest in direction `angle`: the first vertex with the highest
    /// score, the score being x, -x, y or -y when (cos, sin) of the angle is within kExactTolerance of an
    /// axis direction, else the dot product with the direction. When no vertex scores above the
    /// lowest double (all scores NaN, for example), the result is -1. Memoised by angle.
    /// Throws EmptyContour.
    long extremalVertexIndex(const xcRadian& angle) const;
    /// The vertex at extremalVertexIndex(angle). Throws EmptyContour, and
    /// xcContourDefs::BadParams when there is no such vertex (the index is -1) rather than read
    /// outside the vertices.
    xcVector<2> extremalVertexPosition(const xcRadian& angle);
    /// Twice the radius of encloseCircle(mode). No emptiness check. Throws BadParams
    /// ("diameterMode is not one of the valid enums") for an invalid mode.
    double diameter(xcContourDefs::DiameterMode mode) const;
    /// The axis-aligned bounding box of the vertices mapped through `xform` (the raw vertices
    /// when `xform` is the identity within kExactTolerance). Memoised by transform; the memo key ignores
    /// matrix element (1,1) on purpose, so a transform that differs from a memoised one only
    /// there returns that one's rectangle. The memo is shared with the library's internal
    /// callers (the segment queries ask for the identity). Throws EmptyContour.
    xcRect encloseRect(const xcXform<2>& xform);
    /// A circle describing the spread of the vertices (not a minimal enclosing circle):
    /// furthestVertexPair gives the circle through the first pair of vertices at the largest
    /// distance (quadratic in the vertex count); fromFirstVertex the circle centred on vertex 0
    /// through the vertex furthest from it. The closed flag plays no part. No emptiness check:
    /// with no two distinct vertices (or, in mode fromFirstVertex, no vertex at all) the result
    /// is the default circle. Cached per mode. Throws BadParams ("diameterMode is not one of
    /// the valid enums") for any other mode, changing nothing.
    xcCircle encloseCircle(xcContourDefs::DiameterMode mode);

    // ---- segments and intersections ----

    /// The points where edges cross `seg`, ordered along `seg` from p1 by the key
    /// (P - p1) . (p2 - p1) with a plain exchange sort, which is not stable: points with equal
    /// keys end in the order that sort leaves them. Degenerate edges and edges parallel to
    /// `seg` (unit directions' cross product within 1e-12, the foundation's parallel test) are never reported. With `includeEndTouches` false an edge that
    /// passes within kCoincidentTolerance of either end of `seg` is ignored. A crossing exactly through a vertex
    /// is reported once per edge. Throws EmptyContour. On contours of at least a few dozen
    /// edges with moderate finite coordinates the candidate edges come from the edge index
    /// (built by the first query that needs it, cached until the next change, under 12 bytes per
    /// edge), with the same points in the same order
    /// as the edge-by-edge loop.
    std::vector<xcVector<2>> intersections(const xcLineSeg& seg, bool includeEndTouches);
    /// The points where the edges of `other` (in edge order, degenerate ones included) cross
    /// this contour, each edge's points in order along it, end touches included; neither sorted
    /// across edges nor de-duplicated. Throws EmptyContour when this contour has fewer than 2
    /// vertices.
    std::vector<xcVector<2>> intersections(const xcContour& other);
    /// Whether two non-adjacent edges meet: a crossing, or a vertex lying on a non-adjacent
    /// edge. Collinear overlapping edges are not detected. False without vertices (no check) and
    /// for a single vertex, whatever its coordinates. Cached. The result is that of querying
    /// every edge with the segment query (ends excluded); on contours of finite coordinates the
    /// pairs of edges whose rectangles overlap are found by a sweep over runs of edges along which
    /// x strictly rises or falls, sorted by their left ends and walked together in blocks of 16
    /// edges (n log n plus the overlapping pairs), instead of one query per edge.
    bool isSelfIntersecting() const;
    /// The indices of the vertices at a distance below `tolerance` from `point`, ordered by grid
    /// cell (column, then row) and then by index. One lookup grid of cells of side `tolerance`
    /// is built and kept per distinct tolerance (a NaN tolerance is one tolerance) until the
    /// next change. Throws EmptyContour.
    std::vector<int> vertexIndex(const xcVector<2>& point, double tolerance);

    // ---- nearest points ----

    /// The point of the contour closest to `point`: with `vertexOnly` the closest vertex;
    /// otherwise the closest point of the edges, the first edge in edge order winning ties.
    /// Nothing but the edge index is cached: where it exists the search visits only the edges
    /// whose box may hold a point as close, with the same result. Throws EmptyContour.
    xcVector<2> closestPoint(const xcVector<2>& point, bool vertexOnly);
    /// The index of the vertex closest to `point`, the lowest index winning ties. Throws
    /// EmptyContour.
    long closestVertexIndex(const xcVector<2>& point) const;
    /// The distance from `point` to closestPoint(point, vertexOnly). Throws EmptyContour.
    double distToPoint(const xcVector<2>& point, bool vertexOnly) const;

    // ---- convex hull and fitted ellipse ----

    /// Sets `hull` to the region of the convex hull of the vertices, as the foundation's
    /// xfConvexHull orders them (counter-clockwise, starting at the smallest x, then y; collinear
    /// and repeated points dropped), built with IntersectionMode keepOutline. The closed flag
    /// plays no part. The hull region is cached and shared by copies of this contour. Throws
    /// EmptyContour; the foundation's errors (xcMathError::NotFinite for a NaN or infinite
    /// coordinate) pass through and leave the cache invalid.
    void convexHull(xcRegion& hull) const;
    /// Sets `ellipse` and `rms` to xf_FitEllipse of the vertices: the ellipse fit, or the circle
    /// fallback, or the default ellipse with rms -1.0 when neither fit works. The closed flag
    /// plays no part. Cached. Throws EmptyContour.
    void fitEllipse(xcEllipse& ellipse, double& rms) const;

protected:
    /// Record, version 1: the version byte, the xcPersistent record, label (unsigned 32-bit),
    /// closed flag, the vertex vector record and cachedVectorSize (signed 32-bit). Versions 0
    /// and 1 are read. Each object is stored once per archive pass.
    void dispatchSerialize(xcArchive& ar) override;
    /// Reads or writes this level's fields for `version` and, when loading, drops the caches.
    /// Throws xcArchive::UnknownVersion("cntr/contour", 900) for a version other than 0 and 1
    /// (and for writing version 0, which is read only), and ("cntr/contour", 890) for a legacy
    /// base record whose version byte is not 0. The legacy base part of version 0 is read into
    /// one shared object, visited once per archive; loading version-0 records is therefore not
    /// safe from two threads at once.
    virtual void serialize_(xcArchive& ar, unsigned char version);
    /// Called after the vertices were replaced; drops the caches. Derived classes that carry
    /// one datum per vertex override it to rebuild that data.
    virtual void makeDataConsistentWithPoints();
    /// Called after per-vertex data changed; drops the caches. Derived classes override it to
    /// rebuild the vertices from their data.
    virtual void makePointsConsistentWithData();
    /// Drops every cached result: mutating(), then ContourCaches::reset(): delete the rectangle
    /// memo, the extremal-vertex memo, the vertex grids and the edge index; clear the mean
    /// position, length (value 0) and hull flags (the hull handle is kept until replaced); clear
    /// both enclosing-circle flags (the circles are kept); clear the ellipse flag (residual 0);
    /// clear the self-intersection and edge-table flags (the edge vectors are kept until
    /// rebuilt); clear the median flag (value 0).
    virtual void cleanCacheInfo();

    /// Replaces the vertices after dropping the caches, without calling
    /// makeDataConsistentWithPoints() (for derived classes rebuilding vertices from their data).
    void setPoints(const std::vector<xcVector<2>>& v);
    /// Throws xcContourDefs::EmptyContour (empty message) when there are fewer than 2 vertices.
    /// Not virtual: a derived class's own check hides this one only for its own callers.
    void checkEmptyContour() const;

    /// Builds the edge segments, lines, rectangles and validity flags unless they are valid.
    /// An edge whose ends are equal within kExactTolerance is degenerate: it keeps its place with a
    /// default segment, line and rectangle and a false validity flag.
    void computeLineSegs() const;
    /// One segment per edge, in edge order (built first when needed).
    const std::vector<xcLineSeg>& lineSegs() const;
    /// Whether each edge is non-degenerate, in edge order (built first when needed).
    const std::vector<bool>& validLine() const;
    /// The segment query of the public intersections(seg, includeEndTouches); `edgeIndices`
    /// receives the edge index of each point, in the same order. Throws EmptyContour.
    std::vector<xcVector<2>> intersections(const xcLineSeg& seg, std::vector<int>& edgeIndices,
                                           bool includeEndTouches);
    /// The number of points intersections(seg, includeEndTouches) gives, without ordering them.
    /// Throws EmptyContour.
    std::size_t hitCount(const xcLineSeg& seg, bool includeEndTouches) const;
    /// The first point of intersections(seg, edges, false) and its edge, without finding and
    /// ordering the others: false when there is none. Where the edge index serves, it is searched
    /// nearest box first and boxes that cannot hold a point before the best one found are passed
    /// over. Throws EmptyContour.
    bool firstHitAlong(const xcLineSeg& seg, xcVector<2>& point, int& edge) const;
    /// The edge index, built on first demand (see intersections(seg, includeEndTouches)); null
    /// for contours that do not get one. Immutable: copies of the contour share it.
    const cntr::core::EdgeIndex* edgeIndex() const;
    /// The median edge length: the element at index count / 2 of the ascending edge lengths
    /// (the upper middle one for an even count), degenerate edges counting 0. NaN lengths sort
    /// after every number. Cached. Throws EmptyContour.
    double medianFeatureSize() const;

    /// The caches themselves, read-only, for derived classes that extend them and for tests.
    const xn_contourDetail::ContourCaches& cacheState() const { return caches_; }

private:
    friend struct xcContourTestAccess;

    static xcPersistent* make();
    static xc_Instantiator sExemplar;

    xcRect rectOf(const xcXform<2>& xform) const;
    // The circle of a mode, refusing any value outside the enumeration. The mode is taken by
    // reference and read as its underlying integer, so an out-of-range value is never loaded as
    // the enumeration type.
    xcCircle circleOf(const xcContourDefs::DiameterMode& mode) const;
    std::vector<xcVector<2>> hitsAlong(const xcLineSeg& seg, std::vector<int>& edgeIndices,
                                       bool includeEndTouches) const;
    // The hits of the segment query, from the index where it serves, else from every edge of the
    // edge cache (in edge order).
    void collectHits(const cntr::core::SegmentQuery& query,
                     std::vector<cntr::core::SegmentHit>& hits) const;
    const cntr::core::EdgeIndex* indexFor(const xcLineSeg& seg) const;
    xcVector<2> nearestPoint(const xcVector<2>& point, bool vertexOnly) const;
    void serializeVersion1(xcArchive& ar);
    void loadVersion0(xcArchive& ar);

    unsigned long label_ = 0;
    bool closed_ = true;
    std::vector<xcVector<2>> points_;
    long cachedVectorSize_ = 3;
    mutable xn_contourDetail::ContourCaches caches_;
};

#endif
