"""Draws the screen of a terminal, as tmux captures it with its colours, as an SVG picture."""

import html
import re
import sys

CELL_WIDTH, CELL_HEIGHT, BASELINE, MARGIN = 8.4, 18, 13.5, 12
FOREGROUND, BACKGROUND = "#d8dee9", "#242933"
BASIC = ["#000000", "#bf616a", "#a3be8c", "#ebcb8b", "#81a1c1", "#b48ead", "#88c0d0", "#e5e9f0"]


def palette(number):
    if number < 16:
        return BASIC[number % 8]
    if number < 232:
        steps = [0, 95, 135, 175, 215, 255]
        number -= 16
        return "#%02x%02x%02x" % (steps[number // 36], steps[number // 6 % 6], steps[number % 6])
    return "#%02x%02x%02x" % ((8 + 10 * (number - 232),) * 3)


class Look:
    """What the codes so far make of the next character."""

    def __init__(self):
        self.reset()

    def reset(self):
        self.foreground, self.background = FOREGROUND, BACKGROUND
        self.bold = self.italic = self.underline = self.reverse = False

    def apply(self, codes):
        # Underline styles are "4:3"; only whether there is one counts.
        numbers = [int(code.split(":")[0] or 0) for code in codes.split(";")]
        while numbers:
            number = numbers.pop(0)
            if number in (38, 48, 58):
                kind = numbers.pop(0)
                colour = palette(numbers.pop(0)) if kind == 5 else "#%02x%02x%02x" % tuple(numbers[:3])
                if kind == 2:
                    del numbers[:3]
                if number == 38:
                    self.foreground = colour
                elif number == 48:
                    self.background = colour
            else:
                self.switch(number)

    def switch(self, number):
        if number == 0:
            self.reset()
        elif number in (1, 22):
            self.bold = number == 1
        elif number in (3, 23):
            self.italic = number == 3
        elif number in (4, 24):
            self.underline = number == 4
        elif number in (7, 27):
            self.reverse = number == 7
        elif 30 <= number <= 37 or 90 <= number <= 97:
            self.foreground = BASIC[number % 10]
        elif 40 <= number <= 47 or 100 <= number <= 107:
            self.background = BASIC[number % 10]
        elif number == 39:
            self.foreground = FOREGROUND
        elif number == 49:
            self.background = BACKGROUND

    def colours(self):
        pair = (self.foreground, self.background)
        return pair[::-1] if self.reverse else pair


def draw_run(column, row, text, look):
    """A piece of a line in one look: its ground, then its text."""
    x, y, width = MARGIN + column * CELL_WIDTH, MARGIN + row * CELL_HEIGHT, len(text) * CELL_WIDTH
    foreground, background = look.colours()
    if background != BACKGROUND:
        yield f'<rect x="{x:.1f}" y="{y}" width="{width:.1f}" height="{CELL_HEIGHT}" fill="{background}"/>'
    if text.strip():
        style = ' font-weight="bold"' * look.bold + ' font-style="italic"' * look.italic
        style += ' text-decoration="underline"' * look.underline
        yield draw_text(column, y + BASELINE, text, f'fill="{foreground}"{style}')


def draw_text(column, y, text, style):
    """The text, stretched to the columns that it takes. Browsers leave out blanks at its ends and those in a row."""
    begin = len(text) - len(text.lstrip())
    shown = text.strip().replace(" ", "\u00a0")
    x, width = MARGIN + (column + begin) * CELL_WIDTH, len(shown) * CELL_WIDTH
    return (
        f'<text x="{x:.1f}" y="{y}" textLength="{width:.1f}" lengthAdjust="spacingAndGlyphs" {style}>'
        f"{html.escape(shown)}</text>"
    )


def draw_line(line, row, look):
    column = 0
    for codes, text in re.findall(r"(?:\x1b\[([\d;:]*)m)|([^\x1b]+)", line):
        if text:
            yield from draw_run(column, row, text, look)
            column += len(text)
        else:
            look.apply(codes or "0")


def draw(lines):
    width = 2 * MARGIN + 100 * CELL_WIDTH
    height = 2 * MARGIN + len(lines) * CELL_HEIGHT
    yield (
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:g} {height}" width="{width:g}"'
        f' height="{height}" font-family="DejaVu Sans Mono, Menlo, Consolas, monospace" font-size="14">'
    )
    yield f'<rect width="{width:g}" height="{height}" rx="8" fill="{BACKGROUND}"/>'
    look = Look()
    for row, line in enumerate(lines):
        yield from draw_line(line, row, look)
    yield "</svg>"


print("\n".join(draw(sys.stdin.read().rstrip("\n").split("\n"))))
