"""Proves that what the pages point at is there.

pages.py ROOT         reads README.md and the pages of docs/ and examples/, and lists every breach
pages.py --self-test  shows that each kind of breach is seen

A link leads to a file of the tree, and to a heading of a page where it names one. A file that is
only named, such as `vrUtils/Files.h`, is there too. Every page of docs/ stands in one line of its
index, and every public header that declares something is named by a page. A block behind a line like
<!-- as in tests/consumer/Main.cpp --> has the bytes of that file, and blocks are of known kinds:
one of another kind might be a sample that nobody runs.
"""

import pathlib
import posixpath
import re
import sys

INDEX = "docs/index.md"
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
FOLDERS = (
    "VorraneLog|config|docs|examples|files|foundation|measures|media|net|process|reports|scripts"
    "|storage|tests|tools|vrUtils")
NAMED = re.compile(rf"`((?:{FOLDERS})/[\w./-]*\w)`")
PUBLIC = re.compile(r"vrUtils/[\w/]+\.h$")
CODE_BLOCK = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
CODE_SPAN = re.compile(r"`[^`\n]*`")
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)
COPIED = re.compile(r"^<!-- as in (\S+) -->\n+```\w*\n(.*?)^```$", re.MULTILINE | re.DOTALL)
# What the build makes, or what a page shows as an example of a name.
MADE = {
    "vrUtils/version.h",
    "files/NewThing.cpp",
    "vrUtils/Files/NewThing.h",
    "tests/files/NewThingTest.cpp",
}
KIND = re.compile(r"^```(\S*)$.*?^```$", re.MULTILINE | re.DOTALL)
KINDS = {"", "cmake", "console", "cpp", "text", "xml"}


def anchors(page):
    """The names by which a page's headings can be linked to."""
    found = {}
    for heading in HEADING.findall(CODE_BLOCK.sub("", page)):
        bare = re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
        found[bare] = found.get(bare, -1) + 1
    return {
        name + (f"-{again}" if again else "")
        for name, last in found.items()
        for again in range(last + 1)
    }


def breaches(pages, files):
    """What is wrong with the pages, given by name; `files` are the contents of the tree."""
    for name, page in sorted(pages.items()):
        prose = CODE_BLOCK.sub("", page)
        for link in LINK.findall(CODE_SPAN.sub("``", prose)):
            if re.match(r"\w+:", link):
                continue
            target, _, anchor = link.partition("#")
            path = name
            if target:
                path = posixpath.normpath(posixpath.join(posixpath.dirname(name), target))
            if path not in files:
                yield f"{name}: {link} is not there"
            elif anchor and anchor not in anchors(files[path]):
                yield f"{name}: {link} names no heading of {path}"
        for path in NAMED.findall(prose):
            if path not in files and path not in MADE:
                yield f"{name}: `{path}` is not there"
        for kind in set(KIND.findall(page)) - KINDS:
            yield f"{name}: a block of the kind {kind}"
        for path, block in COPIED.findall(page):
            if files.get(path) != block:
                yield f"{name}: a block is not what stands in {path}"
    listed = re.findall(r"^\| \[[^\]]+\]\(([\w-]+\.md)\) \|", pages[INDEX], re.MULTILINE)
    for name in pages:
        if name.startswith("docs/") and name != INDEX and listed.count(name[5:]) != 1:
            yield f"{name} does not stand in one line of {INDEX}"
    named = {path for page in pages.values() for path in NAMED.findall(page)}
    for path in sorted(filter(PUBLIC.match, set(files) - named)):
        # What only includes other headers, and what only marks exports, needs no page.
        if re.search(r"^[^#/\s]", files[path], re.MULTILINE):
            yield f"{path} is named by no page"


def read(root):
    files = {}
    for path in root.rglob("*"):
        name = path.relative_to(root).as_posix()
        if path.is_file() and not name.startswith(("build/", ".git")):
            files[name] = path.read_bytes().decode("utf-8", "replace")
            for folder in path.relative_to(root).parents:
                files.setdefault(folder.as_posix(), "")
    names = [name for name in files if re.match(r"(docs/|examples/)?[\w-]+\.md$", name)]
    return {name: files[name] for name in names}, files


def self_test():
    index = "# All\n| [one](one.md) | text |\n"
    one = "# A `b`: c\n[x](index.md#all) [y](#a-b-c) [z](../src/a.h) [w](https://example.org/)\n"
    good = {INDEX: index, "docs/one.md": one}

    tree = {"src/a.h": "", "src": "", "vrUtils/Path.h": "", "vrUtils/All.h": "#x"}

    def seen(pages, more={}):
        return list(breaches(pages, {**pages, **tree, **more}))

    bad = [
        one + "[v](none.md)\n",
        one + "[v](index.md#none)\n",
        one + "[v](#none)\n",
        one + "[two\nlines](none.md)\n",
        one + "`vrUtils/None.h`\n",
        one + "<!-- as in src/a.h -->\n```cpp\nother\n```\n",
        one + "<!-- as in src/none.h -->\n```cpp\n```\n",
        one + "```c++\n```\n",
    ]
    problems = [
        f"not seen: {page}" for page in bad if len(seen({**good, "docs/one.md": page})) != 1
    ]
    for page in ("", index * 2):
        if len(seen({**good, INDEX: page})) == 0:
            problems.append(f"not seen: an index that is {page!r}")
    if len(seen(good, {"vrUtils/New.h": "#ifndef X\n\nint f();\n"})) != 1:
        problems.append("not seen: a header that no page names")
    fine = one + "`vrUtils/Path.h` `[a](b)`\n```cpp\n[a](b)\n```\n"
    fine += "<!-- as in src/a.h -->\n\n```cpp\nx\n```\n"
    problems += seen({**good, "docs/one.md": fine}, {"src/a.h": "x\n"})
    return problems


if sys.argv[1] == "--self-test":
    problems = self_test()
else:
    pages, files = read(pathlib.Path(sys.argv[1]))
    print(f"{len(pages)} pages")
    problems = list(breaches(pages, files))
print(*problems, sep="\n")
sys.exit(1 if problems else 0)
