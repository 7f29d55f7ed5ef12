"""Proves that docs/limits.md tells the numbers that stand in the sources.

limits.py ROOT
"""

import pathlib
import re
import sys

# What the page calls it, where it stands under which name, and what is to be added to it: terminators
# take room that the page does not count.
LIMITS = [
    ("text of a parse, kept inside the object", "vrUtils/Path.h", "inlineCapacity", 0),
    ("rows of the share table", "files/PathMappings.cpp", "mostRows", 0),
    ("value name in the `DriveMapping` key", "files/DriveMappings.cpp", "valueNameUnits", -1),
    ("its data", "files/DriveMappings.cpp", "valueBytes", 0),
    ("list of drives", "files/DriveMappings.cpp", "driveListUnits", 0),
    ("universal name of a drive", "files/DriveMappings.cpp", "universalNameBytes", 0),
    ("path that is looked up under an alias", "storage/AliasLookup.cpp", "bufferSize", -1),
    ("characters cut off a host", "storage/PathAliasTable.cpp", "mostCut", 0),
    ("numbered folders (`NewNameIfExists`)", "storage/FolderStrategies.cpp", "lastNumber", 0),
    ("text that is read", "config/TypedValues.cpp", "longestString", 0),
    ("value name in a dump", "config/TreeDump.h", "nameUnits", -1),
    ("value's data in a dump", "config/TreeDump.h", "dataBytes", 0),
    ("names of all keys in a restored file", "config/RegDumper.cpp", "namesUnits", -2),
    ("lines of one key in a restored file", "config/RegDumper.cpp", "linesUnits", -2),
    ("base ports", "net/Instancing.cpp", "firstBasePort", 0),
    ("base ports", "net/Instancing.cpp", "lastBasePort", 0),
    ("copy of a chunk", "media/Tag.cpp", "smallestBlock", 0),
    ("report that is read", "reports/PFC.cpp", "largestReport", 0),
    ("time of `PFCreportGenerator.exe`", "reports/PFC.cpp", "secondsToMakeReport", 0),
    ("level that is written", "VorraneLog/LogConfiguration.h", "defaultLevel", 0),
    ("directives in a format", "VorraneLog/LogFormat.h", "mostDirectives", 0),
    ("width, and precision of a number", "VorraneLog/LogFormat.h", "widestField", 0),
    ("one text, or the format", "VorraneLog/LogFormat.h", "longestText", 0),
    ("old files", "VorraneLog/LogFile.h", "oldFiles", 0),
    ("processes at a time under one name", "VorraneLog/LogFile.cpp", "mostProcesses", 0),
]


NUMBER = r"\b(?:0x[0-9A-Fa-f]+|\d+)\b"


def numbers_in(text):
    return [int(number, 16 if number.startswith("0x") else 10) for number in re.findall(NUMBER, text)]


def number_of(root, source, name):
    found = re.findall(rf"\b{name} = ({NUMBER});", (root / source).read_text())
    return numbers_in(found[0])[0] if len(found) == 1 else None


def faults(root):
    rows = re.findall(r"^\| ([^|]+) \| ([^|]*) \|", (root / "docs/limits.md").read_text(), re.MULTILINE)
    bounds = dict(rows)
    for what, source, name, added in LIMITS:
        number = number_of(root, source, name)
        if number is None:
            yield f"{name} does not stand once in {source}"
            continue
        if number + added not in numbers_in(bounds.get(what, "")):
            yield f"{what}: {number + added} in {source}, but the page says: {bounds.get(what)}"


problems = list(faults(pathlib.Path(sys.argv[1])))
for problem in problems:
    print(problem)
print(f"{len(LIMITS)} limits compared")
sys.exit(1 if problems else 0)
