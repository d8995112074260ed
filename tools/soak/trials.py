# SPDX-License-Identifier: Apache-2.0
"""What ./soak can do. Every trial gives what was done, what was seen, and whether that is good."""

import contextlib
import statistics
import time

from clock import clock
from crowd import crowd
from outcome import Outcome
from programs import CONTINUE, STOP, Failure, numbers
from queues import greedy, slow_server
from restarts import crash_loop
from versions import versions
from weather import lossy, one_way

def first_call(setting):
    """1: fresh processes call once right after binding, half of them started before the server"""
    together = 10
    rounds = setting.count(2000 / (2 * together))
    answered = 0

    def finish(clients):
        return sum(client.wait() == 0 for client in clients)

    def start(stack):
        return [stack.enter_context(setting.programs.client('once')) for _ in range(together)]

    for number in range(rounds):
        with contextlib.ExitStack() as stack:
            early = start(stack)
            for client in early:
                client.wait_for('looking')
            server = stack.enter_context(setting.programs.server())
            answered += finish(early)
            answered += finish(start(stack))
            server.expect_clean_end()
        setting.progress(f'{number + 1} of {rounds} servers, {answered} answered')
    total = rounds * 2 * together
    return Outcome(f'{total} fresh processes, half before the server', f'{answered} answered', answered == total)


def own_reply(setting):
    """2: eight processes of one proxy name and number call two instances of a service"""
    clients, instances = 8, (1, 2)
    calls = setting.count(100_000 / clients, 10)
    with contextlib.ExitStack() as stack:
        servers = [stack.enter_context(setting.programs.server('--instance', one)) for one in instances]
        running = [stack.enter_context(setting.programs.client(
            'flood', '--calls', calls, '--caller', caller, '--instance', instances[caller % 2]))
            for caller in range(clients)]
        good = sum(client.wait(3600) == 0 for client in running)
        counts = []
        for instance in instances:
            asking = stack.enter_context(setting.programs.client('ask', '--instance', instance))
            counts.append(numbers(asking.wait_for('runs=')))
        for server in servers:
            server.expect_clean_end()
    runs = [int(one['runs']) for one in counts]
    repeats = sum(int(one['repeats']) for one in counts)
    half = clients // 2 * calls
    return Outcome(f'{clients * calls} calls by {clients} clients to 2 instances',
                   f'{good} clients got all and only their own replies; runs {runs[0]} + {runs[1]}, repeated {repeats}',
                   good == clients and runs == [half, half] and repeats == 0)


def flat_cost(setting):
    """3: what a call costs the client while others are outstanding; the first of them piled up behind one"""
    repetitions = setting.count(5, 1)
    calls = setting.count(20_000, 500)
    amounts = sorted({1, 100, setting.count(10_000, 1000), setting.count(100_000, 2000)})
    costs = {amount: [] for amount in amounts}
    for number in range(repetitions):
        for amount in amounts:  # alternately, so that what else the machine does meets all of them
            with setting.programs.server() as server, setting.programs.client(
                    'cost', '--outstanding', amount, '--calls', calls, '--timeout', 600_000) as client:
                client.wait_for('loaded')
                server.tell('open')
                costs[amount].append(numbers(client.wait_for('cost_us', 1200))['cost_us'])
                if client.wait() != 0:
                    raise Failure(f'not all calls beside {amount} outstanding were answered')
                server.expect_clean_end()
        setting.progress(f'{number + 1} of {repetitions} repetitions')
    cost = {amount: statistics.median(costs[amount]) for amount in amounts}
    ratios = {amount: cost[amount] / cost[1] for amount in amounts}
    return Outcome(f'{calls} calls beside {", ".join(map(str, amounts))} outstanding, median of {repetitions}',
                   '; '.join(f'{amount}: {cost[amount]:.1f} us CPU ({ratios[amount]:.2f})'
                             for amount in amounts),
                   all(ratio <= 1.3 for ratio in ratios.values()))


def killed_server(setting):
    """4: the server is killed with requests outstanding, again and again; the client's memory"""
    requests = setting.count(10_000, 100)
    together = setting.count(6)  # after so many, all of the dead servers are waited to be forgotten
    rounds, resident, replied = (3 if setting.scale >= 1 else 2) * together, [], 0
    with contextlib.ExitStack() as stack:
        server = stack.enter_context(setting.programs.server())
        client = stack.enter_context(setting.programs.bound_client('obey', '--timeout', 3000))
        for number in range(rounds):
            client.ask('ping', 'pong')
            client.ask(f'hoard {requests}', 'hoarded')
            server.kill()
            replied += int(numbers(client.wait_for('released'))['replied'])
            server = stack.enter_context(setting.programs.server())
            setting.progress(f'{number + 1} of {rounds} servers killed')
            if number % together == together - 1:
                client.ask('ping', 'pong')
                time.sleep(setting.lease + 2)
                resident.append(client.resident_kib())
        client.expect_clean_end()
        server.expect_clean_end()
    growth = resident[-1] - resident[0]
    return Outcome(f'{rounds} servers killed with {requests} requests outstanding',
                   f'all ended, {replied} by a reply; resident {" KiB, ".join(map(str, resident))} KiB '
                   f'each time that {together} were given up and forgotten',
                   replied == 0 and growth <= 1024)


