# SPDX-License-Identifier: Apache-2.0
"""Files that are there whole or not at all."""

import contextlib
import fcntl
import os
import pathlib

from zorb_trust.problem import Problem


def read_text(path):
    try:
        return pathlib.Path(path).read_text(encoding="utf-8")
    except (OSError, UnicodeDecodeError) as error:
        raise Problem("cannot read %s: %s" % (path, reason(error))) from error


def write_text(path, text, mode=0o600):
    """Replaces the file in one step. A half-written one never has its name."""
    path = pathlib.Path(path)
    partial = path.with_name("." + path.name + ".partial")
    with contextlib.suppress(FileNotFoundError):
        partial.unlink()
    with os.fdopen(os.open(partial, os.O_WRONLY | os.O_CREAT | os.O_EXCL, mode), "w", encoding="utf-8") as stream:
        os.fchmod(stream.fileno(), mode)
        stream.write(text)
        stream.flush()
        os.fsync(stream.fileno())
    os.replace(partial, path)


@contextlib.contextmanager
def locked(folder):
    """One command at a time changes a folder."""
    try:
        descriptor = os.open(folder, os.O_RDONLY | os.O_DIRECTORY | os.O_CLOEXEC)
    except OSError as error:
        raise Problem("cannot open the folder %s: %s" % (folder, reason(error))) from error
    try:
        fcntl.flock(descriptor, fcntl.LOCK_EX)
        yield
    finally:
        os.close(descriptor)


def reason(error):
    return getattr(error, "strerror", None) or str(error)
