// Storing and loading a contour through a memory archive, against the least any format can do:
// copying the raw doubles of the vertices into a byte buffer and back.
#include <algorithm>
#include <cstring>
#include <vector>

#include <cntr/contour.h>
#include <foundation/archive.h>

#include "peers_registry.h"

namespace peers {
namespace {

using Bytes = std::vector<unsigned char>;

Bytes rawStore(const Points& p) {
    Bytes out(p.size() * sizeof(xcVector<2>));
    std::memcpy(out.data(), p.data(), out.size());
    return out;
}

Points rawLoad(const Bytes& bytes) {
    Points p(bytes.size() / sizeof(xcVector<2>));
    std::memcpy(p.data(), bytes.data(), bytes.size());
    return p;
}

Bytes archiveStore(const xcPtrHandle<xcContour>& contour) {
    xcMemoryArchive out;
    xcPtrHandle<xcContour> h = contour;
    out || h;
    return out.takeBytes();
}

xcPtrHandle<xcContour> archiveLoad(const Bytes& bytes) {
    xcMemoryArchive in(bytes.data(), bytes.size());  // borrows the bytes
    xcPtrHandle<xcContour> h;
    in || h;
    return h;
}

void registerArchive() {
    addStars("archiveStore", "ours", [](benchmark::State& state, const Input& in) {
        const xcPtrHandle<xcContour> c(new xcContour(in.points, true));
        for (auto _ : state)
            benchmark::DoNotOptimize(archiveStore(c).data());
    });
    // Our record carries the vertices' doubles as one block: check that they are there.
    addStars("archiveStore", "raw_doubles", [](benchmark::State& state, const Input& in) {
        const Bytes ours = archiveStore(xcPtrHandle<xcContour>(new xcContour(in.points, true)));
        const Bytes raw = rawStore(in.points);
        const bool found = std::search(ours.begin(), ours.end(), raw.begin(), raw.end()) !=
                           ours.end();
        if (!agreeCount(state, "raw vertex block found in the archive", 1, found ? 1 : 0))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(rawStore(in.points).data());
    });

    addStars("archiveLoad", "ours", [](benchmark::State& state, const Input& in) {
        const Bytes bytes = archiveStore(xcPtrHandle<xcContour>(new xcContour(in.points, true)));
        for (auto _ : state)
            benchmark::DoNotOptimize(archiveLoad(bytes)->points().data());
    });
    addStars("archiveLoad", "raw_doubles", [](benchmark::State& state, const Input& in) {
        const Bytes raw = rawStore(in.points);
        const Bytes bytes = archiveStore(xcPtrHandle<xcContour>(new xcContour(in.points, true)));
        const bool same = archiveLoad(bytes)->points() == rawLoad(raw);
        if (!agreeCount(state, "loaded vertices equal", 1, same ? 1 : 0))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(rawLoad(raw).data());
    });
}

const bool registered = (registerArchive(), true);

}  // namespace
}  // namespace peers
