#!/usr/bin/python3
"""Runs a program of pairs and prints a row for each pair that is asked for.

Usage: pair_rows.py PROGRAM < NAMES, a line a row: name of the benchmark | what | the other side | ratio | bound
ratio: "ours/other", or "other/ours" for "how many times faster". A benchmark whose
ratio has a bound is repeated until the ratio is known; the median counts, and behind a time is the span from the
smallest to the largest.
"""

import json
import statistics
import subprocess
import sys

from settling import ratio, settled


def milliseconds(times):
    median = statistics.median(times)
    unit, scale = ("ms", 1) if median >= 1 else ("us", 1000)
    low, middle, high = (f"{value * scale:.3g}" for value in (min(times), median, max(times)))
    return f"{middle} {unit} ({low} to {high})"


def rounds(program, name, bounded):
    """The benchmark's repetitions, (ours, other) in milliseconds. A ratio that has a bound is taken until it is known."""
    ours, other = [], []
    while not ours or (bounded and not settled(ours, other)):
        report = subprocess.run([program, f"--benchmark_filter=^{name}(/|$)", "--benchmark_format=json"],
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
        found = [entry for entry in json.loads(report.stdout)["benchmarks"] if entry["run_type"] == "iteration"]
        if not found:
            raise SystemExit(f"{program} measured no {name}")
        ours += [entry["ours_ms"] for entry in found]
        other += [entry["other_ms"] for entry in found]
    return ours, other


def main():
    for line in sys.stdin:
        name, what, other_side, form, bound = (field.strip() for field in line.split("|"))
        ours, other = rounds(sys.argv[1], name, bounded=bound != "-")
        times = ratio(ours, other)
        shown = f"{1 / times:.0f} times faster" if form == "other/ours" else f"{times:.2f}"
        print(f"{what} | {milliseconds(ours)} | {other_side} {milliseconds(other)} | {shown} | {bound}")


if __name__ == "__main__":
    main()
