#ifndef FOUNDATION_NUMERIC_H
#define FOUNDATION_NUMERIC_H

#include <climits>
#include <cmath>

/// The unit roundoff of double, 2^-53: the largest relative error of one rounded operation. The
/// error bounds of the exact predicates' filter and of the area's reordered sum are multiples
/// of it.
constexpr double xcUnitRoundoff = 0x1.0p-53;

/// True when |a - b| <= eps. The tolerance is absolute; there is deliberately no default.
/// A NaN on either side compares unequal, and so do two equal infinities (their difference is
/// NaN).
inline bool xfRealEq(double a, double b, double eps) {
    return std::fabs(a - b) <= eps;
}

/// floor(v) as a long. Values beyond the range of long saturate to LONG_MIN or LONG_MAX and a
/// NaN gives 0, so that the conversion is always defined.
inline long xfIFloor(double v) {
    const double f = std::floor(v);
    if (f != f)
        return 0;
    if (f <= static_cast<double>(LONG_MIN))
        return LONG_MIN;
    if (f >= static_cast<double>(LONG_MAX))
        return LONG_MAX;
    return static_cast<long>(f);
}

#endif
