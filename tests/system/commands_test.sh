#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# ./demo and ./check refuse what they do not know, before they install or build anything; ./demo succeeds exactly
# when every reply has come. Usage: commands_test.sh <build folder>
set -euo pipefail
build=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source tests/system/assertions.sh

for command in ./demo ./check; do
    expect "$command tells its options" exits_with 0 $command --help
    expect "$command refuses an unknown option" exits_with 2 $command --no-such-option
    expect "$command wants a value" exits_with 2 $command --preset
done
expect "./check refuses unknown sanitizers" exits_with 2 ./check --sanitize water
expect "./check refuses an unknown target" exits_with 2 ./check --target water
expect "./check refuses no tests at a time" exits_with 2 ./check --jobs 0
expect "./demo refuses to wait for no time" exits_with 2 ./demo --patience 0

output=$(./demo --programs "$build" 2>&1) || { echo "$output" && expect "./demo succeeds" false; }
expect "./demo has got every reply" contains "$output" "replies have come"

output=$(./demo --trust --programs "$build" 2>&1) || { echo "$output" && expect "./demo --trust succeeds" false; }
expect "./demo --trust has got every reply" contains "$output" "replies have come"

# The same with a host whose log loses one reply.
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/bin"
ln -s "$build/bin/varnelde" "$build/bin/zorbctl" "$folder/bin/"
ln -s "$build/lib" "$folder/lib"
cat >"$folder/bin/zorbd" <<TEXT
#!/usr/bin/env bash
exec "$build/bin/zorbd" "\$@" > >(exec grep --line-buffered -v async_node_get_data)
TEXT
chmod +x "$folder/bin/zorbd"
expect "./demo fails when a reply is missing" \
    exits_with 1 env TMPDIR="$folder" ./demo --patience 3 --programs "$folder"
finish
