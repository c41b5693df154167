#!/usr/bin/env python3
"""Writes the benchmark's programs: generate.py WORKLOAD LINES DIRECTORY writes one of them.

Every program comes from a fixed seed, so it is the same on every machine. Those that both assemblers are to read are
written in both dialects, from one text in which "@" begins a local label and "!org" sets the origin.
"""

import hashlib
import random
import shutil
import sys
from pathlib import Path

from random_code import Code, labels_in

KILN, RIVAL = "kiln", "64tass"
DIALECTS = {KILN: (("@", "."), ("!org ", ".org ")), RIVAL: (("@", "_"), ("!org ", "* = "))}

ORIGINS = ("$2000", "$5000", "$8000", "$B000")
SECTION = 4000  # lines of code between two origins: never more than $3000 bytes
FILE_LINES = 100
HOME, SYMBOL_FILES, SYMBOL_LINES = "home", 40, 100
BANK_LINES = 5000
CALLS_PER_BANK = 10
ENTRIES_PER_BANK = 4
REGIONS, REGION_BYTES = 248, 188
REGION_FILL = 172  # what is at least in a region when the code goes on in the next one: about 100 lines

MACROS = (
    ("COPYW", ("LDA source", "STA target", "LDA source+1", "STA target+1")),
    ("STOREW", ("LDA #<source", "STA target", "LDA #>source", "STA target+1")),
    ("ADDTO", ("CLC", "LDA target", "ADC source", "STA target")),
    ("MOVEX", ("LDX source", "LDA target,X", "EOR #255", "STA target,X")),
)
MACRO_LINES = sum(1 + len(body) for name, body in MACROS)


