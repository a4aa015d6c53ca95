#!/bin/sh
# What export writes is what show says of the same blocks; what fails leaves nothing.
# Arguments: the tool, a result file, the folder of test data, python, and perhaps --vtk: then VTK
# reads the files, which is a long test.
. "$(dirname "$0")/harness.sh"
job=$2
data=$3
python=$4
vtk=${5:-}
[ -z "$vtk" ] || [ -n "${QELTA_LONG_TESTS:-}" ] || exit 77
here=$(cd "$(dirname "$0")" && pwd)
cd "$folder" || exit 1
mkdir work
cd work || exit 1

# holds TEXT ARGUMENT...: the reader finds that a file agrees with its source, and prints TEXT.
holds() {
  wanted=$1
  shift
  # shellcheck disable=SC2086 # nothing, or one word
  "$python" "$here/vtu_check.py" $vtk "$qelta" "$@" >"$out" 2>"$err" || fail "vtu_check $*"
  prints "$wanted"
}

# Steps of loads and of modes; the first file and those that copy from it; moved nodes.
check 0 "wrote run.pvd: 8 steps, 8 files" export "$job" -o run.pvd
prints "left out ONF=308/LABEL=HEADER"
[ "$(ls run_vtu | wc -l)" -eq 8 ] || fail "not 8 files"
grep -q '<DataSet timestep="8" part="0" file="run_vtu/step_8.vtu"/>' run.pvd || fail "no entry of step 8"
holds "54 points, 16 cells, 702 values, 1.0 " "$job" run_vtu/step_1.vtu INCREMENT=1 STATE=!
holds "54 points, 16 cells, 540 values, 8.0 STATE=4/" "$job" run_vtu/step_8.vtu STATE=4
check 0 "4 steps" export "$job" -w LABEL=DISP -w STATE=! -o times.pvd --compress
grep -q 'timestep="0.75"' times.pvd || fail "no time of step 3"
holds "162 values, 0.75 " "$job" times_vtu/step_3.vtu LABEL=DISP INCREMENT=3 STATE=!
expect 0 export "$job" -w LABEL=STRESS -w STATE=2 --deformed 0.5 -o mode.vtu
holds "324 values" --moved 0.5 "$job" mode.vtu LABEL=STRESS STATE=2

# All cell types, plain and compressed; parts of complex values.
for option in --no-progress --compress; do
  expect 0 export "$data/elements.frd" -o types.vtu "$option"
  holds "89 points, 12 cells, 267 values" "$data/elements.frd" types.vtu SUBSTEP=1
done
expect 0 export "$data/harmonic.frd" -o harmonic.pvd
holds "160 values" "$data/harmonic.frd" harmonic_vtu/step_08.vtu SUBSTEP=8
holds "144 values" "$data/harmonic.frd" harmonic_vtu/step_10.vtu SUBSTEP=10

# Values of some nodes, of one that is none of the mesh (which leaves a gap in it), and of elements.
printf 'id,load.x,load.y,load.z,count\n9,1,2,3,4\n999,0,0,0,0\n18,4,5,nan,-7\n' >loads.csv
printf 'id,a,b\n3,0.5,1.5\n16,2.5,inf\n' >pairs.csv
expect 0 import loads.csv some.db --set ID_TYPE=0
expect 0 import pairs.csv some.db --set ID_TYPE=1
expect 0 import "$job" some.db -w STATE=! -w INCREMENT=!
check 0 "left out 1 record of what is not in the mesh" export some.db -o some.vtu
holds "54 points, 16 cells, 248 values, None" some.db some.vtu

# A mesh of its own for each iteration, and two meshes at one step.
for iteration in 3 5; do
  expect 0 import "$job" meshes.db -w INCREMENT=4 --set ITERATION=$iteration
  expect 0 copy "$job" meshes.db -w "ONF=@geometry" --set ITERATION=$iteration --on-conflict replace
done
check 0 "2 steps, 2 files" export meshes.db -o meshes.pvd
holds "5.0 ITERATION=5" meshes.db meshes_vtu/step_2.vtu ITERATION=5
expect 0 copy "$job" meshes.db -w ONF=node_coordinates,element_topology --set LABEL='#2'
check 0 "2 steps, 4 files" export meshes.db -o meshes.pvd
grep -q 'timestep="5" part="1" file="meshes_vtu/step_2_part_2.vtu"' meshes.pvd || fail "no second part"

# Rows are those of show.
expect 0 export "$job" -w LABEL=DISP -w INCREMENT=2 -o rows.csv
expect 0 show "$job" -w LABEL=DISP -w INCREMENT=2 --format csv
cmp "$out" rows.csv || fail "rows.csv is not what show gives"
expect 0 export "$job" -o rows.jsonl
expect 0 show "$job" --format jsonl
cmp "$out" rows.jsonl || fail "rows.jsonl is not what show gives"
check 0 "54 rows of 1 block" export "$job" -w LABEL=DISP -w INCREMENT=2 -o rows.txt --format csv
check 0 "wrote tables/: " export "$job" -w LABEL=DISP,STRESS -w STATE=! --format csv -o tables/
[ "$(ls tables | wc -l)" -eq 8 ] || fail "not a table for each block"
cmp rows.csv tables/*INCREMENT=2_LABEL=DISP.csv || fail "a table in a folder differs"

# What fails leaves what was there.
rm -rf ./*
echo before >old.vtu
expect 1 export "$job" -w LAYER=1 -o new.vtu
check 2 "one step of one mesh, not 8" export "$job" -o old.vtu
check 2 "--format csv -o FOLDER/" export "$job" -o new.csv
check 2 "names no format" export "$job" -o new.foo
check 2 "vtu, pvd, hdf5, csv, jsonl" export "$job" -o new.vtu --format vtk
check 2 "means nothing for csv" export "$job" -o new.csv --compress
check 2 "not finite" export "$job" -o new.pvd --deformed inf
expect 2 export "$job"
check 3 "no displacement" export "$data/harmonic.frd" -o new.pvd --deformed 2
expect 3 export missing.frd -o new.vtu
check 4 "Cannot write no/new.vtu" export "$job" -w STATE=1 -o no/new.vtu
check 4 "Cannot write ./: " export "$job" -o ./ --format jsonl
[ ! -c /dev/full ] || check 4 "no plain file" export "$job" -o /dev/full --format jsonl
# Files of 4 KiB at most stand for a full disk.
for name in old.vtu new.pvd new.jsonl; do
  (trap '' XFSZ; ulimit -f 8; "$qelta" export "$job" -w LABEL=STRESS -w STATE=1 -o $name) >"$out" 2>"$err"
  [ $? -eq 4 ] && grep -q 'Cannot write' "$err" || fail "a full disk is no failure of $name"
done
[ "$(ls)" = old.vtu ] && [ "$(cat old.vtu)" = before ] || fail "failures left $(ls)"
expect 0 import "$job" bare.db -w LABEL=DISP
check 3 "There is no mesh for " export bare.db -w INCREMENT=max -o old.vtu
exit "$status"
