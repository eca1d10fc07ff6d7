#ifndef CNTR_CONTOURMEMO_H
#define CNTR_CONTOURMEMO_H

#include <map>
#include <memory>
#include <vector>

#include <foundation/angle.h>
#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/matrix.h>
#include <foundation/vector.h>

/// Key orders and container types of the argument-keyed caches of contours and region sets.
/// They are part of the shapes' layout, not API for applications.
namespace xn_contourDetail {

/// One cached result: whether it is valid, and its value. A cleared flag may leave the value in
/// place; what a reset leaves in the value is documented by the cache's owner.
template <class T>
struct Cached {
    bool valid = false;
    T value{};

    /// Stores `v`, marks it valid and returns it.
    const T& set(const T& v) {
        value = v;
        valid = true;
        return value;
    }
    /// The value, first computed by compute() and stored when the cache is not valid. An
    /// exception from compute() leaves the cache as it was.
    template <class Compute>
    const T& get(Compute compute) {
        if (!valid)
            set(compute());
        return value;
    }
    /// Clears the flag and sets the value a reset leaves.
    void reset(const T& v = T()) {
        valid = false;
        value = v;
    }
};

/// A cache owned through a pointer (null until first used) and deep-copied with its owner.
template <class T>
class OwnedCache {
public:
    OwnedCache() = default;
    OwnedCache(const OwnedCache& o) : p_(o.p_ ? new T(*o.p_) : nullptr) {}
    OwnedCache(OwnedCache&&) noexcept = default;
    OwnedCache& operator=(const OwnedCache& o) {
        OwnedCache copy(o);
        p_.swap(copy.p_);
        return *this;
    }
    OwnedCache& operator=(OwnedCache&&) noexcept = default;

    /// The cache, or null.
    T* get() const { return p_.get(); }
    /// The cache, made empty first when there is none.
    T& make() {
        if (!p_) p_.reset(new T);
        return *p_;
    }
    /// The owning pointer, for code that replaces the whole cache.
    std::unique_ptr<T>& pointer() { return p_; }
    void reset() { p_.reset(); }

private:
    std::unique_ptr<T> p_;
};

/// Three-way comparison of two doubles as memo keys: the usual order of numbers (so -0.0 and 0.0
/// are one key), with every NaN after every number and all NaNs one key, so that a NaN argument
/// cannot break the ordering of a map.
inline int compareKey(double a, double b) {
    if (a < b) return -1;
    if (b < a) return 1;
    const bool aNaN = a != a;
    const bool bNaN = b != b;
    if (aNaN == bNaN) return 0;
    return aNaN ? 1 : -1;
}

/// The order of transform keys: lexicographic by translation x, translation y, matrix elements
/// (0,0), (0,1) and (1,0). Element (1,1) deliberately takes no part, so transforms that differ
/// only there are one key and share one memo entry.
struct XformKeyLess {
    bool operator()(const xcXform<2>& a, const xcXform<2>& b) const {
        const double ka[5] = {a.trans().x(), a.trans().y(), a.matrix().element(0, 0),
                              a.matrix().element(0, 1), a.matrix().element(1, 0)};
        const double kb[5] = {b.trans().x(), b.trans().y(), b.matrix().element(0, 0),
                              b.matrix().element(0, 1), b.matrix().element(1, 0)};
        for (int i = 0; i < 5; ++i) {
            const int c = compareKey(ka[i], kb[i]);
            if (c != 0) return c < 0;
        }
        return false;
    }
};

/// The order of angle keys: by value in radians.
struct RadianKeyLess {
    bool operator()(const xcRadian& a, const xcRadian& b) const {
        return compareKey(a.toDouble(), b.toDouble()) < 0;
    }
};

/// The order of grid cells: both taken as xcVector<2> and compared lexicographically (x, then y).
struct CellLess {
    bool operator()(const xcPair<long>& a, const xcPair<long>& b) const {
        const xcVector<2> va(a);
        const xcVector<2> vb(b);
        return va.x() < vb.x() || (va.x() == vb.x() && va.y() < vb.y());
    }
};

/// Enclosing rectangles by transform.
using RectMemo = std::map<xcXform<2>, xcRect, XformKeyLess>;
/// Extremal vertex indices by direction.
using ExtremalVertexMemo = std::map<xcRadian, long, RadianKeyLess>;

/// The vertex lookup grid of one tolerance: the ascending vertex indices of each occupied cell.
struct VertexGrid {
    double tolerance = 0.0;
    std::map<xcPair<long>, std::vector<int>, CellLess> cells;
};
/// One grid per tolerance, in the order the tolerances were first asked for.
using VertexGridCache = std::vector<VertexGrid>;

/// The edges as the segment query tests them, one entry per edge in edge order: its segment, the
/// segment's line, the rectangle of its ends and whether it is non-degenerate (a degenerate edge
/// has a default segment, line and rectangle).
struct EdgeTable {
    std::vector<xcLineSeg> segs;
    std::vector<xcLine> lines;
    std::vector<xcRect> rects;
    std::vector<bool> valid;
};

/// The cached measures that a region and a region set share: area, centre of mass and inertia,
/// each with one slot per considerHoles flag (index 0: the outlines alone, index 1: with the
/// holes subtracted), and the regularised and outer-hull shapes. Copies carry every slot, the
/// two shapes shared through their handles.
template <class Shape>
struct MeasureCaches {
    Cached<xcVector<2>> center[2];
    Cached<double> area[2];
    Cached<xcMatrix<2>> inertia[2];
    Cached<xcPtrHandle<Shape>> regularized;
    Cached<xcPtrHandle<Shape>> outerHull;

    /// Clears every flag and sets both areas to 0; the other values and the two shapes stay
    /// until replaced.
    void reset() {
        for (int holes = 0; holes < 2; ++holes) {
            center[holes].valid = false;
            area[holes].reset(0.0);
            inertia[holes].valid = false;
        }
        regularized.valid = false;
        outerHull.valid = false;
    }
};

}  // namespace xn_contourDetail

#endif
