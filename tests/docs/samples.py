"""Makes tests of the C++ samples of a page.

samples.py PAGE SOURCE NAME [--machine]  writes a source with a test for each ```cpp block of a page
samples.py --self-test                   shows that each form is understood, and all else refused

Each block is the body of one test, named after the page's NAME and the heading. It finds what
`Sample.h` tells: `folder`, `clip` and a few functions; with --machine the product's settings are
those of a fresh machine. Its #include lines go to the head of the source. A block with a main
function is a program: it has to return 0, and to print what the ```text block says that is the next
one under its heading.

What a comment promises of its statement is checked, and the statement has to be come to:

    clip.size();                         // -> 18
    auto const name = clip.str();        // -> C:\\Media\\clip.mxf
    tool.Execute();                      // == vrUtils::Process::ExternalProcessFailed
    FileLength(missing);                 // throws vrException 0x80004005: GetFileAttributesEx ...
    TempFolder const work(...);          // logs 7 Ingest: Created temporary folder "C:\\Media\\a\\"

`->` compares texts: numbers in decimal (in hexadecimal if the comment begins with 0x), lists with
", " between, nothing as "(empty)"; the scratch folder shows as C:\\Media. `==` compares with an
expression. After `throws` stands the class, then as much of code and text as is to be checked.
After `logs` stand level, module and text; a module may be left out. "..." stands for any text.

A promise may also stand below its statement. Comment lines that are indented by four further blanks
go on with it:

    FileLength(missing);
    // throws vrException:
    //     GetFileAttributesEx failed on "C:\\Media\\missing.mxf" - error 2
"""

import os
import pathlib
import re
import sys

FENCE = re.compile(r"^```(\S*)$")
HEADING = re.compile(r"^#+ (.*)$")
PROMISE = re.compile(r"^(->|==|throws|logs)(?: (.*))?$")
# What was meant for a promise, so that none is taken for a remark.
LIKE_A_PROMISE = re.compile(r"^([-=]+>|==|throws?\b|logs?\b)")
THROWS = re.compile(r"^((?:\w+::)*[A-Za-z]\w*)(?: (0x[0-9A-F]{8}))?(?::(?: (.*))?)?$")
LOGS = re.compile(r"^([0-7])(?: ([^:]+))?: (.*)$")
DECLARATION = re.compile(
    r"^(?!return|throw|delete|new|using|namespace)[\w:]+(?:<[^;]*?>)?(?: const)?(?:[&*] ?| )"
    r"(\w+)\s*[=({;]", re.DOTALL)
# Literals, then a digit separator, then any other character that begins no comment.
CODE = re.compile(
    r"""(?:R"\(.*?\)"|"(?:\\.|[^"\\])*"|(?<=[0-9A-F])'(?=[0-9A-F])|'(?:\\.|[^'\\])*'|[^/]|/(?!/))*""")
MAIN = re.compile(r"^int main\(\)", re.MULTILINE)


class Refused(Exception):
    """A block that cannot be made a test."""


class Block:
    def __init__(self, heading, line):
        self.heading, self.line, self.lines, self.printed = heading, line, [], None


def blocks(text):
    """The C++ blocks of a page, each with the heading it stands under."""
    heading, fence, found, follows = "", None, [], False
    for number, line in enumerate(text.split("\n"), 1):
        mark = FENCE.match(line)
        if fence is None and mark:
            fence = mark[1]
            if fence == "cpp":
                found.append(Block(heading, number + 1))
            elif fence == "text" and follows:
                found[-1].printed = []
        elif mark and not mark[1]:
            follows = fence == "cpp" and any(map(MAIN.match, found[-1].lines))
            fence = None
        elif fence == "cpp":
            found[-1].lines.append(line)
        elif fence == "text" and follows:
            found[-1].printed.append(line)
        elif fence is None:
            if HEADING.match(line):
                heading, follows = HEADING.match(line)[1], False
    return found


def split_comment(line):
    """Code and comment of a line; a comment inside a literal is none."""
    code = line[: CODE.match(line).end()]
    comment = line[len(code) :]
    return code, comment[2:] if comment else None


def quoted(text):
    return 'R"doc(' + text + ')doc"'


