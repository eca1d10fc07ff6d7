// Drawing a contour as line segments.
#include <cntr/contour.h>
#include <cntr/contour_detail.h>

void xcContour::draw(xcUITablet& tablet, xcContourDefs::DrawMode, const xcColor& color,
                     const xcUITablet::Layers& layer) const {
    const auto pair = [](const xcVector<2>& p) { return xcPair<double>(p.x(), p.y()); };
    xn_contourDetail::forEachEdge(points_.size(), isClosed(), [&](std::size_t, std::size_t a, std::size_t b) {
        tablet.drawLineSeg(pair(points_[a]), pair(points_[b]), color, layer);
    });
}
