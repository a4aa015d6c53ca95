#pragma once

#include <cstddef>
#include <string>

namespace qelta {

// Characters of UTF-8 text: code points, however wide a terminal shows them. A byte that belongs to
// no character counts to the one before it.

std::size_t CountCharacters(const std::string& text);

/// Where the text goes on `count` characters behind `begin`, at most at its end.
std::size_t SkipCharacters(const std::string& text, std::size_t begin, std::size_t count);

}  // namespace qelta
