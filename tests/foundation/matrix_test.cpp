#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <foundation/angle.h>
#include <foundation/exception.h>
#include <foundation/matrix.h>
#include <foundation/random.h>

#include "test_support.h"

namespace {

using M = xcMatrix<2>;
using X = xcXform<2>;
using V = xcVector<2>;

// sqrt(3)/2 to 17 significant digits.
constexpr double kCos30 = 0.86602540378443865;

TEST(Matrix, DefaultIsZero) {
    const M m;
    for (int r = 0; r < 2; ++r)
        for (int c = 0; c < 2; ++c)
            EXPECT_EQ(m.element(r, c), 0.0) << r << "," << c;
}

TEST(Matrix, IdentityConstant) {
    EXPECT_EQ(M::I, M(1.0, 0.0, 0.0, 1.0));
    EXPECT_EQ(M::I * V(3.0, -4.0), V(3.0, -4.0));
}

TEST(Matrix, ElementsAreRowMajor) {
    const M m(1.0, 2.0, 3.0, 4.0);
    EXPECT_EQ(m.element(0, 0), 1.0);
    EXPECT_EQ(m.element(0, 1), 2.0);
    EXPECT_EQ(m.element(1, 0), 3.0);
    EXPECT_EQ(m.element(1, 1), 4.0);
}

TEST(Matrix, ElementSetter) {
    M m;
    m.element(1, 0, 5.0);
    EXPECT_EQ(m, M(0.0, 0.0, 5.0, 0.0));
}

TEST(Matrix, EqualAnglesAndUnitScalesGiveTheRotation) {
    const xcRadian a(xcDegree(30.0));
    const M m(a, a, 1.0, 1.0);
    // [[cos, -sin], [sin, cos]] at 30 degrees.
    EXPECT_TRUE(xfRealEq(m, M(kCos30, -0.5, 0.5, kCos30), 1e-15)) << testing::PrintToString(m);
    // It turns the x axis counter-clockwise onto the direction at 30 degrees.
    EXPECT_TRUE(xfRealEq(m * V(1.0, 0.0), V(kCos30, 0.5), 1e-15));
}

TEST(Matrix, ZeroAnglesAndUnitScalesGiveTheIdentity) {
    EXPECT_EQ(M(xcRadian(0.0), xcRadian(0.0), 1.0, 1.0), M::I);
}

TEST(Matrix, AnglesAndScalesGiveTheStatedColumns) {
    // Columns xScale * (cos xRot, sin xRot) and yScale * (-sin yRot, cos yRot).
    // xRot 90, yRot 0, scales 2 and 3: columns (0, 2) and (0, 3).
    EXPECT_TRUE(
        xfRealEq(M(xcRadian(xcPi / 2.0), xcRadian(0.0), 2.0, 3.0), M(0.0, 0.0, 2.0, 3.0), 1e-15));
    // xRot 0, yRot 90, scales 2 and 3: columns (2, 0) and (-3, 0).
    EXPECT_TRUE(
        xfRealEq(M(xcRadian(0.0), xcRadian(xcPi / 2.0), 2.0, 3.0), M(2.0, -3.0, 0.0, 0.0), 1e-15));
    // xRot 30, yRot 60, scales 2 and 4: columns 2 (cos 30, sin 30) = (sqrt 3, 1) and
    // 4 (-sin 60, cos 60) = (-2 sqrt 3, 2).
    const M m(xcRadian(xcDegree(30.0)), xcRadian(xcDegree(60.0)), 2.0, 4.0);
    EXPECT_TRUE(xfRealEq(m, M(2.0 * kCos30, -4.0 * kCos30, 1.0, 2.0), 1e-14))
        << testing::PrintToString(m);
}

TEST(Matrix, ProductWithMatrix) {
    // [[1,2],[3,4]] [[5,6],[7,8]] = [[1*5+2*7, 1*6+2*8], [3*5+4*7, 3*6+4*8]]
    EXPECT_EQ(M(1, 2, 3, 4) * M(5, 6, 7, 8), M(19, 22, 43, 50));
    EXPECT_EQ(M(5, 6, 7, 8) * M(1, 2, 3, 4), M(23, 34, 31, 46));  // not commutative
}

TEST(Matrix, ProductWithVector) {
    // [[1,2],[3,4]] (5, 6) = (5 + 12, 15 + 24)
    EXPECT_EQ(M(1, 2, 3, 4) * V(5, 6), V(17, 39));
}

TEST(Matrix, ScalarSumAndDifference) {
    EXPECT_EQ(M(1, 2, 3, 4) * 2.0, M(2, 4, 6, 8));
    EXPECT_EQ(2.0 * M(1, 2, 3, 4), M(2, 4, 6, 8));
    EXPECT_EQ(M(1, 2, 3, 4) + M(4, 3, 2, 1), M(5, 5, 5, 5));
    EXPECT_EQ(M(1, 2, 3, 4) - M(4, 3, 2, 1), M(-3, -1, 1, 3));
}

TEST(Matrix, TransposeAndDeterminant) {
    EXPECT_EQ(M(1, 2, 3, 4).transpose(), M(1, 3, 2, 4));
    EXPECT_EQ(M(1, 2, 3, 4).determinant(), -2.0);  // 1*4 - 2*3
    EXPECT_EQ(M::I.determinant(), 1.0);
    EXPECT_EQ(M().determinant(), 0.0);
}

TEST(Matrix, InverseOfIntegerMatrix) {
    // [[2,1],[1,1]] has determinant 1 and inverse [[1,-1],[-1,2]].
    EXPECT_EQ(M(2, 1, 1, 1).inverse(), M(1, -1, -1, 2));
    // [[4,7],[2,6]]: determinant 10, inverse [[6,-7],[-2,4]] / 10.
    EXPECT_TRUE(xfRealEq(M(4, 7, 2, 6).inverse(), M(0.6, -0.7, -0.2, 0.4), 1e-15));
}

TEST(Matrix, InverseOfRotationIsItsTranspose) {
    const M r(xcRadian(0.7), xcRadian(0.7), 1.0, 1.0);
    EXPECT_TRUE(xfRealEq(r.inverse(), r.transpose(), 1e-15));
}

TEST(Matrix, InverseOfSingularThrowsSingular) {
    EXPECT_THROW(M(1, 2, 2, 4).inverse(), xcMathError::Singular);  // rows are parallel
    EXPECT_THROW(M().inverse(), xcMathError::Singular);
    EXPECT_THROW(M(0, 0, 0, 1).inverse(), xcMathError::Singular);
}

TEST(Matrix, SingularIsCatchableAsEveryBase) {
    EXPECT_TRUE(throwsError([] { (void)M(1, 2, 2, 4).inverse(); }, xnErrorNumber::MathSingular));
    try {
        (void)M(1, 2, 2, 4).inverse();
        FAIL() << "no exception";
    } catch (const xcPersistent& p) {
        EXPECT_NE(dynamic_cast<const xcMathError::Singular*>(&p), nullptr);
    }
    try {
        (void)M(1, 2, 2, 4).inverse();
        FAIL() << "no exception";
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "singular matrix");
    }
}

