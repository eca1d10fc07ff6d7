#ifndef FOUNDATION_GEOMETRY_H
#define FOUNDATION_GEOMETRY_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <foundation/angle.h>
#include <foundation/exception.h>
#include <foundation/vector.h>

/// A position in the plane, convertible to and from xcVector<2>.
class xcPoint {
  public:
    /// (0, 0).
    constexpr xcPoint() = default;
    constexpr xcPoint(double x, double y) : v_(x, y) {}
    constexpr xcPoint(const xcVector<2>& v) : v_(v) {}     // NOLINT(google-explicit-constructor)
    constexpr operator xcVector<2>() const { return v_; }  // NOLINT(google-explicit-constructor)
    constexpr double x() const { return v_.x(); }
    constexpr double y() const { return v_.y(); }
    constexpr const xcVector<2>& vector() const { return v_; }
    constexpr bool operator==(const xcPoint& o) const { return v_ == o.v_; }
    constexpr bool operator!=(const xcPoint& o) const { return v_ != o.v_; }

  private:
    xcVector<2> v_;
};

/// An infinite line: a point on it and a unit direction.
class xcLine {
  public:
    /// The x axis.
    xcLine() = default;
    /// The line through `point` along `direction`, which is normalised; a zero direction gives
    /// (1, 0). Directions whose squared length overflows or underflows are normalised exactly
    /// like any other; a non-finite direction gives a NaN direction.
    xcLine(const xcVector<2>& point, const xcVector<2>& direction) : p_(point) {
        const double len = direction.length();
        if (len != 0.0 && std::isfinite(len)) {
            dir_ = direction / len;
            return;
        }
        // x*x + y*y left the double range (or a component is not finite): bring the larger
        // component to 1 first so that the length can be formed.
        const double largest = std::max(std::fabs(direction.x()), std::fabs(direction.y()));
        if (largest == 0.0)
            return;
        if (!std::isfinite(largest)) {
            dir_ = xcVector<2>(std::nan(""), std::nan(""));
            return;
        }
        const xcVector<2> scaled = direction / largest;
        dir_ = scaled / scaled.length();
    }

    const xcVector<2>& point() const { return p_; }
    /// The unit direction.
    const xcVector<2>& direction() const { return dir_; }

    /// Whether |cross(u, v)| <= 1e-12 for the two unit directions.
    bool isParallel(const xcLine& other) const {
        return std::fabs(dir_.cross(other.dir_)) <= kParallelTolerance;
    }
    /// The crossing point. Throws xcMathError::Singular for parallel lines (see isParallel).
    xcVector<2> intersect(const xcLine& other) const {
        if (isParallel(other))
            throw xcMathError::Singular(L"parallel lines do not intersect");
        const double s = (other.p_ - p_).cross(other.dir_) / dir_.cross(other.dir_);
        return p_ + dir_ * s;
    }
    /// The foot of the perpendicular from `p` onto the line.
    xcVector<2> proj(const xcVector<2>& p) const { return p_ + dir_ * (p - p_).dot(dir_); }
    /// The perpendicular distance from `p` to the line.
    double distToPoint(const xcVector<2>& p) const { return std::fabs(dir_.cross(p - p_)); }

    /// The bound on the cross product of unit directions below which lines count as parallel.
    static constexpr double kParallelTolerance = 1e-12;

  private:
    xcVector<2> p_;
    xcVector<2> dir_{1.0, 0.0};
};

/// A closed line segment from p1 to p2. The default runs from (0, 0) to (0, 0).
class xcLineSeg {
  public:
    xcLineSeg() = default;
    xcLineSeg(const xcVector<2>& p1, const xcVector<2>& p2) : p1_(p1), p2_(p2) {}
    const xcVector<2>& p1() const { return p1_; }
    const xcVector<2>& p2() const { return p2_; }
    /// p2 - p1.
    xcVector<2> delta() const { return p2_ - p1_; }
    double length() const { return delta().length(); }
    /// The infinite line through p1 towards p2. A zero-length segment gives the line through p1
    /// with direction (1, 0); this never throws.
    xcLine line() const { return xcLine(p1_, p2_ - p1_); }
    /// The distance from `p` to the closest point of the closed segment.
    double distToPoint(const xcVector<2>& p) const {
        const xcVector<2> d = p2_ - p1_;
        const double dd = d.dot(d);
        if (dd == 0.0)
            return p.distance(p1_);
        const double t = (p - p1_).dot(d) / dd;
        if (t <= 0.0)
            return p.distance(p1_);
        if (t >= 1.0)
            return p.distance(p2_);
        return p.distance(p1_ + d * t);
    }
    bool operator==(const xcLineSeg& o) const { return p1_ == o.p1_ && p2_ == o.p2_; }
    bool operator!=(const xcLineSeg& o) const { return !(*this == o); }

  private:
    xcVector<2> p1_;
    xcVector<2> p2_;
};

/// An axis-aligned rectangle held by its two corners: ul() has the smaller coordinates, lr() the
/// larger. The default is the empty rectangle at (0, 0).
class xcRect {
  public:
    xcRect() = default;
    /// The rectangle spanned by `corner` and `corner + size`; negative sizes are allowed and
    /// normalised.
    xcRect(const xcVector<2>& corner, const xcVector<2>& size) {
        const xcVector<2> other = corner + size;
        ul_ = {std::min(corner.x(), other.x()), std::min(corner.y(), other.y())};
        lr_ = {std::max(corner.x(), other.x()), std::max(corner.y(), other.y())};
    }
    /// The zero-size rectangle at `p`.
    static xcRect at(const xcVector<2>& p) { return fromCorners(p, p); }

