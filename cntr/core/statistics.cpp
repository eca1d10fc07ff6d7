// Statistics of lists of numbers.
#include <cntr/core/statistics.h>

#include <cmath>

namespace cntr::core {

double standardDeviation(const std::vector<double>& values) {
    const double n = static_cast<double>(values.size());
    double sum = 0.0;
    for (double v : values)
        sum += v;
    const double mean = sum / n;
    double squares = 0.0;
    for (double v : values)
        squares += (v - mean) * (v - mean);
    return std::sqrt(squares / n);
}

}  // namespace cntr::core
