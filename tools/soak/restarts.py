# SPDX-License-Identifier: Apache-2.0
"""A server that ends and starts again all the time."""

import contextlib
import time

import network
from outcome import Outcome, at_the_same_time
from programs import numbers

CYCLE = 0.5  # seconds


class Layer:
    def __init__(self, programs):
        self._programs = programs

    def server(self):
        return self._programs.server()

    def client(self):
        return self._programs.bound_client('load', '--window', 64, '--pause', 1000, '--timeout', 2000)


class Bare:
    """The same on Cyclone alone."""

    def __init__(self, programs):
        self._programs = programs
        self._lease = 6 * programs.lease

    def server(self):
        server = self._programs.start('drill_bare', 'server', '--lease', self._lease)
        server.wait_for('serving')
        return server

    def client(self):
        client = self._programs.start('drill_bare', 'client', '--lease', self._lease, '--pause', 1000)
        client.wait_for('bound')
        return client


def crash_loop(setting):
    """14, 22: the server is killed and started again every half a second, under load; the same on Cyclone alone"""
    cycles = setting.count(200, 10)
    ours, bare = at_the_same_time(lambda kind: restart_all_the_time(setting, kind, cycles), (Layer, Bare))
    return Outcome(f'{cycles} restarts of the server under load, one every {CYCLE} s',
                   f'client from {ours[0]} to {ours[1]} KiB, on Cyclone alone from {bare[0]} to {bare[1]} KiB; a fresh '
                   f'server {ours[2]} KiB, at the end {ours[3]} KiB; on Cyclone alone {bare[2]} and {bare[3]} KiB',
                   ours[1] - ours[0] <= 2 * (bare[1] - bare[0]) + 1024 and
                   ours[3] - ours[2] <= 2 * (bare[3] - bare[2]) + 1024)


def restart_all_the_time(setting, kind, cycles):
    """What client and server have in memory at the beginning and at the end."""
    with network.hosts(1) as (host,), contextlib.ExitStack() as stack:
        programs = kind(setting.programs.on(host))
        server = stack.enter_context(programs.server())
        client = stack.enter_context(programs.client())
        await_answers(client)
        resident = [client.resident_kib(), server.resident_kib()]
        for number in range(cycles):
            start = time.monotonic()
            server.kill()
            server = stack.enter_context(programs.server())
            await_answers(client)
            if number % 50 == 49:
                setting.progress(f'{kind.__name__}: {number + 1} of {cycles} restarts')
            time.sleep(max(0.0, start + CYCLE - time.monotonic()))
        time.sleep(1)
        resident += [client.resident_kib(), server.resident_kib()]
        client.expect_clean_end()
        server.expect_clean_end()
    return resident[0], resident[2], resident[1], resident[3]


def await_answers(client):
    client.ask('forget those before', 'forget those before')
    while numbers(client.ask('so far', 'so far'))['replied'] == 0:
        time.sleep(0.02)
