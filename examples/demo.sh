#!/usr/bin/env bash
# Optimises a structure and solves another one, keeps all results in one database on disk, asks for
# some of them and makes pictures. Takes the build folder.
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
title() { printf '\n== %s\n' "$*"; }

title "A Fortran program optimises a cantilever of 60 x 20 elements and saves every iteration"
run "$build/examples/fortran/topology_optimisation" 60 20 200 file run.db

title "CalculiX solves another cantilever: four load increments, then four natural frequencies"
printf '\n$ ccx -i cantilever\n'
ccx -i cantilever >cantilever.log || { tail -n 20 cantilever.log; exit 1; }
printf '\nIts results go into the same database, as iteration 0:\n'
run qelta import cantilever.frd run.db --set ITERATION=0

title "What is there; the displacements of the last load increment; the highest stresses in it"
run qelta info run.db
run qelta show run.db -w LABEL=DISP -w INCREMENT=max --id 9,18,27
run qelta stats run.db -w LABEL=STRESS -w INCREMENT=max
run qelta find run.db --latest

title "The highest displacement, by a C++ program of 60 lines"
run "$build/examples/cpp/highest_displacement" cantilever.frd

title "Pictures"
run qelta plot run.db -y OBJECTIVE_VALUE
run qelta plot run.db -y OBJECTIVE_VALUE -o compliance.svg
run qelta export run.db -w ITERATION=0 -o cantilever.pvd
run qelta export run.db -w ITERATION=1.. -w ONF=element_density -o design.pvd
run qelta report run.db -o report.html
run qelta verify run.db

title "Where it is"
printf '%-14s %s\n' \
  database "$work/run.db" \
  chart "$work/compliance.svg" \
  report "$work/report.html, for any browser" \
  ParaView "$work/cantilever.pvd, $work/design.pvd"
