"""A headless Chromium, driven through a pipe: no port is opened, and nothing but Python's own library is needed."""

import base64
import json
import os
import shutil
import subprocess
import tempfile
import time

PROGRAMS = ["chromium", "chromium-browser", "google-chrome"]


def program():
    """The browser's path; None if there is none."""
    return next(filter(None, map(shutil.which, PROGRAMS)), None)


class Browser:
    """One tab. Keeps the requests, errors and dialogs of the pages that it shows."""

    def __init__(self):
        self.profile = tempfile.mkdtemp(prefix="browser-")
        self.messages = 0
        self.requests = {}
        self.complaints = []
        to_browser, self.writer = os.pipe()
        self.reader, from_browser = os.pipe()
        self.process = subprocess.Popen(
            [program(), "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
             "--remote-debugging-pipe", "--no-first-run", "--disable-background-networking", "--disable-sync",
             "--user-data-dir=" + self.profile, "--window-size=1280,900", "about:blank"],
            preexec_fn=lambda: _take_pipes(to_browser, from_browser), close_fds=False,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        self.pending = b""
        self.session = None
        targets = self.call("Target.getTargets")["targetInfos"]
        page = next(target for target in targets if target["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=page["targetId"], flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")

    def close(self):
        self.process.kill()
        self.process.wait()
        shutil.rmtree(self.profile, ignore_errors=True)

    def _receive(self, deadline):
        while b"\0" not in self.pending:
            if time.monotonic() > deadline:
                raise TimeoutError("the browser does not answer")
            part = os.read(self.reader, 1 << 20)
            if not part:
                raise EOFError("the browser has ended")
            self.pending += part
        message, self.pending = self.pending.split(b"\0", 1)
        return json.loads(message)

    def _note(self, message):
        method, about = message.get("method"), message.get("params", {})
        if method == "Network.requestWillBeSent":
            self.requests[about["requestId"]] = about["request"]["url"]
        elif method == "Network.loadingFailed" and about.get("blockedReason") == "csp":
            self.requests.pop(about["requestId"], None)  # the page's policy has refused it: it was not sent
        elif method == "Runtime.exceptionThrown":
            self.complaints.append(about["exceptionDetails"]["text"])
        elif method == "Log.entryAdded":
            self.complaints.append(about["entry"]["text"])
        elif method == "Page.javascriptDialogOpening":
            self.complaints.append("dialog: " + about["message"])

    def call(self, method, **params):
        self.messages += 1
        message = {"id": self.messages, "method": method, "params": params}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.writer, json.dumps(message).encode() + b"\0")
        deadline = time.monotonic() + 120
        while True:
            answer = self._receive(deadline)
            if answer.get("id") == self.messages:
                if "error" in answer:
                    raise RuntimeError(answer["error"]["message"])
                return answer["result"]
            self._note(answer)

    def evaluate(self, expression):
        """The value of an expression in the page."""
        answer = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(answer["exceptionDetails"]["exception"]["description"])
        return answer["result"].get("value")

    def wait_for(self, expression, seconds=60):
        deadline = time.monotonic() + seconds
        while not self.evaluate(expression):
            if time.monotonic() > deadline:
                raise TimeoutError(expression)
            time.sleep(0.02)

    def open(self, path):
        self.call("Page.navigate", url="about:blank")  # or nothing is loaded if only the part behind "#" is another one
        self.call("Page.navigate", url="file://" + path)
        self.wait_for("location.protocol === 'file:' && document.readyState === 'complete'")

    def show(self, width, colours):
        """A screen of another width, "light" or "dark"; a narrow one is that of a phone."""
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1, mobile=width < 500)
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": colours}])

    def click(self, element):
        """Clicks with the mouse on what an expression gives."""
        x, y = self.evaluate(f"(() => {{ const e = {element}; e.scrollIntoView({{block: 'center'}});"
                             "const r = e.getBoundingClientRect(); return [r.x + r.width / 2, r.y + r.height / 2]; })()")
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def type(self, element, text):
        """Replaces the text of an input with what is typed."""
        self.evaluate(f"(() => {{ const e = {element}; e.focus(); e.select(); }})()")
        if text:
            return self.call("Input.insertText", text=text)
        for kind in ("keyDown", "keyUp"):
            self.call("Input.dispatchKeyEvent", type=kind, key="Delete", code="Delete", windowsVirtualKeyCode=46)

    def screenshot(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"]))


def _take_pipes(to_browser, from_browser):
    """What the browser reads is its descriptor 3, what it writes 4. The two may be in each other's way."""
    incoming, outgoing = os.dup(to_browser), os.dup(from_browser)
    high = [os.dup2(incoming, 60), os.dup2(outgoing, 61)]
    os.dup2(high[0], 3)
    os.dup2(high[1], 4)
    os.closerange(5, 256)
