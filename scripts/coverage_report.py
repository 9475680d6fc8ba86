#!/usr/bin/env python3
"""Branches of the library that the tests take, by folder, and the lines where one is not taken.

coverage_report.py <gcovr's JSON> <list of lines to write>

Counted are branches of lines that decide something. The compiler makes more of them: behind each call that may throw
it branches to where what exists by then is destroyed.
"""
import collections
import json
import re
import sys

DECISION = re.compile(r"\b(if|for|while|switch|case|assert|ZQ_ASSERT)\b|\?|&&|\|\|")
NOT_CODE = re.compile(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])*\'|//.*')


def decides(line):
    return DECISION.search(NOT_CODE.sub("", line)) is not None


def main(report, listed):
    made = collections.Counter()
    taken = collections.Counter()
    with open(report) as file, open(listed, "w") as output:
        for source in json.load(file)["files"]:
            name = source["file"]
            with open(name) as text:
                lines = text.read().split("\n")
            for line in source["lines"]:
                text = lines[line["line_number"] - 1]
                branches = [b for b in line.get("branches", []) if not b.get("throw")]
                if not branches or not decides(text):
                    continue
                reached = sum(b["count"] > 0 for b in branches)
                folder = name.split("/")[0]
                made[folder] += len(branches)
                taken[folder] += reached
                if reached < len(branches):
                    output.write(f"{name}:{line['line_number']}: {reached} of {len(branches)}: {text.strip()}\n")
    for folder in sorted(made) + ["all"]:
        of = sum(made.values()) if folder == "all" else made[folder]
        some = sum(taken.values()) if folder == "all" else taken[folder]
        print(f"{folder:15} {some:6} of {of:6} branches, {100 * some / of:.1f} %")


main(sys.argv[1], sys.argv[2])
