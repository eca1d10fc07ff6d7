// The measures of a shape and their two reports: an aligned table and JSON.
#ifndef CNTRTOOL_MEASURE_H
#define CNTRTOOL_MEASURE_H

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <foundation/matrix.h>
#include <foundation/vector.h>

#include "shapes.h"

namespace cntrtool {

/// An ellipse as the reports give it: centre, radii and the direction of r1 in degrees.
struct EllipseValue {
    xcVector<2> center;
    double r1 = 0.0;
    double r2 = 0.0;
    double rotationDegrees = 0.0;
};

/// A measure that the library refused, with its reason.
struct MeasureFailure {
    std::string field;
    std::string message;
};

/// Everything `measure` reports for one shape. An empty field is not available: it does not
/// apply (the area of an open contour), the library refused it (see `failures`), or the shape
/// holds holes that the library refused (every measure that considers holes).
struct Measures {
    std::size_t index = 0;
    ShapeKind kind = ShapeKind::contour;
    bool edgelet = false;
    unsigned long label = 0;
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
    std::optional<double> hullArea;
    std::optional<double> diameter;
    std::optional<bool> selfIntersecting;
    std::vector<MeasureFailure> failures;
};

/// Measures one shape on fresh copies of its regions (so that caches filled through shared
/// objects cannot leak into the results). Never throws for a shape the readers built.
Measures measureShape(const Shape& shape);

/// The aligned table: a header line, then one line per shape; "n/a" marks empty fields.
void printMeasureTable(std::ostream& out, const std::vector<Measures>& rows);
/// The JSON report: {"file": ..., "shapes": [...]}; empty and non-finite fields are null.
Json measureReport(const std::string& path, const std::vector<Measures>& rows);

}  // namespace cntrtool

#endif