def value_checks(statement, name, arguments):
    """A statement whose value is looked at; of a declaration it is that of what is declared."""
    statement = statement.strip()
    if not statement.endswith(";"):
        raise Refused(f"a promise behind no whole statement: {statement}")
    declared = DECLARATION.match(statement)
    if declared:
        return f"{statement} {name}({arguments}{declared[1]});"
    return f"{name}({arguments}{statement[:-1]});"


def checked(statement, promises):
    """The code that carries a statement out and looks at what was promised of it."""
    after = ""
    for kind, text in promises:
        if kind == "->":
            name = "SHOWS_HEX" if re.match(r"0x[0-9A-F]+$", text) else "SHOWS"
            statement = value_checks(statement, name, quoted(text) + ", ")
        elif kind == "==":
            statement = value_checks(statement, "EQUALS", f"({text}), ")
        elif kind == "throws":
            failure = THROWS.match(text)
            if not failure:
                raise Refused(f"no failure: {text}")
            wanted = quoted(failure[3] or "...")
            code = failure[2] or "std::nullopt"
            statement = f"THROWS({failure[1]}, {code}, {wanted}, {statement.strip()});"
        else:
            line = LOGS.match(text)
            if not line:
                raise Refused(f"no log line: {text}")
            after += f" LOGGED({line[1]}, {quoted(line[2] or '...')}, {quoted(line[3])});"
    return statement + after


def statements(block):
    """Line numbers and codes of a block, each with the promises that are made of it."""
    pending, begin, result = "", None, []
    for number, line in enumerate(block.lines, block.line):
        code, comment = split_comment(line)
        bare = not code.strip()
        told = PROMISE.match((comment or "").strip())
        if bare and (comment or "").startswith("     ") and result and result[-1][2]:
            kind, text = result[-1][2][-1]
            result[-1][2][-1] = (kind, f"{text} {comment.strip()}".strip())
            continue
        if not told and LIKE_A_PROMISE.match((comment or "").strip()):
            raise Refused(f"line {number}: no promise: {comment}")
        if not bare:
            begin = begin or number
            pending += ("\n" if pending else "") + code.rstrip()
            ends = code.rstrip()[-1] in ";{}:" or code.startswith("#")
            if ends or told:
                result.append((begin, pending, []))
                pending, begin = "", None
        if told:
            if not result:
                raise Refused(f"line {number}: a promise of nothing")
            result[-1][2].append((told[1], told[2] or ""))
    if pending:
        result.append((begin, pending, []))
    return result


def body(block, page):
    """Includes and code of a block."""
    includes, code, promising = [], [], 0
    for line, statement, promises in statements(block):
        if statement.startswith("#include"):
            includes.append(statement)
            continue
        try:
            code.append(f'#line {line} "{page}"\n{checked(statement, promises)}')
        except Refused as refusal:
            raise Refused(f"{page}:{line}: {refusal}") from None
        if promises:
            code[-1] += f" reach({promising});"
            promising += 1
    # A promise in a handler that is never entered would be kept by nobody.
    return includes, "\n".join([*([f"promise({promising});"] if promising else []), *code])


def camel(text):
    return "".join(word[:1].upper() + word[1:] for word in re.findall(r"[A-Za-z0-9]+", text))


def source(text, page, name, machine):
    """The test source for a page."""
    suite = "Docs" + camel(name)
    includes, tests, names = [], [], {}
    for block in blocks(text):
        more, code = body(block, page)
        includes += more
        test = camel(block.heading) or "Page"
        names[test] = names.get(test, 0) + 1
        if names[test] > 1:
            test += str(names[test])
        if any(map(MAIN.match, block.lines)):
            printed = quoted("..." if block.printed is None else "\n".join(block.printed))
            # What only a main function may leave out.
            code = MAIN.sub("int program()", code.rstrip()[:-1]) + "return 0;\n}"
            tests.append(f"namespace {suite}Programs::{test} {{\n{code}\n}}\n"
                         f"TEST_F({suite}, {test}) {{ "
                         f"expectProgram({suite}Programs::{test}::program, {printed}); }}\n")
        else:
            tests.append(f"TEST_F({suite}, {test}) {{\n{code}\n}}\n")
    fixture = "MachineSample" if machine else "Sample"
    head = ['#include "tests/docs/Sample.h"', *dict.fromkeys(includes),
            # A sample gives its things the names that the page gives to others.
            '#pragma GCC diagnostic ignored "-Wshadow"',
            f"class {suite} : public test::{fixture} {{}};\n"]
    return "\n".join(head + tests) if tests else ""


