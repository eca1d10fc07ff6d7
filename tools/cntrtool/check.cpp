#include "check.h"

#include <algorithm>
#include <cmath>
#include <set>

#include <cntr/contour.h>
#include <cntr/moments.h>
#include <cntr/tolerances.h>
#include <foundation/hull.h>
#include <foundation/numeric.h>

#include "measure.h"
#include "output.h"

namespace cntrtool {

namespace {

// ---- where a hole meets its outline ----

using Points = std::vector<xcVector<2>>;

// The parameters along p0-p1 (0 to 1) where it meets q0-q1: the crossing point, or for
// collinear overlapping segments both ends of the overlap.
void meetings(const xcVector<2>& p0, const xcVector<2>& p1, const xcVector<2>& q0,
              const xcVector<2>& q1, std::vector<double>& out) {
    const xcVector<2> d = p1 - p0, e = q1 - q0, f = q0 - p0;
    const double denominator = d.cross(e);
    if (denominator != 0.0) {
        const double t = f.cross(e) / denominator, u = f.cross(d) / denominator;
        if (t >= 0.0 && t <= 1.0 && u >= 0.0 && u <= 1.0)
            out.push_back(t);
        return;
    }
    const double length2 = d.dot(d);
    if (f.cross(d) != 0.0 || length2 == 0.0)
        return;  // parallel apart, or a point
    for (const xcVector<2>& q : {q0, q1}) {
        const double t = (q - p0).dot(d) / length2;
        if (t >= 0.0 && t <= 1.0)
            out.push_back(t);
    }
}

double distanceToSegment(const xcVector<2>& p, const xcVector<2>& a, const xcVector<2>& b) {
    const xcVector<2> d = b - a;
    const double length2 = d.dot(d);
    const double t = length2 == 0.0 ? 0.0 : std::clamp((p - a).dot(d) / length2, 0.0, 1.0);
    const xcVector<2> foot = a + d * t;
    return std::hypot(p.x() - foot.x(), p.y() - foot.y());
}

// Whether p lies on the closed outline, within `tolerance`.
bool onOutline(const xcVector<2>& p, const Points& outline, double tolerance) {
    for (std::size_t k = 0; k < outline.size(); ++k)
        if (distanceToSegment(p, outline[k], outline[(k + 1) % outline.size()]) <= tolerance)
            return true;
    return false;
}

// Even-odd rule: whether p (not on the outline) lies inside it.
bool insideOutline(const xcVector<2>& p, const Points& outline) {
    bool inside = false;
    for (std::size_t k = 0, j = outline.size() - 1; k < outline.size(); j = k++) {
        const xcVector<2>& a = outline[k];
        const xcVector<2>& b = outline[j];
        if ((a.y() > p.y()) != (b.y() > p.y()) &&
            p.x() < (b.x() - a.x()) * (p.y() - a.y()) / (b.y() - a.y()) + a.x())
            inside = !inside;
    }
    return inside;
}

// The touching-hole test's own tolerances: a point this close to the outline, relative to the
// coordinates' extent, lies on it; cuts of a hole edge closer than this (as fractions of the
// edge) are one cut.
constexpr double kOnOutlineRelative = 1e-9;
constexpr double kSameCut = 1e-12;

// Whether a hole that meets its outline only touches it: cut at every point where they meet,
// each piece of the hole's outline lies strictly inside the region. A piece that runs along the
// outline, or outside it, makes a crossing.
bool touchesOnly(const Points& outline, const Points& hole) {
    double extent = 1.0;
    for (const xcVector<2>& p : outline)
        extent = std::max({extent, std::fabs(p.x()), std::fabs(p.y())});
    const double tolerance = kOnOutlineRelative * extent;
    for (std::size_t k = 0; k < hole.size(); ++k) {
        const xcVector<2>& a = hole[k];
        const xcVector<2>& b = hole[(k + 1) % hole.size()];
        std::vector<double> cuts = {0.0, 1.0};
        for (std::size_t j = 0; j < outline.size(); ++j)
            meetings(a, b, outline[j], outline[(j + 1) % outline.size()], cuts);
        std::sort(cuts.begin(), cuts.end());
        for (std::size_t c = 0; c + 1 < cuts.size(); ++c) {
            if (cuts[c + 1] - cuts[c] <= kSameCut)
                continue;
            const xcVector<2> middle = a + (b - a) * ((cuts[c] + cuts[c + 1]) / 2);
            if (onOutline(middle, outline, tolerance) || !insideOutline(middle, outline))
                return false;
        }
    }
    return true;
}

// Why the closed outline's area is degenerate (zero, or so small that the library's centroid
// of it is a convention), or "" when it is not.
std::string degenerateArea(const Points& points) {
    if (centroidConvention(points).empty())
        return "";
    const double area = xf_Area(points);
    if (area == 0.0)
        return "encloses no area (its net area is 0): it has no centroid";
    return "encloses an area of " + formatNumber(area, kTableDigits) +
           ", below the library's centroid threshold (cross products summing to within 1e-6 of "
           "0): it has no centroid";
}

std::string partName(const std::string& where) { return where.empty() ? "the outline" : where; }

std::string joinPath(const std::string& parent, const std::string& part) {
    return parent.empty() ? part : parent + ", " + part;
}

class Checker {
  public:
    explicit Checker(const Shape& shape) : shape_(shape) {}

