"""The dialect of ca65: letter case matters in names, a linker places the segments, and the size of an address follows
from where its name is defined, not from its value."""

import re

from ca65_names import define, find, label_name, value_at
from ca65_syntax import (BLOCKS, DROPPED, END, FIRST_SEGMENT, GRAMMAR, INCLUDE, MACRO_ENDS, ORDER, PACKS, SEGMENTS,
                         begins_macro, builtin_macros, check_macro, expand, file_name, is_assignment, is_string, key,
                         macro_head, mnemonic, reserved_at, split_statement)
from expressions import Refused, Value, leaves, value_of
from instructions import size_by_value, split_list


def here_value(writer):
    return Value(0, 65535, "abs")


def forced_size(text):
    match = re.match(r"([az]):\s*(.*)", text, re.I)
    return ({"a": "abs", "z": "zp"}[match.group(1).lower()], match.group(2)) if match else ("", text)


def address_size(writer, tree):
    value = value_of(tree, writer.look_up)
    return value.size or size_by_value(value)


def lines_before(writer, statement):
    return []


def nothing(writer, statement):
    return []


def write_shared(writer, statement):
    if "alias" in statement.facts:
        spelling, text = statement.facts["alias"]
        return [writer.assignment(find(writer.names, spelling, statement), text)]
    return []


def write_assignment(writer, statement):
    return [writer.assignment(label_name(writer.names, statement), statement.argument)]


def items(directive, form="{}"):
    def write(writer, statement):
        return [writer.items(directive, [form.format(item) for item in split_list(statement.argument)])]
    return write


def write_bytes(writer, statement):
    return writer.bytes_of(statement.argument)


def write_text(writer, statement):
    return writer.bytes_of(statement.argument + ",0")


def write_swapped(writer, statement):
    return [writer.items(".byte", [f"{sign}({item})" for item in split_list(statement.argument) for sign in "><"])]


def write_space(writer, statement):
    parts = split_list(statement.argument)
    fill = writer.exact(parts[1], "the value") if len(parts) == 2 else 0
    return writer.space(writer.exact(parts[0], "the number of bytes"), fill)


def write_origin(writer, statement):
    return [f".org {writer.expression(statement.argument)}"]


def write_include(writer, statement):
    return [f".include {statement.argument}"]


def write_processor(writer, statement):
    if statement.argument.lower() != '"6502"':
        raise Refused("another processor")
    return []


def write_pack(writer, statement):
    if statement.argument.lower() not in PACKS:
        raise Refused("these macros have conditions")
    return []


def write_long_branch(writer, statement):
    """Their macro takes five bytes if the target is further down or in another file."""
    opposite, *targets = split_list(statement.argument)
    target = ",".join(targets)
    name = writer.find(target) if re.fullmatch(r"@?[A-Za-z_]\w*|§\d+", target) else None
    if not name or name.kind == "number" or name.kind == "label" and name.place <= writer.place:
        raise Refused("a long branch backwards may be short")
    return [f"{opposite} {writer.label_here()}+5", writer.instruction("jmp", target)]


def change_texts(writer, statement):
    """From here on texts are translated."""
    writer.plain_texts = False
    raise Refused("another encoding of texts")


WRITERS = {
    "=": write_assignment, ".byte": write_bytes, ".asciiz": write_text, ".word": items(".word"),
    ".addr": items(".word"), ".dword": items(".long"), ".dbyt": write_swapped, ".lobytes": items(".byte", "<({})"),
    ".hibytes": items(".byte", ">({})"), ".res": write_space, ".org": write_origin, ".include": write_include,
    ".setcpu": write_processor, ".macpack": write_pack, ".longbranch": write_long_branch, ".charmap": change_texts,
    **{word: nothing for word in [*DROPPED, *SEGMENTS, ".proc", ".segment", ".pushseg", ".popseg"]},
    ".export": write_shared, ".exportzp": write_shared,
}


def segment_order(segment):
    return (ORDER.index(segment), "") if segment in ORDER else (len(ORDER) + (segment == "BSS"), segment)


def segment_head(segment, count):
    return ["", f"; segment {segment}"] if count > 1 else []
