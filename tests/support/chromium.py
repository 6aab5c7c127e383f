"""A headless Chromium that tests drive by its debugging protocol, over two pipes: nothing listens on a network.

Its profile is a folder of its own, removed with the browser. Messages of the protocol are JSON, each ended by a zero
byte (https://chromedevtools.github.io/devtools-protocol/).
"""

import base64
import json
import os
import select
import shutil
import signal
import subprocess
import tempfile
import time

PROGRAMS = ("chromium", "chromium-browser", "google-chrome")
FLAGS = ("--headless=new", "--disable-gpu", "--no-first-run", "--disable-extensions", "--disable-background-networking",
         "--disable-component-update", "--disable-default-apps", "--disable-sync", "--mute-audio", "--hide-scrollbars",
         "--disable-dev-shm-usage", "--remote-debugging-pipe")
ANSWER_SECONDS = 60


def program():
    """The browser's path, or None."""
    return next((path for path in map(shutil.which, PROGRAMS) if path), None)


class Browser:
    def __init__(self):
        self._profile = tempfile.TemporaryDirectory(prefix="vardelwatch-chromium-", ignore_cleanup_errors=True)
        from_us, self._out = os.pipe()
        self._in, to_us = os.pipe()
        words = [program(), *FLAGS, f"--user-data-dir={self._profile.name}", "about:blank"]
        if os.geteuid() == 0:
            words.insert(1, "--no-sandbox")

        def take_pipes():
            # The browser reads descriptor 3 and writes to 4; both ends move out of the way of each other first.
            reading, writing = os.dup(from_us), os.dup(to_us)
            high_reading, high_writing = os.dup2(reading, 60), os.dup2(writing, 61)
            os.dup2(high_reading, 3)
            os.dup2(high_writing, 4)

        self._process = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                         stderr=subprocess.DEVNULL, preexec_fn=take_pipes, close_fds=False,
                                         start_new_session=True)
        os.close(from_us)
        os.close(to_us)
        self._last = 0
        self._buffer = b""
        self.events = []

    def call(self, method, session=None, **parameters):
        """The answer's result."""
        self._last += 1
        message = {"id": self._last, "method": method, "params": parameters}
        if session:
            message["sessionId"] = session
        os.write(self._out, json.dumps(message).encode() + b"\0")
        deadline = time.monotonic() + ANSWER_SECONDS
        while True:
            told = self._read(deadline - time.monotonic())
            if told.get("id") == message["id"]:
                if "error" in told:
                    raise RuntimeError(f"{method}: {told['error']}")
                return told["result"]
            self.events.append(told)

    def listen(self, seconds):
        """Takes the events of some time."""
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline:
            try:
                self.events.append(self._read(deadline - time.monotonic()))
            except TimeoutError:
                return

    def _read(self, seconds):
        deadline = time.monotonic() + seconds
        while b"\0" not in self._buffer:
            if not select.select([self._in], [], [], max(deadline - time.monotonic(), 0))[0]:
                raise TimeoutError("the browser doesn't answer")
            piece = os.read(self._in, 1 << 20)
            if not piece:
                raise RuntimeError("the browser has ended")
            self._buffer += piece
        message, self._buffer = self._buffer.split(b"\0", 1)
        return json.loads(message)

    def close(self):
        if self._process is None:
            return
        # The browser's processes are all in the session that it was started in.
        try:
            os.killpg(self._process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self._process.wait()
        self._process = None
        os.close(self._out)
        os.close(self._in)
        self._profile.cleanup()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


class Page:
    """One page of a browser, with a record of what it asked for."""

    def __init__(self, browser, width=1280, height=900, dark=False):
        self.browser = browser
        self._target = browser.call("Target.createTarget", url="about:blank")["targetId"]
        self._session = browser.call("Target.attachToTarget", targetId=self._target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Network", "Log"):
            self.call(f"{domain}.enable")
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.call("Emulation.setEmulatedMedia",
                  features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def call(self, method, **parameters):
        return self.browser.call(method, self._session, **parameters)

    def open(self, address):
        """Loads the page and waits until it has loaded."""
        self.browser.events.clear()
        self.call("Page.navigate", url=address)
        deadline = time.monotonic() + ANSWER_SECONDS
        while not self.told("Page.loadEventFired"):
            if time.monotonic() > deadline:
                raise TimeoutError(address)
            self.browser.listen(0.05)

    def told(self, method):
        """The parameters of the page's events of one kind."""
        return [event["params"] for event in self.browser.events
                if event.get("method") == method and event.get("sessionId") == self._session]

    def value(self, expression):
        """The value of an expression in the page, which JSON can carry."""
        told = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in told:
            raise RuntimeError(told["exceptionDetails"].get("exception", {}).get("description", expression))
        return told["result"].get("value")

    def screenshot(self, path, whole=False):
        picture = self.call("Page.captureScreenshot", format="png", captureBeyondViewport=whole)
        with open(path, "wb") as target:
            target.write(base64.b64decode(picture["data"]))

    def close(self):
        self.browser.call("Target.closeTarget", targetId=self._target)
