# SPDX-License-Identifier: Apache-2.0
"""Runs trials and prints their table. To be called by ./soak, which builds and sets the DDS domain up."""

import argparse
import sys
import time

import trials
from outcome import Outcome, Setting
from programs import Failure, Programs, Unavailable

RESULTS = {True: 'pass', False: 'FAIL', None: 'left out'}
LEFT_OUT = 77
LEAST_SCALE_WITH_TIME_LIMITS = 0.1


def parse(arguments):
    parser = argparse.ArgumentParser(prog='./soak')
    parser.add_argument('--bin')
    parser.add_argument('--lib')
    parser.add_argument('--scale', type=float, default=1.0)
    parser.add_argument('--no-time-limits', action='store_true')
    parser.add_argument('--list', action='store_true')
    parser.add_argument('--check', action='store_true')
    parser.add_argument('trials', nargs='*')
    return parser.parse_args(arguments)


def list_trials():
    for name, trial in trials.ALL.items():
        print(f'{name:18}{trial.__doc__}')


def unknown(names):
    for name in names:
        if name not in trials.ALL:
            print(f"soak: no trial '{name}'; see ./soak --list", file=sys.stderr)
            return True
    return False


def show_progress(text):
    print(f'   {time.strftime("%H:%M:%S")} {text}', file=sys.stderr, flush=True)


def run(name, setting):
    trial = trials.ALL[name]
    show_progress(f'{name}: {trial.__doc__}')
    start = time.monotonic()
    try:
        outcome = trial(setting)
    except Failure as failure:
        outcome = Outcome('', f'broken off: {failure}', False)
    except Unavailable as obstacle:
        outcome = Outcome('', f'not possible here: {obstacle}', None)
    show_progress(f'{name}: {RESULTS[outcome.good]}: {outcome.seen}')
    return outcome, time.monotonic() - start


def print_table(results):
    print('| trial | point | what was done | what was seen | seconds | result |')
    print('|---|---|---|---|---|---|')
    for name, (outcome, seconds) in results.items():
        point, purpose = trials.ALL[name].__doc__.split(':', 1)
        print(f'| {name} | {point} | {outcome.done or purpose.strip()} | {" ".join(outcome.seen.split())} '
              f'| {seconds:.0f} | {RESULTS[outcome.good]} |')


def main():
    options = parse(sys.argv[1:])
    if options.list:
        list_trials()
        return 0
    if unknown(options.trials):
        return 2
    if options.check:
        return 0
    times_count = options.scale >= LEAST_SCALE_WITH_TIME_LIMITS and not options.no_time_limits
    setting = Setting(Programs(options.bin, options.lib), options.scale, times_count, show_progress)
    setting.programs.lease = setting.silence
    results = {name: run(name, setting) for name in options.trials or trials.ALL}
    print_table(results)
    outcomes = {outcome.good for outcome, _ in results.values()}
    return 1 if False in outcomes else LEFT_OUT if None in outcomes else 0


sys.exit(main())
