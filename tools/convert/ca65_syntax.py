"""How ca65 writes lines, expressions and macros."""

import re

from expressions import Grammar, Refused
from instructions import FORMS, split_list
from reading import Macro, replace_words

FIRST_SEGMENT = "CODE"
INCLUDE, END = ".include", ".end"
MACRO_ENDS = {".endmacro", ".endmac"}
SEGMENTS = {".code": "CODE", ".rodata": "RODATA", ".data": "DATA", ".bss": "BSS", ".zeropage": "ZEROPAGE"}
ORDER = ("ZEROPAGE", "CODE", "RODATA", "DATA")
RELATED = (("if ifdef ifndef ifblank ifnblank ifconst ifref ifnref ifp02 ifpc02 ifp816 ifpsc02", "endif"),
           ("repeat", "endrepeat endrep"), ("scope", "endscope"), ("struct union", "endstruct endunion"),
           ("enum", "endenum"))
BLOCKS = {"." + word: tuple("." + end for end in ends.split()) for words, ends in RELATED for word in words.split()}
DROPPED = set(".export .exportzp .import .importzp .global .globalzp .forceimport .debuginfo .fopt .list .listbytes "
              ".pagelength .pagelen .p02 .endproc".split())

TOKENS = re.compile(r"""(?P<blank>\s+)|(?P<number>\$[0-9a-fA-F]+(?![\w'])|%[01]+(?![\w'])|[0-9]+(?![\w']))
    |(?P<char>'[^']')|(?P<name>@?[A-Za-z_]\w*(::[A-Za-z_]\w*)*(?!::)|§\d+|\.[A-Za-z]\w*)|(?P<here>\*)
    |(?P<operator><<|>>|[-+/&|^~<>()])""", re.X)


def number(text):
    return int(text[1:], 16) if text[0] == "$" else int(text[1:], 2) if text[0] == "%" else int(text)


GRAMMAR = Grammar(
    tokens=TOKENS, number=number,
    binary={"+": 1, "-": 1, "|": 1, "*": 2, "/": 2, "%": 2, "&": 2, "^": 2, "<<": 2, ">>": 2},
    prefix={"<": 3, ">": 3, "^": 3, "-": 3, "+": 3, "~": 3},
    words={".lobyte": "<", ".hibyte": ">", ".bankbyte": "^", ".bitand": "&", ".bitor": "|", ".bitxor": "^",
           ".bitnot": "~", ".shl": "<<", ".shr": ">>", ".mod": "%"})


def key(spelling):
    return spelling.lower()


def builtin_macros():
    return {}


def pack(*macros):
    return {name: Macro(name, ["..."], body) for name, body in macros}


INVERSE = {"eq": "bne", "ne": "beq", "mi": "bpl", "pl": "bmi", "cs": "bcc", "cc": "bcs", "vs": "bvc", "vc": "bvs"}
PACKS = {
    "generic": pack(("add", ["clc", "adc ..."]), ("sub", ["sec", "sbc ..."]), ("bge", ["bcs ..."]),
                    ("blt", ["bcc ..."]), ("ble", ["beq ...", "bcc ..."]), ("bnz", ["bne ..."]), ("bze", ["beq ..."])),
    "longbranch": pack(*(("j" + flag, [f".longbranch {other},..."]) for flag, other in INVERSE.items())),
}


def mnemonic(statement):
    return statement.facts["spelled"]


def split_statement(body, macros):
    """Label, operation and argument."""
    text = body.strip()
    if text.startswith(":") and not text.startswith("::"):
        return ":", *split_operation(text[1:].strip(), macros)
    origin = re.match(r"\*\s*=\s*(.+)", text)
    if origin:
        return "", ".org", origin.group(1)
    word = re.match(r"(@?[A-Za-z_]\w*)\s*(:=|=(?!=)|:(?!:))?\s*(.*)", text)
    if not word or not word.group(2) or word.group(1).lower() in FORMS or word.group(1).lower() in macros:
        return "", *split_operation(text, macros)
    if word.group(2) != ":":
        return word.group(1), "=", word.group(3)
    return word.group(1), *split_operation(word.group(3), macros)


def split_operation(text, macros):
    if not text:
        return "", ""
    match = re.match(r"(\.?[A-Za-z_]\w*)\s*(.*)", text)
    if not match:
        raise Refused("it is not understood")
    operation = match.group(1).lower()
    if operation[0] != "." and operation not in FORMS and operation not in macros:
        raise Refused(f"{match.group(1)} is neither an instruction nor a macro")
    return {".byt": ".byte", ".mac": ".macro"}.get(operation, match.group(1)), match.group(2)


def begins_macro(statement):
    return statement.operation == ".macro"


def macro_head(statement):
    match = re.match(r"([A-Za-z_]\w*)\s*(.*)", statement.argument)
    parameters = split_list(match.group(2)) if match and match.group(2) else []
    if not match or not all(re.fullmatch(r"[A-Za-z_]\w*", parameter) for parameter in parameters):
        statement.refused = "the head of the macro is not understood"
        return Macro("?", [], [])
    return Macro(match.group(1), parameters, [])


def check_macro(macro):
    """Takes the list of local labels out of the body."""
    for line in macro.body or []:
        local = re.match(r"\s*\.local\s+([^;]*)", line, re.I)
        macro.locals += [name.strip() for name in local.group(1).split(",")] if local else []
    if macro.body is not None:
        macro.body = [line for line in macro.body if not re.match(r"\s*\.local\s", line, re.I)]


def expand(macro, arguments, whole, copies):
    """The lines of a call."""
    if macro.parameters == ["..."]:
        yield from (line.replace("...", whole) for line in macro.body)
        return
    if len(arguments) != len(macro.parameters):
        raise Refused(f"it has {len(macro.parameters)} parameters, and {len(arguments)} arguments are given")
    words = dict(zip(macro.parameters, arguments))
    words.update((name, f"{name.lstrip('@')}_in_copy_{copies}") for name in macro.locals)
    for line in macro.body:
        if ".paramcount" in line.lower() or line.lstrip().startswith(":") or re.search(r":[-+]", line):
            raise Refused("unnamed labels or .paramcount in a macro")
        yield replace_words(line, words)


def is_string(text):
    return len(text) >= 2 and text[0] == text[-1] == '"'


def file_name(text):
    if not is_string(text):
        raise Refused("the name of the file is not in quotes")
    return text[1:-1]


def is_assignment(statement):
    return statement.operation == "=" or "zeropage" in statement.facts or "alias" in statement.facts


def reserved_at(statement):
    """The address of bytes that are not written, or None."""
    return statement.facts.get("zeropage")
