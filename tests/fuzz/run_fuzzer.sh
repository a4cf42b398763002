#!/bin/sh
# run_fuzzer.sh LOG FUZZER ARGUMENT...
# What the fuzzer says goes to LOG and is shown only when it has found something. Its files lie in
# memory where the system has room for that.
log=$1
shift
memory=${TMPDIR:-/tmp}
[ ! -w /dev/shm ] || memory=/dev/shm
TMPDIR=$(mktemp -d "$memory/quoravel-fuzz-XXXXXX") || exit 1
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT
trap 'exit 130' INT TERM HUP
if ! "$@" >"$log" 2>&1; then
    cat "$log"
    echo "$(basename "$1") found something; run it with the input named above to see it again."
    exit 1
fi
echo "$(basename "$1"): $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs, no fault"
