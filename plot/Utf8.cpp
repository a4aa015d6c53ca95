#include "Utf8.h"

#include <QeltaStringUtil.h>

#include <algorithm>

namespace qelta {
namespace {

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; }

}  // namespace

std::size_t CharactersIn(const std::string& text) {
  const auto isFirst = [](char c) { return !IsContinuation(c); };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isFirst));
}

std::string FirstCharacters(const std::string& text, std::size_t count) {
  std::size_t end = 0;
  for (; end < text.size(); ++end) {
    if (!IsContinuation(text[end]) && count-- == 0) break;
  }
  return text.substr(0, end);
}

std::string CleanText(const std::string& text) {
  std::string clean;
  for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end) {
    end = begin + 1;
    while (end < text.size() && IsContinuation(text[end])) ++end;
    const std::string character = text.substr(begin, end - begin);
    const auto first = static_cast<unsigned char>(character.front());
    std::wstring wide;
    const bool isControl =
        first < ' ' || first == 0x7f || (first == 0xc2 && character < "\xc2\xa0");
    clean += !QeltaStringUtil::ToWide(character, wide) ? "?" : isControl ? " " : character;
  }
  return clean;
}

}  // namespace qelta
