#!/bin/sh
# usage: tutorial_cpp.sh COOLING_ROD LOOK_AT_ROD
# The programs in the tutorial are the compiled ones, and it says what they print. Run in the
# project's folder.
set -eu
tutorial=$PWD/docs/tutorial-cpp.md
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat examples/cpp/cooling_rod.cpp examples/cpp/look_at_rod.cpp >"$work/compiled"
sed -n '/^```cpp$/,/^```$/p' "$tutorial" | sed '/^```/d' | diff "$work/compiled" -
awk '/^It prints$/ { wanted = 1 }
     wanted && /^```$/ { inside = !inside; wanted = inside; next }
     inside' "$tutorial" >"$work/told"
cd "$work"
"$1"
"$2" | diff told -
