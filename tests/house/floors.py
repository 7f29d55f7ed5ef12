"""Proves from the includes that the folders depend downward only.

floors.py ROOT       reads the tree and lists every breach
floors.py --self-test  shows that each kind of breach is seen
"""

import pathlib
import re
import sys

FLOORS = [
    {"foundation"},
    {"config", "process", "net", "measures"},
    {"files"},
    {"media", "storage"},
    {"reports"},
]
FLOOR_OF = {folder: floor for floor, folders in enumerate(FLOORS) for folder in folders}
INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.MULTILINE)


def breach(folder, included):
    """Why a file of a folder may not include this header; None if it may."""
    target = included.split("/")[0]
    if target == "tests":
        return "nobody includes tests/"
    if folder == "VorraneLog":
        if target in FLOOR_OF and included != "foundation/Platform.h" or target == "vrUtils":
            return "the log knows nothing of the library"
        return None
    if folder == "vrUtils":
        return "a public header includes a private one" if target in FLOOR_OF else None
    if folder in ("tools", "examples"):
        return "a host uses public headers only" if target in FLOOR_OF else None
    if target not in FLOOR_OF or target == folder or target == "foundation":
        return None
    if FLOOR_OF[target] >= FLOOR_OF[folder]:
        return f"{folder}/ does not stand above {target}/"
    return "a private header stays in its own folder"


def breaches(root):
    for folder in [*FLOOR_OF, "vrUtils", "VorraneLog", "tools", "examples"]:
        for source in sorted((root / folder).rglob("*")):
            if source.suffix not in (".h", ".cpp"):
                continue
            for included in INCLUDE.findall(source.read_text(encoding="utf-8")):
                reason = breach(folder, included)
                if reason:
                    yield f"{source.relative_to(root)} includes {included}: {reason}"


def self_test():
    allowed = [
        ("files", "foundation/Message.h"),
        ("files", "vrUtils/Files.h"),
        ("files", "files/LegalFilename.h"),
        ("foundation", "windows.h"),
        ("VorraneLog", "foundation/Platform.h"),
        ("tools", "vrUtils/Path.h"),
    ]
    forbidden = [
        ("foundation", "files/LegalFilename.h"),
        ("files", "media/ByteOrder.h"),
        ("files", "storage/FolderStrategies.h"),
        ("media", "storage/FolderStrategies.h"),
        ("storage", "files/LegalFilename.h"),
        ("files", "tests/support/ImportHook.h"),
        ("VorraneLog", "foundation/Message.h"),
        ("VorraneLog", "vrUtils/Path.h"),
        ("vrUtils", "foundation/Platform.h"),
        ("tools", "foundation/Text.h"),
    ]
    wrong = [case for case in allowed if breach(*case)]
    return wrong + [case for case in forbidden if not breach(*case)]


problems = self_test() if sys.argv[1] == "--self-test" else list(breaches(pathlib.Path(sys.argv[1])))
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
