// Fuzz target: arbitrary bytes loaded from an archive as a handle to each persistent class of the
// library (contour, region, region set, the three edgelet shapes, the exceptions and the
// transform). Loading must succeed or throw one of the library's exceptions. What loads must
// store again, and the stored bytes must load to an object that stores to the same bytes. Every
// loaded shape then answers every query, as shapes built by hand do.
#include <cstddef>
#include <cstdint>
#include <memory>

#include <cntr/contour.h>
#include <cntr/region.h>
#include <cntr/regionst.h>
#include <cntrtmpl/contourt.h>
#include <cntrtmpl/regionsett.h>
#include <cntrtmpl/regiont.h>
#include <foundation/archive.h>
#include <foundation/exception.h>
#include <foundation/xform.h>

#include "exercise.h"
#include "fuzz_support.h"
#include "targets.h"

namespace xn_fuzz {
namespace {

using Edgelets = std::vector<xcEdgelet>;

/// The arguments that loaded shapes are queried with.
QueryArgs loadedShapeArgs() {
    QueryArgs args;
    args.point = xcVector<2>(0.5, 0.25);
    args.segmentEnd = xcVector<2>(3.0, 2.0);
    args.tolerance = 0.5;
    args.angle = xcRadian(0.3);
    args.xform = xcXform<2>(xcMatrix<2>(2.0, 0.5, -0.5, 1.0), xcVector<2>(1.0, -1.0));
    return args;
}

/// A second contour for the contour-contour intersections: a square crossing the unit square.
const xcContour& crossingSquare() {
    static const xcContour square({{0.5, 0.5}, {1.5, 0.5}, {1.5, 1.5}, {0.5, 1.5}}, true);
    return square;
}

/// The round-trip law for what an archive gave: it stores (or is refused with the library's
/// exception), and the stored bytes load to an object that stores to the very same bytes.
template <class Handle>
void checkLoadedRoundTrip(const Handle& loaded) {
    checkRoundTrip(loaded, "a loaded object stores, loads and stores again to the same bytes");
}

/// Loads `bytes` into a handle of type Handle; a null handle when the archive is refused.
template <class Handle>
Handle tryLoad(const Bytes& bytes) {
    Handle handle;
    attempt([&] { handle = load<Handle>(bytes); });
    return handle;
}

/// The queries of the most derived class of a loaded contour.
void exerciseLoadedContour(xcContour& contour) {
    const QueryArgs args = loadedShapeArgs();
    if (auto* regionT = dynamic_cast<xcRegionT<xcEdgelet>*>(&contour))
        exerciseRegionT(*regionT, crossingSquare(), args);
    else if (auto* region = dynamic_cast<xcRegion*>(&contour))
        exerciseRegion(*region, crossingSquare(), args);
    else if (auto* contourT = dynamic_cast<xcContourT<xcEdgelet>*>(&contour))
        exerciseContourT(*contourT, crossingSquare(), args);
    else
        exerciseContour(contour, crossingSquare(), args);
}

void exerciseLoadedSet(xcRegionSet& set) {
    const QueryArgs args = loadedShapeArgs();
    if (auto* setT = dynamic_cast<xcRegionSetT<xcEdgelet>*>(&set))
        exerciseRegionSetT(*setT, args);
    else
        exerciseRegionSet(set, args);
}

void exerciseLoadedXform(const xc2XformBase& xform) {
    (void)xform.mapPoint(xcVector<2>(1.0, 2.0));
    (void)xform.clone();
    attempt([&] { (void)xform.inverseBase()->mapPoint(xcVector<2>(1.0, 2.0)); });
}

void exerciseLoadedException(std::unique_ptr<xcException> error) {
    (void)error->errorNumber();
    (void)error->what();
    const long number = error->errorNumber();
    try {
        error.release()->suicideAndRethrow();
        fail("suicideAndRethrow throws");
    } catch (const xcException& thrown) {
        check(thrown.errorNumber() == number, "a rethrown exception keeps its error number");
    }
}

/// The handle kinds whose loads are only checked for the round trip: their objects are queried
/// through the contour and region set handles, which accept every shape class.
void roundTripsOfNarrowHandles(const Bytes& bytes) {
    checkLoadedRoundTrip(tryLoad<xcPtrHandle<xcRegion>>(bytes));
    checkLoadedRoundTrip(tryLoad<xcPtrHandle<xcContourT<xcEdgelet>>>(bytes));
    checkLoadedRoundTrip(tryLoad<xcPtrHandle<xcRegionT<xcEdgelet>>>(bytes));
    checkLoadedRoundTrip(tryLoad<xcPtrHandle<xcRegionSetT<xcEdgelet>>>(bytes));
}

}  // namespace

int archiveOneInput(const std::uint8_t* data, std::size_t size) {
    installAssertHandler();
    const Bytes bytes(data, data + size);

    if (auto contour = tryLoad<xcPtrHandle<xcContour>>(bytes)) {
        checkLoadedRoundTrip(contour);
        exerciseLoadedContour(*contour);
    }
    if (auto set = tryLoad<xcPtrHandle<xcRegionSet>>(bytes)) {
        checkLoadedRoundTrip(set);
        exerciseLoadedSet(*set);
    }
    if (auto xform = tryLoad<xcPtrHandle_const<xc2XformBase>>(bytes)) {
        checkLoadedRoundTrip(xform);
        exerciseLoadedXform(*xform);
    }
    std::unique_ptr<xcException> error;
    if (attempt([&] {
            xcMemoryArchive in(bytes);
            in || error;
        }) &&
        error) {
        std::unique_ptr<xcException> again;
        Bytes first;
        if (attempt([&] {
                xcMemoryArchive out;
                out || error;
                first = out.bytes();
            })) {
            xcMemoryArchive in(first);
            in || again;
            check(again != nullptr, "a stored exception loads again");
            xcMemoryArchive out;
            out || again;
            check(out.bytes() == first, "a loaded exception stores to the same bytes");
        }
        exerciseLoadedException(std::move(error));
    }
    roundTripsOfNarrowHandles(bytes);
    return 0;
}

}  // namespace xn_fuzz
