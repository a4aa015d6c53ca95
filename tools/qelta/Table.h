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

  bool IsEmpty() const { return m_Rows.empty(); }

  /// Like Add; stands out where the rows are shown.
  void AddTitles(std::vector<std::string> cells);

  /// Columns that the table takes without breaking a cell.
  std::size_t GetWidth() const;
  /// The same when as many cells are broken as may be.
  std::size_t GetLeastWidth() const;

  /// Prints each row indented by two blanks, with two blanks between columns. Where that is wider
  /// than the terminal, the widest columns are narrowed: left-aligned cells and all titles are
  /// broken, at blanks if possible.
  void Print() const;

 private:
  using Measure = std::size_t (*)(const std::string&);
  std::vector<std::size_t> Widest(Measure measure, bool withTitles = true) const;
  std::vector<std::size_t> Narrowest() const;
  void Narrow(std::vector<std::size_t>& widths) const;
  std::string RowText(std::size_t row, const std::vector<std::size_t>& widths) const;

  std::vector<Align> m_Columns;
  std::vector<std::vector<std::string>> m_Rows;
  bool m_HasTitles = false;
};

}  // namespace qelta
