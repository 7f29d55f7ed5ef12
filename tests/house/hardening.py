"""Proves that binaries are hardened: ASLR, high entropy, DEP, a stack protector.

hardening.py BINARY...
"""

import re
import subprocess
import sys

PREFIX = "x86_64-w64-mingw32-"
FLAGS = {0x0020: "high-entropy addresses", 0x0040: "address space randomisation", 0x0100: "no execution of data"}


def faults(binary):
    headers = subprocess.run([PREFIX + "objdump", "-p", binary], check=True, capture_output=True, text=True)
    characteristics = int(re.search(r"DllCharacteristics\s+([0-9a-f]+)", headers.stdout).group(1), 16)
    for flag, meaning in FLAGS.items():
        if not characteristics & flag:
            yield f"{binary}: lacks {meaning}"
    if "Base Relocation" not in headers.stdout and ".reloc" not in headers.stdout:
        yield f"{binary}: has no relocations, so it cannot be moved"

    # The handler of a smashed stack is linked in only if code that calls it is.
    symbols = subprocess.run([PREFIX + "nm", binary], capture_output=True, text=True)
    if "__stack_chk_fail" not in symbols.stdout:
        yield f"{binary}: no function checks its stack"


problems = [fault for binary in sys.argv[1:] for fault in faults(binary)]
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
