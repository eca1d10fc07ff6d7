#include <algorithm>
#include <cmath>

#include <foundation/exception.h>
#include <foundation/random.h>

double xcRandomUniform::below(double hi, double lo) {
    return std::nextafter(hi, lo);
}

double xcRandomUniform::nextUnusual(double lo, double hi, double u) {
    if (!std::isfinite(lo) || !std::isfinite(hi))
        throw xcMathError::NotFinite(L"random range bounds must be finite");
    if (!(hi > lo))
        return lo;
    // hi - lo overflowed: interpolate between the halved bounds, which cannot overflow, and
    // scale back. Halving and doubling are exact at these magnitudes.
    const double half = lo * 0.5 + (hi * 0.5 - lo * 0.5) * u;
    const double v = std::max(half * 2.0, lo);
    return v < hi ? v : below(hi, lo);
}
