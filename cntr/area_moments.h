#ifndef CNTR_AREA_MOMENTS_H
#define CNTR_AREA_MOMENTS_H

#include <array>

#include <cntr/export.h>
#include <foundation/vector.h>

namespace cntr {

/// The moments of the area a shape fills, up to order 3: the integrals of x^p y^q over it
/// (raw), of (x - cx)^p (y - cy)^q (central, about the centroid (cx, cy)), the central moments
/// made scale invariant (normalised) and the seven Hu invariants.
///
/// They are the true integrals over the area, whatever the orientation of the rings: a ring is
/// integrated with Green's theorem and taken with the sign that makes its own area positive, so
/// an outline gives the same moments run either way. A polygon's moments are those of its
/// exterior minus those of its holes (touching holes are no special case); a multipolygon's the
/// sum over its members. A ring that crosses itself weighs each point by its winding number about
/// it, the ring's sign again chosen to make the ring's area positive.
///
/// Conventions, so that values compare with OpenCV's `moments` of the same outline as a contour
/// (either orientation; in image coordinates, x right and y down, a counter-clockwise outline on
/// screen is clockwise with y up, which OpenCV also reports with a positive m00): the names and
/// normalisations are OpenCV's, the coordinates are taken as given (no axis is flipped, so mu11 is
/// positive for a shape leaning from the top left to the bottom right of an image), and a shape
/// of area 0 has central moments equal to its raw ones (about (0, 0)), normalised moments and Hu
/// invariants 0.
struct AreaMoments {
    /// Raw moments: mPQ is the integral of x^P y^Q; m00 is the area.
    double m00 = 0.0, m10 = 0.0, m01 = 0.0;
    double m20 = 0.0, m11 = 0.0, m02 = 0.0;
    double m30 = 0.0, m21 = 0.0, m12 = 0.0, m03 = 0.0;
    /// Central moments: muPQ is the integral of (x - cx)^P (y - cy)^Q. mu00 = m00 and
    /// mu10 = mu01 = 0 are not stored.
    double mu20 = 0.0, mu11 = 0.0, mu02 = 0.0;
    double mu30 = 0.0, mu21 = 0.0, mu12 = 0.0, mu03 = 0.0;
    /// Normalised central moments: nuPQ = muPQ / m00^(1 + (P + Q) / 2), invariant under
    /// translation and scaling.
    double nu20 = 0.0, nu11 = 0.0, nu02 = 0.0;
    double nu30 = 0.0, nu21 = 0.0, nu12 = 0.0, nu03 = 0.0;
    /// The seven Hu invariants of the normalised moments (hu[0] is Hu's first, nu20 + nu02),
    /// invariant under translation, scaling and rotation; hu[6] changes sign under reflection.
    std::array<double, 7> hu{};

    /// The area, m00.
    double area() const { return m00; }
    /// The centroid (m10 / m00, m01 / m00). Throws xcMathError::Singular ("a shape of area 0
    /// has no centroid") when m00 is 0.
    CNTR_API xcVector<2> centroid() const;
};

}  // namespace cntr

#endif
