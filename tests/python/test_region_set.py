"""cntr.RegionSet: members, measures, queries, repair, archives and conversions."""

import pickle

import numpy as np
import pytest

import cntr
from conftest import HOLE_1, OUTER_4, UNIT_SQUARE

BIG = [[2, 0], [4, 0], [4, 2], [2, 2]]


@pytest.fixture
def pair():
    return cntr.RegionSet([cntr.Region(UNIT_SQUARE), BIG])


def test_members_are_shared(pair):
    region = cntr.Region(OUTER_4)
    s = cntr.RegionSet([region])
    assert s.regions[0] is region
    assert len(pair) == 2 and np.array_equal(pair.regions[1].points, BIG)


def test_measures(pair):
    assert pair.area() == 5.0
    # (1 * (0.5, 0.5) + 4 * (3, 1)) / 5.
    assert pair.center_of_mass() == pytest.approx((2.5, 0.9), rel=1e-15)
    # Parallel axes about (2.5, 0.9): xx 1/12 + 1 * 2^2 + 4/3 + 4 * 0.5^2 = 77/12,
    # yy 1/12 + 1 * 0.4^2 + 4/3 + 4 * 0.1^2 = 17/12 + 0.2, xy 1 * (-2)(-0.4) + 4 * 0.5 * 0.1 = 1.
    assert pair.inertia_matrix(consider_holes=False) == pytest.approx(
        np.array([[77 / 12, 1.0], [1.0, 17 / 12 + 0.2]]), rel=1e-13)
    assert pair.enclose_rect() == (0.0, 0.0, 4.0, 2.0)
    assert pair.enclose_rect([[1, 0, 0], [0, 3, 1]]) == (0.0, 1.0, 4.0, 7.0)


def test_queries(pair):
    assert pair.inside((3, 1))
    assert not pair.inside((1.5, 0.5))
    assert pair.distance((1.5, 0.5)) == 0.5
    assert pair.distance((3, 1), zero_inside=True) == 0.0
    assert not pair.is_self_intersecting()
    crossing = cntr.RegionSet([OUTER_4, [[3, 3], [6, 3], [6, 6], [3, 6]]])
    assert crossing.is_self_intersecting()


def test_centres_with_holes_of_shared_regions():
    holed = cntr.Region(OUTER_4, holes=[HOLE_1])
    first = cntr.RegionSet([holed])
    assert first.center_of_mass() == pytest.approx((61 / 30, 61 / 30), rel=1e-15)
    # The same region in a second set: (15 * (61/30, 61/30) + 1 * (10.5, 0.5)) / 16.
    second = cntr.RegionSet([holed, [[10, 0], [11, 0], [11, 1], [10, 1]]])
    expected = ((30.5 + 10.5) / 16, (30.5 + 0.5) / 16)
    assert second.center_of_mass() == pytest.approx(expected, rel=1e-14)
    assert holed.center_of_mass() == pytest.approx((61 / 30, 61 / 30), rel=1e-15)


def test_the_empty_set():
    empty = cntr.RegionSet()
    assert len(empty) == 0 and empty.area() == 0.0
    assert not empty.is_self_intersecting() and not empty.inside((0, 0))
    for measure in (empty.center_of_mass, empty.enclose_rect, lambda: empty.distance((0, 0))):
        with pytest.raises(cntr.EmptyRegionSetError):
            measure()


def test_repair(pair):
    assert pair.regularize() == pair and pair.outer_hull() == pair
    crossing = cntr.RegionSet([OUTER_4, [[3, 3], [6, 3], [6, 6], [3, 6]]])
    merged = crossing.regularize()
    assert len(merged) == 1  # one merge pass joins the two crossing outlines
    assert cntr.RegionSet(crossing.regions, mode=cntr.IntersectionMode.use_regularized) == merged


def test_archive_keeps_shared_holes_shared():
    hole = cntr.Region(HOLE_1)
    a = cntr.Region(OUTER_4, holes=[hole])
    b = cntr.Region([[-1, -1], [5, -1], [5, 5], [-1, 5]], holes=[hole])
    back = pickle.loads(pickle.dumps(cntr.RegionSet([a, b])))
    assert back == cntr.RegionSet([a, b])
    assert back.regions[0].holes[0] is back.regions[1].holes[0]
    assert back.regions[0].holes[0] is not hole
    # The same region twice in one set comes back as one object too.
    twice = cntr.RegionSet.from_bytes(cntr.RegionSet([a, a]).to_bytes())
    assert twice.regions[0] is twice.regions[1]
    with pytest.raises(ValueError, match="xcRegionSet"):
        cntr.RegionSet.from_bytes(a.to_bytes())


def test_equality_is_positional(pair):
    assert pair == cntr.RegionSet([UNIT_SQUARE, BIG])
    assert pair != cntr.RegionSet([BIG, UNIT_SQUARE])
    assert eval(repr(pair), {"cntr": cntr}) == pair
    assert "<4 regions>" in repr(cntr.RegionSet([UNIT_SQUARE] * 4))


def test_conversions(pair):
    mp = pair.to_multipolygon()
    assert mp == cntr.MultiPolygon([cntr.Polygon(UNIT_SQUARE), cntr.Polygon(BIG)])
    assert cntr.RegionSet.from_multipolygon(mp) == pair
    touching = cntr.MultiPolygon([cntr.Polygon(OUTER_4, holes=[[[2, 0], [3, 2], [1, 2]]])])
    with pytest.raises(ValueError, match="member 0 hole 0"):
        cntr.RegionSet.from_multipolygon(touching)
