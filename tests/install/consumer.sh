#!/bin/sh
# Programs of somebody else in C++, C and Fortran find an installed package by CMake and by
# pkg-config, and work with it.
# Arguments: cmake, build folder, work folder, C++ compiler, installed components beside Core and
# File (Io;Fortran), and a result file. QELTA_TOOLCHAIN and QELTA_EMULATOR say how to build and run
# programs of another system; for these CMake alone is tried.
set -eu
cmake=$1 build=$2 work=$3 compiler=$4 with=$5 results=$6
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' "$build/CMakeCache.txt")
here=$(cd "$(dirname "$0")" && pwd)
tree=$(cd "$here/../.." && pwd)
rm -rf "$work/stage" "$work/consumer" "$work/by-hand"
"$cmake" --install "$build" --prefix "$work/stage" >/dev/null
"$cmake" -S "$here/consumer" -B "$work/consumer" -G Ninja "-DWITH=$with" "-DVERSION=$version" \
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
  WINEPATH="$work/stage/bin" ${QELTA_EMULATOR:-} "$program" "$@" >/dev/null
}

# compile COMMAND MODULE SOURCE PROGRAM. What pkg-config prints is quoted for a shell.
compile() {
  eval "$1 $(pkg-config --cflags "$2") '$3' -o $4 -Wl,-rpath,'$libraries' $(pkg-config --libs "$2")"
}

by_hand() {
  # A package that was moved is found where it is.
  mv "$work/stage" "$work/stage.moved"
  PKG_CONFIG_PATH=$(dirname "$(find "$work/stage.moved" -name qelta-file.pc)")
  export PKG_CONFIG_PATH
  libraries=$(pkg-config --variable=libdir qelta-db-connector)
  compile "$compiler -std=c++17" qelta-db-connector "$here/consumer/main.cpp" consumer
  compile "$compiler -std=c++17" qelta-file "$here/consumer/file.cpp" file_consumer
  case $with in *Fortran*)
    compile cc qelta-fortran "$tree/tests/entry_points/phases.c" c_consumer
    modules=$(pkg-config --variable=fmoddir qelta-fortran)
    compile "gfortran -I'$modules'" qelta-fortran "$tree/examples/fortran/first_steps.f90" \
      fortran_consumer
    ;;
  esac
  for program in ./*consumer; do "$program" >/dev/null; done
  mv "$work/stage.moved" "$work/stage"
}

mkdir "$work/by-hand"
[ -n "${QELTA_TOOLCHAIN:-}" ] || (cd "$work/by-hand" && by_hand)

cd "$work/consumer"
run ./consumer
run ./file_consumer
run ./import_consumer "$results"
case $with in *Fortran*)
  run ./c_consumer
  run ./fortran_consumer
  ;;
esac
[ ! -e "$work/stage/bin/qelta$suffix" ] || run "$work/stage/bin/qelta" info "$results"
