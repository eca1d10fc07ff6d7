#!/usr/bin/env python3
"""Compares side-by-side benchmark results of two builds: the ratio ours / fastest peer, before
and after.

Reads the JSON files that the peers benchmark writes (--benchmark_out, the runs that
peers_report.py turns into tables) and prints a markdown table: per operation and input the
ratio before, after and its change in percent, and the change of our own median CPU time (the
peers' code is the same on both sides, so this one isolates ours). Further files are paired by
position (the second --before with the second --after, ...) and shown as repeat columns; the
last columns then give the median of each change over the pairs. An argument may join several
files (plain or gzipped) with commas, separate runs of different operations: their results are
pooled. The flag names the pairs whose ratio changed by more than --threshold percent; rows
without a peer time are judged on our time alone. Standard library only.

    bench/peers/compare_results.py --before OLD.json [OLD2.json ...]
                                   --after NEW.json [NEW2.json ...] [--threshold 5] [--out FILE]
"""

import argparse
import gzip
import json
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from peers_report import collect, format_time  # noqa: E402  (same directory)


def measures(paths):
    """{(operation, kind, size): (our microseconds or None, ratio or None)}, loads at start."""
    out, loads = {}, []
    for path in paths.split(","):
        with (gzip.open if path.endswith(".gz") else open)(path, "rt") as f:
            data = json.load(f)
        loads.append(data.get("context", {}).get("load_avg", []))
        for key, impls in collect(data).items():
            ours = impls.get("ours", (None, None))[0]
            peers = [t for name, (t, _) in impls.items() if name != "ours" and t is not None]
            out[key] = (ours, ours / min(peers) if ours is not None and peers else None)
    return out, loads


def change(before, after):
    if before is None or after is None or before == 0:
        return None
    return 100.0 * (after / before - 1.0)


def median(values):
    values = sorted(v for v in values if v is not None)
    if not values:
        return None
    middle = len(values) // 2
    return values[middle] if len(values) % 2 else (values[middle - 1] + values[middle]) / 2.0


def percent(value):
    return "-" if value is None else "%+.1f %%" % value


def ratio_text(value):
    return "-" if value is None else ("%.3f" % value if value >= 0.1 else "%.4f" % value)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--before", nargs="+", required=True)
    parser.add_argument("--after", nargs="+", required=True)
    parser.add_argument("--threshold", type=float, default=5.0)
    parser.add_argument("--out", help="write the table here as well as printing it")
    args = parser.parse_args()
    if len(args.before) != len(args.after):
        parser.error("give as many --after files as --before files")

    pairs = [(measures(b), measures(a)) for b, a in zip(args.before, args.after)]
    def runs(paths, loads):
        return "; ".join("%s (%s)" % (os.path.basename(p), ", ".join("%.2f" % x for x in load))
                         for p, load in zip(paths.split(","), loads))

    lines = ["Runs (load average at start):", ""]
    for i, (b, a) in enumerate(zip(args.before, args.after)):
        (_, load_b), (_, load_a) = pairs[i]
        lines.append("- pair %d: before %s; after %s" % (i + 1, runs(b, load_b), runs(a, load_a)))
    header = ["operation", "input", "before", "after", "change", "ours before", "ours after",
              "ours change"]
    for i in range(2, len(pairs) + 1):
        header += ["before (%d)" % i, "after (%d)" % i, "change (%d)" % i, "ours change (%d)" % i]
    if len(pairs) > 1:
        header += ["median change", "ours median change"]
    header.append("flag")
    lines += ["", "| " + " | ".join(header) + " |", "|" + "---|" * len(header)]

    first_before, first_after = pairs[0][0][0], pairs[0][1][0]
    flagged = [0] * len(pairs)
    for key in first_before:
        row = [key[0], key[1] + "/" + key[2]]
        over, changes, ours_changes = [], [], []
        for i, ((before, _), (after, _)) in enumerate(pairs):
            ours_b, ratio_b = before.get(key, (None, None))
            ours_a, ratio_a = after.get(key, (None, None))
            # The ratio decides; without a peer time, our own time does.
            decisive = change(ratio_b, ratio_a)
            if ratio_b is None and ratio_a is None:
                decisive = change(ours_b, ours_a)
            if decisive is not None and abs(decisive) > args.threshold:
                over.append(str(i + 1))
                flagged[i] += 1
            row += [ratio_text(ratio_b), ratio_text(ratio_a), percent(change(ratio_b, ratio_a))]
            if i == 0:
                row += [format_time(ours_b), format_time(ours_a)]
            row.append(percent(change(ours_b, ours_a)))
            changes.append(change(ratio_b, ratio_a))
            ours_changes.append(change(ours_b, ours_a))
        if len(pairs) > 1:
            row += [percent(median(changes)), percent(median(ours_changes))]
        row.append("**> %g %%: %s**" % (args.threshold, ", ".join(over)) if over else "")
        lines.append("| " + " | ".join(row) + " |")
    lines += ["", "Rows whose change exceeds %g %%, of %d: %s." % (
        args.threshold, len(first_before),
        ", ".join("%d in pair %d" % (n, i + 1) for i, n in enumerate(flagged)))]

    text = "\n".join(lines) + "\n"
    print(text, end="")
    if args.out:
        with open(args.out, "w") as f:
            f.write(text)


if __name__ == "__main__":
    main()
