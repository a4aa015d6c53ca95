#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace qelta {

/// A table of comma-separated values: values may stand in double quotes and then hold commas, line
/// ends and doubled quotes.
struct CsvTable {
  std::vector<std::string> titles;
  std::vector<std::vector<std::string>> rows;  ///< each as long as `titles`
  std::vector<std::size_t> lines;              ///< where each row begins, from 1

  /// Failures name `name` and the line.
  static CsvTable Read(std::istream& text, const std::string& name);
};

}  // namespace qelta
