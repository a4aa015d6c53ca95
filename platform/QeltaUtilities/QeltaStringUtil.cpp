#include "QeltaStringUtil.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <system_error>

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

std::string QeltaStringUtil::Trim(const std::string& text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}
