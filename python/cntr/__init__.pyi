"""Planar contour and region geometry for machine vision.

Points are any (N, 2) array-like of numbers; OpenCV's (N, 1, 2) contour arrays are accepted as
they are. Angles are in radians, counter-clockwise with the y axis up. Affine transforms are
2x3 matrices [[a, b, tx], [c, d, ty]], as OpenCV writes them.
"""

import enum
from typing import Dict, Iterable, Iterator, List, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import batch as batch

__version__: str

ArrayLike = npt.ArrayLike
Point = Tuple[float, float]
Bounds = Tuple[float, float, float, float]
FloatArray = npt.NDArray[np.float64]
LocationArray = npt.NDArray[np.int8]
BoolArray = npt.NDArray[np.bool_]

# ---- exceptions ----

class Error(Exception):
    """The base of every exception of the cntr libraries. str(e) is the library's message (its
    error number in hexadecimal when it has none)."""

    error_number: Optional[int]
    """The number identifying the kind of error (None on the grouping classes)."""
    message: str
    """The library's message alone; '' when it has none."""

class ContourError(Error):
    """The contour library's own errors (xcContourDefs::Errors)."""

class EmptyContourError(ContourError):
    """A contour with fewer than 2 vertices (a region with fewer than 3) was measured."""

class EmptyRegionSetError(ContourError):
    """A region set without regions was measured."""

class BadParamsError(ContourError):
    """An argument out of its range, or an operation the shape refuses."""

class RegionCannotBeSetOpenError(ContourError):
    """A region was to be opened."""

class MathError(Error):
    """Errors of the numeric layer."""

class SingularError(MathError):
    """A singular matrix, parallel lines, or a transform without an inverse."""

class NotFiniteError(MathError):
    """A NaN or infinite value where a finite one is needed."""

class FitError(Error):
    """Failures of the circle and ellipse fits."""

class TooFewPointsError(FitError):
    """Fewer points than the fit needs."""

class DegenerateFitError(FitError):
    """The points determine no ellipse or circle."""

class RmsTooLargeError(FitError):
    """The fit's rms residual exceeds the allowed maximum."""

class ArchiveError(Error):
    """Errors of the binary archives."""

class UnknownVersionError(ArchiveError):
    """A record carried a version the reader does not know."""

    source: str
    line: int

class BadFormatError(ArchiveError):
    """The bytes do not begin as an archive."""

class TruncatedError(ArchiveError):
    """The archive ends before a record is complete."""

class UnknownClassError(ArchiveError):
    """The archive names a class that is not registered."""

class BadReferenceError(ArchiveError):
    """A reference to an object that was not loaded."""

class CountTooLargeError(ArchiveError):
    """An element count larger than the bytes left could hold."""

class ArchiveFileError(ArchiveError):
    """An archive file could not be opened, read or written."""

class ValueOutOfRangeError(ArchiveError):
    """A value does not fit its archive form."""

class BadDataError(ArchiveError):
    """Bytes that no valid record holds."""

class UnregisteredClassError(ArchiveError):
    """An object of a class without archive registration."""

class BadWindowError(Error):
    """An image-window operation failed, or the class does not provide the operation."""

# ---- enumerations ----

class DiameterMode(enum.IntEnum):
    """How enclose_circle and diameter measure spread."""

    furthest_vertex_pair: int
    """The circle through the two vertices furthest apart."""
    from_first_vertex: int
    """The circle centred on the first vertex through the vertex furthest from it."""

class IntersectionMode(enum.IntEnum):
    """What a Region or RegionSet does with outlines that cross."""

    keep_outline: int
    use_outer_hull: int
    use_regularized: int

class ValidityProblem(enum.IntEnum):
    """What makes a Polygon or MultiPolygon invalid."""

    none: int
    too_few_vertices: int
    zero_area: int
    self_crossing: int
    self_overlap: int
    rings_cross: int
    rings_overlap: int
    hole_outside: int
    holes_nested: int
    members_overlap: int

