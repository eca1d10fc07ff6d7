#include <vector>

#include <gtest/gtest.h>

#include <cntr/contour.h>
#include <foundation/tablet.h>

#include "contour_testing.h"

namespace {

using Seg = std::pair<xcVector<2>, xcVector<2>>;

std::vector<Seg> drawn(const xcContour& c, xcContourDefs::DrawMode mode = xcContourDefs::drawNormal) {
    xcRecordingTablet tablet;
    c.draw(tablet, mode, xcColor(255, 0, 0), xcUITablet::Layers(4));
    std::vector<Seg> out;
    for (const auto& s : tablet.segments())
        out.emplace_back(xcVector<2>(s.p1.x(), s.p1.y()), xcVector<2>(s.p2.x(), s.p2.y()));
    return out;
}

Seg seg(double x1, double y1, double x2, double y2) { return {xcVector<2>(x1, y1), xcVector<2>(x2, y2)}; }

const Points kTriangle{{0, 0}, {4, 0}, {4, 3}};

}  // namespace

TEST(ContourDraw, ClosedContourDrawsClosingEdgeFirst) {
    EXPECT_EQ(drawn(xcContour(kTriangle, true)),
              (std::vector<Seg>{seg(4, 3, 0, 0), seg(0, 0, 4, 0), seg(4, 0, 4, 3)}));
}

TEST(ContourDraw, OpenContourDrawsNMinusOneEdges) {
    EXPECT_EQ(drawn(xcContour(kTriangle, false)), (std::vector<Seg>{seg(0, 0, 4, 0), seg(4, 0, 4, 3)}));
}

TEST(ContourDraw, ClosedSingleVertexDrawsOneZeroLengthSegment) {
    EXPECT_EQ(drawn(xcContour(Points{{2, 5}}, true)), std::vector<Seg>{seg(2, 5, 2, 5)});
}

TEST(ContourDraw, OpenSingleVertexDrawsNothing) {
    EXPECT_TRUE(drawn(xcContour(Points{{2, 5}}, false)).empty());
}

TEST(ContourDraw, EmptyContourDrawsNothing) {
    EXPECT_TRUE(drawn(xcContour()).empty());
    EXPECT_TRUE(drawn(xcContour(Points{}, false)).empty());
}

TEST(ContourDraw, DegenerateEdgesAreDrawn) {
    EXPECT_EQ(drawn(xcContour(Points{{1, 1}, {1, 1}, {3, 1}}, false)),
              (std::vector<Seg>{seg(1, 1, 1, 1), seg(1, 1, 3, 1)}));
}

TEST(ContourDraw, EveryDrawModeDrawsTheSame) {
    const xcContour c(kTriangle, true);
    const std::vector<Seg> normal = drawn(c, xcContourDefs::drawNormal);
    EXPECT_EQ(drawn(c, xcContourDefs::drawHighlighted), normal);
    EXPECT_EQ(drawn(c, static_cast<xcContourDefs::DrawMode>(17)), normal);
    EXPECT_EQ(normal.size(), 3u);
}

TEST(ContourDraw, ColorAndLayerArePassedOn) {
    xcRecordingTablet tablet;
    xcContour(kTriangle, false).draw(tablet, xcContourDefs::drawNormal, xcColor(1, 2, 3), xcUITablet::Layers(6));
    ASSERT_EQ(tablet.segments().size(), 2u);
    for (const auto& s : tablet.segments()) {
        EXPECT_EQ(s.color, xcColor(1, 2, 3));
        EXPECT_EQ(s.layers, xcUITablet::Layers(6));
    }
}

TEST(ContourDraw, ReadsAndFillsNoCache) {
    const ContourProbe c(kTriangle, true, 0);
    drawn(c);
    const ContourProbe::CacheState& s = c.cacheState();
    EXPECT_FALSE(s.edges.valid);
    EXPECT_FALSE(s.length.valid);
    EXPECT_EQ(s.rectMemo.get(), nullptr);
}

TEST(ContourDraw, DrawsCurrentVerticesAfterChange) {
    xcContour c(kTriangle, true);
    drawn(c);
    c.isClosed(false);
    EXPECT_EQ(drawn(c).size(), 2u);
}
