#!/bin/sh
# The list of entry points, the C headers and the Fortran bindings say the same about the names, the
# number of arguments, and what is passed by value or by address. Run in the project's folder.
set -eu
here=$(dirname "$0")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed '/^#/d' "$here/entry_points.txt" | sort >"$work/listed"
awk -f "$here/c_signatures.awk" QeltaDataBlock.m/src/*_F.h QeltaDataDescriptor.m/src/*_F.h \
  fortran/*_F.h | sort >"$work/c"
cut -d' ' -f2- "$work/listed" | sed -E 's/ (object|data-in|data-out)/ address/g; s/ uint64/ int64/g' |
  sort >"$work/expected"
awk -f "$here/fortran_signatures.awk" fortran/qelta_bindings.f90 \
  fortran/qelta_id_bindings.f90 | sort >"$work/fortran"

[ "$(grep -c '^FED_' "$work/listed")" -eq 43 ]
diff "$work/listed" "$work/c"
diff "$work/expected" "$work/fortran"
