"""A headless Chromium, driven through its pipe. Everything fails loudly: no browser, no answer, no page."""
import base64
import json
import os
import select
import subprocess
import tempfile
import time

SECONDS = 60


class Browser:
    """One tab of a browser of its own, with a profile that is thrown away."""

    def __init__(self, program="chromium", arguments=()):
        self._profile = tempfile.TemporaryDirectory(prefix="corvane-browser-", ignore_cleanup_errors=True)
        to_browser, self._out = os.pipe()
        self._in, from_browser = os.pipe()

        def hand_over():
            # The browser reads commands from descriptor 3 and answers on 4.
            read, write = os.dup(to_browser), os.dup(from_browser)
            os.dup2(read, 3)
            os.dup2(write, 4)

        self._process = subprocess.Popen(
            [program, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--remote-debugging-pipe",
             "--no-first-run", "--disable-background-networking", f"--user-data-dir={self._profile.name}", *arguments,
             "about:blank"],
            preexec_fn=hand_over, close_fds=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        self._number = 0
        self._rest = b""
        self.events = []
        target = next(each for each in self._send("Target.getTargets", {})["targetInfos"] if each["type"] == "page")
        self._session = self._send("Target.attachToTarget", {"targetId": target["targetId"], "flatten": True})["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.terminate()
        self._process.wait(SECONDS)
        os.close(self._in)
        os.close(self._out)
        self._profile.cleanup()

    def _read(self):
        """The next message; what is no answer is kept as an event."""
        end = time.monotonic() + SECONDS
        while b"\0" not in self._rest:
            if not select.select([self._in], [], [], max(0, end - time.monotonic()))[0]:
                raise TimeoutError("the browser does not answer")
            more = os.read(self._in, 1 << 20)
            if not more:
                raise RuntimeError(f"the browser has ended, status {self._process.poll()}")
            self._rest += more
        message, self._rest = self._rest.split(b"\0", 1)
        return json.loads(message)

    def _send(self, method, parameters, **more):
        self._number += 1
        os.write(self._out, json.dumps({"id": self._number, "method": method, "params": parameters, **more}).encode() + b"\0")
        while True:
            message = self._read()
            if message.get("id") != self._number:
                self.events.append(message)
            elif "error" in message:
                raise RuntimeError(f"{method}: {message['error']['message']}")
            else:
                return message["result"]

    def call(self, method, **parameters):
        return self._send(method, parameters, sessionId=self._session)

    def open(self, address):
        """Loads a page; from now on `complaints` is about it."""
        self.events.clear()
        result = self.call("Page.navigate", url=address)
        if "errorText" in result:
            raise RuntimeError(f"{address}: {result['errorText']}")
        while not any(each.get("method") == "Page.loadEventFired" for each in self.events):
            self.events.append(self._read())

    def complaints(self):
        """What the browser says on its console, and each thing that the page asks for besides itself."""
        found = []
        for event in self.events:
            method, parameters = event.get("method"), event.get("params", {})
            if method == "Log.entryAdded":
                found.append(parameters["entry"]["text"])
            elif method in ("Runtime.consoleAPICalled", "Runtime.exceptionThrown", "Page.javascriptDialogOpening"):
                found.append(json.dumps(parameters))
            elif method == "Network.requestWillBeSent" and parameters.get("type") != "Document":
                found.append("asks for " + parameters["request"]["url"])
        return found

    def value(self, expression):
        """What an expression comes to in the page."""
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        if "exceptionDetails" in result:
            raise RuntimeError(expression + ": " + json.dumps(result["exceptionDetails"]))
        return result["result"].get("value")

    def show(self, width, dark=False, media=""):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=800, deviceScaleFactor=1, mobile=width < 600)
        self.call("Emulation.setEmulatedMedia", media=media,
                  features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def picture(self, file, tallest=4000):
        size = self.call("Page.getLayoutMetrics")["cssContentSize"]
        clip = {"x": 0, "y": 0, "width": size["width"], "height": min(size["height"], tallest), "scale": 1}
        with open(file, "wb") as out:
            out.write(base64.b64decode(self.call("Page.captureScreenshot", clip=clip, captureBeyondViewport=True)["data"]))

    def paper(self, file):
        with open(file, "wb") as out:
            out.write(base64.b64decode(self.call("Page.printToPDF", paperWidth=8.27, paperHeight=11.69,
                                                 printBackground=False)["data"]))
