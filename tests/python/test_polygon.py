"""cntr.Polygon and cntr.MultiPolygon: values, measures, validity, conversions."""

import math
import pickle

import numpy as np
import pytest

import cntr
from conftest import BOW_TIE, HOLE_1, OUTER_4, TRIANGLE_345, UNIT_SQUARE


def test_unit_square():
    p = cntr.Polygon(UNIT_SQUARE)
    assert p.area == 1.0
    assert p.centroid == (0.5, 0.5)
    assert p.length == 4.0
    assert p.bounds == (0.0, 0.0, 1.0, 1.0)
    assert p.is_valid and p.validity.valid
    assert p.validity_reason == ""
    assert p.validity.problem == cntr.ValidityProblem.none
    assert (p.ring_count, p.vertex_count) == (1, 4)
    assert p.signed_area(0) == 1.0  # counter-clockwise
    assert cntr.Polygon(UNIT_SQUARE[::-1]).signed_area(0) == -1.0
    assert cntr.Polygon(UNIT_SQUARE[::-1]).area == 1.0  # unsigned whatever the orientation


def test_345_triangle():
    p = cntr.Polygon(TRIANGLE_345)
    assert p.area == 6.0
    assert p.length == 12.0
    # Centroid: the mean of the corners, (4/3, 1); the library finds it as a crossing of
    # medians, so a few units in the last place are allowed.
    assert p.centroid == pytest.approx((4 / 3, 1.0), rel=1e-14, abs=1e-14)


def test_square_with_square_hole():
    p = cntr.Polygon(OUTER_4, holes=[HOLE_1])
    assert p.area == 15.0
    assert p.centroid == pytest.approx((61 / 30, 61 / 30), rel=1e-15)
    assert p.length == 20.0
    assert p.ring_count == 2 and p.vertex_count == 8
    assert p.is_valid
    # A clockwise hole is subtracted just the same.
    assert cntr.Polygon(OUTER_4, holes=[HOLE_1[::-1]]).area == 15.0


def test_rings_are_read_only_float64_arrays():
    p = cntr.Polygon(np.array(OUTER_4, dtype=np.int32), holes=[HOLE_1])
    ext = p.exterior
    assert ext.dtype == np.float64 and ext.shape == (4, 2)
    assert not ext.flags.writeable
    with pytest.raises(ValueError):
        ext[0, 0] = 5
    assert np.array_equal(ext, OUTER_4)
    assert len(p.holes) == 1 and np.array_equal(p.holes[0], HOLE_1)


def test_a_repeated_closing_vertex_is_dropped():
    p = cntr.Polygon([[0, 0], [1, 0], [1, 1], [0, 0]])
    assert p.exterior.shape == (3, 2)
    assert p == cntr.Polygon([[0, 0], [1, 0], [1, 1]])


def test_validity_reports_the_first_broken_rule():
    bow = cntr.Polygon(BOW_TIE)
    v = bow.validity
    assert not bow.is_valid and not v.valid
    assert v.problem == cntr.ValidityProblem.self_crossing
    assert v.location == (1.0, 1.0)
    assert (v.ring, v.edge, v.other_ring, v.other_edge) == (0, 0, 0, 2)
    assert bow.validity_reason == "exterior edge 0 and exterior edge 2 cross at (1, 1)"
    assert "self_crossing" in repr(v)

    outside = cntr.Polygon(UNIT_SQUARE, holes=[[[5, 5], [6, 5], [6, 6]]])
    assert outside.validity.problem == cntr.ValidityProblem.hole_outside
    assert cntr.Polygon([[0, 0], [1, 1]]).validity.problem == cntr.ValidityProblem.too_few_vertices
    collinear = cntr.Polygon([[0, 0], [1, 1], [2, 2]])
    assert collinear.validity.problem == cntr.ValidityProblem.zero_area
    # A hole touching its exterior at one point is valid.
    touching = cntr.Polygon(OUTER_4, holes=[[[2, 0], [3, 2], [1, 2]]])
    assert touching.is_valid


def test_the_empty_polygon():
    p = cntr.Polygon([])
    assert p.vertex_count == 0
    assert p.area == 0.0 and p.length == 0.0
    assert p.bounds == (0.0, 0.0, 0.0, 0.0)
    assert p.validity.problem == cntr.ValidityProblem.too_few_vertices


