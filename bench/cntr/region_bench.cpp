// Region measures and containment on closed outlines of 64, 1k and 16k vertices: area, centre
// of mass and inertia computed afresh (caches dropped before each iteration) and from the cache,
// and inside() for 10,000 points spread over the bounding square. The outlines are a wavy
// blob, as object boundaries in images are, and (for containment) a star of many thin spikes,
// whose rays cross many edges.
#include <cmath>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include <cntr/region.h>

namespace {

// A region whose caches the benchmark can drop in O(1).
class BenchRegion : public xcRegion {
  public:
    explicit BenchRegion(const std::vector<xcVector<2>>& p) : xcContour(p, true, 0), xcRegion(p) {}
    void dropCaches() { cleanCacheInfo(); }
};

// n vertices around the origin at the radius that `radius(i, angle)` gives.
template <class Radius>
std::vector<xcVector<2>> around(long n, Radius radius) {
    std::vector<xcVector<2>> p;
    p.reserve(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * static_cast<double>(i) / static_cast<double>(n);
        const double r = radius(i, a);
        p.emplace_back(r * std::cos(a), r * std::sin(a));
    }
    return p;
}

// A blob: radius 0.8 + 0.2 sin(7 angle).
std::vector<xcVector<2>> blob(long n) {
    return around(n, [](long, double a) { return 0.8 + 0.2 * std::sin(7.0 * a); });
}

// Alternating radius 1 and 0.5: n / 2 spikes.
std::vector<xcVector<2>> star(long n) {
    return around(n, [](long i, double) { return i % 2 == 0 ? 1.0 : 0.5; });
}

constexpr int kInsidePoints = 10000;

std::vector<xcVector<2>> queryPoints() {
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> coord(-1.0, 1.0);
    std::vector<xcVector<2>> q;
    for (int i = 0; i < kInsidePoints; ++i)
        q.emplace_back(coord(gen), coord(gen));
    return q;
}

template <class Measure>
void firstCall(benchmark::State& state, Measure measure) {
    BenchRegion r(blob(state.range(0)));
    for (auto _ : state) {
        r.dropCaches();
        benchmark::DoNotOptimize(measure(r));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Measure>
void cachedCall(benchmark::State& state, Measure measure) {
    BenchRegion r(blob(state.range(0)));
    measure(r);
    for (auto _ : state)
        benchmark::DoNotOptimize(measure(r));
}

const auto area = [](xcRegion& r) { return r.area(false); };
const auto centroid = [](xcRegion& r) { return r.centerOfMass(false); };
const auto inertia = [](xcRegion& r) { return r.inertiaMatrix(false); };

void BM_Area_First(benchmark::State& s) {
    firstCall(s, area);
}
void BM_Area_Cached(benchmark::State& s) {
    cachedCall(s, area);
}
void BM_CenterOfMass_First(benchmark::State& s) {
    firstCall(s, centroid);
}
void BM_CenterOfMass_Cached(benchmark::State& s) {
    cachedCall(s, centroid);
}
void BM_InertiaMatrix_First(benchmark::State& s) {
    firstCall(s, inertia);
}
void BM_InertiaMatrix_Cached(benchmark::State& s) {
    cachedCall(s, inertia);
}

// One iteration asks inside() for all 10,000 points; the edge cache and diameter are built by
// the first point and reused (inside() itself caches nothing).
void inside10k(benchmark::State& state, const std::vector<xcVector<2>>& outline) {
    const BenchRegion r(outline);
    const std::vector<xcVector<2>> q = queryPoints();
    long in = 0;
    for (auto _ : state)
        for (const xcVector<2>& p : q)
            in += r.inside(p, true) ? 1 : 0;
    benchmark::DoNotOptimize(in);
    state.SetItemsProcessed(state.iterations() * kInsidePoints);
}

void BM_Inside10k_Blob(benchmark::State& s) {
    inside10k(s, blob(s.range(0)));
}
void BM_Inside10k_Star(benchmark::State& s) {
    inside10k(s, star(s.range(0)));
}

}  // namespace

#define CNTR_REGION_SIZES Arg(64)->Arg(1 << 10)->Arg(1 << 14)
BENCHMARK(BM_Area_First)->CNTR_REGION_SIZES;
BENCHMARK(BM_Area_Cached)->CNTR_REGION_SIZES;
BENCHMARK(BM_CenterOfMass_First)->CNTR_REGION_SIZES;
BENCHMARK(BM_CenterOfMass_Cached)->CNTR_REGION_SIZES;
BENCHMARK(BM_InertiaMatrix_First)->CNTR_REGION_SIZES;
BENCHMARK(BM_InertiaMatrix_Cached)->CNTR_REGION_SIZES;
BENCHMARK(BM_Inside10k_Blob)->CNTR_REGION_SIZES->Unit(benchmark::kMillisecond);
// The spiky star's rays cross up to thousands of edges at 16k vertices (a minute per run).
BENCHMARK(BM_Inside10k_Star)->Arg(64)->Arg(1 << 10)->Unit(benchmark::kMillisecond);
