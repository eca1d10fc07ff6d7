#ifndef CNTR_CONTOURMEMO_H
#define CNTR_CONTOURMEMO_H

#include <map>
#include <vector>

#include <foundation/angle.h>
#include <foundation/geometry.h>
#include <foundation/matrix.h>
#include <foundation/vector.h>

/// Key orders and container types of the argument-keyed caches of contours and region sets.
/// They are part of the shapes' layout, not API for applications.
namespace xn_contourDetail {

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

}  // namespace xn_contourDetail

#endif
