"""Runs the benchmark and prints its tables; bench/run starts it in the project's root."""

import argparse
import datetime
import json
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path
from statistics import median

from editing import measure_editing
from generate import HOME, KILN, RIVAL, prepare
from images import difference

DIRECTORY = Path("build/bench")
PROGRAM = os.environ.get("KILN_AS", "build/kiln-as")

# kiln-check and kiln-lsp of the same build.
CHECKER = str(Path(PROGRAM).with_name("kiln-check"))
SERVER = str(Path(PROGRAM).with_name("kiln-lsp"))

# An earlier kiln-as to compare with.
BEFORE = os.environ.get("KILN_AS_BEFORE")

# The most that may be: time against 64tass, time for ten times the lines, peak memory against the size of the source,
# time against counting words, time against the earlier program.
RATIO_LIMITS = {"plain": 0.30, "data": 0.16, "macro": 0.18, "include": 0.33, "start-up": 0.78, "home": 0.50}
GROWTH_LIMIT = 11
MEMORY_LIMITS = {"plain": 3.9, "macro": 10, "undefined": 8}
WORDS_LIMIT = 1.5
BEFORE_LIMITS = {"undefined": 0.60}

# kiln-check: time against kiln-as, and milliseconds for a program of 10,000 lines.
CHECK_RATIO_LIMITS = {"plain": 2.5, "data": 2.5, "macro": 2.5}
CHECK_LINES, CHECK_LIMIT = 10_000, 30

# kiln-lsp, for a program of 10,000 lines: milliseconds to the first findings, and from a keystroke to new ones;
# megabytes at the peak.
EDIT_WORKLOADS = ("plain", "macro")
FIRST_LIMIT, KEYSTROKE_LIMIT, SERVER_MEMORY_LIMIT = 100, 50, 100

# Programs whose size does not grow with the others.
SHORT = {"start-up": 10, "home": 200}

GROWTH = ("plain", "data", "macro", "include", "far", "fold", "undefined", "regions", "listing", "banked")
BANKED = ["-b", "-code-reg", "82", "-data-reg", "83", "-code-window", "4000-5FFF"]


class Samples:
    """The times of one command: the median of all its runs, in seconds."""

    def __init__(self):
        self.elapsed, self.processor = [], []

    @property
    def time(self):
        return median(self.elapsed)

    @property
    def work(self):
        """Processor time: steadier than the time on the clock when the machine is busy."""
        return median(self.processor)


def fail(message):
    sys.exit(f"bench: {message}")


def note(message):
    print(f"bench: {message}", file=sys.stderr, flush=True)


def program_for(workload, lines):
    """The folder of a workload's program; the listing is that of the plain one."""
    return prepare("plain" if workload == "listing" else workload, lines, DIRECTORY)


def kiln_command(workload, folder):
    options = BANKED if workload == "banked" else []
    if workload == "listing":
        options = ["-l", str(folder / "listing.txt")]
    return [PROGRAM, *options, "-o", str(folder / "kiln.xex"), str(folder / KILN / "main.asm")]


def rival_command(folder):
    return ["64tass", "-q", "-w", "--atari-xex", "-o", str(folder / "64tass.xex"), str(folder / RIVAL / "main.asm")]


def source_size(folder, dialect):
    return sum(path.stat().st_size for path in (folder / dialect).rglob("*.asm"))


def peak_memory(command):
    """Runs the command once and returns its peak memory in bytes; ends the benchmark when it fails."""
    report, messages = DIRECTORY / "peak.txt", DIRECTORY / "messages.txt"
    with messages.open("wb") as file:
        status = subprocess.run(["/usr/bin/time", "-f", "%M", "-o", report, *command], stdout=file, stderr=file)
    if status.returncode != 0:
        last = messages.read_bytes()[-500:].decode(errors="replace")
        fail(f"{shlex.join(command)} ended with {status.returncode}:\n{last}")
    return int(report.read_text()) * 1024


