# The language, read strictly: only what has one clear meaning is accepted. This decides whether a slip has made a
# program that somebody may have meant. It shares no code with the assembler. It does not know which addressing modes
# exist: the assembler rejects the others.
import re
from dataclasses import dataclass, field

from programs import BUILT_IN, MNEMONICS

LISTS = {".byte": 1, ".word": 2, ".long": 4}
RANGES = {".code_regions", ".shadow_ranges"}
MOVES = {".org", ".bank", ".cloaked_segment"}
BARE = {".spill_point", ".cloaked_segment_end"}  # take no argument
NO_BYTES = {*RANGES, *MOVES, *BARE, ".include", ".macro", ".shadow_stage"}
DIRECTIVES = {*LISTS, *NO_BYTES, ".string", ".space"}
RESERVED = {".byte", ".word", ".org", ".dbyte", ".end"}  # never get a scope

NAME = r"\.?[A-Za-z_][\w.]*"
NUMBER = r"\$[0-9A-Fa-f]+|%[01]+|[0-9][0-9A-Fa-f]*[Hh]\b|[0-9]+"
RANGE = r"\$[0-9A-Fa-f]{1,4}-\$[0-9A-Fa-f]{1,4}"
TOKEN = re.compile(rf"\s*({NUMBER}|{NAME}|[-+*/()<>])")
STATEMENT = re.compile(r"\s*(?:(?P<label>[.>]?[A-Za-z_]\w*):)?\s*"
                       r"(?:(?P<name>[A-Za-z_]\w*)\s*(?P<equals>=)\s*(?P<value>.*)"
                       r"|(?P<word>\S*)(?P<gap>\s*)(?P<argument>.*?))\s*$")
# Not the address of any label of the programs, but as large.
SOME_ADDRESS = 0x2345


@dataclass
class Statement:
    file: str
    line: int  # from 1
    begin: int  # of the match's text, in the file
    match: re.Match  # of STATEMENT; its groups are the parts
    scope: str = ""
    macro: "Macro" = None  # whose body this is in

    def __getattr__(self, part):
        return self.match[part] or ""

    # Where a part is in its file.
    def span(self, part):
        return tuple(self.begin + at for at in self.match.span(part))


@dataclass
class Macro:
    name: str
    place: tuple
    parameters: list
    arguments: list = field(default_factory=list)  # of the calls
    calls: list = field(default_factory=list)  # their places


# The length of a line without its comment.
def code_length(line):
    quotes = 0
    for at, character in enumerate(line):
        quotes += character == '"'
        if character == ";" and quotes % 2 == 0:
            return at
    return len(line)


# The statements of a line, with where they begin in it.
def split_line(line):
    begin = 0
    for part in re.split(r"(?<=[ \t]):(?=[ \t])", line[:code_length(line)]):
        yield begin, part
        begin += len(part) + 1


def items(text):
    return [item.strip() for item in text.split(",")]


