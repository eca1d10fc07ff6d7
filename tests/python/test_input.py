"""Arguments: array-likes of every layout and dtype accepted as they are, bad ones refused with
the right exception."""

import math

import numpy as np
import pytest

import cntr

SQUARE = [[0, 0], [2, 0], [2, 2], [0, 2]]


@pytest.mark.parametrize("dtype", [np.int32, np.int64, np.uint8, np.float32, np.float64])
def test_numeric_dtypes(dtype):
    p = cntr.Polygon(np.array(SQUARE, dtype=dtype))
    assert p.area == 4.0 and p.exterior.dtype == np.float64


def test_opencv_contour_layout():
    cv_contour = np.array(SQUARE, dtype=np.int32).reshape(-1, 1, 2)
    assert cntr.Polygon(cv_contour) == cntr.Polygon(SQUARE)
    assert cntr.Contour(cv_contour.astype(np.float32), closed=True).length() == 8.0
    assert cntr.Region(cv_contour).area() == 4.0


def test_any_memory_layout():
    big = np.repeat(np.array(SQUARE, dtype=np.float64), 2, axis=0)[::2]  # every other row: a strided view
    assert not big.flags.c_contiguous
    assert cntr.Polygon(big) == cntr.Polygon(SQUARE)
    fortran = np.asfortranarray(SQUARE, dtype=np.float64)
    assert cntr.Polygon(fortran) == cntr.Polygon(SQUARE)
    transposed = np.array(SQUARE, dtype=np.float64).T.copy().T
    assert cntr.Contour(transposed, closed=True).length() == 8.0


def test_read_only_arrays_are_read_and_inputs_left_alone():
    a = np.array(SQUARE, dtype=np.float64)
    a.setflags(write=False)
    assert cntr.Region(a).area() == 4.0
    b = np.array(SQUARE, dtype=np.float64)
    cntr.Contour(b, closed=True).map([[2, 0, 0], [0, 2, 0]])
    assert np.array_equal(b, SQUARE)


@pytest.mark.parametrize("bad", [[[0, 0, 0], [1, 1, 1]], [1, 2, 3], np.zeros((3, 2, 1)),
                                 np.zeros((3, 2, 2))])
def test_wrong_shapes(bad):
    with pytest.raises(ValueError, match=r"\(N, 2\)"):
        cntr.Polygon(bad)
    with pytest.raises(ValueError, match=r"\(N, 2\)"):
        cntr.Contour(bad)


@pytest.mark.parametrize("bad", [np.zeros((3, 2), dtype=complex), [["a", "b"], ["c", "d"]],
                                 [[0, None], [1, 1]], np.zeros((3, 2), dtype=bool)])
def test_values_that_are_not_real_numbers(bad):
    with pytest.raises(TypeError, match="real numbers"):
        cntr.Region(bad)


def test_ragged_nested_lists():
    with pytest.raises(ValueError):
        cntr.Contour([[0, 0], [1]])


def test_points_segments_and_transforms():
    c = cntr.Contour(SQUARE, closed=True)
    with pytest.raises(ValueError, match="pair of numbers"):
        c.closest_point((1, 2, 3))
    with pytest.raises(TypeError, match="real numbers"):
        c.closest_point(("x", "y"))
    with pytest.raises(ValueError, match=r"\(2, 2\)"):
        c.intersections([0, 0, 1, 1])
    with pytest.raises(ValueError, match="2x3"):
        c.map(np.eye(3))
    assert c.closest_point(np.array([3, 1], dtype=np.int16)) == (2.0, 1.0)


def test_labels():
    assert cntr.Contour(SQUARE, label=np.int64(9)).label == 9
    for bad in (-1, 2**32):
        with pytest.raises(ValueError, match="0 to 4294967295"):
            cntr.Contour(SQUARE, label=bad)
    with pytest.raises(TypeError):
        cntr.Region(SQUARE, label=1.5)


def test_holes_must_be_a_sequence_of_rings():
    with pytest.raises(ValueError, match=r"a hole must be an \(N, 2\)"):
        cntr.Polygon(SQUARE, holes=[[0.5, 0.5], [1, 0.5], [1, 1]])
    with pytest.raises(TypeError):
        cntr.Region(SQUARE, holes=5)


def test_nan_and_too_few_vertices():
    with pytest.raises(cntr.BadParamsError, match="non-finite"):
        cntr.Polygon([[0, 0], [1, math.nan], [1, 1]])
    assert math.isnan(cntr.Contour([[0, 0], [1, math.nan]]).length())
    with pytest.raises(cntr.EmptyContourError):
        cntr.Region([[0, 0], [1, 1]]).area()
    with pytest.raises(cntr.EmptyContourError):
        cntr.Contour([[0, 0]]).closest_vertex_index((0, 0))
    assert cntr.Polygon([[0, 0], [1, 1]]).area == 0.0
