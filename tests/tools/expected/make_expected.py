#!/usr/bin/env python3
"""Writes the expected `cntrtool measure` outputs for examples/data/shapes.json from values
computed by hand (the arithmetic is in the comments), never from the tool's output.

    python3 make_expected.py   # writes shapes_measure.txt and shapes_measure.json here

"*" stands for a value that the documents leave undefined: the rotation of an ellipse whose
radii are equal (a circle has no direction). N marks a
measure that is not available (n/a in the table, null in JSON).

The fitted ellipse is the ellipse fit's for 5 vertices or more (5 points determine a conic: on
a circle, that circle); with fewer the ellipse fit refuses ("at least 5 needed") and the circle
fit stands in: fit "circle", rotation not available (a circle has no direction).
"""
import json
import math

N = None
STAR = "*"
CIRCLE_ROTATION = "a circle has no direction"


def circle_reason(points):
    """The ellipse fit's refusal of fewer than 5 points, as the foundation words it."""
    return "the ellipse fit failed: ellipse fit: %d points, 0 to ignore, at least 5 needed" % points
S2 = math.sqrt(2.0)
PI2 = math.pi ** 2


def moment_radii(a, b):
    """Semi-axes of the solid ellipse with principal moments a (along r1) and b."""
    return (16 * a ** 3 / (PI2 * b)) ** 0.125, (16 * b ** 3 / (PI2 * a)) ** 0.125


def principal(xx, xy, yy):
    """Rotation (degrees) atan2(2 xy, xx - yy) / 2 and the moments along and across it."""
    t = math.atan2(2 * xy, xx - yy) / 2
    c, s = math.cos(t), math.sin(t)
    a = xx * c * c + 2 * xy * s * c + yy * s * s
    b = xx * s * s - 2 * xy * s * c + yy * c * c
    return math.degrees(t), a, b


# Right triangle with legs p (along x) and q (along y) meeting at a right angle: central
# moments xx = q p^3 / 36, yy = p q^3 / 36, xy = -p^2 q^2 / 72 (the hypotenuse falls to +x, +y).
def right_triangle(p, q):
    return q * p ** 3 / 36, -(p * p * q * q) / 72, p * q ** 3 / 36


def ellipse_of(xx, xy, yy):
    rot, a, b = principal(xx, xy, yy)
    r1, r2 = moment_radii(a, b)
    return r1, r2, rot


rows = []


def row(index, kind, label, vertices, holes, length, area, area_outline, centroid, inertia, mom,
        fit, rms, hull, diameter, crossing, fit_points=None, unavailable=None):
    """fit_points: the number of vertices the fit sees (the circle stands in below 5);
    unavailable: the reasons of the measures not available, in the order they are measured."""
    fit_kind = None if fit is None else ("ellipse" if fit_points >= 5 else "circle")
    if fit_kind == "circle":
        fit = fit[:4] + (N,)
    rows.append(dict(index=index, kind=kind, label=label, vertices=vertices, holes=holes,
                     length=length, area=area, area_outline=area_outline, centroid=centroid,
                     inertia=inertia, mom=mom, fit=fit, fit_kind=fit_kind, fit_points=fit_points,
                     rms=rms, hull=hull, diameter=diameter, crossing=crossing,
                     unavailable=unavailable or {}))


# 0 bow-tie (0,0) (4,4) (4,0) (0,4): two diagonals of length sqrt(32) and two sides of 4; the
# shoelace terms 0, -16, 16, 0 cancel, so the area is 0 and the centroid the library's (0, 0)
# for a zero total weight: a convention, not a value, so the centroid is not available, nor
# the central moments about it, nor the moment ellipse. 4 vertices: the circle fit through the square's corners,
# centre (2, 2), radius sqrt(8). Hull: the 4x4 square.
row(0, "region", 1, 4, 0, 2 * math.sqrt(32) + 8, 0, 0, N, (N, N, N),
    (N, N, N), (2, 2, math.sqrt(8), math.sqrt(8), 0), 0, 16, math.sqrt(32), "yes", 4,
    {"centroid": "the outline encloses no area: the library gives the centroid (0, 0) by convention",
     "inertia": "a shape whose net area is 0 has no centroid to take central moments about",
     "moment_ellipse": "needs the inertia, which is not available",
     "fitted_ellipse.rotation_deg": CIRCLE_ROTATION})

