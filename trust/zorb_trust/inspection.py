# SPDX-License-Identifier: Apache-2.0
"""What is wrong with the configuration of a peer, looked at with the eyes of Cyclone DDS and of its owner."""

import os
import pathlib
import stat
import xml.etree.ElementTree as ElementTree

from zorb_trust import dates, files, openssl
from zorb_trust.configuration import SETTINGS
from zorb_trust.problem import Problem


class Inspection:
    """Findings of one configuration file: `errors` keep the peer out, `warnings` will or weaken it."""

    def __init__(self, configuration):
        self.errors = []
        self.warnings = []
        self._configuration = configuration
        if dates.clock_problem():
            self.errors.append(dates.clock_problem())
        self._files = self._find_files()
        self._certificates = self._read_certificates()
        if len(self._files) == len(SETTINGS):
            self._judge_identity()
            self._judge_documents()
        self._look_for_authority_keys()

    def identity(self):
        """The peer's certificate; None when it cannot be read."""
        return self._certificates.get("IdentityCertificate")

    def _error(self, path, text):
        finding = "%s: %s" % (path, text)
        if finding not in self.errors:
            self.errors.append(finding)

    def _attempt(self, path, action, *arguments):
        """The result, or None and an error about that file."""
        try:
            return action(*arguments)
        except Problem as problem:
            self._error(path, str(problem))
            return None

    def _find_files(self):
        try:
            root = ElementTree.fromstring(files.read_text(self._configuration))
        except ElementTree.ParseError as error:
            self._error(self._configuration, "is no complete XML file (%s); copy it again" % error)
            return {}
        texts = {}
        for element in root.iter():
            texts.setdefault(element.tag.rpartition("}")[2], (element.text or "").strip())
        if "Security" not in texts and "DDSSecurity" not in texts:
            self._error(self._configuration, "has no <Security>: DDS is not protected with it")
            return {}
        found = {setting.name: self._file_of(setting, texts) for setting in SETTINGS}
        return {name: path for name, path in found.items() if path}

    def _file_of(self, setting, texts):
        text = texts.get(setting.name)
        if not text:
            self._error(self._configuration, "<%s> is missing from <%s>" % (setting.name, setting.section))
            return None
        if not text.startswith("file:"):
            self._error(self._configuration, "<%s> must be file: and a path, not '%s'" % (setting.name, text[:40]))
            return None
        path = pathlib.Path(text[len("file:") :])
        if not path.is_absolute():
            self._error(self._configuration, "<%s> must name the full path, not '%s'" % (setting.name, path))
            return None
        return path if self._is_readable(path, setting.name) else None

    def _is_readable(self, path, what):
        try:
            with open(path, "rb") as stream:
                content = stream.read(1 << 20)
        except OSError as error:
            self._error(path, "%s cannot be read: %s" % (what, files.reason(error)))
            return False
        if not content.strip():
            self._error(path, "%s is empty; copy it again" % what)
            return False
        return True

    def _read_certificates(self):
        names = [name for name in ("IdentityCA", "PermissionsCA", "IdentityCertificate") if name in self._files]
        read = {name: self._attempt(self._files[name], openssl.certificate, self._files[name]) for name in names}
        return {name: certificate for name, certificate in read.items() if certificate}

    def _judge_identity(self):
        key, path = self._files["PrivateKey"], self._files["IdentityCertificate"]
        self._judge_key_mode(key)
        public = self._attempt(key, openssl.public_key_of_key, key)
        if public and self.identity() and public != self.identity().public_key:
            self._error(key, "does not belong to the certificate %s" % path)
        for name, certificate in self._certificates.items():
            self._judge_period(self._files[name], certificate.start, certificate.end)
        if self.identity():
            self._judge_issuer(path)

    def _judge_key_mode(self, key):
        mode = stat.S_IMODE(os.stat(key).st_mode)
        if mode & 0o077:
            self._error(key, "others can read the key (mode %04o); take that away with: chmod 600 %s" % (mode, key))

    def _judge_period(self, path, start, end):
        time = dates.now()
        if end <= time:
            self._error(path, "has expired on %s; make a new one with: zorb-trust renew" % dates.day(end))
        elif start > time:
            self._error(path, "is not valid before %s; is the clock right, which says %s?" % (dates.day(start), dates.day(time)))
        elif end <= time + dates.SOON:
            self.warnings.append("%s: expires on %s; make a new one with: zorb-trust renew" % (path, dates.day(end)))

    def _judge_issuer(self, certificate):
        authority, revoked = self._files["IdentityCA"], self._files["CRL"]
        if self._attempt(revoked, openssl.require_revocation_list, revoked) is None:
            return
        options = ("-no_check_time", "-CAfile", authority, "-crl_check", "-CRLfile", revoked)
        said = openssl.attempt("verify", *options, certificate)
        if said.returncode == 0:
            return
        if "certificate revoked" in said.stderr:
            self._error(certificate, "has been revoked; %s lists it" % revoked)
        elif "CRL" in said.stderr:
            self._error(revoked, "is no list of revoked certificates of the authority %s" % authority)
        else:
            self._error(certificate, "was not made by the authority %s (wrong authority, or a damaged file)" % authority)

    def _judge_documents(self):
        authority = self._files["PermissionsCA"]
        for name, judge in (("Governance", self._judge_governance), ("Permissions", self._judge_permissions)):
            path = self._files[name]
            text = self._attempt(path, openssl.signed_document, path, authority)
            if text is None:
                continue
            try:
                judge(path, ElementTree.fromstring(text))
            except ElementTree.ParseError as error:
                self._error(path, "holds no complete XML (%s)" % error)

    def _judge_governance(self, path, root):
        wanted = {
            "allow_unauthenticated_participants": ("false", "0"),
            "enable_join_access_control": ("true", "1"),
            "discovery_protection_kind": ("ENCRYPT", "ENCRYPT_WITH_ORIGIN_AUTHENTICATION"),
            "metadata_protection_kind": ("ENCRYPT", "ENCRYPT_WITH_ORIGIN_AUTHENTICATION"),
            "enable_read_access_control": ("true", "1"),
            "enable_write_access_control": ("true", "1"),
        }
        for name, values in wanted.items():
            for element in root.iter(name):
                if (element.text or "").strip() not in values:
                    self.warnings.append("%s: %s is '%s', which lets strangers in or read" % (path, name, element.text))

    def _judge_permissions(self, path, root):
        if not self.identity():
            return  # told of already
        subject = self.identity().subject
        grants = {(grant.findtext("subject_name") or "").strip(): grant for grant in root.iter("grant")}
        if subject not in grants:
            self._error(
                path,
                "names '%s', but the certificate is of '%s'; the two must be of the same peer"
                % ("', '".join(grants) or "nobody", subject),
            )
            return
        validity = grants[subject].find("validity")
        period = [validity.findtext(name, "") for name in ("not_before", "not_after")] if validity is not None else ["", ""]
        times = [self._attempt(path, dates.from_xml_text, text) for text in period]
        if all(times):
            self._judge_period(path, *times)

    def _look_for_authority_keys(self):
        """A key of an authority has no place on a device: who has it can let in whom he likes."""
        publics = {
            self._certificates[name].public_key: self._files[name]
            for name in ("IdentityCA", "PermissionsCA")
            if name in self._certificates
        }
        folders = {path.parent for path in publics.values()} | {pathlib.Path(self._configuration).absolute().parent}
        for folder in sorted(folders):
            for path in sorted(folder.iterdir()) if os.access(folder, os.R_OK | os.X_OK) else ():
                if path.is_file() and _may_be_key(path):
                    public = openssl.attempt("pkey", "-in", path, "-passin", "pass:", "-pubout").stdout
                    if public and public in publics:
                        self._error(
                            path,
                            "is the key of the authority %s and must not be on a device: move it away, and if others "
                            "could read it, make a new authority" % publics[public],
                        )


def _may_be_key(path):
    try:
        return path.stat().st_size < (1 << 16) and b"PRIVATE KEY" in path.read_bytes()
    except OSError:
        return False
