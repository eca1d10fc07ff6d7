// The parts of the extension module cntr._cntr, each defined in its own file.
#ifndef CNTR_PYTHON_BINDINGS_H
#define CNTR_PYTHON_BINDINGS_H

#include <pybind11/operators.h>
#include <pybind11/pybind11.h>

namespace cntr_python {

namespace py = pybind11;

/// Circle, Ellipse, Polygon, MultiPolygon and the validity report (values.cpp).
void bindValues(py::module_& m);
/// Contour, Region and RegionSet, the library's described classes (shapes.cpp).
void bindShapes(py::module_& m);
/// The functions of cntr.batch over ragged arrays of rings (batch.cpp).
void bindBatch(py::module_& batch);

}  // namespace cntr_python

#endif
