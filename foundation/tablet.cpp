#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>

#include <foundation/archive.h>
#include <foundation/exception.h>
#include <foundation/tablet.h>

xcUITablet::~xcUITablet() = default;

xcRecordingTablet::~xcRecordingTablet() = default;

void xcRecordingTablet::drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2,
                                    const xcColor& color, const Layers& layers) {
    segs_.push_back({p1, p2, color, layers});
}

namespace {

bool isFinite(const xcPair<double>& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y());
}

// The shortest decimal form that reads back as the same double, independent of the C locale.
std::string number(double v) {
    char buf[32];
    const auto result = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, result.ptr);
}

std::string hexColor(const xcColor& c) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "#%02x%02x%02x", static_cast<unsigned>(c.r()),
                  static_cast<unsigned>(c.g()), static_cast<unsigned>(c.b()));
    return buf;
}

// The bounding box of the drawn end points; the origin for an empty drawing.
struct Bounds {
    double minX = 0.0, minY = 0.0, maxX = 0.0, maxY = 0.0;
};

Bounds boundsOf(const std::vector<xcRecordingTablet::Segment>& segs) {
    Bounds b;
    bool first = true;
    for (const auto& s : segs) {
        for (const xcPair<double>& p : {s.p1, s.p2}) {
            if (first) {
                b = {p.x(), p.y(), p.x(), p.y()};
                first = false;
            }
            b.minX = std::min(b.minX, p.x());
            b.minY = std::min(b.minY, p.y());
            b.maxX = std::max(b.maxX, p.x());
            b.maxY = std::max(b.maxY, p.y());
        }
    }
    return b;
}

std::string lineElement(const xcRecordingTablet::Segment& s) {
    return "<line x1=\"" + number(s.p1.x()) + "\" y1=\"" + number(s.p1.y()) + "\" x2=\"" +
           number(s.p2.x()) + "\" y2=\"" + number(s.p2.y()) + "\" stroke=\"" + hexColor(s.color) +
           "\" data-layers=\"" + std::to_string(s.layers.mask()) + "\"/>\n";
}

}  // namespace

xcSvgTablet::xcSvgTablet(double strokeWidth) : strokeWidth_(strokeWidth) {
    if (!std::isfinite(strokeWidth) || strokeWidth < 0.0)
        throw xcPel::BadWindow(L"SVG stroke width must be finite and not negative");
}

xcSvgTablet::~xcSvgTablet() = default;

void xcSvgTablet::drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2,
                              const xcColor& color, const Layers& layers) {
    if (!isFinite(p1) || !isFinite(p2)) {
        ++skipped_;
        return;
    }
    segs_.push_back({p1, p2, color, layers});
}

std::string xcSvgTablet::document() const {
    Bounds b = boundsOf(segs_);
    double side = std::max(b.maxX - b.minX, b.maxY - b.minY);
    if (side == 0.0) {
        b = {b.minX - kUnitSide / 2, b.minY - kUnitSide / 2, b.maxX + kUnitSide / 2,
             b.maxY + kUnitSide / 2};
        side = kUnitSide;
    }
    const double stroke = strokeWidth_ > 0.0 ? strokeWidth_ : side * kAutoStrokeFraction;
    const double margin = std::max(side * kMarginFraction, stroke);
    // With y flipped, the drawing's top edge maxY becomes the view box's smallest y.
    const double viewX = b.minX - margin, viewY = -b.maxY - margin;
    const double viewW = b.maxX - b.minX + 2.0 * margin, viewH = b.maxY - b.minY + 2.0 * margin;
    if (!std::isfinite(viewX) || !std::isfinite(viewY) || !std::isfinite(viewW) ||
        !std::isfinite(viewH) || !std::isfinite(stroke))
        throw xcMathError::NotFinite(L"drawing too large for an SVG view box");

    std::string doc = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
    doc += "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" viewBox=\"" + number(viewX) +
           " " + number(viewY) + " " + number(viewW) + " " + number(viewH) + "\">\n";
    doc += "<g transform=\"scale(1,-1)\" fill=\"none\" stroke-linecap=\"round\" stroke-width=\"" +
           number(stroke) + "\">\n";
    for (const auto& s : segs_)
        doc += lineElement(s);
    doc += "</g>\n</svg>\n";
    return doc;
}

void xcSvgTablet::write(const std::string& path) const {
    const std::string doc = document();
    const auto message = [&path](const wchar_t* what) {
        return std::wstring(what) + L" \"" + std::wstring(path.begin(), path.end()) + L"\"";
    };
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f)
        throw xcArchive::FileError(message(L"cannot create"));
    const bool written = std::fwrite(doc.data(), 1, doc.size(), f) == doc.size();
    if (std::fclose(f) != 0 || !written)
        throw xcArchive::FileError(message(L"cannot write"));
}
