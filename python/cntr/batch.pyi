"""Measures of many rings at once over ragged arrays: coords (M, 2) and offsets (K + 1,), ring k
being coords[offsets[k]:offsets[k + 1]], closed (a last vertex equal to the first is dropped).
`threads=None` uses every core; the results are the same bits for any number of threads, and
the GIL is released meanwhile. A library error is raised for the lowest ring index that has one,
with the attribute `index`."""

from typing import Iterable, Optional, Tuple

import numpy as np
import numpy.typing as npt

def area(coords: npt.ArrayLike, offsets: npt.ArrayLike, *, threads: Optional[int] = None) -> npt.NDArray[np.float64]:
    """Unsigned area per ring, (K,)."""

def centroid(coords: npt.ArrayLike, offsets: npt.ArrayLike, *, threads: Optional[int] = None) -> npt.NDArray[np.float64]:
    """Area centroid per ring, (K, 2); (0, 0) where the ring encloses (almost) no area."""

def length(coords: npt.ArrayLike, offsets: npt.ArrayLike, *, threads: Optional[int] = None) -> npt.NDArray[np.float64]:
    """Perimeter per closed ring, (K,)."""

def bounds(coords: npt.ArrayLike, offsets: npt.ArrayLike, *, threads: Optional[int] = None) -> npt.NDArray[np.float64]:
    """(minx, miny, maxx, maxy) per ring, (K, 4); NaN for an empty ring."""

def convex_hull_area(coords: npt.ArrayLike, offsets: npt.ArrayLike, *, threads: Optional[int] = None) -> npt.NDArray[np.float64]:
    """Area of the convex hull of each ring's vertices, (K,)."""

def is_self_intersecting(coords: npt.ArrayLike, offsets: npt.ArrayLike, *, threads: Optional[int] = None) -> npt.NDArray[np.bool_]:
    """Whether each closed ring has two non-adjacent edges that meet, (K,)."""

def is_valid(coords: npt.ArrayLike, offsets: npt.ArrayLike, *, threads: Optional[int] = None) -> npt.NDArray[np.bool_]:
    """Whether each ring is a valid Polygon, (K,); False for a non-finite coordinate."""

def to_ragged(rings: Iterable[npt.ArrayLike]) -> Tuple[npt.NDArray[np.float64], npt.NDArray[np.int64]]:
    """(coords, offsets) of a sequence of rings."""
