// Region set measures on sets of 10, 100 and 1,000 disjoint regions of 64 vertices (regular
// 64-gons of radius 1 on a grid of pitch 3, so no two outlines meet).
//
// Forms: "_Set" drops the set's caches before each iteration (by assigning its list again,
// O(regions)) while the regions keep theirs, so it measures the set's own combination work;
// "_Cold" also drops every region's caches (by giving each region its outline again, which
// copies 64 vertices per region; "_ResetOnly" measures that reset alone); "_Cached" answers
// from the set's cache.
#include <cmath>
#include <vector>

#include <benchmark/benchmark.h>

#include <cntr/region.h>
#include <cntr/regionst.h>

namespace {

constexpr int kVertices = 64;
constexpr double kPitch = 3.0;

std::vector<xcVector<2>> polygonAt(double cx, double cy) {
    std::vector<xcVector<2>> p;
    p.reserve(kVertices);
    for (int i = 0; i < kVertices; ++i) {
        const double a = 2.0 * xcPi * i / kVertices;
        p.emplace_back(cx + std::cos(a), cy + std::sin(a));
    }
    return p;
}

struct Workload {
    std::vector<xcPtrHandle<xcRegion>> regions;
    xcRegionSet set;
    int columns = 1;

    explicit Workload(long count) {
        columns = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(count))));
        for (long i = 0; i < count; ++i)
            regions.emplace_back(new xcRegion(polygonAt(kPitch * static_cast<double>(i % columns),
                                                        kPitch * static_cast<double>(i / columns)),
                                              xcContourDefs::keepOutline));
        set.regions(regions, xcContourDefs::keepOutline);
    }
    void resetSet() { set.regions(regions, xcContourDefs::keepOutline); }
    void resetRegions() {
        for (const xcPtrHandle<xcRegion>& r : regions)
            r->points(r->points());
    }
    // The centre of the last region.
    xcVector<2> lastCentre() const {
        const long last = static_cast<long>(regions.size()) - 1;
        return xcVector<2>(kPitch * static_cast<double>(last % columns),
                           kPitch * static_cast<double>(last / columns));
    }
};

// Times `query` after dropping the set's caches and, when `coldRegions`, every region's.
template <class Query>
void freshForm(benchmark::State& state, Query query, bool coldRegions) {
    Workload w(state.range(0));
    query(w.set);
    for (auto _ : state) {
        if (coldRegions)
            w.resetRegions();
        w.resetSet();
        benchmark::DoNotOptimize(query(w.set));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Query>
void setForm(benchmark::State& state, Query query) {
    freshForm(state, query, false);
}

template <class Query>
void coldForm(benchmark::State& state, Query query) {
    freshForm(state, query, true);
}

template <class Query>
void cachedForm(benchmark::State& state, Query query) {
    Workload w(state.range(0));
    query(w.set);
    for (auto _ : state)
        benchmark::DoNotOptimize(query(w.set));
}

const auto area = [](xcRegionSet& s) { return s.area(true); };
const auto centre = [](xcRegionSet& s) { return s.centerOfMass(true); };
const auto selfIntersecting = [](xcRegionSet& s) { return s.isSelfIntersecting(); };

void BM_ResetOnly(benchmark::State& state) {
    Workload w(state.range(0));
    for (auto _ : state) {
        w.resetRegions();
        w.resetSet();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Area_Set(benchmark::State& s) {
    setForm(s, area);
}
void BM_Area_Cold(benchmark::State& s) {
    coldForm(s, area);
}
void BM_Area_Cached(benchmark::State& s) {
    cachedForm(s, area);
}
void BM_CenterOfMass_Set(benchmark::State& s) {
    setForm(s, centre);
}
void BM_CenterOfMass_Cold(benchmark::State& s) {
    coldForm(s, centre);
}
void BM_CenterOfMass_Cached(benchmark::State& s) {
    cachedForm(s, centre);
}
void BM_IsSelfIntersecting_Set(benchmark::State& s) {
    setForm(s, selfIntersecting);
}
void BM_IsSelfIntersecting_Cold(benchmark::State& s) {
    coldForm(s, selfIntersecting);
}
void BM_IsSelfIntersecting_Cached(benchmark::State& s) {
    cachedForm(s, selfIntersecting);
}

// inside keeps no result of its own; the regions' rectangles and diameters are cached after the
// first call. A point between the polygons is rejected by every region's rectangle; the centre
// of the last region is tested by every rectangle and then by that region's ray.
void BM_Inside_NoRegion(benchmark::State& state) {
    Workload w(state.range(0));
    const xcVector<2> between(kPitch / 2, kPitch / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(w.set.inside(between, true));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Inside_LastRegion(benchmark::State& state) {
    Workload w(state.range(0));
    const xcVector<2> centre = w.lastCentre();
    for (auto _ : state)
        benchmark::DoNotOptimize(w.set.inside(centre, true));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

#define REGIONSET_SIZES ->Arg(10)->Arg(100)->Arg(1000)
BENCHMARK(BM_ResetOnly) REGIONSET_SIZES;
BENCHMARK(BM_Area_Set) REGIONSET_SIZES;
BENCHMARK(BM_Area_Cold) REGIONSET_SIZES;
BENCHMARK(BM_Area_Cached) REGIONSET_SIZES;
BENCHMARK(BM_CenterOfMass_Set) REGIONSET_SIZES;
BENCHMARK(BM_CenterOfMass_Cold) REGIONSET_SIZES;
BENCHMARK(BM_CenterOfMass_Cached) REGIONSET_SIZES;
BENCHMARK(BM_Inside_NoRegion) REGIONSET_SIZES;
BENCHMARK(BM_Inside_LastRegion) REGIONSET_SIZES;
BENCHMARK(BM_IsSelfIntersecting_Set) REGIONSET_SIZES;
BENCHMARK(BM_IsSelfIntersecting_Cold) REGIONSET_SIZES;
BENCHMARK(BM_IsSelfIntersecting_Cached) REGIONSET_SIZES;
