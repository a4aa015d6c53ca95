#!/bin/sh
# Every folder of the product says what it is in a README.
status=0
for folder in platform/* support QeltaDataDescriptor.m/src QeltaDataBlock.m/src database storage \
  storage/* fortran io plot tools/qelta tools/report bench examples tests; do
  [ -d "$folder" ] || continue
  [ -f "$folder/README.md" ] || { echo "$folder has no README.md"; status=1; }
done
exit $status
