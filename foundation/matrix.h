#ifndef FOUNDATION_MATRIX_H
#define FOUNDATION_MATRIX_H

#include <foundation/angle.h>
#include <foundation/exception.h>
#include <foundation/export.h>
#include <foundation/vector.h>

template <int N>
class xcMatrix;

/// A 2x2 matrix of doubles, row-major. The default matrix is zero; xcMatrix<2>::I is the
/// identity.
template <>
class FOUNDATION_API xcMatrix<2> {
  public:
    /// The zero matrix.
    constexpr xcMatrix() = default;
    /// [[e00, e01], [e10, e11]].
    constexpr xcMatrix(double e00, double e01, double e10, double e11) : e_{e00, e01, e10, e11} {}
    /// The matrix whose columns are xScale * (cos xRot, sin xRot) and yScale * (-sin yRot,
    /// cos yRot): equal angles and unit scales give the rotation by that angle.
    xcMatrix(const xcRadian& xRot, const xcRadian& yRot, double xScale, double yScale)
        : e_{xScale * std::cos(xRot.toDouble()), -yScale * std::sin(yRot.toDouble()),
             xScale * std::sin(xRot.toDouble()), yScale * std::cos(yRot.toDouble())} {}

    /// The identity.
    static const xcMatrix I;

    /// Element (row r, column c), r and c in {0, 1}.
    constexpr double element(int r, int c) const { return e_[2 * r + c]; }
    /// Sets element (r, c).
    void element(int r, int c, double v) { e_[2 * r + c] = v; }

    xcMatrix operator*(const xcMatrix& o) const {
        return {e_[0] * o.e_[0] + e_[1] * o.e_[2], e_[0] * o.e_[1] + e_[1] * o.e_[3],
                e_[2] * o.e_[0] + e_[3] * o.e_[2], e_[2] * o.e_[1] + e_[3] * o.e_[3]};
    }
    xcVector<2> operator*(const xcVector<2>& v) const {
        return {e_[0] * v.x() + e_[1] * v.y(), e_[2] * v.x() + e_[3] * v.y()};
    }
    xcMatrix operator*(double s) const { return {e_[0] * s, e_[1] * s, e_[2] * s, e_[3] * s}; }
    xcMatrix operator+(const xcMatrix& o) const {
        return {e_[0] + o.e_[0], e_[1] + o.e_[1], e_[2] + o.e_[2], e_[3] + o.e_[3]};
    }
    xcMatrix operator-(const xcMatrix& o) const {
        return {e_[0] - o.e_[0], e_[1] - o.e_[1], e_[2] - o.e_[2], e_[3] - o.e_[3]};
    }

    xcMatrix transpose() const { return {e_[0], e_[2], e_[1], e_[3]}; }
    double determinant() const { return e_[0] * e_[3] - e_[1] * e_[2]; }
    /// The inverse. Throws xcMathError::Singular when the determinant is 0 (or not finite).
    xcMatrix inverse() const;

    /// Exact element-wise equality.
    bool operator==(const xcMatrix& o) const {
        return e_[0] == o.e_[0] && e_[1] == o.e_[1] && e_[2] == o.e_[2] && e_[3] == o.e_[3];
    }
    bool operator!=(const xcMatrix& o) const { return !(*this == o); }

  private:
    double e_[4] = {0.0, 0.0, 0.0, 0.0};
};

inline xcMatrix<2> operator*(double s, const xcMatrix<2>& m) {
    return m * s;
}

/// True when every element differs by at most eps.
inline bool xfRealEq(const xcMatrix<2>& a, const xcMatrix<2>& b, double eps) {
    for (int r = 0; r < 2; ++r)
        for (int c = 0; c < 2; ++c)
            if (!xfRealEq(a.element(r, c), b.element(r, c), eps))
                return false;
    return true;
}

template <int N>
class xcXform;

/// An affine planar transform: p -> matrix * p + trans. The default is the identity.
template <>
class FOUNDATION_API xcXform<2> {
  public:
    /// The identity.
    xcXform() : m_(1.0, 0.0, 0.0, 1.0) {}
    xcXform(const xcMatrix<2>& matrix, const xcVector<2>& trans) : m_(matrix), t_(trans) {}

    /// The identity.
    static const xcXform I;

    const xcMatrix<2>& matrix() const { return m_; }
    const xcVector<2>& trans() const { return t_; }

    /// matrix * p + trans.
    xcVector<2> operator*(const xcVector<2>& p) const { return m_ * p + t_; }
    /// Composition: (a * b) * p == a * (b * p).
    xcXform operator*(const xcXform& b) const { return {m_ * b.m_, m_ * b.t_ + t_}; }
    /// The inverse transform. Throws xcMathError::Singular for a singular matrix.
    xcXform inverse() const {
        const xcMatrix<2> mi = m_.inverse();
        return {mi, -(mi * t_)};
    }

    bool operator==(const xcXform& o) const { return m_ == o.m_ && t_ == o.t_; }
    bool operator!=(const xcXform& o) const { return !(*this == o); }

  private:
    xcMatrix<2> m_;
    xcVector<2> t_;
};

/// True when matrices and translations agree within eps element by element.
inline bool xfRealEq(const xcXform<2>& a, const xcXform<2>& b, double eps) {
    return xfRealEq(a.matrix(), b.matrix(), eps) && xfRealEq(a.trans(), b.trans(), eps);
}

#endif
