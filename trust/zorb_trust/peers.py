# SPDX-License-Identifier: Apache-2.0
"""The trust folder: the authority, the peers that it knows, and a folder for each with all that the peer needs."""

import collections
import json
import os
import pathlib
import re
import shutil

from zorb_trust import dates, documents, files, openssl
from zorb_trust.authority import Authority
from zorb_trust.configuration import CONFIGURATION, FILE_OF, Network, configuration
from zorb_trust.problem import Problem

# role: host, server or both; at: the folder where the peer keeps its files; serial: of its certificate.
Peer = collections.namedtuple("Peer", "name role at network serial")


class TrustFolder:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder).absolute()
        self.authority = Authority(self.folder)
        self._register = self.folder / "authority" / "peers.json"

    def create(self, organization, days):
        if not re.fullmatch(r"[A-Za-z0-9][A-Za-z0-9 ._-]{0,63}", organization):
            raise Problem("--name takes up to 64 letters, digits, blanks and . _ - , not '%s'" % organization)
        if self.folder.exists() and (not self.folder.is_dir() or any(self.folder.iterdir())):
            raise Problem("%s is there already; nothing is overwritten" % self.folder)
        is_new = not self.folder.exists()
        self.folder.mkdir(mode=0o700, parents=True, exist_ok=True)
        try:
            self.authority.create(organization, days)
            self._write_register({})
            (self.folder / "peers").mkdir()
        except BaseException:
            shutil.rmtree(self.folder / "authority", ignore_errors=True)
            if is_new:
                self.folder.rmdir()
            raise

    def folder_of(self, name):
        return self.folder / "peers" / name

    def peers(self):
        entries = json.loads(files.read_text(self._register))
        return {
            name: Peer(name, entry["role"], entry["at"], Network(**entry["network"]), entry["serial"])
            for name, entry in entries.items()
        }

    def peer(self, name):
        known = self.peers()
        if name not in known:
            raise Problem("no peer '%s' is known in %s (see: zorb-trust list %s)" % (name, self.folder, self.folder))
        return known[name]

    def add(self, name, role, at, network, days):
        _require_name(name)
        if name in self.peers() or self.folder_of(name).exists():
            raise Problem(
                "a peer '%s' is there already, in %s; nothing is overwritten (zorb-trust renew gives it a new key)"
                % (name, self.folder_of(name))
            )
        at = str(at or self.folder_of(name))
        if not at.startswith("/") or re.search(r"[\s$&<>\"']", at):
            raise Problem("--at takes the full path of a folder, without blanks and $ & < > \" ', not '%s'" % at)
        return self._equip(Peer(name, role, at, network, ""), days)

    def renew(self, name, days):
        """Gives it a new key, certificate and permissions; the old certificate is good until it expires."""
        return self._equip(self.peer(name), days)

    def revoke(self, name):
        """None of the certificates that were ever made for it is good any more."""
        valid = [one for one in self.authority.account() if one.name == name and not one.is_revoked]
        if not valid:
            raise Problem("no certificate of '%s' is left to revoke in %s" % (name, self.folder))
        for one in valid:
            self.authority.revoke(one.serial)
        self.authority.write_revoked()
        peers = self.peers()
        peers.pop(name, None)
        self._write_register(peers)
        shutil.rmtree(self.folder_of(name), ignore_errors=True)
        for other in peers:
            self._hand_out(self.authority.revoked, other, FILE_OF["CRL"])

    def _equip(self, peer, days):
        start, end = dates.period(days)
        end = min(end, self.authority.end())
        target = self.folder_of(peer.name)
        partial = target.with_name("." + peer.name + ".partial")
        shutil.rmtree(partial, ignore_errors=True)
        partial.mkdir(mode=0o700)
        try:
            self._fill(partial, peer, start, end)
            peer = peer._replace(serial=openssl.certificate(partial / FILE_OF["IdentityCertificate"]).serial)
            shutil.rmtree(target, ignore_errors=True)
            os.rename(partial, target)
        finally:
            shutil.rmtree(partial, ignore_errors=True)
        self._write_register({**self.peers(), peer.name: peer})
        return end

    def _fill(self, folder, peer, start, end):
        key, certificate = folder / FILE_OF["PrivateKey"], folder / FILE_OF["IdentityCertificate"]
        openssl.new_key(key)
        self.authority.issue(peer.name, key, certificate, start, end)
        self.authority.sign_permissions(
            openssl.certificate(certificate).subject, peer.role, start, end, folder / FILE_OF["Permissions"]
        )
        for source, name in (
            (self.authority.identity_ca, "IdentityCA"),
            (self.authority.permissions_ca, "PermissionsCA"),
            (self.authority.governance, "Governance"),
            (self.authority.revoked, "CRL"),
        ):
            files.write_text(folder / FILE_OF[name], files.read_text(source))
        files.write_text(folder / CONFIGURATION, configuration(peer.at, peer.network))

    def _hand_out(self, source, name, file):
        if self.folder_of(name).is_dir():
            files.write_text(self.folder_of(name) / file, files.read_text(source))

    def _write_register(self, peers):
        entries = {
            name: {"role": peer.role, "at": peer.at, "network": peer.network._asdict(), "serial": peer.serial}
            for name, peer in peers.items()
        }
        files.write_text(self._register, json.dumps(entries, indent=2) + "\n")


def _require_name(name):
    if not re.fullmatch(r"[A-Za-z0-9][A-Za-z0-9._-]{0,62}", name):
        raise Problem("a peer's name has up to 63 letters, digits and . _ - and begins with a letter or digit; not '%s'" % name)
