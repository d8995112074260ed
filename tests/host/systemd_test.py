#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""The unit files are what systemd takes without a complaint, expose little, and zorbd serves the sockets that systemd
hands over, feeds its watchdog and tells of a reload.

Usage: systemd_test.py ZORBD PLUGIN UNIT_FOLDER"""

import http.client
import os
import pathlib
import re
import signal
import socket
import subprocess
import sys
import tempfile
import unittest

ZORBD, PLUGIN, UNITS = sys.argv[1:4]
DEADLINE = 60
MOST_EXPOSED = 1.5


def own_copy(folder):
    """The units with a program that is there, and without the manual page, which need not be installed."""
    paths = []
    for name in ("zorbd.service", "zorbd.socket"):
        text = pathlib.Path(UNITS, name).read_text()
        text = text.replace("/usr/bin/zorbd", ZORBD).replace("Documentation=man:zorbd(1)\n", "")
        paths.append(folder / name)
        paths[-1].write_text(text)
    return paths


def call(port):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=DEADLINE)
    connection.request("GET", "/healthz")
    return connection.getresponse().status


class Units(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.paths = own_copy(pathlib.Path(folder.name))

    def test_are_taken_without_a_complaint(self):
        done = subprocess.run(["systemd-analyze", "verify", *self.paths], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    def test_expose_little(self):
        done = subprocess.run(["systemd-analyze", "security", "--offline=true", "--no-pager", self.paths[0]],
                              capture_output=True, text=True, check=False)
        level = re.search(r"exposure level for \S+: ([\d.]+)", done.stdout)
        self.assertIsNotNone(level, done.stdout + done.stderr)
        self.assertLessEqual(float(level.group(1)), MOST_EXPOSED)


class Process(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.notify = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(self.notify.close)
        self.notify.settimeout(DEADLINE)
        self.notify.bind(folder.name + "/notify")
        self.environment = {**os.environ, "NOTIFY_SOCKET": folder.name + "/notify"}

    def start(self, *options, launcher=()):
        process = subprocess.Popen([*launcher, ZORBD, "--plugin", PLUGIN, *options], env=self.environment,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def await_state(self, state):
        while state not in self.notify.recv(4096).decode().split("\n"):
            pass

    def test_serves_the_sockets_that_it_is_handed(self):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        launcher = ("systemd-socket-activate", "-l", f"127.0.0.1:{port}", "-E", "NOTIFY_SOCKET")
        self.start(launcher=launcher)
        connection = None
        while connection is None:
            try:
                connection = socket.create_connection(("127.0.0.1", port), timeout=DEADLINE)
            except ConnectionRefusedError:
                pass
        connection.close()
        self.await_state("READY=1")
        self.assertIn(call(port), (200, 503))

    def test_feeds_the_watchdog(self):
        self.environment["WATCHDOG_USEC"] = "200000"
        self.start("--listen", "127.0.0.1:0")
        self.await_state("READY=1")
        self.await_state("WATCHDOG=1")
        self.await_state("WATCHDOG=1")

    def test_tells_of_a_reload(self):
        process = self.start("--listen", "127.0.0.1:0")
        self.await_state("READY=1")
        process.send_signal(signal.SIGHUP)
        self.await_state("RELOADING=1")
        self.await_state("READY=1")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