# Lines of a block, and what they become.
UNDERSTOOD = [
    (["f(); // -> 7"], 'SHOWS(R"doc(7)doc", f());'),
    (["f(); // -> 0x1F"], 'SHOWS_HEX(R"doc(0x1F)doc", f());'),
    (["auto const n = f(", "    1); // -> a // b"],
     'auto const n = f(\n    1); SHOWS(R"doc(a // b)doc", n);'),
    (["vr::Path p(t); // -> x"], 'vr::Path p(t); SHOWS(R"doc(x)doc", p);'),
    (["std::list<int> l{1, 2}; // -> 1, 2"],
     'std::list<int> l{1, 2}; SHOWS(R"doc(1, 2)doc", l);'),
    (["auto& s = f(); // -> 1"], 'auto& s = f(); SHOWS(R"doc(1)doc", s);'),
    (["a.b(c) += d; // -> x"], 'SHOWS(R"doc(x)doc", a.b(c) += d);'),
    (["f(); // == N::E"], "EQUALS((N::E), f());"),
    (["f(); // throws N::E"], 'THROWS(N::E, std::nullopt, R"doc(...)doc", f(););'),
    (["f(); // throws E 0x8000000C: no"], 'THROWS(E, 0x8000000C, R"doc(no)doc", f(););'),
    (["f();", "// throws E:", "//     one", "//     two"],
     'THROWS(E, std::nullopt, R"doc(one two)doc", f(););'),
    (["f(); // logs 4 A B: c: d"], 'f(); LOGGED(4, R"doc(A B)doc", R"doc(c: d)doc");'),
    (["{", "    f();", "} // logs 7: x"],
     '{\n    f();\n} LOGGED(7, R"doc(...)doc", R"doc(x)doc");'),
    (['f(L"// -> 1"); // a word'], 'f(L"// -> 1");'),
    (['f(R"("//)"); // -> 2'], 'SHOWS(R"doc(2)doc", f(R"("//)"));'),
    (["f(1'000); // -> 2"], "SHOWS(R\"doc(2)doc\", f(1'000));"),
]
REFUSED = [
    ["// -> 1"],
    ["f() // -> 1"],
    ["f(); // ->1"],
    ["f(); // => 1"],
    ["f(); // throw E"],
    ["f(); // throws 7"],
    ["f(); // logs x"],
]

PAGE = """# A
```cpp
f(1); // -> 1
f(2); // -> 2
```
## The b
```cpp
#include <x>
int main() {
}
```
It prints

```text
out
```
"""
IN_SOURCE = [
    "TEST_F(DocsTwoWords, A)",
    "promise(2);",
    "f(2)); reach(1);",
    "#include <x>",
    "int program()",
    'expectProgram(DocsTwoWordsPrograms::TheB::program, R"doc(out)doc")',
]


def self_test():
    def code_of(lines):
        block = Block("", 1)
        block.lines = lines
        counting = r"^#line.*\n|^promise.*\n| reach\(0\);"
        return re.sub(counting, "", body(block, "page")[1], flags=re.MULTILINE)

    for lines, wanted in UNDERSTOOD:
        made = code_of(lines)
        if made != wanted:
            yield f"{lines}\n  gives  {made}\n  wanted {wanted}"
    for lines in REFUSED:
        try:
            yield f"{lines} was taken: {code_of(lines)}"
        except Refused:
            pass
    made = source(PAGE, "docs/page.md", "two-words", False)
    for wanted in IN_SOURCE:
        if wanted not in made:
            yield f"{wanted} is not in {made}"
    if source("no samples\n```text\nf();\n```\n", "docs/none.md", "none", False):
        yield "a page without samples has some"


if sys.argv[1] == "--self-test":
    problems = list(self_test())
    print(*problems, sep="\n")
    sys.exit(1 if problems else 0)
page, target = map(pathlib.Path, sys.argv[1:3])
try:
    text = page.read_text(encoding="utf-8")
    made = source(text, os.fspath(page), sys.argv[3], "--machine" in sys.argv)
except Refused as refusal:
    sys.exit(str(refusal))
target.write_text(made, encoding="utf-8")
