#!/bin/sh
# Every enumerator of the C++ headers has a Fortran constant of the same name and value, and the
# other way round; those that are nested in a class have the prefix qelta_, and the match modes none.
# Run in the project's folder.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# "NAME number" of the enumerators of one enumeration.
enumeration() {
  sed -n "/enum $2 /,/}/p" "$1" | sed -E 's,//.*,,' | tr ',{}' '\n\n\n' |
    awk '/[A-Z]_?[A-Z]/ && !/enum/ { if ($2 == "=") number = $3; print $1, number++ }'
}

onf=platform/QeltaOnfSpecification
keys=QeltaDataDescriptor.m/src
{
  for name in FED_OnfId FED_OnfCategoryId FED_IdType FED_BlockDataType; do
    enumeration $onf/$name.h "$(echo $name | sed 's/FED_Block/Block/')"
  done
  enumeration $keys/FED_DataDescriptorPattern.h MatchMode
  enumeration $keys/FED_DataDescriptor.h ResultIndex | sed 's/^/QELTA_/'
  enumeration database/FED_Database.h AccessMode | sed 's/^/QELTA_/'
} | sort >"$work/cpp"

sed 's/!.*//' fortran/qelta_kinds.f90 | tr a-z A-Z | tr ',&:' '\n\n\n' |
  awk '$2 == "=" && $3 ~ /^[0-9]+$/ && NF == 3 { print $1, $3 }' |
  grep -E '^(ONF|ID_TYPE|BLOCK_DATA|MATCH|QELTA)_' | grep -v '^QELTA_OK ' | sort >"$work/fortran"

[ "$(wc -l <"$work/cpp")" -ge 120 ]
diff "$work/cpp" "$work/fortran"
