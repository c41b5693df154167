# The programs that slips are seeded into: the examples, and those of the manual.
import re
from dataclasses import dataclass
from pathlib import Path

MANUAL = ("docs/language.md", "docs/output-formats.md", "docs/layout-files.md")


@dataclass
class Program:
    name: str
    options: list  # of the command line, without the inputs
    inputs: list  # files of the command line, in their order
    files: dict  # name -> text; sources, layout files and symbol files

    # The files that are assembly language: the inputs, and what they include.
    def sources(self):
        return [name for name in self.files if name.endswith((".asm", ".inc"))]


def examples():
    for path in sorted(Path("examples").glob("*.asm")):
        text = path.read_text()
        options = re.search(r"^; Assemble: kiln-as (.*) \S+$", text, re.M)[1].split()
        names = [name for name in options if Path("examples", name).exists()]
        paths = [Path("examples", name) for name in names]
        paths += [file for folder in paths if folder.is_dir() for file in folder.iterdir()]
        paths += [Path("examples", name) for name in re.findall(r'^ +\.include "(.+)"', text, re.M)]
        files = {str(file.relative_to("examples")): file.read_text() for file in paths if file.is_file()}
        yield Program(path.name, options, [path.name], {**files, path.name: text})


# A program of the manual, before it is known which of the files it needs.
@dataclass
class Block:
    place: str  # document and line
    kind: str  # "kiln-as" or "kiln-check"
    words: list  # of its command line, without the program itself
    text: str
    files: dict  # name -> text; all before it in its document


# A block ```kiln-as or ```kiln-check is a program with its options, and ```file a file for all later programs of the
# document.
def blocks(path):
    files = {}
    document = Path(path).read_text()
    for block in re.finditer(r"^```(file|kiln-as|kiln-check) ?(.*)\n((?:.*\n)*?)```$", document, re.M):
        kind, words, text = block.groups()
        if kind == "file":
            files[words] = text
        else:
            line = document.count("\n", 0, block.start()) + 1
            yield Block(f"{path}:{line}", kind, words.split(), text, dict(files))


def manual():
    for block in (block for path in MANUAL for block in blocks(path) if block.kind == "kiln-as"):
        inputs = [*(word for word in block.words if word.endswith(".asm")), "main.asm"]
        options = [word for word in block.words if word not in inputs]
        used = {name: text for name, text in block.files.items()
                if name in " ".join(block.words) or f'"{name}"' in block.text}
        yield Program(block.place, options, inputs, {**used, "main.asm": block.text})


# Words of the language, as the lists in the manual have them.
def listed(name):
    document = Path(MANUAL[0]).read_text()
    return re.search(rf"<!-- {name} -->\n```text\n((?:.*\n)*?)```", document)[1]


MNEMONICS = set(re.findall(r"^([A-Z]{3})", listed("instructions"), re.M))
BUILT_IN = {name: int(value, 16) for name, value in re.findall(r"(\w+) +\$(\w+)", listed("built-in names"))}