TEST(Matrix, InverseOfNonFiniteMatrixThrowsSingular) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(M(nan, 0, 0, 1).inverse(), xcMathError::Singular);
    EXPECT_THROW(M(std::numeric_limits<double>::infinity(), 0, 0, 1).inverse(),
                 xcMathError::Singular);
}

TEST(Matrix, EqualityIsExactAndRealEqPerElement) {
    EXPECT_NE(M(1, 2, 3, 4), M(1, 2, 3, std::nextafter(4.0, 5.0)));
    EXPECT_TRUE(xfRealEq(M(1, 2, 3, 4), M(1.5, 2, 3, 3.5), 0.5));
    for (int r = 0; r < 2; ++r)
        for (int c = 0; c < 2; ++c) {
            M off(1, 2, 3, 4);
            off.element(r, c, off.element(r, c) + 0.75);
            EXPECT_FALSE(xfRealEq(M(1, 2, 3, 4), off, 0.5)) << r << "," << c;
        }
}

TEST(Matrix, RandomProductsAndInverses) {
    // Laws: (AB)^-1 = B^-1 A^-1, det(AB) = det A det B, A A^-1 = I, (AB)^T = B^T A^T.
    xcRandomUniform gen(17);
    int checked = 0;
    for (int i = 0; i < 200; ++i) {
        const M a(gen.next(-3, 3), gen.next(-3, 3), gen.next(-3, 3), gen.next(-3, 3));
        const M b(gen.next(-3, 3), gen.next(-3, 3), gen.next(-3, 3), gen.next(-3, 3));
        if (std::fabs(a.determinant()) < 0.5 || std::fabs(b.determinant()) < 0.5)
            continue;
        ++checked;
        EXPECT_TRUE(xfRealEq(a * a.inverse(), M::I, 1e-12)) << i;
        EXPECT_TRUE(xfRealEq((a * b).inverse(), b.inverse() * a.inverse(), 1e-10)) << i;
        EXPECT_NEAR((a * b).determinant(), a.determinant() * b.determinant(), 1e-11) << i;
        EXPECT_EQ((a * b).transpose(), b.transpose() * a.transpose()) << i;
    }
    EXPECT_GT(checked, 100);  // most random matrices are well conditioned
}

TEST(Xform, DefaultAndIdentityConstant) {
    EXPECT_EQ(X().matrix(), M::I);
    EXPECT_EQ(X().trans(), V());
    EXPECT_EQ(X::I, X());
    EXPECT_EQ(X::I * V(2.5, -1.0), V(2.5, -1.0));
}

