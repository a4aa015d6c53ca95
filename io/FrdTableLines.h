#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "FrdEvents.h"
#include "FrdSource.h"

namespace qelta {

/// Thrown where the file ends inside a table; FrdReader decides what that means.
struct FrdCut {};

/// The next line, which must begin with `key` (" -5"). The view holds until the source is asked
/// again.
std::string_view RequireFrdLine(FrdSource& source, std::string_view key);

/// The next line of a text table; false at the table's end, " -3".
bool NextFrdTableLine(FrdSource& source, std::string_view& line);

/// The next `count` bytes.
const char* RequireFrdBytes(FrdSource& source, std::size_t count);

/// The number of entries of a binary table, which only its head tells.
std::size_t RequireFrdCount(const FrdSource& source, const FrdTable& table);

/// A node or element id, which is positive.
std::int32_t RequireFrdId(const FrdSource& source, std::string_view column);
std::int32_t RequireFrdId(const FrdSource& source, std::int32_t id);

/// Fails when the line goes on behind column `last`.
void RequireFrdLineEnd(const FrdSource& source, std::string_view line, std::size_t last);

inline bool IsFrdText(FrdEncoding encoding) {
  return encoding == FrdEncoding::ShortText || encoding == FrdEncoding::LongText;
}

}  // namespace qelta
