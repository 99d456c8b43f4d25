#!/usr/bin/python3
"""Runs a program of pairs and prints a row for each pair that is asked for.

Usage: pair_rows.py PROGRAM < NAMES, a line a row: name of the benchmark | what | the other side | ratio | bound
ratio: "ours/other", or "other/ours" for "how many times faster". The median of the repetitions counts on either
side; behind it the span from the smallest to the largest.
"""

import json
import statistics
import subprocess
import sys


def milliseconds(times):
    median = statistics.median(times)
    unit, scale = ("ms", 1) if median >= 1 else ("us", 1000)
    low, middle, high = (f"{value * scale:.3g}" for value in (min(times), median, max(times)))
    return f"{middle} {unit} ({low} to {high})"


def main():
    report = subprocess.run([sys.argv[1], "--benchmark_format=json"], stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL, check=True)
    rounds = [entry for entry in json.loads(report.stdout)["benchmarks"] if entry["run_type"] == "iteration"]
    for line in sys.stdin:
        name, what, other_side, ratio, bound = (field.strip() for field in line.split("|"))
        mine = [entry for entry in rounds if entry["name"].split("/")[0] == name]
        if not mine:
            raise SystemExit(f"{sys.argv[1]} measured no {name}")
        ours = [entry["ours_ms"] for entry in mine]
        other = [entry["other_ms"] for entry in mine]
        times = statistics.median(ours) / statistics.median(other)
        if ratio == "other/ours":
            shown = f"{1 / times:.0f} times faster"
        else:
            shown = f"{times:.2f}"
        print(f"{what} | {milliseconds(ours)} | {other_side} {milliseconds(other)} | {shown} | {bound}")


if __name__ == "__main__":
    main()
