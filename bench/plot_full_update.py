"""Plots the time of a full update against the number of sounds, with the naive form, and prints a table.

Usage: plot_full_update.py RESULT.json PICTURE. RESULT.json is written by run_benchmarks.py; the extension of PICTURE
selects its format.
"""
import json
import sys
from collections import defaultdict
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot

KINDS = [("over", "64 channels", "tab:red"), ("within", "a channel for each", "tab:blue"),
         ("still", "a channel for each, no movement", "tab:green")]
SERIES = [("us_per_update", "Harmonet", "o-"), ("naive_us_per_update", "plain form", "s--")]


def read(result):
    """Returns the counters by kind and number of sounds."""
    table = defaultdict(dict)
    for benchmark in json.loads(Path(result).read_text())["benchmarks"]:
        words = benchmark["name"].split("/")
        if words[0] == "FullUpdate":
            table[words[1]][int(words[2])] = benchmark
    return table


def draw(table, picture):
    pyplot.figure(figsize=(7, 5))
    for kind, channels, colour in KINDS:
        for counter, whose, style in SERIES:
            points = sorted((count, row[counter]) for count, row in table[kind].items() if counter in row)
            if points:
                pyplot.loglog(*zip(*points), style, color=colour, markersize=4, label=f"{whose}, {channels}")
    pyplot.xlabel("sounds")
    pyplot.ylabel("microseconds for a full update")
    pyplot.grid(which="both", alpha=0.3)
    pyplot.legend(fontsize=8)
    pyplot.tight_layout()
    pyplot.savefig(picture, dpi=110)


def number(row, counter):
    return f"{row[counter]:,.0f}".replace(",", " ") if counter in row else "–"


def print_table(table):
    counts = sorted({count for rows in table.values() for count in rows})
    print("| sounds | " + " | ".join(f"{kind}, µs | plain form, µs" for kind, _, _ in KINDS) + " | bytes a sound |")
    print("|---" * (2 * len(KINDS) + 2) + "|")
    for count in counts:
        cells = [f"{count:,}".replace(",", " ")]
        for kind, _, _ in KINDS:
            row = table[kind].get(count, {})
            cells += [number(row, counter) for counter, _, _ in SERIES]
        cells.append(number(table["over"].get(count, {}), "bytes_per_sound"))
        print("| " + " | ".join(cells) + " |")


def main():
    result, picture = sys.argv[1:]
    table = read(result)
    if not table:
        print(f"{result} has no times of full updates", file=sys.stderr)
        return 1
    draw(table, picture)
    print_table(table)
    return 0


if __name__ == "__main__":
    sys.exit(main())
