#!/bin/sh
# usage: topology.sh PROGRAM REFERENCE
# Every iteration of a small run agrees with an independent computation.
set -eu
table=$("$1" 12 4 12 memory small)
echo "$table" | "$2" 12 4 || { echo "$table"; exit 1; }
