# A page of the manual as a piece of HTML, by way of pandoc.
import html
import re
import subprocess
from pathlib import Path

from pages import ROOT, anchor_of, headings

PLACE = "kiln-code-block-"
SOURCES = ["kiln-as", "kiln-check", "file", "asm"]
CAPTIONS = {
    "kiln-check": "kiln-check main.asm",
    "bytes": "the bytes, from each address on",
    "image": "the file",
    "listing": "in the listing",
    "messages": "messages",
    "findings": "kiln-check says",
}


def pandoc(text, reader):
    command = ["pandoc", "--from", reader, "--to", "html5", "--wrap", "none", "--no-highlight"]
    return subprocess.run(command, input=text, capture_output=True, check=True, encoding="utf-8").stdout


# What stands above a block: how it is assembled, which file it is.
def caption_of(word, argument):
    if word in ("kiln-as", "kiln-check") and argument:
        return f"{word} {argument} main.asm"
    return argument if word in ("file", "written") else CAPTIONS.get(word, "")


# A comment begins at a semicolon outside quotes, a label at the line's first character.
def highlighted(line):
    code, semicolon, comment = re.fullmatch(r'((?:"[^"]*"|[^;"]|"(?=[^"]*$))*)(;?)(.*)', line).groups()
    code = re.sub(r"^((?:&gt;|\.)?\w+:)", r'<b>\1</b>', html.escape(code, quote=False))
    return code + (f"<i>{html.escape(semicolon + comment, quote=False)}</i>" if semicolon else "")


def block(word, argument, text):
    lines = map(highlighted, text.split("\n")) if word in SOURCES else [html.escape(text, quote=False)]
    caption = caption_of(word, argument)
    title = f"<figcaption>{html.escape(caption)}</figcaption>" if caption else ""
    kind = "source" if word in SOURCES else "result" if caption else "plain"
    return f'<figure class="{kind} {word}">{title}<pre>' + "\n".join(lines) + "</pre></figure>"


# Takes the code blocks out, as pandoc would lose the words after the first one, and returns them as HTML.
def take_blocks(text):
    blocks = []

    def take(match):
        indent, word, argument, body = match.groups()
        lines = [line.removeprefix(indent) for line in body.split("\n")[:-1]]
        blocks.append(block(word, argument.strip(), "\n".join(lines)))
        return f"\n{indent}{PLACE}{len(blocks) - 1}\n\n"

    pattern = r"^( *)```([\w-]*)([^\n]*)\n(.*?)^\1```$\n?"
    return re.sub(pattern, take, text, flags=re.MULTILINE | re.DOTALL), blocks


def put_blocks(page, blocks):
    return re.sub(rf"(?:<p>)?{PLACE}(\d+)(?:</p>)?", lambda match: blocks[int(match[1])], page)


# Where a link of the page leads in the site: pages, and the sources of examples, become HTML.
def site_link(page, link):
    if re.match(r"[a-z]+:|#", link):
        return link
    name, mark, anchor = link.partition("#")
    target = ROOT / page.parent / name
    if target.is_dir():
        name = name.rstrip("/") + ("/index.html" if (target / "README.md").exists() else "/")
    elif name.endswith("README.md"):
        name = name[:-len("README.md")] + "index.html"
    elif name.endswith(".md"):
        name = name[:-len("md")] + "html"
    elif name.endswith((".asm", ".inc", ".lnk")):
        name += ".html"
    return name + mark + anchor


# A link whose text is the name of a page shows the page's title instead.
def with_site_links(page, fragment):
    def change(match):
        link, rest, text = match.groups()
        target = ROOT / page.parent / link.partition("#")[0]
        if text == link.partition("#")[0].removeprefix("../") and text.endswith(".md"):
            text = html.escape(headings(target.read_text(encoding="utf-8"))[0].text)
        return f'<a href="{site_link(page, link)}"{rest}>{text}</a>'

    return re.sub(r'<a href="([^"]*)"([^>]*)>(.*?)</a>', change, fragment, flags=re.DOTALL)


# Each heading is a link to itself; wide tables can be moved; a page of man is a link.
def finished(page, fragment):
    up = "../" * len(page.parent.parts)
    fragment = with_site_links(page, fragment)
    fragment = re.sub(r'<(h[2-6]) id="([^"]+)">(.*?)</\1>',
                      r'<\1 id="\2">\3 <a class="anchor" href="#\2" aria-label="this heading">#</a></\1>', fragment)
    fragment = fragment.replace("<table>", '<div class="table"><table>').replace("</table>", "</table></div>")
    return re.sub(r"<code>man (kiln-\w+)</code>", rf'<a href="{up}man/\1.html"><code>man \1</code></a>', fragment)


def from_markdown(page):
    text, blocks = take_blocks((ROOT / page).read_text(encoding="utf-8"))
    return finished(page, put_blocks(pandoc(text, "gfm"), blocks))


def from_man(page):
    fragment = pandoc((ROOT / page).read_text(encoding="utf-8"), "man")
    for level in (2, 1):
        def lowered(match):
            return f'<h{level + 1} id="{anchor_of(match[1])}">{match[1].capitalize()}</h{level + 1}>'

        fragment = re.sub(rf"<h{level}>(.*?)</h{level}>", lowered, fragment)
    fragment = re.sub(r"<em>([\w-]+)\.md</em>", r'<a href="../docs/\1.md">\1</a>', fragment)
    return finished(page, f"<h1>{page.stem}</h1>\n" + fragment)


def from_source(page):
    text = (ROOT / page).read_text(encoding="utf-8").rstrip("\n")
    raw = f'<p><a href="{page.name}" download>The file</a></p>'
    return f"<h1>{page}</h1>\n{raw}\n{block('asm', '', text)}"
