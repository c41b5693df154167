#!/usr/bin/env python3
# Checks links: that each file that a page links to is there, and has the anchor. Links into the web are not followed.
#   tools/manual/links.py           all pages of the manual
#   tools/manual/links.py FOLDER    all pages in this folder, in Markdown and in HTML; no link may lead out of it
# Prints the links that lead nowhere and the names of examples and pages that are no links. Fails when there are any.
import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote

sys.dont_write_bytecode = True
from pages import ROOT, all_pages, headings, links, prose


# The anchors of an HTML page, and its links and pictures with their lines.
class Reader(HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.anchors, self.links = set(), []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "id":
                self.anchors.add(value)
            elif name in ("href", "src"):
                self.links.append((self.getpos()[0], value))


class Page:
    def __init__(self, path):
        text = path.read_text(encoding="utf-8")
        if path.suffix == ".html":
            reader = Reader(text)
            self.anchors, self.links = reader.anchors, reader.links
        else:
            self.anchors = {heading.anchor for heading in headings(text)}
            self.links = list(links(text))
        self.bare_names = list(bare_names(path, text))


# Pages for those who work on the program name files all the time.
WITHOUT_LINKS = ["ARCHITECTURE.md", "CONTRIBUTING.md", "CHANGELOG.md"]


# Pairs of a line and what it names in code, without a link.
def bare_names(path, text):
    if path.suffix == ".html" or path.name in WITHOUT_LINKS:
        return
    for number, line in prose(text):
        for match in re.finditer(r"(?<!\[)`((?:(?:examples|docs)/)?[\w-]+\.(?:asm|md))`", line):
            yield number + 1, match[1]


class Checker:
    def __init__(self, folder):
        self.folder, self.pages = folder.resolve(), {}

    def page(self, path):
        if path not in self.pages:
            self.pages[path] = Page(path)
        return self.pages[path]

    # What is wrong with a link in the file, or nothing.
    def fault(self, path, link):
        if re.match(r"[a-z]+:", link):
            return ""
        name, _, anchor = unquote(link).partition("#")
        target = (path.parent / name).resolve() if name else path
        if not target.is_relative_to(self.folder):
            return "leads out of the folder"
        if not target.exists():
            return "no such file"
        if anchor and (target.suffix not in (".md", ".html") or anchor not in self.page(target).anchors):
            return "no such heading"
        return ""

    # Lines that name the faults of the file.
    def faults(self, path):
        for line, name in self.page(path).bare_names:
            if any((folder / name).exists() for folder in (self.folder, path.parent)):
                yield f"{path.relative_to(self.folder)}:{line}: {name}: is not a link"
        for line, link in self.page(path).links:
            if fault := self.fault(path, link):
                yield f"{path.relative_to(self.folder)}:{line}: {link}: {fault}"


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT
    checker = Checker(folder)
    inside = [path for suffix in ("md", "html") for path in sorted(checker.folder.rglob("*." + suffix))]
    paths = inside if len(sys.argv) > 1 else [ROOT / page for page in all_pages()] + sorted(ROOT.glob("docs/*.html"))
    faults = [fault for path in paths for fault in checker.faults(path)]
    print(f"links: {len(paths)} pages, {sum(len(checker.page(path).links) for path in paths)} links", *faults, sep="\n")
    sys.exit(1 if faults or not paths else 0)


main()
