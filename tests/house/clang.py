"""Has clang check the sources that clang-tidy does not read, for the same target: another compiler
must accept what ours does.

clang.py ROOT BUILD-FOLDER

What the tests include most is compiled once, as it is for our own compiler.
"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys

import clang_commands

root, build = map(pathlib.Path, sys.argv[1:])
precompiled = build / "clang-gmock.pch"


def clang(arguments):
    result = subprocess.run(
        ["clang++", *map(str, arguments)], cwd=root, capture_output=True, text=True)
    return result.returncode, result.stderr


def check(source):
    file, arguments = source
    # The definitions of a test program's side do not reach into what is precompiled.
    shared = ["-include-pch", precompiled, "-Xclang", "-fno-validate-pch"]
    code, said = clang(
        ["-fsyntax-only", *(shared if file.parts[0] == "tests" else []), *arguments, root / file])
    return code, f"{file}\n{said}"


sources = {
    file: arguments
    for file, arguments in clang_commands.sources_of(root, build).items()
    if file.parts[0] in clang_commands.NOT_READ_BY_TIDY
}
a_test = next(arguments for file, arguments in sources.items() if file.match("tests/*/*Test.cpp"))
(build / "clang-gmock.h").write_text("#include <gmock/gmock.h>\n")
code, said = clang(["-x", "c++-header", build / "clang-gmock.h", "-o", precompiled, *a_test])
if code != 0:
    sys.exit(said)
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    results = list(pool.map(check, sources.items()))
refused = [text for code, text in results if code != 0]
print(f"{len(results)} sources, {len(refused)} refused", *refused, sep="\n")
sys.exit(1 if refused or not results else 0)
