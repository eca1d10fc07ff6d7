// The Python exception classes of the library's exceptions.
#ifndef CNTR_PYTHON_ERRORS_H
#define CNTR_PYTHON_ERRORS_H

#include <pybind11/pybind11.h>

#include <foundation/exception.h>

namespace cntr_python {

namespace py = pybind11;

/// Defines cntr.Error and its subclasses, one per exception class of the libraries, and
/// translates every exception of the libraries that reaches Python into its class.
void bindErrors(py::module_& m);

/// The Python exception for `error`: an instance of the Python class of its C++ class, its
/// message the library's (what()), with the attributes error_number and message.
py::object pythonError(const xcException& error);

}  // namespace cntr_python

#endif