class Location(enum.IntEnum):
    """Where a point lies relative to a Polygon or MultiPolygon (the codes of locate)."""

    outside: int
    """Outside the filled area: 0."""
    boundary: int
    """On an edge of a ring, or within the boundary distance of one: 1."""
    inside: int
    """Inside the filled area: 2."""

# ---- geometry values ----

class Circle:
    """A circle: its centre (x, y) and radius."""

    def __init__(self, center: ArrayLike, radius: float) -> None: ...
    @property
    def center(self) -> Point: ...
    @property
    def radius(self) -> float: ...

class Ellipse:
    """An ellipse: centre, radius r1 along `rotation` (radians), radius r2 across it, and two
    flags carried for the caller."""

    def __init__(
        self, center: ArrayLike, r1: float, r2: float, rotation: float = 0.0,
        flag1: bool = False, flag2: bool = False,
    ) -> None: ...
    @property
    def center(self) -> Point: ...
    @property
    def r1(self) -> float: ...
    @property
    def r2(self) -> float: ...
    @property
    def rotation(self) -> float: ...
    @property
    def flag1(self) -> bool: ...
    @property
    def flag2(self) -> bool: ...

class Validity:
    """The first broken validity rule (exact predicates, no tolerance), or the report that every
    rule holds."""

    @property
    def valid(self) -> bool: ...
    @property
    def problem(self) -> ValidityProblem: ...
    @property
    def message(self) -> str:
        """What is wrong and where, in words; '' when valid."""
    @property
    def location(self) -> Point:
        """A point of the violation; (0, 0) when valid."""
    @property
    def member(self) -> int: ...
    @property
    def ring(self) -> int:
        """0 the exterior, h + 1 hole h; -1 where not applicable."""
    @property
    def edge(self) -> int: ...
    @property
    def other_member(self) -> int: ...
    @property
    def other_ring(self) -> int: ...
    @property
    def other_edge(self) -> int: ...

class RefusedHole:
    """A hole that a Region refused (it crosses or touches the outline)."""

    @property
    def member(self) -> int: ...
    @property
    def hole(self) -> int: ...
    @property
    def ring(self) -> FloatArray: ...

class Polygon:
    """An immutable polygon value: an exterior ring and hole rings, either orientation. Areas
    are unsigned with holes subtracted; the centroid is that of the filled area; the length
    counts every ring."""

    def __init__(self, exterior: ArrayLike, holes: Iterable[ArrayLike] = ()) -> None: ...
    @property
    def exterior(self) -> FloatArray:
        """The exterior ring, a read-only (N, 2) float64 array."""
    @property
    def holes(self) -> List[FloatArray]: ...
    @property
    def ring_count(self) -> int: ...
    @property
    def vertex_count(self) -> int: ...
    @property
    def bounds(self) -> Bounds:
        """(minx, miny, maxx, maxy); (0, 0, 0, 0) without vertices."""
    @property
    def area(self) -> float: ...
    @property
    def centroid(self) -> Point:
        """(0, 0) for an exterior that encloses (almost) no area: check `area` first."""
    @property
    def length(self) -> float: ...
    @property
    def is_valid(self) -> bool: ...
    @property
    def validity(self) -> Validity: ...
    @property
    def validity_reason(self) -> str: ...
    def signed_area(self, ring: int) -> float:
        """Shoelace area of one ring (0 the exterior), positive counter-clockwise."""
    @staticmethod
    def from_contour(contour: Contour) -> Polygon: ...
    def to_region(self) -> Tuple[Region, List[RefusedHole]]:
        """The Region, and the holes it refused."""
    def locate(self, points: ArrayLike, boundary_distance: float = 0.0) -> LocationArray:
        """An (N,) int8 array of Location codes: boundary exactly on an edge (or within
        `boundary_distance` of one), else inside or outside by the even-odd rule. The points are
        located without the GIL."""
    def contains(self, points: ArrayLike) -> BoolArray:
        """An (N,) bool array, True strictly inside: boundary points are not contained (as in
        Shapely's contains)."""
    def moments(self) -> Dict[str, Union[float, Tuple[float, ...]]]:
        """The true moments of the filled area, with cv2.moments' keys (m00 ... nu03) and 'hu',
        the seven Hu invariants; the same for either ring orientation, holes subtracted."""

