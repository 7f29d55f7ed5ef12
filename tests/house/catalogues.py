"""Compares what the sources throw, answer and log with the catalogues in docs/.

catalogues.py failures ROOT    docs/failures.md: classes, failures, codes that are answered
catalogues.py log-lines ROOT   docs/log-lines.md

In both, what only the running program knows is a placeholder: `<path>`. A format stays as it is.
"""

import pathlib
import re
import sys

# The tree of sources is no place for compiled scripts.
sys.dont_write_bytecode = True
from source_texts import PLACEHOLDER, Scope, Tree, Unreadable

FOLDERS = "foundation config files storage process media net measures reports vrUtils".split()
NONE = "—"

# Where a call that writes has its level, its module and its text.
WRITERS = {"VL_WriteLog": (0, 1, 2), "VL_WriteDebugLog": (0, 1, 4), "wprintf": (None, None, 0)}
# Texts that the platform makes: the source and the variable.
OF_THE_PLATFORM = {("storage/ShareConnection.cpp", "text")}

CLASS = re.compile(r"^class VRUTILS_API (\w+Exception)(?: : public (\w+))? \{", re.MULTILINE)
NAMESPACE = re.compile(r"^namespace (vr\w+(?:::\w+)*) \{", re.MULTILINE)
ANSWER = re.compile(r"^inline constexpr \S+ (\w+) =[^;]*?\b(0x[0-9A-F]{8})\b", re.MULTILINE)
FOREIGN_CLASS = re.compile(r"\b(?:std|Json)::\w+")
THROWS = re.compile(r"@throws ((?:[^@\n]|\n */// {8,})*)")


def read_tree(root):
    """Every file that matters, by its name."""
    names = [name for folder in FOLDERS for name in sorted((root / folder).rglob("*.*"))]
    names = [name for name in names if name.suffix in (".h", ".cpp")]
    names += [root / page for page, _ in CATALOGUES.values()]
    return {name.relative_to(root).as_posix(): name.read_text(encoding="utf-8") for name in names}


def sources_of(texts):
    return {path: text for path, text in texts.items() if not path.endswith(".md")}


def public_headers(texts):
    return {path: text for path, text in texts.items() if path.startswith("vrUtils/")}


class LogLines:
    """What is logged, read from the arguments of each call that writes."""

    def __init__(self, tree):
        self.tree = tree

    def all(self):
        """Level, module and text."""
        for source in self.tree.sources.values():
            for index, token in enumerate(source.tokens):
                if token.kind == "name" and token.text in WRITERS:
                    yield from self._written(source, index)

    def _written(self, source, index):
        where = source.place(index)
        if source.text(index + 1) != "(":
            raise Unreadable(f"{where}: {source.text(index)} is named, but not called")
        level, module, text = WRITERS[source.text(index)]
        arguments = source.arguments(index + 1)
        scope = Scope(source, source.function_around(index))

        def lines():
            levels, modules = [NONE], ["standard output"]
            if level is not None:
                levels = self.tree.values(arguments[level], scope)
                modules = self.tree.known_or_placeholder(arguments[module], scope)
            texts = self._texts(arguments[text:], scope)
            return [(a, b, c) for a in levels for b in modules for c in texts]

        yield from self.tree.every(lines, where)

    def _texts(self, arguments, scope):
        if (scope.source.path, "".join(t.text for t in arguments[0])) in OF_THE_PLATFORM:
            return [PLACEHOLDER]
        texts = self.tree.values(arguments[0], scope)
        # A format that is one directive and nothing else only cuts its text.
        if len(texts) == 1 and re.fullmatch(r"%[\d.]*s", texts[0]):
            return self.tree.values(arguments[1], scope)
        return texts


