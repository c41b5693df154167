"""The names of a ca65 module: labels in procedures and segments, cheap local and unnamed ones, numbers, imports."""

import re

from ca65_syntax import DROPPED, FIRST_SEGMENT, GRAMMAR, INCLUDE, SEGMENTS, begins_macro
from expressions import LARGEST, Refused, Value, parse, value_of
from instructions import FORMS, split_list
from names import Name

def define(names, statements):
    """Defines the names, and notes in each statement what its place is."""
    walk = Walk(names, statements)
    for place, statement in enumerate(statements):
        if not statement.refused and not statement.dropped and not begins_macro(statement):
            try:
                walk.step(place, statement)
            except Refused as reason:
                statement.refused = str(reason)
        statement.facts.setdefault("segment", walk.segment)
    walk.finish()


class Walk:
    """The state of define()."""

    def __init__(self, names, statements):
        self.names = names
        self.main = statements[0].file if statements else None
        self.segment = FIRST_SEGMENT
        self.stack = []       # of segments
        self.path = []        # of the procedures around the statement
        self.procedures = []  # their labels
        self.inner = {}       # procedure -> the names defined in it; None if they cannot be local labels
        self.zeropage = names.zeropage
        self.unnamed = 0
        self.last_label = None
        self.filled = False   # whether there are bytes yet
        self.absolute = False  # whether there was an .org
        self.public = {}      # spelling -> whether in the zero page

    def step(self, place, statement):
        statement.facts.update(path=tuple(self.path), owner=self.names.owner, segment=self.segment)
        operation = statement.operation
        if operation in SEGMENTS or operation in (".segment", ".pushseg", ".popseg"):
            return self.change_segment(statement)
        if operation == ".proc":
            return self.begin_procedure(place, statement)
        if operation == ".endproc":
            return self.end_procedure()
        if operation in (".import", ".importzp", ".global", ".globalzp", ".export", ".exportzp", ".forceimport"):
            return self.share(place, statement)
        if operation == "=":
            return self.number(place, statement)
        if operation == ".org":
            return self.origin(statement)
        if self.segment == "ZEROPAGE" and (statement.label or operation):
            return self.reserve(place, statement)
        self.label(place, statement)
        for part in [statement, *(statement.parts or [])]:
            if part is not statement:
                self.part(place, part)
            part.facts["owner"] = self.names.owner
            self.replace_unnamed(part)
        self.filled = self.filled or bool(operation) and operation not in DROPPED and operation != INCLUDE

    def part(self, place, part):
        part.facts.update(path=tuple(self.path), owner=self.names.owner, segment=self.segment)
        if part.operation in ("=", ".org", ".proc", ".endproc", ".segment", *SEGMENTS, ".import", ".export"):
            raise Refused(f"{part.operation} in a macro")
        self.label(place, part)

    def change_segment(self, statement):
        before, operation = self.segment, statement.operation
        if operation == ".pushseg":
            self.stack.append(before)
        elif operation == ".popseg":
            if not self.stack:
                raise Refused("there is no .pushseg")
            self.segment = self.stack.pop()
        else:
            self.segment = SEGMENTS.get(operation) or self.segment_name(statement.argument)
        if self.segment != before and (statement.file is not self.main or self.absolute):
            self.segment = before
            raise Refused("another segment after .org" if self.absolute else "another segment in an included file")
        if self.segment != before:
            for procedure in self.procedures:
                self.inner[procedure] = None
        statement.facts["segment"] = self.segment

    def segment_name(self, text):
        match = re.fullmatch(r'"([A-Za-z_]\w*)"(\s*:\s*(\w+))?', text)
        size = (match.group(3) or "").lower() if match else ""
        if not match or size in ("zeropage", "zp", "direct") and match.group(1) != "ZEROPAGE":
            raise Refused("a segment in the zero page that is not ZEROPAGE" if match else "it is not understood")
        return match.group(1)

    def full_key(self, spelling):
        return "::".join([*self.path, spelling])

    def label(self, place, statement):
        spelling = statement.label
        if not spelling:
            return
        value = Value(0, 65535, "abs")
        if spelling == ":":
            self.unnamed += 1
            statement.facts["name"] = f"§{self.unnamed}"
            name = Name(f"l{self.unnamed}", "label", place, value, local=True, owner=self.last_label,
                        segment=self.segment)
            self.names.define(f"§{self.unnamed}", name)
        elif spelling.startswith("@"):
            name = Name(spelling[1:], "label", place, value, local=True, owner=self.names.owner, segment=self.segment)
            self.names.define((self.names.owner, spelling), name)
            for procedure in self.procedures:
                self.inner[procedure] = None
        else:
            self.full_label(place, spelling, value)
            statement.facts["name"] = self.full_key(spelling)

    def full_label(self, place, spelling, value):
        name = Name("_".join([*self.path, spelling]), "label", place, value, begins_scope=True, segment=self.segment)
        self.names.define(self.full_key(spelling), name)
        self.add_inner(name, spelling)
        self.names.owner = self.last_label = name
        return name

    def add_inner(self, name, spelling):
        if self.procedures and self.inner[self.procedures[-1]] is not None:
            self.inner[self.procedures[-1]].append((name, spelling))

    def begin_procedure(self, place, statement):
        if statement.label or not re.fullmatch(r"[A-Za-z_]\w*", statement.argument):
            raise Refused("it is not understood")
        for procedure in self.procedures:
            self.inner[procedure] = None
        name = self.full_label(place, statement.argument, Value(0, 65535, "abs"))
        statement.facts["name"] = self.full_key(statement.argument)
        self.path.append(statement.argument)
        self.procedures.append(name)
        self.inner[name] = []

    def end_procedure(self):
        if not self.path:
            raise Refused("there is no .proc")
        self.path.pop()
        self.procedures.pop()
        self.names.owner = None

    def number(self, place, statement):
        if statement.label.startswith("@"):
            raise Refused("a local name for a number")
        self.set_number(place, statement, statement.label, statement.argument)

    def set_number(self, place, statement, spelling, text):
        def look_up(leaf):
            name = None if leaf == "*" else find(self.names, leaf, statement)
            return value_at(name, place) if name else Value(-LARGEST, LARGEST, "?")
        value = value_of(parse(text, GRAMMAR), look_up)
        name = Name("_".join([*self.path, spelling]), "number", place, value, segment=self.segment)
        statement.facts["name"] = self.full_key(spelling)
        self.names.owner = self.names.define(self.full_key(spelling), name)

    def origin(self, statement):
        value = value_of(parse(statement.argument, GRAMMAR), lambda leaf: Value(0, LARGEST, "?"))
        if self.filled or self.absolute or not value.exact or value.low < 256 or self.segment == "ZEROPAGE":
            raise Refused("an origin after other bytes, or one that is not a plain number from $100 on")
        self.absolute = True

    def reserve(self, place, statement):
        """The segment ZEROPAGE becomes names for numbers."""
        if statement.operation not in ("", ".res") or statement.label.startswith((":", "@")):
            raise Refused("only labels and .res can be in the segment ZEROPAGE")
        statement.facts["zeropage"] = self.zeropage
        if statement.label:
            name = Name("_".join([*self.path, statement.label]), "number", place, Value(0, 255, "zp"),
                        segment=self.segment)
            statement.facts["name"] = self.full_key(statement.label)
            self.names.owner = self.names.define(self.full_key(statement.label), name)
        if statement.operation:
            look_up = lambda leaf: name_value(self.names, leaf, statement, place)
            count = value_of(parse(statement.argument, GRAMMAR), look_up)
            if not count.exact or not 0 <= count.low <= 256:
                raise Refused("the number of bytes is not plain")
            self.zeropage += count.low

    def share(self, place, statement):
        if self.path:
            raise Refused("in a procedure")
        zero_page = statement.operation.endswith("zp")
        for item in split_list(statement.argument):
            match = re.fullmatch(r"([A-Za-z_]\w*)(?:\s*:\s*(\w+))?(?:\s*:?=\s*(.+))?", item)
            size = (match.group(2) or "").lower() if match else ""
            if not match or size not in ("", "abs", "absolute", "zp", "zeropage", "direct"):
                raise Refused(f"'{item}' is not understood")
            self.share_one(place, statement, match, zero_page or size in ("zp", "zeropage", "direct"))

    def share_one(self, place, statement, match, zero_page):
        spelling = match.group(1)
        value = Value(0, 255, "zp") if zero_page else Value(0, 65535, "abs")
        if match.group(3):
            if "," in statement.argument or match.group(2) or not statement.operation.startswith(".export"):
                raise Refused("a list with a number in it")
            statement.facts["alias"] = (spelling, match.group(3))
            self.set_number(place, statement, spelling, match.group(3))
        if statement.operation.startswith((".import", ".forceimport")):
            if spelling not in self.names.table:
                self.names.define(spelling, Name(spelling, "import", place, value))
        elif statement.operation.startswith(".global"):
            # An import, unless the file defines it further down.
            if spelling not in self.names.table:
                self.names.define(spelling, Name(spelling, "import", place, value))
            self.public.setdefault(spelling, zero_page)
        else:
            self.public[spelling] = zero_page

    def replace_unnamed(self, statement):
        """Operands such as :+ become names."""
        def name(match):
            sign, steps = match.group(1)[0], len(match.group(1))
            number = self.unnamed + steps if sign == "+" else self.unnamed + 1 - steps
            if number < 1:
                raise Refused("there is no such label")
            return f"§{number}"
        if statement.operation in FORMS or statement.operation == ".longbranch":
            statement.argument = re.sub(r"(?<!['\w]):(\++|-+)", name, statement.argument)

    def finish(self):
        for spelling, zero_page in self.public.items():
            name = self.names.table.get(spelling)
            if name:
                name.public = True
                name.declared = zero_page and name.kind != "import"
        for procedure, inner in self.inner.items():
            for name, spelling in inner or []:
                name.local, name.owner, name.spelling, name.begins_scope = True, procedure, spelling, False
        for name in self.names.table.values():
            if name.local and name.owner and name.owner.local:
                name.owner = name.owner.owner


def name_value(names, leaf, statement, place):
    name = None if leaf == "*" else find(names, leaf, statement)
    return value_at(name, place) if name else Value(-LARGEST, LARGEST, "?")


def find(names, spelling, statement):
    if spelling.startswith("."):
        raise Refused(f"there is no {spelling}")
    if spelling.startswith("§"):
        return names.table.get(spelling)
    if spelling.startswith("@"):
        return names.table.get((statement.facts.get("owner"), spelling))
    path = statement.facts.get("path", ())
    keys = ["::".join([*path[:depth], spelling]) for depth in range(len(path) + 1)]
    found = [names.table[one] for one in keys if one in names.table]
    if len(found) > 1:
        raise Refused(f"{spelling} is in several scopes")
    return found[0] if found else None


def label_name(names, statement):
    if "name" in statement.facts:
        return names.table.get(statement.facts["name"])
    return find(names, statement.label, statement)


def value_at(name, place):
    """A name that is defined further down takes an absolute address."""
    if name.place <= place:
        return name.value
    if name.declared:
        return Value(name.value.low, name.value.high, "?")
    return Value(name.value.low, name.value.high, "abs")
