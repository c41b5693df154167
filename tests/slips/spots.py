# Where slips can be made: the spots of a program, by what is there.
import re
from dataclasses import dataclass

from language import (BARE, DIRECTIVES, LISTS, MNEMONICS, NAME, NUMBER, RANGES, Statement, code_length, place_of)

BRANCHES = {"BCC", "BCS", "BEQ", "BMI", "BNE", "BPL", "BRA", "BVC", "BVS"}


@dataclass
class Spot:
    file: str
    spans: list  # of the text, which is the same in each: (begin, end) in the file
    text: str
    statement: Statement = None  # there, or the first of its line
    all: dict = None  # of the program


# The words, numbers and characters of a statement, as (role, begin, end).
def in_statement(reading, statement):
    word = statement.word.lower()
    if statement.label:
        begin, end = statement.span("label")
        yield "local label" if statement.label[0] == "." else "label", begin, end
        yield "label's colon", end, end + 1
        if statement.word:
            yield "label and space", begin, statement.span("word")[0]
    if statement.name:
        yield "assigned name", *statement.span("name")
        yield "equals sign", *statement.span("equals")
        yield "assignment", statement.span("name")[0], statement.span("value")[1]
        yield from in_expression(reading, statement, "value")
    elif word.upper() in MNEMONICS:
        yield "mnemonic", *statement.span("word")
        yield from in_instruction(statement)
        yield from in_expression(reading, statement, "argument")
    elif word in DIRECTIVES:
        yield "directive", *statement.span("word")
        yield word, *statement.span("word")
        yield from in_directive(statement, word)
        if word not in (".string", ".include", ".macro", ".bank"):
            yield from in_expression(reading, statement, "argument")
    elif statement.word in reading.macros:
        yield "macro call", *statement.span("word")
        yield "macro arguments", *statement.span("argument")
        yield from in_expression(reading, statement, "argument")


def in_instruction(statement):
    begin, end = statement.span("argument")
    operand = statement.argument
    if not operand:
        return
    yield "operand", *statement.span("argument")
    yield "space after a mnemonic", *statement.span("gap")
    if statement.word.upper() in BRANCHES:
        yield "target", begin, end
    elif operand[0] == "#":
        yield "number sign", begin, begin + 1
        yield "immediate", begin + 1, end
    elif operand[0] != "(":
        yield "plain operand", begin, end
    else:
        yield "pointer", begin, end
    for index in re.finditer(r"\s*,\s*([XY])\b", operand, re.I):
        yield "index", begin + index.start(), begin + index.end()
        yield "index register", begin + index.start(1), begin + index.end(1)


def in_directive(statement, word):
    begin, end = statement.span("argument")
    if word not in BARE:
        yield "argument", *statement.span("argument")
        yield "space after a directive", *statement.span("gap")
    for quote in re.finditer('"', statement.argument):
        yield "quote", begin + quote.start(), begin + quote.end()
    if word == ".string":
        yield "text", begin, end
    if word == ".include":
        yield "include's name", begin + 1, end - 1
    if word == ".macro":
        yield "macro's name", begin, begin + len(re.split(r"[\s,]", statement.argument)[0])
        for comma in re.finditer(",", statement.argument):
            yield "macro's comma", begin + comma.start(), begin + comma.end()
    if word in LISTS:
        for item in re.finditer(r"[^,\s][^,]*", statement.argument):
            yield "item", begin + item.start(), begin + item.end()


def in_expression(reading, statement, part):
    begin, text = statement.span(part)[0], getattr(statement, part)
    for character in re.finditer(r"[<>,()]| ?[-+*] ?", text):
        yield character[0].strip(), begin + character.start(), begin + character.end()
    for token in re.finditer(rf"(?<![\w.])(?:{NUMBER}|{NAME})", text):
        role = role_of(reading, statement, token[0])
        if role:
            yield role, begin + token.start(), begin + token.end()
        if role in ("hexadecimal number", "decimal number", "binary number") and statement.word.lower() not in RANGES:
            yield "number", begin + token.start(), begin + token.end()


