"""Files of another assembler as a list of statements: includes read, macros expanded, blocks that cannot be converted
marked."""

import re
from dataclasses import dataclass, field
from pathlib import Path, PurePosixPath

from expressions import Refused
from instructions import split_list

DEEPEST = 20
MOST_COPIES = 1_000_000


@dataclass(eq=False)
class File:
    path: Path
    output: PurePosixPath  # below the folder of the results
    includes: list = field(default_factory=list)


@dataclass(eq=False)
class Statement:
    """A line of a file, or what a macro call makes of a line of the macro. operation is in lower case."""
    file: File
    line: int
    text: str
    label: str
    operation: str
    argument: str
    comment: str
    parts: list = None       # of a macro call: its statements
    macro: object = None     # of a macro call, or of the line that begins a macro
    refused: str = ""
    dropped: bool = False    # has no counterpart and needs none
    facts: dict = field(default_factory=dict)  # what the dialect notes between its passes


@dataclass(eq=False)
class Macro:
    name: str
    parameters: list
    body: list  # of lines
    locals: list = field(default_factory=list)
    calls: list = field(default_factory=list)


def lines_of(content):
    """Comments may be in any encoding; what is written is UTF-8."""
    try:
        text = content.decode("utf-8")
    except UnicodeDecodeError:
        text = content.decode("latin-1")
    lines = text.split("\n")
    return [line.rstrip("\r") for line in (lines[:-1] if lines[-1] == "" else lines)]


def first_directive(text):
    """The directive at the front of a line, or after its label."""
    match = re.match(r"\s*(?:[^\s.;\"']+\s+)?(\.\w+)", text)
    return match.group(1).lower() if match else ""


def split_comment(text):
    """The statement and the comment of a line; quotes may hide a semicolon."""
    quote = ""
    for index, character in enumerate(text):
        if quote:
            quote = "" if character == quote else quote
        elif character == '"' or character == "'" and text[index + 2:index + 3] == "'":
            quote = character
        elif character == ";":
            return text[:index].rstrip(), text[index:].rstrip()
    return text.rstrip(), ""


