"""cntr.Region: holes, measures, containment, queries, repair and conversions."""

import pickle

import numpy as np
import pytest

import cntr
from conftest import BOW_TIE, HOLE_1, OUTER_4, UNIT_SQUARE


@pytest.fixture
def holed():
    return cntr.Region(OUTER_4, holes=[HOLE_1], label=5)


def test_model(holed):
    assert np.array_equal(holed.points, OUTER_4) and holed.label == 5 and len(holed) == 4
    assert len(holed.holes) == 1 and np.array_equal(holed.holes[0].points, HOLE_1)


def test_holes_are_shared_objects():
    hole = cntr.Region(HOLE_1)
    region = cntr.Region(OUTER_4, holes=[hole])
    assert region.holes[0] is hole
    other = cntr.Region([[-1, -1], [5, -1], [5, 5], [-1, 5]], holes=[hole])
    assert other.holes[0] is region.holes[0]


def test_area_and_centre(holed):
    assert holed.area() == 15.0
    assert holed.area(consider_holes=False) == 16.0
    # (16 * (2, 2) - 1 * (1.5, 1.5)) / 15 = (61 / 30, 61 / 30), asked more than once.
    for _ in range(3):
        assert holed.center_of_mass() == pytest.approx((61 / 30, 61 / 30), rel=1e-15)
    assert holed.center_of_mass(consider_holes=False) == (2.0, 2.0)


def test_inertia(holed):
    # A 4 x 4 square about its centre: b h^3 / 12 = 64 / 3 on the diagonal, 0 off it.
    m = holed.inertia_matrix(consider_holes=False)
    assert m.shape == (2, 2)
    assert m == pytest.approx(np.array([[64 / 3, 0], [0, 64 / 3]]), rel=1e-14, abs=1e-12)
    with pytest.raises(cntr.BadParamsError, match="inertiaMatrix\\(considerHoles\\) is not implemented"):
        holed.inertia_matrix()


def test_containment(holed):
    assert holed.inside((3, 3))
    assert not holed.inside((1.5, 1.5))
    assert holed.inside((1.5, 1.5), consider_holes=False)
    assert not holed.inside((5, 5))


def test_nearest_points_and_distances(holed):
    assert holed.closest_vertex_index((3.9, 0.2)) == 1
    assert holed.closest_vertex((1.1, 1.1)) == (0, -1)
    assert holed.closest_vertex((1.1, 1.1), consider_holes=True) == (0, 0)
    assert holed.closest_point((1.5, 1.2)) == (1.5, 1.0)  # the hole's lower edge
    assert holed.distance((5, 2)) == 1.0
    assert holed.distance((3, 3), zero_inside=True) == 0.0
    assert holed.distance((3, 3)) == 1.0


def test_segment_intersections(holed):
    # y = 1.5 crosses the outline at x = 0 and 4, then the hole at x = 1 and 2.
    hits = holed.intersections([[-1, 1.5], [5, 1.5]])
    assert np.array_equal(hits, [[0, 1.5], [4, 1.5], [1, 1.5], [2, 1.5]])
    assert np.array_equal(holed.intersections([[-1, 1.5], [5, 1.5]], consider_holes=False),
                          [[0, 1.5], [4, 1.5]])
    line = cntr.Contour([[-1, 1.5], [5, 1.5]])
    assert len(holed.contour_intersections(line)) == 4
    assert len(holed.contour_intersections(line, consider_holes=False)) == 2


def test_outline_queries(holed):
    assert holed.length() == 16.0  # the outline only
    assert holed.enclose_rect() == (0.0, 0.0, 4.0, 4.0)
    assert holed.mean_position() == (2.0, 2.0)
    assert holed.diameter() == pytest.approx(4 * 2**0.5, rel=1e-15)
    assert not holed.is_self_intersecting()
    assert holed.convex_hull() == cntr.Region(OUTER_4)


def test_repairing_a_bow_tie():
    bow = cntr.Region(BOW_TIE)
    assert bow.is_self_intersecting()
    walked = bow.regularize()
    # The walk around both lobes: the lobes are triangles of area 1 each.
    assert np.array_equal(walked.points, [[2, 0], [1, 1], [0, 0], [0, 2], [1, 1], [2, 2]])
    assert walked.area() == 2.0
    hull = bow.outer_hull()
    assert np.array_equal(hull.points, [[1, 1], [0, 0], [0, 2], [1, 1], [2, 2], [2, 0]])
    assert not hull.is_self_intersecting()
    assert cntr.Region(BOW_TIE, mode=cntr.IntersectionMode.use_regularized) == walked
    assert cntr.Region(BOW_TIE, mode=cntr.IntersectionMode.use_outer_hull) == hull
    # An outline that does not cross itself comes back as it is, holes included.
    square = cntr.Region(OUTER_4, holes=[HOLE_1])
    assert square.regularize() == square and len(square.regularize().holes) == 1
    pentagram = cntr.Region([[0, 10], [6, -8], [-10, 3], [10, 3], [-6, -8]])
    with pytest.raises(cntr.BadParamsError, match="invalid contour"):
        pentagram.regularize()


def test_map_keeps_the_label_and_drops_the_holes(holed):
    moved = holed.map([[1, 0, 10], [0, 1, 0]])
    assert np.array_equal(moved.points, np.array(OUTER_4) + [10, 0])
    assert moved.label == 5 and moved.holes == []


def test_holes_are_checked_against_the_outline():
    with pytest.raises(cntr.BadParamsError, match="holes cannot intersect region"):
        cntr.Region(OUTER_4, holes=[[[3, 3], [5, 3], [5, 5]]])
    with pytest.raises(cntr.EmptyContourError):
        cntr.Region([[0, 0]], holes=[HOLE_1])


def test_equality_compares_outlines_only(holed):
    assert holed == cntr.Region(OUTER_4)
    assert holed != cntr.Region(UNIT_SQUARE)


def test_archive_bytes_and_pickling(holed):
    back = pickle.loads(pickle.dumps(holed))
    assert back == holed and back.label == 5
    assert len(back.holes) == 1 and back.holes[0] == holed.holes[0]
    assert cntr.Region.from_bytes(holed.to_bytes()).area() == 15.0
    with pytest.raises(ValueError, match="holds no xcRegion"):
        cntr.Region.from_bytes(cntr.Contour(UNIT_SQUARE).to_bytes())
    assert eval(repr(holed), {"cntr": cntr}) == holed


def test_conversions(holed):
    assert holed.to_polygon() == cntr.Polygon(OUTER_4, [HOLE_1])
    assert holed.to_multipolygon() == cntr.MultiPolygon([cntr.Polygon(OUTER_4, [HOLE_1])])
    made = cntr.Region.from_polygon(cntr.Polygon(OUTER_4, [HOLE_1]))
    assert made == holed and made.area() == 15.0
    with pytest.raises(ValueError, match="hole 0"):
        cntr.Region.from_polygon(cntr.Polygon(OUTER_4, holes=[[[2, 0], [3, 2], [1, 2]]]))
    island = cntr.Region([[1.25, 1.25], [1.75, 1.25], [1.75, 1.75]])
    nested = cntr.Region(OUTER_4, holes=[cntr.Region(HOLE_1, holes=[island])])
    with pytest.raises(ValueError, match="islands"):
        nested.to_polygon()


def test_too_few_vertices():
    two = cntr.Region([[0, 0], [1, 1]])
    for measure in (two.area, two.center_of_mass, two.inertia_matrix):
        with pytest.raises(cntr.EmptyContourError):
            measure()
