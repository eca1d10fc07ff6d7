"""Circle, Ellipse and the enumerations."""

import math
import pickle

import cntr


def test_circle_holds_centre_and_radius():
    c = cntr.Circle((1, 2), 3)
    assert c.center == (1.0, 2.0)
    assert c.radius == 3.0
    assert c == cntr.Circle([1.0, 2.0], 3.0)
    assert c != cntr.Circle((1, 2), 3.5)
    assert pickle.loads(pickle.dumps(c)) == c
    assert eval(repr(c), {"cntr": cntr}) == c


def test_ellipse_holds_its_geometry_and_flags():
    e = cntr.Ellipse((0.5, -1), 3, 1, rotation=math.pi / 6)
    assert e.center == (0.5, -1.0)
    assert (e.r1, e.r2, e.rotation) == (3.0, 1.0, math.pi / 6)
    assert (e.flag1, e.flag2) == (False, False)
    assert e == cntr.Ellipse((0.5, -1), 3, 1, math.pi / 6)
    assert e != cntr.Ellipse((0.5, -1), 3, 1, math.pi / 6, flag1=True)
    flagged = cntr.Ellipse((0, 0), 2, 1, 0, flag1=True, flag2=True)
    assert pickle.loads(pickle.dumps(flagged)) == flagged
    assert eval(repr(e), {"cntr": cntr}) == e


def test_enumerations_keep_the_library_values():
    # Values as the library's headers number them.
    assert int(cntr.DiameterMode.furthest_vertex_pair) == 0
    assert int(cntr.DiameterMode.from_first_vertex) == 1
    assert int(cntr.IntersectionMode.keep_outline) == 0
    assert int(cntr.IntersectionMode.use_outer_hull) == 1
    assert int(cntr.IntersectionMode.use_regularized) == 2
    names = [
        "none", "too_few_vertices", "zero_area", "self_crossing", "self_overlap", "rings_cross",
        "rings_overlap", "hole_outside", "holes_nested", "members_overlap",
    ]
    assert [int(getattr(cntr.ValidityProblem, n)) for n in names] == list(range(10))


def test_classes_present_themselves_under_the_package():
    assert cntr.Polygon.__module__ == "cntr"
    assert cntr.Contour.__module__ == "cntr"
    assert pickle.dumps(cntr.Circle((0, 0), 1)).find(b"cntr") >= 0
