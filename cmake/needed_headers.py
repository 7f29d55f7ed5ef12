"""Lists the headers of a folder that the library's public headers include, at whatever depth.

needed_headers.py COMPILER FOLDER INCLUDE-FOLDER...
"""

import pathlib
import subprocess
import sys

compiler, folder, *include_folders = sys.argv[1:]
folder = pathlib.Path(folder)
# The folder may be made of links, which are not to be followed.
arguments = [
    compiler, "-std=c++17", "-M", "-fno-canonical-system-headers", "-DJSON_DLL", "-isystem", str(folder),
]
for include_folder in include_folders:
    arguments += ["-I", include_folder]
listed = subprocess.run(
    [*arguments, "-x", "c++", "-"], input='#include "vrUtils/vrUtils.h"\n',
    check=True, capture_output=True, text=True,
).stdout
needed = map(pathlib.Path, set(listed.replace("\\\n", " ").split()))
needed = sorted(path.relative_to(folder) for path in needed if path.is_relative_to(folder))
if not needed:
    sys.exit(f"{compiler} reports no header in {folder}")
print(*needed, sep="\n")
