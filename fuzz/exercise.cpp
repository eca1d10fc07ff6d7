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
    xcRecordingTablet tablet;
    attempt([&] {
        contour.draw(tablet, xcContourDefs::drawNormal, xcColor(1, 2, 3), xcUITablet::Layers());
    });
    check(tablet.segments().size() == edgeCount(contour), "draw gives one segment per edge");

    xcSvgTablet svg;
    attempt([&] {
        contour.draw(svg, xcContourDefs::drawHighlighted, xcColor(4, 5, 6), xcUITablet::Layers(3));
        (void)svg.document();
    });
}

void extentQueries(xcContour& contour, const QueryArgs& args) {
    attempt([&] { (void)contour.length(); });
    attempt([&] { (void)contour.meanPosition(); });
    for (int round = 0; round < kMemoRounds; ++round) {
        const xcRadian angle(args.angle.toDouble() + kMemoAngleStep * round);
        attempt([&] {
            const long index = contour.extremalVertexIndex(angle);
            check(index == -1 || isIndexOf(index, contour), "extremal vertex index in range");
        });
        attempt([&] { (void)contour.extremalVertexPosition(angle); });
        xcXform<2> xform = args.xform;
        if (round % 2 == 1)
            xform = xform * xcXform<2>(xcMatrix<2>(angle, angle, 1.0, 1.0), xcVector<2>());
        attempt([&] { (void)contour.encloseRect(round == 0 ? xcXform<2>::I : xform); });
    }
    for (xcContourDefs::DiameterMode mode : kDiameterModes) {
        attempt([&] { (void)contour.diameter(mode); });
        attempt([&] { (void)contour.encloseCircle(mode); });
    }
}

void segmentQueries(xcContour& contour, const xcContour& other, const QueryArgs& args) {
    const xcLineSeg segment(args.point, args.segmentEnd);
    for (bool endTouches : {false, true})
        attempt([&] { (void)contour.intersections(segment, endTouches); });
    attempt([&] { (void)contour.intersections(other); });
    attempt([&] { (void)contour.isSelfIntersecting(); });
    for (double tolerance : {args.tolerance, args.tolerance * 2.0})
        attempt([&] {
            for (int index : contour.vertexIndex(args.point, tolerance))
                check(isIndexOf(index, contour), "vertexIndex gives vertex indices");
        });
}

void nearestQueries(xcContour& contour, const QueryArgs& args) {
    for (bool vertexOnly : {false, true}) {
        attempt([&] { (void)contour.closestPoint(args.point, vertexOnly); });
        attempt([&] { (void)contour.distToPoint(args.point, vertexOnly); });
    }
    attempt([&] {
        check(isIndexOf(contour.closestVertexIndex(args.point), contour),
              "closestVertexIndex gives a vertex index");
    });
}

void hullAndFit(const xcContour& contour) {
    attempt([&] {
        xcRegion hull;
        contour.convexHull(hull);
        (void)hull.area(false);
    });
    attempt([&] {
        xcEllipse ellipse;
        double rms = 0.0;
        contour.fitEllipse(ellipse, rms);
    });
}

void modelOperations(xcContour& contour, const QueryArgs& args) {
    if (typeid(contour) == typeid(xcContour) && allNumbers(contour.points())) {
        const xcContour copy(contour);
        check(copy == contour, "a copy of a contour equals it");
    }
    (void)contour.polygon();
    attempt([&] {
        xcContour mapped;
        contour.map(args.xform, mapped);
        check(mapped.points().size() == contour.points().size(), "map keeps the vertex count");
    });
    drawContour(contour);
}

void regionMeasures(xcRegion& region) {
    for (bool holes : {false, true}) {
        attempt([&] { (void)region.area(holes); });
        attempt([&] { (void)region.centerOfMass(holes); });
        attempt([&] { (void)region.inertiaMatrix(holes); });
    }
}

