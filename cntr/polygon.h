#ifndef CNTR_POLYGON_H
#define CNTR_POLYGON_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <cntr/area_moments.h>
#include <cntr/export.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <foundation/geometry.h>
#include <foundation/vector.h>

namespace cntr {

namespace core {
class EdgeIndex;
class PointLocator;
}

/// A closed ring of vertices: the last vertex joins the first. Edge k of a ring of n vertices
/// runs from vertex k to vertex (k + 1) mod n.
using Ring = std::vector<xcVector<2>>;

/// What makes a polygon or multipolygon invalid (see Polygon::validity for the rules).
enum class ValidityProblem {
    none = 0,
    /// A ring has fewer than 3 distinct vertices.
    tooFewVertices,
    /// A ring's vertices all lie on one line, so it encloses no area.
    zeroArea,
    /// Two edges of one ring cross at a point interior to both.
    selfCrossing,
    /// Two edges of one ring share a segment of positive length.
    selfOverlap,
    /// Edges of two different rings cross at a point interior to both.
    ringsCross,
    /// Edges of two different rings share a segment of positive length.
    ringsOverlap,
    /// A hole does not lie inside its exterior.
    holeOutside,
    /// A hole lies inside another hole of the same polygon.
    holesNested,
    /// The interiors of two members of a multipolygon overlap.
    membersOverlap
};

/// Where a point lies relative to the area a polygon or multipolygon fills.
enum class Location { outside = 0, boundary = 1, inside = 2 };

/// The first violation of the validity rules, or the report that there is none.
struct Validity {
    /// Whether every rule holds (problem is then none).
    bool valid = true;
    ValidityProblem problem = ValidityProblem::none;
    /// What is wrong and where, in words; empty when valid.
    std::wstring message;
    /// A point of the violation: the crossing point (rounded) or the first common point of an
    /// overlap, the first vertex of a degenerate ring, the vertex of a hole or member taken to
    /// decide its location; (0, 0) when valid.
    xcVector<2> location;
    /// Where: the member (0 for a polygon), its ring (0 the exterior, h + 1 hole h) and edge (or
    /// vertex) index, and for problems between two rings the second ring's; -1 where not
    /// applicable.
    long member = -1;
    long ring = -1;
    long edge = -1;
    long otherMember = -1;
    long otherRing = -1;
    long otherEdge = -1;
};

/// A polygon: an exterior ring and hole rings, each in any orientation. Rings that touch and
/// rings that cross themselves or each other are legal to construct; validity() says whether the
/// rules hold. Immutable after construction: copies share one storage (copying costs a reference
/// count) and any number of threads may use one polygon and its copies at once.
///
/// Coordinates must be finite: the constructor refuses NaN and infinite coordinates, so every
/// query can use exact predicates.
class CNTR_API Polygon {
  public:
    /// The empty polygon: an exterior without vertices and no holes (invalid: tooFewVertices).
    Polygon();
    /// The polygon of `exterior` and `holes` (in order). A ring whose last vertex equals its
    /// first (exactly) loses that last vertex; no other vertex is dropped. Throws
    /// xcContourDefs::BadParams ("polygon ring R vertex V has a non-finite coordinate", R being
    /// 0 for the exterior and h + 1 for hole h, V the index as given) for a NaN or infinite
    /// coordinate.
    explicit Polygon(Ring exterior, std::vector<Ring> holes = {});

    /// The exterior ring.
    const Ring& exterior() const;
    /// The hole rings, in order.
    const std::vector<Ring>& holes() const;
    /// The number of rings: 1 + the number of holes.
    std::size_t ringCount() const;
    /// Ring r: 0 the exterior, h + 1 hole h. Throws BadParams ("polygon has no ring R") when
    /// r >= ringCount().
    const Ring& ring(std::size_t r) const;
    /// The number of vertices of all rings.
    std::size_t vertexCount() const;
    /// The smallest axis-aligned rectangle holding every vertex of every ring; the default
    /// (empty, at (0, 0)) rectangle without vertices. Computed at construction.
    xcRect bounds() const;
    /// The signed area of ring r by the shoelace formula, positive for a counter-clockwise ring
    /// with the y axis up, in floating point (rounded). Throws BadParams as ring(r).
    double signedArea(std::size_t r) const;

