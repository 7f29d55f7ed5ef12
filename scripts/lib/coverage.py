"""Sums up which lines and branches the tests have run, by folder, and lists the lines never run.

coverage.py ROOT BUILD-FOLDER

A line that no test can reach stands in tests/unreached.txt with its reason. What only a thrown
exception runs is not counted: a branch behind every call, and the clean-up that is booked on closing
braces.
"""

import collections
import functools
import json
import pathlib
import subprocess
import sys

GCOV = "x86_64-w64-mingw32-gcov-posix"
FOLDERS = (
    "foundation", "files", "storage", "config", "process", "media", "net", "measures", "reports",
    "vrUtils", "VorraneLog",
)
GOAL = 98.0

root, build = map(pathlib.Path, sys.argv[1:])


@functools.cache
def closing_braces(path):
    """The numbers of the lines that hold nothing else."""
    text = path.read_text(encoding="utf-8").splitlines()
    return {number for number, line in enumerate(text, 1) if line.strip() == "}"}


def counts():
    """How often each line ran, and each of its branches, over all programs that have run."""
    lines = collections.defaultdict(lambda: collections.Counter())
    branches = collections.defaultdict(lambda: collections.defaultdict(collections.Counter))
    for notes in sorted(build.rglob("*.gcno")):
        report = subprocess.run(
            [GCOV, "--json-format", "--stdout", "--branch-probabilities", str(notes)],
            cwd=build, check=True, capture_output=True, text=True,
        )
        for line in filter(None, report.stdout.splitlines()):
            for source in json.loads(line)["files"]:
                path = (build / source["file"]).resolve()
                if not path.is_relative_to(root) or path.is_relative_to(build):
                    continue
                name = str(path.relative_to(root))
                braces = closing_braces(path)
                for entry in source["lines"]:
                    if entry["line_number"] in braces:
                        continue
                    lines[name][entry["line_number"]] += entry["count"]
                    ordinary = (branch for branch in entry["branches"] if not branch["throw"])
                    for index, branch in enumerate(ordinary):
                        branches[name][entry["line_number"]][index] += branch["count"]
    return lines, branches


def reasons():
    """The lines known to be out of reach: (file, text of the line) -> why."""
    known = {}
    for line in (root / "tests/unreached.txt").read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            file, text, reason = (part.strip() for part in line.split(" | "))
            known[file, text] = reason
    return known


def percent(part, whole):
    return 100.0 * part / whole if whole else 100.0


lines, branches = counts()
known = reasons()
unreached, unexplained = [], 0
below_goal = []
print(f"{'folder':<12} {'lines':>15} {'':>7} {'branches':>15}")
for folder in FOLDERS:
    files = sorted(name for name in lines if name.split("/")[0] == folder)
    if not files:
        continue
    line_counts = [count for name in files for count in lines[name].values()]
    branch_counts = [
        count for name in files for of_line in branches[name].values() for count in of_line.values()
    ]
    line_share = percent(sum(map(bool, line_counts)), len(line_counts))
    print(
        f"{folder:<12} {sum(map(bool, line_counts)):>7}/{len(line_counts):<7} {line_share:6.1f}% "
        f"{sum(map(bool, branch_counts)):>7}/{len(branch_counts):<7} "
        f"{percent(sum(map(bool, branch_counts)), len(branch_counts)):6.1f}%"
    )
    if line_share < GOAL:
        below_goal.append(folder)
    for name in files:
        text = (root / name).read_text(encoding="utf-8").splitlines()
        for number in sorted(n for n, count in lines[name].items() if count == 0):
            reason = known.get((name, text[number - 1].strip()))
            unexplained += reason is None
            unreached.append(f"{name}:{number}: {text[number - 1].strip()}\n    {reason or 'no reason is known'}")

print(f"\nlines never run: {len(unreached)}, without a reason: {unexplained}", *unreached, sep="\n")
if below_goal:
    sys.exit(f"below {GOAL} % of lines: {', '.join(below_goal)}")
