#pragma once

#include <cstdint>

namespace qelta {

// Entities at the indices index, index + 1, ... with the ids id, id + 1, ...
struct IdRun {
  std::int64_t index;
  std::int32_t id;
  std::uint32_t length;
};

}  // namespace qelta
