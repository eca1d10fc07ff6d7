// The validity rules of polygons and multipolygons, decided with exact predicates.
#include <algorithm>
#include <cstddef>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <cntr/core/box.h>
#include <cntr/core/edge_sweep.h>
#include <cntr/core/point_crossings.h>
#include <cntr/polygon.h>
#include <cntr/polygon_detail.h>
#include <foundation/predicates.h>

namespace cntr::detail {
namespace {

std::wstring text(const xcVector<2>& p) {
    std::wostringstream out;
    out.precision(17);
    out << L"(" << p.x() << L", " << p.y() << L")";
    return out.str();
}

std::wstring ringName(std::size_t member, std::size_t ring, bool named) {
    std::wstring name = named ? L"member " + std::to_wstring(member) + L" " : L"";
    return name + (ring == 0 ? L"exterior" : L"hole " + std::to_wstring(ring - 1));
}

Validity violation(ValidityProblem problem, const xcVector<2>& location, std::wstring message) {
    Validity v;
    v.valid = false;
    v.problem = problem;
    v.location = location;
    v.message = std::move(message);
    return v;
}

void place(Validity& v, std::size_t member, std::size_t ring, long edge) {
    v.member = static_cast<long>(member);
    v.ring = static_cast<long>(ring);
    v.edge = edge;
}

void placeOther(Validity& v, std::size_t member, std::size_t ring, long edge) {
    v.otherMember = static_cast<long>(member);
    v.otherRing = static_cast<long>(ring);
    v.otherEdge = edge;
}

bool lexLess(const xcVector<2>& p, const xcVector<2>& q) {
    return p.x() < q.x() || (p.x() == q.x() && p.y() < q.y());
}

std::size_t distinctVertexCount(Ring points) {
    std::sort(points.begin(), points.end(), lexLess);
    return static_cast<std::size_t>(std::unique(points.begin(), points.end()) - points.begin());
}

// Whether every vertex lies on the line through the first two distinct ones.
bool allCollinear(const Ring& points) {
    const auto second = std::find_if(points.begin(), points.end(),
                                     [&](const xcVector<2>& p) { return !(p == points[0]); });
    if (second == points.end())
        return true;
    return std::all_of(points.begin(), points.end(), [&](const xcVector<2>& p) {
        return xfOrientation(points[0], *second, p) == 0;
    });
}

// Rule 1 for one ring.
std::optional<Validity> ringShape(const Ring& points, std::size_t member, std::size_t ring,
                                  bool named) {
    const xcVector<2> first = points.empty() ? xcVector<2>() : points[0];
    std::optional<Validity> v;
    if (distinctVertexCount(points) < 3)
        v = violation(ValidityProblem::tooFewVertices, first,
                      ringName(member, ring, named) + L" has fewer than 3 distinct vertices");
    else if (allCollinear(points))
        v = violation(ValidityProblem::zeroArea, first,
                      ringName(member, ring, named) + L" has all its vertices on one line");
    if (v)
        place(*v, member, ring, points.empty() ? -1 : 0);
    return v;
}

std::vector<core::SweptEdge> edgesOf(const std::vector<Polygon>& members) {
    std::vector<core::SweptEdge> edges;
    for (std::size_t m = 0; m < members.size(); ++m)
        for (std::size_t r = 0; r < members[m].ringCount(); ++r) {
            const Ring& points = members[m].ring(r);
            for (std::size_t k = 0; k < points.size(); ++k)
                edges.push_back({points[k], points[k + 1 == points.size() ? 0 : k + 1], m, r, k});
        }
    return edges;
}

Validity pairViolation(const core::SweptEdge& a, const core::SweptEdge& b, bool crossing,
                       const xcVector<2>& point, const std::wstring& what, bool named) {
    const bool sameRing = a.member == b.member && a.ring == b.ring;
    const ValidityProblem problem =
        sameRing ? (crossing ? ValidityProblem::selfCrossing : ValidityProblem::selfOverlap)
                 : (crossing ? ValidityProblem::ringsCross : ValidityProblem::ringsOverlap);
    Validity v = violation(problem, point,
                           ringName(a.member, a.ring, named) + L" edge " +
                               std::to_wstring(a.edge) + L" and " +
                               ringName(b.member, b.ring, named) + L" edge " +
                               std::to_wstring(b.edge) + what + text(point));
    place(v, a.member, a.ring, static_cast<long>(a.edge));
    placeOther(v, b.member, b.ring, static_cast<long>(b.edge));
    return v;
}

// Rule 2 over the edges of every member: edges that cross or overlap, then passes that cross at
// a common point.
std::optional<Validity> edgeConflict(const std::vector<Polygon>& members, bool named) {
    const std::vector<core::SweptEdge> edges = edgesOf(members);
    std::vector<core::EdgeTouch> touches;
    if (const std::optional<core::EdgeConflict> c = core::firstEdgeConflict(edges, &touches)) {
        const bool crossing = c->contact.kind == xcSegmentContact::crossing;
        return pairViolation(edges[c->first], edges[c->second], crossing, c->contact.point,
                             crossing ? L" cross at " : L" overlap from ", named);
    }
    if (const std::optional<core::PointCrossing> c =
            core::firstPointCrossing(edges, std::move(touches)))
        return pairViolation(edges[c->first], edges[c->second], true, c->point,
                             L" cross through ", named);
    return std::nullopt;
}

// A point of `points` that lies on none of `others`, with the vertex index it comes from: the
// first such vertex, else the midpoint of the first edge whose midpoint is such a point. Once no
// edges cross or overlap, where that point lies is where the whole ring lies.
struct Probe {
    xcVector<2> point;
    long vertex;
};

bool onNone(const xcVector<2>& p, const std::vector<const Ring*>& others) {
    return std::none_of(others.begin(), others.end(), [&](const Ring* other) {
        return xfLocateInRing(p, *other) == xcRingLocation::boundary;
    });
}

std::optional<Probe> probeOf(const Ring& points, const std::vector<const Ring*>& others) {
    for (std::size_t i = 0; i < points.size(); ++i)
        if (onNone(points[i], others))
            return Probe{points[i], static_cast<long>(i)};
    for (std::size_t i = 0; i < points.size(); ++i) {
        const xcVector<2>& next = points[i + 1 == points.size() ? 0 : i + 1];
        const xcVector<2> mid{0.5 * (points[i].x() + next.x()), 0.5 * (points[i].y() + next.y())};
        if (onNone(mid, others))
            return Probe{mid, static_cast<long>(i)};
    }
    return std::nullopt;  // the ring runs along the others everywhere; rule 2 reports that
}

bool inside(const xcVector<2>& p, const Ring& ring) {
    return xfLocateInRing(p, ring) == xcRingLocation::inside;
}

// Rule 3 for one polygon.
std::optional<Validity> holeOutside(const Polygon& polygon, std::size_t member, bool named) {
    for (std::size_t h = 0; h < polygon.holes().size(); ++h) {
        const std::optional<Probe> probe = probeOf(polygon.holes()[h], {&polygon.exterior()});
        if (!probe || inside(probe->point, polygon.exterior()))
            continue;
        Validity v = violation(ValidityProblem::holeOutside, probe->point,
                               ringName(member, h + 1, named) + L" lies outside the exterior at " +
                                   text(probe->point));
        place(v, member, h + 1, probe->vertex);
        placeOther(v, member, 0, -1);
        return v;
    }
    return std::nullopt;
}

// Whether ring `inner` lies inside ring `outer`; `probe` receives the deciding point.
bool ringInside(const Ring& inner, const Ring& outer, std::optional<Probe>& probe) {
    probe = probeOf(inner, {&outer});
    return probe && inside(probe->point, outer);
}

// Rule 4 for one polygon. Holes whose boxes are apart cannot nest: only the others are probed.
std::optional<Validity> holesNested(const Polygon& polygon, std::size_t member, bool named) {
    const std::vector<Ring>& holes = polygon.holes();
    std::vector<core::Box> boxes;
    for (const Ring& hole : holes)
        boxes.push_back(core::Box::around(hole.begin(), hole.end()));
    for (std::size_t i = 0; i < holes.size(); ++i)
        for (std::size_t j = i + 1; j < holes.size(); ++j) {
            if (!boxes[i].overlaps(boxes[j]))
                continue;
            std::optional<Probe> probe;
            std::size_t inner = i, outer = j;
            if (!ringInside(holes[i], holes[j], probe)) {
                std::swap(inner, outer);
                if (!ringInside(holes[j], holes[i], probe))
                    continue;
            }
            Validity v = violation(ValidityProblem::holesNested, probe->point,
                                   ringName(member, inner + 1, named) + L" lies inside " +
                                       ringName(member, outer + 1, named) + L" at " +
                                       text(probe->point));
            place(v, member, inner + 1, probe->vertex);
            placeOther(v, member, outer + 1, -1);
            return v;
        }
    return std::nullopt;
}

std::vector<const Ring*> ringsOf(const Polygon& polygon) {
    std::vector<const Ring*> rings;
    for (std::size_t r = 0; r < polygon.ringCount(); ++r)
        rings.push_back(&polygon.ring(r));
    return rings;
}

// Whether member `a`'s exterior has a point in the interior of member `b` (inside b's exterior,
// inside none of its holes).
bool exteriorEnters(const Polygon& a, const Polygon& b, std::optional<Probe>& probe) {
    probe = probeOf(a.exterior(), ringsOf(b));
    if (!probe || !inside(probe->point, b.exterior()))
        return false;
    return std::none_of(b.holes().begin(), b.holes().end(),
                        [&](const Ring& hole) { return inside(probe->point, hole); });
}

bool boundsMeet(const xcRect& a, const xcRect& b) {
    return a.ul().x() <= b.lr().x() && b.ul().x() <= a.lr().x() && a.ul().y() <= b.lr().y() &&
           b.ul().y() <= a.lr().y();
}

// Rule 5.
std::optional<Validity> membersOverlap(const std::vector<Polygon>& members) {
    for (std::size_t i = 0; i < members.size(); ++i)
        for (std::size_t j = i + 1; j < members.size(); ++j) {
            if (!boundsMeet(members[i].bounds(), members[j].bounds()))
                continue;
            std::optional<Probe> probe;
            std::size_t entering = i, entered = j;
            if (!exteriorEnters(members[i], members[j], probe)) {
                std::swap(entering, entered);
                if (!exteriorEnters(members[j], members[i], probe))
                    continue;
            }
            Validity v = violation(ValidityProblem::membersOverlap, probe->point,
                                   L"member " + std::to_wstring(entering) +
                                       L" overlaps the interior of member " +
                                       std::to_wstring(entered) + L" at " + text(probe->point));
            place(v, entering, 0, probe->vertex);
            placeOther(v, entered, 0, -1);
            return v;
        }
    return std::nullopt;
}

std::optional<Validity> firstRingShape(const std::vector<Polygon>& members, bool named) {
    for (std::size_t m = 0; m < members.size(); ++m)
        for (std::size_t r = 0; r < members[m].ringCount(); ++r)
            if (std::optional<Validity> v = ringShape(members[m].ring(r), m, r, named))
                return v;
    return std::nullopt;
}

std::optional<Validity> firstHoleProblem(const std::vector<Polygon>& members, bool named) {
    for (std::size_t m = 0; m < members.size(); ++m) {
        if (std::optional<Validity> v = holeOutside(members[m], m, named))
            return v;
        if (std::optional<Validity> v = holesNested(members[m], m, named))
            return v;
    }
    return std::nullopt;
}

}  // namespace

Validity validityOf(const std::vector<Polygon>& members, bool named) {
    if (std::optional<Validity> v = firstRingShape(members, named))
        return *v;
    if (std::optional<Validity> v = edgeConflict(members, named))
        return *v;
    if (std::optional<Validity> v = firstHoleProblem(members, named))
        return *v;
    if (std::optional<Validity> v = membersOverlap(members))
        return *v;
    return Validity();
}

}  // namespace cntr::detail
