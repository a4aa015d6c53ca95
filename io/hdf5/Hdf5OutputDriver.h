#pragma once

#include "Hdf5Handle.h"

namespace qelta {

/// How files are made that nobody else looks at before they are whole.
///
/// The HDF5 library does not survive a device that refuses to write: it tries again when the
/// program ends, and crashes. So its files are written by a driver of our own, which remembers what
/// the system said (an `errno`; 0: nothing) and lets everything after that go nowhere. The result
/// is for H5Fcreate; `error` must outlive the file.
Hdf5Handle MakeOutputAccess(int& error);

}  // namespace qelta
