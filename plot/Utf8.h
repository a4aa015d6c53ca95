#pragma once

#include <cstddef>
#include <string>

namespace qelta {

/// The number of characters of a text in UTF-8.
std::size_t CharactersIn(const std::string& text);

/// The first `count` characters.
std::string FirstCharacters(const std::string& text, std::size_t count);

/// The text with a blank for each control character and a question mark for each byte that belongs
/// to no character of UTF-8.
std::string CleanText(const std::string& text);

}  // namespace qelta
