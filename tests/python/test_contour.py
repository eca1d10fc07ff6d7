"""cntr.Contour: model, measures, queries, transforms and archives."""

import math
import pickle

import numpy as np
import pytest

import cntr

# The closed 3-4-5 triangle: edges 4, 3 and 5.
TRIANGLE = [[0, 0], [4, 0], [4, 3]]


def test_model():
    c = cntr.Contour(TRIANGLE, closed=True, label=7)
    assert np.array_equal(c.points, TRIANGLE) and not c.points.flags.writeable
    assert c.closed and c.label == 7 and len(c) == 3
    assert not cntr.Contour(TRIANGLE).closed
    assert cntr.Contour(TRIANGLE).label == 0


def test_length_and_wire_centre():
    assert cntr.Contour(TRIANGLE, closed=True).length() == 12.0
    open_polyline = cntr.Contour(TRIANGLE)
    assert open_polyline.length() == 7.0
    # The uniform wire's centre: (4 * (2, 0) + 3 * (4, 1.5)) / 7 = (20 / 7, 9 / 14).
    assert open_polyline.mean_position() == pytest.approx((20 / 7, 9 / 14), rel=1e-15)
    assert cntr.Contour([]).length() == 0.0


def test_extremal_vertices():
    c = cntr.Contour(TRIANGLE, closed=True)
    assert c.extremal_vertex_index(0.0) == 1  # the first of the two with x = 4
    assert c.extremal_vertex(math.pi / 2) == (4.0, 3.0)
    assert c.extremal_vertex(math.pi) == (0.0, 0.0)


def test_spread_circles_and_diameter():
    c = cntr.Contour(TRIANGLE, closed=True)
    # Furthest pair (0, 0)-(4, 3): distance 5, centre at the midpoint.
    assert c.diameter() == 5.0
    assert c.enclose_circle() == cntr.Circle((2, 1.5), 2.5)
    # From the first vertex: centre (0, 0), through (4, 3).
    assert c.enclose_circle(cntr.DiameterMode.from_first_vertex) == cntr.Circle((0, 0), 5)
    assert c.diameter(cntr.DiameterMode.from_first_vertex) == 10.0


def test_enclosing_rectangles():
    c = cntr.Contour(TRIANGLE, closed=True)
    assert c.enclose_rect() == (0.0, 0.0, 4.0, 3.0)
    # x' = 2 x + 1 in [1, 9], y' = 3 y - 1 in [-1, 8].
    assert c.enclose_rect([[2, 0, 1], [0, 3, -1]]) == (1.0, -1.0, 9.0, 8.0)
    # Transforms differing only in the matrix element (1, 1) get their own rectangles.
    assert c.enclose_rect([[1, 0, 0], [0, 1, 0]]) == (0.0, 0.0, 4.0, 3.0)
    assert c.enclose_rect([[1, 0, 0], [0, 2, 0]]) == (0.0, 0.0, 4.0, 6.0)
    assert c.enclose_rect(np.array([[1, 0, 0], [0, 1, 0]], dtype=np.float32)) == (0, 0, 4, 3)


def test_segment_and_contour_intersections():
    c = cntr.Contour(TRIANGLE, closed=True)
    # The vertical x = 2 meets the base at (2, 0) and the hypotenuse y = 0.75 x at (2, 1.5).
    hits = c.intersections([[2, -1], [2, 5]])
    assert hits.shape == (2, 2) and np.array_equal(hits, [[2, 0], [2, 1.5]])
    assert np.array_equal(c.intersections([[2, 5], [2, -1]]), [[2, 1.5], [2, 0]])
    assert c.intersections([[10, 0], [11, 1]]).shape == (0, 2)
    # An edge through an end of the segment counts only with include_end_touches.
    assert len(c.intersections([[2, 0], [2, 1]], include_end_touches=True)) == 1
    assert len(c.intersections([[2, 0], [2, 1]], include_end_touches=False)) == 0
    line = cntr.Contour([[2, -1], [2, 5]])
    assert np.array_equal(np.sort(c.contour_intersections(line), axis=0), [[2, 0], [2, 1.5]])
    assert len(c.contour_intersections(cntr.Region([[1, -1], [3, -1], [3, 1], [1, 1]]))) == 4


def test_self_intersection():
    assert cntr.Contour([[0, 0], [2, 2], [2, 0], [0, 2]], closed=True).is_self_intersecting()
    assert not cntr.Contour(TRIANGLE, closed=True).is_self_intersecting()
    # Open, the bow-tie's crossing edge is missing: (0,0)-(2,2) and (2,0)-(0,2) still cross.
    assert cntr.Contour([[0, 0], [2, 2], [2, 0], [0, 2]]).is_self_intersecting()
    assert not cntr.Contour([[0, 0], [2, 2], [2, 0]]).is_self_intersecting()


