// Drawing an edgelet region of 1k, 16k and 256k edgelets as strokes, on a tablet that only sums
// the end points it is given (so the figures are the region's own work).
#include <cmath>
#include <vector>

#include <benchmark/benchmark.h>

#include <cntrtmpl/regiont.h>

namespace {

class SummingTablet : public xcUITablet {
  public:
    void drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2, const xcColor&,
                     const Layers&) override {
        sum += p1.x() + p1.y() + p2.x() + p2.y();
    }
    double sum = 0.0;
};

std::vector<xcEdgelet> circleEdgelets(long n) {
    std::vector<xcEdgelet> e;
    e.reserve(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * static_cast<double>(i) / static_cast<double>(n);
        e.emplace_back(xcVector<2>(100.0 * std::cos(a), 100.0 * std::sin(a)), 1,
                       xcAngle8(xcRadian(a)));
    }
    return e;
}

void BM_RegionT_Draw(benchmark::State& state) {
    const xcRegionT<xcEdgelet> r(circleEdgelets(state.range(0)), 0);
    SummingTablet tablet;
    for (auto _ : state)
        r.draw(tablet, xcColor(), xcUITablet::Layers());
    benchmark::DoNotOptimize(tablet.sum);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(BM_RegionT_Draw)->Arg(1 << 10)->Arg(1 << 14)->Arg(1 << 18);
