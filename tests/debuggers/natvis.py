"""Proves that tools/debuggers/vrUtils.natvis can be believed.

natvis.py ROOT SUBJECT.exe

No debugger that reads the file runs here. So: the file is well-formed and has no element or format
that debuggers do not know; it covers each class that the gdb printers cover; and gdb, which has the
debug information of the subject, finds a type for every expression with the members that it names.
"""

import itertools
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree

DEBUGGER = "x86_64-w64-mingw32-gdb"
NAMESPACE = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"
ELEMENTS = {"Type": {"Name"}, "DisplayString": {"Condition"}, "Expand": set(), "Item": {"Name", "Condition"}}
FORMAT = re.compile(r",(x|su|\[(?P<count>[^]]+)\]su)$")
# Every member of ours begins so; those of the standard library come behind a dot.
MEMBER = re.compile(r"(?<![\w.>])(m_\w+)")


def expressions(element):
    """All expressions of one element, formats and the counts in them included."""
    if "Condition" in element.attrib:
        yield element.attrib["Condition"]
    tag = element.tag.removeprefix(NAMESPACE)
    texts = re.findall(r"\{([^{}]+)\}", element.text) if tag == "DisplayString" else [element.text]
    for text in texts if tag in ("DisplayString", "Item") else []:
        described = FORMAT.search(text)
        yield FORMAT.sub("", text)
        if described and described["count"]:
            yield described["count"]


def shape_faults(document):
    if document.tag != NAMESPACE + "AutoVisualizer":
        yield f"the root is {document.tag}"
    for element in itertools.islice(document.iter(), 1, None):
        tag = element.tag.removeprefix(NAMESPACE)
        if not element.attrib.keys() <= ELEMENTS.get(tag, {"none"}) or tag not in ELEMENTS:
            yield f"unknown element or attribute: {tag} {element.attrib}"


def coverage_faults(root, types):
    printers = (root / "tools/debuggers/vrutils_gdb.py").read_text()
    covered = set(re.findall(r'^    "([\w:]+)": \w+Printer,$', printers, re.MULTILINE))
    shown = {name.partition("<")[0] for name in types}
    if not covered or covered != shown:
        yield f"gdb's printers and this file differ in {sorted(covered ^ shown)}"


def unknown_expressions(subject, types):
    """Asks gdb for the type of each expression, in the class that it is written for."""
    asked, commands = [], []
    for name, element in types.items():
        kind = name.replace("<*>", "<unsigned int>")
        for expression in ["*this", *itertools.chain(*map(expressions, element.iter()))]:
            typed = MEMBER.sub(rf"(('{kind}'*)0)->\1", expression.replace("*this", f"*('{kind}'*)0"))
            commands += ["-ex", f"echo <{len(asked)}>", "-ex", f"whatis {typed}"]
            asked.append((name, expression))
    answer = subprocess.run([DEBUGGER, "-nx", "-batch", *commands, subject],
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True).stdout
    answers = dict(re.findall(r"<(\d+)>([^<\n]*)", answer))
    print(f"{len(asked)} expressions of {len(types)} types")
    for index, (name, expression) in enumerate(asked):
        if not answers.get(str(index), "").startswith("type = "):
            yield f"{name}: {expression}: {answers.get(str(index))}"


root, subject = map(pathlib.Path, sys.argv[1:])
document = xml.etree.ElementTree.parse(root / "tools/debuggers/vrUtils.natvis").getroot()
types = {element.attrib["Name"]: element for element in document}
problems = [*shape_faults(document), *coverage_faults(root, types), *unknown_expressions(subject, types)]
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
