#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""The unit files are what systemd takes without a complaint, expose little, and zorbd serves the sockets that systemd
hands over, feeds its watchdog and tells of a reload.

Usage: systemd_test.py ZORBD PLUGIN UNIT_FOLDER"""

import http.client
import json
import os
import pathlib
import re
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

ZORBD, PLUGIN, UNITS = sys.argv[1:4]
DEADLINE = 60
MOST_EXPOSED = 1.5


def own_copy(folder):
    """The units with a program that is there, and without the manual pages, which need not be installed."""
    paths = []
    for name in ("zorbd.service", "varnelde.service", "zorbd.socket"):
        text = pathlib.Path(UNITS, name).read_text()
        text = re.sub("/usr/bin/(zorbd|varnelde)", ZORBD, re.sub("Documentation=.*\n", "", text))
        paths.append(folder / name)
        paths[-1].write_text(text)
    return paths


def call(port):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=DEADLINE)
    connection.request("GET", "/healthz")
    return connection.getresponse().status


def ask(unix_socket, verb, path, method=None, params=None):
    """The body of the answer of a zorbd on a Unix socket."""
    connection = http.client.HTTPConnection("localhost", timeout=DEADLINE)
    connection.sock = socket.socket(socket.AF_UNIX)
    connection.sock.settimeout(DEADLINE)
    connection.sock.connect(unix_socket)
    body = method and json.dumps({"jsonrpc": "2.0", "id": 1, "method": method, "params": params})
    connection.request(verb, path, body, {"Content-Type": "application/json"})
    answer = connection.getresponse().read().decode()
    connection.close()
    return answer


class Units(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.paths = own_copy(pathlib.Path(folder.name))

    def test_are_taken_without_a_complaint(self):
        done = subprocess.run(["systemd-analyze", "verify", *self.paths], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    def test_expose_little(self):
        for service in self.paths[:2]:
            done = subprocess.run(["systemd-analyze", "security", "--offline=true", "--no-pager", service],
                                  capture_output=True, text=True, check=False)
            level = re.search(r"exposure level for \S+: ([\d.]+)", done.stdout)
            self.assertIsNotNone(level, done.stdout + done.stderr)
            self.assertLessEqual(float(level.group(1)), MOST_EXPOSED, service)


class Process(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.notify = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(self.notify.close)
        self.notify.settimeout(DEADLINE)
        self.notify.bind(self.folder + "/notify")
        self.environment = {**os.environ, "NOTIFY_SOCKET": self.folder + "/notify"}

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

    def await_silence(self, seconds):
        """Waits until nothing has come for so long."""
        self.notify.settimeout(seconds)
        end = time.monotonic() + DEADLINE
        try:
            while time.monotonic() < end:
                self.notify.recv(4096)
            self.fail("it does not stop to notify")
        except TimeoutError:
            self.notify.settimeout(DEADLINE)

    def test_lets_the_watchdog_starve_while_all_threads_of_a_plugin_are_in_calls_that_do_not_end(self):
        self.environment["WATCHDOG_USEC"] = "200000"  # half of it is the pause between two meals
        fifo, unix_socket = self.folder + "/fifo", self.folder + "/socket"
        os.mkfifo(fifo)
        self.start("--unix-socket", unix_socket, "--threads", "1", "--call-timeout", "0.2")
        self.await_state("WATCHDOG=1")
        params = {"fifo": fifo}
        while "no answer within" not in ask(unix_socket, "POST", "/", "hold", params):
            pass  # until the plug-in is bound
        self.assertIn('"status":"stuck"', ask(unix_socket, "GET", "/healthz"))
        self.await_silence(2)
        with open(fifo, "w"):
            pass  # the call ends
        self.await_state("WATCHDOG=1")

    def test_tells_of_a_reload(self):
        process = self.start("--listen", "127.0.0.1:0")
        self.await_state("READY=1")
        process.send_signal(signal.SIGHUP)
        self.await_state("RELOADING=1")
        self.await_state("READY=1")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
