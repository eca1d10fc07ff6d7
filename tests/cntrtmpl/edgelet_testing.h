// Shared helpers of the edgelet template tests: readable printing of edgelets, common
// transforms, a transform that counts its inversions, the archive's factories and an
// expectation on the foundation's BadWindow.
#ifndef CNTR_TESTS_EDGELET_TESTING_H
#define CNTR_TESTS_EDGELET_TESTING_H

#include <memory>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/exception.h>
#include <foundation/geometry.h>
#include <foundation/persistent.h>
#include <foundation/xform.h>

#include "cntr/region_testing.h"

using Edgelets = std::vector<xcEdgelet>;
using XformHandle = xcPtrHandle_const<xc2XformBase>;

inline void PrintTo(const xcEdgelet& e, std::ostream* os) {
    *os << "edgelet at ";
    PrintTo(e.position(), os);
    *os << " magnitude " << e.magnitude() << " angle " << static_cast<int>(e.angle().raw());
}

/// An edgelet at (x, y) with the given magnitude and raw angle step.
inline xcEdgelet edgelet(double x, double y, int magnitude = 0, int angleStep = 0) {
    return xcEdgelet(xcVector<2>(x, y), static_cast<std::uint16_t>(magnitude), xcAngle8(angleStep));
}

/// A handle to a new affine transform.
inline XformHandle linearXform(const xcXform<2>& x) {
    return XformHandle(new xc2XformLinear(x));
}

/// p -> 2 p + (10, 20): a transform whose inverse is q -> (q - (10, 20)) / 2.
inline XformHandle scaleTwoShift() {
    return linearXform(xcXform<2>(xcMatrix<2>(2, 0, 0, 2), xcVector<2>(10, 20)));
}

/// p -> (0, 0) p + (1, 1): maps every point to (1, 1) and has no inverse.
inline XformHandle singularXform() {
    return linearXform(xcXform<2>(xcMatrix<2>(), xcVector<2>(1, 1)));
}

/// A translation that counts, in a counter shared by its clones, how often an inverse was
/// asked of it.
class CountingXform : public xc2XformBase {
  public:
    CountingXform(const xcVector<2>& shift, std::shared_ptr<int> inversions)
        : shift_(shift), inversions_(std::move(inversions)) {}
    xcVector<2> mapPoint(const xcVector<2>& p) const override { return p + shift_; }
    xcPtrHandle<xc2XformBase> inverseBase() const override {
        ++*inversions_;
        return xcPtrHandle<xc2XformBase>(new CountingXform(-shift_, inversions_));
    }
    xcPtrHandle<xc2XformBase> clone() const override {
        return xcPtrHandle<xc2XformBase>(new CountingXform(shift_, inversions_));
    }

  private:
    xcVector<2> shift_;
    std::shared_ptr<int> inversions_;
};

/// Expects `call` to throw the foundation's BadWindow with its number and an empty message.
template <class Call>
void expectBadWindow(Call call) {
    expectThrowWith<xcPel::BadWindow>(call, xnErrorNumber::PelBadWindow, L"");
}

/// A new object of the class registered with the archive under `name`, made by its factory, as
/// the archive's loader would create it; null when the name is unknown or the object is not a
/// Shape.
template <class Shape>
std::unique_ptr<Shape> madeByFactory(const char* name) {
    const xc_Instantiator::MakeFunction make = xc_Instantiator::lookup(name);
    if (!make)
        return nullptr;
    std::unique_ptr<xcPersistent> made(make());
    Shape* shape = dynamic_cast<Shape*>(made.get());
    if (shape)
        made.release();
    return std::unique_ptr<Shape>(shape);
}

#endif
