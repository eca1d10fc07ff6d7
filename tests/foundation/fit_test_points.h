#ifndef TESTS_FOUNDATION_FIT_TEST_POINTS_H
#define TESTS_FOUNDATION_FIT_TEST_POINTS_H

#include <vector>

#include <foundation/angle.h>
#include <foundation/vector.h>

/// Eight points at 45 degree steps around `centre`, at radius R + d on the axes and R - d on the
/// diagonals. The set is symmetric under quarter turns and reflections about `centre`, so a fit
/// whose optimum is unique is a circle about `centre`; for a least-squares fit of
/// x^2 + y^2 + D x + E y + F the radius rho then minimises sum (r_k^2 - rho^2)^2, which gives
/// rho^2 = mean(r_k^2) = R^2 + d^2. The radial residuals are |r_k - rho|, so their rms is
/// sqrt(((R + d - rho)^2 + (R - d - rho)^2) / 2) = sqrt((rho - R)^2 + d^2).
inline std::vector<xcVector<2>> alternatingRadiusPoints(const xcVector<2>& centre, double R,
                                                        double d) {
    std::vector<xcVector<2>> points;
    for (int k = 0; k < 8; ++k)
        points.push_back(centre + xcVector<2>(k % 2 == 0 ? R + d : R - d, xcRadian(k * xcPi / 4)));
    return points;
}

#endif
