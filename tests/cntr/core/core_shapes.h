// Seeded outlines for the core's tests.
#ifndef CNTR_TESTS_CORE_SHAPES_H
#define CNTR_TESTS_CORE_SHAPES_H

#include <cmath>
#include <vector>

#include <foundation/angle.h>
#include <foundation/random.h>
#include <foundation/vector.h>

namespace core_shapes {

/// n vertices round (50, 50), the radius of each drawn from [radius - wobble, radius + wobble).
inline std::vector<xcVector<2>> wobblyRing(int n, double radius, double wobble,
                                           xcRandomUniform& g) {
    std::vector<xcVector<2>> p;
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * i / n;
        const double r = radius + g.next(-wobble, wobble);
        p.emplace_back(50.0 + r * std::cos(a), 50.0 + r * std::sin(a));
    }
    return p;
}

}  // namespace core_shapes

#endif
