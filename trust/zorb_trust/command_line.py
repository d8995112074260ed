# SPDX-License-Identifier: Apache-2.0
"""What a person types."""

import argparse
import os
import sys

from zorb_trust import dates, files, openssl
from zorb_trust.configuration import CONFIGURATION, network
from zorb_trust.documents import ROLES
from zorb_trust.inspection import Inspection
from zorb_trust.peers import TrustFolder
from zorb_trust.problem import Problem

PURPOSE = """Lets DDS peers (zorbd, varnelde) talk only to peers that you know. Makes an authority, and for each peer a key, a
certificate, signed permissions and a configuration of Cyclone DDS that uses them."""
EXIT_CODES = """Exit code: 0 done; 1 not done, or check has found errors; 2 wrong options. docs/security.md and zorb-trust(1) tell more."""


def main(arguments=None):
    options = _parser().parse_args(arguments)
    os.umask(0o077)
    try:
        return options.action(options) or 0
    except Problem as problem:
        print("zorb-trust: %s" % problem, file=sys.stderr)
    except OSError as error:
        print("zorb-trust: %s: %s" % (error.filename or "cannot go on", files.reason(error)), file=sys.stderr)
    return 1


def _parser():
    parser = argparse.ArgumentParser(prog="zorb-trust", description=PURPOSE, epilog=EXIT_CODES, allow_abbrev=False)
    commands = parser.add_subparsers(metavar="COMMAND", required=True)
    _add_init(commands)
    _add_add(commands)
    one = _command(commands, "list", _list, "tell the peers, what they may do and until when")
    one.add_argument("folder", metavar="FOLDER")
    one = _command(commands, "revoke", _revoke, "make all certificates of a peer worthless")
    _name_peer(one)
    one = _command(commands, "renew", _renew, "give a peer a new key, certificate and permissions")
    _name_peer(one)
    _add_days(one, 365)
    one = _command(commands, "check", _check, "tell what is wrong with a peer's configuration")
    one.add_argument("file", metavar="FILE", help="what CYCLONEDDS_URI names: a peer's %s" % CONFIGURATION)
    return parser


def _command(commands, name, action, purpose):
    command = commands.add_parser(name, help=purpose, description=purpose, allow_abbrev=False)
    command.set_defaults(action=action)
    return command


def _name_peer(command):
    command.add_argument("folder", metavar="FOLDER")
    command.add_argument("name", metavar="NAME")


def _add_days(command, days):
    command.add_argument("--days", type=_days, default=days, metavar="N", help="how long it is valid (default: %d)" % days)


def _days(text):
    if not text.isdigit() or not 1 <= int(text) <= 36500:
        raise argparse.ArgumentTypeError("takes a number of days from 1 on, not '%s'" % text)
    return int(text)


def _add_init(commands):
    one = _command(commands, "init", _init, "make an authority in a new folder")
    one.add_argument("folder", metavar="FOLDER")
    one.add_argument("--name", default="zorb", metavar="TEXT", help="organization in the certificates (default: zorb)")
    _add_days(one, 3650)


def _add_add(commands):
    one = _command(commands, "add", _add, "make a folder with all that a new peer needs")
    _name_peer(one)
    one.add_argument("--role", required=True, choices=ROLES, help="host: calls services (zorbd); server: offers them (varnelde)")
    one.add_argument("--at", metavar="PATH", help="folder where the peer will keep the files (default: where they are made)")
    one.add_argument("--interface", default="lo", metavar="NAME", help="network interface that DDS uses (default: lo)")
    one.add_argument(
        "--peer", action="append", default=[], metavar="ADDRESS", help="another peer's machine; multicast finds all when none is given"
    )
    one.add_argument("--domain", default="any", metavar="N", help="DDS domain that the configuration is for (default: any)")
    _add_days(one, 365)


def _init(options):
    dates.require_clock()
    trust = TrustFolder(options.folder)
    trust.create(options.name, options.days)
    print("The authority is in %s, valid until %s." % (trust.authority.folder, dates.day(trust.authority.end())))
    print("Its keys, which let in whoever they sign for:")
    for key in trust.authority.keys:
        print("  %s (mode %04o: %s alone may read it)" % (key, key.stat().st_mode & 0o777, _user()))
    print("Keep this folder on a machine of yours, with a copy in a safe place, and never on a device.")
    print("Next: zorb-trust add %s NAME --role host|server" % options.folder)


def _user():
    return "root" if os.getuid() == 0 else os.environ.get("USER", "user %d" % os.getuid())


def _add(options):
    chosen = network(options.interface, options.peer, options.domain)
    trust = _opened(options.folder)
    with files.locked(trust.folder):
        end = trust.add(options.name, options.role, options.at, chosen, options.days)
    print("%s may be a %s until %s." % (options.name, _role_text(options.role), dates.day(end)))
    _tell_where(trust, options.name)


def _role_text(role):
    return "host and a server" if role == "both" else role


def _tell_where(trust, name):
    peer = trust.peer(name)
    if str(trust.folder_of(name)) != peer.at:
        print("Copy %s to the peer as %s: the key %s stays readable by its user alone." % (trust.folder_of(name), peer.at, "identity.key"))
    print("Start it with: CYCLONEDDS_URI=file://%s/%s" % (peer.at, CONFIGURATION))


def _opened(folder):
    dates.require_clock()
    trust = TrustFolder(folder)
    trust.authority.require()
    return trust


def _list(options):
    trust = TrustFolder(options.folder)
    trust.authority.require()
    peers = trust.peers()
    time = dates.now()
    print("%-20s %-7s %-11s %s" % ("NAME", "ROLE", "UNTIL", "STATE"))
    for one in trust.authority.account():
        if one.name.endswith(" authority"):
            continue
        peer = peers.get(one.name)
        role = peer.role if peer else "-"
        print("%-20s %-7s %-11s %s" % (one.name, role, dates.day(one.end), _state(one, peer, time)))


def _state(issued, peer, time):
    if issued.is_revoked:
        return "revoked on %s" % dates.day(issued.revoked_at)
    if issued.end <= time:
        return "expired"
    if peer is None or peer.serial != issued.serial:
        return "replaced by a newer one, but good until it expires"
    if issued.end <= time + dates.SOON:
        return "expires soon: zorb-trust renew"
    return "valid"


def _revoke(options):
    trust = _opened(options.folder)
    with files.locked(trust.folder):
        trust.revoke(options.name)
        others = sorted(trust.peers())
    print("%s is revoked. The others refuse it once they have the new list and have been started again." % options.name)
    if others:
        print("Copy to each of them, then restart it:")
    for name in others:
        print("  %s/revoked.pem" % trust.folder_of(name))


def _renew(options):
    trust = _opened(options.folder)
    with files.locked(trust.folder):
        end = trust.renew(options.name, options.days)
    print("%s has a new key and certificate, valid until %s. The old one is good until it expires;" % (options.name, dates.day(end)))
    print("if somebody else may have it, revoke the peer and add it again instead.")
    _tell_where(trust, options.name)


def _check(options):
    found = Inspection(options.file)
    for text in found.warnings:
        print("warning: %s" % text)
    for text in found.errors:
        print("error: %s" % text)
    if found.errors:
        return 1
    print("%s: good; it is '%s' until %s" % (options.file, found.identity().subject, dates.day(found.identity().end)))
    return 0
