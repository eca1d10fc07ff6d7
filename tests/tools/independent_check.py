#!/usr/bin/env python3
"""Checks cntrtool's outputs for a COCO-style file against an independent computation written
here from the textbook formulas (shoelace area and centroid, monotone-chain hull, pairwise
distances, segment crossing tests, even-odd point location).

usage: independent_check.py COCO.json MEASURE.json CHECK.txt
       independent_check.py --repair COCO.json REPAIRED.json REPAIR_STDERR.txt CHECK_OF_REPAIRED.txt
The first form checks `measure --json` and `check`. The second checks `repair`: every
annotation it changed now crosses nowhere and still reaches every vertex of its old polygons;
every other annotation is unchanged; and the shapes that `check` still finds crossing are
exactly those that `repair` named as not repaired.
Exit status 0 when everything agrees, 1 otherwise (the differences are printed).
"""
import itertools
import json
import math
import re
import sys

# Relative: the report writes every double exactly, so what remains is the difference between
# two summation orders of the same formulas.
TOLERANCE = 1e-9
# The library's centroid of a polygon is (0, 0) by convention when its cross products sum to
# within this of 0; the tool then reports none.
CENTROID_THRESHOLD = 1e-6
MEASURES = ("length", "area", "area_without_holes", "centroid", "inertia", "moment_ellipse",
            "fitted_ellipse", "hull_area", "diameter", "self_intersecting")


def polygons_of(annotation):
    seg = annotation["segmentation"]
    if not isinstance(seg, list) or not seg:
        return None
    return [list(zip(p[0::2], p[1::2])) for p in seg]


def signed_area(poly):
    return sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in zip(poly, poly[1:] + poly[:1])) / 2


def centroid(poly):
    a = signed_area(poly)
    cx = sum((x0 + x1) * (x0 * y1 - x1 * y0) for (x0, y0), (x1, y1) in zip(poly, poly[1:] + poly[:1]))
    cy = sum((y0 + y1) * (x0 * y1 - x1 * y0) for (x0, y0), (x1, y1) in zip(poly, poly[1:] + poly[:1]))
    return cx / (6 * a), cy / (6 * a)


def perimeter(poly):
    return sum(math.dist(p, q) for p, q in zip(poly, poly[1:] + poly[:1]))


def hull_area(points):
    pts = sorted(set(points))
    if len(pts) < 3:
        return 0.0

    def cross(o, a, b):
        return (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0])

    lower, upper = [], []
    for p in pts:
        while len(lower) >= 2 and cross(lower[-2], lower[-1], p) <= 0:
            lower.pop()
        lower.append(p)
    for p in reversed(pts):
        while len(upper) >= 2 and cross(upper[-2], upper[-1], p) <= 0:
            upper.pop()
        upper.append(p)
    return abs(signed_area(lower[:-1] + upper[:-1]))


def diameter(points):
    return max(math.dist(p, q) for p, q in itertools.combinations(points, 2))


def segments_cross(a, b, c, d):
    def orient(p, q, r):
        v = (q[0] - p[0]) * (r[1] - p[1]) - (q[1] - p[1]) * (r[0] - p[0])
        return (v > 0) - (v < 0)
    return (orient(a, b, c) * orient(a, b, d) < 0) and (orient(c, d, a) * orient(c, d, b) < 0)


def edges(poly):
    return list(zip(poly, poly[1:] + poly[:1]))


def self_crossing(poly):
    e = edges(poly)
    n = len(e)
    for i in range(n):
        for j in range(i + 2, n):
            if i == 0 and j == n - 1:
                continue  # adjacent through the closing vertex
            if segments_cross(*e[i], *e[j]):
                return True
    return False


def outlines_cross(p, q):
    return any(segments_cross(*a, *b) for a in edges(p) for b in edges(q))


def on_segment(p, a, b, tolerance=1e-6):
    (px, py), (ax, ay), (bx, by) = p, a, b
    dx, dy = bx - ax, by - ay
    length2 = dx * dx + dy * dy
    t = 0.0 if length2 == 0 else max(0.0, min(1.0, ((px - ax) * dx + (py - ay) * dy) / length2))
    return math.hypot(px - ax - t * dx, py - ay - t * dy) <= tolerance


def covered(p, poly):
    """Inside (even-odd) or on the boundary."""
    if any(on_segment(p, a, b) for a, b in edges(poly)):
        return True
    inside = False
    for (ax, ay), (bx, by) in edges(poly):
        if (ay > p[1]) != (by > p[1]) and p[0] < ax + (p[1] - ay) * (bx - ax) / (by - ay):
            inside = not inside
    return inside


def degenerate_text(poly):
    area = abs(signed_area(poly))
    if area == 0:
        return "encloses no area (its net area is 0): it has no centroid"
    return ("encloses an area of %.6g, below the library's centroid threshold (cross products "
            "summing to within 1e-6 of 0): it has no centroid" % area)


def check_area_and_box(index, annotation, polygons):
    """A repaired annotation's area is its polygons' (they no longer cross, so each one's
    absolute shoelace area), its bbox the box round their vertices."""
    errors = []
    area = sum(abs(signed_area(p)) for p in polygons)
    if not close(annotation.get("area", float("nan")), area):
        errors.append("annotation %d: area %s, expected %s" % (index, annotation.get("area"), area))
    xs = [x for p in polygons for x, _ in p]
    ys = [y for p in polygons for _, y in p]
    box = [min(xs), min(ys), max(xs) - min(xs), max(ys) - min(ys)]
    got = annotation.get("bbox", [])
    if len(got) != 4 or not all(close(g, b) for g, b in zip(got, box)):
        errors.append("annotation %d: bbox %s, expected %s" % (index, got, box))
    return errors


