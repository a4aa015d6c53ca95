#!/bin/sh
# Charts: the numbers against a computation of their own, the pictures as files, and what is refused.
# Arguments: the tool, a result file.
. "$(dirname "$0")/harness.sh"
source=$2
unset LC_ALL LC_CTYPE
export LANG=C

# same NAME: what the tool printed agrees with series,x,value lines in $folder/expected.
same() {
  python3 - "$out" "$folder/expected" <<'PY' || fail "$1"
import csv, sys
told, expected = ([r for r in csv.reader(open(name))][first:] for name, first in ((sys.argv[1], 1), (sys.argv[2], 0)))
near = lambda a, b: abs(float(a) - float(b)) <= 1e-12 * max(1, abs(float(b)))
sys.exit(len(told) != len(expected) or not told or not all(
    a[0] == b[0] and near(a[1], b[1]) and near(a[2], b[2]) for a, b in zip(told, expected)))
PY
}

if command -v python3 >"$out"; then
  for of in max min mean norm; do
    "$qelta" show "$source" -w ONF=nodal_stress -w LOADCASE=1 --format jsonl | python3 -c "
import json, math, re, sys
steps = {}
for row in map(json.loads, sys.stdin):
    s = [row['STRESS.' + c] for c in ('xx', 'yy', 'zz', 'xy', 'yz', 'zx')]
    mises = math.sqrt(((s[0]-s[1])**2 + (s[1]-s[2])**2 + (s[2]-s[0])**2) / 2 + 3 * (s[3]**2 + s[4]**2 + s[5]**2))
    steps.setdefault(int(re.search('INCREMENT=([0-9]+)', row['descriptor'])[1]), []).append(mises)
of = {'max': max, 'min': min, 'mean': lambda v: sum(v) / len(v), 'norm': lambda v: math.hypot(*v)}['$of']
for step, values in sorted(steps.items()): print(f'$of STRESS.mises,{step},{of(values)!r}')
" >"$folder/expected"
    expect 0 plot "$source" -w LOADCASE=1 -y STRESS.von_mises --of $of --format csv
    same "the $of of stresses"
  done
  for frame in time frequency; do
    "$qelta" show "$source" --format jsonl | python3 -c "
import json, re, sys
frames, values = {}, {}
for row in map(json.loads, sys.stdin):
    key = row['descriptor']
    step = re.search('SUBSTEP=([0-9]+)', key)
    if 'FREQUENCY' in row or 'TIME' in row: frames[step[1]] = row.get('$frame'.upper())
    if 'LABEL=DISP' in key and row['id'] in (9, 18): values[row['id'], step[1]] = row[[n for n in row if n.endswith('.z')][0]]
for (node, step), value in sorted(values.items()):
    if frames[step] is not None: print(f'\"DISP.z, node {node}\",{frames[step]!r},{value!r}')
" >"$folder/expected"
    expect 0 plot "$source" -y DISP.z --id 9,18 -x $frame --format csv
    same "displacements over $frame"
  done

  printf 'index,a,b\n0,1,10\n1,2,\n2,3,30\n3,4,0\n4,5,50\n' >"$folder/odd.csv"
  "$qelta" import "$folder/odd.csv" "$folder/odd.db" --set "LABEL=<&> \"ä'" >"$out" || fail "import"
  expect 0 plot "$folder/odd.db" -y FIELD_1 -y FIELD_2 -x FIELD_1 -o "$folder/odd.svg" --title '<&>' --size 300x200
  [ ! -s "$out" ] || fail "a picture in a file, and something printed"
  python3 - "$folder/odd.svg" <<'PY' || fail "the picture is not as it should be"
import sys, xml.etree.ElementTree as tree
svg = '{http://www.w3.org/2000/svg}'
root = tree.parse(sys.argv[1]).getroot()
lines = [[len(line.get('points').split()) for line in g.iter(svg + 'polyline')] for g in root.iter(svg + 'g')]
texts = [t.text for t in root.iter(svg + 'text')]
assert lines == [[5], [3]], lines  # a single point and a gap before three
assert (root.get('width'), root.find(svg + 'title').text) == ('300', '<&>')
assert texts.count('<&>') == 1 and '<&> "ä\'.FIELD_1' in texts, texts
PY
  "$qelta" plot "$folder/odd.db" -y FIELD_2 --logy -o "$folder/log.svg" 2>"$err" || fail "a log axis"
  complains "1 value"

  for kind in png pdf; do
    "$qelta" plot "$source" -y DISP.z --id 9 -o "$folder/picture.$kind" --size 640x320 2>"$err"
    code=$?
    grep -q 'without cairo' "$err" && [ $code -eq 2 ] && continue
    [ $code -eq 0 ] || fail "no $kind"
    python3 - "$folder/picture.$kind" <<'PY' || fail "$kind is damaged"
import struct, sys, zlib
data = open(sys.argv[1], 'rb').read()
if sys.argv[1].endswith('.pdf'):
    assert data.startswith(b'%PDF-1.') and data.rstrip().endswith(b'%%EOF')
else:
    assert data.startswith(b'\x89PNG\r\n\x1a\n') and struct.unpack('>II', data[16:24]) == (640, 320)
    assert data.endswith(b'IEND' + struct.pack('>I', zlib.crc32(b'IEND')))
PY
  done
fi

expect 0 plot "$source" -w LOADCASE=1 -y DISP.z --id 9,18
prints "A  DISP.z, node 9"
prints "Displacement [length]"
LC_ALL=C grep -q '[^ -~]' "$out" && fail "other characters than ASCII"
LANG=C.UTF-8 expect 0 plot "$source" -w LOADCASE=1 -y DISP.magnitude
prints "max DISP.magnitude [length]"
prints "⠤"
LANG=C.UTF-8 expect 0 plot "$source" -w LOADCASE=1 -y DISP.magnitude --ascii
prints "*"
expect 1 plot "$source" -y DISP.z -w LAYER=1

# What is wrong is said before anything is drawn.
while IFS='|' read -r text arguments; do
  # shellcheck disable=SC2086
  check 2 "$text" plot "$source" -o "$folder/none.svg" $arguments
done <<'TXT'
take one of DISP.x, DISP.y, DISP.z, DISP.magnitude|-y DISP
Did you mean DISP.x?|-y DSIP.x
Did you mean STRESS.|-y STRESS.foo
There is no x 'FOO'|-y DISP.x -x FOO
None of the blocks has LAYER|-y DISP.x -x LAYER
LABEL holds texts|-y DISP.x -x LABEL
There is no field 'FOO'|-y DISP.x --by FOO
all records of a block are shown|-y DISP.x -x index --id 1
more than 100 records|-y DISP.x --id 1..
'5x5' is no size|-y DISP.x --size 5x5
'640' is no size|-y DISP.x --size 640
-y is required|
no value is above 0|-w LOADCASE=1 -y DISP.z --of min --logy
excludes|-y DISP.x --ascii
excludes|-y DISP.x --format csv
TXT
check 2 "is no picture" plot "$source" -y DISP.x -o "$folder/none.gif"
check 4 "Cannot write" plot "$source" -y DISP.x -o "$folder/none/none.svg"
: >"$folder/file"
check 4 "Cannot write" plot "$source" -y DISP.x -o "$folder/file/none.svg"
"$qelta" plot "$source" -y DISP.x --id 9,999 --ascii >"$out" 2>"$err" || fail "one unknown id"
complains "no values of DISP.x, node 999"
[ -z "$(find "$folder" -name 'none*' -o -name '*.tmp')" ] || fail "half a file was left behind"

exit $status