# 1 pentagram {5/2} on the circle of radius R = 3 about (10, 2): 5 chords of 144 degrees,
# 2 R sin 72 each. Net (winding) area: 5 fan triangles of area R^2 sin(144) / 2. Each fan
# triangle's polar moment about the centre is A R^2 (2 + cos 144) / 6; five-fold symmetry
# splits it equally between xx and yy, xy = 0. The 5 vertices lie on the circle: the ellipse
# fit gives it, rotation undefined. Hull: the regular pentagon, 5/2 R^2 sin 72; diameter: the
# 144-degree chord.
R = 3.0
A1 = 5 * R * R * math.sin(math.radians(144)) / 2
J1 = A1 * R * R * (2 + math.cos(math.radians(144))) / 6
r = moment_radii(J1 / 2, J1 / 2)
row(1, "region", 2, 5, 0, 5 * 2 * R * math.sin(math.radians(72)), A1, A1, (10, 2),
    (J1 / 2, 0, J1 / 2), (r[0], r[1], STAR), (10, 2, 3, 3, STAR), 0,
    2.5 * R * R * math.sin(math.radians(72)), 2 * R * math.sin(math.radians(72)), "yes", 5)

WITH_HOLES = {"inertia": "inertiaMatrix(considerHoles) is not implemented",
              "moment_ellipse": "needs the inertia, which is not available",
              "fitted_ellipse.rotation_deg": CIRCLE_ROTATION}

# 2 square [16,26]x[0,10] with holes [17,19]x[1,3] (4) and [22,25]x[6,9] (9): area 100 - 13;
# centroid (100 (21,5) - 4 (18,2) - 9 (23.5,7.5)) / 87. No inertia with holes.
# The fit sees the 4 outline vertices.
row(2, "region", 3, 12, 2, 40, 87, 100, (1816.5 / 87, 424.5 / 87), (N, N, N), (N, N, N),
    (21, 5, math.sqrt(50), math.sqrt(50), 0), 0, 100, math.sqrt(200), "no", 4, WITH_HOLES)

# 3 square [30,40]x[0,10], hole [32,38]x[2,8] (36) holding the island [34,36]x[4,6]: the hole
# counts with its outline area, so 100 - 36; centroid (100 (35,5) - 36 (35,5)) / 64.
row(3, "region", 4, 12, 1, 40, 64, 100, (35, 5), (N, N, N), (N, N, N),
    (35, 5, math.sqrt(50), math.sqrt(50), 0), 0, 100, math.sqrt(200), "no", 4, WITH_HOLES)

# 4 set: square of side 6 about (7,-10) and the same square turned 45 degrees (circumradius
# 3 sqrt 2, side 6). Areas 36 + 36; each square's central moments 6^4 / 12 = 108 on both axes;
# the union's 216, 216, 0. The 8 vertices lie on the circle of radius 3 sqrt 2: the fit is that
# circle. Hull: the regular octagon, 2 sqrt(2) R^2 with R^2 = 18; diameter 2 R.
r = moment_radii(216, 216)
row(4, "regionset", 5, 8, 0, 48, 72, 72, (7, -10), (216, 0, 216), (r[0], r[1], STAR),
    (7, -10, 3 * S2, 3 * S2, STAR), 0, 2 * S2 * 18, 6 * S2, "yes", 8)

