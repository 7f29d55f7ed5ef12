"""Proves that DLLs import nothing but the system's own and each other.

imports.py DLL...
"""

import re
import subprocess
import sys

SYSTEM = {
    "advapi32.dll", "gdi32.dll", "kernel32.dll", "mpr.dll", "msvcrt.dll", "netapi32.dll", "ole32.dll",
    "oleaut32.dll", "psapi.dll", "rpcrt4.dll", "shell32.dll", "shlwapi.dll", "user32.dll", "ws2_32.dll",
}
OWN = {"vorranelog.dll"}


def faults(dll):
    headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", dll], check=True, capture_output=True, text=True)
    imported = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers.stdout)}
    print(dll, "imports", ", ".join(sorted(imported)))
    for name in sorted(imported - SYSTEM - OWN):
        yield f"{dll}: imports {name}"
    if not imported & SYSTEM:
        yield f"{dll}: its imports could not be read"


problems = [fault for dll in sys.argv[1:] for fault in faults(dll)]
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
