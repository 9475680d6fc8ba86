#!/usr/bin/env python3
"""Outcomes of the library's conditions that the tests bring about, by folder, and those that none does.

coverage_report.py <report by file> <list of what never came> <llvm-cov show> <llvm-cov export>

A condition is what clang counts both outcomes of: an operand of && and ||, what an if, a loop or ?: decides on, a case. It
stands at its place in the source: what templates make of it, and each object that holds a copy of it, are the same
condition, and what came in one of them came. What the compiler knows beforehand is no condition.
"""
import collections
import json
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDERS = ("genapi", "ZqApi_TL", "ZqGenTLCommon", "ZqSDKCommon")
BRANCH, EXPANSION = 4, 1


def source_name(name):
    """The file as the checkout calls it, or None; a target may be told to leave the folder before its own out."""
    name = os.path.relpath(name, ROOT)
    parts = name.split("/")
    if parts[0] == "build":
        name = "/".join(parts[2:])
    return name if name.split("/")[0] in FOLDERS and os.path.exists(os.path.join(ROOT, name)) else None


def place_of(function, file_id, line, column):
    """The place, and for what a macro holds also where the macro stands."""
    place = [(function["filenames"][file_id], line, column)]
    expansions = {r[6]: r for r in function["regions"] if r[7] == EXPANSION}
    while file_id in expansions:
        region = expansions[file_id]
        file_id = region[5]
        place.insert(0, (function["filenames"][file_id], region[0], region[1]))
    return tuple((source_name(name), line, column) for name, line, column in place)


def known_beforehand(shown):
    """Places where the outcome is a constant, in one template instance at least."""
    places = set()
    name = None
    for line in shown:
        if line.startswith(ROOT) and line.endswith(":\n"):
            name = source_name(line[:-2])
        elif "[Folded" in line and name:
            place = re.search(r"\((\d+):(\d+)\)", line)
            places.add((name, int(place[1]), int(place[2])))
    return places


def read_outcomes(exported, folded):
    """How often each outcome came: place -> [end, true, false]."""
    outcomes = {}
    for function in exported["data"][0]["functions"]:
        for line, column, end_line, end_column, true, false, file_id, *_ in function["branches"]:
            place = place_of(function, file_id, line, column)
            if place[0][0] is None:
                continue
            if true == 0 and false == 0 and place[-1] in folded:
                continue
            known = outcomes.setdefault(place, [(end_line, end_column), 0, 0])
            known[1] += true
            known[2] += false
    return outcomes


def text_at(name, start, end):
    with open(os.path.join(ROOT, name)) as file:
        lines = file.read().split("\n")[start[0] - 1 : end[0]]
    lines[-1] = lines[-1][: end[1] - 1]
    lines[0] = lines[0][start[1] - 1 :]
    return " ".join(line.strip() for line in lines)


def write_missing(listed, outcomes):
    with open(listed, "w") as output:
        for place, (end, true, false) in sorted(outcomes.items()):
            never = [word for word, count in (("true", true), ("false", false)) if count == 0]
            if never:
                condition = text_at(place[-1][0], place[-1][1:], end)
                output.write(f"{place[0][0]}:{place[0][1]}:{place[0][2]}: never {' nor '.join(never)}: {condition}\n")


def table(outcomes, group):
    made, came = collections.Counter(), collections.Counter()
    for place, (_, true, false) in outcomes.items():
        for name in (group(place[0][0]), "all"):
            made[name] += 2
            came[name] += (true > 0) + (false > 0)
    width = max(len(name) for name in made)
    for name in sorted(made, key=lambda name: (name == "all", name)):
        yield f"{name:{width}} {came[name]:6} of {made[name]:6} outcomes, {100 * came[name] / made[name]:5.1f} %\n"


def main(report, listed, shown, exported):
    with open(shown, errors="replace") as file:
        folded = known_beforehand(file)
    with open(exported) as file:
        outcomes = read_outcomes(json.load(file), folded)
    write_missing(listed, outcomes)
    with open(report, "w") as output:
        output.writelines(table(outcomes, lambda name: name))
    sys.stdout.writelines(table(outcomes, lambda name: name.split("/")[0]))


main(*sys.argv[1:])
