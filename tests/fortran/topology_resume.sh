#!/bin/sh
# usage: topology_resume.sh PROGRAM
# A run that was interrupted, or killed while it worked, resumes from its last checkpoint and ends
# bit for bit as one that was never interrupted.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# What the run NAME printed after it resumed is what the run WHOLE printed from there on.
same_as() {
  after=$(sed -n 's/^resuming after iteration //p' "$2.txt")
  awk -v after="$after" '/^\|/ || $1 + 0 > after' "$1.txt" >expected
  awk '/^\|/ || $1 + 0 > 0' "$2.txt" | diff expected -
}

"$1" 12 4 12 file whole >whole.txt
"$1" 12 4 5 file parts >first.txt
"$1" 12 4 12 file parts --resume >parts.txt
grep -q '^resuming after iteration 5$' parts.txt
same_as whole parts
# Other parameters are refused, and what is complete only gets checked.
if "$1" 14 4 12 file parts --resume >refused.txt 2>&1; then exit 1; fi
grep -q 'other parameters' refused.txt
"$1" 12 4 12 file parts --resume >parts.txt
same_as whole parts

"$1" 40 16 30 file long >long.txt
GFORTRAN_UNBUFFERED_ALL=y "$1" 40 16 30 file killed >started.txt &
until grep -qs '^ *4 ' started.txt; do sleep 0.01; done
kill -9 $!
wait $! 2>/dev/null || true
"$1" 40 16 30 file killed --resume >killed.txt
grep '^resuming after iteration' killed.txt
same_as long killed
