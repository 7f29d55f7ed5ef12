"""Proves that each sharp edge of docs/sharp-edges.md is pinned by tests that exist, and says what to
do instead.

sharp_edges.py ROOT
"""

import pathlib
import re
import sys

TEST = re.compile(r"^ *(?:TEST|TEST_F|TEST_P|TYPED_TEST)\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)
ENTRY = re.compile(r"^- (.*(?:\n  .*)*)", re.MULTILINE)
# The headline, the story, the way round, and the tests at the end.
SHAPE = re.compile(r"\*\*(?P<headline>.+?)\*\*.* Instead: .+ \((?P<tests>`\w+\.\w+`(?:, `\w+\.\w+`)*)\)")


def tests_of(root):
    sources = (root / "tests").rglob("*Test.cpp")
    return {".".join(names) for source in sources for names in TEST.findall(source.read_text())}


def faults(page, known):
    entries = [" ".join(entry.split()) for entry in ENTRY.findall(page)]
    if not entries:
        yield "no entry was found"
    for entry in entries:
        parts = SHAPE.fullmatch(entry)
        if not parts:
            yield f"headline, way round or tests are missing: {entry}"
            continue
        for name in re.findall(r"\w+\.\w+", parts["tests"]):
            if name not in known:
                yield f"no such test: {name}: {parts['headline']}"
    headlines = re.findall(r"^- \*\*", page, re.MULTILINE)
    if len(headlines) != len(entries):
        yield f"{len(headlines)} headlines, but {len(entries)} entries"
    print(f"{len(entries)} entries, {len(known)} tests known")


root = pathlib.Path(sys.argv[1])
problems = list(faults((root / "docs/sharp-edges.md").read_text(), tests_of(root)))
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