# 5 open contour (16,-15) (19,-11) (22,-15): edges of 5 and 5; the wire centroid is the mean of
# the midpoints (17.5,-13) and (20.5,-13). Circle through the 3 points: centre (19, y) with
# 9 + (y + 15)^2 = (y + 11)^2, y = -14.125, radius 3.125. Hull: the triangle, 6 * 4 / 2.
OPEN = "an open contour encloses no area"
OPEN_CONTOUR = {"area": OPEN, "area_without_holes": OPEN, "inertia": OPEN, "moment_ellipse": OPEN,
                "fitted_ellipse.rotation_deg": CIRCLE_ROTATION}
row(5, "contour", 6, 3, 0, 10, N, N, (19, -13), (N, N, N), (N, N, N),
    (19, -14.125, 3.125, 3.125, 0), 0, 12, 6, "no", 3, OPEN_CONTOUR)

# 6 closed contour (26,-17) (32,-17) (26,-9): legs 6 and 8, hypotenuse 10; area 24; centroid
# (26 + 6/3, -17 + 8/3). The circumcircle's centre is the hypotenuse's midpoint (29,-13).
xx, xy, yy = right_triangle(6, 8)
row(6, "contour", 7, 3, 0, 24, 24, 24, (28, -17 + 8 / 3), (xx, xy, yy), ellipse_of(xx, xy, yy),
    (29, -13, 5, 5, 0), 0, 24, 10, "no", 3, {"fitted_ellipse.rotation_deg": CIRCLE_ROTATION})

# 7 square [36,44]x[-17,-9] whose hole [42,46]x[-15,-11] crosses it: the library refuses the
# hole, so every measure with holes is n/a; the outline's area is 64.
REFUSED = "the library refused the holes of the outline (holes cannot intersect region)"
row(7, "region", 8, 8, 1, 32, N, 64, N, (N, N, N), (N, N, N),
    (40, -13, math.sqrt(32), math.sqrt(32), 0), 0, 64, math.sqrt(128), "no", 4,
    {"area": REFUSED, "centroid": REFUSED, "inertia": REFUSED,
     "moment_ellipse": "needs the inertia, which is not available",
     "fitted_ellipse.rotation_deg": CIRCLE_ROTATION})

# 8 triangle (0,-28) (4,-28) (4,-28) (0,-25) with a repeated vertex: legs 4 and 3, hypotenuse
# 5, area 6, centroid (4/3, -28 + 1); circle through the corners centred on the hypotenuse's
# midpoint (2,-26.5). Whether the library counts the two edges that meet at the repeated
# vertex as crossing is not derived here.
xx, xy, yy = right_triangle(4, 3)
row(8, "region", 9, 4, 0, 12, 6, 6, (4 / 3, -27), (xx, xy, yy), ellipse_of(xx, xy, yy),
    (2, -26.5, 2.5, 2.5, 0), 0, 6, 5, STAR, 4, {"fitted_ellipse.rotation_deg": CIRCLE_ROTATION})

# 9 region of 2 vertices (8,-28) (10,-26): the closed outline's two edges of sqrt(8); the region
# measures are refused (3 vertices needed: the library's EmptyContour, which carries no
# message); neither fit works on 2 points; the hull is a segment (area 0); diameter sqrt(8).
TOO_FEW = "too few vertices"
row(9, "region", 10, 2, 0, 2 * math.sqrt(8), N, N, N, (N, N, N), (N, N, N), N, N, 0,
    math.sqrt(8), "no", 2,
    {"area_without_holes": TOO_FEW, "area": TOO_FEW, "centroid": TOO_FEW, "inertia": TOO_FEW,
     "moment_ellipse": "needs the inertia, which is not available",
     "fitted_ellipse": "neither the ellipse nor the circle fit works on these vertices"})

# 10 open edgelet contour (14,-28) (18,-28) (18,-25): edges 4 and 3; wire centroid
# (4 (16,-28) + 3 (18,-26.5)) / 7; circle centred on the hypotenuse's midpoint (16,-26.5).
row(10, "edgelet-contour", 11, 3, 0, 7, N, N, (118 / 7, -191.5 / 7), (N, N, N), (N, N, N),
    (16, -26.5, 2.5, 2.5, 0), 0, 6, 5, "no", 3, OPEN_CONTOUR)

