#!/bin/sh
# Programs of somebody else find the installed package and work with it; the installed tool starts.
# Arguments: cmake, build folder, work folder, compiler, and a result file where import and the tool
# are built.
set -eu
cmake=$1 build=$2 work=$3 compiler=$4 results=${5:-}
rm -rf "$work/stage" "$work/consumer"
"$cmake" --install "$build" --prefix "$work/stage" >/dev/null
"$cmake" -S "$(dirname "$0")/consumer" -B "$work/consumer" -G Ninja \
  -DCMAKE_PREFIX_PATH="$work/stage" -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
"$cmake" --build "$work/consumer" >/dev/null
"$work/consumer/consumer"
(cd "$work/consumer" && ./file_consumer)
[ -n "$results" ] || exit 0
"$work/consumer/import_consumer" "$results"
"$work/stage/bin/qelta" info "$results" >/dev/null
