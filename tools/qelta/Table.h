#pragma once

#include <string>
#include <vector>

namespace qelta {

/// Rows of text in columns that are as wide as their widest cell.
class Table {
 public:
  enum class Align { Left, Right };

  explicit Table(std::vector<Align> columns) : m_Columns(std::move(columns)) {}

  /// One cell for each column.
  void Add(std::vector<std::string> cells) { m_Rows.push_back(std::move(cells)); }

  /// Each row on a line, indented by two blanks, with two blanks between columns. Lines wider than
  /// a terminal are broken at blanks of their last cell.
  std::string ToString() const;

 private:
  std::vector<std::size_t> Widths() const;

  std::vector<Align> m_Columns;
  std::vector<std::vector<std::string>> m_Rows;
};

}  // namespace qelta
