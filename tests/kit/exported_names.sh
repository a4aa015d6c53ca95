#!/bin/sh
# Prints the names that shared libraries show, as the linker knows them: exported_names.sh LIBRARY...
for library; do
  case $library in
    *.dll) objdump -p "$library" | sed -n '/Ordinal.Name Pointer\] Table/,/^$/s/^\t*\[ *[0-9]*\] //p' ;;
    *) nm --dynamic --defined-only "$library" | sed 's/^[0-9a-f]* . //' ;;
  esac
done
