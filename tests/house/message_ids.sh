#!/bin/sh
# Every place that raises a failure has a message id of its own, so that an id leads to one place.
set -u
repeated=$(grep -rhoE --include='*.cpp' --include='*.h' '"[0-9]{12}"' \
  platform support QeltaDataDescriptor.m QeltaDataBlock.m database storage fortran io plot tools | sort | uniq -d)
[ -z "$repeated" ] && exit 0
echo "message ids that stand more than once:" "$repeated"
exit 1
