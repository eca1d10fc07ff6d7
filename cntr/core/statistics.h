// Statistics of lists of numbers (internal header, not installed).
#ifndef CNTR_CORE_STATISTICS_H
#define CNTR_CORE_STATISTICS_H

#include <vector>

#include <cntr/export.h>

namespace cntr::core {

/// The population standard deviation (divisor n) of `values`: the mean, then the root of the
/// mean squared difference from it, each sum in list order. NaN for an empty list.
CNTR_API double standardDeviation(const std::vector<double>& values);

}  // namespace cntr::core

#endif
