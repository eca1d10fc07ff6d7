// cntr.batch: measures of many rings given as one ragged array (an (M, 2) coordinate array and
// K + 1 offsets), computed without the GIL on a pool of threads. Each ring is measured on its own,
// by one thread, through the library's pure functions or an object of its own, so the results
// are the same bits whatever the number of threads.
#include "bindings.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <cntr/contour.h>
#include <cntr/core/extent.h>
#include <cntr/core/length.h>
#include <cntr/moments.h>
#include <cntr/polygon.h>
#include <foundation/exception.h>
#include <foundation/hull.h>

#include "convert.h"
#include "errors.h"

namespace cntr_python {

namespace {

// The rings of a ragged array: ring k is coordinates offsets[k] to offsets[k + 1] - 1.
struct Rings {
    py::array_t<double> coords;
    py::array_t<std::int64_t> offsets;
    std::size_t count = 0;

    // Ring k's vertices into `ring`, a last vertex equal to the first dropped (as cntr.Polygon
    // drops it), so that each function measures the ring a Polygon of it holds.
    void read(std::size_t k, std::vector<xcVector<2>>& ring) const {
        const double* xy = coords.data();
        const std::int64_t* off = offsets.data();
        ring.clear();
        for (std::int64_t i = off[k]; i < off[k + 1]; ++i)
            ring.emplace_back(xy[2 * i], xy[2 * i + 1]);
        if (ring.size() > 1 && ring.front() == ring.back())
            ring.pop_back();
    }
};

Rings toRings(py::handle coords, py::handle offsets) {
    Rings rings;
    rings.coords = realArray(coords, "coords");
    const py::array_t<double>& c = rings.coords;
    const bool empty = c.ndim() == 1 && c.shape(0) == 0;
    if (!empty && (c.ndim() != 2 || c.shape(1) != 2))
        throw py::value_error("coords must be an (M, 2) array of x, y pairs");
    const py::array raw = py::module_::import("numpy").attr("asarray")(offsets);
    if (raw.ndim() != 1 || raw.shape(0) < 1)
        throw py::value_error("offsets must be a 1-D array of K + 1 positions, starting at 0");
    if (raw.dtype().kind() != 'i' && raw.dtype().kind() != 'u')
        throw py::type_error("offsets must be integers, not " +
                             py::str(raw.dtype()).cast<std::string>());
    rings.offsets = py::module_::import("numpy").attr("ascontiguousarray")(raw, "int64");
    const py::array_t<std::int64_t>& o = rings.offsets;
    const std::int64_t m = empty ? 0 : c.shape(0);
    const std::int64_t* off = o.data();
    if (off[0] != 0)
        throw py::value_error("offsets must start at 0");
    for (py::ssize_t k = 1; k < o.shape(0); ++k)
        if (off[k] < off[k - 1])
            throw py::value_error("offsets must not decrease (offsets[" + std::to_string(k) +
                                  "] < offsets[" + std::to_string(k - 1) + "])");
    if (off[o.shape(0) - 1] != m)
        throw py::value_error("the last offset must be the number of coordinates, " +
                              std::to_string(m) + ", not " + std::to_string(off[o.shape(0) - 1]));
    rings.count = static_cast<std::size_t>(o.shape(0) - 1);
    return rings;
}

// The threads to start: as asked (every core for None), no more than one per ring, at least one.
std::size_t threadCount(py::handle threads, std::size_t rings) {
    std::size_t n = rings;
    if (threads.is_none()) {
        n = std::min<std::size_t>(n, std::thread::hardware_concurrency());
    } else {
        const py::int_ asked = toInteger(threads);
        if (asked < py::int_(1))
            throw py::value_error("threads must be at least 1 (or None for every core)");
        if (asked < py::int_(n))
            n = asked.cast<std::size_t>();
    }
    return std::max<std::size_t>(1, n);
}

// Calls measure(k, ring) for every ring k, spread over `threads` threads (the calling one among
// them) without the GIL. Rings are handed out in blocks in turn; each result depends on its ring
// alone. An exception of the library from a ring stops nothing else; once every thread is done,
// the one from the lowest ring index is raised as its Python class, with the attribute `index`.
template <class Measure>
void forEachRing(const Rings& rings, std::size_t threads, Measure measure) {
    constexpr std::size_t kBlock = 64;
    std::atomic<std::size_t> next{0};
    struct Failure {
        std::size_t index = std::numeric_limits<std::size_t>::max();
        std::exception_ptr error;
    };
    std::vector<Failure> failures(threads);
    auto work = [&](std::size_t worker) {
        std::vector<xcVector<2>> ring;
        Failure& failure = failures[worker];
        for (;;) {
            const std::size_t begin = next.fetch_add(kBlock);
            if (begin >= rings.count)
                return;
            const std::size_t end = std::min(begin + kBlock, rings.count);
            for (std::size_t k = begin; k < end; ++k) {
                try {
                    rings.read(k, ring);
                    measure(k, ring);
                } catch (...) {
                    if (k < failure.index)
                        failure = {k, std::current_exception()};
                }
            }
        }
    };
    {
        py::gil_scoped_release release;
        std::vector<std::thread> pool;
        try {
            for (std::size_t t = 1; t < threads; ++t)
                pool.emplace_back(work, t);
        } catch (const std::system_error&) {
            // The system would start no more threads: those started and this one share the rings.
        }
        work(0);
        for (std::thread& t : pool)
            t.join();
    }
    const Failure* first = nullptr;
    for (const Failure& f : failures)
        if (f.error && (!first || f.index < first->index))
            first = &f;
    if (!first)
        return;
    try {
        std::rethrow_exception(first->error);
    } catch (const xcException& e) {
        const py::object error = pythonError(e);
        error.attr("index") = first->index;
        PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
        throw py::error_already_set();
    }
}

// `columns` float64 values per ring, written by measure(ring, values): a (K,) array for one
// column, (K, columns) for more.
template <class Measure>
py::array perRingValues(py::handle coords, py::handle offsets, py::handle threads,
                        std::size_t columns, Measure measure) {
    const Rings rings = toRings(coords, offsets);
    const auto count = static_cast<py::ssize_t>(rings.count);
    py::array_t<double> out = columns == 1
                                  ? py::array_t<double>(count)
                                  : py::array_t<double>({count, static_cast<py::ssize_t>(columns)});
    double* values = out.mutable_data();
    forEachRing(rings, threadCount(threads, rings.count),
                [&](std::size_t k, const std::vector<xcVector<2>>& ring) {
                    measure(ring, values + columns * k);
                });
    return std::move(out);
}

// One flag per ring: test(ring) -> bool.
template <class Test>
py::array perRingFlag(py::handle coords, py::handle offsets, py::handle threads, Test test) {
    const Rings rings = toRings(coords, offsets);
    py::array_t<bool> out(static_cast<py::ssize_t>(rings.count));
    bool* flags = out.mutable_data();
    forEachRing(
        rings, threadCount(threads, rings.count),
        [&](std::size_t k, const std::vector<xcVector<2>>& ring) { flags[k] = test(ring); });
    return std::move(out);
}

const char* const kRaggedDoc =
    "\n\n`coords` is an (M, 2) array-like of x, y pairs and `offsets` K + 1 integers: ring k is "
    "coords[offsets[k]:offsets[k + 1]], each a closed ring (a last vertex equal to the first is "
    "dropped, as cntr.Polygon drops it). `threads`: how many threads share the rings (None: "
    "every core); the results are the same bits for any number. The GIL is released meanwhile. "
    "An error of the library is raised for the lowest ring index that has one, as its cntr "
    "exception with the attribute `index`.";

// Defines batch.NAME(coords, offsets, *, threads=None), giving `columns` float64 values per ring
// that measure(ring, values) writes.
template <class Measure>
void defineValues(py::module_& batch, const char* name, std::size_t columns, Measure measure,
                  const char* what) {
    batch.def(
        name,
        [columns, measure](py::handle coords, py::handle offsets, py::handle threads) {
            return perRingValues(coords, offsets, threads, columns, measure);
        },
        py::arg("coords"), py::arg("offsets"), py::kw_only(), py::arg("threads") = py::none(),
        (std::string(what) + kRaggedDoc).c_str());
}

// The same with one flag per ring, test(ring).
template <class Test>
void defineFlags(py::module_& batch, const char* name, Test test, const char* what) {
    batch.def(
        name,
        [test](py::handle coords, py::handle offsets, py::handle threads) {
            return perRingFlag(coords, offsets, threads, test);
        },
        py::arg("coords"), py::arg("offsets"), py::kw_only(), py::arg("threads") = py::none(),
        (std::string(what) + kRaggedDoc).c_str());
}

}  // namespace

void bindBatch(py::module_& batch) {
    using Ring = std::vector<xcVector<2>>;
    defineValues(
        batch, "area", 1, [](const Ring& ring, double* out) { *out = xf_Area(ring); },
        "The unsigned area of each ring (xf_Area): 0 for fewer than 3 vertices, NaN for a NaN "
        "coordinate; a (K,) float64 array.");
    defineValues(
        batch, "centroid", 2,
        [](const Ring& ring, double* out) {
            const xcVector<2> c = xf_CenterOfMass(ring);
            out[0] = c.x();
            out[1] = c.y();
        },
        "The area centroid of each ring (xf_CenterOfMass), a (K, 2) float64 array; (0, 0) for "
        "rings of 2 vertices or fewer and for rings that enclose (almost) no area (summed cross "
        "products within 1e-6 of 0), the library's convention.");
    defineValues(
        batch, "length", 1,
        [](const Ring& ring, double* out) {
            *out = cntr::core::outlineLength(cntr::core::OutlineView(ring, true));
        },
        "The perimeter of each closed ring; 0 without vertices; a (K,) float64 array.");
    defineValues(
        batch, "bounds", 4,
        [](const Ring& ring, double* out) {
            if (ring.empty()) {
                std::fill(out, out + 4, std::numeric_limits<double>::quiet_NaN());
                return;
            }
            const xcRect r =
                cntr::core::enclosingRect(cntr::core::OutlineView(ring, true), xcXform<2>());
            out[0] = r.ul().x();
            out[1] = r.ul().y();
            out[2] = r.lr().x();
            out[3] = r.lr().y();
        },
        "(minx, miny, maxx, maxy) of each ring, a (K, 4) float64 array; NaN for a ring without "
        "vertices.");
    defineValues(
        batch, "convex_hull_area", 1,
        [](const Ring& ring, double* out) {
            std::vector<xcVector<2>> hull;
            xfConvexHull(ring, hull);
            *out = xf_Area(hull);
        },
        "The area of the convex hull of each ring's vertices (xfConvexHull, then xf_Area); 0 "
        "when the hull is a point or a segment; NotFiniteError for a NaN or infinite "
        "coordinate.");
    defineFlags(
        batch, "is_self_intersecting",
        [](const Ring& ring) { return xcContour(ring, true).isSelfIntersecting(); },
        "Whether each ring, as a closed Contour, has two non-adjacent edges that meet "
        "(Contour.is_self_intersecting); a (K,) bool array.");
    defineFlags(
        batch, "is_valid",
        [](const Ring& ring) {
            try {
                return cntr::Polygon(ring).isValid();
            } catch (const xcContourDefs::BadParams&) {
                return false;  // a non-finite coordinate, which a Polygon refuses
            }
        },
        "Whether each ring, as a Polygon without holes, is valid (Polygon.is_valid); False for "
        "a ring with a NaN or infinite coordinate; a (K,) bool array.");
}

}  // namespace cntr_python
