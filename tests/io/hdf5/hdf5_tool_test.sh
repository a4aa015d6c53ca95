#!/bin/sh
# HDF5 files and the tool: import in all its variants, and what is not to be trusted. Arguments: the
# tool, the program that exports, a result file.
script=$(cd "$(dirname "$0")" && pwd)
. "$script/../../tools/harness.sh"
export_hdf5=$2
cp "$3" "$folder/job.frd"
cd "$folder" || exit 1

expect 0 import job.frd run.db
"$export_hdf5" run.db run.h5 || fail "the export failed"

check 0 "imported 48 blocks" import run.h5 back.db
check 0 "48 blocks in both, 0 different" diff run.db back.db --rel 0 --abs 0
check 0 "imported 48 blocks" import run.h5 back.db
check 0 "48 blocks in both, 0 different; 0 only" diff run.db back.db --rel 0 --abs 0
check 0 "imported 10 blocks" import run.h5 back.db --latest --set ITERATION=12
check 0 "imported 4 blocks" import run.h5 part.db -w LABEL=DISP -w LOADCASE=max --set STATE=!
check 0 "imported 24 blocks" import run.h5 part.db --step 1
expect 0 import -n run.h5 none.db -w LABEL=STRESS --set ITERATION=3
prints "would import 8 blocks"
prints "ITERATION=3/"
check 1 "imported 0 blocks" import run.h5 none.db -w LAYER=1
check 2 "leave --follow" import run.h5 none.db --follow

# Bad files make no database.
: >empty.h5
head -c 5000 run.h5 >cut.h5
mv job.frd frd.h5
check 3 "empty.h5: " import empty.h5 none.db
check 3 "cut.h5: " import cut.h5 none.db
check 3 "frd.h5: " import frd.h5 none.db
check 3 "Cannot open missing.h5: No such file" import missing.h5 none.db
[ ! -e none.db ] || fail "a failed import left a database"

# A reader that knows nothing of this library sees what the tool shows.
if [ -n "${QELTA_LONG_TESTS:-}" ]; then
  "$export_hdf5" odd.db || fail "no database of everything"
  "$export_hdf5" odd.db odd.h5 9 || fail "the compressed export failed"
  for database in run odd; do
    "$qelta" show $database.db --format jsonl >$database.jsonl || fail "show failed"
    /usr/bin/python3 "$script/compare_hdf5.py" $database.h5 $database.jsonl || fail "$database.h5"
  done
  mv run.h5 results.h5
  sed -n '/^```python$/,/^```$/p' "$script/../../../docs/hdf5.md" | sed '1d;/^```$/,$d' >example.py
  /usr/bin/python3 example.py >"$out" 2>"$err" || fail "the example of docs/hdf5.md"
  prints "LABEL=DISP DISPLACEMENT 54"
  prints "  node 45 moves by [ 1.17480e-01 "
fi
exit $status
