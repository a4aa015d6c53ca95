#!/bin/sh
# What programs are bound to once they are linked: the exported symbols, and size and table of
# virtual functions of every public class. A difference from the lists kept here is a decision:
# docs/versions.md says which version it needs, QELTA_UPDATE_ABI=1 writes the lists anew.
# Arguments: compiler, a source that includes the public headers, folders to include from joined by
# colons, the libraries.
set -eu
compiler=$1 source=$2 folders=$3
shift 3
lists=$(dirname "$0")/abi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for library in "$@"; do
  name=$(basename "$library" .so)
  nm --dynamic --defined-only "$library" | cut -d ' ' -f 2- | sort -k 2 >"$work/${name#lib}.symbols"
done

cp "$source" "$work/headers.cpp"
(
  cd "$work"
  includes=$(printf %s "$folders" | sed "s/:/' -I'/g")
  eval "'$compiler' -std=c++17 -I'$includes' -fdump-lang-class=classes.txt -fsyntax-only headers.cpp"
)
# Of the classes of the library: "Class" with its size, "Vtable for" with its entries.
awk '
  /^(Class|Vtable for) / { own = $0 ~ /(FED_|Qelta|qelta::)/ && $0 !~ /(std|__gnu_cxx)::/ }
  /^$/ { own = 0 }
  own && /^Class|^Vtable|^   size=|^[0-9]/' "$work/classes.txt" |
  sed -E 's/^ +//; s/0x[0-9a-f]+//g; s/ base size.*//' >"$work/classes"
rm "$work/classes.txt" "$work/headers.cpp"

if [ -n "${QELTA_UPDATE_ABI:-}" ]; then
  rm -f "$lists"/*
  cp "$work"/* "$lists"
fi
diff -r "$lists" "$work" || {
  echo "the binary interface has changed: see docs/versions.md, then run with QELTA_UPDATE_ABI=1"
  exit 1
}
