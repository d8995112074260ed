# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Which build a sanitizer needs, and how a run under it ends at the first finding. To be sourced.

# sanitizer_preset <sanitizers>
sanitizer_preset() {
    case $1 in
    address,undefined | undefined,address | address | undefined) echo asan ;;
    thread) echo tsan ;;
    *) return 1 ;;
    esac
}

stop_at_first_finding() {
    export ASAN_OPTIONS="halt_on_error=1:abort_on_error=0:detect_leaks=1:strict_string_checks=1${ASAN_OPTIONS:+:$ASAN_OPTIONS}"
    export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1${UBSAN_OPTIONS:+:$UBSAN_OPTIONS}"
    export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1:suppressions=$PWD/tools/thread_sanitizer.txt${TSAN_OPTIONS:+:$TSAN_OPTIONS}"
}
