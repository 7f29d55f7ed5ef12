"""Lists the headers of a folder that the library's public headers include, at whatever depth.

needed_headers.py COMPILER FOLDER INCLUDE-FOLDER...
"""

import pathlib
import subprocess
import sys

compiler, folder, *include_folders = sys.argv[1:]
folder = pathlib.Path(folder)
arguments = [compiler, "-std=c++17", "-M", "-DJSON_DLL", "-isystem", str(folder)]
for include_folder in include_folders:
    arguments += ["-I", include_folder]
listed = subprocess.run(
    [*arguments, "-x", "c++", "-"], input='#include "vrUtils/vrUtils.h"\n',
    check=True, capture_output=True, text=True,
).stdout
for name in sorted(set(listed.replace("\\\n", " ").split())):
    path = pathlib.Path(name)
    if path.is_relative_to(folder):
        print(path.relative_to(folder))
