// The orientation test of predicates.h, inline for the library's own tight loops (the convex
// hull calls it per point); internal header, not installed. xfOrientation is this function.
#ifndef FOUNDATION_PREDICATES_DETAIL_H
#define FOUNDATION_PREDICATES_DETAIL_H

#include <cfloat>
#include <cmath>

#include <foundation/numeric.h>
#include <foundation/vector.h>

namespace xn_predicates {

// Error bound of the floating-point orientation filter: |computed - exact| <= kFilterBound *
// (|left product| + |right product|) when no operation over- or underflows, (3 + 16 eps) eps with
// eps = 2^-53 the unit roundoff.
constexpr double kFilterBound = (3.0 + 16.0 * xcUnitRoundoff) * xcUnitRoundoff;
// Below this magnitude of the filter's products an underflowed product could hide the sign, so
// the exact path decides. Far above the subnormal range, far below any realistic determinant.
constexpr double kFilterUnderflowGuard = 0x1.0p-900;
/// The exact sign of (b - a) x (c - a) from an expansion without rounding (see xfOrientation).
int exactOrientation(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c);

/// xfOrientation: a floating-point evaluation decides when its error bound allows, otherwise the
/// exact expansion does.
inline int orientation(const xcVector<2>& a, const xcVector<2>& b, const xcVector<2>& c) {
    const double acx = a.x() - c.x(), bcx = b.x() - c.x();
    const double acy = a.y() - c.y(), bcy = b.y() - c.y();
    const double left = acx * bcy;
    const double right = acy * bcx;
    const double det = left - right;
    const double magnitude = std::fabs(left) + std::fabs(right);
    if (magnitude >= kFilterUnderflowGuard && magnitude <= DBL_MAX) {
        if (std::fabs(det) >= kFilterBound * magnitude)
            return det > 0.0 ? 1 : (det < 0.0 ? -1 : 0);
    } else if ((acx == 0.0 || bcy == 0.0) && (acy == 0.0 || bcx == 0.0)) {
        // Both products have an exact zero factor (a difference of doubles is never rounded to 0).
        return 0;
    }
    return exactOrientation(a, b, c);
}

}  // namespace xn_predicates

#endif