void regionQueries(xcRegion& region, const xcContour& other, const QueryArgs& args) {
    const xcLineSeg segment(args.point, args.segmentEnd);
    for (bool holes : {false, true}) {
        attempt([&] { (void)region.inside(args.point, holes); });
        attempt([&] {
            long holeIndex = -2;
            const long index = region.closestVertexIndex(args.point, holes, holeIndex);
            check(holeIndex >= -1 && holeIndex < static_cast<long>(region.holes().size()),
                  "closestVertexIndex names the outline or a hole");
            check(index >= 0, "closestVertexIndex gives a vertex index");
        });
        for (bool vertexOnly : {false, true}) {
            attempt([&] { (void)region.closestPoint(args.point, vertexOnly, holes); });
            for (bool zeroInside : {false, true})
                attempt(
                    [&] { (void)region.distToPoint(args.point, vertexOnly, holes, zeroInside); });
        }
        for (bool endTouches : {false, true})
            attempt([&] { (void)region.intersections(segment, endTouches, holes); });
        attempt([&] { (void)region.intersections(other, holes); });
    }
}

/// A few queries on a region that regularize or outerHull produced.
void resultQueries(xcRegion& result) {
    attempt([&] { (void)result.area(true); });
    attempt([&] { (void)result.isSelfIntersecting(); });
}

void regionRepair(xcRegion& region) {
    attempt([&] {
        xcRegion result;
        region.regularize(result);
        resultQueries(result);
    });
    attempt([&] {
        xcRegion result;
        region.outerHull(result);
        resultQueries(result);
    });
    attempt([&] {
        xcRegion self(region);
        self.regularize(self);
    });
}

void regionModel(xcRegion& region, const QueryArgs& args) {
    if (typeid(region) == typeid(xcRegion) && allNumbers(region.points())) {
        const xcRegion copy(region);
        check(copy == region, "a copy of a region equals it");
    }
    attempt([&] {
        xcRegion mapped;
        region.map(args.xform, mapped);
        check(mapped.holes().empty(), "a mapped region has no holes");
    });
    xcRecordingTablet tablet;
    region.xcRegion::draw(tablet, xcColor(), xcUITablet::Layers());
    check(tablet.segments().empty(), "a plain region draws nothing");
    attempt([&] { region.isClosed(true); });
}

void setQueries(xcRegionSet& set, const QueryArgs& args) {
    for (bool holes : {false, true}) {
        attempt([&] { (void)set.area(holes); });
        attempt([&] { (void)set.centerOfMass(holes); });
        attempt([&] { (void)set.inertiaMatrix(holes); });
        attempt([&] { (void)set.inside(args.point, holes); });
        for (bool vertexOnly : {false, true})
            for (bool zeroInside : {false, true})
                attempt([&] { (void)set.distToPoint(args.point, vertexOnly, holes, zeroInside); });
    }
    for (int round = 0; round < kMemoRounds; ++round) {
        const xcRadian angle(args.angle.toDouble() + kMemoAngleStep * round);
        const xcXform<2> xform(xcMatrix<2>(angle, angle, 1.0, 1.0), args.xform.trans());
        attempt([&] { (void)set.encloseRect(round == 0 ? args.xform : xform); });
    }
    attempt([&] { (void)set.isSelfIntersecting(); });
}

void setRepair(xcRegionSet& set) {
    attempt([&] {
        xcRegionSet result;
        set.regularize(result);
        (void)result.area(true);
    });
    attempt([&] {
        xcRegionSet result;
        set.outerHull(result);
        (void)result.area(true);
    });
}

void setModel(xcRegionSet& set) {
    if (typeid(set) == typeid(xcRegionSet)) {
        const xcRegionSet copy(set);
        bool numbers = true;
        for (const auto& region : set.regions())
            numbers = numbers && allNumbers(region->points());
        if (numbers)
            check(copy == set, "a copy of a region set equals it");
    }
    xcRecordingTablet tablet;
    set.draw(tablet, xcColor(), xcUITablet::Layers());
}

