"""Proves that nothing is gone that the last release exported, unless the major version has moved.

released.py LIST RELEASES VERSION
released.py --self-test

Each release leaves its list of exports in the folder of releases, named after its version.
"""

import pathlib
import sys
import tempfile


def numbers(version):
    return tuple(map(int, version.split(".")))


def gone(listed, releases, version):
    """What the last release exported and the list lacks; nothing if it may go."""
    earlier = [path for path in releases.glob("*.txt") if numbers(path.stem) <= numbers(version)]
    last = max(earlier, key=lambda path: numbers(path.stem), default=None)
    if last is None:
        sys.exit(f"{releases} holds the list of no release up to {version}")
    if numbers(version)[0] > numbers(last.stem)[0]:
        return []
    kept = set(listed.read_text().splitlines())
    return [name for name in last.read_text().splitlines() if name not in kept]


def self_test():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        releases = folder / "releases"
        releases.mkdir()
        (releases / "1.9.0.txt").write_text("old()\n")
        (releases / "1.10.0.txt").write_text("first()\nsecond()\n")
        (releases / "3.0.0.txt").write_text("later()\n")
        listed = folder / "list.txt"

        listed.write_text("first()\nsecond()\nthird()\n")
        assert gone(listed, releases, "1.10.0") == []
        listed.write_text("first()\nthird()\n")
        assert gone(listed, releases, "1.10.1") == ["second()"]
        assert gone(listed, releases, "1.11.0") == ["second()"]
        assert gone(listed, releases, "2.0.0") == []
        assert gone(listed, releases, "1.9.5") == ["old()"]


if sys.argv[1] == "--self-test":
    self_test()
    sys.exit(0)
listed, releases = map(pathlib.Path, sys.argv[1:3])
missing = gone(listed, releases, sys.argv[3])
for name in missing:
    print("exported by the last release, and no longer:", name)
sys.exit(1 if missing else 0)