def test_nearest_points():
    c = cntr.Contour(TRIANGLE, closed=True)
    assert c.closest_point((5, 1)) == (4.0, 1.0)
    assert c.closest_point((5, 1), vertex_only=True) == (4.0, 0.0)
    assert c.closest_vertex_index((5, 1)) == 1
    assert c.distance((5, 1)) == 1.0
    assert c.distance((5, 1), vertex_only=True) == math.sqrt(2)
    assert np.array_equal(c.vertex_index((4, 0.5), 1.0), [1])
    assert c.vertex_index((4, 0.5), 0.1).shape == (0,)


def test_hull_and_fits():
    square_and_centre = cntr.Contour([[0, 0], [4, 0], [4, 4], [0, 4], [2, 2]])
    hull = square_and_centre.convex_hull()
    assert isinstance(hull, cntr.Region)
    assert np.array_equal(hull.points, [[0, 0], [4, 0], [4, 4], [0, 4]])
    # 24 points on the ellipse centred at (1, 2), radii 3 and 1, turned by 0.3 rad.
    t = np.linspace(0, 2 * math.pi, 24, endpoint=False)
    u = np.column_stack([3 * np.cos(t), np.sin(t)])
    rot = np.array([[math.cos(0.3), -math.sin(0.3)], [math.sin(0.3), math.cos(0.3)]])
    ellipse, rms = cntr.Contour(u @ rot.T + [1, 2], closed=True).fit_ellipse()
    assert ellipse.center == pytest.approx((1, 2), abs=1e-9)
    assert (ellipse.r1, ellipse.r2) == pytest.approx((3, 1), abs=1e-9)
    assert ellipse.rotation == pytest.approx(0.3, abs=1e-9)
    assert rms == pytest.approx(0, abs=1e-9)
    # Three points: the circle fit stands in, the circumcircle of the right triangle (centre at
    # the hypotenuse's midpoint, radius 2.5).
    circle, rms = cntr.Contour(TRIANGLE).fit_ellipse()
    assert circle.center == pytest.approx((2, 1.5), abs=1e-12)
    assert (circle.r1, circle.r2) == pytest.approx((2.5, 2.5), abs=1e-12)


def test_map_through_an_affine_matrix():
    c = cntr.Contour(TRIANGLE, closed=True, label=3)
    turned = c.map([[0, -1, 0], [1, 0, 0]])  # a quarter turn: (x, y) -> (-y, x)
    assert np.array_equal(turned.points, [[0, 0], [0, 4], [-3, 4]])
    assert turned.closed and turned.label == 3
    assert np.array_equal(c.map([[1, 0, 10], [0, 1, 20]]).points, [[10, 20], [14, 20], [14, 23]])


def test_equality_ignores_labels_not_closedness():
    assert cntr.Contour(TRIANGLE, True, 1) == cntr.Contour(TRIANGLE, True, 2)
    assert cntr.Contour(TRIANGLE, True) != cntr.Contour(TRIANGLE, False)
    assert cntr.Contour(TRIANGLE) != cntr.Contour(TRIANGLE[:2])


def test_archive_bytes_and_pickling():
    c = cntr.Contour(TRIANGLE, closed=True, label=4294967295)
    data = c.to_bytes()
    assert data[:4] == b"XCAR"
    back = cntr.Contour.from_bytes(data)
    assert back == c and back.label == 4294967295 and back.closed
    q = pickle.loads(pickle.dumps(c))
    assert q == c and q.label == c.label
    with pytest.raises(ValueError, match="holds a xcRegion, not a xcContour"):
        cntr.Contour.from_bytes(cntr.Region(TRIANGLE).to_bytes())
    with pytest.raises(ValueError, match="3 bytes follow"):
        cntr.Contour.from_bytes(data + b"abc")
    assert eval(repr(c), {"cntr": cntr}) == c
    assert "<7 points>" in repr(cntr.Contour(np.zeros((7, 2))))


def test_to_polygon():
    assert cntr.Contour(TRIANGLE).to_polygon() == cntr.Polygon(TRIANGLE)


def test_too_few_vertices():
    one = cntr.Contour([[1, 1]])
    for measure in (one.mean_position, one.enclose_rect, lambda: one.closest_point((0, 0))):
        with pytest.raises(cntr.EmptyContourError):
            measure()


def test_non_finite_coordinates_pass_through_the_arithmetic():
    c = cntr.Contour([[0, 0], [math.nan, 1], [1, 1]], closed=True)
    assert math.isnan(c.length())
    with pytest.raises(cntr.NotFiniteError, match="point 1 has a non-finite coordinate"):
        c.convex_hull()
