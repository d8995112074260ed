# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# To be sourced at the root of the sources.

# copy_sources <folder>: the sources without anything that was built.
copy_sources() { tar --create --exclude=./build --exclude=./.git --exclude=__pycache__ . | tar --extract --directory "$1"; }