TEST(Xform, AppliesMatrixThenTranslation) {
    const X x(M(1, 2, 3, 4), V(10, 20));
    EXPECT_EQ(x.matrix(), M(1, 2, 3, 4));
    EXPECT_EQ(x.trans(), V(10, 20));
    // [[1,2],[3,4]] (1, 1) = (3, 7), plus (10, 20).
    EXPECT_EQ(x * V(1, 1), V(13, 27));
}

// Rotation by 90 degrees then a shift by (1, 2), and scaling by 2 then a shift by (3, 0).
const X kTurn(M(0, -1, 1, 0), V(1, 2));
const X kScale(M(2, 0, 0, 2), V(3, 0));

TEST(Xform, CompositionAppliesRightOperandFirst) {
    // kTurn * kScale: matrix [[0,-1],[1,0]] [[2,0],[0,2]] = [[0,-2],[2,0]];
    // translation [[0,-1],[1,0]] (3, 0) + (1, 2) = (0, 3) + (1, 2) = (1, 5).
    const X ab = kTurn * kScale;
    EXPECT_EQ(ab, X(M(0, -2, 2, 0), V(1, 5)));
    // (1, 1) -> kScale -> (5, 2) -> kTurn -> (-2 + 1, 5 + 2) = (-1, 7).
    EXPECT_EQ(ab * V(1, 1), V(-1, 7));
    EXPECT_EQ(kTurn * (kScale * V(1, 1)), V(-1, 7));
    // The other order: (1, 1) -> kTurn -> (0, 3) -> kScale -> (3, 6).
    EXPECT_EQ((kScale * kTurn) * V(1, 1), V(3, 6));
}

TEST(Xform, IdentityIsNeutral) {
    EXPECT_EQ(X::I * kTurn, kTurn);
    EXPECT_EQ(kTurn * X::I, kTurn);
}

TEST(Xform, Inverse) {
    // kTurn^-1: matrix [[0,1],[-1,0]], translation -([[0,1],[-1,0]] (1, 2)) = -(2, -1) = (-2, 1).
    EXPECT_EQ(kTurn.inverse(), X(M(0, 1, -1, 0), V(-2, 1)));
    EXPECT_EQ(kTurn.inverse() * (kTurn * V(5, -3)), V(5, -3));
    // kScale^-1: matrix 0.5 I, translation -(1.5, 0).
    EXPECT_EQ(kScale.inverse(), X(M(0.5, 0, 0, 0.5), V(-1.5, 0)));
    EXPECT_EQ(kScale * kScale.inverse(), X::I);
}

TEST(Xform, InverseOfSingularThrows) {
    const X flat(M(1, 1, 1, 1), V(3, 4));
    EXPECT_THROW(flat.inverse(), xcMathError::Singular);
    EXPECT_TRUE(throwsError([&] { (void)flat.inverse(); }, xnErrorNumber::MathSingular));
}

TEST(Xform, RealEqComparesMatrixAndTranslation) {
    EXPECT_TRUE(xfRealEq(kTurn, X(M(0, -1, 1, 0.25), V(1.25, 2)), 0.25));
    EXPECT_FALSE(xfRealEq(kTurn, X(M(0, -1, 1, 0.5), V(1, 2)), 0.25));
    EXPECT_FALSE(xfRealEq(kTurn, X(M(0, -1, 1, 0), V(1, 2.5)), 0.25));
}

TEST(Xform, RandomCompositionLaws) {
    // (a b) c = a (b c), (a b) p = a (b p), (a b)^-1 = b^-1 a^-1.
    xcRandomUniform gen(99);
    int checked = 0;
    auto randomXform = [&gen] {
        return X(M(xcRadian(gen.next(-4, 4)), xcRadian(gen.next(-4, 4)), gen.next(0.5, 2),
                   gen.next(0.5, 2)),
                 V(gen.next(-10, 10), gen.next(-10, 10)));
    };
    for (int i = 0; i < 200; ++i) {
        const X a = randomXform(), b = randomXform(), c = randomXform();
        if (std::fabs(a.matrix().determinant()) < 0.1 || std::fabs(b.matrix().determinant()) < 0.1)
            continue;
        ++checked;
        const V p(gen.next(-10, 10), gen.next(-10, 10));
        EXPECT_TRUE(xfRealEq((a * b) * c, a * (b * c), 1e-11)) << i;
        EXPECT_TRUE(xfRealEq((a * b) * p, a * (b * p), 1e-11)) << i;
        EXPECT_TRUE(xfRealEq((a * b).inverse(), b.inverse() * a.inverse(), 1e-9)) << i;
        EXPECT_TRUE(xfRealEq(a.inverse() * (a * p), p, 1e-10)) << i;
    }
    EXPECT_GT(checked, 100);
}

}  // namespace
