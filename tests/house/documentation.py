"""Has doxygen read the public headers, and counts what is not documented.

documentation.py ROOT OUTPUT-FOLDER EXPORT-LIST   lists every gap
documentation.py --self-test ROOT                 shows that each kind of gap is seen
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

VISIBLE = ("public", "protected")
# What a class has beside its members.
TABLE = re.compile(r"^(?:vtable|typeinfo|typeinfo name|VTT) for ")


def read_headers(root, output, folder=None):
    """Doxygen's warnings, and one element for each file, namespace and class that it found."""
    settings = (root / "docs/Doxyfile").read_text()
    settings += f'\nOUTPUT_DIRECTORY = "{output}"\nGENERATE_HTML = NO\nGENERATE_XML = YES\n'
    settings += "XML_PROGRAMLISTING = NO\n"
    if folder:
        settings += f'INPUT = "{folder}"\n'
    # Doxygen makes no more than the last folder, and leaves what an earlier run has made.
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    run = subprocess.run(
        ["doxygen", "-"], cwd=root, input=settings, check=True, capture_output=True, text=True
    )
    index = ElementTree.parse(output / "xml/index.xml")
    found = [
        ElementTree.parse(output / f"xml/{compound.get('refid')}.xml").getroot().find("compounddef")
        for compound in index.iter("compound")
    ]
    return run.stderr.splitlines(), found


def is_documented(element):
    texts = [element.find("briefdescription"), element.find("detaileddescription")]
    return any("".join(text.itertext()).strip() for text in texts if text is not None)


def speaks_for_itself(member, owner):
    """What is made, ended or forbidden in the usual way needs no words."""
    if member.get("kind") != "function":
        return False
    arguments = member.findtext("argsstring") or ""
    name = member.findtext("name")
    is_plain_constructor = name == owner.split("::")[-1] and arguments.startswith("()")
    return is_plain_constructor or name.startswith("~") or "=delete" in arguments.replace(" ", "")


def entities(compounds):
    """The name of everything public, and whether it is documented."""
    for compound in compounds:
        owner = compound.findtext("compoundname")
        if compound.get("kind") in ("class", "struct") and compound.get("prot") in VISIBLE:
            yield owner, is_documented(compound)
        if compound.get("kind") == "file":
            yield owner, is_documented(compound)
        for member in compound.iter("memberdef"):
            if member.get("prot") not in VISIBLE or member.get("kind") == "friend":
                continue
            # An override is documented where it is declared first.
            if speaks_for_itself(member, owner) or member.find("reimplements") is not None:
                continue
            name = member.findtext("qualifiedname") or member.findtext("name")
            yield name + (member.findtext("argsstring") or ""), is_documented(member)
            for value in member.iter("enumvalue"):
                yield f"{name}::{value.findtext('name')}", is_documented(value)


def comment_lines(header):
    """What a header's comments say, line by line and cell by cell; the code in them left out."""
    is_code = False
    for comment in re.findall(r"///<? ?(.*)", header):
        if comment in ("@code", "@endcode"):
            is_code = comment == "@code"
        elif not is_code and comment not in ("@file", "@mainpage") and not set(comment) <= set("|-"):
            words = re.sub(r"^(?:- |@(?:param|throws) \S+|@(?:return|see)\b)", "", comment)
            yield from words.split("|") if words.startswith("|") else [words]


def lost_lines(headers, compounds):
    """What doxygen has dropped on the way, as it does behind quotes that have no end."""
    def bare(text):
        return re.sub(r"[\s`*]", "", text)

    arrived = bare("".join(text for compound in compounds for text in compound.itertext()))
    for header in headers:
        for line in comment_lines(header.read_text()):
            if bare(line) not in arrived:
                yield f"{header}: does not arrive in the reference: {line.strip()}"


def exported_names(export_list):
    """The qualified names of what the DLL exports of ours; JsonCpp's documents itself."""
    for line in export_list.read_text().splitlines():
        name = TABLE.sub("", line).replace("[abi:cxx11]", "")
        name = re.match(r"[^(]*", name)[0]
        if not name.startswith("Json::"):
            yield name


def gaps(root, output, export_list, folder=None):
    warnings, compounds = read_headers(root, output, folder)
    yield from warnings
    files = [compound.find("location") for compound in compounds if compound.get("kind") == "file"]
    yield from lost_lines([root / place.get("file") for place in files], compounds)

    documented = {name.split("(")[0]: True for name, _ in entities(compounds)}
    for name, is_told in entities(compounds):
        if not is_told:
            yield f"not documented: {name}"
            documented[name.split("(")[0]] = False
    if not documented:
        yield "doxygen has found nothing"

    names = sorted(set(exported_names(export_list)))
    for name in names:
        # What is private has no place in the reference; its class has.
        owner = name.rpartition("::")[0]
        if not documented.get(name, documented.get(owner, False)):
            yield f"exported, but neither it nor its class is documented: {name}"
    print(f"{len(warnings)} warnings, {len(documented)} public names, {len(names)} exported names")


DOCUMENTED = """
/// @file
/// A header.

/// A class.
class Lamp {
  public:
    Lamp();
    Lamp(Lamp const&) = delete;
    ~Lamp();

    /// A function.
    void Light();

    int brightness = 0; ///< a field

  private:
    void hidden();
};

/// An enumeration.
enum Colour {
    Red, ///< a value
};

/// A function outside.
void darken();

/// A type.
using Lamps = Lamp*;

/// A macro.
#define LAMPS 1
"""
EXPORTS = "Lamp::Light()\nLamp::hidden()\nLamp::~Lamp()\ntypeinfo for Lamp\ndarken()\n"


def self_test(root):
    """The kinds of gap that go unseen: each comment is taken away once."""
    def seen(header, exports):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "Lamp.h").write_text(header)
            (folder / "exports.txt").write_text(exports)
            return list(gaps(root, folder / "output", folder / "exports.txt", folder))

    yield from seen(DOCUMENTED, EXPORTS)
    for comment in re.findall(r" *///<? [^@\n]*\n", DOCUMENTED):
        header = DOCUMENTED.replace(comment, "\n" if "<" in comment else "")
        if header == DOCUMENTED or not seen(header, EXPORTS):
            yield f"nobody misses: {comment.strip()}"
    if not seen(DOCUMENTED.replace("A function.", r"A function of \unknown."), EXPORTS):
        yield "nobody minds what doxygen warns of"
    if not seen(DOCUMENTED.replace("A function.", "A function of `& ' <`, which is cut."), EXPORTS):
        yield "nobody misses what does not arrive"
    if not seen(DOCUMENTED, EXPORTS + "Bulb::Glow()\n"):
        yield "nobody misses an exported function"


if sys.argv[1] == "--self-test":
    problems = list(self_test(pathlib.Path(sys.argv[2])))
else:
    problems = list(gaps(*map(pathlib.Path, sys.argv[1:4])))
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
