// Registration and result checks of the side-by-side benchmarks.
//
// Every benchmark is named "operation/kind/size/implementation" (for example
// "area/blob/16k/opencv_moments"); the implementation "ours" is this library. peers_report.py
// reads these names to pair our time with the fastest peer's. A peer's benchmark first compares
// its answer with ours on the same input where both compute the same thing; when they disagree
// it is skipped with an error that says what differed, and the report shows that error instead of
// a time. The counter "checked" is 1 for a peer whose answer was compared, 0 for one that
// computes something different (no comparison possible).
#ifndef CNTR_BENCH_PEERS_REGISTRY_H
#define CNTR_BENCH_PEERS_REGISTRY_H

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>

#include <benchmark/benchmark.h>

#include "peers_inputs.h"

namespace peers {

constexpr std::size_t k1k = 1024;
constexpr std::size_t k16k = 16384;
constexpr std::size_t k256k = 262144;

using Body = std::function<void(benchmark::State&, const Input&)>;

/// Registers "operation/kind/size/implementation" for every kind and size given. The input is
/// generated (once per run) before the body runs, outside any timing.
void add(const std::string& operation, const std::string& implementation,
         std::initializer_list<Kind> kinds, std::initializer_list<std::size_t> sizes, Body body);

/// The star-shaped families at 1k, 16k and 256k vertices.
void addStars(const std::string& operation, const std::string& implementation, Body body);

/// Whether `ours` and `theirs` agree within `tolerance` relative to max(|ours|, |theirs|,
/// `scale`). On disagreement the benchmark is skipped with an error naming `what` and both
/// values, and false is returned.
bool agree(benchmark::State& state, const std::string& what, double ours, double theirs,
           double tolerance, double scale = 0.0);
/// The same for counts and flags: they must be equal, or differ by at most `slack`.
bool agreeCount(benchmark::State& state, const std::string& what, long long ours,
                long long theirs, long long slack = 0);
/// Sets the "checked" counter: 1 when the peer's answer was compared with ours.
void markChecked(benchmark::State& state, bool checked);

}  // namespace peers

#endif
