# What the programs do with the files and arguments of Windows, under Wine. Three things are not as on Windows: there is
# no console without a terminal, long paths open in any spelling, and the drive Z: is the file system of this machine.
import tempfile
from dataclasses import dataclass, field
from multiprocessing.pool import ThreadPool

from compare import clean_environment, outcome
from runs import Run
from targets import FOLDER

SOURCE = b" .org $2000\n NOP\n"
IMAGE = bytes.fromhex("FFFF 00200020 EA E002E102 0020")
HERE = "<here>"  # the folder of the run, in the words of Windows
LONG = "/".join(["d" * 100] * 3)  # a plain path has at most 260 characters


@dataclass
class Case:
    title: str
    arguments: list
    program: str = "kiln-as"
    files: dict = field(default_factory=dict)  # besides main.asm, which is SOURCE
    read_only: tuple = ()  # names of files
    locked: str = ""  # a file that another process keeps open
    status: int = 0
    messages: str = ""
    output: str = ""
    written: dict = field(default_factory=dict)  # the files that are new or changed


def assembled(source, target, count=1):
    return f"kiln-as: assembled '{source}' -> '{target}' ({count} bytes, 1 segment)\n"


def cannot_write(path):
    return f"kiln-as: error: cannot write '{path}'\n"


CASES = (
    Case("names in Unicode",
         ["größe/日本.asm", "-o", "größe/😀 €.xex"],
         files={"größe/日本.asm": ' .org $2000\n .include "ключ.inc"\n'.encode(), "größe/ключ.inc": b" NOP\n"},
         messages=assembled("größe/日本.asm", "größe/😀 €.xex"),
         written={"größe/😀 €.xex": IMAGE}),
    Case("paths with \\",
         ["a\\b\\main.asm"],
         files={"a/b/main.asm": SOURCE + b' .include "c\\nop.inc"\n', "a/b/c/nop.inc": b" NOP\n"},
         messages=assembled("a\\b\\main.asm", "a\\b\\main.xex", 2),
         written={"a/b/main.xex": bytes.fromhex("FFFF 00200120 EAEA E002E102 0020")}),
    Case("paths with both separators",
         ["a\\b/main.asm", "-o", "a/b\\out.xex", "-I", "inc\\deep/"],
         files={"a/b/main.asm": b' .org $2000\n .include "nop.inc"\n', "inc/deep/nop.inc": b" NOP\n"},
         messages=assembled("a\\b/main.asm", "a/b\\out.xex"),
         written={"a/b/out.xex": IMAGE}),
    Case("a drive",
         [f"{HERE}\\main.asm", "-o", "out.xex"],
         messages=assembled(f"{HERE}\\main.asm", "out.xex"),
         written={"out.xex": IMAGE}),
    Case("places of findings",
         ["a\\main.asm"],
         program="kiln-check",
         files={"a/main.asm": b" .org $2000\n LDA naught\n"},
         status=1,
         output="a\\main.asm:2:6: warning: 'naught' is not defined: it counts as 0 [undefined]\n"
                "    2 |  LDA naught\n"
                "      |      ^~~~~~\n"),
    Case("a longer file replaced whole",
         ["main.asm"],
         files={"main.xex": b"old" * 1000},
         messages=assembled("main.asm", "main.xex"),
         written={"main.xex": IMAGE}),
    Case("a file kept when the run fails",
         ["main.asm", "missing.asm", "-o", "main.xex"],
         files={"main.xex": b"old"},
         status=1,
         messages="kiln-as: cannot read 'missing.asm': The file “missing.asm” couldn’t be opened because there is no "
                  "such file.\n"),
    Case("a read-only file",
         ["main.asm"],
         files={"main.xex": b"old"},
         read_only=("main.xex",),
         status=1,
         messages=cannot_write("main.xex")),
    Case("a file that another process keeps open",
         ["main.asm"],
         files={"main.xex": b"old"},
         locked="main.xex",
         status=1,
         messages=cannot_write("main.xex")),
    Case("an output that is an input, in other letters",
         ["main.asm", "-o", ".\\MAIN.asm"],
         status=1,
         messages=cannot_write(".\\MAIN.asm")),
    Case("NUL as output",
         ["main.asm", "-o", "NUL", "-l", "nul"],
         messages=assembled("main.asm", "NUL")),
    Case("NUL as input",
         ["NUL", "main.asm", "-o", "main.xex"],
         messages=assembled("NUL", "main.xex"),
         written={"main.xex": IMAGE}),
    Case("CON as output, without a console",
         ["main.asm", "-o", "CON"],
         status=1,
         messages=cannot_write("CON")),
    Case("a long path",
         [f"{LONG}/main.asm", "-o", f"{LONG}\\out.xex"],
         files={f"{LONG}/main.asm": SOURCE},
         messages=assembled(f"{LONG}/main.asm", f"{LONG}\\out.xex"),
         written={f"{LONG}/out.xex": IMAGE}),
    Case("a long path with a drive",
         [f"{HERE}\\{LONG}/main.asm"],
         files={f"{LONG}/main.asm": SOURCE},
         messages=assembled(f"{HERE}\\{LONG}/main.asm", f"{HERE}\\{LONG}/main.xex"),
         written={f"{LONG}/main.xex": IMAGE}),
)


def on_windows(path):
    return "Z:" + path.replace("/", "\\")


# What came out and what is expected, by name.
def run_case(target, case, folder):
    files = {"main.asm": SOURCE, **case.files}
    command = target.command(case.program)
    arguments = [word.replace(HERE, on_windows(folder)) for word in case.arguments]
    if case.locked:
        # What the command processor reads, nobody else may write or remove.
        command, arguments = ["wine", "cmd", "/c"], [" ".join([on_windows(command[-1]), *arguments, "<", case.locked])]
    run = Run(case.title, case.program, arguments, files, read_only=case.read_only)
    result = outcome(command, run, clean_environment(target.environment), folder)
    changed = {name: content for name, content in result.files.items() if files.get(name) != content}
    yield "exit status", result.status, case.status
    yield "messages", result.streams["messages"].decode(), case.messages.replace(HERE, on_windows(folder))
    yield "output", result.streams["output"].decode(), case.output
    yield "written files", changed, case.written
    yield "files that are gone", files.keys() - result.files.keys(), set()


# One text for each expectation that is not met.
def host_failures(target):
    def failures(case):
        with tempfile.TemporaryDirectory(dir=FOLDER) as folder:
            return [f"{case.title}: {what}: {got!r}, expected {expected!r}"
                    for what, got, expected in run_case(target, case, folder) if got != expected]

    with ThreadPool() as pool:
        return sum(pool.map(failures, CASES), [])
