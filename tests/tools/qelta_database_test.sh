#!/bin/sh
# The commands that write, on databases on disk: what they leave there, above all when something
# goes wrong. Arguments: the tool, a result file in text form, the same results in binary form.
. "$(dirname "$0")/harness.sh"
cp "$2" "$folder/job.frd"
deck=$(cd "$(dirname "$2")" && pwd)/cantilever.inp
cp "$3" "$folder/binary.frd"
cd "$folder" || exit 1

# count DB NUMBER [ARGUMENT...]: so many blocks are in it.
count() {
  code=0
  [ "$2" -gt 0 ] || code=1
  db=$1
  number=$2
  shift 2
  expect "$code" ls "$db" --count "$@"
  [ "$(cat "$out")" = "$number" ] || fail "not $number blocks in $db: ls $*"
}
# set_bytes FILE OFFSET BYTES: overwrites them; BYTES as printf takes them.
set_bytes() { printf "$3" | dd of="$1" bs=1 seek="$2" conv=notrunc 2>/dev/null; }

# import: once, again, a part, under other keys, beside what is there; each run is one checkpoint.
check 0 "imported 48 blocks" import job.frd run.db
count run.db 48
expect 0 info run.db
sed 1,7d "$out" >blocks
check 0 "imported 48 blocks" import job.frd run.db
expect 0 info run.db
sed 1,7d "$out" | diff - blocks >/dev/null || fail "importing again changed the list of blocks"
expect 0 diff job.frd run.db
expect 0 diff job.frd run.db --rel 0 --abs 0
check 0 "imported 10 blocks" import job.frd run.db --latest --set ITERATION=12
count run.db 10 -w ITERATION=12
count run.db 6 -w ITERATION=12 -w STATE=4
check 0 "imported 24 blocks" import job.frd steps.db --step 1
count steps.db 0 -w LOADCASE=2
check 0 "imported 4 blocks" import - steps.db -w LABEL=DISP -w STATE=1.. <job.frd
count steps.db 28
printf 'id,load.x,load.y,load.z\n9,1,2,3\n18,4,5,6\n' >loads.csv
check 0 "imported 2 records as LABEL=loads/ID_TYPE=0" import loads.csv steps.db --set ID_TYPE=0
check 0 "18,4,5,6" show steps.db -w LABEL=loads --format csv

# The text form has six digits; the binary form of the same job agrees with it.
expect 0 import binary.frd binary.db
expect 0 diff run.db binary.db -w ITERATION=! --rel 1e-5 --abs 1e-5 --only-different
expect 1 diff run.db binary.db -w LABEL=STRESS -w SUBSTEP=7 -w ITERATION=! --rel 1e-9
prints "worst: node "

# So does a fresh run of the solver, which then writes the binary form.
if command -v ccx >/dev/null; then
  sed 's/^\*NODE FILE/*NODE OUTPUT/; s/^\*EL FILE/*ELEMENT OUTPUT/' "$deck" >fresh.inp
  ccx -i fresh >"$out" 2>&1
  check 0 "binary" info fresh.frd
  expect 0 import fresh.frd fresh.db
  expect 0 diff job.frd fresh.db -w LABEL=DISP,STRESS -w STATE=! --rel 1e-3 --abs 1e-3
fi

# What reads a result file reads a database, and says the same.
for arguments in "find -w LABEL=DISP" "stats -w LABEL=STRESS -w INCREMENT=max" \
  "show -w LABEL=DISP -w SUBSTEP=1 --id 2..9 --format csv" "ls -w STATE=max/LOADCASE --format jsonl" \
  "show -w ONF=element_attributes --format json" "stats --by SUBSTEP --format csv"; do
  # shellcheck disable=SC2086 # words are wanted
  expect 0 $arguments job.frd
  sort "$out" >of_file
  # shellcheck disable=SC2086
  expect 0 $arguments run.db -w ITERATION=!
  sort "$out" | diff - of_file >/dev/null || fail "$arguments: database and file differ"
done
{ "$qelta" show run.db 2>"$err"; echo $? >code; } | true
[ "$(cat code)" = 0 ] && [ ! -s "$err" ] || fail "a closed pipe is no error"

# copy and rm.
check 0 "copied 4 blocks, 0 of them replaced, 0 skipped" copy run.db two.db -w LABEL=DISP -w STATE=! -w ITERATION=!
check 2 "skip or replace" copy run.db two.db -w LABEL=DISP -w ITERATION=!
count two.db 4
check 0 "would copy 8 blocks, 4 of them replaced" copy run.db two.db -w LABEL=DISP -w ITERATION=! \
  --on-conflict replace --dry-run
