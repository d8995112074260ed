# SPDX-License-Identifier: Apache-2.0
"""Hosts of a network of their own: network namespaces on one switch, which lose packets when told to."""

import contextlib
import itertools
import os
import pathlib
import re
import subprocess

from programs import Unavailable

DEVICE = 'cable'  # of every host
PREFIX = 'varnel-soak-'  # of the names of namespaces; then comes the number of the process that made it
_names = (f'{PREFIX}{os.getpid()}-{number}' for number in itertools.count())


def _run(*command, text=None):
    try:
        done = subprocess.run(command, input=text, capture_output=True, text=True, check=False)
    except FileNotFoundError:
        raise Unavailable(f'{command[0]} is not installed; ./check installs it') from None
    if done.returncode != 0:
        raise Unavailable(f'{" ".join(command)}: {done.stderr.strip() or "failed"} (it takes root)')


# As the README has it for machines with multicast between them.
CONFIGURATION = ('<CycloneDDS><Domain Id="any"><General><Interfaces>'
                 f'<NetworkInterface name="{DEVICE}"/></Interfaces></General>'
                 '<Discovery><SPDPInterval>2s</SPDPInterval></Discovery></Domain></CycloneDDS>')


class Host:
    """Programs run in it with `prefix` before their command and `environment` in theirs."""

    def __init__(self, name):
        self._name = name
        self.prefix = ['ip', 'netns', 'exec', name]
        self.environment = {'CYCLONEDDS_URI': CONFIGURATION}

    def lose(self, percent):
        """Of the packets that arrive, from now on; 100 makes it deaf."""
        rule = f'numgen random mod 1000 < {round(percent * 10)} ' if percent < 100 else ''
        self._filter(f'meta l4proto udp {rule}counter drop' if percent > 0 else '')

    def _filter(self, rule):
        _run(*self.prefix, 'nft', '-f', '-', text=f'''
            table netdev weather
            delete table netdev weather
            table netdev weather {{
                chain arriving {{
                    type filter hook ingress device "{DEVICE}" priority 0; policy accept;
                    {rule}
                }}
            }}
            ''')

    def packets(self):
        """How many datagrams its programs have sent so far."""
        table = subprocess.run([*self.prefix, 'cat', '/proc/net/snmp'], capture_output=True, text=True, check=True)
        names, values = re.findall(r'^Udp: (.*)$', table.stdout, re.M)
        return int(values.split()[names.split().index('OutDatagrams')])


def _delete(name):
    subprocess.run(['ip', 'netns', 'delete', name], capture_output=True, check=False)


def _delete_what_killed_runs_have_left():
    for namespace in pathlib.Path('/run/netns').glob(PREFIX + '*'):
        if not pathlib.Path('/proc', namespace.name.removeprefix(PREFIX).split('-')[0]).exists():
            _delete(namespace.name)


@contextlib.contextmanager
def hosts(count):
    """So many of them; they end with the with statement, after all that runs in them."""
    switch = next(_names)
    made = []

    def address(number):
        return f'10.99.8.{number}'

    def hardware_address(number):
        return f'02:00:0a:63:08:{number:02x}'

    def make(name):
        _run('ip', 'netns', 'add', name)
        made.append(name)
        _run('ip', '-netns', name, 'link', 'set', 'lo', 'up')

    def connect(number, name):
        make(name)
        port = f'port{number}'
        _run('ip', '-netns', switch, 'link', 'add', port, 'type', 'veth', 'peer', 'name', DEVICE,
             'address', hardware_address(number), 'netns', name)
        _run('ip', '-netns', switch, 'link', 'set', port, 'master', 'bridge', 'up')
        _run('ip', '-netns', name, 'address', 'add', f'{address(number)}/24', 'dev', DEVICE)
        _run('ip', '-netns', name, 'link', 'set', DEVICE, 'up')
        # The kernel's table of neighbours, one for all namespaces, is too small for a hundred hosts that know each other.
        _run('ip', '-netns', name, '-batch', '-', text=''.join(
            f'neigh add {address(other)} lladdr {hardware_address(other)} nud permanent dev {DEVICE}\n'
            for other in range(1, count + 1) if other != number))
        return Host(name)

    _delete_what_killed_runs_have_left()
    try:
        make(switch)
        _run('ip', '-netns', switch, 'link', 'add', 'bridge', 'type', 'bridge')
        _run('ip', '-netns', switch, 'link', 'set', 'bridge', 'up')
        yield [connect(number, next(_names)) for number in range(1, count + 1)]
    finally:
        for name in reversed(made):
            _delete(name)
