#!/bin/sh
# The libraries show exactly the entry points of the list: exports.sh LIST LIBRARY...
set -eu
LC_ALL=C
export LC_ALL
list=$1
shift
expected=$(sed '/^#/d' "$list" | cut -d' ' -f2 | sort)
found=$("$(dirname "$0")/../kit/exported_names.sh" "$@" | grep '_F$' | sort)
[ "$found" = "$expected" ] && exit
echo "listed:" $expected
echo "shown:" $found
exit 1
