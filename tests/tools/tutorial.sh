#!/bin/sh
# usage: tutorial.sh QELTA
# The commands of the tutorial print what it says. Run in the project's folder.
set -eu
project=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
PATH=$(dirname "$1"):$PATH
sed -n '/^```console$/,/^```$/p' docs/tutorial.md | sed '/^```/d' >"$work/told"
cd "$work"
ln -s "$project/examples" examples

solver=$(command -v ccx || true)
# A solver of another version may differ in the last digits: its results are compared, those that
# the project keeps are looked at.
ccx() {
  if [ -n "$solver" ]; then
    "$solver" "$@"
    qelta diff cantilever.frd examples/data/cantilever.frd -w LABEL=DISP,STRESS -w STATE=! \
      --rel 1e-3 --abs 1e-3 >differences || cat differences
  fi
  cp examples/data/cantilever.frd .
}

sed -n 's/^\$ //p' told >commands
while read -r line; do
  printf '$ %s\n' "$line"
  eval "$line" 2>&1 </dev/null || true
done <commands >printed
diff told printed
