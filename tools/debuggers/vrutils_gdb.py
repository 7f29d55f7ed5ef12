"""Shows the values of vrUtils in gdb as a person would write them.

Load it once in each gdb that debugs a host of the library, or from ~/.gdbinit:

    source tools/debuggers/vrutils_gdb.py

    (gdb) print clip
    $1 = \\\\server\\share\\Media\\clip.mxf = {type = vr::Path::eFile, ...}
    (gdb) print rate
    $2 = unset
    (gdb) print failure
    $3 = vrUtils::Files::LockFileException 0x80e0609e "Unable to lock C:\\Media\\clip.mxf"

A compiler describes a class of a DLL in the DLL's own debug information. Where that is not at hand
gdb says `<incomplete type>`: compile the host with -g -femit-class-debug-always. A reference to
`vrException` shows the class that was really thrown.

The printers only read memory; they call nothing in the program. What is no text, as in a local
variable that is not built yet, is shown as `<unreadable>`.
"""

import locale
import re

import gdb
import gdb.printing

UNREADABLE = "<unreadable>"
LONGEST_TEXT = 32767
BYTES_OF_A_CHARACTER = 2


def writable(text):
    """The text with control characters, and what the terminal's encoding lacks, as escapes."""
    encoding = locale.getpreferredencoding(False)
    plain = (c if c.isprintable() else c.encode("unicode_escape").decode() for c in text)
    return "".join(plain).encode(encoding, "backslashreplace").decode(encoding)


def memory_at(address, size):
    return gdb.selected_inferior().read_memory(address, size).tobytes()


def text_at(address, length):
    """Up to as many characters as gdb itself would show of a text: `set print elements`."""
    shown = min(length, gdb.parameter("print elements") or LONGEST_TEXT)
    try:
        memory = memory_at(address, shown * BYTES_OF_A_CHARACTER)
    except (gdb.MemoryError, OverflowError):
        return UNREADABLE
    return writable(memory.decode("utf-16-le", "surrogatepass")) + ("..." if length > shown else "")


def wide_string(value):
    """The text of a std::wstring, which has a zero character behind it unless it is not built yet."""
    try:
        begin, length = int(value["_M_dataplus"]["_M_p"]), int(value["_M_string_length"])
        end = memory_at(begin + length * BYTES_OF_A_CHARACTER, BYTES_OF_A_CHARACTER)
    except (gdb.MemoryError, OverflowError):
        return UNREADABLE
    return UNREADABLE if any(end) else text_at(begin, length)


def quoted(text):
    return f'"{text}"'


class PathCreatorPrinter:
    """The text that the builder holds."""

    NEEDS = "m_path"

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return wide_string(self.value["m_path"])


class PathSplitterPrinter:
    """The normal form, and the parts that it is made of."""

    NEEDS = "m_inlineText"
    PARTS = ("root", "drive", "folders", "name", "extension")

    def __init__(self, value):
        self.value = value
        self.first, self.ends = self.layout() or (0, None)

    def layout(self):
        """Where the text begins and where each part ends; None if the object is not built yet."""
        inside, moved = self.value["m_inlineText"]["_M_elems"], self.value["m_longText"]
        try:
            ends = [int(self.value[f"m_{name}End"]) for name in self.PARTS]
            room = int(moved["_M_string_length"])
            first = int(moved["_M_dataplus"]["_M_p"] if room else inside.address)
        except gdb.MemoryError:
            return None
        room = room or inside.type.strip_typedefs().range()[1] + 1
        return (first, ends) if ends == sorted(ends) and ends[-1] <= room else None

    def part(self, begin, end):
        return text_at(self.first + begin * BYTES_OF_A_CHARACTER, end - begin) if self.ends else UNREADABLE

    def to_string(self):
        return self.part(0, self.ends[-1] if self.ends else 0)

    def children(self):
        begin = 0
        for name, end in zip(self.PARTS, self.ends or (0,) * len(self.PARTS)):
            yield name, quoted(self.part(begin, end))
            begin = end


class PathPrinter:
    """The normal form where the path has been taken apart, else the text as it was entered."""

    NEEDS = "m_splitter"

    def __init__(self, value):
        self.value = value
        # Where the standard library's unique_ptr keeps its pointer.
        holder = gdb.lookup_type("std::_Head_base<0, vr::PathSplitter*, false>")
        parse = value["m_splitter"]["_M_t"]["_M_t"].cast(holder)["_M_head_impl"]
        self.parse = PathSplitterPrinter(parse.dereference()) if parse else None

    def to_string(self):
        return self.parse.to_string() if self.parse else self.entered()

    def children(self):
        yield "type", self.value["m_type"]
        yield "entered", quoted(self.entered())
        if self.parse:
            yield from self.parse.children()

    def entered(self):
        return wide_string(self.value["m_path"])


