// regularize and outerHull of self-crossing outlines of 100, 1k and 10k vertices: a noisy
// closed boundary trace, each vertex's angle about the centre jittered by up to 0.8 of the
// angular step either way and its radius by up to 20 %, so that neighbouring edges cross here
// and there. Every iteration works on a new region (the results are cached per region); the
// time includes the self-intersection test that decides whether to walk.
#include <cmath>
#include <vector>

#include <benchmark/benchmark.h>

#include <cntr/region.h>
#include <foundation/random.h>

namespace {

std::vector<xcVector<2>> noisyTrace(long n) {
    xcRandomUniform g(static_cast<std::uint64_t>(n));
    const double step = 2.0 * xcPi / static_cast<double>(n);
    std::vector<xcVector<2>> p;
    p.reserve(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) {
        const double angle = (static_cast<double>(i) + g.next(-0.8, 0.8)) * step;
        p.emplace_back(g.next(0.8, 1.2), xcRadian(angle));
    }
    return p;
}

template <class Operation>
void run(benchmark::State& state, Operation op) {
    const std::vector<xcVector<2>> p = noisyTrace(state.range(0));
    std::size_t resultSize = 0;
    for (auto _ : state) {
        const xcRegion r(p);
        xcRegion out;
        op(r, out);
        resultSize = out.points().size();
        benchmark::DoNotOptimize(resultSize);
    }
    state.counters["result_vertices"] = static_cast<double>(resultSize);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Regularize(benchmark::State& s) {
    run(s, [](const xcRegion& r, xcRegion& out) { r.regularize(out); });
}
void BM_OuterHull(benchmark::State& s) {
    run(s, [](const xcRegion& r, xcRegion& out) { r.outerHull(out); });
}

}  // namespace

BENCHMARK(BM_Regularize)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OuterHull)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
