#ifndef FOUNDATION_TABLET_H
#define FOUNDATION_TABLET_H

#include <cstdint>
#include <string>
#include <vector>

#include <foundation/export.h>
#include <foundation/vector.h>

/// An RGB colour, 8 bits per channel. The default is black.
class xcColor {
  public:
    constexpr xcColor() = default;
    constexpr xcColor(std::uint8_t r, std::uint8_t g, std::uint8_t b) : r_(r), g_(g), b_(b) {}
    constexpr std::uint8_t r() const { return r_; }
    constexpr std::uint8_t g() const { return g_; }
    constexpr std::uint8_t b() const { return b_; }
    constexpr bool operator==(const xcColor& o) const {
        return r_ == o.r_ && g_ == o.g_ && b_ == o.b_;
    }
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

/// A tablet that records the segments it is given, in order (for tests, and for applications
/// that render elsewhere). It records every segment as given, non-finite ones included.
class FOUNDATION_API xcRecordingTablet : public xcUITablet {
  public:
    /// One drawLineSeg call.
    struct Segment {
        xcPair<double> p1, p2;
        xcColor color;
        xcUITablet::Layers layers;
    };
    ~xcRecordingTablet() override;
    void drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2, const xcColor& color,
                     const Layers& layers) override;
    /// The segments drawn since construction or the last clear(), in drawing order.
    const std::vector<Segment>& segments() const { return segs_; }
    /// Forgets the recorded segments.
    void clear() { segs_.clear(); }

  private:
    std::vector<Segment> segs_;
};

/// A tablet that collects segments and writes them as a standalone SVG document.
///
/// Orientation: the y axis points up, as in the geometry (counter-clockwise outlines look
/// counter-clockwise), not down as in image coordinates. The document keeps the drawn
/// coordinates unchanged on its <line> elements and flips them with a scale(1,-1) transform on
/// the group that holds them.
///
/// View box: the bounding box of every drawn end point, grown on each side by a margin of
/// kMarginFraction of its larger side (at least the stroke width). When the drawn points all
/// coincide, the bounding box is the square of side kUnitSide centred on them; an empty drawing
/// counts as one point at the origin.
class FOUNDATION_API xcSvgTablet : public xcUITablet {
  public:
    /// The margin around the drawing, as a fraction of the larger side of its bounding box.
    static constexpr double kMarginFraction = 0.05;
    /// The automatic stroke width, as a fraction of the larger side of the bounding box.
    static constexpr double kAutoStrokeFraction = 1.0 / 500.0;
    /// The side of the bounding box used when the drawing has no extent.
    static constexpr double kUnitSide = 1.0;

    /// `strokeWidth` is in drawing units; 0 chooses kAutoStrokeFraction of the larger side of
    /// the bounding box. Throws xcPel::BadWindow for a negative or non-finite width.
    explicit xcSvgTablet(double strokeWidth = 0.0);
    ~xcSvgTablet() override;
    /// Collects the segment. A segment with a non-finite end point cannot be placed in a view
    /// box: it is not drawn, and skippedCount() counts it.
    void drawLineSeg(const xcPair<double>& p1, const xcPair<double>& p2, const xcColor& color,
                     const Layers& layers) override;
    /// The document (UTF-8): one <line> element per drawn segment, in drawing order, each with
    /// its colour as stroke="#rrggbb" and its layer mask as data-layers. Zero-length segments
    /// show as dots (round line caps). Numbers are written in the shortest form that reads back
    /// exactly, whatever the C locale. Throws xcMathError::NotFinite when the extent of the
    /// drawing overflows a double.
    std::string document() const;
    /// Writes document() to `path`; throws xcArchive::FileError naming the path on failure.
    void write(const std::string& path) const;
    /// The number of segments drawn (and written).
    std::size_t segmentCount() const { return segs_.size(); }
    /// The number of segments skipped for a non-finite end point.
    std::size_t skippedCount() const { return skipped_; }

  private:
    std::vector<xcRecordingTablet::Segment> segs_;
    std::size_t skipped_ = 0;
    double strokeWidth_;
};

#endif
