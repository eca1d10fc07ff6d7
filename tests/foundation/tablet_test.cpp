#include <cctype>
#include <cmath>
#include <cstdio>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/archive.h>
#include <foundation/tablet.h>

#include "archive_support.h"

namespace {

// ---- a small XML reader, enough to check the SVG document's structure ----

struct Element {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::vector<Element> children;
};

// Parses a whole document: an optional <?xml ...?> declaration, then exactly one root element,
// with whitespace between elements only. Throws std::runtime_error on anything ill-formed
// (bad names, unquoted or repeated attributes, raw '<' or '&' in values, mismatched tags).
class XmlReader {
  public:
    explicit XmlReader(const std::string& text) : s_(text) {}

    Element document() {
        if (s_.compare(0, 5, "<?xml") == 0) {
            const std::size_t end = s_.find("?>");
            if (end == std::string::npos)
                fail("unterminated declaration");
            pos_ = end + 2;
        }
        skipSpace();
        Element root = element();
        skipSpace();
        if (pos_ != s_.size())
            fail("content after the root element");
        return root;
    }

  private:
    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error(what + " at offset " + std::to_string(pos_));
    }
    bool at(char c) const { return pos_ < s_.size() && s_[pos_] == c; }
    void expect(char c) {
        if (!at(c))
            fail(std::string("expected '") + c + "'");
        ++pos_;
    }
    void skipSpace() {
        while (pos_ < s_.size() && std::isspace(static_cast<unsigned char>(s_[pos_])))
            ++pos_;
    }
    static bool nameStart(char c) {
        return std::isalpha(static_cast<unsigned char>(c)) || c == '_' || c == ':';
    }
    static bool nameChar(char c) {
        return nameStart(c) || std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '.';
    }
    std::string name() {
        if (pos_ >= s_.size() || !nameStart(s_[pos_]))
            fail("expected a name");
        const std::size_t start = pos_;
        while (pos_ < s_.size() && nameChar(s_[pos_]))
            ++pos_;
        return s_.substr(start, pos_ - start);
    }
    std::string attributeValue() {
        expect('"');
        const std::size_t end = s_.find('"', pos_);
        if (end == std::string::npos)
            fail("unterminated attribute value");
        const std::string value = s_.substr(pos_, end - pos_);
        if (value.find('<') != std::string::npos)
            fail("'<' in an attribute value");
        for (std::size_t amp = value.find('&'); amp != std::string::npos;
             amp = value.find('&', amp + 1))
            if (value.find(';', amp) == std::string::npos)
                fail("bare '&' in an attribute value");
        pos_ = end + 1;
        return value;
    }
    Element element() {
        expect('<');
        Element e;
        e.name = name();
        for (;;) {
            const std::size_t before = pos_;
            skipSpace();
            if (at('/')) {
                ++pos_;
                expect('>');
                return e;
            }
            if (at('>')) {
                ++pos_;
                break;
            }
            if (pos_ == before)
                fail("attributes must be separated by whitespace");
            const std::string key = name();
            expect('=');
            if (!e.attributes.emplace(key, attributeValue()).second)
                fail("repeated attribute " + key);
        }
        for (;;) {
            skipSpace();
            if (s_.compare(pos_, 2, "</") == 0) {
                pos_ += 2;
                if (name() != e.name)
                    fail("mismatched end tag for " + e.name);
                skipSpace();
                expect('>');
                return e;
            }
            if (!at('<'))
                fail("text content in " + e.name);
            e.children.push_back(element());
        }
    }

    const std::string& s_;
    std::size_t pos_ = 0;
};

std::vector<double> numbers(const std::string& list) {
    std::istringstream in(list);
    in.imbue(std::locale::classic());
    std::vector<double> out;
    double v;
    while (in >> v)
        out.push_back(v);
    return out;
}

double number(const std::string& text) {
    const std::vector<double> v = numbers(text);
    if (v.size() != 1)
        throw std::runtime_error("not one number: " + text);
    return v[0];
}

// The root <svg>, its one group, and the group's <line> elements.
struct Svg {
    Element root;
    const Element& group() const { return root.children.at(0); }
    const std::vector<Element>& lines() const { return group().children; }
    std::vector<double> viewBox() const { return numbers(root.attributes.at("viewBox")); }
};

Svg parse(const xcSvgTablet& tablet) {
    const std::string doc = tablet.document();
    Svg svg{XmlReader(doc).document()};
    EXPECT_EQ(svg.root.name, "svg");
    EXPECT_EQ(svg.root.attributes.at("xmlns"), "http://www.w3.org/2000/svg");
    EXPECT_EQ(svg.root.children.size(), 1u);
    EXPECT_EQ(svg.group().name, "g");
    return svg;
}

void expectViewBox(const Svg& svg, double x, double y, double w, double h) {
    const std::vector<double> box = svg.viewBox();
    ASSERT_EQ(box.size(), 4u);
    constexpr double kTol = 1e-12;  // the box is computed with a few roundings
    EXPECT_NEAR(box[0], x, kTol);
    EXPECT_NEAR(box[1], y, kTol);
    EXPECT_NEAR(box[2], w, kTol);
    EXPECT_NEAR(box[3], h, kTol);
}

