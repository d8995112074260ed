# SPDX-License-Identifier: Apache-2.0
"""The openssl command. Keys go from file to file: never over a command line, never into a message."""

import collections
import os
import pathlib
import subprocess

from zorb_trust import dates
from zorb_trust.problem import Problem


def run(*arguments, folder=None):
    """What openssl prints; Problem with its own words when it fails."""
    done = attempt(*arguments, folder=folder)
    if done.returncode != 0:
        raise Problem("openssl %s failed: %s" % (arguments[0], done.stderr.strip() or "it says nothing"))
    return done.stdout


def read(kind, command, path, *arguments):
    """What openssl prints of a file; Problem when that holds no such thing."""
    done = attempt(command, "-in", path, *arguments)
    if done.returncode != 0:
        raise Problem("is no %s in PEM form, or only a part of one; copy it again" % kind)
    return done.stdout


def attempt(*arguments, folder=None):
    command = ["openssl", *[str(argument) for argument in arguments]]
    try:
        return subprocess.run(
            command, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace", check=False
        )
    except FileNotFoundError as error:
        raise Problem("the command openssl is not installed; on Debian: apt-get install openssl") from error


def new_key(path):
    """An EC key on P-256, readable by its owner alone from its first byte on."""
    path = pathlib.Path(path)
    os.close(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600))
    run("genpkey", "-quiet", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256", "-out", path)
    os.chmod(path, 0o600)


def public_key_of_key(path):
    # An encrypted key is not asked the password for: the empty one is tried.
    return read("key without a password", "pkey", path, "-passin", "pass:", "-pubout")


# start, end: of its validity; subject: in the form of RFC 2253, which permissions name it by.
Certificate = collections.namedtuple("Certificate", "subject start end serial public_key")


def certificate(path):
    text = read(
        *("certificate", "x509", path, "-noout", "-subject", "-dates", "-serial", "-pubkey", "-nameopt", "RFC2253")
    )
    lines, begin, key = text.partition("-----BEGIN")
    found = dict(line.split("=", 1) for line in lines.splitlines())
    return Certificate(
        found["subject"],
        dates.from_openssl_text(found["notBefore"]),
        dates.from_openssl_text(found["notAfter"]),
        found["serial"],
        begin + key,
    )


def sign_document(text_file, certificate, key, output):
    """A clear-signed S/MIME message, which is how DDS Security wants governance and permissions."""
    run("smime", "-sign", "-text", "-in", text_file, "-signer", certificate, "-inkey", key, "-out", output)


def signed_document(path, authority):
    """The text of such a message; Problem when this authority has not signed it."""
    done = attempt("smime", "-verify", "-text", "-in", path, "-CAfile", authority)
    if done.returncode != 0:
        raise Problem("is damaged, or was not signed by the authority %s" % authority)
    return done.stdout


def require_revocation_list(path):
    return read("list of revoked certificates", "crl", path, "-noout", "-issuer")