def stopped_server(setting):
    """4: the server is stopped (SIGSTOP) for 30 s under load, and goes on"""
    pause = setting.seconds(30)
    with setting.programs.server() as server, setting.programs.bound_client(
            'load', '--caller', 1, '--window', 100_000, '--pause', 200, '--timeout', 90_000) as client:
        time.sleep(2)
        client.ask('before', 'before')
        server.signal(STOP)
        time.sleep(pause)
        server.signal(CONTINUE)
        time.sleep(2)
        during = numbers(client.ask('during', 'during'))
        client.finish(600)
        rest = numbers(client.wait_for('done'))
        server.expect_clean_end()
    lost = int(during['given_up'] + rest['given_up'])
    return Outcome(f'stopped for {pause:.0f} s under load',
                   f'calls while stopped: {during["accepted"]:.0f} accepted, {during["timeouts"]:.0f} TIMEOUT, '
                   f'{during["not_found"]:.0f} SERVICE_NOT_FOUND; {lost} of the accepted without a reply',
                   lost == 0 and during['wrong'] + rest['wrong'] == 0)


def endpoints_kept_kib(setting):
    """What Cyclone keeps of the endpoints of one link that were made and deleted."""
    with setting.programs.start('drill_endpoints') as endpoints:
        return numbers(endpoints.wait_for('kept_kib'))['kept_kib']


def restarted_server(setting):
    """5: the server is killed and started again under load; the client is not"""
    together = setting.count(50, 2)  # after so many, all of the dead servers are waited to be forgotten
    cycles = 4 * together if setting.scale >= 1 else 2 * together
    waits, resident = [], []
    with contextlib.ExitStack() as stack:
        server = stack.enter_context(setting.programs.server())
        load = stack.enter_context(setting.programs.bound_client(
            'load', '--caller', 1, '--window', 64, '--pause', 1000, '--timeout', 2000))
        client = stack.enter_context(setting.programs.bound_client('obey'))
        for number in range(cycles):
            client.ask('ping', 'pong')
            server.kill()
            server = stack.enter_context(setting.programs.server())
            start = time.monotonic()
            client.ask('ping', 'pong')
            waits.append(time.monotonic() - start)
            load.ask('so far', 'so far')  # it then forgets the times that it has noted
            setting.progress(f'{number + 1} of {cycles} cycles, longest wait {max(waits):.2f} s')
            if number % together == together - 1:
                time.sleep(setting.lease + 2)
                resident.append(load.resident_kib())
        load.expect_clean_end()
        client.expect_clean_end()
        server.expect_clean_end()
    more_cycles = cycles - together
    growth = (resident[-1] - resident[0]) / more_cycles
    bare = endpoints_kept_kib(setting)
    allowed = 2 * bare + 512 / more_cycles  # the heap's own ups and downs
    return Outcome(f'{cycles} cycles of kill and restart under load',
                   f'answered again after {statistics.median(waits):.2f} s (median), {max(waits):.2f} s (longest); '
                   f'resident {resident[0]} KiB after {together}, {resident[-1]} KiB at the end: {growth:.1f} KiB a cycle, '
                   f'where Cyclone alone keeps {bare:.1f} KiB of a link\'s endpoints',
                   setting.in_time(max(waits), 2) and growth <= allowed)


def unload(setting):
    """6, 7: a library is loaded, binds, calls without waiting, and is unloaded; clients overlap in half"""
    cycles = setting.count(1000, 10)
    with setting.programs.server() as server, setting.programs.start(
            'drill_unloader', '--cycles', cycles, setting.programs.library('drill_plugin')) as unloader:
        code = unloader.wait(7200)
        server.expect_clean_end()
    return Outcome(f'{cycles} cycles of load, bind, call, delete, unload',
                   'no crash, the other client went on' if code == 0 else f'code {code}: {unloader.errors()[-300:]}',
                   code == 0)


def throwing(setting):
    """8: reply hooks and implementations that throw"""
    calls = setting.count(10_000, 100)
    with setting.programs.server() as server, setting.programs.bound_client('obey', '--timeout', 2000) as client:
        thrown = numbers(client.ask(f'throw {calls}', 'thrown'))
        failed = numbers(client.ask(f'fail {calls}', 'failed'))
        client.ask('ping', 'pong')
        client.expect_clean_end()
        server.expect_clean_end()
    return Outcome(f'{calls} hooks and {calls} implementations that throw',
                   f'{thrown["replied"]:.0f} hooks called, {failed["replied"]:.0f} replies of failed calls, '
                   'the next call answered',
                   thrown['replied'] == calls and failed['replied'] == 0)


