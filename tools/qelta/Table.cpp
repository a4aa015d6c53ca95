#include "Table.h"

#include <algorithm>
#include <numeric>

namespace qelta {
namespace {

constexpr std::size_t kTerminalWidth = 80;
constexpr std::size_t kLongWord = 24;
constexpr std::size_t kGap = 2;  // before each column

std::string Pad(const std::string& cell, std::size_t width, Table::Align align) {
  const std::string blanks(width - std::min(width, cell.size()), ' ');
  return align == Table::Align::Left ? cell + blanks : blanks + cell;
}

using Lines = std::vector<std::string>;

Lines Wrap(std::string text, std::size_t width) {
  Lines lines;
  while (text.size() > width) {
    const std::size_t blank = text.rfind(' ', width);
    const bool atBlank = blank != std::string::npos && blank > 0;
    lines.push_back(text.substr(0, atBlank ? blank : width));
    text.erase(0, atBlank ? blank + 1 : width);
  }
  lines.push_back(text);
  return lines;
}

std::size_t Length(const std::string& text) { return text.size(); }

std::size_t LongestWord(const std::string& text) {
  std::size_t longest = 0;
  for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 1) {
    end = text.find(' ', begin);
    longest = std::max(longest, std::min(end, text.size()) - begin);
  }
  return longest;
}

}  // namespace

// The greatest measure of the cells of each column.
std::vector<std::size_t> Table::Widest(std::size_t (*measure)(const std::string&)) const {
  std::vector<std::size_t> widths(m_Columns.size(), 0);
  for (const auto& row : m_Rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], measure(row[i]));
    }
  }
  return widths;
}

// Makes the columns fit a terminal, if they can; words are broken only where they are very long.
void Table::Narrow(std::vector<std::size_t>& widths) const {
  const std::vector<std::size_t> words = Widest(LongestWord);
  std::size_t total = std::accumulate(widths.begin(), widths.end(), kGap * widths.size());
  for (; total > kTerminalWidth; --total) {
    std::size_t* widest = nullptr;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const bool canShrink =
          m_Columns[i] == Align::Left && widths[i] > std::min(words[i], kLongWord);
      if (canShrink && (widest == nullptr || widths[i] > *widest)) widest = &widths[i];
    }
    if (widest == nullptr) return;
    --*widest;
  }
}

std::string Table::RowText(const std::vector<std::string>& row,
                           const std::vector<std::size_t>& widths) const {
  std::vector<Lines> cells;
  std::size_t height = 0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    cells.push_back(Wrap(row[i], widths[i]));
    height = std::max(height, cells[i].size());
  }
  std::string text;
  for (std::size_t y = 0; y < height; ++y) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string part = y < cells[i].size() ? cells[i][y] : std::string();
      line += std::string(kGap, ' ') + Pad(part, widths[i], m_Columns[i]);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

std::string Table::ToString() const {
  std::vector<std::size_t> widths = Widest(Length);
  Narrow(widths);
  std::string text;
  for (const auto& row : m_Rows) text += RowText(row, widths);
  return text;
}

}  // namespace qelta
