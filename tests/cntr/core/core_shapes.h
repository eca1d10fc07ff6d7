// Seeded outlines for the core's tests.
#ifndef CNTR_TESTS_CORE_SHAPES_H
#define CNTR_TESTS_CORE_SHAPES_H

#include <algorithm>
#include <cmath>
#include <cstddef>
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

/// A star of n vertices round (50, 50) at evenly spaced angles, each radius drawn from
/// [inner, outer): spiky, every x-monotone run short and spanning much of the x-range.
inline std::vector<xcVector<2>> spikyStar(int n, double inner, double outer, xcRandomUniform& g) {
    std::vector<xcVector<2>> p;
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * xcPi * i / n;
        const double r = g.next(inner, outer);
        p.emplace_back(50.0 + r * std::cos(a), 50.0 + r * std::sin(a));
    }
    return p;
}

/// A walk of n steps from (50, 50), each of a length from [0.5, 8) in a direction turned from
/// the last by up to `turn` radians either way: it crosses itself as often as it turns.
inline std::vector<xcVector<2>> randomWalk(int n, double turn, xcRandomUniform& g) {
    std::vector<xcVector<2>> p{{50.0, 50.0}};
    double a = g.next(0.0, 2.0 * xcPi);
    for (int i = 1; i < n; ++i) {
        a += g.next(-turn, turn);
        const double step = g.next(0.5, 8.0);
        p.push_back(p.back() + xcVector<2>(step * std::cos(a), step * std::sin(a)));
    }
    return p;
}

/// The points rounded to the integer grid of spacing `cell`: exact touches, vertices on edges,
/// collinear overlaps and, where neighbours round together, zero-length edges.
inline std::vector<xcVector<2>> onGrid(std::vector<xcVector<2>> p, double cell) {
    for (xcVector<2>& v : p)
        v = xcVector<2>(std::round(v.x() / cell) * cell, std::round(v.y() / cell) * cell);
    return p;
}

/// The outline with degeneracies inserted after some vertices: a repeat (a zero-length edge), the
/// midpoint of the next edge (collinear edges), a step back to the vertex before (an edge that
/// overlaps its neighbour) or to a vertex further back (a shared vertex).
inline std::vector<xcVector<2>> withDegeneracies(const std::vector<xcVector<2>>& base, double rate,
                                                 xcRandomUniform& g) {
    std::vector<xcVector<2>> p;
    for (std::size_t i = 0; i < base.size(); ++i) {
        const xcVector<2>& a = base[i];
        const xcVector<2>& b = base[(i + 1) % base.size()];
        p.push_back(a);
        if (g.next(0.0, 1.0) >= rate)
            continue;
        switch (static_cast<int>(g.next(0.0, 4.0))) {
            case 0:
                p.push_back(a);
                break;
            case 1:
                p.push_back((a + b) / 2.0);
                break;
            case 2:
                if (i > 0) {
                    p.push_back(base[i - 1]);
                    p.push_back(a);
                }
                break;
            default:
                if (i > 4)
                    p.push_back(base[i - 4]);
                break;
        }
    }
    return p;
}

/// A wobbly ring of n vertices (radius 40, wobble 0.5) with one vertex moved across the ring to
/// `gap` from the midpoint of an edge there, on a side drawn at random, along that edge's normal
/// (gap 0: onto the edge). The edge is never the closing one, which an open outline lacks.
inline std::vector<xcVector<2>> vertexNearAnEdge(int n, double gap, xcRandomUniform& g) {
    std::vector<xcVector<2>> p = wobblyRing(n, 40.0, 0.5, g);
    const std::size_t v = static_cast<std::size_t>(g.next(0.0, static_cast<double>(n)));
    const std::size_t e = std::min((v + p.size() / 2) % p.size(), p.size() - 2);
    const xcVector<2>& a = p[e];
    const xcVector<2>& b = p[e + 1];
    const xcVector<2> d = (b - a) / (b - a).length();
    p[v] = (a + b) / 2.0 + xcVector<2>(-d.y(), d.x()) * (g.next(0.0, 1.0) < 0.5 ? gap : -gap);
    return p;
}

}  // namespace core_shapes

#endif
