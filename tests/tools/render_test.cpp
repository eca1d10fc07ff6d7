#include "render.h"

#include <cmath>
#include <cstdlib>
#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "errors.h"

using cntrtool::PictureOptions;
using cntrtool::svgPicture;
using Segment = xcRecordingTablet::Segment;

namespace {

const xcColor kBlue{0x1f, 0x4e, 0x9c};
const xcUITablet::Layers kLayer(1u);

Segment segment(double x1, double y1, double x2, double y2) {
    return Segment{{x1, y1}, {x2, y2}, kBlue, kLayer};
}

// The value of the first attribute `name` of `element` in `svg`, as written.
std::string attribute(const std::string& svg, const std::string& element, const std::string& name) {
    std::smatch m;
    const std::regex pattern("<" + element + "[^>]* " + name + "=\"([^\"]*)\"");
    return std::regex_search(svg, m, pattern) ? m[1].str() : "(none)";
}

double number(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

PictureOptions options(bool yDown, int width) {
    PictureOptions o;
    o.yDown = yDown;
    o.width = width;
    return o;
}

}  // namespace

TEST(Render, PictureHasItsSizeInPixelsAndAWhiteBackground) {
    // Bounds 10 x 5, margins 5% of 10 = 0.5: a view of 11 x 6 from (-0.5, -5.5) (y flipped);
    // 800 pixels wide, so 6 * 800 / 11 = 436.4 high; lines 1.5 pixels = 1.5 * 11 / 800 units.
    const auto svg = svgPicture({segment(0, 0, 10, 0), segment(10, 0, 10, 5)}, options(false, 800));
    EXPECT_EQ(attribute(svg.document, "svg", "width"), "800");
    EXPECT_EQ(attribute(svg.document, "svg", "height"), "436");
    EXPECT_EQ(attribute(svg.document, "svg", "viewBox"), "-0.5 -5.5 11 6");
    EXPECT_EQ(attribute(svg.document, "rect", "fill"), "#ffffff");
    EXPECT_EQ(attribute(svg.document, "rect", "width"), "11");
    EXPECT_EQ(attribute(svg.document, "g", "transform"), "scale(1,-1)");
    EXPECT_EQ(attribute(svg.document, "g", "stroke-width"), "0.020625");
    EXPECT_EQ(attribute(svg.document, "line", "x2"), "10");
    EXPECT_EQ(svg.segments, 2u);
    EXPECT_EQ(svg.skipped, 0u);
}

TEST(Render, YDownKeepsImageCoordinates) {
    // Same drawing, y down: the view starts at the smallest y and nothing is flipped.
    const auto svg = svgPicture({segment(0, 0, 10, 0), segment(10, 0, 10, 5)}, options(true, 100));
    EXPECT_EQ(attribute(svg.document, "svg", "viewBox"), "-0.5 -0.5 11 6");
    EXPECT_EQ(attribute(svg.document, "g", "transform"), "(none)");
    EXPECT_EQ(attribute(svg.document, "svg", "width"), "100");
    EXPECT_EQ(attribute(svg.document, "svg", "height"), "55");  // 6 * 100 / 11 = 54.5
    EXPECT_EQ(attribute(svg.document, "g", "stroke-width"), "0.165");  // 1.5 * 11 / 100
}

TEST(Render, LinesAreAsWideOnScreenWhateverTheExtent) {
    for (double scale : {1e-6, 1.0, 1e3, 1e9}) {
        const auto svg = svgPicture({segment(0, 0, 4 * scale, 3 * scale)}, options(false, 640));
        // The view box's third number is its width.
        const std::string viewBox = attribute(svg.document, "svg", "viewBox");
        const std::size_t second = viewBox.find(' ', viewBox.find(' ') + 1);
        const double viewWidth = number(viewBox.substr(second + 1));
        const double strokeUnits = number(attribute(svg.document, "g", "stroke-width"));
        EXPECT_NEAR(strokeUnits * 640 / viewWidth, cntrtool::kStrokePixels, 1e-9) << scale;
    }
}

TEST(Render, NonFiniteSegmentsAreSkippedAndCounted) {
    const auto svg = svgPicture({segment(0, 0, 1, 1), segment(0, 0, INFINITY, 1),
                                 segment(NAN, 0, 1, 1)},
                                options(false, 800));
    EXPECT_EQ(svg.segments, 1u);
    EXPECT_EQ(svg.skipped, 2u);
    EXPECT_EQ(svg.document.find("inf"), std::string::npos);
}

TEST(Render, DrawingWithoutExtentGetsTheUnitSquare) {
    // One point at (2, 3): the unit square about it, grown by 0.05 on each side.
    const auto svg = svgPicture({segment(2, 3, 2, 3)}, options(false, 200));
    EXPECT_EQ(attribute(svg.document, "svg", "height"), "200");
    EXPECT_NEAR(number(attribute(svg.document, "rect", "width")), 1.1, 1e-12);
    EXPECT_NEAR(number(attribute(svg.document, "rect", "x")), 1.45, 1e-12);
    EXPECT_NEAR(number(attribute(svg.document, "rect", "y")), -3.55, 1e-12);
}

TEST(Render, ExtentBeyondADoubleIsRefused) {
    EXPECT_THROW(svgPicture({segment(-1.7e308, 0, 1.7e308, 0)}, options(false, 800)),
                 cntrtool::ToolError);
}
