"""The whole conversion: read, define the names, write."""

from dataclasses import dataclass
from pathlib import Path

import ca65
import tass
from names import Names
from reading import Reader
from writing import Writer

DIALECTS = {"64tass": tass, "ca65": ca65}


@dataclass
class Program:
    """texts: the files, by their paths below the folder of the results. lines, refused: places in the sources."""
    texts: dict
    messages: list
    lines: set
    refused: set
    names: Names

    def write(self, folder):
        for path, text in self.texts.items():
            (folder / path).parent.mkdir(parents=True, exist_ok=True)
            (folder / path).write_bytes(text.encode())


def convert(path, dialect_name, folders=(), zeropage=0x80, plain_texts=False):
    """Converts a source and what it includes; OSError if it cannot be read. plain_texts: letters are ASCII."""
    dialect = DIALECTS[dialect_name]
    reader = Reader(dialect, folders)
    statements = reader.read(Path(path))
    names = Names()
    names.zeropage = zeropage
    names.macros = reader.macros
    dialect.define(names, statements)
    names.choose_spellings()
    writer = Writer(dialect, names, statements, plain_texts)
    refused = writer.write_all()
    texts = {file.output: "\n".join(joined(writer.files.get(file, {}), dialect)) + "\n" for file in reader.files}
    messages = [f"{one.file.path}:{one.line}: {one.text.strip()}: {reason}" for one, reason in refused]
    return Program(texts, messages, places(statements), places([one for one, _ in refused]), names)


def places(statements):
    return {(str(one.file.path), one.line) for one in statements}


def joined(segments, dialect):
    lines = []
    for segment in sorted(segments, key=dialect.segment_order):
        lines += dialect.segment_head(segment, len(segments)) + segments[segment]
    return lines
