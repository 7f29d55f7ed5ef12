"""How clang is called for a source that our compiler builds: same target, same standard library."""

import json
import pathlib
import re
import shlex

# Programs that show or measure or test the library.
NOT_READ_BY_TIDY = {"tests", "benchmarks", "examples"}

KEPT = re.compile(r"^-(D|I|isystem|std=|W(all|extra|pedantic|shadow|conversion|error)$)")

[library] = pathlib.Path("/usr/lib/gcc/x86_64-w64-mingw32").glob("*-posix/include/c++")
STANDARD_LIBRARY = [
    argument
    for folder in (library, library / "x86_64-w64-mingw32", library / "backward")
    for argument in ("-isystem", str(folder))
]


def arguments_of(command):
    """The arguments of a compile command that matter to clang, and those that clang needs."""
    arguments = shlex.split(command["command"])
    kept = ["--target=x86_64-w64-mingw32"]
    for index, argument in enumerate(arguments):
        if KEPT.match(argument):
            kept.append(argument)
            if argument == "-isystem":
                kept.append(arguments[index + 1])
    return kept + STANDARD_LIBRARY


def members_of(file):
    """The sources that are compiled as one by a file that only includes them, or the source itself."""
    if not file.name.startswith("unity_"):
        return [file]
    return [pathlib.Path(name) for name in re.findall(r'#include "(.*)"', file.read_text())]


def sources_of(root, build):
    """Each C++ source of the tree, relative to its root, with its arguments."""
    commands = json.loads((build / "compile_commands.json").read_text())
    return {
        source.relative_to(root): arguments_of(command)
        for command in commands
        for source in members_of(pathlib.Path(command["file"]))
        if source.suffix == ".cpp"
        and source.is_relative_to(root)
        and not source.is_relative_to(build)
    }
