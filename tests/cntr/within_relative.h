// The comparison of a reordered sum with the sum in the definition's order.
#ifndef CNTR_TESTS_WITHIN_RELATIVE_H
#define CNTR_TESTS_WITHIN_RELATIVE_H

#include <cmath>

/// |a - b| <= 1e-10 |b|, with NaN equal to NaN and infinities equal to themselves.
inline bool withinRelative(double a, double b) {
    if (std::isnan(a) || std::isnan(b))
        return std::isnan(a) && std::isnan(b);
    if (std::isinf(a) || std::isinf(b))
        return a == b;
    return std::fabs(a - b) <= 1e-10 * std::fabs(b);
}

#endif
