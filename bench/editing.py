"""Times the language server as an editor sees it: from opening a program, and from a keystroke, to the findings."""

import json
import re
import subprocess
import time
from pathlib import Path
from statistics import median

KEYSTROKES = 40

# No mnemonic ends in Z.
INSTRUCTION = re.compile(r"[a-z0-9_.]*:?[ \t]+([A-Z]{3}) ")


class Editor:
    """A client that waits for what it asks."""

    def __init__(self, program, folder):
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.last_id = 0
        self.request("initialize", {"processId": None, "rootUri": folder.as_uri(), "capabilities": {}})
        self.notify("initialized", {})

    def send(self, message):
        body = json.dumps({"jsonrpc": "2.0", **message}).encode()
        self.process.stdin.write(b"Content-Length: %d\r\n\r\n" % len(body) + body)
        self.process.stdin.flush()

    def receive(self):
        length = 0
        while (line := self.process.stdout.readline()) not in (b"\r\n", b""):
            length = int(line.split(b":")[1])
        return json.loads(self.process.stdout.read(length))

    def request(self, method, params):
        self.last_id += 1
        self.send({"id": self.last_id, "method": method, "params": params})
        while True:
            message = self.receive()
            if message.get("id") == self.last_id:
                return message.get("result")

    def notify(self, method, params):
        self.send({"method": method, "params": params})

    def wait_for_findings(self):
        while self.receive().get("method") != "textDocument/publishDiagnostics":
            pass

    def peak_memory(self):
        """In bytes."""
        status = Path(f"/proc/{self.process.pid}/status").read_text()
        return int(status.split("VmHWM:")[1].split()[0]) * 1024

    def leave(self):
        self.request("shutdown", None)
        self.notify("exit", None)
        self.process.wait()


def measure_editing(program, source):
    """Seconds from the start of the server to the first findings, seconds from a keystroke to new findings, and the
    server's peak memory in bytes. The keystrokes make an instruction in the middle of the program vanish and come back."""
    lines = source.read_text().split("\n")
    half = len(lines) // 2
    middle = min((i for i, line in enumerate(lines) if INSTRUCTION.match(line)), key=lambda i: abs(i - half))
    at = INSTRUCTION.match(lines[middle]).end(1) - 1
    letter = lines[middle][at]
    document = {"uri": source.resolve().as_uri(), "languageId": "kiln", "version": 0}
    start = time.perf_counter()
    editor = Editor(program, source.resolve().parent)
    # A line that is a finding, so that there is something to wait for.
    editor.notify("textDocument/didOpen", {"textDocument": {**document, "text": "\n".join([*lines, " LDZ #1\n"])}})
    editor.wait_for_findings()
    first = time.perf_counter() - start
    times = []
    for version in range(1, KEYSTROKES + 1):
        change = {"range": {"start": {"line": middle, "character": at}, "end": {"line": middle, "character": at + 1}},
                  "text": "Z" if version % 2 else letter}
        start = time.perf_counter()
        editor.notify("textDocument/didChange", {"textDocument": {**document, "version": version},
                                                 "contentChanges": [change]})
        editor.wait_for_findings()
        times.append(time.perf_counter() - start)
    memory = editor.peak_memory()
    editor.leave()
    return first, median(times), memory
