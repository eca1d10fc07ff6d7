#include <stdexcept>
#include <typeinfo>

#include <gtest/gtest.h>

#include <foundation/exception.h>
#include <foundation/matrix.h>
#include <foundation/xform.h>

#include "test_support.h"

namespace {

using M = xcMatrix<2>;
using V = xcVector<2>;
using X = xcXform<2>;

// Rotation by 90 degrees, then a shift by (1, 2).
const X kTurn(M(0, -1, 1, 0), V(1, 2));

xcPtrHandle<xc2XformBase> makeLinear(const X& x) {
    return xcPtrHandle<xc2XformBase>(new xc2XformLinear(x));
}

const xc2XformLinear& asLinear(const xcPtrHandle<xc2XformBase>& h) {
    const auto* linear = dynamic_cast<const xc2XformLinear*>(h.rep());
    if (!linear)
        throw std::logic_error("not a linear transform");
    return *linear;
}

TEST(XformLinear, DefaultIsIdentity) {
    const xc2XformLinear t;
    EXPECT_EQ(t.xform(), X::I);
    EXPECT_EQ(t.mapPoint(V(3.5, -2)), V(3.5, -2));
}

TEST(XformLinear, KeepsItsXform) {
    EXPECT_EQ(xc2XformLinear(kTurn).xform(), kTurn);
}

TEST(XformLinear, MapPointIsMatrixThenTranslation) {
    const xc2XformLinear t(kTurn);
    // (3, 4) turned is (-4, 3), shifted (-3, 5).
    EXPECT_EQ(t.mapPoint(V(3, 4)), V(-3, 5));
    EXPECT_EQ(t.mapPoint(V(0, 0)), V(1, 2));
}

TEST(XformLinear, MapPointThroughTheAbstractBase) {
    const xcPtrHandle_const<xc2XformBase> h = makeLinear(X(M(2, 0, 0, 3), V(-1, 1)));
    // (2 * 4 - 1, 3 * 5 + 1)
    EXPECT_EQ(h->mapPoint(V(4, 5)), V(7, 16));
}

TEST(XformLinear, InverseBaseUndoesTheTransform) {
    const xcPtrHandle<xc2XformBase> t = makeLinear(kTurn);
    const xcPtrHandle<xc2XformBase> inv = t->inverseBase();
    ASSERT_FALSE(inv.isNull());
    EXPECT_NE(inv, t);
    EXPECT_EQ(inv.rep()->refCount(), 1);  // a new object that the handle alone owns
    // kTurn^-1: matrix [[0,1],[-1,0]], translation -([[0,1],[-1,0]] (1, 2)) = (-2, 1).
    EXPECT_EQ(asLinear(inv).xform(), X(M(0, 1, -1, 0), V(-2, 1)));
    EXPECT_EQ(inv->mapPoint(V(-3, 5)), V(3, 4));
    EXPECT_EQ(inv->mapPoint(t->mapPoint(V(7, -8))), V(7, -8));
}

TEST(XformLinear, InverseBaseOfScaleAndShift) {
    const xcPtrHandle<xc2XformBase> t = makeLinear(X(M(4, 0, 0, 0.5), V(2, -1)));
    // Inverse: x -> (x - 2) / 4, y -> (y + 1) * 2.
    const xcPtrHandle<xc2XformBase> inv = t->inverseBase();
    EXPECT_EQ(inv->mapPoint(V(10, 3)), V(2, 8));
    EXPECT_EQ(t->inverseBase()->inverseBase()->mapPoint(V(1, 1)), t->mapPoint(V(1, 1)));
}

TEST(XformLinear, InverseBaseOfSingularThrows) {
    const xc2XformLinear flat(X(M(1, 2, 2, 4), V(0, 0)));
    EXPECT_THROW(flat.inverseBase(), xcMathError::Singular);
    const xc2XformLinear zero(X(M(), V(1, 1)));
    EXPECT_TRUE(throwsError([&] { (void)zero.inverseBase(); }, xnErrorNumber::MathSingular));
}

TEST(XformLinear, CloneIsANewEqualTransform) {
    const xcPtrHandle<xc2XformBase> t = makeLinear(kTurn);
    const xcPtrHandle<xc2XformBase> c = t->clone();
    ASSERT_FALSE(c.isNull());
    EXPECT_NE(c, t);  // another object
    EXPECT_EQ(c.rep()->refCount(), 1);
    EXPECT_EQ(t.rep()->refCount(), 1);  // cloning does not share the original
    EXPECT_EQ(typeid(*c), typeid(xc2XformLinear));
    EXPECT_EQ(asLinear(c).xform(), kTurn);
    EXPECT_EQ(c->mapPoint(V(3, 4)), t->mapPoint(V(3, 4)));
}

TEST(XformLinear, CloneOutlivesTheOriginal) {
    xcPtrHandle<xc2XformBase> t = makeLinear(kTurn);
    const xcPtrHandle<xc2XformBase> c = t->clone();
    t = xcPtrHandle<xc2XformBase>();
    EXPECT_EQ(c->mapPoint(V(3, 4)), V(-3, 5));
}

TEST(XformLinear, CopyStartsUnshared) {
    const xcPtrHandle<xc2XformBase> t = makeLinear(kTurn);
    const xcPtrHandle<xc2XformBase> alias = t;
    const xc2XformLinear copy(asLinear(t));
    EXPECT_EQ(copy.refCount(), 0);
    EXPECT_EQ(copy.xform(), kTurn);
}

}  // namespace
