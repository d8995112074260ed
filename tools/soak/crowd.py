# SPDX-License-Identifier: Apache-2.0
"""Many clients, each on a host of its own, beside as many on Cyclone alone."""

import contextlib
import dataclasses
import statistics
import time

import network
from outcome import Outcome
from programs import PATIENCE, numbers

SIZES = (1, 10, 30, 60, 90)
MOST_BIND_MS = 10_000
MOST_PACKETS = 1.5  # times those of Cyclone alone
MOST_PACKETS_WHEN_BUSY = 2  # on a machine that gives one of the two more time than the other
PAUSE_US = 250_000  # between two calls of a client
LEASE = 10  # seconds, also in a quick look: how often a client asks for its server counts among the packets
ANSWER_PATIENCE = 5  # seconds
SETTLING = 3  # seconds until discovery has come to rest; less in a quick look


@dataclasses.dataclass
class Seen:
    bound_ms: float
    late: int  # clients that were not bound in time, or whose first call was not answered
    packets: int
    p99_us: float
    server_kib: int
    client_kib: int


def crowd(setting):
    """11, 13, 21: hosts that come one after the other, and all at the same instant, beside Cyclone alone"""
    sizes = SIZES if setting.scale >= 1 else [10]
    setting = dataclasses.replace(setting, programs=setting.programs.having({}))
    setting.programs.lease = LEASE
    most = MOST_PACKETS if setting.times_count else MOST_PACKETS_WHEN_BUSY
    seen, good = [], True
    with network.hosts(sizes[-1] + 1) as hosts:
        for size in sizes:
            for together in (False, True):
                bare, ours = (gather(setting, hosts[:size + 1], kind, together) for kind in (Bare, Layer))
                how = 'at once' if together else 'in turn'
                seen.append(f'{size} {how}: {describe(ours, bare)}')
                setting.progress(seen[-1])
                good = good and ours.late == 0 and ours.packets <= most * bare.packets
    return Outcome(f'{", ".join(map(str, sizes))} clients on hosts of their own', '; '.join(seen), good)


def describe(ours, bare):
    return (f'{ours.late} late, slowest bound after {ours.bound_ms:.0f} ms ({bare.bound_ms:.0f}), {ours.packets} packets '
            f'({ours.packets / bare.packets:.2f}), p99 {ours.p99_us:.0f} us ({ours.p99_us / max(1.0, bare.p99_us):.2f}), server '
            f'{ours.server_kib} KiB ({bare.server_kib}), client {ours.client_kib} KiB ({bare.client_kib})')


class Layer:
    @staticmethod
    def server(programs):
        return programs.server()

    @staticmethod
    def client(programs):
        return programs.client('load', '--window', 1, '--pause', PAUSE_US)


class Bare:
    @staticmethod
    def server(programs):
        server = programs.start('drill_bare', 'server', '--lease', 6 * programs.lease)
        server.wait_for('serving')
        return server

    @staticmethod
    def client(programs):
        return programs.start('drill_bare', 'client', '--lease', 6 * programs.lease, '--pause', PAUSE_US)


def gather(setting, hosts, kind, together):
    with contextlib.ExitStack() as stack:
        server = stack.enter_context(kind.server(setting.programs.on(hosts[0])))
        before = sum(host.packets() for host in hosts)
        clients, bound = [], []
        for host in hosts[1:]:
            clients.append(stack.enter_context(kind.client(setting.programs.on(host))))
            if not together:
                bound.append(wait_until_bound(clients[-1]))
        if together:
            bound = [wait_until_bound(client) for client in clients]
        patience = ANSWER_PATIENCE if setting.times_count else PATIENCE
        late = sum(not (setting.in_time(ms, MOST_BIND_MS) and is_answered(client, patience))
                   for ms, client in zip(bound, clients))
        time.sleep(setting.seconds(SETTLING, 1))
        packets = sum(host.packets() for host in hosts) - before
        p99 = tail_of_calls(clients, setting.seconds(5, 1))
        memory = server.resident_kib(), statistics.median(client.resident_kib() for client in clients)
        for client in clients:
            client.close()
        for client in clients:
            client.wait()
        server.expect_clean_end()
    return Seen(max(bound), late, packets, p99, memory[0], int(memory[1]))


def wait_until_bound(client):
    return numbers(client.wait_for('bound'))['ms']


def is_answered(client, patience):
    deadline = time.monotonic() + patience
    while time.monotonic() < deadline:
        if numbers(client.ask('so far', 'so far'))['replied'] > 0:
            return True
        time.sleep(0.1)
    return False


def tail_of_calls(clients, seconds):
    for client in clients:
        client.ask('from here', 'from here')
    time.sleep(seconds)
    return statistics.median(numbers(client.ask('to here', 'to here'))['p99_us'] for client in clients)
