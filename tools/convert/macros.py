"""Macros of the other assembler: those whose calls kiln-as can make just so stay macros; of others each call is written
out."""

from expressions import Refused, parse
from instructions import FORMS, RESERVED, split_list
from names import NAME


class MacroWriter:
    """Works for one Writer."""

    def __init__(self, writer):
        self.writer = writer
        self.dialect = writer.dialect
        self.converted = {}  # macro -> the names of its parameters and its lines

    def definition(self, statement):
        """The macro as one of kiln-as if all its calls can be; otherwise they are written out."""
        macro = statement.macro
        template = self.template(macro)
        if not template:
            return [f"; macro {macro.name}: written out where it is called"]
        names, lines = self.converted[macro] = template
        return [f".macro {macro.name} {','.join(names)}".rstrip(), *lines, ""]

    def template(self, macro):
        """The names of its parameters and its lines, or None."""
        names = [f"argument_{chr(97 + index)}" for index in range(len(macro.parameters))]
        own = [name for name in macro.parameters if len(name) > 3 and name.islower() and name not in RESERVED]
        names = macro.parameters if len(own) == len(names) else names
        if macro.body is None or macro.locals or len(names) > 26 or not NAME.match(macro.name) or \
                macro.name.lower() in RESERVED or macro.name in self.writer.names.taken:
            return None
        self.writer.parameters = set(names)
        try:
            lines = self.template_lines(macro, names)
        except Refused:
            return None
        finally:
            self.writer.parameters = set()
        return (names, lines) if lines else None

    def template_lines(self, macro, names):
        lines = []
        for text in self.dialect.expand(macro, list(names), ",".join(names), 0):
            body = text.split(";")[0].strip()
            label, operation, argument = self.dialect.split_statement(body, {})
            if label or operation and operation.lower() not in FORMS:
                raise Refused("only instructions are in macros of kiln-as")
            if operation:
                lines.append("        " + self.writer.instruction(operation, argument))
        return lines

    def call(self, statement):
        writer, lines, label = self.writer, [], []
        if statement.label:
            label = writer.laid_out([], writer.label_of(statement), [], "")
        for part in statement.parts:
            writer.statement = part
            lines += writer.lines_of(part)
        writer.statement = statement
        call = self.call_of(statement, lines)
        if call:
            return label + writer.laid_out([], "", [call], statement.comment)
        return label + [f"; {statement.operation} {statement.argument} {statement.comment}".rstrip(), *lines]

    def call_of(self, statement, lines):
        """The call for kiln-as if its macro makes just these lines, or nothing."""
        if statement.macro not in self.converted:
            return None
        names, body = self.converted[statement.macro]
        arguments = [self.argument_text(text) for text in split_list(statement.argument)] if statement.argument else []
        if None in arguments or len(arguments) != len(names):
            return None
        short = ["$0+" + text for text in arguments]
        for tried in (arguments, short):
            if not any("," in text for text in tried) and substituted(body, names, tried) == lines:
                return f"{statement.macro.name} {','.join(tried)}".rstrip()
        return None

    def argument_text(self, text):
        try:
            tree = parse(text, self.dialect.GRAMMAR)
            return None if "*" in self.dialect.leaves(tree) else self.writer.writer.write(tree)
        except Refused:
            return None


def substituted(lines, names, arguments):
    """What kiln-as makes of a macro: each parameter in turn is replaced wherever its letters are."""
    made = []
    for line in lines:
        for name, argument in zip(names, arguments):
            line = line.replace(name, argument)
        made.append(line)
    return made
