#pragma once

#include <cstddef>

namespace qelta::test {

/// The bytes that this program holds through operator new, and the most it ever held since
/// ResetPeakBytes. Need LiveBytes.cpp among the sources of the test program.
std::size_t LiveBytes();
std::size_t PeakBytes();
void ResetPeakBytes();

}  // namespace qelta::test
