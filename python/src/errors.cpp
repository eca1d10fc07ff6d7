#include "errors.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <cntr/contourdefs.h>
#include <foundation/archive.h>
#include <foundation/fit.h>

namespace cntr_python {

namespace {

// One Python exception class: its name in the module, the class it derives from (an index into
// the table, -1 for Exception), the test for the C++ class it stands for (null for a grouping
// without a C++ base of its own), that class's name and error number (0 for a grouping), and
// what it means.
struct ErrorClass {
    const char* name;
    int base;
    bool (*is)(const xcException&);
    const char* cppName;
    long number;
    const char* doc;
};

template <class T>
bool isA(const xcException& e) {
    return dynamic_cast<const T*>(&e) != nullptr;
}

bool isAny(const xcException&) {
    return true;
}

namespace n = xnErrorNumber;

// Base classes before their subclasses; the translation picks the last class that matches, so a
// concrete class wins over its grouping and every exception of the libraries over Error.
const ErrorClass kClasses[] = {
    {"Error", -1, &isAny, "xcException", 0,
     "The base of every exception of the cntr libraries. str(e) is the library's message (its "
     "error number in hexadecimal when it has none); e.message is the message alone (empty when "
     "there is none) and e.error_number the number that identifies the kind of error"},
    {"ContourError", 0, &isA<xcContourDefs::Errors>, "xcContourDefs::Errors", 0,
     "The contour library's own errors"},
    {"EmptyContourError", 1, &isA<xcContourDefs::EmptyContour>, "xcContourDefs::EmptyContour",
     n::ContourEmptyContour,
     "A contour with fewer than 2 vertices (a region with fewer than 3) "
     "was measured"},
    {"EmptyRegionSetError", 1, &isA<xcContourDefs::EmptyRegionSet>, "xcContourDefs::EmptyRegionSet",
     n::ContourEmptyRegionSet, "A region set without regions was measured"},
    {"BadParamsError", 1, &isA<xcContourDefs::BadParams>, "xcContourDefs::BadParams",
     n::ContourBadParams, "An argument out of its range, or an operation the shape refuses"},
    {"RegionCannotBeSetOpenError", 1, &isA<xcContourDefs::RegionCannotBeSetOpen>,
     "xcContourDefs::RegionCannotBeSetOpen", n::ContourRegionCannotBeSetOpen,
     "A region was to be opened"},
    {"MathError", 0, nullptr, "xcMathError", 0, "Errors of the numeric layer"},
    {"SingularError", 6, &isA<xcMathError::Singular>, "xcMathError::Singular", n::MathSingular,
     "A singular matrix, parallel lines, or a transform without an inverse"},
    {"NotFiniteError", 6, &isA<xcMathError::NotFinite>, "xcMathError::NotFinite", n::MathNotFinite,
     "A NaN or infinite value where a finite one is needed"},
    {"FitError", 0, nullptr, "xcFitError", 0, "Failures of the circle and ellipse fits"},
    {"TooFewPointsError", 9, &isA<xcFitError::TooFewPoints>, "xcFitError::TooFewPoints",
     n::FitTooFewPoints, "Fewer points than the fit needs"},
    {"DegenerateFitError", 9, &isA<xcFitError::Degenerate>, "xcFitError::Degenerate",
     n::FitDegenerate, "The points determine no ellipse or circle"},
    {"RmsTooLargeError", 9, &isA<xcFitError::RmsTooLarge>, "xcFitError::RmsTooLarge",
     n::FitRmsTooLarge, "The fit's rms residual exceeds the allowed maximum"},
    {"ArchiveError", 0, nullptr, "xcArchive", 0,
     "Errors of the binary archives: bytes that are not a valid archive, or a value an archive "
     "cannot hold"},
    {"UnknownVersionError", 13, &isA<xcArchive::UnknownVersion>, "xcArchive::UnknownVersion",
     n::ArchiveUnknownVersion,
     "A record carried a version the reader does not know; e.source and e.line name the "
     "reading code"},
    {"BadFormatError", 13, &isA<xcArchive::BadFormat>, "xcArchive::BadFormat", n::ArchiveBadFormat,
     "The bytes do not begin as an archive"},
    {"TruncatedError", 13, &isA<xcArchive::Truncated>, "xcArchive::Truncated", n::ArchiveTruncated,
     "The archive ends before a record is complete"},
    {"UnknownClassError", 13, &isA<xcArchive::UnknownClass>, "xcArchive::UnknownClass",
     n::ArchiveUnknownClass, "The archive names a class that is not registered"},
    {"BadReferenceError", 13, &isA<xcArchive::BadReference>, "xcArchive::BadReference",
     n::ArchiveBadReference, "A reference to an object that was not loaded"},
    {"CountTooLargeError", 13, &isA<xcArchive::CountTooLarge>, "xcArchive::CountTooLarge",
     n::ArchiveCountTooLarge, "An element count larger than the bytes left could hold"},
    {"ArchiveFileError", 13, &isA<xcArchive::FileError>, "xcArchive::FileError",
     n::ArchiveFileError, "An archive file could not be opened, read or written"},
    {"ValueOutOfRangeError", 13, &isA<xcArchive::ValueOutOfRange>, "xcArchive::ValueOutOfRange",
     n::ArchiveValueOutOfRange, "A value does not fit its archive form"},
    {"BadDataError", 13, &isA<xcArchive::BadData>, "xcArchive::BadData", n::ArchiveBadData,
     "Bytes that no valid record holds"},
    {"UnregisteredClassError", 13, &isA<xcArchive::UnregisteredClass>,
     "xcArchive::UnregisteredClass", n::ArchiveUnregisteredClass,
     "An object of a class without archive registration"},
    {"BadWindowError", 0, &isA<xcPel::BadWindow>, "xcPel::BadWindow", n::PelBadWindow,
     "An image-window operation failed, or the class does not provide the operation"},
};
constexpr std::size_t kClassCount = sizeof(kClasses) / sizeof(kClasses[0]);

// The Python classes, in table order. Never freed: the module holds them for the life of the
// interpreter, and the translator may run until its very end.
std::vector<PyObject*>& pythonClasses() {
    static auto* classes = new std::vector<PyObject*>();
    return *classes;
}

}  // namespace

py::object pythonError(const xcException& error) {
    std::size_t chosen = 0;
    for (std::size_t i = 0; i < kClassCount; ++i)
        if (kClasses[i].is && kClasses[i].is(error))
            chosen = i;
    py::object instance = py::reinterpret_borrow<py::object>(pythonClasses()[chosen])(error.what());
    instance.attr("error_number") = error.errorNumber();
    instance.attr("message") = error.message();
    if (const auto* version = dynamic_cast<const xcArchive::UnknownVersion*>(&error)) {
        instance.attr("source") = version->source();
        instance.attr("line") = version->line();
    }
    return instance;
}

void bindErrors(py::module_& m) {
    std::vector<PyObject*>& classes = pythonClasses();
    classes.clear();
    for (const ErrorClass& c : kClasses) {
        const std::string qualified = "cntr." + std::string(c.name);
        std::string doc = std::string(c.doc) + " (" + c.cppName;
        if (c.number != 0) {
            char hex[24];
            std::snprintf(hex, sizeof hex, "0x%lX", static_cast<unsigned long>(c.number));
            doc += std::string(", error number ") + hex;
        }
        doc += ").";
        PyObject* base = c.base < 0 ? PyExc_Exception : classes[static_cast<std::size_t>(c.base)];
        PyObject* cls = PyErr_NewExceptionWithDoc(qualified.c_str(), doc.c_str(), base, nullptr);
        if (!cls)
            throw py::error_already_set();
        classes.push_back(cls);
        // The class's number (None for a grouping); an instance carries the number of the
        // exception it was made from.
        py::handle(cls).attr("error_number") =
            c.number != 0 ? py::object(py::int_(c.number)) : py::object(py::none());
        py::handle(cls).attr("message") = "";
        m.attr(c.name) = py::handle(cls);
    }
    py::register_exception_translator([](std::exception_ptr p) {
        try {
            if (p)
                std::rethrow_exception(p);
        } catch (const xcException& e) {
            const py::object error = pythonError(e);
            PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
        }
    });
}

}  // namespace cntr_python
