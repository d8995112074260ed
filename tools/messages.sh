# SPDX-License-Identifier: Apache-2.0
# What the commands at the root say to people. To be sourced.

if [[ -t 1 ]]; then
    bold=$'\e[1m' green=$'\e[32m' red=$'\e[31m' plain=$'\e[0m'
else
    bold='' green='' red='' plain=''
fi

heading() { printf '%s== %s%s\n' "$bold" "$*" "$plain"; }
note() { printf '   %s\n' "$*"; }

# complain <message>: to standard error, under the name of the command.
complain() { printf '%s%s: %s%s\n' "$red" "${0##*/}" "$*" "$plain" >&2; }

# fail <exit code> <message>
fail() {
    local code=$1
    shift
    complain "$*"
    exit "$code"
}
