// The inputs of the side-by-side benchmarks: every implementation, ours and the peers', is given
// the same vertices and the same queries, generated once per run from fixed seeds.
#ifndef CNTR_BENCH_PEERS_INPUTS_H
#define CNTR_BENCH_PEERS_INPUTS_H

#include <cstddef>
#include <string>
#include <vector>

#include <foundation/geometry.h>
#include <foundation/vector.h>

namespace peers {

using Points = std::vector<xcVector<2>>;

/// The outline families.
enum class Kind {
    /// Smooth random star-shaped contour: the radius is a sum of 8 random harmonics of the angle
    /// (amplitudes up to 0.3 / k of the mean radius), vertices at equal angle steps.
    blob,
    /// Spiky star-shaped contour: independent random radii between 0.2 and 1 of the largest.
    spiky,
    /// Self-crossing outline: a noisy trace round a centre, each vertex's angle jittered by up to
    /// 0.8 of the angular step and its radius by up to 20 %, so that neighbouring edges cross.
    crossing
};

/// "blob", "spiky" or "crossing".
const char* kindName(Kind kind);

/// One outline with its queries. All coordinates lie within a few hundred units of (500, 400),
/// well inside single precision, which OpenCV's contour functions use.
struct Input {
    Kind kind;
    std::size_t n;
    /// "blob/16k", ...
    std::string label;
    /// Counter-clockwise (y up) for the star-shaped families.
    Points points;
    /// The bounding box of the vertices.
    xcRect box;
    /// 10,000 points uniform in the bounding box.
    Points queryPoints;
    /// 1,000 segments: a start uniform in the bounding box, a uniform direction and a length
    /// uniform up to a tenth of the box's diagonal.
    std::vector<xcLineSeg> querySegments;
};

/// The input of `kind` with `n` vertices, generated on first use and kept for the run.
const Input& input(Kind kind, std::size_t n);

/// "1k", "16k", "256k" for 1024, 16384, 262144 (and the plain count otherwise).
std::string sizeName(std::size_t n);

}  // namespace peers

#endif
