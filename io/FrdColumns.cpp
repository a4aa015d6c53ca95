#include "FrdColumns.h"

#include <charconv>

namespace qelta {
namespace {

constexpr std::size_t kWidth = 12;  // of "-1.80873E+02" and " 1.80873E+02"

unsigned Digit(char c) { return static_cast<unsigned>(c) - '0'; }

// Both factors of the result are exact doubles, so one rounding gives the nearest double.
bool ScaleExactly(unsigned mantissa, int power, double& value) {
  constexpr int kLastExactPower = 22;
  static constexpr double kPowers[kLastExactPower + 1] = {
      1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
      1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  if (power < -kLastExactPower || power > kLastExactPower) return false;
  value = power < 0 ? mantissa / kPowers[-power] : mantissa * kPowers[power];
  return true;
}

// The form that the solver writes, six digits with a two-digit exponent.
bool ParseUsualForm(const char* c, double& value) {
  if ((c[0] != ' ' && c[0] != '-') || c[2] != '.' || c[8] != 'E') return false;
  if (c[9] != '+' && c[9] != '-') return false;
  const unsigned digits[] = {Digit(c[1]), Digit(c[3]), Digit(c[4]),  Digit(c[5]),
                             Digit(c[6]), Digit(c[7]), Digit(c[10]), Digit(c[11])};
  for (const unsigned digit : digits) {
    if (digit > 9) return false;
  }
  unsigned mantissa = 0;
  for (int i = 0; i < 6; ++i) mantissa = 10 * mantissa + digits[i];
  const int exponent = static_cast<int>(10 * digits[6] + digits[7]);
  if (!ScaleExactly(mantissa, (c[9] == '-' ? -exponent : exponent) - 5, value)) return false;
  if (c[0] == '-') value = -value;
  return true;
}

template <class T>
bool ParseWhole(std::string_view text, T& value) {
  text = FrdTrim(text);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  return result.ec == std::errc() && result.ptr == end;
}

}  // namespace

std::string_view FrdTrim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool ParseFrdInteger(std::string_view column, std::int32_t& value) {
  return ParseWhole(column, value);
}

bool ParseFrdDouble(std::string_view column, double& value) {
  return (column.size() == kWidth && ParseUsualForm(column.data(), value)) ||
         ParseWhole(column, value);
}

}  // namespace qelta
