# Runs a program here and on another system, and says in what they differ.
import os
import subprocess
import tempfile
from dataclasses import dataclass
from multiprocessing.pool import ThreadPool
from pathlib import Path

from targets import FOLDER

LIMIT = 300  # seconds


@dataclass
class Outcome:
    status: int
    streams: dict  # name -> bytes
    files: dict  # name -> bytes; all that are there afterwards


# Runs in an empty folder.
def outcome(command, run, environment, folder):
    for name, content in run.files.items():
        path = Path(folder, name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        if name in run.read_only:
            path.chmod(0o444)
    result = subprocess.run([*command, *run.arguments], cwd=folder, input=run.input, capture_output=True,
                            env=environment, timeout=LIMIT)
    files = {str(path.relative_to(folder)): path.read_bytes() for path in Path(folder).rglob("*") if path.is_file()}
    return Outcome(result.returncode, {"output": result.stdout, "messages": result.stderr}, files)


def outcome_of(command, run, additions):
    with tempfile.TemporaryDirectory(dir=FOLDER) as folder:
        return outcome(command, run, clean_environment({**additions, **run.environment}), folder)


# The names that point to settings are left out, so that only those of the run count.
def clean_environment(additions):
    kept = {name: os.environ[name] for name in ("PATH", "HOME") if name in os.environ}
    return {**kept, "LC_ALL": "C.UTF-8", **additions}


# What is different, one text each: first the exit status, then streams and files by their names.
def differences(here, there):
    if here.status != there.status:
        yield f"exit status {there.status}, here {here.status}"
    for name in sorted({*here.streams, *here.files, *there.files}):
        texts = [{**side.streams, **side.files}.get(name) for side in (here, there)]
        if texts[0] != texts[1]:
            yield f"{name}: {first_difference(*texts)}"


def first_difference(here, there):
    if here is None or there is None:
        return "only here" if there is None else "only there"
    at = next((i for i, (a, b) in enumerate(zip(here, there)) if a != b), min(len(here), len(there)))
    return f"from byte {at}: {there[at:at + 60]!r}, here {here[at:at + 60]!r}"


# The texts that say where the target differs from the programs in `native`, none when it does not.
def compare(target, native, runs):
    def compare_run(run):
        try:
            here = outcome_of([native / run.program], run, {})
            there = outcome_of(target.command(run.program), run, target.environment)
        except subprocess.TimeoutExpired:
            return [f"{run.place}: {run.program} takes more than {LIMIT} seconds"]
        return [f"{run.place}: {run.program}: {text}" for text in differences(here, there)]

    with ThreadPool() as pool:
        return sum(pool.map(compare_run, runs, chunksize=1), [])
