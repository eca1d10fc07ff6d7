"""Polygon.locate and contains, MultiPolygon.locate and contains, and cntr.Location: hand cases,
argument layouts, refused arguments, threads, and a comparison with Shapely."""

import math
import threading

import numpy as np
import pytest

import cntr
from conftest import HOLE_1, OUTER_4, seeded_polygons

OUTSIDE, BOUNDARY, INSIDE = cntr.Location.outside, cntr.Location.boundary, cntr.Location.inside

# The 4 x 4 square with the 1 x 1 hole [1, 2] x [1, 2], and one point of each kind.
SQUARE_WITH_HOLE_CASES = [
    ((3, 3), INSIDE),
    ((0.5, 3.5), INSIDE),
    ((0, 2), BOUNDARY),  # on the outline's left edge
    ((4, 4), BOUNDARY),  # an outline vertex
    ((1.5, 1), BOUNDARY),  # on the hole's bottom edge
    ((2, 2), BOUNDARY),  # a hole vertex
    ((1.5, 1.5), OUTSIDE),  # in the hole
    ((5, 5), OUTSIDE),
    ((-1, 2), OUTSIDE),
    ((2, 4.5), OUTSIDE),  # above the top edge, level with no vertex
]


def square_with_hole():
    return cntr.Polygon(OUTER_4, holes=[HOLE_1])


def test_location_is_an_int_enum():
    assert [(m.name, int(m)) for m in cntr.Location] == [("outside", 0), ("boundary", 1), ("inside", 2)]
    assert cntr.Location(2) is INSIDE and INSIDE == 2
    assert repr(INSIDE) == "<Location.inside: 2>"
    assert cntr.Location.__module__ == "cntr"


def test_square_with_a_hole_by_hand():
    points = [p for p, _ in SQUARE_WITH_HOLE_CASES]
    expected = [loc for _, loc in SQUARE_WITH_HOLE_CASES]
    found = square_with_hole().locate(points)
    assert found.dtype == np.int8 and found.shape == (len(points),)
    assert [cntr.Location(code) for code in found] == expected
    contained = square_with_hole().contains(points)
    assert contained.dtype == np.bool_
    # Boundary points are not contained.
    assert contained.tolist() == [loc == INSIDE for loc in expected]
    # The codes compare with the enumeration's members as they are.
    assert np.array_equal(found == INSIDE, contained)


def test_orientation_does_not_matter():
    points = [p for p, _ in SQUARE_WITH_HOLE_CASES]
    reversed_rings = cntr.Polygon(OUTER_4[::-1], holes=[HOLE_1[::-1]])
    assert np.array_equal(reversed_rings.locate(points), square_with_hole().locate(points))


def test_boundary_distance():
    p = square_with_hole()
    # Distances 0.25 from the top edge (y = 4), from the hole's right edge (x = 2) inside the
    # shape, and from the right edge (x = 4) outside it; the hole's centre is 0.5 from its edges.
    points = [(3, 3.75), (2.25, 1.5), (4.25, 2), (1.5, 1.5)]
    assert p.locate(points).tolist() == [INSIDE, INSIDE, OUTSIDE, OUTSIDE]
    assert p.locate(points, boundary_distance=0.125).tolist() == [INSIDE, INSIDE, OUTSIDE, OUTSIDE]
    assert p.locate(points, boundary_distance=0.375).tolist() == [BOUNDARY, BOUNDARY, BOUNDARY, OUTSIDE]
    assert p.locate(points, 0.75).tolist() == [BOUNDARY] * 4
    # An integer distance is taken as a number; 0 is the exact test.
    assert p.locate(points, 1).tolist() == [BOUNDARY] * 4
    assert p.locate([(0, 2)], 0).tolist() == [BOUNDARY]


