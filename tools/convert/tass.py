"""The dialect of 64tass, as it is without options that change it: letter case does not matter, texts are ASCII."""

from expressions import Refused, Value, leaves, parse, value_of
from instructions import size_by_value, split_list
from tass_names import define, find, label_name, value_at
from tass_syntax import (BLOCKS, DROPPED, END, FIRST_SEGMENT, GRAMMAR, INCLUDE, MACRO_ENDS, PACKS, begins_macro,
                         builtin_macros, check_macro, expand, file_name, is_assignment, is_string, key, macro_head,
                         mnemonic, reserved_at, split_statement)


def here_value(writer):
    facts = writer.statement.facts
    if facts.get("address") is not None:
        return Value(facts["address"], facts["address"])
    return Value(facts.get("low", 0), 65535)


def forced_size(text):
    return "", text


def address_size(writer, tree):
    return size_by_value(value_of(tree, writer.look_up))


def write_origin(writer, statement):
    if "unused" in statement.facts:
        return []  # there are no bytes at it, and a gap would be filled with zeros
    if "*" in leaves(parse(statement.argument, GRAMMAR)):
        return [f".org ${statement.facts['origin']:04X}"]
    tree = parse(statement.argument, GRAMMAR)
    for spelling in leaves(tree):
        writer.must_be_above(spelling)
    return [f".org {writer.expression(statement.argument, in_list=True)}"]


def write_assignment(writer, statement):
    return [writer.assignment(find(writer.names, statement.label, statement), statement.argument)]


def data(directive):
    def write(writer, statement):
        return [writer.items(directive, split_list(statement.argument))]
    return write


def write_bytes(writer, statement):
    return writer.bytes_of(statement.argument)


def write_null(writer, statement):
    return writer.bytes_of(statement.argument + ",0")


def write_return_addresses(writer, statement):
    return [writer.items(".word", [f"({item})-1" for item in split_list(statement.argument)])]


def write_fill(writer, statement):
    count, fill = (split_list(statement.argument) + ["", ""])[:2]
    return writer.space(writer.exact(count, "the number of bytes"), writer.exact(fill, "the value"))


def write_cpu(writer, statement):
    if statement.argument.lower() not in ('"6502"', '"default"'):
        raise Refused("another processor")
    return []


def write_include(writer, statement):
    return [f".include {statement.argument}"]


def lines_before(writer, statement):
    """After bytes without a value the address is said again."""
    return [f"        .org ${statement.facts['origin']:04X}"] if "origin" in statement.facts and \
        statement.operation != "*=" else []


def change_texts(writer, statement):
    """From here on texts are translated."""
    writer.plain_texts = False
    raise Refused("another encoding of texts")


WRITERS = {
    "*=": write_origin, "=": write_assignment, ".byte": write_bytes, ".char": write_bytes, ".text": write_bytes,
    ".null": write_null, ".word": data(".word"), ".addr": data(".word"), ".sint": data(".word"),
    ".dword": data(".long"), ".dint": data(".long"), ".rta": write_return_addresses, ".fill": write_fill,
    ".cpu": write_cpu, ".include": write_include, ".enc": change_texts, ".cdef": change_texts, ".tdef": change_texts,
}


def segment_order(segment):
    return 0


def segment_head(segment, count):
    return []
