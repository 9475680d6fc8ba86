#!/usr/bin/env python3
"""Breaks the library in the ways of tests/mutations/table.txt, one at a time, and says which the suites see.

    scripts/mutations.py [--work FOLDER] [PART OF A NAME OR OF A FILE'S PATH...]

Works on a copy of the tree with a build of its own, both kept in the work folder (build/mutations) for the
next run. Ends with 1 when more than two mutations survive, or when the table no longer fits the sources.
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
# The quicker ones first; the first failure ends a mutation. A suite is built when its turn comes.
GENAPI_SUITES = ["unit_genapi", "unit_genapi_allocations"]
SUITES = ["unit_ZqSDKCommon", "unit_ZqGenTLCommon", "unit_ZqApi_TL", "integration_zqapi", "faults"]
SHARDS = 2
TIMEOUT_S = 300
SURVIVORS_ALLOWED = 2


class Mutation:
    def __init__(self, name):
        self.name, self.file, self.before, self.after = name, "", [], []

    def apply(self, tree):
        path = tree / self.file
        text = path.read_text()
        before = "\n".join(self.before)
        if text.count(before) != 1:
            raise ValueError(f"{self.name}: stands {text.count(before)} times in {self.file}: {before}")
        path.write_text(text.replace(before, "\n".join(self.after)))
        return lambda: path.write_text(text)

    def suites(self):
        """The node-map library's own know nothing of what is above it."""
        return GENAPI_SUITES + SUITES if self.file.startswith("genapi/") else SUITES


def read_table(path):
    mutations = []
    for line in path.read_text().splitlines():
        mark, rest = line[:1], line[2:]
        if mark == "=":
            mutations.append(Mutation(rest))
        elif mark == "@":
            mutations[-1].file = rest
        elif mark == "-":
            mutations[-1].before.append(rest)
        elif mark == "+":
            mutations[-1].after.append(rest)
    return mutations


def copy_tree(tree):
    """Only what differs is written, so that the build knows what it need not build again."""
    listed = subprocess.run(["git", "ls-files"], cwd=ROOT, check=True, capture_output=True, text=True).stdout
    names = {name for name in listed.splitlines() if (ROOT / name).exists()}
    for former in [path for path in tree.rglob("*") if path.is_file()]:
        if str(former.relative_to(tree)) not in names:
            former.unlink()
    for name in names:
        source, target = ROOT / name, tree / name
        if target.exists() and target.read_bytes() == source.read_bytes():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, target)


def configure(tree, folder, log):
    """A program need not be linked again because a library that it loads has changed."""
    subprocess.run(["cmake", "-S", tree, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                    "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"], check=True, stdout=log, stderr=log)


def build(folder, suite, log):
    command = ["cmake", "--build", folder, "--target", "zqgentl", suite]
    if subprocess.run(command, stdout=log, stderr=log).returncode != 0:
        sys.exit(f"{suite} does not build, see {log.name}")


def first_failure(suites, folder, log):
    """The suite that fails, or None."""
    for suite in suites:
        build(folder, suite, log)
        shards = []
        for shard in range(SHARDS):
            environment = dict(os.environ, GTEST_TOTAL_SHARDS=str(SHARDS), GTEST_SHARD_INDEX=str(shard),
                               GENICAM_GENTL64_PATH=str(folder / "lib"))
            shards.append(subprocess.Popen([folder / "bin" / suite, "--gtest_fail_fast", "--gtest_brief=1"],
                                           stdout=log, stderr=log, env=environment))
        failed = False
        for process in shards:
            try:
                failed |= process.wait(timeout=TIMEOUT_S) != 0
            except subprocess.TimeoutExpired:
                failed = True
            if failed:
                break
        for process in shards:
            process.kill()
            process.wait()
        if failed:
            return suite
    return None


def how(log, mutation):
    """The tests that failed, of the suite's shard that ended first."""
    text = pathlib.Path(log.name).read_text(errors="replace").split(f"==== {mutation.name}\n")[-1]
    failed = re.findall(r"^\[  FAILED  \] ([^\s,]+)", text, re.MULTILINE)
    return ", ".join(dict.fromkeys(failed)) or "crashed, or took too long"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--work", type=pathlib.Path, default=ROOT / "build" / "mutations")
    parser.add_argument("names", nargs="*", help="only mutations with one of these in name or file")
    options = parser.parse_args()
    tree, folder = options.work / "tree", options.work / "build"
    tree.mkdir(parents=True, exist_ok=True)
    copy_tree(tree)
    mutations = [each for each in read_table(ROOT / "tests" / "mutations" / "table.txt")
                 if not options.names or any(name in each.name or name in each.file for name in options.names)]
    survivors, caught = [], 0
    with open(options.work / "log.txt", "w") as log:
        configure(tree, folder, log)
        needed = max((mutation.suites() for mutation in mutations), key=len, default=[])
        if first_failure(needed, folder, log):
            sys.exit(f"the tree fails without a mutation, see {log.name}")
        for mutation in mutations:
            log.write(f"\n==== {mutation.name}\n")
            log.flush()
            undo = mutation.apply(tree)
            try:
                suite = first_failure(mutation.suites(), folder, log)
            finally:
                undo()
            print(f"{'caught by ' + suite if suite else 'SURVIVED':28} {mutation.name}", flush=True)
            if suite:
                print(f"    {how(log, mutation)}", flush=True)
            caught += suite is not None
            if not suite:
                survivors.append(mutation.name)
    print(f"{caught} of {len(mutations)} mutations caught")
    sys.exit(len(survivors) > SURVIVORS_ALLOWED)


if __name__ == "__main__":
    main()
