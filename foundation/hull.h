#ifndef FOUNDATION_HULL_H
#define FOUNDATION_HULL_H

#include <vector>

#include <foundation/export.h>
#include <foundation/vector.h>

/// The convex hull of `points` into `hull`: its vertices counter-clockwise (y up), starting at
/// the vertex with the smallest x (then the smallest y). Collinear and repeated points are
/// dropped; 0, 1 or 2 distinct points give those points (2 in that same start order). `hull` is
/// replaced.
/// The orientation test is exact (a floating-point filter backed by exact expansion
/// arithmetic), so near-collinear points are classified correctly; this holds for any finite
/// input in which no three points mix nonzero coordinates more than a factor 2^450 apart.
/// O(n log n) (monotone chain). Throws xcMathError::NotFinite when a coordinate is NaN or
/// infinite; `hull` is then left unchanged.
/// From 64 points on, the points strictly inside the octagon of the points extreme in eight
/// directions (an exact test) are set aside before the sort: they cannot be hull vertices. Unless
/// a coordinate is -0, the remaining points are sorted as 32-bit indices (a quarter of the
/// memory of copies), by merging the runs in which they rise or fall (points along a contour
/// come in few, long runs) when there are at most one run per 16 points, else outright: the
/// sort's work memory is at most 8 bytes per point.
FOUNDATION_API void xfConvexHull(const std::vector<xcVector<2>>& points,
                                 std::vector<xcVector<2>>& hull);

namespace xn_hullDetail {
/// xfConvexHull without setting interior points aside and with an outright sort: the reference
/// the filtered hull is tested against. Same result, same exceptions.
FOUNDATION_API void convexHullOfEveryPoint(const std::vector<xcVector<2>>& points,
                                           std::vector<xcVector<2>>& hull);
}  // namespace xn_hullDetail

#endif
