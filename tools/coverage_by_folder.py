#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Adds up what gcovr has counted for each folder, and names the files that are not covered whole.

Usage: coverage_by_folder.py <gcovr's --json-summary> [FOLDER=PERCENT]...
Exit code: 0; 1 when a folder has fewer of its lines covered than named; 2 wrong arguments."""

import json
import os
import sys
from collections import defaultdict

KINDS = ("line", "branch")


def folder_of(name):
    """The top-level folder of a file; what stands deeper counts for it too."""
    return name.split(os.sep)[0]


def percent(counts, kind):
    total = counts[kind + "_total"]
    return 100.0 * counts[kind + "_covered"] / total if total else 100.0


def add_up(files):
    folders = defaultdict(lambda: defaultdict(int))
    for file in files:
        for kind in KINDS:
            for what in ("_total", "_covered"):
                folders[folder_of(file["filename"])][kind + what] += file[kind + what]
    return folders


def print_table(rows):
    print(f"{'':60} {'lines':>16} {'branches':>16}")
    for name, counts in sorted(rows):
        cells = [f"{counts[k + '_covered']}/{counts[k + '_total']} {percent(counts, k):5.1f} %" for k in KINDS]
        print(f"{name:60} {cells[0]:>16} {cells[1]:>16}")


def main():
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    with open(sys.argv[1], encoding="utf-8") as summary:
        files = json.load(summary)["files"]
    folders = add_up(files)
    print("Files with lines that no test has run:")
    print_table((f["filename"], f) for f in files if f["line_covered"] < f["line_total"])
    print("\nFolders:")
    print_table(folders.items())
    outcome = 0
    for folder, wanted in (argument.split("=") for argument in sys.argv[2:]):
        if percent(folders[folder], "line") < float(wanted):
            print(f"{folder}/ has less than {wanted} % of its lines covered", file=sys.stderr)
            outcome = 1
    return outcome


if __name__ == "__main__":
    sys.exit(main())
