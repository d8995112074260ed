# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# For tests of the commands at the root. To be sourced.

failures=0

# expect <what> <command...>: the command succeeds.
expect() {
    local what=$1
    shift
    "$@" || { echo "FAILED: $what" && failures=$((failures + 1)); }
}

# exits_with <code> <command...>
exits_with() {
    local wanted=$1 code=0
    shift
    "$@" >/dev/null 2>&1 || code=$?
    ((code == wanted)) || { echo "$* gave $code, not $wanted" && return 1; }
}

# contains <text> <part>
contains() { [[ $1 == *"$2"* ]] || { echo "no '$2' in: $1" && return 1; }; }

# The exit code of the test.
finish() { exit $((failures > 0)); }
