#!/bin/sh
# The library shows the classes, functions and entry points that the list names, and nothing else.
set -eu
library=$1
list=$2
nm --dynamic --defined-only --demangle "$library" |
  sed -E 's/^[0-9a-f]+ . //; s/^(vtable for|typeinfo for|typeinfo name for|VTT for) //' |
  sed -E 's/(\[abi:cxx11\])?[(:].*$//' | sort -u | diff "$list" -
