#pragma once

#include <QeltaCell.h>

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Table.h"

namespace qelta {

enum class OutputFormat { Table, Csv, Json, JsonLines };

/// Nothing is an empty cell, a missing value, null.
using OutputCell = std::optional<QeltaCell>;

struct OutputColumn {
  std::string name;
  Table::Align align = Table::Align::Right;
  bool isDispensable = false;  ///< may be left out of a table for which the terminal is too narrow
};

/// Writes rows in the format of the user's choice: a table for people, to the standard output, or
/// exact numbers for programs.
class RowOutput {
 public:
  static constexpr int kTableDigits = 6;

  /// Adds the option --format to a command.
  static void AddFormatOption(CLI::App& command, OutputFormat& format);

  /// `digits` counts in tables alone; without, tables use fewer than six on a narrow terminal.
  static std::unique_ptr<RowOutput> Make(OutputFormat format, std::optional<int> digits = {});

  /// Exact numbers that go to `print`: csv, or an object a line.
  using Printer = std::function<void(const std::string& text)>;
  static std::unique_ptr<RowOutput> MakeCsv(Printer print);
  static std::unique_ptr<RowOutput> MakeJsonLines(Printer print);

  virtual ~RowOutput() = default;
  RowOutput(const RowOutput&) = delete;
  RowOutput& operator=(const RowOutput&) = delete;

  /// Begins rows of other columns. The caption stands above a table only.
  virtual void Begin(std::vector<OutputColumn> columns, const std::string& caption = {}) = 0;
  /// One cell for each column.
  virtual void Add(std::vector<OutputCell> cells) = 0;
  /// Must follow the last row.
  virtual void End() = 0;

 protected:
  RowOutput() = default;
};

/// Texts as a column of this name; in a table format bare lines.
void PrintLines(const std::string& column, const std::vector<std::string>& texts,
                OutputFormat format);

}  // namespace qelta
