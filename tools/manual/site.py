#!/usr/bin/env python3
# Makes the whole manual as a site that needs no server:
#   tools/manual/site.py FOLDER    replaces the manual that is there
# Every page becomes HTML at its own place in the folder, and the files come along that pages link to.
import html
import json
import re
import shutil
import sys
from multiprocessing.pool import ThreadPool
from pathlib import Path

sys.dont_write_bytecode = True
from pages import ROOT, all_pages, links
from render import from_man, from_markdown, from_source, with_site_links

LOOKS = ROOT / "tools/manual/site"

# The navigation: groups of pages, in their order. Pages that are in none come last.
GROUPS = {
    "Writing programs": "README.md docs/language.md docs/quick-reference.html docs/recipes.md docs/running.md "
                        "examples/README.md docs/coming-from.md docs/check.md docs/editors.md",
    "Reference": "docs/messages.md docs/layout-files.md docs/output-formats.md "
                 "man/kiln-as.1 man/kiln-check.1 man/kiln-lsp.1",
    "The project": "CHANGELOG.md docs/RELIABILITY.md docs/PERFORMANCE.md CONTRIBUTING.md docs/ARCHITECTURE.md "
                   "editors/README.md",
}
ORDER = " ".join(GROUPS.values()).split()
FIRST_OF_GROUP = {names.split()[0]: group for group, names in GROUPS.items()}
TITLES = {
    "README.md": "Start",
    "docs/quick-reference.html": "Quick reference",
    "editors/README.md": "Files for editors",
}


# Where a page of the tree is in the site.
def place_of(page):
    if page.suffix == ".html":
        return page
    if page.name == "README.md":
        return page.with_name("index.html")
    return page.with_suffix(".html") if page.suffix in (".md", ".1") else page.with_name(page.name + ".html")


def manual_pages():
    found = all_pages() + [path.relative_to(ROOT) for path in sorted((ROOT / "man").glob("*.1"))]
    found.append(Path("docs/quick-reference.html"))
    rank = {name: number for number, name in enumerate(ORDER)}
    return sorted(found, key=lambda page: rank.get(str(page), len(rank)))


def fragment_of(page):
    if page.suffix == ".html":
        return ""
    return from_markdown(page) if page.suffix == ".md" else from_man(page) if page.suffix == ".1" else from_source(page)


# The text alone. Elements within a line leave no gap.
def plain(fragment):
    without_anchors = re.sub(r'<a class="anchor".*?</a>', "", fragment)
    without_anchors = re.sub(r"</?(?:a|b|code|em|i|strong)\b[^>]*>", "", without_anchors)
    return " ".join(html.unescape(re.sub(r"<[^>]*>", " ", without_anchors)).split())


def title_of(page, fragment):
    match = re.search(r"<h1.*?>(.*?)</h1>", fragment)
    return TITLES.get(str(page)) or ("man " if page.suffix == ".1" else "") + plain(match[1])


# What the search looks through: for each heading its place, the title of its page, its own text, and what follows.
def sections(page, title, fragment):
    parts = re.split(r'(<h[1-6](?: id="[^"]*")?>.*?</h[1-6]>)', fragment)
    for head, body in zip(parts[1::2], parts[2::2]):
        anchor = re.search(r'id="([^"]*)"', head)
        place = str(place_of(page)) + (f"#{anchor[1]}" if anchor and not head.startswith("<h1") else "")
        yield [place, title, plain(head), plain(body)]


# The list of pages, with the headings of this one.
def navigation(page, titles, fragment):
    up = "../" * len(page.parent.parts)
    for other, title in titles.items():
        here = other == page
        if str(other) in FIRST_OF_GROUP:
            yield f'<li class="group">{FIRST_OF_GROUP[str(other)]}</li>'
        mark = ' aria-current="page"' if here else ""
        yield f'<li><a href="{up}{place_of(other)}"{mark}>{html.escape(title)}</a>'
        headings = re.findall(r'<h2 id="([^"]*)">(.*?) <a class="anchor"', fragment) if here else []
        if headings:
            yield "<ul>" + "".join(f'<li><a href="#{anchor}">{re.sub("</?a.*?>", "", text)}</a></li>'
                                   for anchor, text in headings) + "</ul>"
        yield "</li>"


# The links to the pages before and after this one.
def neighbours(page, titles):
    order, up = list(titles), "../" * len(page.parent.parts)
    if page not in order:
        return ""
    at = order.index(page)
    before = [f'<a href="{up}{place_of(other)}">← {html.escape(titles[other])}</a>' for other in order[:at][-1:]]
    after = [f'<a href="{up}{place_of(other)}">{html.escape(titles[other])} →</a>' for other in order[at + 1:at + 2]]
    return "".join((before or ["<span></span>"]) + after)


def write(folder, page, titles, fragment):
    parts = {
        "title": html.escape(titles.get(page, str(page))),
        "up": "../" * len(page.parent.parts),
        "navigation": "\n".join(navigation(page, titles, fragment)),
        "neighbours": neighbours(page, titles),
        "page": fragment,
    }
    template = (LOOKS / "page.html").read_text(encoding="utf-8")
    path = folder / place_of(page)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(re.sub(r"@(\w+)@", lambda match: parts[match[1]], template), encoding="utf-8")


# Files that pages link to, besides pages.
def linked_files(pages):
    for page in pages:
        for _, link in links((ROOT / page).read_text(encoding="utf-8")) if page.suffix == ".md" else []:
            target = (ROOT / page.parent / link.partition("#")[0]).resolve()
            if not re.match(r"[a-z]+:|#", link) and target.suffix != ".md" and target.is_relative_to(ROOT):
                yield from sorted(target.rglob("*")) if target.is_dir() else [target]


# The quick reference has looks of its own.
def copy(folder, file):
    place = folder / file.relative_to(ROOT)
    place.parent.mkdir(parents=True, exist_ok=True)
    if file.suffix == ".html":
        page, text = file.relative_to(ROOT), file.read_text(encoding="utf-8")
        place.write_text(with_site_links(page, text), encoding="utf-8")
    else:
        shutil.copyfile(file, place)


def main():
    folder = Path(sys.argv[1])
    if (folder / "search-index.js").exists():
        shutil.rmtree(folder)
    pages = manual_pages()
    files = {file for file in linked_files(pages) if file.is_file()} | {ROOT / "docs/quick-reference.html"}
    sources = sorted(file.relative_to(ROOT) for file in files if file.suffix in (".asm", ".inc", ".lnk"))
    with ThreadPool() as pool:
        fragments = dict(zip(pages + sources, pool.map(fragment_of, pages + sources)))
    titles = {page: title_of(page, fragments[page]) for page in pages}
    for page in pages + sources:
        if page.suffix != ".html":
            write(folder, page, titles, fragments[page])
    for file in files:
        copy(folder, file)
    for name in ("style.css", "search.js"):
        shutil.copyfile(LOOKS / name, folder / name)
    index = [section for page in pages for section in sections(page, titles[page], fragments[page])]
    script = f"const sections = {json.dumps(index, ensure_ascii=False)};\n"
    (folder / "search-index.js").write_text(script, encoding="utf-8")
    print(f"manual: {folder}/index.html, {len(pages)} pages, {len(sources)} sources, {len(index)} sections to search")


main()