def parts(lines, length):
    """Lengths of sections that make up that many lines."""
    return [length] * (lines // length) + ([lines % length] if lines % length else [])


def program_of(rng, lines, **style):
    """Sections of code with an origin before each."""
    sections = parts(lines, SECTION)
    code = Code(rng, sum(labels_in(count - 1) for count in sections), **style)
    text = []
    for number, count in enumerate(sections):
        text.append("!org " + ORIGINS[number % len(ORIGINS)])
        text += code.section(count - 1)
    return {"main.asm": text}


def plain(rng, lines):
    return program_of(rng, lines)


def far(rng, lines):
    return program_of(rng, lines, far=30)


def fold(rng, lines):
    return program_of(rng, lines, fold=True)


def data(rng, lines):
    text = []
    for number, count in enumerate(parts(lines, 1000)):
        text.append(f"!org ${(0x2000, 0x6000, 0xA000)[number % 3]:04X}")
        for line in range(count - 1):
            label = f"table_{number}_{line}: " if line % 50 == 0 else "        "
            values = rng.randbytes(16)
            if rng.random() < 0.5:
                words = ",".join("$%02X%02X" % (values[i + 1], values[i]) for i in range(0, 16, 2))
                text.append(label + ".word " + words)
            elif rng.random() < 0.7:
                text.append(label + ".byte $" + values.hex(",").upper().replace(",", ",$"))
            else:
                text.append(label + ".byte " + ",".join(map(str, values)))
    return {"main.asm": text}


def macro(rng, lines):
    """Five of six lines are calls; the macros themselves are the first lines, each in its dialect."""
    text = ["!macros"]
    sections = parts(lines - MACRO_LINES, 1000)
    labels = sum((count + 4) // 6 for count in sections)
    defined = 0

    def argument():
        if rng.random() < 0.3:
            return "$%04X" % rng.randrange(0x200, 0xFF00)
        return f"word_{min(max(0, defined + rng.randrange(-200, 200)), labels - 1)}"

    for number, count in enumerate(sections):
        text.append("!org " + ORIGINS[number % len(ORIGINS)])
        for line in range(count - 1):
            if line % 6 == 0:
                text.append(f"word_{defined}: " + ("" if defined % 2 else "INX"))
                defined += 1
            else:
                text.append(f"        {MACROS[rng.randrange(len(MACROS))][0]} {argument()},{argument()}")
    return {"main.asm": text}


def include(rng, lines):
    """One file that includes all the others, with an origin now and then."""
    names = [f"part{number:05}.asm" for number in range(lines // FILE_LINES)]
    code = Code(rng, labels_in(FILE_LINES) * len(names))
    files = {"main.asm": []}
    for number, name in enumerate(names):
        if number * FILE_LINES % SECTION == 0:
            files["main.asm"].append("!org " + ORIGINS[number * FILE_LINES // SECTION % len(ORIGINS)])
        files["main.asm"].append(f'        .include "parts/{name}"')
        files["parts/" + name] = code.section(FILE_LINES)
    return files


def start_up(rng, lines):
    return program_of(rng, lines, branches=False)


def home(rng, lines):
    """Names from the symbol files of a toolchain's home; the other assembler includes files of the same names."""
    names = [[f"name_{file}_{line}" for line in range(SYMBOL_LINES)] for file in range(SYMBOL_FILES)]
    files = {f"symbols/{file:02}": [f"{name} = ${rng.randrange(0x200, 0xFF00):04X}" for name in names[file]]
             for file in range(SYMBOL_FILES)}
    mnemonics = ("LDA", "STA", "ADC", "JSR", "CMP")
    code = [f"        {rng.choice(mnemonics)} {rng.choice(rng.choice(names))}" for _ in range(lines - 1)]
    return {**files, "main.asm": ["!symbols", "!org $2000", *code]}


def undefined(rng, lines):
    """No name is known; each is met once."""
    forms = ("LDA #%s", "LDX #<%s", "LDA #>%s", "JSR %s", "LDA %s", "STA %s,X")
    text = []
    for number, count in enumerate(parts(lines, SECTION)):
        text.append("!org " + ORIGINS[number % len(ORIGINS)])
        text += ["        " + rng.choice(forms) % f"missing_{number}_{line}" for line in range(count - 1)]
    return {"main.asm": text}


def regions(rng, lines):
    """A list of small regions, filled again and again from the first on."""
    starts = range(0x400, 0x400 + 0x100 * REGIONS, 0x100)
    text = ["        .code_regions " + ",".join(f"${start:04X}-${start + REGION_BYTES - 1:04X}" for start in starts)]
    sections = parts(lines - 1, 500)
    code = Code(rng, sum(labels_in(count - 1) for count in sections), branches=False)
    filled = None
    for count in sections:
        if filled is None or code.bytes - filled > (REGIONS - 10) * REGION_FILL:
            text.append(f"!org ${starts[0]:04X}")
            filled = code.bytes
        else:
            text.append("; the regions go on")
        text += code.section(count - 1)
    return {"main.asm": text}


def banked(rng, lines):
    """A little main memory, and banks of nearly 8 KB; some calls in each bank go to the first labels of another one."""
    main = ["!org $6000", "start: JSR ", "        RTS"]
    sections = parts(lines - len(main), BANK_LINES)
    first = [0]
    for count in sections:
        first.append(first[-1] + labels_in(count - 1))
    code = Code(rng, first[-1], enclosed=True, comments=14)
    main[1] += code.name(0)
    text = main
    for number, count in enumerate(sections):
        text.append(f"        .bank bank_{number}")
        before = code.bytes
        body = code.section(count - 1)
        if code.bytes - before > 0x2000:
            raise ValueError("a bank is too long")
        calls = [index for index, line in enumerate(body) if line.startswith("        JSR ")]
        for index in rng.sample(calls, CALLS_PER_BANK) if len(sections) > 1 else ():
            other = rng.choice([bank for bank in range(len(sections)) if bank != number])
            body[index] = "        JSR " + code.name(first[other] + rng.randrange(ENTRIES_PER_BANK))
        text += body
    return {"main.asm": text}


WORKLOADS = {
    "plain": (plain, (KILN, RIVAL)),
    "data": (data, (KILN, RIVAL)),
    "macro": (macro, (KILN, RIVAL)),
    "include": (include, (KILN, RIVAL)),
    "start-up": (start_up, (KILN, RIVAL)),
    "home": (home, (KILN, RIVAL)),
    "far": (far, (KILN,)),
    "fold": (fold, (KILN,)),
    "undefined": (undefined, (KILN,)),
    "regions": (regions, (KILN,)),
    "banked": (banked, (KILN,)),
}


def macro_definitions(dialect):
    text = []
    for name, body in MACROS:
        if dialect == KILN:
            text.append(f".macro {name} source, target")
            text += ["        " + line for line in body]
        else:
            text.append(f"{name} .macro")
            text += ["        " + line.replace("source", "\\1").replace("target", "\\2") for line in body]
            text.append("        .endm")
    return "\n".join(text)


def symbol_includes(dialect):
    """kiln-as finds the files in its home."""
    return "" if dialect == KILN else "\n".join(f'        .include "symbols/{file:02}.asm"' for file in range(SYMBOL_FILES))


def place(name, dialect):
    """Where a file of a program goes in its folder."""
    if not name.startswith("symbols/"):
        return name
    return f"{HOME}/lib/kl/atari/{name}.sym" if dialect == KILN else name + ".asm"


def translate(text, dialect):
    text = text.replace("!macros", macro_definitions(dialect)).replace("!symbols", symbol_includes(dialect))
    for marker, spelling in DIALECTS[dialect]:
        text = text.replace(marker, spelling)
    return text


def prepare(workload, lines, directory):
    """Writes one program below the directory, unless it is there; returns the folder that holds it in its dialects."""
    folder = Path(directory) / f"{workload}-{lines}"
    generators = [Path(__file__).with_name(name) for name in ("generate.py", "random_code.py")]
    stamp = folder / "stamp"
    state = hashlib.sha256(b"".join(path.read_bytes() for path in generators)).hexdigest()
    if stamp.exists() and stamp.read_text() == state:
        return folder
    shutil.rmtree(folder, ignore_errors=True)
    write, dialects = WORKLOADS[workload]
    files = write(random.Random(workload), lines)
    for name, text in files.items():
        joined = "\n".join(text) + "\n"
        for dialect in dialects:
            path = folder / dialect / place(name, dialect)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(translate(joined, dialect))
    stamp.write_text(state)
    return folder


if __name__ == "__main__":
    if len(sys.argv) != 4 or sys.argv[1] not in WORKLOADS:
        sys.exit(f"usage: generate.py WORKLOAD LINES DIRECTORY\nworkloads: {', '.join(WORKLOADS)}")
    print(prepare(sys.argv[1], int(sys.argv[2]), sys.argv[3]))
