"""cntr.batch: measures over ragged arrays, equal to the per-shape ones and to themselves
bit for bit whatever the number of threads."""

import math
import threading

import numpy as np
import pytest

import cntr
from cntr import batch
from conftest import BOW_TIE, HOLE_1, TRIANGLE_345, UNIT_SQUARE, star_ring

L_SHAPE = [[0, 0], [2, 0], [2, 1], [1, 1], [1, 2], [0, 2]]  # area 3, hull area 3.5


def test_to_ragged():
    coords, offsets = batch.to_ragged([UNIT_SQUARE, np.array(TRIANGLE_345).reshape(-1, 1, 2)])
    assert coords.shape == (7, 2) and coords.dtype == np.float64
    assert offsets.tolist() == [0, 4, 7] and offsets.dtype == np.int64
    empty_coords, empty_offsets = batch.to_ragged([])
    assert empty_coords.shape == (0, 2) and empty_offsets.tolist() == [0]


def test_hand_computed_values():
    coords, offsets = batch.to_ragged([UNIT_SQUARE, TRIANGLE_345, L_SHAPE, BOW_TIE])
    assert batch.area(coords, offsets).tolist() == [1.0, 6.0, 3.0, 0.0]  # the bow-tie's lobes cancel
    c = batch.centroid(coords, offsets)
    assert c.shape == (4, 2)
    assert c[0].tolist() == [0.5, 0.5]
    assert c[1] == pytest.approx([4 / 3, 1.0], rel=1e-14)
    # The L: (2 * (1, 0.5) + 1 * (0.5, 1.5)) / 3 = (5/6, 5/6).
    assert c[2] == pytest.approx([5 / 6, 5 / 6], rel=1e-14)
    assert batch.length(coords, offsets)[:3].tolist() == [4.0, 12.0, 8.0]
    assert batch.bounds(coords, offsets).tolist()[:3] == [[0, 0, 1, 1], [0, 0, 4, 3], [0, 0, 2, 2]]
    assert batch.convex_hull_area(coords, offsets).tolist() == [1.0, 6.0, 3.5, 4.0]
    assert batch.is_self_intersecting(coords, offsets).tolist() == [False, False, False, True]
    assert batch.is_valid(coords, offsets).tolist() == [True, True, True, False]
    assert batch.is_valid(coords, offsets).dtype == np.bool_


def test_a_closing_vertex_is_dropped_as_a_polygon_drops_it():
    closed = np.array(UNIT_SQUARE + [UNIT_SQUARE[0]], dtype=np.float64)
    coords, offsets = batch.to_ragged([closed])
    assert batch.is_self_intersecting(coords, offsets).tolist() == [False]
    assert batch.length(coords, offsets).tolist() == [4.0]


def seeded_rings(rng, count):
    rings = []
    for k in range(count):
        n = int(rng.integers(3, 40))
        ring = star_ring(rng, n, center=rng.uniform(-100, 100, 2), r_min=1, r_max=float(rng.uniform(1, 30)),
                         clockwise=bool(k % 2))
        if k % 7 == 0:
            ring = ring[rng.permutation(n)]  # shuffled: crossing itself, mostly
        rings.append(ring)
    rings.append(np.empty((0, 2)))
    rings.append(np.array([[1.0, 2.0]]))
    return rings


def test_equal_to_the_per_shape_measures(rng):
    rings = seeded_rings(rng, 150)
    coords, offsets = batch.to_ragged(rings)
    area = batch.area(coords, offsets)
    centroid = batch.centroid(coords, offsets)
    length = batch.length(coords, offsets)
    bounds = batch.bounds(coords, offsets)
    crossing = batch.is_self_intersecting(coords, offsets)
    valid = batch.is_valid(coords, offsets)
    for k, ring in enumerate(rings):
        p = cntr.Polygon(ring)
        assert area[k] == p.area
        assert tuple(centroid[k]) == p.centroid
        assert length[k] == p.length
        if len(ring):
            assert tuple(bounds[k]) == p.bounds
        else:
            assert np.isnan(bounds[k]).all()
        assert crossing[k] == cntr.Contour(p.exterior, closed=True).is_self_intersecting()
        assert valid[k] == p.is_valid
    assert crossing.any() and not crossing.all() and valid.any() and not valid.all()


