#include "check.h"

#include <set>

#include <cntr/contour.h>
#include <foundation/hull.h>
#include <foundation/numeric.h>

#include "measure.h"

namespace cntrtool {

namespace {

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
        if (problems_.empty())
            checkMeasures();
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
        if (o.isRegion) {
            std::vector<xcVector<2>> hull;
            xfConvexHull(p, hull);
            if (hull.size() < 3)
                add("zero-area", name + " encloses no area (its vertices lie on one line)");
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
            if (xfRealEq(p[previous], p[k], kRepeatedVertexTolerance) && count++ == 0)
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

        std::size_t crossings = 0;
        for (std::size_t k = 0; k < holes.size(); ++k) {
            const std::string name = joinPath(where, "hole " + std::to_string(k));
            if (!usable(region) || !usable(*holes[k]))
                continue;
            if (crosses(region, *holes[k])) {
                ++crossings;
                add("hole-crosses-outline",
                    name + " crosses the outline" + (where.empty() ? "" : " of " + where));
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
            if (r.where == where && crossings == 0)
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

    void checkMeasures() {
        const Measures m = measureShape(shape_);
        const bool hasHoles = m.holes > 0;
        for (const MeasureFailure& f : m.failures) {
            // The library does not provide the inertia of a region with holes, nor therefore
            // the ellipse of its moments: a limit, not a problem of the shape.
            if (hasHoles && f.field == "inertia")
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

