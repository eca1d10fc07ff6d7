// Runs one fuzz target over input files without libFuzzer, for builds with any compiler: each
// argument is a file or a folder of files. Prints the slowest input and the time it took.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "targets.h"

namespace {

std::vector<unsigned char> readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                      std::istreambuf_iterator<char>());
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        if (std::filesystem::is_directory(argv[i])) {
            for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
                if (entry.is_regular_file())
                    files.push_back(entry.path());
        } else {
            files.emplace_back(argv[i]);
        }
    }
    std::sort(files.begin(), files.end());
    double slowest = 0.0;
    std::string slowestFile;
    for (const auto& file : files) {
        const std::vector<unsigned char> bytes = readFile(file);
        const auto start = std::chrono::steady_clock::now();
        xn_fuzz::CNTR_FUZZ_TARGET(bytes.data(), bytes.size());
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        if (took.count() >= slowest) {
            slowest = took.count();
            slowestFile = file.string();
        }
    }
    std::printf("%zu inputs; slowest %.3f s: %s\n", files.size(), slowest, slowestFile.c_str());
    return 0;
}
