#!/bin/sh
# usage: topology_resume.sh PROGRAM
# An interrupted run that resumes ends bit for bit as one that was never interrupted; skipped (77)
# where there is no storage that outlives a program.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
"$1" 4 2 1 file probe >probe.log 2>&1 || {
  grep -q "no kind of storage 'file'" probe.log && exit 77
  cat probe.log
  exit 1
}
"$1" 12 4 12 file whole >whole.txt
"$1" 12 4 5 file parts >parts.txt
"$1" 12 4 12 file parts --resume >resumed.txt
grep -q '^resuming after iteration 5$' resumed.txt
grep -E '^ +(6|7|8|9|10|11|12) ' whole.txt >expected
grep -E '^ +(6|7|8|9|10|11|12) ' resumed.txt | diff expected -
grep '^|' whole.txt >expected
grep '^|' resumed.txt | diff expected -
# Other parameters are refused, and what is complete only gets checked.
if "$1" 14 4 12 file parts --resume >refused.txt 2>&1; then exit 1; fi
grep -q 'other parameters' refused.txt
"$1" 12 4 12 file parts --resume | grep '^|' | diff expected -