/// The edgelet contour's own operations: copies, the datum and point conversions, rebuilding
/// one list from the other, and the refused geometric operation.
void edgeletContourOperations(xcContourT<xcEdgelet>& contour, const QueryArgs& args) {
    if (allNumbers(contour.points())) {
        const xcContourT<xcEdgelet> copy(contour);
        check(copy == contour, "a copy of an edgelet contour equals it");
    }
    (void)contour.datum(args.point);
    if (!contour.data().empty())
        attempt([&] { (void)contour.point(contour.data().front()); });
    attempt([&] {
        xcContourT<xcEdgelet> copy(contour);
        copy.data(contour.data());
        check(copy.points().size() == contour.data().size(), "data() rebuilds the vertices");
    });
    attempt([&] {
        xcContourT<xcEdgelet> copy(contour);
        copy.points(contour.points());
        check(copy.data().size() == contour.points().size(), "points() rebuilds the data");
    });
    check(!attempt([&] {
        xcContourT<xcEdgelet> out;
        contour.mapT(args.xform, out);
    }),
          "mapT is refused");
}

}  // namespace

void exerciseContour(xcContour& contour, const xcContour& other, const QueryArgs& args) {
    attempt([&] { contour.cachedVectorSize(args.cachedVectorSize); });
    if (runs(args, QueryGroup::contourModel))
        modelOperations(contour, args);
    if (runs(args, QueryGroup::extent))
        extentQueries(contour, args);
    if (runs(args, QueryGroup::segments))
        segmentQueries(contour, other, args);
    if (runs(args, QueryGroup::nearest))
        nearestQueries(contour, args);
    if (runs(args, QueryGroup::hullAndFit))
        hullAndFit(contour);
}

void exerciseRegion(xcRegion& region, const xcContour& other, const QueryArgs& args) {
    if (runs(args, QueryGroup::regionModel))
        regionModel(region, args);
    if (runs(args, QueryGroup::regionMeasures))
        regionMeasures(region);
    if (runs(args, QueryGroup::regionQueries))
        regionQueries(region, other, args);
    if (runs(args, QueryGroup::regionRepair))
        regionRepair(region);
    exerciseContour(region, other, args);
}

void exerciseRegionSet(xcRegionSet& set, const QueryArgs& args) {
    attempt([&] { set.cachedVectorSize(args.cachedVectorSize); });
    if (runs(args, QueryGroup::setModel))
        setModel(set);
    if (runs(args, QueryGroup::setQueries))
        setQueries(set, args);
    if (runs(args, QueryGroup::setRepair))
        setRepair(set);
}

void exerciseContourT(xcContourT<xcEdgelet>& contour, const xcContour& other,
                      const QueryArgs& args) {
    if (runs(args, QueryGroup::edgeletOperations))
        edgeletContourOperations(contour, args);
    exerciseContour(contour, other, args);
}

namespace {

void edgeletRegionOperations(xcRegionT<xcEdgelet>& region, const QueryArgs& args) {
    if (allNumbers(region.points())) {
        const xcRegionT<xcEdgelet> copy(region);
        check(copy == region, "a copy of an edgelet region equals it");
    }
    xcRecordingTablet tablet;
    region.draw(tablet, xcColor(), xcUITablet::Layers());
    check(tablet.segments().size() == region.data().size(), "one stroke per edgelet");
    check(!attempt([&] {
        xcRegionT<xcEdgelet> out;
        region.regularizeT(out);
    }),
          "regularizeT is refused");
    check(!attempt([&] { region.isClosed(false); }), "an edgelet region cannot be opened");
    edgeletContourOperations(region, args);
}

void edgeletSetOperations(xcRegionSetT<xcEdgelet>& set) {
    const xcRegionSetT<xcEdgelet> copy(set);
    check(copy.regionsT().size() == set.regionsT().size(), "a copy keeps the edgelet regions");
    check(!attempt([&] {
        xcRegionSetT<xcEdgelet> out;
        set.regularizeT(out);
    }),
          "regularizeT is refused");
}

}  // namespace

void exerciseRegionT(xcRegionT<xcEdgelet>& region, const xcContour& other, const QueryArgs& args) {
    if (runs(args, QueryGroup::edgeletOperations))
        edgeletRegionOperations(region, args);
    exerciseRegion(region, other, args);
}

void exerciseRegionSetT(xcRegionSetT<xcEdgelet>& set, const QueryArgs& args) {
    if (runs(args, QueryGroup::edgeletOperations))
        edgeletSetOperations(set);
    exerciseRegionSet(set, args);
}

}  // namespace xn_fuzz
