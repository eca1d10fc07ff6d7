// The ellipses of a shape: the one with its second moments, and the one fitted to its vertices
// (internal header, not installed).
#ifndef CNTR_CORE_ELLIPSE_H
#define CNTR_CORE_ELLIPSE_H

#include <vector>

#include <cntr/export.h>
#include <foundation/geometry.h>
#include <foundation/matrix.h>
#include <foundation/vector.h>

namespace cntr::core {

/// The ellipse centred on `centre` whose central second moments are `moments` (the layout of
/// InertiaRecord). The rotation is atan2(2 M(0,1), M(0,0) - M(1,1)) / 2; the principal moments
/// a (along the rotation) and b (across it) of the matrix turned by it give the semi-axes
/// r1 = (16 a^3 / (pi^2 b))^(1/8) and r2 = (16 b^3 / (pi^2 a))^(1/8), which invert the moments
/// of a solid ellipse. Both ellipse flags are false. Throws xcMathError::Singular when a
/// principal moment is within kZeroPrincipalMoment of 0.
CNTR_API xcEllipse ellipseOfMoments(const xcVector<2>& centre, const xcMatrix<2>& moments);

/// An ellipse fitted to points, and the rms orthogonal distance of the points to it.
struct EllipseFit {
    xcEllipse ellipse;
    double rms = 0.0;
};

/// The foundation's direct least-squares ellipse fit of `points` (all parameters, no ignored
/// points, no rms limit). When it throws a foundation exception, the foundation's circle fit (the
/// circle as an ellipse, and its rms); when that throws too, the default ellipse and rms -1.0.
/// No exception of the foundation's family leaves this function.
CNTR_API EllipseFit fitEllipse(const std::vector<xcVector<2>>& points);

}  // namespace cntr::core

#endif
