"""How 64tass writes lines, expressions and macros."""

import re

from expressions import Grammar, Refused
from instructions import FORMS, split_list
from reading import Macro

FIRST_SEGMENT = ""
PACKS = {}
DROPPED = set()
INCLUDE, END = ".include", ".end"
MACRO_ENDS = {".endm", ".endmacro"}
MORE_MNEMONICS = set("cpa gcc gcs geq gge glt gmi gne gpl gvc gvs bge blt shl shr".split())
# Instructions of other processors: such a word alone in a line may be one, and not a label.
OTHER_MNEMONICS = set("phx phy plx ply stp wai phb phd phk plb pld rtl tcd tcs tdc tsc txy tyx xba xce ina dea".split())
RELATED = (("if ifdef ifndef ifeq ifne ifpl ifmi", "endif fi"), ("for rept while", "next endfor endrept endwhile"),
           ("proc", "pend endproc"), ("block", "bend endblock"), ("struct", "ends endstruct"), ("enum", "endenum"),
           ("union", "endu endunion"), ("function", "endf endfunction"), ("switch", "endswitch"), ("segment", "endm"),
           ("comment", "endc endcomment"), ("logical", "here endlogical"), ("section", "send endsection"),
           ("weak", "endweak"), ("namespace", "endn endnamespace"), ("virtual", "endv endvirtual"),
           ("with", "endwith"), ("page", "endp endpage"), ("encode", "endencode"))
BLOCKS = {"." + word: tuple("." + end for end in ends.split()) for words, ends in RELATED for word in words.split()}

TOKENS = re.compile(r"""(?P<blank>\s+)|(?P<number>\$[0-9a-fA-F]+(?![\w.'])|%[01]+(?![\w.'])|[0-9]+(?![\w.']))
    |(?P<char>'[^'"]'|"[^'"]")|(?P<name>[A-Za-z_]\w*(?![.'"(\[])|§\d+)|(?P<here>\*(?!\*))
    |(?P<operator><<|>>|<>|><|[<>]`|[-+/%&|^~<>()`])""", re.X)


def number(text):
    return int(text[1:], 16) if text[0] == "$" else int(text[1:], 2) if text[0] == "%" else int(text)


GRAMMAR = Grammar(
    tokens=TOKENS, number=number, words={},
    binary={"|": 1, "^": 2, "&": 3, "<<": 4, ">>": 4, "+": 5, "-": 5, "*": 6, "/": 6, "%": 6},
    prefix={"<": 0, ">": 0, "-": 7, "+": 7, "~": 7})


def key(spelling):
    return spelling.lower()


def builtin_macros():
    return {}


def mnemonic(statement):
    return statement.facts["spelled"]


def split_statement(body, macros):
    """Label, operation and argument."""
    text = body.strip()
    origin = re.match(r"\*\s*=\s*(?!=)(.+)", text)
    if origin:
        return "", "*=", origin.group(1)
    unnamed = re.match(r"([-+])(?:\s+(.*)|$)", text)
    if unnamed:
        return unnamed.group(1), *split_operation((unnamed.group(2) or "").strip(), macros)
    word = re.match(r"([A-Za-z_]\w*)(:?)\s*(.*)", text)
    if not word or not word.group(2) and is_operation(word.group(1), word.group(3), macros):
        return "", *split_operation(text, macros)
    rest = word.group(3)
    if re.match(r"=[^=]", rest):
        return word.group(1), "=", rest[1:].strip()
    return word.group(1), *split_operation(rest, macros)


def is_operation(word, rest, macros):
    known = word.lower() in FORMS or word.lower() in MORE_MNEMONICS
    called = word.lower() in macros and not rest.lower().startswith((".macro", "="))
    return known or called or word.lower() in OTHER_MNEMONICS and not rest


def split_operation(text, macros):
    if not text:
        return "", ""
    match = re.match(r"#?(\.?[A-Za-z_]\w*)\s*(.*)", text)
    if not match:
        raise Refused("it is not understood")
    operation = match.group(1).lower()
    known = operation in FORMS or operation in MORE_MNEMONICS
    if text[0] == "#" and operation not in macros or operation[0] != "." and not known and operation not in macros:
        raise Refused(f"{match.group(1)} is neither an instruction nor a macro")
    return match.group(1), match.group(2)


def begins_macro(statement):
    return statement.operation == ".macro"


def macro_head(statement):
    parameters = split_list(statement.argument) if statement.argument else []
    if not statement.label or not all(re.fullmatch(r"[A-Za-z]\w*", parameter) for parameter in parameters):
        statement.refused = "parameters with defaults" if statement.label else "a macro without a name"
        parameters = []
    return Macro(statement.label or "?", parameters, [])


def check_macro(macro):
    """Macros without a list of parameters use \\1 to \\9."""
    used = [int(digit) for line in macro.body or [] for digit in re.findall(r"\\([1-9])", line)]
    macro.parameters += [str(index) for index in range(len(macro.parameters) + 1, max(used, default=0) + 1)]


def expand(macro, arguments, whole, copies):
    """The lines of a call."""
    if len(arguments) != len(macro.parameters):
        raise Refused(f"it has {len(macro.parameters)} parameters, and {len(arguments)} arguments are given")
    values = dict(zip(map(str.lower, macro.parameters), arguments))
    values.update((str(index + 1), argument) for index, argument in enumerate(arguments))

    def value(match):
        if match.group(1).lower() not in values:
            raise Refused(f"'{match.group()}' in a macro")
        return values[match.group(1).lower()]

    for line in macro.body:
        code = line.split(";")[0]
        if "@" in code or re.search(r"(?<![\w.\\])[-+_]+(?=\s*$)|(?<![\w\\])_\w", code):
            raise Refused("a local label in a macro")
        yield re.sub(r"\\(\w+|.)", value, code)


def is_string(text):
    return len(text) >= 2 and text[0] == text[-1] and text[0] in "\"'"


def file_name(text):
    if not is_string(text):
        raise Refused("the name of the file is not in quotes")
    return text[1:-1]


def is_assignment(statement):
    return statement.operation == "=" or "reserved" in statement.facts


def reserved_at(statement):
    """The address of bytes that are not written, or None."""
    return statement.facts.get("reserved")