class UtilValuePrinter:
    """The value, or `unset`."""

    NEEDS = "m_isSet"

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return self.value["m_value"].format_string() if self.value["m_isSet"] else "unset"


def class_of_table(table):
    """The class that a table of virtual functions belongs to. Of a DLL without symbols gdb knows only
    what it exports, by its mangled name."""
    symbol = gdb.execute(f"info symbol {table}", to_string=True)
    exported = re.match(r"\w+!(_ZTV\w+)", symbol)
    if exported:
        symbol = gdb.execute(f"demangle -- {exported[1]}", to_string=True)
    found = re.match(r"vtable for (.+?)(?: \+ \d+ in section|$)", symbol)
    return found and found[1].rstrip()


def class_name(value):
    """The class of the object itself, which may be derived from the one that it is seen as. gdb has a
    way to tell, but warns at each class whose symbols it lacks."""
    try:
        dynamic = class_of_table(int(value["_vptr.vrException"]))
    except gdb.error:
        dynamic = None
    return dynamic or str(value.type.strip_typedefs().unqualified())


class ExceptionPrinter:
    """Class, code and message, and the place of the throw where one was given."""

    NEEDS = "m_code"

    def __init__(self, value):
        self.value = value

    def to_string(self):
        code = int(self.value["m_code"])
        message = wide_string(self.value["m_message"])
        return f"{class_name(self.value)} {code:#010x} {quoted(message)}{self.place()}"

    def place(self):
        file, line = wide_string(self.value["m_file"]), int(self.value["m_line"])
        return f" at {file}:{line}" if file or line else ""


class StorageExceptionPrinter:
    """Class, Windows error and the path or host that it concerns."""

    NEEDS = "m_error"

    def __init__(self, value):
        self.value = value

    def to_string(self):
        error, text = int(self.value["m_error"]), wide_string(self.value["m_text"])
        return f"{class_name(self.value)} error {error} {quoted(text)}"


class InvalidIndexPathPrinter:
    """Class and the path that was refused."""

    NEEDS = "m_path"

    def __init__(self, value):
        self.value = value

    def to_string(self):
        path = gdb.default_visualizer(self.value["m_path"])
        return f"{class_name(self.value)} {quoted(path.to_string() if path else '<incomplete type>')}"


class HostExceptionPrinter:
    """The class, which is all there is."""

    NEEDS = None

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return class_name(self.value)


PRINTERS = {
    "vr::PathCreator": PathCreatorPrinter,
    "vr::PathSplitter": PathSplitterPrinter,
    "vr::Path": PathPrinter,
    "UtilValue": UtilValuePrinter,
    "vrException": ExceptionPrinter,
    "vrUtils::Storage::vrStorageException": StorageExceptionPrinter,
    "vrUtils::Files::vrInvalidIndexPathException": InvalidIndexPathPrinter,
    "vrUtils::Host::vrHostException": HostExceptionPrinter,
}


def printer_of(kind):
    """The printer of a class: its own, or that of the nearest class it is derived from. None for a
    class of whose members nothing is known."""
    printer = PRINTERS.get((kind.name or "").partition("<")[0])
    if printer:
        members = {field.name for field in kind.fields()}
        return printer if printer.NEEDS is None or printer.NEEDS in members else None
    bases = (field.type for field in kind.fields() if field.is_base_class)
    return next(filter(None, map(printer_of, bases)), None)


def has_virtual_functions(kind):
    return any(
        (field.name or "").startswith("_vptr") or field.is_base_class and has_virtual_functions(field.type)
        for field in kind.fields())


def referenced(value):
    """The object behind a reference; as a copy where gdb would look for its real class on the way, and
    warn if it lacks the symbols."""
    kind = value.type.target().strip_typedefs()
    if kind.code != gdb.TYPE_CODE_STRUCT or not has_virtual_functions(kind):
        return value.referenced_value()
    try:
        memory = gdb.selected_inferior().read_memory(int(value.address), kind.sizeof)
    except gdb.MemoryError:
        return value.referenced_value()
    return gdb.Value(memory.tobytes(), kind)


class VrUtilsPrinters(gdb.printing.PrettyPrinter):
    """What gdb asks for each value."""

    def __init__(self):
        super().__init__("vrUtils", [gdb.printing.SubPrettyPrinter(name) for name in PRINTERS])

    def __call__(self, value):
        if value.type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            value = referenced(value)
        kind = value.type.strip_typedefs()
        if kind.code != gdb.TYPE_CODE_STRUCT:
            return None
        printer = printer_of(kind)
        return printer(value) if printer else None


gdb.printing.register_pretty_printer(None, VrUtilsPrinters(), replace=True)
