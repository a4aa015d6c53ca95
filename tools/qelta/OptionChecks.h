#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

namespace qelta {

// What the values of options must be. Others are refused in plain words.

CLI::Validator WholeNumber(std::int64_t lowest, std::int64_t highest);

/// A finite number that is not negative, and not 0 unless it `mayBeZero`.
CLI::Validator PlainNumber(bool mayBeZero);

/// One of some words.
CLI::Validator OneOf(const std::vector<std::string>& words);

/// One of some words, each of which stands for a value of an enumeration; use it with `transform`.
template <class Value>
CLI::Validator Choice(const std::map<std::string, Value>& values) {
  std::vector<std::string> words;
  words.reserve(values.size());
  for (const auto& [word, value] : values) words.push_back(word);
  const auto choose = [values, check = OneOf(words)](std::string& text) {
    std::string problem = check(text);
    if (problem.empty()) text = std::to_string(static_cast<int>(values.at(text)));
    return problem;
  };
  return CLI::Validator(choose, "");
}

}  // namespace qelta
