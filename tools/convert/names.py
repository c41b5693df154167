"""The names of a program: where they are defined, what is known of their values, how kiln-as is to call them."""

import re
from dataclasses import dataclass
from pathlib import Path

from expressions import Refused, Value
from instructions import RESERVED

FIVE_WORDS = {"byte", "word", "org", "dbyte", "end"}  # never take a scope when they are local labels
NAME = re.compile(r"[A-Za-z_][A-Za-z0-9_]*\Z")
SYMBOLS = Path(__file__).resolve().parents[2] / "share" / "kiln-as" / "atari.sym"


@dataclass(eq=False)
class Name:
    """kind is "label", "number" or "import"; place is the index of the statement that defines it. A local one has the
    name that begins its scope as its owner, or None."""
    spelling: str
    kind: str
    place: int
    value: Value
    local: bool = False
    owner: object = None
    begins_scope: bool = False
    quiet: bool = False     # written as ">name:", which begins no scope
    segment: str = ""
    file: object = None
    public: bool = False    # other files may use it
    declared: bool = False  # to be in the zero page, in a line of its own
    written: str = ""       # by kiln-as


def built_in_names():
    """Names that have a value without being defined, in lower case; none if the file of them is missing."""
    if not SYMBOLS.is_file():
        return None
    return {line.split("=")[0].strip().lower() for line in SYMBOLS.read_text().splitlines() if "= $" in line}


class Names:
    def __init__(self):
        self.table = {}
        self.taken = {}  # name of kiln-as -> Name
        self.owner = None
        self.built_in = built_in_names()

    def is_built_in(self, text):
        return self.built_in is None or text.lower() in self.built_in

    def define(self, key, name):
        if key in self.table and self.table[key].kind != "import":
            raise Refused(f"{name.spelling} is defined twice")
        self.table[key] = name
        return name

    def choose_spellings(self):
        """Gives each name the one that it is written with."""
        # What other files use keeps its name, so it comes first.
        names = sorted(self.table.values(), key=lambda name: (name.local, name.kind != "import" and not name.public))
        for name in names:
            name.written = self.local_name(name) if name.local else self.free(clean(name.spelling), name)

    def local_name(self, name):
        """.loop, or a full name where kiln-as would have another scope."""
        own = clean(name.spelling)
        own = "l" + own if own[0].isdigit() else own
        owner = name.owner
        if owner is None or owner.begins_scope:
            written = "." + (own + "_" if own.lower() in FIVE_WORDS else own)
            while (owner, written) in self.taken:
                written += "_"
            self.taken[owner, written] = name
            return written
        name.local = False
        name.quiet = True
        return self.free(f"{owner.written}_{own}", name)

    def free(self, wanted, name):
        if not NAME.match(wanted):
            raise Refused(f"'{name.spelling}' is not a name for kiln-as")
        if wanted.lower() in RESERVED or wanted.startswith(("_klb_", "_kxb_")):
            wanted += "_"
        while wanted in self.taken:
            wanted += "_"
        self.taken[wanted] = name
        return wanted


def clean(spelling):
    return re.sub(r"[^A-Za-z0-9_]", "_", spelling.lstrip("@"))
