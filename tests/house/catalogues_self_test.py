"""Shows that the comparison with the catalogues sees every kind of difference.

catalogues_self_test.py ROOT   lists the differences that nobody notices
"""

import pathlib
import sys

sys.dont_write_bytecode = True
from catalogues import CATALOGUES, problems_of, read_tree

# What is changed: the catalogue, the file, what stands in it and what is to stand there instead.
CHANGES = [
    ("failures", "files/FileHandle.cpp", "Unable to open file", "Cannot open file"),
    ("failures", "files/SmallFiles.cpp", ", expected ", ", wanted "),
    ("failures", "foundation/FailureCodes.h", "0x80E0609D", "0x80E0609F"),
    ("failures", "net/Socket.cpp", "SocketFailedWaiting);", "GeneralFailure);"),
    ("failures", "net/Instancing.cpp", "firstBasePort = 60772", "firstBasePort = 60773"),
    ("failures", "net/LocalHostName.cpp", "vrFailedToGetHostNameException()", "vrHostException()"),
    ("failures", "media/ParsingFailure.h", '"ParsingUtils"', '"Parsing"'),
    ("failures", "storage/ShareConnection.cpp", "? ShareCredentialsConflict", "? GeneralFailure"),
    ("failures", "vrUtils/CmdLineProcessor.h", "text, 0x80E0603D", "text, 0x80E0603E"),
    ("failures", "vrUtils/Host.h", "vrHostException {", "vrNewException {"),
    ("failures", "vrUtils/Host.h", "public vrHostException", "public vrException"),
    ("failures", "vrUtils/Host.h", "public vrHostException", "public vrNewException"),
    ("failures", "vrUtils/XSLT.h", "0x80E0609A)", "0x80E0609B)"),
    ("failures", "vrUtils/vrStatCollector.h", "Json::RuntimeError", "Json::LogicError"),
    ("failures", "docs/failures.md", "`UtilValue::get`", "`UtilValue::fetch`"),
    ("log-lines", "files/LockFile.cpp", "Locked lock file", "Has locked lock file"),
    ("log-lines", "foundation/Log.h", "plannedEnd = 2", "plannedEnd = 1"),
    ("log-lines", "foundation/Log.h", 'L"vrUtils"', 'L"Utils"'),
    ("log-lines", "media/Assets.cpp", "LogLevel::failure", "LogLevel::warning"),
    ("log-lines", "storage/TempFolder.cpp", "Using temporary", "Taking temporary"),
    ("log-lines", "process/ExternalProcessImplementation.cpp", "command line - ", "line - "),
    ("log-lines", "docs/log-lines.md", "`~LockFile`", "`~LockedFile`"),
]

# What is added to a source, which then throws or logs more, or in a way that cannot be read.
ADDITIONS = [
    ("failures", 'void f() { throw vrException("Files", 1, L"New", GeneralFailure); }'),
    ("failures", "void f() { throw std::length_error(text); }"),
    ("failures", "void f() { throw failure; }"),
    ("failures", "void f() { throw makeFailure(1); }"),
    ("failures", "void f() { throw vrException(1, 2, 3); }"),
    ("failures", "void f() { throw vrException(__LINE__, describe(1)); }"),
    ("failures", "void f(wchar_t const* text) { throw vrException(__LINE__, text); }"),
    ("failures", "#define FAIL throw vrException()"),
    ("log-lines", 'void f() { VL_WriteLog(LogLevel::trace, logModule, L"New"); }'),
    ("log-lines", 'void f() { logComposed(LogLevel::trace, composeMessage(L"New ", 1)); }'),
    ("log-lines", "void f() { VL_WriteLog(LogLevel::trace, logModule, describe(1)); }"),
    ("log-lines", 'void f(char level) { VL_WriteLog(level, logModule, L"New"); }'),
    ("log-lines", "auto const f = &VL_WriteLog;"),
    ("log-lines", 'void f() { VL_WriteLog(LogLevel::trace, logModule, LR"(New)"); }'),
    ("log-lines", "#define LOG(text) VL_WriteLog(3, logModule, text)"),
]


def without_one_row(page, facts):
    """The page as often as it has rows that the sources tell of, each time without one of them."""
    lines, head = page.splitlines(), None
    for index, line in enumerate(lines):
        if not line.startswith("|"):
            head = None
        elif head is None:
            head = line.split("|")[1].strip()
        elif head in facts and not line.startswith("|-"):
            yield line, "\n".join(lines[:index] + lines[index + 1:])


def self_test(root):
    """The differences that go unseen."""
    texts = read_tree(root)
    for catalogue, (path, read_facts) in CATALOGUES.items():
        facts = read_facts(texts)
        yield from problems_of(catalogue, texts, facts)
        for row, page in without_one_row(texts[path], facts):
            if not problems_of(catalogue, {**texts, path: page}, facts):
                yield f"{path}: nobody misses {row}"
    for catalogue, path, old, new in CHANGES:
        if old not in texts[path]:
            yield f"{path}: {old} is not there to be changed"
        elif not problems_of(catalogue, {**texts, path: texts[path].replace(old, new)}):
            yield f"{path}: nobody minds {new} instead of {old}"
    for catalogue, code in ADDITIONS:
        path = "files/FileHandle.cpp"
        if not problems_of(catalogue, {**texts, path: f"{texts[path]}\n{code}\n"}):
            yield f"{path}: nobody minds {code}"


unseen = list(self_test(pathlib.Path(sys.argv[1])))
for difference in unseen:
    print(difference)
sys.exit(1 if unseen else 0)
