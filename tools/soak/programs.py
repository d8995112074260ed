# SPDX-License-Identifier: Apache-2.0
"""The processes that the trials run."""

import collections
import copy
import os
import queue
import re
import signal
import subprocess
import threading
import time

PATIENCE = 120  # seconds to wait for what must come


class Failure(Exception):
    """A trial cannot go on."""


class Unavailable(Exception):
    """This machine, or this user, cannot do what a trial needs."""


class Program:
    """A child process with its output read line by line. Use it in a with statement: it is killed at the end."""

    def __init__(self, command, prefix=(), environment=None):
        """The prefix is another program's command that becomes this one."""
        self._command = command
        self._process = subprocess.Popen([*prefix, *command], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=subprocess.PIPE, text=True, bufsize=1,
                                         env=environment)
        self._lines = queue.Queue()
        self._errors = collections.deque(maxlen=50)  # the last lines of standard error
        self._said = collections.deque(maxlen=50)
        self._threads = [threading.Thread(target=self._read_output, daemon=True),
                         threading.Thread(target=self._read_errors, daemon=True)]
        for thread in self._threads:
            thread.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self._process.poll() is None:
            self._process.kill()
        self._process.wait()

    def _read_output(self):
        for line in self._process.stdout:
            self._lines.put(line.rstrip('\n'))
        self._lines.put(None)

    def _read_errors(self):
        for line in self._process.stderr:
            self._errors.append(line.rstrip('\n'))

    def _name(self):
        return os.path.basename(self._command[0])

    def errors(self):
        return '\n'.join(self._errors)

    def said(self):
        """The last lines of output that a wait has passed over or found."""
        return list(self._said)

    def wait_for(self, text, patience=PATIENCE):
        """The next line of output that contains the text."""
        deadline = time.monotonic() + patience
        while True:
            try:
                line = self._lines.get(timeout=max(0.0, deadline - time.monotonic()))
            except queue.Empty:
                raise Failure(f'{self._name()} did not say "{text}" within {patience} s') from None
            if line is None:
                raise Failure(f'{self._name()} ended before it said "{text}": {self.errors()}')
            self._said.append(line)
            if text in line:
                return line

    def tell(self, line):
        self._process.stdin.write(line + '\n')
        self._process.stdin.flush()

    def ask(self, line, answer, patience=PATIENCE):
        self.tell(line)
        return self.wait_for(answer, patience)

    def signal(self, number):
        self._process.send_signal(number)

    def kill(self):
        self._process.kill()
        self._process.wait()

    def close(self):
        """Its input, at which it ends."""
        self._process.stdin.close()

    def finish(self, patience=PATIENCE):
        """Closes its input and gives its exit code."""
        self.close()
        return self.wait(patience)

    def wait(self, patience=PATIENCE):
        try:
            code = self._process.wait(timeout=patience)
        except subprocess.TimeoutExpired:
            raise Failure(f'{self._name()} did not end within {patience} s') from None
        for thread in self._threads:
            thread.join(timeout=10)
        return code

    def expect_clean_end(self, patience=PATIENCE):
        code = self.finish(patience)
        if code != 0:
            raise Failure(f'{self._name()} ended with code {code}: {self.errors()}')

    def resident_kib(self):
        return self._memory_kib('VmRSS')

    def most_resident_kib(self):
        """That it has ever had."""
        return self._memory_kib('VmHWM')

    def _memory_kib(self, field):
        with open(f'/proc/{self._process.pid}/status', encoding='ascii') as status:
            return int(re.search(field + r':\s+(\d+)', status.read()).group(1))


class Programs:
    """Starts the programs of one build."""

    def __init__(self, bin_folder, lib_folder):
        self._bin = bin_folder
        self._lib = lib_folder
        self._prefix = []
        self._environment = {}
        self.lease = 10  # seconds, Cyclone's own

    def library(self, name):
        return os.path.abspath(os.path.join(self._lib, f'lib{name}.so'))

    def on(self, host):
        """Starts them on that host of a network."""
        return self.having(host.environment, host.prefix)

    def having(self, environment, prefix=()):
        """Starts them with that in their environment, too."""
        others = copy.copy(self)
        others._prefix = [*self._prefix, *prefix]
        others._environment = {**self._environment, **environment}
        return others

    def start(self, name, *arguments):
        environment = {**os.environ, **self._environment}
        environment['CYCLONEDDS_URI'] += f',<Discovery><LeaseDuration>{self.lease}s</LeaseDuration></Discovery>'
        return Program([os.path.join(self._bin, name), *map(str, arguments)], self._prefix, environment)

    def server(self, *arguments):
        """Returns when it serves."""
        server = self.start('drill_server', *arguments)
        server.wait_for('serving')
        return server

    def client(self, *arguments):
        return self.start('drill_client', *arguments)

    def bound_client(self, *arguments):
        client = self.client(*arguments)
        client.wait_for('bound')
        return client


def numbers(line):
    """The counts of a line such as "done accepted=3 p50_us=7.5"."""
    return {name: float(value) for name, value in re.findall(r'(\w+)=([\d.]+)', line)}


STOP, CONTINUE = signal.SIGSTOP, signal.SIGCONT
