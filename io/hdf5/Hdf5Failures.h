#pragma once

#include <string>

#include "Hdf5Handle.h"

namespace qelta {

// Problems as failures that name the file.

[[noreturn]] void ThrowWriteFailure(const std::string& path, const Hdf5Problem& problem);

[[noreturn]] void ThrowOpenFailure(const std::string& path, const Hdf5Problem& problem);

/// `place` is the object in the file, or empty.
[[noreturn]] void ThrowReadFailure(const std::string& path, const std::string& place,
                                   const Hdf5Problem& problem);

}  // namespace qelta
