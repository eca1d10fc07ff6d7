// Fuzz target: shapes built from arbitrary coordinates (NaN, infinities, huge and tiny
// magnitudes, repeated vertices), on which every query of the contour, region and region set
// runs, regularize and outer hull included, and the moment functions on the raw vertex lists.
//
// Input layout (see ByteReader for the coordinate form; missing bytes read as zeros):
//   flags byte: bit 0 closes the first contour, bits 1-2 the region mode (3 is not a valid
//     mode), bit 3 makes the second region a hole of the first, bit 4 adds the edgelet shapes,
//     bits 5-7 the memo limit;
//   the query point, the segment's far end, the lookup tolerance, the angle (4 coordinates and
//     2 for the point pairs), the transform (6 coordinates);
//   the first vertex list, the second vertex list (a count byte and the points each);
//   for the edgelet shapes, a 16-bit magnitude and an angle byte per vertex of the first list;
//   the focus: when bytes follow the shapes, a 16-bit number whose value modulo 512 picks the
//     one query to run, by its turn (see runOnlyTurn; a number beyond the queries reached
//     wraps round to them); an input that ends with its shapes runs every query.
#include <cstddef>
#include <cstdint>
#include <vector>

#include <cntr/contour.h>
#include <cntr/moments.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <cntrtmpl/contourt.h>
#include <cntrtmpl/regionsett.h>
#include <cntrtmpl/regiont.h>

#include "exercise.h"
#include "fuzz_support.h"
#include "targets.h"

