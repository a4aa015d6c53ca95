#pragma once

#include <string>
#include <string_view>

namespace qelta {

/// Writes `text` and a line end to standard error in one piece. Line breaks and other control
/// characters, with the blanks around them, become one blank each. Never throws.
void WriteErrorLine(std::string_view text) noexcept;

/// `path` without its folders; the separators of both Linux and Windows count.
std::string_view BaseName(std::string_view path);

/// `text`, or a text that says so where there is none.
inline const char* OrUnknown(const char* text) { return text != nullptr ? text : "?"; }

}  // namespace qelta
