"""Proves that gdb shows the library's values as tools/debuggers/vrutils_gdb.py promises.

printers.py ROOT SUBJECT.exe

The real thing: the subject runs under Wine in Debian's gdbserver.exe, the gdb of the same target
connects to it over a port of this machine, stops in `stopHere` and prints the caller's variables. Once
with the DLL as it was built, and once with a copy that has lost its symbols.
"""

import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile

SERVER = "/usr/share/win64/gdbserver.exe"
DEBUGGER = "x86_64-w64-mingw32-gdb"
STRIP = "x86_64-w64-mingw32-strip"
SECONDS = 60
ATTEMPTS = 3

LONG_FOLDER = "x" * 300
EXPECTED = {
    "entered": r'\\server\share\Media\clip.mxf = {type = vr::Path::eFile, '
               r'entered = "\\server\share\Media\clip.mxf", root = "\\server\", drive = "", '
               r'folders = "share\Media\", name = "clip", extension = ".mxf"}',
    "parsed": r'C:\Media\day.1\clip.mxf = {type = vr::Path::eFile, '
              r'entered = "C:\Media\\day.1\clip.mxf", root = "", drive = "C:\", '
              r'folders = "Media\day.1\", name = "clip", extension = ".mxf"}',
    "relative": r'Media\ = {type = vr::Path::eFolder, entered = "Media\", root = "", drive = "", '
                r'folders = "Media\", name = "", extension = ""}',
    "foreign": r'C:\Ü映\a.mxf = {type = vr::Path::eFile, entered = "C:\Ü映\a.mxf"}',
    "endless": rf'C:\{LONG_FOLDER}\clip.mxf = {{type = vr::Path::eFile, '
               rf'entered = "C:\{LONG_FOLDER}\clip.mxf", root = "", drive = "C:\", '
               rf'folders = "{LONG_FOLDER}\", name = "clip", extension = ".mxf"}}',
    "creator": r'C:\Media',
    "splitter": r'\\server\share\clip.mxf = {root = "\\server\", drive = "", folders = "share\", '
                r'name = "clip", extension = ".mxf"}',
    "unsetRate": "unset",
    "setRate": "48000",
    "setPath": r'Media\ = {type = vr::Path::eFolder, entered = "Media\"}',
    "plain": 'vrException 0x80004005 "no such thing" at Unit:12',
    "blank": 'vrException 0x00000000 ""',
    "own": '(anonymous namespace)::OwnException 0x80e06007 "of a host" at Subject:21',
    "lock": r'vrUtils::Files::LockFileException 0x80e0609e '
            r'"Unable to lock \\server\share\Media\clip.mxf"',
    "index": r'vrUtils::Files::vrInvalidIndexPathException "C:\Media\\day.1\clip.mxf"',
    "folder": r'vrUtils::Storage::vrCreateFolderException error 5 "C:\Media\"',
    "host": "vrUtils::Host::vrFailedToGetHostNameException",
}
# The arguments of stopHere are references: the failure is seen as a vrException, shown as what it is.
EXPECTED_REFERENCES = {
    "failure": EXPECTED["lock"], "path": EXPECTED["relative"], "parts": EXPECTED["splitter"],
}
# With gdb's own limit for texts set to four characters; then with values that cannot be right.
EXPECTED_LAST = {
    "cut": r"C:\M...",
    "unended": "<unreadable>",
    "disordered": '<unreadable> = {root = "<unreadable>", drive = "<unreadable>", '
                  'folders = "<unreadable>", name = "<unreadable>", extension = "<unreadable>"}',
}
# Also where `info locals` shows variables that are not built yet.
FAILURES = re.compile(
    r"Python Exception|Traceback|incomplete type|Error while|error reading|can't find", re.IGNORECASE)


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


def commands(root, subject, port):
    def prints(names):
        return "\n".join(f"echo <{name}>\noutput {name}\necho \\n" for name in names)

    return f"""
set pagination off
set confirm off
set width 0
set print elements 0
set sysroot /nonexistent
set solib-search-path {subject.parent}
source {root}/tools/debuggers/vrutils_gdb.py
target remote localhost:{port}
break main
continue
info locals
break stopHere
continue
{prints(EXPECTED_REFERENCES)}
up
{prints(EXPECTED)}
set print elements 4
echo <cut>
output creator
set print elements 0
set var creator.m_path._M_string_length = 3
echo \\n<unended>
output creator
set var splitter.m_driveEnd = 1
echo \\n<disordered>
output splitter
echo \\n
kill
"""


def start_server(root, subject):
    """A server that listens, and its port. Rarely a program ends under Wine before it has said a word,
    and the port may be somebody else's by the time it is asked for: then another one is started."""
    for _ in range(ATTEMPTS):
        port = free_port()
        server = subprocess.Popen(
            [root / "scripts/wine", SERVER, f"localhost:{port}", str(subject)],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        for line in server.stdout:
            print("server:", line.rstrip())
            if "Listening on port" in line:
                return server, port
        server.wait()
    sys.exit("the server of the debugger does not start")


def debug(root, subject):
    server, port = start_server(root, subject)
    try:
        with tempfile.NamedTemporaryFile("w", suffix=".gdb") as script:
            script.write(commands(root, subject, port))
            script.flush()
            debugger = subprocess.run(
                [DEBUGGER, "-nx", "-batch", "-x", script.name, str(subject)], timeout=SECONDS,
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8", errors="replace")
        return debugger.stdout
    finally:
        server.terminate()
        server.wait()


def faults(output):
    shown = dict(re.findall(r"^<(\w+)>(.*)$", output, re.MULTILINE))
    for name, expected in {**EXPECTED, **EXPECTED_REFERENCES, **EXPECTED_LAST}.items():
        if shown.get(name) != expected:
            yield f"{name}: expected {expected}\n{' ' * len(name)}  shown    {shown.get(name)}"
    for failure in FAILURES.findall(output):
        yield f"the debugger says: {failure}"


def without_symbols(subject, folder):
    """A copy of the subject in the folder, beside DLLs without symbols."""
    for file in [subject, *subject.parent.glob("*.dll")]:
        shutil.copy(file, folder)
    for dll in pathlib.Path(folder).glob("*.dll"):
        subprocess.run([STRIP, "--strip-all", dll], check=True)
    return pathlib.Path(folder) / subject.name


root, subject = map(pathlib.Path, sys.argv[1:])
failed = False
with tempfile.TemporaryDirectory() as folder:
    for tried in (subject, without_symbols(subject, folder)):
        output = debug(root, tried)
        problems = list(faults(output))
        if problems:
            print(tried, output, *problems, sep="\n")
            failed = True
sys.exit(1 if failed else 0)
