#ifndef FOUNDATION_VECTOR_H
#define FOUNDATION_VECTOR_H

#include <cmath>

#include <foundation/angle.h>
#include <foundation/numeric.h>

/// A pair of values. For xcPair<long> used as a grid cell, x() is the column and y() the row.
template <class T>
class xcPair {
  public:
    constexpr xcPair() = default;
    constexpr xcPair(T x, T y) : x_(x), y_(y) {}
    constexpr T x() const { return x_; }
    constexpr T y() const { return y_; }
    constexpr bool operator==(const xcPair& o) const { return x_ == o.x_ && y_ == o.y_; }
    constexpr bool operator!=(const xcPair& o) const { return !(*this == o); }

  private:
    T x_{};
    T y_{};
};

template <int N>
class xcVector;

/// A 2-D vector of doubles.
template <>
class xcVector<2> {
  public:
    /// (0, 0).
    constexpr xcVector() = default;
    /// (x, y).
    constexpr xcVector(double x, double y) : v_{x, y} {}
    /// The polar vector of the given length pointing at `angle` (counter-clockwise from +x).
    xcVector(double length, const xcRadian& angle)
        : v_{length * std::cos(angle.toDouble()), length * std::sin(angle.toDouble())} {}
    /// The cell (column, row) as (x, y).
    constexpr explicit xcVector(const xcPair<long>& cell)
        : v_{static_cast<double>(cell.x()), static_cast<double>(cell.y())} {}

    constexpr double x() const { return v_[0]; }
    constexpr double y() const { return v_[1]; }
    /// Component i (0: x, 1: y).
    constexpr double operator[](int i) const { return v_[i]; }
    double& operator[](int i) { return v_[i]; }

    constexpr xcVector operator+(const xcVector& o) const {
        return {v_[0] + o.v_[0], v_[1] + o.v_[1]};
    }
    constexpr xcVector operator-(const xcVector& o) const {
        return {v_[0] - o.v_[0], v_[1] - o.v_[1]};
    }
    constexpr xcVector operator-() const { return {-v_[0], -v_[1]}; }
    constexpr xcVector operator*(double s) const { return {v_[0] * s, v_[1] * s}; }
    constexpr xcVector operator/(double s) const { return {v_[0] / s, v_[1] / s}; }
    xcVector& operator+=(const xcVector& o) {
        v_[0] += o.v_[0];
        v_[1] += o.v_[1];
        return *this;
    }
    xcVector& operator-=(const xcVector& o) {
        v_[0] -= o.v_[0];
        v_[1] -= o.v_[1];
        return *this;
    }
    xcVector& operator*=(double s) {
        v_[0] *= s;
        v_[1] *= s;
        return *this;
    }
    xcVector& operator/=(double s) {
        v_[0] /= s;
        v_[1] /= s;
        return *this;
    }

    /// Dot product.
    constexpr double dot(const xcVector& o) const { return v_[0] * o.v_[0] + v_[1] * o.v_[1]; }
    /// Two-dimensional cross product x * o.y - y * o.x.
    constexpr double cross(const xcVector& o) const { return v_[0] * o.v_[1] - v_[1] * o.v_[0]; }
    /// Euclidean length.
    double length() const { return std::sqrt(v_[0] * v_[0] + v_[1] * v_[1]); }
    /// Euclidean distance to `o`.
    double distance(const xcVector& o) const { return (*this - o).length(); }
    /// atan2(y, x), in (-pi, pi].
    xcRadian angle() const { return xcRadian(std::atan2(v_[1], v_[0])); }

    /// Exact component-wise equality (use xfRealEq for a tolerance).
    constexpr bool operator==(const xcVector& o) const {
        return v_[0] == o.v_[0] && v_[1] == o.v_[1];
    }
    constexpr bool operator!=(const xcVector& o) const { return !(*this == o); }

  private:
    double v_[2] = {0.0, 0.0};
};

constexpr xcVector<2> operator*(double s, const xcVector<2>& v) {
    return v * s;
}

/// True when each component differs by at most eps.
inline bool xfRealEq(const xcVector<2>& a, const xcVector<2>& b, double eps) {
    return xfRealEq(a.x(), b.x(), eps) && xfRealEq(a.y(), b.y(), eps);
}

#endif
