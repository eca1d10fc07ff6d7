#include <cmath>
#include <vector>

#include <benchmark/benchmark.h>

#include <foundation/fit.h>
#include <foundation/hull.h>
#include <foundation/random.h>

namespace {

using Points = std::vector<xcVector<2>>;

// Uniform in a 1000 x 1000 square: few points end up on the hull.
Points squareCloud(int count) {
    xcRandomUniform random(1);
    Points points;
    for (int i = 0; i < count; ++i) points.push_back({random.next(0.0, 1000.0), random.next(0.0, 1000.0)});
    return points;
}

// Samples of a rotated 300 x 120 ellipse with +-0.5 of noise per coordinate, in random order of
// parameter: a realistic edge-point set for the fit, and one whose points are nearly all hull
// vertices.
Points noisyEllipse(int count, double noise) {
    xcRandomUniform random(2);
    Points points;
    const double c = std::cos(0.7), s = std::sin(0.7);
    for (int i = 0; i < count; ++i) {
        const double t = random.next(0.0, 2.0 * xcPi);
        const double u = 300.0 * std::cos(t), v = 120.0 * std::sin(t);
        points.push_back({500.0 + c * u - s * v + random.next(-noise, noise),
                          400.0 + s * u + c * v + random.next(-noise, noise)});
    }
    return points;
}

void runHull(benchmark::State& state, const Points& points) {
    Points hull;
    for (auto _ : state) {
        xfConvexHull(points, hull);
        benchmark::DoNotOptimize(hull.data());
    }
    state.counters["hull"] = static_cast<double>(hull.size());
    state.SetItemsProcessed(state.iterations() * static_cast<long>(points.size()));
}

void BM_ConvexHull_SquareCloud(benchmark::State& state) {
    runHull(state, squareCloud(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_ConvexHull_SquareCloud)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_ConvexHull_EllipsePoints(benchmark::State& state) {
    runHull(state, noisyEllipse(static_cast<int>(state.range(0)), 0.0));
}
BENCHMARK(BM_ConvexHull_EllipsePoints)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_EllipseFit(benchmark::State& state) {
    const Points points = noisyEllipse(static_cast<int>(state.range(0)), 0.5);
    const xcEllipseFitParams params(xcEllipseFitDefs::fitAll, xcRadian(0.0),
                                    static_cast<unsigned>(state.range(1)), HUGE_VAL);
    xcEllipseFitResults results;
    for (auto _ : state) {
        xfEllipseFit(params, points, results);
        benchmark::DoNotOptimize(results);
    }
    state.counters["rms"] = results.error();
    state.SetItemsProcessed(state.iterations() * static_cast<long>(points.size()));
}
BENCHMARK(BM_EllipseFit)
    ->ArgNames({"points", "ignore"})
    ->Args({1000, 0})
    ->Args({100000, 0})
    ->Args({1000, 10})
    ->Args({100000, 1000})
    ->Unit(benchmark::kMicrosecond);

void BM_CircleFit(benchmark::State& state) {
    const Points points = noisyEllipse(static_cast<int>(state.range(0)), 0.5);
    const xcCircleFitParams params(xcCircleFitDefs::fitAll, 1.0, 0, HUGE_VAL);
    xcCircleFitResults results;
    for (auto _ : state) {
        xfCircleFit(params, points, results);
        benchmark::DoNotOptimize(results);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(points.size()));
}
BENCHMARK(BM_CircleFit)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);

}  // namespace
