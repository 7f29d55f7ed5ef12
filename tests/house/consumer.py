"""Installs the library, and builds and runs a host that knows the installed package only.

consumer.py BUILD-FOLDER-OR-ZIP CONSUMER-FOLDER WINE WORK-FOLDER
"""

import filecmp
import os
import pathlib
import shutil
import subprocess
import sys

origin, consumer, wine, work = map(pathlib.Path, sys.argv[1:])
package, host = work / "package", work / "host"
COMPILER = "x86_64-w64-mingw32-g++-posix"
EXPECTED = [
    r"\\server\share\Media\clip.mxf",
    "BytesRead 1500",
    r'GetFileAttributesEx failed on "C:\nothing here" - error 2',
]


def run(*command, **options):
    result = subprocess.run(list(map(str, command)), capture_output=True, text=True, **options)
    if result.returncode != 0:
        sys.exit(f"{command}\n{result.stdout}{result.stderr}")
    return result.stdout


def lines(text):
    return [line.rstrip() for line in text.splitlines()]


shutil.rmtree(work, ignore_errors=True)
if origin.suffix == ".zip":
    shutil.unpack_archive(origin, work)
    next(work.iterdir()).rename(package)
else:
    run("cmake", "--install", origin, "--prefix", package)

run("cmake", "-S", consumer, "-B", host, "-G", "Ninja", "-DCMAKE_SYSTEM_NAME=Windows",
    f"-DCMAKE_CXX_COMPILER={COMPILER}", f"-DCMAKE_PREFIX_PATH={package}",
    "-DCMAKE_EXE_LINKER_FLAGS=-static")
run("cmake", "--build", host)
shutil.copy(host / "consumer.exe", package / "bin")
assert lines(run(wine, package / "bin/consumer.exe")) == EXPECTED

# The same host by way of pkg-config.
flags = run("pkg-config", "--cflags", "--libs", "vrUtils",
            env={**os.environ, "PKG_CONFIG_PATH": str(package / "lib/pkgconfig")}).split()
run(COMPILER, "-std=c++17", "-static", consumer / "Main.cpp", *flags, "-o", package / "bin/piped.exe")
assert lines(run(wine, package / "bin/piped.exe")) == EXPECTED

# A compiler of another family is told so in plain words.
refused = subprocess.run(
    ["clang++", "-std=c++17", "-fsyntax-only", f"-I{package / 'include'}", "-x", "c++", "-"],
    input="#include <vrUtils/vrUtils.h>\n", capture_output=True, text=True)
assert refused.returncode != 0
assert "built with mingw-w64 and GCC's C++ library" in refused.stderr, refused.stderr

for name in ("vrUtils.dll", "VorraneLog.dll", "vrtool.exe"):
    assert (package / "bin" / (name + ".debug")).exists(), name
for licence in ("JsonCpp", "Boost", "spdlog", "fmt", "CLI11", "GCC-runtime", "mingw-w64-runtime"):
    assert (package / f"share/licenses/vrUtils/{licence}.txt").stat().st_size > 0, licence

# Installed again later, the binaries are the same.
if origin.suffix != ".zip":
    run("cmake", "--install", origin, "--prefix", work / "again")
    for file in (work / "again/bin").iterdir():
        assert filecmp.cmp(file, package / "bin" / file.name, shallow=False), file.name
print("the package serves a host")
