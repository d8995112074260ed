# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# What of the sources the tests of a build with coverage counts have run. To be sourced, with messages.sh.

forget_coverage() { find build/coverage -name '*.gcda' -delete; }

# Lines and branches by folder. Branches that only exceptions take do not count: the compiler puts one behind nearly
# every call. plugin/ and framework/ are to be covered whole.
report_coverage() {
    local summary=build/coverage/coverage.json
    gcovr --root . --object-directory build/coverage --exclude-throw-branches \
        --filter '(plugin|framework|ddsrmi|server|host)/' --exclude 'build/' \
        --html-details build/coverage/coverage.html --json-summary "$summary" >build/coverage/gcovr.log 2>&1 ||
        { cat build/coverage/gcovr.log && return 1; }
    tools/coverage_by_folder.py "$summary" plugin=98 framework=97
    local outcome=$?
    note "each line in build/coverage/coverage.html"
    return $outcome
}
