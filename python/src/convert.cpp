#include "convert.h"

#include <sstream>

namespace cntr_python {

namespace {

py::module_ numpy() {
    return py::module_::import("numpy");
}

std::string shapeText(const py::array& a) {
    std::ostringstream os;
    os << '(';
    for (py::ssize_t d = 0; d < a.ndim(); ++d)
        os << (d ? ", " : "") << a.shape(d);
    os << (a.ndim() == 1 ? ",)" : ")");
    return os.str();
}

// The values of an array-like of exactly the given shape (`form` describes it in the message).
py::array_t<double> fixedArray(py::handle values, const char* what,
                               const std::vector<py::ssize_t>& shape, const char* form) {
    py::array_t<double> a = realArray(values, what);
    bool fits = a.ndim() == static_cast<py::ssize_t>(shape.size());
    for (std::size_t d = 0; fits && d < shape.size(); ++d)
        fits = a.shape(static_cast<py::ssize_t>(d)) == shape[d];
    if (!fits)
        throw py::value_error(std::string(what) + " must be " + form + ", not shape " +
                              shapeText(a));
    return a;
}

void makeReadOnly(py::array& a) {
    a.attr("setflags")(py::arg("write") = false);
}

}  // namespace

py::array_t<double> realArray(py::handle values, const char* what) {
    const py::array raw = numpy().attr("asarray")(values);
    const char kind = raw.dtype().kind();
    if (kind != 'i' && kind != 'u' && kind != 'f')
        throw py::type_error(std::string(what) + " must hold real numbers (integers or " +
                             "floating-point), not " + py::str(raw.dtype()).cast<std::string>());
    return numpy().attr("ascontiguousarray")(raw, py::arg("dtype") = "float64");
}

std::vector<xcVector<2>> toPoints(py::handle points, const char* what) {
    const py::array_t<double> a = realArray(points, what);
    const bool pairs = a.ndim() == 2 && a.shape(1) == 2;
    const bool openCv = a.ndim() == 3 && a.shape(1) == 1 && a.shape(2) == 2;
    const bool empty = a.ndim() == 1 && a.shape(0) == 0;
    if (!pairs && !openCv && !empty)
        throw py::value_error(std::string(what) + " must be an (N, 2) array of x, y pairs (or " +
                              "an OpenCV contour of shape (N, 1, 2)), not shape " + shapeText(a));
    const std::size_t n = empty ? 0 : static_cast<std::size_t>(a.shape(0));
    const double* xy = a.data();
    std::vector<xcVector<2>> result;
    result.reserve(n);
    for (std::size_t i = 0; i < n; ++i)
        result.emplace_back(xy[2 * i], xy[2 * i + 1]);
    return result;
}

xcVector<2> toPoint(py::handle point, const char* what) {
    const py::array_t<double> a = fixedArray(point, what, {2}, "a pair of numbers (x, y)");
    return {a.data()[0], a.data()[1]};
}

xcLineSeg toSegment(py::handle segment) {
    const py::array_t<double> a =
        fixedArray(segment, "segment", {2, 2}, "a (2, 2) array: its start and end points");
    const double* v = a.data();
    return {{v[0], v[1]}, {v[2], v[3]}};
}

xcXform<2> toXform(py::handle matrix) {
    if (matrix.is_none())
        return xcXform<2>();
    const py::array_t<double> a =
        fixedArray(matrix, "xform", {2, 3}, "a 2x3 affine matrix [[a, b, tx], [c, d, ty]]");
    const double* v = a.data();
    return {xcMatrix<2>(v[0], v[1], v[3], v[4]), xcVector<2>(v[2], v[5])};
}

py::int_ toInteger(py::handle value) {
    PyObject* index = PyNumber_Index(value.ptr());
    if (!index)
        throw py::error_already_set();
    return py::reinterpret_steal<py::int_>(index);
}

unsigned long toLabel(py::handle label) {
    constexpr unsigned long kLargest = 4294967295u;
    const py::int_ value = toInteger(label);
    if (value < py::int_(0) || value > py::int_(kLargest))
        throw py::value_error(
            "label must be from 0 to 4294967295 (the labels an archive "
            "stores), not " +
            py::repr(value).cast<std::string>());
    return value.cast<unsigned long>();
}

py::array pointsArray(const std::vector<xcVector<2>>& points) {
    py::array_t<double> a({static_cast<py::ssize_t>(points.size()), py::ssize_t{2}});
    double* out = a.mutable_data();
    for (std::size_t i = 0; i < points.size(); ++i) {
        out[2 * i] = points[i].x();
        out[2 * i + 1] = points[i].y();
    }
    makeReadOnly(a);
    return std::move(a);
}

py::tuple pointTuple(const xcVector<2>& point) {
    return py::make_tuple(point.x(), point.y());
}

py::tuple rectTuple(const xcRect& rect) {
    return py::make_tuple(rect.ul().x(), rect.ul().y(), rect.lr().x(), rect.lr().y());
}

py::array matrixArray(const xcMatrix<2>& matrix) {
    py::array_t<double> a({py::ssize_t{2}, py::ssize_t{2}});
    double* out = a.mutable_data();
    for (int r = 0; r < 2; ++r)
        for (int c = 0; c < 2; ++c)
            out[2 * r + c] = matrix.element(r, c);
    makeReadOnly(a);
    return std::move(a);
}

std::string pointsRepr(const std::vector<xcVector<2>>& points) {
    constexpr std::size_t kListed = 6;
    if (points.size() > kListed)
        return "<" + std::to_string(points.size()) + " points>";
    std::string text = "[";
    for (std::size_t i = 0; i < points.size(); ++i) {
        text += i ? ", [" : "[";
        text += py::repr(py::float_(points[i].x())).cast<std::string>() + ", " +
                py::repr(py::float_(points[i].y())).cast<std::string>() + "]";
    }
    return text + "]";
}

}  // namespace cntr_python
