#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The command zorb-trust: what it makes, what it refuses, what it finds wrong.

usage: zorb_trust_test.py <zorb-trust> [test...]
"""

import os
import pathlib
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest

COMMAND = pathlib.Path(sys.argv.pop(1)).resolve() if len(sys.argv) > 1 else None


def trust(*arguments):
    words = [sys.executable, str(COMMAND), *[str(one) for one in arguments]]
    return subprocess.run(words, capture_output=True, text=True, check=False, timeout=120)


def mode(path):
    return stat.S_IMODE(os.stat(path).st_mode)


class WithFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="varnel-test-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "trust"

    def done(self, *arguments):
        result = trust(*arguments)
        self.assertEqual(result.returncode, 0, result.stderr + result.stdout)
        return result.stdout

    def refused(self, *arguments, code=1):
        result = trust(*arguments)
        self.assertEqual(result.returncode, code, result.stderr + result.stdout)
        self.assertNotIn("Traceback", result.stderr)
        return result.stderr


class Init(WithFolder):
    def test_says_where_the_keys_lie_and_who_may_read_them(self):
        said = self.done("init", self.folder)

        for name in ("identity_ca.key", "permissions_ca.key"):
            key = self.folder / "authority" / name
            self.assertIn("%s (mode 0600:" % key, said)
            self.assertEqual(mode(key), 0o600)

    def test_overwrites_nothing(self):
        self.done("init", self.folder)
        before = (self.folder / "authority" / "identity_ca.key").read_bytes()

        self.assertIn("nothing is overwritten", self.refused("init", self.folder))

        self.assertEqual((self.folder / "authority" / "identity_ca.key").read_bytes(), before)

    def test_refuses_dates_beyond_32_bits(self):
        self.assertIn("32-bit", self.refused("init", self.folder, "--days", "20000"))
        self.assertFalse(self.folder.exists())

    def test_refuses_a_folder_that_cannot_be_made(self):
        self.folder.write_text("a file")

        self.assertIn(str(self.folder), self.refused("init", self.folder))


class WithAuthority(WithFolder):
    @classmethod
    def setUpClass(cls):
        cls.made = tempfile.TemporaryDirectory(prefix="varnel-test-")
        cls.addClassCleanup(cls.made.cleanup)
        trust("init", pathlib.Path(cls.made.name) / "trust")

    def setUp(self):
        super().setUp()
        shutil.copytree(pathlib.Path(self.made.name) / "trust", self.folder)

    def peer(self, name):
        return self.folder / "peers" / name

    def configuration(self, name):
        return self.peer(name) / "cyclonedds.xml"

    def add(self, name, role="host", *options):
        return self.done("add", self.folder, name, "--role", role, *options)


class Add(WithAuthority):
    def test_makes_a_configuration_that_check_finds_good(self):
        said = self.add("gateway")

        self.assertIn("CYCLONEDDS_URI=file://%s" % self.configuration("gateway"), said)
        self.assertIn("CN=gateway", self.done("check", self.configuration("gateway")))

    def test_keeps_the_key_to_its_owner(self):
        self.add("gateway")

        self.assertEqual(mode(self.peer("gateway") / "identity.key"), 0o600)
        self.assertEqual(mode(self.peer("gateway")), 0o700)

    def test_writes_no_key_to_its_output(self):
        self.assertNotIn("PRIVATE KEY", self.add("gateway"))

    def test_names_the_folder_where_the_peer_keeps_it(self):
        said = self.add("gateway", "host", "--at", "/etc/zorbd/trust")

        self.assertIn("Copy %s to the peer as /etc/zorbd/trust" % self.peer("gateway"), said)
        self.assertIn("file:/etc/zorbd/trust/identity.key", self.configuration("gateway").read_text())

    def test_takes_interface_and_addresses(self):
        self.add("gateway", "host", "--interface", "eth0", "--peer", "192.0.2.10", "--peer", "server.example")

        text = self.configuration("gateway").read_text()
        for part in ('name="eth0"', 'address="192.0.2.10"', 'address="server.example"', "<AllowMulticast>false<"):
            self.assertIn(part, text)

    def test_overwrites_no_peer(self):
        self.add("gateway")
        before = (self.peer("gateway") / "identity.key").read_bytes()

        self.assertIn("nothing is overwritten", self.refused("add", self.folder, "gateway", "--role", "server"))

        self.assertEqual((self.peer("gateway") / "identity.key").read_bytes(), before)

    def test_refuses_names_that_are_none(self):
        for name in ("", "../up", "a b", "-x", "a/CN=b", "x" * 64):
            with self.subTest(name=name):
                self.refused("add", "--role", "host", self.folder, "--", name)
        self.assertEqual(os.listdir(self.folder / "peers"), [])

    def test_refuses_wrong_options(self):
        self.refused("add", self.folder, "gateway", "--role", "king", code=2)
        self.refused("add", self.folder, "gateway", code=2)
        self.refused("add", self.folder, "gateway", "--role", "host", "--days", "0", code=2)
        self.refused("add", self.folder, "gateway", "--role", "host", "--at", "relative")
        self.refused("add", self.folder, "gateway", "--role", "host", "--interface", 'lo"/>')
        self.refused("add", self.folder, "gateway", "--role", "host", "--domain", "231")

    def test_says_that_a_folder_is_no_trust_folder(self):
        said = self.refused("add", self.folder / "nowhere", "gateway", "--role", "host")

        self.assertIn("is missing", said)
        self.assertIn("zorb-trust init", said)

    def test_leaves_nothing_behind_when_the_authority_is_damaged(self):
        (self.folder / "authority" / "identity_ca.key").write_text("no key")

        self.refused("add", self.folder, "gateway", "--role", "host")

        self.assertEqual(os.listdir(self.folder / "peers"), [])
        self.assertNotIn("gateway", self.done("list", self.folder))


class Revoke(WithAuthority):
    def test_hands_the_new_list_to_the_others(self):
        self.add("gateway")
        self.add("lost", "server")
        lost = self.folder.parent / "lost"
        shutil.copytree(self.peer("lost"), lost)

        said = self.done("revoke", self.folder, "lost")

        self.assertIn(str(self.peer("gateway") / "revoked.pem"), said)
        self.assertFalse(self.peer("lost").exists())
        self.assertIn("revoked on", self.done("list", self.folder))
        self.done("check", self.configuration("gateway"))
        # The lost peer with the others' list, as they see it:
        shutil.copy(self.peer("gateway") / "revoked.pem", lost)
        replace(lost / "cyclonedds.xml", str(self.peer("lost")), str(lost))
        found = trust("check", lost / "cyclonedds.xml")
        self.assertEqual(found.returncode, 1)
        self.assertIn("has been revoked", found.stdout)

    def test_lets_the_name_be_used_again(self):
        self.add("gateway")
        self.done("revoke", self.folder, "gateway")

        self.add("gateway")

        self.done("check", self.configuration("gateway"))

    def test_refuses_a_peer_that_is_not_known(self):
        self.assertIn("nobody", self.refused("revoke", self.folder, "nobody"))


class Renew(WithAuthority):
    def test_gives_a_new_key_and_keeps_the_role(self):
        self.add("gateway", "both", "--interface", "eth0")
        before = (self.peer("gateway") / "identity.key").read_bytes()

        self.done("renew", self.folder, "gateway", "--days", "30")

        self.assertNotEqual((self.peer("gateway") / "identity.key").read_bytes(), before)
        self.assertEqual(mode(self.peer("gateway") / "identity.key"), 0o600)
        self.assertIn('name="eth0"', self.configuration("gateway").read_text())
        listed = self.done("list", self.folder)
        self.assertIn("both", listed)
        self.assertIn("replaced by a newer one", listed)

    def test_is_revoked_with_all_its_certificates(self):
        self.add("gateway")
        self.done("renew", self.folder, "gateway")

        self.done("revoke", self.folder, "gateway")

        self.assertEqual(self.done("list", self.folder).count("revoked on"), 2)


def replace(path, text, other):
    content = path.read_text()
    assert text in content, text
    path.write_text(content.replace(text, other))


class Check(WithAuthority):
    def setUp(self):
        super().setUp()
        self.add("gateway")

    def finding(self, name="gateway"):
        result = trust("check", self.configuration(name))
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertNotIn("Traceback", result.stderr)
        return result.stdout

    def test_names_each_file_that_is_missing_damaged_or_cut_short(self):
        for name in os.listdir(self.peer("gateway")):
            path = self.peer("gateway") / name
            whole = path.read_bytes()
            for content in (None, b"\x00\xff" * 50, whole[: len(whole) // 2]):
                with self.subTest(name=name, content=content and content[:9]):
                    path.unlink() if content is None else path.write_bytes(content)
                    result = trust("check", self.configuration("gateway"))
                    self.assertEqual(result.returncode, 1, result.stdout)
                    self.assertIn(str(path), result.stdout + result.stderr)
                    self.assertNotIn("Traceback", result.stderr)
            path.write_bytes(whole)
            path.chmod(0o600)
        self.done("check", self.configuration("gateway"))

    def test_finds_a_key_that_others_can_read(self):
        (self.peer("gateway") / "identity.key").chmod(0o640)

        self.assertIn("chmod 600", self.finding())

    def test_finds_a_key_of_another_certificate(self):
        self.add("other")
        shutil.copy(self.peer("other") / "identity.key", self.peer("gateway"))

        self.assertIn("does not belong to the certificate", self.finding())

    def test_finds_permissions_of_another_peer(self):
        self.add("other")
        shutil.copy(self.peer("other") / "permissions.p7s", self.peer("gateway"))

        said = self.finding()

        self.assertIn("CN=other", said)
        self.assertIn("CN=gateway", said)

    def test_finds_another_authority(self):
        other = self.folder.parent / "other"
        self.done("init", other)
        shutil.copy(other / "authority" / "identity_ca.pem", self.peer("gateway"))

        self.assertIn("was not made by the authority", self.finding())

    def test_finds_documents_that_another_authority_has_signed(self):
        other = self.folder.parent / "other"
        self.done("init", other)
        shutil.copy(other / "authority" / "governance.p7s", self.peer("gateway"))

        self.assertIn("was not signed by the authority", self.finding())

    def certify(self, start, end):
        """Gives the peer another certificate, for that period."""
        authority = self.folder / "authority"
        request, certificate = authority / "request", self.peer("gateway") / "identity.pem"
        key = self.peer("gateway") / "identity.key"
        for command in (
            ["req", "-new", "-config", "openssl.cnf", "-section", "request", "-key", key, "-subj", "/O=zorb/CN=gateway"]
            + ["-out", request],
            ["ca", "-config", "openssl.cnf", "-batch", "-notext", "-in", request, "-out", certificate]
            + ["-startdate", start, "-enddate", end],
        ):
            subprocess.run(["openssl", *map(str, command)], cwd=authority, check=True, capture_output=True)
        return certificate

    def test_finds_an_expired_certificate(self):
        certificate = self.certify("20240101000000Z", "20250101000000Z")

        said = self.finding()

        self.assertIn("%s: has expired on 2025-01-01" % certificate, said)
        self.assertIn("zorb-trust renew", said)
        self.assertIn("expired", self.done("list", self.folder))

    def test_finds_a_certificate_that_is_not_valid_yet(self):
        certificate = self.certify("20360101000000Z", "20370101000000Z")

        said = self.finding()

        self.assertIn("%s: is not valid before 2036-01-01" % certificate, said)
        self.assertIn("clock", said)

    def test_warns_before_a_certificate_expires(self):
        self.done("renew", self.folder, "gateway", "--days", "5")

        self.assertIn("warning: %s" % (self.peer("gateway") / "identity.pem"), self.done("check", self.configuration("gateway")))

    def test_finds_a_key_of_an_authority_on_the_device(self):
        shutil.copy(self.folder / "authority" / "permissions_ca.key", self.peer("gateway") / "backup")

        said = self.finding()

        self.assertIn(str(self.peer("gateway") / "backup"), said)
        self.assertIn("must not be on a device", said)

    def test_finds_a_configuration_without_security(self):
        self.configuration("gateway").write_text("<CycloneDDS><Domain/></CycloneDDS>")

        self.assertIn("DDS is not protected", self.finding())

    def test_finds_a_setting_that_is_missing(self):
        replace(self.configuration("gateway"), "PermissionsCA", "Something")

        self.assertIn("<PermissionsCA> is missing", self.finding())


def in_1970(*arguments):
    """The command asks Python for the time; a machine's clock cannot be set in a test."""
    program = (
        "import sys, datetime; sys.path.insert(0, %r); from zorb_trust import dates, command_line;"
        "dates.now = lambda: datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc);"
        "sys.exit(command_line.main(%r))" % (str(COMMAND.parent), [str(one) for one in arguments])
    )
    return subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, check=False)


class ClockBefore2020(WithAuthority):
    def test_keeps_everything_from_being_made(self):
        self.add("gateway")
        other = self.folder.parent / "other"
        for arguments in (
            ("init", other),
            ("add", self.folder, "further", "--role", "host"),
            ("renew", self.folder, "gateway"),
            ("revoke", self.folder, "gateway"),
        ):
            with self.subTest(arguments[0]):
                result = in_1970(*arguments)
                self.assertEqual(result.returncode, 1)
                self.assertIn("clock says 1970-01-01", result.stderr)
        self.assertFalse(other.exists())
        self.assertEqual(os.listdir(self.folder / "peers"), ["gateway"])

    def test_is_what_check_names_on_a_device(self):
        self.add("gateway")

        result = in_1970("check", self.configuration("gateway"))

        self.assertEqual(result.returncode, 1)
        self.assertIn("error: this machine's clock says 1970-01-01", result.stdout)


if __name__ == "__main__":
    unittest.main(verbosity=2)
