#include "QeltaNames.h"

#include <algorithm>
#include <numeric>
#include <sstream>

namespace qelta {
namespace {

char Lower(char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return Lower(c); });
  return text;
}

// Number of letters to insert, delete or replace to turn one text into the other.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

// A word of a long name, or its beginning, may stand for it.
std::size_t Unlikeness(const std::string& name, const std::string& known) {
  std::size_t least = Distance(Lower(name), Lower(known));
  std::istringstream words(known);
  for (std::string word; std::getline(words, word, '_');) {
    const bool isBeginning = name.size() >= 3 && Lower(word).find(Lower(name)) == 0;
    least = std::min(least, isBeginning ? 1 : 1 + Distance(Lower(name), Lower(word)));
  }
  return least;
}

}  // namespace

std::string Join(const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "" : ", ") + text;
  return list;
}

bool IsSameName(const std::string& a, const std::string& b) { return Lower(a) == Lower(b); }

std::string SuggestLike(const std::string& name, const std::vector<std::string>& known) {
  const auto best = std::min_element(known.begin(), known.end(),
                                     [&name](const std::string& a, const std::string& b) {
                                       return Unlikeness(name, a) < Unlikeness(name, b);
                                     });
  const bool isLike = best != known.end() && Unlikeness(name, *best) <= 1 + name.size() / 4;
  return isLike ? " Did you mean " + *best + "?" : std::string();
}

std::string Suggest(const std::string& name, const std::vector<std::string>& known) {
  constexpr std::size_t kShortList = 14;
  std::string like = SuggestLike(name, known);
  if (!like.empty() || known.size() > kShortList) return like;
  return " Known are " + Join(known) + ".";
}

}  // namespace qelta
