#!/bin/sh
# A program of somebody else finds the installed package and works with it.
set -eu
cmake=$1 build=$2 work=$3 compiler=$4
rm -rf "$work/stage" "$work/consumer"
"$cmake" --install "$build" --prefix "$work/stage" >/dev/null
"$cmake" -S "$(dirname "$0")/consumer" -B "$work/consumer" -G Ninja \
  -DCMAKE_PREFIX_PATH="$work/stage" -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
"$cmake" --build "$work/consumer" >/dev/null
"$work/consumer/consumer"
