#!/usr/bin/env bash
# Puts the source of SQLite into FOLDER: sqlite3.c, sqlite3.h and VERSION, made of Debian's source
# package with Debian's corrections. Does nothing when they are there.
#   fetch-sqlite.sh FOLDER
set -euo pipefail
folder=$1
[ -f "$folder/VERSION" ] && exit

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$folder" "$work/lists/partial" "$work/made"
# The machine's own lists of packages stay as they are.
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
mirror=$(apt-get indextargets --format '$(REPO_URI)' "Codename: $release" | head -n 1)
echo "deb-src $mirror $release main" >"$work/sources.list"
from_source() {
  (cd "$work" && apt-get -qq -o Dir::Etc::sourcelist="$work/sources.list" -o APT::Sandbox::User=root \
    -o Dir::Etc::sourceparts=/dev/null -o Dir::State::lists="$work/lists" "$@")
}
from_source update
from_source source sqlite3 >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }

source=$(echo "$work"/sqlite3-*/)
make -s -C "$work/made" -f "$source/main.mk" TOP="$source" BCC="cc -O1" TCC=cc sqlite3.c sqlite3.h \
  >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
cp "$work/made/sqlite3.c" "$work/made/sqlite3.h" "$folder/"
sed -n 's/^Version: //p' "$work"/sqlite3_*.dsc >"$folder/VERSION"