    /// The edge index of ring r (a hierarchy of boxes over its edges), or null for rings too
    /// small or too far out for one (see cntr::core::EdgeIndex::build). The indices of all rings
    /// are built together on the first call, once, even when several threads ask at once; copies
    /// share them. Throws BadParams as ring(r).
    const core::EdgeIndex* edgeIndex(std::size_t r) const;

    /// The first violation of these rules, each decided with exact predicates (no tolerance;
    /// exact within the range xfOrientation states, which rules out mixing subnormal
    /// coordinates with ordinary ones):
    ///  1. every ring has at least 3 distinct vertices (tooFewVertices) and they do not all lie
    ///     on one line (zeroArea); rings are checked in order, the exterior first;
    ///  2. no two edges cross at a point interior to both, and no two edges share a segment of
    ///     positive length (selfCrossing, selfOverlap within a ring; ringsCross, ringsOverlap
    ///     between rings); edges may touch at points, an end of one lying on the other. Of all
    ///     violating pairs, the one whose first edge comes first in (ring, edge) order is
    ///     reported, then by the second edge; consecutive repeated vertices form zero-length
    ///     edges, which take no part. When no such pair exists, two passes of rings through one
    ///     common point must not cross there (one arriving and leaving on either side of the
    ///     other, as at a vertex shared by two strands that change sides): selfCrossing or
    ///     ringsCross at that point, the passes named by the edges that arrive there (the edge
    ///     holding the point when it lies inside an edge), the smallest pair first;
    ///  3. every hole lies inside the exterior (holeOutside), in hole order;
    ///  4. no hole lies inside another (holesNested), pairs (i, j), i < j, in order.
    /// Rules 3 and 4 locate a ring by its first vertex that is not on the other ring (or, when
    /// every vertex is, by the midpoint of its first edge not on it): once rule 2 holds, that
    /// point decides where the whole ring lies.
    /// Computed once on the first call (thread-safe) and shared by copies.
    const Validity& validity() const;
    /// validity().valid.
    bool isValid() const;

    /// Where `point` lies: boundary when it lies on an edge of a ring (exactly, or within
    /// `boundaryDistance` of one when that is positive), else inside when it lies inside an odd
    /// number of rings (the even-odd rule: for a valid polygon, inside the exterior and outside
    /// every hole), else outside. Exact when boundaryDistance is 0: only comparisons and exact
    /// orientation signs decide. The distance test is in floating point (each edge's distance by
    /// its clamped projection).
    ///
    /// The first call builds the point locator, once, even when several threads ask at once;
    /// copies share it. It lists the edges by horizontal bands and holds at most about 17 bytes
    /// per edge (at most about four band entries per edge and one band per four edges; the rings
    /// are not copied). Building it costs two passes over the edges; a query reads the edges of one
    /// band: a few on outlines of blobs, more where many edges share a height (spiky outlines),
    /// where the cost grows with the number of edges crossing the point's height.
    /// Throws BadParams ("point has a non-finite coordinate", "boundary distance must be finite
    /// and not negative") for such arguments.
    Location locate(const xcVector<2>& point, double boundaryDistance = 0.0) const;
    /// locate of every point, in order (the arguments are checked first, then none is
    /// located when one is refused).
    std::vector<Location> locate(const std::vector<xcVector<2>>& points,
                                 double boundaryDistance = 0.0) const;
    /// The prepared locator that locate uses (built on the first call, as there).
    const core::PointLocator& locator() const;

    /// The moments of the area up to order 3 (see AreaMoments): those of the exterior minus
    /// those of the holes, each ring taken with the sign that makes its own area positive, so
    /// the rings' orientations do not matter. Every ring is integrated about the centre of
    /// bounds(), which keeps the digits of small shapes far from the origin. Linear in the
    /// vertices; computed on every call (nothing is cached). Never throws; moments beyond the
    /// range of a double are infinite.
    AreaMoments moments() const;

    /// Whether the rings are equal vertex for vertex (exact comparison).
    bool operator==(const Polygon& other) const;
    bool operator!=(const Polygon& other) const { return !(*this == other); }