    std::vector<Problem> run() {
        forEachOutline(shape_, [this](const OutlineRef& o) { checkOutline(o); });
        switch (shape_.kind) {
            case ShapeKind::contour:
                break;
            case ShapeKind::region:
                checkHoles(*shape_.region, "");
                break;
            case ShapeKind::regionSet:
                checkRegionSet();
                break;
        }
        checkMeasures(problems_.empty());
        return problems_;
    }

  private:
    void add(const char* code, const std::string& text) {
        problems_.push_back(Problem{shape_.index, shape_.kind, labelOf(shape_), code, text});
    }

    static std::size_t minimumVertices(const OutlineRef& o) { return o.isRegion ? 3 : 2; }

    void checkOutline(const OutlineRef& o) {
        const std::vector<xcVector<2>>& p = o.outline.points();
        const std::string name = partName(o.where);
        if (p.size() < minimumVertices(o)) {
            add("too-few-vertices", name + " has " + std::to_string(p.size()) + " vertices (" +
                                        (o.isRegion ? "a region needs 3" : "a contour needs 2") +
                                        ")");
            tooSmall_.insert(&o.outline);
            return;
        }
        checkRepeats(o, name);
        bool zeroArea = false;
        if (o.isRegion) {
            std::vector<xcVector<2>> hull;
            xfConvexHull(p, hull);
            zeroArea = hull.size() < 3;
            if (zeroArea)
                add("zero-area", name + " encloses no area (its vertices lie on one line)");
        }
        if (!zeroArea && (o.isRegion || o.outline.isClosed())) {
            const std::string why = degenerateArea(p);
            if (!why.empty())
                add("degenerate-area", name + " " + why);
        }
        if (o.outline.isSelfIntersecting())
            add("self-crossing", name + " crosses itself");
    }

    void checkRepeats(const OutlineRef& o, const std::string& name) {
        const std::vector<xcVector<2>>& p = o.outline.points();
        const bool closed = o.isRegion || o.outline.isClosed();
        std::size_t count = 0, first = 0;
        for (std::size_t k = closed ? 0 : 1; k < p.size(); ++k) {
            const std::size_t previous = k == 0 ? p.size() - 1 : k - 1;
            if (xfRealEq(p[previous], p[k], cntr::kExactTolerance) && count++ == 0)
                first = k;
        }
        if (count > 0)
            add("repeated-vertex", name + " repeats vertex " +
                                       std::to_string(first == 0 ? p.size() - 1 : first - 1) +
                                       " at vertex " + std::to_string(first) + " (" +
                                       std::to_string(count) + " repeated in all)");
    }

    // The holes of `region` (held and refused), each checked against the outline and against
    // one another, then their own holes in turn.
    void checkHoles(const xcRegion& region, const std::string& where) {
        std::vector<const xcRegion*> holes;
        for (const xcPtrHandle_const<xcRegion>& h : region.holes())
            holes.push_back(h.rep());
        for (const RefusedHoles& r : shape_.refused)
            if (r.where == where)
                for (const xcPtrHandle<xcRegion>& h : r.holes)
                    holes.push_back(h.rep());

        std::size_t meetingHoles = 0;
        for (std::size_t k = 0; k < holes.size(); ++k) {
            const std::string name = joinPath(where, "hole " + std::to_string(k));
            const std::string ofWhere = where.empty() ? "" : " of " + where;
            if (!usable(region) || !usable(*holes[k]))
                continue;
            if (crosses(region, *holes[k])) {
                ++meetingHoles;
                if (touchesOnly(region.points(), holes[k]->points()))
                    add("touching-hole", name + " touches the outline" + ofWhere +
                                             " at single points (the library refuses such a "
                                             "hole; many toolkits accept it)");
                else
                    add("hole-crosses-outline", name + " crosses the outline" + ofWhere);
            } else if (outside(*holes[k], region)) {
                add("hole-outside", name + " lies outside " + partName(where));
            }
            for (std::size_t j = 0; j < k; ++j)
                if (usable(*holes[j]) && crosses(*holes[j], *holes[k]))
                    add("holes-cross", joinPath(where, "holes " + std::to_string(j) + " and " +
                                                           std::to_string(k)) +
                                           " cross each other");
        }
        for (const RefusedHoles& r : shape_.refused)
            if (r.where == where && meetingHoles == 0)
                add("holes-refused", "the holes of " + partName(where) +
                                         " were refused by the library: " + r.reason);
        for (std::size_t k = 0; k < holes.size(); ++k)
            checkHoles(*holes[k], joinPath(where, "hole " + std::to_string(k)));
    }

