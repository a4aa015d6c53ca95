#!/bin/sh
# usage: unhandled_failure.sh PROGRAM
status=0
output=$("$1" 2>&1) || status=$?
expect() { echo "$output" | grep -q "$1" || { echo "missing '$1' in: $output"; exit 1; }; }
[ "$status" -eq 1 ] || { echo "exit code $status"; exit 1; }
expect '^still here: not touched$'
expect "^There is no kind of storage 'papyrus'.* (400000000001)$"
! echo "$output" | grep -q 'never here'
