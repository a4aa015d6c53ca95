#!/bin/sh
# The tool as its user meets it: exit codes, what goes to which stream, 80 columns.
# Arguments: the tool, a result file in text form, the same results in binary form.
. "$(dirname "$0")/harness.sh"
text=$2
binary=$3

expect 0 info "$text"
prints "54 nodes, 16 elements (16 hex8)"
prints "1  static    1..4    1..4"
awk 'NR > 1 && length > 80 { exit 1 }' "$out" || fail "lines of more than 80 columns"
cp "$out" "$folder/info"
expect 0 info "$binary"
sed 1,4d "$folder/info" >"$folder/blocks"
sed 1,4d "$out" | diff - "$folder/blocks" >/dev/null || fail "binary info differs from text info"

expect 0 find "$text" -w LABEL=DISP -w INCREMENT=max
counts 1
prints "ONF=101/LOADCASE=1/SUBSTEP=4/ANALYSIS=0/INCREMENT=4/LABEL=DISP"
expect 0 find -w onf=mode_shape -w state=2.. "$text"
counts 3
check 0 '{"descriptor":"ONF=2"}' find "$text" -w ONF=2 --format json
check 0 '"elements":{"hex8":16}' info "$text" --format jsonl
counts 1
expect 0 find - <"$text"
counts 48
expect 0 ls - --count <"$text"
prints 48
cat "$text" | "$qelta" info - >"$out" 2>"$err" || fail "info of a pipe"
prints "54 nodes"
expect 1 find "$text" -w LAYER=1

expect 0 show "$text" -w LABEL=DISP -w INCREMENT=max --id 9,18
counts 5
prints "  node  DISPLACEMENT.x  DISPLACEMENT.y  DISPLACEMENT.z"
[ "$(awk 'NR > 3 { print $1 }' "$out" | xargs)" = "9 18" ] || fail "not the rows of nodes 9 and 18"
expect 0 show "$text" -w ONF=element_topology --head 1
prints "1 2 11 10 28 29 38 37"
expect 0 show "$text" -w ONF=element_attributes --id 16
prints "STEEL"
expect 1 show "$text" -w LAYER=1
expect 0 show "$text" -w LABEL=STRESS -w INCREMENT=max/LOADCASE -w SUBSTEP=4 --rows 1..2 --fields stress.xy
[ "$(awk 'NR > 3 { print NF, $1 }' "$out" | xargs)" = "2 2 2 3" ] || fail "not xy of rows 1 and 2"
expect 0 show "$text" -w ONF=element_attributes --head 1 --format jsonl
prints '{"descriptor":"ONF=11","index":0,"id":1,"GROUP":"GROUP_0","MATERIAL":"STEEL"}'
expect 0 show "$text" -w LABEL=DISP -w SUBSTEP=1 --id 2..3 --format csv
[ "$(head -1 "$out")" = "index,id,DISPLACEMENT.x,DISPLACEMENT.y,DISPLACEMENT.z" ] || fail "csv header"
counts 3
prints "1,2,-0.0144358,-0.0018476199999999999,-0.0354381"

expect 0 ls "$text" -w LABEL=DISP --sort substep --reverse --columns SUBSTEP,kind --format csv
[ "$(sed -n 2p "$out")" = "8,MODE_SHAPE" ] || fail "not sorted"
expect 0 ls "$text" --group-by kind
grep -q 'NODAL_STRESS  *8  *432  *20736' "$out" || fail "no sums of stresses"
expect 0 ls "$text" -w ONF=2 --format jsonl
prints '{"descriptor":"ONF=2","fields":{"ONF":2},"onf":2,"kind":"NODE_COORDINATES","records":54,"bytes":1296,"format":"I|V"}'
expect 1 ls "$text" -w LAYER=1 --format json
prints "[]"

expect 0 stats "$text" -w LABEL=STRESS -w INCREMENT=max
grep -q 'STRESS.mises  *33.0499  *18  *474.936  *29 ' "$out" || fail "no von Mises stress"
expect 0 stats "$text" -w LABEL=DISP -w ONF=displacement --by INCREMENT --format csv
counts 17

expect 0 diff "$text" "$text" --only-different
counts 1
expect 0 diff "$text" "$binary" --rel 1e-5 --abs 1e-5
expect 1 diff "$text" "$binary" --rel 1e-7 -w LABEL=STRESS -w SUBSTEP=7 --format jsonl
prints '"state":"different"'
prints 'node '
expect 1 diff "$text" "$binary" -w LABEL=DISP -w SUBSTEP=7 --tol STRESS=1
expect 0 diff "$text" "$binary" -w LABEL=DISP -w SUBSTEP=7 --tol DISP=1e-3

expect 0 import "$text" "$folder/new.db" --latest --set ITERATION=7 --dry-run
counts 11
prints "ITERATION=7/ONF=114/STATE=4/LOADCASE=2"
expect 0 copy "$text" "$folder/new.db" -w LABEL=DISP --dry-run
prints "would copy 8 blocks"
[ ! -e "$folder/new.db" ] || fail "a dry run made a database"
printf 'id,u.x,u.y,u.z\n3,1,2,3\n' >"$folder/loads.csv"
expect 0 import "$folder/loads.csv" "$folder/new.db" --set ID_TYPE=0 --dry-run
prints "1 record as LABEL=loads/ID_TYPE=0"
"$qelta" show "$text" -w LABEL=FORC -w INCREMENT=max --id 1,99 >"$out" 2>"$err" || fail "show with one unknown id"
complains "no record of node 99"

