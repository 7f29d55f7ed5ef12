"""Sums up which lines and branches of the library the tests have run, by folder.

coverage.py ROOT BUILD-FOLDER [--complete]

Prints the figures and the lines never run. With --complete, which is for a run of all tests, it
writes the figures into docs/testing.md and ends with a failure if a folder is below its goal, if a
line was never run that the page gives no reason for, or if the page gives a reason for a line that
is run or gone.

What only a thrown exception runs is not counted: a branch behind every call, and the clean-up that
is booked on closing braces.
"""

import collections
import functools
import json
import pathlib
import re
import subprocess
import sys

GCOV = "x86_64-w64-mingw32-gcov-posix"
FOLDERS = (
    "foundation", "config", "process", "net", "measures", "files", "media", "storage", "reports",
    "vrUtils", "VorraneLog",
)
GOAL = {"lines": 98.0, "branches": 90.0}
PAGE = "docs/testing.md"
TABLE = re.compile(r"(?<=<!-- figures -->\n).*?(?=<!-- end of figures -->)", re.DOTALL)
REASON = re.compile(r"^\| `(?P<file>[^`]+)` \| `(?P<text>[^`]+)` \| (?P<why>.+) \|$", re.MULTILINE)


class Tally:
    """How often each line of a file was run, and each of its branches."""

    def __init__(self):
        self.lines = collections.Counter()
        self.branches = collections.Counter()

    def add(self, entry):
        number = entry["line_number"]
        self.lines[number] += entry["count"]
        ordinary = (branch for branch in entry["branches"] if not branch["throw"])
        for index, branch in enumerate(ordinary):
            self.branches[number, index] += branch["count"]


@functools.cache
def lines_of(path):
    return [line.strip() for line in path.read_text(encoding="utf-8").splitlines()]


def reports(build):
    """(notes of an object, what the compiler's own tool tells of it, over all runs)."""
    for notes in sorted(build.rglob("*.gcno")):
        report = subprocess.run(
            [GCOV, "--json-format", "--stdout", "--branch-probabilities", str(notes)],
            cwd=build, check=True, capture_output=True, text=True,
        )
        for line in filter(None, report.stdout.splitlines()):
            yield notes.relative_to(build), json.loads(line)


def tallies(root, build):
    """The tally of each source of the library, by its name."""
    tallies = collections.defaultdict(Tally)
    for notes, report in reports(build):
        # What the program has of the library's headers is no part of the library.
        sources = root / "tools" if notes.parts[0] == "tools" else root
        for source in report["files"]:
            path = (build / source["file"]).resolve()
            if not path.is_relative_to(sources) or path.is_relative_to(root / "build"):
                continue
            text = lines_of(path)
            for entry in source["lines"]:
                if text[entry["line_number"] - 1] != "}":
                    tallies[path.relative_to(root).as_posix()].add(entry)
    return tallies


def reasons(page):
    """Why lines are out of reach: (file, text of the line) -> reason."""
    return {
        (row["file"], row["text"].replace(r"\|", "|")): row["why"] for row in REASON.finditer(page)
    }


def share(counts):
    """How many of the counts are not zero, how many there are, and the percentage."""
    reached = sum(map(bool, counts))
    return reached, len(counts), 100.0 * reached / len(counts) if counts else 100.0


def figures(tallies):
    """(name, its lines, its branches) for each folder, for the library, and for its program."""
    def row(name, folders):
        chosen = [tally for file, tally in tallies.items() if file.split("/")[0] in folders]
        return name, *(
            share([count for tally in chosen for count in getattr(tally, kind).values()])
            for kind in GOAL
        )

    return [
        *(row(folder, [folder]) for folder in FOLDERS),
        row("the library", FOLDERS),
        row("vrtool", ["tools"]),
    ]


def table(rows):
    def cells(reached, there_are, percent):
        return f"{reached} of {there_are} | {percent:.1f} %"

    head = "| folder | lines | | branches | |\n|---|---|---|---|---|\n"
    return head + "".join(
        f"| {name} | {cells(*lines)} | {cells(*branches)} |\n" for name, lines, branches in rows
    )


def statement(lines, number):
    """The line and those behind it up to the end of what it begins."""
    for last in range(number, len(lines) + 1):
        if lines[last - 1].endswith((";", "{", "}", ":")):
            break
    return " ".join(lines[number - 1:last])


def never_run(root, tallies):
    """(file, statement, number of its line) for each line of the library that no test has run."""
    for name in sorted(name for name in tallies if name.split("/")[0] in FOLDERS):
        for number in sorted(n for n, count in tallies[name].lines.items() if not count):
            yield name, statement(lines_of(root / name), number), number


def never_taken(root, tallies):
    """(file, text of the line, its number, how many branches) where not all were taken."""
    for name in sorted(name for name in tallies if name.split("/")[0] in FOLDERS):
        missing = collections.Counter(
            number for (number, _), count in tallies[name].branches.items() if not count
        )
        for number in sorted(number for number in missing if tallies[name].lines[number]):
            yield name, lines_of(root / name)[number - 1], number, missing[number]


def main():
    root, build = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    page = (root / PAGE).read_text(encoding="utf-8")
    known = reasons(page)
    counted = tallies(root, build)
    rows = figures(counted)
    unreached = list(never_run(root, counted))
    print(table(rows))
    for name, text, number in unreached:
        reason = known.get((name, text), "no reason is known")
        print(f"{name}:{number}: never run: {text}\n    {reason}")
    for name, text, number, missing in never_taken(root, counted):
        print(f"{name}:{number}: branches never taken: {missing}: {text}")
    if "--complete" not in sys.argv[3:]:
        return

    (root / PAGE).write_text(TABLE.sub(lambda _: table(rows), page), encoding="utf-8")
    places = {(name, text) for name, text, _ in unreached}
    faults = [
        f"{folder}: {percent:.1f} % of {kind}, {GOAL[kind]} % are wanted"
        for folder, lines, branches in rows
        for kind, (_, _, percent) in (("lines", lines), ("branches", branches))
        if folder in FOLDERS and percent < GOAL[kind]
    ]
    faults += [f"{name}: never run, and {PAGE} does not say why: {text}"
               for name, text in sorted(places - known.keys())]
    faults += [f"{name}: run or gone, and {PAGE} says that it is out of reach: {text}"
               for name, text in sorted(known.keys() - places)]
    if faults:
        sys.exit("\n".join(faults))


if __name__ == "__main__":
    main()
