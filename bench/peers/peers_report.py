#!/usr/bin/env python3
"""Runs the side-by-side benchmarks and prints the table of ratios, ours / fastest peer.

The benchmark names read "operation/kind/size/implementation"; "ours" is this library, every
other implementation a peer. For each operation, input family and size the table gives our
median CPU time, the fastest peer's, their ratio and the target the ratio must meet (at 16k and
256k vertices: 1.0, and 0.5 for the 1,000-segment intersections batch and for isSelfIntersecting
and locate on blobs; none at 1k). A peer whose answer disagreed with ours is shown with its error instead
of a time and takes no part in the ratio.

The table is printed and written, with a description of the machine, to
bench/results/<date>.md (or --out). Standard library only.

    bench/peers/peers_report.py [--binary PATH] [--repetitions N] [--json FILE] [--out FILE]
                                [-- extra benchmark arguments, e.g. --benchmark_filter=area]
"""

import argparse
import datetime
import json
import os
import platform
import subprocess
import sys
import tempfile
from collections import OrderedDict

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE_DIR = os.path.dirname(os.path.dirname(HERE))
DEFAULT_BINARY = os.path.join(SOURCE_DIR, "build", "bench", "bench", "peers", "peers_bench")
PEER_PACKAGES = ["libopencv-imgproc-dev", "libopencv-core-dev", "libboost-dev", "libgeos-dev",
                 "libpolyclipping-dev", "libbenchmark-dev"]
TARGET_SIZES = ("16k", "256k")
TO_MICROSECONDS = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}


def target(operation, kind, size):
    """The ratio that ours / fastest peer must not exceed, or None where no target applies."""
    if size not in TARGET_SIZES:
        return None
    if operation == "intersections" or (operation == "isSelfIntersecting" and kind == "blob"):
        return 0.5
    if operation == "locate" and kind == "blob":
        return 0.5
    return 1.0


def run_benchmarks(binary, repetitions, extra):
    fd, path = tempfile.mkstemp(suffix=".json")
    os.close(fd)
    command = [binary, "--benchmark_out=" + path, "--benchmark_out_format=json",
               "--benchmark_repetitions=%d" % repetitions] + extra
    if repetitions > 1:
        command.append("--benchmark_report_aggregates_only=true")
    print("running: " + " ".join(command), file=sys.stderr)
    subprocess.run(command, check=True, stdout=sys.stderr)
    with open(path) as f:
        data = json.load(f)
    os.remove(path)
    return data, command


def collect(data):
    """{(operation, kind, size): {implementation: (microseconds or None, error or None)}}."""
    results = OrderedDict()
    for b in data["benchmarks"]:
        if b.get("run_type") == "aggregate" and b.get("aggregate_name") != "median":
            continue
        name = b.get("run_name", b["name"])
        parts = name.split("/")
        if len(parts) != 4:
            continue
        operation, kind, size, implementation = parts
        slot = results.setdefault((operation, kind, size), OrderedDict())
        if b.get("error_occurred"):
            slot[implementation] = (None, b.get("error_message", "error"))
        else:
            slot[implementation] = (b["cpu_time"] * TO_MICROSECONDS[b["time_unit"]], None)
    return results


def format_time(us):
    if us is None:
        return "-"
    if us >= 1e6:
        return "%.3g s" % (us / 1e6)
    if us >= 1e3:
        return "%.3g ms" % (us / 1e3)
    return "%.3g us" % us


def rows(results):
    out = []
    for (operation, kind, size), impls in results.items():
        ours, ours_error = impls.get("ours", (None, "not run"))
        peers = {k: v for k, v in impls.items() if k != "ours"}
        timed = {k: t for k, (t, e) in peers.items() if t is not None}
        fastest = min(timed, key=timed.get) if timed else None
        ratio = ours / timed[fastest] if ours is not None and fastest else None
        goal = target(operation, kind, size)
        if ratio is None:
            verdict = "no ratio"
        elif goal is None:
            verdict = "-"
        else:
            verdict = "met" if ratio <= goal else "NOT MET"
        peer_text = ", ".join(
            "%s %s" % (k, format_time(t) if t is not None else "ERROR: " + e)
            for k, (t, e) in peers.items())
        out.append(OrderedDict([
            ("operation", operation), ("input", kind + "/" + size),
            ("ours", format_time(ours) if ours is not None else "ERROR: " + str(ours_error)),
            ("fastest peer", fastest or "-"),
            ("peer time", format_time(timed.get(fastest)) if fastest else "-"),
            ("ratio", "%.3f" % ratio if ratio is not None else "-"),
            ("target", "%.1f" % goal if goal is not None else "-"),
            ("verdict", verdict), ("all peers", peer_text)]))
    return out


