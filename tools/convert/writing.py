"""Statements as lines for kiln-as. The dialect says what its directives become; here is the rest: labels, instructions,
assignments, data, and lines that are refused."""

import re

from expressions import ExpressionWriter, Refused, Value, parse, plain_number, value_of
from instructions import FORMS, split_list, written_operand
from macros import MacroWriter
from names import Name
from reading import split_comment

COMMENT_COLUMN = 32
PLAIN_TEXT = re.compile(r"[ -~]*\Z")
ITEMS_IN_LINE = 16


class Writer:
    """Makes the lines of all files. Also the context of expressions: what names are and how they are written."""

    def __init__(self, dialect, names, statements, plain_texts):
        self.dialect = dialect
        self.grammar = dialect.GRAMMAR
        self.names = names
        self.statements = statements
        self.place = 0          # index of the statement being written
        self.statement = None
        self.segment = dialect.FIRST_SEGMENT
        self.scopes = {}        # segment -> name that begins the scope of kiln-as
        self.in_list = False
        self.heres = 0
        self.before = []        # lines that go before that of the statement
        self.files = {}         # file -> {segment: lines}
        self.refused = []       # (statement, reason)
        self.writer = ExpressionWriter(self.look_up, self.refer, self.check_text)
        self.plain_texts = plain_texts
        self.is_built_in = names.is_built_in
        self.parameters = set()  # of the macro whose body is being written
        self.macros = MacroWriter(self)

    # What expressions ask for.

    def find(self, spelling):
        name = self.dialect.find(self.names, spelling, self.statement)
        if name is None:
            raise Refused(f"the name {spelling} is unknown")
        return name

    def look_up(self, spelling):
        if spelling == "*":
            return self.dialect.here_value(self)
        if spelling in self.parameters:
            return Value(256, 65535, "abs")
        return self.dialect.value_at(self.find(spelling), self.place)

    def refer(self, spelling):
        if spelling == "*":
            return self.label_here()
        if spelling in self.parameters:
            return spelling
        name = self.find(spelling)
        if not name.local:
            return name.written
        if name.owner is None and self.scopes.get(self.segment):
            raise Refused(f"the local label {spelling} belongs to no full one")
        if name.owner is None or self.scopes.get(self.segment) is name.owner and not self.in_list:
            return name.written
        return name.owner.written + name.written

    def forced_size(self, text):
        return self.dialect.forced_size(text)

    def address_size(self, tree):
        return self.dialect.address_size(self, tree)

    def label_here(self):
        """A label before the statement, which stands for its address."""
        if self.parameters:
            raise Refused("the current address in a macro")
        self.heres += 1
        name = Name(f"here_{self.heres}", "label", self.place, Value(0, 65535), quiet=True)
        name.written = self.names.free(name.spelling, name)
        self.before.append(f">{name.written}:")
        return name.written

    # Pieces that dialects write with.

    def expression(self, text, in_list=False):
        self.in_list = in_list
        try:
            return self.writer.write(parse(text, self.grammar))
        finally:
            self.in_list = False

    def value(self, text):
        return value_of(parse(text, self.grammar), self.look_up)

    def exact(self, text, what):
        value = self.value(text)
        if not value.exact or value.low < 0:
            raise Refused(f"{what} is not a plain number")
        return value.low

    def instruction(self, mnemonic, operand):
        if mnemonic.lower() not in FORMS:
            raise Refused(f"there is no {mnemonic}")
        return f"{mnemonic} {written_operand(mnemonic.lower(), operand, self)}".rstrip()

    def assignment(self, name, text):
        """Assignments see only what is above them in the written file."""
        tree = parse(text, self.grammar)
        for spelling in self.dialect.leaves(tree):
            if spelling != "*":
                self.must_be_above(spelling)
        return f"{name.written:<7} = {self.expression(text, in_list=True)}"

    def must_be_above(self, spelling):
        name = self.find(spelling)
        if name.kind == "import":
            if name.value.size != "zp":
                raise Refused(f"{spelling} comes from another file, and an assignment sees only names above it")
        elif name.place >= self.place or name.kind == "label" and name.segment != self.segment:
            raise Refused(f"{spelling} is defined below, and an assignment sees only names above it")

    def items(self, directive, texts):
        """.byte and the like with expressions."""
        return f"{directive} " + ",".join(self.expression(text, in_list=True) for text in texts)

    def bytes_of(self, text):
        """.byte of a list with strings in it."""
        parts = split_list(text)
        strings = [self.string(part) for part in parts]
        if len(parts) == 2 and strings[0] and strings[1] is None and self.is_zero(parts[1]) and \
                not set(strings[0]) & set(':="'):
            return [f'.string "{strings[0]}"']
        codes = []
        for part, string in zip(parts, strings):
            codes += [self.expression(part, in_list=True)] if string is None else [str(ord(one)) for one in string]
        if not codes:
            raise Refused("an empty text")
        step = len(codes) if all(string is None for string in strings) else ITEMS_IN_LINE
        return [".byte " + ",".join(codes[at:at + step]) for at in range(0, len(codes), step)]

    def is_zero(self, text):
        try:
            value = self.value(text)
        except Refused:
            return False
        return value.exact and value.low == 0

    def string(self, text):
        """What is between the quotes, or None for an expression."""
        if not self.dialect.is_string(text):
            return None
        if not PLAIN_TEXT.match(text[1:-1]) or text[0] in text[1:-1]:
            raise Refused("a text with special characters")
        self.check_text(text[1:-1])
        return text[1:-1]

    def check_text(self, text):
        """Digits and signs are the same in all encodings; letters are not."""
        if not self.plain_texts and any(character > "?" for character in text):
            raise Refused("the letters of a text may be translated; if they are not, give --plain-texts")

    def space(self, count, fill):
        if count > 65536:
            raise Refused("it is longer than the memory")
        if count == 0:
            return []
        if fill == 0:
            return [f".space {count}"]
        return [".byte " + ",".join([plain_number(fill & 255)[0]] * min(16, count - at)) for at in range(0, count, 16)]

    # Lines.

    def write_all(self):
        for self.place, statement in enumerate(self.statements):
            self.segment = statement.facts.get("segment", self.segment)
            if "inside" not in statement.facts:
                self.write(statement)
        return self.refused

    def write(self, statement):
        self.statement = statement
        lines = self.files.setdefault(statement.file, {}).setdefault(self.segment, [])
        scope = self.scopes.get(self.segment)
        try:
            if statement.refused:
                raise Refused(statement.refused)
            made = self.macros.definition(statement) if statement.macro and statement.parts is None else \
                self.macros.call(statement) if statement.parts is not None else self.lines_of(statement)
            # A statement may begin another segment.
            self.files[statement.file].setdefault(self.segment, []).extend(made)
        except Refused as reason:
            self.scopes[self.segment] = scope
            self.refused.append((statement, str(reason)))
            lines.append(f"; refused: {statement.text.strip()}")

    def lines_of(self, statement):
        """The lines of a statement that is no macro."""
        self.before, self.writer.folded = [], False
        if statement.dropped or not statement.label and not statement.operation or \
                statement.operation in self.dialect.DROPPED and "alias" not in statement.facts:
            return self.plain_comment(statement)
        label = self.label_of(statement)
        texts = self.texts_of(statement)
        comment = statement.comment
        if self.writer.folded:
            comment = f"; {statement.operation} {statement.argument} {comment}".rstrip()
        return self.dialect.lines_before(self, statement) + self.laid_out(self.before, label, texts, comment)

    def plain_comment(self, statement):
        body, comment = split_comment(statement.text)
        if body.strip():
            return [f"; {body.strip()} {comment}".rstrip()]
        if not comment:
            return [""] * ("include ends" not in statement.facts)
        return ["        " * statement.text[:1].isspace() + comment]

    def label_of(self, statement):
        """The label as it is written, or nothing."""
        if not (statement.label or "name" in statement.facts) or self.dialect.is_assignment(statement):
            return ""
        name = self.dialect.label_name(self.names, statement)
        if name is None:
            return ""
        if name.local:
            if self.scopes.get(self.segment) is not name.owner:
                raise Refused("the local label is in another segment than its full label")
            return name.written + ":"
        if name.quiet:
            return f">{name.written}:"
        self.scopes[self.segment] = name
        return name.written + ":"

    def texts_of(self, statement):
        reserved = self.dialect.reserved_at(statement)
        if reserved is not None:
            name = self.dialect.label_name(self.names, statement) if statement.label else None
            return [f"{name.written:<7} = ${reserved:02X}"] if name else []
        if not statement.operation:
            return []
        if statement.operation in FORMS:
            return [self.instruction(self.dialect.mnemonic(statement), statement.argument)]
        handler = self.dialect.WRITERS.get(statement.operation)
        if not handler:
            raise Refused(f"there is no {statement.operation}")
        return handler(self, statement)

    def laid_out(self, before, label, texts, comment):
        made = list(before)
        if before and label:
            made.insert(0, label)
            label = ""
        for index, text in enumerate(texts or [""]):
            front = f"{label:<8}" if len(label) < 8 else label + " "
            line = text if " = " in text else front + text
            if comment and index == 0:
                line = f"{line:<{COMMENT_COLUMN - 1}} {comment}" if line.strip() else comment
            if line.strip():
                made.append(line.rstrip())
            label = ""
        return made