def time_in_turn(commands, rounds, runs=1, more=()):
    """Times the commands in turn, round after round, after a round that does not count. `more` goes to hyperfine."""
    report = DIRECTORY / "times.json"
    samples = [Samples() for _ in commands]
    lines = [shlex.join(command) for command in commands]
    for number in range(rounds):
        warm_up = [] if number else ["--warmup", "1"]
        done = subprocess.run(["hyperfine", "--shell=none", "--style=none", "--runs", str(runs), *warm_up, *more,
                               "--export-json", report, *lines], capture_output=True, text=True)
        if done.returncode != 0:
            fail("hyperfine failed:\n" + done.stderr)
        for sample, result in zip(samples, json.loads(report.read_text())["results"]):
            sample.elapsed += result["times"]
            sample.processor.append(result["user"] + result["system"])
    return samples


def milliseconds(seconds):
    return f"{seconds * 1000:.2f} ms" if seconds < 0.01 else f"{seconds * 1000:.0f} ms"


def megabytes(count):
    return f"{count / 1e6:.1f} MB"


def speed(size, seconds):
    return f"{size / seconds / 1e6:.0f} MB/s"


def table(header, rows):
    rows = [header, *rows]
    widths = [max(len(row[column]) for row in rows) for column in range(len(header))]
    aligned = [[row[0].ljust(widths[0]), *map(str.rjust, row[1:], widths[1:])] for row in rows]
    rule = ["-" * widths[0], *("-" * (width - 1) + ":" for width in widths[1:])]
    print("\n".join("| " + " | ".join(row) + " |" for row in [aligned[0], rule, *aligned[1:]]) + "\n", flush=True)


