#!/bin/sh
# Programs of somebody else in C++, C and Fortran find an installed package by CMake and by
# pkg-config, and work with it.
# Arguments: cmake, build folder, work folder, C++ compiler, installed components beside Core and
# File (Io;Fortran), and a result file. QELTA_TOOLCHAIN and QELTA_EMULATOR say how to build and run
# programs of another system; for these CMake alone is tried.
set -eu
cmake=$1 build=$2 work=$3 compiler=$4 with=$5 results=$6
here=$(cd "$(dirname "$0")" && pwd)
tree=$(cd "$here/../.." && pwd)
rm -rf "$work/stage" "$work/consumer" "$work/by-hand"
"$cmake" --install "$build" --prefix "$work/stage" >/dev/null
"$cmake" -S "$here/consumer" -B "$work/consumer" -G Ninja "-DWITH=$with" \
  -DCMAKE_PREFIX_PATH="$work/stage" -DCMAKE_CXX_COMPILER="$compiler" \
  ${QELTA_TOOLCHAIN:+-DCMAKE_TOOLCHAIN_FILE="$QELTA_TOOLCHAIN" -DCMAKE_FIND_ROOT_PATH="$work/stage"} \
  >/dev/null
"$cmake" --build "$work/consumer" >/dev/null

suffix=""
[ -z "${QELTA_EMULATOR:-}" ] || suffix=.exe
# Where it was built.
run() {
  program=$1$suffix
  shift
  [ ! -x "$program" ] || WINEPATH="$work/stage/bin" ${QELTA_EMULATOR:-} "$program" "$@" >/dev/null
}

by_hand() {
  # A package that was moved is found where it is.
  mv "$work/stage" "$work/stage.moved"
  PKG_CONFIG_PATH=$(dirname "$(find "$work/stage.moved" -name qelta-file.pc)")
  export PKG_CONFIG_PATH
  libraries=$(pkg-config --variable=libdir qelta-db-connector)
  # What pkg-config prints are words of a command.
  # shellcheck disable=SC2046
  "$compiler" -std=c++17 $(pkg-config --cflags qelta-db-connector) "$here/consumer/main.cpp" \
    -o consumer -Wl,-rpath,"$libraries" $(pkg-config --libs qelta-db-connector)
  "$compiler" -std=c++17 $(pkg-config --cflags qelta-file) "$here/consumer/file.cpp" \
    -o file_consumer -Wl,-rpath,"$libraries" $(pkg-config --libs qelta-file)
  case $with in *Fortran*)
    cc $(pkg-config --cflags qelta-fortran) "$tree/tests/entry_points/phases.c" \
      -o c_consumer -Wl,-rpath,"$libraries" $(pkg-config --libs qelta-fortran)
    gfortran -I"$(pkg-config --variable=fmoddir qelta-fortran)" \
      "$tree/examples/fortran/first_steps.f90" \
      -o fortran_consumer -Wl,-rpath,"$libraries" $(pkg-config --libs qelta-fortran)
    ;;
  esac
  for program in ./*consumer; do "$program" >/dev/null; done
  mv "$work/stage.moved" "$work/stage"
}

mkdir "$work/by-hand"
[ -n "${QELTA_TOOLCHAIN:-}" ] || (cd "$work/by-hand" && by_hand)

cd "$work/consumer"
for program in ./consumer ./file_consumer ./c_consumer ./fortran_consumer; do run "$program"; done
run ./import_consumer "$results"
run "$work/stage/bin/qelta" info "$results"
