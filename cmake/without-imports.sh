#!/bin/sh
# Makes the objects of several DLLs fit for one: they export nothing, and what they import from each
# other is their own: without-imports.sh OBJCOPY NM CC FOLDER ARCHIVE...
# Writes the archives anew into FOLDER, and imports.o.
set -eu
objcopy=$1 nm=$2 cc=$3 folder=$4
shift 4
for archive; do
  "$objcopy" --remove-section .drectve "$archive" "$folder/$(basename "$archive")"
done

# An imported name is reached by an address under that name with __imp_ before it.
"$nm" "$@" 2>/dev/null >"$folder/names"
sed -n 's/^ *U __imp_//p' "$folder/names" | sort -u >"$folder/imported"
sed -n 's/^[0-9a-f]* [A-TV-Z] //p' "$folder/names" | sort -u | comm -12 "$folder/imported" - |
  sed '1i .data\n.balign 8
       s/.*/.globl __imp_&\n__imp_&: .quad &/' >"$folder/imports.s"
"$cc" -c "$folder/imports.s" -o "$folder/imports.o"