    /// The polygon of a contour's vertices taken as a closed ring, whether the contour is closed
    /// or open (a repeated closing vertex is dropped). Throws BadParams for a non-finite
    /// coordinate, as the constructor.
    static Polygon fromContour(const xcContour& contour);
    /// A region has holes that a polygon of its outline would lose: MultiPolygon::fromRegion
    /// converts it.
    static Polygon fromContour(const xcRegion& region) = delete;

  private:
    struct Data;
    std::shared_ptr<const Data> data_;
};

/// A list of polygons, the members; immutable, cheap to copy and safe to share between threads,
/// as Polygon.
class CNTR_API MultiPolygon {
  public:
    /// The multipolygon without members (valid).
    MultiPolygon();
    explicit MultiPolygon(std::vector<Polygon> members);

    /// The members, in order.
    const std::vector<Polygon>& members() const;
    std::size_t memberCount() const;
    /// The number of vertices of all rings of all members.
    std::size_t vertexCount() const;
    /// The union of the members' bounds (the default rectangle without members).
    xcRect bounds() const;

    /// The first violation of the polygon rules (see Polygon::validity) over all members, or of
    /// the members' separation: rule 1 for every ring of every member in (member, ring) order;
    /// rule 2 over the edges of all members together, in (member, ring, edge) order (rings of
    /// different members are different rings: ringsCross, ringsOverlap); rules 3 and 4 member
    /// by member; then 5. no two members have overlapping interiors (membersOverlap), pairs
    /// (i, j), i < j, in order: a member may lie in another's hole and members may touch at
    /// points. Rule 5 locates a member by its exterior's first vertex not on the other member's
    /// rings, as rules 3 and 4 do. Computed once (thread-safe) and shared by copies.
    const Validity& validity() const;
    bool isValid() const;

    /// Where `point` lies relative to the members' rings together, as Polygon::locate (for a
    /// valid multipolygon: inside when inside a member's exterior and outside its holes). One
    /// locator over every ring of every member, built on the first call and shared by copies.
    Location locate(const xcVector<2>& point, double boundaryDistance = 0.0) const;
    std::vector<Location> locate(const std::vector<xcVector<2>>& points,
                                 double boundaryDistance = 0.0) const;
    /// The prepared locator that locate uses (built on the first call, as there).
    const core::PointLocator& locator() const;

    /// The sum of the members' moments (see Polygon::moments), every ring integrated about the
    /// centre of bounds(); for a valid multipolygon, the moments of the area it fills.
    AreaMoments moments() const;

    bool operator==(const MultiPolygon& other) const;
    bool operator!=(const MultiPolygon& other) const { return !(*this == other); }

    /// The region's outline and holes as the first member; each hole's own holes (islands)
    /// become members of their own, with their own holes, and so on down, in depth-first order
    /// of the holes. A region reached twice in one chain is not followed again. Throws BadParams
    /// for a non-finite coordinate.
    static MultiPolygon fromRegion(const xcRegion& region);
    /// The members fromRegion gives for each region of the set, in order.
    static MultiPolygon fromRegionSet(const xcRegionSet& set);

  private:
    struct Data;
    std::shared_ptr<const Data> data_;
};

/// A hole that a described region refused, with the polygon (member) and hole it came from.
struct RefusedHole {
    std::size_t member = 0;
    std::size_t hole = 0;
    Ring ring;
};

/// A region made from a polygon, and the holes the region refused.
struct RegionConversion {
    xcRegion region;
    std::vector<RefusedHole> refused;
};

/// A region set made from a multipolygon, and the holes its regions refused.
struct RegionSetConversion {
    xcRegionSet set;
    std::vector<RefusedHole> refused;
};

/// The region of the exterior (label 0, IntersectionMode keepOutline) with the holes it accepts
/// as hole regions, in order. xcRegion refuses a hole whose outline crosses its outline (and any
/// hole when the outline has fewer than 2 vertices); such holes are not dropped silently but
/// returned in `refused` (member 0). Never throws for a polygon.
CNTR_API RegionConversion toRegion(const Polygon& polygon);
/// One region per member, as toRegion, in order; refused holes carry their member's index.
CNTR_API RegionSetConversion toRegionSet(const MultiPolygon& multiPolygon);

}  // namespace cntr

#endif
