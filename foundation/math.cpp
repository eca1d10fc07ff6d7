#include <cmath>

#include <foundation/matrix.h>

const xcMatrix<2> xcMatrix<2>::I(1.0, 0.0, 0.0, 1.0);
const xcXform<2> xcXform<2>::I;

xcMatrix<2> xcMatrix<2>::inverse() const {
    const double det = determinant();
    if (det == 0.0 || !std::isfinite(det))
        throw xcMathError::Singular();
    return {e_[3] / det, -e_[1] / det, -e_[2] / det, e_[0] / det};
}