def role_of(reading, statement, token):
    if token[0] in "$%" or token[0].isdigit():
        others = "decimal number" if token.isdigit() else ""  # 12h has no role
        return {"$": "hexadecimal number", "%": "binary number"}.get(token[0], others)
    if statement.macro and token in statement.macro.parameters or token.upper() in ("A", "X", "Y", "SP"):
        return ""
    isList = statement.word.lower() in LISTS
    name = reading.real_name(token, statement.scope, isList or statement.name)
    macro = reading.macros.get(statement.word)
    if name is None or macro and token in reading.labels_of(macro, statement):
        return ""
    if name not in reading.names:
        return "platform name"
    if "." in token[1:]:
        return "scoped name in a list" if isList else ""
    return "local name" if token[0] == "." else "name"


# Lines, comments and whatever takes in several statements, as (role, spans).
def in_lines(program, reading, file):
    text = program.files[file]
    yield "file", [(0, 0)]
    statements = {}
    for statement in reading.statements:
        if statement.file == file:
            statements.setdefault(statement.line, []).append(statement)
    begin = 0
    for number, line in enumerate(text.split("\n")[:-1], 1):
        code, end = code_length(line), begin + len(line)
        first = statements[number][0]
        isCode = line[:code].strip() != ""
        if code < len(line):
            yield "comment" if isCode else "comment line", [(begin + code, begin + code + 1)]
            yield "comment's text", [(begin + code + 1, end)]
            yield "line with comment", [(begin, end)]
        elif isCode:
            yield "line without comment", [(begin, end)]
        if isCode and not first.macro:
            yield "line", [(begin, end)]
            yield from ((role, [(begin, end + 1)]) for role in roles_of_line(statements[number]))
            if first.word.upper() in BRANCHES:
                yield "branch line", [(begin, end)]
            if line[0].isspace() and first.word:
                yield "indentation", [(begin, first.span("word")[0])]
        if first.macro:
            yield "macro's indentation", [(begin, begin + len(line) - len(line.lstrip()))]
            yield from [("macro's next line", [(begin, begin)])] * (first.macro.place[1] + 1 < number)
        for separator in statements[number][1:]:
            yield "separator", [(separator.begin - 2, separator.begin + 1)]
        begin = end + 1


def roles_of_line(statements):
    first = statements[0]
    if first.word.lower() == ".org":
        yield "line of .org"
    elif first.name or first.label and not first.word:
        yield "line of a definition"
    elif first.word.upper() in MNEMONICS and not first.label:
        yield "line of an instruction"


# The definition and the uses of each local label together, and the lines where the label could be a second time.
def local_labels(program, reading):
    for statement in reading.statements:
        if statement.label[:1] != "." or statement.macro:
            continue
        lines = [s for s in reading.statements if (s.file, s.scope, s.macro) == (statement.file, statement.scope, None)]
        use = re.compile(rf"(?<!\w){re.escape(statement.label)}\b")
        spans = [(line.begin + at.start(), line.begin + at.end())
                 for line in lines for at in use.finditer(line.match.string)]
        if len(spans) > 1:
            yield Spot(statement.file, sorted(set(spans)), statement.label, statement)


# All spots of a program: role -> a list of them.
def spots_of(program, reading):
    spots = {"local label and its uses": list(local_labels(program, reading))}

    def add(role, file, spans, statement):
        text = program.files[file][slice(*spans[0])]
        spots.setdefault(role, []).append(Spot(file, spans, text, statement, spots))

    byLine = {}
    for statement in reading.statements:
        byLine.setdefault(place_of(statement), statement)
        for role, *span in in_statement(reading, statement):
            add(role, statement.file, [tuple(span)], statement)
    for file in program.sources():
        for role, spans in in_lines(program, reading, file):
            number = program.files[file].count("\n", 0, spans[0][0]) + 1
            add(role, file, spans, byLine[file, number])
    return spots
