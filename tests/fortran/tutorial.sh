#!/bin/sh
# usage: tutorial.sh FIRST_STEPS TOUR RENUMBERED
# The programs in the tutorial are the compiled ones, and it says what they print. Run in the
# project's folder.
set -eu
tutorial=docs/tutorial-fortran.md
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for program in first_steps tour renumbered; do
  cat examples/fortran/$program.f90
done >"$work/compiled"
sed -n '/^```fortran$/,/^```$/p' $tutorial | sed '/^```/d' | diff "$work/compiled" -
grep -qF "\`$("$1")\`" $tutorial
awk '/^It prints$/ { wanted = 1 }
     wanted && /^```$/ { inside = !inside; wanted = inside; next }
     inside' $tutorial >"$work/printed"
{ "$2" && "$3"; } 2>"$work/log" | diff "$work/printed" -
