# The kinds of slips: where each can be made, what it does to the text there, and whether what comes out can be a sound
# program, which somebody may have meant.
import re
import string
from dataclasses import dataclass


@dataclass
class Kind:
    title: str
    role: str  # of the spots, see spots.py
    change: callable  # (text, random, spot) -> the new text, or None where this slip cannot be made
    sound: str = ""  # why the result can be a sound program; empty: it never is
    traces: bool = False  # what it breaks are other lines, and so these are the right ones too


# A slip of the finger in a word.
def change_letter(text, random, spot):
    at = random.choice([at for at, character in enumerate(text) if character.isalpha()])
    letters = string.ascii_uppercase if text[at].isupper() else string.ascii_lowercase
    return text[:at] + random.choice(letters.replace(text[at], "")) + text[at + 1:]


def lose_letter(text, random, spot):
    letters = [at for at, character in enumerate(text) if character.isalpha()]
    at = random.choice(letters)
    return text[:at] + text[at + 1:] if len(letters) > 1 else None


def double_letter(text, random, spot):
    at = random.choice([at for at, character in enumerate(text) if character.isalpha()])
    return text[:at] + text[at] + text[at:]


def swap_letters(text, random, spot):
    pairs = [at for at in range(len(text) - 1) if text[at:at + 2].isalpha() and text[at] != text[at + 1]]
    at = random.choice(pairs) if pairs else None
    return text[:at] + text[at + 1] + text[at] + text[at + 2:] if pairs else None


def change_case(text, random, spot):
    changed = text.lower() if text != text.lower() else text.upper()
    return changed if changed != text else None


def change_digit(text, random, spot):
    at = random.choice([at for at, character in enumerate(text) if character.isdigit()] or [None])
    return None if at is None else text[:at] + random.choice("0123456789".replace(text[at], "")) + text[at + 1:]


def add_digit(text, random, spot):
    return text + random.choice("0123456789" if text[0] != "%" else "01")


# The last or only digit becomes a letter.
def digit_becomes(letter):
    return lambda text, random, spot: text[:-1] + letter


def another_of(role):
    def change(text, random, spot):
        others = sorted({other.text for other in spot.all.get(role, ()) if other.text != text})
        return random.choice(others) if others else None
    return change


def by(replacement):
    return lambda text, random, spot: replacement


# Replaces what the pattern finds; None if it does not.
def sub(pattern, replacement):
    def change(text, random, spot):
        changed = re.sub(pattern, replacement, text, count=1)
        return changed if changed != text else None
    return change


def when(pattern, change):
    return lambda text, random, spot: change(text, random, spot) if re.fullmatch(pattern, text) else None


def exchange_index(text, random, spot):
    return "Y" if text in "xX" else "X"


# A second label of this kind before the line.
def label_twice(role):
    def change(text, random, spot):
        labels = [other.statement for other in spot.all.get(role, ()) if other.file == spot.file]
        scoped = [label for label in labels if role == "label" or label.scope == spot.statement.scope]
        label = random.choice(scoped) if scoped else None
        beginsScope = role != "label" and spot.statement.scope == spot.statement.label
        isElsewhere = label and not label.macro and label.line != spot.statement.line and not beginsScope
        return f"{label.label}:\n{text}" if isElsewhere else None
    return change


lose = by("")
double = sub(r"(?s)(.*)", r"\1\1")
OTHER_NAME = "another name of the program"
OTHER_VALUE = "another value that fits"
UNUSED = "nothing uses the name"
SAME = "the same bytes"
CARRIAGE_RETURNS = "\r\n"  # for every line feed of the file