@pytest.mark.parametrize("name", ["area", "centroid", "length", "bounds", "convex_hull_area",
                                  "is_self_intersecting", "is_valid"])
def test_bit_identical_for_any_thread_count(rng, name):
    coords, offsets = batch.to_ragged(seeded_rings(rng, 1500))
    function = getattr(batch, name)
    results = [function(coords, offsets, threads=t).tobytes() for t in (1, 2, 4, None)]
    assert results[1:] == results[:1] * 3


def test_library_errors_name_the_lowest_ring(rng):
    rings = seeded_rings(rng, 900)
    rings[700] = np.array([[0, 0], [math.nan, 1], [1, 1]])
    rings[300] = np.array([[0, 0], [1, 1], [math.inf, 0]])
    coords, offsets = batch.to_ragged(rings)
    for threads in (1, 4):
        with pytest.raises(cntr.NotFiniteError) as e:
            batch.convex_hull_area(coords, offsets, threads=threads)
        # The library names the ring's point: the third of ring 300.
        assert e.value.index == 300 and str(e.value).endswith("point 2 has a non-finite coordinate")
    assert math.isnan(batch.area(coords, offsets)[700])
    assert not batch.is_valid(coords, offsets)[300]


def test_empty_input():
    coords, offsets = np.empty((0, 2)), np.array([0])
    assert batch.area(coords, offsets).shape == (0,)
    assert batch.centroid(coords, offsets).shape == (0, 2)
    assert batch.bounds(coords, offsets).shape == (0, 4)
    assert batch.is_valid([], [0]).shape == (0,)


@pytest.mark.parametrize("offsets, message", [([1, 3], "start at 0"), ([0, 3, 2, 4], "not decrease"),
                                              ([0, 3], "last offset"), ([[0, 4]], "1-D"), ([], "1-D")])
def test_bad_offsets(offsets, message):
    with pytest.raises(ValueError, match=message):
        batch.area(np.zeros((4, 2)), offsets)


def test_bad_arguments():
    with pytest.raises(TypeError, match="integers"):
        batch.area(np.zeros((4, 2)), [0.0, 4.0])
    with pytest.raises(ValueError, match=r"\(M, 2\)"):
        batch.area(np.zeros((4, 3)), [0, 4])
    with pytest.raises(TypeError, match="real numbers"):
        batch.length(np.zeros((4, 2), dtype=complex), [0, 4])
    with pytest.raises(ValueError, match="at least 1"):
        batch.area(np.zeros((4, 2)), [0, 4], threads=0)
    with pytest.raises(TypeError):
        batch.area(np.zeros((4, 2)), [0, 4], threads=1.5)
    assert batch.area(np.zeros((4, 2)), [0, 4], threads=np.int64(10**6)).tolist() == [0.0]
    assert batch.area(np.zeros((4, 2)), [0, 4], threads=10**30).tolist() == [0.0]
    with pytest.raises(TypeError):
        batch.area(np.zeros((4, 2)), [0, 4], 2)  # threads is keyword-only


def test_strided_and_read_only_inputs():
    coords, offsets = batch.to_ragged([HOLE_1, TRIANGLE_345])
    wide = np.zeros((len(coords), 4))
    wide[:, ::2] = coords
    strided = wide[:, ::2]
    strided.setflags(write=False)
    assert batch.area(strided, offsets.astype(np.int32)).tolist() == [1.0, 6.0]


def test_python_threads_may_call_at_once(rng):
    coords, offsets = batch.to_ragged(seeded_rings(rng, 400))
    expected = batch.convex_hull_area(coords, offsets, threads=1).tobytes()
    results = []

    def run():
        results.append(batch.convex_hull_area(coords, offsets, threads=2).tobytes())

    workers = [threading.Thread(target=run) for _ in range(4)]
    for w in workers:
        w.start()
    for w in workers:
        w.join()
    assert results == [expected] * 4
