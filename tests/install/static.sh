#!/bin/sh
# The same for static libraries, which are built for it; a long test.
# Arguments: cmake, source folder, work folder, C++ compiler, components, result file.
set -eu
[ -n "${QELTA_LONG_TESTS:-}" ] || exit 77
cmake=$1 source=$2 work=$3 compiler=$4 with=$5 results=$6
mkdir -p "$work"
"$cmake" -S "$source" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQELTA_SHARED=OFF \
  -DQELTA_BUILD_TESTS=OFF -DQELTA_BUILD_EXAMPLES=OFF -DQELTA_BUILD_TOOLS=OFF \
  -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
"$cmake" --build "$work/build" >/dev/null
exec "$(dirname "$0")/consumer.sh" "$cmake" "$work/build" "$work" "$compiler" "$with" "$results"
