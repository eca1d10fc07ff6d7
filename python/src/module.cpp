// The extension module cntr._cntr; the package cntr (python/cntr) re-exports it.
#include <cntr/version.h>

#include "bindings.h"
#include "errors.h"

namespace py = pybind11;

PYBIND11_MODULE(_cntr, m) {
    m.doc() =
        "Planar contour and region geometry for machine vision: the cntr libraries' "
        "bindings. Import the package cntr, which re-exports them.";
    m.attr("__version__") = xf_CntrVersion();
    cntr_python::bindErrors(m);
    cntr_python::bindValues(m);
    cntr_python::bindShapes(m);
    py::module_ batch = m.def_submodule(
        "batch", "Measures of many rings at once, over ragged arrays, on a pool of threads.");
    cntr_python::bindBatch(batch);
}
