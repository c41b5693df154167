"""Random 6502 code in the form that generate.py writes down in either dialect.

A local label begins with "@" here. All names lie at $0100 or above, and so do all numbers that a "+" follows: both
assemblers then choose the same addressing modes.
"""

from bisect import bisect

NONE, BYTE, ZERO_PAGE, WORD, NAME, BRANCH = range(6)

# Share of the lines in percent, bytes, operand, forms.
INSTRUCTIONS = (
    (10, 2, BYTE, "LDA #%s|LDX #%s|LDY #%s|CMP #%s|AND #%s|ORA #%s|ADC #%s|SBC #%s|EOR #%s|CPX #%s|CPY #%s"),
    (3, 2, NAME, "LDA #<%s|LDA #>%s|LDX #<%s|LDY #>%s"),
    (9, 2, ZERO_PAGE, "LDA %s|STA %s|LDX %s|STX %s|LDY %s|STY %s|INC %s|DEC %s|ADC %s|CMP %s|ASL %s|BIT %s"),
    (3, 2, ZERO_PAGE, "LDA %s,X|STA %s,X|INC %s,X|LDY %s,X|LDX %s,Y|STX %s,Y"),
    (4, 2, ZERO_PAGE, "LDA (%s),Y|STA (%s),Y|CMP (%s),Y|ADC (%s),Y"),
    (1, 2, ZERO_PAGE, "LDA (%s,X)|STA (%s,X)"),
    (4, 3, WORD, "LDA %s|STA %s|BIT %s|LDA %s,X|STA %s,X|STA %s+1"),
    (5, 3, NAME, "LDA %s|STA %s|LDX %s|STY %s|INC %s|CMP %s"),
    (4, 3, NAME, "LDA %s,X|STA %s,X|LDA %s,Y|STA %s,Y|DEC %s,X"),
    (2, 3, NAME, "LDA %s+1|STA %s+1|LDA %s+2,X|LDY %s-1"),
    (8, 3, NAME, "JSR %s"),
    (4, 3, NAME, "JMP %s"),
    (1, 3, NAME, "JMP (%s)"),
    (15, 2, BRANCH, "BNE %s|BEQ %s|BCC %s|BCS %s|BPL %s|BMI %s|BVC %s|BVS %s"),
    (11, 1, NONE, "INX|DEX|INY|DEY|TAX|TXA|TAY|TYA|CLC|SEC|PHA|PLA|RTS|NOP"),
    (2, 1, NONE, "ASL A|LSR A|ROL A|ROR A"),
    (1, 4, BYTE, ".byte %s,1,2,$FF"),
    (1, 4, NAME, ".word %s,$1234"),
    (9, 0, NONE, "; "),
    (3, 0, NONE, ""),
)

LOCALS = ("@loop", "@next", "@skip", "@done", "@more", "@exit", "@again", "@wait")
VERBS = ("draw", "move", "read", "clear", "copy", "init", "next", "find", "set", "wait", "update", "print", "load")
NOUNS = ("sprite", "screen", "line", "buffer", "score", "table", "byte", "key", "sound", "map", "tile", "enemy",
         "player", "irq", "menu", "file", "text")
REMARKS = ("the low byte first", "carry is clear here", "wait for the beam", "next column", "all sixteen of them",
           "see the table below", "keep the sign", "this never wraps: the buffer is a page", "done", "restore",
           "the colour of the border", "two pages at most", "X counts down", "Y is kept")


