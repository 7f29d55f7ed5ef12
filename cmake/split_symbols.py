"""Moves the debug symbols of a binary into a file beside it, which the binary names.

split_symbols.py BINARY
"""

import os
import subprocess
import sys

OBJCOPY = "x86_64-w64-mingw32-objcopy"
folder, name = os.path.split(sys.argv[1])
symbols = name + ".debug"


def objcopy(*arguments):
    # The link is made from the name as it is given: without a folder. The time of writing goes into the
    # binary unless another one is given.
    environment = {**os.environ, "SOURCE_DATE_EPOCH": "0"}
    subprocess.run([OBJCOPY, *arguments], cwd=folder, check=True, env=environment)


objcopy("--only-keep-debug", name, symbols)
objcopy("--strip-debug", name)
objcopy("--add-gnu-debuglink=" + symbols, name)
