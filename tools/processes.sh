# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Starts processes in the background, watches what they write, stops them. To be sourced, with messages.sh.

# The processes that were started and shall be stopped, in the order of their start.
started=()

# start <log file> <command...>: its own session, so that an interrupt at the terminal stops the script alone.
start() {
    local log=$1
    shift
    : >"$log" # there for those who follow it, however late the process starts
    setsid "$@" >>"$log" 2>&1 </dev/null &
    started+=($!)
}

# follow <log file> <pid>: makes its lines, from the first, readable by next_line; they end with the process.
follow() {
    exec {followed}< <(exec tail -n +1 -s 0.1 --pid="$2" -f -- "$1" 2>/dev/null)
    follower=$!
}

unfollow() {
    [[ -n ${follower:-} ]] || return 0
    kill "$follower" 2>/dev/null || true
    exec {followed}<&-
    follower=''
}

# await_line <seconds> <extended regular expression>: passes over lines until one matches; it is then in $line.
await_line() {
    local deadline=$((SECONDS + $1)) left
    while left=$((deadline - SECONDS)) && ((left > 0)) && IFS= read -r -t "$left" -u "$followed" line; do
        [[ $line =~ $2 ]] && return 0
    done
    return 1
}

# stop <pid>: asks it to end, insists after 15 seconds; gives its exit code.
stop() {
    kill -TERM "$1" 2>/dev/null || true
    if ! timeout 15 tail -s 0.05 --pid="$1" -f /dev/null; then
        complain "process $1 did not stop when asked; killed"
        kill -KILL "$1" 2>/dev/null || true
    fi
    wait "$1"
}

# The last one started is the first one stopped.
stop_all() {
    local index code
    unfollow
    for ((index = ${#started[@]} - 1; index >= 0; --index)); do
        code=0
        stop "${started[index]}" || code=$?
        ((code == 0)) || complain "process ${started[index]} ended with code $code"
    done
    started=()
}