def labels_in(count):
    """How many global labels a section of that many lines defines."""
    return max(1, count // 10)


class Code:
    """Writes sections of code; the global labels are numbered through them all.

    labels     global labels of the whole program: names are taken from all over it, most of them from nearby
    enclosed   take names from the same section only
    branches   whether there are any
    far        one branch in that many is out of range, and the one after it reaches as far as it can; 0: none is.
               All others stay in range when some code around them grows, so that programs of any length take the
               same number of iterations: the far ones are rewritten in the first, those that this pushes out of
               range in the second, and the third finds none.
    fold       write references in another letter case than labels
    comments   percent of comment lines besides those of the table
    """

    def __init__(self, rng, labels, enclosed=False, branches=True, far=0, fold=False, comments=0):
        self.rng = rng
        self.labels = labels
        self.enclosed = enclosed
        self.far = far
        self.fold = fold
        self.defined = 0
        self.bytes = 0
        self.forms, self.weights = [], []
        for share, size, operand, forms in INSTRUCTIONS:
            alternatives = forms.split("|")
            for form in alternatives:
                if operand == BRANCH and not branches:
                    continue
                self.forms.append((size, operand, form))
                self.weights.append((share + (comments if form == "; " else 0)) / len(alternatives))
        two_digits = ["$%02X" % number for number in range(256)]
        decimal = [str(number) for number in range(0, 256, 3)]
        binary = [f"%{number:08b}" for number in range(0, 256, 9)]
        self.literals = {
            BYTE: two_digits + decimal + binary,
            ZERO_PAGE: two_digits[128:],
            WORD: ["$%04X" % rng.randrange(0x100, 0x10000) for _ in range(4096)],
        }

    def name(self, number):
        return f"{VERBS[number % len(VERBS)]}_{NOUNS[number * 7 % len(NOUNS)]}_{number}"

    def reference(self, name):
        return name.upper() if self.fold else name

    def section(self, count):
        """That many lines; the first one defines a global label."""
        rng = self.rng
        marked = rng.sample(range(1, count), labels_in(count) - 1 + count // 12) if count > 1 else []
        globals_at = {0, *marked[:labels_in(count) - 1]}
        locals_at = set(marked[labels_in(count) - 1:])
        first = self.defined
        lines, branches, targets = [], [], []
        address = scope = 0
        for index, (size, operand, form) in enumerate(rng.choices(self.forms, self.weights, k=count)):
            text = "        "
            if index in globals_at:
                label = self.name(self.defined)
                self.defined += 1
                scope = self.defined
                inside = 0
                targets.append((address, label, 0))
                text = label + ": "
            elif index in locals_at and inside < len(LOCALS):
                targets.append((address, LOCALS[inside], scope))
                text = LOCALS[inside] + ": "
                inside += 1
            # A label stands alone before data, where it would begin no scope of local labels for 64tass, and before a
            # branch, whose line may be rewritten without it.
            labelled = text[0] != " "
            if labelled and (operand == BRANCH or size == 0 or form[0] == "." or rng.random() < 0.5):
                lines.append(text[:-1])
                continue
            if size == 0:
                lines.append("; " + rng.choice(REMARKS) if form else form)
                continue
            if operand == BRANCH:
                branches.append((index, address, scope))
            elif operand == NAME:
                form %= self.reference(self.name(self.choose(first, count)))
            elif operand != NONE:
                form %= rng.choice(self.literals[operand])
            text += form
            lines.append(f"{text:30}; {rng.choice(REMARKS)}" if rng.random() < 0.15 else text)
            address += size
        addresses = [target[0] for target in targets]
        self.bytes += address
        for number, (index, address, scope) in enumerate(branches):
            turn = number % self.far if self.far else None
            if turn == 0:
                target = self.out_of_range(addresses, targets, address)
            elif turn == 1:
                target = self.in_range(addresses, targets, address, scope, 127, 127)
            else:
                target = self.in_range(addresses, targets, address, scope, 0, 110)
            lines[index] %= self.reference(target)
        return lines

    def choose(self, first, count):
        """The number of a global label."""
        if self.enclosed:
            return first + self.rng.randrange(labels_in(count))
        if self.rng.random() < 0.2:
            return self.rng.randrange(self.labels)
        return min(max(0, self.defined + self.rng.randrange(-200, 200)), self.labels - 1)

    def in_range(self, addresses, targets, address, scope, least, most):
        """A label in about that distance of the branch's end, and never farther than the most."""
        distance = self.rng.randint(least, most) * self.rng.choice((-1, 1))
        return nearest(addresses, targets, address + 2 + distance,
                       lambda there, owner: owner in (0, scope) and abs(there - address - 2) <= most)

    def out_of_range(self, addresses, targets, address):
        distance = self.rng.randint(200, 2000) * self.rng.choice((-1, 1))
        return nearest(addresses, targets, address + distance,
                       lambda there, owner: owner == 0 and abs(there - address) > 140)


def nearest(addresses, targets, wanted, fits):
    """The name of a label that fits, near the wanted address."""
    after = bisect(addresses, wanted)
    for step in range(len(targets)):
        for index in (after - 1 - step, after + step):
            if 0 <= index < len(targets) and fits(targets[index][0], targets[index][2]):
                return targets[index][1]
    raise ValueError("no label fits")
