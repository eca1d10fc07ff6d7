// The region model: construction, assignment, holes, map, equality, drawing and the cache reset.
#include <unordered_set>

#include <cntr/region.h>
#include <cntr/region_detail.h>

using namespace xn_regionDetail;

// The count operations of the handles that hold regions (declared with the contour).
template <>
void xn_handle_detail::acquire<xcRegion>(const xcRegion* p) {
    if (p)
        static_cast<const xcRepBase*>(p)->addRef();
}

template <>
void xn_handle_detail::drop<xcRegion>(const xcRegion* p) {
    if (p)
        static_cast<const xcRepBase*>(p)->release();
}

namespace {

// Whether `target` is reachable from `start` through hole lists (start itself included).
// Visits each region once, so shared holes cost nothing extra; iterative, so deep nesting
// cannot exhaust the stack.
bool holdsRegion(const xcRegion* start, const xcRegion* target) {
    std::vector<const xcRegion*> pending{start};
    std::unordered_set<const xcRegion*> seen;
    while (!pending.empty()) {
        const xcRegion* r = pending.back();
        pending.pop_back();
        if (r == target)
            return true;
        if (!seen.insert(r).second)
            continue;
        for (const xcPtrHandle_const<xcRegion>& h : r->holes())
            if (h)
                pending.push_back(h.rep());
    }
    return false;
}

template <class Handle>
std::vector<const xcRegion*> referents(const std::vector<Handle>& handles) {
    std::vector<const xcRegion*> result;
    result.reserve(handles.size());
    for (const Handle& h : handles)
        result.push_back(h.rep());
    return result;
}

}  // namespace

xcRegion::xcRegion() : xcContour(std::vector<xcVector<2>>(), true, 0) {
    makeDataConsistentWithPoints();
}

xcRegion::xcRegion(const std::vector<xcVector<2>>& points, xcContourDefs::IntersectionMode mode)
    : xcContour(points, true, 0) {
    makeDataConsistentWithPoints();
    applyIntersectionMode(mode);
}

xcRegion::xcRegion(const xcPolygon& polygon, xcContourDefs::IntersectionMode mode)
    : xcContour(polygon.vertices(), true, 0) {
    makeDataConsistentWithPoints();
    applyIntersectionMode(mode);
}

// The copy's contour caches are dropped by makeDataConsistentWithPoints(); its closed flag is
// kept as the contour had it, and isClosed() answers true regardless.
xcRegion::xcRegion(const xcContour& contour, xcContourDefs::IntersectionMode mode)
    : xcContour(contour) {
    makeDataConsistentWithPoints();
    applyIntersectionMode(mode);
}

xcRegion::xcRegion(const xcRegion& other) : xcPersistent(), xcRepBase(), xcContour() {
    *this = other;
}

xcRegion& xcRegion::operator=(const xcRegion& other) {
    if (&other == this)
        return *this;
    xcContour::operator=(other);
    holes_ = other.holes_;
    caches_ = other.caches_;
    return *this;
}

xcRegion::~xcRegion() = default;

void xcRegion::applyIntersectionMode(xcContourDefs::IntersectionMode mode) {
    if (mode == xcContourDefs::useOuterHull)
        outerHull(*this);
    else if (mode == xcContourDefs::useRegularized)
        regularize(*this);
}

bool xcRegion::isClosed() const {
    return true;
}

void xcRegion::isClosed(bool c) {
    if (!c)
        throw xcContourDefs::RegionCannotBeSetOpen(std::wstring());
}

void xcRegion::holes(const std::vector<xcPtrHandle<xcRegion>>& newHoles) {
    cleanCacheInfo();
    makeDataConsistentWithPoints();
    checkHoles(referents(newHoles));
    holes_.assign(newHoles.begin(), newHoles.end());
}

void xcRegion::holes(const std::vector<xcPtrHandle_const<xcRegion>>& newHoles) {
    cleanCacheInfo();
    makeDataConsistentWithPoints();
    checkHoles(referents(newHoles));
    holes_ = newHoles;
}

// Beyond the crossing test, a null hole and a hole that holds this region (directly or through
// its own holes) are refused: either would make every later query with holes crash or recurse
// without end.
void xcRegion::checkHoles(const std::vector<const xcRegion*>& newHoles) {
    for (const xcRegion* hole : newHoles) {
        if (!hole)
            throw xcContourDefs::BadParams(L"holes cannot be null");
        if (!intersections(*hole, false).empty())
            throw xcContourDefs::BadParams(L"holes cannot intersect region");
        if (holdsRegion(hole, this))
            throw xcContourDefs::BadParams(L"holes cannot contain region");
    }
}

void xcRegion::map(const xcXform<2>& xform, xcRegion& out) const {
    std::vector<xcVector<2>> mapped;
    mapped.reserve(points().size());
    for (const xcVector<2>& p : points())
        mapped.push_back(xform * p);
    const unsigned long keptLabel = label();
    out = xcRegion(mapped, xcContourDefs::keepOutline);
    out.label(keptLabel);
}

bool xcRegion::operator==(const xcRegion& other) const {
    return xcContour::operator==(other);
}

void xcRegion::draw(xcUITablet&, const xcColor&, const xcUITablet::Layers&) const {}

long xcRegion::closestVertexIndex(const xcVector<2>& point) const {
    return xcContour::closestVertexIndex(point);
}

void xcRegion::checkEmptyContour() const {
    if (points().size() < 3)
        throw xcContourDefs::EmptyContour(std::wstring());
}


void xcRegion::cleanCacheInfo() {
    xcContour::cleanCacheInfo();
    caches_.reset();
}

