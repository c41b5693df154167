# Makes the quick reference of the program's tables (tables.cpp) and of page.html beside it.
#   kiln-tables | python3 make.py PAGE            writes the page
#   kiln-tables | python3 make.py --check PAGE    fails when the page is not what would be written
import json
import sys
from html import escape
from pathlib import Path

FLAGS = "NVDIZC"

# The columns of the instructions: a heading and the modes.
COLUMNS = {
    "alone": ["implied", "accumulator"],
    "#n": ["immediate"],
    "zp": ["zero page"],
    "zp,X": ["zero page, indexed with X", "zero page, indexed with Y"],
    "abs": ["absolute", "indirect"],
    "abs,X": ["absolute, indexed with X"],
    "abs,Y": ["absolute, indexed with Y"],
    "(n,X)": ["indexed with X, indirect"],
    "(n),Y": ["indirect, indexed with Y"],
    "branch": ["relative"],
}


def row(*cells):
    return "<tr>" + "".join(f"<td>{cell}</td>" for cell in cells) + "</tr>"


def code(text):
    return f"<code>{escape(text)}</code>"


# How an operand of the mode is written: "(n),Y", empty without one.
def operand(mode):
    fixed = {"implied": "", "accumulator": "A"}
    return fixed.get(mode["name"], mode["before"].upper() + "n" + mode["after"].upper())


# A row for each way to write an operand. A mode of the zero page and an absolute one may be written alike.
def modes(tables):
    rows = {}
    for mode in tables["modes"]:
        what = mode["name"] + (": the target of a branch" if mode["name"] == "relative" else "")
        rows.setdefault((operand(mode), mode["name"] == "relative"), []).append((what, mode["bytes"]))
    for (form, _), alike in rows.items():
        what = " or ".join(["zero page"] * (len(alike) - 1) + [alike[-1][0]])
        yield row(code(form) if form else "none", what, " or ".join(str(size) for _, size in alike))


def directives(tables):
    for directive in tables["directives"]:
        yield row(code(directive["form"]), escape(directive["does"]))


def names(tables):
    for name in tables["names"]:
        digits = 2 if name["address"] < 0x100 else 4
        address = f"${name['address']:0{digits}X}"
        yield f"<div><i>{address:5}</i> {escape(name['name'])}</div>"


# The opcodes of each instruction of the 6502, with the names of their modes. The indirect jump has a row of its own, as
# it shares a column with the other one.
def groups(tables):
    for instruction in sorted(tables["instructions"], key=lambda instruction: instruction["name"]):
        known = [opcode for opcode in instruction["opcodes"] if "cycles" in opcode]
        modes = {tables["modes"][opcode["mode"]]["name"]: opcode for opcode in known}
        indirect = modes.pop("indirect", None)
        if modes:
            yield instruction, modes
        if indirect:
            jump = {"name": instruction["name"] + " (n)", "does": "jumps to the address that is stored at n"}
            yield {**instruction, **jump}, {"indirect": indirect}


def cell(mode, opcode):
    mark = "*" if mode == "relative" else "+" if opcode["mayGrow"] else ""
    return f"{opcode['opcode']:02X} {opcode['cycles']}{mark}" + ("Y" if mode == "zero page, indexed with Y" else "")


def instructions(tables):
    sizes = {mode["name"]: mode["bytes"] for mode in tables["modes"]}
    heads = [f"{heading}<br><i>{sizes[shown[0]]} byte{'s' * (sizes[shown[0]] > 1)}</i>"
             for heading, shown in COLUMNS.items()]
    yield "<tr>" + "".join(f"<th>{head}</th>" for head in ["", *heads, "flags", "what it does"]) + "</tr>"
    for instruction, modes in groups(tables):
        cells = ["".join(cell(mode, modes[mode]) for mode in shown if mode in modes) for shown in COLUMNS.values()]
        cells.append("".join(flag if flag in instruction["flags"] else "·" for flag in FLAGS))
        spans = [f'<span class="code">{text}</span>' for text in cells]
        yield row(code(instruction["name"]), *spans, escape(instruction["does"]))


# What only other machines have, with its opcodes.
def extensions(tables):
    for instruction in tables["instructions"]:
        for opcode in instruction["opcodes"]:
            if "cycles" not in opcode:
                text = f"{instruction['name']} {operand(tables['modes'][opcode['mode']])}"
                yield f'<span class="extension">{code(text.strip())} <i>{opcode["opcode"]:02X}</i></span>'


def page(tables):
    text = Path(__file__).with_name("page.html").read_text(encoding="utf-8")
    for part in (modes, directives, names, instructions):
        text = text.replace(f"@{part.__name__}@", "\n".join(part(tables)))
    text = text.replace("@extensions@", ",\n".join(extensions(tables)))
    return text.replace("@version@", tables["version"])


def main():
    path = Path(sys.argv[-1])
    made = page(json.load(sys.stdin))
    if sys.argv[1] != "--check":
        path.write_text(made, encoding="utf-8")
    elif path.read_text(encoding="utf-8") != made:
        sys.exit(f"{path} is not what the tables make; tools/quick-reference/run renews it")


main()
