#!/usr/bin/env bash
# Solves a small structure, then looks at its results. Takes the build folder.
set -euo pipefail
build=$1
qelta=$build/tools/qelta/qelta
work=$build/demo
mkdir -p "$work"
cp examples/data/cantilever.inp "$work"

step() { printf '\n== %s\n' "$1"; }

step "CalculiX solves $work/cantilever.inp"
(cd "$work" && ccx -i cantilever >cantilever.log) || { tail -n 20 "$work/cantilever.log"; exit 1; }
echo "its results: $work/cantilever.frd"

step "qelta info $work/cantilever.frd"
"$qelta" info "$work/cantilever.frd"

step "qelta find ... -w LABEL=DISP -w INCREMENT=max   (the last load increment)"
"$qelta" find "$work/cantilever.frd" -w LABEL=DISP -w INCREMENT=max

step "qelta find ... -w ONF=mode_shape -w STATE=..2   (the first two mode shapes)"
"$qelta" find "$work/cantilever.frd" -w ONF=mode_shape -w STATE=..2

step "the highest displacement, by a C++ program of 60 lines"
"$build/examples/cpp/highest_displacement" "$work/cantilever.frd"

step "a Fortran program optimises a cantilever of 60 x 20 elements and stores every iteration"
"$build/examples/fortran/topology_optimisation" 60 20 200 memory cantilever
