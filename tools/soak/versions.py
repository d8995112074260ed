# SPDX-License-Identifier: Apache-2.0
"""Client and server of different versions of an interface (tests/rmi/versions/)."""

from outcome import Outcome
from programs import Failure

ORIGINAL = {'first': 'long', 'second': 'long', 'third': 'long'}
VERSIONS = {
    'appended': {**ORIGINAL, 'fourth': 'long'},
    'inserted': {**ORIGINAL, 'between': 'long'},
    'removed': {'first': 'long', 'third': 'long'},
    'changed': {**ORIGINAL, 'second': 'string'},
}
RESULTS = {'first': 6, 'between': 15, 'second': 7, 'third': 8, 'fourth': 9}


def versions(setting):
    """19: client and server of different versions of an interface, both ways"""
    wrong = []
    for name, operations in VERSIONS.items():
        wrong += meet(setting, ('original', ORIGINAL), (name, operations))
        wrong += meet(setting, (name, operations), ('original', ORIGINAL))
    return Outcome(f'an interface and the same with an operation {", ".join(VERSIONS)}, each as client and as server',
                   '; '.join(wrong) or 'what both sides have worked, the rest failed alone and by its name', not wrong)


def meet(setting, caller, callee):
    """What was not as it should be."""
    names = f'{caller[0]} calls {callee[0]}'
    wrong = []
    with setting.programs.start(f'drill_meter_{callee[0]}', 'serve') as server:
        server.wait_for('serving')
        with setting.programs.start(f'drill_meter_{caller[0]}', 'call') as client:
            try:
                client.wait_for('done')
            except Failure as failure:
                return [f'{names}: {failure}']
            client.wait()
            said = client.said()
        server.expect_clean_end()
    for operation, argument in caller[1].items():
        answers = [line for line in said if line.startswith(operation + ' ')]
        if callee[1].get(operation) == argument:
            expected = [f'{operation} gave {RESULTS[operation]}'] * 2
            wrong += [] if answers == expected else [f'{names}: {answers}']
            continue
        for answer in answers:
            if not answer.startswith(f'{operation} threw BAD_PARAM') or answer.count(operation) < 2:
                wrong.append(f'{names}: {answer}')
        for side, log in (('client', client.errors()), ('server', server.errors())):
            if sum(operation in line for line in log.splitlines()) != 1:
                wrong.append(f'{names}: the {side} does not say once that "{operation}" is missing')
    return wrong
