"""The exception hierarchy: one class per exception class of the libraries, messages unchanged."""

import math
import struct

import pytest

import cntr
from conftest import OUTER_4, UNIT_SQUARE

# Class, its grouping, and the error number the libraries' headers give it.
CLASSES = [
    ("EmptyContourError", "ContourError", 0x10004680),
    ("EmptyRegionSetError", "ContourError", 0x10004682),
    ("BadParamsError", "ContourError", 0x10004683),
    ("RegionCannotBeSetOpenError", "ContourError", 0x10004684),
    ("SingularError", "MathError", 0x10001001),
    ("NotFiniteError", "MathError", 0x10001002),
    ("BadWindowError", "Error", 0x10001101),
    ("TooFewPointsError", "FitError", 0x10001201),
    ("DegenerateFitError", "FitError", 0x10001202),
    ("RmsTooLargeError", "FitError", 0x10001203),
    ("UnknownVersionError", "ArchiveError", 0x10001301),
    ("BadFormatError", "ArchiveError", 0x10001302),
    ("TruncatedError", "ArchiveError", 0x10001303),
    ("UnknownClassError", "ArchiveError", 0x10001304),
    ("BadReferenceError", "ArchiveError", 0x10001305),
    ("CountTooLargeError", "ArchiveError", 0x10001306),
    ("ArchiveFileError", "ArchiveError", 0x10001307),
    ("ValueOutOfRangeError", "ArchiveError", 0x10001308),
    ("BadDataError", "ArchiveError", 0x10001309),
    ("UnregisteredClassError", "ArchiveError", 0x1000130A),
]


@pytest.mark.parametrize("name, group, number", CLASSES)
def test_hierarchy_and_numbers(name, group, number):
    cls = getattr(cntr, name)
    assert issubclass(cls, getattr(cntr, group)) and issubclass(cls, cntr.Error)
    assert issubclass(cntr.Error, Exception)
    assert cls.error_number == number
    assert f"0x{number:X}" in cls.__doc__
    assert cls.__module__ == "cntr"


def test_groupings_have_no_number_of_their_own():
    for group in ("Error", "ContourError", "MathError", "FitError", "ArchiveError"):
        assert getattr(cntr, group).error_number is None


def test_an_exception_without_message_shows_its_number():
    with pytest.raises(cntr.EmptyContourError) as e:
        cntr.Contour([[0, 0]]).mean_position()
    assert str(e.value) == "error 0x10004680"
    assert e.value.message == "" and e.value.error_number == 0x10004680
    with pytest.raises(cntr.EmptyRegionSetError) as e:
        cntr.RegionSet().center_of_mass()
    assert str(e.value) == "error 0x10004682" and e.value.error_number == 0x10004682


def test_messages_are_the_libraries():
    with pytest.raises(cntr.ContourError) as e:
        cntr.Region(OUTER_4, holes=[[[3, 3], [5, 3], [5, 5]]])
    assert type(e.value) is cntr.BadParamsError
    assert str(e.value) == e.value.message == "holes cannot intersect region"
    assert e.value.error_number == 0x10004683
    with pytest.raises(cntr.MathError) as e:
        cntr.Contour([[0, 0], [math.inf, 1], [1, 1]]).convex_hull()
    assert type(e.value) is cntr.NotFiniteError
    assert str(e.value) == e.value.message == "convex hull: point 1 has a non-finite coordinate"


def test_archive_errors():
    with pytest.raises(cntr.BadFormatError, match="^not an archive"):
        cntr.Contour.from_bytes(b"nothing of the kind")
    data = cntr.Contour(UNIT_SQUARE).to_bytes()
    # The record ends with a 4-byte number: half of it is missing.
    with pytest.raises(cntr.TruncatedError, match="^archive data ends early: 4 bytes needed, 2 left$"):
        cntr.Contour.from_bytes(data[:-2])
    # The header, then a pointer record of an object (tag 1) of a class nobody registered.
    name = b"NoSuchClass"
    unknown = b"XCAR" + struct.pack("<I", 1) + b"\x01" + struct.pack("<I", len(name)) + name
    with pytest.raises(cntr.ArchiveError) as e:
        cntr.Region.from_bytes(unknown)
    assert type(e.value) is cntr.UnknownClassError
    assert e.value.error_number == 0x10001304
