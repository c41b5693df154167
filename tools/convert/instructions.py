"""The instructions of the 6502 and the forms of their operands."""

from expressions import ATOM, FRONT, SUM, Refused, parse

# What each operand form is called here: "" none, "a" accumulator, "#", "r" relative, "z" and "m" an address in the zero
# page or anywhere, "zx", "mx", "zy", "my" indexed, "(m)", "(zx)" and "(z)y" indirect.
FORMS = {}
for names, forms in {
    "adc and cmp eor lda ora sbc": "# z m zx mx my (zx) (z)y",
    "sta": "z m zx mx my (zx) (z)y",
    "asl lsr rol ror": "a z m zx mx",
    "inc dec": "z m zx mx",
    "bit": "z m",
    "cpx cpy": "# z m",
    "ldx": "# z m zy my",
    "ldy": "# z m zx mx",
    "stx": "z m zy",
    "sty": "z m zx",
    "jmp": "m (m)",
    "jsr": "m",
    "bcc bcs beq bmi bne bpl bvc bvs": "r",
    "brk clc cld cli clv dex dey inx iny nop pha php pla plp rti rts sec sed sei tax tay tsx txa txs tya": "",
}.items():
    for mnemonic in names.split():
        FORMS[mnemonic] = set(forms.split())

# kiln-as reads these as instructions too, so they cannot be names.
RESERVED = set(FORMS) | set("bra phx phy plx ply add psh pll a x y sp".split())


def split_list(text):
    """The parts between commas that are in neither parentheses nor quotes."""
    parts, depth, quote, start = [], 0, "", 0
    for index, character in enumerate(text):
        if quote:
            quote = "" if character == quote else quote
        elif character == '"' or character == "'" and text[index + 2:index + 3] == "'":
            quote = character
        elif character in "({":
            depth += 1
        elif character in ")}":
            depth -= 1
        elif character == "," and depth == 0:
            parts.append(text[start:index].strip())
            start = index + 1
    return parts + [text[start:].strip()]


def encloses(text):
    """Whether the first and the last character are one pair of parentheses."""
    if not (text.startswith("(") and text.endswith(")")):
        return False
    depth = 0
    for index, character in enumerate(text):
        depth += {"(": 1, ")": -1}.get(character, 0)
        if depth == 0:
            return index == len(text) - 1
    return False


def operand_shape(mnemonic, text):
    """The form with "?" where zero page or anywhere is not decided, and the text of its expression."""
    forms = FORMS[mnemonic]
    if "r" in forms:
        return "r", text
    if text == "" or text.lower() == "a" and "a" in forms:
        return ("a" if "a" in forms else ""), ""
    if text.startswith("#"):
        return "#", text[1:]
    parts = split_list(text)
    index = parts[1].lower() if len(parts) == 2 else ""
    if len(parts) > 2 or len(parts) == 2 and index not in ("x", "y"):
        raise Refused(f"the operand '{text}' is not understood")
    if encloses(parts[0]):
        return indirect_shape(parts[0][1:-1].strip(), index)
    return "?" + index, parts[0]


def indirect_shape(inner, index):
    parts = split_list(inner)
    if len(parts) == 2 and parts[1].lower() == "x" and not index:
        return "(zx)", parts[0]
    if len(parts) == 1 and index != "x":
        return ("(z)y" if index else "(m)"), inner
    raise Refused("there is no such addressing mode")


def written_operand(mnemonic, text, context):
    """The operand as kiln-as reads it. context has grammar, writer, look_up, forced_size and address_size."""
    forced, text = context.forced_size(text)
    shape, inner = operand_shape(mnemonic, text)
    if not inner:
        if shape not in FORMS[mnemonic] and FORMS[mnemonic]:
            raise Refused(f"{mnemonic} needs an operand")
        return text
    tree = parse(inner, context.grammar)
    if shape.startswith("?"):
        shape = decided(mnemonic, shape[1:], forced, tree, context)
    if shape not in FORMS[mnemonic]:
        raise Refused(f"{mnemonic} does not have this addressing mode")
    written, tightness = context.writer.text(tree)
    return FRAMES[shape].format(address_text(mnemonic, shape, written, tightness, context))


FRAMES = {"#": "#{}", "r": "{}", "z": "{}", "m": "{}", "zx": "{},X", "mx": "{},X", "zy": "{},Y", "my": "{},Y",
          "(m)": "({})", "(zx)": "({},X)", "(z)y": "({}),Y"}


def decided(mnemonic, index, forced, tree, context):
    """Zero page or anywhere; refused where that is not certain."""
    short, long = "z" + index, "m" + index
    choices = {short, long} & FORMS[mnemonic]
    if choices == {long} and forced != "zp":
        return long
    size = forced or context.address_size(tree)
    if size == "zp" and short in choices:
        return short
    if size == "abs" and long in choices:
        return long
    raise Refused("it is not certain whether the address is in the zero page" if size == "?" else
                  "there is no such addressing mode")


def address_text(mnemonic, shape, written, tightness, context):
    """A text that kiln-as takes for the same size: the number at the front decides."""
    if shape == "#":
        return written
    if tightness == FRONT:
        written, tightness = f"({written})", SUM
    first = first_number(written)
    if shape in ("z", "zx", "zy"):
        return written if first is not None and first < 256 and (written[0] in "$%" or tightness == ATOM) else \
            "$0+" + written
    both = shape[0] == "m" and "z" + shape[1:] in FORMS[mnemonic]
    unclear = both and (first is not None and first < 256 and (written[0] in "$%" or tightness == ATOM)
                        or written[0].isalpha() and context.is_built_in(written))
    return "0+" + written if written[0] == "(" or unclear else written


def first_number(text):
    digits = text.split("+")[0].split("-")[0].split("*")[0].split("/")[0]
    try:
        return int(digits[1:], 16) if digits[0] == "$" else int(digits[1:], 2) if digits[0] == "%" else int(digits)
    except ValueError:
        return None


def size_by_value(value):
    """For an assembler that looks at the value alone."""
    return "zp" if 0 <= value.low and value.high <= 255 else "abs" if 256 <= value.low else "?"
