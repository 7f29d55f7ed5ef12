"""Proves that every example is short, says what it teaches, and is listed, built and run.

examples.py ROOT        reads the tree and lists every breach
examples.py --self-test   shows that each kind of breach is seen
"""

import pathlib
import re
import sys

LONGEST = 60
# A program that the library calls, which no reader is meant to learn from.
TOOLS = {"PFCreportGenerator"}
LESSON = re.compile(r"^\s+(\w+)\)?$", re.MULTILINE)
ROW = re.compile(r"^\| \[(\w+)\]\((\w+)\.cpp\) \| [^|]+ \| [^|]+ \|$", re.MULTILINE)


def breaches(sources, readme, cmake, tests):
    """What is wrong with the examples, whose sources are given by name."""
    lessons = {name: text for name, text in sources.items() if name not in TOOLS}
    listed = [name for name, link in ROW.findall(readme) if name == link]
    built = LESSON.findall(re.search(r"set\(lessons\n(.*?\))", cmake, re.DOTALL)[1])
    for name, text in sorted(lessons.items()):
        if text.count("\n") > LONGEST:
            yield f"{name} has more than {LONGEST} lines"
        if not text.startswith("// "):
            yield f"{name} does not begin with what it teaches"
        if listed.count(name) != 1:
            yield f"{name} does not stand in one line of README.md"
        if name not in built:
            yield f"{name} is not built as a lesson"
        if f'"{name}"' not in tests:
            yield f"{name} is not run by a test"
    for name in sorted({*listed, *built} - set(lessons)):
        yield f"{name} is listed and not there"


def self_test():
    good = {
        "sources": {"Paths": "// Teaches paths.\n"},
        "readme": "| [Paths](Paths.cpp) | paths | all of them |\n",
        "cmake": "set(lessons\n  Paths)\n",
        "tests": 'Example{"Paths", {}}',
    }
    bad = [
        {"sources": {"Paths": "// Teaches paths.\n" * (LONGEST + 1)}},
        {"sources": {"Paths": "#include <iostream>\n"}},
        {"sources": {}},
        {"readme": ""},
        {"readme": good["readme"] * 2},
        {"readme": good["readme"].replace("(Paths", "(Other")},
        {"cmake": "set(lessons\n  Other)\n"},
        {"tests": 'Example{"Other", {}}'},
    ]
    unseen = [str(case) for case in bad if not list(breaches(**{**good, **case}))]
    return unseen + list(breaches(**good))


def read(root):
    examples = root / "examples"
    return {
        "sources": {path.stem: path.read_text() for path in examples.glob("*.cpp")},
        "readme": (examples / "README.md").read_text(),
        "cmake": (examples / "CMakeLists.txt").read_text(),
        "tests": "".join(path.read_text() for path in (root / "tests/examples").glob("*.cpp")),
    }


if sys.argv[1] == "--self-test":
    problems = self_test()
else:
    inputs = read(pathlib.Path(sys.argv[1]))
    print(f"{len(inputs['sources'])} programs")
    problems = list(breaches(**inputs))
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
