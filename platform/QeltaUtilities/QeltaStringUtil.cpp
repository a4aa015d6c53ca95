#include "QeltaStringUtil.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <system_error>
#include <utility>

namespace {

constexpr char kBlanks[] = " \t\n\v\f\r";

FedStatusCode StatusOf(std::errc error) {
  if (error == std::errc::result_out_of_range) return STATUS_OUT_OF_RANGE;
  return error == std::errc() ? STATUS_OK : STATUS_NO_NUMBER;
}

// from_chars knows the minus sign only.
std::size_t PlusSignLength(const std::string& number) {
  return number.size() > 1 && number[0] == '+' && number[1] != '-' ? 1 : 0;
}

constexpr char32_t kNoCharacter = 0xFFFFFFFF;

// The character at `next`, which moves behind it.
char32_t TakeUtf8(const char*& next, const char* end) {
  const unsigned lead = static_cast<unsigned char>(*next++);
  if (lead < 0x80) return lead;
  const int following = lead < 0xC2 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF5 ? 3 : 0;
  if (following == 0 || end - next < following) return kNoCharacter;
  char32_t character = lead & (0x3FU >> following);
  for (int i = 0; i < following; ++i) {
    const unsigned byte = static_cast<unsigned char>(*next++);
    if ((byte & 0xC0U) != 0x80) return kNoCharacter;
    character = (character << 6) | (byte & 0x3FU);
  }
  constexpr char32_t lowest[] = {0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = character >= 0xD800 && character < 0xE000;
  const bool fits = character >= lowest[following] && character <= 0x10FFFF && !isSurrogate;
  return fits ? character : kNoCharacter;
}

void AppendWide(std::wstring& wide, char32_t character) {
  if (sizeof(wchar_t) == 2 && character > 0xFFFF) {
    wide += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
    wide += static_cast<wchar_t>(0xDC00 + (character & 0x3FF));
  } else {
    wide += static_cast<wchar_t>(character);
  }
}

bool IsHighSurrogate(char32_t character) { return 0xd800 <= character && character < 0xdc00; }

bool IsLowSurrogate(char32_t character) { return 0xdc00 <= character && character < 0xe000; }

// False for what is no character.
bool AppendUtf8(std::string& utf8, char32_t character) {
  if (character > 0x10ffff || IsHighSurrogate(character) || IsLowSurrogate(character)) return false;
  int rest = 0;  // bytes behind the first one
  if (character >= 0x80) rest = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
  constexpr unsigned char kMarks[] = {0, 0xc0, 0xe0, 0xf0};
  utf8.push_back(static_cast<char>(kMarks[rest] | character >> 6 * rest));
  while (rest-- > 0) utf8.push_back(static_cast<char>(0x80 | (character >> 6 * rest & 0x3f)));
  return true;
}

}  // namespace

bool QeltaStringUtil::copy_to_fstr_trunc(const char* text, std::size_t length, char* buffer,
                                         std::int64_t bufferLength) {
  if (bufferLength <= 0 || buffer == nullptr) return length == 0;
  const std::size_t room = static_cast<std::size_t>(bufferLength);
  const std::size_t copied = std::min(length, room);
  if (copied > 0) std::memcpy(buffer, text, copied);
  std::memset(buffer + copied, ' ', room - copied);
  return copied == length;
}

FedStatusCode QeltaStringUtil::ToInt(const std::string& text, int& number) {
  const std::string digits = Trim(text);
  const char* const end = digits.data() + digits.size();
  int parsed = 0;
  const auto [stop, error] = std::from_chars(digits.data() + PlusSignLength(digits), end, parsed);
  if (stop != end) return STATUS_NO_NUMBER;
  if (error == std::errc()) number = parsed;
  return StatusOf(error);
}

bool QeltaStringUtil::ToWide(const std::string& utf8, std::wstring& wide) {
  std::wstring result;
  const char* const end = utf8.data() + utf8.size();
  for (const char* next = utf8.data(); next != end;) {
    const char32_t character = TakeUtf8(next, end);
    if (character == kNoCharacter) return false;
    AppendWide(result, character);
  }
  wide = std::move(result);
  return true;
}

bool QeltaStringUtil::ToUtf8(const std::wstring& wide, std::string& utf8) {
  std::string result;
  for (std::size_t i = 0; i < wide.size(); ++i) {
    auto character = static_cast<char32_t>(wide[i]);
    if constexpr (sizeof(wchar_t) == 2) {
      character &= 0xffff;
      if (IsHighSurrogate(character) && i + 1 < wide.size()) {
        const auto low = static_cast<char32_t>(wide[i + 1]) & 0xffff;
        if (IsLowSurrogate(low)) {
          character = 0x10000 + ((character - 0xd800) << 10) + (low - 0xdc00);
          ++i;
        }
      }
    }
    if (!AppendUtf8(result, character)) return false;
  }
  utf8 = std::move(result);
  return true;
}

std::string QeltaStringUtil::Trim(const std::string& text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}
