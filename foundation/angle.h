#ifndef FOUNDATION_ANGLE_H
#define FOUNDATION_ANGLE_H

#include <cmath>
#include <cstdint>

#include <foundation/export.h>

class xcDegree;

/// The value of pi used throughout the foundation.
constexpr double xcPi = 3.141592653589793;

/// An angle in radians.
class xcRadian {
  public:
    /// Zero.
    constexpr xcRadian() = default;
    /// The angle of `value` radians.
    constexpr explicit xcRadian(double value) : v_(value) {}
    /// Converts from degrees.
    inline xcRadian(
        const xcDegree& d);  // NOLINT(google-explicit-constructor): lossless unit change
    /// The value in radians.
    constexpr double toDouble() const { return v_; }
    /// The same direction mapped into [0, 2*pi). A NaN or infinite angle gives NaN.
    xcRadian norm() const {
        const double twoPi = 2.0 * xcPi;
        double r = std::fmod(v_, twoPi);
        if (r < 0.0)
            r += twoPi;
        if (r >= twoPi)
            r = 0.0;  // a tiny negative value can round up to 2*pi
        return xcRadian(r);
    }

    constexpr xcRadian operator-() const { return xcRadian(-v_); }
    constexpr xcRadian operator+(const xcRadian& o) const { return xcRadian(v_ + o.v_); }
    constexpr xcRadian operator-(const xcRadian& o) const { return xcRadian(v_ - o.v_); }
    constexpr xcRadian operator*(double s) const { return xcRadian(v_ * s); }
    constexpr xcRadian operator/(double s) const { return xcRadian(v_ / s); }
    xcRadian& operator+=(const xcRadian& o) {
        v_ += o.v_;
        return *this;
    }
    xcRadian& operator-=(const xcRadian& o) {
        v_ -= o.v_;
        return *this;
    }

    constexpr bool operator==(const xcRadian& o) const { return v_ == o.v_; }
    constexpr bool operator!=(const xcRadian& o) const { return v_ != o.v_; }
    constexpr bool operator<(const xcRadian& o) const { return v_ < o.v_; }
    constexpr bool operator>(const xcRadian& o) const { return v_ > o.v_; }
    constexpr bool operator<=(const xcRadian& o) const { return v_ <= o.v_; }
    constexpr bool operator>=(const xcRadian& o) const { return v_ >= o.v_; }

  private:
    double v_ = 0.0;
};

constexpr xcRadian operator*(double s, const xcRadian& a) {
    return a * s;
}

/// An angle in degrees.
class xcDegree {
  public:
    /// Zero.
    constexpr xcDegree() = default;
    /// The angle of `value` degrees.
    constexpr explicit xcDegree(double value) : v_(value) {}
    /// Converts from radians.
    xcDegree(const xcRadian& r) : v_(r.toDouble() * (180.0 / xcPi)) {}  // NOLINT
    /// The value in degrees.
    constexpr double toDouble() const { return v_; }

    constexpr xcDegree operator-() const { return xcDegree(-v_); }
    constexpr xcDegree operator+(const xcDegree& o) const { return xcDegree(v_ + o.v_); }
    constexpr xcDegree operator-(const xcDegree& o) const { return xcDegree(v_ - o.v_); }
    constexpr xcDegree operator*(double s) const { return xcDegree(v_ * s); }
    constexpr xcDegree operator/(double s) const { return xcDegree(v_ / s); }

    constexpr bool operator==(const xcDegree& o) const { return v_ == o.v_; }
    constexpr bool operator!=(const xcDegree& o) const { return v_ != o.v_; }
    constexpr bool operator<(const xcDegree& o) const { return v_ < o.v_; }
    constexpr bool operator>(const xcDegree& o) const { return v_ > o.v_; }
    constexpr bool operator<=(const xcDegree& o) const { return v_ <= o.v_; }
    constexpr bool operator>=(const xcDegree& o) const { return v_ >= o.v_; }

  private:
    double v_ = 0.0;
};

inline xcRadian::xcRadian(const xcDegree& d) : v_(d.toDouble() * (xcPi / 180.0)) {}

constexpr xcDegree operator*(double s, const xcDegree& a) {
    return a * s;
}

/// Sine of an angle.
inline double sin(const xcRadian& a) {
    return std::sin(a.toDouble());
}
/// Cosine of an angle.
inline double cos(const xcRadian& a) {
    return std::cos(a.toDouble());
}

/// An angle in 256ths of a turn, held in one byte. Arithmetic wraps modulo 256 steps.
class xcAngle8 {
  public:
    /// Zero.
    constexpr xcAngle8() = default;
    /// The raw step `steps` modulo 256 (so xcAngle8(64) is a quarter turn).
    constexpr explicit xcAngle8(int steps) : raw_(static_cast<std::uint8_t>(steps & 0xFF)) {}
    /// The nearest step to `d` (halves rounded away from zero), modulo one turn. A NaN or
    /// infinite angle gives step 0.
    explicit xcAngle8(const xcDegree& d) : raw_(fromTurns(d.toDouble() / 360.0)) {}
    /// The nearest step to `r`, as for degrees.
    explicit xcAngle8(const xcRadian& r) : raw_(fromTurns(r.toDouble() / (2.0 * xcPi))) {}

    /// The step, 0 to 255.
    constexpr std::uint8_t raw() const { return raw_; }
    /// The angle in degrees, in [0, 360).
    xcDegree toDegree() const { return xcDegree(raw_ * (360.0 / 256.0)); }
    /// The angle in radians, in [0, 2*pi).
    xcRadian toRadian() const { return xcRadian(raw_ * (2.0 * xcPi / 256.0)); }
    operator xcDegree() const { return toDegree(); }  // NOLINT(google-explicit-constructor)
    operator xcRadian() const { return toRadian(); }  // NOLINT(google-explicit-constructor)

    constexpr xcAngle8 operator+(const xcAngle8& o) const { return xcAngle8(raw_ + o.raw_); }
    constexpr xcAngle8 operator-(const xcAngle8& o) const { return xcAngle8(raw_ - o.raw_); }
    constexpr xcAngle8 operator-() const { return xcAngle8(-static_cast<int>(raw_)); }
    constexpr bool operator==(const xcAngle8& o) const { return raw_ == o.raw_; }
    constexpr bool operator!=(const xcAngle8& o) const { return raw_ != o.raw_; }

  private:
    static std::uint8_t fromTurns(double turns) {
        const double steps = std::round(turns * 256.0);
        if (!std::isfinite(steps))
            return 0;
        double wrapped = std::fmod(steps, 256.0);
        if (wrapped < 0.0)
            wrapped += 256.0;
        return static_cast<std::uint8_t>(static_cast<int>(wrapped) & 0xFF);
    }
    std::uint8_t raw_ = 0;
};

#endif
