"""The true moments of Polygon and MultiPolygon: hand-computed values, either orientation, holes
and members, the convention for an area of 0, and OpenCV's cv2.moments (same keys, same
conventions) on integer and float32 contours."""

import math

import numpy as np
import pytest

import cntr
from conftest import BOW_TIE, HOLE_1, OUTER_4, seeded_polygons

RAW = ("m00", "m10", "m01", "m20", "m11", "m02", "m30", "m21", "m12", "m03")
CENTRAL = ("mu20", "mu11", "mu02", "mu30", "mu21", "mu12", "mu03")
NORMALISED = ("nu20", "nu11", "nu02", "nu30", "nu21", "nu12", "nu03")


def test_keys_are_opencvs_and_hu():
    m = cntr.Polygon(OUTER_4).moments()
    assert set(m) == set(RAW + CENTRAL + NORMALISED + ("hu",))
    assert isinstance(m["hu"], tuple) and len(m["hu"]) == 7


def test_rectangle_by_hand():
    # [0, 4] x [0, 2]: m00 = 8, m10 = 16, m20 = 64/3 * 2, mu20 = a^3 b / 12 = 32/3,
    # mu02 = a b^3 / 12 = 8/3, nu20 = mu20 / m00^2 = 1/6, nu02 = 1/24, hu1 = 5/24,
    # hu2 = (1/6 - 1/24)^2 = 1/64, odd central moments 0.
    m = cntr.Polygon([[0, 0], [4, 0], [4, 2], [0, 2]]).moments()
    assert m["m00"] == pytest.approx(8, rel=1e-15)
    assert m["m10"] == pytest.approx(16, rel=1e-15)
    assert m["m20"] == pytest.approx(128 / 3, rel=1e-15)
    assert m["mu20"] == pytest.approx(32 / 3, rel=1e-14)
    assert m["mu02"] == pytest.approx(8 / 3, rel=1e-14)
    assert m["mu11"] == pytest.approx(0, abs=1e-14)
    for key in ("mu30", "mu21", "mu12", "mu03"):
        assert m[key] == pytest.approx(0, abs=1e-13)
    assert m["nu20"] == pytest.approx(1 / 6, rel=1e-14)
    assert m["hu"][0] == pytest.approx(5 / 24, rel=1e-14)
    assert m["hu"][1] == pytest.approx(1 / 64, rel=1e-13)


def test_either_orientation_gives_the_same_moments():
    forward = cntr.Polygon(OUTER_4, [HOLE_1]).moments()
    backward = cntr.Polygon(OUTER_4[::-1], [HOLE_1]).moments()
    for key in RAW + CENTRAL:
        assert backward[key] == pytest.approx(forward[key], rel=1e-14, abs=1e-13)


def test_hole_is_subtracted():
    # 16 - 1 = 15; m10 = 16 * 2 - 1 * 1.5 = 30.5; m20 = 4^3/3 * 4 - (2^3 - 1)/3 * 1 = 83.
    m = cntr.Polygon(OUTER_4, [HOLE_1]).moments()
    assert m["m00"] == pytest.approx(15, rel=1e-15)
    assert m["m10"] == pytest.approx(30.5, rel=1e-15)
    assert m["m20"] == pytest.approx(83, rel=1e-14)


def test_multipolygon_adds_its_members():
    a = cntr.Polygon(OUTER_4, [HOLE_1])
    b = cntr.Polygon([[10, 0], [12, 0], [12, 3], [10, 3]])
    both = cntr.MultiPolygon([a, b]).moments()
    for key in RAW:
        assert both[key] == pytest.approx(a.moments()[key] + b.moments()[key], rel=1e-13)


def test_area_zero_follows_opencv():
    # The bow-tie's lobes cancel: the central moments are the raw ones, nothing is normalised.
    m = cntr.Polygon(BOW_TIE).moments()
    assert m["m00"] == 0.0
    assert m["mu20"] == m["m20"]
    assert all(m[key] == 0.0 for key in NORMALISED)
    assert m["hu"] == (0.0,) * 7


def _agree_with_opencv(ours, theirs, hu_theirs):
    # Scales: raw moments relative to themselves; a central moment of order k relative to
    # m00 * s^k, s the square root of the second moments per area (the shape's size), which a
    # moment of mixed signs can fall far below; normalised moments and invariants relative to
    # the first invariant's size.
    size = math.sqrt((theirs["mu20"] + theirs["mu02"]) / theirs["m00"])
    for key in RAW:
        assert ours[key] == pytest.approx(theirs[key], rel=1e-9), key
    for key in CENTRAL:
        order = int(key[2]) + int(key[3])
        assert ours[key] == pytest.approx(theirs[key], abs=1e-9 * theirs["m00"] * size**order), key
    for key in NORMALISED:
        assert ours[key] == pytest.approx(theirs[key], abs=1e-9), key
    for ours_hu, their_hu in zip(ours["hu"], hu_theirs):
        assert ours_hu == pytest.approx(their_hu, abs=1e-9)


def test_against_opencv_on_integer_contours(rng, cv2):
    # OpenCV's contour moments work in double precision on the int32 vertices and report every
    # outline with a positive m00, either orientation, as here; the remaining differences are
    # the two summation orders.
    for exterior, _ in seeded_polygons(rng):
        contour = np.round(exterior * 10).astype(np.int32).reshape(-1, 1, 2)
        theirs = cv2.moments(contour)
        _agree_with_opencv(cntr.Polygon(contour).moments(), theirs, cv2.HuMoments(theirs).ravel())


def test_against_opencv_on_float32_contours(rng, cv2):
    # float32 vertices, widened exactly to double on both sides.
    for exterior, _ in seeded_polygons(rng):
        contour = exterior.astype(np.float32).reshape(-1, 1, 2)
        theirs = cv2.moments(contour)
        _agree_with_opencv(cntr.Polygon(contour).moments(), theirs, cv2.HuMoments(theirs).ravel())
