#include "OptionChecks.h"

#include <QeltaNames.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace qelta {
namespace {

template <class Number>
bool Reads(const std::string& text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ptr == end && result.ec == std::errc();
}

// A check that complains "takes `what`, not 'text'".
template <class Test>
CLI::Validator Check(const std::string& what, Test test) {
  const auto check = [what, test](std::string& text) {
    return test(text) ? std::string() : "takes " + what + ", not '" + text + "'";
  };
  return CLI::Validator(check, "");
}

}  // namespace

CLI::Validator WholeNumber(std::int64_t lowest, std::int64_t highest) {
  return Check("a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest),
               [lowest, highest](const std::string& text) {
                 std::int64_t number = 0;
                 return Reads(text, number) && lowest <= number && number <= highest;
               });
}

CLI::Validator PlainNumber(bool mayBeZero) {
  return Check(mayBeZero ? "a number that is not negative" : "a number greater than 0",
               [mayBeZero](const std::string& text) {
                 double number = 0;
                 return Reads(text, number) && std::isfinite(number) &&
                        (number > 0 || (mayBeZero && number == 0));
               });
}

CLI::Validator OneOf(const std::vector<std::string>& words) {
  return Check("one of " + Join(words), [words](const std::string& text) {
    return std::find(words.begin(), words.end(), text) != words.end();
  });
}

}  // namespace qelta