class MultiPolygon:
    """An immutable list of Polygon values; area and length are sums, the centroid is
    area-weighted."""

    def __init__(self, polygons: Iterable[Polygon] = ()) -> None: ...
    def __len__(self) -> int: ...
    def __getitem__(self, index: int) -> Polygon: ...
    @property
    def polygons(self) -> List[Polygon]: ...
    @property
    def vertex_count(self) -> int: ...
    @property
    def bounds(self) -> Bounds: ...
    @property
    def area(self) -> float: ...
    @property
    def centroid(self) -> Point: ...
    @property
    def length(self) -> float: ...
    @property
    def is_valid(self) -> bool: ...
    @property
    def validity(self) -> Validity: ...
    @property
    def validity_reason(self) -> str: ...
    @staticmethod
    def from_region(region: Region) -> MultiPolygon: ...
    @staticmethod
    def from_region_set(region_set: RegionSet) -> MultiPolygon: ...
    def to_region_set(self) -> Tuple[RegionSet, List[RefusedHole]]: ...
    def locate(self, points: ArrayLike, boundary_distance: float = 0.0) -> LocationArray:
        """As Polygon.locate, over every ring of every member together."""
    def contains(self, points: ArrayLike) -> BoolArray:
        """As Polygon.contains: True strictly inside a member."""
    def moments(self) -> Dict[str, Union[float, Tuple[float, ...]]]:
        """The sum of the members' moments (see Polygon.moments)."""

# ---- the described classes ----

class Contour:
    """An ordered list of vertices, open or closed, with a label; measures need 2 vertices."""

    def __init__(self, points: ArrayLike, closed: bool = False, label: int = 0) -> None: ...
    def __len__(self) -> int: ...
    @property
    def points(self) -> FloatArray: ...
    @property
    def closed(self) -> bool: ...
    @property
    def label(self) -> int: ...
    def length(self) -> float: ...
    def mean_position(self) -> Point:
        """The centre of the polyline as a uniform wire."""
    def extremal_vertex_index(self, angle: float) -> int: ...
    def extremal_vertex(self, angle: float) -> Point: ...
    def diameter(self, mode: DiameterMode = ...) -> float: ...
    def enclose_circle(self, mode: DiameterMode = ...) -> Circle: ...
    def enclose_rect(self, xform: Optional[ArrayLike] = None) -> Bounds: ...
    def intersections(self, segment: ArrayLike, include_end_touches: bool = True) -> FloatArray: ...
    def contour_intersections(self, other: Union[Contour, Region]) -> FloatArray: ...
    def is_self_intersecting(self) -> bool: ...
    def vertex_index(self, point: ArrayLike, tolerance: float) -> npt.NDArray[np.int64]: ...
    def closest_point(self, point: ArrayLike, vertex_only: bool = False) -> Point: ...
    def closest_vertex_index(self, point: ArrayLike) -> int: ...
    def distance(self, point: ArrayLike, vertex_only: bool = False) -> float: ...
    def convex_hull(self) -> Region: ...
    def fit_ellipse(self) -> Tuple[Ellipse, float]: ...
    def map(self, xform: ArrayLike) -> Contour: ...
    def to_polygon(self) -> Polygon: ...
    def to_bytes(self) -> bytes: ...
    @staticmethod
    def from_bytes(data: bytes) -> Contour: ...

