# SPDX-License-Identifier: Apache-2.0
"""The authority: two keys, one that says who somebody is and one that says what he may do.

They are two, because Cyclone DDS takes permissions from everyone whose certificate comes from the permissions authority:
were it the one that certifies peers, each peer could sign itself any right.
"""

import os
import pathlib

from zorb_trust import dates, documents, files, openssl
from zorb_trust.problem import Problem

# For "openssl ca", which keeps account of the certificates. It runs in the authority's folder.
_SETTINGS = """# SPDX-License-Identifier: Apache-2.0
[ca]
default_ca = authority

[authority]
database = certificates.txt
new_certs_dir = certificates
certificate = identity_ca.pem
private_key = identity_ca.key
rand_serial = yes
unique_subject = no
default_md = sha256
policy = policy
x509_extensions = peer
crl_extensions = revocation_list
crlnumber = revocation_number

[policy]
organizationName = optional
commonName = supplied

[request]
distinguished_name = nothing

[nothing]

[identity_authority]
basicConstraints = critical, CA:TRUE, pathlen:0
keyUsage = critical, keyCertSign, cRLSign
subjectKeyIdentifier = hash

[permissions_authority]
basicConstraints = critical, CA:TRUE, pathlen:0
keyUsage = critical, digitalSignature
subjectKeyIdentifier = hash

[peer]
basicConstraints = critical, CA:FALSE
keyUsage = critical, digitalSignature
extendedKeyUsage = clientAuth, serverAuth
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid

[revocation_list]
authorityKeyIdentifier = keyid
"""


class Issued:
    """A line of the account: a certificate that was made."""

    def __init__(self, line):
        status, end, revoked, self.serial, _file, subject = line.rstrip("\n").split("\t")
        self.is_revoked = status == "R"
        self.end = dates.from_database_text(end)
        self.revoked_at = dates.from_database_text(revoked.split(",")[0]) if revoked else None
        self.name = subject.rpartition("/CN=")[2]


class Authority:
    """The folder `authority` of a trust folder. Never leaves the machine that it was made on."""

    def __init__(self, trust_folder):
        self.folder = pathlib.Path(trust_folder) / "authority"
        self.identity_ca = self.folder / "identity_ca.pem"
        self.permissions_ca = self.folder / "permissions_ca.pem"
        self.governance = self.folder / "governance.p7s"
        self.revoked = self.folder / "revoked.pem"
        self.keys = (self.folder / "identity_ca.key", self.folder / "permissions_ca.key")

    def create(self, organization, days):
        start, end = dates.period(days)
        self.folder.mkdir(mode=0o700)
        (self.folder / "certificates").mkdir()
        files.write_text(self.folder / "openssl.cnf", _SETTINGS)
        files.write_text(self.folder / "certificates.txt", "")
        files.write_text(self.folder / "revocation_number", "01\n")
        for kind in ("identity", "permissions"):
            self._make_self_signed(kind, organization, start, end)
        self._sign(documents.governance(), self.governance)
        self.write_revoked()

    def require(self):
        for path in (self.identity_ca, self.permissions_ca, self.governance, self.folder / "openssl.cnf"):
            if not path.is_file():
                raise Problem(
                    "%s is missing: %s is no folder of zorb-trust (make one with: zorb-trust init FOLDER)"
                    % (path, self.folder.parent)
                )
        for key in self.keys:
            if not os.access(key, os.R_OK):
                raise Problem("%s is missing or cannot be read; only its owner may use this folder" % key)
        end = self.end()
        if end <= dates.now():
            raise Problem("%s has expired on %s; make a new folder with: zorb-trust init" % (self.identity_ca, dates.day(end)))

    def end(self):
        return openssl.certificate(self.identity_ca).end

    def issue(self, name, key, certificate, start, end):
        """Writes a certificate for that key."""
        request = pathlib.Path(str(certificate) + ".request")
        subject = "/O=%s/CN=%s" % (self._organization(), name)
        self._run("req", "-new", "-key", key, "-subj", subject, "-section", "request", "-out", request)
        self._run(
            *("ca", "-batch", "-notext", "-in", request, "-out", certificate),
            *("-startdate", dates.openssl_text(start), "-enddate", dates.openssl_text(end)),
        )
        request.unlink()

    def sign_permissions(self, subject, role, start, end, output):
        self._sign(documents.permissions(subject, role, start, end), output)

    def account(self):
        """Every certificate that was made, oldest first."""
        return [Issued(line) for line in files.read_text(self.folder / "certificates.txt").splitlines() if line]

    def revoke(self, serial):
        self._run("ca", "-revoke", self.folder / "certificates" / (serial + ".pem"))

    def write_revoked(self):
        """The list is good for as long as the authority: an outdated one would shut everybody out."""
        start = dates.openssl_text(dates.now() - dates.CLOCK_TOLERANCE)
        end = dates.openssl_text(self.end())
        self._run("ca", "-gencrl", "-crl_lastupdate", start, "-crl_nextupdate", end, "-out", self.revoked)

    def _organization(self):
        return dict(part.split("=", 1) for part in openssl.certificate(self.identity_ca).subject.split(","))["O"]

    def _make_self_signed(self, kind, organization, start, end):
        key, certificate = self.folder / (kind + "_ca.key"), self.folder / (kind + "_ca.pem")
        request = self.folder / (kind + ".request")
        openssl.new_key(key)
        subject = "/O=%s/CN=%s authority" % (organization, kind)
        self._run("req", "-new", "-key", key, "-subj", subject, "-section", "request", "-out", request)
        self._run(
            *("ca", "-batch", "-notext", "-selfsign", "-keyfile", key, "-cert", certificate, "-in", request),
            *("-extensions", kind + "_authority", "-out", certificate),
            *("-startdate", dates.openssl_text(start), "-enddate", dates.openssl_text(end)),
        )
        request.unlink()

    def _sign(self, text, output):
        source = pathlib.Path(str(output) + ".xml")
        files.write_text(source, text)
        openssl.sign_document(source, self.permissions_ca, self.folder / "permissions_ca.key", output)
        source.unlink()

    def _run(self, command, *arguments):
        return openssl.run(command, "-config", "openssl.cnf", *arguments, folder=self.folder)
