"""Expressions: read by the rules of another assembler, written by those of kiln-as.

An expression is a tuple: ("number", value, text), ("name", spelling), ("here", "*"), ("char", character),
(operator, operand) or (operator, left, right). A dialect gives a Grammar.
"""

import re
from dataclasses import dataclass

DEEPEST = 60
MOST_TOKENS = 200
LARGEST = 1 << 31


class Refused(Exception):
    """What cannot be converted; the text says why."""


@dataclass(frozen=True)
class Grammar:
    """How a dialect writes expressions.

    tokens   pattern with the groups number, char, name, here and operator
    number   the value of a number's text
    binary   how tight an operator between operands binds: higher is tighter
    prefix   the same for an operator in front of its operand
    words    operators that are words, with their signs
    """
    tokens: re.Pattern
    number: object
    binary: dict
    prefix: dict
    words: dict


@dataclass(frozen=True)
class Value:
    """What is known of a value: it is between low and high. size is "zp" or "abs" if labels decide it, "" for plain
    numbers, and "?" when it is not clear."""
    low: int
    high: int
    size: str = ""

    @property
    def exact(self):
        return self.low == self.high


class Parser:
    """Reads one expression; raises Refused."""

    def __init__(self, text, grammar):
        self.grammar = grammar
        self.tokens = list(self.split(text))
        self.at = 0
        self.depth = 0

    def split(self, text):
        position = 0
        while position < len(text):
            match = self.grammar.tokens.match(text, position)
            if not match:
                raise Refused(f"'{text[position:].strip()}' is not understood")
            position = match.end()
            if match.lastgroup != "blank":
                token = match.group().lower() if match.lastgroup == "name" else ""
                if token.startswith(".") and token not in self.grammar.words:
                    raise Refused(f"there is no {token}")
                if token in self.grammar.words:
                    yield "operator", self.grammar.words[token]
                else:
                    yield match.lastgroup, match.group()

    def whole(self):
        if len(self.tokens) > MOST_TOKENS:
            raise Refused("the expression is too long")
        tree = self.expression(0)
        if self.at < len(self.tokens):
            raise Refused(f"'{self.tokens[self.at][1]}' is not expected here")
        return tree

    def take(self):
        if self.at == len(self.tokens):
            raise Refused("the expression ends early")
        self.at += 1
        return self.tokens[self.at - 1]

    def next_operator(self):
        if self.at == len(self.tokens):
            return None
        kind, text = self.tokens[self.at]
        # "*" is an operator here: the address can only be where an operand is expected.
        return text if kind in ("operator", "here") else None

    def expression(self, tightness):
        self.depth += 1
        if self.depth > DEEPEST:
            raise Refused("the expression is nested too deeply")
        left = self.operand()
        while True:
            operator = self.next_operator()
            binding = self.grammar.binary.get(operator, -1)
            if binding <= tightness:
                break
            self.take()
            left = (operator, left, self.expression(binding))
        self.depth -= 1
        return left

    def operand(self):
        kind, text = self.take()
        if kind == "number":
            return ("number", self.grammar.number(text), text)
        if kind == "char":
            return ("char", text[1])
        if kind in ("name", "here"):
            return (kind, text)
        if text == "(":
            inner = self.expression(0)
            if self.take()[1] != ")":
                raise Refused("a parenthesis is not closed")
            return inner
        if text in self.grammar.prefix:
            return (text, self.expression(self.grammar.prefix[text]))
        raise Refused(f"'{text}' is not an operand")


def character_code(character):
    if not " " <= character <= "~":
        raise Refused("a character that is not ASCII")
    return ord(character)


def parse(text, grammar):
    return Parser(text, grammar).whole()


def leaves(tree):
    """The names in it, and "*" for the current address."""
    if tree[0] in ("name", "here"):
        yield tree[1]
    elif tree[0] not in ("number", "char"):
        for operand in tree[1:]:
            yield from leaves(operand)


OPERATIONS = {
    "+": lambda a, b: a + b, "-": lambda a, b: a - b, "*": lambda a, b: a * b, "/": lambda a, b: a // b,
    "%": lambda a, b: a % b, "&": lambda a, b: a & b, "|": lambda a, b: a | b, "^": lambda a, b: a ^ b,
    "<<": lambda a, b: a << b, ">>": lambda a, b: a >> b,
}
PREFIXES = {"<": lambda a: a & 255, ">": lambda a: a >> 8 & 255, "^": lambda a: a >> 16 & 255,
            "-": lambda a: -a, "+": lambda a: a, "~": lambda a: ~a}


def in_range(value):
    if not -LARGEST < value < LARGEST:
        raise Refused("a number that is too large")
    return value


def value_of(tree, look_up):
    """The Value; look_up gives those of names."""
    if tree[0] == "number":
        return Value(tree[1], tree[1])
    if tree[0] == "char":
        return Value(character_code(tree[1]), character_code(tree[1]))
    if tree[0] in ("name", "here"):
        return look_up(tree[1])
    operands = [value_of(operand, look_up) for operand in tree[1:]]
    size = size_of_result(tree[0], operands)
    if all(operand.exact for operand in operands):
        result = exact_result(tree[0], [operand.low for operand in operands])
        return Value(result, result, size)
    low, high = range_of_result(tree[0], operands)
    return Value(low, high, size)


def exact_result(operator, numbers):
    if len(numbers) == 1:
        return in_range(PREFIXES[operator](numbers[0]))
    left, right = numbers
    if operator in ("/", "%") and (left < 0 or right <= 0):
        raise Refused("a division with a number that is not positive")
    if operator in ("<<", ">>") and not 0 <= right <= 32:
        raise Refused("a shift by that many bits")
    return in_range(OPERATIONS[operator](left, right))


def range_of_result(operator, operands):
    a, b = operands[0], operands[-1]
    if len(operands) == 1:
        return {"-": (-a.high, -a.low), "+": (a.low, a.high)}.get(operator, (0, 255))
    if operator == "+":
        return a.low + b.low, a.high + b.high
    if operator == "-":
        return a.low - b.high, a.high - b.low
    return -LARGEST, LARGEST


def size_of_result(operator, operands):
    sizes = [operand.size for operand in operands]
    if not any(sizes):
        return ""
    if operator == "+" and "" in sizes:
        return max(sizes)
    if operator == "-" and len(sizes) == 2 and not sizes[1]:
        return sizes[0]
    return "?"


# How tight a written text binds: a number or name; a product; a sum; "<" or ">" at the front, which take all the rest.
ATOM, PRODUCT, SUM, FRONT = 3, 2, 1, 0


class ExpressionWriter:
    """Writes trees as kiln-as reads them. look_up gives the Value of a name, refer its text."""

    def __init__(self, look_up, refer, check_text):
        self.look_up = look_up
        self.check_text = check_text
        self.refer = refer
        self.folded = False  # whether an expression became a number

    def write(self, tree):
        return self.text(tree)[0]

    def text(self, tree):
        if tree[0] == "number":
            return number_text(tree)
        if tree[0] == "char":
            self.check_text(tree[1])
            return str(character_code(tree[1])), ATOM
        if tree[0] in ("name", "here"):
            return self.refer(tree[1]), ATOM
        if len(tree) == 2:
            return self.prefixed(tree)
        writer = {"+": self.sum, "-": self.sum, "*": self.product, "/": self.product, "<<": self.shifted,
                  ">>": self.shifted, "&": self.masked}
        return writer.get(tree[0], self.fold)(tree)

    def fold(self, tree):
        """The operator is unknown here, so only the result can be written."""
        value = value_of(tree, self.look_up)
        self.check_characters(tree)
        if not value.exact:
            raise Refused(f"there is no operator '{tree[0]}'")
        self.folded = True
        return plain_number(value.low)

    def check_characters(self, tree):
        if tree[0] == "char":
            self.check_text(tree[1])
        elif tree[0] not in ("number", "name", "here"):
            for operand in tree[1:]:
                self.check_characters(operand)

    def at_least(self, tree, tightness):
        text, tight = self.text(tree)
        return text if tight >= tightness else f"({text})"

    def sum(self, tree):
        return self.at_least(tree[1], SUM) + tree[0] + self.at_least(tree[2], PRODUCT), SUM

    def product(self, tree):
        if tree[0] == "/":
            left, right = (value_of(operand, self.look_up) for operand in tree[1:])
            if left.low < 0 or right.low <= 0:
                return self.fold(tree)
        return self.at_least(tree[1], PRODUCT) + tree[0] + self.at_least(tree[2], ATOM), PRODUCT

    def shifted(self, tree):
        left, right = (value_of(operand, self.look_up) for operand in tree[1:])
        if not right.exact or not 0 <= right.low <= 16 or left.low < 0 or (left.exact and left.size == ""):
            return self.fold(tree)
        return self.product(("*" if tree[0] == "<<" else "/", tree[1], ("number", 1 << right.low, str(1 << right.low))))

    def masked(self, tree):
        mask = value_of(tree[2], self.look_up)
        left = value_of(tree[1], self.look_up)
        if mask.exact and mask.low == 255 and not left.exact:
            return self.prefixed(("<", tree[1]))
        return self.fold(tree)

    def prefixed(self, tree):
        operator, operand = tree
        if operator in "<>":
            return operator + self.at_least(operand, SUM), FRONT
        if operator == "+":
            return self.text(operand)
        if operator == "-":
            return "0-" + self.at_least(operand, PRODUCT), SUM
        return self.fold(tree)


def number_text(tree):
    value, text = tree[1], tree[2]
    if text[0] == "$" and text[1:].isalnum() or text[0] == "%" and set(text[1:]) <= set("01") or text.isdigit():
        return text, ATOM
    return plain_number(value)


def plain_number(value):
    if value < 0:
        return f"0-{-value}", SUM
    return (str(value) if value < 10 else f"${value:02X}" if value < 256 else f"${value:04X}"), ATOM