class Reading:
    def __init__(self, program):
        self.statements, self.macros = [], {}
        self.names = {}  # of the program: name -> a list of (place, expression); None for a label
        self.given = dict(self.names_given(program))  # before the first line: name -> value
        self.troubles = set()  # (place, what is wrong there)
        self.used = set()  # names
        self.read_statements(program)
        self.define_names()
        self.hasOrigin = False
        for statement in self.statements:
            self.read(statement)

    # Places are (file, line number).
    def trouble(self, place, text):
        self.troubles.add((place, text))

    def names_given(self, program):
        words = program.options
        symbols = [program.files[name] for option, name in zip(words, words[1:]) if option == "-s"]
        for text in symbols:
            yield from ((name, int(value, 16)) for name, value in re.findall(r"^(\w+)\s*=\s*\$(\w+)", text, re.M))
        yield from () if symbols else BUILT_IN.items()
        yield from ((name, 1) for name in ("__bank_code_reg", "__bank_data_reg"))
        for definition in (word for option, word in zip(words, words[1:]) if option == "-D"):
            name, _, value = definition.partition("=")
            yield name, int(value.replace("$", "0x") or "1", 0)

    def read_statements(self, program):
        for name in program.sources():
            scope, macro, begin = "", None, 0
            for number, line in enumerate(program.files[name].split("\n"), 1):
                if not line[:1].isspace():
                    macro = None
                for at, text in split_line(line):
                    statement = Statement(name, number, begin + at, STATEMENT.match(text), scope, macro)
                    if macro is None and statement.label[:1] not in ("", ".", ">"):
                        scope = statement.scope = statement.label
                    self.statements.append(statement)
                    if statement.word.lower() == ".macro":
                        macro = self.define_macro(statement)
                begin += len(line) + 1

    def define_macro(self, statement):
        name, *parameters = re.split(r"[\s,]+", statement.argument)
        self.macros[name] = Macro(name, place_of(statement), parameters)
        return self.macros[name]

    def define(self, name, statement, expression=None):
        before = self.names.setdefault(name, [])
        if any(expression is None or other != expression for _, other in before):
            for place in (place_of(statement), *(place for place, _ in before)):
                self.trouble(place, f"{name} twice")
        before.append((place_of(statement), expression))

    def define_names(self):
        for statement in self.statements:
            label = statement.label
            if statement.macro and label.lstrip(".>") in statement.macro.parameters:
                pass
            elif label:
                self.define(scoped(label.lstrip(">"), statement.scope), statement)
            if statement.name:
                self.define(statement.name, statement, statement.value)
            elif statement.word.lower() == ".bank":
                self.given["__bank_" + statement.argument] = 1
            elif statement.word in self.macros and not statement.macro:
                macro = self.macros[statement.word]
                macro.calls.append(place_of(statement))
                macro.arguments.append((dict(zip(macro.parameters, items(statement.argument))), statement))
                for argument in self.labels_of(macro, statement):
                    self.define(scoped(argument, statement.scope), statement)

    # The arguments that the macro makes labels of.
    def labels_of(self, macro, call):
        labels = {statement.label for statement in self.statements if statement.macro is macro}
        return {argument for name, argument in zip(macro.parameters, items(call.argument)) if name in labels}

    def read(self, statement):
        word, place = statement.word.lower(), place_of(statement)
        if word in MOVES:
            self.hasOrigin = True
        elif word and word not in NO_BYTES and not statement.macro and not self.hasOrigin:
            self.trouble(place, "no .org")
        if statement.name:
            self.check(statement, statement.value, 1 << 32)
        elif statement.word in self.macros:
            macro = self.macros[statement.word]
            if statement.macro or len(items(statement.argument)) != len(macro.parameters) and macro.parameters:
                self.trouble(place, "macro call")
        elif word.upper() in MNEMONICS:
            self.read_operand(statement)
        elif word in DIRECTIVES and (word in BARE) == (statement.argument == "") and statement.gap[:1] in ("", " "):
            self.read_argument(statement, word)
        elif word and not re.match(r"\.cloaked_segment[\t$]", word + statement.gap):  # which needs no space
            self.trouble(place, f"unknown {word}")

    def read_operand(self, statement):
        operand = statement.argument
        if operand.upper() in ("", "A"):
            return
        if operand[0] == "#":
            return self.check(statement, operand[1:], 0x100)
        operand = re.sub(r"^SP\s*,", "", operand, flags=re.I)
        pointer = re.fullmatch(r"\(([^()]*?)(\s*,\s*(?:X|SP)\))|\(([^()]*)\)(\s*,\s*Y)?", operand, re.I)
        if pointer:
            address = re.sub(r",\s*SP$", "", pointer[1] or pointer[3], flags=re.I)
            return self.check(statement, address, 0x100 if pointer[2] or pointer[4] else 0x10000)
        index = re.fullmatch(r"(.*?)((?:\s*,\s*(?:X|Y|SP))*)", operand, re.I)
        if index[1][:1] == "(" and index[1][-1:] == ")":
            return self.trouble(place_of(statement), "parentheses")
        self.check(statement, index[1], 0x10000)

    def read_argument(self, statement, word):
        argument, place = statement.argument, place_of(statement)
        if word in LISTS:
            for item in filter(None, items(argument)):
                self.check(statement, item, 1 << 8 * LISTS[word], isList=True)
        elif word in RANGES and not re.fullmatch(f"{RANGE}(,+{RANGE})*", argument):
            self.trouble(place, "ranges")
        elif word in (".org", ".space", ".shadow_stage"):
            self.check(statement, argument, 0x10000)
        elif word == ".string" and (not re.fullmatch(r'"[^":=]*"|[\w \']+', argument)):
            self.trouble(place, "text")

    # The expression is well formed, its names are known, and its value is less than the limit.
    def check(self, statement, text, limit, isList=False):
        for macro_arguments, call in statement.macro.arguments if statement.macro else [({}, statement)]:
            expanded = text
            for parameter, argument in macro_arguments.items():
                expanded = expanded.replace(parameter, argument)
            value = self.value(expanded, call.scope, isList or bool(statement.name), statement.name)
            if value is None or not -limit // 2 <= value < limit:
                self.trouble(place_of(statement), f"value of {expanded}")
                self.trouble(place_of(call), f"value of {expanded}")

    # None when something in it is wrong. Names of labels count as some address.
    def value(self, text, scope="", isList=False, defining=""):
        parts, at, text = [], 0, text.strip()
        while at < len(text):
            token = TOKEN.match(text, at)
            part = self.token_value(token[1], scope, isList, defining) if token else None
            if part is None:
                return None
            parts.append(part)
            at = token.end()
        low = parts.pop(0) if parts and parts[0] in "<>" else ""
        expression = " ".join(parts)
        if re.search(r"(?:^|[-+*/(]) *[-+]|[\d)] +[\d(<>]", expression):  # a sign, or no operator between two numbers
            return None
        try:
            value = eval(re.sub(r"[<>] (\d+)", r"(\1 & 255)", expression).replace("/", "//"))
        except ZeroDivisionError:
            value = 0
        except (SyntaxError, TypeError):
            return None
        return value & 255 if low == "<" else value >> 8 & 255 if low else value

    def token_value(self, token, scope, isList, defining):
        if not re.match(r"[\w.$%]", token):
            return token
        if re.fullmatch(NUMBER, token):
            return str(number(token))
        name = self.real_name(token, scope, isList)
        if name is None or name == defining:
            return None
        self.used.add(name)
        expression = self.names[name][-1][1] if name in self.names else str(self.given[name])
        value = SOME_ADDRESS if expression is None else self.value(expression, defining=name)
        return None if value is None else f"({value})" if value < 0 else str(value)

    # The name that a word in an expression stands for; None if there is none.
    def real_name(self, word, scope, isList=False):
        if not isList and word not in RESERVED:
            word = scoped(word, scope)
        for names in (self.names, self.given):
            if word in names:
                return word
        lower = word.lower()
        return next((name for names in (self.names, self.given) for name in names if name.lower() == lower), None)


# The real name of a label.
def scoped(label, scope):
    return scope + label if label.startswith(".") else label


def number(token):
    if token[0] in "$%":
        return int(token[1:], 16 if token[0] == "$" else 2)
    return int(token[:-1], 16) if token[-1] in "Hh" else int(token)


def place_of(statement):
    return statement.file, statement.line
