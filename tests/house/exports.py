"""Compares what a DLL exports with the list that stands in the tree.

exports.py DLL LIST           lists what is missing and what is new
exports.py --write DLL LIST   makes the list anew, to be reviewed in the change that needs it
"""

import pathlib
import re
import subprocess
import sys

PREFIX = "x86_64-w64-mingw32-"


def exported(dll):
    """The exported names, readable: one line where several symbols read the same."""
    table = subprocess.run([PREFIX + "objdump", "-p", dll], check=True, capture_output=True, text=True)
    names = table.stdout.split("[Ordinal/Name Pointer] Table", 1)[1]
    # The column in front of the name differs between releases of the tool.
    symbols = re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+(?:[0-9a-f]+\s+)?)?(\S+)$", names, re.MULTILINE)
    readable = subprocess.run(
        [PREFIX + "c++filt"], input="\n".join(symbols), check=True, capture_output=True, text=True
    )
    return sorted(set(readable.stdout.splitlines()))


arguments = sys.argv[1:]
write = arguments[0] == "--write"
dll, listed_in = arguments[write:]
names = exported(dll)
if write:
    pathlib.Path(listed_in).write_text("\n".join(names) + "\n")
    sys.exit(0)

listed = pathlib.Path(listed_in).read_text().splitlines()
missing = sorted(set(listed) - set(names))
new = sorted(set(names) - set(listed))
for name in missing:
    print("no longer exported:", name)
for name in new:
    print("exported, but not in the list:", name)
print(f"{len(names)} exports")
sys.exit(1 if missing or new or not names else 0)
