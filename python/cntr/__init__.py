"""Planar contour and region geometry for machine vision.

The value types ``Polygon`` and ``MultiPolygon`` (immutable, thread-safe, with exact validity
checks and a prepared point locator), the described classes ``Contour``, ``Region`` and ``RegionSet`` (measures, queries,
repair, transforms, archives), the exception hierarchy rooted at ``Error``, and ``cntr.batch``
for measuring many rings at once over ragged arrays.

Points are any (N, 2) array-like of numbers; OpenCV's (N, 1, 2) contour arrays are accepted as
they are. Angles are in radians, counter-clockwise with the y axis up. Affine transforms are
2x3 matrices [[a, b, tx], [c, d, ty]], as OpenCV writes them.
"""

from ._cntr import (
    ArchiveError,
    ArchiveFileError,
    BadDataError,
    BadFormatError,
    BadParamsError,
    BadReferenceError,
    BadWindowError,
    Circle,
    Contour,
    ContourError,
    CountTooLargeError,
    DegenerateFitError,
    DiameterMode,
    Ellipse,
    EmptyContourError,
    EmptyRegionSetError,
    Error,
    FitError,
    IntersectionMode,
    Location,
    MathError,
    MultiPolygon,
    NotFiniteError,
    Polygon,
    RefusedHole,
    Region,
    RegionCannotBeSetOpenError,
    RegionSet,
    RmsTooLargeError,
    SingularError,
    TooFewPointsError,
    TruncatedError,
    UnknownClassError,
    UnknownVersionError,
    UnregisteredClassError,
    Validity,
    ValidityProblem,
    ValueOutOfRangeError,
    __version__,
)
from . import batch

# The classes present themselves (repr, help, pickles) as members of this package, where the
# package's users find them, rather than of the extension module inside it.
for _name in dir():
    _obj = globals()[_name]
    if isinstance(_obj, type) and _obj.__module__ == "cntr._cntr":
        _obj.__module__ = "cntr"
del _name, _obj

__all__ = [
    "ArchiveError",
    "ArchiveFileError",
    "BadDataError",
    "BadFormatError",
    "BadParamsError",
    "BadReferenceError",
    "BadWindowError",
    "Circle",
    "Contour",
    "ContourError",
    "CountTooLargeError",
    "DegenerateFitError",
    "DiameterMode",
    "Ellipse",
    "EmptyContourError",
    "EmptyRegionSetError",
    "Error",
    "FitError",
    "IntersectionMode",
    "Location",
    "MathError",
    "MultiPolygon",
    "NotFiniteError",
    "Polygon",
    "RefusedHole",
    "Region",
    "RegionCannotBeSetOpenError",
    "RegionSet",
    "RmsTooLargeError",
    "SingularError",
    "TooFewPointsError",
    "TruncatedError",
    "UnknownClassError",
    "UnknownVersionError",
    "UnregisteredClassError",
    "Validity",
    "ValidityProblem",
    "ValueOutOfRangeError",
    "batch",
]
