#include "Table.h"

#include <algorithm>

namespace qelta {
namespace {

constexpr std::size_t kTerminalWidth = 80;

std::string Pad(const std::string& cell, std::size_t width, Table::Align align) {
  const std::string blanks(width - std::min(width, cell.size()), ' ');
  return align == Table::Align::Left ? cell + blanks : blanks + cell;
}

// Appends a text from the column where the line ends; its further lines begin there, too.
void AppendWrapped(std::string& line, std::string text) {
  const std::size_t indent = line.size();
  const std::size_t width = kTerminalWidth - std::min(indent, kTerminalWidth / 2);
  while (text.size() > width) {
    std::size_t cut = text.rfind(' ', width);
    if (cut == std::string::npos) cut = text.find(' ');
    if (cut == std::string::npos) break;
    line += text.substr(0, cut) + "\n" + std::string(indent, ' ');
    text.erase(0, cut + 1);
  }
  line += text;
}

}  // namespace

std::vector<std::size_t> Table::Widths() const {
  std::vector<std::size_t> widths(m_Columns.size(), 0);
  for (const auto& row : m_Rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], row[i].size());
    }
  }
  return widths;
}

std::string Table::ToString() const {
  const std::vector<std::size_t> widths = Widths();
  const std::size_t last = widths.size() - 1;
  std::string text;
  for (const auto& row : m_Rows) {
    std::string line;
    for (std::size_t i = 0; i < last; ++i) line += "  " + Pad(row[i], widths[i], m_Columns[i]);
    line += "  ";
    const bool isLeft = m_Columns[last] == Align::Left;
    AppendWrapped(line, isLeft ? row[last] : Pad(row[last], widths[last], Align::Right));
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace qelta
