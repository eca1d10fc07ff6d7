// Conversions between Python values (numpy arrays and sequences of numbers) and the library's
// geometry types, shared by every part of the extension module.
#ifndef CNTR_PYTHON_CONVERT_H
#define CNTR_PYTHON_CONVERT_H

#include <cstddef>
#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <foundation/geometry.h>
#include <foundation/handle.h>
#include <foundation/matrix.h>
#include <foundation/vector.h>

/// pybind11's holder for the counted shape classes (xcContour, xcRegion, xcRegionSet): a counted
/// handle with the get() that pybind11 asks of holders. The count lives in the object, so a
/// holder may be made from a bare pointer at any time; a shape reached both from Python and from
/// another shape (a hole, a member of a set) lives while either holds it.
template <class T>
class Counted {
  public:
    Counted() = default;
    explicit Counted(T* shape) : handle_(shape) {}
    explicit Counted(const xcPtrHandle<T>& handle) : handle_(handle) {}
    T* get() const { return handle_.rep(); }
    const xcPtrHandle<T>& handle() const { return handle_; }

  private:
    xcPtrHandle<T> handle_;
};
PYBIND11_DECLARE_HOLDER_TYPE(T, Counted<T>, true)

namespace cntr_python {

namespace py = pybind11;

/// The vertices of `points`: an (N, 2) array-like of integers or floating-point numbers, or an
/// OpenCV contour array of shape (N, 1, 2); an empty sequence is no vertex. Any memory layout and
/// read-only arrays are accepted (the values are copied). Throws TypeError for values that are
/// not real numbers and ValueError for another shape; `what` names the argument in the message.
std::vector<xcVector<2>> toPoints(py::handle points, const char* what = "points");

/// A point: an array-like of two real numbers.
xcVector<2> toPoint(py::handle point, const char* what = "point");

/// A segment: a (2, 2) array-like, its start and its end.
xcLineSeg toSegment(py::handle segment);

/// An affine transform from a 2x3 array-like [[a, b, tx], [c, d, ty]] (OpenCV's layout for affine
/// matrices: x' = a x + b y + tx, y' = c x + d y + ty); None is the identity.
xcXform<2> toXform(py::handle matrix);

/// An integer of any integer type (numpy's too); anything else raises Python's own TypeError.
py::int_ toInteger(py::handle value);

/// A label: an integer from 0 to 2^32 - 1, the range the library's archives store.
unsigned long toLabel(py::handle label);

/// A C-contiguous float64 array of `values`, checked to hold real numbers (TypeError otherwise).
py::array_t<double> realArray(py::handle values, const char* what);

/// The vertices as a read-only (N, 2) float64 array.
py::array pointsArray(const std::vector<xcVector<2>>& points);
/// (x, y).
py::tuple pointTuple(const xcVector<2>& point);
/// (minx, miny, maxx, maxy).
py::tuple rectTuple(const xcRect& rect);
/// The matrix as a read-only 2x2 float64 array.
py::array matrixArray(const xcMatrix<2>& matrix);

/// The vertices as a repr shows them: the list of pairs for a few vertices, their count for more.
std::string pointsRepr(const std::vector<xcVector<2>>& points);

}  // namespace cntr_python

#endif