    void checkRegionSet() {
        const auto regions = regionsOf(*shape_.set);
        if (regions.empty())
            add("empty-set", "the set holds no regions");
        for (std::size_t i = 0; i < regions.size(); ++i)
            checkHoles(*regions[i], "region " + std::to_string(i));
        for (std::size_t i = 0; i < regions.size(); ++i)
            for (std::size_t j = i + 1; j < regions.size(); ++j)
                if (usable(*regions[i]) && usable(*regions[j]) &&
                    crosses(*regions[i], *regions[j]))
                    add("regions-cross", "regions " + std::to_string(i) + " and " +
                                             std::to_string(j) + " cross each other");
    }

    // Measures that came out infinite or NaN; and, for a shape without other problems, the
    // measures the library refused.
    void checkMeasures(bool reportRefusals) {
        const Measures m = measureShape(shape_);
        const bool hasHoles = m.holes > 0;
        std::string nonFinite;
        for (const MeasureFailure& f : m.failures)
            if (f.cause == Unavailable::nonFinite)
                nonFinite += (nonFinite.empty() ? "" : ", ") + f.field;
        if (!nonFinite.empty())
            add("non-finite-result", "not finite: " + nonFinite +
                                         " (the coordinates are too large for double precision)");
        for (const MeasureFailure& f : m.failures) {
            // The library does not provide the inertia of a region with holes, nor therefore
            // the ellipse of its moments: a limit, not a problem of the shape.
            if (f.cause != Unavailable::refused || !reportRefusals ||
                (hasHoles && f.field == "inertia"))
                continue;
            add("measure-failed", f.field + ": " + f.message);
        }
    }

    bool usable(const xcContour& outline) const { return tooSmall_.count(&outline) == 0; }

    // Whether two outlines cross: the library's contour-with-contour intersection, asked of a
    // plain copy of the first (the query fills caches and is not const).
    static bool crosses(const xcContour& a, const xcContour& b) {
        if (!boxesMeet(a.points(), b.points()))
            return false;
        xcContour copy(a.points(), true);
        return !copy.intersections(xcContour(b.points(), true)).empty();
    }

    static bool boxesMeet(const std::vector<xcVector<2>>& a, const std::vector<xcVector<2>>& b) {
        const auto box = [](const std::vector<xcVector<2>>& p) {
            xcRect r = xcRect::at(p.front());
            for (const xcVector<2>& q : p)
                r = r.enclose(xcRect::at(q));
            return r;
        };
        const xcRect ra = box(a), rb = box(b);
        return ra.ul().x() <= rb.lr().x() && rb.ul().x() <= ra.lr().x() &&
               ra.ul().y() <= rb.lr().y() && rb.ul().y() <= ra.lr().y();
    }

    // A hole that does not cross its region's outline lies wholly inside or wholly outside it;
    // it is outside when none of its vertices is inside.
    static bool outside(const xcRegion& hole, const xcRegion& region) {
        for (const xcVector<2>& p : hole.points())
            if (region.inside(p, false))
                return false;
        return true;
    }

    const Shape& shape_;
    std::vector<Problem> problems_;
    std::set<const xcContour*> tooSmall_;
};

}  // namespace

std::vector<Problem> checkShape(const Shape& shape) { return Checker(shape).run(); }

void printProblems(std::ostream& out, const std::vector<Problem>& problems,
                   std::size_t shapeCount) {
    std::set<std::size_t> shapesWithProblems;
    for (const Problem& p : problems) {
        out << "shape " << p.index << " (" << kindName(p.kind) << ", label " << p.label
            << "): " << p.code << ": " << p.text << '\n';
        shapesWithProblems.insert(p.index);
    }
    if (problems.empty())
        out << "no problems in " << shapeCount << " shapes\n";
    else
        out << problems.size() << " problems in " << shapesWithProblems.size() << " of "
            << shapeCount << " shapes\n";
}

}  // namespace cntrtool