# 11 set: the 6x2 rectangle [21,27]x[-27,-25] and the 2x6 rectangle [23,25]x[-29,-23], crossed
# about (24,-26). Areas 12 + 12; central moments w^3 h / 12 and w h^3 / 12: 36 and 4, then 4
# and 36, so 40 and 40, xy 0 (both centred on (24,-26)). All 8 corners lie sqrt(3^2 + 1^2)
# from the centre: the fit is that circle. Hull: the octagon (+-3,+-1), (+-1,+-3): the 6x6
# square less 4 corner triangles of area 2; diameter: (3,1) to (-3,-1), sqrt(40).
r = moment_radii(40, 40)
row(11, "regionset", 12, 8, 0, 32, 24, 24, (24, -26), (40, 0, 40), (r[0], r[1], STAR),
    (24, -26, math.sqrt(10), math.sqrt(10), STAR), 0, 28, math.sqrt(40), "yes", 8)


def text(v):
    if v is None:
        return "n/a"
    if isinstance(v, str):
        return v
    return "%.9g" % v


HEADER = ("index kind label vertices holes length area area_outline centroid_x centroid_y "
          "inertia_xx inertia_xy inertia_yy mom_r1 mom_r2 mom_rot fit fit_cx fit_cy fit_r1 fit_r2 "
          "fit_rot fit_rms hull_area diameter self_crossing")


def table_line(d):
    c = d["centroid"] or (None, None)
    f = d["fit"] or (None,) * 5
    cells = [d["index"], d["kind"], d["label"], d["vertices"], d["holes"], d["length"], d["area"],
             d["area_outline"], c[0], c[1], *d["inertia"], *d["mom"], d["fit_kind"], *f, d["rms"], d["hull"],
             d["diameter"], d["crossing"]]
    return " ".join(text(x) for x in cells)


def json_value(v):
    return v  # None -> null, "*" stays a string token


def fitted_json(d):
    f = d["fit"]
    if not f:
        return None
    out = {"fit": d["fit_kind"], "center": [f[0], f[1]], "r1": f[2], "r2": f[3], "rotation_deg": f[4]}
    if d["fit_kind"] == "circle":
        out["fallback_reason"] = circle_reason(d["fit_points"])
    out["rms"] = d["rms"]
    return out


def shape_json(d):
    kind = d["kind"].replace("edgelet-", "")
    c = d["centroid"]
    xx, xy, yy = d["inertia"]
    mom = d["mom"]
    f = d["fit"]
    out = {"index": d["index"], "kind": kind, "edgelet": d["kind"].startswith("edgelet"),
           "label": d["label"], "vertices": d["vertices"], "holes": d["holes"],
           "length": d["length"], "area": d["area"], "area_without_holes": d["area_outline"],
           "centroid": list(c) if c else None,
           "inertia": [[xx, xy], [xy, yy]] if xx is not None else None,
           "moment_ellipse": ({"center": list(c), "r1": mom[0], "r2": mom[1], "rotation_deg": mom[2]}
                              if mom[0] is not None else None),
           "fitted_ellipse": fitted_json(d),
           "hull_area": d["hull"], "diameter": d["diameter"],
           "self_intersecting": {"yes": True, "no": False}.get(d["crossing"], d["crossing"])}
    if d["unavailable"]:
        out["unavailable"] = d["unavailable"]
    return out


with open("shapes_measure.txt", "w") as f:
    f.write(HEADER + "\n")
    for d in rows:
        f.write(table_line(d) + "\n")

report = {"file": "shapes.json", "shapes": [shape_json(d) for d in rows]}
with open("shapes_measure.json", "w") as f:
    f.write(json.dumps(report, indent=1) + "\n")
