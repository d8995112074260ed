# SPDX-License-Identifier: Apache-2.0
"""The programs that the console's tests run: varnelde, zorbd and a browser."""

import json
import os
import pathlib
import re
import subprocess
import tempfile
import urllib.request

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

BUILD = pathlib.Path(os.environ["BUILD"])
FOLDER = pathlib.Path(os.environ["FOLDER"])
PLUGIN = BUILD / "lib/libvarnelrpc_1.0.2.so"
TALKING = BUILD / "tests/host/plugins/libtalking.so"
DEADLINE = 60  # seconds; generous, because the machine may be busy

BROWSER_OPTIONS = ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                   "--disable-background-networking", "--disable-component-update", "--disable-sync",
                   "--disable-dev-shm-usage", "--no-proxy-server")


class Program:
    """A process that writes to a file of its own."""

    def __init__(self, name, *arguments):
        self.log = pathlib.Path(tempfile.mkstemp(prefix=name, dir=FOLDER)[1])
        with open(self.log, "w") as output:
            self.process = subprocess.Popen([BUILD / "bin" / name, *arguments], stdout=output, stderr=output)

    def wait_for(self, pattern):
        """The match of a line that it has written, or writes in time."""
        with subprocess.Popen(["tail", "-n", "+1", "-s", "0.05", f"--pid={self.process.pid}", "-f", self.log],
                              stdout=subprocess.PIPE, text=True) as tail:
            stopper = subprocess.Popen(["timeout", str(DEADLINE), "tail", "-s", "0.2", f"--pid={tail.pid}", "-f",
                                        "/dev/null"])
            try:
                for line in tail.stdout:
                    if found := re.search(pattern, line):
                        return found
                    if stopper.poll() is not None:
                        break
            finally:
                tail.kill()
                stopper.kill()
                stopper.wait()
        raise AssertionError(f"no line '{pattern}' in {self.log.read_text()}")

    def stop(self):
        self.process.terminate()
        self.process.wait(DEADLINE)


def start_server():
    server = Program("varnelde")
    server.wait_for("^ready")
    return server


class Host(Program):
    """zorbd on a port of its own."""

    def __init__(self, *arguments):
        super().__init__("zorbd", "--listen", "127.0.0.1:0", *map(str, arguments))
        self.url = self.wait_for(r"ready on (http://127\.0\.0\.1:\d+/)").group(1)

    def call(self, method, **params):
        body = json.dumps({"jsonrpc": "2.0", "id": 1, "method": method, "params": params}).encode()
        request = urllib.request.Request(self.url, body, {"Content-Type": "application/json"})
        return json.load(urllib.request.build_opener(urllib.request.ProxyHandler({})).open(request, timeout=DEADLINE))


def start_browser(width=1600, height=900, scheme="light"):
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for option in BROWSER_OPTIONS + (f"--user-data-dir={tempfile.mkdtemp(dir=FOLDER)}",):
        options.add_argument(option)
    browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    set_view(browser, width, height, scheme)
    return browser


def wait_for_animations(browser):
    """Until no colour is between two others any more."""
    browser.execute_cdp_cmd("Runtime.evaluate", {
        "expression": "new Promise(requestAnimationFrame).then(() => Promise.all("
                      "document.getAnimations().map((one) => one.finished))).then(() => null)",
        "awaitPromise": True})


def set_view(browser, width, height, scheme="light"):
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                            {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