def hostile(setting):
    """9: mangled, random and foreign samples on the request and reply topics"""
    duration = setting.seconds(300, 5)
    samples, rounds = 500, 0
    kinds = 2 * 5 + 2 + 3 + 1  # topics times sizes, other types, odd requests, odd replies
    with setting.programs.server() as server, setting.programs.bound_client(
            'load', '--caller', 1, '--pause', 1000) as client:
        end = time.monotonic() + duration
        while time.monotonic() < end:
            with setting.programs.start('drill_intruder', '--count', samples, '--seed', rounds + 1, 'noise') as intruder:
                intruder.wait_for('done')
                intruder.expect_clean_end()
            rounds += 1
            setting.progress(f'{rounds * samples * kinds} samples')
        client.finish()
        result = numbers(client.wait_for('done'))
        server.expect_clean_end()
    return Outcome(f'{rounds * samples * kinds} hostile samples in {duration:.0f} s',
                   f'{result["replied"]:.0f} of {result["accepted"]:.0f} calls answered, {result["wrong"]:.0f} wrong',
                   result['replied'] == result['accepted'] and result['wrong'] == 0)


def many_threads(setting):
    """10: sixteen threads on one proxy"""
    threads = 16
    calls = setting.count(1_000_000 / threads, 100)
    with setting.programs.server() as server, setting.programs.client(
            'flood', '--threads', threads, '--calls', calls, '--window', 16, '--timeout', 600_000) as client:
        code = client.wait(7200)
        with setting.programs.client('ask') as asking:
            asked = numbers(asking.wait_for('runs='))
        server.expect_clean_end()
    return Outcome(f'{threads * calls} calls on {threads} threads',
                   f'{asked["runs"]:.0f} run, {asked["repeats"]:.0f} repeated, every reply '
                   + ('once and right' if code == 0 else f'NOT right: {client.errors()[-300:]}'),
                   code == 0 and asked['runs'] == threads * calls and asked['repeats'] == 0)


def other_clients(setting):
    """11, 12: one of five clients is killed, then one stopped for 30 s; what the others see"""
    phase = setting.seconds(30, 5)
    lost, tails = 0, []

    def measure(clients, seconds):
        nonlocal lost
        for client in clients:
            client.ask('from here', 'from here')
        time.sleep(seconds)
        results = [numbers(client.ask('to here', 'to here')) for client in clients]
        lost += sum(int(one['given_up'] + one['timeouts'] + one['not_found'] + one['wrong']) for one in results)
        tails.append(statistics.median(one['p99_us'] for one in results))

    with contextlib.ExitStack() as stack:
        server = stack.enter_context(setting.programs.server())
        clients = [stack.enter_context(setting.programs.bound_client(
            'load', '--caller', caller, '--window', 16, '--pause', 500)) for caller in range(1, 6)]
        measure(clients[:3], phase)
        before = server.resident_kib()
        clients[4].kill()
        setting.progress('one killed')
        measure(clients[:3], phase)
        clients[3].signal(STOP)
        setting.progress('one stopped')
        measure(clients[:3], phase)
        clients[3].signal(CONTINUE)
        time.sleep(setting.lease + 2)
        after = server.resident_kib()
        for client in clients[:4]:
            client.finish()
        ends = [numbers(client.wait_for('done')) for client in clients[:3]]
        lost += sum(int(one['given_up'] + one['wrong']) for one in ends)
        server.expect_clean_end()
    worst = max(tails[1:]) / tails[0]
    return Outcome(f'5 clients under load, one killed, one stopped for {phase:.0f} s',
                   f'the others lost {lost}; p99 {tails[0]:.0f} us before, {tails[1]:.0f} us with one killed, '
                   f'{tails[2]:.0f} us with one stopped ({worst:.2f}); server resident {before} KiB before, '
                   f'{after} KiB after',
                   lost == 0 and setting.in_time(worst, 2) and after - before <= 1024)


ALL = {
    'first-call': first_call,
    'own-reply': own_reply,
    'flat-cost': flat_cost,
    'killed-server': killed_server,
    'stopped-server': stopped_server,
    'restarted-server': restarted_server,
    'unload': unload,
    'throwing': throwing,
    'hostile': hostile,
    'many-threads': many_threads,
    'other-clients': other_clients,
    'crowd': crowd,
    'slow-server': slow_server,
    'greedy': greedy,
    'lossy': lossy,
    'one-way': one_way,
    'clock': clock,
    'versions': versions,
    'crash-loop': crash_loop,
}
