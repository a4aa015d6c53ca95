#include "Table.h"

#include <QeltaUtf8.h>

#include <algorithm>
#include <numeric>

#include "Console.h"

namespace qelta {
namespace {

constexpr std::size_t kLongWord = 24;
constexpr std::size_t kShortTitle = 5;
constexpr std::size_t kGap = 2;  // before each column

std::string Pad(const std::string& cell, std::size_t width, Table::Align align) {
  const std::string blanks(width - std::min(width, CountCharacters(cell)), ' ');
  return align == Table::Align::Left ? cell + blanks : blanks + cell;
}

using Lines = std::vector<std::string>;

Lines Wrap(std::string text, std::size_t width) {
  Lines lines;
  while (CountCharacters(text) > width) {
    const std::size_t limit = SkipCharacters(text, 0, width);
    // Before the component of a field there is a good place, too.
    const std::size_t found = text.find_last_of(" .", limit);
    const std::size_t end = found != std::string::npos && found > 0 ? found : limit;
    lines.push_back(text.substr(0, end));
    text.erase(0, end + (text[end] == ' ' ? 1 : 0));
  }
  lines.push_back(text);
  return lines;
}

// The least width that needs no more lines: LOAD and CASE rather than LOADC and ASE.
std::size_t EvenWidth(const std::string& text, std::size_t width) {
  const std::size_t length = CountCharacters(text);
  if (length <= width || text.find_first_of(" .") != std::string::npos) return width;
  const std::size_t lines = (length + width - 1) / width;
  return (length + lines - 1) / lines;
}

std::size_t LongestWord(const std::string& text) {
  std::size_t longest = 0;
  for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 1) {
    end = text.find(' ', begin);
    longest = std::max(longest, CountCharacters(text.substr(begin, end - begin)));
  }
  return longest;
}

}  // namespace

// The greatest measure of the cells of each column.
std::vector<std::size_t> Table::Widest(Measure measure, bool withTitles) const {
  std::vector<std::size_t> widths(m_Columns.size(), 0);
  for (std::size_t row = m_HasTitles && !withTitles ? 1 : 0; row < m_Rows.size(); ++row) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], measure(m_Rows[row][i]));
    }
  }
  return widths;
}

// Numbers are never broken, words only where they are very long.
std::vector<std::size_t> Table::Narrowest() const {
  const std::vector<std::size_t> words = Widest(LongestWord);
  std::vector<std::size_t> widths = Widest(CountCharacters, false);
  for (std::size_t i = 0; i < widths.size(); ++i) {
    widths[i] = m_Columns[i] == Align::Left ? std::min(words[i], kLongWord)
                                            : std::max(widths[i], kShortTitle);
  }
  return widths;
}

// Makes the columns fit the terminal, if they can.
void Table::Narrow(std::vector<std::size_t>& widths) const {
  const std::vector<std::size_t> narrowest = Narrowest();
  const std::size_t room = Console::GetWidth();
  std::size_t total = std::accumulate(widths.begin(), widths.end(), kGap * widths.size());
  for (; total > room; --total) {
    std::size_t* widest = nullptr;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const bool canShrink = widths[i] > narrowest[i];
      if (canShrink && (widest == nullptr || widths[i] > *widest)) widest = &widths[i];
    }
    if (widest == nullptr) return;
    --*widest;
  }
}

std::string Table::RowText(std::size_t row, const std::vector<std::size_t>& widths) const {
  const bool isTitle = row == 0 && m_HasTitles;
  std::vector<Lines> cells;
  std::size_t height = 0;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const std::string& text = m_Rows[row][i];
    cells.push_back(Wrap(text, isTitle ? EvenWidth(text, widths[i]) : widths[i]));
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

void Table::AddTitles(std::vector<std::string> cells) {
  m_Rows.insert(m_Rows.begin(), std::move(cells));
  m_HasTitles = true;
}

std::size_t Table::GetWidth() const {
  const std::vector<std::size_t> widths = Widest(CountCharacters);
  return std::accumulate(widths.begin(), widths.end(), kGap * widths.size());
}

std::size_t Table::GetLeastWidth() const {
  const std::vector<std::size_t> widths = Narrowest();
  return std::accumulate(widths.begin(), widths.end(), kGap * widths.size());
}

void Table::Print() const {
  std::vector<std::size_t> widths = Widest(CountCharacters);
  Narrow(widths);
  for (std::size_t i = 0; i < m_Rows.size(); ++i) {
    const std::string text = RowText(i, widths);
    if (i == 0 && m_HasTitles) {
      Console::PrintBold(text);
    } else {
      Console::Print(text);
    }
  }
}

}  // namespace qelta
