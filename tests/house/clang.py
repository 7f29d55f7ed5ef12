"""Has clang check every source for the same target: another compiler must accept what ours does.

clang.py ROOT BUILD-FOLDER
"""

import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

root, build = map(pathlib.Path, sys.argv[1:])
[library] = pathlib.Path("/usr/lib/gcc/x86_64-w64-mingw32").glob("*-posix/include/c++")
standard_library = [library, library / "x86_64-w64-mingw32", library / "backward"]
KEPT = re.compile(r"^-(D|I|isystem|std=|W(all|extra|pedantic|shadow|conversion|error)$)")


def check(command):
    arguments = shlex.split(command["command"])
    kept = []
    for index, argument in enumerate(arguments):
        if KEPT.match(argument):
            kept.append(argument)
            if argument == "-isystem":
                kept.append(arguments[index + 1])
    for folder in standard_library:
        kept += ["-isystem", str(folder)]
    result = subprocess.run(
        ["clang++", "--target=x86_64-w64-mingw32", "-fsyntax-only", *kept, command["file"]],
        cwd=command["directory"], capture_output=True, text=True,
    )
    return result.returncode, f"{command['file']}\n{result.stderr}"


commands = json.loads((build / "compile_commands.json").read_text())
sources = {c["file"]: c for c in commands if c["file"].endswith(".cpp") and str(root) in c["file"]}
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    results = list(pool.map(check, sources.values()))
refused = [text for code, text in results if code != 0]
print(f"{len(results)} sources, {len(refused)} refused", *refused, sep="\n")
sys.exit(1 if refused or not results else 0)