    /// The corner with the smaller coordinates.
    const xcVector<2>& ul() const { return ul_; }
    /// The corner with the larger coordinates (ul() + size()).
    const xcVector<2>& lr() const { return lr_; }
    xcVector<2> size() const { return lr_ - ul_; }
    double width() const { return lr_.x() - ul_.x(); }
    double height() const { return lr_.y() - ul_.y(); }

    /// The smallest rectangle holding both.
    xcRect enclose(const xcRect& o) const {
        return fromCorners({std::min(ul_.x(), o.ul_.x()), std::min(ul_.y(), o.ul_.y())},
                           {std::max(lr_.x(), o.lr_.x()), std::max(lr_.y(), o.lr_.y())});
    }
    /// Whether `p` lies inside or on the border.
    bool within(const xcVector<2>& p) const {
        return p.x() >= ul_.x() && p.x() <= lr_.x() && p.y() >= ul_.y() && p.y() <= lr_.y();
    }
    bool operator==(const xcRect& o) const { return ul_ == o.ul_ && lr_ == o.lr_; }
    bool operator!=(const xcRect& o) const { return !(*this == o); }

  private:
    static xcRect fromCorners(const xcVector<2>& ul, const xcVector<2>& lr) {
        xcRect r;
        r.ul_ = ul;
        r.lr_ = lr;
        return r;
    }
    xcVector<2> ul_;
    xcVector<2> lr_;
};

/// A circle. The default has centre (0, 0) and radius 0.
class xcCircle {
  public:
    xcCircle() = default;
    xcCircle(const xcVector<2>& center, double radius) : c_(center), r_(radius) {}
    const xcVector<2>& center() const { return c_; }
    double radius() const { return r_; }
    bool operator==(const xcCircle& o) const { return c_ == o.c_ && r_ == o.r_; }
    bool operator!=(const xcCircle& o) const { return !(*this == o); }

  private:
    xcVector<2> c_;
    double r_ = 0.0;
};

/// An ellipse: centre, radius r1 along the direction `rotation`, radius r2 across it.
class xcEllipse {
  public:
    /// The geometry record of an ellipse. The two flags are carried unchanged for the caller;
    /// the foundation does not interpret them.
    struct xcEllipseGeom {
        xcPoint center;
        double r1 = 0.0;
        double r2 = 0.0;
        xcRadian rotation;
        bool flag1 = false;
        bool flag2 = false;

        xcEllipseGeom() = default;
        xcEllipseGeom(const xcPoint& c, double radius1, double radius2, const xcRadian& rot,
                      bool f1, bool f2)
            : center(c), r1(radius1), r2(radius2), rotation(rot), flag1(f1), flag2(f2) {}
    };

    /// Centre (0, 0), radii (0, 0), rotation 0.
    xcEllipse() = default;
    explicit xcEllipse(const xcEllipseGeom& geom) : g_(geom) {}
    /// The circle as an ellipse: both radii its radius, rotation 0.
    explicit xcEllipse(const xcCircle& c)
        : g_(xcPoint(c.center()), c.radius(), c.radius(), xcRadian(0.0), false, false) {}

    const xcEllipseGeom& geom() const { return g_; }
    xcPoint center() const { return g_.center; }
    double r1() const { return g_.r1; }
    double r2() const { return g_.r2; }
    xcRadian rotation() const { return g_.rotation; }
    bool flag1() const { return g_.flag1; }
    bool flag2() const { return g_.flag2; }

    bool operator==(const xcEllipse& o) const {
        return g_.center == o.g_.center && g_.r1 == o.g_.r1 && g_.r2 == o.g_.r2 &&
               g_.rotation == o.g_.rotation && g_.flag1 == o.g_.flag1 && g_.flag2 == o.g_.flag2;
    }
    bool operator!=(const xcEllipse& o) const { return !(*this == o); }

  private:
    xcEllipseGeom g_;
};

/// A polygon given by its vertices and a fill mode (a value carried for the caller).
class xcPolygon {
  public:
    xcPolygon() = default;
    explicit xcPolygon(const std::vector<xcVector<2>>& vertices, int fillMode = 0)
        : v_(vertices), fill_(fillMode) {}
    const std::vector<xcVector<2>>& vertices() const { return v_; }
    int fillMode() const { return fill_; }
    bool operator==(const xcPolygon& o) const { return v_ == o.v_ && fill_ == o.fill_; }
    bool operator!=(const xcPolygon& o) const { return !(*this == o); }

  private:
    std::vector<xcVector<2>> v_;
    int fill_ = 0;
};

/// An edge element: a position, a gradient magnitude and a gradient direction.
class xcEdgelet {
  public:
    xcEdgelet() = default;
    xcEdgelet(const xcVector<2>& position, std::uint16_t magnitude, const xcAngle8& angle)
        : pos_(position), mag_(magnitude), angle_(angle) {}
    const xcVector<2>& position() const { return pos_; }
    std::uint16_t magnitude() const { return mag_; }
    const xcAngle8& angle() const { return angle_; }
    bool operator==(const xcEdgelet& o) const {
        return pos_ == o.pos_ && mag_ == o.mag_ && angle_ == o.angle_;
    }
    bool operator!=(const xcEdgelet& o) const { return !(*this == o); }

  private:
    xcVector<2> pos_;
    std::uint16_t mag_ = 0;
    xcAngle8 angle_;
};

#endif
