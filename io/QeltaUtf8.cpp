#include "QeltaUtf8.h"

namespace qelta {

std::size_t SkipCharacters(const std::string& text, std::size_t begin, std::size_t count) {
  const auto goesOn = [&text](std::size_t at) {
    return (static_cast<unsigned char>(text[at]) & 0xC0u) == 0x80u;
  };
  for (; count > 0 && begin < text.size(); --count) {
    ++begin;
    while (begin < text.size() && goesOn(begin)) ++begin;
  }
  return begin;
}

std::size_t CountCharacters(const std::string& text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); i = SkipCharacters(text, i, 1)) ++count;
  return count;
}

}  // namespace qelta
