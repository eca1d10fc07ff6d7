// Whole-outline checks and repairs, ours against the peers': self-intersection (GEOS isValid,
// Boost.Geometry is_valid; Boost's is_simple only looks for repeated points on polygons, so it
// is not used) and the repair of self-crossing outlines (GEOS MakeValid, Clipper's union with
// the non-zero rule) for our regularize and outerHull.
//
// Every iteration is a first call: our outline drops its caches first.
#include <vector>

#include <cntr/contour.h>
#include <cntr/region.h>

#include "peers_adapters.h"
#include "peers_registry.h"

namespace peers {
namespace {

void dropRegion(const xcRegion& r) {
    const_cast<xcRegion&>(r).holes(std::vector<xcPtrHandle_const<xcRegion>>());
}

void addOutlines(const std::string& operation, const std::string& implementation, Body body) {
    add(operation, implementation, {Kind::blob, Kind::spiky}, {k1k, k16k, k256k}, body);
    add(operation, implementation, {Kind::crossing}, {k1k, k16k}, body);
}

bool oursCrosses(const Input& in) {
    return xcContour(in.points, true).isSelfIntersecting();
}

void registerSelfIntersection() {
    addOutlines("isSelfIntersecting", "ours", [](benchmark::State& state, const Input& in) {
        const xcContour c(in.points, true);
        for (auto _ : state) {
            const_cast<xcContour&>(c).isClosed(true);
            benchmark::DoNotOptimize(c.isSelfIntersecting());
        }
    });
    addOutlines("isSelfIntersecting", "geos_isValid", [](benchmark::State& state,
                                                         const Input& in) {
        const GeosGeometry polygon = geosPolygon(in.points);
        const bool valid = GEOSisValid_r(geos(), polygon.get()) == 1;
        if (!agreeCount(state, "crosses itself", oursCrosses(in) ? 1 : 0, valid ? 0 : 1))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(GEOSisValid_r(geos(), polygon.get()));
    });
    addOutlines("isSelfIntersecting", "boost_is_valid", [](benchmark::State& state,
                                                           const Input& in) {
        const BPolygon polygon = toBoostPolygon(in.points);
        const bool valid = bg::is_valid(polygon);
        if (!agreeCount(state, "crosses itself", oursCrosses(in) ? 1 : 0, valid ? 0 : 1))
            return;
        markChecked(state, true);
        for (auto _ : state)
            benchmark::DoNotOptimize(bg::is_valid(polygon));
    });
}

// The repairs define their results differently (our walk follows crossings, GEOS keeps every
// enclosed piece, Clipper fills by winding number): the answers are not compared.
void addRepairPeers(const std::string& operation) {
    add(operation, "geos_MakeValid", {Kind::crossing}, {k1k, k16k},
        [](benchmark::State& state, const Input& in) {
            const GeosGeometry polygon = geosPolygon(in.points);
            markChecked(state, false);
            for (auto _ : state) {
                const GeosGeometry valid(GEOSMakeValid_r(geos(), polygon.get()));
                benchmark::DoNotOptimize(valid.get());
            }
        });
    add(operation, "clipper_union", {Kind::crossing}, {k1k, k16k},
        [](benchmark::State& state, const Input& in) {
            const ClipperLib::Path outline = toClipper(in.points);
            markChecked(state, false);
            for (auto _ : state) {
                ClipperLib::Clipper clipper;
                clipper.AddPath(outline, ClipperLib::ptSubject, true);
                ClipperLib::Paths solution;
                clipper.Execute(ClipperLib::ctUnion, solution, ClipperLib::pftNonZero,
                                ClipperLib::pftNonZero);
                benchmark::DoNotOptimize(solution.data());
            }
        });
}

void registerRepairs() {
    add("regularize", "ours", {Kind::crossing}, {k1k, k16k},
        [](benchmark::State& state, const Input& in) {
            const xcRegion r(in.points, xcContourDefs::keepOutline);
            xcRegion out;
            for (auto _ : state) {
                dropRegion(r);
                r.regularize(out);
                benchmark::DoNotOptimize(out.points().data());
            }
        });
    add("outerHull", "ours", {Kind::crossing}, {k1k, k16k},
        [](benchmark::State& state, const Input& in) {
            const xcRegion r(in.points, xcContourDefs::keepOutline);
            xcRegion out;
            for (auto _ : state) {
                dropRegion(r);
                r.outerHull(out);
                benchmark::DoNotOptimize(out.points().data());
            }
        });
    addRepairPeers("regularize");
    addRepairPeers("outerHull");
}

const bool registered = (registerSelfIntersection(), registerRepairs(), true);

}  // namespace
}  // namespace peers
