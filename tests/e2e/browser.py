"""A headless Chromium, driven through chromedriver's HTTP protocol (WebDriver)."""

import contextlib
import http.client
import json
import os
import re
import shutil
import subprocess
import tempfile

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # the key that the protocol gives to elements
START_SECONDS = 120


class BrowserError(Exception):
    """The browser did not do what it was asked for."""


class Browser:
    """Downloads land in the folder `downloads`. To be used in a with statement."""

    def __init__(self):
        self._home = tempfile.mkdtemp(prefix="hitwick-browser-")
        self.downloads = os.path.join(self._home, "downloads")
        self._driver = None
        self._session = None

    def __enter__(self):
        with contextlib.ExitStack() as undo:
            undo.callback(self._end)
            for name in ("downloads", "profile", "tmp"):
                os.mkdir(os.path.join(self._home, name))
            self._driver = subprocess.Popen(
                ["chromedriver", "--port=0"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                stderr=subprocess.STDOUT,
                env={"PATH": os.environ.get("PATH", "/usr/bin:/bin"), "HOME": self._home,
                     "TMPDIR": os.path.join(self._home, "tmp"), "LC_ALL": "C.UTF-8"})
            self._connection = http.client.HTTPConnection("127.0.0.1", self._port(),
                                                          timeout=START_SECONDS)
            self._session = self._call("POST", "/session", self._capabilities())["sessionId"]
            self._command("goog/cdp/execute", {"cmd": "Browser.setDownloadBehavior", "params": {
                "behavior": "allow", "downloadPath": self.downloads}})
            undo.pop_all()
        return self

    def __exit__(self, *_):
        self._end()

    def open(self, address):
        self._command("url", {"url": address})

    def address(self):
        return self._call("GET", "/session/" + self._session + "/url")

    def run(self, script, *arguments):
        """The result of a script; elements of the page stand for themselves in both."""
        return self._command("execute/sync", {"script": script, "args": arguments})

    def elements(self, selector):
        return self._command("elements", {"using": "css selector", "value": selector})

    def click(self, element):
        self._command("element/" + element[ELEMENT] + "/click", {})

    def _capabilities(self):
        options = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                   "--disable-quic", "--no-first-run", "--disable-background-networking",
                   "--disable-component-update", "--disable-sync",
                   "--window-size=500,300",  # what is not drawn costs no time
                   "--user-data-dir=" + os.path.join(self._home, "profile")]
        return {"capabilities": {"alwaysMatch": {
            "browserName": "chrome", "goog:chromeOptions": {"args": options}}}}

    def _port(self):
        for line in self._driver.stdout:
            found = re.search(rb"started successfully on port ([0-9]+)", line)
            if found:
                return int(found.group(1))
        raise BrowserError("chromedriver did not start")

    def _command(self, name, body):
        return self._call("POST", "/session/" + self._session + "/" + name, body)

    def _call(self, method, path, body=None):
        self._connection.request(method, path, body=None if body is None else json.dumps(body),
                                 headers={"Content-Type": "application/json"})
        response = self._connection.getresponse()
        value = json.loads(response.read())["value"]
        if response.status != 200:
            raise BrowserError("%s %s: %s" % (method, path, value))
        return value

    def _end(self):
        if self._session:
            with contextlib.suppress(OSError, BrowserError, http.client.HTTPException):
                self._call("DELETE", "/session/" + self._session)
        if self._driver:
            self._driver.terminate()
            self._driver.communicate()
        shutil.rmtree(self._home, ignore_errors=True)
