# The runs that every system is compared in: the examples, the manual's programs, and generated ones of 10,000 lines.
import json
import sys
from dataclasses import dataclass, field
from pathlib import Path

sys.path += ["bench", "tests/slips"]
from generate import KILN, WORKLOADS, prepare
from measure import BANKED
from programs import blocks, examples
from targets import FOLDER

GENERATED_LINES = 10000

# All that kiln-check can write about a program.
REPORTS = ["-Wextra", "--listing=check.lst", "--labels=json:labels.json", "--labels=mads:labels.lab",
           "--labels=vice:labels.vs", "--map=map.svg", "--map=map.txt"]


@dataclass
class Run:
    place: str  # where its program comes from
    program: str  # kiln-as, kiln-check or kiln-lsp
    arguments: list
    files: dict  # name -> bytes
    environment: dict = field(default_factory=dict)
    input: bytes = b""
    read_only: tuple = ()  # names of files


def encoded(files):
    return {name: text.encode() for name, text in files.items()}


def assembled_and_checked(place, arguments, files, environment):
    yield Run(place, "kiln-as", ["-l", "main.lst", *arguments], files, environment)
    yield Run(place, "kiln-check", ["--json", *REPORTS, *arguments], files, environment)


def example_runs():
    for program in examples():
        arguments = [*program.options, *program.inputs]
        yield from assembled_and_checked(f"examples/{program.name}", arguments, encoded(program.files), {})
        files = {name: content.replace(b"\n", b"\r\n") for name, content in encoded(program.files).items()}
        yield from assembled_and_checked(f"examples/{program.name} with CR LF", arguments, files, {})
        yield Run(f"examples/{program.name}", "kiln-lsp", [], {}, input=session(program))


def manual_runs():
    for page in ["README.md", *sorted(map(str, Path("docs").glob("*.md")))]:
        for block in blocks(page):
            files = encoded({**block.files, "main.asm": block.text})
            arguments = [*block.words, "main.asm"]
            if block.kind == "kiln-as":
                yield from assembled_and_checked(block.place, arguments, files, {})
            else:
                yield Run(block.place, "kiln-check", arguments, files)


def generated_runs():
    for name, (_, dialects) in WORKLOADS.items():
        folder = prepare(name, GENERATED_LINES, FOLDER / "generated") / KILN
        files = {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}
        arguments = [*(BANKED if name == "banked" else []), "main.asm"]
        yield from assembled_and_checked(f"bench {name}", arguments, files, {"KILN_HOME": "home"})


# What needs no program: the usage, the tables, and arguments that are wrong.
def command_line_runs():
    for program, options in (("kiln-as", ("-h", "-v", "-x")), ("kiln-check", ("-h", "-v", "--list-checks", "--map=a"))):
        for option in options:
            yield Run(f"{program} {option}", program, [option], {})


def all_runs(programs):
    runs = [*command_line_runs(), *example_runs(), *manual_runs(), *generated_runs()]
    return [run for run in runs if run.program in programs]


# What an editor asks about the files of a program. They are not on the disk, so that their paths are the same on all
# systems.
def session(program):
    requests = [("initialize", {"processId": None, "rootUri": None, "capabilities": {}})]
    for name, text in program.files.items():
        document = {"uri": f"file:///program/{name}", "languageId": "kiln-as", "version": 1, "text": text}
        requests.append((None, {"method": "textDocument/didOpen", "params": {"textDocument": document}}))
    about = {"textDocument": {"uri": f"file:///program/{program.name}"}}
    whole_file = {"start": {"line": 0, "character": 0}, "end": {"line": 500, "character": 0}}
    for method in ("documentSymbol", "semanticTokens/full", "codeLens", "foldingRange"):
        requests.append((f"textDocument/{method}", about))
    requests.append(("textDocument/inlayHint", {**about, "range": whole_file}))
    requests.append(("textDocument/formatting", {**about, "options": {"tabSize": 8, "insertSpaces": True}}))
    for line in range(0, 60, 3):
        requests.append(("textDocument/hover", {**about, "position": {"line": line, "character": 9}}))
    requests.append(("shutdown", None))
    messages = [{"id": number, "method": method, "params": params} if method else params
                for number, (method, params) in enumerate(requests)]
    return b"".join(map(frame, [*messages, {"method": "exit"}]))


def frame(message):
    content = json.dumps({"jsonrpc": "2.0", **message}).encode()
    return b"Content-Length: %d\r\n\r\n%s" % (len(content), content)
