# SPDX-License-Identifier: Apache-2.0
"""What a trial is given, and what it gives."""

import concurrent.futures
import dataclasses

LEAST_SCALE_WITH_USUAL_LEASE = 0.1


@dataclasses.dataclass
class Outcome:
    done: str
    seen: str
    good: bool  # None when it could not be tried


@dataclasses.dataclass
class Setting:
    programs: object
    scale: float
    times_count: bool  # whether what takes too long fails a trial
    progress: object  # progress(text)

    @property
    def silence(self):
        """Seconds after which a server that says nothing is not counted on any more: Cyclone's lease."""
        return 10 if self.scale >= LEAST_SCALE_WITH_USUAL_LEASE else 1

    @property
    def lease(self):
        """Seconds after which a process that was killed is forgotten by the others."""
        return 6 * self.silence

    def in_time(self, seconds, limit):
        return seconds <= limit or not self.times_count

    def count(self, full, least=1):
        return max(least, round(full * self.scale))

    def seconds(self, full, least=2.0):
        return max(least, full * self.scale)


def at_the_same_time(function, arguments):
    """What the function gives for each of them."""
    with concurrent.futures.ThreadPoolExecutor(len(arguments)) as pool:
        return list(pool.map(function, arguments))


def unaccounted(counts):
    """How many of a client's accepted calls did not end by exactly one reply or one failure that it was told of."""
    endings = sum(counts[name] for name in ('replied', 'given_up', 'server_lost', 'closed', 'other_failures'))
    return int(counts['silent'] + counts['excess'] + abs(counts['accepted'] - endings))


def add_counts(one, other):
    return {name: one[name] + other[name] for name in one}