def test_multipolygon_with_an_island_in_a_hole():
    island = [[1.25, 1.25], [1.75, 1.25], [1.75, 1.75], [1.25, 1.75]]
    far = [[10, 10], [12, 10], [11, 12]]
    mp = cntr.MultiPolygon([square_with_hole(), cntr.Polygon(island), cntr.Polygon(far)])
    points = [(3, 3), (1.5, 1.5), (1.1, 1.1), (1.25, 1.5), (1.5, 1), (11, 11), (11, 12), (7, 7)]
    expected = [INSIDE, INSIDE, OUTSIDE, BOUNDARY, BOUNDARY, INSIDE, BOUNDARY, OUTSIDE]
    assert mp.locate(points).tolist() == expected
    assert mp.contains(points).tolist() == [loc == INSIDE for loc in expected]
    # 1.1 lies 0.1 from the hole's edges and 0.15 from the island's.
    assert mp.locate([(1.1, 1.1)], boundary_distance=0.125).tolist() == [BOUNDARY]
    assert cntr.MultiPolygon().locate([(0, 0)]).tolist() == [OUTSIDE]


def test_point_layouts():
    points = [p for p, _ in SQUARE_WITH_HOLE_CASES if float(p[0]).is_integer() and float(p[1]).is_integer()]
    expected = square_with_hole().locate(points)
    assert len(expected) == 6
    for layout in (
        np.array(points, dtype=np.int32).reshape(-1, 1, 2),  # OpenCV's contour array
        np.array(points, dtype=np.float32).reshape(-1, 1, 2),
        np.array(points, dtype=np.int64),
        np.asfortranarray(points, dtype=np.float64),
        np.repeat(np.array(points, dtype=np.float64), 2, axis=0)[::2],  # a strided view
        tuple(tuple(p) for p in points),
    ):
        assert np.array_equal(square_with_hole().locate(layout), expected)
        assert np.array_equal(square_with_hole().contains(layout), expected == INSIDE)
    for empty in ([], np.zeros((0, 2)), np.zeros((0, 1, 2), dtype=np.int32)):
        assert square_with_hole().locate(empty).shape == (0,)
        assert square_with_hole().contains(empty).dtype == np.bool_


@pytest.mark.parametrize("bad", [math.nan, math.inf, -math.inf])
def test_non_finite_coordinates_are_refused(bad):
    for shape in (square_with_hole(), cntr.MultiPolygon([square_with_hole()])):
        with pytest.raises(cntr.BadParamsError) as e:
            shape.locate([(3, 3), (bad, 1)])
        assert e.value.message == "point has a non-finite coordinate"
        with pytest.raises(cntr.BadParamsError, match="point has a non-finite coordinate"):
            shape.contains([(1, bad)])


@pytest.mark.parametrize("bad", [-0.5, -math.inf, math.inf, math.nan])
def test_bad_boundary_distances_are_refused(bad):
    for shape in (square_with_hole(), cntr.MultiPolygon([square_with_hole()])):
        with pytest.raises(cntr.BadParamsError) as e:
            shape.locate([(3, 3)], boundary_distance=bad)
        assert e.value.message == "boundary distance must be finite and not negative"
        assert e.value.error_number == cntr.BadParamsError.error_number


@pytest.mark.parametrize("bad", [[1, 2], [[0, 0, 0]], np.zeros((3, 2, 1)), np.zeros((2, 2, 2))])
def test_wrong_shapes_are_refused(bad):
    # Arrays of the wrong shape are refused as every argument of vertices is: ValueError.
    with pytest.raises(ValueError, match=r"points must be an \(N, 2\) array"):
        square_with_hole().locate(bad)
    with pytest.raises(ValueError, match=r"points must be an \(N, 2\) array"):
        cntr.MultiPolygon().contains(bad)


def test_values_that_are_not_numbers_are_refused():
    with pytest.raises(TypeError, match="real numbers"):
        square_with_hole().locate([["a", "b"]])
    with pytest.raises(TypeError):
        square_with_hole().locate([(3, 3)], boundary_distance="far")


