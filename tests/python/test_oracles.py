"""Cross-checks against independent implementations: exact rational arithmetic, Shapely (GEOS)
and OpenCV, on seeded shapes. Each comparison states the conventions that differ and the
tolerance that covers them."""

import math

import numpy as np
import pytest

import cntr
from conftest import seeded_polygons, shoelace_exact


def test_area_against_exact_arithmetic(rng):
    # The shoelace sum over the doubles' exact rational values, rounded once at the end: the
    # library's floating-point sum must agree to within a few units of roundoff per term.
    for exterior, holes in seeded_polygons(rng):
        exact = abs(shoelace_exact(exterior)) / 2 - sum(abs(shoelace_exact(h)) / 2 for h in holes)
        assert cntr.Polygon(exterior, holes).area == pytest.approx(float(exact), rel=1e-12)


def test_against_shapely(rng, shapely_geometry):
    # Shapely (GEOS): unsigned areas with holes subtracted, the centroid of the filled area and
    # a length that counts every ring, as here. GEOS wants no orientation; it closes rings itself.
    for exterior, holes in seeded_polygons(rng):
        ours = cntr.Polygon(exterior, holes)
        theirs = shapely_geometry.Polygon(exterior, holes)
        scale = math.sqrt(theirs.area)
        assert ours.is_valid and theirs.is_valid
        assert ours.area == pytest.approx(theirs.area, rel=1e-12)
        assert ours.length == pytest.approx(theirs.length, rel=1e-12)
        # Different summation orders: the centroids agree to a tiny fraction of the size.
        assert ours.centroid == pytest.approx((theirs.centroid.x, theirs.centroid.y), abs=1e-9 * scale)
        assert ours.bounds == pytest.approx(theirs.bounds, abs=0)


def test_validity_against_shapely(shapely_geometry):
    # Shapes on which both rule books agree (GEOS also rejects crossings, a hole outside the
    # exterior, nested holes and too few points; both accept a hole touching at one point).
    cases = [
        ([[0, 0], [2, 2], [2, 0], [0, 2]], []),
        ([[0, 0], [4, 0], [4, 4], [0, 4]], [[[5, 5], [6, 5], [6, 6]]]),
        ([[0, 0], [4, 0], [4, 4], [0, 4]], [[[1, 1], [3, 1], [3, 3], [1, 3]], [[1.5, 1.5], [2.5, 1.5], [2, 2.5]]]),
        ([[0, 0], [4, 0], [4, 4], [0, 4]], [[[2, 0], [3, 2], [1, 2]]]),
        ([[0, 0], [4, 0], [4, 4], [0, 4]], [[[1, 1], [2, 1], [2, 2], [1, 2]]]),
    ]
    for exterior, holes in cases:
        assert cntr.Polygon(exterior, holes).is_valid == shapely_geometry.Polygon(exterior, holes).is_valid


def test_against_opencv_on_integer_contours(rng, cv2):
    # OpenCV's contours are (N, 1, 2) int32 arrays, passed as they are. contourArea and moments
    # work in double precision: on integer coordinates of this size the shoelace sum is exact in
    # both, so the areas are equal. contourArea is unsigned (oriented=False), as here; moments
    # give the area centroid m10 / m00, m01 / m00 whatever the orientation. arcLength adds edge
    # lengths computed in single precision (float), hence the relative 1e-6.
    for exterior, _ in seeded_polygons(rng):
        contour = np.round(exterior * 10).astype(np.int32).reshape(-1, 1, 2)
        ours = cntr.Polygon(contour)
        assert ours.area == cv2.contourArea(contour)
        assert ours.length == pytest.approx(cv2.arcLength(contour, True), rel=1e-6)
        m = cv2.moments(contour)
        scale = math.sqrt(ours.area)
        assert ours.centroid == pytest.approx((m["m10"] / m["m00"], m["m01"] / m["m00"]), abs=1e-9 * scale)
        assert cntr.Contour(contour, closed=True).length() == ours.length


def test_against_opencv_on_float32_contours(rng, cv2):
    # float32 contours: both read the same float32 values (widened exactly to double here);
    # OpenCV sums the shoelace in double, so the areas agree to roundoff.
    for exterior, _ in seeded_polygons(rng):
        contour = exterior.astype(np.float32).reshape(-1, 1, 2)
        ours = cntr.Polygon(contour)
        assert ours.area == pytest.approx(cv2.contourArea(contour), rel=1e-9)
        assert ours.length == pytest.approx(cv2.arcLength(contour, True), rel=1e-6)


def test_a_traced_rectangle(cv2):
    # A filled 20 x 30 pixel rectangle: its traced contour runs through the corner pixels'
    # centres (10, 20) and (29, 49), enclosing 19 * 29 = 551 square pixels.
    image = np.zeros((80, 60), dtype=np.uint8)
    image[20:50, 10:30] = 255
    found = cv2.findContours(image, cv2.RETR_EXTERNAL, cv2.CHAIN_APPROX_SIMPLE)
    contour = found[-2][0]
    assert contour.dtype == np.int32 and contour.shape[1:] == (1, 2)
    p = cntr.Polygon(contour)
    assert p.area == 551.0 == cv2.contourArea(contour)
    assert p.length == 2 * (19 + 29)
    assert p.bounds == (10.0, 20.0, 29.0, 49.0)
    assert cntr.batch.area(*cntr.batch.to_ragged([contour])).tolist() == [551.0]