const xcColor kOrange(255, 128, 0);
const xcUITablet::Layers kLayer0;

// ---- the reader itself ----

TEST(XmlReader, AcceptsWellFormedAndRejectsIllFormed) {
    EXPECT_NO_THROW(
        XmlReader("<?xml version=\"1.0\"?>\n<a x=\"1\"><b/><c y=\"&amp;\"></c></a>\n").document());
    for (const char* bad :
         {"<a><b></a></b>", "<a x=1/>", "<a x=\"1\" x=\"2\"/>", "<a/><b/>", "<a>text</a>",
          "<a x=\"<\"/>", "<a x=\"&\"/>", "<a", "<1a/>", "<a x=\"1\"y=\"2\"/>"}) {
        EXPECT_THROW(XmlReader(bad).document(), std::runtime_error) << bad;
    }
}

// ---- colours, layers, recording tablet ----

TEST(Color, ComponentsAndEquality) {
    EXPECT_EQ(xcColor(), xcColor(0, 0, 0));
    EXPECT_EQ(kOrange.r(), 255);
    EXPECT_EQ(kOrange.g(), 128);
    EXPECT_EQ(kOrange.b(), 0);
    EXPECT_NE(kOrange, xcColor(255, 128, 1));
}

TEST(Layers, DefaultIsLayerZero) {
    EXPECT_EQ(xcUITablet::Layers().mask(), 1u);
    EXPECT_EQ(xcUITablet::Layers(6).mask(), 6u);
    EXPECT_NE(xcUITablet::Layers(6), xcUITablet::Layers());
}

TEST(RecordingTablet, RecordsEverySegmentInOrder) {
    xcRecordingTablet t;
    xcUITablet& surface = t;
    surface.drawLineSeg({0, 0}, {1, 2}, kOrange, kLayer0);
    surface.drawLineSeg({3, 3}, {3, 3}, xcColor(1, 2, 3), xcUITablet::Layers(4));
    surface.drawLineSeg({NAN, 0}, {0, INFINITY}, kOrange, kLayer0);
    ASSERT_EQ(t.segments().size(), 3u);
    EXPECT_EQ(t.segments()[0].p2, xcPair<double>(1, 2));
    EXPECT_EQ(t.segments()[1].p1, t.segments()[1].p2);
    EXPECT_EQ(t.segments()[1].color, xcColor(1, 2, 3));
    EXPECT_EQ(t.segments()[1].layers, xcUITablet::Layers(4));
    EXPECT_TRUE(std::isnan(t.segments()[2].p1.x()));
    t.clear();
    EXPECT_TRUE(t.segments().empty());
}

// ---- SVG tablet ----

TEST(SvgTablet, EmptyDrawingIsAWellFormedDocumentAroundTheOrigin) {
    const xcSvgTablet t;
    const Svg svg = parse(t);
    EXPECT_TRUE(svg.lines().empty());
    // Unit square around (0, 0): (-0.5, -0.5)..(0.5, 0.5); margin 0.05 * 1 on each side.
    expectViewBox(svg, -0.55, -0.55, 1.1, 1.1);
}

TEST(SvgTablet, OneLineElementPerSegmentWithExactCoordinates) {
    xcSvgTablet t;
    t.drawLineSeg({0.1, 1.0 / 3.0}, {-2, 7}, kOrange, kLayer0);
    t.drawLineSeg({-2, 7}, {1e-7, -123456.789}, xcColor(0, 16, 255), xcUITablet::Layers(5));
    t.drawLineSeg({4, 4}, {4, 4}, xcColor(), kLayer0);
    EXPECT_EQ(t.segmentCount(), 3u);
    const Svg svg = parse(t);
    ASSERT_EQ(svg.lines().size(), 3u);
    for (const Element& line : svg.lines()) {
        EXPECT_EQ(line.name, "line");
        EXPECT_TRUE(line.children.empty());
    }
    const Element& first = svg.lines()[0];
    EXPECT_EQ(number(first.attributes.at("x1")), 0.1);
    EXPECT_EQ(number(first.attributes.at("y1")), 1.0 / 3.0);
    EXPECT_EQ(number(first.attributes.at("x2")), -2.0);
    EXPECT_EQ(number(first.attributes.at("y2")), 7.0);
    EXPECT_EQ(first.attributes.at("stroke"), "#ff8000");
    EXPECT_EQ(first.attributes.at("data-layers"), "1");
    const Element& second = svg.lines()[1];
    EXPECT_EQ(number(second.attributes.at("x2")), 1e-7);
    EXPECT_EQ(number(second.attributes.at("y2")), -123456.789);
    EXPECT_EQ(second.attributes.at("stroke"), "#0010ff");
    EXPECT_EQ(second.attributes.at("data-layers"), "5");
    EXPECT_EQ(svg.lines()[2].attributes.at("stroke"), "#000000");
}

