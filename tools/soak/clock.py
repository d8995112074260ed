# SPDX-License-Identifier: Apache-2.0
"""A system clock that is stepped while calls run."""

import contextlib
import struct
import tempfile
import time

from outcome import Outcome, at_the_same_time, unaccounted
from programs import numbers

HOUR = 3600
TEN_YEARS = 10 * 365 * 24 * HOUR
STEPS = {'an hour forward': HOUR, 'an hour back': 0, '10 years forward': TEN_YEARS, '10 years back': 0}


class SteppedClock:
    """The system clock of the programs that have its environment (see tests/support/stepped_clock.cpp)."""

    def __init__(self, file, library):
        self._file = file
        self.environment = {'LD_PRELOAD': library, 'STEPPED_CLOCK': file.name}
        self.set(0)

    def set(self, seconds):
        self._file.seek(0)
        self._file.write(struct.pack('=i', seconds))
        self._file.flush()


def clock(setting):
    """20: the system clock of one side is stepped; after each step the server is killed and started again"""
    results = at_the_same_time(lambda side: step_clock_of(setting, side), ('client', 'server'))
    seen, good = [], True
    for side, (again, noticed, anew, counts, repeats) in zip(('client', 'server'), results):
        missing = unaccounted(counts)
        seen.append(f'{side}: calls again after {again:.1f} s, the end of a server noticed {noticed:.1f} s late, '
                    f'another one called after {anew:.1f} s, {missing} of {counts["accepted"]:.0f} calls without an '
                    f'outcome, {repeats} run twice')
        good = good and setting.in_time(max(again, anew), setting.silence + 2) and setting.in_time(noticed, 1) and missing == 0 and repeats == 0
    return Outcome(f'steps of {", ".join(STEPS)}, of the client\'s clock and of the server\'s; longest times', '; '.join(seen),
                   good)


def step_clock_of(setting, side):
    service = f'{side}-clock'

    def timed(client, order, answer):
        start = time.monotonic()
        client.ask(order, answer)
        return time.monotonic() - start

    with contextlib.ExitStack() as stack:
        file = stack.enter_context(tempfile.NamedTemporaryFile())
        stepped = SteppedClock(file, setting.programs.library('stepped_clock'))
        strange = setting.programs.having(stepped.environment)
        there, here = (setting.programs, strange) if side == 'client' else (strange, setting.programs)
        server = stack.enter_context(there.server('--service', service))
        load = stack.enter_context(here.bound_client('load', '--service', service, '--window', 100_000, '--pause', 2000))
        client = stack.enter_context(here.bound_client('obey', '--service', service))
        again, noticed, anew, repeats = [], [], [], 0
        for name, offset in STEPS.items():
            client.ask('ping', 'pong')
            stepped.set(offset)
            again.append(timed(client, 'ping', 'pong'))
            time.sleep(setting.seconds(3, 1))
            again.append(timed(client, 'ping', 'pong'))
            with there.client('ask', '--service', service) as asking:
                repeats += int(numbers(asking.wait_for('runs='))['repeats'])
            server.kill()
            time.sleep(setting.silence + 2)  # in which the client does nothing, so that nothing but a timer tells it
            noticed.append(timed(client, 'missing', 'missing'))
            server = stack.enter_context(there.server('--service', service))
            anew.append(timed(client, 'ping', 'pong'))
            setting.progress(f'{side}, {name}: calls {again[-2]:.1f} s, noticed {noticed[-1]:.1f} s late, anew {anew[-1]:.1f} s')
        load.finish()
        counts = numbers(load.wait_for('done'))
        client.expect_clean_end()
        server.expect_clean_end()
    return max(again), max(noticed), max(anew), counts, repeats