KINDS = [
    # Words
    Kind("mnemonic: a letter changed", "mnemonic", change_letter, "another instruction"),
    Kind("mnemonic: a letter lost", "mnemonic", lose_letter),
    Kind("mnemonic: a letter doubled", "mnemonic", double_letter),
    Kind("mnemonic: two letters swapped", "mnemonic", swap_letters, "another instruction"),
    Kind("mnemonic: a 65C02 instruction", "mnemonic", sub("(?i)^STA$", "STZ")),
    Kind("mnemonic lost", "mnemonic", lose, "the instruction had no operand"),
    Kind("directive: a letter changed", "directive", change_letter),
    Kind("directive: a letter lost", "directive", lose_letter),
    Kind("directive: a letter doubled", "directive", double_letter),
    Kind("directive: two letters swapped", "directive", swap_letters),
    Kind("directive: the dot lost", "directive", sub(r"^\.", "")),
    Kind("directive: the dot becomes a comma", "directive", sub(r"^\.", ",")),
    Kind("directive lost", "directive", lose, "the directive has no argument"),
    Kind("directive: .db", ".byte", by(".db")),
    Kind("directive: .dw", ".word", by(".dw")),
    Kind("directive: .ds", ".space", by(".ds")),
    Kind("directive: .text", ".string", by(".text")),
    Kind("directive: .byte for a text", ".string", by(".byte")),
    Kind("directive: ORG", ".org", by("ORG")),
    Kind("directive: *=", ".org", by("*=")),
    Kind("macro call: a letter changed", "macro call", change_letter, "another macro"),
    Kind("macro call: a letter lost", "macro call", lose_letter, "another macro"),
    # Names
    Kind("label at its definition: a letter changed", "label", change_letter, UNUSED, traces=True),
    Kind("label at its definition: a letter lost", "label", lose_letter, UNUSED, traces=True),
    Kind("local label at its definition: a letter changed", "local label", change_letter, UNUSED, traces=True),
    Kind("label at its use: a letter changed", "name", change_letter, OTHER_NAME),
    Kind("label at its use: a letter lost", "name", lose_letter, OTHER_NAME),
    Kind("label at its use: two letters swapped", "name", swap_letters, OTHER_NAME),
    Kind("local label at its use: a letter changed", "local name", change_letter, OTHER_NAME),
    Kind("assigned name: a letter changed", "assigned name", change_letter, UNUSED, traces=True),
    Kind("built-in name: a letter changed", "platform name", change_letter, "another built-in name"),
    Kind("built-in name: a letter lost", "platform name", lose_letter, "another built-in name"),
    Kind("name: the letter case changed", "name", change_case, "the name is found all the same"),
    Kind("another name of the program", "name", another_of("name"), OTHER_NAME, traces=True),
    Kind("label: the colon lost", "label's colon", lose),
    Kind("label: the colon becomes a semicolon", "label's colon", by(";")),
    Kind("label: the colon doubled", "label's colon", double),
    Kind("label: the space after the colon lost", "label and space", sub(r"\s+$", ""), SAME),
    Kind("local label: the dot lost at its definition", "local label", sub(r"^\.", ""), UNUSED, traces=True),
    Kind("local label: the dot lost at its use", "local name", sub(r"^\.", ""), OTHER_NAME),
    Kind("local label: the scope lost in a list", "scoped name in a list", sub(r"^\w+", "")),
    Kind("label: a dot added at its definition", "label", sub(r"^(?=\w)", "."), UNUSED, traces=True),
    Kind("label: a dot added at its use", "name", sub("^", "."), OTHER_NAME),
    Kind("local label: @ for the dot", "local label and its uses", sub(r"^\.", "@"), traces=True),
    Kind("local label: .end", "local label and its uses", by(".end"), traces=True),
    Kind("label a second time", "line", label_twice("label"), traces=True),
    Kind("local label a second time", "line", label_twice("local label"), traces=True),
    Kind("assignment: = lost", "equals sign", lose),
    Kind("assignment: = becomes EQU", "equals sign", by(" EQU ")),
    Kind("assignment: = becomes .equ", "equals sign", by(" .equ ")),
    Kind("assignment: = becomes :=", "equals sign", by(":=")),
    Kind("definition removed", "line of a definition", lose, UNUSED, traces=True),
    # Numbers
    Kind("number: another digit", "number", change_digit, OTHER_VALUE, traces=True),
    Kind("number: a digit more", "number", add_digit, OTHER_VALUE, traces=True),
    Kind("hexadecimal number: $ lost", "hexadecimal number", sub(r"^\$", ""), "a decimal number", traces=True),
    Kind("hexadecimal number: 0x for $", "hexadecimal number", sub(r"^\$", "0x")),
    Kind("hexadecimal number: a digit becomes G", "hexadecimal number", digit_becomes("G")),
    Kind("hexadecimal number: 0 becomes O", "hexadecimal number", sub("0", "O")),
    Kind("decimal number: 0 becomes O", "decimal number", sub("0", "O")),
    Kind("binary number: a digit becomes 2", "binary number", digit_becomes("2")),
    Kind("character in quotes for a number", "number", when(r"\d\d|\$..", by("'A'"))),
    Kind("minus sign before an immediate number", "immediate", when(r"[\d$].*", sub("^", "-"))),
    Kind("minus sign before an item", "item", when(r"[\d$].*", sub("^", "-"))),
    # Operands
    Kind("# lost", "number sign", lose, "an address", traces=True),
    Kind("# added", "plain operand", sub("^", "#"), OTHER_VALUE),
    Kind("< lost", "<", lose, "the value fits"),
    Kind("> lost", ">", lose, "the value fits"),
    Kind("< becomes >", "<", by(">"), "the other byte"),
    Kind("comma lost", ",", lose, OTHER_VALUE),
    Kind("comma doubled", ",", double, "empty items are skipped"),
    Kind("comma becomes a dot", ",", by(".")),
    Kind("( lost", "(", lose),
    Kind(") lost", ")", lose),
    Kind("[ ] for ( )", "pointer", sub(r"\((.*)\)", r"[\1]")),
    Kind("space before )", ")", by(" )"), SAME),
    Kind("X and Y exchanged", "index register", exchange_index, "the mode exists"),
    Kind("index lost", "index", lose, "an address"),
    Kind("operand lost", "operand", lose, "the accumulator"),
    Kind("argument lost", "argument", lose),
    Kind("+ becomes |", "+", by("|")),
    Kind("+ becomes <<", "+", by("<<")),
    Kind("* for the current address", "target", by("*-3")),
    Kind("quote lost", "quote", lose, "the rest is a comment"),
    Kind("single quotes for a text", "text", sub('"(.*)"', r"'\1'"), "quotes are part of the text"),
    Kind("include: another name", "include's name", change_letter),
    # Blanks and whole lines
    Kind("separator: left space lost", "separator", by(": ")),
    Kind("separator: right space lost", "separator", by(" :")),
    Kind("separator: colon lost", "separator", by("   ")),
    Kind("directive: a tab after it", "space after a directive", by("\t"), "the directive needs no space"),
    Kind("directive: the space after it lost", "space after a directive", lose, "the directive needs no space"),
    Kind("mnemonic: a tab after it", "space after a mnemonic", by("\t"), SAME),
    Kind("mnemonic: the space after it lost", "space after a mnemonic", lose),
    Kind("indentation lost", "indentation", lose, SAME),
    Kind("comment after a statement: ; lost", "comment", lose),
    Kind("comment after a statement: // for ;", "comment", by("//")),
    Kind("comment line: ; lost", "comment line", lose, "the words are a statement"),
    Kind("comment line: // for ;", "comment line", by("//")),
    Kind("comment changed", "comment's text", lambda text, random, spot: change_letter(text + "e", random, spot), SAME),
    Kind("carriage return after a statement", "line without comment", sub("$", "\r")),
    Kind("carriage return after a comment", "line with comment", sub("$", "\r"), SAME),
    Kind("carriage returns in the whole file", "file", by(CARRIAGE_RETURNS)),
    Kind("byte order mark", "file", by("\ufeff")),
    Kind("line of an instruction doubled", "line of an instruction", double, "another program"),
    Kind("line of an instruction removed", "line of an instruction", lose, "another program"),
    Kind("line of a definition doubled", "line of a definition", double, SAME),
    Kind(".org removed", "line of .org", lose, "the bytes continue", traces=True),
    Kind("branch target out of reach", "branch line", sub("$", "\n        .space 130"), "it becomes a long branch"),
    # Macros
    Kind("macro call: an argument lost", "macro arguments", sub(r"(,|^)[^,]*$", "")),
    Kind("macro call: an argument more", "macro arguments", sub("$", ",1")),
    Kind("macro call: a second statement in its line", "macro arguments", sub("$", " : NOP")),
    Kind("macro: a letter of its name changed", "macro's name", change_letter, UNUSED, traces=True),
    Kind("macro: a comma lost between its parameters", "macro's comma", lose, UNUSED, traces=True),
    Kind("macro: a blank line in its body", "macro's next line", by("\n"), traces=True),
    Kind("macro: indentation lost in its body", "macro's indentation", lose, traces=True),
]
