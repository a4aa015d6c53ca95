#include "NumberRanges.h"

#include <QeltaStringUtil.h>

#include <CLI/CLI.hpp>
#include <limits>
#include <sstream>

namespace qelta {
namespace {

int ParseNumber(const std::string& option, const std::string& text) {
  int number = 0;
  if (QeltaStringUtil::ToInt(text, number) != STATUS_OK) {
    throw CLI::ValidationError(option, "'" + text + "' is no number; write 3,7,10..19.");
  }
  return number;
}

}  // namespace

std::vector<NumberRange> ParseRanges(const std::string& option, const std::string& text) {
  std::vector<NumberRange> ranges;
  std::istringstream items(text);
  for (std::string item; std::getline(items, item, ',');) {
    const std::size_t dots = item.find("..");
    if (dots == std::string::npos) {
      const int number = ParseNumber(option, item);
      ranges.push_back({number, number});
      continue;
    }
    if (item == "..") throw CLI::ValidationError(option, "'..' has no end; write 3,7,10..19.");
    const std::string low = item.substr(0, dots), high = item.substr(dots + 2);
    ranges.push_back({low.empty() ? std::numeric_limits<int>::min() : ParseNumber(option, low),
                      high.empty() ? std::numeric_limits<int>::max() : ParseNumber(option, high)});
    if (ranges.back().first > ranges.back().last) {
      throw CLI::ValidationError(option, "'" + item + "' ends before it begins.");
    }
  }
  if (text.empty() || text.back() == ',') {
    throw CLI::ValidationError(option, "a number is missing at the end; write 3,7,10..19.");
  }
  return ranges;
}

}  // namespace qelta
