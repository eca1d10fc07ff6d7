// Contour queries on closed star-shaped contours of 1k, 16k and 256k vertices: the first call
// (caches dropped before each iteration by re-closing the contour, which is O(1)) and the cached
// call.
#include <cmath>
#include <vector>

#include <benchmark/benchmark.h>

#include <cntr/contour.h>

namespace {

// n vertices around the origin, alternating radius 1 and 0.5: n / 2 spikes.
xcContour star(long n) {
    std::vector<xcVector<2>> p;
    p.reserve(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * static_cast<double>(i) / static_cast<double>(n);
        const double r = i % 2 == 0 ? 1.0 : 0.5;
        p.emplace_back(r * std::cos(a), r * std::sin(a));
    }
    return xcContour(p, true);
}

const xcLineSeg kChord({-1.2, 0.01}, {1.2, 0.01});

template <class Query>
void firstCall(benchmark::State& state, Query query) {
    xcContour c = star(state.range(0));
    for (auto _ : state) {
        c.isClosed(true);  // drops every cache
        benchmark::DoNotOptimize(query(c));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Query>
void cachedCall(benchmark::State& state, Query query) {
    xcContour c = star(state.range(0));
    query(c);
    for (auto _ : state) benchmark::DoNotOptimize(query(c));
}

const auto length = [](xcContour& c) { return c.length(); };
const auto encloseRect = [](xcContour& c) { return c.encloseRect(xcXform<2>::I); };
const auto selfIntersecting = [](xcContour& c) { return c.isSelfIntersecting(); };
const auto chordHits = [](xcContour& c) { return c.intersections(kChord, true).size(); };
const auto closest = [](xcContour& c) { return c.closestPoint(xcVector<2>(0.3, 0.2), false); };

void BM_Length_First(benchmark::State& s) { firstCall(s, length); }
void BM_Length_Cached(benchmark::State& s) { cachedCall(s, length); }
void BM_EncloseRect_First(benchmark::State& s) { firstCall(s, encloseRect); }
void BM_EncloseRect_Cached(benchmark::State& s) { cachedCall(s, encloseRect); }
void BM_IsSelfIntersecting_First(benchmark::State& s) { firstCall(s, selfIntersecting); }
void BM_IsSelfIntersecting_Cached(benchmark::State& s) { cachedCall(s, selfIntersecting); }
// The segment query keeps no result of its own; "cached" means the edge cache is built.
void BM_IntersectionsSeg_First(benchmark::State& s) { firstCall(s, chordHits); }
void BM_IntersectionsSeg_Cached(benchmark::State& s) { cachedCall(s, chordHits); }
// The nearest-point query keeps nothing: both forms measure the same work.
void BM_ClosestPoint_First(benchmark::State& s) { firstCall(s, closest); }
void BM_ClosestPoint_Cached(benchmark::State& s) { cachedCall(s, closest); }

}  // namespace

#define CNTR_SIZES Arg(1 << 10)->Arg(1 << 14)->Arg(1 << 18)
BENCHMARK(BM_Length_First)->CNTR_SIZES;
BENCHMARK(BM_Length_Cached)->CNTR_SIZES;
BENCHMARK(BM_EncloseRect_First)->CNTR_SIZES;
BENCHMARK(BM_EncloseRect_Cached)->CNTR_SIZES;
// Quadratic until a later change: the largest size runs once.
BENCHMARK(BM_IsSelfIntersecting_First)->Arg(1 << 10)->Arg(1 << 14)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IsSelfIntersecting_First)->Arg(1 << 18)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IsSelfIntersecting_Cached)->CNTR_SIZES;
BENCHMARK(BM_IntersectionsSeg_First)->CNTR_SIZES;
BENCHMARK(BM_IntersectionsSeg_Cached)->CNTR_SIZES;
BENCHMARK(BM_ClosestPoint_First)->CNTR_SIZES;
BENCHMARK(BM_ClosestPoint_Cached)->CNTR_SIZES;
