#!/usr/bin/env bash
# Solves a small structure, keeps its results in a database on disk and asks for some of them; then
# an optimisation that keeps every iteration. Takes the build folder.
set -euo pipefail
build=$(realpath "$1")
work=$build/demo
rm -rf "$work"
mkdir -p "$work"
cp examples/data/cantilever.inp "$work"
cd "$work"
PATH=$build/tools/qelta:$PATH

# Shows a command and runs it.
run() {
  printf '\n$ %s\n' "$*"
  "$@"
}

printf '== %s\n' "CalculiX solves a cantilever: four load increments, then four natural frequencies"
printf '\n$ ccx -i cantilever\n'
ccx -i cantilever >cantilever.log || { tail -n 20 cantilever.log; exit 1; }

printf '\n== %s\n' "Its results go into a database on disk"
run qelta import cantilever.frd run.db
run qelta info run.db

printf '\n== %s\n' "The displacements; the last load increment; the highest stresses in it"
run qelta ls run.db -w LABEL=DISP
run qelta show run.db -w LABEL=DISP -w INCREMENT=max --id 9,18,27
run qelta stats run.db -w LABEL=STRESS -w INCREMENT=max

printf '\n== %s\n' "All steps for ParaView, the modes bent"
run qelta export run.db -o run.pvd
run qelta export run.db -w STATE=1.. --deformed 0.1 -o modes.pvd

printf '\n== %s\n' "The highest displacement, by a C++ program of 60 lines"
run "$build/examples/cpp/highest_displacement" cantilever.frd

printf '\n== %s\n' "A Fortran program optimises a cantilever of 60 x 20 elements and saves every iteration"
run "$build/examples/fortran/topology_optimisation" 60 20 200 file design.db
run qelta ls design.db --group-by kind
run qelta find design.db --latest
run qelta verify design.db

printf '\nBoth databases are in %s\n' "$work"