class Reader:
    """Reads a program. dialect is a module such as tass.py."""

    def __init__(self, dialect, folders):
        self.dialect = dialect
        self.folders = folders
        self.statements = []
        self.files = []
        self.outputs = set()
        self.macros = dict(dialect.builtin_macros())
        self.defined = []  # all macros of the program
        self.copies = 0    # of macros expanded so far
        self.ended = False

    def read(self, path):
        main = File(path, PurePosixPath(path.name))
        self.read_file(main, 0)
        return self.statements

    def read_file(self, file, depth):
        self.files.append(file)
        self.outputs.add(file.output)
        lines = lines_of(file.path.read_bytes())
        at = 0
        while at < len(lines):
            at = self.read_line(file, lines, at, depth)

    def statement(self, file, number, text):
        body, comment = split_comment(text)
        made = Statement(file, number, text, "", "", "", comment)
        try:
            if self.ended:
                made.dropped = True
                return made
            if any(ord(character) > 0x7F for character in body):
                raise Refused("a character that is not ASCII")
            made.label, spelled, made.argument = self.dialect.split_statement(body, self.macros)
            made.operation, made.facts["spelled"] = spelled.lower(), spelled
        except Refused as reason:
            made.refused = str(reason)
        return made

    def read_line(self, file, lines, at, depth):
        """Takes one line, or all of a block; returns the index of the next."""
        statement = self.statement(file, at + 1, lines[at])
        self.statements.append(statement)
        if statement.refused:
            return at + 1
        if self.dialect.begins_macro(statement):
            return self.read_macro(statement, lines, at)
        ends = self.dialect.BLOCKS.get(statement.operation)
        if ends:
            return self.read_block(statement, lines, at, ends)
        if statement.operation == self.dialect.INCLUDE:
            self.include(statement, depth)
        elif statement.operation == ".macpack":
            self.macros.update(self.dialect.PACKS.get(statement.argument.lower(), {}))
        elif statement.operation == self.dialect.END:
            statement.dropped = self.ended = True
        elif statement.operation in self.macros and not statement.operation.startswith("."):
            self.call(statement, depth)
        return at + 1

    def read_block(self, statement, lines, at, ends):
        """The whole block is refused."""
        begins = {word for word, others in self.dialect.BLOCKS.items() if others == ends}
        nested = 0
        while True:
            word = first_directive(lines[at])
            nested += (word in begins) - (word in ends)
            if nested == 0 or at + 1 == len(lines):
                statement.refused = f"there is no {statement.operation}"
                return at + 1
            at += 1
            inner = Statement(statement.file, at + 1, lines[at], "", "", "", "")
            body = split_comment(lines[at])[0].strip()
            inner.refused = f"in a block of {statement.operation}" if body else ""
            self.statements.append(inner)

    def read_macro(self, statement, lines, at):
        macro = self.dialect.macro_head(statement)
        for end in range(at + 1, len(lines)):
            line = self.statement(statement.file, end + 1, lines[end])
            line.refused, line.dropped = "", True
            line.facts["inside"] = macro
            self.statements.append(line)
            if line.operation in self.dialect.MACRO_ENDS:
                break
            macro.body.append(lines[end])
        else:
            statement.refused = "the macro does not end"
            return len(lines)
        statement.macro = macro
        key = self.dialect.key(macro.name)
        if key in self.macros and self.macros[key] in self.defined:
            statement.refused = "the macro is defined twice"
            self.macros[key].body = None
            macro.body = None
        self.macros[key] = macro
        self.defined.append(macro)
        self.dialect.check_macro(macro)
        return end + 1

    def include(self, statement, depth):
        try:
            name = self.dialect.file_name(statement.argument)
            path = self.find(statement.file.path.parent / name, name)
            output = statement.file.output.parent / name
            if output.is_absolute() or ".." in output.parts:
                raise Refused("the file is outside the folder of the program")
            if depth == DEEPEST or output in self.outputs:
                raise Refused("the file is included twice")
        except Refused as reason:
            statement.refused = str(reason)
            return
        statement.argument = f'"{name}"'
        file = File(path, output)
        statement.facts["file"] = file
        self.read_file(file, depth + 1)
        self.statements.append(Statement(statement.file, statement.line, "", "", "", "", "", dropped=True,
                                         facts={"include ends": file}))

    def find(self, near, name):
        for path in [near, *(Path(folder) / name for folder in self.folders)]:
            if path.is_file():
                return path
        raise Refused(f"there is no file {name}")

    def call(self, statement, depth):
        macro = self.macros[statement.operation]
        statement.macro = macro
        try:
            statement.parts = self.expanded(statement, macro, split_arguments(statement.argument), 0)
        except Refused as reason:
            statement.refused = f"macro {macro.name}: {reason}"
            return
        macro.calls.append(statement)

    def expanded(self, statement, macro, arguments, depth):
        if macro.body is None:
            raise Refused("it is not clear which macro this is")
        if depth == DEEPEST or self.copies > MOST_COPIES:
            raise Refused("macros call each other too often")
        self.copies += 1
        parts = []
        for text in self.dialect.expand(macro, arguments, statement.argument, self.copies):
            part = self.statement(statement.file, statement.line, text)
            if part.refused:
                raise Refused(part.refused)
            if part.operation in self.dialect.BLOCKS or part.operation == self.dialect.INCLUDE or \
                    self.dialect.begins_macro(part):
                raise Refused(f"there is no {part.operation}")
            if part.operation in self.macros:
                inner = self.macros[part.operation]
                parts += [self.bare_label(part)] if part.label else []
                parts += self.expanded(part, inner, split_arguments(part.argument), depth + 1)
            elif part.label or part.operation:
                parts.append(part)
        return parts

    def bare_label(self, part):
        return Statement(part.file, part.line, part.text, part.label, "", "", "")


def split_arguments(text):
    if "{" in text or "(" in text and any("(" in part and not part.count("(") == part.count(")")
                                          for part in text.split(",")):
        raise Refused("an argument with commas")
    return split_list(text) if text else []


def replace_words(text, words):
    """Replaces whole words outside of quotes; words is a dict."""
    pattern = r"""("[^"]*"|'.')|(?<![A-Za-z0-9_@.$%])([A-Za-z_@][A-Za-z0-9_]*)"""
    return re.sub(pattern, lambda match: match.group(1) or words.get(match.group(2), match.group(2)), text)