class Benchmark:
    def __init__(self, quick, only):
        self.quick = quick
        self.only = only
        self.lines = 20_000 if quick else 1_000_000
        self.pair_rounds, self.growth_rounds, self.start_rounds = (2, 2, 2) if quick else (5, 5, 7)
        self.missed = []

    def wanted(self, workload):
        return not self.only or workload in self.only

    def expect(self, what, value, limit):
        if value > limit and not self.quick:
            self.missed.append(f"{what}: {value:.2f}, at most {limit}")

    def compare(self, workload):
        """One row of the table of both assemblers; for the plain program also what is said below the table."""
        lines = SHORT.get(workload, self.lines)
        note(f"{workload}, {lines} lines, both assemblers")
        folder = prepare(workload, lines, DIRECTORY)
        if workload == "home":
            os.environ["KILN_HOME"] = str((folder / KILN / HOME).resolve())
        commands = [kiln_command(workload, folder), rival_command(folder)]
        memory = [peak_memory(command) for command in commands]
        different = difference(folder / "kiln.xex", folder / "64tass.xex")
        if different:
            fail(f"{workload}: the assemblers do not agree: {different}")
        if workload == "plain":
            commands.append(["wc", "-w", str(folder / KILN / "main.asm")])
        if workload in SHORT:
            samples = time_in_turn(commands, self.start_rounds, 100)
        else:
            samples = time_in_turn(commands, self.pair_rounds)
        os.environ.pop("KILN_HOME", None)
        ours, theirs = samples[:2]
        size, other_size = source_size(folder, KILN), source_size(folder, RIVAL)
        self.expect(f"{workload}, time against 64tass", ours.time / theirs.time, RATIO_LIMITS[workload])
        footnotes = []
        if workload == "plain":
            counting = samples[2]
            self.expect("plain, time against counting words", ours.time / counting.time, WORDS_LIMIT)
            footnotes = [f"`wc -w` on plain: {milliseconds(counting.time)}; kiln-as takes "
                         f"{ours.time / counting.time:.2f} times as long (at most {WORDS_LIMIT}; "
                         f"processor time: {ours.work / counting.work:.2f})."]
        return (workload, f"{lines:,}", f"{size / 1e6:.1f}", milliseconds(ours.time), milliseconds(theirs.time),
                f"{ours.time / theirs.time:.2f}", f"{RATIO_LIMITS[workload]}", f"{ours.work / theirs.work:.2f}",
                speed(size, ours.time), speed(other_size, theirs.time), *map(megabytes, memory)), footnotes

    def grow(self, workload):
        """One row of the table of growth."""
        note(f"{workload}, {self.lines // 10} and {self.lines} lines")
        folders = [program_for(workload, lines) for lines in (self.lines // 10, self.lines)]
        commands = [kiln_command(workload, folder) for folder in folders]
        memory = [peak_memory(command) for command in commands][1]
        size = source_size(folders[1], KILN)
        small, large = time_in_turn(commands, self.growth_rounds)
        factor = large.time / small.time
        self.expect(f"{workload}, time for ten times the lines", factor, GROWTH_LIMIT)
        memory_limit = MEMORY_LIMITS.get(workload)
        if memory_limit:
            self.expect(f"{workload}, peak memory against the size of the source", memory / size, memory_limit)
        return (workload, milliseconds(small.time), milliseconds(large.time), f"{factor:.1f}", f"{GROWTH_LIMIT}",
                f"{large.work / small.work:.1f}", speed(size, large.time), megabytes(memory), f"{memory / size:.1f}",
                str(memory_limit or ""))

    def compare_with_before(self, workload):
        """One row of the table of this program and an earlier one."""
        note(f"{workload}, {self.lines} lines, the earlier program and this one")
        command = kiln_command(workload, program_for(workload, self.lines))
        earlier, now = time_in_turn([[BEFORE, *command[1:]], command], self.pair_rounds)
        ratio, limit = now.time / earlier.time, BEFORE_LIMITS[workload]
        self.expect(f"{workload}, time against the earlier program", ratio, limit)
        return (workload, milliseconds(earlier.time), milliseconds(now.time), f"{ratio:.2f}", f"{limit}",
                f"{now.work / earlier.work:.2f}")

    def check(self, workload):
        """One row of the table of kiln-check and kiln-as."""
        note(f"{workload}, {self.lines} and {CHECK_LINES} lines, kiln-check")
        has_findings = ["--ignore-failure"]  # segments of the programs overlap
        folder, small = program_for(workload, self.lines), program_for(workload, CHECK_LINES)
        command, small_command = kiln_command(workload, folder), kiln_command(workload, small)
        checked, assembled = time_in_turn([[CHECKER, *command[1:]], command], self.pair_rounds, more=has_findings)
        [quick] = time_in_turn([[CHECKER, *small_command[1:]]], self.pair_rounds, 10, has_findings)
        ratio, limit = checked.time / assembled.time, CHECK_RATIO_LIMITS[workload]
        self.expect(f"{workload}, time of kiln-check against kiln-as", ratio, limit)
        self.expect(f"{workload}, milliseconds to check {CHECK_LINES} lines", quick.time * 1000, CHECK_LIMIT)
        return (workload, milliseconds(assembled.time), milliseconds(checked.time), f"{ratio:.2f}", f"{limit}",
                milliseconds(quick.time), f"{CHECK_LIMIT} ms")

    def run_checks(self):
        workloads = [workload for workload in CHECK_RATIO_LIMITS if self.wanted(workload)]
        if workloads and not Path(CHECKER).exists():
            print(f"kiln-check is not measured: there is no {CHECKER}\n")
        elif workloads:
            table(("kiln-check", f"kiln-as, {self.lines:,} lines", "kiln-check", "ratio", "at most",
                   f"{CHECK_LINES:,} lines", "at most"), [self.check(workload) for workload in workloads])

    def edit(self, workload):
        """One row of the table of kiln-lsp."""
        note(f"{workload}, {CHECK_LINES} lines, kiln-lsp")
        source = program_for(workload, CHECK_LINES) / KILN / "main.asm"
        rounds = [measure_editing(SERVER, source) for _ in range(self.pair_rounds)]
        first, keystroke, memory = (median(values) for values in zip(*rounds))
        self.expect(f"{workload}, milliseconds to the first findings", first * 1000, FIRST_LIMIT)
        self.expect(f"{workload}, milliseconds after a keystroke", keystroke * 1000, KEYSTROKE_LIMIT)
        self.expect(f"{workload}, megabytes of kiln-lsp", memory / 1e6, SERVER_MEMORY_LIMIT)
        return (workload, milliseconds(first), f"{FIRST_LIMIT} ms", milliseconds(keystroke), f"{KEYSTROKE_LIMIT} ms",
                megabytes(memory), f"{SERVER_MEMORY_LIMIT} MB")

    def run_edits(self):
        workloads = [workload for workload in EDIT_WORKLOADS if self.wanted(workload)]
        if workloads and not Path(SERVER).exists():
            print(f"kiln-lsp is not measured: there is no {SERVER}\n")
        elif workloads:
            table((f"kiln-lsp, {CHECK_LINES:,} lines", "first findings", "at most", "after a keystroke", "at most",
                   "peak", "at most"), [self.edit(workload) for workload in workloads])

    def run(self):
        results = [self.compare(workload) for workload in RATIO_LIMITS if self.wanted(workload)]
        if results:
            table(("workload", "lines", "MB", "kiln-as", "64tass", "ratio", "at most", "of processor time",
                   "kiln-as, speed", "64tass, speed", "kiln-as, peak", "64tass, peak"), [row for row, _ in results])
        for footnote in (line for _, footnotes in results for line in footnotes):
            print(footnote + "\n")
        rows = [self.grow(workload) for workload in GROWTH if self.wanted(workload)]
        if rows:
            table(("kiln-as alone", f"{self.lines // 10:,} lines", f"{self.lines:,} lines", "factor", "at most",
                   "of processor time", "speed", "peak", "of source", "at most"), rows)
        self.run_before()
        self.run_checks()
        self.run_edits()
        for miss in self.missed:
            print("missed: " + miss)

    def run_before(self):
        workloads = [workload for workload in BEFORE_LIMITS if self.wanted(workload)]
        if workloads and not BEFORE:
            print(f"Not compared with an earlier program, since KILN_AS_BEFORE names none: {', '.join(workloads)}\n")
        elif workloads:
            table(("against an earlier kiln-as", "earlier", "now", "ratio", "at most", "of processor time"),
                  [self.compare_with_before(workload) for workload in workloads])


def describe():
    """One line that says what is measured."""
    compiler = re.search(rb"(GCC: \([^)]*\) [0-9.]+|clang version [0-9.]+)", Path(PROGRAM).read_bytes())
    rival = subprocess.run(["64tass", "--version"], capture_output=True, text=True).stdout.strip().rstrip("?")
    print(f"{datetime.date.today()}; compiler {compiler[1].decode() if compiler else 'unknown'}; {rival}; "
          f"{os.cpu_count()} processors.\n", flush=True)


def main():
    parser = argparse.ArgumentParser(prog="./dev bench", description="Measures the speed of kiln-as.")
    parser.add_argument("--quick", action="store_true", help="small programs, few rounds: shows that it all works")
    parser.add_argument("--only", action="append", metavar="NAME", help="one workload; may be given several times")
    parser.add_argument("--check", action="store_true", help="fail when a figure misses its limit")
    options = parser.parse_args()
    if options.check and options.quick:
        parser.error("the limits hold for the full size: --check and --quick exclude each other")
    for name in options.only or ():
        if name not in RATIO_LIMITS and name not in GROWTH:
            parser.error(f"no workload {name}; there are {', '.join([*GROWTH, *SHORT])}")
    for variable in ("KILN_HOME", "TARN_HOME"):
        os.environ.pop(variable, None)
    os.environ["LC_ALL"] = "C"
    DIRECTORY.mkdir(parents=True, exist_ok=True)
    describe()
    if os.getloadavg()[0] > os.cpu_count():
        note("the machine is busy: ratios of processor time are steadier than those of the clock")
    benchmark = Benchmark(options.quick, options.only)
    benchmark.run()
    if options.check and benchmark.missed:
        fail("a limit was missed")


if __name__ == "__main__":
    main()
