#pragma once

#include <cstddef>
#include <cstdint>

namespace qelta {

/// What a block keeps beside its records. The numbers are stored.
enum class ContentKind : std::uint8_t { INT_LIST = 1, DOUBLE_LIST = 2, STRING = 3 };

/// "integer list", for messages.
inline const char* NameOf(ContentKind kind) {
  switch (kind) {
    case ContentKind::INT_LIST:
      return "integer list";
    case ContentKind::DOUBLE_LIST:
      return "double list";
    case ContentKind::STRING:
      return "string";
  }
  return "content";
}

/// The most strings and lists of one block: records refer to them by 31-bit handles.
constexpr std::uint64_t kMaxHandle = 0x7fffffff;

}  // namespace qelta
