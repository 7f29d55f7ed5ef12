"""Has clang-tidy read the sources of the library and its programs, as .clang-tidy says.

tidy.py ROOT BUILD-FOLDER [SOURCE...]

Without sources: all of them, the sources of a folder together as one, since most of the time goes
into headers that they share. That asks for one thing: names that no other file sees are different
within a folder all the same.
"""

import collections
import concurrent.futures
import os
import pathlib
import subprocess
import sys

import clang_commands

root, build = map(pathlib.Path, sys.argv[1:3])
wanted = [pathlib.Path(name).resolve().relative_to(root) for name in sys.argv[3:]]
OURS = r"(vrUtils|VorraneLog|foundation|config|files|measures|media|net|process|reports|storage|tools)/.*\.(h|cpp)$"


def units():
    """The files to read, each with its arguments."""
    sources = clang_commands.sources_of(root, build)
    if wanted:
        return [(root / source, sources[source]) for source in wanted]
    together = collections.defaultdict(list)
    for source, arguments in sorted(sources.items()):
        if source.parts[0] not in clang_commands.NOT_READ_BY_TIDY:
            together[(source.parent, tuple(arguments))].append(source)
    folder = build / "tidy"
    folder.mkdir(exist_ok=True)
    made = []
    for number, ((parent, arguments), members) in enumerate(together.items()):
        unit = folder / f"{'_'.join(parent.parts)}_{number}.cpp"
        unit.write_text("".join(f'#include "{root / source}" // NOLINT\n' for source in members))
        made.append((unit, list(arguments)))
    # The longest first: the programs' sources are most.
    return sorted(made, key=lambda unit: -len(unit[0].read_text()))


def read(unit):
    file, arguments = unit
    result = subprocess.run(
        ["clang-tidy", "--quiet", f"--config-file={root / '.clang-tidy'}", f"--header-filter={OURS}",
         str(file), "--", *arguments],
        cwd=root, capture_output=True, text=True,
    )
    return result.returncode, f"{file.name}\n{result.stdout}{result.stderr}"


with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    results = list(pool.map(read, units()))
faults = [text for code, text in results if code != 0]
print(f"{len(results)} units read, {len(faults)} with faults", *faults, sep="\n")
sys.exit(1 if faults or not results else 0)