def test_threads_share_one_polygon(rng):
    # Threads locate on one polygon at once, its locator built by whichever comes first: every
    # thread's answer is the serial one.
    exterior, holes = seeded_polygons(rng, 1)[0]
    polygon = cntr.Polygon(exterior, holes)
    x0, y0, x1, y1 = cntr.Polygon(exterior, holes).bounds
    points = rng.uniform((x0, y0), (x1, y1), (20000, 2))
    expected = cntr.Polygon(exterior, holes).locate(points)
    results = [None] * 4
    start = threading.Barrier(len(results))

    def work(k):
        start.wait()
        results[k] = polygon.locate(points)

    threads = [threading.Thread(target=work, args=(k,)) for k in range(len(results))]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    for found in results:
        assert np.array_equal(found, expected)
    assert {INSIDE, OUTSIDE} <= set(expected.tolist())


def shapely_contains(shapely, geometry, points):
    """Shapely's answer for each point: contains_xy on Shapely 2, a prepared geometry's contains
    point by point on older versions."""
    if hasattr(shapely, "contains_xy"):
        return shapely.contains_xy(geometry, points[:, 0], points[:, 1])
    from shapely.prepared import prep

    prepared = prep(geometry)
    return np.array([prepared.contains(shapely.geometry.Point(x, y)) for x, y in points])


def test_against_shapely(rng, shapely_geometry):
    import shapely

    # Seeded star-shaped polygons, a third of them with a hole, and random points over their
    # bounds. Shapely's contains is False on the boundary and True strictly inside, as contains
    # here; locate's boundary class has no counterpart there, so points closer to the boundary
    # than a millionth of the size are left out of the comparison (both sides decide the others
    # beyond doubt), and the rings' own vertices, exactly on the boundary, are compared apart.
    compared = 0
    for exterior, holes in seeded_polygons(rng):
        ours = cntr.Polygon(exterior, holes)
        theirs = shapely_geometry.Polygon(exterior, holes)
        x0, y0, x1, y1 = theirs.bounds
        size = max(x1 - x0, y1 - y0)
        points = rng.uniform((x0 - 0.1 * size, y0 - 0.1 * size), (x1 + 0.1 * size, y1 + 0.1 * size), (300, 2))
        clear = np.array([theirs.boundary.distance(shapely_geometry.Point(p)) > 1e-6 * size for p in points])
        points = points[clear]
        expected = shapely_contains(shapely, theirs, points)
        assert np.array_equal(ours.contains(points), expected)
        located = ours.locate(points)
        assert np.array_equal(located, np.where(expected, INSIDE, OUTSIDE))
        compared += len(points)
        # Vertices lie on the boundary: located there, and contained by neither.
        vertices = np.concatenate([exterior] + holes)
        assert (ours.locate(vertices) == BOUNDARY).all()
        assert not ours.contains(vertices).any()
        assert not shapely_contains(shapely, theirs, vertices).any()
    assert compared > 10000


def test_multipolygon_against_shapely(rng, shapely_geometry):
    import shapely

    # The seeded polygons spread apart on a grid make one valid multipolygon.
    members = []
    for k, (exterior, holes) in enumerate(seeded_polygons(rng, 12)):
        lo = exterior.min(axis=0)
        shift = np.array([3000.0 * (k % 4), 3000.0 * (k // 4)]) - lo
        members.append((exterior + shift, [h + shift for h in holes]))
    ours = cntr.MultiPolygon([cntr.Polygon(e, h) for e, h in members])
    theirs = shapely_geometry.MultiPolygon([shapely_geometry.Polygon(e, h) for e, h in members])
    assert ours.is_valid and theirs.is_valid
    # Points over each member's bounds and a margin that reaches into the space between members,
    # off the boundary only (see test_against_shapely).
    points = np.concatenate([
        rng.uniform(e.min(axis=0) - 100, e.max(axis=0) + 100, (300, 2)) for e, _ in members
    ])
    points = points[[theirs.boundary.distance(shapely_geometry.Point(p)) > 1e-3 for p in points]]
    expected = shapely_contains(shapely, theirs, points)
    assert expected.any() and not expected.all()
    assert np.array_equal(ours.contains(points), expected)
    assert np.array_equal(ours.locate(points), np.where(expected, INSIDE, OUTSIDE))
