// `cntrtool measure` on a COCO-style file of 100,000 polygons written at bench time: reading
// and parsing the file, measuring every shape and formatting the report (table or JSON, sent to
// a stream that discards it). The counter shapes/s is the figure of interest.
//
// The file is made by a seeded generator: star-shaped polygons of 3 to 24 vertices (radii
// jittered around a random size, so the outlines are simple) scattered over 640 x 480 images,
// one polygon per annotation; every 20th polygon has two of its vertices swapped, which makes
// most of them cross themselves, as real annotation files sometimes do.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <random>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include <benchmark/benchmark.h>

#include "commands.h"

namespace {

constexpr long kPolygons = 100000;
constexpr long kAnnotationsPerImage = 50;
constexpr unsigned kSeed = 20240611;
constexpr int kSwapEvery = 20;  // one polygon in 20 gets two vertices swapped
constexpr double kPi = 3.14159265358979323846;

std::vector<std::pair<double, double>> starPolygon(std::mt19937& rng) {
    std::uniform_int_distribution<int> vertices(3, 24);
    std::uniform_real_distribution<double> centreX(40.0, 600.0), centreY(40.0, 440.0);
    std::uniform_real_distribution<double> size(5.0, 35.0), jitter(0.6, 1.0), phase(0.0, 2 * kPi);
    const int n = vertices(rng);
    const double cx = centreX(rng), cy = centreY(rng), r = size(rng), a0 = phase(rng);
    std::vector<std::pair<double, double>> p;
    for (int i = 0; i < n; ++i) {
        const double a = a0 + 2 * kPi * i / n, ri = r * jitter(rng);
        p.emplace_back(cx + ri * std::cos(a), cy + ri * std::sin(a));
    }
    return p;
}

void writeCocoFile(const std::filesystem::path& path) {
    std::mt19937 rng(kSeed);
    std::ofstream out(path);
    out << "{\"images\": [";
    const long images = (kPolygons + kAnnotationsPerImage - 1) / kAnnotationsPerImage;
    for (long i = 1; i <= images; ++i)
        out << (i > 1 ? ", " : "") << "{\"id\": " << i << ", \"width\": 640, \"height\": 480}";
    out << "],\n \"annotations\": [\n";
    char number[32];
    for (long k = 0; k < kPolygons; ++k) {
        auto polygon = starPolygon(rng);
        if (k % kSwapEvery == 0)
            std::swap(polygon[0], polygon[polygon.size() / 2]);
        out << (k > 0 ? ",\n" : "") << "  {\"id\": " << k + 1
            << ", \"image_id\": " << k / kAnnotationsPerImage + 1
            << ", \"category_id\": " << k % 5 + 1 << ", \"segmentation\": [[";
        for (std::size_t v = 0; v < polygon.size(); ++v) {
            std::snprintf(number, sizeof number, "%s%.2f, %.2f", v > 0 ? ", " : "",
                          polygon[v].first, polygon[v].second);
            out << number;
        }
        out << "]]}";
    }
    out << "\n]}\n";
    if (!out)
        throw std::runtime_error("cannot write " + path.string());
}

// The generated file, written once and removed when the benchmark ends.
struct GeneratedFile {
    std::filesystem::path path = std::filesystem::temp_directory_path() /
                                 ("cntrtool_bench_coco_" + std::to_string(::getpid()) + ".json");
    GeneratedFile() { writeCocoFile(path); }
    ~GeneratedFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
};

const GeneratedFile& generatedFile() {
    static const GeneratedFile file;
    return file;
}

// A stream that throws everything away, so only the formatting is timed, not a terminal.
class NullBuffer : public std::streambuf {
  protected:
    int overflow(int c) override { return c; }
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

void runMeasure(benchmark::State& state, bool json) {
    const std::string path = generatedFile().path.string();
    std::vector<std::string> args{"measure", path};
    if (json)
        args.push_back("--json");
    NullBuffer discard;
    std::ostream out(&discard), err(&discard);
    for (auto _ : state) {
        const int status = cntrtool::run(args, out, err, false);
        if (status != 0)
            state.SkipWithError("measure failed");
        benchmark::ClobberMemory();
    }
    state.counters["shapes/s"] =
        benchmark::Counter(static_cast<double>(kPolygons), benchmark::Counter::kIsIterationInvariantRate);
}

void BM_MeasureTable(benchmark::State& state) { runMeasure(state, false); }
void BM_MeasureJson(benchmark::State& state) { runMeasure(state, true); }

BENCHMARK(BM_MeasureTable)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_MeasureJson)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace
