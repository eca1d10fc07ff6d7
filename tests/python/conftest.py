"""Shared helpers of the Python package's tests: seeded shapes and the oracle packages."""

import math

import numpy as np
import pytest

import cntr

if getattr(cntr, "__file__", None) is None:
    pytest.exit(
        "cntr resolves to a directory without the built package: build it "
        "(cmake --build --preset default) and set PYTHONPATH=build/default/python",
        returncode=4,
    )

UNIT_SQUARE = [[0, 0], [1, 0], [1, 1], [0, 1]]
# The 3-4-5 right triangle: legs 4 and 3, hypotenuse 5.
TRIANGLE_345 = [[0, 0], [4, 0], [0, 3]]
# A 4 x 4 square with a 1 x 1 square hole: area 16 - 1 = 15, centroid
# (16 * 2 - 1 * 1.5) / 15 = 61 / 30 in both coordinates, rings' length 16 + 4 = 20.
OUTER_4 = [[0, 0], [4, 0], [4, 4], [0, 4]]
HOLE_1 = [[1, 1], [2, 1], [2, 2], [1, 2]]
BOW_TIE = [[0, 0], [2, 2], [2, 0], [0, 2]]


def star_ring(rng, n, center=(0.0, 0.0), r_min=1.0, r_max=2.0, clockwise=False):
    """A simple polygon of n vertices, star-shaped about `center`: one vertex per sector of
    2 pi / n at a random angle inside it and a random radius in [r_min, r_max]. With n >= 8 every
    edge stays farther than r_min * cos(pi / 4) from the centre, so a ring of radius below
    0.7 r_min around it is a hole strictly inside."""
    sectors = np.arange(n) + rng.uniform(0.1, 0.9, n)
    angles = sectors * (2 * math.pi / n)
    radii = rng.uniform(r_min, r_max, n)
    ring = np.column_stack([center[0] + radii * np.cos(angles), center[1] + radii * np.sin(angles)])
    return ring[::-1].copy() if clockwise else ring


def seeded_polygons(rng, count=40):
    """(exterior, holes) pairs: star-shaped exteriors of 8 to 60 vertices in either orientation,
    every third with a star-shaped hole around its centre (inside by construction)."""
    shapes = []
    for k in range(count):
        center = rng.uniform(-500, 500, 2)
        scale = float(rng.uniform(1, 200))
        exterior = star_ring(rng, int(rng.integers(8, 60)), center, scale, 2 * scale, clockwise=bool(k % 2))
        holes = []
        if k % 3 == 0:
            holes.append(star_ring(rng, int(rng.integers(3, 20)), center, 0.2 * scale, 0.6 * scale))
        shapes.append((exterior, holes))
    return shapes


def shoelace_exact(ring):
    """Twice the signed area of a ring, exactly (fractions of the double coordinates)."""
    from fractions import Fraction

    pts = [(Fraction(float(x)), Fraction(float(y))) for x, y in ring]
    return sum(pts[i - 1][0] * pts[i][1] - pts[i][0] * pts[i - 1][1] for i in range(len(pts)))


@pytest.fixture
def rng():
    return np.random.default_rng(20261125)


@pytest.fixture
def shapely_geometry():
    pytest.importorskip(
        "shapely", reason="Shapely is not installed (python3-shapely; tools/bootstrap tests installs it)"
    )
    import shapely.geometry

    return shapely.geometry


@pytest.fixture
def cv2():
    return pytest.importorskip(
        "cv2", reason="OpenCV is not installed (python3-opencv; tools/bootstrap tests installs it)"
    )
