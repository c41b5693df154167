#!/usr/bin/env python3
# Writes the list of contents below the title of each page of the manual that has several headings:
#   tools/manual/contents.py            writes the lists
#   tools/manual/contents.py --check    names the pages whose list is old, and fails when there are any
# The list is between two comments. What follows an entry of a single link, such as a colon and some words, stays.
import re
import sys
import textwrap

sys.dont_write_bytecode = True
from pages import ROOT, all_pages, headings

BEGIN, END = "<!-- contents -->\n", "<!-- end of contents -->\n"
FEWEST_HEADINGS = 4
LONGEST_ENTRY = 72
WITHOUT = ["README.md", "CHANGELOG.md"]  # the first is a way to the other pages itself


# The words that follow each entry of a single link, by the anchor of the link.
def remarks(old):
    pairs = re.findall(r"^- \[.*?\]\(#(\S*)\)(.*)$", old.replace("\n  ", " "), flags=re.MULTILINE)
    return {anchor: remark for anchor, remark in pairs if "](" not in remark}


def link(heading):
    text = heading.text
    if len(text) > LONGEST_ENTRY:
        code = "`" if text.startswith("`") else ""
        text = text[:LONGEST_ENTRY].rsplit(" ", 1)[0].rstrip("… ") + " …" + code
    return f"[{text}](#{heading.anchor})"


# An entry for each heading of the highest level below the title, with those of the next level behind it.
def contents(below_title, old):
    top = min(heading.level for heading in below_title)
    kept, entries = remarks(old), []
    for heading in below_title:
        if heading.level == top:
            entries.append([heading])
        elif heading.level == top + 1:
            entries[-1].append(heading)
    return "".join(entry_of(entry[0], entry[1:], kept.get(entry[0].anchor, "")) for entry in entries)


# Lines end between links, not in them.
def entry_of(first, others, remark):
    text = ", ".join(link(heading).replace(" ", "\0") for heading in others)
    text = "-\0" + link(first).replace(" ", "\0") + (": " + text if others else remark)
    lines = textwrap.fill(text, 120, subsequent_indent="  ", break_long_words=False, break_on_hyphens=False)
    return lines.replace("\0", " ") + "\n"


# The page as it should be.
def renewed(text):
    below_title = [heading for heading in headings(text) if heading.level > 1]
    if BEGIN not in text:
        if len(below_title) < FEWEST_HEADINGS:
            return text
        first_paragraph = text.index("\n\n", text.index("\n\n") + 2) + 2
        text = text[:first_paragraph] + BEGIN + END + "\n" + text[first_paragraph:]
    begin, end = text.index(BEGIN) + len(BEGIN), text.index(END)
    return text[:begin] + contents(below_title, text[begin:end]) + text[end:]


def main():
    old_pages = []
    for page in all_pages():
        text = (ROOT / page).read_text(encoding="utf-8")
        if str(page) not in WITHOUT and renewed(text) != text:
            old_pages.append(page)
            if "--check" not in sys.argv:
                (ROOT / page).write_text(renewed(text), encoding="utf-8")
    if "--check" in sys.argv and old_pages:
        sys.exit("old contents, which tools/manual/contents.py renews: " + ", ".join(map(str, old_pages)))


main()
