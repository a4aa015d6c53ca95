#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qelta {

struct NumberRange {
  int first;
  int last;

  bool Contains(std::int64_t number) const { return first <= number && number <= last; }
};

/// The ranges of a list such as "3,7,10..19", in order; open ends reach as far as numbers go. Fails
/// as a wrong command line does.
std::vector<NumberRange> ParseRanges(const std::string& option, const std::string& text);

}  // namespace qelta
