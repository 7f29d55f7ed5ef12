"""Proves that each entry of docs/sharp-edges.md and docs/security.md names tests that exist, and says
what to do.

sharp_edges.py ROOT
"""

import pathlib
import re
import sys

TEST = re.compile(r"^ *(?:TEST|TEST_F|TEST_P|TYPED_TEST)\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)
HOUSE_TEST = re.compile(r"^vrutils_house_test\((\w+) ", re.MULTILINE)
ENTRY = re.compile(r"^- (.*(?:\n  .*)*)", re.MULTILINE)
TESTS = r"\((?P<tests>`\w+\.\w+`(?:, `\w+\.\w+`)*)\)"
# The headline, the story, the way round, and the tests at the end.
PAGES = {
    "docs/sharp-edges.md": re.compile(rf"\*\*(?P<headline>.+?)\*\*.* Instead: .+ {TESTS}"),
    "docs/security.md": re.compile(
        rf"\*\*(?P<headline>.+?)\*\*.* Risk: .+ Do: .+ (?:{TESTS}|\(not tested\))"),
}


def tests_of(root):
    sources = (root / "tests").rglob("*Test.cpp")
    known = {".".join(names) for source in sources for names in TEST.findall(source.read_text())}
    for lists in (root / "tests").rglob("CMakeLists.txt"):
        known |= {f"House.{name}" for name in HOUSE_TEST.findall(lists.read_text())}
    return known


def faults(page, shape, known):
    entries = [" ".join(entry.split()) for entry in ENTRY.findall(page)]
    if not entries:
        yield "no entry was found"
    for entry in entries:
        parts = shape.fullmatch(entry)
        if not parts:
            yield f"headline, way round or tests are missing: {entry}"
            continue
        for name in re.findall(r"\w+\.\w+", parts["tests"] or ""):
            if name not in known:
                yield f"no such test: {name}: {parts['headline']}"
    headlines = re.findall(r"^- \*\*", page, re.MULTILINE)
    if len(headlines) != len(entries):
        yield f"{len(headlines)} headlines, but {len(entries)} entries"
    print(f"{len(entries)} entries, {len(known)} tests known")


root = pathlib.Path(sys.argv[1])
known = tests_of(root)
problems = [
    f"{page}: {fault}" for page, shape in PAGES.items() for fault in faults((root / page).read_text(), shape, known)
]
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