class Failures:
    """What is thrown, read from the arguments of each throw."""

    def __init__(self, tree, bases):
        self.tree, self.bases = tree, bases

    def all(self):
        """Code, class, source name and text; the class alone if it is not this library's."""
        for source in self.tree.sources.values():
            for index, token in enumerate(source.tokens):
                if token.text == "throw" and source.text(index + 1) != ";":
                    yield from self._thrown(source, index)

    def _thrown(self, source, index):
        where = source.place(index)
        bracket = index + 2
        while source.text(bracket) == "::":
            bracket += 2
        if source.text(bracket) != "(" or source.text(source.closing[bracket] + 1) != ";":
            raise Unreadable(f"{where}: what is thrown is not made on the spot")
        name = "".join(token.text for token in source.tokens[index + 1:bracket])
        scope = Scope(source, source.function_around(index))
        arguments = source.arguments(bracket)
        yield from self.tree.every(lambda: self._made(name, arguments, scope, where), where)

    def _made(self, name, arguments, scope, where):
        if FOREIGN_CLASS.fullmatch(name):
            return [(name,)]
        if name in self.bases:
            return self._object(name, arguments, scope, where)
        return self._result(name, arguments, scope, where)

    def _result(self, name, arguments, scope, where):
        """What a function makes that does nothing else."""
        for function in self.tree.functions(name, len(arguments)):
            source, bracket = function.source, function.begin + 3
            made = source.text(bracket - 1)
            if source.text(function.begin + 1) == "return" and made in self.bases:
                inside = Scope.called(function, arguments, scope)
                return self._object(made, source.arguments(bracket), inside, where)
        raise Unreadable(f"{where}: what {name} makes is not known")

    def _object(self, name, arguments, scope, where):
        roots = [name]
        while base := self.bases[roots[-1]]:
            if base not in self.bases:
                raise Unreadable(f"{where}: the base {base} is not known")
            roots.append(base)
        for root in roots:
            if constructor := self._constructor(root, len(arguments)):
                inside = Scope.called(constructor, arguments, scope)
                handed_on = constructor.source.arguments(constructor.initializers[0])
                if root != "vrException" and len(handed_on) == 2:
                    return self._rows(name, handed_on[1], None, handed_on[0], inside)
                return self._object_of(name, handed_on, inside, where)
        if roots[-1] == "vrStorageException" and len(arguments) == 2:
            texts = self.tree.known_or_placeholder(arguments[1], scope)
            return [(PLACEHOLDER, name, NONE, text) for text in texts]
        if roots[-1] == "vrException":
            return self._object_of(name, arguments, scope, where)
        return [(NONE, name, NONE, NONE)]

    def _object_of(self, name, arguments, scope, where):
        """From the arguments of the constructor that takes all fields, or none."""
        if not arguments:
            return [("0", name, NONE, NONE)]
        if len(arguments) == 4:
            return self._rows(name, arguments[3], arguments[0], arguments[2], scope)
        raise Unreadable(f"{where}: which constructor of {name} takes this is not known")

    def _rows(self, name, code, file, message, scope):
        codes = self.tree.values(code, scope)
        files = self.tree.values(file, scope) if file else [NONE]
        texts = self.tree.values(message, scope)
        return [(c, name, f, text) for c in codes for f in files for text in texts]

    def _constructor(self, name, count):
        """One that only hands on to another constructor, and brings something of its own."""
        for function in self.tree.functions(name, count):
            if len(function.initializers) == 1:
                bracket = function.initializers[0]
                is_handed_on = function.source.text(bracket - 1) == "vrException"
                if is_handed_on and len(function.source.arguments(bracket)) > 1:
                    return function
        return None


def classes_of(texts):
    """Each class of ours for failures: its full name, its base and its header."""
    for path, text in public_headers(texts).items():
        namespace = NAMESPACE.search(text)
        for name, base in CLASS.findall(text):
            yield f"{namespace[1]}::{name}" if namespace else name, base or NONE, path


def foreign_classes_of(texts):
    """Those that the public headers tell of."""
    for text in public_headers(texts).values():
        for paragraph in THROWS.findall(text):
            yield from ((name,) for name in FOREIGN_CLASS.findall(paragraph))


def answers_of(texts):
    for text in public_headers(texts).values():
        yield from ((code, name) for name, code in ANSWER.findall(text))


class Page:
    """The tables of a catalogue, by the head of their first column."""

    def __init__(self, path, text):
        self.path, self.tables, self.names = path, {}, set()
        head = None
        for line in text.splitlines():
            if not line.startswith("|"):
                head = None
                continue
            cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
            if head is None:
                head = cells
            elif not set("".join(cells)) <= set("-:"):
                self.tables.setdefault(head[0], []).append([self._plain(cell) for cell in cells])
                self.names |= self._names_in(head, cells)

    @staticmethod
    def _plain(cell):
        return re.sub(r"<[a-z][^<>]*>", PLACEHOLDER, cell.strip("`"))

    @staticmethod
    def _names_in(head, cells):
        """What is said to throw, to answer or to log."""
        told = [cell for title, cell in zip(head, cells) if title.endswith(" by")]
        return {part for cell in told for name in re.findall(r"`([^`]+)`", cell)
                for part in name.split("::")}

    def differences(self, facts):
        """What the page lacks or has too much of; the first columns tell a row."""
        for head, (width, rows) in facts.items():
            found = set(rows)
            stated = {tuple(row[:width]) for row in self.tables.get(head, [])}
            if not found:
                yield f"{head}: the sources have none, which cannot be"
            for row in sorted(found - stated):
                yield f"{self.path} lacks, {head}: {' | '.join(row)}"
            for row in sorted(stated - found):
                yield f"{self.path} tells of what no source has, {head}: {' | '.join(row)}"

    def unknown_names(self, texts):
        known = set(re.findall(r"~?\w+", " ".join(public_headers(texts).values())))
        for name in sorted(self.names - known):
            yield f"{self.path} names `{name}`, which no public header has"


def failure_facts(texts):
    headers = public_headers(texts).values()
    bases = {name: base for text in headers for name, base in CLASS.findall(text)}
    thrown = list(Failures(Tree(sources_of(texts)), bases).all())
    return {
        "Class": (3, list(classes_of(texts))),
        "Code": (4, [row for row in thrown if len(row) > 1]),
        "Answer": (2, list(answers_of(texts))),
        "Foreign class": (1, [*(row for row in thrown if len(row) == 1), *foreign_classes_of(texts)]),
    }


def log_line_facts(texts):
    return {"Level": (3, list(LogLines(Tree(sources_of(texts))).all()))}


CATALOGUES = {
    "failures": ("docs/failures.md", failure_facts),
    "log-lines": ("docs/log-lines.md", log_line_facts),
}


def problems_of(catalogue, texts, facts=None):
    path, read_facts = CATALOGUES[catalogue]
    page = Page(path, texts[path])
    try:
        facts = facts or read_facts(texts)
    except Unreadable as reason:
        return [f"cannot be read: {reason}"]
    return [*page.differences(facts), *page.unknown_names(texts)]


if __name__ == "__main__":
    problems = problems_of(sys.argv[1], read_tree(pathlib.Path(sys.argv[2])))
    for problem in problems:
        print(problem)
    sys.exit(1 if problems else 0)
