#include "peers_registry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

namespace peers {

void add(const std::string& operation, const std::string& implementation,
         std::initializer_list<Kind> kinds, std::initializer_list<std::size_t> sizes, Body body) {
    for (const Kind kind : kinds) {
        for (const std::size_t n : sizes) {
            const std::string name = operation + "/" + kindName(kind) + "/" + sizeName(n) + "/" +
                                     implementation;
            benchmark::RegisterBenchmark(name.c_str(),
                                         [kind, n, body](benchmark::State& state) {
                                             body(state, input(kind, n));
                                         })
                ->Unit(benchmark::kMicrosecond);
        }
    }
}

void addStars(const std::string& operation, const std::string& implementation, Body body) {
    add(operation, implementation, {Kind::blob, Kind::spiky}, {k1k, k16k, k256k}, body);
}

bool agree(benchmark::State& state, const std::string& what, double ours, double theirs,
           double tolerance, double scale) {
    const double reference = std::max({std::fabs(ours), std::fabs(theirs), scale});
    if (std::fabs(ours - theirs) <= tolerance * reference)
        return true;
    std::ostringstream message;
    message.precision(17);
    message << what << ": ours " << ours << ", peer " << theirs << " (relative tolerance "
            << tolerance << ")";
    state.SkipWithError(message.str().c_str());
    return false;
}

bool agreeCount(benchmark::State& state, const std::string& what, long long ours,
                long long theirs, long long slack) {
    if (std::llabs(ours - theirs) <= slack)
        return true;
    std::ostringstream message;
    message << what << ": ours " << ours << ", peer " << theirs << " (allowed difference "
            << slack << ")";
    state.SkipWithError(message.str().c_str());
    return false;
}

void markChecked(benchmark::State& state, bool checked) {
    state.counters["checked"] = checked ? 1.0 : 0.0;
}

}  // namespace peers
