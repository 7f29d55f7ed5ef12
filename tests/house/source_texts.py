"""Reads the texts that C++ sources throw and log, as far as this tree's sources go.

No compiler is at work: tokens, brackets, functions and constants are enough to follow a text from the
place where it is written down to the place where it leaves the library. What cannot be followed is
refused (`Unreadable`), never left out.
"""

import itertools
import re

TOKEN = re.compile(
    r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/)
      | (?P<directive>\#(?:\\\n|[^\n])*)
      | (?P<string>L?"(?:\\.|[^"\\\n])*")
      | (?P<character>L?'(?:\\.|[^'\\\n])*')
      | (?P<number>\d(?:'?[\w.])*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<sign>::|->|\.\.\.|&&|\|\||.)""",
    re.DOTALL | re.VERBOSE,
)
OPENING = {"(": ")", "{": "}", "[": "]"}
NO_FUNCTION = {"if", "for", "while", "switch", "catch", "return", "constexpr", "sizeof", "alignas"}
LABELS = {"public", "protected", "private"}
BEHIND_PARAMETERS = {"const", "noexcept", "override", "final", "try"}
# Names that may stand in front of a call; any other name there makes it a declaration.
IN_FRONT_OF_CALL = {"return", "throw", "else", "case", "co_return", "do"}
PLACEHOLDER = "<>"


class Unreadable(Exception):
    """A place in a source that this module does not understand."""


class Token:
    def __init__(self, kind, text, line):
        self.kind, self.text, self.line = kind, text, line


def split(tokens, sign, once=False):
    """The parts between such signs that are in no bracket."""
    parts, depth = [[]], 0
    for token in tokens:
        if token.kind == "sign":
            depth += (token.text in OPENING) - (token.text in OPENING.values())
        if depth == 0 and token.text == sign and not (once and len(parts) == 2):
            parts.append([])
        else:
            parts[-1].append(token)
    return parts


class Function:
    """A definition: where its name and body stand, its parameters, its constructor's initializers."""

    def __init__(self, source, name, position, parameters, initializers, begin, end):
        self.source, self.name, self.position = source, name, position
        self.parameters, self.initializers, self.begin, self.end = parameters, initializers, begin, end
        self.has_pack = bool(parameters) and parameters[-1].startswith("...")

    def takes(self, count):
        return count >= len(self.parameters) - 1 if self.has_pack else count == len(self.parameters)


class Source:
    """One file: its tokens, which bracket closes which, and the functions that it defines."""

    def __init__(self, path, text):
        self.path, self.folder, self.is_header = path, path.split("/")[0], path.endswith(".h")
        self.tokens = list(self._read(text))
        self.closing = self._match()
        self.opening = {end: begin for begin, end in self.closing.items()}
        self.functions = list(self._find_functions())

    def _read(self, text):
        line = 1
        for match in TOKEN.finditer(text):
            kind, found = match.lastgroup, match[0]
            if kind == "directive" and re.search(r"\bthrow\b|VL_Write|R\"", found):
                raise Unreadable(f"{self.path}:{line}: a macro throws or logs")
            if kind == "name" and found in ("R", "LR"):
                raise Unreadable(f"{self.path}:{line}: a raw string")
            if kind not in ("skip", "directive"):
                yield Token(kind, found, line)
            line += found.count("\n")

    def _match(self):
        closing, stack = {}, []
        for index, token in enumerate(self.tokens):
            if token.kind == "sign" and token.text in OPENING:
                stack.append(index)
            elif token.kind == "sign" and token.text in OPENING.values():
                if not stack or OPENING[self.tokens[stack[-1]].text] != token.text:
                    raise Unreadable(f"{self.path}:{token.line}: brackets do not match")
                closing[stack.pop()] = index
        return closing

    def text(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def place(self, index):
        return f"{self.path}:{self.tokens[index].line}"

    def names(self, function):
        """Whether a function of this name is declared or called here."""
        return any(
            token.text == function and self.text(index + 1) == "("
            for index, token in enumerate(self.tokens)
        )

    def _find_functions(self):
        for begin, end in self.closing.items():
            if self.text(begin) != "{":
                continue
            close = begin - 1
            while self.text(close) in BEHIND_PARAMETERS:
                close -= 1
            initializers = []
            # A constructor's initializers stand between its parameters and its body.
            while self.text(close) in (")", "}") and close in self.opening:
                open_ = self.opening[close]
                name = self._name_before(open_)
                in_front = self.text(name - 1)
                is_behind_label = in_front == ":" and self.text(name - 2) in LABELS
                if in_front not in (",", ":") or is_behind_label:
                    break
                initializers.append(open_)
                close = name - 2
            if self.text(close) != ")":
                continue
            open_ = self.opening[close]
            name = open_ - 1
            if self.tokens[name].kind != "name" or self.text(name) in NO_FUNCTION:
                continue
            parameters = [self._parameter(tokens) for tokens in self.arguments(open_)]
            yield Function(self, self.text(name), name, parameters, initializers, begin, end)

    def _name_before(self, index):
        """Where the qualified name begins that stands in front of a bracket."""
        index -= 1
        while self.text(index - 1) == "::":
            index -= 2
        return index

    @staticmethod
    def _parameter(tokens):
        names = [token.text for token in tokens if token.kind == "name"]
        is_pack = any(token.text == "..." for token in tokens)
        return ("..." if is_pack else "") + (names[-1] if len(names) > 1 else "")

    def arguments(self, open_):
        """What stands between brackets, cut at its commas."""
        inside = self.tokens[open_ + 1:self.closing[open_]]
        return split(inside, ",") if inside else []

    def function_around(self, index):
        around = [f for f in self.functions if f.begin < index < f.end]
        return max(around, key=lambda f: f.begin, default=None)

    def calls(self, name):
        """Where the bracket stands of each call of a function, declarations left out."""
        defined = {function.position for function in self.functions}
        for index, token in enumerate(self.tokens):
            if token.kind != "name" or token.text != name or self.text(index + 1) != "(":
                continue
            front = self._name_before(index + 1) - 1
            before = self.tokens[front] if front >= 0 else Token("sign", ";", 0)
            declares = before.text in (">", "&", "*") or (
                before.kind == "name" and before.text not in IN_FRONT_OF_CALL
            )
            if index not in defined and not declares:
                yield index + 1


class Scope:
    """A function from within; its parameters are bound to a caller's arguments or not."""

    def __init__(self, source, function):
        self.source, self.function, self.bound = source, function, None

    @classmethod
    def called(cls, function, arguments, caller):
        scope = cls(function.source, function)
        scope.bind(arguments, caller)
        return scope

    def has(self, name):
        return bool(self.function) and name in [p.lstrip(".") for p in self.function.parameters]

    def bind(self, arguments, scope):
        expressions = [(argument, scope) for argument in arguments]
        names = [parameter.lstrip(".") for parameter in self.function.parameters]
        self.bound = {name: [expression] for name, expression in zip(names, expressions)}
        if self.function.has_pack:
            self.bound[names[-1]] = expressions[len(names) - 1:]


class Follow(Exception):
    """A text is a parameter: the function's callers know it."""

    def __init__(self, scope):
        super().__init__()
        self.scope = scope


class Tree:
    """All sources, and what their expressions stand for."""

    def __init__(self, texts):
        self.sources = {path: Source(path, text) for path, text in texts.items()}
        self.constants = {path: self._constants(source) for path, source in self.sources.items()}

    def _constants(self, source):
        """The tokens behind each `constexpr ... NAME = ` and `constexpr ... NAME[] = `."""
        found = {}
        for index, token in enumerate(source.tokens):
            if token.text != "constexpr":
                continue
            end = index
            while source.text(end) not in (";", "{", "(", ""):
                end += 1
            between = [t.text for t in source.tokens[index:end]]
            if "=" not in between:
                continue
            equals = index + between.index("=")
            name = equals - 3 if source.text(equals - 1) == "]" else equals - 1
            stop = equals
            while source.text(stop) != ";":
                stop = source.closing.get(stop, stop) + 1
            found[source.text(name)] = source.tokens[equals + 1:stop]
        return found

    def constant(self, source, name):
        """A constant of this file, or else of a header that this folder may include."""
        if name in self.constants[source.path]:
            return self.constants[source.path][name], source
        for path, constants in self.constants.items():
            header = self.sources[path]
            may_include = header.folder in ("foundation", "vrUtils", source.folder)
            if header.is_header and may_include and name in constants:
                return constants[name], header
        return None

    def every(self, evaluate, where):
        """What `evaluate` gives, once for each caller where a text comes from callers."""
        try:
            return list(evaluate())
        except Follow as follow:
            scope = follow.scope
        results = []
        for source, bracket in self._callers(scope.function):
            scope.bind(source.arguments(bracket), Scope(source, source.function_around(bracket)))
            results += self.every(evaluate, source.place(bracket))
        scope.bound = None
        if not results:
            raise Unreadable(f"{where}: nobody calls {scope.function.name}")
        return results

    def functions(self, name, count):
        for source in self.sources.values():
            yield from (f for f in source.functions if f.name == name and f.takes(count))

    def _callers(self, function):
        """Calls in the function's own file, and where the header that declares it may be included."""
        folder = function.source.folder
        is_shared = any(
            source.is_header and source.folder in (folder, "vrUtils") and source.names(function.name)
            for source in self.sources.values()
        )
        for source in self.sources.values():
            may_call = folder in ("foundation", "vrUtils", source.folder)
            if source is not function.source and not (is_shared and may_call):
                continue
            for bracket in source.calls(function.name):
                if function.takes(len(source.arguments(bracket))):
                    yield source, bracket

    def values(self, tokens, scope, is_piece=False):
        """The texts that an expression may stand for. What cannot be known before the program runs
        is a placeholder, but only as a piece of a text: as the whole of one it is not readable."""
        tokens = self._without_conversion(tokens)
        if not tokens:
            raise Unreadable(f"{scope.source.path}: an argument is missing")

        choice = split(tokens, "?", once=True)
        if len(choice) == 2:
            first, second = split(choice[1], ":", once=True)
            return self.values(first, scope, is_piece) + self.values(second, scope, is_piece)
        sum_ = split(tokens, "+")
        if len(sum_) > 1:
            return self._joined([(part, scope) for part in sum_])
        if all(token.kind in ("string", "character") for token in tokens):
            return ["".join(self._spelt(token) for token in tokens)]
        if len(tokens) == 1 and tokens[0].kind == "number":
            return [tokens[0].text]
        if tokens[0].text == "composeMessage" and tokens[1].text == "(":
            return self._joined(self._pieces(tokens, scope))
        return self._named(tokens, scope, is_piece)

    def known_or_placeholder(self, tokens, scope):
        """As `values`, for what is often known to the running program only."""
        try:
            return self.values(tokens, scope)
        except Unreadable:
            return [PLACEHOLDER]

    def _pieces(self, tokens, scope):
        for argument in split(tokens[2:-1], ","):
            if argument[-1].text != "...":
                yield argument, scope
            elif scope.bound is None:
                raise Follow(scope)
            else:
                yield from scope.bound[argument[0].text]

    def _joined(self, expressions):
        parts = [self.values(tokens, scope, True) for tokens, scope in expressions]
        return ["".join(choice) for choice in itertools.product(*parts)]

    def _named(self, tokens, scope, is_piece):
        names = [token.text for token in tokens if token.text != "::"]
        is_name = all(token.kind == "name" or token.text == "::" for token in tokens)
        if is_name and names[-1] == "hex":
            return [""]
        if len(tokens) == 1 and scope.has(names[0]):
            if scope.bound is not None:
                [(bound, caller)] = scope.bound[names[0]]
                return self.values(bound, caller, is_piece)
            if not is_piece:
                raise Follow(scope)
        elif is_name and (found := self.constant(scope.source, names[-1])):
            return self.values(found[0], Scope(found[1], None), is_piece)
        if is_piece:
            return [PLACEHOLDER]
        spelt = "".join(token.text for token in tokens)
        raise Unreadable(f"{scope.source.path}:{tokens[0].line}: {spelt} cannot be followed")

    @staticmethod
    def _spelt(token):
        text = token.text[token.text.index(token.text[-1]) + 1:-1]
        return re.sub(r"\\([\"'\\])", r"\1", text)

    @staticmethod
    def _without_conversion(tokens):
        """Without `.c_str()` behind it and `static_cast<...>(` around it."""
        texts = [token.text for token in tokens]
        if texts[-4:] == [".", "c_str", "(", ")"]:
            return tokens[:-4]
        if texts[:1] == ["static_cast"] and texts[-1:] == [")"]:
            return tokens[texts.index("(") + 1:-1]
        return tokens
