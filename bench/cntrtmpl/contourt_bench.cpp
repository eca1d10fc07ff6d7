// The edgelet contour at 1k, 16k and 256k edgelets on a circle: construction from edgelets
// (transform clone, one inversion, a point per edgelet), rebuilding the edgelets from new points,
// rebuilding the points from new edgelets, and a store-and-load round trip in memory.
#include <cmath>
#include <vector>

#include <benchmark/benchmark.h>

#include <cntrtmpl/contourt.h>
#include <foundation/archive.h>

namespace {

std::vector<xcEdgelet> circleEdgelets(long n) {
    std::vector<xcEdgelet> e;
    e.reserve(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * static_cast<double>(i) / static_cast<double>(n);
        e.emplace_back(xcVector<2>(100.0 * std::cos(a), 100.0 * std::sin(a)),
                       static_cast<std::uint16_t>(i & 0xFFFF), xcAngle8(xcRadian(a)));
    }
    return e;
}

const xcPtrHandle_const<xc2XformBase> kXform(new xc2XformLinear(
    xcXform<2>(xcMatrix<2>(xcRadian(0.3), xcRadian(0.3), 2.0, 2.0), xcVector<2>(5.0, -3.0))));

void BM_ContourT_FromEdgelets(benchmark::State& state) {
    const std::vector<xcEdgelet> data = circleEdgelets(state.range(0));
    for (auto _ : state) {
        xcContourT<xcEdgelet> c(data, kXform);
        benchmark::DoNotOptimize(c.points().data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_ContourT_SetPoints(benchmark::State& state) {
    xcContourT<xcEdgelet> c(circleEdgelets(state.range(0)), kXform);
    const std::vector<xcVector<2>> points = c.points();
    for (auto _ : state) {
        c.points(points);
        benchmark::DoNotOptimize(c.data().data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_ContourT_SetData(benchmark::State& state) {
    const std::vector<xcEdgelet> data = circleEdgelets(state.range(0));
    xcContourT<xcEdgelet> c(data, kXform);
    for (auto _ : state) {
        c.data(data);
        benchmark::DoNotOptimize(c.points().data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_ContourT_StoreLoad(benchmark::State& state) {
    xcPtrHandle<xcContourT<xcEdgelet>> h(
        new xcContourT<xcEdgelet>(circleEdgelets(state.range(0)), kXform));
    for (auto _ : state) {
        xcMemoryArchive out;
        out || h;
        xcMemoryArchive in(out.bytes());
        xcPtrHandle<xcContourT<xcEdgelet>> back;
        in || back;
        benchmark::DoNotOptimize(back.rep());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

#define CNTR_SIZES Arg(1 << 10)->Arg(1 << 14)->Arg(1 << 18)
BENCHMARK(BM_ContourT_FromEdgelets)->CNTR_SIZES;
BENCHMARK(BM_ContourT_SetPoints)->CNTR_SIZES;
BENCHMARK(BM_ContourT_SetData)->CNTR_SIZES;
BENCHMARK(BM_ContourT_StoreLoad)->CNTR_SIZES;
