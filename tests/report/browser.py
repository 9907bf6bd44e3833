"""Chromium without a window, driven over the WebDriver protocol by Debian's chromedriver. Tells what a page logs, what it
asks the network for, and takes its picture."""

import base64
import json
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import urllib.error
import urllib.request

SKIPPED = 77
KEYS = {"Left": "\ue012", "Up": "\ue013", "Right": "\ue014", "Down": "\ue015", "Home": "\ue011", "End": "\ue010", "Tab": "\ue004"}
FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
         "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage", "--force-device-scale-factor=1"]


def is_there():
    return all(shutil.which(program) for program in ("chromium", "chromedriver"))


def require():
    """Ends the program as a skipped test where there is no browser."""
    if not is_there():
        print("skipped: there is no chromium with its chromedriver here; script/bootstrap test installs them")
        sys.exit(SKIPPED)


class Browser:
    def __init__(self, dark=False, width=1280, height=900):
        self.folder = tempfile.TemporaryDirectory(prefix="orv-browser-", ignore_cleanup_errors=True)
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        self.driver = subprocess.Popen(["chromedriver", f"--port={port}"], stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, env={**os.environ, "HOME": self.folder.name})
        self.base = f"http://127.0.0.1:{port}"
        self.session = ""
        try:
            self._wait_until_ready()
            arguments = [*FLAGS, f"--user-data-dir={self.folder.name}/profile", f"--window-size={width},{height}"]
            options = {"binary": shutil.which("chromium"), "args": arguments}
            wanted = {"browserName": "chrome", "goog:chromeOptions": options,
                      "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}
            made = self._send("POST", "/session", {"capabilities": {"alwaysMatch": wanted}})
            self.session = f"/session/{made['sessionId']}"
            self.devtools("Emulation.setDeviceMetricsOverride",
                          {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
            self.set_dark(dark)
            self._send("POST", f"{self.session}/url", {"url": "about:blank"})
            self.requests()  # of the page that a new window has
            self.log()
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        if self.session:
            try:
                self._send("DELETE", self.session)
            except OSError:
                pass
        self.driver.terminate()
        self.driver.wait()
        self.folder.cleanup()

    def _wait_until_ready(self):
        for _ in range(200):
            try:
                if self._send("GET", "/status")["ready"]:
                    return
            except OSError:
                time.sleep(0.05)
        raise RuntimeError("chromedriver does not answer")

    def _send(self, method, path, body=None):
        data = None if method != "POST" else json.dumps(body or {}).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        try:
            with urllib.request.urlopen(request, timeout=300) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from None

    def devtools(self, command, parameters=None):
        return self._send("POST", f"{self.session}/goog/cdp/execute", {"cmd": command, "params": parameters or {}})

    def set_dark(self, dark, media=""):
        self.devtools("Emulation.setEmulatedMedia", {
            "media": media, "features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})

    def open(self, path):
        self._send("POST", f"{self.session}/url", {"url": f"file://{os.path.abspath(path)}"})

    def run(self, script, *arguments):
        """What the script returns; it sees `arguments`."""
        return self._send("POST", f"{self.session}/execute/sync", {"script": script, "args": list(arguments)})

    def press(self, selector, *keys):
        """Gives the keys, by name or as they are, to the element."""
        found = self._send("POST", f"{self.session}/element", {"using": "css selector", "value": selector})
        text = "".join(KEYS.get(key, key) for key in keys)
        self._send("POST", f"{self.session}/element/{next(iter(found.values()))}/value", {"text": text})

    def click(self, selector):
        found = self._send("POST", f"{self.session}/element", {"using": "css selector", "value": selector})
        self._send("POST", f"{self.session}/element/{next(iter(found.values()))}/click")

    def log(self):
        """What the page has logged since the last time: errors, refused scripts, anything."""
        return [entry["message"] for entry in self._send("POST", f"{self.session}/se/log", {"type": "browser"})]

    def requests(self):
        """The addresses that were asked for since the last time."""
        entries = self._send("POST", f"{self.session}/se/log", {"type": "performance"})
        messages = [json.loads(entry["message"])["message"] for entry in entries]
        return [m["params"]["request"]["url"] for m in messages if m["method"] == "Network.requestWillBeSent"]

    def picture_of(self, path, selectors):
        """Writes a PNG of the elements, the first of which stands highest and the last one lowest."""
        top, bottom, width = self.run("""
            const box = selector => document.querySelector(selector).getBoundingClientRect();
            return [box(arguments[0][0]).top + scrollY, box(arguments[0].at(-1)).bottom + scrollY,
                    document.documentElement.clientWidth];""", selectors)
        margin = 16
        clip = {"x": 0, "y": top - margin, "width": width, "height": bottom - top + 2 * margin, "scale": 1}
        shot = {"format": "png", "captureBeyondViewport": True, "clip": clip}
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.devtools("Page.captureScreenshot", shot)["data"]))

    def picture(self, path, whole=True):
        """Writes a PNG of the page, or of what the window shows."""
        parameters = {"format": "png", "captureBeyondViewport": whole}
        if whole:
            size = self.devtools("Page.getLayoutMetrics")["cssContentSize"]
            parameters["clip"] = {"x": 0, "y": 0, "width": size["width"], "height": size["height"], "scale": 1}
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.devtools("Page.captureScreenshot", parameters)["data"]))
