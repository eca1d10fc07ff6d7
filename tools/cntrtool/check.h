// Finding the problems of shapes.
#ifndef CNTRTOOL_CHECK_H
#define CNTRTOOL_CHECK_H

#include <ostream>
#include <string>
#include <vector>

#include "shapes.h"

namespace cntrtool {

/// One problem of one shape. The codes:
/// - too-few-vertices: a region outline (a hole or set member too) with fewer than 3 vertices,
///   a contour with fewer than 2;
/// - repeated-vertex: consecutive vertices that repeat (the last and the first of a closed
///   outline included);
/// - zero-area: a region outline whose vertices all lie on one line;
/// - degenerate-area: a closed outline (a region's, a hole's or a closed contour's) without
///   zero-area whose area is 0 or so small that the library's centroid of it is the convention
///   (0, 0) (see centroidConvention);
/// - self-crossing: an outline that crosses itself (the library's isSelfIntersecting);
/// - hole-crosses-outline: a hole whose outline crosses the outline of its region (the library
///   refuses such holes; an archive can still hold them);
/// - touching-hole: a hole inside its region that meets the region's outline only at single
///   points (the library refuses it as well, though many toolkits accept it);
/// - hole-outside: a hole that lies outside its region;
/// - holes-cross: two holes of one region that cross each other;
/// - holes-refused: holes the library refused for another reason;
/// - regions-cross: two regions of a set whose outlines cross;
/// - empty-set: a region set without regions;
/// - measure-failed: a measure the library refused for a shape without any other problem
///   (the inertia of a region with holes, which the library does not provide, is not one);
/// - non-finite-result: a measure that came out infinite or NaN (coordinates too large for
///   double precision).
struct Problem {
    std::size_t index = 0;
    ShapeKind kind = ShapeKind::contour;
    unsigned long label = 0;
    std::string code;
    std::string text;
};

/// The problems of one shape, in a fixed order: outline by outline (forEachOutline's order),
/// then holes, then regions of a set, then measures.
std::vector<Problem> checkShape(const Shape& shape);

/// One line per problem, "shape INDEX (KIND, label LABEL): CODE: TEXT", then a summary line.
void printProblems(std::ostream& out, const std::vector<Problem>& problems,
                   std::size_t shapeCount);

}  // namespace cntrtool

#endif
