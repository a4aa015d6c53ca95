#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qelta {

/// Columns `first` to `first + width - 1` of a line, counted from 1; what lies behind the end of
/// the line is left out.
inline std::string_view FrdColumn(std::string_view line, std::size_t first, std::size_t width) {
  return first - 1 < line.size() ? line.substr(first - 1, width) : std::string_view();
}

/// Without blanks at both ends.
std::string_view FrdTrim(std::string_view text);

inline bool FrdIsBlank(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

/// Reads a number that fills its column but for blanks at its ends. False when the column is blank
/// or holds anything else; `value` is then unspecified. The double is the one nearest to the text;
/// NAN and INF are numbers.
bool ParseFrdInteger(std::string_view column, std::int32_t& value);
bool ParseFrdDouble(std::string_view column, double& value);

}  // namespace qelta
