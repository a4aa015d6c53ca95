#!/bin/sh
# The tool on Windows: names, streams, exit codes and locks.
#   windows_test.sh TOOL RESULTS, where TOOL is a program of this system that runs it
. "$(dirname "$0")/harness.sh"
results=$2
LC_ALL=C.UTF-8
export LC_ALL
cd "$folder" || exit 1
name='größe 日本'
cp "$results" "$name.frd"

check 0 'imported 48 blocks' import "$name.frd" "$name.qelta"
check 0 ': intact' verify "$name.qelta"
check 0 '48 blocks in both, 0 different' diff "$name.qelta" "$name.frd"
check 0 "$name.qelta" info "$name.qelta"
expect 0 ls "$name.qelta" --format csv
! grep -q "$(printf '\r')" "$out" || fail "lines end with CR"
expect 1 find "$name.qelta" -w LABEL=NONE
check 2 'ls' lst
check 3 'absent.frd' ls absent.frd
printf 'ID,T\r\n1,20.5\r\n' >loads.csv
check 0 'imported 1 record' import loads.csv "$name.qelta"
check 0 '20.5' show "$name.qelta" -w LABEL=loads --format csv
"$qelta" show "$results" -w LABEL=STRESS --format csv 2>"$err" | head -n 1 >"$out"
[ ! -s "$err" ] || fail "a closed pipe is no error"
exit $status
