#!/bin/sh
# usage: tutorial.sh FIRST_STEPS TOUR
# The programs in the tutorial are the compiled ones, and it says what they print. Run in the
# project's folder.
set -eu
tutorial=docs/tutorial-fortran.md
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat examples/fortran/first_steps.f90 examples/fortran/tour.f90 >"$work/compiled"
sed -n '/^```fortran$/,/^```$/p' $tutorial | sed '/^```/d' | diff "$work/compiled" -
grep -qF "\`$("$1")\`" $tutorial
sed -n '/^It prints$/,/^- /p' $tutorial | sed '1,/^```$/d;/^```$/,$d' >"$work/printed"
"$2" 2>"$work/log" | diff "$work/printed" -
