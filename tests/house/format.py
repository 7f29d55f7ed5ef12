"""Proves that all sources are laid out as .clang-format says.

format.py ROOT
"""

import pathlib
import subprocess
import sys

root = pathlib.Path(sys.argv[1])
listed = subprocess.run(
    ["git", "-C", root, "ls-files", "--cached", "--others", "--exclude-standard", "*.h", "*.cpp"],
    check=True, capture_output=True, text=True,
).stdout.split()
sources = [name for name in listed if (root / name).exists()]
print(f"{len(sources)} sources")
result = subprocess.run(["clang-format", "--dry-run", "--Werror", *sources], cwd=root)
sys.exit(result.returncode if sources else 1)
