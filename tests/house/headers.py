"""Compiles one public header alone, before and after the platform's own, in each language it serves.

headers.py --precompile COMPILER FOLDER             makes the platform's headers ready, once for all
headers.py COMPILER FOLDER HEADER INCLUDE-FOLDER...  the first two include folders are our own
"""

import pathlib
import subprocess
import sys

STANDARDS = ("c++17", "c++20")
# The compiler takes a precompiled header only under the settings it was made with.
FLAGS = ["-DJSON_DLL", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-Winvalid-pch"]
PLATFORMS = {"platform.h": "", "platform_nominmax.h": "#define NOMINMAX\n"}
NO_PLATFORM = """
#if defined(_INC_WINDOWS) || defined(_WINDEF_) || defined(_MINWINDEF_) || defined(_WINSOCK2API_)
#error the header pulls in a platform header
#endif
"""


def precompile(compiler, folder):
    for standard in STANDARDS:
        place = pathlib.Path(folder) / standard
        place.mkdir(parents=True, exist_ok=True)
        for name, settings in PLATFORMS.items():
            (place / name).write_text(settings + "#include <windows.h>\n")
            command = [compiler, f"-std={standard}", *FLAGS, "-x", "c++-header", name, "-o", name + ".gch"]
            subprocess.run(command, cwd=place, check=True)


def compiles(compiler, folder, header, standard, order, source, include_folders):
    own, others = include_folders[:2], include_folders[2:]
    command = [compiler, f"-std={standard}", *FLAGS, "-fsyntax-only"]
    command += [f"-I{pathlib.Path(folder) / standard}", *[f"-I{name}" for name in own]]
    command += [argument for name in others for argument in ("-isystem", name)]
    result = subprocess.run(command + ["-x", "c++", "-"], input=source, capture_output=True, text=True)
    verdict = "compiles" if result.returncode == 0 else "DOES NOT COMPILE"
    print(f"{header} {standard}, {order}: {verdict}\n{result.stderr}")
    return result.returncode == 0


def check(compiler, folder, header, *include_folders):
    include = f"#include <{header}>\n"
    lean = "#define WIN32_LEAN_AND_MEAN\n#include <windows.h>\n"
    orders = {"alone and twice, and before the platform": include + NO_PLATFORM + include + lean}
    for name in PLATFORMS:
        orders[f"after {name}"] = f'#include "{name}"\n' + include
    return all([
        compiles(compiler, folder, header, standard, order, source, include_folders)
        for standard in STANDARDS
        for order, source in orders.items()
    ])


if sys.argv[1] == "--precompile":
    precompile(*sys.argv[2:])
else:
    sys.exit(0 if check(*sys.argv[1:]) else 1)
