#!/bin/sh
# Programs of somebody else find the installed package and work with it; the installed tool starts.
# Arguments: cmake, build folder, work folder, compiler, and a result file where import and the tool
# are built. QELTA_TOOLCHAIN and QELTA_EMULATOR say how to build and run programs of another system.
set -eu
cmake=$1 build=$2 work=$3 compiler=$4 results=${5:-}
rm -rf "$work/stage" "$work/consumer"
"$cmake" --install "$build" --prefix "$work/stage" >/dev/null
"$cmake" -S "$(dirname "$0")/consumer" -B "$work/consumer" -G Ninja \
  -DCMAKE_PREFIX_PATH="$work/stage" -DCMAKE_CXX_COMPILER="$compiler" \
  ${QELTA_TOOLCHAIN:+-DCMAKE_TOOLCHAIN_FILE="$QELTA_TOOLCHAIN" -DCMAKE_FIND_ROOT_PATH="$work/stage"} \
  >/dev/null
"$cmake" --build "$work/consumer" >/dev/null
suffix=""
[ -z "${QELTA_EMULATOR:-}" ] || suffix=.exe
run() {
  program=$1$suffix
  shift
  WINEPATH="$work/stage/bin" ${QELTA_EMULATOR:-} "$program" "$@"
}
run "$work/consumer/consumer"
(cd "$work/consumer" && run ./file_consumer)
[ -n "$results" ] || exit 0
run "$work/consumer/import_consumer" "$results"
run "$work/stage/bin/qelta" info "$results" >/dev/null