namespace xn_fuzz {
namespace {

using Points = std::vector<xcVector<2>>;

/// A focus number picks a turn modulo this: above the number of queries a full run reaches
/// (about 300 with the edgelet shapes), so that every query can be picked.
constexpr long kFocusRange = 512;

struct GeometryInput {
    bool closed = false;
    xcContourDefs::IntersectionMode mode = xcContourDefs::keepOutline;
    bool secondIsHole = false;
    bool edgelets = false;
    QueryArgs args;
    Points first;
    Points second;
    std::vector<xcEdgelet> data;
};

/// Region modes as the flags byte codes them; 3 stands for a value outside the enum's names,
/// which the constructors take as keepOutline.
xcContourDefs::IntersectionMode modeOf(unsigned bits) {
    return static_cast<xcContourDefs::IntersectionMode>(bits & 3u);
}

GeometryInput decode(ByteReader& in) {
    GeometryInput g;
    const std::uint8_t flags = in.byte();
    g.closed = (flags & 1u) != 0;
    g.mode = modeOf(flags >> 1);
    g.secondIsHole = (flags & 8u) != 0;
    g.edgelets = (flags & 16u) != 0;
    g.args.cachedVectorSize = flags >> 5;
    g.args.point = in.point();
    g.args.segmentEnd = in.point();
    g.args.tolerance = in.coordinate();
    g.args.angle = xcRadian(in.coordinate());
    g.args.xform = in.xform();
    g.first = in.pointList();
    g.second = in.pointList();
    if (g.edgelets)
        for (const xcVector<2>& p : g.first) {
            const std::uint16_t magnitude = in.u16();
            g.data.emplace_back(p, magnitude, xcAngle8(in.byte()));
        }
    return g;
}

void momentFunctions(const Points& first, const Points& second) {
    query([&] { (void)xf_Area(first); });
    query([&] { (void)xf_CenterOfMass(first); });
    query([&] {
        xc_InertiaData data = xf_InertiaDataPolygon(first);
        (void)xf_EllipseFromInertiaData(data);
        (void)(data + xf_InertiaDataPolygon(second));
    });
    query([&] {
        xcEllipse ellipse;
        double rms = 0.0;
        xf_FitEllipse(first, ellipse, rms);
    });
    query([&] {
        std::vector<double> xs;
        for (const xcVector<2>& p : first)
            xs.push_back(p.x());
        (void)xf_StdDev(xs);
    });
}

/// A region of `points` under `mode`; when the mode's repair refuses the outline, the outline
/// as given (keepOutline never refuses).
xcPtrHandle<xcRegion> regionOf(const Points& points, xcContourDefs::IntersectionMode mode) {
    xcPtrHandle<xcRegion> region;
    if (!attempt([&] { region = xcPtrHandle<xcRegion>(new xcRegion(points, mode)); }))
        region = xcPtrHandle<xcRegion>(new xcRegion(points));
    return region;
}

void plainShapes(const GeometryInput& g) {
    xcPtrHandle<xcContour> first(new xcContour(g.first, g.closed, 7));
    const xcContour second(g.second, !g.closed);
    exerciseContour(*first, second, g.args);
    if (nextTurn())
        checkRoundTrip(first, "a stored contour loads and stores again to the same bytes");

    xcPtrHandle<xcRegion> outer = regionOf(g.first, g.mode);
    xcPtrHandle<xcRegion> inner = regionOf(g.second, xcContourDefs::keepOutline);
    if (g.secondIsHole)
        attempt([&] { outer->holes(std::vector<xcPtrHandle<xcRegion>>{inner}); });
    exerciseRegion(*outer, second, g.args);
    if (nextTurn())
        checkRoundTrip(outer, "a stored region loads and stores again to the same bytes");

    xcPtrHandle<xcRegionSet> set;
    const xcRegionSet::MutableRegionHandles members{outer, inner};
    if (!attempt([&] { set = xcPtrHandle<xcRegionSet>(new xcRegionSet(members, g.mode)); }))
        set = xcPtrHandle<xcRegionSet>(new xcRegionSet(members));
    exerciseRegionSet(*set, g.args);
    if (nextTurn())
        checkRoundTrip(set, "a stored region set loads and stores again to the same bytes");
}

void edgeletShapes(const GeometryInput& g) {
    const xcPtrHandle_const<xc2XformBase> xform(new xc2XformLinear(g.args.xform));
    const xcContour second(g.second, true);

    xcPtrHandle<xcContourT<xcEdgelet>> contour;
    if (attempt([&] {
            contour = xcPtrHandle<xcContourT<xcEdgelet>>(new xcContourT<xcEdgelet>(g.data, xform));
        })) {
        exerciseContourT(*contour, second, g.args);
        if (nextTurn())
            checkRoundTrip(contour, "a stored edgelet contour loads and stores again");
    }

    xcPtrHandle<xcRegionT<xcEdgelet>> region;
    if (!attempt([&] {
            region = xcPtrHandle<xcRegionT<xcEdgelet>>(new xcRegionT<xcEdgelet>(g.data, xform, 3));
        }))
        region = xcPtrHandle<xcRegionT<xcEdgelet>>(new xcRegionT<xcEdgelet>(g.data, 3));
    exerciseRegionT(*region, second, g.args);
    if (nextTurn())
        checkRoundTrip(region, "a stored edgelet region loads and stores again");

    const xcPtrHandle<xcRegionT<xcEdgelet>> other(
        new xcRegionT<xcEdgelet>(std::vector<xcEdgelet>(g.data.rbegin(), g.data.rend()), 4));
    xcPtrHandle<xcRegionSetT<xcEdgelet>> set(
        new xcRegionSetT<xcEdgelet>(xcRegionSetT<xcEdgelet>::MutableRegionTHandles{region, other}));
    exerciseRegionSetT(*set, g.args);
    if (nextTurn())
        checkRoundTrip(set, "a stored edgelet region set loads and stores again");
}

/// Every query on the shapes of `g`, in the turns' order.
void exerciseShapes(const GeometryInput& g) {
    momentFunctions(g.first, g.second);
    plainShapes(g);
    if (g.edgelets)
        edgeletShapes(g);
}

/// Puts the exercise functions back to running every query when an input is done (the
/// archive target and the tests count on it); the input's counts stay readable.
struct EveryQueryAfterwards {
    ~EveryQueryAfterwards() { backToEveryQuery(); }
};

}  // namespace

int geometryOneInput(const std::uint8_t* data, std::size_t size) {
    installAssertHandler();
    ByteReader in(data, size);
    const GeometryInput g = decode(in);
    const EveryQueryAfterwards restore;
    if (in.empty()) {
        runEveryQuery();
        exerciseShapes(g);
        return 0;
    }
    const long focus = in.u16() % kFocusRange;
    runOnlyTurn(focus);
    exerciseShapes(g);
    const long reached = turnsTaken();
    if (queriesRun() == 0 && reached > 0) {
        runOnlyTurn(focus % reached);
        exerciseShapes(g);
    }
    return 0;
}

}  // namespace xn_fuzz