for command in info ls find show stats diff import copy export rm verify salvage compact backup completion help; do
  expect 0 $command --help
  prints "Examples:"
  awk 'length > 80 { exit 1 }' "$out" || fail "help of $command is wider than 80 columns"
  cp "$out" "$folder/help"
  expect 0 help $command
  diff "$out" "$folder/help" >/dev/null || fail "help $command differs from $command --help"
  expect 0 help --man $command
  prints ".TH qelta-$command 1"
done
expect 0 help pattern
prints "INCREMENT=max/LOADCASE"
expect 0 completion bash
grep -q "ls) options='.*--group-by" "$out" || fail "no completion of options"
prints "formats='vtu pvd hdf5 csv jsonl'"
expect 0 --help
prints "Exit codes"
expect 0 --version
prints "qelta "
expect 0 find --help
grep -q 'FIELD=VALUE \.\.\.' "$out" && fail "one selection for each -w"
expect 2
complains "the commands are info, "
expect 2 bogus
complains "the commands are info, "
expect 2 fnid "$text"
complains "Did you mean find?"
expect 2 find -w LABEL=DISP INCREMENT=max "$text"
expect 2 info
expect 2 info "$text" --bogus
expect 2 find "$text" -w LABL=DISP
complains "Did you mean LABEL?"
expect 2 find "$folder/missing.frd" -w LAYER=7
complains "from 1 to 3"

expect 2 find "$text" -w STATE=3..2
check 2 "Did you mean LABEL?" ls "$text" --sort LABL
check 2 "Columns are descriptor, onf" ls "$folder/missing.frd" --columns nope
check 2 "has a field 'nope'" show "$text" -w ONF=2 --fields nope,COORD
expect 0 show "$text" -w SUBSTEP=1 --fields STRESS.xx --id 3,1..3 --format csv
[ "$(cut -d, -f2 "$out" | xargs)" = "id 3 1 2" ] || fail "not once each record of the blocks with the field"
expect 0 stats "$text" -w LABEL=FORC --by LABEL
[ "$(head -1 "$out" | xargs | cut -d' ' -f1-3)" = "LABEL component min" ] || fail "label stands twice"
"$qelta" diff "$text" "$text" --tol NIX=1 >"$out" 2>"$err" || fail "an unknown label in --tol"
complains "no block has the label 'NIX'"
while IFS='|' read -r complaint arguments; do
  # shellcheck disable=SC2086 # words are wanted
  check 2 "$complaint (qelta --help says more)" $arguments "$text"
done <<'TABLE'
--format: takes one of csv, json, jsonl, table, not 'xml'|ls --format xml
--on-conflict: takes one of fail, replace, skip, not '0'|copy x.db --on-conflict 0
--head: takes a whole number from 0 to 2147483647, not '-1'|show --head -1
--head: takes a whole number from 0 to 2147483647, not '99999999999999999999'|show --head 99999999999999999999
--abs: takes a number that is not negative, not '-1'|diff x.db --abs -1
--rel: takes a number that is not negative, not 'nan'|diff x.db --rel nan
--timeout: takes a number greater than 0, not '0'|import --follow --timeout 0 x.db
TABLE
expect 2 show "$text" --id 1x
expect 2 stats "$text" --by foo
expect 2 diff "$text" "$text" --tol STRESS=nan
expect 2 import "$text" "$folder/new.db" --follow --latest
expect 2 import "$text" "$folder/new.db" --set ITERATION=x
expect 2 rm "$folder/new.db"
expect 2 help nothing
expect 3 import "$folder/missing.csv" "$folder/new.db"

expect 3 info "$folder/missing.frd"
expect 3 info "$folder"
: >"$folder/empty.frd"
expect 3 info "$folder/empty.frd"
complains "empty.frd is empty."
head -c 50000 "$text" >"$folder/cut.frd"
expect 3 info "$folder/cut.frd"
complains "ends too early"
complains "--running"
expect 0 info --running "$folder/cut.frd"
prints "no end record"

# What a damaged file holds must not steer the terminal.
printf '    1C\n    2C\n\033[31mred\177\007\n' >"$folder/steering.frd"
expect 3 info "$folder/steering.frd"
complains "[31mred"
tr -d '\n' <"$err" | grep -q '[[:cntrl:]]' && fail "control characters were printed"

# Many components, long lists of frames, a heading without blanks: still 80 columns.
awk 'BEGIN {
  printf "    1C\n    1U%0150d\n", 7
  for (i = 1; i < 200; i += 2) {
    printf "    1PSTEP              %12d%12d%12d\n    1PMODE              %12d\n", i, i, 1, i
    printf "  100CL  101 %.5E           1                     2%5d           1\n", i * 1234.567, i
    printf " -4  SDV        60    1\n"
    for (c = 1; c <= 60; ++c) printf " -5  SDV%-5d    1    1    0    0\n", c
    for (c = 1; c <= 60; ++c) printf (c % 6 == 1 ? (c == 1 ? " -1         1" : "\n -2          ") : "") " 1.00000E+00"
    printf "\n -3\n"
  }
  print " 9999"
}' >"$folder/wide.frd"
expect 0 info "$folder/wide.frd"
awk 'NR > 1 && length > 80 { exit 1 }' "$out" || fail "lines of more than 80 columns"
prints "I|60d"
prints ", ..., 199"

# Nobody wants the rest: no error. A full device: one.
{ "$qelta" find "$text" 2>"$err"; echo $? >"$folder/code"; } | true
[ "$(cat "$folder/code")" -eq 0 ] && [ ! -s "$err" ] || fail "a closed pipe is no error"
if [ -w /dev/full ]; then
  "$qelta" info "$text" >/dev/full 2>"$err"
  [ $? -eq 4 ] || fail "a full device gives 4"
fi
exit "$status"
