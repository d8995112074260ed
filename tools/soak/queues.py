# SPDX-License-Identifier: Apache-2.0
"""Servers that are given more than they can do."""

import contextlib
import time

from outcome import Outcome
from programs import numbers

OPERATION_MS = 100


def slow_server(setting):
    """15, 16: a client queues calls that take 100 ms each, another one comes, the first is killed"""
    calls = setting.count(50_000, 500)
    with setting.programs.server() as server:
        with setting.programs.bound_client('obey', '--timeout', 600_000) as first:
            queued = int(numbers(first.ask(f'queue {calls} {OPERATION_MS}', 'queued'))['accepted'])
            with setting.programs.client('obey') as second:
                bound = numbers(second.wait_for('bound'))['ms']
                turns = [numbers(second.ask('echo', 'echoed'))['ms'] for _ in range(setting.count(20, 5))]
                second.expect_clean_end()
            first.kill()
        time.sleep(setting.lease + 2)
        run = []
        for pause in (1, 0):
            with setting.programs.client('ask') as asking:
                run.append(int(numbers(asking.wait_for('worked='))['worked']))
            time.sleep(pause)
        server.expect_clean_end()
    return Outcome(f'{queued} of {calls} calls of {OPERATION_MS} ms queued by one client, which is killed later',
                   f'another one bound after {bound:.0f} ms; its calls took {max(turns):.0f} ms at most; of the dead '
                   f'one\'s calls {run[0]} were run, {run[1] - run[0]} of them after {setting.lease} s',
                   setting.in_time(bound, 1000) and setting.in_time(max(turns), 2.5 * OPERATION_MS) and run[0] == run[1])


def greedy(setting):
    """16: calls of 1 MB far beyond the limit, at a server that answers none of them until all have been made"""
    clients, calls, limit_mib, more_mib = 6, setting.count(1500, 40), max(8, round(256 * setting.scale)), 64
    options = ('--queue-mib', limit_mib) if setting.scale < 1 else ()  # the layer's own otherwise
    with contextlib.ExitStack() as stack:
        server = stack.enter_context(setting.programs.server(*options))
        hoarders = [stack.enter_context(setting.programs.bound_client('obey', '--timeout', 600_000))
                    for _ in range(clients)]
        for one in hoarders:
            one.tell(f'hoard {calls} 1000000')
        hoarded = [numbers(one.wait_for('hoarded', 600)) for one in hoarders]
        most = server.most_resident_kib() / 1024
        server.tell('open')
        released = [numbers(one.wait_for('released')) for one in hoarders]
        for one in hoarders:
            one.expect_clean_end()
        server.expect_clean_end()
    accepted, refused = (int(sum(one[name] for one in hoarded)) for name in ('accepted', 'timeouts'))
    replied, wrong = (int(sum(one[name] for one in released)) for name in ('replied', 'wrong'))
    return Outcome(f'{clients} clients offer {calls} calls of 1 MB each, limit {limit_mib} MiB',
                   f'{accepted} accepted, then {refused} TIMEOUT; server {most:.0f} MiB resident at most; '
                   f'{replied} replied, {wrong} wrong',
                   refused > 0 and most <= limit_mib + more_mib and replied == accepted and wrong == 0)
