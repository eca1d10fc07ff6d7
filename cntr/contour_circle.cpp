// The enclosing circle in its two modes.
#include <cntr/contour.h>

namespace {

// The circle through the first ordered pair (i outer, j inner, i == j included) of vertices at
// the largest distance. When no distance exceeds 0 (all vertices coincide, or fewer than two) the
// result is the default circle, never a circle left in the cache slot by an earlier geometry.
xcCircle furthestPairCircle(const std::vector<xcVector<2>>& v) {
    xcCircle circle;
    double best = 0.0;
    for (std::size_t i = 0; i < v.size(); ++i) {
        for (std::size_t j = 0; j < v.size(); ++j) {
            const double d = v[i].distance(v[j]);
            if (d > best) {
                best = d;
                circle = xcCircle((v[i] + v[j]) / 2.0, d / 2.0);
            }
        }
    }
    return circle;
}

// The circle centred on vertex 0 through the vertex furthest from it.
xcCircle fromFirstVertexCircle(const std::vector<xcVector<2>>& v) {
    if (v.empty()) return xcCircle();
    double radius = 0.0;
    for (std::size_t i = 1; i < v.size(); ++i) {
        const double d = v[0].distance(v[i]);
        if (d > radius) radius = d;
    }
    return xcCircle(v[0], radius);
}

}  // namespace

xcCircle xcContour::encloseCircle(xcContourDefs::DiameterMode mode) { return circleOf(mode); }

xcCircle xcContour::circleOf(xcContourDefs::DiameterMode mode) const {
    if (mode != xcContourDefs::furthestVertexPair && mode != xcContourDefs::fromFirstVertex)
        throw xcContourDefs::BadParams(L"diameterMode is not one of the valid enums");
    const std::size_t slot = static_cast<std::size_t>(mode);
    if (encloseCircleValid_.size() < slot + 1) encloseCircleValid_.resize(slot + 1, false);
    if (encloseCircles_.size() < slot + 1) encloseCircles_.resize(slot + 1, xcCircle());
    if (!encloseCircleValid_[slot]) {
        encloseCircles_[slot] = mode == xcContourDefs::furthestVertexPair
                                    ? furthestPairCircle(points_)
                                    : fromFirstVertexCircle(points_);
        encloseCircleValid_[slot] = true;
    }
    return encloseCircles_[slot];
}
