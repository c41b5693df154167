"""The assembler sources of Debian's cc65: each is one module, whose imports get made-up addresses."""

import re
import sys
from dataclasses import dataclass, field
from pathlib import Path

import images
from ca65 import segment_order
from program import convert

ORIGIN = 0x2000
SUITE = "deb-src http://deb.debian.org/debian bookworm main"


@dataclass
class Module:
    """outcome: "same", "different", "partly" converted, or "foreign" to ca65 without more options."""
    path: Path
    outcome: str
    lines: set = frozenset()
    refused: set = frozenset()
    difference: str = ""
    reasons: list = field(default_factory=list)


class Modules:
    """run(command...) gives whether it ended well, and what it printed."""

    def __init__(self, program, folder, run):
        self.program, self.folder, self.run = program, folder, run
        self.work = folder / "module"
        self.work.mkdir(parents=True, exist_ok=True)

    def sources(self):
        """The unpacked source package; fetched with package lists of its own, so the system's stay as they are."""
        found = sorted(self.folder.glob("cc65-*/libsrc"))
        if found:
            return found[0].parent
        state = self.folder / "apt"
        (state / "lists" / "partial").mkdir(parents=True, exist_ok=True)
        (state / "sources.list").write_text(SUITE + "\n")
        options = [f"-oDir::Etc::sourcelist={state}/sources.list", "-oDir::Etc::sourceparts=-",
                   f"-oDir::State::lists={state}/lists", "-oDir::Cache::srcpkgcache=", "-oDir::Cache::pkgcache="]
        self.run("apt-get", *options, "-qq", "update")
        self.run("apt-get", *options, "-qq", "--download-only", "--tar-only", "source", "cc65", folder=self.folder)
        for archive in self.folder.glob("cc65_*.orig.tar.*"):
            self.run("tar", "-xf", archive, folder=self.folder)
        found = sorted(self.folder.glob("cc65-*/libsrc"))
        if not found:
            sys.exit("prove: cannot fetch the sources of cc65")
        return found[0].parent

    def each(self):
        root = self.sources()
        for path in sorted((root / "libsrc").rglob("*.s")):
            yield self.module(path, root)

    def module(self, path, root):
        folders = [str(root / "asminc"), str(root / "libsrc" / path.relative_to(root / "libsrc").parts[0])]
        theirs = self.rival(path, folders)
        if theirs is None:
            return Module(path.relative_to(root), "foreign")
        result = convert(path, "ca65", folders, plain_texts=True)
        reasons = [reason_without_names(message) for message in result.messages]
        module = Module(path.relative_to(root), "partly", result.lines, result.refused, reasons=reasons)
        if not result.refused:
            module.difference = self.difference(result, path, theirs)
            module.outcome = "different" if module.difference else "same"
        return module

    def rival(self, path, folders):
        """The bytes that ca65 and ld65 make of it, or None."""
        object_file, image = self.work / "theirs.o", self.work / "theirs.bin"
        includes = [word for folder in folders for word in ("-I", folder)]
        if not self.run("ca65", "-t", "none", *includes, "-o", object_file, path)[0]:
            return None
        listed = self.run("od65", "--dump-imports", "--dump-segments", object_file)[1]
        self.imports = addresses(listed)
        segments = re.findall(r'Segments:.*?Imports:|Segments:.*', listed, re.S)
        names = re.findall(r'Name:\s+"([^"]*)"', segments[0]) if segments else []
        (self.work / "theirs.cfg").write_text(configuration(names, self.imports))
        image.unlink(missing_ok=True)
        if not self.run("ld65", "-C", self.work / "theirs.cfg", "-o", image, object_file)[0]:
            return None
        return image.read_bytes() if image.exists() else b""

    def difference(self, result, path, theirs):
        result.write(self.work)
        written = {name.spelling: name.written for name in result.names.table.values() if name.kind == "import"}
        lines = [f"{written[name]} = ${address:04X}" for name, address in self.imports.items() if name in written]
        (self.work / "imports.asm").write_text("\n".join(lines) + f"\n        .org ${ORIGIN:04X}\n")
        ours = self.work / "ours.xex"
        ours.unlink(missing_ok=True)
        done, said = self.run(self.program, "-o", ours, "imports.asm", path.name, folder=self.work)
        if not done or "warning: undefined symbol" in said:
            return said.strip().split("\n")[0]
        data = b"".join(data for _, data in images.blocks(ours))
        if data == theirs:
            return ""
        at = next((i for i, (a, b) in enumerate(zip(data, theirs)) if a != b), min(len(data), len(theirs)))
        return f"byte {at} of {len(theirs)}: {data[at:at + 4].hex(' ')} instead of {theirs[at:at + 4].hex(' ')}"


def reason_without_names(message):
    reason = message.rsplit(": ", 1)[-1]
    return re.sub(r"^(the name )?\S+ (?=is unknown|is in several|is defined|comes|is neither)", "a name ", reason)


def addresses(listed):
    """An address for each import: in the zero page for those of that size."""
    found = {}
    pattern = r'Address size:\s+0x([0-9A-F]+).*?Name:\s+"([^"]*)"'
    for size, name in re.findall(pattern, listed.split("Imports:")[-1], re.S):
        found[name] = 0x10 + len(found) if int(size, 16) == 1 else 0x6000 + 37 * len(found)
    return found


def configuration(segments, imports):
    """For ld65: the order of the segments is that in which the converter writes them."""
    lines = ["SEGMENTS { ZEROPAGE: load = ZP, type = zp, optional = yes;"]
    others = [name for name in segments if name not in ("ZEROPAGE", "NULL")]
    lines += [f"{name}: load = MAIN, type = rw, optional = yes;" for name in sorted(others, key=segment_order)]
    places = ['MEMORY { ZP: start = $80, size = $80, file = "";',
              f"MAIN: start = ${ORIGIN:04X}, size = $4000, file = %O; }}"]
    symbols = [f"{name}: type = export, value = ${address:04X}, addrsize = {'zp' if address < 256 else 'abs'};"
               for name, address in imports.items()]
    return "\n".join([*places, *lines, "}", "SYMBOLS {", *symbols, "}"])