def check_repair(coco, repaired, repair_err, check):
    original = json.load(open(coco))["annotations"]
    result = json.load(open(repaired))["annotations"]
    refused = {int(m) for m in re.findall(r"shape (\d+): cannot be repaired", open(repair_err).read())}
    still = {int(m) for m in re.findall(r"^shape (\d+) .*: (?:self-crossing|regions-cross):",
                                        open(check).read(), re.M)}
    errors = []
    if still != refused:
        errors.append("still crossing %s, named as not repaired %s" % (sorted(still), sorted(refused)))
    for index, (old, new) in enumerate(zip(original, result)):
        if old == new:
            continue
        rewritten = ("segmentation", "area", "bbox")
        if {k: v for k, v in old.items() if k not in rewritten} != {k: v for k, v in new.items() if k not in rewritten}:
            errors.append("annotation %d: more than its segmentation, area and bbox changed" % index)
        before, after = polygons_of(old), polygons_of(new)
        errors += check_area_and_box(index, new, after)
        if any(self_crossing(p) for p in after) or any(
                outlines_cross(a, b) for a, b in itertools.combinations(after, 2)):
            errors.append("annotation %d: the repaired polygons still cross" % index)
        lost = [p for poly in before for p in poly if not any(covered(p, q) for q in after)]
        if lost:
            errors.append("annotation %d: the repaired polygons leave out %s" % (index, lost))
    for e in errors:
        print(e)
    return 1 if errors else 0


def close(a, b):
    return abs(a - b) <= TOLERANCE * max(1.0, abs(b))


def main():
    if sys.argv[1] == "--repair":
        return check_repair(*sys.argv[2:6])
    coco, measure, check = sys.argv[1:4]
    annotations = json.load(open(coco))["annotations"]
    reported = {s["index"]: s for s in json.load(open(measure))["shapes"]}
    problems = open(check).read().splitlines()
    errors = []
    expected_problems = []
    expected_indices = []
    for index, annotation in enumerate(annotations):
        polys = polygons_of(annotation)
        if polys is None:
            continue
        expected_indices.append(index)
        s = reported.get(index)
        if s is None:
            errors.append("annotation %d is not measured" % index)
            continue
        areas = [abs(signed_area(p)) for p in polys]
        centroids = [centroid(p) for p in polys]
        points = [pt for p in polys for pt in p]
        total = sum(areas)
        # A set's centroid is the area-weighted mean of its regions' centroids; a region's is
        # its polygon's (the formula uses signed areas, so the orientation cancels).
        cx = sum(a * c[0] for a, c in zip(areas, centroids)) / total
        cy = sum(a * c[1] for a, c in zip(areas, centroids)) / total
        crossing = [self_crossing(p) for p in polys]
        pairs = [(i, j) for i, j in itertools.combinations(range(len(polys)), 2)
                 if outlines_cross(polys[i], polys[j])]
        want = {"length": sum(perimeter(p) for p in polys), "area": total,
                "area_without_holes": total, "hull_area": hull_area(points),
                "diameter": diameter(points)}
        degenerate = [2 * abs(signed_area(p)) <= CENTROID_THRESHOLD for p in polys]
        if any(d and a != 0 for d, a in zip(degenerate, areas)) or total == 0:
            if s["centroid"] is not None:
                errors.append("annotation %d: centroid %r of a degenerate area" % (index, s["centroid"]))
        elif not any(crossing):  # a crossing outline's net area is not its absolute shoelace value
            want["centroid_x"], want["centroid_y"] = cx, cy
        for field in MEASURES:
            if s[field] is None and field not in s.get("unavailable", {}):
                errors.append("annotation %d: %s is null without a reason" % (index, field))
        got = dict(s)
        if s["centroid"] is not None:
            got.update(centroid_x=s["centroid"][0], centroid_y=s["centroid"][1])
        for key, value in want.items():
            if got.get(key) is None or not close(got[key], value):
                errors.append("annotation %d: %s is %r, expected %r" % (index, key, got.get(key), value))
        if s["self_intersecting"] != (any(crossing) or bool(pairs)):
            errors.append("annotation %d: self_intersecting is %r" % (index, s["self_intersecting"]))
        if s["label"] != annotation["category_id"]:
            errors.append("annotation %d: label %r" % (index, s["label"]))
        for k, (c, d) in enumerate(zip(crossing, degenerate)):
            where = "the outline" if len(polys) == 1 else "region %d" % k
            if d:
                expected_problems.append((index, "degenerate-area", where + " " + degenerate_text(polys[k])))
            if c:
                expected_problems.append((index, "self-crossing", where + " crosses itself"))
        for i, j in pairs:
            expected_problems.append((index, "regions-cross", "regions %d and %d cross each other" % (i, j)))
    if sorted(reported) != expected_indices:
        errors.append("measured shapes %s, expected %s" % (sorted(reported), expected_indices))

    line = re.compile(r"^shape (\d+) \((region|regionset), label \d+\): ([a-z-]+): (.*)$")
    got_problems = []
    for text in problems[:-1]:
        m = line.match(text)
        if not m:
            errors.append("unexpected check line: " + text)
            continue
        got_problems.append((int(m.group(1)), m.group(3), m.group(4)))
    if sorted(got_problems) != sorted(expected_problems):
        errors.append("check reports %s\nexpected %s" % (sorted(set(got_problems) ^ set(expected_problems)), ""))
    summary = "%d problems in %d of %d shapes" % (
        len(expected_problems), len({p[0] for p in expected_problems}), len(expected_indices))
    if not expected_problems:
        summary = "no problems in %d shapes" % len(expected_indices)
    if not problems or problems[-1] != summary:
        errors.append("summary %r, expected %r" % (problems[-1] if problems else "", summary))
    for e in errors:
        print(e)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
