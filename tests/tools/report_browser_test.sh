#!/bin/sh
# Opens pages of `qelta report` in a browser without a screen. Arguments: the tool, a result file, the
# front end's folder, a folder for pictures. Takes a minute and fetches the driver of the browser.
[ -n "${QELTA_LONG_TESTS:-}" ] || exit 77
for program in npm node chromium; do command -v $program >/dev/null || exit 77; done
. "$(dirname "$0")/harness.sh"
results=$2
pictures=$4
cp "$3/package.json" "$3/package-lock.json" "$3/.npmrc" "$folder"
(cd "$folder" && npm ci --ignore-scripts --no-audit --no-fund --silent) || exit 1
printf 'id,u.x\n1,-2\n3,1.5\n4,nan\n' >"$folder/loads.csv"
expect 0 import "$results" "$folder/run.db"
expect 0 import "$folder/loads.csv" "$folder/run.db" --set ID_TYPE=1
mkdir -p "$pictures"
node "$(dirname "$0")/report_browser_test.mjs" "$folder" "$qelta" "$pictures" || status=1
exit $status
