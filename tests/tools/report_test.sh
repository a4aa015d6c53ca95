#!/bin/sh
# What `qelta report` writes, without a browser. Arguments: the tool, a result file, and whether this
# build has the report at all.
. "$(dirname "$0")/harness.sh"
results=$2
page=$folder/report.html
if [ "$3" != "ON" ]; then
  check 2 "no report" report "$results" -o "$page"
  exit $status
fi

reads() { python3 "$(dirname "$0")/report_check.py" "$page" "$qelta" "$1" >"$out" 2>"$err" || fail "$1: not what the tool shows"; }
expect 0 report "$results" -o "$page"
prints "wrote $page: 48 blocks"
reads "$results"
prints "1 mesh, 8 steps"
grep -q 'src="\|href="http\|<link\|@import' "$page" && fail "the page refers to something else"

# Texts of the database cannot end the script that they stand in.
printf 'id,u.x\n3,1.5\n4,nan\n' >"$folder/loads.csv"
expect 0 import "$results" "$folder/run.db"
expect 0 import "$folder/loads.csv" "$folder/run.db" --set ID_TYPE=1 --set "LABEL=</script><b>&'\""
expect 0 report "$folder/run.db" -o "$page"
[ "$(grep -c '</script><b>' "$page")" -eq 0 ] || fail "a label is markup"
python3 - "$page" >"$out" 2>"$err" <<'PYTHON' || fail "a label is not what it was"
import json, re, sys
text = re.search(r'id="report">(.*?)</script>', open(sys.argv[1]).read(), re.S).group(1)
fields = {field["name"]: field for field in json.loads(text)["meshes"][0]["fields"]}
assert fields["</script><b>&'\""]["isOnCells"]
assert fields["</script><b>&'\""]["blocks"][0]["ranges"] == [[1.5, "3", 1.5, "3"]]
PYTHON

# Steps go when the page is full, the first and the last stay, and somebody is told.
expect 0 report "$results" -o "$page" -w ONF=text_note
room=$(($(wc -c <"$page") + 50000))
"$qelta" report "$results" -o "$page" --max-size "$(awk "BEGIN { print $room / 1e6 }")" >"$out" 2>"$err" ||
  fail "no room for two steps"
complains "Of 8 steps"
[ "$(wc -c <"$page")" -le "$room" ] || fail "the page is too large"
grep -q '"notes":\["Of 8 steps' "$page" || fail "the page does not say what it leaves out"

expect 0 report "$folder/run.db" -o "$page" -w LABEL=DISP -w INCREMENT=max
prints "1 block"
expect 1 report "$results" -o "$folder/none.html" -w LAYER=1
check 2 "--output" report "$results"
check 2 "--max-size" report "$results" -o "$folder/none.html" --max-size 0
check 2 "allow more" report "$results" -o "$folder/none.html" --max-size 0.1
check 3 "absent.frd" report "$folder/absent.frd" -o "$folder/none.html"
check 4 "Cannot write" report "$results" -o "$folder/absent/none.html"
check 4 "no plain file" report "$results" -o "$folder"

# An element without its nodes.
sed 's/^ -2         1/ -2        99/' "$results" >"$folder/damaged.frd"
check 3 "" report "$folder/damaged.frd" -o "$folder/none.html"
[ -z "$(find "$folder" -name 'none*' -o -name '*part*')" ] || fail "a half page is left"
exit $status
