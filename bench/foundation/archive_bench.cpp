// Storing and loading points through the vector record in memory.
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include <foundation/archive.h>
#include <foundation/random.h>

namespace {

std::vector<xcVector<2>> randomPoints(std::size_t n) {
    xcRandomUniform random(1);
    std::vector<xcVector<2>> points(n);
    for (auto& p : points)
        p = xcVector<2>(random.next(-1e3, 1e3), random.next(-1e3, 1e3));
    return points;
}

void BM_StorePoints(benchmark::State& state) {
    std::vector<xcVector<2>> points = randomPoints(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        xcMemoryArchive ar;
        ar || points;
        benchmark::DoNotOptimize(ar.bytes().data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0) * 16);
}

void BM_LoadPoints(benchmark::State& state) {
    std::vector<xcVector<2>> points = randomPoints(static_cast<std::size_t>(state.range(0)));
    xcMemoryArchive out;
    out || points;
    const std::vector<unsigned char> bytes = out.bytes();
    for (auto _ : state) {
        xcMemoryArchive in(bytes.data(), bytes.size());  // borrows the bytes: no copy
        std::vector<xcVector<2>> loaded;
        in || loaded;
        benchmark::DoNotOptimize(loaded.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0) * 16);
}

BENCHMARK(BM_StorePoints)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadPoints)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