class Region:
    """A closed outline with shared hole regions and a label; measures need 3 vertices.
    Equality compares outlines only."""

    def __init__(
        self, points: ArrayLike, holes: Iterable[Union[Region, ArrayLike]] = (), label: int = 0,
        mode: IntersectionMode = ...,
    ) -> None: ...
    def __len__(self) -> int: ...
    @property
    def points(self) -> FloatArray: ...
    @property
    def holes(self) -> List[Region]: ...
    @property
    def label(self) -> int: ...
    def length(self) -> float: ...
    def mean_position(self) -> Point: ...
    def extremal_vertex_index(self, angle: float) -> int: ...
    def extremal_vertex(self, angle: float) -> Point: ...
    def diameter(self, mode: DiameterMode = ...) -> float: ...
    def enclose_circle(self, mode: DiameterMode = ...) -> Circle: ...
    def enclose_rect(self, xform: Optional[ArrayLike] = None) -> Bounds: ...
    def is_self_intersecting(self) -> bool: ...
    def vertex_index(self, point: ArrayLike, tolerance: float) -> npt.NDArray[np.int64]: ...
    def convex_hull(self) -> Region: ...
    def fit_ellipse(self) -> Tuple[Ellipse, float]: ...
    def area(self, consider_holes: bool = True) -> float: ...
    def center_of_mass(self, consider_holes: bool = True) -> Point: ...
    def inertia_matrix(self, consider_holes: bool = True) -> FloatArray: ...
    def inside(self, point: ArrayLike, consider_holes: bool = True) -> bool: ...
    def closest_vertex_index(self, point: ArrayLike) -> int: ...
    def closest_vertex(self, point: ArrayLike, consider_holes: bool = False) -> Tuple[int, int]: ...
    def closest_point(
        self, point: ArrayLike, vertex_only: bool = False, consider_holes: bool = True
    ) -> Point: ...
    def distance(
        self, point: ArrayLike, vertex_only: bool = False, consider_holes: bool = True,
        zero_inside: bool = False,
    ) -> float: ...
    def intersections(
        self, segment: ArrayLike, include_end_touches: bool = True, consider_holes: bool = True
    ) -> FloatArray: ...
    def contour_intersections(
        self, other: Union[Contour, Region], consider_holes: bool = True
    ) -> FloatArray: ...
    def regularize(self) -> Region: ...
    def outer_hull(self) -> Region: ...
    def map(self, xform: ArrayLike) -> Region:
        """The mapped outline with the label; the holes are not mapped."""
    def to_polygon(self) -> Polygon: ...
    def to_multipolygon(self) -> MultiPolygon: ...
    @staticmethod
    def from_polygon(polygon: Polygon) -> Region: ...
    def to_bytes(self) -> bytes: ...
    @staticmethod
    def from_bytes(data: bytes) -> Region: ...

class RegionSet:
    """An ordered collection of shared Region objects."""

    def __init__(
        self, regions: Iterable[Union[Region, ArrayLike]] = (), mode: IntersectionMode = ...
    ) -> None: ...
    def __len__(self) -> int: ...
    @property
    def regions(self) -> List[Region]: ...
    def area(self, consider_holes: bool = True) -> float: ...
    def center_of_mass(self, consider_holes: bool = True) -> Point: ...
    def inertia_matrix(self, consider_holes: bool = True) -> FloatArray: ...
    def inside(self, point: ArrayLike, consider_holes: bool = True) -> bool: ...
    def distance(
        self, point: ArrayLike, vertex_only: bool = False, consider_holes: bool = True,
        zero_inside: bool = False,
    ) -> float: ...
    def enclose_rect(self, xform: Optional[ArrayLike] = None) -> Bounds: ...
    def is_self_intersecting(self) -> bool: ...
    def regularize(self) -> RegionSet: ...
    def outer_hull(self) -> RegionSet: ...
    def to_multipolygon(self) -> MultiPolygon: ...
    @staticmethod
    def from_multipolygon(multipolygon: MultiPolygon) -> RegionSet: ...
    def to_bytes(self) -> bytes: ...
    @staticmethod
    def from_bytes(data: bytes) -> RegionSet: ...