count two.db 4
check 0 "copied 4 blocks, 0 of them replaced, 4 skipped" copy run.db two.db -w LABEL=DISP \
  -w ITERATION=! --on-conflict skip
check 0 "copied 8 blocks, 8 of them replaced" copy binary.db two.db -w LABEL=DISP --on-conflict replace
expect 0 diff binary.db two.db -w LABEL=DISP --only-different
check 0 "copied 8 blocks" copy binary.db two.db -w LABEL=DISP --set ITERATION=3
check 1 "only in second  ITERATION=3" diff binary.db two.db -w LABEL=DISP --only-different
"$qelta" diff binary.db two.db -w LABEL=NIX >"$out" 2>"$err" && fail "nothing compared is not the same"
complains "nothing is compared"
check 2 'the value is empty' show binary.db --id ''
check 2 "ends before it begins" show binary.db --rows 5..3
expect 1 diff binary.db two.db -w LABEL=DISP -w ITERATION=? --ignore-field ITERATION
check 0 "would delete 8 blocks" rm two.db -w ITERATION=3 -n
check 2 "--yes" rm two.db -w ITERATION=3 </dev/null
count two.db 16
check 0 "deleted 8 blocks" rm two.db -w ITERATION=3 --yes
count two.db 8
expect 1 rm two.db -w ITERATION=3 --yes
check 3 "no database" rm missing.db --all --yes
[ ! -e missing.db ] || fail "rm made a database"

# backup, compact, verify, salvage.
expect 0 rm run.db -w ITERATION=12 -y
before=$(du -s run.db | cut -f1)
expect 0 backup run.db saved.db
expect 0 rm run.db -w "LABEL~'*S*'" -y
expect 0 compact run.db
[ "$(du -s run.db | cut -f1)" -lt "$before" ] || fail "compact gave nothing back"
check 0 "48 blocks" verify saved.db
prints intact
check 0 "[]" verify saved.db --format json
check 0 "DISPLACEMENT,DISP,I|V,4,216" info saved.db --format csv
check 0 '"ids":{"node":54,' info saved.db --format json
expect 0 diff job.frd saved.db --only-different
cp -r binary.db damaged.db
set_bytes damaged.db/payload-1.qd 20000 '\377\000\377'
"$qelta" verify damaged.db >"$out" 2>"$err"
[ $? -eq 3 ] && [ ! -s "$err" ] && counts 2 || fail "verify of a damaged database"
"$qelta" verify damaged.db --format jsonl | grep -q '^{"problem":"Block ONF=' || fail "verify as json"
block=$(sed -n 's/^Block \(ONF=[^:]*\): .*/\1/p' "$out")
[ -n "$block" ] || fail "verify names no block"
check 3 "Block $block" backup damaged.db other.db
check 3 "Block $block" copy damaged.db other.db
check 3 "Block $block" compact damaged.db
check 1 "salvaged with losses" salvage damaged.db salvaged.db
prints "Block $block"
check 1 "1 different; 0 only in the first, 0 only in the second" diff binary.db salvaged.db
check 0 "all salvaged" salvage saved.db whole.db
expect 0 diff saved.db whole.db --only-different

# An import killed half-way leaves the last checkpoint and can be repeated; readers go on meanwhile.
mkfifo pipe
for signal in KILL INT; do
  "$qelta" import - saved.db --set ITERATION=1 <pipe >"$out" 2>"$err" &
  import=$!
  exec 3>pipe
  head -c 90000 job.frd >&3
  until grep -q "$import" saved.db/lock; do sleep 0.01; done
  count saved.db 48
  check 4 "$import" rm saved.db --all --yes
  kill -s $signal $import
  { tail -c +90001 job.frd; cat job.frd job.frd; } >&3 2>/dev/null
  exec 3>&-
  wait $import 2>/dev/null
  code=$?
  [ $signal = KILL ] || [ $code -eq 130 ] || fail "Ctrl-C gives $code"
  count saved.db 48
  expect 0 verify saved.db
done
expect 0 import job.frd saved.db --set ITERATION=1
count saved.db 96

