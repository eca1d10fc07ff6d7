// Polygon area and inertia on star-shaped polygons of growing size.
#include <cmath>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include <cntr/moments.h>
#include <foundation/random.h>

namespace {

/// A polygon of n vertices star-shaped about (500, 400) with radii 50 to 100: the kind of
/// outline a blob of a few hundred pixels gives, listed counter-clockwise.
std::vector<xcVector<2>> starPolygon(std::int64_t n) {
    xcRandomUniform rng(42);
    std::vector<xcVector<2>> p;
    p.reserve(static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * static_cast<double>(i) / static_cast<double>(n);
        const double r = rng.next(50.0, 100.0);
        p.emplace_back(500.0 + r * std::cos(a), 400.0 + r * std::sin(a));
    }
    return p;
}

/// Reports the time per vertex (ns/vertex when the benchmark's time unit is ns).
void perVertex(benchmark::State& state) {
    state.counters["per_vertex"] = benchmark::Counter(
        static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_Area(benchmark::State& state) {
    const std::vector<xcVector<2>> p = starPolygon(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(xf_Area(p));
    perVertex(state);
}

void BM_InertiaDataPolygon(benchmark::State& state) {
    const std::vector<xcVector<2>> p = starPolygon(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(xf_InertiaDataPolygon(p));
    perVertex(state);
}

BENCHMARK(BM_Area)->Arg(64)->Arg(1 << 10)->Arg(16 << 10)->Arg(256 << 10);
BENCHMARK(BM_InertiaDataPolygon)->Arg(64)->Arg(1 << 10)->Arg(16 << 10)->Arg(256 << 10);

}  // namespace
