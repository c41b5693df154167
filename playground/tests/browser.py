"""A browser without a window, through its own driver: the WebDriver protocol over HTTP."""
import base64
import json
import shutil
import subprocess
import tempfile
import time
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"


class Browser:
    def __init__(self, downloads):
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        self.profile = tempfile.mkdtemp()
        self.base = f"http://127.0.0.1:{self.read_port()}"
        options = {
            "args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--mute-audio", "--disable-dev-shm-usage",
                     "--autoplay-policy=no-user-gesture-required", f"--user-data-dir={self.profile}"],
            "prefs": {"download.default_directory": downloads},
        }
        wanted = {"goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}
        session = self.send("POST", "/session", {"capabilities": {"alwaysMatch": wanted}})
        self.base += "/session/" + session["sessionId"]
        self.send("POST", "/timeouts", {"script": 120_000})

    def read_port(self):
        for line in self.driver.stdout:
            if "successfully on port " in line:
                return int(line.rsplit(" ", 1)[1].strip(" .\n"))
        raise RuntimeError("chromedriver does not start")

    def send(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        try:
            with urllib.request.urlopen(request, timeout=180) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from None

    def open(self, url):
        self.send("POST", "/url", {"url": url})

    def run(self, script, *arguments):
        """The body of a function in the page."""
        return self.send("POST", "/execute/sync", {"script": script, "args": arguments})

    def wait(self, script, *arguments, seconds=60):
        """Until the script gives something true, which is the result."""
        end = time.monotonic() + seconds
        while not (result := self.run(script, *arguments)):
            if time.monotonic() > end:
                raise TimeoutError(script)
            time.sleep(0.05)
        return result

    def find(self, selector):
        return self.send("POST", "/element", {"using": "css selector", "value": selector})[ELEMENT]

    def click(self, selector):
        self.send("POST", f"/element/{self.find(selector)}/click", {})

    def keys(self, *actions):
        """Each is a key, pressed and released, or a pair of a key and keyDown or keyUp."""
        steps = []
        for action in actions:
            pair = (action,) if isinstance(action, str) else action
            for kind in pair[1:] or ("keyDown", "keyUp"):
                steps.append({"type": kind, "value": pair[0]})
        self.send("POST", "/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": steps}]})

    def move_to(self, x, y):
        steps = [{"type": "pointerMove", "duration": 50, "x": int(x), "y": int(y)}]
        self.send("POST", "/actions", {"actions": [{"type": "pointer", "id": "mouse", "actions": steps}]})

    def touch(self, selector):
        """A finger on the middle of an element, until lift()."""
        point = self.run("const element = document.querySelector(arguments[0]); element.scrollIntoView();"
                         "const box = element.getBoundingClientRect();"
                         "return {x: box.x + box.width / 2, y: box.y + box.height / 2}", selector)
        self.emulate("Input.dispatchTouchEvent", {"type": "touchStart", "touchPoints": [point]})

    def lift(self):
        self.emulate("Input.dispatchTouchEvent", {"type": "touchEnd", "touchPoints": []})

    def screenshot(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.send("GET", "/screenshot")))

    def emulate(self, command, parameters):
        self.send("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def complaints(self):
        """What the page has written to its console since the last call: a violation of its policy, an exception."""
        entries = self.send("POST", "/se/log", {"type": "browser"})
        return [entry["message"] for entry in entries if entry["level"] in ("SEVERE", "WARNING")]

    def close(self):
        self.send("DELETE", "")
        self.driver.terminate()
        self.driver.wait()
        shutil.rmtree(self.profile, ignore_errors=True)
