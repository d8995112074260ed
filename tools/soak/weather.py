# SPDX-License-Identifier: Apache-2.0
"""Networks that lose packets."""

import time

import network
from outcome import Outcome, add_counts, at_the_same_time, unaccounted
from programs import Failure, numbers


def ask(programs):
    with programs.client('ask') as asking:
        return numbers(asking.wait_for('runs='))


def lossy(setting):
    """14: a network that loses packets both ways"""
    duration = setting.seconds(30, 5)
    results = at_the_same_time(lambda percent: call_through_loss(setting, percent, duration), (5, 20))
    seen = [f'{percent} %: {counts["accepted"]:.0f} calls, {counts["replied"]:.0f} replied, {asked["runs"]:.0f} run, '
            f'{asked["repeats"]:.0f} of them again, {counts["disorder"]:.0f} after a later one, median '
            f'{counts["p50_us"] / 1000:.1f} ms' for percent, counts, asked in results]
    good = all(counts['replied'] == counts['accepted'] == asked['runs'] > 0 and counts['wrong'] == 0
               and asked['repeats'] == 0 and counts['disorder'] == 0 for _, counts, asked in results)
    return Outcome(f'{duration:.0f} s of calls while each packet is lost with 5 % and with 20 %, both ways',
                   '; '.join(seen), good)


def call_through_loss(setting, percent, duration):
    with network.hosts(2) as (far, near):
        for host in (far, near):
            host.lose(percent)
        with setting.programs.on(far).server() as server, setting.programs.on(near).bound_client(
                'load', '--window', 64) as client, setting.programs.on(near).client(
                'notes', '--calls', round(10 * duration), '--window', 64) as notes:
            time.sleep(duration)
            client.finish()
            counts = numbers(client.wait_for('done'))
            noted = numbers(notes.wait_for('done', 300))
            asked = ask(setting.programs.on(near))
            notes.wait()
            server.expect_clean_end()
    return percent, {**counts, 'disorder': asked['out_of_order'] + noted['disorder']}, asked


def one_way(setting):
    """14, 17: packets in one direction only are lost for a while"""
    cases = [(deaf, times * setting.silence) for deaf in ('client', 'server') for times in (2, 7.5)]
    results = at_the_same_time(lambda case: call_through_deafness(setting, *case), cases)
    seen, good = [], True
    for (deaf, seconds), (wait, counts, asked) in zip(cases, results):
        missing = unaccounted(counts)
        seen.append(f'{deaf} deaf for {seconds:.0f} s: calls again after {wait:.1f} s, {counts["accepted"]:.0f} accepted, '
                    f'{counts["replied"]:.0f} replied, {counts["server_lost"]:.0f} told that the server lost them, '
                    f'{counts["given_up"]:.0f} given up, {missing} without an outcome, '
                    f'{asked["repeats"]:.0f} run twice')
        good = good and setting.in_time(wait, 5) and missing == 0 and asked['repeats'] == 0 and counts['wrong'] == 0
    return Outcome('either side hears nothing for a while, under load', '; '.join(seen), good)


def call_through_deafness(setting, deaf, seconds):
    with network.hosts(2) as (far, near):
        local = setting.programs.on(near)
        with setting.programs.on(far).server() as server, local.bound_client(
                'load', '--window', 100_000, '--pause', 2000, '--timeout', 90_000) as load, local.bound_client(
                'obey') as pinger:
            time.sleep(2)
            before = numbers(load.ask('before', 'before'))
            if before['replied'] == 0:
                raise Failure('no call was answered before the network was disturbed')
            host = far if deaf == 'server' else near
            host.lose(100)
            time.sleep(seconds)
            host.lose(0)
            start = time.monotonic()
            pinger.ask('ping', 'pong', 90)
            wait = time.monotonic() - start
            load.finish(300)
            counts = add_counts(before, numbers(load.wait_for('done')))
            asked = ask(local)
            pinger.expect_clean_end()
            server.expect_clean_end()
    return wait, counts, asked