# Damaged input: exit 3 or 4 and one line that names it, or what is left is fine.
# survives NAME COMMAND...: no crash and no second line.
survives() {
  name=$1
  shift
  "$qelta" "$@" >"$out" 2>"$err"
  code=$?
  case $code in
    0 | 1) [ ! -s "$err" ] || fail "qelta $* complained" ;;
    3 | 4) [ "$(wc -l <"$err")" -eq 1 ] && grep -q "^qelta: .*$name" "$err" || fail "qelta $*: $name" ;;
    *) fail "qelta $* of damaged input gave $code" ;;
  esac
}
# All nodes, two elements, and the first three rows of results.
awk 'NR < 74 || (NR > 102 && NR < 113) || /^ 9999/ { print } NR == 73 || NR == 112 { print " -3" }' \
  job.frd >small.frd
check 0 "54 nodes, 2 elements" info small.frd
lines=$(wc -l <small.frd)
line=0
while [ $line -lt "$lines" ]; do
  head -n $line small.frd >cut.frd
  survives cut.frd info cut.frd
  sed -n "$((line + 1))p" small.frd | head -c 30 >>cut.frd
  survives cut.frd stats cut.frd
  line=$((line + 1))
done
size=$(wc -c <binary.frd)
at=100
while [ $at -lt "$size" ]; do
  head -c $at binary.frd >cut.frd
  survives cut.frd info cut.frd
  cp binary.frd flipped.frd
  set_bytes flipped.frd $at '\377'
  survives flipped.frd stats flipped.frd
  at=$((at + 499))
done
check 3 "flipped.frd, byte" import flipped.frd two.db
count two.db 8
head -c 5000 binary.db/payload-1.qd >random
mkdir empty.db
: >empty
cp -r binary.db newer.db
set_bytes newer.db/catalogue.sqlite 60 '\000\000\000\002'
cp -r binary.db headless.db
: >headless.db/payload-1.qd
cp -r binary.db lost.db
rm lost.db/catalogue.sqlite
cp -r binary.db scribbled.db
set_bytes scribbled.db/catalogue.sqlite 0 'scribbled over the head of the file'
while read -r source complaint; do
  check 3 "$complaint" info "$source"
  check 3 "$complaint" ls "$source"
  check 3 "$complaint" copy "$source" never.db
  [ "${source%.db}" = "$source" ] || check 3 "$complaint" verify "$source"
done <<'TABLE'
random random, line 1
empty empty is empty
missing missing
empty.db There is no database
newer.db newer version
headless.db no valid header
lost.db catalogue.sqlite is lost
scribbled.db scribbled.db
TABLE

# Whose fault it is, and that nothing is left behind.
printf 'u.x,u.y,u.z\n1,2,3\n1,a,3\n' >letters.csv
printf 'v\n1\n1e400\n' >huge.csv
head -c 50000 job.frd >cut.frd
while IFS='|' read -r code complaint arguments; do
  # shellcheck disable=SC2086 # words are wanted
  check "$code" "$complaint" $arguments </dev/null
  [ ! -e never.db ] || fail "qelta $arguments left a database behind"
done <<'TABLE'
3|missing|import missing never.db
3|ends too early|import cut.frd never.db
1|imported 0 blocks|import job.frd never.db -w LAYER=1
1|imported 0 blocks|import job.frd never.db --step 9
1|imported 0 blocks|import job.frd never.db --step 9 --latest
1|imported 0 blocks|import job.frd never.db --step 9 --follow
2|--follow|import job.frd never.db --timeout 1
2|read only once|import - never.db --latest
2|read only once|import - never.db -w INCREMENT=max
2|read only once|copy - never.db
2|would both become|import job.frd never.db -w LABEL=DISP --set SUBSTEP=1 --set INCREMENT=1
2|would both become|copy binary.db never.db -w LABEL=DISP --set ONF=101 --set SUBSTEP=1 --set STATE=!
3|line 3: 'a' in the column u.y|import letters.csv never.db
3|line 3: '1e400' in the column v|import huge.csv never.db
2|no ONF|import loads.csv never.db --set ONF=101
2|any field|import loads.csv never.db --set LABEL=!
2|leave --where|import table.csv never.db --csv --step 1
4|/nix/|copy binary.db nix/never.db
4|/nix/|backup binary.db nix/never.db
4|/nix/|salvage binary.db nix/never.db
2|exists|backup binary.db loads.csv
2|exists|salvage binary.db two.db
2|is a file|copy binary.db loads.csv
2|standard output|copy binary.db -
0|would import 2 records|import loads.csv two.db -n
1|imported 0 blocks|import job.frd two.db -w LAYER=1
TABLE
exit "$status"
