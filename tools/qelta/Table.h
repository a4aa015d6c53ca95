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

  /// Each row indented by two blanks, with two blanks between columns. Where that is wider than a
  /// terminal, the widest left-aligned columns are narrowed and their cells broken, at blanks if
  /// possible.
  std::string ToString() const;

 private:
  std::vector<std::size_t> Widest(std::size_t (*measure)(const std::string&)) const;
  void Narrow(std::vector<std::size_t>& widths) const;
  std::string RowText(const std::vector<std::string>& row,
                      const std::vector<std::size_t>& widths) const;

  std::vector<Align> m_Columns;
  std::vector<std::vector<std::string>> m_Rows;
};

}  // namespace qelta
