#ifndef FOUNDATION_TABLET_H
#define FOUNDATION_TABLET_H

#include <cstdint>
#include <string>
#include <vector>

#include <foundation/export.h>
#include <foundation/vector.h>

/// An RGB colour, 8 bits per channel.
class xcColor {
public:
    constexpr xcColor() = default;
    constexpr xcColor(std::uint8_t r, std::uint8_t g, std::uint8_t b) : r_(r), g_(g), b_(b) {}
    constexpr std::uint8_t r() const { return r_; }
    constexpr std::uint8_t g() const { return g_; }
    constexpr std::uint8_t b() const { return b_; }
    constexpr bool operator==(const xcColor& o) const { return r_ == o.r_ && g_ == o.g_ && b_ == o.b_; }
    constexpr bool operator!=(const xcColor& o) const { return !(*this == o); }

private:
    std::uint8_t r_ = 0, g_ = 0, b_ = 0;
};

/// A drawing surface that shapes draw themselves on, as line segments.
class FOUNDATION_API xcUITablet {
public:
    /// The overlay layers a drawing goes to, as a bit mask (layer k is bit k).
    class Layers {
    public:
        /// Layer 0 only.
        constexpr Layers() = default;
        constexpr explicit Layers(std::uint32_t mask) : mask_(mask) {}
        constexpr std::uint32_t mask() const { return mask_; }
        constexpr bool operator==(const Layers& o) const { return mask_ == o.mask_; }
        constexpr bool operator!=(const Layers& o) const { return mask_ != o.mask_; }

    private:
        std::uint32_t mask_ = 1;
    };

    virtual ~xcUITablet();
    /// Draws the segment from `p1` to `p2` (a zero-length segment is allowed).
    virtual void drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2,
                             const xcColor& color, const Layers& layers) = 0;
};

/// A tablet that records the segments it is given, in order.
class FOUNDATION_API xcRecordingTablet : public xcUITablet {
public:
    struct Segment {
        xcPair<double> p1, p2;
        xcColor color;
        xcUITablet::Layers layers;
    };
    ~xcRecordingTablet() override;
    void drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2, const xcColor& color,
                     const Layers& layers) override;
    const std::vector<Segment>& segments() const { return segs_; }
    void clear() { segs_.clear(); }

private:
    std::vector<Segment> segs_;
};

/// A tablet that collects segments and writes them as a standalone SVG document whose view box
/// fits what was drawn (plus a margin). The y axis points up as in the geometry (the document
/// flips it), so shapes look as they would in a plot, not as in image coordinates.
class FOUNDATION_API xcSvgTablet : public xcUITablet {
public:
    /// `strokeWidth` is in drawing units; 0 chooses 1/500 of the larger side of the view box.
    explicit xcSvgTablet(double strokeWidth = 0.0);
    ~xcSvgTablet() override;
    /// Non-finite end points are skipped (they cannot be placed in a view box).
    void drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2, const xcColor& color,
                     const Layers& layers) override;
    /// The document: one <line> element per drawn segment, in drawing order.
    std::string document() const;
    /// Writes document() to `path`; throws xcArchive::FileError naming the path on failure.
    void write(const std::string& path) const;
    std::size_t segmentCount() const { return segs_.size(); }

private:
    std::vector<xcRecordingTablet::Segment> segs_;
    double strokeWidth_;
};

#endif