def markdown_table(table):
    if not table:
        return "(no results)\n"
    header = list(table[0].keys())
    lines = ["| " + " | ".join(header) + " |", "|" + "---|" * len(header)]
    for r in table:
        lines.append("| " + " | ".join(str(r[h]).replace("|", "/") for h in header) + " |")
    return "\n".join(lines) + "\n"


def plain_table(table):
    columns = [c for c in (table[0].keys() if table else []) if c != "all peers"]
    widths = {c: max(len(c), *(len(str(r[c])) for r in table)) for c in columns}
    lines = ["  ".join(c.ljust(widths[c]) for c in columns)]
    for r in table:
        lines.append("  ".join(str(r[c]).ljust(widths[c]) for c in columns))
    return "\n".join(lines) + "\n"


def command_output(command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def cpu_model():
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor() or "unknown"


def memory():
    try:
        with open("/proc/meminfo") as f:
            kib = int(f.readline().split()[1])
        return "%.1f GiB" % (kib / 1048576.0)
    except (OSError, ValueError, IndexError):
        return "unknown"


def os_name():
    try:
        with open("/etc/os-release") as f:
            for line in f:
                if line.startswith("PRETTY_NAME="):
                    return line.split("=", 1)[1].strip().strip('"')
    except OSError:
        pass
    return platform.platform()


def machine(context, binary):
    versions = command_output(["dpkg-query", "-W", "-f=${Package} ${Version}\\n"] + PEER_PACKAGES)
    compiler = "unknown"
    cache = os.path.join(os.path.dirname(os.path.dirname(os.path.dirname(binary))),
                         "CMakeCache.txt")
    if os.path.exists(cache):
        with open(cache) as f:
            for line in f:
                if line.startswith("CMAKE_CXX_COMPILER:"):
                    compiler = command_output([line.split("=", 1)[1].strip(), "--version"])
                    compiler = compiler.splitlines()[0] if compiler else "unknown"
    caches = ", ".join("L%d %s %d KiB" % (c["level"], c["type"], c["size"] // 1024)
                       for c in context.get("caches", []))
    load = ", ".join("%.2f" % x for x in context.get("load_avg", []))
    return [
        ("CPU", "%s, %d logical CPUs at %d MHz" % (cpu_model(), context.get("num_cpus", 0),
                                                   context.get("mhz_per_cpu", 0))),
        ("Caches", caches or "unknown"),
        ("Memory", memory()),
        ("OS", "%s, kernel %s" % (os_name(), platform.release())),
        ("Compiler", compiler),
        ("Build", "Release (-O3); Google Benchmark library built as %s"
         % context.get("library_build_type", "unknown")),
        ("Load average at start", load or "unknown"),
        ("Peer packages", versions.replace("\n", "; ")),
    ]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--binary", default=DEFAULT_BINARY)
    parser.add_argument("--repetitions", type=int, default=3)
    parser.add_argument("--json", help="read these benchmark results instead of running")
    parser.add_argument("--out", help="the markdown file (default bench/results/<date>.md)")
    parser.add_argument("extra", nargs="*", help="arguments passed on to the benchmark")
    args = parser.parse_args()

    if args.json:
        with open(args.json) as f:
            data = json.load(f)
        command = ["(results read from %s)" % args.json]
    else:
        data, command = run_benchmarks(args.binary, args.repetitions, args.extra)
    table = rows(collect(data))
    print(plain_table(table))

    date = datetime.date.today().isoformat()
    out = args.out or os.path.join(SOURCE_DIR, "bench", "results", date + ".md")
    os.makedirs(os.path.dirname(out), exist_ok=True)
    with open(out, "w") as f:
        f.write("# Side-by-side benchmark results, %s\n\n" % date)
        f.write("Ratio = our median CPU time / the fastest peer's, first call (no cached "
                "result), on identical inputs in the same run. Targets apply at 16k and 256k "
                "vertices.\n\n## Machine\n\n")
        for key, value in machine(data.get("context", {}), args.binary):
            f.write("- %s: %s\n" % (key, value))
        f.write("\n## Command\n\n    %s\n\n## Ratios\n\n" % " ".join(command))
        f.write(markdown_table(table))
    print("written: " + out, file=sys.stderr)


if __name__ == "__main__":
    main()
