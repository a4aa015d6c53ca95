#pragma once

#include <cstddef>
#include <cstdlib>

namespace qelta::test {

/// Whether the environment asks for the tests that take minutes.
inline bool AreTestsLong() {
  const char* const value = std::getenv("QELTA_LONG_TESTS");
  return value != nullptr && *value != '\0';
}

inline std::size_t ChooseCount(std::size_t shortCount, std::size_t longCount) {
  return AreTestsLong() ? longCount : shortCount;
}

}  // namespace qelta::test
