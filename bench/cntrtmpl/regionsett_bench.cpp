// Edgelet region sets of 16, 256 and 4096 regions of 64 vertices each: building the set from its
// edgelet regions (the base list follows them), and replacing the base list, which rebuilds one
// new edgelet region per member.
#include <cmath>
#include <vector>

#include <benchmark/benchmark.h>

#include <cntrtmpl/regionsett.h>

namespace {

constexpr int kVerticesPerRegion = 64;

std::vector<xcVector<2>> ring(double cx) {
    std::vector<xcVector<2>> p;
    for (int i = 0; i < kVerticesPerRegion; ++i) {
        const double a = 2.0 * xcPi * i / kVerticesPerRegion;
        p.emplace_back(cx + std::cos(a), std::sin(a));
    }
    return p;
}

xcRegionSetT<xcEdgelet>::RegionTHandles edgeletRegions(long n) {
    xcRegionSetT<xcEdgelet>::RegionTHandles r;
    for (long i = 0; i < n; ++i) {
        xcPtrHandle<xcRegionT<xcEdgelet>> region(new xcRegionT<xcEdgelet>());
        region->points(ring(3.0 * static_cast<double>(i)));
        r.push_back(region);
    }
    return r;
}

void BM_RegionSetT_FromEdgeletRegions(benchmark::State& state) {
    const auto regions = edgeletRegions(state.range(0));
    for (auto _ : state) {
        xcRegionSetT<xcEdgelet> s(regions);
        benchmark::DoNotOptimize(&s);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_RegionSetT_ReplaceBaseRegions(benchmark::State& state) {
    const auto regions = edgeletRegions(state.range(0));
    const std::vector<xcPtrHandle_const<xcRegion>> base(regions.begin(), regions.end());
    xcRegionSetT<xcEdgelet> s;
    for (auto _ : state)
        s.regions(base, xcContourDefs::keepOutline);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(BM_RegionSetT_FromEdgeletRegions)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(BM_RegionSetT_ReplaceBaseRegions)->Arg(16)->Arg(256)->Arg(4096);
