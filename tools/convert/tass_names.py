"""The names of a 64tass program: labels, local and unnamed ones, numbers, and where they are."""

import re

from expressions import LARGEST, Refused, Value, parse, value_of
from instructions import FORMS, split_list
from names import Name
from tass_syntax import GRAMMAR, begins_macro, key

def is_local(spelling):
    return spelling.startswith("_")


LOCAL_USE = re.compile(r"(?<![\w.\\])_\w|^[-+]+$|§")


def define(names, statements):
    """Defines the names, and notes in each statement what its place is."""
    walk = Walk(names)
    for place, statement in enumerate(statements):
        if not statement.refused and not statement.dropped and not begins_macro(statement):
            try:
                walk.step(place, statement)
            except Refused as reason:
                statement.refused = str(reason)
                walk.address = None
    for statement, kind, place in walk.waiting:
        statement.refused = statement.refused or ("" if place < walk.counts[kind] else "there is no such label")


class Walk:
    """The state of define(): low is the lowest address that a label can have here, address the exact one or None."""

    def __init__(self, names):
        self.names = names
        self.low = 0
        self.address = None
        self.counts = {"+": 0, "-": 0}
        self.waiting = []   # statements that refer to later unnamed labels
        self.undecided = []  # labels in lines of data: whether they begin a scope makes no difference so far
        self.after_reserved = False
        self.origin = None   # the statement that set it, if nothing has followed

    def step(self, place, statement):
        if statement.operation in ("*=", "="):
            return self.set_value(place, statement)
        reserved = reserved_bytes(statement, self)
        if reserved is not None:
            return self.reserve(place, statement, reserved)
        if self.after_reserved and statement.operation:
            if self.address is None:
                raise Refused("the address after bytes without a value is not plain")
            statement.facts["origin"] = self.address
            self.after_reserved = False
        if statement.label or statement.operation:
            self.origin = None
        if statement.label:
            self.label(place, statement)
        statement.facts["owner"] = self.names.owner
        statement.facts["low"] = self.low
        self.unnamed(statement)
        if LOCAL_USE.search(statement.argument) or is_local(statement.label) or statement.label in ("+", "-"):
            for name in self.undecided:
                name.quiet, name.begins_scope = True, False
        if statement.operation:
            self.address = None
        for part in statement.parts or []:
            if part.label or LOCAL_USE.search(part.argument) or part.operation == "*=":
                raise Refused(f"macro {statement.macro.name}: a label or an origin in it")
            part.facts.update(owner=self.names.owner, low=self.low)

    def set_value(self, place, statement):
        statement.facts.update(owner=self.names.owner, low=self.low, address=self.address)
        look_up = lambda spelling: self.known(spelling, statement)
        value = value_of(parse(statement.argument, GRAMMAR), look_up)
        if statement.operation == "=":
            if is_local(statement.label) or statement.label in ("+", "-"):
                raise Refused("a local name for a number")
            self.names.define(key(statement.label), Name(statement.label, "number", place, value))
            return
        if not value.exact:
            raise Refused("the origin is not a plain number")
        if self.origin:
            self.origin.facts["unused"] = True
        statement.facts["origin"] = self.low = self.address = value.low
        self.origin = statement
        self.after_reserved = False

    def known(self, spelling, statement):
        if spelling == "*":
            return Value(self.low, 65535) if self.address is None else Value(self.address, self.address)
        name = find(self.names, spelling, statement)
        return name.value if name else Value(-LARGEST, LARGEST)

    def reserve(self, place, statement, count):
        """Bytes without a value are not in the file: their label becomes a name for a number."""
        if self.address is None:
            raise Refused("bytes without a value, at an address that is not plain")
        statement.facts["reserved"] = self.address
        if self.origin:
            self.origin.facts["unused"] = True
            self.origin = None
        if statement.label:
            if is_local(statement.label) or statement.label in ("+", "-"):
                raise Refused("a local name for a number")
            value = Value(self.address, self.address)
            self.names.define(key(statement.label), Name(statement.label, "number", place, value))
        self.address += count
        self.low = self.address
        self.after_reserved = True

    def label(self, place, statement):
        spelling, value = statement.label, Value(self.low, 65535)
        if self.after_reserved:
            raise Refused("a label after bytes without a value needs an origin before it")
        if spelling in ("+", "-"):
            self.counts[spelling] += 1
            unnamed = f"§{self.counts[spelling] * 2 + (spelling == '+')}"
            word = "on" if spelling == "+" else "back"
            name = Name(f"{word}_{self.counts[spelling]}", "label", place, value, local=True, owner=self.names.owner)
            self.names.define(unnamed, name)
            statement.facts["name"] = unnamed
            return
        if is_local(spelling):
            name = Name(spelling.lstrip("_"), "label", place, value, local=True, owner=self.names.owner)
            if not name.spelling:
                raise Refused("a label that is only a line")
            self.names.define((self.names.owner, key(spelling)), name)
            return
        name = self.names.define(key(spelling), Name(spelling, "label", place, value, begins_scope=True))
        if statement.operation.startswith("."):
            self.undecided.append(name)  # begins no scope for 64tass
        else:
            self.names.owner = name
            self.undecided = []

    def unnamed(self, statement):
        """Operands that are + or - become names."""
        match = re.fullmatch(r"(\++|-+)", statement.argument)
        if not match or statement.operation not in FORMS:
            return
        sign, steps = match.group()[0], len(match.group())
        number = self.counts[sign] + steps if sign == "+" else self.counts[sign] + 1 - steps
        if number < 1:
            raise Refused("there is no such label")
        statement.argument = f"§{number * 2 + (sign == '+')}"


def reserved_bytes(statement, walk):
    """How many bytes without a value it stands for, or None."""
    if statement.operation == ".fill" and "," not in statement.argument and statement.argument:
        value = value_of(parse(statement.argument, GRAMMAR), lambda spelling: walk.known(spelling, statement))
        if not value.exact or value.low < 0:
            raise Refused("the number of bytes is not plain")
        return value.low
    sizes = {".byte": 1, ".char": 1, ".word": 2, ".sint": 2, ".addr": 2, ".dword": 4, ".dint": 4, ".long": 3}
    items = split_list(statement.argument)
    if statement.operation in sizes and "?" in items:
        if set(items) != {"?"}:
            raise Refused("items with and without a value")
        return sizes[statement.operation] * len(items)
    return None


def find(names, spelling, statement):
    if is_local(spelling):
        return names.table.get((statement.facts.get("owner"), key(spelling)))
    return names.table.get(key(spelling))


def label_name(names, statement):
    spelling = statement.facts.get("name") or statement.label
    return names.table.get(spelling) if spelling[0] == "§" else find(names, spelling, statement)


def value_at(name, place):
    return name.value
