#!/bin/sh
# The library shows the classes, functions and entry points that the list names, and nothing else.
set -eu
library=$1
list=$2
"$(dirname "$0")/../kit/exported_names.sh" "$library" | c++filt |
  sed -E 's/^(vtable for|typeinfo for|typeinfo name for|VTT for) //' |
  sed -E 's/(\[abi:cxx11\])?[(:].*$//' | sort -u | diff "$list" -
