# SPDX-License-Identifier: Apache-2.0
"""Packages of npm that tests use: fetched once into the build folder, and unpacked there."""

import fcntl
import pathlib
import shutil
import subprocess
import sys
import tarfile

SKIPPED = 77  # what CTest takes for a test that could not be run


def npm_package(build, name, version):
    """The folder of the package; ends the test as skipped where there is no npm."""
    store = pathlib.Path(build).resolve() / "npm"
    folder = store / f"{name.replace('@', '').replace('/', '-')}-{version}"
    store.mkdir(parents=True, exist_ok=True)
    with open(store / "lock", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)  # tests run side by side
        if not folder.exists():
            fetch(name, version, store, folder)
    return folder / "package"


def fetch(name, version, store, folder):
    if not shutil.which("npm"):
        print(f"skipped: {name} comes from npm, which is not installed")
        sys.exit(SKIPPED)
    found = subprocess.run(["npm", "pack", "--silent", "--pack-destination", store, f"{name}@{version}"],
                           stdout=subprocess.PIPE, text=True, check=True, timeout=120)
    unpacked = store / (folder.name + ".part")
    with tarfile.open(store / found.stdout.strip().splitlines()[-1]) as archive:
        archive.extractall(unpacked)
    unpacked.rename(folder)
