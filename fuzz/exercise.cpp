#include "exercise.h"

#include <typeinfo>
#include <vector>

#include <cntr/contourdefs.h>
#include <foundation/geometry.h>
#include <foundation/tablet.h>

#include "fuzz_support.h"

namespace xn_fuzz {
namespace {

/// The memoised queries are asked this many times, with different arguments, so that the memos
/// fill up and replace entries.
constexpr int kMemoRounds = 6;
/// The step between the arguments of those rounds.
constexpr double kMemoAngleStep = 0.7;

const xcContourDefs::DiameterMode kDiameterModes[] = {xcContourDefs::furthestVertexPair,
                                                      xcContourDefs::fromFirstVertex};

/// The state of the turns (see runOnlyTurn). The fuzz targets run on one thread.
struct Turns {
    bool everyQuery = true;
    long selected = 0;
    long taken = 0;
    long run = 0;
    int depth = 0;
};
Turns turns;

/// The number of segments draw() gives: one per edge in edge order.
std::size_t edgeCount(const xcContour& contour) {
    const std::size_t n = contour.points().size();
    if (contour.isClosed())
        return n;
    return n > 0 ? n - 1 : 0;
}

bool isIndexOf(long index, const xcContour& contour) {
    return index >= 0 && static_cast<std::size_t>(index) < contour.points().size();
}

void drawContour(const xcContour& contour) {
    if (nextTurn()) {
        const RunningQuery running;
        xcRecordingTablet tablet;
        attempt([&] {
            contour.draw(tablet, xcContourDefs::drawNormal, xcColor(1, 2, 3), xcUITablet::Layers());
        });
        check(tablet.segments().size() == edgeCount(contour), "draw gives one segment per edge");
    }
    query([&] {
        xcSvgTablet svg;
        contour.draw(svg, xcContourDefs::drawHighlighted, xcColor(4, 5, 6), xcUITablet::Layers(3));
        (void)svg.document();
    });
}

void extentQueries(xcContour& contour, const QueryArgs& args) {
    query([&] { (void)contour.length(); });
    query([&] { (void)contour.meanPosition(); });
    for (int round = 0; round < kMemoRounds; ++round) {
        const xcRadian angle(args.angle.toDouble() + kMemoAngleStep * round);
        query([&] {
            const long index = contour.extremalVertexIndex(angle);
            check(index == -1 || isIndexOf(index, contour), "extremal vertex index in range");
        });
        query([&] { (void)contour.extremalVertexPosition(angle); });
        xcXform<2> xform = args.xform;
        if (round % 2 == 1)
            xform = xform * xcXform<2>(xcMatrix<2>(angle, angle, 1.0, 1.0), xcVector<2>());
        query([&] { (void)contour.encloseRect(round == 0 ? xcXform<2>::I : xform); });
    }
    for (xcContourDefs::DiameterMode mode : kDiameterModes) {
        query([&] { (void)contour.diameter(mode); });
        query([&] { (void)contour.encloseCircle(mode); });
    }
}

void segmentQueries(xcContour& contour, const xcContour& other, const QueryArgs& args) {
    const xcLineSeg segment(args.point, args.segmentEnd);
    for (bool endTouches : {false, true})
        query([&] { (void)contour.intersections(segment, endTouches); });
    query([&] { (void)contour.intersections(other); });
    query([&] { (void)contour.isSelfIntersecting(); });
    for (double tolerance : {args.tolerance, args.tolerance * 2.0})
        query([&] {
            for (int index : contour.vertexIndex(args.point, tolerance))
                check(isIndexOf(index, contour), "vertexIndex gives vertex indices");
        });
}

void nearestQueries(xcContour& contour, const QueryArgs& args) {
    for (bool vertexOnly : {false, true}) {
        query([&] { (void)contour.closestPoint(args.point, vertexOnly); });
        query([&] { (void)contour.distToPoint(args.point, vertexOnly); });
    }
    query([&] {
        check(isIndexOf(contour.closestVertexIndex(args.point), contour),
              "closestVertexIndex gives a vertex index");
    });
}

void hullAndFit(const xcContour& contour) {
    query([&] {
        xcRegion hull;
        contour.convexHull(hull);
        (void)hull.area(false);
    });
    query([&] {
        xcEllipse ellipse;
        double rms = 0.0;
        contour.fitEllipse(ellipse, rms);
    });
}

void modelOperations(xcContour& contour, const QueryArgs& args) {
    if (nextTurn() && typeid(contour) == typeid(xcContour) && allNumbers(contour.points())) {
        const xcContour copy(contour);
        check(copy == contour, "a copy of a contour equals it");
    }
    if (nextTurn())
        (void)contour.polygon();
    query([&] {
        xcContour mapped;
        contour.map(args.xform, mapped);
        check(mapped.points().size() == contour.points().size(), "map keeps the vertex count");
    });
    drawContour(contour);
}

void regionMeasures(xcRegion& region) {
    for (bool holes : {false, true}) {
        query([&] { (void)region.area(holes); });
        query([&] { (void)region.centerOfMass(holes); });
        query([&] { (void)region.inertiaMatrix(holes); });
    }
}

void regionQueries(xcRegion& region, const xcContour& other, const QueryArgs& args) {
    const xcLineSeg segment(args.point, args.segmentEnd);
    for (bool holes : {false, true}) {
        query([&] { (void)region.inside(args.point, holes); });
        query([&] {
            long holeIndex = -2;
            const long index = region.closestVertexIndex(args.point, holes, holeIndex);
            check(holeIndex >= -1 && holeIndex < static_cast<long>(region.holes().size()),
                  "closestVertexIndex names the outline or a hole");
            check(index >= 0, "closestVertexIndex gives a vertex index");
        });
        for (bool vertexOnly : {false, true}) {
            query([&] { (void)region.closestPoint(args.point, vertexOnly, holes); });
            for (bool zeroInside : {false, true})
                query([&] { (void)region.distToPoint(args.point, vertexOnly, holes, zeroInside); });
        }
        for (bool endTouches : {false, true})
            query([&] { (void)region.intersections(segment, endTouches, holes); });
        query([&] { (void)region.intersections(other, holes); });
    }
}

/// A few queries on a region that regularize or outerHull produced (part of that query).
void resultQueries(xcRegion& result) {
    attempt([&] { (void)result.area(true); });
    attempt([&] { (void)result.isSelfIntersecting(); });
}

void regionRepair(xcRegion& region) {
    query([&] {
        xcRegion result;
        region.regularize(result);
        resultQueries(result);
    });
    query([&] {
        xcRegion result;
        region.outerHull(result);
        resultQueries(result);
    });
    query([&] {
        xcRegion self(region);
        self.regularize(self);
    });
}

void regionModel(xcRegion& region, const QueryArgs& args) {
    if (nextTurn() && typeid(region) == typeid(xcRegion) && allNumbers(region.points())) {
        const xcRegion copy(region);
        check(copy == region, "a copy of a region equals it");
    }
    query([&] {
        xcRegion mapped;
        region.map(args.xform, mapped);
        check(mapped.holes().empty(), "a mapped region has no holes");
    });
    if (nextTurn()) {
        xcRecordingTablet tablet;
        region.xcRegion::draw(tablet, xcColor(), xcUITablet::Layers());
        check(tablet.segments().empty(), "a plain region draws nothing");
    }
    query([&] { region.isClosed(true); });
}

void setQueries(xcRegionSet& set, const QueryArgs& args) {
    for (bool holes : {false, true}) {
        query([&] { (void)set.area(holes); });
        query([&] { (void)set.centerOfMass(holes); });
        query([&] { (void)set.inertiaMatrix(holes); });
        query([&] { (void)set.inside(args.point, holes); });
        for (bool vertexOnly : {false, true})
            for (bool zeroInside : {false, true})
                query([&] { (void)set.distToPoint(args.point, vertexOnly, holes, zeroInside); });
    }
    for (int round = 0; round < kMemoRounds; ++round) {
        const xcRadian angle(args.angle.toDouble() + kMemoAngleStep * round);
        const xcXform<2> xform(xcMatrix<2>(angle, angle, 1.0, 1.0), args.xform.trans());
        query([&] { (void)set.encloseRect(round == 0 ? args.xform : xform); });
    }
    query([&] { (void)set.isSelfIntersecting(); });
}

void setRepair(xcRegionSet& set) {
    query([&] {
        xcRegionSet result;
        set.regularize(result);
        (void)result.area(true);
    });
    query([&] {
        xcRegionSet result;
        set.outerHull(result);
        (void)result.area(true);
    });
}

void setModel(xcRegionSet& set) {
    if (nextTurn() && typeid(set) == typeid(xcRegionSet)) {
        const xcRegionSet copy(set);
        bool numbers = true;
        for (const auto& region : set.regions())
            numbers = numbers && allNumbers(region->points());
        if (numbers)
            check(copy == set, "a copy of a region set equals it");
    }
    if (nextTurn()) {
        xcRecordingTablet tablet;
        set.draw(tablet, xcColor(), xcUITablet::Layers());
    }
}

/// The edgelet contour's own operations: copies, the datum and point conversions, rebuilding
/// one list from the other, and the refused geometric operation.
void edgeletContourOperations(xcContourT<xcEdgelet>& contour, const QueryArgs& args) {
    if (nextTurn() && allNumbers(contour.points())) {
        const xcContourT<xcEdgelet> copy(contour);
        check(copy == contour, "a copy of an edgelet contour equals it");
    }
    if (nextTurn())
        (void)contour.datum(args.point);
    query([&] {
        if (!contour.data().empty())
            (void)contour.point(contour.data().front());
    });
    query([&] {
        xcContourT<xcEdgelet> copy(contour);
        copy.data(contour.data());
        check(copy.points().size() == contour.data().size(), "data() rebuilds the vertices");
    });
    query([&] {
        xcContourT<xcEdgelet> copy(contour);
        copy.points(contour.points());
        check(copy.data().size() == contour.points().size(), "points() rebuilds the data");
    });
    if (nextTurn())
        check(!attempt([&] {
            xcContourT<xcEdgelet> out;
            contour.mapT(args.xform, out);
        }),
              "mapT is refused");
}

/// The edgelet region and region set refuse regularizeT.
template <class Shape>
void checkRegularizeTRefused(Shape& shape) {
    if (nextTurn())
        check(!attempt([&] {
            Shape out;
            shape.regularizeT(out);
        }),
              "regularizeT is refused");
}

void edgeletRegionOperations(xcRegionT<xcEdgelet>& region, const QueryArgs& args) {
    if (nextTurn() && allNumbers(region.points())) {
        const xcRegionT<xcEdgelet> copy(region);
        check(copy == region, "a copy of an edgelet region equals it");
    }
    if (nextTurn()) {
        xcRecordingTablet tablet;
        region.draw(tablet, xcColor(), xcUITablet::Layers());
        check(tablet.segments().size() == region.data().size(), "one stroke per edgelet");
    }
    checkRegularizeTRefused(region);
    if (nextTurn())
        check(!attempt([&] { region.isClosed(false); }), "an edgelet region cannot be opened");
    edgeletContourOperations(region, args);
}

void edgeletSetOperations(xcRegionSetT<xcEdgelet>& set) {
    if (nextTurn()) {
        const xcRegionSetT<xcEdgelet> copy(set);
        check(copy.regionsT().size() == set.regionsT().size(), "a copy keeps the edgelet regions");
    }
    checkRegularizeTRefused(set);
}

}  // namespace

void runEveryQuery() {
    turns = Turns();
}

void backToEveryQuery() {
    turns.everyQuery = true;
    turns.depth = 0;
}

void runOnlyTurn(long turn) {
    turns = Turns();
    turns.everyQuery = false;
    turns.selected = turn;
}

long turnsTaken() {
    return turns.taken;
}

long queriesRun() {
    return turns.run;
}

bool nextTurn() {
    if (turns.depth > 0)
        return true;
    const long turn = turns.taken++;
    const bool runs = turns.everyQuery || turn == turns.selected;
    turns.run += runs ? 1 : 0;
    return runs;
}

RunningQuery::RunningQuery() {
    ++turns.depth;
}

RunningQuery::~RunningQuery() {
    --turns.depth;
}

void exerciseContour(xcContour& contour, const xcContour& other, const QueryArgs& args) {
    attempt([&] { contour.cachedVectorSize(args.cachedVectorSize); });
    modelOperations(contour, args);
    extentQueries(contour, args);
    segmentQueries(contour, other, args);
    nearestQueries(contour, args);
    hullAndFit(contour);
}

void exerciseRegion(xcRegion& region, const xcContour& other, const QueryArgs& args) {
    regionModel(region, args);
    regionMeasures(region);
    regionQueries(region, other, args);
    regionRepair(region);
    exerciseContour(region, other, args);
}

void exerciseRegionSet(xcRegionSet& set, const QueryArgs& args) {
    attempt([&] { set.cachedVectorSize(args.cachedVectorSize); });
    setModel(set);
    setQueries(set, args);
    setRepair(set);
}

void exerciseContourT(xcContourT<xcEdgelet>& contour, const xcContour& other,
                      const QueryArgs& args) {
    edgeletContourOperations(contour, args);
    exerciseContour(contour, other, args);
}

void exerciseRegionT(xcRegionT<xcEdgelet>& region, const xcContour& other, const QueryArgs& args) {
    edgeletRegionOperations(region, args);
    exerciseRegion(region, other, args);
}

void exerciseRegionSetT(xcRegionSetT<xcEdgelet>& set, const QueryArgs& args) {
    edgeletSetOperations(set);
    exerciseRegionSet(set, args);
}

}  // namespace xn_fuzz
