# The pages of the manual, and what other scripts ask of a page in Markdown: its headings with their anchors, its links.
import re
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FENCE = re.compile(r"^\s*```")
INLINE_CODE = re.compile(r"(`+)(?!`).+?(?<!`)\1(?!`)")
LINK = re.compile(r"\[(?:[^\[\]]|\[[^\[\]]*\])*\]\(<?([^()\s<>]*)>?\)")


@dataclass
class Heading:
    level: int  # 1..6; a page has one of level 1, its title
    text: str   # as it is written
    anchor: str


# All pages, relative to the root. New ones in docs/ join by themselves.
def all_pages(root=ROOT):
    single = ["README.md", "CONTRIBUTING.md", "CHANGELOG.md", "editors/README.md", "examples/README.md"]
    return [Path(name) for name in single if (root / name).exists()] + sorted(
        path.relative_to(root) for path in (root / "docs").glob("*.md"))


# Pairs of a line's number, from 0 on, and its text, without those in code blocks.
def prose(text):
    fenced = False
    for number, line in enumerate(text.split("\n")):
        if FENCE.match(line):
            fenced = not fenced
        elif not fenced and not line.startswith("    "):
            yield number, line


# The anchor that GitHub gives to a heading; pandoc makes the same.
def anchor_of(text):
    shown = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", text)
    return re.sub(r"[^\w\- ]", "", shown.lower()).replace(" ", "-")


def headings(text):
    found, used = [], {}
    for _, line in prose(text):
        match = re.match(r"(#{1,6}) +(.*?) *$", line)
        if match:
            anchor = anchor_of(match[2])
            count = used[anchor] = used.get(anchor, -1) + 1
            found.append(Heading(len(match[1]), match[2], f"{anchor}-{count}" if count else anchor))
    return found


# Pairs of a line's number, from 1 on, and the target of a link or picture that begins or ends there.
def links(text):
    lines = {number: line for number, line in prose(text)}
    kept = "\n".join(lines.get(number, "") for number in range(text.count("\n") + 1))
    # Code may look like a link; a link may hold code.
    kept = INLINE_CODE.sub(lambda code: re.sub(r"[\[\]()]", "_", code[0]), kept)
    # A picture inside a link hides the link behind its brackets.
    kept = re.sub(r"!\[[^\]]*\]\(([^)\s]*)\)", lambda match: "!" * 2 + f"[]({match[1]})", kept)
    for match in LINK.finditer(kept):
        yield kept.count("\n", 0, match.end()) + 1, match[1]
