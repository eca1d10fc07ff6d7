// The measures of a shape and their two reports: an aligned table and JSON.
#ifndef CNTRTOOL_MEASURE_H
#define CNTRTOOL_MEASURE_H

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <foundation/matrix.h>
#include <foundation/vector.h>

#include "output.h"
#include "shapes.h"

namespace cntrtool {

/// An ellipse as the reports give it: centre, radii and the direction of r1 in degrees.
struct EllipseValue {
    xcVector<2> center;
    double r1 = 0.0;
    double r2 = 0.0;
    double rotationDegrees = 0.0;
};

/// Why a measure cannot be reported as a value.
enum class Unavailable {
    /// The library refused it (an exception).
    refused,
    /// It does not apply to the shape (the area of an open contour, a fit of 2 points).
    notApplicable,
    /// The library would give a convention, not a value (the centroid (0, 0) of an outline
    /// whose summed cross products are within 1e-6 of 0).
    convention,
    /// The computed value is infinite or NaN (coordinates too large for double precision); the
    /// value is kept, for the table to show it as such.
    nonFinite,
    /// It considers holes, and the library refused the shape's holes.
    refusedHoles,
    /// It is computed from another measure that is not available.
    dependent
};

/// A measure that cannot be reported as a value, with its reason. `field` is the JSON name of
/// the measure ("centroid", "fitted_ellipse.rotation_deg").
struct MeasureFailure {
    std::string field;
    std::string message;
    Unavailable cause = Unavailable::refused;
};

/// Why the library's centroid of the polygon `points` is its convention (0, 0) rather than a
/// value, or "" when it is a value: 2 points or fewer, or cross products (the same fan of
/// triangles from the origin, negligible ones skipped) summing to within
/// cntr::kNegligibleTotalCross of 0.
std::string centroidConvention(const std::vector<xcVector<2>>& points);

/// Everything `measure` reports for one shape. An empty field is not available, and
/// `failures` says why; so does it for a non-finite value, which is kept.
struct Measures : ShapeHeading {
    std::size_t vertices = 0;
    std::size_t holes = 0;
    std::optional<double> length;
    /// With holes (what the library's area(true) gives) and of the outlines alone.
    std::optional<double> area;
    std::optional<double> areaWithoutHoles;
    std::optional<xcVector<2>> centroid;
    /// Central second moments of area: (0,0) xx, (0,1) = (1,0) xy, (1,1) yy.
    std::optional<xcMatrix<2>> inertia;
    std::optional<EllipseValue> momentEllipse;
    std::optional<EllipseValue> fittedEllipse;
    std::optional<double> fitRms;
    /// The fitted ellipse is the library's circle fit, the ellipse fit having failed for
    /// `circleReason` (its rotation is then not available: a circle has no direction).
    bool fitIsCircle = false;
    std::string circleReason;
    std::optional<double> hullArea;
    std::optional<double> diameter;
    std::optional<bool> selfIntersecting;
    std::vector<MeasureFailure> failures;
};

/// Measures one shape on fresh copies of its regions (so that caches filled through shared
/// objects cannot leak into the results). Never throws for a shape the readers built.
Measures measureShape(const Shape& shape);

/// Whether the measure `field` of `m` is unavailable for `cause`.
bool hasFailure(const Measures& m, const std::string& field, Unavailable cause);

/// The aligned table: a header line, then one line per shape; "n/a" marks empty fields,
/// inf and nan non-finite values. Numbers have `digits` significant digits.
void printMeasureTable(std::ostream& out, const std::vector<Measures>& rows,
                       int digits = kTableDigits);
/// The JSON report: {"file": ..., "shapes": [...]}; empty and non-finite fields are null, each
/// with its reason under "unavailable". Numbers are rounded to `digits` significant digits,
/// or written exactly when `digits` is 0.
Json measureReport(const std::string& path, const std::vector<Measures>& rows, int digits = 0);

}  // namespace cntrtool

#endif