def test_non_finite_coordinates_are_refused():
    with pytest.raises(cntr.BadParamsError) as e:
        cntr.Polygon([[0, 0], [math.nan, 1], [1, 1]])
    assert str(e.value) == "polygon ring 0 vertex 1 has a non-finite coordinate"
    with pytest.raises(cntr.BadParamsError, match="polygon ring 1 vertex 2"):
        cntr.Polygon(OUTER_4, holes=[[[1, 1], [2, 1], [math.inf, 2]]])


def test_signed_area_of_a_missing_ring():
    with pytest.raises(cntr.BadParamsError, match="polygon has no ring 5"):
        cntr.Polygon(UNIT_SQUARE).signed_area(5)


def test_equality_repr_and_pickling():
    p = cntr.Polygon(OUTER_4, holes=[HOLE_1])
    assert p == cntr.Polygon(OUTER_4, [HOLE_1])
    assert p != cntr.Polygon(OUTER_4)
    assert eval(repr(p), {"cntr": cntr}) == p
    q = pickle.loads(pickle.dumps(p))
    assert q == p and len(q.holes) == 1
    with pytest.raises(TypeError):
        hash(p)


def test_conversions_to_and_from_the_described_classes():
    contour = cntr.Contour([[0, 0], [4, 0], [4, 3], [0, 0]], closed=True)
    assert cntr.Polygon.from_contour(contour) == cntr.Polygon([[0, 0], [4, 0], [4, 3]])
    region, refused = cntr.Polygon(OUTER_4, holes=[HOLE_1]).to_region()
    assert isinstance(region, cntr.Region) and refused == []
    assert region.area() == 15.0 and len(region.holes) == 1
    # The region refuses a hole that touches its outline, and says so.
    region, refused = cntr.Polygon(OUTER_4, holes=[[[2, 0], [3, 2], [1, 2]]]).to_region()
    assert region.holes == [] and len(refused) == 1
    assert (refused[0].member, refused[0].hole) == (0, 0)
    assert np.array_equal(refused[0].ring, [[2, 0], [3, 2], [1, 2]])
    assert "RefusedHole" in repr(refused[0])


def test_multipolygon_measures():
    a = cntr.Polygon(UNIT_SQUARE)
    b = cntr.Polygon([[2, 0], [4, 0], [4, 2], [2, 2]])
    mp = cntr.MultiPolygon([a, b])
    assert len(mp) == 2 and mp[0] == a and mp[-1] == b and mp.polygons == [a, b]
    with pytest.raises(IndexError):
        mp[2]
    assert mp.area == 5.0
    # Area-weighted centroids: (1 * (0.5, 0.5) + 4 * (3, 1)) / 5.
    assert mp.centroid == pytest.approx((2.5, 0.9), rel=1e-15)
    assert mp.length == 12.0
    assert mp.bounds == (0.0, 0.0, 4.0, 2.0)
    assert mp.vertex_count == 8
    assert mp.is_valid and mp.validity_reason == ""
    overlapping = cntr.MultiPolygon([a, cntr.Polygon([[0.5, 0.5], [2, 0.5], [2, 2]])])
    assert not overlapping.is_valid
    empty = cntr.MultiPolygon()
    assert len(empty) == 0 and empty.area == 0.0 and empty.centroid == (0.0, 0.0)
    assert empty.is_valid
    with pytest.raises(TypeError, match="cntr.Polygon"):
        cntr.MultiPolygon([UNIT_SQUARE])


def test_multipolygon_equality_repr_pickling_and_conversions():
    mp = cntr.MultiPolygon([cntr.Polygon(OUTER_4, [HOLE_1]), cntr.Polygon(TRIANGLE_345)])
    assert eval(repr(mp), {"cntr": cntr}) == mp
    assert pickle.loads(pickle.dumps(mp)) == mp
    assert mp != cntr.MultiPolygon([cntr.Polygon(TRIANGLE_345)])
    region_set, refused = mp.to_region_set()
    assert isinstance(region_set, cntr.RegionSet) and len(region_set) == 2 and refused == []
    # An island inside a hole becomes a member of its own.
    island = cntr.Region([[1.25, 1.25], [1.75, 1.25], [1.75, 1.75]])
    hole = cntr.Region(HOLE_1, holes=[island])
    region = cntr.Region(OUTER_4, holes=[hole])
    members = cntr.MultiPolygon.from_region(region)
    assert len(members) == 2
    assert members[0] == cntr.Polygon(OUTER_4, [HOLE_1])
    assert members[1] == cntr.Polygon([[1.25, 1.25], [1.75, 1.25], [1.75, 1.75]])
    assert cntr.MultiPolygon.from_region_set(cntr.RegionSet([region])) == members