TEST(SvgTablet, YAxisPointsUpThroughAFlipOfTheGroup) {
    xcSvgTablet t;
    t.drawLineSeg({0, 0}, {10, 0}, kOrange, kLayer0);
    t.drawLineSeg({10, 0}, {10, 5}, kOrange, kLayer0);
    const Svg svg = parse(t);
    EXPECT_EQ(svg.group().attributes.at("transform"), "scale(1,-1)");
    EXPECT_EQ(svg.group().attributes.at("fill"), "none");
    EXPECT_EQ(svg.group().attributes.at("stroke-linecap"), "round");
    // Bounds x 0..10, y 0..5; larger side 10, margin 0.5, automatic stroke 10/500. Flipped, the
    // top edge y = 5 is at -5 in the view box.
    expectViewBox(svg, -0.5, -5.5, 11.0, 6.0);
    EXPECT_NEAR(number(svg.group().attributes.at("stroke-width")), 0.02, 1e-15);
}

TEST(SvgTablet, ViewBoxHoldsEveryFlippedPoint) {
    xcSvgTablet t;
    const std::vector<xcPair<double>> points{{-3, 8}, {12.5, -4}, {0, 0}, {7, 7.75}};
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        t.drawLineSeg(points[i], points[i + 1], kOrange, kLayer0);
    const std::vector<double> box = parse(t).viewBox();
    for (const xcPair<double>& p : points) {
        EXPECT_GT(p.x(), box[0]);
        EXPECT_LT(p.x(), box[0] + box[2]);
        EXPECT_GT(-p.y(), box[1]);
        EXPECT_LT(-p.y(), box[1] + box[3]);
    }
    // x -3..12.5 and y -4..8: larger side 15.5, margin 0.775.
    expectViewBox(parse(t), -3.775, -8.775, 17.05, 13.55);
}

TEST(SvgTablet, ChosenStrokeWidthWidensTheMargin) {
    xcSvgTablet t(2.0);
    t.drawLineSeg({0, 0}, {10, 5}, kOrange, kLayer0);
    const Svg svg = parse(t);
    EXPECT_EQ(number(svg.group().attributes.at("stroke-width")), 2.0);
    // Margin max(0.05 * 10, 2) = 2.
    expectViewBox(svg, -2.0, -7.0, 14.0, 9.0);
}

TEST(SvgTablet, SinglePointGetsAUnitBox) {
    xcSvgTablet t;
    t.drawLineSeg({3, 4}, {3, 4}, kOrange, kLayer0);
    // (2.5, 3.5)..(3.5, 4.5) plus margin 0.05; flipped top edge 4.5 -> -4.5.
    expectViewBox(parse(t), 2.45, -4.55, 1.1, 1.1);
}

TEST(SvgTablet, NonFiniteSegmentsAreSkippedAndCounted) {
    xcSvgTablet t;
    t.drawLineSeg({0, 0}, {1, 1}, kOrange, kLayer0);
    t.drawLineSeg({NAN, 0}, {1, 1}, kOrange, kLayer0);
    t.drawLineSeg({0, 0}, {1, -INFINITY}, kOrange, kLayer0);
    EXPECT_EQ(t.segmentCount(), 1u);
    EXPECT_EQ(t.skippedCount(), 2u);
    EXPECT_EQ(parse(t).lines().size(), 1u);
}

TEST(SvgTablet, BadStrokeWidthThrows) {
    const auto make = [](double width) { xcSvgTablet t(width); };
    EXPECT_THROW(make(-1.0), xcPel::BadWindow);
    EXPECT_THROW(make(NAN), xcPel::BadWindow);
    EXPECT_THROW(make(INFINITY), xcPel::BadWindow);
    EXPECT_NO_THROW(make(0.0));
}

TEST(SvgTablet, ExtentBeyondDoublesThrows) {
    xcSvgTablet t;
    t.drawLineSeg({-1e308, 0}, {1e308, 0}, kOrange, kLayer0);
    EXPECT_THROW(t.document(), xcMathError::NotFinite);
}

TEST(SvgTablet, WriteStoresTheDocument) {
    xcSvgTablet t;
    t.drawLineSeg({0, 0}, {1, 1}, kOrange, kLayer0);
    const std::string path = ::testing::TempDir() + "tablet_test.svg";
    t.write(path);
    std::FILE* f = std::fopen(path.c_str(), "rb");
    ASSERT_NE(f, nullptr);
    std::string content;
    char buf[4096];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;)
        content.append(buf, n);
    std::fclose(f);
    std::remove(path.c_str());
    EXPECT_EQ(content, t.document());
}

TEST(SvgTablet, WriteFailureNamesThePath) {
    const std::string path = ::testing::TempDir() + "no_such_dir/tablet.svg";
    const auto e = support::caught<xcArchive::FileError>([&] { xcSvgTablet().write(path); });
    ASSERT_TRUE(e);
    EXPECT_TRUE(support::says(*e, path)) << e->what();
}

}  // namespace
