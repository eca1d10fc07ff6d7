"""Measures of many rings at once, over ragged arrays, on a pool of threads.

A ragged array is an (M, 2) coordinate array and K + 1 offsets: ring k is
``coords[offsets[k]:offsets[k + 1]]``, a closed ring (a last vertex equal to the first is
dropped, as ``cntr.Polygon`` drops it). Every function takes ``threads`` (None: every core),
releases the GIL while it works and gives the same bits for any number of threads.
"""

import numpy as np

from ._cntr import batch as _batch

area = _batch.area
centroid = _batch.centroid
length = _batch.length
bounds = _batch.bounds
convex_hull_area = _batch.convex_hull_area
is_self_intersecting = _batch.is_self_intersecting
is_valid = _batch.is_valid


def to_ragged(rings):
    """(coords, offsets) of a sequence of rings, each an (N, 2) array-like (or OpenCV's
    (N, 1, 2)): coords an (M, 2) float64 array, offsets K + 1 int64 positions."""
    arrays = [np.asarray(ring, dtype=np.float64).reshape(-1, 2) for ring in rings]
    offsets = np.zeros(len(arrays) + 1, dtype=np.int64)
    np.cumsum([len(a) for a in arrays], out=offsets[1:])
    coords = np.concatenate(arrays) if arrays else np.empty((0, 2), dtype=np.float64)
    return coords, offsets


__all__ = [
    "area",
    "bounds",
    "centroid",
    "convex_hull_area",
    "is_self_intersecting",
    "is_valid",
    "length",
    "to_ragged",
]
